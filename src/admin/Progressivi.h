// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace store {
class Database;
}

namespace admin {

// The three counters of a fiscal year as the settings window shows them: the
// last movement number and the balances carried in.
struct Progressivi {
    qint64 progressivo = 0;
    store::Currency entrata;
    store::Currency uscita;
};

// Writes the counters to the TabProgressivi row of `anno`. With no row of that
// year a row is added holding only the three counters and no Anno: a row the
// movement counter never finds, kept so because the year closing relies on the
// same routine. Opens no transaction: the caller's save is one.
void SalvaProgressivi(store::Database &db, const QString &anno, const Progressivi &valori);

// The counters of `anno`, a Null or non-number read as 0; std::nullopt when the
// year has no row (the window then shows 0 and keeps its balance boxes).
std::optional<Progressivi> LeggiProgressivi(store::Database &db, const QString &anno);

// The years of TabProgressivi in order, for the year list (rows without Anno left out).
QStringList AnniProgressivi(store::Database &db);

} // namespace admin
