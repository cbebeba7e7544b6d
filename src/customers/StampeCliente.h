// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

#include <QVariant>

#include <optional>

namespace customers {

// The prints of the customers' window. `cliente` is the window's mode: it names
// the card's title and the receipt's party, "Customer" or "Supplier".

// The card of one record (toolbar key scheda): SchedaCliente selected by the record's id.
reports::Lancio LancioScheda(qint64 id, bool cliente);
// The receipt of one row of the cash book (CmdStampaDoc). A row not yet stored
// has no id and gives no run.
std::optional<reports::Lancio> LancioRicevuta(const QVariant &idRiga, bool cliente);

} // namespace customers
