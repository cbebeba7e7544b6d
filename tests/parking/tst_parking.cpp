// SPDX-License-Identifier: GPL-3.0-or-later
#include "Movimenti.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "parking/Tariffa.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"

#include <QtTest>

using frame::Prompter;
using frame::pub;
using parking::EntraEsce;
using parking::PannelloMovimento;
using namespace prova;

class TestParking : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    Clock m_clock;

    store::Database &db() { return frame::basedati(); }
    PannelloMovimento panel(const QString &targa, const QString &fascia = QStringLiteral("01"))
    {
        PannelloMovimento p;
        p.targa = targa;
        p.fascia = fascia;
        p.note = QStringLiteral("nota");
        return p;
    }
    // Records an entry answered OK and returns the new movement's id, or -1.
    qint64 enter(store::Recordset &rs, const QString &targa, const QString &fascia = QStringLiteral("01"),
                 ScriptedPrompter *visto = nullptr)
    {
        ScriptedPrompter proprio;
        ScriptedPrompter &p = visto ? *visto : proprio;
        p.answer(Prompter::Answer::Ok);
        PannelloMovimento pn = panel(targa, fascia);
        const auto esito = EntraEsce(rs, true, false, pn, p, m_clock.fn());
        if (!esito.scritto)
            return -1;
        return rs.value(QStringLiteral("id")).toLongLong();
    }
    // The exit of the movement current in `rs`, from a panel filled from it, answered `risposta`.
    parking::EsitoEntraEsce exit(store::Recordset &rs, ScriptedPrompter &p, const QString &note = QStringLiteral("nota"),
                                 Prompter::Answer risposta = Prompter::Answer::Ok)
    {
        p.answer(risposta);
        PannelloMovimento pn = prova::panel(rs);
        pn.note = note;
        return EntraEsce(rs, false, false, pn, p, m_clock.fn());
    }
    qint64 rows(const char *table) { return count(QStringLiteral("select count(*) from ") + QLatin1String(table)); }
    qint64 counter(const QString &anno = QStringLiteral("2026"))
    {
        return db().scalar(QStringLiteral("select Progressivo from TabProgressivi where Anno = ?"), {anno}).toLongLong();
    }
    void setBand(const QString &id, const QString &importo, int min1, const QString &succ, int minSuc)
    {
        db().execute(QStringLiteral("insert or replace into Fascia values (?, 'test', ?, ?, ?, ?)"),
                     {id, qint64(money(importo).raw()), min1, qint64(money(succ).raw()), minSuc});
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        pub().TgObbligatoria = pub().StampaEntrata = pub().StampaUscita = false;
        m_clock.now = QDateTime(QDate(2026, 3, 10), QTime(10, 0, 0));
    }
    void cleanup() { m_db.reset(); }

    void tariff_data()
    {
        colonne<QString, int, QString, int, int, QString, qint64, bool>(
            {"importo", "min1", "succ", "minSuc", "minuti", "atteso", "frazioni", "nota"});
        // One-stage band: 2.00 every 60 minutes started.
        QTest::newRow("one 0") << "2" << 60 << "0" << 0 << 0 << "0" << qint64(0) << false;
        QTest::newRow("one 1") << "2" << 60 << "0" << 0 << 1 << "2" << qint64(1) << false;
        QTest::newRow("one 60") << "2" << 60 << "0" << 0 << 60 << "2" << qint64(1) << false;
        QTest::newRow("one 61") << "2" << 60 << "0" << 0 << 61 << "4" << qint64(2) << false;
        QTest::newRow("one clock back") << "2" << 60 << "0" << 0 << -61 << "-2" << qint64(-1) << false;
        // Two-stage band: 3.00 for the first hour, then 1.50 every 30 minutes started.
        QTest::newRow("two 0") << "3" << 60 << "1.5" << 30 << 0 << "3" << qint64(-2) << false;
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
        QFETCH(QString, importo); QFETCH(int, min1); QFETCH(QString, succ); QFETCH(int, minSuc); QFETCH(int, minuti);
        QFETCH(QString, atteso); QFETCH(qint64, frazioni); QFETCH(bool, nota);
        const parking::Fascia f{money(importo), min1, money(succ), minSuc};
        QVERIFY(parking::DifettoFascia(f) == nullptr);
        const auto r = parking::CalcolaTariffa(f, minuti);
        QCOMPARE(r.importo, money(atteso));
        QCOMPARE(r.frazioni, frazioni);
        QCOMPARE(r.conNota, nota);
    }

    // The stay counts minute boundaries crossed: the seconds of both moments are dropped.
    void minuteBoundaries()
    {
        const QDate d(2026, 3, 10);
        using Caso = std::tuple<QDateTime, QDateTime, qint64>;
        for (const auto &[da, a, minuti] : {
                 Caso(QDateTime(d, QTime(10, 0, 59)), QDateTime(d, QTime(10, 1, 0)), 1),      // crossing one boundary
                 Caso(QDateTime(d, QTime(10, 0, 0)), QDateTime(d, QTime(10, 0, 59)), 0),      // inside one minute
                 Caso(QDateTime(d, QTime(23, 59, 30)), QDateTime(d.addDays(1), QTime(0, 0, 10)), 1), // midnight
                 Caso(QDateTime(QDate(2025, 12, 31), QTime(23, 0)), QDateTime(QDate(2026, 1, 1), QTime(1, 0)), 120),
                 Caso(QDateTime(d, QTime(10, 5, 0)), QDateTime(d, QTime(10, 0, 30)), -5)})    // backwards
            QCOMPARE(parking::MinutiSosta(da, a), minuti);
    }

    // An exit that stops before anything is written: a faulty band, a band removed since the
    // entry, an entry date ahead of the clock (refused before the question).
    void exitRefusals_data()
    {
        colonne<QString, int, QString, int, QString>({"importo", "min1", "succ", "minSuc", "chiave"});
        QTest::newRow("no first minutes") << "2" << 0 << "0" << 0 << "M0073";
        QTest::newRow("no first price") << "0" << 60 << "0" << 0 << "M0074";
        QTest::newRow("later price without minutes") << "2" << 60 << "1" << 0 << "M0075";
        QTest::newRow("later minutes without price") << "2" << 60 << "0" << 30 << "M0076";
        QTest::newRow("band removed after the entry") << "1" << 10 << "0" << 0 << "M0065";
        QTest::newRow("entry date ahead of the clock") << "1" << 10 << "0" << 0 << "M0071";
    }
    void exitRefusals()
    {
        QFETCH(QString, importo); QFETCH(int, min1); QFETCH(QString, succ); QFETCH(int, minSuc); QFETCH(QString, chiave);
        setBand(QStringLiteral("BAD"), importo, min1, succ, minSuc);
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("AB123CD"), QStringLiteral("BAD"));
        QVERIFY(id > 0);
        if (chiave == QLatin1String("M0065"))
            db().execute(QStringLiteral("delete from Fascia where id = 'BAD'"));
        m_clock.now = m_clock.now.addSecs(chiave == QLatin1String("M0071") ? -86400 : 3600);
        ScriptedPrompter p;
        const auto esito = exit(*rs, p);
        QVERIFY(!esito.scritto && !esito.resto);
        QCOMPARE(p.questions.size(), chiave == QLatin1String("M0071") ? 0 : 1);
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, frame::TestoLingua(chiave.toLatin1().constData()));
        QCOMPARE(p.messages.first().icon, Prompter::Icon::Stop);
        QCOMPARE(field(id, QStringLiteral("Entrato, DataOraOut, Importo")), QStringLiteral("-1||0"));
        QCOMPARE(rs->editMode(), store::Recordset::EditMode::None);
    }

    void fullStay_data()
    {
        colonne<QString, int, QString, QString>({"fascia", "secondi", "importo", "nota"});
        QTest::newRow("one-stage, same minute") << "01" << 30 << "0" << "";
        QTest::newRow("one-stage, 61 minutes") << "01" << 61 * 60 << "4" << "";
        QTest::newRow("two-stage, 45 minutes") << "02" << 45 * 60 << "3" << "";
        QTest::newRow("two-stage, 121 minutes") << "02" << 121 * 60 << "7.5"
                                                << "First period 3; plus 3 further periods: 4.5";
    }
    // Entry, then exit an interval later: the row, the amount, the note and the change calculator.
    void fullStay()
    {
        QFETCH(QString, fascia); QFETCH(int, secondi); QFETCH(QString, importo); QFETCH(QString, nota);
        pub().StampaUscita = true;
        auto rs = form();
        const QDateTime ingresso = m_clock.now;
        const qint64 id = enter(*rs, QStringLiteral("  EX 123 AB  "), fascia);
        QCOMPARE(field(id, QStringLiteral("Targa")), QStringLiteral("EX 123 AB"));
        QCOMPARE(parking::VeicoliDentro(), 1);

        m_clock.now = ingresso.addSecs(secondi);
        ScriptedPrompter p;
        const auto esito = exit(*rs, p, QStringLiteral("uscita"));
        QVERIFY(esito.scritto && esito.resto && esito.stampa);
        QCOMPARE(esito.importo, money(importo));
        QCOMPARE(p.questions, QStringList{frame::TestoLingua("M0072") + QStringLiteral("EX 123 AB'' ?")});
        QCOMPARE(field(id, QStringLiteral("Entrato, Importo, DataOraOut, IdUtenteOut, Note, NoteImporto")),
                 QStringLiteral("0|%1|%2|1|uscita|%3")
                     .arg(money(importo).raw())
                     .arg(m_clock.now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), nota));
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

    // Cancel at the exit's question leaves the vehicle inside (the entry's: tst_frmpark).
    void cancelLeavesEverything()
    {
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("CANC001"));
        ScriptedPrompter q;
        QVERIFY(!exit(*rs, q, QString(), Prompter::Answer::Cancel).scritto);
        QCOMPARE(field(id, QStringLiteral("Entrato, DataOraOut")), QStringLiteral("-1|"));
    }

    // Quotes, wildcards and accents are stored as typed, an optional plate may stay
    // empty; a text beyond the field's size is refused with a message and nothing is written.
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
        QCOMPARE(field(id, QStringLiteral("Targa, Note")), targa + QLatin1Char('|') + pn.note);
        QCOMPARE(field(enter(*rs, QStringLiteral("   ")), QStringLiteral("Targa")), QString());

        ScriptedPrompter q;
        q.answer(Prompter::Answer::Ok);
        PannelloMovimento lungo = panel(QString(10000, QLatin1Char('Q')));
        QVERIFY(!EntraEsce(*rs, true, false, lungo, q, m_clock.fn()).scritto);
        QCOMPARE(q.messages.size(), 1);
        QCOMPARE(q.messages.first().icon, Prompter::Icon::Critical);
        QCOMPARE(rows("Movimentazioni"), 2);
    }

    void numbering_data()
    {
        colonne<QString, QString, int, int>({"preparazione", "anno", "numero", "righeContatore"});
        QTest::newRow("empty table") << "" << "2026" << 1 << 1;
        QTest::newRow("edited counter") << "insert into TabProgressivi (Anno, Progressivo) values ('2026', 100)" << "2026" << 101 << 1;
        QTest::newRow("year change") << "insert into TabProgressivi (Anno, Progressivo) values ('2025', 812)" << "2026" << 1 << 2;
        // The clock says 2026: the movement takes the fiscal year all the same.
        QTest::newRow("back to an earlier year")
            << "insert into TabProgressivi (Anno, Progressivo) values ('2025', 812)" << "2025" << 813 << 1;
    }
    void numbering()
    {
        QFETCH(QString, preparazione); QFETCH(QString, anno); QFETCH(int, numero); QFETCH(int, righeContatore);
        if (!preparazione.isEmpty())
            db().execute(preparazione);
        pub().AnnoEsercizio = anno;
        auto rs = form();
        const qint64 id = enter(*rs, QStringLiteral("CNT0001"));
        QCOMPARE(field(id, QStringLiteral("Progressivo, Anno")), QStringLiteral("%1|%2").arg(numero).arg(anno));
        QCOMPARE(counter(anno), qint64(numero));
        QCOMPARE(rows("TabProgressivi"), righeContatore);
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
            QVERIFY(!esito.scritto && esito.collisione);
            QCOMPARE(p.messages.size(), 1);
            QCOMPARE(p.messages.first().icon, Prompter::Icon::Information);
            QVERIFY(p.messages.first().text.startsWith(frame::TestoLingua("M0067") + QStringLiteral("\n\n")));
            QVERIFY(p.messages.first().text.endsWith(frame::TestoLingua("M0070") + QStringLiteral(" 3")));
            QCOMPARE(counter(), 2 + tentativo);
            QCOMPARE(rows("Movimentazioni"), 3);
            QCOMPARE(rs->editMode(), store::Recordset::EditMode::None);
        }
        const qint64 id = enter(*rs, QStringLiteral("WALKNEW"));
        QCOMPARE(field(id, QStringLiteral("Progressivo")), QStringLiteral("4"));
    }

    // A counter that cannot be read shows M0079 and the movement takes number 0.
    void failedCounterRead()
    {
        db().execute(QStringLiteral("drop table TabProgressivi"));
        auto rs = form();
        ScriptedPrompter p;
        QVERIFY(enter(*rs, QStringLiteral("FAIL001"), QStringLiteral("01"), &p) > 0);
        QCOMPARE(p.messages.size(), 1);
        QVERIFY(p.messages.first().text.startsWith(frame::TestoLingua("M0079") + QStringLiteral(" Progressivo: ")));
        QCOMPARE(rs->value(QStringLiteral("Progressivo")).toInt(), 0);
    }
};

QTEST_GUILESS_MAIN(TestParking)
#include "tst_parking.moc"
