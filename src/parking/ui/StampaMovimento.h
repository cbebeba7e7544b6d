// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QtGlobal>

namespace reports {
class CrystalReport;
}

namespace parking {

// Prints the slip of a movement on the default printer. `Entrata` tells an
// entry from an exit; the same slip serves both. A failure is told to the user
// and leaves the movement as written.
bool StampaMovimento(reports::CrystalReport &report, qint64 idMovimento, bool Entrata);

} // namespace parking
