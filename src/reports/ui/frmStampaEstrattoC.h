// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/ui/FinestraLibroCassa.h"

namespace Ui {
class frmStampaEstrattoC;
}
namespace forms {
class RecordsetModel;
}

namespace reports {

// The account statement of one customer or supplier: the year's rows over a
// period and a kind of row, the running balance and the daily-balance graph.
// The customer is picked in the list or typed by number; the window stays open
// after a print, so that several statements run in a row.
class frmStampaEstrattoC final : public FinestraLibroCassa {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmStampaEstrattoC)

public:
    frmStampaEstrattoC(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmStampaEstrattoC() override;
    // The boxes as they show them; the customer only when the number is one of the list shown.
    OpzioniEstratto opzioni() const;

private:
    // The list of the chosen option, customers or suppliers by name.
    void caricaElenco();
    // The number looks itself up in the list: the row shown, or no name.
    void codiceCambiato(const QString &codice);
    void stampa();

    Ui::frmStampaEstrattoC *m_ui;
    forms::RecordsetModel *m_elenco = nullptr; // a child of the window, gone after the combo
};

} // namespace reports
