// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one place that includes the engine's header: SQLITE_HAS_CODEC exposes the
// key functions, and the sqlcipher folder keeps the system SQLite header away.
#ifndef SQLITE_HAS_CODEC
#define SQLITE_HAS_CODEC 1
#endif
#include <sqlcipher/sqlite3.h>
