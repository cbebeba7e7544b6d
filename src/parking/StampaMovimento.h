// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

#include <QtGlobal>

namespace parking {

// The slip of a movement, on the default printer; the same slip serves an entry
// and an exit. A failure is told to the user and leaves the movement as written.
reports::Lancio LancioMovimento(qint64 idMovimento);

} // namespace parking
