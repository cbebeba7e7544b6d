// SPDX-License-Identifier: GPL-3.0-or-later
// The parking window driven as the attendant drives it: a whole stay from the
// entry key to the posting, the quick search, the corrections' refusals, the
// count line, the two layouts and the filter panel, with bad input in its boxes.
#include <FrmResto.h>
#include <frmPark.h>

#include <Currency.h>
#include <Database.h>
#include <Language.h>
#include <PublicState.h>
#include <Recordset.h>
#include <Routines.h>

#include <ScriptedPrompter.h>
#include <TestDatabase.h>

#include <CrystalReport.h>
#include <Filtro.h>

#include <QAction>
#include <QPrintPreviewDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTimer>
#include <QtTest>

#include <memory>

using frame::Prompter;
using frame::pub;
using frame::TestoLingua;

namespace {

// Today, so that the list of the day, where the window opens, holds the entries.
const QDateTime Inizio(QDate::currentDate(), QTime(8, 0));

struct Movimento {
    qint64 progressivo = 0;
    QString targa;
    bool entrato = false, annullato = false, contabilizzato = false;
    store::Currency importo;
};

QList<Movimento> movimenti()
{
    QList<Movimento> v;
    store::Recordset rs(frame::basedati(), QStringLiteral("select * from Movimentazioni order by id"));
    for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
        v << Movimento{rs.value(QStringLiteral("Progressivo")).toLongLong(), rs.value(QStringLiteral("Targa")).toString(),
                       rs.value(QStringLiteral("Entrato")).toBool(), rs.value(QStringLiteral("Annullato")).toBool(),
                       rs.value(QStringLiteral("Contabilizzato")).toBool(),
                       rs.value(QStringLiteral("Importo")).value<store::Currency>()};
    return v;
}

} // namespace

class TestFrmPark : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;
    std::unique_ptr<parking::frmPark> m_park;
    QDateTime m_adesso;

    template <typename T = QLineEdit>
    T *c(const char *nome)
    {
        T *w = m_park->findChild<T *>(QLatin1String(nome));
        if (!w)
            qFatal("no control %s", nome);
        return w;
    }

    void apri()
    {
        m_park = std::make_unique<parking::frmPark>(m_prompter);
        m_park->setAttribute(Qt::WA_DeleteOnClose, false);
        m_park->impostaOrologio([this] { return m_adesso; });
        m_park->show();
        QApplication::setActiveWindow(m_park.get());
        QVERIFY(QTest::qWaitForWindowActive(m_park.get()));
    }

    // Records an entry through F5, the plate box and the action button, answering OK.
    void entra(const QString &targa)
    {
        QTest::keyClick(m_park.get(), Qt::Key_F5);
        c("TxtT_0")->setText(targa);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("CmdEntraEsce")->click();
    }

    // Closes the change calculator that the next exit opens, keeping its amount.
    void chiudiResto(store::Currency *importo, bool *aperto)
    {
        QTimer::singleShot(0, this, [importo, aperto] {
            if (auto *r = qobject_cast<parking::FrmResto *>(QApplication::activeModalWidget())) {
                *importo = r->importo();
                *aperto = true;
                r->accept();
            }
        });
    }

    QStringList testi() const
    {
        QStringList v;
        for (const auto &m : m_prompter.messages)
            v << m.text;
        return v;
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        m_adesso = Inizio;
        pub().FasciaDefault = QStringLiteral("01");
        pub().StampaEntrata = pub().StampaUscita = false;
        pub().TgObbligatoria = false;
        pub().OpModificare = pub().OpAnnullare = pub().OpContabilizzare = false;
        pub().FormatoData = QStringLiteral("dd/MM/yyyy");
        apri();
    }
    void cleanup()
    {
        m_park.reset();
        m_db.reset();
    }

    void opensInOperationOnTheVehiclesInside()
    {
        QVERIFY(c<QWidget>("PicRicRap")->isVisible());
        QVERIFY(c<QRadioButton>("OptEn")->isChecked());
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 0"));
        QCOMPARE(c("TxtTR_1")->text(), QStringLiteral("2026"));
        QCOMPARE(c("TxtDR_0")->text(), QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy")));
        QVERIFY(!c<QPushButton>("CmdEntraEsce")->isEnabled());
        QVERIFY(m_park->pulsante(QStringLiteral("gestione"))->isVisible());
        QVERIFY(!m_park->pulsante(QStringLiteral("trova"))->isVisible());
        QCOMPARE(c<QPushButton>("ComEsegueRicRapida")->text(), TestoLingua("M0141") + QStringLiteral(" F1"));
        QCOMPARE(c("TxtT_0")->maxLength(), 20);
        QCOMPARE(m_park->datPrimaryRS().rowCount(), 0);
    }

    void aWholeStay()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("  AB123CD "));
        QCOMPARE(m_prompter.questions.size(), 1);
        QVERIFY(m_prompter.questions.first().startsWith(TestoLingua("M0066")));
        QCOMPARE(movimenti().size(), 1);
        QCOMPARE(movimenti().first().progressivo, 1);
        QCOMPARE(movimenti().first().targa, QStringLiteral("AB123CD"));
        QVERIFY(movimenti().first().entrato);
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 1"));
        // After the entry the boxes are emptied and the number box has the focus.
        QCOMPARE(c("TxtT_0")->text(), QString());
        QCOMPARE(QApplication::focusWidget(), c("TxtProg"));
        QCOMPARE(m_park->datPrimaryRS().rowCount(), 1);

        // The quick search finds it by number, and the button offers the exit.
        c("TxtProg")->setText(QStringLiteral(" 1 "));
        QTest::keyClick(m_park.get(), Qt::Key_F1);
        QCOMPARE(c("TxtProg")->text(), QStringLiteral("1"));
        QCOMPARE(c("TxtT_2")->text(), QStringLiteral("1"));
        QCOMPARE(c("TxtT_0")->text(), QStringLiteral("AB123CD"));
        QCOMPARE(c<QPushButton>("CmdEntraEsce")->text(), TestoLingua("M0195"));
        QVERIFY(c<QPushButton>("CmdEntraEsce")->isEnabled());
        QVERIFY(!m_park->ProssimaEntrata());
        QCOMPARE(m_park->datPrimaryRS().data(m_park->datPrimaryRS().index(0, 0), Qt::BackgroundRole).value<QColor>(),
                 QColor(0, 255, 0));

        // The exit prices the stay and opens the change calculator with the amount.
        m_adesso = Inizio.addSecs(150 * 60);
        store::Currency resto;
        bool aperto = false;
        chiudiResto(&resto, &aperto);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("CmdEntraEsce")->click();
        QVERIFY(aperto);
        const Movimento uscito = movimenti().first();
        QVERIFY(!uscito.entrato);
        QVERIFY(uscito.importo > store::Currency());
        QCOMPARE(resto, uscito.importo);
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 0"));

        // Posting: one cash row with the exact sum; a second press has nothing to post.
        c<QPushButton>("ComCont")->click();
        QVERIFY(movimenti().first().contabilizzato);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 1);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select Entrata from Cassa")).toDouble(), uscito.importo.toDouble());
        QVERIFY(testi().last().startsWith(TestoLingua("M0059")));
        c<QPushButton>("ComCont")->click();
        QCOMPARE(testi().last(), TestoLingua("M0061"));
    }

    void cancelAtTheQuestionWritesNothing()
    {
        QTest::keyClick(m_park.get(), Qt::Key_F5);
        c("TxtT_0")->setText(QStringLiteral("AB123CD"));
        m_prompter.answer(Prompter::Answer::Cancel);
        c<QPushButton>("CmdEntraEsce")->click();
        QVERIFY(movimenti().isEmpty());
        QCOMPARE(c("TxtT_0")->text(), QStringLiteral("AB123CD"));
    }

    void entryRefusals_data()
    {
        QTest::addColumn<QString>("targa");
        QTest::addColumn<QString>("fascia");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<QString>("fuoco");
        QTest::newRow("short plate") << "AB12" << "01" << "M0063" << "TxtT_0";
        QTest::newRow("no band") << "AB123CD" << "" << "M0064" << "TxtT_0";
        QTest::newRow("unknown band") << "AB123CD" << "9'9" << "M0065" << "TxtTC_0";
    }
    void entryRefusals()
    {
        QFETCH(QString, targa);
        QFETCH(QString, fascia);
        QFETCH(QString, chiave);
        QFETCH(QString, fuoco);
        QTest::keyClick(m_park.get(), Qt::Key_F5);
        c("TxtT_0")->setText(targa);
        c("TxtTC_0")->setText(fascia);
        c<QPushButton>("CmdEntraEsce")->click();
        QCOMPARE(testi(), QStringList{TestoLingua(chiave.toLatin1().constData())});
        QVERIFY(m_prompter.questions.isEmpty());
        QVERIFY(movimenti().isEmpty());
        QCOMPARE(QApplication::focusWidget()->objectName(), fuoco);
    }

    void bandBoxesFollowEachOther()
    {
        QTest::keyClick(m_park.get(), Qt::Key_F5);
        auto *nomi = c<QComboBox>("TDBComboC_0");
        QCOMPARE(nomi->currentData().toString(), QStringLiteral("01"));
        c("TxtTC_0")->setText(QStringLiteral("02"));
        QCOMPARE(nomi->currentData().toString(), QStringLiteral("02"));
        nomi->setCurrentIndex(0);
        emit nomi->activated(0);
        QCOMPARE(c("TxtTC_0")->text(), QStringLiteral("01"));
    }

    void cancellingAnInsideVehicleLeavesTheCount()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        entra(QStringLiteral("XY999ZZ"));
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 2"));
        c<QRadioButton>("OptEn")->click();
        QCOMPARE(m_park->datPrimaryRS().rowCount(), 2);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("ComAnn")->click();
        QVERIFY(movimenti().first().annullato);
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 1"));
        QCOMPARE(QApplication::focusWidget(), c<QTableView>("TDBGrid2"));
    }

    void correctionsAndPostingRefusals_data()
    {
        QTest::addColumn<QString>("bottone");
        QTest::addColumn<QString>("chiave");
        QTest::newRow("correct") << "ComMod" << "M0049";
        QTest::newRow("cancel") << "ComAnn" << "M0054";
        QTest::newRow("post") << "ComCont" << "M0058";
    }
    void correctionsAndPostingRefusals()
    {
        QFETCH(QString, bottone);
        QFETCH(QString, chiave);
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        c<QRadioButton>("OptEn")->click();
        pub().UtenteCorrente = QStringLiteral("mario");
        m_prompter.messages.clear();
        c<QPushButton>(bottone.toLatin1().constData())->click();
        QCOMPARE(testi(), QStringList{TestoLingua(chiave.toLatin1().constData())});
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Information);
        QCOMPARE(m_prompter.questions.size(), 1); // the entry's only
        QVERIFY(movimenti().first().entrato && !movimenti().first().annullato);
        QCOMPARE(QApplication::focusWidget(), c<QTableView>("TDBGrid2"));
    }

    void correctionWithNothingShown()
    {
        c<QPushButton>("ComMod")->click();
        QCOMPARE(testi(), QStringList{TestoLingua("M0050")});
    }

    void correctionReplaysTheExit()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        c<QRadioButton>("OptEn")->click();
        m_adesso = Inizio.addSecs(30 * 60);
        m_prompter.answer(Prompter::Answer::Ok); // correct?
        m_prompter.answer(Prompter::Answer::Ok); // exit?
        c<QComboBox>("TxtT_4")->setCurrentText(TestoLingua("M0298"));
        store::Currency resto;
        bool aperto = false;
        chiudiResto(&resto, &aperto);
        c<QPushButton>("ComMod")->click();
        QVERIFY(aperto);
        QCOMPARE(movimenti().size(), 1);
        QCOMPARE(movimenti().first().progressivo, 1);
        QVERIFY(!movimenti().first().entrato);
        QCOMPARE(resto, movimenti().first().importo);
    }

    void quickSearchMessages_data()
    {
        QTest::addColumn<QString>("numero");
        QTest::addColumn<QString>("targa");
        QTest::addColumn<QString>("data");
        QTest::addColumn<QString>("chiave");
        QTest::newRow("not a date") << "" << "" << "31/02/2026" << "M0008";
        QTest::newRow("not a number") << "1'; drop table x" << "" << "" << "M0077";
        QTest::newRow("pattern letters") << "" << "%_[#*'\"" << "" << "M0077";
        QTest::newRow("very long plate") << "" << QString(10000, QLatin1Char('A')) << "" << "M0077";
        QTest::newRow("year of nothing") << "1" << "" << "" << "M0077";
    }
    void quickSearchMessages()
    {
        QFETCH(QString, numero);
        QFETCH(QString, targa);
        QFETCH(QString, data);
        QFETCH(QString, chiave);
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        m_prompter.messages.clear();
        c("TxtProg")->setText(numero);
        c("TxtTR_1")->setText(QStringLiteral("2025"));
        c("TxtTR_2")->setText(targa);
        c("TxtDR_0")->setText(data);
        c<QPushButton>("ComEsegueRicRapida")->click();
        QCOMPARE(testi(), QStringList{TestoLingua(chiave.toLatin1().constData())});
        QCOMPARE(movimenti().size(), 1);
        QCOMPARE(QApplication::focusWidget(), chiave == QLatin1String("M0008") ? c("TxtDR_0") : c("TxtProg"));
    }

    void optionsSearchSilently()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        c<QRadioButton>("OptUs")->click();
        QVERIFY(m_prompter.messages.isEmpty());
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0301"));
        QCOMPARE(m_park->datPrimaryRS().rowCount(), 0);
        c<QRadioButton>("OptTu")->click();
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0300"));
        QCOMPARE(m_park->datPrimaryRS().rowCount(), 1);
    }

    void managementLayoutAndFilterPanel()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        entra(QStringLiteral("AC555XX"));
        m_park->pulsante(QStringLiteral("gestione"))->trigger();
        QVERIFY(!c<QWidget>("PicRicRap")->isVisible());
        QVERIFY(m_park->pulsante(QStringLiteral("trova"))->isVisible());
        m_park->pulsante(QStringLiteral("trova"))->trigger();
        QCOMPARE(m_park->pannelloVisibile(), 2);

        // A date box with no date stops the search where it is.
        forms::PannelloFiltro *f = m_park->filtri();
        int data = -1, targa = -1;
        const auto caselle = f->caselle();
        for (int i = 0; i < caselle.size(); ++i) {
            if (caselle[i].campo == QLatin1String("DataOra"))
                data = i;
            if (caselle[i].campo == QLatin1String("Targa"))
                targa = i;
        }
        QVERIFY(data >= 0 && targa >= 0);
        f->casella(data)->setText(QStringLiteral("yesterday"));
        m_park->Command6();
        QCOMPARE(testi().last(), TestoLingua("M0008"));
        QCOMPARE(m_park->pannelloVisibile(), 2);

        // A plate prefix lists its movements, in capitals or not.
        f->casella(data)->clear();
        f->casella(targa)->setText(QStringLiteral("ab"));
        m_park->Command6();
        QCOMPARE(m_park->pannelloVisibile(), 1);
        QCOMPARE(m_park->datPrimaryRSGrd().rowCount(), 1);
        QCOMPARE(m_park->where(), QStringLiteral("where Q_Movimentazioni_Utenti.Targa like 'ab%' escape '\\'"));

        // Picking it shows it and goes back to the operation layout.
        m_park->grdDataGrid()->setCurrentIndex(m_park->datPrimaryRSGrd().index(0, 0));
        m_park->PosizionaRecord();
        QCOMPARE(m_park->pannelloVisibile(), 0);
        QVERIFY(c<QWidget>("PicRicRap")->isVisible());
        QCOMPARE(c("TxtT_0")->text(), QStringLiteral("AB123CD"));
    }

    // The print mode lists the same movements through their own template.
    void printModeListsTheMovements()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        entra(QStringLiteral("AC555XX"));
        forms::CasellaFiltro targa;
        targa.campo = QStringLiteral("Targa");
        targa.didascalia = TestoLingua("M0203");
        targa.valore = QStringLiteral("ab");
        const forms::Filtro f = forms::CostruisciFiltro(QStringLiteral("Q_Movimentazioni_Utenti"), {targa}, 0, m_prompter);
        // Templates stand in the program folder; the texts have been read already.
        pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");
        QTemporaryDir out;
        reports::CrystalReport report(m_prompter);
        report.setKeepLayout(true);
        report.setPrintFileName(out.filePath(QStringLiteral("movimenti.pdf")));
        QVERIFY2(forms::StampaFiltro(report, f, reports::CrystalReport::ToFile, QStringLiteral("ElencoMovimenti"), "M0296"),
                 qPrintable(report.lastError()));
        QCOMPARE(report.lastRowCount(), 1);
        QVERIFY(report.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(TestoLingua("M0296")));

        // From the window, the same filter opens the preview.
        m_park->pulsante(QStringLiteral("gestione"))->trigger();
        m_park->pulsante(QStringLiteral("stampa"))->trigger();
        QCOMPARE(m_park->filtri()->modo(), forms::PannelloFiltro::Modo::Stampa);
        m_park->Command6();
        QPrintPreviewDialog *anteprima = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *d = qobject_cast<QPrintPreviewDialog *>(w); d && d->isVisible())
                anteprima = d;
        QVERIFY(anteprima);
        anteprima->close();
        QVERIFY(m_prompter.messages.isEmpty());
    }

    void escapeDoesNothingInOperation()
    {
        QTest::keyClick(m_park.get(), Qt::Key_Escape);
        QTest::keyClick(m_park.get(), Qt::Key_F8);
        QVERIFY(m_prompter.questions.isEmpty());
        QVERIFY(m_prompter.messages.isEmpty());
    }
};

QTEST_MAIN(TestFrmPark)
#include "tst_frmpark.moc"
