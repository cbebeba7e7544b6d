// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/ui/frmClienti.h"
#include "ui_frmClienti.h"

#include "customers/Contatti.h"
#include "customers/LibroCassa.h"
#include "customers/Semaforo.h"
#include "customers/StampeCliente.h"
#include "forms/RecordsetModel.h"
#include "forms/Tabelle.h"
#include "forms/ui/Didascalie.h"
#include "forms/ui/EditoreCampi.h"
#include "forms/ui/LayoutGriglia.h"
#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaData.h"
#include "reports/runs/ElencoPersonalizzato.h"
#include "reports/ui/frmStampa.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QScrollArea>
#include <QShortcut>

namespace customers {

using frame::pub;
using frame::TestoLingua;

namespace {

const QString Vista = QStringLiteral("Q_Clienti_Utenti");

forms::ConfigurazioneScheda configurazione()
{
    forms::ConfigurazioneScheda c;
    c.tabella = Vista;
    c.sorgenteIniziale = QStringLiteral("SELECT * FROM Q_Clienti_Utenti WHERE ID =-1");
    c.ordinePredefinito = QStringLiteral(" order by Cognome,Nome");
    c.azioni = forms::ChiaviToolbar();
    c.azioni.removeAll(QStringLiteral("gestione"));
    c.modelloEtichette = QStringLiteral("Etichette");
    c.elencoPersonalizzato = true;
    c.domandeElimina = {"M0006"}; // "Delete the record?": once, the card's rows in the cash book stay
    return c;
}

// The list panel's columns, in their order, with the caption key each takes.
const struct {
    const char *campo;
    const char *didascalia;
} ColonneElenco[] = {
    {"Cognome", "M0179"}, {"Nome", "M0180"},           {"DataUltimoPagamento", "M0206"}, {"Targa", "M0203"},
    {"Marca", "M0202"},   {"VModello", "M0204"},       {"Posto", "M0201"},               {"Contatto", "M0189"},
    {"Indirizzo", "M0181"}, {"Località", "M0182"},     {"Cap", "M0183"},                 {"Provincia", "M0184"},
    {"Email", "M0190"},   {"Tel Cel", "M0185"},        {"Tel Casa", "M0186"},            {"Tel Uff", "M0187"},
    {"Tel Altro", "M0188"}, {"DataScadenzaAssic", "M0207"},
};

QString sfondo(const QColor &c)
{
    return QStringLiteral("background-color: %1; border: 1px solid #606060; border-radius: 9px;").arg(c.name());
}

} // namespace

frmClienti::frmClienti(frame::Prompter &prompter, Modo modo, QWidget *parent)
    : forms::FormRecord(prompter, configurazione(), parent), m_ui(new Ui::frmClientiDettaglio), m_modo(modo)
{
    setObjectName(QStringLiteral("frmClienti"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *dettaglio = new QWidget(this);
    m_ui->setupUi(dettaglio);
    impostaDettaglio(dettaglio, {m_ui->PicTab_0});
    resize(1100, 720);

    // What a save writes by itself: the mode and the user, through two hidden boxes.
    m_cliente = new QCheckBox(dettaglio);
    m_cliente->hide();
    m_utente = new QLineEdit(dettaglio);
    m_utente->hide();

    m_ui->Combo2->addItems(Titoli());
    m_ui->Combo2->setCurrentIndex(-1);
    {
        store::Recordset q(frame::basedati(), QStringLiteral("select descrizione from QualificaCliente order by descrizione"));
        for (q.MoveFirst(); !q.isEmpty() && !q.eof(); q.MoveNext())
            m_ui->TDBCombo_0->addItem(q.value(0).toString());
        m_ui->TDBCombo_0->setCurrentIndex(-1);
    }

    using T = forms::TipoCasellaScheda;
    const struct {
        QWidget *casella;
        const char *campo;
        T tipo;
    } legami[] = {
        {m_ui->TxtT_21, "Cognome", T::Testo},         {m_ui->TxtT_1, "Nome", T::Testo},
        {m_ui->Combo2, "Titolo", T::Testo},            {m_ui->TxtT_3, "Indirizzo", T::Testo},
        {m_ui->TxtT_5, "Località", T::Testo},          {m_ui->TxtT_4, "Cap", T::Testo},
        {m_ui->TxtT_14, "Provincia", T::Testo},        {m_ui->TxtT_6, "Tel Cel", T::Testo},
        {m_ui->TxtT_7, "Tel Cel2", T::Testo},          {m_ui->TxtT_8, "Tel Casa", T::Testo},
        {m_ui->TxtT_9, "Tel Uff", T::Testo},           {m_ui->TxtT_10, "Tel Altro", T::Testo},
        {m_ui->TxtT_2, "Contatto", T::Testo},          {m_ui->TxtT_13, "Email", T::Testo},
        {m_ui->TxtT_12, "CF", T::Testo},               {m_ui->TxtT_15, "Note", T::Testo},
        {m_ui->TDBCombo_0, "QualificaCliente", T::Testo}, {m_ui->TxtNEnt, "SaldoEntrate", T::Numero},
        {m_ui->TxtNUsc, "SaldoUscite", T::Numero},     {m_ui->TxtD_2, "Data Registrazione", T::Testo},
        {m_ui->TxtD_0, "DataUltimaModifica", T::Testo}, {m_ui->TxtT_18, "Targa", T::Testo},
        {m_ui->TxtT_17, "Marca", T::Testo},            {m_ui->TxtT_19, "VModello", T::Testo},
        {m_ui->TxtT_16, "Posto", T::Testo},            {m_ui->TxtN_0, "Canone", T::Numero},
        {m_ui->TxtD_1, "DataUltimoPagamento", T::Testo}, {m_ui->TxtD_3, "DataScadenzaAssic", T::Testo},
        {m_cliente, "Cliente", T::Testo},              {m_utente, "IdUtente", T::Testo},
    };
    for (const auto &l : legami)
        lega(l.casella, QString::fromUtf8(l.campo), l.tipo);
    ImpostaCampi();
    m_ui->TxtD_0->setReadOnly(true); // the day of the last change is the program's
    m_ui->layoutTab0->setRowStretch(m_ui->layoutTab0->rowCount(), 1); // the boxes keep their height, the room goes below
    {
        // A small window scrolls the card rather than squeezing its boxes.
        auto *scorre = new QScrollArea(m_ui->Tab_0);
        scorre->setWidgetResizable(true);
        scorre->setFrameShape(QFrame::NoFrame);
        m_ui->layoutTab0Esterno->replaceWidget(m_ui->PicTab_0, scorre);
        scorre->setWidget(m_ui->PicTab_0);
    }

    // The list panel and the filters.
    QStringList campi;
    for (const auto &c : ColonneElenco)
        campi << QString::fromUtf8(c.campo);
    forms::RecordsetModel &elenco = datPrimaryRSGrd();
    elenco.impostaColonne(campi);
    for (const auto &c : ColonneElenco)
        elenco.impostaIntestazione(QString::fromUtf8(c.campo), TestoLingua(c.didascalia));
    elenco.impostaIntestazione(QStringLiteral("Provincia"), QStringLiteral("pr"));
    QVector<forms::CasellaFiltro> catalogo;
    for (const auto &[campo, chiave, tipo] : {std::tuple{"Cognome", "M0179", forms::TipoCasella::Testo},
                                              std::tuple{"Nome", "M0180", forms::TipoCasella::Testo},
                                              std::tuple{"Località", "M0182", forms::TipoCasella::Testo},
                                              std::tuple{"Targa", "M0203", forms::TipoCasella::Testo},
                                              std::tuple{"Posto", "M0201", forms::TipoCasella::Testo},
                                              std::tuple{"Email", "M0190", forms::TipoCasella::Testo},
                                              std::tuple{"DataUltimoPagamento", "M0206", forms::TipoCasella::Data},
                                              std::tuple{"DataScadenzaAssic", "M0207", forms::TipoCasella::Data},
                                              std::tuple{"Canone", "M0205", forms::TipoCasella::Numero}}) {
        forms::CasellaFiltro k;
        k.campo = QString::fromUtf8(campo);
        k.didascalia = TestoLingua(chiave);
        k.tipo = tipo;
        catalogo << k;
    }
    forms::CasellaFiltro telefoni;
    telefoni.campo = QStringLiteral("Tel Cel");
    telefoni.altriCampi = {QStringLiteral("Tel Cel2"), QStringLiteral("Tel Casa"), QStringLiteral("Tel Uff"), QStringLiteral("Tel Altro")};
    telefoni.didascalia = TestoLingua("M0185");
    catalogo << telefoni;
    impostaCatalogoFiltri(catalogo);
    forms::CaricaLayoutGriglia(*grdDataGrid(), QStringLiteral("clienti1"));
    // The list's three saved layouts, from its heading's menu.
    QHeaderView *testata = grdDataGrid()->horizontalHeader();
    testata->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (int n = 1; n <= 3; ++n) {
        const QString nome = QStringLiteral("clienti%1").arg(n);
        auto *carica = new QAction(TestoLingua("CAP27").arg(n), testata); // "Layout %1"
        carica->setObjectName(QStringLiteral("carica_") + nome);
        connect(carica, &QAction::triggered, this, [this, nome] { forms::CaricaLayoutGriglia(*grdDataGrid(), nome); });
        auto *salva = new QAction(TestoLingua("CAP28").arg(n), testata); // "Save as layout %1"
        salva->setObjectName(QStringLiteral("salva_") + nome);
        connect(salva, &QAction::triggered, this, [this, nome] {
            if (!forms::SalvaLayoutGriglia(*grdDataGrid(), nome))
                this->prompter().message(TestoLingua("CAP29"), frame::Prompter::Icon::Exclamation); // the file can't be written
        });
        testata->addAction(carica);
        testata->addAction(salva);
    }

    // The card's cash rows, newest first, editable while the card is.
    m_cassa = std::make_unique<forms::RecordsetModel>(
        frame::basedati(), QStringLiteral("select * from cassa where idcliente = -1 order by Data Desc"));
    m_cassa->impostaColonne({QStringLiteral("Data"), QStringLiteral("Descrizione"), QStringLiteral("Entrata"), QStringLiteral("Uscita")});
    m_cassa->impostaIntestazioni({TestoLingua("M0209"), TestoLingua("M0210"), TestoLingua("M0355"), TestoLingua("M0356")});
    m_cassa->impostaColori(forms::ColoreCassa);
    m_cassa->impostaModifica(
        prompter,
        [this](const QString &campo, QVariant &v) { return forms::ConvalidaCampo(m_cassa->recordset().field(campo), v, this->prompter()); },
        [this](store::Recordset &rs) { CompletaRigaCliente(rs, m_idCassa.toLongLong()); });
    m_ui->TDBGrid_0->setModel(m_cassa.get());
    m_ui->TDBGrid_0->setItemDelegate(new forms::EditoreCampi(m_ui->TDBGrid_0));
    // The description takes the room; the date column holds its box whole.
    m_ui->TDBGrid_0->horizontalHeader()->setSectionResizeMode(m_cassa->colonna(QStringLiteral("Descrizione")), QHeaderView::Stretch);
    m_ui->TDBGrid_0->setColumnWidth(m_cassa->colonna(QStringLiteral("Data")), frame::CasellaData().sizeHint().width());

    // The phone book shares the form's rows and moves the card, never during an edit.
    datPrimaryRS().impostaIntestazione(QStringLiteral("Cognome"), TestoLingua("M0179"));
    datPrimaryRS().impostaIntestazione(QStringLiteral("Nome"), TestoLingua("M0180"));
    m_ui->TDBGridRubrica->setModel(&datPrimaryRS());
    m_ui->TDBGridRubrica->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_ui->TDBGridRubrica->setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(m_ui->TDBGridRubrica->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &i) { rubricaCambiata(i); });
    connect(this, &forms::FormRecord::posizioneCambiata, this, &frmClienti::mostraInRubrica);

    for (int i = 0; i <= IndiceTutti; ++i)
        if (auto *b = dettaglio->findChild<QToolButton *>(QStringLiteral("ComElenco_%1").arg(i)))
            connect(b, &QToolButton::clicked, this, [this, i] { ComElenco(i); });
    for (auto *d : {m_ui->TxtD_1, m_ui->TxtD_2, m_ui->TxtD_3})
        connect(d, &QLineEdit::textChanged, this, &frmClienti::aggiornaLampade);
    // The card's money moves only while the card is written: the fee, the rows typed, a row deleted.
    connect(&macchina(), &forms::MacchinaScheda::statoCambiato, this, [this] {
        const bool scrive = inScrittura();
        m_ui->CmdPag->setEnabled(scrive);
        m_ui->CmdCancella->setEnabled(scrive);
        m_ui->TDBGrid_0->setEditTriggers(scrive ? QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                                                      | QAbstractItemView::AnyKeyPressed
                                                : QAbstractItemView::NoEditTriggers);
    });
    connect(m_ui->CmdPag, &QPushButton::clicked, this, &frmClienti::CmdPag);
    for (QLineEdit *numero : {m_ui->TxtT_6, m_ui->TxtT_7, m_ui->TxtT_8, m_ui->TxtT_9, m_ui->TxtT_10}) {
        auto *tasto = dettaglio->findChild<QToolButton *>(numero->objectName().replace(QLatin1String("TxtT"), QLatin1String("ComTel")));
        connect(tasto, &QToolButton::clicked, this, [this, numero] { Contatti(this->prompter()).Telefono(numero->text()); });
    }
    connect(m_ui->ComEmail, &QToolButton::clicked, this, [this] { Contatti(this->prompter()).Email(m_ui->TxtT_13->text()); });
    connect(m_ui->CmdCancella, &QPushButton::clicked, this, &frmClienti::CmdCancella);
    connect(m_ui->CmdStampaDoc, &QPushButton::clicked, this, &frmClienti::CmdStampaDoc);
    auto *f3 = new QShortcut(QKeySequence(Qt::Key_F3), this);
    f3->setContext(Qt::WidgetWithChildrenShortcut);
    connect(f3, &QShortcut::activated, this, [this] {
        if (const auto testo = this->prompter().input(TestoLingua("M0358"), windowTitle(), QString()))
            RicercaVeloce(*testo);
    });

    ImpostaDidascalie();
    impostaDidascalie();
    impostaModo();
    Gestione();
    const Sorgente s = SorgenteModo(m_modo);
    apriDettaglio(s.sql, s.parametri, QVariant(), ContatoreModo(frame::basedati(), m_modo));
    for (int c = 0; c < datPrimaryRS().columnCount(); ++c) {
        const QString campo = datPrimaryRS().campo(c);
        m_ui->TDBGridRubrica->setColumnHidden(c, campo != QLatin1String("Cognome") && campo != QLatin1String("Nome"));
    }
    if (!recordset().isEmpty()) {
        recordset().MoveLast();
        Riposiziona();
    }
}

frmClienti::~frmClienti()
{
    delete m_ui;
}

void frmClienti::impostaDidascalie()
{
    const struct {
        QWidget *controllo;
        const char *chiave;
    } etichette[] = {
        {m_ui->lblCognome, "M0179"},  {m_ui->lblNome, "M0180"},       {m_ui->lblIndirizzo, "M0181"},
        {m_ui->lblLocalita, "M0182"}, {m_ui->lblCap, "M0183"},        {m_ui->lblProvincia, "M0184"},
        {m_ui->lblTel_6, "M0185"},    {m_ui->lblTel_8, "M0186"},      {m_ui->lblTel_9, "M0187"},
        {m_ui->lblTel_10, "M0188"},   {m_ui->lblContatto, "M0189"},   {m_ui->lblEmail, "M0190"},
        {m_ui->lblCF, "M0191"},       {m_ui->lblNote, "M0192"},       {m_ui->lblEntrate, "M0194"},
        {m_ui->lblUscite, "M0195"},   {m_ui->lblDataReg, "M0196"},    {m_ui->Label1, "M0197"},
        {m_ui->lblTarga, "M0203"},    {m_ui->lblMarca, "M0202"},      {m_ui->lblModello, "M0204"},
        {m_ui->lblPosto, "M0201"},    {m_ui->lblCanone, "M0205"},     {m_ui->lblUltimoPag, "M0206"},
        {m_ui->lblScadAssic, "M0207"}, {m_ui->CmdPag, "M0208"},       {m_ui->CmdCancella, "M0352"},
        {m_ui->CmdStampaDoc, "M0353"}, {m_ui->Label5, "M0211"},      {m_ui->lblTitolo, "CAP22"},
        {m_ui->lblQualifica, "CAP23"}, {m_ui->lblUltimaModifica, "CAP24"}, {m_ui->FrmSaldo, "M0193"},
        {m_ui->FrmParcheggio, "CAP25"},
    };
    for (const auto &e : etichette)
        forms::ApplicaDidascalia(e.controllo, e.chiave);
    m_ui->lblTel_7->setText(TestoLingua("M0185") + QStringLiteral(" 2"));
    m_ui->SSTab1->setTabText(0, TestoLingua("M0198"));
    m_ui->SSTab1->setTabText(1, TestoLingua("M0355") + QStringLiteral("-") + TestoLingua("M0356"));
    if (QAction *a = pulsante(QStringLiteral("stampa")))
        a->setText(TestoLingua("M0148"));
}

void frmClienti::impostaModo()
{
    const bool clienti = m_modo == Modo::Clienti;
    setWindowTitle(TestoLingua(clienti ? "M0349" : "M0350"));
    m_ui->FrmParcheggio->setVisible(clienti);
    m_ui->PicSemaforo->setVisible(clienti);
    if (!clienti) {
        // The fields stay in the record; only the list stops showing them.
        for (const QString &c : ColonneParcheggio())
            if (const int i = datPrimaryRSGrd().colonna(c); i >= 0)
                grdDataGrid()->setColumnHidden(i, true);
    }
}

void frmClienti::LeggeDati()
{
    forms::FormRecord::LeggeDati();
    seguiCassa();
    m_ui->Label3->setText(m_idCassa.isValid() ? recordset().value(QStringLiteral("Utente")).toString() : QString());
    aggiornaLampade();
}

// The cash tab follows the stored record shown; a new card has no rows yet.
void frmClienti::seguiCassa()
{
    const bool riga = rigaCorrente() && recordset().editMode() != store::Recordset::EditMode::AddNew;
    const QVariant id = riga ? recordset().value(QStringLiteral("Id")) : QVariant();
    m_idCassa = id.isNull() ? QVariant() : id;
    try {
        m_cassa->riapri(QStringLiteral("select * from cassa where idcliente = ? order by Data Desc"),
                        {m_idCassa.isValid() ? m_idCassa : QVariant(-1)});
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter(), e.message());
    }
    frame::MostraStato(QString());
}

void frmClienti::aggiornaLampade()
{
    const QDate oggi = QDate::currentDate();
    const auto stato = [&](frame::CasellaData *d) { return StatoScadenza(d->data(), oggi); };
    for (frame::CasellaData *d : {m_ui->TxtD_1, m_ui->TxtD_2, m_ui->TxtD_3}) {
        QPalette p = d->palette();
        p.setColor(QPalette::Text, TestoRosso(stato(d)) ? QColor(Qt::red) : palette().color(QPalette::WindowText));
        d->setPalette(p);
    }
    const Lampada ass = LampadaUltimoPagamento(stato(m_ui->TxtD_1));
    m_ui->ShpAss->setStyleSheet(sfondo(ass.colore));
    m_ui->LblAss->setText(TestoLingua(ass.chiave));
    const Lampada canone = LampadaScadenzaAssic(stato(m_ui->TxtD_3));
    m_ui->ShpCanone->setStyleSheet(sfondo(canone.colore));
    m_ui->LblCanone->setText(TestoLingua(canone.chiave));
}

bool frmClienti::convalida()
{
    if (!ConvalidaCognome(m_ui->TxtT_21->text(), prompter())) {
        m_ui->SSTab1->setCurrentIndex(0);
        m_ui->TxtT_21->setFocus();
        return false;
    }
    m_cliente->setChecked(m_modo == Modo::Clienti);
    m_utente->setText(QString::number(pub().IdUtenteCorrente));
    return true;
}

void frmClienti::impostaPredefiniti()
{
    m_ui->TxtD_0->impostaData(QDate::currentDate());
}

bool frmClienti::verificaInterna(const QString &azione)
{
    if (azione == QLatin1String("modifica"))
        m_ui->TxtD_0->impostaData(QDate::currentDate());
    return true;
}

void frmClienti::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F5) {
        if (QAction *ok = pulsante(QStringLiteral("ok")); ok && ok->isVisible() && ok->isEnabled())
            bottoni(QStringLiteral("ok"));
        return;
    }
    forms::FormRecord::keyPressEvent(event);
}

void frmClienti::ComElenco(int indice)
{
    QWidget *striscia = m_ui->PicLettera;
    for (int i = 0; i <= IndiceTutti; ++i)
        if (auto *b = striscia->findChild<QToolButton *>(QStringLiteral("ComElenco_%1").arg(i)))
            b->setChecked(i == indice);
    m_indiceLettera = indice;
    m_lettera = LettereStriscia().value(indice);
    m_ui->LblLettera->setText(indice == IndiceTutti ? QString() : m_lettera);
    const Sorgente s = SorgenteLettera(m_lettera);
    try {
        apriDettaglio(s.sql, s.parametri);
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter(), e.message());
    }
}

void frmClienti::RicercaVeloce(const QString &inizio)
{
    if (inizio.trimmed().isEmpty())
        return;
    forms::CasellaFiltro k;
    k.campo = QStringLiteral("Cognome");
    k.valore = inizio;
    const forms::Filtro f = forms::CostruisciFiltro(Vista, {k}, int(forms::ModoConfronto::IniziaPer), prompter());
    macchina().apriFiltri(forms::MacchinaScheda::ModoFiltri::Ricerca);
    // "No customer begins with that": back to the search panel.
    macchina().applicaFiltro(f.where, QStringLiteral("Cognome,Nome"), true, "M0004");
}

bool frmClienti::inScrittura()
{
    return recordset().editMode() != store::Recordset::EditMode::None;
}

void frmClienti::rubricaCambiata(const QModelIndex &riga)
{
    if (!riga.isValid())
        return;
    if (inScrittura()) {
        // No other record while this one is being written.
        prompter().message(TestoLingua("M0005"), frame::Prompter::Icon::Critical);
        mostraInRubrica(recordset().AbsolutePosition());
        return;
    }
    vaiA(riga.row());
}

void frmClienti::mostraInRubrica(qint64 posizione)
{
    const QSignalBlocker fermo(m_ui->TDBGridRubrica->selectionModel());
    m_ui->TDBGridRubrica->setCurrentIndex(m_ui->TDBGridRubrica->model()->index(int(posizione), 0));
}

void frmClienti::CmdPag()
{
    if (!prompter().confirm(TestoLingua("M0003"))) // "Record the payment of the monthly fee?"
        return;
    // The date goes with the card's own save; the row is written now, one fee a press.
    m_ui->TxtD_1->impostaData(QDate::currentDate());
    if (m_idCassa.isValid())
        PagamentoCanone(frame::basedati(), prompter(), m_idCassa.toLongLong(), m_ui->TxtN_0->text(), QDate::currentDate());
    else
        prompter().message(TestoLingua("M0083"), frame::Prompter::Icon::Exclamation);
    m_cassa->aggiorna();
    m_ui->TDBGrid_0->setFocus();
}

void frmClienti::CmdCancella()
{
    const QModelIndex riga = m_ui->TDBGrid_0->currentIndex();
    if (!riga.isValid()
        || prompter().question(TestoLingua("M0013"), frame::Prompter::Buttons::YesNo, frame::Prompter::Answer::No)
               != frame::Prompter::Answer::Yes)
        return;
    m_cassa->removeRows(riga.row(), 1);
}

void frmClienti::CmdStampaDoc()
{
    // A row not yet written has no receipt.
    const QModelIndex riga = m_ui->TDBGrid_0->currentIndex();
    if (const auto lancio = LancioRicevuta(riga.isValid() ? m_cassa->chiave(riga.row()) : QVariant(), m_modo == Modo::Clienti))
        m_report.esegui(*lancio);
}

void frmClienti::azionePropria(const QString &azione)
{
    if (azione == QLatin1String("scheda") && rigaCorrente())
        m_report.esegui(LancioScheda(chiaveCorrente().toLongLong(), m_modo == Modo::Clienti));
}

void frmClienti::elencoPersonalizzato()
{
    if (!m_stampa) {
        // The registry's fields in their order, under the list's captions where the list shows them.
        QVector<std::pair<QString, QString>> campi;
        const store::Recordset rs(frame::basedati(), QStringLiteral("select * from clienti where id =-1"));
        for (const store::FieldInfo &f : rs.fields()) {
            QString didascalia = f.name;
            for (const auto &c : ColonneElenco)
                if (f.name == QString::fromUtf8(c.campo))
                    didascalia = TestoLingua(c.didascalia);
            campi.append({f.name, didascalia});
        }
        m_stampa = new reports::frmStampa(campi, this);
    }
    m_stampa->exec();
    const std::optional<forms::Filtro> filtro = filtroDelPannello();
    if (!filtro)
        return;
    const auto lancio = reports::LancioElencoPersonalizzato(
        forms::LancioFiltro(*filtro, QStringLiteral("ElencoPersonalizzato"), "M0327"), m_stampa->scelta());
    if (!lancio) {
        prompter().information(TestoLingua("M0010")); // no field chosen: nothing to print
        return;
    }
    frame::MostraStato(QString());
    m_report.esegui(*lancio);
}

} // namespace customers
