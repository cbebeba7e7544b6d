// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/frmStampaEstrattoC.h"

#include "ui_frmStampaEstrattoC.h"

#include "customers/Clienti.h"
#include "customers/LibroCassa.h"
#include "forms/RecordsetModel.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaTesto.h"
#include "store/DbError.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QTableView>

namespace reports {

using frame::TestoLingua;

namespace {

// Yes/No stores -1 for yes. The shown name is a column of its own, so that the
// closed list shows surname and first name; the order is the registry's.
constexpr const char *Elenco = "select Id, trim(ifnull(Cognome, '') || ' ' || ifnull(Nome, '')) as Nominativo, Cognome, Nome "
                               "from Clienti where Cliente = ? order by Cognome, Nome, Id";
constexpr int ColonnaNominativo = 0;

} // namespace

frmStampaEstrattoC::frmStampaEstrattoC(frame::Prompter &prompter, QWidget *parent)
    : FinestraLibroCassa(prompter, parent), m_ui(new Ui::frmStampaEstrattoC)
{
    m_ui->setupUi(this);
    preparaLibro();
    setWindowTitle(TestoLingua("M0318"));
    m_ui->OptClienti->setText(TestoLingua("M0262"));
    m_ui->OptFornitori->setText(TestoLingua("M0263"));
    m_ui->lblCliente->setText(TestoLingua("M0262") + QLatin1Char('/') + TestoLingua("M0263"));
    m_ui->TxtTC_0->setValidator(frame::ValidatoreCasella::numero(m_ui->TxtTC_0, false));
    m_ui->TxtTC_0->setMaxLength(10);

    // Without a database the window closes at its first show; nothing is read here.
    if (QFileInfo::exists(frame::pub().Pathdata))
        caricaElenco();
    // The two options are one group: a change of either toggles OptClienti.
    connect(m_ui->OptClienti, &QRadioButton::toggled, this, [this] {
        if (m_elenco)
            caricaElenco();
    });
    connect(m_ui->TxtTC_0, &QLineEdit::textChanged, this, &frmStampaEstrattoC::codiceCambiato);
    connect(m_ui->TDBComboC_0, &QComboBox::activated, this, [this](int riga) {
        if (m_elenco && riga >= 0)
            m_ui->TxtTC_0->setText(m_elenco->chiave(riga).toString());
    });
    connect(m_ui->Okstampa, &QPushButton::clicked, this, &frmStampaEstrattoC::stampa);
}

frmStampaEstrattoC::~frmStampaEstrattoC()
{
    delete m_ui;
}

void frmStampaEstrattoC::caricaElenco()
{
    const customers::Modo modo = m_ui->OptFornitori->isChecked() ? customers::Modo::Fornitori : customers::Modo::Clienti;
    try {
        store::Database &db = frame::basedati();
        const QVariantList cliente{modo == customers::Modo::Clienti ? -1 : 0};
        if (!m_elenco) {
            m_elenco = new forms::RecordsetModel(db, QLatin1String(Elenco), cliente, customers::ContatoreModo(db, modo), this);
            m_elenco->impostaColonne({QStringLiteral("Nominativo"), QStringLiteral("Cognome"), QStringLiteral("Nome")});
            m_elenco->impostaIntestazioni({QString(), TestoLingua("M0179"), TestoLingua("M0180")});
            auto *vista = new QTableView(m_ui->TDBComboC_0);
            vista->verticalHeader()->hide();
            vista->horizontalHeader()->setStretchLastSection(true);
            vista->setSelectionBehavior(QAbstractItemView::SelectRows);
            vista->setMinimumWidth(320);
            m_ui->TDBComboC_0->setModel(m_elenco);
            m_ui->TDBComboC_0->setView(vista);
            m_ui->TDBComboC_0->setModelColumn(ColonnaNominativo);
            vista->setColumnHidden(ColonnaNominativo, true);
        } else {
            m_elenco->riapri(QLatin1String(Elenco), cliente, customers::ContatoreModo(db, modo));
        }
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    codiceCambiato(m_ui->TxtTC_0->text());
}

void frmStampaEstrattoC::codiceCambiato(const QString &codice)
{
    bool numero = false;
    const qint64 id = codice.toLongLong(&numero);
    int riga = -1;
    if (numero && m_elenco) {
        try {
            riga = m_elenco->posizione(id);
        } catch (const store::DbError &e) {
            frame::MostraErrore(m_prompter, e.message());
        }
    }
    // A number that is none of the list leaves no name shown.
    m_ui->TDBComboC_0->setCurrentIndex(riga);
}

OpzioniEstratto frmStampaEstrattoC::opzioni() const
{
    OpzioniEstratto o;
    static_cast<OpzioniCassa &>(o) = opzioniLibro();
    o.fornitori = m_ui->OptFornitori->isChecked();
    const int riga = m_ui->TDBComboC_0->currentIndex();
    if (m_elenco && riga >= 0 && !m_ui->TxtTC_0->text().isEmpty())
        o.cliente = m_elenco->chiave(riga).toLongLong();
    return o;
}

void frmStampaEstrattoC::stampa()
{
    if (!frame::CasellaTesto::confermaTutte(this))
        return;
    const OpzioniEstratto o = opzioni();
    // Only a statement that prints asks the book for the sums before its start.
    customers::Somme riporto;
    if (o.cliente && !riportoLibro(o.dal, riporto))
        return;
    if (const std::optional<Lancio> l = LancioEstratto(m_prompter, o, riporto.entrate, riporto.uscite))
        m_report.esegui(*l);
}

} // namespace reports
