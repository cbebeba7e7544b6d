// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/EngineCheck.h"

#include "store/Sqlite.h"

#include <cstring>

namespace store {

QString engineMismatch()
{
    if (std::strcmp(sqlite3_libversion(), SQLITE_VERSION) == 0)
        return QString();
    return QStringLiteral("The database engine %1 does not match the header %2 the program was built with.")
        .arg(QString::fromLatin1(sqlite3_libversion()), QStringLiteral(SQLITE_VERSION));
}

} // namespace store
