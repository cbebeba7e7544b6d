// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

namespace reports {

// The lists of the reports menu, by code: "C" customers, "F" suppliers, "CC"
// customers whose fee is overdue, "CA" customers whose insurance has run out.
// Sorted by name, the overdue lists then by their date; maximised on screen
// under `titoloFinestra`. An unknown code prints the customers' template with no
// selection and no title. A customer without the date is in no overdue list: a
// missing date fails the comparison.
Lancio LancioElenco(const QString &codice, const QString &titoloFinestra);

} // namespace reports
