// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/ui/FrmPassword.h"

#include "ui_FrmPassword.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Session.h"

namespace frame {

FrmPassword::FrmPassword(Prompter &prompter, QWidget *parent)
    : QDialog(parent), m_ui(new Ui::FrmPassword), m_prompter(prompter)
{
    m_ui->setupUi(this);
    m_ui->lblUtente1->setText(pub().UtenteCorrente);
    m_ui->lblUtente->setText(TestoLingua("M0258"));
    m_ui->lblPassword->setText(TestoLingua("M0259"));
    m_ui->cmdCancel->setText(TestoLingua("M0144"));
    setWindowTitle(QString::fromLatin1(TitoloApplicazione));
    connect(m_ui->cmdOK, &QPushButton::clicked, this, [this] {
        if (PasswordEsatta(m_ui->txtPassword->text())) {
            accept();
            return;
        }
        m_prompter.message(TestoLingua("M0100"), Prompter::Icon::Critical);
    });
    connect(m_ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

FrmPassword::~FrmPassword()
{
    delete m_ui;
}

void FrmPassword::showEvent(QShowEvent *event)
{
    m_ui->txtPassword->clear();
    m_ui->txtPassword->setFocus();
    QDialog::showEvent(event);
}

bool FrmPassword::Conferma(Prompter &prompter, QWidget *parent)
{
    FrmPassword w(prompter, parent);
    return w.exec() == QDialog::Accepted;
}

} // namespace frame
