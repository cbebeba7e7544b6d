// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Recordset.h"

namespace store {
class Database;
}

namespace parking {

enum class OpzioneElenco;

// The counts of the movement list over the whole register (no day), ordered by
// year and id, from the counts the triggers keep (ConteggiMovimenti): the whole
// list, the rows before a movement and the movement at a place, in a few
// milliseconds at any size.
// A register of an earlier version (made so, or restored) is brought up to date on use.
store::RowCounter ContatoreRegistro(store::Database &db, OpzioneElenco opzione);

} // namespace parking
