// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/FileError.h"
#include "frame/ui/frmLogin.h"

#include "frame/ui/frmMain.h"
#include "ui_frmLogin.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "frame/Session.h"
#include "frame/Version.h"
#include "frame/widgets/Colori.h"
#include "safety/Compaction.h"
#include "safety/ui/frmRipristina.h"

#include "store/DbError.h"
#include "store/Sqlite.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QLineEdit>
#include <QUrl>

namespace frame {

frmLogin::frmLogin(Prompter &prompter, Modo modo, QWidget *parent)
    : QDialog(parent), m_ui(new Ui::frmLogin), m_prompter(prompter)
{
    m_ui->setupUi(this);
    m_ui->LblNome->setText(QString::fromLatin1(TitoloApplicazione));
    m_ui->Image1->setPixmap(IconaProgramma().pixmap(72, 72));
    m_ui->Image1->installEventFilter(this);
    m_ui->lblUtente->setText(TestoLingua("M0258"));
    m_ui->lblPassword->setText(TestoLingua("M0259"));
    m_ui->cmdOK->setText(TestoLingua("M0143"));
    m_ui->cmdCancel->setText(TestoLingua("M0144"));
    m_ui->lblLegge->setText(TestoLingua("M0260"));
    m_ui->lblVersione->setText(QString::fromLatin1(TitoloApplicazione) + QLatin1Char(' ') + QString::fromLatin1(VersioneProgramma));
    setWindowTitle(QString::fromLatin1(TitoloApplicazione));

    const bool about = modo == Modo::About;
    m_ui->PicAccesso->setVisible(!about);
    m_ui->PicAbout->setVisible(about);

    for (QWidget *box : {static_cast<QWidget *>(m_ui->TDBCUserName), static_cast<QWidget *>(m_ui->txtPassword)})
        box->installEventFilter(this);
    m_ui->TDBCUserName->lineEdit()->installEventFilter(this);
    m_ui->TDBCUserName->lineEdit()->setMaxLength(50);

    connect(m_ui->cmdOK, &QPushButton::clicked, this, &frmLogin::cmdOK_Click);
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, [this] {
        m_succeeded = false;
        reject();
    });
    connect(m_ui->CmdOk2, &QPushButton::clicked, this, &QDialog::accept);
}

frmLogin::~frmLogin()
{
    delete m_ui;
}

bool frmLogin::prepara()
{
    for (;;) {
        try {
            store::Database &db = basedati();
            const bool rinominato = PreparaAutorizzazioni(db);
            m_ui->TDBCUserName->clear();
            m_ui->TDBCUserName->addItems(ElencoUtenti(db));
            QString ultimo = preferenze().ultimoUtente();
            if (rinominato || ultimo.isEmpty())
                ultimo = QStringLiteral("administrator");
            m_ui->TDBCUserName->setCurrentText(ultimo);
            return true;
        } catch (const store::DbError &e) {
            if (e.code() != SQLITE_NOTADB && e.code() != SQLITE_CORRUPT) {
                MostraErrore(m_prompter, e.message());
                return false;
            }
            if (!recupera())
                return false;
        }
    }
}

// A file that is not a readable database: repair it, else restore a copy, else end.
bool frmLogin::recupera()
{
    const QString domanda = TestoLingua("M0093") + QStringLiteral("\n\n") + TestoLingua("M0094") + QStringLiteral("\n\n")
                            + TestoLingua("M0095") + QStringLiteral(", ") + TestoLingua("M0029");
    if (!m_prompter.confirm(domanda, Prompter::Icon::Exclamation)) {
        m_prompter.message(TestoLingua("M0099"), Prompter::Icon::Critical);
        return false;
    }
    if (safety::RiparaDatabase(pub().Pathdata, pub().CodaConnessione))
        return true;
    m_prompter.message(TestoLingua("M0096"), Prompter::Icon::Exclamation);
    if (!m_prompter.confirm(TestoLingua("M0097") + QStringLiteral("\n\n") + TestoLingua("M0098"), Prompter::Icon::Exclamation))
        return false;
    pub().ModoRipristino = true;
    frmRipristina ripristino(parentWidget(), true);
    ripristino.mostra(m_prompter);
    return false;
}

void frmLogin::cmdOK_Click()
{
    try {
        store::Database &db = basedati();
        const EsitoVerifica esito =
            VerificaLogin(db, m_prompter, m_ui->TDBCUserName->currentText(), m_ui->txtPassword->text());
        if (esito == EsitoVerifica::UtenteSconosciuto) {
            m_ui->TDBCUserName->setFocus();
            m_ui->TDBCUserName->lineEdit()->selectAll();
            return;
        }
        if (esito == EsitoVerifica::PasswordErrata) {
            m_ui->txtPassword->setFocus();
            m_ui->txtPassword->selectAll();
            return;
        }
        if (AggiornaFileCondivisi(m_prompter, QApplication::applicationFilePath())) {
            m_upgrade = true;
            reject();
            return;
        }
        m_succeeded = true;
        CostruisceElencoElementi();
        LeggeDirittiUtente(db, pub().IdUtenteCorrente);
        accept();
    } catch (const store::DbError &e) {
        MostraErrore(m_prompter, e.message());
    } catch (const FileError &e) {
        MostraErrore(m_prompter, e.message());
    }
}

bool frmLogin::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->Image1 && event->type() == QEvent::MouseButtonRelease) {
        QDesktopServices::openUrl(QUrl(pub().IndirizzoSito));
        return true;
    }
    QWidget *box = watched == m_ui->TDBCUserName->lineEdit() ? m_ui->TDBCUserName : qobject_cast<QWidget *>(watched);
    const bool utente = box == m_ui->TDBCUserName;
    const bool password = box == m_ui->txtPassword;
    if (!utente && !password)
        return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn)
        ImpostaSfondo(utente ? static_cast<QWidget *>(m_ui->TDBCUserName->lineEdit()) : box, pub().ColoreCampo1);
    else if (event->type() == QEvent::FocusOut)
        ImpostaSfondo(utente ? static_cast<QWidget *>(m_ui->TDBCUserName->lineEdit()) : box, pub().ColoreCampo4);
    else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool listaAperta = utente && m_ui->TDBCUserName->view()->isVisible();
        if (key == Qt::Key_Down && !listaAperta) {
            focusNextChild();
            return true;
        }
        if (key == Qt::Key_Up && !listaAperta) {
            focusPreviousChild();
            return true;
        }
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && !listaAperta) {
            if (password)
                m_ui->cmdOK->click();
            else
                focusNextChild();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmLogin::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F5 && m_ui->PicAccesso->isVisible()) {
        m_ui->cmdOK->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace frame
