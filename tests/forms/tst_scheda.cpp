// SPDX-License-Identifier: GPL-3.0-or-later
// The record form machine, driven on a small form over the band table: the
// toolbar layouts, adding, editing, deleting and cancelling through bottoni,
// the rights letter, the form keys, and the list and filter panels.
#include "forms/Scheda.h"
#include "forms/ui/FormRecord.h"
#include "forms/ui/PannelloFiltro.h"
#include "forms/ui/StampaGriglia.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Currency.h"
#include "store/Database.h"
#include "store/Recordset.h"

#include "forms/ui/EditoreCampi.h"
#include "forms/ui/frmtabelle.h"
#include "frame/widgets/CasellaData.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestWindows.h"

#include "support/Colonne.h"

#include <QAction>
#include <QCalendarWidget>
#include <QPdfWriter>
#include <QPrintPreviewDialog>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
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
        c.azioni.removeAll(QStringLiteral("scheda")); // a band has no card of its own
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
        QVERIFY(showActive(m_form.get()));
    }
    void cleanup()
    {
        m_form.reset();
        pub().statusSink = nullptr;
        m_db.reset();
    }

    void layouts_data()
    {
        // offerti: "": every key
        colonne<Layout, QString, QString, QString>({"layout", "offerti", "visibili", "abilitati"});
        const QString gestione = QStringLiteral("aggiungi modifica elimina sep1 trova stampa scheda sep2 ok annulla refresh esci");
        QTest::newRow("operation") << Layout::Attivazione << "" << "gestione" << "gestione";
        QTest::newRow("browse") << Layout::Gestione << "" << gestione << "aggiungi modifica elimina trova stampa scheda refresh esci";
        QTest::newRow("editing") << Layout::Modifica << "" << gestione << "ok annulla esci";
        // The parking window offers no add, change or delete: their separator goes too.
        QTest::newRow("browse, parking") << Layout::Gestione << "trova stampa gestione refresh esci" << "trova stampa sep2 refresh esci"
                                         << "trova stampa refresh esci";
    }
    void layouts()
    {
        QFETCH(Layout, layout); QFETCH(QString, offerti);
        const auto stato = forms::Pulsanti(layout, offerti.isEmpty() ? forms::ChiaviToolbar() : offerti.split(QLatin1Char(' ')));
        QStringList v, a;
        for (const QString &k : forms::ChiaviToolbar()) {
            if (stato.value(k).visibile)
                v << k;
            if (stato.value(k).abilitato)
                a << k;
        }
        QTEST(v.join(QLatin1Char(' ')), "visibili");
        QTEST(a.join(QLatin1Char(' ')), "abilitati");
    }

    void limiti_data()
    {
        // lunghezza: -1: none; massimo: 0: none
        colonne<int, int, int, int, double>({"tipo", "casella", "dimensione", "lunghezza", "massimo"});
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
        QFETCH(int, tipo); QFETCH(int, casella); QFETCH(int, dimensione);
        store::FieldInfo f;
        f.kind = store::FieldKind(tipo);
        f.size = dimensione;
        const forms::LimitiCasella l = forms::LimitiCampo(f, forms::TipoCasellaScheda(casella));
        QTEST(l.lunghezzaMassima.value_or(-1), "lunghezza");
        QTEST(l.massimo.value_or(0), "massimo");
        QCOMPARE(l.minimo.value_or(0), l.massimo ? (f.kind == store::FieldKind::Long ? -2147483648.0 : -922337203685477.0) : 0);
    }

    // The window's wiring of the machine, whose every action is tested without a window: the boxes
    // show and give the row (an amount typed in a number box), the keys follow the layout, and the
    // rights letter comes from "Tag".
    void windowShowsTheMachine()
    {
        m_form->bottoni(QStringLiteral("aggiungi"));
        QVERIFY(attivo(*m_form, "ok") && attivo(*m_form, "annulla") && !attivo(*m_form, "aggiungi"));
        QCOMPARE(m_form->nome->text(), QString()); // a new row shows empty, then the defaults
        QCOMPARE(m_form->importo->text(), QStringLiteral("1.5"));
        m_form->codice->setText(QStringLiteral("03"));
        m_form->nome->setText(QStringLiteral("Night's rate"));
        m_form->bottoni(QStringLiteral("ok"));
        QCOMPARE(fasce().last(), QStringLiteral("03|Night's rate|1.5"));
        QVERIFY(attivo(*m_form, "aggiungi") && !attivo(*m_form, "ok"));
        QCOMPARE(m_form->findChild<QLabel *>(QStringLiteral("datPrimaryRS"))->text(), QStringLiteral("Reg. 3"));
        pub().UtenteCorrente = QStringLiteral("mario");
        m_form->setProperty("Tag", QStringLiteral("L"));
        m_prompter.messages.clear();
        m_form->bottoni(QStringLiteral("aggiungi"));
        QVERIFY(m_prompter.messages.size() == 1 && m_prompter.messages.first().text.contains(QStringLiteral("mario")));
        QVERIFY(!attivo(*m_form, "ok"));
    }

    // Enter moves on as Tab; Escape cancels only while "annulla" is on.
    void formKeys()
    {
        m_form->codice->setFocus();
        QTest::keyClick(m_form->codice, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), m_form->nome);
        QTest::keyClick(m_form->nome, Qt::Key_Escape);
        QVERIFY(m_prompter.questions.isEmpty());
        m_form->bottoni(QStringLiteral("modifica"));
        m_prompter.answer(Prompter::Answer::Ok);
        QTest::keyClick(m_form->nome, Qt::Key_Escape);
        QCOMPARE(m_prompter.questions, QStringList{frame::TestoLingua("M0048")});
        QCOMPARE(m_stato, frame::TestoLingua("M0019"));
    }

    // Search: no earlier list yet, no row (the panel stays), one row with ChkAuto (straight to it),
    // every row (the list, a row picked, the earlier list brought back, sorted by a heading).
    void searchListAndSort()
    {
        const auto messaggi = [this](int n) {
            QCOMPARE(m_prompter.messages.size(), n);
            QCOMPARE(m_prompter.messages.last().text, frame::TestoLingua("M0009"));
            QCOMPARE(m_prompter.messages.last().icon, Prompter::Icon::Stop);
        };
        m_form->bottoni(QStringLiteral("trova"));
        QCOMPARE(m_form->pannelloVisibile(), 2);
        m_form->CmdElencoPrec();
        messaggi(1);
        m_form->filtri()->casella(0)->setText(QStringLiteral("' or 1=1 --%_"));
        m_form->Command6();
        messaggi(2);
        QCOMPARE(m_form->pannelloVisibile(), 2);
        m_form->Command5();
        QCOMPARE(m_form->pannelloVisibile(), 0);
        m_form->bottoni(QStringLiteral("trova"));
        m_form->filtri()->casella(0)->setText(QStringLiteral("tariffa o")); // case-blind, starts with
        m_form->filtri()->findChild<QCheckBox *>(QStringLiteral("ChkAuto"))->setChecked(true);
        m_form->Command6();
        QCOMPARE(m_form->pannelloVisibile(), 0);
        QCOMPARE(m_form->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("01"));
        m_form->bottoni(QStringLiteral("trova"));
        m_form->filtri()->casella(0)->clear();
        m_form->Command6(); // empty panel: every row
        QCOMPARE(m_form->where(), QString());
        QCOMPARE(m_form->pannelloVisibile(), 1);
        QCOMPARE(m_form->datPrimaryRSGrd().rowCount(), 2);
        m_form->grdDataGrid()->setCurrentIndex(m_form->datPrimaryRSGrd().index(1, 0));
        m_form->findChild<QPushButton *>(QStringLiteral("CmdOkGrid"))->click();
        QCOMPARE(m_form->pannelloVisibile(), 0);
        QCOMPARE(m_form->recordset().value(QStringLiteral("id")).toString(), QStringLiteral("02"));
        QCOMPARE(m_form->codice->text(), QStringLiteral("02"));
        m_form->bottoni(QStringLiteral("trova"));
        m_form->CmdElencoPrec();
        QCOMPARE(m_form->pannelloVisibile(), 1);
        QCOMPARE(m_prompter.messages.size(), 2);
        m_form->findChild<QCheckBox *>(QStringLiteral("ChkOrdinamento"))->setChecked(true);
        const int c = m_form->datPrimaryRSGrd().colonna(QStringLiteral("id"));
        QHeaderView *h = m_form->grdDataGrid()->horizontalHeader();
        QTest::mouseClick(h->viewport(), Qt::LeftButton, {}, QPoint(h->sectionViewportPosition(c) + 5, 5));
        QVERIFY(m_form->datPrimaryRSGrd().sql().endsWith(QStringLiteral("Order by id desc")));
        QCOMPARE(m_form->datPrimaryRSGrd().data(m_form->datPrimaryRSGrd().index(0, c)).toString(), QStringLiteral("02"));
        QCOMPARE(m_stato, QString());
        m_form->Command5();
        QCOMPARE(m_form->pannelloVisibile(), 0);
    }

    // The filter panel's boxes: a number box refuses letters; a date box takes the user's format with
    // or without separators, leaves on Tab, refuses a non-date, and opens its calendar on the shown date.
    void filterBoxesReadWhatIsTyped()
    {
        forms::CasellaFiltro numero, data;
        numero.tipo = forms::TipoCasella::Numero;
        data.tipo = forms::TipoCasella::Data;
        pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        forms::PannelloFiltro pannello;
        pannello.impostaCatalogo({numero, data});
        QVERIFY(showActive(&pannello));
        QSignalSpy esegui(&pannello, &forms::PannelloFiltro::esegui);
        QTest::keyClicks(pannello.casella(0), QStringLiteral("-1a2,5x;"));
        auto *dal = qobject_cast<frame::CasellaData *>(pannello.casella(1));
        QVERIFY(dal);
        dal->setFocus();
        for (const char *t : {"0111x2026", "31.12.26"}) { // the second typed over the date copied into the upper box
            QTest::keyClicks(QApplication::focusWidget(), QLatin1String(t));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QVERIFY(QApplication::focusWidget() != pannello.casella(1, true)); // Tab left the box
        QCOMPARE(pannello.caselle().at(0).valore + QLatin1Char(' ') + pannello.caselle().at(1).valore + QLatin1Char(' ')
                     + pannello.caselle().at(1).valoreAl, QStringLiteral("-12,5 01/11/2026 31/12/2026"));
        // A non-date is refused and the box keeps its date; the run right after it waits.
        dal->setFocus();
        dal->selectAll();
        QTest::keyClicks(dal, QStringLiteral("31022026"));
        QTest::keyClick(dal, Qt::Key_Return);
        QCOMPARE(dal->text(), QStringLiteral("01/11/2026"));
        QCOMPARE(m_stato, frame::TestoLingua("M0008"));
        for (int volte : {0, 1}) {
            pannello.findChild<QPushButton *>(QStringLiteral("Command6"))->click();
            QCOMPARE(esegui.count(), volte);
        }
        for (const QDate &mostrata : {QDate(2026, 11, 1), QDate::currentDate()}) { // an empty box: today
            dal->apriCalendario();
            QVERIFY(dal->calendario() && dal->calendario()->selectedDate() == mostrata && dal->calendario()->yearShown() == mostrata.year());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QTRY_VERIFY(!dal->calendario());
            QCOMPARE(dal->data(), mostrata.addDays(1));
            dal->clear();
        }
    }

    // The list's print button prints the grid as it stands, every row of the list
    // (read to its end) under the visible captions, page after page, through the preview.
    // The in-grid editors, one per field kind: a date box that refuses a non-date and writes
    // nothing, a number box that refuses letters, a whole number, text cut at the field's size.
    // Each editor of the table editor's grids by what is typed: stored as typed, refused with
    // a message, or cut to the field's size; a refusal leaves the stored row as it was.
    void gridEditorsByFieldKind_data()
    {
        QTest::addColumn<QString>("tabella");
        QTest::addColumn<QString>("campo");
        QTest::addColumn<QString>("testo");
        QTest::addColumn<QString>("salvato");
        QTest::addColumn<bool>("messaggio");
        QTest::newRow("double") << "Cassa" << "Entrata" << "1.23456" << "1.23456" << false;
        QTest::newRow("negative double, as typed") << "Cassa" << "Uscita" << "-7.25" << "-7.25" << false;
        QTest::newRow("empty double is 0") << "Cassa" << "Entrata" << "" << "0" << false;
        QTest::newRow("a sign alone") << "Cassa" << "Entrata" << "-" << "1" << true;
        QTest::newRow("quotes") << "Cassa" << "Descrizione" << "O'Brien \"x\" %_" << "O'Brien \"x\" %_" << false;
        QTest::newRow("10,000 characters") << "Cassa" << "Descrizione" << QString(10000, QLatin1Char('x')) << QString(255, QLatin1Char('x')) << false;
        QTest::newRow("not a date") << "Cassa" << "Data" << "31/02/2026" << "2026-03-01T00:00:00.000" << false;
        QTest::newRow("letters for a date") << "Cassa" << "Data" << "abc" << "2026-03-01T00:00:00.000" << false;
        QTest::newRow("negative amount, as typed") << "Fascia" << "Importo" << "-3.5" << "-3.5" << false;
        QTest::newRow("five decimals in an amount") << "Fascia" << "Importo" << "1.23456" << "2" << true;
        QTest::newRow("amount too large") << "Fascia" << "Importo" << "123456789012345678" << "2" << true;
        QTest::newRow("zero minutes, as typed") << "Fascia" << "Minuti1Frazione" << "0" << "0" << false;
        QTest::newRow("whole number beyond 32 bits") << "Fascia" << "Minuti1Frazione" << "99999999999" << "60" << true;
        QTest::newRow("10,000 characters in a band") << "Fascia" << "DescrizioneFascia" << QString(10000, QLatin1Char('y')) << QString(50, QLatin1Char('y')) << false;
    }

    void gridEditorsByFieldKind()
    {
        QFETCH(QString, tabella);
        QFETCH(QString, campo);
        QFETCH(QString, testo);
        store::Database &db = frame::basedati();
        db.execute(QStringLiteral("delete from ") + tabella);
        db.execute(tabella == QLatin1String("Cassa")
                       ? QStringLiteral("insert into Cassa (IdCliente, Data, Descrizione, Entrata) values (7, '2026-03-01 00:00:00', 'a', 1)")
                       : QStringLiteral("insert into Fascia values ('T1', 't', 20000, 60, 10000, 60)"));
        forms::frmtabelle t(m_prompter);
        t.setAttribute(Qt::WA_DeleteOnClose, false);
        t.CaricaTextFormatGriglia(tabella == QLatin1String("Cassa") ? forms::ImpostazioneCassa() : forms::ImpostazioneFascia());
        auto *g = t.findChild<QTableView *>(QStringLiteral("grdDataGrid"));
        forms::RecordsetModel &m = t.datPrimaryRS();
        const QModelIndex i = m.index(0, m.colonna(campo));
        std::unique_ptr<QLineEdit> e(qobject_cast<QLineEdit *>(g->itemDelegate()->createEditor(g->viewport(), {}, i)));
        QVERIFY(e);
        g->itemDelegate()->setEditorData(e.get(), i);
        e->setText(testo);
        g->itemDelegate()->setModelData(e.get(), &m, i);
        store::Recordset rs(db, QStringLiteral("select %1 from %2").arg(campo, tabella));
        rs.MoveFirst();
        const QVariant v = rs.value(0);
        QTEST(v.userType() == qMetaTypeId<store::Currency>() ? v.value<store::Currency>().toPlainText() : v.toString(), "salvato");
        QTEST(!m_prompter.messages.isEmpty(), "messaggio");
        if (!m_prompter.messages.isEmpty())
            QCOMPARE(m_prompter.messages.first().text, frame::TestoLingua("CAP21").arg(testo));
    }

    // The table editor's window: a heading sorts, a second click descending, with its label;
    // a delete asks first; a pending row that can't be written is kept or dropped on closing.
    void tableEditorWindow()
    {
        QMdiArea area;
        auto *t = new forms::frmtabelle(m_prompter);
        t->CaricaTextFormatGriglia(forms::ImpostazioneFascia());
        QPointer<QMdiSubWindow> cornice = area.addSubWindow(t);
        QVERIFY(showActive(&area));
        auto *g = t->findChild<QTableView *>(QStringLiteral("grdDataGrid"));
        forms::RecordsetModel &m = t->datPrimaryRS();
        QHeaderView *h = g->horizontalHeader();
        const int c = m.colonna(QStringLiteral("DescrizioneFascia"));
        for (int i = 0; i < 2; ++i)
            QTest::mouseClick(h->viewport(), Qt::LeftButton, {}, QPoint(h->sectionViewportPosition(c) + 5, 5));
        QVERIFY(m.sql().endsWith(QStringLiteral("DescrizioneFascia desc")));
        QCOMPARE(t->findChild<QLabel *>(QStringLiteral("lblOrdine"))->text(), frame::TestoLingua("M0326") + QLatin1Char(' ') + frame::TestoLingua("M0320"));
        g->setCurrentIndex(m.index(0, 0));
        for (const auto risposta : {Prompter::Answer::Cancel, Prompter::Answer::Ok}) {
            m_prompter.answer(risposta);
            t->bottoni(QStringLiteral("elimina"));
        }
        QCOMPARE(m_prompter.questions, QStringList(2, frame::TestoLingua("M0006")));
        QCOMPARE(fasce(), QStringList{QStringLiteral("02|Prima ora e mezz'ore successive|3")}); // the first row, descending

        t->bottoni(QStringLiteral("aggiungi"));
        QVERIFY(m.setData(m.index(m.rigaNuova(), c), QString(300, QLatin1Char('x'))));
        for (const auto risposta : {Prompter::Answer::Cancel, Prompter::Answer::Ok}) {
            m_prompter.answer(risposta);
            t->bottoni(QStringLiteral("esci")); // the frame closes with the form, never left empty
            QCOMPARE(cornice && cornice->isVisible(), risposta == Prompter::Answer::Cancel);
        }
        QCOMPARE(fasce().size(), 1);
    }

    void listPrintsTheGridAsItStands()
    {
        for (int i = 0; i < 300; ++i)
            frame::basedati().execute(QStringLiteral("insert into Fascia (id, DescrizioneFascia) values (?, ?)"),
                                      {QStringLiteral("F%1").arg(i, 3, 10, QLatin1Char('0')), QStringLiteral("Band %1").arg(i)});
        m_form->bottoni(QStringLiteral("trova"));
        m_form->Command6();
        forms::RecordsetModel &m = m_form->datPrimaryRSGrd();
        QCOMPARE(m.rowCount(), forms::RecordsetModel::Pagina);
        QHeaderView *h = m_form->grdDataGrid()->horizontalHeader();
        const int id = m.colonna(QStringLiteral("id")), nome = m.colonna(QStringLiteral("DescrizioneFascia"));
        h->moveSection(h->visualIndex(nome), 0);
        for (int c = 0; c < m.columnCount(); ++c)
            h->setSectionHidden(c, c != nome && c != id);
        const forms::StampaGriglia stampa(*m_form->grdDataGrid(), QStringLiteral("Bands"));
        QCOMPARE(stampa.righe(), 302);
        QCOMPARE(stampa.intestazioni(), (QStringList{m.headerData(nome, Qt::Horizontal).toString(), m.headerData(id, Qt::Horizontal).toString()}));
        QCOMPARE(stampa.riga(301), (QStringList{QStringLiteral("Band 299"), QStringLiteral("F299")}));
        QTemporaryDir dir;
        QPdfWriter pdf(dir.filePath(QStringLiteral("list.pdf")));
        const int perPagina = stampa.righePerPagina(pdf), pagine = stampa.stampa(pdf);
        QVERIFY(perPagina > 20 && pagine > 1);
        QCOMPARE(pagine, (302 + perPagina - 1) / perPagina);
        QCOMPARE(bytesOf(dir.filePath(QStringLiteral("list.pdf"))).count("/Type /Page\n"), pagine);
        // The same list for a spreadsheet: captions, then every row; a text with the separator is quoted.
        frame::basedati().execute(QStringLiteral("update Fascia set DescrizioneFascia = 'Band \"A\", night' where id = 'F000'"));
        m_form->CmdRefresh();
        QCOMPARE(forms::StampaGriglia(*m_form->grdDataGrid(), QStringLiteral("Bands")).scriviCsv(dir.filePath(QStringLiteral("list.csv"))),
                 QString());
        const QList<QByteArray> csv = bytesOf(dir.filePath(QStringLiteral("list.csv"))).split('\n');
        QCOMPARE(csv.size(), 302 + 2);
        QCOMPARE(csv.at(0).trimmed(), (stampa.intestazioni().join(QLatin1Char(',')).toUtf8()));
        QVERIFY(csv.contains("\"Band \"\"A\"\", night\",F000\r"));
        QVERIFY(!forms::StampaGriglia(*m_form->grdDataGrid(), QString()).scriviCsv(dir.filePath(QStringLiteral("no/list.csv"))).isEmpty());
        bool anteprima = false;
        QTimer::singleShot(0, this, [&anteprima] {
            anteprima = qobject_cast<QPrintPreviewDialog *>(QApplication::activeModalWidget());
            // The preview saves as PDF and as CSV.
            anteprima = anteprima && QApplication::activeModalWidget()->findChild<QAction *>(QStringLiteral("saveCsv"))
                        && QApplication::activeModalWidget()->findChild<QAction *>(QStringLiteral("savePdf"));
            QApplication::activeModalWidget()->close();
        });
        m_form->findChild<QPushButton *>(QStringLiteral("CmdStampa"))->click();
        QVERIFY(anteprima);
        QCOMPARE(m_form->pannelloVisibile(), 1); // no filter panel on the way
    }

    // As built: boxes take their fields' limits, buttons their captions, and the veil covers the detail.
    void boxesCaptionsAndVeil()
    {
        QCOMPARE(m_form->codice->maxLength(), 10);
        QCOMPARE(m_form->nome->maxLength(), 50);
        QVERIFY(m_form->importo->validator());
        QCOMPARE(m_form->pulsante("aggiungi")->text(), frame::TestoLingua("M0138"));
        QCOMPARE(m_form->pulsante("esci")->toolTip(), frame::TestoLingua("M0161"));
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
