// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDialog>

namespace Ui {
class frmLogin;
}

namespace frame {

class Prompter;

// Who works with the program: the user's name and password checked against
// the users table. The same window, with its other panel, is the About box.
class frmLogin final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmLogin)

public:
    enum class Modo { Accesso, About };
    frmLogin(Prompter &prompter, Modo modo, QWidget *parent = nullptr);
    ~frmLogin() override;

    // Fills the list of users. A database that cannot be read leads the user
    // through repair or restore; false means the process must end.
    bool prepara();
    bool LoginSucceeded() const { return m_succeeded; }
    // Set when the newer copy of the program took over: the process must end.
    bool upgradeAvviato() const { return m_upgrade; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void cmdOK_Click();
    bool recupera();

    Ui::frmLogin *m_ui;
    Prompter &m_prompter;
    bool m_succeeded = false;
    bool m_upgrade = false;
};

} // namespace frame
