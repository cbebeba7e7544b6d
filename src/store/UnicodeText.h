// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

struct sqlite3;

namespace store {

// Name of the collation that orders and compares texts blind to case, accented letters included.
inline constexpr const char *CaseBlindCollation = "VNOCASE";

// Replaces LIKE with a Unicode case-blind match and registers the collation,
// because the engine alone folds only ASCII letters.
void registerUnicodeText(sqlite3 *db);

// The LIKE match itself: '%' any run, '_' one character, `escape` makes the next one literal.
bool likeMatch(const QString &pattern, const QString &text, QChar escape = QChar());

} // namespace store
