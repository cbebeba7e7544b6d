// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/ui/frmPark.h"
#include "ui_frmPark.h"

#include "parking/StampaMovimento.h"
#include "parking/ui/FrmResto.h"

#include "forms/ui/Didascalie.h"
#include "frame/widgets/CasellaTesto.h"

#include "parking/Contabilizzazione.h"
#include "parking/Correzione.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QDateTime>
#include <QFontMetrics>

#include <algorithm>
#include <QItemSelectionModel>
#include <QHeaderView>

namespace parking {

using frame::pub;
using frame::TestoLingua;

namespace {

forms::ConfigurazioneScheda configurazione()
{
    forms::ConfigurazioneScheda c;
    c.tabella = QStringLiteral("Q_Movimentazioni_Utenti");
    c.sorgenteIniziale = SorgenteIniziale().sql;
    // A movement is written only by the entry and exit button, the correction and the cancellation.
    c.azioni = {QStringLiteral("trova"), QStringLiteral("stampa"), QStringLiteral("gestione"),
                QStringLiteral("refresh"), QStringLiteral("esci")};
    c.attivazione = true;
    c.modelloStampa = QStringLiteral("ElencoMovimenti");
    c.chiaveTitoloStampa = "M0296";
    return c;
}

// The fields of the list panel and the filter boxes, with the caption key each takes.
struct CampoElenco {
    const char *campo;
    const char *didascalia;
    bool filtro;
    forms::TipoCasella tipo;
};
const CampoElenco CampiElenco[] = {
    {"Anno", "FRM04", true, forms::TipoCasella::Testo},
    {"Progressivo", "M0291", true, forms::TipoCasella::Numero},
    {"Entrato", "M0293", false, forms::TipoCasella::Testo},
    {"Targa", "M0203", true, forms::TipoCasella::Testo},
    {"IdFascia", "M0289", true, forms::TipoCasella::Testo},
    {"DataOra", "M0194", true, forms::TipoCasella::Data},
    {"DataOraOut", "M0195", true, forms::TipoCasella::Data},
    {"Importo", "M0322", true, forms::TipoCasella::Numero},
    {"Note", "M0228", true, forms::TipoCasella::Testo},
    {"Autorizzazioni.utente", "M0176", false, forms::TipoCasella::Testo},
};

constexpr const char *FormatoGriglia = "hh:mm  dd/MM/yyyy";

// What both movement lists share: yes/no as the status words, row colours, captions.
void preparaElenco(forms::RecordsetModel &m, const QStringList &campi)
{
    m.impostaColonne(campi);
    m.impostaFormato(QStringLiteral("DataOra"), QLatin1String(FormatoGriglia));
    m.impostaFormato(QStringLiteral("DataOraOut"), QLatin1String(FormatoGriglia));
    m.impostaSiNo(forms::RecordsetModel::SiNo::Parola, TestoLingua("M0297"), TestoLingua("M0298"));
    m.impostaColori(forms::sfondoMovimento, forms::testoMovimento);
    for (const CampoElenco &c : CampiElenco)
        m.impostaIntestazione(QLatin1String(c.campo), TestoLingua(c.didascalia));
}

// Columns wide enough for what they show: a date-time in full, a plate, a number.
void larghezzeColonne(QTableView &g, forms::RecordsetModel &m)
{
    const QFontMetrics fm = g.fontMetrics();
    const int margine = fm.horizontalAdvance(QLatin1Char('M')) * 2;
    const struct {
        const char *campo;
        QString campione;
    } larghezze[] = {
        {"DataOra", QStringLiteral("00:00  00/00/0000")}, {"DataOraOut", QStringLiteral("00:00  00/00/0000")},
        {"Progressivo", QStringLiteral("0000000")},       {"Anno", QStringLiteral("00000")},
        {"Targa", QStringLiteral("MMMMMMMMMM")},           {"Entrato", TestoLingua("M0297") + QStringLiteral("MM")},
        {"IdFascia", QStringLiteral("MMMMM")},            {"Importo", QStringLiteral("000000.00")},
    };
    for (const auto &l : larghezze)
        if (const int c = m.colonna(QLatin1String(l.campo)); c >= 0)
            g.setColumnWidth(c, std::max(fm.horizontalAdvance(l.campione),
                                         fm.horizontalAdvance(m.headerData(c, Qt::Horizontal).toString()))
                                    + margine);
}

} // namespace

frmPark::frmPark(frame::Prompter &prompter, QWidget *parent)
    : forms::FormRecord(prompter, configurazione(), parent), m_ui(new Ui::frmParkDettaglio)
{
    setObjectName(QStringLiteral("frmPark"));
    auto *dettaglio = new QWidget(this);
    m_ui->setupUi(dettaglio);
    impostaDettaglio(dettaglio, {m_ui->PicTab_0});
    resize(1100, 640);
    m_ui->splitter->setStretchFactor(0, 0);
    m_ui->splitter->setStretchFactor(1, 1);

    // TDBGrid2 shows the detail recordset itself.
    preparaElenco(datPrimaryRS(), {QStringLiteral("Entrato"), QStringLiteral("Progressivo"), QStringLiteral("Anno"),
                                   QStringLiteral("DataOra"), QStringLiteral("Targa")});
    QStringList campi;
    for (const CampoElenco &c : CampiElenco)
        campi << QLatin1String(c.campo);
    preparaElenco(datPrimaryRSGrd(), campi);
    m_ui->TDBGrid2->setModel(&datPrimaryRS());
    m_ui->TDBGrid2->verticalHeader()->setDefaultSectionSize(m_ui->TDBGrid2->fontMetrics().height() + 6);
    m_ui->TDBGrid2->horizontalHeader()->setStretchLastSection(true);
    larghezzeColonne(*m_ui->TDBGrid2, datPrimaryRS());
    larghezzeColonne(*grdDataGrid(), datPrimaryRSGrd());
    connect(m_ui->TDBGrid2->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &i) {
                if (i.isValid())
                    vaiA(i.row());
            });
    connect(this, &forms::FormRecord::posizioneCambiata, this, &frmPark::sincronizzaGriglia);

    m_ui->TxtT_4->addItems(ParoleStato());
    caricaFasce();
    connect(m_ui->TxtTC_0, &QLineEdit::textChanged, this, &frmPark::codiceFasciaCambiato);
    connect(m_ui->TDBComboC_0, &QComboBox::activated, this, [this](int i) {
        if (m_ui->TDBComboC_0->property("Tag").toString() == QLatin1String("NoChange"))
            return;
        m_ui->TxtTC_0->setText(m_ui->TDBComboC_0->itemData(i).toString());
    });
    connect(m_ui->ComEsegueRicRapida, &QPushButton::clicked, this, [this] { RicercaRapida(true); });
    connect(m_ui->CmdIngresso, &QPushButton::clicked, this, &frmPark::Ingresso);
    connect(m_ui->CmdEntraEsce, &QPushButton::clicked, this, &frmPark::EntraEsce);
    connect(m_ui->ComMod, &QPushButton::clicked, this, &frmPark::ComMod);
    connect(m_ui->ComAnn, &QPushButton::clicked, this, &frmPark::ComAnn);
    connect(m_ui->ComCont, &QPushButton::clicked, this, &frmPark::ComCont);
    connect(m_ui->OptEn, &QRadioButton::clicked, this, [this] { sceltaOpzione(OpzioneElenco::Dentro); });
    connect(m_ui->OptUs, &QRadioButton::clicked, this, [this] { sceltaOpzione(OpzioneElenco::Usciti); });
    connect(m_ui->OptTu, &QRadioButton::clicked, this, [this] { sceltaOpzione(OpzioneElenco::Tutti); });

    QVector<forms::CasellaFiltro> catalogo;
    for (const CampoElenco &c : CampiElenco) {
        if (!c.filtro)
            continue;
        forms::CasellaFiltro k;
        k.campo = QLatin1String(c.campo);
        k.didascalia = datPrimaryRSGrd().headerData(datPrimaryRSGrd().colonna(k.campo), Qt::Horizontal).toString();
        k.tipo = c.tipo;
        catalogo << k;
    }
    impostaCatalogoFiltri(catalogo);

    lega(m_ui->TxtT_0, QStringLiteral("Targa"), forms::TipoCasellaScheda::Testo);
    lega(m_ui->TxtT_1, QStringLiteral("Note"), forms::TipoCasellaScheda::Testo);
    lega(m_ui->TxtTC_0, QStringLiteral("IdFascia"), forms::TipoCasellaScheda::Codice);
    ImpostaCampi();
    m_ui->TxtProg->setMaxLength(10);
    m_ui->TxtProg->setValidator(frame::ValidatoreCasella::numero(m_ui->TxtProg, false));
    m_ui->TxtTR_1->setMaxLength(recordset().field(QStringLiteral("Anno")).size);
    m_ui->TxtTR_2->setMaxLength(recordset().field(QStringLiteral("Targa")).size);
    m_ui->TxtDR_0->setMaxLength(20);
    m_ui->TxtDR_0->setPlaceholderText(frame::SegnapostoData());
    ImpostaDidascalie();
    impostaDidascalie();

    Attivazione();
    m_ui->TxtDR_0->setText(frame::TestoData(QDateTime(QDate::currentDate(), QTime(0, 0))));
    bottoni(QStringLiteral("refresh"));
    m_ui->OptEn->setChecked(true);
    sceltaOpzione(OpzioneElenco::Dentro);
}

frmPark::~frmPark()
{
    delete m_ui;
}

void frmPark::impostaDidascalie()
{
    setWindowTitle(TestoLingua("M0264"));
    const struct {
        QWidget *controllo;
        const char *chiave;
    } etichette[] = {
        {m_ui->lblFascia, "M0289"},  {m_ui->lblNumero, "M0291"}, {m_ui->lblProg, "M0291"},
        {m_ui->lblTarga, "M0203"},   {m_ui->lblTargaR, "M0203"}, {m_ui->lblDataR, "M0249"},
        {m_ui->lblIngresso, "M0194"}, {m_ui->lblUscita, "M0195"}, {m_ui->lblStato, "M0293"},
        {m_ui->lblNote, "M0228"},    {m_ui->lblUtenteIn, "M0176"}, {m_ui->lblUtenteOut, "M0176"},
        {m_ui->lblImporto, "M0322"}, {m_ui->lblAnno, "FRM04"},   {m_ui->lblAnnoR, "FRM04"},
        {m_ui->ComMod, "M0139"},     {m_ui->ComAnn, "M0140"},    {m_ui->ComCont, "M0294"},
        {m_ui->OptEn, "M0297"},      {m_ui->OptUs, "M0298"},     {m_ui->OptTu, "M0178"},
        {m_ui->PicRicRap, "M0295"},  {m_ui->fraMovimenti, "M0296"},
    };
    for (const auto &e : etichette)
        forms::ApplicaDidascalia(e.controllo, e.chiave);
    m_ui->ComEsegueRicRapida->setText(TestoLingua("M0141") + QStringLiteral(" F1"));
    m_ui->CmdIngresso->setText(TestoLingua("M0194") + QStringLiteral(" F5"));
    m_ui->CmdEntraEsce->setText(TestoLingua("M0194"));
}

void frmPark::caricaFasce()
{
    // The band source: every band, in the order of its code.
    QComboBox *c = m_ui->TDBComboC_0;
    c->setProperty("Tag", QStringLiteral("NoChange"));
    c->clear();
    try {
        store::Recordset fasce(frame::basedati(), QStringLiteral("select * from fascia order by id"));
        for (fasce.MoveFirst(); !fasce.isEmpty() && !fasce.eof(); fasce.MoveNext())
            c->addItem(fasce.value(QStringLiteral("DescrizioneFascia")).toString(), fasce.value(QStringLiteral("id")));
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter(), e.message());
    }
    c->setProperty("Tag", QString());
    codiceFasciaCambiato(m_ui->TxtTC_0->text());
}

void frmPark::fileRiletto()
{
    // A restored file may hold other bands and other vehicles inside.
    caricaFasce();
    m_ui->LblAuto->setText(RigaVeicoliDentro());
    FormRecord::fileRiletto();
}

void frmPark::codiceFasciaCambiato(const QString &codice)
{
    // The code looks itself up in the list; the entry reads whether it was found.
    QComboBox *c = m_ui->TDBComboC_0;
    int trovata = -1;
    for (int i = 0; i < c->count(); ++i)
        if (c->itemData(i).toString().compare(codice, Qt::CaseInsensitive) == 0)
            trovata = i;
    m_fasciaNonTrovata = trovata < 0;
    c->setProperty("Tag", QStringLiteral("NoChange"));
    c->setCurrentIndex(trovata);
    c->setProperty("Tag", QString());
}

OpzioneElenco frmPark::opzione() const
{
    if (m_ui->OptUs->isChecked())
        return OpzioneElenco::Usciti;
    if (m_ui->OptTu->isChecked())
        return OpzioneElenco::Tutti;
    return OpzioneElenco::Dentro;
}

PannelloRicerca frmPark::pannelloRicerca() const
{
    PannelloRicerca p;
    p.TxtProg = m_ui->TxtProg->text();
    p.anno = m_ui->TxtTR_1->text();
    p.targa = m_ui->TxtTR_2->text();
    p.data = m_ui->TxtDR_0->text();
    p.opzione = opzione();
    return p;
}

void frmPark::RicercaRapida(bool CercaRiga)
{
    PannelloRicerca p = pannelloRicerca();
    const EsitoRicerca esito = parking::RicercaRapida(p, CercaRiga, prompter());
    m_ui->TxtProg->setText(p.TxtProg);
    m_ui->TxtTR_1->setText(p.anno);
    m_ui->TxtTR_2->setText(p.targa);
    applicaRicerca(esito);
}

void frmPark::sceltaOpzione(OpzioneElenco scelta)
{
    PannelloRicerca p = pannelloRicerca();
    const EsitoOpzione esito = ScegliOpzione(p, scelta, prompter());
    m_ui->LblAuto->setText(esito.LblAuto);
    applicaRicerca(esito.ricerca);
}

void frmPark::applicaRicerca(const EsitoRicerca &esito)
{
    if (esito.eseguita) {
        try {
            apriDettaglio(esito.elenco.sql, esito.elenco.parametri, esito.chiave, esito.elenco.contatore);
        } catch (const store::DbError &e) {
            frame::MostraErrore(prompter(), e.message());
            return;
        }
    }
    switch (esito.fuoco) {
    case FuocoRicerca::Data:
        m_ui->TxtDR_0->setFocus();
        break;
    case FuocoRicerca::Progressivo:
        if (m_ui->TxtProg->isVisible())
            m_ui->TxtProg->setFocus();
        break;
    case FuocoRicerca::Griglia:
        if (m_ui->TDBGrid2->isVisible())
            m_ui->TDBGrid2->setFocus();
        break;
    case FuocoRicerca::Nessuno:
        break;
    }
}

void frmPark::sincronizzaGriglia(qint64 posizione)
{
    QTableView *g = m_ui->TDBGrid2;
    if (posizione < 0 || posizione >= datPrimaryRS().rowCount()) {
        if (posizione < 0)
            g->selectionModel()->clearCurrentIndex();
        return;
    }
    const QModelIndex i = datPrimaryRS().index(int(posizione), 0);
    if (g->currentIndex().row() != i.row())
        g->selectionModel()->setCurrentIndex(i, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    g->scrollTo(i);
}

void frmPark::Ingresso()
{
    m_chiavePannello = QVariant();
    Abilita();
    m_ui->CmdEntraEsce->setText(TestoLingua("M0194"));
    m_ui->CmdEntraEsce->setEnabled(true);
    m_prossimaEntrata = true;
    m_ui->TxtT_2->clear();
    m_ui->TxtT_3->clear();
    m_ui->TxtTC_0->setText(pub().FasciaDefault);
    m_ui->TxtT_1->clear();
    m_ui->TxtT_0->clear();
    const QDateTime adesso = m_adesso();
    m_ui->TDBDGG->setText(frame::TestoData(adesso));
    m_ui->TDBTGG->setText(adesso.time().toString(QStringLiteral("HH:mm:ss")));
    m_ui->TDBDGG->setEnabled(false);
    m_ui->TDBTGG->setEnabled(false);
    for (QLineEdit *e : {m_ui->TDBDGGOut, m_ui->TDBTGGOut}) {
        e->hide();
        e->setEnabled(false);
    }
    m_ui->TxtT_2->setEnabled(false);
    m_ui->TxtT_3->setEnabled(false);
    for (QWidget *w : std::initializer_list<QWidget *>{m_ui->TxtT_0, m_ui->TxtTC_0, m_ui->TDBComboC_0, m_ui->TxtT_1})
        w->setEnabled(true);
    m_ui->TxtT_4->setCurrentIndex(0);
    m_ui->TxtT_0->setFocus();
}

void frmPark::LeggeDati()
{
    m_ui->TDBDGG->setEnabled(false);
    m_ui->TDBTGG->setEnabled(false);
    for (QLineEdit *e : {m_ui->TDBDGGOut, m_ui->TDBTGGOut}) {
        e->show();
        e->setEnabled(false);
    }
    const QList<QWidget *> riga = {m_ui->TxtT_2, m_ui->TxtT_3, m_ui->TxtT_0, m_ui->TxtTC_0, m_ui->TDBComboC_0, m_ui->TxtT_1};
    for (QWidget *w : riga)
        w->setEnabled(false);

    store::Recordset &rs = recordset();
    m_chiavePannello = rs.key();
    const auto testo = [&rs](const char *campo) { return rs.value(QLatin1String(campo)).toString(); };
    const bool entrato = rs.value(QStringLiteral("Entrato")).toBool();
    const bool annullato = rs.value(QStringLiteral("Annullato")).toBool();
    const bool contabilizzato = rs.value(QStringLiteral("Contabilizzato")).toBool();
    m_ui->TxtT_4->setCurrentText(ParolaStato(entrato));
    m_ui->TxtT_0->setText(testo("Targa"));
    m_ui->TxtTC_0->setText(testo("IdFascia"));
    const QDateTime dentro = rs.value(QStringLiteral("DataOra")).toDateTime();
    const QDateTime fuori = rs.value(QStringLiteral("DataOraOut")).toDateTime();
    m_ui->TDBDGG->setText(frame::TestoData(dentro));
    m_ui->TDBTGG->setText(dentro.isValid() ? dentro.time().toString(QStringLiteral("HH:mm:ss")) : QString());
    m_ui->TDBDGGOut->setText(frame::TestoData(fuori));
    m_ui->TDBTGGOut->setText(fuori.isValid() ? fuori.time().toString(QStringLiteral("HH:mm:ss")) : QString());
    m_ui->TxtT_1->setText(testo("Note"));
    m_ui->Label3->setText(testo("Autorizzazioni.utente"));
    m_ui->Label4->setText(testo("Autorizzazioni_1.utente"));
    m_ui->TxtT_2->setText(testo("Progressivo"));
    m_ui->TxtT_3->setText(testo("Anno"));
    const QVariant importo = rs.value(QStringLiteral("Importo"));
    m_ui->TxtImporto->setText(!entrato && importo.isValid()
                                  ? importo.value<store::Currency>().toPlainText(QLocale().decimalPoint().at(0))
                                  : QString());
    m_ui->LblNoteImporto->setText(entrato ? QString() : testo("NoteImporto"));

    const bool uscitaPossibile = entrato && !annullato;
    m_ui->CmdEntraEsce->setText(TestoLingua(uscitaPossibile ? "M0195" : "M0194"));
    m_ui->CmdEntraEsce->setEnabled(uscitaPossibile);
    m_prossimaEntrata = !uscitaPossibile;

    // A movement that may still be corrected opens its boxes to a user with that right:
    // the correction replays the entry or the exit with what they hold.
    apriCorrezione(!annullato && !contabilizzato && (frame::EAmministratore() || pub().OpModificare));
}

void frmPark::apriCorrezione(bool aperta)
{
    for (QWidget *w : std::initializer_list<QWidget *>{m_ui->TxtT_0, m_ui->TxtTC_0, m_ui->TDBComboC_0, m_ui->TxtT_1,
                                                      m_ui->TxtT_4})
        w->setEnabled(aperta);
}

PannelloMovimento frmPark::pannello() const
{
    PannelloMovimento p;
    p.targa = m_ui->TxtT_0->text();
    p.note = m_ui->TxtT_1->text();
    p.fascia = m_ui->TxtTC_0->text();
    p.fasciaNonTrovata = m_fasciaNonTrovata;
    p.id = m_chiavePannello;
    if (const auto giorno = frame::LeggeData(m_ui->TDBDGG->text()))
        p.dataIngresso = *giorno;
    return p;
}

void frmPark::EntraEsce()
{
    const bool entrata = m_prossimaEntrata;
    PannelloMovimento p = pannello();
    if (!entrata)
        m_ui->TDBGrid2->setFocus();
    store::Recordset &rs = recordset();
    const QVariant prima = chiaveCorrente();
    const EsitoEntraEsce esito = parking::EntraEsce(rs, entrata, false, p, prompter(), m_adesso);
    m_ui->TxtT_0->setText(p.targa);
    if (esito.collisione) {
        rilegge(prima);
        Ingresso();
        return;
    }
    if (esito.rileggi) {
        rilegge(prima);
        return;
    }
    if (!esito.scritto) {
        if (esito.fuoco == Fuoco::Targa)
            m_ui->TxtT_0->setFocus();
        else if (esito.fuoco == Fuoco::CodiceFascia)
            m_ui->TxtTC_0->setFocus();
        return;
    }
    fineOperazione(esito, rs.key().toLongLong());
}

void frmPark::fineOperazione(const EsitoEntraEsce &esito, qint64 id)
{
    if (esito.stampa)
        m_report.esegui(LancioMovimento(id));
    if (esito.resto) {
        // Behind the calculator the panel shows the exit just written, not the
        // row that a re-read list would put in its place.
        LeggeDati();
        FrmResto::Mostra(esito.importo, this);
    }
    rilegge(id);
    bottoni(QStringLiteral("refresh"));
    if (m_ui->PicRicRap->isVisible() && m_ui->TxtProg->isVisible() && m_ui->TxtProg->isEnabled())
        m_ui->TxtProg->setFocus();
    if (m_ui->OptEn->isChecked())
        m_ui->LblAuto->setText(RigaVeicoliDentro());
}

void frmPark::ComMod()
{
    PannelloMovimento p = pannello();
    const EsitoCorrezione esito = parking::ComMod(recordset(), m_ui->TxtT_4->currentText(), p, autorizzazione(),
                                                  prompter(), m_adesso);
    m_ui->TxtT_0->setText(p.targa);
    if (esito.entraEsce.scritto)
        fineOperazione(esito.entraEsce, recordset().key().toLongLong());
    else if (esito.aggiorna)
        rilegge(chiaveCorrente());
    dopoCorrezione(esito);
}

void frmPark::ComAnn()
{
    const EsitoCorrezione esito = parking::ComAnn(recordset(), autorizzazione(), prompter());
    if (esito.aggiorna)
        rilegge(chiaveCorrente());
    dopoCorrezione(esito);
}

void frmPark::rilegge(const QVariant &chiave)
{
    try {
        ricaricaDettaglio(chiave);
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter(), e.message());
    }
}

void frmPark::dopoCorrezione(const EsitoCorrezione &esito)
{
    switch (esito.fuoco) {
    case FuocoPark::Griglia:
        m_ui->TDBGrid2->setFocus();
        break;
    case FuocoPark::StatoMovimento:
        m_ui->TxtT_4->setFocus();
        break;
    case FuocoPark::Targa:
        m_ui->TxtT_0->setFocus();
        break;
    case FuocoPark::CodiceFascia:
        m_ui->TxtTC_0->setFocus();
        break;
    case FuocoPark::Nessuno:
        break;
    }
    if (esito.contaVeicoli && m_ui->OptEn->isChecked())
        m_ui->LblAuto->setText(RigaVeicoliDentro());
}

void frmPark::ComCont()
{
    const EsitoContabilizzazione esito = parking::ComCont(autorizzazione(), prompter(), m_adesso);
    if (esito.fuoco == FuocoPark::Griglia)
        m_ui->TDBGrid2->setFocus();
}

void frmPark::azioneRefresh()
{
    mostraDettaglio();
    m_ui->CmdEntraEsce->setEnabled(false);
    m_ui->TxtProg->clear();
    m_ui->TxtTR_1->setText(pub().AnnoEsercizio);
    m_ui->TxtTR_2->clear();
    if (m_ui->TxtProg->isVisible() && m_ui->TxtProg->isEnabled())
        m_ui->TxtProg->setFocus();
    m_ui->TxtT_0->clear();
    m_ui->TxtT_1->clear();
    // The emptied boxes no longer show a row: a correction must show it again first.
    m_chiavePannello = QVariant();
    apriCorrezione(false);
}

void frmPark::tastoF1()
{
    m_ui->ComEsegueRicRapida->click();
}

void frmPark::tastoF5()
{
    m_ui->CmdIngresso->click();
}

void frmPark::attivata(bool gestioneAccessi)
{
    caricaFasce();
    if (!gestioneAccessi)
        m_ui->CmdEntraEsce->setProperty("Tag", QStringLiteral("N"));
}

void frmPark::layoutCambiato(forms::Layout layout)
{
    if (layout != forms::Layout::Modifica)
        m_ui->PicRicRap->setVisible(layout == forms::Layout::Attivazione);
}

} // namespace parking
