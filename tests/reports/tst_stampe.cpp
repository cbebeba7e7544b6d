// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaTesto.h"
#include "parking/StampaMovimento.h"
#include "parking/ui/frmPark.h"
#include "reports/engine/CrystalReport.h"
#include "reports/engine/ReportChart.h"
#include "reports/runs/ElencoPersonalizzato.h"
#include "reports/runs/StampeElenchi.h"
#include "reports/runs/StampeOpzioni.h"
#include "reports/ui/frmStampaCassa.h"
#include "reports/ui/frmStampaEstrattoC.h"
#include "reports/ui/frmStampa.h"
#include "reports/ui/frmStampaPark.h"
#include "store/Database.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestWindows.h"

#include "support/Colonne.h"

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QPainter>
#include <QLineEdit>
#include <QListWidget>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <memory>

using reports::OpzioniCassa;
using reports::OpzioniEstratto;
using reports::OpzioniPark;

namespace {

const QString Dentro = QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = true");
const QString Fuori = QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = false");

QString finestra(const char *verso, int y, int m, int d, int h, int mi)
{
    return QString::asprintf("{Q_Movimentazioni_Utenti.DataOra} %s DateSerial (%d,%d,%d) and TimeSerial (Hour "
                             "({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) %s TimeSerial (%d,%d,0)",
                             verso, y, m, d, verso, h, mi);
}

// A customer (or supplier) of the registry; its id.
qint64 cliente(const QString &cognome, const QString &nome, bool isCliente = true, double saldoEntrate = 0, double saldoUscite = 0)
{
    store::Database &db = frame::basedati();
    db.execute(QStringLiteral("insert into Clienti (Cliente, Cognome, Nome, SaldoEntrate, SaldoUscite) values (?, ?, ?, ?, ?)"),
               {isCliente ? -1 : 0, cognome, nome, saldoEntrate, saldoUscite});
    return db.lastInsertId();
}

// The counters' row of the fiscal year 2026, which the reports join.
void annoEsercizio()
{
    frame::basedati().execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo, EntrataPrecedente, UscitaPrecedente) "
                                             "values ('2026', 0, 500, 100)"));
}

// A cash row of the fiscal year 2026; an invalid amount is stored as null.
void riga(const QVariant &idCliente, const QDate &giorno, const QString &descrizione, const QVariant &entrata, const QVariant &uscita)
{
    frame::basedati().execute(
        QStringLiteral("insert into Cassa (IdCliente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?, ?, ?, ?, ?, '2026')"),
        {idCliente, giorno.startOfDay(), descrizione, entrata, uscita});
}

// Keeps the pages of the last run sent to the window, as the preview would.
struct VisoreProva final : reports::Visore {
    std::shared_ptr<const reports::PagineReport> pagine;
    void mostra(std::shared_ptr<const reports::PagineReport> p, int, double) override { pagine = std::move(p); }
};

// The lines of a CSV file as written, without the line ends.
QStringList righeCsv(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

} // namespace

class TestStampe : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        frame::pub().CartellaProgramma = QCoreApplication::applicationDirPath() + QLatin1Char('/');
    }
    void cleanup() { m_db.reset(); }

    void parkSelection_data()
    {
        // date: 0 none, 1 a period with times, 2 with the times emptied
        colonne<QString, int, int, QString>({"targa", "stato", "date", "attesa"});
        const int tutti = int(OpzioniPark::Stato::Tutti), usciti = int(OpzioniPark::Stato::Usciti);
        const QString periodo = finestra(">=", 2026, 3, 1, 8, 5) + QStringLiteral(" and ") + finestra("<=", 2026, 3, 3, 18, 30);
        QTest::newRow("nothing chosen") << "" << tutti << 0 << "";
        QTest::newRow("inside") << "" << int(OpzioniPark::Stato::Dentro) << 0 << Dentro;
        QTest::newRow("out") << "" << usciti << 0 << Fuori;
        QTest::newRow("plate") << "AB123CD" << tutti << 0 << "{Q_Movimentazioni_Utenti.targa} = \"AB123CD\"";
        QTest::newRow("period by the clock, seconds ignored") << "" << tutti << 1 << periodo;
        QTest::newRow("emptied times count as midnight")
            << "" << tutti << 2 << finestra(">=", 2026, 3, 1, 0, 0) + QStringLiteral(" and ") + finestra("<=", 2026, 3, 3, 0, 0);
        QTest::newRow("everything") << "X1" << usciti << 1 << QStringLiteral("{Q_Movimentazioni_Utenti.targa} = \"X1\" and ") + Fuori + " and " + periodo;
    }
    void parkSelection()
    {
        QFETCH(QString, targa); QFETCH(int, stato); QFETCH(int, date);
        OpzioniPark o;
        o.targa = targa;
        o.stato = OpzioniPark::Stato(stato);
        if (date) {
            o.dal = QDate(2026, 3, 1);
            o.al = QDate(2026, 3, 3);
        }
        if (date == 1) {
            o.oraDal = QTime(8, 5, 40);
            o.oraAl = QTime(18, 30, 59);
        }
        QTEST(reports::SelezionePark(o), "attesa");
    }

    void cashSelection_data()
    {
        colonne<int, bool, QString>({"righe", "conDate", "attesa"});
        const QString anno = QStringLiteral("{TabProgressivi.Anno}='2026'");
        QTest::newRow("all") << int(OpzioniCassa::Righe::Tutto) << false << anno;
        QTest::newRow("money in only, unbracketed") << int(OpzioniCassa::Righe::SoloEntrate) << false
                                                    << anno + " and isnull({Cassa.uscita}) or {Cassa.uscita}=0";
        QTest::newRow("money out only") << int(OpzioniCassa::Righe::SoloUscite) << false << anno + " and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0";
        QTest::newRow("period") << int(OpzioniCassa::Righe::Tutto) << true
                                << anno + " and {Cassa.Data} >= DateSerial (2026,2,1) and {Cassa.Data} <= DateSerial (2026,12,31)";
    }
    void cashSelection()
    {
        QFETCH(int, righe); QFETCH(bool, conDate);
        OpzioniCassa o;
        o.righe = OpzioniCassa::Righe(righe);
        if (conDate) {
            o.dal = QDate(2026, 2, 1);
            o.al = QDate(2026, 12, 31);
        }
        QTEST(reports::SelezioneCassa(o, QStringLiteral("2026")), "attesa");
    }

    // The window hands its boxes to the selection exactly as they show them: dates
    // and times typed with or without separators, Tab from box to box; a refused
    // time keeps the shown value and stops the print that follows it, once.
    void parkWindowReadsItsBoxes()
    {
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        ScriptedPrompter p;
        reports::frmStampaPark w(p);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QCOMPARE(w.windowTitle(), frame::TestoLingua("M0309"));
        const auto casella = [&w](const char *nome) { return w.findChild<QLineEdit *>(QLatin1String(nome)); };
        QCOMPARE(w.opzioni().dal, std::optional<QDate>(QDate::currentDate()));
        QCOMPARE(casella("TDBTGG")->text(), QStringLiteral("00:00"));
        QCOMPARE(casella("TDBTGG2")->text(), QStringLiteral("23:59:59"));
        w.show();
        QApplication::setActiveWindow(&w);
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QCOMPARE(QApplication::focusWidget(), casella("TDBDGG")); // typing replaces the date shown
        for (const char *t : {"01112026", "830", "1.11.26", "1730"}) {
            QTest::keyClicks(QApplication::focusWidget(), QLatin1String(t));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(QApplication::focusWidget(), casella("TxtTarga"));
        QCOMPARE(casella("TDBDGG2")->text() + QLatin1Char(' ') + casella("TDBTGG2")->text(), QStringLiteral("01/11/2026 17:30:00"));
        casella("TxtTarga")->setText(QStringLiteral("  ZZ999  "));
        w.findChild<QRadioButton *>(QStringLiteral("Opt2"))->setChecked(true);
        w.findChild<QCheckBox *>(QStringLiteral("ChkGrafOre"))->setChecked(false);
        const QString selezione = QStringLiteral("{Q_Movimentazioni_Utenti.targa} = \"ZZ999\" and ") + Dentro + QStringLiteral(" and ")
                                  + finestra(">=", 2026, 11, 1, 8, 30) + QStringLiteral(" and ") + finestra("<=", 2026, 11, 1, 17, 30);
        QCOMPARE(reports::SelezionePark(w.opzioni()), selezione);
        QVERIFY(!w.opzioni().graficoOre);
        casella("TDBTGG")->setFocus();
        QTest::keyClicks(casella("TDBTGG"), QStringLiteral("25x00"));
        QTest::keyClick(casella("TDBTGG"), Qt::Key_Tab);
        QCOMPARE(casella("TDBTGG")->text(), QStringLiteral("08:30"));
        QVERIFY(!frame::CasellaTesto::confermaTutte(&w));
        QCOMPARE(reports::SelezionePark(w.opzioni()), selezione);
        // An emptied box is no date, and an emptied time counts as midnight.
        casella("TDBDGG")->clear();
        casella("TDBTGG2")->clear();
        QVERIFY(frame::CasellaTesto::confermaTutte(&w));
        QCOMPARE(reports::SelezionePark(w.opzioni()), selezione.left(selezione.indexOf(QStringLiteral(" and {Q_Movimentazioni_Utenti.DataOra}")))
                                                          + QStringLiteral(" and ") + finestra("<=", 2026, 11, 1, 0, 0));
    }

    // The statement's run, inspected without printing: the selection in its
    // order, the messages, and the labels from index 0 over the carried sums.
    void statementRun_data()
    {
        // cliente -1: none chosen; dal, al: an invalid date is an empty box
        colonne<qint64, bool, int, QDate, QDate, bool, QString, QStringList>(
            {"cliente", "fornitori", "righe", "dal", "al", "grafico", "selezione", "messaggi"});
        const QString anno = QStringLiteral("{TabProgressivi.Anno}='2026'");
        const QString sette = QStringLiteral(" and {Cassa.idcliente} = 7");
        const int tutto = int(OpzioniCassa::Righe::Tutto);
        const QDate nessuna;
        QTest::newRow("no customer: nothing printed") << qint64(-1) << false << tutto << QDate(2026, 2, 1) << nessuna << true << ""
                                                      << QStringList{"M0083"};
        QTest::newRow("one customer, every row") << qint64(7) << false << tutto << nessuna << nessuna << true << anno + sette << QStringList();
        QTest::newRow("money in only, unbracketed, customer after it")
            << qint64(7) << false << int(OpzioniCassa::Righe::SoloEntrate) << nessuna << nessuna << true
            << anno + " and isnull({Cassa.uscita}) or {Cassa.uscita}=0" + sette << QStringList();
        QTest::newRow("money out only, a supplier") << qint64(7) << true << int(OpzioniCassa::Righe::SoloUscite) << nessuna << nessuna << false
                                                   << anno + " and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0" + sette << QStringList();
        QTest::newRow("period") << qint64(123456) << false << tutto << QDate(2026, 2, 1) << QDate(2026, 12, 31) << true
                                << anno + " and {Cassa.idcliente} = 123456 and {Cassa.Data} >= DateSerial (2026,2,1)"
                                          " and {Cassa.Data} <= DateSerial (2026,12,31)"
                                << QStringList();
        QTest::newRow("start before the year: told, printed") << qint64(7) << false << tutto << QDate(2025, 12, 1) << nessuna << true
                                                             << anno + sette + " and {Cassa.Data} >= DateSerial (2025,12,1)"
                                                             << QStringList{"M0084"};
        QTest::newRow("start after the year: no message") << qint64(7) << false << tutto << QDate(2027, 1, 1) << nessuna << true
                                                         << anno + sette + " and {Cassa.Data} >= DateSerial (2027,1,1)" << QStringList();
        QTest::newRow("end before the start: no check") << qint64(7) << false << tutto << QDate(2026, 5, 1) << QDate(2026, 4, 1) << true
                                                       << anno + sette + " and {Cassa.Data} >= DateSerial (2026,5,1) and {Cassa.Data} <= DateSerial (2026,4,1)"
                                                       << QStringList();
    }
    void statementRun()
    {
        QFETCH(qint64, cliente); QFETCH(bool, fornitori); QFETCH(int, righe); QFETCH(QDate, dal); QFETCH(QDate, al);
        QFETCH(bool, grafico); QFETCH(QStringList, messaggi);
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        ScriptedPrompter p;
        OpzioniEstratto o;
        if (cliente >= 0)
            o.cliente = cliente;
        o.fornitori = fornitori;
        o.righe = OpzioniCassa::Righe(righe);
        if (dal.isValid())
            o.dal = dal;
        if (al.isValid())
            o.al = al;
        o.graficoSaldo = grafico;
        // Carried sums that would show if they reached the template.
        const std::optional<reports::Lancio> l = reports::LancioEstratto(p, o, store::Currency::fromRaw(1000000), store::Currency::fromRaw(300000));
        QStringList attesi;
        for (const QString &k : messaggi)
            attesi << frame::TestoLingua(k.toLatin1().constData());
        QCOMPARE(p.texts(), attesi);
        QCOMPARE(l.has_value(), cliente >= 0);
        if (!l)
            return;
        QCOMPARE(l->modello, QStringLiteral("estrattoconto"));
        QCOMPARE(l->titoloFinestra, frame::TestoLingua("M0318"));
        QTEST(l->selezione, "selezione");
        // Indices 0 to 11 are labels, 12 the graph switch: no carried sum is left.
        QCOMPARE(l->formule.keys(), (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
        QCOMPARE(l->formule.value(0), QStringLiteral("lbldata='Date'"));
        QCOMPARE(l->formule.value(1), QStringLiteral("lbldescrizione='Description'"));
        QCOMPARE(l->formule.value(2), "lblentrata='" + frame::TestoLingua("M0194") + "'");
        QCOMPARE(l->formule.value(4), "lblsaldoiniziale='" + frame::TestoLingua("M0340") + "'");
        QCOMPARE(l->formule.value(5), "lbltitolo='" + frame::TestoLingua("M0341") + "'");
        QCOMPARE(l->formule.value(10), "lblsubtotali='" + frame::TestoLingua("M0346") + "'");
        QCOMPARE(l->formule.value(11), fornitori ? QStringLiteral("clifor='Supplier'") : QStringLiteral("clifor='Customer'"));
        QCOMPARE(l->formule.value(12), grafico ? QStringLiteral("OmetteGrafSaldo=false") : QStringLiteral("OmetteGrafSaldo=true"));
        for (const QString &f : l->formule)
            QVERIFY2(!f.contains(QLatin1String("Periodo")), qPrintable(f));
        QCOMPARE(l->testiGrafico.value(0), QStringLiteral(" GROUPFTR.0.1; 0; Daily balance;;;;;;Balance;"));
    }

    // The statement of one customer, printed to a PDF file from a small book: its
    // rows only, the balance the year opened with, the running balance, the totals.
    // A start date narrows the rows but carries nothing in: the template's zero applies.
    void statementPrintsOneCustomer()
    {
        QLocale::setDefault(QLocale::c());
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        annoEsercizio();
        const QString nome = QStringLiteral("Niccolò \"Nico\"");
        const qint64 anna = cliente(QStringLiteral("D'Àngelo"), nome, true, 100, 40);
        const qint64 altro = cliente(QStringLiteral("Bianchi"), QStringLiteral("Rita"));
        riga(anna, QDate(2026, 1, 10), QStringLiteral("Canone gennaio"), 50, 0);
        riga(QVariant(), QDate(2026, 1, 12), QStringLiteral("Incassi parcheggio"), 77, QVariant());
        riga(altro, QDate(2026, 1, 15), QStringLiteral("Canone"), 999, 0);
        riga(anna, QDate(2026, 1, 20), QStringLiteral("Rimborso dell'auto"), 0, 20);
        riga(anna, QDate(2026, 2, 5), QStringLiteral("Canone febbraio"), 12.5, QVariant());

        QTemporaryDir cartella;
        ScriptedPrompter p;
        reports::CrystalReport report(p);
        report.setKeepLayout(true);
        const auto stampa = [&](const OpzioniEstratto &o, const QString &file) {
            std::optional<reports::Lancio> l = reports::LancioEstratto(p, o, store::Currency::fromRaw(5000000), store::Currency());
            QVERIFY(l);
            l->destinazione = reports::Lancio::ToFile;
            report.setPrintFileName(cartella.filePath(file));
            QVERIFY2(report.esegui(*l), qPrintable(report.lastError()));
            QVERIFY(QFile(cartella.filePath(file)).size() > 1000);
        };
        const auto colonna = [&](const char *campo) {
            QStringList valori;
            for (const reports::LaidOutSection &s : report.laidOut(QStringLiteral("detail")))
                valori << s.named.value(QLatin1String(campo));
            return valori;
        };
        const auto nominato = [&](const char *sezione, const char *campo) {
            return report.laidOut(QLatin1String(sezione)).value(0).named.value(QLatin1String(campo));
        };

        OpzioniEstratto o;
        o.cliente = anna;
        stampa(o, QStringLiteral("tutto.pdf"));
        QVERIFY(p.messages.isEmpty());
        QCOMPARE(report.lastRowCount(), 3);
        QCOMPARE(colonna("descrizione"), (QStringList{"Canone gennaio", "Rimborso dell'auto", "Canone febbraio"}));
        QCOMPARE(colonna("saldo"), (QStringList{"110.00", "90.00", "102.50"}));
        QCOMPARE(nominato("reportHeader", "cliente"), "D'Àngelo " + nome);
        QCOMPARE(nominato("reportHeader", "saldoIniziale"), QStringLiteral("60.00"));
        QVERIFY(report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Customer")));
        QVERIFY(report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Account statement")));
        QCOMPARE(nominato("reportFooter", "entrateTotali"), QStringLiteral("62.50"));
        QCOMPARE(nominato("reportFooter", "usciteTotali"), QStringLiteral("20.00"));
        QCOMPARE(nominato("reportFooter", "saldoTotale"), QStringLiteral("102.50"));
        QCOMPARE(report.laidOut(QStringLiteral("GROUPFTR.0.1")).value(0).graphBuckets, QList<int>{3});
        QCOMPARE(report.laidOut(QStringLiteral("GROUPFTR.0.1")).value(0).graphTitles.value(0), QStringLiteral("Daily balance"));

        // From 15 January, as a supplier's statement, without the graph.
        o.dal = QDate(2026, 1, 15);
        o.fornitori = true;
        o.graficoSaldo = false;
        stampa(o, QStringLiteral("periodo.pdf"));
        QCOMPARE(colonna("saldo"), (QStringList{"40.00", "52.50"}));
        QVERIFY(!report.laidOut(QStringLiteral("reportHeader")).value(0).named.contains(QStringLiteral("saldoRiportato")));
        QVERIFY(report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Supplier")));
        QVERIFY(report.laidOut(QStringLiteral("GROUPFTR")).isEmpty());

        // Italian labels, and a customer with no row this year: an empty statement with its labels.
        loadLanguage(QStringLiteral("Italian"));
        frame::pub().CartellaProgramma = QCoreApplication::applicationDirPath() + QLatin1Char('/');
        o = OpzioniEstratto();
        o.cliente = cliente(QStringLiteral("Nessuno"), QString());
        stampa(o, QStringLiteral("vuoto.pdf"));
        QCOMPARE(report.lastRowCount(), 0);
        QVERIFY(report.laidOut(QStringLiteral("pageHeader")).value(0).texts.contains(QStringLiteral("Descrizione")));
        QVERIFY(report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Estratto conto")));
    }

    // The lists of the reports menu: template, selection, sorts and formulas by code.
    void menuListRun_data()
    {
        QTest::addColumn<QString>("codice");
        QTest::addColumn<QString>("modello");
        QTest::addColumn<QString>("selezione");
        QTest::addColumn<QString>("secondoOrdinamento");
        QTest::addColumn<QString>("titolo");
        const QString clienti = QStringLiteral("{Q_Clienti_Utenti.Cliente}=true");
        QTest::newRow("C") << "C" << "elencocliente" << clienti << "" << "titolo='Customer list'";
        QTest::newRow("F") << "F" << "elencofornitore" << "{Q_Clienti_Utenti.Cliente}=false" << "" << "titolo='Supplier list'";
        QTest::newRow("CC") << "CC" << "elencocliente" << clienti + " and {Q_Clienti_Utenti.DataUltimoPagamento}<CurrentDate"
                            << "+{Q_Clienti_Utenti.DataUltimoPagamento}" << "titolo='Customers with fee overdue'";
        QTest::newRow("CA") << "CA" << "elencocliente" << clienti + " and {Q_Clienti_Utenti.DataScadenzaAssic}<CurrentDate"
                            << "+{Q_Clienti_Utenti.DataScadenzaAssic}" << "titolo='Customers with insurance expired'";
        QTest::newRow("unknown code") << "X" << "elencocliente" << "" << "" << "";
    }
    void menuListRun()
    {
        QFETCH(QString, codice);
        const reports::Lancio l = reports::LancioElenco(codice, QStringLiteral("Veltano"));
        QTEST(l.modello, "modello");
        QTEST(l.selezione, "selezione");
        QFETCH(QString, titolo);
        QCOMPARE(l.formule.value(0), titolo);
        if (!titolo.isEmpty()) {
            QCOMPARE(l.ordinamenti.value(0), QStringLiteral("+{@Nominativo}"));
            QTEST(l.ordinamenti.value(1), "secondoOrdinamento");
        } else {
            QVERIFY(l.ordinamenti.isEmpty());
        }
        QStringList nomi;
        for (int i = 1; i <= 9; ++i)
            nomi << l.formule.value(i).section(QLatin1Char('='), 0, 0);
        QCOMPARE(nomi, (QStringList{"lbldescrizione", "lblmobile", "lblufficio", "lblcasa", "lblultimopagamento", "lblscadenzass",
                                    "lblmarca", "lblmodello", "lblposto"}));
        QCOMPARE(l.statoFinestra, 2);
        QCOMPARE(l.titoloFinestra, QStringLiteral("Veltano"));
    }

    // The four lists printed from a small registry: who is in each, in which order,
    // a name with quotes and accents as typed, and the overdue list saved as CSV.
    void menuListsPrint()
    {
        QLocale::setDefault(QLocale::c());
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        store::Database &db = frame::basedati();
        const QDate oggi = QDate::currentDate();
        const auto scadenze = [&](qint64 id, const QVariant &canone, const QVariant &assicurazione) {
            db.execute(QStringLiteral("update Clienti set DataUltimoPagamento = ?, DataScadenzaAssic = ? where Id = ?"),
                       {canone, assicurazione, id});
        };
        scadenze(cliente(QStringLiteral("Rossi"), QStringLiteral("Anna")), oggi.addDays(-3).startOfDay(), oggi.addDays(-1).startOfDay());
        scadenze(cliente(QStringLiteral("D'Àngelo"), QStringLiteral("Niccolò \"Nico\"")), oggi.addDays(-40).startOfDay(),
                 oggi.addDays(10).startOfDay());
        cliente(QStringLiteral("Bianchi"), QStringLiteral("Senza date"));
        scadenze(cliente(QStringLiteral("Verdi"), QStringLiteral("Oggi")), oggi.startOfDay(), oggi.startOfDay());
        cliente(QStringLiteral("Ferri & C."), QStringLiteral("Srl"), false);

        ScriptedPrompter p;
        VisoreProva visore;
        reports::CrystalReport report(p, &visore);
        report.setKeepLayout(true);
        QTemporaryDir cartella;
        report.setPrintFileName(cartella.filePath(QStringLiteral("elenco.pdf")));
        // Laid out as the PDF file is written.
        const auto nomi = [&](const char *codice) {
            reports::Lancio l = reports::LancioElenco(QLatin1String(codice), QStringLiteral("Veltano"));
            l.destinazione = reports::Lancio::ToFile;
            if (!report.esegui(l))
                return QStringList{report.lastError()};
            QStringList n;
            for (const reports::LaidOutSection &s : report.laidOut(QStringLiteral("detail")))
                n << s.named.value(QStringLiteral("nominativo"));
            return n;
        };
        QCOMPARE(nomi("C"), (QStringList{"Bianchi Senza date", "D'Àngelo Niccolò \"Nico\"", "Rossi Anna", "Verdi Oggi"}));
        QCOMPARE(report.laidOut(QStringLiteral("reportHeader")).value(0).named.value(QStringLiteral("titolo")),
                 frame::TestoLingua("M0361"));
        QCOMPARE(nomi("F"), QStringList{"Ferri & C. Srl"});
        // A deadline of today is not overdue; a customer without the date is in neither list.
        QCOMPARE(nomi("CC"), (QStringList{"D'Àngelo Niccolò \"Nico\"", "Rossi Anna"}));
        QCOMPARE(nomi("CA"), QStringList{"Rossi Anna"});
        QVERIFY(p.messages.isEmpty());

        QVERIFY(report.esegui(reports::LancioElenco(QStringLiteral("CC"), QString())));
        QVERIFY(visore.pagine);
        QCOMPARE(visore.pagine->writeCsv(cartella.filePath(QStringLiteral("cc.csv"))), QString());
        const QStringList csv = righeCsv(cartella.filePath(QStringLiteral("cc.csv")));
        QCOMPARE(csv.size(), 3);
        QVERIFY2(csv.at(0).startsWith(frame::TestoLingua("M0210") + QLatin1Char(',') + frame::TestoLingua("M0185")), qPrintable(csv.at(0)));
        QCOMPARE(csv.at(1).section(QLatin1Char(','), 0, 0), QStringLiteral("\"D'Àngelo Niccolò \"\"Nico\"\"\""));
        QCOMPARE(csv.at(2).section(QLatin1Char(','), 4, 4), frame::TestoData(oggi.addDays(-3).startOfDay()));
        // A file that can't be written is told, and nothing is left behind.
        QVERIFY(!visore.pagine->writeCsv(cartella.filePath(QStringLiteral("no/such/dir/cc.csv"))).isEmpty());
    }

    // The custom list: fields picked once each, in order, over a filter's run;
    // earlier formulas emptied; nothing to print without a field.
    void customList()
    {
        reports::SceltaCampi scelta;
        reports::Lancio filtro;
        filtro.modello = QStringLiteral("Elenco");
        filtro.selezione = QStringLiteral("{Q_Clienti_Utenti.Cliente}=true");
        filtro.formule = {{0, "Descrizionefiltri0=''"}, {1, "Descrizionefiltri=''"}, {2, "Titolo='Lista'"}};
        QVERIFY(!reports::LancioElencoPersonalizzato(filtro, scelta));
        QVERIFY(scelta.aggiungiCampo(QStringLiteral("Cognome"), QStringLiteral("Surname")));
        QVERIFY(!scelta.aggiungiCampo(QStringLiteral("Cognome"), QStringLiteral("Surname")));
        QVERIFY(scelta.aggiungiCampo(QStringLiteral("Tel Cel"), QStringLiteral("Mobile")));
        QVERIFY(scelta.aggiungiCampo(QStringLiteral("DataUltimoPagamento"), QStringLiteral("Customer's last payment")));
        scelta.togliCampo(1);
        QVERIFY(scelta.aggiungiOrdinamento(QStringLiteral("Nome")));
        const std::optional<reports::Lancio> l = reports::LancioElencoPersonalizzato(filtro, scelta);
        QVERIFY(l);
        QCOMPARE(l->modello, QStringLiteral("ElencoPersonalizzato"));
        QCOMPARE(l->selezione, filtro.selezione);
        QVERIFY(l->svuota);
        QVERIFY(l->ordinamenti.isEmpty());
        QCOMPARE(l->formule.values().mid(3), (QStringList{"Campo1={Clienti.Cognome}", "TitoloCampo1='Surname'",
                                                           "Campo2={Clienti.DataUltimoPagamento}",
                                                           "TitoloCampo2='Customer''s last payment'"}));

        // Printed after another list on the same engine: the slots it left are empty.
        QLocale::setDefault(QLocale::c());
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        const qint64 id = cliente(QStringLiteral("O'Hara"), QStringLiteral("Zoë"));
        frame::basedati().execute(QStringLiteral("update Clienti set DataUltimoPagamento = '2026-03-01 00:00:00' where Id = ?"), {id});
        cliente(QStringLiteral("Fornitore"), QString(), false);
        ScriptedPrompter p;
        VisoreProva visore;
        reports::CrystalReport report(p, &visore);
        report.setKeepLayout(true);
        QVERIFY(report.esegui(reports::LancioElenco(QStringLiteral("C"), QString())));
        report.setFormulas(12, QStringLiteral("Campo3={Clienti.Email}"));
        QTemporaryDir cartella;
        report.setPrintFileName(cartella.filePath(QStringLiteral("personalizzato.pdf")));
        reports::Lancio suFile = *l;
        suFile.destinazione = reports::Lancio::ToFile;
        QVERIFY2(report.esegui(suFile), qPrintable(report.lastError()));
        const QList<reports::LaidOutSection> righe = report.laidOut(QStringLiteral("detail"));
        QCOMPARE(righe.size(), 1);
        QCOMPARE(righe.at(0).named.value(QStringLiteral("campo1")), QStringLiteral("O'Hara"));
        QCOMPARE(righe.at(0).named.value(QStringLiteral("campo2")), QStringLiteral("01/03/2026"));
        QCOMPARE(righe.at(0).named.value(QStringLiteral("campo3")), QString());
        QCOMPARE(report.laidOut(QStringLiteral("pageHeader")).value(0).named.value(QStringLiteral("titolo2")),
                 QStringLiteral("Customer's last payment"));

        // The window: a field added twice counts once, remove and clear, and the choices stay when it is hidden.
        reports::frmStampa f({{"Cognome", "Surname"}, {"Nome", "Name"}, {"Tel Cel", "Mobile"}});
        auto *disponibili = f.findChild<QListWidget *>(QStringLiteral("ListFieldsCaption"));
        const auto clic = [&](const char *bottone) { f.findChild<QPushButton *>(QLatin1String(bottone))->click(); };
        disponibili->setCurrentRow(2);
        clic("Command3");
        clic("Command3");
        disponibili->setCurrentRow(0);
        clic("Command3");
        QCOMPARE(f.scelta().campi(), (QStringList{"Tel Cel", "Cognome"}));
        QCOMPARE(f.findChild<QListWidget *>(QStringLiteral("ListFieldsSelCaption"))->item(1)->text(), QStringLiteral("Surname"));
        f.findChild<QListWidget *>(QStringLiteral("ListFieldsSelCaption"))->setCurrentRow(0);
        clic("Command4");
        f.findChild<QListWidget *>(QStringLiteral("ListSorts"))->setCurrentRow(1);
        clic("Command5");
        QCOMPARE(f.scelta().ordinamenti(), QStringList{"Nome"});
        clic("CmdOkGrid");
        QVERIFY(!f.isVisible());
        QCOMPARE(f.scelta().campi(), QStringList{"Cognome"});
        clic("Command1");
        QVERIFY(f.scelta().campi().isEmpty() && f.scelta().ordinamenti().isEmpty());
    }

    // The statement's window: the list follows the option, a typed number shows
    // its name or none, a number that is none of the list prints nothing.
    void statementWindow()
    {
        annoEsercizio();
        const qint64 rossi = cliente(QStringLiteral("Rossi"), QStringLiteral("Mario"));
        const qint64 albertini = cliente(QStringLiteral("Albertini"), QStringLiteral("Lea"));
        const qint64 fornitore = cliente(QStringLiteral("Verdi"), QStringLiteral("Srl"), false);
        riga(rossi, QDate(2026, 3, 1), QStringLiteral("Canone"), 50, 0);
        ScriptedPrompter p;
        reports::frmStampaEstrattoC w(p);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        QCOMPARE(w.windowTitle(), frame::TestoLingua("M0318"));
        auto *codice = w.findChild<QLineEdit *>(QStringLiteral("TxtTC_0"));
        auto *elenco = w.findChild<QComboBox *>(QStringLiteral("TDBComboC_0"));
        auto *fornitori = w.findChild<QRadioButton *>(QStringLiteral("OptFornitori"));
        QCOMPARE(w.findChild<QCheckBox *>(QStringLiteral("ChkGrafSaldo"))->text(), frame::TestoLingua("CAP61"));
        QCOMPARE(elenco->count(), 2);
        QCOMPARE(elenco->currentIndex(), -1);

        // A number typed shows its name; a supplier's number is none of the customers.
        codice->setFocus();
        QTest::keyClicks(codice, QString::number(rossi));
        QCOMPARE(elenco->currentText(), QStringLiteral("Rossi Mario"));
        QCOMPARE(w.opzioni().cliente, std::optional<qint64>(rossi));
        codice->setText(QString::number(fornitore));
        QCOMPARE(elenco->currentText(), QString());
        QVERIFY(!w.opzioni().cliente);
        QTest::mouseClick(w.findChild<QPushButton *>(QStringLiteral("Okstampa")), Qt::LeftButton);
        QCOMPARE(p.texts(), QStringList(frame::TestoLingua("M0083")));

        // The suppliers' list finds it; a pick in the list puts its number back.
        fornitori->setChecked(true);
        QCOMPARE(elenco->count(), 1);
        QCOMPARE(elenco->currentText(), QStringLiteral("Verdi Srl"));
        QVERIFY(w.opzioni().fornitori);
        QCOMPARE(w.opzioni().cliente, std::optional<qint64>(fornitore));
        w.findChild<QRadioButton *>(QStringLiteral("OptClienti"))->setChecked(true);
        QCOMPARE(elenco->currentIndex(), -1);
        elenco->setCurrentIndex(0);
        emit elenco->activated(0);
        QCOMPARE(codice->text(), QString::number(albertini)); // first by name
        codice->clear();
        QVERIFY(!w.opzioni().cliente);

        // A print opens the preview and leaves the window open for the next one.
        codice->setText(QString::number(rossi));
        p.messages.clear();
        QTest::mouseClick(w.findChild<QPushButton *>(QStringLiteral("Okstampa")), Qt::LeftButton);
        QVERIFY(p.messages.isEmpty());
        QWidget *anteprima = nullptr;
        for (QWidget *t : QApplication::topLevelWidgets())
            if (t->objectName() == QLatin1String("AnteprimaReport") && t->isVisible())
                anteprima = t;
        QVERIFY(anteprima);
        QCOMPARE(anteprima->windowTitle(), frame::TestoLingua("M0318"));
        QVERIFY(w.isVisible());
        anteprima->close();
    }

    // The parking window's quick search number refuses a key that makes no number.
    void quickSearchNumber()
    {
        ScriptedPrompter p;
        parking::frmPark park(p);
        auto *numero = park.findChild<QLineEdit *>(QStringLiteral("TxtProg"));
        QTest::keyClicks(numero, QStringLiteral("12a-3.,x4"));
        QCOMPARE(numero->text(), QStringLiteral("1234"));
    }

    // The daily balance of a one-day period still shows its one point.
    void onePointGraph()
    {
        reports::engine::ChartDefinition g;
        g.type = QStringLiteral("line");
        g.categories = QStringList{QStringLiteral("01/11/2026")};
        g.series = {{QStringLiteral("Balance"), {125.5}}};
        QImage pagina(800, 400, QImage::Format_RGB32);
        pagina.fill(Qt::white);
        QPainter painter(&pagina);
        reports::engine::renderChart(painter, QRectF(0, 0, 800, 400), 96 / 25.4, g);
        painter.end();
        int punti = 0;
        for (int y = 0; y < pagina.height(); ++y)
            for (int x = 0; x < pagina.width(); ++x)
                punti += QColor(pagina.pixel(x, y)) == QColor(0x3d, 0x6f, 0xa8);
        QVERIFY2(punti > 20, qPrintable(QString::number(punti)));
    }

    // The slip goes to the printer; with none installed the user is told, and the movement stays as written.
    void slipWithoutPrinter()
    {
        if (!QPrinterInfo::defaultPrinter().isNull())
            QSKIP("this machine has a printer");
        store::Database &db = frame::basedati();
        db.execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, IdUtente) "
                                  "values ('2026', 1, '2026-03-10 10:00:00', 'AB123CD', '01', -1, 1)"));
        ScriptedPrompter p;
        reports::CrystalReport report(p);
        QVERIFY(!report.esegui(parking::LancioMovimento(db.lastInsertId())));
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(db.scalar(QStringLiteral("select count(*) from Movimentazioni where Entrato = -1")).toInt(), 1);
    }

    // Without a database the window says so and closes.
    void windowWithoutDatabase()
    {
        ScriptedPrompter p;
        frame::pub().Pathdata = QStringLiteral("/nonexistent/basedati.mdb");
        QPointer<reports::frmStampaCassa> w = new reports::frmStampaCassa(p);
        w->show();
        QTRY_VERIFY(w.isNull());
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, frame::TestoLingua("M0082"));
    }
};

QTEST_MAIN(TestStampe)
#include "tst_stampe.moc"
