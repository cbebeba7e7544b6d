// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/FormRecord.h"

#include "forms/ui/Didascalie.h"
#include "forms/ui/StampaGriglia.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaData.h"
#include "frame/widgets/ChiudeFinestra.h"
#include "frame/widgets/Colori.h"
#include "store/Currency.h"
#include "store/DbError.h"

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
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

#include <functional>
#include <utility>

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
        {QStringLiteral("scheda"), QStyle::SP_FileDialogInfoView},
        {QStringLiteral("ok"), QStyle::SP_DialogApplyButton},
        {QStringLiteral("annulla"), QStyle::SP_DialogCancelButton},
        {QStringLiteral("gestione"), QStyle::SP_FileDialogListView},
        {QStringLiteral("refresh"), QStyle::SP_BrowserReload},
        {QStringLiteral("esci"), QStyle::SP_DialogCloseButton},
    };
    return icone.value(chiave, QStyle::SP_CustomBase);
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
    : QWidget(parent), m_visore(this), m_report(prompter, &m_visore), m_toolbar(new QToolBar(this)), m_pannelli(new QStackedWidget(this)),
      m_velo(nullptr), m_posizione(new QLabel(this)), m_filtri(new PannelloFiltro(this)), m_griglia(nullptr),
      m_chkOrdinamento(nullptr), m_cmbOrdinamento(nullptr)
{
    setAttribute(Qt::WA_DeleteOnClose);
    MacchinaScheda::Ganci &ganci = *this;
    m_macchina = std::make_unique<MacchinaScheda>(frame::basedati(), prompter, std::move(configurazione), ganci);

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
    m_filtri->impostaStampeAggiunte(!m_macchina->configurazione().modelloEtichette.isEmpty(),
                                    m_macchina->configurazione().elencoPersonalizzato);
    connect(m_filtri, &PannelloFiltro::personalizzato, this, [this] { elencoPersonalizzato(); });
    connect(m_filtri, &PannelloFiltro::etichette, this, [this] { stampaFiltro(m_macchina->configurazione().modelloEtichette); });
    connect(m_filtri, &PannelloFiltro::elencoPrecedente, this, &FormRecord::CmdElencoPrec);
    MacchinaScheda *m = m_macchina.get();
    connect(m, &MacchinaScheda::statoCambiato, this, &FormRecord::mostraStato);
    connect(m, &MacchinaScheda::fuocoRichiesto, this, &FormRecord::daiFuoco);
    connect(m, &MacchinaScheda::elencoRiaperto, this, &FormRecord::elencoRiaperto);
    connect(m, &MacchinaScheda::posizioneCambiata, this, &FormRecord::posizioneCambiata);
    connect(m, &MacchinaScheda::chiusuraRichiesta, this, [this] { frame::ChiudeFinestra(this); });

    // The form's keys come before its controls see them.
    const auto tasto = [this](QKeySequence k, std::function<void()> f) {
        auto *s = new QShortcut(k, this);
        s->setContext(Qt::WidgetWithChildrenShortcut);
        connect(s, &QShortcut::activated, this, std::move(f));
    };
    const auto seAttivo = [this](const char *chiave) {
        const StatoPulsante s = m_macchina->pulsanti().value(QLatin1String(chiave));
        return s.visibile && s.abilitato && m_macchina->toolbarVisibile();
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
    mostraStato();
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
    m_griglia->setModel(&datPrimaryRSGrd());
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
    const std::pair<const char *, std::function<void()>> bottoni[] = {
        {"CmdOkGrid", [this] { PosizionaRecord(); }},
        {"CmdFitriGrid", [this] { CmdFitriGrid(); }},
        {"CmdRefresh", [this] { CmdRefresh(); }},
        {"CmdStampa", [this] { AnteprimaGriglia(*m_griglia, windowTitle(), this); }},
        {"CmdCsv", [this] { CsvGriglia(*m_griglia, windowTitle(), this); }},
        {"CmdAnnulla2", [this] { Command5(); }},
    };
    for (const auto &[nome, azione] : bottoni) {
        auto *p = new QPushButton(strip);
        p->setObjectName(QLatin1String(nome));
        p->setAutoDefault(false);
        comandi->addWidget(p);
        connect(p, &QPushButton::clicked, this, azione);
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
    mostraStato(); // the pages start closed, as the machine has them
}

void FormRecord::impostaCatalogoFiltri(const QVector<CasellaFiltro> &catalogo)
{
    m_filtri->impostaCatalogo(catalogo);
    m_filtri->impostaLunghezze(recordset());
}

void FormRecord::lega(QWidget *casella, const QString &campo, TipoCasellaScheda tipo)
{
    QPointer<QWidget> box(casella);
    m_caselle.append(box);
    m_macchina->lega({campo, tipo, [box, tipo] { return box ? valoreCasella(box, tipo) : QVariant(); },
                      [box](const QVariant &v) {
                          if (box)
                              mostraValore(box, v);
                      }});
}

void FormRecord::ImpostaCampi()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const store::Recordset &rs = recordset();
    for (qsizetype i = 0; i < m_caselle.size(); ++i) {
        const CampoLegato &l = m_macchina->legami().at(i);
        auto *e = qobject_cast<QLineEdit *>(m_caselle[i].data());
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

void FormRecord::mostraStato()
{
    const MacchinaScheda &m = *m_macchina;
    const QHash<QString, StatoPulsante> stato = m.pulsanti();
    for (auto it = stato.constBegin(); it != stato.constEnd(); ++it) {
        if (QAction *a = m_pulsanti.value(it.key())) {
            a->setVisible(it->visibile);
            a->setEnabled(it->abilitato);
        }
    }
    for (QWidget *p : std::as_const(m_pagine))
        p->setEnabled(m.pagineAbilitate());
    if (!m.pagineAbilitate())
        for (const QPointer<QWidget> &c : std::as_const(m_caselle))
            if (c)
                frame::ImpostaSfondo(c, frame::pub().ColoreCampo4);
    m_filtri->impostaModo(m.modoFiltri() == MacchinaScheda::ModoFiltri::Stampa ? PannelloFiltro::Modo::Stampa
                                                                               : PannelloFiltro::Modo::Ricerca);
    m_pannelli->setCurrentIndex(int(m.pannello()));
    m_toolbar->setVisible(m.toolbarVisibile());
    m_posizione->setText(m.didascaliaRecord());
}

void FormRecord::daiFuoco(MacchinaScheda::Fuoco dove)
{
    switch (dove) {
    case MacchinaScheda::Fuoco::PrimaCasella:
        if (QWidget *w = primaCasella(); w && w->isEnabled())
            w->setFocus();
        break;
    case MacchinaScheda::Fuoco::Filtri:
        if (QLineEdit *primo = m_filtri->casella(0))
            primo->setFocus();
        break;
    case MacchinaScheda::Fuoco::Griglia:
        if (!m_griglia->currentIndex().isValid())
            m_griglia->setCurrentIndex(datPrimaryRSGrd().index(0, 0));
        m_griglia->setFocus();
        break;
    }
}

void FormRecord::elencoRiaperto()
{
    // The sort choice lists the columns of the new list.
    RecordsetModel &elenco = datPrimaryRSGrd();
    const QString scelto = m_cmbOrdinamento->currentText();
    m_cmbOrdinamento->clear();
    for (int c = 0; c < elenco.columnCount(); ++c)
        m_cmbOrdinamento->addItem(elenco.headerData(c, Qt::Horizontal).toString(), c);
    m_cmbOrdinamento->setCurrentIndex(m_cmbOrdinamento->findText(scelto));
}

QWidget *FormRecord::primaCasella() const
{
    for (const QPointer<QWidget> &c : m_caselle)
        if (c)
            return c;
    return nullptr;
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

void FormRecord::ordinaElenco(int colonna)
{
    if (colonna >= 0)
        m_macchina->ordinaElenco(datPrimaryRSGrd().campo(colonna), m_chkOrdinamento->isChecked());
}

void FormRecord::PosizionaRecord()
{
    const QModelIndex i = m_griglia->currentIndex();
    m_macchina->PosizionaRecord(i.isValid() ? datPrimaryRSGrd().chiave(i.row()) : QVariant());
}

std::optional<Filtro> FormRecord::filtroDelPannello()
{
    const Filtro f = CostruisciFiltro(m_macchina->configurazione().tabella, m_filtri->caselle(), m_filtri->modoConfronto(),
                                      prompter());
    if (f.valido)
        return f;
    if (QLineEdit *e = m_filtri->casella(f.casellaErrata, f.erroreNelLimiteAl))
        e->setFocus();
    return std::nullopt;
}

void FormRecord::stampaFiltro(const QString &modello)
{
    if (const std::optional<Filtro> f = filtroDelPannello()) {
        MostraStato(QString());
        const ConfigurazioneScheda &c = m_macchina->configurazione();
        reports::Lancio lancio = LancioFiltro(*f, modello, c.chiaveTitoloStampa);
        for (const QString &formula : c.formuleStampa)
            lancio.formule.insert(lancio.formule.size(), formula);
        m_report.esegui(lancio);
    }
}

void FormRecord::Command6()
{
    if (m_filtri->modo() == PannelloFiltro::Modo::Stampa) {
        stampaFiltro(m_macchina->configurazione().modelloStampa);
        return;
    }
    const std::optional<Filtro> trovato = filtroDelPannello();
    if (!trovato)
        return;
    const Filtro &f = *trovato;
    const QString ordine = m_cmbOrdinamento->currentIndex() >= 0
                               ? OrdineColonna(datPrimaryRSGrd().campo(m_cmbOrdinamento->currentData().toInt()),
                                               m_chkOrdinamento->isChecked())
                               : QString();
    m_macchina->applicaFiltro(f.where, ordine, m_filtri->chkAuto());
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
        m_macchina->attivata();
}

bool FormRecord::event(QEvent *event)
{
    if (event->type() == QEvent::DynamicPropertyChange
        && static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() == "Tag")
        m_macchina->impostaAutorizzazione(property("Tag").toString());
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
