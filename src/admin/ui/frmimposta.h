// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QByteArray>
#include <QDialog>
#include <QVariant>

#include <functional>

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

namespace admin {

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
    // The controls, for the parts that plug into the window from outside
    // (the logo boxes in RiquadroLogoP and RiquadroLogoS, the year-closing buttons).
    Ui::frmimposta &ui() const { return *m_ui; }

    // The logo boxes' side. `mostraLoghi` gets the stored logos when the window
    // reads its data (a null array for none); `logoP` and `logoS` give what the
    // save writes (bytes, or a null QVariant to clear). Unset, the save keeps the
    // logos as they were read.
    std::function<void(const QByteArray &logoP, const QByteArray &logoS)> mostraLoghi;
    std::function<QVariant()> logoP, logoS;

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

    Ui::frmimposta *m_ui;
    frame::Prompter &m_prompter;
    const Modo m_modo;
    bool m_letto = false;
    QVariant m_logoPLetto, m_logoSLetto;
};

} // namespace admin
