// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/Filtro.h"

#include "reports/engine/CrystalReport.h"
#include "reports/ui/VisoreAnteprima.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/TestoCasella.h"
#include "reports/formula/Formula.h"
#include "store/Database.h"
#include "store/Recordset.h"


#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using forms::CasellaFiltro;
using forms::TipoCasella;

Q_DECLARE_METATYPE(forms::CasellaFiltro)

namespace {

const QString Vista = QStringLiteral("Q_Clienti_Utenti");
const QString Lungo = QString(10000, QLatin1Char('L'));

CasellaFiltro casella(const QString &campo, TipoCasella tipo, const QString &valore, const QString &al = {},
                      const QStringList &altri = {})
{
    CasellaFiltro k;
    k.campo = campo;
    k.didascalia = campo == QLatin1String("DataUltimoPagamento") ? QStringLiteral("Pagato") : CasellaFiltro::nomeFormula(campo);
    k.tipo = tipo;
    k.valore = valore;
    k.valoreAl = al;
    k.altriCampi = altri;
    return k;
}

// The view's rows as the report engine sees them, by the view's own column names;
// the row being evaluated is the one selezionate() points at.
struct Righe final : reports::Ambito, reports::Riga {
    QStringList colonne;
    QVector<QVector<reports::Valore>> righe;
    const QVector<reports::Valore> *corrente = nullptr;

    explicit Righe(store::Database &db)
    {
        store::Recordset rs(db, QStringLiteral("select * from Q_Clienti_Utenti order by Id"));
        for (const store::FieldInfo &f : rs.fields())
            colonne << f.name;
        for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext()) {
            QVector<reports::Valore> r;
            for (int i = 0; i < colonne.size(); ++i)
                r << reports::Valore::daVariant(rs.value(i));
            righe << r;
        }
    }
    int campo(const QString &tabella, const QString &nome) const override
    {
        if (tabella.compare(Vista, Qt::CaseInsensitive) != 0)
            return -1;
        for (int i = 0; i < colonne.size(); ++i)
            if (colonne.at(i).compare(nome, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
    int formula(const QString &) const override { return -1; }
    const reports::Valore &campo(int i) const override { return corrente->at(i); }
    reports::Valore formula(int) const override { return {}; }

    // The surnames of the rows the formula selects.
    QStringList selezionate(const QString &testo)
    {
        const reports::Formula f = reports::Formula::compila(testo, *this); // throws on a bad text
        const int cognome = campo(Vista, QStringLiteral("Cognome"));
        QStringList r;
        for (const QVector<reports::Valore> &riga : std::as_const(righe)) {
            corrente = &riga;
            if (f.seleziona(*this))
                r << riga.at(cognome).testo();
        }
        return r;
    }
};

} // namespace

class TestFiltro : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    QStringList m_stato;

    QStringList elenco(const QString &where)
    {
        store::Recordset rs(frame::basedati(), QStringLiteral("select * from Q_Clienti_Utenti ") + where + QStringLiteral(" order by Id"));
        QStringList r;
        for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
            r << rs.value(QStringLiteral("Cognome")).toString();
        return r;
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        frame::pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");
        m_stato.clear();
        frame::pub().statusSink = [this](const QString &t) { m_stato << t; };
        const struct {
            const char *cognome, *cel, *casa, *cap, *pagato;
            double canone;
        } clienti[] = {{"O'Brien", "333 1234567", nullptr, "10100", "2026-03-01 00:00:00", 50},
                       {"Rossi", nullptr, "030 991234", "9000", "2026-03-31 00:00:00", 120.5},
                       {"100% Auto", nullptr, nullptr, nullptr, "2026-04-01 00:00:00", 0}, {"Auto_Ricambi", "12 55", nullptr, nullptr, nullptr, 80},
                       {"AutoXRicambi", nullptr, nullptr, nullptr, "2026-02-28 00:00:00", 200}, {"Back\\slash", nullptr, nullptr, nullptr, nullptr, 10},
                       {"[Bracket]", nullptr, nullptr, nullptr, nullptr, 10}, {"Num#1", nullptr, nullptr, nullptr, nullptr, 10},
                       {"Star*Power", nullptr, nullptr, nullptr, nullptr, 10}, {"Élise", nullptr, nullptr, nullptr, nullptr, 10},
                       {"élan", nullptr, nullptr, nullptr, nullptr, 10}, {"Zürich", nullptr, nullptr, nullptr, nullptr, 10}};
        store::Database &db = frame::basedati();
        const QString ins = QStringLiteral("insert into Clienti (Cognome, Nome, [Tel Cel], [Tel Casa], Cap, DataUltimoPagamento, Canone) "
                                           "values (?, 'N', ?, ?, ?, ?, ?)");
        auto t = [](const char *s) { return s ? QVariant(QString::fromUtf8(s)) : QVariant(); };
        for (const auto &c : clienti)
            db.execute(ins, {t(c.cognome), t(c.cel), t(c.casa), t(c.cap), t(c.pagato), c.canone});
        db.execute(ins, {Lungo, QVariant(), QVariant(), QVariant(), QVariant(), 10});
    }
    void cleanup()
    {
        frame::pub().statusSink = nullptr;
        m_db.reset();
    }

    void testi_data()
    {
        colonne<QVector<CasellaFiltro>, int, QString, QString, QString>({"caselle", "modo", "where", "formula", "descrizione"});
        auto r = [](const char *nome, const QVector<CasellaFiltro> &k, int modo, const QString &w, const QString &f, const QString &d) {
            QTest::newRow(nome) << k << modo << (w.isEmpty() ? w : QStringLiteral("where ") + w) << f << d;
        };
        const QVector<CasellaFiltro> ros{casella(QStringLiteral("Cognome"), TipoCasella::Testo, QStringLiteral("Ros"))};
        const QString left = QStringLiteral(" UpperCase(Left({Q_Clienti_Utenti.Cognome},3))='ROS'"), c = "Q_Clienti_Utenti.Cognome";
        const QString u = "UpperCase({Q_Clienti_Utenti.Cognome})";
        r("starts with", ros, 0, c + " like 'Ros%' escape '\\'", left, "Cognome inizia per -Ros-");
        r("equals", ros, 1, c + " = 'Ros'", u + " = 'ROS'", "Cognome = Ros");
        r("contains", ros, 2, c + " like '%Ros%' escape '\\'", left, "Cognome contiene -Ros-"); // on paper as starts with
        r("from", ros, 3, c + " >= 'Ros'", u + " >= 'ROS'", "Cognome >= Ros");
        r("up to", ros, 4, c + " <= 'Ros'", u + " <= 'ROS'", "Cognome <= Ros");
        r("unknown mode", ros, 9, c + " like 'Ros%' escape '\\'", left, "Cognome inizia per -Ros-");
        r("accented field, quote, wildcards", {casella(QStringLiteral("[Località]"), TipoCasella::Testo, QStringLiteral("d'A%_\\"))}, 0,
          "Q_Clienti_Utenti.[Località] like 'd''A\\%\\_\\\\%' escape '\\'", " UpperCase(Left({Q_Clienti_Utenti.Località},6))='D''A%_\\'",
          "Località inizia per -d'A%_\\-");
        r("telephones", {casella(QStringLiteral("Tel Cel"), TipoCasella::Testo, QStringLiteral("12"), {}, {QStringLiteral("Tel Casa")})}, 2,
          "(Q_Clienti_Utenti.[Tel Cel] like '%12%' escape '\\' or Q_Clienti_Utenti.[Tel Casa] like '%12%' escape '\\')",
          "( UpperCase(Left({Q_Clienti_Utenti.Tel Cel},2))='12' or  UpperCase(Left({Q_Clienti_Utenti.Tel Casa},2))='12')", "Tel Cel contiene -12-");
        const QString d = QStringLiteral("DataUltimoPagamento"), w = "Q_Clienti_Utenti.DataUltimoPagamento", f = "{Q_Clienti_Utenti.DataUltimoPagamento}";
        r("date range", {casella(d, TipoCasella::Data, QStringLiteral("1/3/2026"), QStringLiteral("31/03/2026"))}, 2,
          w + " >= '2026-03-01 00:00:00' and " + w + " <= '2026-03-31 00:00:00'", f + ">= date(2026,03,01) and " + f + "<= date(2026,03,31)",
          "Pagato => 1/3/2026, Pagato <= 31/03/2026");
        r("one day", {casella(d, TipoCasella::Data, QStringLiteral("01/03/2026"), QStringLiteral("1-3-26"))}, 0,
          w + " >= '2026-03-01 00:00:00' and " + w + " <= '2026-03-01 00:00:00'", f + ">= date(2026,03,01) and " + f + "<= date(2026,03,01)",
          "Pagato = 01/03/2026");
        r("upper date only", {casella(d, TipoCasella::Data, {}, QStringLiteral("2026-02-28"))}, 1, w + " <= '2026-02-28 00:00:00'",
          f + "<= date(2026,02,28)", "Pagato <= 2026-02-28");
        r("numbers", {casella(QStringLiteral("Canone"), TipoCasella::Numero, QStringLiteral("50"), QStringLiteral("120,5"))}, 3,
          "Q_Clienti_Utenti.Canone>=50 and Q_Clienti_Utenti.Canone<=120.5", "{Q_Clienti_Utenti.Canone} >= 50 and {Q_Clienti_Utenti.Canone} <= 120.5",
          "Canone >= 50, Canone <= 120,5");
        r("not a number", {casella(QStringLiteral("Canone"), TipoCasella::Numero, QStringLiteral("1e5; drop"))}, 0, "0=1", "false",
          "Canone >= 1e5; drop");
        // Texts come first, then dates, then numbers, whatever the order of the boxes.
        r("mixed", {casella(QStringLiteral("Canone"), TipoCasella::Numero, {}, QStringLiteral("-3")), casella(d, TipoCasella::Data, QStringLiteral("28/02/2026")),
                    casella(QStringLiteral("Nome"), TipoCasella::Testo, QString()), casella(QStringLiteral("Targa"), TipoCasella::Testo, QStringLiteral("ab"))},
          1, "Q_Clienti_Utenti.Targa = 'ab' and " + w + " >= '2026-02-28 00:00:00' and Q_Clienti_Utenti.Canone<=-3",
          "UpperCase({Q_Clienti_Utenti.Targa}) = 'AB' and " + f + ">= date(2026,02,28) and {Q_Clienti_Utenti.Canone} <= -3",
          "Targa = ab, Pagato => 28/02/2026, Canone <= -3");
        r("empty panel", {casella(QStringLiteral("Cognome"), TipoCasella::Testo, {})}, 0, "", "", "");
    }
    void testi()
    {
        QFETCH(QVector<CasellaFiltro>, caselle); QFETCH(int, modo);
        ScriptedPrompter p;
        const forms::Filtro f = forms::CostruisciFiltro(Vista, caselle, modo, p);
        QVERIFY(f.valido);
        QTEST(f.where, "where");
        QTEST(f.formula, "formula");
        QTEST(f.descrizione, "descrizione");
        QVERIFY(p.messages.isEmpty());
        QCOMPARE(m_stato.value(0), frame::TestoLingua("M0012"));
        // Both texts run: the query in the database, the formula compiled over the view's columns.
        Righe righe(frame::basedati());
        QVERIFY(elenco(f.where).size() <= righe.righe.size());
        QVERIFY(righe.selezionate(f.formula).size() <= righe.righe.size());
    }

    // The rows the list and the paper select; in print mode a contains match narrows as starts with,
    // and dates and numbers select the same rows in both, at midnight.
    void righeSelezionate_data()
    {
        colonne<CasellaFiltro, int, QStringList, QStringList>({"k", "modo", "elenco", "stampa"});
        const QStringList obrien{QStringLiteral("O'Brien")}, nessuno, rossi{QStringLiteral("Rossi")};
        auto r = [](const char *nome, const CasellaFiltro &k, int modo, const QStringList &elenco, const QStringList &stampa) {
            QTest::newRow(nome) << k << modo << elenco << stampa;
        };
        auto c = [](int modo, const QString &v) { return std::pair{casella(QStringLiteral("Cognome"), TipoCasella::Testo, v), modo}; };
        const struct {
            const char *nome;
            std::pair<CasellaFiltro, int> k;
            QStringList elenco, stampa;
        } testi[] = {
            {"quote starts", c(0, "o'"), obrien, obrien}, {"quote contains", c(2, "'"), obrien, nessuno},
            {"quote equals", c(1, "'; drop table Clienti; --"), nessuno, nessuno}, {"percent", c(0, "100%"), {"100% Auto"}, {"100% Auto"}},
            {"percent contains", c(2, "%"), {"100% Auto"}, nessuno}, {"underscore", c(0, "auto_"), {"Auto_Ricambi"}, {"Auto_Ricambi"}},
            {"backslash", c(0, "Back\\"), {"Back\\slash"}, {"Back\\slash"}}, {"bracket", c(0, "["), {"[Bracket]"}, {"[Bracket]"}},
            {"hash contains", c(2, "#"), {"Num#1"}, nessuno}, {"star", c(0, "*"), nessuno, nessuno},
            {"star contains", c(2, "r*p"), {"Star*Power"}, nessuno}, {"accent, any case", c(0, "É"), {"Élise", "élan"}, {"Élise", "élan"}},
            {"umlaut contains", c(2, "ÜR"), {"Zürich"}, nessuno},
            // The list keeps the database's comparison (text columns are case-blind), paper compares in capitals.
            {"equals other case", c(1, "rossi"), rossi, rossi}, {"equals accent", c(1, "ZÜRICH"), {"Zürich"}, {"Zürich"}},
            // Case-blind order puts "É" with "E" and "[" before letters; capitals order them by code.
            {"from", c(3, "s"), {"Star*Power", "Zürich"}, {"[Bracket]", "Star*Power", "Élise", "élan", "Zürich"}},
            {"ten thousand", c(0, Lungo), {Lungo}, {Lungo}}, {"ten thousand plus", c(2, Lungo + QLatin1Char('\'')), nessuno, nessuno}};
        for (const auto &t : testi)
            r(t.nome, t.k.first, t.k.second, t.elenco, t.stampa);
        const QStringList tel{QStringLiteral("Tel Casa")};
        r("from compares as text", casella(QStringLiteral("Cap"), TipoCasella::Testo, QStringLiteral("9")), 3, rossi, rossi);
        r("telephones contain", casella(QStringLiteral("Tel Cel"), TipoCasella::Testo, QStringLiteral("1234"), {}, tel), 2,
          {"O'Brien", "Rossi"}, nessuno);
        r("telephones start", casella(QStringLiteral("Tel Cel"), TipoCasella::Testo, QStringLiteral("03"), {}, tel), 0, rossi, rossi);
        const QString d = QStringLiteral("DataUltimoPagamento"), n = QStringLiteral("Canone");
        const QStringList marzo{"O'Brien", "Rossi"}, canone{"O'Brien", "Rossi", "Auto_Ricambi"}, ultimo{"AutoXRicambi"};
        r("march", casella(d, TipoCasella::Data, QStringLiteral("01/03/2026"), QStringLiteral("31/03/2026")), 0, marzo, marzo);
        r("from march", casella(d, TipoCasella::Data, QStringLiteral("1.3.2026")), 0, marzo + QStringList{"100% Auto"},
          marzo + QStringList{"100% Auto"});
        r("one day", casella(d, TipoCasella::Data, QStringLiteral("28/02/2026"), QStringLiteral("28/02/2026")), 0, ultimo, ultimo);
        r("copied upper bound", casella(d, TipoCasella::Data, QStringLiteral("28/02/2026"), *forms::DataAlDopoDal(QStringLiteral("28/02/2026"), true)),
          0, ultimo, ultimo);
        r("fee", casella(n, TipoCasella::Numero, QStringLiteral("50"), QStringLiteral("120,5")), 0, canone, canone);
        r("fee text", casella(n, TipoCasella::Numero, QStringLiteral("'50'")), 0, nessuno, nessuno);
        r("fee huge", casella(n, TipoCasella::Numero, QString(400, QLatin1Char('9'))), 0, nessuno, nessuno);
    }
    void righeSelezionate()
    {
        QFETCH(CasellaFiltro, k); QFETCH(int, modo);
        ScriptedPrompter p;
        const forms::Filtro f = forms::CostruisciFiltro(Vista, {k}, modo, p);
        QVERIFY(f.valido);
        QTEST(elenco(f.where), "elenco");
        QTEST(Righe(frame::basedati()).selezionate(f.formula), "stampa");
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Clienti")).toInt(), 13);
    }

    void dataNonValida_data()
    {
        colonne<QString, QString, bool>({"dal", "al", "nelAl"});
        QTest::newRow("31 February") << "31/02/2026" << "" << false;
        QTest::newRow("words") << "yesterday" << "" << false;
        QTest::newRow("quote") << "1/3/2026'" << "" << false;
        QTest::newRow("upper") << "01/03/2026" << "01/13/2026" << true;
        QTest::newRow("ten thousand") << "" << QString(10000, QLatin1Char('1')) << true;
        QTest::newRow("hash") << "#1/3/2026#" << "" << false;
    }
    // A box that isn't a date stops the whole search, after any text criterion.
    void dataNonValida()
    {
        QFETCH(QString, dal); QFETCH(QString, al);
        ScriptedPrompter p;
        const QVector<CasellaFiltro> k{casella(QStringLiteral("Cognome"), TipoCasella::Testo, QStringLiteral("R")),
                                       casella(QStringLiteral("DataUltimoPagamento"), TipoCasella::Data, dal, al)};
        const forms::Filtro f = forms::CostruisciFiltro(Vista, k, 0, p);
        QVERIFY(!f.valido);
        QCOMPARE(f.casellaErrata, 1);
        QTEST(f.erroreNelLimiteAl, "nelAl");
        QVERIFY(f.where.isEmpty() && f.formula.isEmpty() && f.descrizione.isEmpty());
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, frame::TestoLingua("M0008"));
        QCOMPARE(p.messages.first().icon, frame::Prompter::Icon::Exclamation);
    }

    // What a date ("d") or time ("t") box reads from a typed text (no value: refused, or empty) and shows back.
    void testoCasella_data()
    {
        QTest::addColumn<QString>("riga"); // kind, date order, typed, value as ISO, shown
        for (const char *r : {"d|dd/mm/yyyy|01/11/2026|2026-11-01|01/11/2026", "d|dd/mm/yyyy|01112026|2026-11-01|01/11/2026",
                              "d|dd/mm/yyyy|011126|2026-11-01|01/11/2026", "d|dd/mm/yyyy|1.11.26|2026-11-01|01/11/2026",
                              "d|dd/mm/yyyy|2026-11-01|2026-11-01|01/11/2026", "d|mm/dd/yyyy|11012026|2026-11-01|11/01/2026",
                              "d|mm/dd/yyyy|11/1/2026|2026-11-01|11/01/2026", "d|dd/mm/yyyy|  ||", "d|dd/mm/yyyy|31022026||",
                              "d|dd/mm/yyyy|0111202||", "d|mm/dd/yyyy|13012026||", "d|dd/mm/yyyy|tomorrow||",
                              "t||830|08:30:00|08:30:00", "t||8|08:00:00|08:00:00", "t||083015|08:30:15|08:30:15",
                              "t||8.30|08:30:00|08:30:00", "t||23:59:59|23:59:59|23:59:59", "t|| ||", "t||2400||", "t||08:60||",
                              "t||8:5||", "t||1234567||"})
            QTest::newRow(r) << QString::fromLatin1(r);
    }
    void testoCasella()
    {
        QFETCH(QString, riga);
        const QStringList c = riga.split(QLatin1Char('|'));
        frame::pub().FormatoData = c[1];
        const bool vuoto = c[2].trimmed().isEmpty();
        if (c[0] == QLatin1String("d")) {
            const frame::Lettura<QDate> l = frame::LeggeTestoData(c[2]);
            QCOMPARE(l.valida, vuoto || !c[3].isEmpty());
            QCOMPARE(l.valore.value_or(QDate()).toString(Qt::ISODate), c[3]);
            QCOMPARE(frame::TestoCasellaData(l.valore), c[4]);
        } else {
            const frame::Lettura<QTime> l = frame::LeggeTestoOra(c[2]);
            QCOMPARE(l.valida, vuoto || !c[3].isEmpty());
            QCOMPARE(l.valore.value_or(QTime()).toString(Qt::ISODate), c[3]);
            QCOMPARE(frame::TestoCasellaOra(l.valore, true), c[4]);
        }
    }

    // Keys that can never make a value are refused as they are typed.
    void tastiRifiutati()
    {
        for (const char *t : {"", "0111", "01/11/", "1-1-2026", "2026-11-01"})
            QVERIFY2(frame::PuoDiventareData(QLatin1String(t)), t);
        for (const char *t : {"01a", "01//11", "011120261", "01/11/20266", "01:11"})
            QVERIFY2(!frame::PuoDiventareData(QLatin1String(t)), t);
        for (const char *t : {"", "8", "08:", "08.30.1", "083015"})
            QVERIFY2(frame::PuoDiventareOra(QLatin1String(t)), t);
        for (const char *t : {"8a", "08:300", "0830151", "8/30"})
            QVERIFY2(!frame::PuoDiventareOra(QLatin1String(t)), t);
        for (const char *t : {"-", "-12,", "+1.5", ".5"}) // a sign and a separator in amounts only
            QVERIFY2(frame::PuoDiventareNumero(QLatin1String(t), true) && !frame::PuoDiventareNumero(QLatin1String(t), false), t);
        for (const char *t : {"12a", "1.2.3", "1,2.3", "1e5", "--1"})
            QVERIFY2(!frame::PuoDiventareNumero(QLatin1String(t), true), t);
        QVERIFY(frame::PuoDiventareNumero(QString(), false) && frame::PuoDiventareNumero(QStringLiteral("0123456789"), false));
    }

    void dateCopy()
    {
        QCOMPARE(forms::DataAlDopoDal(QStringLiteral("05/03/2026"), true), std::optional<QString>(QStringLiteral("05/03/2026")));
        QCOMPARE(forms::DataAlDopoDal(QStringLiteral("05/03/2026"), false), std::nullopt);
        QCOMPARE(forms::DataAlDopoDal(QStringLiteral("  "), true), std::nullopt);
    }

    void esito_data()
    {
        colonne<qint64, bool, int, bool>({"righe", "automatico", "esito", "messaggio"});
        QTest::newRow("one, auto") << qint64(1) << true << int(forms::EsitoRicerca::Posiziona) << false;
        QTest::newRow("one") << qint64(1) << false << int(forms::EsitoRicerca::MostraElenco) << false;
        QTest::newRow("none, auto") << qint64(0) << true << int(forms::EsitoRicerca::NessunaRiga) << true;
        QTest::newRow("none") << qint64(0) << false << int(forms::EsitoRicerca::NessunaRiga) << true;
        QTest::newRow("many, auto") << qint64(7) << true << int(forms::EsitoRicerca::MostraElenco) << false;
    }
    void esito()
    {
        QFETCH(qint64, righe); QFETCH(bool, automatico); QFETCH(bool, messaggio);
        ScriptedPrompter p;
        QTEST(int(forms::EsitoElenco(righe, automatico, p)), "esito");
        QCOMPARE(p.messages.size(), messaggio ? 1 : 0);
        if (messaggio) {
            QCOMPARE(p.messages.first().text, frame::TestoLingua("M0009"));
            QCOMPARE(p.messages.first().icon, frame::Prompter::Icon::Stop);
        }
        QCOMPARE(m_stato, QStringList{QString()});
    }

    // Printing runs template Elenco over the same rows, with the criteria in words and the title.
    void stampa()
    {
        QTemporaryDir out;
        ScriptedPrompter p;
        reports::VisoreAnteprima visore;
        reports::CrystalReport report(p, &visore);
        report.setKeepLayout(true);
        report.setPrintFileName(out.filePath(QStringLiteral("elenco.pdf")));
        const forms::Filtro f = forms::CostruisciFiltro(Vista, {casella(QStringLiteral("Cognome"), TipoCasella::Testo, QStringLiteral("o'b"))}, 2, p);
        reports::Lancio suFile = forms::LancioFiltro(f);
        suFile.destinazione = reports::Lancio::ToFile;
        QVERIFY2(report.esegui(suFile), qPrintable(report.lastError()));
        QCOMPARE(report.lastRowCount(), 1);
        const QStringList testata = report.laidOut(QStringLiteral("reportHeader")).value(0).texts;
        QVERIFY(testata.contains(QStringLiteral("Cognome contiene -o'b-")));
        QVERIFY(testata.contains(QStringLiteral("Dati elaborati secondo i seguenti  criteri:")));
        QVERIFY(testata.contains(frame::TestoLingua("M0327")));

        // No filter: every row, no heading of criteria; on screen at 100%.
        QVERIFY(report.esegui(forms::LancioFiltro(forms::CostruisciFiltro(Vista, {}, 0, p))));
        QCOMPARE(report.lastRowCount(), 13);
        QVERIFY(!report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Dati elaborati secondo i seguenti  criteri:")));
        QVERIFY(visore.finestra());
        QCOMPARE(visore.finestra()->zoom(), 1.0);
        visore.finestra()->close();
        QVERIFY(p.messages.isEmpty());
    }
};

QTEST_MAIN(TestFiltro)
#include "tst_filtro.moc"
