// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

namespace store {

// Empty when the linked engine is the one whose header we compiled against;
// else a text that says which two versions met (a wrong include path).
QString engineMismatch();

} // namespace store
