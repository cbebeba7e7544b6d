// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaTesto.h"
#include "parking/StampaMovimento.h"
#include "parking/ui/frmPark.h"
#include "reports/engine/CrystalReport.h"
#include "reports/engine/ReportChart.h"
#include "reports/runs/StampeOpzioni.h"
#include "reports/ui/frmStampaCassa.h"
#include "reports/ui/frmStampaPark.h"
#include "store/Database.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"

#include <QCheckBox>
#include <QImage>
#include <QPainter>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QRadioButton>
#include <QtTest>

#include <memory>

using reports::OpzioniCassa;
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
