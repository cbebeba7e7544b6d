// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "parking/Correzione.h"
#include "parking/Ricerca.h"
#include "store/Database.h"
#include "store/Recordset.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"

#include <QtTest>

#include <algorithm>
#include <memory>

using frame::Prompter;
using frame::pub;
using parking::FuocoRicerca;
using parking::OpzioneElenco;
using parking::PannelloRicerca;

Q_DECLARE_METATYPE(OpzioneElenco)

namespace {

// One movement: year, number, entry, plate, inside, cancelled, posted.
struct Riga {
    const char *anno;
    int progressivo;
    const char *dataora;
    QString targa;
    bool entrato, annullato, contabilizzato;
};

// Every state, two years out of id order, and plates that look like patterns.
const QList<Riga> Righe = {
    {"2025", 7, "2025-12-30 10:00:00", QStringLiteral("AB123CD"), false, false, true},  // 1 posted
    {"2026", 1, "2026-03-10 08:00:00", QStringLiteral("AB999ZZ"), true, false, false},  // 2 inside
    {"2026", 2, "2026-03-10 09:30:00", QStringLiteral("ab555xx"), false, false, false}, // 3 out, to be posted
    {"2026", 3, "2026-03-10 23:59:59", QStringLiteral("O'HARA1"), true, true, false},   // 4 cancelled inside
    {"2026", 4, "2026-03-11 00:00:00", QStringLiteral("ÀB777CD"), true, false, false},  // 5 inside, next midnight
    {"2026", 5, "2026-03-11 12:00:00", QStringLiteral("50%_OFF"), false, true, false},  // 6 cancelled out
    {"2026", 6, "2026-03-12 12:00:00", QStringLiteral("X_Y\\Z12"), true, false, false}, // 7 inside
    {"2025", 1, "2025-01-05 09:00:00", QStringLiteral("AB100AA"), false, false, true},  // 8 posted
    {"2026", 7, "2026-03-12 13:00:00", QStringLiteral("ZZ[1]#*"), false, false, false}, // 9 out
    {"2026", 8, "2026-03-12 14:00:00", QStringLiteral("ZZ@1~`{"), false, false, false}, // 10 out
    {"2026", 9, "2026-03-12 15:00:00", QStringLiteral("zz~1"), false, false, false},    // 11 out
    {"2026", 10, "2026-03-12 16:00:00", QStringLiteral("AC000AA"), false, false, false}, // 12 out
};

using Ids = QList<qint64>;

} // namespace

class TestRicerca : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;

    store::Database &db() { return frame::basedati(); }

    // The rows of a list source, in its order.
    Ids righe(const parking::SorgenteElenco &s)
    {
        store::Recordset rs(db(), s.sql, s.parametri);
        Ids ids;
        for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
            ids << rs.key().toLongLong();
        return ids;
    }
    // The counter of a list over the whole register tells what reading the list tells.
    bool contaComeLegge(OpzioneElenco opzione)
    {
        const parking::SorgenteElenco s = parking::ElencoMovimenti(opzione);
        const Ids ids = righe(s);
        bool giusto = s.contatore.total() == ids.size() && !s.contatore.at(ids.size()).isValid();
        for (qint64 i = 0; i < ids.size(); ++i)
            giusto = giusto && s.contatore.at(i).toLongLong() == ids[i];
        Ids tutti{0, 99999}; // and two that are no movement
        for (store::Statement st = db().prepare(QStringLiteral("select id from Movimentazioni")); st.step();)
            tutti << st.value(0).toLongLong();
        for (const qint64 id : std::as_const(tutti)) {
            const std::optional<qint64> prima = s.contatore.before(id);
            giusto = giusto && (ids.contains(id) ? prima == ids.indexOf(id) : !prima);
        }
        return giusto;
    }
    PannelloRicerca pannello(const QString &numero, const QString &anno, const QString &targa, const QString &data,
                             OpzioneElenco opzione = OpzioneElenco::Tutti)
    {
        return {numero, anno, targa, data, opzione};
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        for (const Riga &r : Righe)
            db().execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, "
                                        "Annullato, Contabilizzato, IdUtente) values (?, ?, ?, ?, '01', ?, ?, ?, 1)"),
                         {QString::fromLatin1(r.anno), r.progressivo, QString::fromLatin1(r.dataora), r.targa,
                          r.entrato ? -1 : 0, r.annullato ? -1 : 0, r.contabilizzato ? -1 : 0});
    }
    void cleanup() { m_db.reset(); }

    void initialSourceIsEmpty() { QCOMPARE(righe(parking::SorgenteIniziale()), Ids{}); }

    void lists_data()
    {
        colonne<OpzioneElenco, QDate, Ids>({"opzione", "giorno", "attese"});
        QTest::newRow("all, by year then id") << OpzioneElenco::Tutti << QDate() << Ids{1, 8, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12};
        QTest::newRow("inside, cancelled too") << OpzioneElenco::Dentro << QDate() << Ids{2, 4, 5, 7};
        QTest::newRow("out") << OpzioneElenco::Usciti << QDate() << Ids{1, 8, 3, 6, 9, 10, 11, 12};
        QTest::newRow("all of a day, not the next midnight") << OpzioneElenco::Tutti << QDate(2026, 3, 10) << Ids{2, 3, 4};
        QTest::newRow("inside of a day") << OpzioneElenco::Dentro << QDate(2026, 3, 10) << Ids{2, 4};
        QTest::newRow("out of a day") << OpzioneElenco::Usciti << QDate(2026, 3, 11) << Ids{6};
        QTest::newRow("midnight opens its day") << OpzioneElenco::Dentro << QDate(2026, 3, 11) << Ids{5};
    }
    void lists()
    {
        QFETCH(OpzioneElenco, opzione); QFETCH(QDate, giorno); QFETCH(Ids, attese);
        QCOMPARE(righe(parking::ElencoMovimenti(opzione, giorno)), attese);
        QCOMPARE(bool(parking::ElencoMovimenti(opzione, giorno).contatore.total), !giorno.isValid());
        if (!giorno.isValid())
            QVERIFY(contaComeLegge(opzione));
    }

    // The counts follow every write to the register, across blocks of ids and
    // years without a value, and a file made before them gets them on first use.
    void countsFollowTheRegister()
    {
        const auto tutteGiuste = [&] {
            return contaComeLegge(OpzioneElenco::Tutti) && contaComeLegge(OpzioneElenco::Dentro) && contaComeLegge(OpzioneElenco::Usciti);
        };
        for (const int id : {4100, 9000, 13000})
            db().execute(QStringLiteral("insert into Movimentazioni (id, Anno, Entrato) values (?, ?, -1)"),
                         {id, id == 9000 ? QVariant() : QVariant(QStringLiteral("2025"))});
        QVERIFY(tutteGiuste());
        db().executeScript(QStringLiteral("update Movimentazioni set Entrato = 0 where id in (2, 9000); update Movimentazioni set Anno = '2024' "
                                          "where id = 13000; update Movimentazioni set id = 20000 where id = 4100; "
                                          "delete from Movimentazioni where id in (3, 9000)"));
        QVERIFY(tutteGiuste());

        db().executeScript(QStringLiteral("DROP TRIGGER ConteggiMovimenti_Cambia; DROP TABLE ConteggiMovimenti;"
                                          "DROP INDEX Movimentazioni_TargaAnno"));
        QVERIFY(tutteGiuste());
        QVERIFY(db().scalar(QStringLiteral("select 1 from sqlite_master where name = 'Movimentazioni_TargaAnno'")).isValid());
    }

    void search_data()
    {
        // chiave: 0: stays on the first row; -1: none; messaggio: the focus follows: the list, the number box or the date box
        colonne<QString, QString, QString, QString, OpzioneElenco, qint64, QString>(
            {"numero", "anno", "targa", "data", "opzione", "chiave", "messaggio"});
        const auto tutti = OpzioneElenco::Tutti, dentro = OpzioneElenco::Dentro;
        const QString nf = QStringLiteral("M0077"), bad = QStringLiteral("M0008");
        QTest::newRow("number and year") << "3" << "2026" << "" << "" << tutti << qint64(4) << "";
        QTest::newRow("number, other year") << "1" << "2025" << "" << "" << tutti << qint64(8) << "";
        QTest::newRow("number in two years: first by year") << "7" << "" << "" << "" << tutti << qint64(1) << "";
        QTest::newRow("number not found") << "99" << "2026" << "" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("number outside the option") << "2" << "2026" << "" << "" << dentro << qint64(-1) << nf;
        QTest::newRow("number blanks trimmed") << "  3 " << " 2026 " << "" << "" << tutti << qint64(4) << "";
        QTest::newRow("year only") << "" << "2026" << "" << "" << tutti << qint64(2) << "";
        QTest::newRow("nothing typed") << "" << "" << "" << "" << tutti << qint64(0) << "";
        QTest::newRow("plate and year") << "" << "2026" << "AB" << "" << tutti << qint64(2) << "";
        QTest::newRow("plate of a vehicle out, inside chosen") << "" << "" << "ab5" << "" << dentro << qint64(-1) << nf;
        QTest::newRow("plate from its first character only") << "" << "" << "123" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("day and number") << "3" << "2026" << "" << "10/03/2026" << tutti << qint64(4) << "";
        QTest::newRow("day excludes next midnight") << "4" << "2026" << "" << "10/03/2026" << tutti << qint64(-1) << nf;
        QTest::newRow("day in ISO") << "" << "" << "ab" << "2026-03-10" << tutti << qint64(2) << "";
        QTest::newRow("day two-digit year") << "" << "" << "O'" << "10/3/26" << dentro << qint64(4) << "";
        QTest::newRow("empty day") << "" << "" << "" << "01/01/2020" << tutti << qint64(-1) << nf;
        // Nasty input: a message or a clean miss, never an error nor a wrong row. Plates that
        // hold pattern letters are found by everyPrefixMatchesBruteForce.
        QTest::newRow("percent is literal") << "" << "" << "%" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("underscore is literal") << "" << "" << "_" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("star") << "" << "" << "*" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("bracket alone") << "" << "" << "[" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("hash alone") << "" << "" << "#" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("10,000 characters") << "" << "" << QString(10000, QLatin1Char('A')) << "" << tutti << qint64(-1) << nf;
        QTest::newRow("10,000 accents") << "" << "" << QString(10000, QChar(0xE0)) << "" << tutti << qint64(-1) << nf;
        QTest::newRow("number with letters") << "12abc" << "2026" << "" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("number with SQL") << "1 or 1=1" << "2026" << "" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("number too big") << QString(40, QLatin1Char('9')) << "" << "" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("year with SQL") << "1" << "2026' or '1'='1" << "" << "" << tutti << qint64(-1) << nf;
        QTest::newRow("not a date") << "3" << "2026" << "" << "tomorrow" << tutti << qint64(-1) << bad;
        QTest::newRow("impossible date") << "" << "" << "" << "31/02/2026" << tutti << qint64(-1) << bad;
        QTest::newRow("date with quote") << "" << "" << "" << "10/03/2026'" << tutti << qint64(-1) << bad;
    }
    void search()
    {
        QFETCH(QString, numero); QFETCH(QString, anno); QFETCH(QString, targa); QFETCH(QString, data);
        QFETCH(OpzioneElenco, opzione); QFETCH(qint64, chiave); QFETCH(QString, messaggio);
        const FuocoRicerca fuoco = messaggio.isEmpty() ? FuocoRicerca::Griglia
                                   : messaggio == QLatin1String("M0008") ? FuocoRicerca::Data : FuocoRicerca::Progressivo;
        PannelloRicerca p = pannello(numero, anno, targa, data, opzione);
        ScriptedPrompter prompter;
        const parking::EsitoRicerca e = parking::RicercaRapida(p, true, prompter);
        // The boxes are trimmed in place.
        QCOMPARE(QStringList({p.TxtProg, p.anno, p.targa}), QStringList({numero.trimmed(), anno.trimmed(), targa.trimmed()}));

        QCOMPARE(e.fuoco, fuoco);
        QCOMPARE(e.messaggio, messaggio.isEmpty() ? QString() : frame::TestoLingua(messaggio.toLatin1().constData()));
        QCOMPARE(prompter.messages.size(), messaggio.isEmpty() ? 0 : 1);
        if (!messaggio.isEmpty()) {
            QCOMPARE(prompter.messages[0].text, e.messaggio);
            QCOMPARE(prompter.messages[0].icon, fuoco == FuocoRicerca::Data ? Prompter::Icon::Exclamation : Prompter::Icon::Information);
        }
        if (messaggio == QLatin1String("M0008")) {
            QVERIFY(!e.eseguita);
            QVERIFY(e.elenco.sql.isEmpty());
            return;
        }
        QVERIFY(e.eseguita);
        QCOMPARE(e.contaRecord, fuoco == FuocoRicerca::Griglia);
        QCOMPARE(e.chiave.isValid() ? e.chiave.toLongLong() : (chiave == 0 ? 0 : -1), chiave);
        // The found row stands in the list and the window can make it current.
        store::Recordset rs(db(), e.elenco.sql, e.elenco.parametri);
        QCOMPARE(rs.isEmpty(), e.vuoto);
        if (chiave > 0) {
            QVERIFY(parking::PosizionaSu(rs, e.chiave));
            QCOMPARE(rs.key().toLongLong(), chiave);
        }
    }

    // Without CercaRiga an empty set shows M0078, a missed row in a non-empty set is no failure;
    // a silent search shows nothing at all.
    void withoutFindOrSilently()
    {
        PannelloRicerca p = pannello(QString(), QString(), QString(), QStringLiteral("01/01/2020"));
        ScriptedPrompter prompter;
        QCOMPARE(parking::RicercaRapida(p, false, prompter).fuoco, FuocoRicerca::Progressivo);
        QCOMPARE(prompter.messages.size(), 1);
        QCOMPARE(prompter.messages[0].text, frame::TestoLingua("M0078"));
        p = pannello(QStringLiteral("99"), QStringLiteral("2026"), QString(), QString());
        const auto f = parking::RicercaRapida(p, false, prompter);
        QVERIFY(f.fuoco == FuocoRicerca::Griglia && !f.chiave.isValid());
        p.data = QStringLiteral("01/01/2020");
        p.RicercaSilenziosa = true;
        const auto e = parking::RicercaRapida(p, true, prompter);
        QVERIFY(e.vuoto && e.messaggio.isEmpty() && e.fuoco == FuocoRicerca::Progressivo);
        QCOMPARE(prompter.messages.size(), 1);
    }

    // Each option sets its count line and searches silently, also when the list comes out empty.
    void optionSetsCountLineAndSearchesSilently()
    {
        using Caso = std::tuple<OpzioneElenco, const char *, Ids>;
        for (const auto &[opzione, riga, attese] : {Caso(OpzioneElenco::Dentro, "Vehicles inside: 3", {2, 4}),
                                                    Caso(OpzioneElenco::Tutti, "All movements", {2, 3, 4}),
                                                    Caso(OpzioneElenco::Usciti, "Vehicles out", {3})}) {
            for (const QString giorno : {"10/03/2026", "01/01/2020"}) {
                PannelloRicerca p = pannello(QString(), QStringLiteral("2026"), QString(), giorno);
                ScriptedPrompter prompter;
                const auto e = parking::ScegliOpzione(p, opzione, prompter);
                QCOMPARE(p.opzione, opzione);
                QCOMPARE(e.LblAuto, QString::fromLatin1(riga));
                QCOMPARE(parking::RigaConteggio(opzione), e.LblAuto);
                QCOMPARE(righe(e.ricerca.elenco), giorno.endsWith(QLatin1String("2020")) ? Ids{} : attese);
                QVERIFY(prompter.messages.isEmpty() && !p.RicercaSilenziosa);
            }
        }
    }

    void refreshKeepsTheDate()
    {
        pub().AnnoEsercizio = QStringLiteral("2026");
        PannelloRicerca p = pannello(QStringLiteral("5"), QStringLiteral("2024"), QStringLiteral("AB"), QStringLiteral("10/03/2026"));
        parking::AzzeraRicerca(p);
        QCOMPARE(QStringList({p.TxtProg, p.anno, p.targa, p.data}), QStringList({"", "2026", "", "10/03/2026"}));
    }

    // Every prefix of every plate finds what a plain case-folded comparison
    // finds, so the index bounds never hide a row.
    void everyPrefixMatchesBruteForce()
    {
        Ids ordine = righe(parking::ElencoMovimenti(OpzioneElenco::Tutti));
        for (const Riga &r : Righe) {
            for (int n = 1; n <= r.targa.size(); ++n) {
                const QString prefisso = n % 2 ? r.targa.left(n).toUpper() : r.targa.left(n).toLower();
                qint64 attesa = -1;
                for (qint64 id : std::as_const(ordine))
                    if (attesa < 0 && Righe[id - 1].targa.toCaseFolded().startsWith(prefisso.toCaseFolded()))
                        attesa = id;
                PannelloRicerca p = pannello(QString(), QString(), prefisso, QString());
                ScriptedPrompter prompter;
                const auto e = parking::RicercaRapida(p, true, prompter);
                QVERIFY2(e.chiave.isValid() && e.chiave.toLongLong() == attesa, qPrintable(prefisso));
            }
        }
    }

    void likeEscape()
    {
        QCOMPARE(frame::EscapeLike(QStringLiteral("a%b_c\\d'e")), QStringLiteral("a\\%b\\_c\\\\d'e"));
    }

    void datesInTheUsersOrder()
    {
        pub().FormatoData = QStringLiteral("mm/dd/yyyy");
        QCOMPARE(frame::LeggeData(QStringLiteral("03/10/2026")), std::optional<QDate>(QDate(2026, 3, 10)));
        QVERIFY(!frame::LeggeData(QStringLiteral("13/10/2026")));
        QVERIFY(!frame::LeggeData(QStringLiteral("03/10/202")));
        QVERIFY(!frame::LeggeData(QString(10000, QLatin1Char('1'))));
        QCOMPARE(frame::LeggeData(QStringLiteral("2026-03-10")), std::optional<QDate>(QDate(2026, 3, 10)));
    }
};

QTEST_GUILESS_MAIN(TestRicerca)
#include "tst_ricerca.moc"
