// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/frmtabelle.h"

#include "forms/ui/EditoreCampi.h"
#include "forms/ui/StampaGriglia.h"
#include "ui_frmtabelle.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/Routines.h"
#include "frame/widgets/ChiudeFinestra.h"
#include "store/DbError.h"

#include <QCloseEvent>
#include <QDataWidgetMapper>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QToolBar>

#include <algorithm>
#include <memory>

namespace forms {

using frame::TestoLingua;

namespace {

enum Pagina { Griglia = 0, Dettaglio = 1 };

// Toolbar keys and their caption and tip keys.
struct Tasto {
    const char *chiave, *testo, *suggerimento;
};
constexpr Tasto Tasti[] = {
    {"aggiungi", "M0138", "M0154"}, {"modifica", "M0139", "M0155"}, {"elimina", "M0140", "M0156"},
    {"trova", "M0141", "M0157"},    {"stampa", "M0142", "M0158"},   {"elenco", "M0148", nullptr},
    {"dettaglio", "M0198", nullptr}, {"esci", "M0137", "M0161"},
};

} // namespace

frmtabelle::frmtabelle(frame::Prompter &prompter, QWidget *parent)
    : QWidget(parent), m_ui(std::make_unique<Ui::frmtabelle>()), m_prompter(prompter), m_toolbar(new QToolBar(this)),
      m_editore(new EditoreCampi(this)), m_mappa(new QDataWidgetMapper(this))
{
    m_ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    m_toolbar->setObjectName(QStringLiteral("Toolbar1"));
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_ui->layoutMain->insertWidget(0, m_toolbar);
    for (const Tasto &t : Tasti) {
        const QString chiave = QLatin1String(t.chiave);
        QAction *a = m_toolbar->addAction(TestoLingua(t.testo).remove(QLatin1Char('&')));
        a->setObjectName(chiave);
        if (t.suggerimento)
            a->setToolTip(TestoLingua(t.suggerimento));
        connect(a, &QAction::triggered, this, [this, chiave] { bottoni(chiave); });
        m_pulsanti.insert(chiave, a);
    }
    m_ui->Text1->hide();
    connect(m_ui->Text1, &QLineEdit::returnPressed, this, &frmtabelle::trova);
    QTableView *g = m_ui->grdDataGrid;
    g->setItemDelegate(m_editore);
    g->setSelectionBehavior(QAbstractItemView::SelectItems);
    g->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    g->verticalHeader()->setDefaultSectionSize(g->fontMetrics().height() + 6);
    connect(g->horizontalHeader(), &QHeaderView::sectionClicked, this, &frmtabelle::ordina);
    m_mappa->setItemDelegate(m_editore);
}

frmtabelle::~frmtabelle() = default;

void frmtabelle::CaricaTextFormatGriglia(const ImpostazioneTabella &impostazione)
{
    m_impostazione = impostazione;
    if (sorgente_data.isEmpty())
        sorgente_data = impostazione.tabella;
    m_ordine = OrdineTabella(impostazione.ordine);
    apri();
}

void frmtabelle::apri()
{
    store::Database &db = frame::basedati();
    PreparaTabella(db, sorgente_data);
    m_model = std::make_unique<RecordsetModel>(db, IstruzioneTabella(sorgente_data, m_ordine.campo()));
    RecordsetModel &m = *m_model;
    // The rows are checked field by field and completed by themselves before each write.
    m.impostaModifica(
        m_prompter,
        [this](const QString &campo, QVariant &v) { return ConvalidaCampo(m_model->recordset().field(campo), v, m_prompter); },
        CompletaRiga);
    m.impostaColori(ColoreCassa);
    QStringList visibili;
    for (const store::FieldInfo &f : m.recordset().fields())
        if (!m_impostazione.nascoste.contains(f.name, Qt::CaseInsensitive))
            visibili << f.name;
    m.impostaColonne(visibili);
    for (const ImpostazioneTabella::Colonna &c : std::as_const(m_impostazione.colonne))
        m.impostaIntestazione(c.campo, TestoLingua(c.didascalia));

    QTableView *g = m_ui->grdDataGrid;
    g->setModel(&m);
    g->resizeColumnsToContents(); // the caller's widths below, the captions' for the others
    for (int c = 0; c < m.columnCount(); ++c) {
        // A date column holds its box whole, calendar button included, even on an empty table.
        if (const store::FieldInfo *f = m.campoDi(c); f && f->kind == store::FieldKind::Date) {
            const std::unique_ptr<QWidget> casella(EditoreCampi::creaCasella(*f, nullptr));
            g->setColumnWidth(c, std::max(g->columnWidth(c), casella->sizeHint().width()));
        }
    }
    for (auto it = m_impostazione.larghezze.constBegin(); it != m_impostazione.larghezze.constEnd(); ++it)
        if (const int c = m.colonna(it.key()); c >= 0)
            // Twips to pixels, never narrower than the caption.
            g->setColumnWidth(c, std::max(it.value() / 15, g->horizontalHeader()->sectionSizeHint(c)));
    connect(g->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &frmtabelle::rigaCambiata);

    // The detail panel: one box per column, by its field's kind, bound to the current row.
    while (m_ui->caselle->rowCount() > 0)
        m_ui->caselle->removeRow(0);
    m_mappa->setModel(&m);
    for (int c = 0; c < m.columnCount(); ++c) {
        if (QWidget *w = EditoreCampi::creaCasella(*m.campoDi(c), m_ui->dettaglio)) {
            m_ui->caselle->addRow(m.headerData(c, Qt::Horizontal).toString(), w);
            m_mappa->addMapping(w, c);
        }
    }
    m_mappa->toFirst();
    if (m.rowCount() > 0)
        g->setCurrentIndex(m.index(0, 0));
}

void frmtabelle::bottoni(const QString &chiave)
{
    QTableView *g = m_ui->grdDataGrid;
    RecordsetModel &m = *m_model;
    if (chiave == QLatin1String("aggiungi")) {
        m_ui->pannelli->setCurrentIndex(Griglia);
        if (m.rigaNuova() < 0 && !m.insertRows(m.rowCount(), 1))
            return;
        const QModelIndex i = m.index(m.rigaNuova(), 0);
        g->setCurrentIndex(i);
        g->setFocus();
        g->edit(i);
    } else if (chiave == QLatin1String("modifica")) {
        m_ui->pannelli->setCurrentIndex(Griglia);
        if (g->currentIndex().isValid())
            g->edit(g->currentIndex());
    } else if (chiave == QLatin1String("elimina")) {
        m_ui->pannelli->setCurrentIndex(Griglia);
        const int riga = g->currentIndex().row();
        if (riga < 0 || !m_prompter.confirm(TestoLingua("M0006")))
            return;
        // The next row takes its place; past the end, the last one.
        if (m.removeRows(riga, 1) && m.rowCount() > 0)
            g->setCurrentIndex(m.index(std::min(riga, m.rowCount() - 1), std::max(0, g->currentIndex().column())));
    } else if (chiave == QLatin1String("trova")) {
        trova();
    } else if (chiave == QLatin1String("stampa")) {
        if (m.rowCount() > 0)
            AnteprimaGriglia(*g, QStringLiteral("Tabella ") + sorgente_data, this);
    } else if (chiave == QLatin1String("esci")) {
        frame::ChiudeFinestra(this);
    } else if (chiave == QLatin1String("elenco") || chiave == QLatin1String("dettaglio")) {
        const bool dettaglio = chiave == QLatin1String("dettaglio");
        if (dettaglio && !chiudiNuova())
            return;
        m_ui->pannelli->setCurrentIndex(dettaglio ? Dettaglio : Griglia);
        if (dettaglio)
            m_mappa->setCurrentIndex(std::max(0, g->currentIndex().row()));
        else
            m_mappa->submit();
    }
}

void frmtabelle::ordina(int colonna)
{
    const QString campo = m_model->campo(colonna);
    if (campo.isEmpty() || !chiudiNuova())
        return;
    frame::MostraStato(TestoLingua("M0011")); // "Sorting..."
    m_ordine.clic(campo);
    try {
        m_model->impostaOrdine(m_ordine.testo());
        m_ui->lblOrdine->setText(TestoLingua("M0326") + QLatin1Char(' ') + m_model->headerData(colonna, Qt::Horizontal).toString());
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    frame::MostraStato(QString());
}

void frmtabelle::trova()
{
    // The first press opens the box and names the field searched; then the text is searched.
    if (m_ui->Text1->isHidden() || m_ui->Text1->text().isEmpty()) {
        m_ui->Text1->show();
        m_ui->Lbldata->setText(m_ordine.campo());
        m_ui->Text1->setFocus();
        return;
    }
    QVariant chiave;
    const EsitoTrova esito = TrovaInTabella(frame::basedati(), m_model->sql(), m_model->recordset().keyField(), m_ordine.campo(),
                                            m_ui->Text1->text(), m_prompter, &chiave);
    if (esito == EsitoTrova::Trovato) {
        const QModelIndex i = m_model->index(m_model->posizione(chiave), std::max(0, m_ui->grdDataGrid->currentIndex().column()));
        m_ui->grdDataGrid->setCurrentIndex(i);
        m_ui->grdDataGrid->scrollTo(i);
    } else if (esito == EsitoTrova::NonTrovato) {
        m_ui->Lbldata->setText(QStringLiteral("non trovato."));
    }
    m_ui->Text1->clear();
}

void frmtabelle::rigaCambiata(const QModelIndex &attuale, const QModelIndex &precedente)
{
    RecordsetModel &m = *m_model;
    // A pending row is written when the caret leaves it; refused, the caret goes back to it.
    if (precedente.isValid() && precedente.row() == m.rigaNuova() && attuale.row() != precedente.row() && !m.scriviNuova()) {
        QTimer::singleShot(0, this, [this, precedente] { m_ui->grdDataGrid->setCurrentIndex(precedente); });
        return;
    }
    m_ui->contatore->setText(QStringLiteral("%1 / %2").arg(attuale.row() + 1).arg(m.rowCount()));
}

bool frmtabelle::chiudiNuova()
{
    RecordsetModel &m = *m_model;
    if (m.rigaNuova() < 0 || m.scriviNuova())
        return true;
    if (!m_prompter.confirm(TestoLingua("M0048"))) // "Discard the unsaved changes?"
        return false;
    m.scartaNuova();
    return true;
}

void frmtabelle::closeEvent(QCloseEvent *event)
{
    if (m_model && !chiudiNuova()) {
        event->ignore();
        return;
    }
    frame::MostraStato(QString());
    QWidget::closeEvent(event);
}

} // namespace forms
