// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/ui/frmimposta.h"

#include "ui_frmimposta.h"

#include "admin/ChiusuraAnno.h"
#include "admin/Impostazioni.h"
#include "admin/Progressivi.h"
#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaTesto.h"
#include "frame/widgets/Colori.h"
#include "images/ui/RiquadroLogo.h"
#include "safety/ui/frmCopia.h"
#include "store/DbError.h"

#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QLocale>
#include <QTimer>

#include <limits>

namespace admin {

using frame::TestoLingua;

namespace {

enum Scheda { Vuota, Azienda, Trasmissione, Database, DataOra, OrigineImmagini, Progressivi_, Opzioni };

// The database's text size of each company box.
struct CasellaAzienda {
    QLineEdit *Ui::frmimposta::*casella;
    int lunghezza;
};

QString senzaAcceleratore(QString testo)
{
    return testo.remove(QLatin1Char('&')).remove(QStringLiteral("...")).trimmed();
}

QString testoImporto(const store::Currency &c)
{
    return c.toPlainText(QLocale().decimalPoint().at(0));
}

} // namespace

frmimposta::frmimposta(frame::Prompter &prompter, Modo modo, QWidget *parent)
    : QDialog(parent), m_ui(new Ui::frmimposta), m_prompter(prompter), m_modo(modo)
{
    m_ui->setupUi(this);
    impostaDidascalie();

    // Input limits as the columns hold them; the number boxes take digits only.
    const CasellaAzienda caselle[] = {
        {&Ui::frmimposta::IRagSoc, 100}, {&Ui::frmimposta::IAttivita1, 100}, {&Ui::frmimposta::IAttivita2, 100},
        {&Ui::frmimposta::IAttivita3, 100}, {&Ui::frmimposta::IIndirizzo, 100}, {&Ui::frmimposta::ICap, 10},
        {&Ui::frmimposta::IPr, 30}, {&Ui::frmimposta::ILocalita, 50}, {&Ui::frmimposta::ICF, 30},
        {&Ui::frmimposta::IEmail, 100}, {&Ui::frmimposta::ITel, 30}, {&Ui::frmimposta::IIndHttp, 255},
    };
    for (const CasellaAzienda &c : caselle)
        (m_ui->*c.casella)->setMaxLength(c.lunghezza);
    m_ui->TDBNumAnnoEsercizio->setValidator(frame::ValidatoreCasella::numero(m_ui->TDBNumAnnoEsercizio, false));
    m_ui->TDBNumProgressivo->setValidator(frame::ValidatoreCasella::numero(m_ui->TDBNumProgressivo, false));
    m_ui->TxtNEnt->setValidator(frame::ValidatoreCasella::numero(m_ui->TxtNEnt, true));
    m_ui->TxtNUsc->setValidator(frame::ValidatoreCasella::numero(m_ui->TxtNUsc, true));

    // The short boxes of the options stand next to their labels.
    m_ui->layoutOpzioni->setAlignment(m_ui->FasciaDefault, Qt::AlignLeft);
    for (QLineEdit *casella : caselleSiNo())
        m_ui->layoutOpzioni->setAlignment(casella, Qt::AlignLeft);
    for (QLineEdit *casella : caselleSiNo())
        connect(casella, &QLineEdit::textEdited, this, [this, casella](const QString &testo) {
            applicaSiNo(casella, testo);
            // The next key replaces the word: typing the word for yes over the one for no just works.
            casella->selectAll();
        });

    // The two logo boxes: what they hold is read and saved with the settings.
    m_logoP = new images::RiquadroLogo(m_prompter, QStringLiteral("LogoP"), m_ui->RiquadroLogoP);
    m_logoS = new images::RiquadroLogo(m_prompter, QStringLiteral("LogoS"), m_ui->RiquadroLogoS);
    m_ui->RiquadroLogoP->layout()->addWidget(m_logoP);
    m_ui->RiquadroLogoS->layout()->addWidget(m_logoS);

    connect(m_ui->CmdChiusura, &QPushButton::clicked, this, &frmimposta::CmdChiusura);
    connect(m_ui->Command11, &QPushButton::clicked, this, &frmimposta::Command11);

    // A year picked in the list shows its counters.
    connect(m_ui->ComboAnno, &QComboBox::activated, this,
            [this](int indice) { MostraProgressivi(m_ui->ComboAnno->itemText(indice)); });

    connect(m_ui->OptionPC, &QRadioButton::toggled, this, [this](bool server) {
        // Fixed captions of the form, not language texts.
        m_ui->FramePercorso->setTitle(server ? QStringLiteral("Percorso del database sul server:")
                                             : QStringLiteral("Percorso del database sul PC portatile:"));
        m_ui->Text2->setVisible(!server);
    });
    m_ui->Text2->setVisible(false);
    connect(m_ui->CmdSfoglia, &QPushButton::clicked, this, [this] {
        const QString scelto = QFileDialog::getOpenFileName(this, TestoLingua("M0247"), m_ui->Text1->text(),
                                                            QStringLiteral("*.mdb (*.mdb);;* (*)"));
        if (!scelto.isEmpty())
            m_ui->Text1->setText(QDir::toNativeSeparators(scelto));
    });
    connect(m_ui->Command2, &QPushButton::clicked, this, [this] {
        if (CambiaPercorso(m_prompter, m_ui->Text1->text()))
            m_ui->CmdAnnulla->setText(QStringLiteral("&Chiudi"));
    });
    connect(m_ui->Command8, &QPushButton::clicked, this, &frmimposta::Salva);
    connect(m_ui->CmdAnnulla, &QPushButton::clicked, this, &QDialog::reject);
    // The save of this bar writes the other tabs, never the path: it stands aside on the path's tab.
    connect(m_ui->SSTab1, &QTabWidget::currentChanged, this,
            [this](int scheda) { m_ui->Command8->setVisible(m_modo == Modo::Normale && scheda != Database); });

    m_ui->Text1->setText(QDir::toNativeSeparators(frame::pub().Pathdata));
    m_ui->OptionAuto->setChecked(frame::pub().AvvioPark);
    m_ui->OptionMan->setChecked(!frame::pub().AvvioPark);
    // The yes-or-no boxes show the options in force, not the table's words.
    const bool opzioni[] = {frame::pub().TgObbligatoria, frame::pub().OpAnnullare, frame::pub().OpModificare,
                            frame::pub().OpContabilizzare, frame::pub().StampaEntrata, frame::pub().StampaUscita};
    const QList<QLineEdit *> siNo = caselleSiNo();
    for (int i = 0; i < siNo.size(); ++i)
        applicaSiNo(siNo[i], TestoLingua(opzioni[i] ? "M0304" : "M0305"));

    QTabWidget *schede = m_ui->SSTab1;
    schede->setTabText(Vuota, QString());
    schede->setTabEnabled(Vuota, false);
    for (const int nascosta : {Vuota, Trasmissione, DataOra, OrigineImmagini})
        schede->setTabVisible(nascosta, false);
    if (m_modo == Modo::Avvio) {
        // Only the path can be given: there is no database to read the rest from.
        for (const int scheda : {Azienda, Progressivi_, Opzioni}) {
            schede->setTabEnabled(scheda, false);
            schede->setTabVisible(scheda, false);
        }
        schede->setCurrentIndex(Database);
        m_ui->Command8->setVisible(false);
    } else {
        schede->setCurrentIndex(Azienda);
    }
    resize(sizeHint().expandedTo(QSize(760, 520)));
}

frmimposta::~frmimposta()
{
    delete m_ui;
}

void frmimposta::impostaDidascalie()
{
    setWindowTitle(senzaAcceleratore(TestoLingua("M0357")));
    QTabWidget *schede = m_ui->SSTab1;
    schede->setTabText(Azienda, TestoLingua("M0256"));
    schede->setTabText(Trasmissione, QStringLiteral("Trasmissione"));
    schede->setTabText(Database, TestoLingua("M0247"));
    schede->setTabText(DataOra, TestoLingua("M0249") + QLatin1Char(' ') + TestoLingua("M0250"));
    schede->setTabText(OrigineImmagini, QStringLiteral("Origine Immagini"));
    schede->setTabText(Progressivi_, TestoLingua("M0253"));
    schede->setTabText(Opzioni, TestoLingua("M0257"));

    const struct {
        QLabel *Ui::frmimposta::*etichetta;
        const char *chiave;
    } etichette[] = {
        {&Ui::frmimposta::lblIRagSoc, "CAP30"},     // Company name
        {&Ui::frmimposta::lblIAttivita1, "CAP31"},  // Business
        {&Ui::frmimposta::lblIIndirizzo, "M0181"},  {&Ui::frmimposta::lblICap, "M0183"},
        {&Ui::frmimposta::lblIPr, "M0184"},         {&Ui::frmimposta::lblILocalita, "M0182"},
        {&Ui::frmimposta::lblICF, "M0191"},         {&Ui::frmimposta::lblIEmail, "M0190"},
        {&Ui::frmimposta::lblITel, "M0187"},        // Office phone
        {&Ui::frmimposta::lblIIndHttp, "CAP32"},    // Web site
        {&Ui::frmimposta::lblText1, "M0247"},
        {&Ui::frmimposta::lblAnnoEsercizio, "CAP34"}, // Fiscal year
        {&Ui::frmimposta::lblComboAnno, "FRM04"},
        {&Ui::frmimposta::lblProgressivo, "CAP33"}, // Last movement number
        {&Ui::frmimposta::lblTxtNEnt, "M0194"},     {&Ui::frmimposta::lblTxtNUsc, "M0195"},
        {&Ui::frmimposta::lblFasciaDefault, "M0289"},
    };
    for (const auto &e : etichette)
        (m_ui->*e.etichetta)->setText(TestoLingua(e.chiave));
    m_ui->lblIAttivita2->clear();
    m_ui->lblIAttivita3->clear();
    m_ui->FrameSaldi->setTitle(TestoLingua("M0193"));
    m_ui->FrameLogoP->setTitle(QStringLiteral("Logo 1"));
    m_ui->FrameLogoS->setTitle(QStringLiteral("Logo 2"));
    m_ui->FrameAvvio->setTitle(QString());
    m_ui->OptionMan->setText(TestoLingua("M0246"));
    m_ui->OptionAuto->setText(TestoLingua("M0245"));
    // CAP37: the six option labels, in the order of their boxes, parted by "|".
    const QStringList opzioni = TestoLingua("CAP37").split(QLatin1Char('|'));
    const QList<QLabel *> etichetteSiNo = {m_ui->lblOpzione_0, m_ui->lblOpzione_1, m_ui->lblOpzione_2,
                                           m_ui->lblOpzione_3, m_ui->lblOpzione_4, m_ui->lblOpzione_5};
    for (int i = 0; i < etichetteSiNo.size(); ++i)
        etichetteSiNo[i]->setText(opzioni.value(i).trimmed());
    m_ui->CmdChiusura->setText(TestoLingua("CAP35"));  // Close the fiscal year...
    m_ui->Command11->setText(TestoLingua("CAP36"));    // Remove the cancelled movements...
    m_ui->Command8->setText(TestoLingua("CAP38"));     // Save
    m_ui->Command2->setText(TestoLingua("CAP38"));
    m_ui->CmdAnnulla->setText(TestoLingua("M0144"));   // Cancel
}

QList<QLineEdit *> frmimposta::caselleSiNo() const
{
    return {m_ui->TgObbligatoria, m_ui->OpAnnullare, m_ui->OpModificare,
            m_ui->OpContabilizzare, m_ui->StampaEntrata, m_ui->StampaUscita};
}

void frmimposta::applicaSiNo(QLineEdit *casella, const QString &testo)
{
    const CasellaSiNo esito = RegolaSiNo(testo);
    if (casella->text() != esito.testo)
        casella->setText(esito.testo);
    frame::ImpostaSfondo(casella, esito.si ? frame::pub().ColoreCampo4 : frame::pub().ColoreCampo5);
}

void frmimposta::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (m_letto)
        return;
    m_letto = true;
    if (m_modo == Modo::Avvio) {
        // After the window is up, so that the message stands in front of it.
        QTimer::singleShot(0, this, [this] {
            m_prompter.message(TestoLingua("M0134"), frame::Prompter::Icon::Exclamation);
            m_ui->Text1->setFocus();
        });
        return;
    }
    leggeDati();
}

void frmimposta::leggeDati()
{
    try {
        const frame::Preferenze &p = frame::preferenze();
        const struct {
            QLineEdit *Ui::frmimposta::*casella;
            QString (frame::Preferenze::*lettura)() const;
        } colonne[] = {
            {&Ui::frmimposta::IRagSoc, &frame::Preferenze::iRagSoc},
            {&Ui::frmimposta::IAttivita1, &frame::Preferenze::iAttivita1},
            {&Ui::frmimposta::IAttivita2, &frame::Preferenze::iAttivita2},
            {&Ui::frmimposta::IAttivita3, &frame::Preferenze::iAttivita3},
            {&Ui::frmimposta::IIndirizzo, &frame::Preferenze::iIndirizzo},
            {&Ui::frmimposta::ICap, &frame::Preferenze::iCap},
            {&Ui::frmimposta::IPr, &frame::Preferenze::iPr},
            {&Ui::frmimposta::ILocalita, &frame::Preferenze::iLocalita},
            {&Ui::frmimposta::ICF, &frame::Preferenze::iCF},
            {&Ui::frmimposta::IEmail, &frame::Preferenze::iEmail},
            {&Ui::frmimposta::ITel, &frame::Preferenze::iTel},
            {&Ui::frmimposta::IIndHttp, &frame::Preferenze::iIndHttp},
            {&Ui::frmimposta::IIndFTP, &frame::Preferenze::iIndFTP},
            {&Ui::frmimposta::ILoginFTP, &frame::Preferenze::iLoginFTP},
            {&Ui::frmimposta::IpswFTP, &frame::Preferenze::ipswFTP},
            {&Ui::frmimposta::IproxyFTP, &frame::Preferenze::iproxyFTP},
            {&Ui::frmimposta::FasciaDefault, &frame::Preferenze::fasciaDefault},
        };
        for (const auto &c : colonne)
            (m_ui->*c.casella)->setText((p.*c.lettura)());
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    // A logo that can't be read leaves its box empty, without a word.
    const auto carica = [](images::RiquadroLogo *box, QByteArray (frame::Preferenze::*lettura)() const) {
        try {
            const QByteArray logo = (frame::preferenze().*lettura)();
            box->caricaDaCampo(logo.isNull() ? QVariant() : QVariant(logo));
        } catch (const store::DbError &) {
            box->caricaDaCampo(QVariant());
        }
    };
    carica(m_logoP, &frame::Preferenze::iLogoP);
    carica(m_logoS, &frame::Preferenze::iLogoS);
    m_ui->TDBNumAnnoEsercizio->setText(frame::pub().AnnoEsercizio);
    riempieAnni();
    MostraProgressivi(frame::pub().AnnoEsercizio);
}

void frmimposta::riempieAnni()
{
    m_ui->ComboAnno->clear();
    QStringList anni;
    try {
        anni = AnniProgressivi(frame::basedati());
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
        return;
    }
    if (anni.isEmpty()) {
        m_prompter.information(TestoLingua("M0023")); // "No year is recorded in the counters table."
        return;
    }
    m_ui->ComboAnno->addItems(anni);
    m_ui->ComboAnno->setCurrentIndex(int(anni.indexOf(frame::pub().AnnoEsercizio)));
}

void frmimposta::MostraProgressivi(const QString &anno)
{
    try {
        const std::optional<Progressivi> p = LeggiProgressivi(frame::basedati(), anno);
        if (!p) {
            // The balances stay as they are: only the number belongs to the year shown.
            m_ui->TDBNumProgressivo->setText(QStringLiteral("0"));
            return;
        }
        m_ui->TDBNumProgressivo->setText(QString::number(p->progressivo));
        m_ui->TxtNEnt->setText(testoImporto(p->entrata));
        m_ui->TxtNUsc->setText(testoImporto(p->uscita));
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
}

bool frmimposta::leggeImporto(QLineEdit *casella, store::Currency *importo)
{
    const QString testo = casella->text().trimmed();
    if (testo.isEmpty()) {
        *importo = store::Currency();
        return true;
    }
    if (store::Currency::parse(testo, importo))
        return true;
    m_prompter.stop(TestoLingua("CAP21").arg(testo)); // "%1" can't be stored in this field
    casella->setFocus();
    casella->selectAll();
    return false;
}

bool frmimposta::leggeContatori(Progressivi *contatori)
{
    const QString numero = m_ui->TDBNumProgressivo->text().trimmed();
    bool ok = numero.isEmpty();
    if (!ok)
        contatori->progressivo = numero.toLongLong(&ok);
    // A movement number is a Long of the database.
    if (!ok || contatori->progressivo > std::numeric_limits<qint32>::max()) {
        m_prompter.stop(TestoLingua("CAP21").arg(numero));
        m_ui->TDBNumProgressivo->setFocus();
        return false;
    }
    return leggeImporto(m_ui->TxtNEnt, &contatori->entrata) && leggeImporto(m_ui->TxtNUsc, &contatori->uscita);
}

void frmimposta::CmdChiusura()
{
    Progressivi contatori;
    if (!leggeContatori(&contatori))
        return;
    // A backup first, if the user wants one: the closing can be undone by a restore only.
    const std::optional<DopoChiusura> dopo
        = ChiudiAnno(frame::basedati(), m_prompter, frame::pub().AnnoEsercizio, contatori, QDate::currentDate(), [this] {
              ::frmCopia copia(this);
              copia.mostra(m_prompter);
          });
    if (!dopo)
        return;
    m_ui->TDBNumAnnoEsercizio->setText(QString::number(dopo->annoCasella));
    m_ui->TDBNumProgressivo->setText(QString::number(dopo->contatori.progressivo));
    m_ui->TxtNEnt->setText(testoImporto(dopo->contatori.entrata));
    m_ui->TxtNUsc->setText(testoImporto(dopo->contatori.uscita));
    close();
}

void frmimposta::Command11()
{
    if (RimuoviAnnullati(frame::basedati(), m_prompter, frame::pub().AnnoEsercizio))
        close();
}

bool frmimposta::Salva()
{
    DatiImpostazioni d;
    d.anno = m_ui->TDBNumAnnoEsercizio->text();
    if (!leggeContatori(&d.progressivi))
        return false;
    d.azienda = {m_ui->IRagSoc->text(),   m_ui->IAttivita1->text(), m_ui->IAttivita2->text(), m_ui->IAttivita3->text(),
                 m_ui->IIndirizzo->text(), m_ui->ICap->text(),       m_ui->IPr->text(),        m_ui->ILocalita->text(),
                 m_ui->ICF->text(),        m_ui->IEmail->text(),     m_ui->ITel->text(),       m_ui->IIndHttp->text()};
    DatiOpzioni &o = d.opzioni;
    o.TgObbligatoria = m_ui->TgObbligatoria->text();
    o.OpAnnullare = m_ui->OpAnnullare->text();
    o.OpModificare = m_ui->OpModificare->text();
    o.OpContabilizzare = m_ui->OpContabilizzare->text();
    o.StampaEntrata = m_ui->StampaEntrata->text();
    o.StampaUscita = m_ui->StampaUscita->text();
    o.FasciaDefault = m_ui->FasciaDefault->text();
    o.avvioAutomatico = m_ui->OptionAuto->isChecked();
    d.logoP = m_logoP->valorePerCampo();
    d.logoS = m_logoS->valorePerCampo();
    if (!SalvaImpostazioni(m_prompter, d))
        return false;
    m_ui->CmdAnnulla->setText(QStringLiteral("&Chiudi"));
    return true;
}

void frmimposta::done(int risultato)
{
    QDir::setCurrent(frame::pub().CartellaProgramma);
    QDialog::done(risultato);
}

} // namespace admin
