// SPDX-License-Identifier: GPL-3.0-or-later
#include "FormRecord.h"

#include "Didascalie.h"
#include "StampaGriglia.h"

#include <CasellaData.h>
#include <Colori.h>
#include <Currency.h>
#include <DbError.h>
#include <Language.h>
#include <Prompter.h>
#include <PublicState.h>
#include <Rights.h>
#include <Routines.h>

#include <QAbstractButton>
#include <QApplication>
#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleValidator>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

namespace forms {

using frame::MostraStato;
using frame::TestoLingua;

namespace {

enum Pannello { Dettaglio = 0, Elenco = 1, Filtri = 2 };

QStyle::StandardPixmap icona(const QString &chiave)
{
    static const QHash<QString, QStyle::StandardPixmap> icone = {
        {QStringLiteral("aggiungi"), QStyle::SP_FileIcon},
        {QStringLiteral("modifica"), QStyle::SP_FileDialogDetailedView},
        {QStringLiteral("elimina"), QStyle::SP_TrashIcon},
        {QStringLiteral("trova"), QStyle::SP_FileDialogContentsView},
        {QStringLiteral("stampa"), QStyle::SP_DialogSaveButton},
        {QStringLiteral("ok"), QStyle::SP_DialogApplyButton},
        {QStringLiteral("annulla"), QStyle::SP_DialogCancelButton},
        {QStringLiteral("gestione"), QStyle::SP_FileDialogListView},
        {QStringLiteral("refresh"), QStyle::SP_BrowserReload},
        {QStringLiteral("esci"), QStyle::SP_DialogCloseButton},
    };
    return icone.value(chiave, QStyle::SP_CustomBase);
}

// Whether the list holds at least `n` rows, reading no further than that.
bool almeno(RecordsetModel &m, qint64 n)
{
    return m.recordset().readTo(n - 1);
}

QVariant valoreCasella(QWidget *w, TipoCasellaScheda tipo)
{
    if (auto *c = qobject_cast<QCheckBox *>(w))
        return c->isChecked();
    if (auto *d = qobject_cast<frame::CasellaData *>(w)) {
        const auto data = d->data();
        return data ? QVariant(QDateTime(*data, QTime(0, 0))) : QVariant();
    }
    QString testo;
    if (auto *e = qobject_cast<QLineEdit *>(w))
        testo = e->text();
    else if (auto *p = qobject_cast<QPlainTextEdit *>(w))
        testo = p->toPlainText();
    else if (auto *cb = qobject_cast<QComboBox *>(w))
        testo = cb->currentText();
    if (tipo == TipoCasellaScheda::Testo || tipo == TipoCasellaScheda::Codice)
        return testo.isEmpty() ? QVariant() : QVariant(testo);
    store::Currency importo;
    if (testo.trimmed().isEmpty() || !store::Currency::parse(testo.trimmed(), &importo))
        return QVariant();
    return QVariant::fromValue(importo);
}

void mostraValore(QWidget *w, const QVariant &v)
{
    if (auto *c = qobject_cast<QCheckBox *>(w)) {
        c->setChecked(v.toBool());
        return;
    }
    if (auto *d = qobject_cast<frame::CasellaData *>(w)) {
        d->impostaData(v.isValid() ? std::optional<QDate>(v.toDateTime().date()) : std::nullopt);
        return;
    }
    QString testo;
    if (v.canConvert<store::Currency>() && v.userType() == qMetaTypeId<store::Currency>())
        testo = v.value<store::Currency>().toPlainText(QLocale().decimalPoint().at(0));
    else if (v.isValid())
        testo = v.toString();
    if (auto *e = qobject_cast<QLineEdit *>(w))
        e->setText(testo);
    else if (auto *p = qobject_cast<QPlainTextEdit *>(w))
        p->setPlainText(testo);
    else if (auto *cb = qobject_cast<QComboBox *>(w))
        cb->setCurrentText(testo);
}

} // namespace

FormRecord::FormRecord(frame::Prompter &prompter, ConfigurazioneScheda configurazione, QWidget *parent)
    : QWidget(parent), m_report(prompter, this), m_prompter(prompter), m_cfg(std::move(configurazione)), m_toolbar(new QToolBar(this)),
      m_pannelli(new QStackedWidget(this)), m_velo(nullptr), m_posizione(new QLabel(this)),
      m_filtri(new PannelloFiltro(this)), m_griglia(nullptr), m_chkOrdinamento(nullptr), m_cmbOrdinamento(nullptr)
{
    setAttribute(Qt::WA_DeleteOnClose);
    store::Database &db = frame::basedati();
    m_dettaglio = std::make_unique<RecordsetModel>(db, m_cfg.sorgenteIniziale);
    m_elenco = std::make_unique<RecordsetModel>(db, m_cfg.sorgenteIniziale);

    creaToolbar();
    auto *dettaglio = new QWidget(m_pannelli);
    dettaglio->setObjectName(QStringLiteral("Picture8"));
    new QVBoxLayout(dettaglio);
    dettaglio->layout()->setContentsMargins(0, 0, 0, 0);
    m_pannelli->addWidget(dettaglio);
    m_pannelli->addWidget(creaPannelloElenco());
    m_pannelli->addWidget(m_filtri);
    m_posizione->setObjectName(QStringLiteral("datPrimaryRS"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_toolbar);
    layout->addWidget(m_pannelli, 1);
    layout->addWidget(m_posizione);

    connect(m_filtri, &PannelloFiltro::esegui, this, &FormRecord::Command6);
    connect(m_filtri, &PannelloFiltro::chiudi, this, &FormRecord::Command5);
    connect(m_filtri, &PannelloFiltro::elencoPrecedente, this, &FormRecord::CmdElencoPrec);
    // After a backup, restore or compaction the record shown is read again from the file.
    connect(m_dettaglio.get(), &RecordsetModel::riletto, this, [this] {
        if (recordset().editMode() == store::Recordset::EditMode::None)
            fileRiletto();
    });

    // The form's keys come before its controls see them.
    const auto tasto = [this](QKeySequence k, std::function<void()> f) {
        auto *s = new QShortcut(k, this);
        s->setContext(Qt::WidgetWithChildrenShortcut);
        connect(s, &QShortcut::activated, this, std::move(f));
    };
    const auto seAttivo = [this](const char *chiave) {
        const QAction *a = pulsante(QLatin1String(chiave));
        return a && a->isVisible() && a->isEnabled() && m_toolbar->isVisible();
    };
    tasto(QKeySequence(Qt::Key_Escape), [this, seAttivo] {
        if (seAttivo("annulla"))
            bottoni(QStringLiteral("annulla"));
    });
    tasto(QKeySequence(Qt::Key_F8), [this, seAttivo] {
        if (seAttivo("refresh"))
            bottoni(QStringLiteral("refresh"));
    });
    tasto(QKeySequence(Qt::Key_F1), [this] { tastoF1(); });
    tasto(QKeySequence(Qt::Key_F5), [this] { tastoF5(); });
}

FormRecord::~FormRecord() = default;

void FormRecord::creaToolbar()
{
    m_toolbar->setObjectName(QStringLiteral("Toolbar1"));
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    for (const QString &chiave : ChiaviToolbar()) {
        QAction *a = nullptr;
        if (chiave.startsWith(QLatin1String("sep"))) {
            a = m_toolbar->addSeparator();
        } else {
            a = m_toolbar->addAction(style()->standardIcon(icona(chiave)), chiave);
            // The button passes its key unchanged.
            connect(a, &QAction::triggered, this, [this, chiave] { bottoni(chiave); });
        }
        a->setObjectName(chiave);
        m_pulsanti.insert(chiave, a);
    }
    for (QAction *a : std::as_const(m_pulsanti))
        a->setVisible(false);
}

QWidget *FormRecord::creaPannelloElenco()
{
    auto *pannello = new QWidget(m_pannelli);
    pannello->setObjectName(QStringLiteral("PicGrid"));
    m_griglia = new QTableView(pannello);
    m_griglia->setObjectName(QStringLiteral("grdDataGrid"));
    m_griglia->setModel(m_elenco.get());
    m_griglia->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_griglia->setSelectionMode(QAbstractItemView::SingleSelection);
    m_griglia->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_griglia->verticalHeader()->setDefaultSectionSize(m_griglia->fontMetrics().height() + 6);
    m_griglia->horizontalHeader()->setSectionsClickable(true);
    connect(m_griglia->horizontalHeader(), &QHeaderView::sectionClicked, this, &FormRecord::ordinaElenco);
    connect(m_griglia, &QTableView::activated, this, &FormRecord::PosizionaRecord);

    auto *strip = new QWidget(pannello);
    strip->setObjectName(QStringLiteral("PicComGrid"));
    auto *comandi = new QHBoxLayout(strip);
    comandi->setContentsMargins(0, 0, 0, 0);
    auto *lblOrdinamento = new QLabel(strip);
    lblOrdinamento->setObjectName(QStringLiteral("lblOrdinamento"));
    m_cmbOrdinamento = new QComboBox(strip);
    m_cmbOrdinamento->setObjectName(QStringLiteral("CmbOrdinamento"));
    m_cmbOrdinamento->setMinimumContentsLength(16);
    m_chkOrdinamento = new QCheckBox(strip);
    m_chkOrdinamento->setObjectName(QStringLiteral("ChkOrdinamento"));
    auto *label2 = new QLabel(strip);
    label2->setObjectName(QStringLiteral("Label2"));
    lblOrdinamento->setBuddy(m_cmbOrdinamento);
    comandi->addWidget(lblOrdinamento);
    comandi->addWidget(m_cmbOrdinamento);
    comandi->addWidget(m_chkOrdinamento);
    comandi->addWidget(label2);
    comandi->addStretch(1);
    const struct {
        const char *nome;
        void (FormRecord::*azione)();
    } bottoni[] = {
        {"CmdOkGrid", &FormRecord::PosizionaRecord}, {"CmdFitriGrid", &FormRecord::CmdFitriGrid},
        {"CmdRefresh", &FormRecord::CmdRefresh},     {"CmdStampa", nullptr},
        {"CmdAnnulla2", &FormRecord::Command5},
    };
    for (const auto &b : bottoni) {
        auto *p = new QPushButton(strip);
        p->setObjectName(QLatin1String(b.nome));
        p->setAutoDefault(false);
        comandi->addWidget(p);
        if (b.azione)
            connect(p, &QPushButton::clicked, this, b.azione);
        else
            connect(p, &QPushButton::clicked, this, [this] { AnteprimaGriglia(*m_griglia, windowTitle(), this); }); // CmdStampa
    }
    const auto riordina = [this] {
        const int c = m_cmbOrdinamento->currentData().toInt();
        if (m_cmbOrdinamento->currentIndex() >= 0)
            ordinaElenco(c);
    };
    connect(m_cmbOrdinamento, &QComboBox::activated, this, riordina);
    connect(m_chkOrdinamento, &QCheckBox::clicked, this, riordina);

    auto *layout = new QVBoxLayout(pannello);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_griglia, 1);
    layout->addWidget(strip);
    return pannello;
}

void FormRecord::impostaDettaglio(QWidget *dettaglio, const QList<QWidget *> &pagine)
{
    QWidget *contenitore = m_pannelli->widget(Dettaglio);
    contenitore->layout()->addWidget(dettaglio);
    m_dettaglioPagina = dettaglio;
    m_pagine = pagine;
    m_velo = new QLabel(dettaglio);
    m_velo->setObjectName(QStringLiteral("PicAutorizzato"));
    m_velo->setAlignment(Qt::AlignCenter);
    m_velo->setAutoFillBackground(true);
    m_velo->setText(QStringLiteral("🔒"));
    QFont f = m_velo->font();
    f.setPointSizeF(f.pointSizeF() * 4);
    m_velo->setFont(f);
    m_velo->hide();
}

void FormRecord::impostaCatalogoFiltri(const QVector<CasellaFiltro> &catalogo)
{
    m_filtri->impostaCatalogo(catalogo);
    m_filtri->impostaLunghezze(recordset());
}

void FormRecord::lega(QWidget *casella, const QString &campo, TipoCasellaScheda tipo)
{
    m_legami.append({casella, campo, tipo});
}

void FormRecord::ImpostaCampi()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const store::Recordset &rs = recordset();
    for (const Legame &l : std::as_const(m_legami)) {
        auto *e = qobject_cast<QLineEdit *>(l.casella.data());
        const int c = rs.fieldIndex(l.campo);
        if (!e || c < 0)
            continue;
        const LimitiCasella lim = LimitiCampo(rs.fields()[c], l.tipo);
        if (lim.lunghezzaMassima)
            e->setMaxLength(*lim.lunghezzaMassima);
        if (lim.massimo) {
            auto *v = new QDoubleValidator(*lim.minimo, *lim.massimo, lim.decimali.value_or(4), e);
            v->setNotation(QDoubleValidator::StandardNotation);
            e->setValidator(v);
        }
    }
    QApplication::restoreOverrideCursor();
}

void FormRecord::ImpostaDidascalie()
{
    for (const Didascalia &d : DidascalieScheda()) {
        const QString nome = QLatin1String(d.controllo);
        QObject *o = m_pulsanti.value(nome);
        ApplicaDidascalia(o ? o : m_pannelli->widget(Elenco)->findChild<QObject *>(nome), d.testo, d.suggerimento);
    }
    m_filtri->impostaDidascalie();
}

QString FormRecord::autorizzazione() const
{
    return property("Tag").toString();
}

int FormRecord::pannelloVisibile() const
{
    return m_pannelli->currentIndex();
}

QString FormRecord::didascaliaRecord() const
{
    return m_posizione->text();
}

int FormRecord::idProprietario()
{
    store::Recordset &rs = recordset();
    const int c = rs.fieldIndex(QStringLiteral("IdUtente"));
    if (c < 0 || !rigaCorrente())
        return -1;
    const QVariant v = rs.value(c);
    return v.isValid() ? v.toInt() : -1;
}

bool FormRecord::verificaInterna(const QString &)
{
    return true;
}

void FormRecord::attivata(bool) {}

void FormRecord::fileRiletto()
{
    Riposiziona();
}

void FormRecord::bottoni(const QString &Azione)
{
    try {
        // Rights first: a refusal ends here, told by the rights test itself.
        if (Azione == QLatin1String("modifica") || Azione == QLatin1String("elimina")) {
            if (!frame::AutorizzaOperazione(m_prompter, Azione, autorizzazione(), idProprietario()))
                return;
        } else if (Azione == QLatin1String("aggiungi")) {
            if (!frame::AutorizzaOperazione(m_prompter, Azione, autorizzazione(), -1))
                return;
        }

        if (Azione == QLatin1String("refresh")) {
            azioneRefresh();
        } else if (Azione == QLatin1String("gestione")) {
            Gestione();
        } else if (Azione == QLatin1String("attivazione")) {
            Attivazione();
        } else if (Azione == QLatin1String("aggiungi")) {
            eseguiAggiungi();
        } else if (Azione == QLatin1String("modifica")) {
            store::Recordset &rs = recordset();
            if (!rigaCorrente())
                return;
            Abilita();
            abilitaPulsanti({QStringLiteral("aggiungi"), QStringLiteral("modifica"), QStringLiteral("elimina"),
                             QStringLiteral("trova"), QStringLiteral("stampa")},
                            false);
            if (!verificaInterna(Azione)) {
                applicaLayout(m_layout);
                return;
            }
            if (QWidget *w = primaCasella())
                w->setFocus();
            rs.Edit();
            MostraStato(TestoLingua("M0015"));
            applicaLayout(Layout::Modifica);
        } else if (Azione == QLatin1String("elimina")) {
            eseguiElimina();
        } else if (Azione == QLatin1String("trova")) {
            apriFiltri(PannelloFiltro::Modo::Ricerca);
        } else if (Azione == QLatin1String("stampa")) {
            apriFiltri(PannelloFiltro::Modo::Stampa);
        } else if (Azione == QLatin1String("ok")) {
            eseguiOk();
        } else if (Azione == QLatin1String("annulla")) {
            eseguiAnnulla();
        } else if (Azione == QLatin1String("esci")) {
            if (!verificaInterna(Azione))
                return;
            if (auto *sub = qobject_cast<QMdiSubWindow *>(parentWidget()))
                sub->close();
            else
                close();
        }
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
}

bool FormRecord::eseguiAggiungi()
{
    store::Recordset &rs = recordset();
    Abilita();
    abilitaPulsanti({QStringLiteral("modifica"), QStringLiteral("elimina"), QStringLiteral("trova"),
                     QStringLiteral("stampa")},
                    false);
    if (QWidget *w = primaCasella(); w && w->isEnabled())
        w->setFocus();
    if (rs.editMode() == store::Recordset::EditMode::Edit)
        rs.Update();
    rs.AddNew();
    m_posizione->setText(TestoLingua("M0216"));
    LeggeDati();
    impostaPredefiniti();
    MostraStato(TestoLingua("M0014"));
    applicaLayout(Layout::Modifica);
    return true;
}

bool FormRecord::eseguiOk()
{
    store::Recordset &rs = recordset();
    if (rs.editMode() != store::Recordset::EditMode::None) {
        if (!convalida())
            return false;
        // The bound boxes reach the row only here, while the recordset adds or edits.
        scriviCampi();
        rs.Update(); // a failure throws: the form stays in its editing state
        MostraStato(TestoLingua("M0017"));
        rs.MoveLastModified();
        ricaricaDettaglio(rs.key());
    }
    Disabilita();
    applicaLayout(m_layout);
    return true;
}

void FormRecord::eseguiAnnulla()
{
    if (!m_prompter.confirm(TestoLingua("M0048")))
        return;
    store::Recordset &rs = recordset();
    const auto modo = rs.editMode();
    Disabilita();
    applicaLayout(m_layout);
    if (modo == store::Recordset::EditMode::AddNew) {
        rs.CancelUpdate();
        MostraStato(TestoLingua("M0018"));
        if (!rs.isEmpty()) {
            rs.MoveLast();
            rs.MoveLastModified();
        }
    } else if (modo == store::Recordset::EditMode::Edit) {
        rs.CancelUpdate();
        MostraStato(TestoLingua("M0019"));
    }
    Riposiziona();
}

void FormRecord::eseguiElimina()
{
    store::Recordset &rs = recordset();
    if (!rigaCorrente())
        return;
    // Two questions, each with Cancel as its default, and both must be answered OK.
    if (!m_prompter.confirm(TestoLingua("M0013")) || !m_prompter.confirm(TestoLingua("M0047")))
        return;
    rs.Delete();
    rs.MoveNext();
    if (rs.eof())
        rs.MovePrevious();
    const QVariant chiave = chiaveCorrente();
    MostraStato(TestoLingua("M0016"));
    ricaricaDettaglio(chiave);
}

void FormRecord::scriviCampi()
{
    store::Recordset &rs = recordset();
    for (const Legame &l : std::as_const(m_legami))
        if (l.casella && rs.fieldIndex(l.campo) >= 0)
            rs.setValue(l.campo, valoreCasella(l.casella, l.tipo));
}

void FormRecord::LeggeDati()
{
    store::Recordset &rs = recordset();
    const bool riga = rs.editMode() != store::Recordset::EditMode::None || rigaCorrente();
    for (const Legame &l : std::as_const(m_legami))
        if (l.casella)
            mostraValore(l.casella, riga && rs.fieldIndex(l.campo) >= 0 ? rs.value(l.campo) : QVariant());
}

QWidget *FormRecord::primaCasella() const
{
    for (const Legame &l : m_legami)
        if (l.casella)
            return l.casella;
    return nullptr;
}

void FormRecord::abilitaPulsanti(const QStringList &chiavi, bool abilitato)
{
    for (const QString &k : chiavi)
        if (QAction *a = m_pulsanti.value(k))
            a->setEnabled(abilitato);
}

void FormRecord::applicaLayout(Layout layout)
{
    const QHash<QString, StatoPulsante> stato = Pulsanti(layout, m_cfg.azioni);
    for (auto it = stato.constBegin(); it != stato.constEnd(); ++it) {
        if (QAction *a = m_pulsanti.value(it.key())) {
            a->setVisible(it->visibile);
            a->setEnabled(it->abilitato);
        }
    }
    if (layout != Layout::Modifica)
        m_layout = layout;
    layoutCambiato(layout);
}

void FormRecord::Gestione()
{
    applicaLayout(Layout::Gestione);
}

void FormRecord::Attivazione()
{
    applicaLayout(m_cfg.attivazione ? Layout::Attivazione : Layout::Gestione);
}

void FormRecord::Abilita()
{
    for (QWidget *p : std::as_const(m_pagine))
        p->setEnabled(true);
}

void FormRecord::Disabilita()
{
    for (QWidget *p : std::as_const(m_pagine))
        p->setEnabled(false);
    for (const Legame &l : std::as_const(m_legami))
        if (l.casella)
            frame::ImpostaSfondo(l.casella, frame::pub().ColoreCampo4);
}

void FormRecord::NonAutorizzato()
{
    if (!m_velo)
        return;
    m_velo->setGeometry(m_dettaglioPagina->rect());
    m_velo->raise();
    m_velo->show();
}

void FormRecord::Autorizzato()
{
    if (m_velo)
        m_velo->hide();
}

void FormRecord::vaiA(qint64 posizione)
{
    store::Recordset &rs = recordset();
    if (rs.editMode() != store::Recordset::EditMode::None || posizione == rs.AbsolutePosition())
        return;
    if (rs.setAbsolutePosition(posizione))
        Riposiziona();
}

void FormRecord::Riposiziona()
{
    store::Recordset &rs = recordset();
    const bool valida = rigaCorrente();
    if (valida) {
        m_pannelli->setCurrentIndex(Dettaglio);
        Abilita();
        LeggeDati();
    }
    m_posizione->setText(QStringLiteral("Reg. ") + (valida ? QString::number(rs.AbsolutePosition() + 1) : QString()));
    emit posizioneCambiata(valida ? rs.AbsolutePosition() : -1);
}

void FormRecord::apriDettaglio(const QString &sql, const QVariantList &parametri, const QVariant &chiave,
                               store::RowCounter contatore)
{
    m_dettaglio->riapri(sql, parametri, std::move(contatore));
    posizionaDettaglio(chiave);
}

void FormRecord::ricaricaDettaglio(const QVariant &chiave)
{
    m_dettaglio->aggiorna();
    posizionaDettaglio(chiave);
}

void FormRecord::posizionaDettaglio(const QVariant &chiave)
{
    store::Recordset &rs = recordset();
    const int riga = chiave.isValid() ? m_dettaglio->posizione(chiave) : -1;
    if (riga >= 0)
        rs.setAbsolutePosition(riga);
    else if (!rs.isEmpty())
        rs.MoveFirst();
    Riposiziona();
}

void FormRecord::CaricaGriglia(const QString &Ordine)
{
    m_ordine = Ordine;
    m_elenco->riapri(QueryGriglia(m_cfg.tabella, m_where, Ordine, m_cfg.ordinePredefinito));
    // The sort choice lists the columns of the new list.
    const QString scelto = m_cmbOrdinamento->currentText();
    m_cmbOrdinamento->clear();
    for (int c = 0; c < m_elenco->columnCount(); ++c)
        m_cmbOrdinamento->addItem(m_elenco->headerData(c, Qt::Horizontal).toString(), c);
    m_cmbOrdinamento->setCurrentIndex(m_cmbOrdinamento->findText(scelto));
}

void FormRecord::ordinaElenco(int colonna)
{
    if (colonna < 0)
        return;
    const QString campo = m_elenco->campo(colonna);
    if (campo.isEmpty())
        return;
    MostraStato(TestoLingua("M0011"));
    try {
        CaricaGriglia(OrdineColonna(campo, m_chkOrdinamento->isChecked()));
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    MostraStato(QString());
}

void FormRecord::PosizionaRecord()
{
    const QModelIndex i = m_griglia->currentIndex();
    const QVariant chiave = i.isValid() ? m_elenco->chiave(i.row()) : QVariant();
    if (!chiave.isValid())
        return;
    try {
        const int riga = m_dettaglio->posizione(chiave);
        if (riga >= 0) {
            recordset().setAbsolutePosition(riga);
            Riposiziona();
        } else {
            // The detail source doesn't hold the row: it takes the list's rows, and finds it there.
            apriDettaglio(m_elenco->sql(), {}, chiave);
        }
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    Command5();
}

void FormRecord::apriFiltri(PannelloFiltro::Modo modo)
{
    m_filtri->impostaModo(modo);
    m_pannelli->setCurrentIndex(Filtri);
    m_toolbar->hide();
    if (QLineEdit *primo = m_filtri->casella(0))
        primo->setFocus();
}

void FormRecord::Command5()
{
    m_pannelli->setCurrentIndex(Dettaglio);
    m_toolbar->show();
    m_toolbar->setEnabled(true);
    if (m_cfg.attivazione)
        Attivazione();
}

void FormRecord::Command6()
{
    const Filtro f = CostruisciFiltro(m_cfg.tabella, m_filtri->caselle(), m_filtri->modoConfronto(), m_prompter);
    if (!f.valido) {
        if (QLineEdit *e = m_filtri->casella(f.casellaErrata, f.erroreNelLimiteAl))
            e->setFocus();
        return;
    }
    if (m_filtri->modo() == PannelloFiltro::Modo::Stampa) {
        MostraStato(QString());
        StampaFiltro(m_report, f, reports::CrystalReport::ToWindow, m_cfg.modelloStampa, m_cfg.chiaveTitoloStampa);
        return;
    }
    m_where = f.where;
    try {
        const QString ordine = m_cmbOrdinamento->currentIndex() >= 0
                                   ? OrdineColonna(m_elenco->campo(m_cmbOrdinamento->currentData().toInt()),
                                                   m_chkOrdinamento->isChecked())
                                   : QString();
        CaricaGriglia(ordine);
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
        return;
    }
    const qint64 righe = almeno(*m_elenco, 2) ? 2 : m_elenco->recordset().rowsRead();
    switch (EsitoElenco(righe, m_filtri->chkAuto(), m_prompter)) {
    case EsitoRicerca::Posiziona:
        m_griglia->setCurrentIndex(m_elenco->index(0, 0));
        PosizionaRecord();
        break;
    case EsitoRicerca::NessunaRiga:
        break;
    case EsitoRicerca::MostraElenco:
        m_pannelli->setCurrentIndex(Elenco);
        m_griglia->setCurrentIndex(m_elenco->index(0, 0));
        m_griglia->setFocus();
        break;
    }
}

void FormRecord::CmdElencoPrec()
{
    if (!almeno(*m_elenco, 2)) {
        m_prompter.message(TestoLingua(m_cfg.chiaveNessunElenco), frame::Prompter::Icon::Stop);
        return;
    }
    m_pannelli->setCurrentIndex(Elenco);
    m_griglia->setFocus();
}

void FormRecord::CmdRefresh()
{
    try {
        m_elenco->aggiorna();
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
}

bool FormRecord::rigaCorrente()
{
    store::Recordset &rs = recordset();
    return !rs.bof() && !rs.eof();
}

QVariant FormRecord::chiaveCorrente()
{
    return rigaCorrente() ? recordset().key() : QVariant();
}

void FormRecord::mostraDettaglio()
{
    m_pannelli->setCurrentIndex(Dettaglio);
    m_toolbar->show();
}

void FormRecord::CmdFitriGrid()
{
    m_pannelli->setCurrentIndex(Filtri);
}

void FormRecord::keyPressEvent(QKeyEvent *event)
{
    // Enter moves on as Tab does, except where it has a meaning of its own (lists, buttons).
    const int k = event->key();
    QWidget *f = focusWidget();
    if ((k == Qt::Key_Return || k == Qt::Key_Enter) && event->modifiers() == Qt::NoModifier
        && !qobject_cast<QAbstractItemView *>(f) && !qobject_cast<QAbstractButton *>(f)
        && !qobject_cast<QPlainTextEdit *>(f)) {
        focusNextChild();
        return;
    }
    QWidget::keyPressEvent(event);
}

void FormRecord::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        attivata(frame::AutorizzaOperazione(m_prompter, QStringLiteral("gestioneaccessi"), autorizzazione(), -1));
}

bool FormRecord::event(QEvent *event)
{
    if (event->type() == QEvent::DynamicPropertyChange
        && static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() == "Tag")
        attivata(frame::AutorizzaOperazione(m_prompter, QStringLiteral("gestioneaccessi"), autorizzazione(), -1));
    if (event->type() == QEvent::Resize && m_velo && m_velo->isVisible())
        m_velo->setGeometry(m_dettaglioPagina->rect());
    return QWidget::event(event);
}

void FormRecord::closeEvent(QCloseEvent *event)
{
    MostraStato(QString());
    QWidget::closeEvent(event);
}

} // namespace forms
