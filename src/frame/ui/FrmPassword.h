// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDialog>

namespace Ui {
class FrmPassword;
}

namespace frame {

class Prompter;

// Asks the signed-in user's password again before a menu item marked for it.
class FrmPassword final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FrmPassword)

public:
    explicit FrmPassword(Prompter &prompter, QWidget *parent = nullptr);
    ~FrmPassword() override;
    // True when the user typed the password, letter case included.
    static bool Conferma(Prompter &prompter, QWidget *parent);

protected:
    void showEvent(QShowEvent *event) override;

private:
    Ui::FrmPassword *m_ui;
    Prompter &m_prompter;
};

} // namespace frame
