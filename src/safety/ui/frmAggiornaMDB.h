// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDialog>

namespace Ui {
class frmAggiornaMDB;
}

namespace frame {
class Prompter;
}

// Brings the structure of the working database up to the program's version,
// shown modally at start when the database is behind. Closes itself on success.
class frmAggiornaMDB final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmAggiornaMDB)

public:
    explicit frmAggiornaMDB(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmAggiornaMDB() override;
    // True once a run has brought the database up to date.
    bool riuscito() const { return m_riuscito; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void cmdAvvio_Click();
    void MostraStato(const QString &testo);

    Ui::frmAggiornaMDB *m_ui;
    frame::Prompter &m_prompter;
    bool m_riuscito = false;
    bool m_attivato = false;
};
