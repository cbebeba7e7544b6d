// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/ui/frmAutoriz.h"
#include "ui_frmAutoriz.h"

#include "admin/Utenti.h"
#include "forms/RecordsetModel.h"
#include "forms/ui/Didascalie.h"
#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QComboBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QStyledItemDelegate>

namespace admin {

using frame::pub;
using frame::TestoLingua;

namespace {

// The level of a right is picked among the six value items; the cell keeps the letter.
class DelegatoAutorizzazione final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *scelta = new QComboBox(parent);
        for (const char *lettera : {"C", "L", "A", "M", "N", "X"})
            scelta->addItem(frame::DescrizioneAutorizzazione(QLatin1String(lettera)), QLatin1String(lettera));
        return scelta;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        auto *scelta = static_cast<QComboBox *>(editor);
        scelta->setCurrentIndex(scelta->findData(index.data(Qt::EditRole).toString()));
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        model->setData(index, static_cast<QComboBox *>(editor)->currentData().toString(), Qt::EditRole);
    }
};

forms::ConfigurazioneScheda configurazione()
{
    // The item list is the login's; a window opened without one builds it.
    if (pub().ElencoElementi.isEmpty())
        frame::CostruisceElencoElementi();
    forms::ConfigurazioneScheda c;
    c.tabella = QStringLiteral("Autorizzazioni");
    c.sorgenteIniziale = SorgenteUtenti();
    c.azioni = AzioniUtenti(frame::EAmministratore());
    c.modelloStampa = QStringLiteral("Autorizzazzioni");
    c.chiaveTitoloStampa = "M0265"; // "Users"
    c.domandeElimina = {"M0006"};   // "Do you confirm? This cannot be undone."
    c.formuleStampa = FormuleStampaUtenti();
    return c;
}

} // namespace

frmAutoriz::frmAutoriz(frame::Prompter &prompter, QWidget *parent)
    : forms::FormRecord(prompter, configurazione(), parent), m_ui(new Ui::frmAutorizDettaglio)
{
    setObjectName(QStringLiteral("frmAutoriz"));
    auto *dettaglio = new QWidget(this);
    m_ui->setupUi(dettaglio);
    impostaDettaglio(dettaglio, {m_ui->PicTab_0});
    resize(940, 580);

    lega(m_ui->TxtT_0, QStringLiteral("Utente"), forms::TipoCasellaScheda::Testo);
    lega(m_ui->TxtT_1, QStringLiteral("Password"), forms::TipoCasellaScheda::Testo);
    ImpostaCampi();
    m_ui->TxtT_2->setMaxLength(m_ui->TxtT_1->maxLength());

    // The list panel and the search: users by name.
    datPrimaryRSGrd().impostaColonne({QStringLiteral("Utente")});
    datPrimaryRSGrd().impostaIntestazione(QStringLiteral("Utente"), TestoLingua("M0176"));
    forms::CasellaFiltro nome;
    nome.campo = QStringLiteral("Utente");
    nome.didascalia = TestoLingua("M0176");
    impostaCatalogoFiltri({nome});

    // The user list beside the record moves it, never during an edit.
    datPrimaryRS().impostaIntestazione(QStringLiteral("Utente"), TestoLingua("M0176"));
    m_ui->lstUtenti->setModel(&datPrimaryRS());
    m_ui->lstUtenti->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_ui->lstUtenti->setSelectionMode(QAbstractItemView::SingleSelection);
    m_ui->lstUtenti->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_ui->lstUtenti->verticalHeader()->hide();
    m_ui->lstUtenti->horizontalHeader()->setStretchLastSection(true);
    connect(m_ui->lstUtenti->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &i) { elencoCambiato(i); });
    connect(this, &forms::FormRecord::posizioneCambiata, this, &frmAutoriz::mostraInElenco);

    // The rights of the user shown, ordered by item.
    m_righe = std::make_unique<forms::RecordsetModel>(
        frame::basedati(), QStringLiteral("select * from accessi where idautorizzazioni = -1 ORDER BY ITEM"));
    m_righe->impostaModifica(prompter);
    m_accessi = new ModelloAccessi(*m_righe, prompter, this);
    m_righe->impostaIntestazioni({TestoLingua("CAP56"), TestoLingua("CAP57"), TestoLingua("CAP58"), TestoLingua("CAP59"),
                                  TestoLingua("M0145")});
    QTableView *griglia = m_ui->TDBGrid1;
    griglia->setModel(m_accessi);
    griglia->setItemDelegateForColumn(1, new DelegatoAutorizzazione(griglia));
    griglia->setSelectionBehavior(QAbstractItemView::SelectItems);
    griglia->setSelectionMode(QAbstractItemView::SingleSelection);
    griglia->verticalHeader()->hide();
    griglia->verticalHeader()->setDefaultSectionSize(griglia->fontMetrics().height() + 8);
    QHeaderView *testata = griglia->horizontalHeader();
    // The labels show whole; the level takes the room left.
    for (int c = 0; c < ModelloAccessi::Campi().size(); ++c)
        testata->setSectionResizeMode(c, c == 1 ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
    // The rights change with their user's record only.
    connect(&macchina(), &forms::MacchinaScheda::statoCambiato, this, [this] {
        const bool scrive = inScrittura() && recordset().editMode() == store::Recordset::EditMode::Edit;
        m_accessi->impostaScrivibile(scrive);
        m_ui->TDBGrid1->setEditTriggers(scrive ? QAbstractItemView::AllEditTriggers : QAbstractItemView::NoEditTriggers);
    });

    ImpostaDidascalie();
    impostaDidascalie();
    Gestione();
    // Opens on the signed-in user.
    QVariant proprio;
    try {
        proprio = frame::basedati().scalar(QStringLiteral("select id from autorizzazioni where utente = ?"), {pub().UtenteCorrente});
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
    }
    apriDettaglio(SorgenteUtenti(), {}, proprio);
    for (int c = 0; c < datPrimaryRS().columnCount(); ++c)
        m_ui->lstUtenti->setColumnHidden(c, datPrimaryRS().campo(c).compare(QLatin1String("Utente"), Qt::CaseInsensitive) != 0);
}

frmAutoriz::~frmAutoriz()
{
    delete m_ui;
}

QTableView *frmAutoriz::TDBGrid1() const
{
    return m_ui->TDBGrid1;
}

void frmAutoriz::impostaDidascalie()
{
    setWindowTitle(TestoLingua("M0265"));
    forms::ApplicaDidascalia(m_ui->lblUtente, "M0176");
    forms::ApplicaDidascalia(m_ui->lblPassword, "M0145");
    forms::ApplicaDidascalia(m_ui->lblRipeti, "M0146");
}

bool frmAutoriz::inScrittura()
{
    return recordset().editMode() != store::Recordset::EditMode::None;
}

QString frmAutoriz::utenteRecord()
{
    if (recordset().editMode() == store::Recordset::EditMode::AddNew || !rigaCorrente())
        return QString();
    return recordset().value(QStringLiteral("Utente")).toString();
}

void frmAutoriz::LeggeDati()
{
    forms::FormRecord::LeggeDati();
    m_ui->TxtT_2->setText(m_ui->TxtT_1->text());
    m_ui->TxtT_0->setEnabled(NomeModificabile(pub().UtenteCorrente, utenteRecord()));
    caricaAccessi();
}

void frmAutoriz::caricaAccessi()
{
    const bool memorizzato = rigaCorrente() && recordset().editMode() != store::Recordset::EditMode::AddNew;
    const QVariant id = memorizzato ? recordset().value(QStringLiteral("id")) : QVariant();
    try {
        if (id.isValid())
            CompletaAccessi(frame::basedati(), id.toLongLong());
        m_accessi->aggiornaEtichette();
        m_righe->riapri(QStringLiteral("select * from accessi where idautorizzazioni = ? ORDER BY ITEM"),
                        {id.isValid() ? id : QVariant(-1)});
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter(), e.message());
    }
}

bool frmAutoriz::convalida()
{
    DatiUtente dati;
    dati.nome = m_ui->TxtT_0->text();
    dati.password = m_ui->TxtT_1->text();
    dati.ripetizione = m_ui->TxtT_2->text();
    if (recordset().editMode() == store::Recordset::EditMode::Edit)
        dati.id = recordset().value(QStringLiteral("id"));
    dati.utenteRecord = utenteRecord();
    switch (ConvalidaUtente(frame::basedati(), prompter(), dati)) {
    case EsitoConvalida::Valido:
        m_ui->TxtT_0->setText(dati.nome);
        return true;
    case EsitoConvalida::NomeVuoto:
        m_ui->TxtT_0->setText(dati.nome);
        m_ui->TxtT_0->setFocus();
        return false;
    case EsitoConvalida::NomeDoppio:
        m_ui->TxtT_0->setFocus();
        return false;
    case EsitoConvalida::PasswordDiverse:
        m_ui->TxtT_1->clear();
        m_ui->TxtT_2->clear();
        m_ui->TxtT_1->setFocus();
        return false;
    }
    return false;
}

bool frmAutoriz::verificaInterna(const QString &azione)
{
    if (azione == QLatin1String("modifica")) {
        const QVariant password = recordset().value(QStringLiteral("Password"));
        if (ChiedePassword(pub().UtenteCorrente, m_ui->TxtT_0->text(), utenteRecord(), password))
            return VerificaPasswordRecord(prompter(), password.toString());
        return true;
    }
    if (azione == QLatin1String("elimina"))
        return UtenteEliminabile(prompter(), utenteRecord());
    return true;
}

void frmAutoriz::elencoCambiato(const QModelIndex &riga)
{
    if (!riga.isValid())
        return;
    if (inScrittura()) {
        // No other user while this one is being written.
        prompter().message(TestoLingua("M0005"), frame::Prompter::Icon::Critical);
        mostraInElenco(recordset().AbsolutePosition());
        return;
    }
    vaiA(riga.row());
}

void frmAutoriz::mostraInElenco(qint64 posizione)
{
    const QSignalBlocker fermo(m_ui->lstUtenti->selectionModel());
    m_ui->lstUtenti->setCurrentIndex(datPrimaryRS().index(int(posizione), datPrimaryRS().colonna(QStringLiteral("Utente"))));
}

} // namespace admin
