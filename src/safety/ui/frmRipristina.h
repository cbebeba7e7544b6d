// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/widgets/MessageBoxPrompter.h"

#include <QDialog>

namespace Ui {
class frmRipristina;
}
class CatalogueGrid;

// The restore window: puts a backup chosen from the catalogue in place of the
// working database. Opened from the login window (daLogin), before anyone has
// signed in, closing it means the end of the program: the caller ends it once
// mostra() returns.
class frmRipristina final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmRipristina)
public:
    frmRipristina(QWidget *parent, bool daLogin);
    ~frmRipristina() override;
    // Opens the window modally after the user has confirmed the warning; every
    // message goes through `prompter`. Returns QDialog::Rejected at once, without
    // a word, when the catalogue of backups is missing.
    int mostra(frame::Prompter &prompter);
    bool daLogin() const { return m_daLogin; }

private:
    void Command2_Click();

    Ui::frmRipristina *m_ui;
    CatalogueGrid *m_grid;
    bool m_daLogin;
    frame::MessageBoxPrompter m_boxes{this}; // answers when the window is shown without mostra()
    frame::Prompter *m_prompter = &m_boxes;
};
