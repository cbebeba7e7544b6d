// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDialog>

class QLineEdit;

namespace Ui {
class frmimposta;
}

namespace frame {
class Prompter;
}

namespace store {
class Currency;
}

namespace images {
class RiquadroLogo;
}

namespace admin {

struct Progressivi;

// The settings: company data and logos, the database path, the fiscal year's
// counters and the working options. Data are read when the window is first shown.
class frmimposta final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmimposta)

public:
    // Avvio: the database was not found at start; only its path can be given, and
    // closing the window ends the program.
    enum class Modo { Normale, Avvio };

    frmimposta(frame::Prompter &prompter, Modo modo, QWidget *parent = nullptr);
    ~frmimposta() override;

    Modo modo() const { return m_modo; }

    // Shows the counters of `anno` (Show counters); M0023 when the table has no year.
    void MostraProgressivi(const QString &anno);
    // The save of the company, counter and option tabs (Command8).
    bool Salva();

protected:
    void showEvent(QShowEvent *event) override;
    void done(int risultato) override;

private:
    void impostaDidascalie();
    void leggeDati();
    void riempieAnni();
    void applicaSiNo(QLineEdit *casella, const QString &testo);
    QList<QLineEdit *> caselleSiNo() const;
    bool leggeImporto(QLineEdit *casella, store::Currency *importo);
    // The counters tab's boxes; false, with a message and the focus, when one can't be stored.
    bool leggeContatori(Progressivi *contatori);
    // The year closing and the removal of the cancelled movements; the window closes after either.
    void CmdChiusura();
    void Command11();

    Ui::frmimposta *m_ui;
    frame::Prompter &m_prompter;
    const Modo m_modo;
    bool m_letto = false;
    images::RiquadroLogo *m_logoP, *m_logoS; // the company logos, ILogoP and ILogoS
};

} // namespace admin
