// SPDX-License-Identifier: GPL-3.0-or-later
#include <CrystalReport.h>
#include <Database.h>
#include <Language.h>
#include <PublicState.h>
#include <Routines.h>
#include <StampaMovimento.h>
#include <StampeOpzioni.h>
#include <frmStampaCassa.h>
#include <frmStampaPark.h>

#include <ScriptedPrompter.h>
#include <TestDatabase.h>

#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using reports::OpzioniCassa;
using reports::OpzioniPark;

namespace {

const QString Dentro = QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = true");
const QString Fuori = QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = false");

QString finestra(const char *verso, int y, int m, int d, int h, int mi)
{
    return QStringLiteral("{Q_Movimentazioni_Utenti.DataOra} %1 DateSerial (%2,%3,%4) and TimeSerial (Hour "
                          "({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) %1 TimeSerial (%5,%6,0)")
        .arg(QLatin1String(verso))
        .arg(y)
        .arg(m)
        .arg(d)
        .arg(h)
        .arg(mi);
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
        QTest::addColumn<QString>("targa");
        QTest::addColumn<int>("stato");
        QTest::addColumn<bool>("conDate");
        QTest::addColumn<bool>("oreVuote");
        QTest::addColumn<QString>("attesa");
        const int tutti = int(OpzioniPark::Stato::Tutti);
        const QString periodo = finestra(">=", 2026, 3, 1, 8, 5) + QStringLiteral(" and ") + finestra("<=", 2026, 3, 3, 18, 30);
        QTest::newRow("nothing chosen") << "" << tutti << false << false << "";
        QTest::newRow("inside") << "" << int(OpzioniPark::Stato::Dentro) << false << false << Dentro;
        QTest::newRow("out") << "" << int(OpzioniPark::Stato::Usciti) << false << false << Fuori;
        QTest::newRow("plate") << "AB123CD" << tutti << false << false << "{Q_Movimentazioni_Utenti.targa} = \"AB123CD\"";
        QTest::newRow("period by the clock") << "" << tutti << true << false << periodo;
        QTest::newRow("emptied times count as midnight")
            << "" << tutti << true << true << finestra(">=", 2026, 3, 1, 0, 0) + QStringLiteral(" and ") + finestra("<=", 2026, 3, 3, 0, 0);
        QTest::newRow("everything") << "X1" << int(OpzioniPark::Stato::Usciti) << true << false
                                    << QStringLiteral("{Q_Movimentazioni_Utenti.targa} = \"X1\" and ") + Fuori + QStringLiteral(" and ") + periodo;
    }
    void parkSelection()
    {
        QFETCH(QString, targa);
        QFETCH(int, stato);
        QFETCH(bool, conDate);
        QFETCH(bool, oreVuote);
        QFETCH(QString, attesa);
        OpzioniPark o;
        o.targa = targa;
        o.stato = OpzioniPark::Stato(stato);
        if (conDate) {
            o.dal = QDate(2026, 3, 1);
            o.al = QDate(2026, 3, 3);
            // Seconds are ignored.
            if (!oreVuote) {
                o.oraDal = QTime(8, 5, 40);
                o.oraAl = QTime(18, 30, 59);
            }
        }
        QCOMPARE(reports::SelezionePark(o), attesa);
    }

    void cashSelection_data()
    {
        QTest::addColumn<int>("righe");
        QTest::addColumn<bool>("conDate");
        QTest::addColumn<QString>("attesa");
        const QString anno = QStringLiteral("{TabProgressivi.Anno}='2026'");
        QTest::newRow("all") << int(OpzioniCassa::Righe::Tutto) << false << anno;
        QTest::newRow("money in only, unbracketed")
            << int(OpzioniCassa::Righe::SoloEntrate) << false << anno + QStringLiteral(" and isnull({Cassa.uscita}) or {Cassa.uscita}=0");
        QTest::newRow("money out only")
            << int(OpzioniCassa::Righe::SoloUscite) << false << anno + QStringLiteral(" and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0");
        QTest::newRow("period") << int(OpzioniCassa::Righe::Tutto) << true
                                << anno + QStringLiteral(" and {Cassa.Data} >= DateSerial (2026,2,1) and {Cassa.Data} <= DateSerial (2026,12,31)");
    }
    void cashSelection()
    {
        QFETCH(int, righe);
        QFETCH(bool, conDate);
        QFETCH(QString, attesa);
        OpzioniCassa o;
        o.righe = OpzioniCassa::Righe(righe);
        if (conDate) {
            o.dal = QDate(2026, 2, 1);
            o.al = QDate(2026, 12, 31);
        }
        QCOMPARE(reports::SelezioneCassa(o, QStringLiteral("2026")), attesa);
    }

    // The window hands its boxes to the selection as the user left them.
    void parkWindowReadsItsBoxes()
    {
        ScriptedPrompter p;
        reports::frmStampaPark w(p);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        w.findChild<QLineEdit *>(QStringLiteral("TxtTarga"))->setText(QStringLiteral("  ZZ999  "));
        w.findChild<QRadioButton *>(QStringLiteral("Opt2"))->setChecked(true);
        w.findChild<QCheckBox *>(QStringLiteral("ChkGrafOre"))->setChecked(false);
        const OpzioniPark o = w.opzioni();
        QCOMPARE(o.targa, QStringLiteral("ZZ999"));
        QCOMPARE(o.stato, OpzioniPark::Stato::Dentro);
        QVERIFY(!o.graficoOre);
        QCOMPARE(o.dal, std::optional<QDate>(QDate::currentDate()));
        QCOMPARE(o.oraAl, std::optional<QTime>(QTime(23, 59, 59)));
        QCOMPARE(w.windowTitle(), frame::TestoLingua("M0309"));
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
        QVERIFY(!parking::StampaMovimento(report, db.lastInsertId(), true));
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
