// SPDX-License-Identifier: GPL-3.0-or-later
// The record form machine, driven on a small form over the band table: the
// toolbar layouts, adding, editing, deleting and cancelling through bottoni,
// the rights letter, the form keys, and the list and filter panels.
#include <FormRecord.h>
#include <Scheda.h>

#include <Currency.h>
#include <Database.h>
#include <Language.h>
#include <PublicState.h>
#include <Recordset.h>
#include <Routines.h>

#include <ScriptedPrompter.h>
#include <TestDatabase.h>

#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

using forms::Layout;
using frame::Prompter;
using frame::pub;

Q_DECLARE_METATYPE(Layout)

namespace {

// A record form over Fascia: code, name and amount bound to three boxes.
class SchedaFasce final : public forms::FormRecord {
public:
    explicit SchedaFasce(Prompter &prompter)
        : FormRecord(prompter, configurazione(), nullptr)
    {
        auto *pagina = new QWidget(this);
        auto *layout = new QVBoxLayout(pagina);
        for (QLineEdit *e : {codice, nome, importo}) {
            e->setParent(pagina);
            layout->addWidget(e);
        }
        codice->setObjectName(QStringLiteral("TxtTC_0"));
        nome->setObjectName(QStringLiteral("TxtT_0"));
        importo->setObjectName(QStringLiteral("TxtN_0"));
        impostaDettaglio(pagina, {pagina});
        lega(codice, QStringLiteral("id"), forms::TipoCasellaScheda::Codice);
        lega(nome, QStringLiteral("DescrizioneFascia"), forms::TipoCasellaScheda::Testo);
        lega(importo, QStringLiteral("Importo"), forms::TipoCasellaScheda::Numero);
        ImpostaCampi();
        ImpostaDidascalie();
        forms::CasellaFiltro k;
        k.campo = QStringLiteral("DescrizioneFascia");
        k.didascalia = QStringLiteral("Name");
        impostaCatalogoFiltri({k});
        Gestione();
        apriDettaglio(QStringLiteral("select * from Fascia order by id"), {});
    }

    static forms::ConfigurazioneScheda configurazione()
    {
        forms::ConfigurazioneScheda c;
        c.tabella = QStringLiteral("Fascia");
        c.sorgenteIniziale = QStringLiteral("select * from Fascia where id = '-1'");
        c.azioni = forms::ChiaviToolbar();
        c.azioni.removeAll(QStringLiteral("gestione"));
        return c;
    }

    QLineEdit *codice = new QLineEdit;
    QLineEdit *nome = new QLineEdit;
    QLineEdit *importo = new QLineEdit;
    int predefiniti = 0;

protected:
    void impostaPredefiniti() override
    {
        ++predefiniti;
        importo->setText(QStringLiteral("1.5"));
    }
};

QStringList fasce()
{
    QStringList v;
    store::Recordset rs(frame::basedati(), QStringLiteral("select id, DescrizioneFascia, Importo from Fascia order by id"));
    for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
        v << rs.value(0).toString() + QLatin1Char('|') + rs.value(1).toString() + QLatin1Char('|')
                 + rs.value(2).value<store::Currency>().toPlainText();
    return v;
}

bool attivo(forms::FormRecord &f, const char *chiave)
{
    const QAction *a = f.pulsante(QLatin1String(chiave));
    return a->isVisible() && a->isEnabled();
}

} // namespace

class TestScheda : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;
    std::unique_ptr<SchedaFasce> m_form;
    QString m_stato;

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        pub().statusSink = [this](const QString &t) { m_stato = t; };
        m_form = std::make_unique<SchedaFasce>(m_prompter);
        m_form->setAttribute(Qt::WA_DeleteOnClose, false);
        m_form->show();
        QApplication::setActiveWindow(m_form.get());
        QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    }
    void cleanup()
    {
        m_form.reset();
        pub().statusSink = nullptr;
        m_db.reset();
    }

    void layouts_data()
    {
        QTest::addColumn<Layout>("layout");
        QTest::addColumn<QStringList>("offerti");
        QTest::addColumn<QStringList>("visibili");
        QTest::addColumn<QStringList>("abilitati");
        const QStringList tutti = forms::ChiaviToolbar();
        QTest::newRow("operation") << Layout::Attivazione << tutti << QStringList{"gestione"} << QStringList{"gestione"};
        QTest::newRow("browse") << Layout::Gestione << tutti
                                << QStringList{"aggiungi", "modifica", "elimina", "sep1", "trova", "stampa", "sep2",
                                               "ok", "annulla", "refresh", "esci"}
                                << QStringList{"aggiungi", "modifica", "elimina", "trova", "stampa", "refresh", "esci"};
        QTest::newRow("editing") << Layout::Modifica << tutti
                                 << QStringList{"aggiungi", "modifica", "elimina", "sep1", "trova", "stampa", "sep2",
                                                "ok", "annulla", "refresh", "esci"}
                                 << QStringList{"ok", "annulla", "esci"};
        // The parking window offers no add, change or delete: their separator goes too.
        QTest::newRow("browse, parking") << Layout::Gestione
                                         << QStringList{"trova", "stampa", "gestione", "refresh", "esci"}
                                         << QStringList{"trova", "stampa", "sep2", "refresh", "esci"}
                                         << QStringList{"trova", "stampa", "refresh", "esci"};
    }
    void layouts()
    {
        QFETCH(Layout, layout);
        QFETCH(QStringList, offerti);
        QFETCH(QStringList, visibili);
        QFETCH(QStringList, abilitati);
        const auto stato = forms::Pulsanti(layout, offerti);
        QStringList v, a;
        for (const QString &k : forms::ChiaviToolbar()) {
            if (stato.value(k).visibile)
                v << k;
            if (stato.value(k).abilitato)
                a << k;
        }
        QCOMPARE(v, visibili);
        QCOMPARE(a, abilitati);
    }

    void limiti_data()
    {
        QTest::addColumn<int>("tipo");
        QTest::addColumn<int>("casella");
        QTest::addColumn<int>("dimensione");
        QTest::addColumn<int>("lunghezza"); // -1: none
        QTest::addColumn<double>("massimo");  // 0: none
        using store::FieldKind;
        using forms::TipoCasellaScheda;
        QTest::newRow("text in a text box") << int(FieldKind::Text) << int(TipoCasellaScheda::Testo) << 20 << 20 << 0.0;
        QTest::newRow("memo in a text box") << int(FieldKind::Memo) << int(TipoCasellaScheda::Testo) << 255 << 255 << 0.0;
        QTest::newRow("memo in a code box") << int(FieldKind::Memo) << int(TipoCasellaScheda::Codice) << 255 << -1 << 0.0;
        QTest::newRow("currency") << int(FieldKind::Currency) << int(TipoCasellaScheda::Numero) << 0 << -1 << 922337203685477.0;
        QTest::newRow("long") << int(FieldKind::Long) << int(TipoCasellaScheda::Numero) << 0 << -1 << 2147483647.0;
        QTest::newRow("double keeps its box") << int(FieldKind::Double) << int(TipoCasellaScheda::Numero) << 0 << -1 << 0.0;
        QTest::newRow("text in a number box") << int(FieldKind::Text) << int(TipoCasellaScheda::Numero) << 20 << -1 << 0.0;
    }
    void limiti()
    {
        QFETCH(int, tipo);
        QFETCH(int, casella);
        QFETCH(int, dimensione);
        QFETCH(int, lunghezza);
        QFETCH(double, massimo);
        store::FieldInfo f;
        f.kind = store::FieldKind(tipo);
        f.size = dimensione;
        const forms::LimitiCasella l = forms::LimitiCampo(f, forms::TipoCasellaScheda(casella));
        QCOMPARE(l.lunghezzaMassima.value_or(-1), lunghezza);
        QCOMPARE(l.massimo.value_or(0), massimo);
        if (l.massimo)
            QCOMPARE(*l.minimo, f.kind == store::FieldKind::Long ? -2147483648.0 : -922337203685477.0);
    }

    void boxesTakeTheirFieldsLimits()
    {
        QCOMPARE(m_form->codice->maxLength(), 10);
        QCOMPARE(m_form->nome->maxLength(), 50);
        QVERIFY(m_form->importo->validator());
        QCOMPARE(m_form->pulsante("aggiungi")->text(), frame::TestoLingua("M0138"));
        QCOMPARE(m_form->pulsante("esci")->toolTip(), frame::TestoLingua("M0161"));
    }

    void addWritesTheRowAndShowsIt()
    {
        m_form->bottoni(QStringLiteral("aggiungi"));
        QCOMPARE(m_form->layout(), Layout::Gestione); // the layout to go back to
        QVERIFY(attivo(*m_form, "ok") && attivo(*m_form, "annulla") && !attivo(*m_form, "aggiungi"));
        QCOMPARE(m_stato, frame::TestoLingua("M0014"));
        QCOMPARE(m_form->predefiniti, 1);
        QCOMPARE(m_form->nome->text(), QString()); // a new row shows empty, then the defaults
        QCOMPARE(m_form->importo->text(), QStringLiteral("1.5"));
        m_form->codice->setText(QStringLiteral("03"));
        m_form->nome->setText(QStringLiteral("Night's rate"));
        m_form->bottoni(QStringLiteral("ok"));
        QCOMPARE(m_stato, frame::TestoLingua("M0017"));
        QCOMPARE(fasce().last(), QStringLiteral("03|Night's rate|1.5"));
        QVERIFY(attivo(*m_form, "aggiungi") && !attivo(*m_form, "ok"));
        QCOMPARE(m_form->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("03"));
        QCOMPARE(m_form->didascaliaRecord(), QStringLiteral("Reg. 3"));
    }

    void aFailedWriteStaysInEditing()
    {
        m_form->bottoni(QStringLiteral("aggiungi"));
        m_form->codice->setText(QStringLiteral("01")); // the key is taken
        m_form->bottoni(QStringLiteral("ok"));
        QCOMPARE(m_prompter.messages.size(), 1);
        QVERIFY(attivo(*m_form, "ok"));
        QCOMPARE(m_form->recordset().editMode(), store::Recordset::EditMode::AddNew);
        QCOMPARE(fasce().size(), 2);
    }

    void cancelAsksAndDropsTheRow_data()
    {
        QTest::addColumn<bool>("conferma");
        QTest::newRow("OK") << true;
        QTest::newRow("Cancel") << false;
    }
    void cancelAsksAndDropsTheRow()
    {
        QFETCH(bool, conferma);
        m_form->bottoni(QStringLiteral("aggiungi"));
        m_form->codice->setText(QStringLiteral("09"));
        m_prompter.answer(conferma ? Prompter::Answer::Ok : Prompter::Answer::Cancel);
        m_form->bottoni(QStringLiteral("annulla"));
        QCOMPARE(m_prompter.questions, QStringList{frame::TestoLingua("M0048")});
        QCOMPARE(m_form->recordset().editMode(),
                 conferma ? store::Recordset::EditMode::None : store::Recordset::EditMode::AddNew);
        QCOMPARE(attivo(*m_form, "ok"), !conferma);
        if (conferma)
            QCOMPARE(m_stato, frame::TestoLingua("M0018"));
        QCOMPARE(fasce().size(), 2);
    }

    void editRewritesTheCurrentRow()
    {
        m_form->bottoni(QStringLiteral("modifica"));
        QCOMPARE(m_stato, frame::TestoLingua("M0015"));
        m_form->nome->setText(QStringLiteral("O'Brien \"x\" %_[#*"));
        m_form->bottoni(QStringLiteral("ok"));
        QCOMPARE(fasce().first(), QStringLiteral("01|O'Brien \"x\" %_[#*|2"));
        QCOMPARE(fasce().size(), 2);
    }

    void deleteAsksTwiceAndEndsOnTheLastRow_data()
    {
        QTest::addColumn<QList<int>>("risposte"); // 1 OK, 0 Cancel
        QTest::addColumn<int>("domande");
        QTest::addColumn<int>("rimaste");
        QTest::newRow("cancel at the first") << QList<int>{0} << 1 << 2;
        QTest::newRow("cancel at the second") << QList<int>{1, 0} << 2 << 2;
        QTest::newRow("both OK") << QList<int>{1, 1} << 2 << 1;
    }
    void deleteAsksTwiceAndEndsOnTheLastRow()
    {
        QFETCH(QList<int>, risposte);
        QFETCH(int, domande);
        QFETCH(int, rimaste);
        m_form->recordset().MoveLast();
        for (int r : risposte)
            m_prompter.answer(r ? Prompter::Answer::Ok : Prompter::Answer::Cancel);
        m_form->bottoni(QStringLiteral("elimina"));
        QCOMPARE(m_prompter.questions.size(), domande);
        QCOMPARE(m_prompter.questions.first(), frame::TestoLingua("M0013"));
        QCOMPARE(fasce().size(), rimaste);
        if (rimaste == 1) {
            QCOMPARE(m_stato, frame::TestoLingua("M0016"));
            QCOMPARE(m_form->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("01"));
        }
    }

    void editAndDeleteOnAnEmptySetDoNothing()
    {
        frame::basedati().execute(QStringLiteral("delete from Fascia"));
        SchedaFasce vuota(m_prompter);
        vuota.bottoni(QStringLiteral("modifica"));
        vuota.bottoni(QStringLiteral("elimina"));
        QVERIFY(m_prompter.questions.isEmpty());
        QCOMPARE(vuota.recordset().editMode(), store::Recordset::EditMode::None);
        QVERIFY(attivo(vuota, "modifica"));
    }

    void rightsLetterRefusesBeforeAnything_data()
    {
        QTest::addColumn<QString>("lettera");
        QTest::addColumn<QString>("azione");
        QTest::addColumn<bool>("rifiuto");
        QTest::newRow("L adds") << "L" << "aggiungi" << true;
        QTest::newRow("A edits") << "A" << "modifica" << true;
        QTest::newRow("M deletes") << "M" << "elimina" << true;
        QTest::newRow("A adds") << "A" << "aggiungi" << false;
        QTest::newRow("none edits") << "" << "modifica" << false;
    }
    void rightsLetterRefusesBeforeAnything()
    {
        QFETCH(QString, lettera);
        QFETCH(QString, azione);
        QFETCH(bool, rifiuto);
        pub().UtenteCorrente = QStringLiteral("mario");
        m_form->setProperty("Tag", lettera);
        m_prompter.messages.clear(); // the activation's rights question says nothing
        m_form->bottoni(azione);
        QCOMPARE(!m_prompter.messages.isEmpty(), rifiuto);
        if (rifiuto) {
            QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Critical);
            QVERIFY(m_prompter.messages.first().text.contains(QStringLiteral("mario")));
            QCOMPARE(m_form->recordset().editMode(), store::Recordset::EditMode::None);
        }
        QCOMPARE(m_form->recordset().editMode() != store::Recordset::EditMode::None, !rifiuto);
    }

    void escapeCancelsOnlyWhileCancelIsOn()
    {
        m_form->codice->setFocus();
        QTest::keyClick(m_form->codice, Qt::Key_Escape);
        QVERIFY(m_prompter.questions.isEmpty());
        m_form->bottoni(QStringLiteral("modifica"));
        m_prompter.answer(Prompter::Answer::Ok);
        QTest::keyClick(m_form->nome, Qt::Key_Escape);
        QCOMPARE(m_prompter.questions, QStringList{frame::TestoLingua("M0048")});
        QCOMPARE(m_stato, frame::TestoLingua("M0019"));
    }

    void enterMovesOnAsTab()
    {
        m_form->codice->setFocus();
        QTest::keyClick(m_form->codice, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), m_form->nome);
    }

    void searchShowsTheListAndPicksARow()
    {
        m_form->bottoni(QStringLiteral("trova"));
        QCOMPARE(m_form->pannelloVisibile(), 2);
        m_form->Command6(); // empty panel: every row
        QCOMPARE(m_form->where(), QString());
        QCOMPARE(m_form->pannelloVisibile(), 1);
        QCOMPARE(m_form->datPrimaryRSGrd().rowCount(), 2);
        QTableView *g = m_form->grdDataGrid();
        g->setCurrentIndex(m_form->datPrimaryRSGrd().index(1, 0));
        m_form->findChild<QPushButton *>(QStringLiteral("CmdOkGrid"))->click();
        QCOMPARE(m_form->pannelloVisibile(), 0);
        QCOMPARE(m_form->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("02"));
        QCOMPARE(m_form->codice->text(), QStringLiteral("02"));
    }

    void searchWithOneRowAndChkAutoOpensIt()
    {
        m_form->bottoni(QStringLiteral("trova"));
        m_form->filtri()->casella(0)->setText(QStringLiteral("tariffa o")); // case-blind, starts with
        m_form->filtri()->findChild<QCheckBox *>(QStringLiteral("ChkAuto"))->setChecked(true);
        m_form->Command6();
        QCOMPARE(m_form->pannelloVisibile(), 0);
        QCOMPARE(m_form->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("01"));
    }

    void searchWithoutRowsStaysOnTheFilters()
    {
        m_form->bottoni(QStringLiteral("trova"));
        m_form->filtri()->casella(0)->setText(QStringLiteral("' or 1=1 --%_"));
        m_form->Command6();
        QCOMPARE(m_form->pannelloVisibile(), 2);
        QCOMPARE(m_prompter.messages.size(), 1);
        QCOMPARE(m_prompter.messages.first().text, frame::TestoLingua("M0009"));
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Stop);
        m_form->Command5();
        QCOMPARE(m_form->pannelloVisibile(), 0);
    }

    void previousListNeedsTwoRows()
    {
        m_form->bottoni(QStringLiteral("trova"));
        m_form->CmdElencoPrec();
        QCOMPARE(m_prompter.messages.size(), 1);
        QCOMPARE(m_prompter.messages.first().text, frame::TestoLingua("M0009"));
        m_form->Command6();
        m_form->Command5();
        m_form->bottoni(QStringLiteral("trova"));
        m_form->CmdElencoPrec();
        QCOMPARE(m_prompter.messages.size(), 1);
        QCOMPARE(m_form->pannelloVisibile(), 1);
    }

    void headingClickSorts()
    {
        m_form->bottoni(QStringLiteral("trova"));
        m_form->Command6();
        m_form->findChild<QCheckBox *>(QStringLiteral("ChkOrdinamento"))->setChecked(true);
        const int c = m_form->datPrimaryRSGrd().colonna(QStringLiteral("id"));
        QHeaderView *h = m_form->grdDataGrid()->horizontalHeader();
        QTest::mouseClick(h->viewport(), Qt::LeftButton, {}, QPoint(h->sectionViewportPosition(c) + 5, 5));
        QVERIFY(m_form->datPrimaryRSGrd().sql().endsWith(QStringLiteral("Order by id desc")));
        QCOMPARE(m_form->datPrimaryRSGrd().data(m_form->datPrimaryRSGrd().index(0, c)).toString(), QStringLiteral("02"));
        QCOMPARE(m_stato, QString());
    }

    void veilCoversTheDetail()
    {
        auto *velo = m_form->findChild<QLabel *>(QStringLiteral("PicAutorizzato"));
        QVERIFY(velo && !velo->isVisible());
        m_form->NonAutorizzato();
        QVERIFY(velo->isVisible());
        QCOMPARE(velo->size(), velo->parentWidget()->size());
        m_form->Autorizzato();
        QVERIFY(!velo->isVisible());
    }
};

QTEST_MAIN(TestScheda)
#include "tst_scheda.moc"
