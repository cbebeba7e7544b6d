// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/ui/frmCopia.h"

#include "safety/ui/BackupViews.h"
#include "ui_frmCopia.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/Routines.h"
#include "safety/Backup.h"
#include "store/DbError.h"

#include <QDate>

frmCopia::frmCopia(QWidget *parent) : QDialog(parent), m_ui(new Ui::frmCopia)
{
    m_ui->setupUi(this);
    m_grid = new CatalogueGrid(m_ui->TDBGrid1);
    setWindowTitle(frame::TestoLingua("M0272"));
    m_ui->LblText1->setText(frame::TestoLingua("M0192"));
    m_ui->LblTexth->setText(frame::TestoLingua("CAP14"));
    m_ui->ChkAutoCanc->setText(frame::TestoLingua("CAP15"));
    m_ui->Command3->setText(frame::TestoLingua("M0137"));
    connect(m_ui->Command2, &QPushButton::clicked, this, &frmCopia::Command2_Click);
    connect(m_ui->Command1, &QPushButton::clicked, this, &frmCopia::Command1_Click);
    connect(m_ui->Command3, &QPushButton::clicked, this, &frmCopia::Command3_Click);
    connect(m_ui->TxtAS, &QLineEdit::editingFinished, this, &frmCopia::TxtAS_LostFocus);
    connect(m_ui->ChkAutoCanc, &QCheckBox::toggled, m_ui->TxtAS, &QWidget::setEnabled);
}

frmCopia::~frmCopia()
{
    delete m_ui;
}

int frmCopia::mostra(frame::Prompter &prompter)
{
    if (!m_grid->open(prompter))
        return QDialog::Rejected;
    const safety::BackupSettings settings = safety::readBackupSettings();
    m_ui->Texth->setText(settings.folder);
    m_ui->ChkAutoCanc->setChecked(settings.autoDelete);
    m_ui->TxtAS->setEnabled(settings.autoDelete);
    m_ui->TxtAS->setText(QString::number(settings.keep));
    m_ui->Text1->setText(safety::proposedNote(QDate::currentDate()));
    if (!safety::confirmBackupWindow(prompter))
        return QDialog::Rejected;
    m_prompter = &prompter;
    m_ui->Texth->setFocus();
    const int result = exec();
    m_prompter = &m_boxes;
    return result;
}

void frmCopia::Command2_Click()
{
    TxtAS_LostFocus();
    safety::BackupRequest request;
    request.folder = m_ui->Texth->text();
    request.note = m_ui->Text1->text();
    request.compressed = m_ui->Check1->isChecked();
    request.autoDelete = m_ui->ChkAutoCanc->isChecked();
    request.keep = safety::keepCount(m_ui->TxtAS->text());
    // The folder is shown as it is stored: with its final separator.
    QString folder = request.folder.trimmed();
    if (!folder.isEmpty())
        frame::AggiungeBarra(folder);

    bool listed = false;
    const auto refresh = [&] {
        listed = true;
        m_ui->Texth->setText(folder);
        m_grid->reload();
    };
    {
        WorkProgress progress(this, frame::TestoLingua("M0272"), *m_prompter);
        safety::makeBackup(request, progress, progress.callback(), refresh);
    }
    if (!listed) {
        // A failed copy may still have changed nothing; the list is read again all the same.
        try {
            m_grid->reload();
        } catch (const store::DbError &e) {
            frame::MostraErrore(*m_prompter, e.message());
        }
    }
}

void frmCopia::Command1_Click()
{
    const std::optional<safety::CatalogueEntry> entry = m_grid->current();
    if (!entry)
        return;
    if (!safety::deleteBackup(*entry, *m_prompter))
        return;
    try {
        m_grid->reload();
    } catch (const store::DbError &e) {
        frame::MostraErrore(*m_prompter, e.message());
    }
}

void frmCopia::Command3_Click()
{
    TxtAS_LostFocus();
    safety::BackupSettings settings;
    settings.folder = m_ui->Texth->text();
    settings.autoDelete = m_ui->ChkAutoCanc->isChecked();
    settings.keep = safety::keepCount(m_ui->TxtAS->text());
    safety::saveBackupSettings(settings);
    accept();
}

void frmCopia::TxtAS_LostFocus()
{
    // Only a value below 1 (or no number at all) is put right; a valid one stays as typed.
    if (safety::keepCount(m_ui->TxtAS->text()) == 1 && m_ui->TxtAS->text().trimmed() != QLatin1String("1"))
        m_ui->TxtAS->setText(QStringLiteral("1"));
}
