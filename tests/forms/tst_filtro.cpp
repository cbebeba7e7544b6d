// SPDX-License-Identifier: GPL-3.0-or-later
#include <Filtro.h>

#include <CrystalReport.h>
#include <Database.h>
#include <Formula.h>
#include <Language.h>
#include <PublicState.h>
#include <Recordset.h>
#include <Routines.h>

#include <ScriptedPrompter.h>
#include <TestDatabase.h>

#include <QPrintPreviewWidget>
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

// The view's rows as the report engine sees them, by the view's own column names.
struct Righe final : reports::Ambito {
    QStringList colonne;
    QVector<QVector<reports::Valore>> righe;
    QStringList cognomi;

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
            cognomi << rs.value(QStringLiteral("Cognome")).toString();
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

    struct Una final : reports::Riga {
        const QVector<reports::Valore> *v = nullptr;
        const reports::Valore &campo(int i) const override { return v->at(i); }
        reports::Valore formula(int) const override { return {}; }
    };
    QStringList selezionate(const QString &testo) const
    {
        const reports::Formula f = reports::Formula::compila(testo, *this); // throws on a bad text
        QStringList r;
        Una riga;
        for (int i = 0; i < righe.size(); ++i) {
            riga.v = &righe.at(i);
            if (f.seleziona(riga))
                r << cognomi.at(i);
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
        } clienti[] = {
            {"O'Brien", "333 1234567", nullptr, "10100", "2026-03-01 00:00:00", 50},
            {"Rossi", nullptr, "030 991234", "9000", "2026-03-31 00:00:00", 120.5},
            {"100% Auto", nullptr, nullptr, nullptr, "2026-04-01 00:00:00", 0},
            {"Auto_Ricambi", "12 55", nullptr, nullptr, nullptr, 80},
            {"AutoXRicambi", nullptr, nullptr, nullptr, "2026-02-28 00:00:00", 200},
            {"Back\\slash", nullptr, nullptr, nullptr, nullptr, 10},
            {"[Bracket]", nullptr, nullptr, nullptr, nullptr, 10},
            {"Num#1", nullptr, nullptr, nullptr, nullptr, 10},
            {"Star*Power", nullptr, nullptr, nullptr, nullptr, 10},
            {"Élise", nullptr, nullptr, nullptr, nullptr, 10},
            {"élan", nullptr, nullptr, nullptr, nullptr, 10},
            {"Zürich", nullptr, nullptr, nullptr, nullptr, 10},
        };
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
        QTest::addColumn<QVector<CasellaFiltro>>("caselle");
        QTest::addColumn<int>("modo");
        QTest::addColumn<QString>("where");
        QTest::addColumn<QString>("formula");
        QTest::addColumn<QString>("descrizione");
        const QVector<CasellaFiltro> ros{casella(QStringLiteral("Cognome"), TipoCasella::Testo, QStringLiteral("Ros"))};
        const QString left = QStringLiteral(" UpperCase(Left({Q_Clienti_Utenti.Cognome},3))='ROS'");
        QTest::newRow("starts with") << ros << 0 << "where Q_Clienti_Utenti.Cognome like 'Ros%' escape '\\'" << left << "Cognome inizia per -Ros-";
        QTest::newRow("equals") << ros << 1 << "where Q_Clienti_Utenti.Cognome = 'Ros'" << "UpperCase({Q_Clienti_Utenti.Cognome}) = 'ROS'"
                                << "Cognome = Ros";
        // On paper "contains" narrows as "starts with".
        QTest::newRow("contains") << ros << 2 << "where Q_Clienti_Utenti.Cognome like '%Ros%' escape '\\'" << left << "Cognome contiene -Ros-";
        QTest::newRow("from") << ros << 3 << "where Q_Clienti_Utenti.Cognome >= 'Ros'" << "UpperCase({Q_Clienti_Utenti.Cognome}) >= 'ROS'"
                              << "Cognome >= Ros";
        QTest::newRow("up to") << ros << 4 << "where Q_Clienti_Utenti.Cognome <= 'Ros'" << "UpperCase({Q_Clienti_Utenti.Cognome}) <= 'ROS'"
                               << "Cognome <= Ros";
        QTest::newRow("unknown mode") << ros << 9 << "where Q_Clienti_Utenti.Cognome like 'Ros%' escape '\\'" << left << "Cognome inizia per -Ros-";
        QTest::newRow("accented field, quote, wildcards")
            << QVector<CasellaFiltro>{casella(QStringLiteral("[Località]"), TipoCasella::Testo, QStringLiteral("d'A%_\\"))} << 0
            << "where Q_Clienti_Utenti.[Località] like 'd''A\\%\\_\\\\%' escape '\\'"
            << " UpperCase(Left({Q_Clienti_Utenti.Località},6))='D''A%_\\'" << "Località inizia per -d'A%_\\-";
        QTest::newRow("telephones")
            << QVector<CasellaFiltro>{casella(QStringLiteral("Tel Cel"), TipoCasella::Testo, QStringLiteral("12"), {}, {QStringLiteral("Tel Casa")})}
            << 2 << "where (Q_Clienti_Utenti.[Tel Cel] like '%12%' escape '\\' or Q_Clienti_Utenti.[Tel Casa] like '%12%' escape '\\')"
            << "( UpperCase(Left({Q_Clienti_Utenti.Tel Cel},2))='12' or  UpperCase(Left({Q_Clienti_Utenti.Tel Casa},2))='12')"
            << "Tel Cel contiene -12-";
        const QString dataCampo = QStringLiteral("DataUltimoPagamento");
        QTest::newRow("date range") << QVector<CasellaFiltro>{casella(dataCampo, TipoCasella::Data, QStringLiteral("1/3/2026"), QStringLiteral("31/03/2026"))}
                                    << 2
                                    << "where Q_Clienti_Utenti.DataUltimoPagamento >= '2026-03-01 00:00:00' and "
                                       "Q_Clienti_Utenti.DataUltimoPagamento <= '2026-03-31 00:00:00'"
                                    << "{Q_Clienti_Utenti.DataUltimoPagamento}>= date(2026,03,01) and "
                                       "{Q_Clienti_Utenti.DataUltimoPagamento}<= date(2026,03,31)"
                                    << "Pagato => 1/3/2026, Pagato <= 31/03/2026";
        QTest::newRow("one day") << QVector<CasellaFiltro>{casella(dataCampo, TipoCasella::Data, QStringLiteral("01/03/2026"), QStringLiteral("1-3-26"))}
                                 << 0
                                 << "where Q_Clienti_Utenti.DataUltimoPagamento >= '2026-03-01 00:00:00' and "
                                    "Q_Clienti_Utenti.DataUltimoPagamento <= '2026-03-01 00:00:00'"
                                 << "{Q_Clienti_Utenti.DataUltimoPagamento}>= date(2026,03,01) and "
                                    "{Q_Clienti_Utenti.DataUltimoPagamento}<= date(2026,03,01)"
                                 << "Pagato = 01/03/2026";
        QTest::newRow("upper date only") << QVector<CasellaFiltro>{casella(dataCampo, TipoCasella::Data, {}, QStringLiteral("2026-02-28"))} << 1
                                         << "where Q_Clienti_Utenti.DataUltimoPagamento <= '2026-02-28 00:00:00'"
                                         << "{Q_Clienti_Utenti.DataUltimoPagamento}<= date(2026,02,28)" << "Pagato <= 2026-02-28";
        QTest::newRow("numbers") << QVector<CasellaFiltro>{casella(QStringLiteral("Canone"), TipoCasella::Numero, QStringLiteral("50"), QStringLiteral("120,5"))}
                                 << 3 << "where Q_Clienti_Utenti.Canone>=50 and Q_Clienti_Utenti.Canone<=120.5"
                                 << "{Q_Clienti_Utenti.Canone} >= 50 and {Q_Clienti_Utenti.Canone} <= 120.5" << "Canone >= 50, Canone <= 120,5";
        QTest::newRow("not a number") << QVector<CasellaFiltro>{casella(QStringLiteral("Canone"), TipoCasella::Numero, QStringLiteral("1e5; drop"))} << 0
                                      << "where 0=1" << "false" << "Canone >= 1e5; drop";
        // Texts come first, then dates, then numbers, whatever the order of the boxes.
        QTest::newRow("mixed") << QVector<CasellaFiltro>{casella(QStringLiteral("Canone"), TipoCasella::Numero, {}, QStringLiteral("-3")),
                                                         casella(dataCampo, TipoCasella::Data, QStringLiteral("28/02/2026")),
                                                         casella(QStringLiteral("Nome"), TipoCasella::Testo, QString()),
                                                         casella(QStringLiteral("Targa"), TipoCasella::Testo, QStringLiteral("ab"))}
                               << 1
                               << "where Q_Clienti_Utenti.Targa = 'ab' and Q_Clienti_Utenti.DataUltimoPagamento >= '2026-02-28 00:00:00' and "
                                  "Q_Clienti_Utenti.Canone<=-3"
                               << "UpperCase({Q_Clienti_Utenti.Targa}) = 'AB' and {Q_Clienti_Utenti.DataUltimoPagamento}>= date(2026,02,28) and "
                                  "{Q_Clienti_Utenti.Canone} <= -3"
                               << "Targa = ab, Pagato => 28/02/2026, Canone <= -3";
        QTest::newRow("empty panel") << QVector<CasellaFiltro>{casella(QStringLiteral("Cognome"), TipoCasella::Testo, {})} << 0 << "" << "" << "";
    }
    void testi()
    {
        QFETCH(QVector<CasellaFiltro>, caselle);
        QFETCH(int, modo);
        ScriptedPrompter p;
        const forms::Filtro f = forms::CostruisciFiltro(Vista, caselle, modo, p);
        QVERIFY(f.valido);
        QTEST(f.where, "where");
        QTEST(f.formula, "formula");
        QTEST(f.descrizione, "descrizione");
        QVERIFY(p.messages.isEmpty());
        QCOMPARE(m_stato.value(0), frame::TestoLingua("M0012"));
        // Both texts run: the query in the database, the formula compiled over the view's columns.
        const Righe righe(frame::basedati());
        QVERIFY(elenco(f.where).size() <= righe.righe.size());
        QVERIFY(righe.selezionate(f.formula).size() <= righe.righe.size());
    }

    void valoriOstili_data()
    {
        QTest::addColumn<QString>("campo");
        QTest::addColumn<QStringList>("altri");
        QTest::addColumn<int>("modo");
        QTest::addColumn<QString>("valore");
        QTest::addColumn<QStringList>("elenco");
        QTest::addColumn<QStringList>("stampa");
        const QString c = QStringLiteral("Cognome");
        const QStringList obrien{QStringLiteral("O'Brien")}, nessuno;
        QTest::newRow("quote starts") << c << nessuno << 0 << "o'" << obrien << obrien;
        QTest::newRow("quote contains") << c << nessuno << 2 << "'" << obrien << nessuno;
        QTest::newRow("quote equals") << c << nessuno << 1 << "'; drop table Clienti; --" << nessuno << nessuno;
        QTest::newRow("percent") << c << nessuno << 0 << "100%" << QStringList{"100% Auto"} << QStringList{"100% Auto"};
        QTest::newRow("percent contains") << c << nessuno << 2 << "%" << QStringList{"100% Auto"} << nessuno;
        QTest::newRow("underscore") << c << nessuno << 0 << "auto_" << QStringList{"Auto_Ricambi"} << QStringList{"Auto_Ricambi"};
        QTest::newRow("backslash") << c << nessuno << 0 << "Back\\" << QStringList{"Back\\slash"} << QStringList{"Back\\slash"};
        QTest::newRow("bracket") << c << nessuno << 0 << "[" << QStringList{"[Bracket]"} << QStringList{"[Bracket]"};
        QTest::newRow("hash contains") << c << nessuno << 2 << "#" << QStringList{"Num#1"} << nessuno;
        QTest::newRow("star") << c << nessuno << 0 << "*" << nessuno << nessuno;
        QTest::newRow("star contains") << c << nessuno << 2 << "r*p" << QStringList{"Star*Power"} << nessuno;
        QTest::newRow("accent, any case") << c << nessuno << 0 << "É" << QStringList{"Élise", "élan"} << QStringList{"Élise", "élan"};
        QTest::newRow("umlaut contains") << c << nessuno << 2 << "ÜR" << QStringList{"Zürich"} << nessuno;
        // The list keeps the database's comparison (text columns are case-blind), paper compares in capitals.
        QTest::newRow("equals other case") << c << nessuno << 1 << "rossi" << QStringList{"Rossi"} << QStringList{"Rossi"};
        QTest::newRow("equals accent") << c << nessuno << 1 << "ZÜRICH" << QStringList{"Zürich"} << QStringList{"Zürich"};
        QTest::newRow("equals") << c << nessuno << 1 << "Rossi" << QStringList{"Rossi"} << QStringList{"Rossi"};
        // Case-blind order puts "É" with "E" and "[" before letters; capitals order them by code.
        QTest::newRow("from") << c << nessuno << 3 << "s" << QStringList{"Star*Power", "Zürich"}
                              << QStringList{"[Bracket]", "Star*Power", "Élise", "élan", "Zürich"};
        QTest::newRow("from compares as text") << QStringLiteral("Cap") << nessuno << 3 << "9" << QStringList{"Rossi"} << QStringList{"Rossi"};
        QTest::newRow("ten thousand") << c << nessuno << 0 << Lungo << QStringList{Lungo} << QStringList{Lungo};
        QTest::newRow("ten thousand plus") << c << nessuno << 2 << Lungo + QLatin1Char('\'') << nessuno << nessuno;
        const QStringList tel{QStringLiteral("Tel Casa")};
        QTest::newRow("telephones contain") << QStringLiteral("Tel Cel") << tel << 2 << "1234" << QStringList{"O'Brien", "Rossi"} << nessuno;
        QTest::newRow("telephones start") << QStringLiteral("Tel Cel") << tel << 0 << "03" << QStringList{"Rossi"} << QStringList{"Rossi"};
    }
    void valoriOstili()
    {
        QFETCH(QString, campo);
        QFETCH(QStringList, altri);
        QFETCH(int, modo);
        QFETCH(QString, valore);
        ScriptedPrompter p;
        const forms::Filtro f = forms::CostruisciFiltro(Vista, {casella(campo, TipoCasella::Testo, valore, {}, altri)}, modo, p);
        QTEST(elenco(f.where), "elenco");
        QTEST(Righe(frame::basedati()).selezionate(f.formula), "stampa");
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Clienti")).toInt(), 13);
    }

    // Dates and numbers select the same rows in the list and on paper, at midnight.
    void intervalli_data()
    {
        QTest::addColumn<CasellaFiltro>("k");
        QTest::addColumn<QStringList>("attese");
        const QString d = QStringLiteral("DataUltimoPagamento");
        QTest::newRow("march") << casella(d, TipoCasella::Data, QStringLiteral("01/03/2026"), QStringLiteral("31/03/2026"))
                               << QStringList{"O'Brien", "Rossi"};
        QTest::newRow("from march") << casella(d, TipoCasella::Data, QStringLiteral("1.3.2026")) << QStringList{"O'Brien", "Rossi", "100% Auto"};
        QTest::newRow("one day") << casella(d, TipoCasella::Data, QStringLiteral("28/02/2026"), QStringLiteral("28/02/2026")) << QStringList{"AutoXRicambi"};
        QTest::newRow("fee") << casella(QStringLiteral("Canone"), TipoCasella::Numero, QStringLiteral("50"), QStringLiteral("120,5"))
                             << QStringList{"O'Brien", "Rossi", "Auto_Ricambi"};
        QTest::newRow("fee text") << casella(QStringLiteral("Canone"), TipoCasella::Numero, QStringLiteral("'50'")) << QStringList{};
        QTest::newRow("fee huge") << casella(QStringLiteral("Canone"), TipoCasella::Numero, QString(400, QLatin1Char('9'))) << QStringList{};
    }
    void intervalli()
    {
        QFETCH(CasellaFiltro, k);
        ScriptedPrompter p;
        const forms::Filtro f = forms::CostruisciFiltro(Vista, {k}, 0, p);
        QVERIFY(f.valido);
        QTEST(elenco(f.where), "attese");
        QTEST(Righe(frame::basedati()).selezionate(f.formula), "attese");
    }

    void dataNonValida_data()
    {
        QTest::addColumn<QString>("dal");
        QTest::addColumn<QString>("al");
        QTest::addColumn<bool>("nelAl");
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
        QFETCH(QString, dal);
        QFETCH(QString, al);
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

    void dateCopy()
    {
        QCOMPARE(forms::DataAlDopoDal(QStringLiteral("05/03/2026"), true), std::optional<QString>(QStringLiteral("05/03/2026")));
        QCOMPARE(forms::DataAlDopoDal(QStringLiteral("05/03/2026"), false), std::nullopt);
        QCOMPARE(forms::DataAlDopoDal(QStringLiteral("  "), true), std::nullopt);
        // The copied bound makes a one-day filter.
        ScriptedPrompter p;
        const QString dal = QStringLiteral("28/02/2026");
        const forms::Filtro f = forms::CostruisciFiltro(
            Vista, {casella(QStringLiteral("DataUltimoPagamento"), TipoCasella::Data, dal, *forms::DataAlDopoDal(dal, true))}, 0, p);
        QCOMPARE(f.descrizione, QStringLiteral("Pagato = 28/02/2026"));
        QCOMPARE(elenco(f.where), QStringList{QStringLiteral("AutoXRicambi")});
    }

    void esito_data()
    {
        QTest::addColumn<qint64>("righe");
        QTest::addColumn<bool>("automatico");
        QTest::addColumn<int>("esito");
        QTest::addColumn<bool>("messaggio");
        QTest::newRow("one, auto") << qint64(1) << true << int(forms::EsitoRicerca::Posiziona) << false;
        QTest::newRow("one") << qint64(1) << false << int(forms::EsitoRicerca::MostraElenco) << false;
        QTest::newRow("none, auto") << qint64(0) << true << int(forms::EsitoRicerca::NessunaRiga) << true;
        QTest::newRow("none") << qint64(0) << false << int(forms::EsitoRicerca::NessunaRiga) << true;
        QTest::newRow("many, auto") << qint64(7) << true << int(forms::EsitoRicerca::MostraElenco) << false;
    }
    void esito()
    {
        QFETCH(qint64, righe);
        QFETCH(bool, automatico);
        QFETCH(bool, messaggio);
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
        reports::CrystalReport report(p);
        report.setKeepLayout(true);
        report.setPrintFileName(out.filePath(QStringLiteral("elenco.pdf")));
        const forms::Filtro f = forms::CostruisciFiltro(Vista, {casella(QStringLiteral("Cognome"), TipoCasella::Testo, QStringLiteral("o'b"))}, 2, p);
        QVERIFY2(forms::StampaFiltro(report, f, reports::CrystalReport::ToFile), qPrintable(report.lastError()));
        QCOMPARE(report.lastRowCount(), 1);
        const QStringList testata = report.laidOut(QStringLiteral("reportHeader")).value(0).texts;
        QVERIFY(testata.contains(QStringLiteral("Cognome contiene -o'b-")));
        QVERIFY(testata.contains(QStringLiteral("Dati elaborati secondo i seguenti  criteri:")));
        QVERIFY(testata.contains(frame::TestoLingua("M0327")));

        // No filter: every row, no heading of criteria; on screen at 100%.
        QVERIFY(forms::StampaFiltro(report, forms::CostruisciFiltro(Vista, {}, 0, p)));
        QCOMPARE(report.lastRowCount(), 13);
        QVERIFY(!report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Dati elaborati secondo i seguenti  criteri:")));
        auto *anteprima = report.previewWindow() ? report.previewWindow()->findChild<QPrintPreviewWidget *>() : nullptr;
        QVERIFY(anteprima);
        QCOMPARE(anteprima->zoomFactor(), 1.0);
        report.previewWindow()->close();
        QVERIFY(p.messages.isEmpty());
    }
};

QTEST_MAIN(TestFiltro)
#include "tst_filtro.moc"
