// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "Statement.h"

#include <QString>
#include <QVariantList>

struct sqlite3;

namespace store {

// The password of the working database and of the backup catalogue.
inline constexpr const char *DatabaseKey = "quartzel";

// One open connection to an encrypted database file. Opening checks the key
// by a read, so a wrong key or a file that is not a database fails at once.
class Database {
public:
    enum class Mode { ReadWrite, Create };
    Database(const QString &path, const QString &key, Mode mode = Mode::ReadWrite);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const QString &path() const { return m_path; }
    sqlite3 *handle() const { return m_db; }

    Statement prepare(const QString &sql);
    // Runs one statement with bound values; returns the rows it changed.
    int execute(const QString &sql, const QVariantList &params = {});
    // Runs a script of statements without parameters.
    void executeScript(const QString &sql);
    // First column of the first row, or an invalid QVariant when no row came back.
    QVariant scalar(const QString &sql, const QVariantList &params = {});
    qint64 lastInsertId() const;

private:
    [[noreturn]] void fail(int rc, const QString &prefix = {});

    sqlite3 *m_db = nullptr;
    QString m_path;
};

// Commits on commit(), rolls back when left without it.
class Transaction {
public:
    explicit Transaction(Database &db);
    ~Transaction();
    void commit();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

private:
    Database &m_db;
    bool m_done = false;
};

} // namespace store
