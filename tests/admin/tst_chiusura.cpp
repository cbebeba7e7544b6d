// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/ChiusuraAnno.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Connections.h"
#include "store/Database.h"

#include "support/Colonne.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

#include <csignal>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

using admin::Progressivi;
using frame::Prompter;
using frame::TestoLingua;
using store::Currency;
using Answers = QList<Prompter::Answer>;

Q_DECLARE_METATYPE(Answers)

namespace {

store::Database &db()
{
    return frame::basedati();
}

Currency soldi(const char *testo)
{
    Currency c;
    if (!Currency::parse(QLatin1String(testo), &c))
        qFatal("bad amount in test: %s", testo);
    return c;
}

// Everything the closing may touch, as text: the rows of the tables, the
// counts kept by triggers, the schema (triggers included) and the counters.
QString fotografia(store::Database &d)
{
    static const char *const query[] = {
        "select * from Movimentazioni order by id",
        "select * from Cassa order by id",
        "select Id, SaldoEntrate, SaldoUscite from Clienti order by Id",
        "select rowid, * from TabProgressivi order by rowid",
        "select AnnoEsercizio from Impostazioni",
        "select Anno, Entrato, Blocco, Righe from ConteggiMovimenti where Righe <> 0 order by 1, 2, 3",
        "select * from CassaGiorni order by Giorno",
        "select * from sqlite_sequence order by name",
        "select type, name, sql from sqlite_master order by name",
    };
    QString testo;
    for (const char *q : query) {
        auto st = d.prepare(QLatin1String(q));
        while (st.step()) {
            for (int i = 0; i < st.columnCount(); ++i)
                testo += st.value(i).toString() + QLatin1Char('|');
            testo += QLatin1Char('\n');
        }
        testo += QStringLiteral("--\n");
    }
    return testo;
}

// The counts kept by triggers agree with the tables they count.
void verificaConteggi(store::Database &d)
{
    QCOMPARE(d.scalar(QStringLiteral("select total(Righe) from ConteggiMovimenti")).toLongLong(),
             d.scalar(QStringLiteral("select count(*) from Movimentazioni")).toLongLong());
    QCOMPARE(d.scalar(QStringLiteral("select count(*) from (select Anno, Entrato, id / 4096, count(*) n from Movimentazioni "
                                     "group by 1, 2, 3 except select Anno, Entrato, Blocco, Righe from ConteggiMovimenti)"))
                 .toLongLong(),
             qint64(0));
    QCOMPARE(d.scalar(QStringLiteral("select total(Righe) from CassaGiorni")).toLongLong(),
             d.scalar(QStringLiteral("select count(*) from Cassa")).toLongLong());
}

qint64 movimento(const char *anno, int progressivo, bool entrato, bool annullato, bool contabilizzato)
{
    db().execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, Importo, Entrato, Annullato, "
                                "Contabilizzato) values (?, ?, '2026-03-01 10:00:00', 'AB123CD', 20000, ?, ?, ?)"),
                 {QLatin1String(anno), progressivo, entrato ? -1 : 0, annullato ? -1 : 0, contabilizzato ? -1 : 0});
    return db().lastInsertId();
}

void cassa(const QVariant &cliente, const char *esercizio, const QVariant &entrata, const QVariant &uscita)
{
    db().execute(QStringLiteral("insert into Cassa (IdCliente, Data, Descrizione, Entrata, Uscita, Esercizio) "
                                "values (?, '2026-05-02 00:00:00', 'r', ?, ?, ?)"),
                 {cliente, entrata, uscita, QLatin1String(esercizio)});
}

qint64 cliente(const QVariant &saldoEntrate, const QVariant &saldoUscite)
{
    db().execute(QStringLiteral("insert into Clienti (Cognome, SaldoEntrate, SaldoUscite) values ('D''Angelo', ?, ?)"),
                 {saldoEntrate, saldoUscite});
    return db().lastInsertId();
}

const Progressivi Finestra{42, soldi("500"), soldi("200")};
const QDate Oggi(2027, 1, 15); // a closing of 2026 in January 2027: the new year is 2028

// Texts of the two questions of each operation, as the user reads them.
QString primaChiusura()
{
    return TestoLingua("M0121") + QStringLiteral("\n\n") + TestoLingua("M0122") + QStringLiteral(" 2026\n\n .")
           + TestoLingua("M0123");
}
QString seconda()
{
    return TestoLingua("M0121") + QStringLiteral("\n\n") + TestoLingua("M0124") + QStringLiteral("\n\n") + TestoLingua("M0123");
}

} // namespace

class TestChiusura : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    qint64 m_anna = 0, m_bruno = 0;
    qint64 m_dentro = 0, m_nonContabilizzato = 0;

    std::optional<admin::DopoChiusura> chiudi(ScriptedPrompter &p, const std::function<void()> &backup = {})
    {
        return admin::ChiudiAnno(db(), p, QStringLiteral("2026"), Finestra, Oggi, backup);
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        db().execute(QStringLiteral("update Impostazioni set AnnoEsercizio = '2026'"));
        db().execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo) values ('2026', 7)"));
        m_anna = cliente(100.5, QVariant());
        m_bruno = cliente(0, 0);
        const qint64 andato = cliente(0, 0);
        // Receipts that a sum of floating numbers would get wrong (0.1 + 0.2).
        cassa(m_anna, "2026", 10.1, 5.05);
        cassa(m_anna, "2026", 20.2, QVariant());
        cassa(m_bruno, "2026", 0.1, 0);
        cassa(m_bruno, "2026", 0.2, 1.25);
        cassa(QVariant(), "2026", 1000, 0.75);  // the garage's takings: the totals only
        cassa(m_anna, "2025", 999, 999);        // another year: no balance, no total
        cassa(andato, "2026", 50, 0);           // a customer deleted since
        cassa(-1, "2026", 3, 0);                // no customer written as -1
        db().execute(QStringLiteral("delete from Clienti where Id = ?"), {andato});
        m_dentro = movimento("2026", 5, true, false, false);
        m_nonContabilizzato = movimento("2025", 90, false, false, false);
        movimento("2026", 1, false, false, true);
        movimento("2026", 2, false, true, false);
        movimento("2025", 3, false, true, true);
        movimento("2024", 4, false, true, false);
    }
    void cleanup()
    {
        m_db.reset();
    }

    // The whole closing on a file with every kind of row, and the tab's boxes after it.
    void chiusura()
    {
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        p.answer(Prompter::Answer::Ok);
        const auto dopo = chiudi(p);
        QVERIFY(dopo);
        QCOMPARE(p.questions, (QStringList{primaChiusura(), seconda()}));
        QCOMPARE(p.questionIcons, (QList<Prompter::Icon>{Prompter::Icon::Stop, Prompter::Icon::Stop}));
        QCOMPARE(p.texts(), QStringList{TestoLingua("M0125")});

        // The year's cash: 10.1 + 20.2 + 0.1 + 0.2 + 1000 + 50 + 3 in, 5.05 + 1.25 + 0.75 out.
        const Progressivi atteso{0, soldi("500") + soldi("1083.6"), soldi("200") + soldi("7.05")};
        QCOMPARE(dopo->annoCasella, 2027);
        QCOMPARE(dopo->contatori.progressivo, qint64(0));
        QCOMPARE(dopo->contatori.entrata, atteso.entrata);
        QCOMPARE(dopo->contatori.uscita, atteso.uscita);
        const auto chiuso = admin::LeggiProgressivi(db(), QStringLiteral("2026"));
        QVERIFY(chiuso);
        QCOMPARE(chiuso->progressivo, Finestra.progressivo);
        QCOMPARE(chiuso->entrata, atteso.entrata);
        QCOMPARE(chiuso->uscita, atteso.uscita);
        // The new year's row is added as the counters tab adds one: with no Anno.
        auto nuovo = db().prepare(QStringLiteral("select Progressivo, EntrataPrecedente, UscitaPrecedente from TabProgressivi "
                                                 "where Anno is null"));
        QVERIFY(nuovo.step());
        QCOMPARE(nuovo.value(0).toLongLong(), qint64(0));
        QCOMPARE(nuovo.value(1).toDouble(), atteso.entrata.toDouble());
        QCOMPARE(nuovo.value(2).toDouble(), atteso.uscita.toDouble());
        QVERIFY(!nuovo.step());

        QCOMPARE(db().scalar(QStringLiteral("select SaldoEntrate from Clienti where Id = ?"), {m_anna}).toDouble(), 130.8);
        QCOMPARE(db().scalar(QStringLiteral("select SaldoUscite from Clienti where Id = ?"), {m_anna}).toDouble(), 5.05);
        QCOMPARE(db().scalar(QStringLiteral("select SaldoEntrate from Clienti where Id = ?"), {m_bruno}).toDouble(), 0.3);
        QCOMPARE(db().scalar(QStringLiteral("select SaldoUscite from Clienti where Id = ?"), {m_bruno}).toDouble(), 1.25);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Clienti")).toInt(), 2);

        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select group_concat(id || ':' || Anno || ':' || Progressivo) from "
                                            "(select * from Movimentazioni order by id)"))
                     .toString(),
                 QStringLiteral("%1:2026:5,%2:2025:90").arg(m_dentro).arg(m_nonContabilizzato));
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("AnnoEsercizio")).toString(), QStringLiteral("2028"));
        QCOMPARE(frame::pub().AnnoEsercizio, QStringLiteral("2028"));
        verificaConteggi(db());

        // The counting triggers stand again: new rows are counted, and new ids
        // never take those of the removed rows.
        const qint64 id = movimento("2028", 1, true, false, false);
        QVERIFY(id > m_dentro + 5);
        cassa(m_anna, "2028", 4, 0);
        verificaConteggi(db());
    }

    void annullataNonCambiaNulla_data()
    {
        colonne<Answers, int>({"risposte", "domande"});
        QTest::newRow("first") << Answers{Prompter::Answer::Cancel} << 1;
        QTest::newRow("second") << Answers{Prompter::Answer::Ok, Prompter::Answer::Cancel} << 2;
        QTest::newRow("no answer: Cancel is the default") << Answers{} << 1;
    }
    // Cancel at either confirmation: the file, the fiscal year and the boxes stay.
    void annullataNonCambiaNulla()
    {
        QFETCH(Answers, risposte); QFETCH(int, domande);
        const QString prima = fotografia(db());
        for (int op = 0; op < 2; ++op) {
            ScriptedPrompter p;
            for (auto a : risposte)
                p.answer(a);
            if (op == 0)
                QVERIFY(!chiudi(p));
            else
                QVERIFY(!admin::RimuoviAnnullati(db(), p, QStringLiteral("2026")));
            QCOMPARE(p.questions.size(), domande);
            QVERIFY(p.messages.isEmpty());
            QCOMPARE(fotografia(db()), prima);
            QCOMPARE(frame::pub().AnnoEsercizio, QStringLiteral("2026"));
        }
    }

    void backupOfferto_data()
    {
        colonne<Prompter::Answer, bool>({"risposta", "fatto"});
        QTest::newRow("accepted") << Prompter::Answer::Yes << true;
        QTest::newRow("declined") << Prompter::Answer::No << false;
    }
    // The backup is offered before the first confirmation; either way the closing goes on.
    void backupOfferto()
    {
        QFETCH(Prompter::Answer, risposta); QFETCH(bool, fatto);
        ScriptedPrompter p;
        p.answer(risposta);
        p.answer(Prompter::Answer::Ok);
        p.answer(Prompter::Answer::Ok);
        qsizetype domandeAlBackup = -1;
        QVERIFY(chiudi(p, [&] { domandeAlBackup = p.questions.size(); }));
        QCOMPARE(domandeAlBackup, qsizetype(fatto ? 1 : -1));
        QCOMPARE(p.questions, (QStringList{TestoLingua("CAP50"), primaChiusura(), seconda()}));
        QCOMPARE(p.texts(), QStringList{TestoLingua("M0125")});
    }

    // A second closing finds an empty cash book: the balances stay, the kept
    // movements stay, the fiscal year is again next calendar year.
    void chiusuraDueVolte()
    {
        for (int volta = 0; volta < 2; ++volta) {
            ScriptedPrompter p;
            p.answer(Prompter::Answer::Ok);
            p.answer(Prompter::Answer::Ok);
            const auto dopo = admin::ChiudiAnno(db(), p, frame::pub().AnnoEsercizio, Finestra, Oggi);
            QVERIFY(dopo);
            if (volta == 1) {
                QCOMPARE(dopo->contatori.entrata, Finestra.entrata);
                QCOMPARE(dopo->contatori.uscita, Finestra.uscita);
            }
        }
        QCOMPARE(db().scalar(QStringLiteral("select SaldoEntrate from Clienti where Id = ?"), {m_anna}).toDouble(), 130.8);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 2);
        QCOMPARE(frame::pub().AnnoEsercizio, QStringLiteral("2028"));
        verificaConteggi(db());
    }

    void guastoNonCambiaNulla_data()
    {
        colonne<QString, bool>({"trigger", "rimozione"});
        QTest::newRow("removing movements") << QStringLiteral("before delete on Movimentazioni") << false;
        QTest::newRow("a customer's balance") << QStringLiteral("before update on Clienti") << false;
        QTest::newRow("the new year's counters (last step)") << QStringLiteral("before insert on TabProgressivi") << false;
        QTest::newRow("the fiscal year") << QStringLiteral("before update on Impostazioni") << false;
        QTest::newRow("removal of the cancelled, at the last year's row")
            << QStringLiteral("before delete on Movimentazioni when OLD.Anno = '2024'") << true;
    }
    // A failure at any step of the closing or of the removal of the cancelled movements leaves the file as it
    // was and tells M0126; once the fault is gone the closing adds the sums once.
    void guastoNonCambiaNulla()
    {
        QFETCH(QString, trigger); QFETCH(bool, rimozione);
        db().executeScript(QStringLiteral("create trigger Guasto %1 begin select raise(abort, 'disk on fire'); end").arg(trigger));
        const QString prima = fotografia(db());
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        p.answer(Prompter::Answer::Ok);
        QVERIFY(rimozione ? !admin::RimuoviAnnullati(db(), p, QStringLiteral("2026")) : !chiudi(p));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY(p.messages[0].text.startsWith(TestoLingua("M0126")));
        QVERIFY(p.messages[0].text.contains(QStringLiteral("disk on fire")));
        QCOMPARE(p.messages[0].icon, Prompter::Icon::Stop);
        QCOMPARE(fotografia(db()), prima);
        QCOMPARE(frame::pub().AnnoEsercizio, QStringLiteral("2026"));
        if (rimozione)
            return;

        db().executeScript(QStringLiteral("drop trigger Guasto"));
        ScriptedPrompter ancora;
        ancora.answer(Prompter::Answer::Ok);
        ancora.answer(Prompter::Answer::Ok);
        QVERIFY(chiudi(ancora));
        QCOMPARE(db().scalar(QStringLiteral("select SaldoEntrate from Clienti where Id = ?"), {m_anna}).toDouble(), 130.8);
        QCOMPARE(admin::LeggiProgressivi(db(), QStringLiteral("2026"))->entrata, soldi("1583.6"));
    }

    void annoNonValido()
    {
        ScriptedPrompter p;
        const QString prima = fotografia(db());
        QVERIFY(!admin::ChiudiAnno(db(), p, QStringLiteral("202"), Finestra, Oggi));
        QCOMPARE(p.texts(), QStringList{TestoLingua("M0131")});
        QVERIFY(p.questions.isEmpty());
        QCOMPARE(fotografia(db()), prima);
    }

    // The cancelled movements of every year go, whatever the year named; the rest stays.
    void rimuoviAnnullati()
    {
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        p.answer(Prompter::Answer::Ok);
        QVERIFY(admin::RimuoviAnnullati(db(), p, QStringLiteral("2026")));
        QCOMPARE(p.questions, (QStringList{TestoLingua("M0371") + QStringLiteral(" 2026\n\n .") + TestoLingua("M0123"), seconda()}));
        QVERIFY(p.messages.isEmpty());
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni where Annullato <> 0")).toInt(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 3);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 8);
        verificaConteggi(db());
    }

    // A closing killed at random moments, as by a power cut: the file is then
    // wholly as before or wholly as after, never in between.
    void chiusuraInterrotta()
    {
        // Enough rows that the closing takes a while to kill.
        db().executeScript(QStringLiteral(
            "with recursive n(i) as (select 1 union all select i + 1 from n where i < 3000) "
            "insert into Clienti (Cognome, SaldoEntrate) select 'C' || i, i / 100.0 from n;"
            "with recursive n(i) as (select 1 union all select i + 1 from n where i < 20000) "
            "insert into Cassa (IdCliente, Data, Entrata, Uscita, Esercizio) "
            "select i % 3100, '2026-0' || (1 + i % 9) || '-1' || (i % 10) || ' 00:00:00', (i % 977) / 100.0, (i % 13) / 4.0, "
            "case when i % 10 = 0 then '2025' else '2026' end from n;"
            "with recursive n(i) as (select 1 union all select i + 1 from n where i < 30000) "
            "insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, Importo, Entrato, Annullato, Contabilizzato) "
            "select '2026', i, '2026-04-01 08:00:00', 'XY' || i, 20000, i % 500 = 0, -(i % 37 = 0), -(i % 7 <> 0) from n;"));
        const QString originale = m_db->path() + QStringLiteral(".orig");
        store::Connections::closeAll();
        QVERIFY(QFile::copy(m_db->path(), originale));

        const auto chiudiIn = [](const QString &path) {
            store::Database d(path, QLatin1String(store::DatabaseKey));
            ScriptedPrompter p;
            p.answer(Prompter::Answer::Ok);
            p.answer(Prompter::Answer::Ok);
            return admin::ChiudiAnno(d, p, QStringLiteral("2026"), Finestra, Oggi).has_value();
        };
        const auto foto = [](const QString &path) {
            store::Database d(path, QLatin1String(store::DatabaseKey));
            return fotografia(d);
        };
        const QString prima = foto(originale);
        QElapsedTimer t;
        t.start();
        QVERIFY(chiudiIn(m_db->path()));
        const qint64 durata = std::max<qint64>(t.nsecsElapsed() / 1000, 1000); // microseconds
        const QString dopo = foto(m_db->path());
        QVERIFY(dopo != prima);

        const quint32 seme = QRandomGenerator::global()->generate();
        qInfo("closing takes %lld us; seed %u", durata, seme);
        QRandomGenerator caso(seme);
        constexpr int Giri = 6;
        int uccise = 0, interi = 0;
        for (int giro = 0; giro < Giri; ++giro) {
            QFile::remove(m_db->path());
            QVERIFY(QFile::copy(originale, m_db->path()));
            const pid_t figlio = ::fork();
            if (figlio == 0) {
                const bool fatto = chiudiIn(m_db->path());
                ::_exit(fatto ? 0 : 1);
            }
            ::usleep(useconds_t(caso.bounded(durata + durata / 5)));
            ::kill(figlio, SIGKILL);
            int stato = 0;
            QCOMPARE(::waitpid(figlio, &stato, 0), figlio);
            uccise += WIFSIGNALED(stato);
            interi += WIFEXITED(stato) && WEXITSTATUS(stato) == 0;
            const QString ora = foto(m_db->path());
            QVERIFY2(ora == prima || ora == dopo, qPrintable(QStringLiteral("round %1: the file is half closed").arg(giro)));
            store::Database d(m_db->path(), QLatin1String(store::DatabaseKey));
            verificaConteggi(d);
        }
        QCOMPARE(uccise + interi, Giri);
        QVERIFY(uccise > 0);
    }
};

QTEST_GUILESS_MAIN(TestChiusura)
#include "tst_chiusura.moc"
