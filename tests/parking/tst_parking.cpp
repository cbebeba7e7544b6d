// SPDX-License-Identifier: GPL-3.0-or-later
#include <Connections.h>
#include <Database.h>
#include <Language.h>
#include <PublicState.h>
#include <Recordset.h>
#include <Registro.h>
#include <Routines.h>
#include <Tariffa.h>

#include <ScriptedPrompter.h>
#include <TestDatabase.h>

#include <QtTest>

#include <memory>

using frame::Prompter;
using frame::pub;
using parking::EntraEsce;
using parking::Fuoco;
using parking::PannelloMovimento;
using store::Currency;

namespace {

Currency money(const char *text)
{
    Currency c;
    if (!Currency::parse(QString::fromLatin1(text), &c))
        qFatal("bad amount in test: %s", text);
    return c;
}

// A clock that the test moves by hand.
struct Clock {
    QDateTime now{QDate(2026, 3, 10), QTime(10, 0, 0)};
    parking::Orologio fn() { return [this] { return now; }; }
};

} // namespace

class TestParking : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    Clock m_clock;

    store::Database &db() { return frame::basedati(); }
    std::unique_ptr<store::Recordset> form()
    {
        auto rs = std::make_unique<store::Recordset>(db(), QStringLiteral("select * from Q_Movimentazioni_Utenti order by id"));
        rs->MoveFirst();
        return rs;
    }
    PannelloMovimento panel(const QString &targa, const QString &fascia = QStringLiteral("01"))
    {
        PannelloMovimento p;
        p.targa = targa;
        p.fascia = fascia;
        p.note = QStringLiteral("nota");
        return p;
    }
    // Records an entry answered OK and returns the new movement's id.
    qint64 enter(store::Recordset &rs, const QString &targa, const QString &fascia = QStringLiteral("01"))
    {
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(targa, fascia);
        const auto esito = EntraEsce(rs, true, false, pn, p, m_clock.fn());
        if (!esito.scritto)
            return -1;
        return rs.value(QStringLiteral("id")).toLongLong();
    }
    QVariant field(qint64 id, const QString &name)
    {
        return db().scalar(QStringLiteral("select %1 from Movimentazioni where id = ?").arg(name), {id});
    }
    qint64 counter(const QString &anno = QStringLiteral("2026"))
    {
        return db().scalar(QStringLiteral("select Progressivo from TabProgressivi where Anno = ?"), {anno}).toLongLong();
    }
    void setBand(const QString &id, const char *importo, int min1, const char *succ, int minSuc)
    {
        db().execute(QStringLiteral("insert or replace into Fascia values (?, 'test', ?, ?, ?, ?)"),
                     {id, qint64(money(importo).raw()), min1, qint64(money(succ).raw()), minSuc});
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        pub().TgObbligatoria = false;
        pub().StampaEntrata = false;
        pub().StampaUscita = false;
        m_clock.now = QDateTime(QDate(2026, 3, 10), QTime(10, 0, 0));
    }
    void cleanup() { m_db.reset(); }

    void tariff_data()
    {
        QTest::addColumn<QString>("importo");
        QTest::addColumn<int>("min1");
        QTest::addColumn<QString>("succ");
        QTest::addColumn<int>("minSuc");
        QTest::addColumn<int>("minuti");
        QTest::addColumn<QString>("atteso");
        QTest::addColumn<qint64>("frazioni");
        QTest::addColumn<bool>("nota");
        // One-stage band: 2.00 every 60 minutes started.
        QTest::newRow("one 0") << "2" << 60 << "0" << 0 << 0 << "0" << qint64(0) << false;
        QTest::newRow("one 1") << "2" << 60 << "0" << 0 << 1 << "2" << qint64(1) << false;
        QTest::newRow("one 60") << "2" << 60 << "0" << 0 << 60 << "2" << qint64(1) << false;
        QTest::newRow("one 61") << "2" << 60 << "0" << 0 << 61 << "4" << qint64(2) << false;
        QTest::newRow("one 125") << "2" << 60 << "0" << 0 << 125 << "6" << qint64(3) << false;
        QTest::newRow("one clock back") << "2" << 60 << "0" << 0 << -61 << "-2" << qint64(-1) << false;
        // Two-stage band: 3.00 for the first hour, then 1.50 every 30 minutes started.
        QTest::newRow("two 0") << "3" << 60 << "1.5" << 30 << 0 << "3" << qint64(-2) << false;
        QTest::newRow("two 45") << "3" << 60 << "1.5" << 30 << 45 << "3" << qint64(0) << false;
        QTest::newRow("two 60") << "3" << 60 << "1.5" << 30 << 60 << "3" << qint64(0) << false;
        QTest::newRow("two 61") << "3" << 60 << "1.5" << 30 << 61 << "4.5" << qint64(1) << true;
        QTest::newRow("two 120") << "3" << 60 << "1.5" << 30 << 120 << "6" << qint64(2) << true;
        QTest::newRow("two 121") << "3" << 60 << "1.5" << 30 << 121 << "7.5" << qint64(3) << true;
        QTest::newRow("two clock back") << "3" << 60 << "1.5" << 30 << -500 << "3" << qint64(-18) << false;
        // Four decimals stay exact over many slices.
        QTest::newRow("exact decimals") << "0.0001" << 1 << "0" << 0 << 999999 << "99.9999" << qint64(999999) << false;
        QTest::newRow("thirds") << "0.3333" << 20 << "0.3333" << 20 << 600 << "9.9990" << qint64(29) << true;
    }
    void tariff()
    {
        QFETCH(QString, importo);
        QFETCH(int, min1);
        QFETCH(QString, succ);
        QFETCH(int, minSuc);
        QFETCH(int, minuti);
        QFETCH(QString, atteso);
        QFETCH(qint64, frazioni);
        QFETCH(bool, nota);
        const parking::Fascia f{money(importo.toLatin1()), min1, money(succ.toLatin1()), minSuc};
        QVERIFY(parking::DifettoFascia(f) == nullptr);
        const auto r = parking::CalcolaTariffa(f, minuti);
        QCOMPARE(r.importo, money(atteso.toLatin1()));
        QCOMPARE(r.frazioni, frazioni);
        QCOMPARE(r.conNota, nota);
    }

    void minuteBoundaries_data()
    {
        QTest::addColumn<QDateTime>("da");
        QTest::addColumn<QDateTime>("a");
        QTest::addColumn<qint64>("minuti");
        const QDate d(2026, 3, 10);
        QTest::newRow("crossing one boundary") << QDateTime(d, QTime(10, 0, 59)) << QDateTime(d, QTime(10, 1, 0)) << qint64(1);
        QTest::newRow("inside one minute") << QDateTime(d, QTime(10, 0, 0)) << QDateTime(d, QTime(10, 0, 59)) << qint64(0);
        QTest::newRow("midnight") << QDateTime(d, QTime(23, 59, 30)) << QDateTime(d.addDays(1), QTime(0, 0, 10)) << qint64(1);
        QTest::newRow("year end") << QDateTime(QDate(2025, 12, 31), QTime(23, 0)) << QDateTime(QDate(2026, 1, 1), QTime(1, 0))
                                  << qint64(120);
        QTest::newRow("backwards") << QDateTime(d, QTime(10, 5, 0)) << QDateTime(d, QTime(10, 0, 30)) << qint64(-5);
    }
    void minuteBoundaries()
    {
        QFETCH(QDateTime, da);
        QFETCH(QDateTime, a);
        QFETCH(qint64, minuti);
        QCOMPARE(parking::MinutiSosta(da, a), minuti);
    }

    void bandFaults_data()
    {
        QTest::addColumn<QString>("importo");
        QTest::addColumn<int>("min1");
        QTest::addColumn<QString>("succ");
        QTest::addColumn<int>("minSuc");
        QTest::addColumn<QString>("chiave");
        QTest::newRow("no first minutes") << "2" << 0 << "0" << 0 << "M0073";
        QTest::newRow("no first price") << "0" << 60 << "0" << 0 << "M0074";
        QTest::newRow("later price without minutes") << "2" << 60 << "1" << 0 << "M0075";
        QTest::newRow("later minutes without price") << "2" << 60 << "0" << 30 << "M0076";
    }
    // A faulty band stops the exit: message shown, the vehicle stays inside, nothing priced.
    void bandFaults()
    {
        QFETCH(QString, importo);
        QFETCH(int, min1);
        QFETCH(QString, succ);
        QFETCH(int, minSuc);
        QFETCH(QString, chiave);
        setBand(QStringLiteral("BAD"), importo.toLatin1(), min1, succ.toLatin1(), minSuc);
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("AB123CD"), QStringLiteral("BAD"));
        QVERIFY(id > 0);

        m_clock.now = m_clock.now.addSecs(3600);
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(QStringLiteral("AB123CD"));
        const auto esito = EntraEsce(*rs, false, false, pn, p, m_clock.fn());
        QVERIFY(!esito.scritto);
        QVERIFY(!esito.resto);
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, frame::TestoLingua(chiave.toLatin1().constData()));
        QCOMPARE(p.messages.first().icon, Prompter::Icon::Stop);
        QCOMPARE(field(id, QStringLiteral("Entrato")).toInt(), -1);
        QVERIFY(field(id, QStringLiteral("DataOraOut")).isNull());
        QCOMPARE(rs->editMode(), store::Recordset::EditMode::None);
    }

    // The band's row removed between entry and exit: the exit stops at M0065.
    void bandGoneBeforeExit()
    {
        setBand(QStringLiteral("TMP"), "1", 10, "0", 0);
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("ZZ999ZZ"), QStringLiteral("TMP"));
        db().execute(QStringLiteral("delete from Fascia where id = 'TMP'"));
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(QStringLiteral("ZZ999ZZ"));
        QVERIFY(!EntraEsce(*rs, false, false, pn, p, m_clock.fn()).scritto);
        QCOMPARE(p.messages.first().text, frame::TestoLingua("M0065"));
        QCOMPARE(field(id, QStringLiteral("Entrato")).toInt(), -1);
    }

    void fullStay_data()
    {
        QTest::addColumn<QString>("fascia");
        QTest::addColumn<int>("secondi");
        QTest::addColumn<QString>("importo");
        QTest::addColumn<QString>("nota");
        QTest::newRow("one-stage, same minute") << "01" << 30 << "0" << "";
        QTest::newRow("one-stage, 61 minutes") << "01" << 61 * 60 << "4" << "";
        QTest::newRow("two-stage, 45 minutes") << "02" << 45 * 60 << "3" << "";
        QTest::newRow("two-stage, 121 minutes") << "02" << 121 * 60 << "7.5"
                                                << "First period 3; plus 3 further periods: 4.5";
    }
    // Entry, then exit an interval later: the row, the amount, the note and the change calculator.
    void fullStay()
    {
        QFETCH(QString, fascia);
        QFETCH(int, secondi);
        QFETCH(QString, importo);
        QFETCH(QString, nota);
        pub().StampaUscita = true;
        auto rs = form();
        const QDateTime ingresso = m_clock.now;
        const qint64 id = enter(*rs, QStringLiteral("  EX 123 AB  "), fascia);
        QVERIFY(id > 0);
        QCOMPARE(field(id, QStringLiteral("Targa")).toString(), QStringLiteral("EX 123 AB"));
        QCOMPARE(parking::VeicoliDentro(), 1);

        m_clock.now = ingresso.addSecs(secondi);
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(QStringLiteral("EX 123 AB"));
        pn.note = QStringLiteral("uscita");
        pn.dataIngresso = ingresso.date();
        const auto esito = EntraEsce(*rs, false, false, pn, p, m_clock.fn());
        QVERIFY(esito.scritto);
        QVERIFY(esito.resto);
        QVERIFY(esito.stampa);
        QCOMPARE(esito.importo, money(importo.toLatin1()));
        QCOMPARE(p.questions.size(), 1);
        QCOMPARE(p.questions.first(), frame::TestoLingua("M0072") + QStringLiteral("EX 123 AB'' ?"));
        QCOMPARE(field(id, QStringLiteral("Entrato")).toInt(), 0);
        QCOMPARE(field(id, QStringLiteral("Importo")).toLongLong(), qint64(money(importo.toLatin1()).raw()));
        QCOMPARE(field(id, QStringLiteral("DataOraOut")).toString(), m_clock.now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        QCOMPARE(field(id, QStringLiteral("IdUtenteOut")).toInt(), 1);
        QCOMPARE(field(id, QStringLiteral("Note")).toString(), QStringLiteral("uscita"));
        QCOMPARE(field(id, QStringLiteral("NoteImporto")).toString(), nota);
        QCOMPARE(parking::VeicoliDentro(), 0);
        QCOMPARE(rs->value(QStringLiteral("Autorizzazioni_1.utente")).toString(), QStringLiteral("administrator"));
    }

    void noteCutAt70()
    {
        frame::pub().TestiLingua.append({QStringLiteral("M0368"), QString(60, QLatin1Char('x'))});
        frame::pub().TestiLingua.prepend({QStringLiteral("M0368"), QString(60, QLatin1Char('x'))});
        const parking::Fascia f{money("3"), 60, money("1.5"), 30};
        const QString nota = parking::NotaImporto(f, parking::CalcolaTariffa(f, 121));
        QCOMPARE(nota.size(), 70);
        QVERIFY(nota.startsWith(QString(60, QLatin1Char('x')) + QStringLiteral(" 3; ")));
    }

    void exitBeforeEntryDate()
    {
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("FUT0001"));
        ScriptedPrompter p;
        PannelloMovimento pn = panel(QStringLiteral("FUT0001"));
        pn.dataIngresso = m_clock.now.date().addDays(1);
        QVERIFY(!EntraEsce(*rs, false, false, pn, p, m_clock.fn()).scritto);
        QCOMPARE(p.messages.first().text, frame::TestoLingua("M0071"));
        QVERIFY(p.questions.isEmpty());
        QCOMPARE(field(id, QStringLiteral("Entrato")).toInt(), -1);
    }

    void entryRefusals_data()
    {
        QTest::addColumn<bool>("obbligatoria");
        QTest::addColumn<QString>("targa");
        QTest::addColumn<QString>("fascia");
        QTest::addColumn<bool>("nonTrovata");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<int>("fuoco");
        QTest::newRow("plate required") << true << "   " << "01" << false << "M0062" << int(Fuoco::Targa);
        QTest::newRow("plate too short") << false << " ABCD " << "01" << false << "M0063" << int(Fuoco::Targa);
        QTest::newRow("short though optional") << false << "A1" << "01" << false << "M0063" << int(Fuoco::Targa);
        QTest::newRow("no band") << false << "AB12345" << "" << false << "M0064" << int(Fuoco::Targa);
        QTest::newRow("unknown band") << false << "AB12345" << "X'9" << true << "M0065" << int(Fuoco::CodiceFascia);
    }
    void entryRefusals()
    {
        QFETCH(bool, obbligatoria);
        QFETCH(QString, targa);
        QFETCH(QString, fascia);
        QFETCH(bool, nonTrovata);
        QFETCH(QString, chiave);
        QFETCH(int, fuoco);
        pub().TgObbligatoria = obbligatoria;
        auto rs = form();
        ScriptedPrompter p;
        PannelloMovimento pn = panel(targa, fascia);
        pn.fasciaNonTrovata = nonTrovata;
        const auto esito = EntraEsce(*rs, true, false, pn, p, m_clock.fn());
        QVERIFY(!esito.scritto);
        QCOMPARE(int(esito.fuoco), fuoco);
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, frame::TestoLingua(chiave.toLatin1().constData()));
        QVERIFY(p.questions.isEmpty());
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from TabProgressivi")).toInt(), 0);
    }

    void optionalPlateEmpty()
    {
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("   "));
        QVERIFY(id > 0);
        QCOMPARE(field(id, QStringLiteral("Targa")).toString(), QString());
        QCOMPARE(field(id, QStringLiteral("Progressivo")).toInt(), 1);
    }

    // Cancel at the question: no row, no counter, for entry and for exit.
    void cancelLeavesEverything()
    {
        auto rs = form();
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Cancel);
        PannelloMovimento pn = panel(QStringLiteral("CANC001"));
        QVERIFY(!EntraEsce(*rs, true, false, pn, p, m_clock.fn()).scritto);
        QCOMPARE(p.questions.first(), frame::TestoLingua("M0066") + QStringLiteral("CANC001'' ?"));
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from TabProgressivi")).toInt(), 0);

        const qint64 id = enter(*rs, QStringLiteral("CANC001"));
        ScriptedPrompter q;
        q.answer(Prompter::Answer::Cancel);
        QVERIFY(!EntraEsce(*rs, false, false, pn, q, m_clock.fn()).scritto);
        QCOMPARE(field(id, QStringLiteral("Entrato")).toInt(), -1);
    }

    // Quotes, wildcards and accents are stored as typed; a text beyond the
    // field's size is refused with a message and nothing is written.
    void nastyTexts()
    {
        auto rs = form();
        const QString targa = QStringLiteral("O'R \"%*_ àÈ");
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(targa);
        pn.note = QStringLiteral("l'auto \"rossa\" 100% [x] #1");
        QVERIFY(EntraEsce(*rs, true, false, pn, p, m_clock.fn()).scritto);
        const qint64 id = rs->value(QStringLiteral("id")).toLongLong();
        QCOMPARE(field(id, QStringLiteral("Targa")).toString(), targa);
        QCOMPARE(field(id, QStringLiteral("Note")).toString(), pn.note);

        ScriptedPrompter q;
        q.answer(Prompter::Answer::Ok);
        PannelloMovimento lungo = panel(QString(10000, QLatin1Char('Q')));
        const auto esito = EntraEsce(*rs, true, false, lungo, q, m_clock.fn());
        QVERIFY(!esito.scritto);
        QCOMPARE(q.messages.size(), 1);
        QCOMPARE(q.messages.first().icon, Prompter::Icon::Critical);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 1);
    }

    void numbering_data()
    {
        QTest::addColumn<QString>("preparazione");
        QTest::addColumn<QString>("anno");
        QTest::addColumn<int>("numero");
        QTest::addColumn<int>("righeContatore");
        QTest::newRow("empty table") << "" << "2026" << 1 << 1;
        QTest::newRow("edited counter") << "insert into TabProgressivi (Anno, Progressivo) values ('2026', 100)" << "2026" << 101 << 1;
        QTest::newRow("year change") << "insert into TabProgressivi (Anno, Progressivo) values ('2025', 812)" << "2026" << 1 << 2;
        QTest::newRow("back to an earlier year")
            << "insert into TabProgressivi (Anno, Progressivo) values ('2025', 812)" << "2025" << 813 << 1;
    }
    void numbering()
    {
        QFETCH(QString, preparazione);
        QFETCH(QString, anno);
        QFETCH(int, numero);
        QFETCH(int, righeContatore);
        if (!preparazione.isEmpty())
            db().execute(preparazione);
        pub().AnnoEsercizio = anno;
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("CNT0001"));
        QCOMPARE(field(id, QStringLiteral("Progressivo")).toInt(), numero);
        QCOMPARE(field(id, QStringLiteral("Anno")).toString(), anno);
        QCOMPARE(counter(anno), qint64(numero));
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from TabProgressivi")).toInt(), righeContatore);
    }

    // The year on a movement is the fiscal year, never the date's.
    void yearFromFiscalYear()
    {
        pub().AnnoEsercizio = QStringLiteral("2025");
        m_clock.now = QDateTime(QDate(2026, 1, 2), QTime(8, 0));
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("ANNO001"));
        QCOMPARE(field(id, QStringLiteral("Anno")).toString(), QStringLiteral("2025"));
    }

    void counterReturnsValueBeforeAdvance()
    {
        db().execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo) values ('2026', 41)"));
        ScriptedPrompter p;
        const QVariant n = parking::LeggiProgressivo(QStringLiteral("TabProgressivi"), QStringLiteral("Progressivo"),
                                                     QStringLiteral("anno='2026'"), QString(), true, p);
        QCOMPARE(n.toLongLong(), 41);
        QCOMPARE(counter(), 42);
        const QVariant max = parking::LeggiProgressivo(QStringLiteral("movimentazioni"), QStringLiteral("Progressivo"),
                                                       QStringLiteral("anno='2026'"), QString(), true, p);
        QCOMPARE(max.toLongLong(), 0);
        QCOMPARE(counter(), 42);
        QVERIFY(p.messages.isEmpty());
    }

    // A counter behind the register: each attempt is refused with the highest
    // number, moves the counter on by one, and the walk ends past the collision.
    void collisionWalksTheCounter()
    {
        auto rs = form();
        for (int i = 0; i < 3; ++i)
            QVERIFY(enter(*rs, QStringLiteral("WALK00%1").arg(i)) > 0);
        db().execute(QStringLiteral("update TabProgressivi set Progressivo = 1 where Anno = '2026'"));

        for (int tentativo = 0; tentativo < 2; ++tentativo) {
            ScriptedPrompter p;
            p.answer(Prompter::Answer::Ok);
            PannelloMovimento pn = panel(QStringLiteral("WALKNEW"));
            const auto esito = EntraEsce(*rs, true, false, pn, p, m_clock.fn());
            QVERIFY(!esito.scritto);
            QVERIFY(esito.collisione);
            QCOMPARE(p.messages.size(), 1);
            QCOMPARE(p.messages.first().icon, Prompter::Icon::Information);
            QVERIFY(p.messages.first().text.startsWith(frame::TestoLingua("M0067") + QStringLiteral("\n\n")));
            QVERIFY(p.messages.first().text.endsWith(frame::TestoLingua("M0070") + QStringLiteral(" 3")));
            QCOMPARE(counter(), 2 + tentativo);
            QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 3);
            QCOMPARE(rs->editMode(), store::Recordset::EditMode::None);
        }
        const qint64 id = enter(*rs, QStringLiteral("WALKNEW"));
        QCOMPARE(field(id, QStringLiteral("Progressivo")).toInt(), 4);
    }

    // A counter that cannot be read shows M0079 and the movement takes number 0.
    void failedCounterRead()
    {
        db().execute(QStringLiteral("drop table TabProgressivi"));
        auto rs = form();
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(QStringLiteral("FAIL001"));
        QVERIFY(EntraEsce(*rs, true, false, pn, p, m_clock.fn()).scritto);
        QCOMPARE(p.messages.size(), 1);
        QVERIFY(p.messages.first().text.startsWith(frame::TestoLingua("M0079") + QStringLiteral(" Progressivo: ")));
        QCOMPARE(rs->value(QStringLiteral("Progressivo")).toInt(), 0);
    }

    // A correction of an entry keeps number and year and stamps a fresh entry time.
    void correctionKeepsNumber()
    {
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("VAR0001"));
        pub().AnnoEsercizio = QStringLiteral("2027");
        m_clock.now = m_clock.now.addSecs(600);
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(QStringLiteral("VAR0002"), QStringLiteral("02"));
        QVERIFY(EntraEsce(*rs, true, true, pn, p, m_clock.fn()).scritto);
        QCOMPARE(field(id, QStringLiteral("Progressivo")).toInt(), 1);
        QCOMPARE(field(id, QStringLiteral("Anno")).toString(), QStringLiteral("2026"));
        QCOMPARE(field(id, QStringLiteral("Targa")).toString(), QStringLiteral("VAR0002"));
        QCOMPARE(field(id, QStringLiteral("IdFascia")).toString(), QStringLiteral("02"));
        QCOMPARE(field(id, QStringLiteral("DataOra")).toString(), QStringLiteral("2026-03-10 10:10:00"));
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 1);
        QCOMPARE(counter(QStringLiteral("2026")), 1);
    }

    // Inside means entered and not cancelled; the same plate may be inside twice.
    void vehiclesInside()
    {
        auto rs = form();
        enter(*rs, QStringLiteral("SAME001"));
        enter(*rs, QStringLiteral("SAME001"));
        const qint64 third = enter(*rs, QStringLiteral("OTHER01"));
        QCOMPARE(parking::VeicoliDentro(), 3);
        db().execute(QStringLiteral("update Movimentazioni set Annullato = -1 where id = ?"), {third});
        QCOMPARE(parking::VeicoliDentro(), 2);
    }
};

QTEST_GUILESS_MAIN(TestParking)
#include "tst_parking.moc"
