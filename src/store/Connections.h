// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "Database.h"

#include <QString>

namespace store {

// One connection per database file and process: opened on first use, because
// deriving the key costs tens of milliseconds, and closed before any work on
// the whole file (backup, restore, compaction, a change of path).
namespace Connections {

// The open connection to `path`, opening it with `key` when needed. Throws DbError.
Database &get(const QString &path, const QString &key = QLatin1String(DatabaseKey));
void close(const QString &path);
void closeAll();
bool isOpen(const QString &path);

} // namespace Connections

// The key in a connect tail such as ";PWD=quartzel" (either spelling of PWD).
QString keyFromConnect(const QString &connect);

} // namespace store
