// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Database.h"

#include <QString>
#include <QStringList>

namespace store {

// One connection per database file and process: opened on first use, because
// deriving the key costs tens of milliseconds. A connection lives as long as
// the process, so a reference to it never dangles: work on the whole file
// closes its handle underneath, and the next use opens the file again.
namespace Connections {

// The connection to `path`, opening it with `key` when needed. Throws DbError.
Database &get(const QString &path, const QString &key = QLatin1String(DatabaseKey));
// Closes the file; the connection opens it again at its next use.
void close(const QString &path);
void closeAll();
bool isOpen(const QString &path);

// Work on whole files (backup, restore, compaction, repair): while the guard
// lives, their connections are closed and refuse to open; when it ends, every
// list and window that listens reads the file again.
class WholeFileWork {
public:
    explicit WholeFileWork(const QStringList &paths);
    explicit WholeFileWork(const QString &path) : WholeFileWork(QStringList{path}) {}
    ~WholeFileWork();
    WholeFileWork(const WholeFileWork &) = delete;
    WholeFileWork &operator=(const WholeFileWork &) = delete;

private:
    QStringList m_paths;
};

} // namespace Connections

// The key in a connect tail such as ";PWD=quartzel" (either spelling of PWD).
QString keyFromConnect(const QString &connect);

} // namespace store
