// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/ui/frmRipristina.h"

#include "safety/ui/BackupViews.h"
#include "ui_frmRipristina.h"

#include "frame/Language.h"
#include "safety/Backup.h"

frmRipristina::frmRipristina(QWidget *parent, bool daLogin)
    : QDialog(parent), m_ui(new Ui::frmRipristina), m_daLogin(daLogin)
{
    m_ui->setupUi(this);
    m_grid = new CatalogueGrid(m_ui->TDBGrid1);
    setWindowTitle(frame::TestoLingua("M0273"));
    m_ui->Command2->setText(frame::TestoLingua("CAP16"));
    m_ui->Command3->setText(frame::TestoLingua("M0137"));
    connect(m_ui->Command2, &QPushButton::clicked, this, &frmRipristina::Command2_Click);
    connect(m_ui->Command3, &QPushButton::clicked, this, &QDialog::accept);
}

frmRipristina::~frmRipristina()
{
    delete m_ui;
}

int frmRipristina::mostra(frame::Prompter &prompter)
{
    if (!m_grid->open(prompter))
        return QDialog::Rejected;
    if (!safety::confirmRestoreWindow(prompter))
        return QDialog::Rejected;
    m_prompter = &prompter;
    m_ui->TDBGrid1->setFocus();
    const int result = exec();
    m_prompter = &m_boxes;
    return result;
}

void frmRipristina::Command2_Click()
{
    const std::optional<safety::CatalogueEntry> entry = m_grid->current();
    if (!entry)
        return;
    WorkProgress progress(this, frame::TestoLingua("M0273"), *m_prompter);
    safety::restoreBackup(*entry, progress, progress.callback());
}
