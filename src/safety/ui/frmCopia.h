// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/widgets/MessageBoxPrompter.h"

#include <QDialog>

namespace Ui {
class frmCopia;
}
class CatalogueGrid;

// The backup window: makes compressed copies of the working database, lists
// them from the catalogue and deletes old ones. Its settings are kept only
// when the user leaves by the close button.
class frmCopia final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmCopia)
public:
    explicit frmCopia(QWidget *parent = nullptr);
    ~frmCopia() override;
    // Opens the window modally after the user has confirmed the warning; every
    // message goes through `prompter`. Returns QDialog::Rejected at once, without
    // a word, when the catalogue of backups is missing.
    int mostra(frame::Prompter &prompter);

private:
    void Command2_Click();
    void Command1_Click();
    void Command3_Click();
    void TxtAS_LostFocus();

    Ui::frmCopia *m_ui;
    CatalogueGrid *m_grid;
    frame::MessageBoxPrompter m_boxes{this}; // answers when the window is shown without mostra()
    frame::Prompter *m_prompter = &m_boxes;
};
