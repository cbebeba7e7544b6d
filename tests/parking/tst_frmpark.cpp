// SPDX-License-Identifier: GPL-3.0-or-later
// The parking window driven as the attendant drives it: a whole stay from the
// entry key to the posting, the quick search, the corrections' refusals, the
// count line, the two layouts and the filter panel, with bad input in its boxes.
#include "forms/ui/frmtabelle.h"
#include "parking/ui/FrmResto.h"
#include "parking/ui/frmPark.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Currency.h"
#include "store/Database.h"
#include "store/Recordset.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestWindows.h"

#include "support/Colonne.h"

#include <QAction>
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

    // Records an entry through F5, the plate box and the action button, answering OK.
    void entra(const QString &targa)
    {
        QTest::keyClick(m_park.get(), Qt::Key_F5);
        c("TxtT_0")->setText(targa);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("CmdEntraEsce")->click();
    }

    // What the window shows while the change calculator of the next exit is open; the box is then closed.
    struct Resto {
        bool aperto = false;
        store::Currency importo;
        QString numero; // the movement number the panel shows behind the box
        int righe = 0; // rows of the list behind it
    };
    void chiudiResto(Resto *r)
    {
        QTimer::singleShot(0, this, [this, r] {
            if (auto *d = qobject_cast<parking::FrmResto *>(QApplication::activeModalWidget())) {
                *r = {true, d->importo(), c("TxtT_2")->text(), m_park->datPrimaryRS().rowCount()};
                d->accept();
            }
        });
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        m_adesso = Inizio;
        pub().FasciaDefault = QStringLiteral("01");
        pub().StampaEntrata = pub().StampaUscita = pub().TgObbligatoria = false;
        pub().OpModificare = pub().OpAnnullare = pub().OpContabilizzare = false;
        pub().FormatoData = QStringLiteral("dd/MM/yyyy");
        m_park = std::make_unique<parking::frmPark>(m_prompter);
        m_park->setAttribute(Qt::WA_DeleteOnClose, false);
        m_park->impostaOrologio([this] { return m_adesso; });
        QVERIFY(showActive(m_park.get()));
    }
    void cleanup() { m_park.reset(); m_db.reset(); }

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
        entra(QStringLiteral("AB123CD")); // no test looks for a plate already inside
        QCOMPARE(m_prompter.questions.size(), 2);
        QVERIFY(m_prompter.questions.first().startsWith(TestoLingua("M0066")));
        QCOMPARE(movimenti().size(), 2);
        QCOMPARE(movimenti().first().progressivo, 1);
        QCOMPARE(movimenti().first().targa, QStringLiteral("AB123CD"));
        QVERIFY(movimenti().first().entrato);
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 2"));
        // After the entry the boxes are emptied and the number box has the focus.
        QCOMPARE(c("TxtT_0")->text(), QString());
        QCOMPARE(QApplication::focusWidget(), c("TxtProg"));

        // The quick search finds it by number, and the button offers the exit.
        c("TxtProg")->setText(QStringLiteral(" 1 "));
        QTest::keyClick(m_park.get(), Qt::Key_F1);
        QCOMPARE(c("TxtProg")->text(), QStringLiteral("1"));
        QCOMPARE(c("TxtT_2")->text(), QStringLiteral("1"));
        QCOMPARE(c<QPushButton>("CmdEntraEsce")->text(), TestoLingua("M0195"));
        QVERIFY(!m_park->ProssimaEntrata());
        QCOMPARE(m_park->datPrimaryRS().data(m_park->datPrimaryRS().index(0, 0), Qt::BackgroundRole).value<QColor>(),
                 QColor(0, 255, 0));

        // The exit prices the stay and opens the change calculator with the amount, over the
        // vehicle that left: the list is read again only when it closes.
        m_adesso = Inizio.addSecs(150 * 60);
        Resto resto;
        chiudiResto(&resto);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("CmdEntraEsce")->click();
        QVERIFY(resto.aperto);
        const Movimento uscito = movimenti().first();
        QVERIFY(!uscito.entrato);
        QVERIFY(uscito.importo > store::Currency());
        QCOMPARE(resto.importo, uscito.importo);
        QCOMPARE(resto.numero, QStringLiteral("1"));
        QCOMPARE(resto.righe, 2);
        QCOMPARE(m_park->datPrimaryRS().rowCount(), 1);
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 1"));

        // Posting: one cash row with the exact sum; a second press has nothing to post.
        c<QRadioButton>("OptTu")->click(); // the list shows the movement out, still unposted
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0300"));
        c<QPushButton>("ComCont")->click();
        QVERIFY(movimenti().first().contabilizzato);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 1);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select Entrata from Cassa")).toDouble(), uscito.importo.toDouble());
        QVERIFY(m_prompter.texts().last().startsWith(TestoLingua("M0059")));
        c<QPushButton>("ComCont")->click();
        QCOMPARE(m_prompter.texts().last(), TestoLingua("M0061"));

        // Without moving, the row shown unposted is posted all the same: neither cancelled nor corrected.
        for (const auto &[bottone, chiave] : {std::pair("ComMod", "M0052"), std::pair("ComAnn", "M0056")}) {
            m_prompter.answer(Prompter::Answer::Ok);
            m_prompter.answer(Prompter::Answer::Ok);
            c<QPushButton>(bottone)->click();
            QCOMPARE(m_prompter.texts().last(), TestoLingua(chiave));
        }
        QCOMPARE(m_prompter.questions.size(), 3); // the entries' and the exit's only
        QVERIFY(!movimenti().first().annullato);
        QCOMPARE(movimenti().first().importo, uscito.importo);

        // Cancelling the vehicle still inside takes it out of the count.
        c<QRadioButton>("OptEn")->click();
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("ComAnn")->click();
        QVERIFY(movimenti().last().annullato);
        QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0299") + QStringLiteral(": 0"));
    }

    // A band changed in the table editor, by typing in its grid, is the band the next exit prices with.
    void aBandEditedPricesTheNextExit()
    {
        forms::frmtabelle tabella(m_prompter);
        tabella.setAttribute(Qt::WA_DeleteOnClose, false);
        tabella.CaricaTextFormatGriglia(forms::ImpostazioneFascia());
        QVERIFY(showActive(&tabella));
        auto *griglia = tabella.findChild<QTableView *>(QStringLiteral("grdDataGrid"));
        forms::RecordsetModel &m = tabella.datPrimaryRS();
        griglia->setCurrentIndex(m.index(0, m.colonna(QStringLiteral("Importo")))); // band 01, 2.00 an hour
        griglia->edit(griglia->currentIndex());
        QWidget *editore = QApplication::focusWidget();
        QVERIFY(qobject_cast<QLineEdit *>(editore));
        QTest::keyClicks(editore, QStringLiteral("5x")); // the letter is refused by the box
        QTest::keyClick(editore, Qt::Key_Tab);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select Importo from Fascia where id = '01'")).toString(), QStringLiteral("50000"));
        tabella.close();

        QVERIFY(showActive(m_park.get()));
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        c("TxtProg")->setText(QStringLiteral("1"));
        QTest::keyClick(m_park.get(), Qt::Key_F1);
        m_adesso = Inizio.addSecs(150 * 60);
        Resto resto;
        chiudiResto(&resto);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("CmdEntraEsce")->click();
        QCOMPARE(movimenti().size(), 1);
        QCOMPARE(movimenti().first().importo.toPlainText(), QStringLiteral("15")); // three hours started at 5.00

        // Zero minutes are stored as typed; the next exit on the band is refused with its message and writes nothing.
        QVERIFY(showActive(&tabella));
        tabella.CaricaTextFormatGriglia(forms::ImpostazioneFascia());
        forms::RecordsetModel &bande = tabella.datPrimaryRS();
        griglia->setCurrentIndex(bande.index(0, bande.colonna(QStringLiteral("Minuti1Frazione"))));
        griglia->edit(griglia->currentIndex());
        auto *minuti = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        QVERIFY(minuti);
        minuti->selectAll();
        QTest::keyClicks(minuti, QStringLiteral("0"));
        QTest::keyClick(minuti, Qt::Key_Tab);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select Minuti1Frazione from Fascia where id = '01'")).toInt(), 0);
        tabella.close();
        QVERIFY(showActive(m_park.get()));
        entra(QStringLiteral("EF456GH"));
        c("TxtProg")->setText(QStringLiteral("2"));
        QTest::keyClick(m_park.get(), Qt::Key_F1);
        m_prompter.messages.clear();
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("CmdEntraEsce")->click();
        QCOMPARE(m_prompter.texts().value(0), frame::TestoLingua("M0073"));
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Movimentazioni where Entrato <> 0")).toInt(), 1);
    }

    // A correction right after an entry works on the row the panel shows, never on boxes
    // that the refresh emptied: the first press shows the row, the second replays it.
    void correctionRightAfterTheEntry()
    {
        pub().OpModificare = true;
        entra(QStringLiteral("AB123CD"));
        m_prompter.answer(Prompter::Answer::Ok);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>("ComMod")->click();
        QCOMPARE(m_prompter.questions.size(), 1);
        QCOMPARE(movimenti().first().targa, QStringLiteral("AB123CD"));
        QCOMPARE(c("TxtT_0")->text(), QStringLiteral("AB123CD"));
        QCOMPARE(QApplication::focusWidget(), c("TxtT_0"));
        c("TxtT_0")->setText(QStringLiteral("AB123CE"));
        c<QPushButton>("ComMod")->click();
        QCOMPARE(m_prompter.questions.size(), 3);
        QCOMPARE(movimenti().first().targa, QStringLiteral("AB123CE"));

        // Replaying the exit prices the stay and opens the change calculator; the number stays.
        c<QPushButton>("ComMod")->click(); // the refresh after the replay emptied the panel again
        QCOMPARE(m_prompter.questions.size(), 3);
        m_adesso = Inizio.addSecs(30 * 60);
        m_prompter.answer(Prompter::Answer::Ok);
        m_prompter.answer(Prompter::Answer::Ok);
        c<QComboBox>("TxtT_4")->setCurrentText(TestoLingua("M0298"));
        Resto resto;
        chiudiResto(&resto);
        c<QPushButton>("ComMod")->click();
        QVERIFY(resto.aperto);
        QCOMPARE(resto.numero, QStringLiteral("1"));
        QCOMPARE(movimenti().size(), 1);
        QCOMPARE(movimenti().first().progressivo, 1);
        QVERIFY(!movimenti().first().entrato);
        QCOMPARE(resto.importo, movimenti().first().importo);
    }

    // Each refusal of the entry shows its message and puts the focus where it says; a Cancel at
    // the question keeps the panel. Nothing is written, not even the counter.
    void entryRefusals_data()
    {
        // chiave: "": the question is answered Cancel
        colonne<bool, QString, QString, QString, QString>({"obbligatoria", "targa", "fascia", "chiave", "fuoco"});
        QTest::newRow("plate required") << true << "   " << "01" << "M0062" << "TxtT_0";
        QTest::newRow("short plate, blanks dropped first") << false << " ABCD " << "01" << "M0063" << "TxtT_0";
        QTest::newRow("no band") << false << "AB123CD" << "" << "M0064" << "TxtT_0";
        QTest::newRow("unknown band") << false << "AB123CD" << "9'9" << "M0065" << "TxtTC_0";
        QTest::newRow("cancelled at the question") << false << "AB123CD" << "01" << "" << "TxtT_0";
    }
    void entryRefusals()
    {
        QFETCH(bool, obbligatoria); QFETCH(QString, targa); QFETCH(QString, fascia); QFETCH(QString, chiave);
        QFETCH(QString, fuoco);
        pub().TgObbligatoria = obbligatoria;
        QTest::keyClick(m_park.get(), Qt::Key_F5);
        c("TxtT_0")->setText(targa);
        c("TxtTC_0")->setText(fascia);
        m_prompter.answer(Prompter::Answer::Cancel);
        c<QPushButton>("CmdEntraEsce")->click();
        QCOMPARE(m_prompter.texts(), chiave.isEmpty() ? QStringList() : QStringList{TestoLingua(chiave.toLatin1().constData())});
        QCOMPARE(m_prompter.questions.size(), chiave.isEmpty() ? 1 : 0);
        QVERIFY(movimenti().isEmpty());
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from TabProgressivi")).toInt(), 0);
        QCOMPARE(c("TxtT_0")->text(), targa.trimmed());
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

    void correctionsAndPostingRefusals_data()
    {
        colonne<QString, QString, QString>({"bottone", "chiave", "utente"});
        QTest::newRow("correct") << "ComMod" << "M0049" << "mario";
        QTest::newRow("cancel") << "ComAnn" << "M0054" << "mario";
        QTest::newRow("post") << "ComCont" << "M0058" << "mario";
        QTest::newRow("correct with nothing shown") << "ComMod" << "M0050" << "administrator";
    }
    void correctionsAndPostingRefusals()
    {
        QFETCH(QString, bottone); QFETCH(QString, chiave); QFETCH(QString, utente);
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        c<QRadioButton>(chiave == QLatin1String("M0050") ? "OptUs" : "OptEn")->click();
        pub().UtenteCorrente = utente;
        m_prompter.messages.clear();
        c<QPushButton>(bottone.toLatin1().constData())->click();
        QCOMPARE(m_prompter.texts(), QStringList{TestoLingua(chiave.toLatin1().constData())});
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Information);
        QCOMPARE(m_prompter.questions.size(), 1); // the entry's only
        QVERIFY(movimenti().first().entrato && !movimenti().first().annullato);
        QCOMPARE(QApplication::focusWidget(), c<QTableView>("TDBGrid2"));
        if (chiave == QLatin1String("M0050")) // an option that empties the list says nothing of it
            QCOMPARE(c<QLabel>("LblAuto")->text(), TestoLingua("M0301"));
    }

    // A search's message puts the focus on the box to mend: the date, or the number.
    void quickSearchMessages()
    {
        c("TxtDR_0")->clear();
        entra(QStringLiteral("AB123CD"));
        for (const auto &[data, chiave, fuoco] :
             {std::tuple("31/02/2026", "M0008", "TxtDR_0"), std::tuple("", "M0077", "TxtProg")}) {
            c("TxtProg")->setText(QStringLiteral("1'; drop table x"));
            c("TxtDR_0")->setText(QLatin1String(data));
            c<QPushButton>("ComEsegueRicRapida")->click();
            QCOMPARE(m_prompter.texts().last(), TestoLingua(chiave));
            QCOMPARE(QApplication::focusWidget()->objectName(), QString::fromLatin1(fuoco));
        }
        QCOMPARE(m_prompter.texts().size(), 2);
        QCOMPARE(movimenti().size(), 1);
    }

    // The management layout: the filter panel lists movements by their boxes, picking one shows
    // it back in the operation layout, and the print mode previews the list through its template.
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

        // A plate prefix lists its movements, in capitals or not.
        forms::PannelloFiltro *f = m_park->filtri();
        const auto caselle = f->caselle();
        for (int i = 0; i < caselle.size(); ++i)
            if (caselle[i].campo == QLatin1String("Targa"))
                f->casella(i)->setText(QStringLiteral("ab"));
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

        // Templates stand in the program folder; the texts have been read already.
        pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");
        m_park->pulsante(QStringLiteral("gestione"))->trigger();
        m_park->pulsante(QStringLiteral("stampa"))->trigger();
        QCOMPARE(m_park->filtri()->modo(), forms::PannelloFiltro::Modo::Stampa);
        m_park->Command6();
        QWidget *anteprima = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == QLatin1String("AnteprimaReport") && w->isVisible())
                anteprima = w;
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
