// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/StampeOpzioni.h"
#include "reports/ui/FinestraStampa.h"

namespace customers {
struct Somme;
}

namespace reports {

// What the cash report's window and the account statement's share: the period
// boxes TDBDGG and TDBDGG2, the kinds of row Opt1 to Opt3, the graph boxes
// ChkGrafOre (kept for its place: no report draws it) and ChkGrafSaldo, the
// buttons Okstampa and cmdAnnulla, found by their names once the form is set up.
class FinestraLibroCassa : public FinestraStampa {
    Q_OBJECT

public:
    FinestraLibroCassa(frame::Prompter &prompter, QWidget *parent);

protected:
    // Captions, empty date boxes, the Cancel button; call after setupUi.
    void preparaLibro();
    // The boxes as they show them.
    OpzioniCassa opzioniLibro() const;
    // The whole book's sums before `dal`, whoever the rows belong to; zero without
    // a start. False when the book can't be read (the error is shown).
    bool riportoLibro(const std::optional<QDate> &dal, customers::Somme &riporto);
};

} // namespace reports
