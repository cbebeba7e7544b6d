// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

namespace store {

class Database;

namespace Schema {

// Tables, indexes and the two stored queries of the working database.
void createWorkingTables(Database &db);
// Brings a register made by an earlier version up to date: its counts
// (ConteggiMovimenti, filled here) and the index of plates with years.
void upgradeRegister(Database &db);
// The cash book's index on its description and its sums by day (CassaGiorni,
// filled here), where a file made earlier lacks them.
void upgradeCashBook(Database &db);
// The index by mode and name of the customers and suppliers, made on a file made earlier.
void upgradeRegistry(Database &db);
// Counts the register and sums the cash book's days again; for a copy whose
// rows were not all saved.
void refillRegisterCounts(Database &db);
// The delivered rows: the settings row, the two system users, example tariff bands.
void insertDeliveredRows(Database &db, int minorVersion);
// The catalogue of backups.
void createBackupCatalogue(Database &db);

// Writes the delivered files into `folder` where they are missing; an existing
// file is never touched. Returns the names written.
QStringList writeDeliveredDatabases(const QString &folder, int minorVersion);

} // namespace Schema
} // namespace store
