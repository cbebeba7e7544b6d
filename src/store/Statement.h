// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/FieldKind.h"

#include <QString>
#include <QVariant>
#include <QVariantList>

struct sqlite3;
struct sqlite3_stmt;

namespace store {

// A prepared statement. Parameters bind from 1, columns read from 0.
class Statement {
public:
    Statement(sqlite3 *db, const QString &sql);
    ~Statement();
    Statement(Statement &&other) noexcept;
    Statement &operator=(Statement &&) = delete;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    void bind(int index, const QVariant &value);
    void bindAll(const QVariantList &values);
    // True while a row is ready; false once the statement is done.
    bool step();
    void reset();

    int columnCount() const;
    QString columnName(int i) const;
    QVariant value(int i) const;   // storage value: qint64, double, QString, QByteArray or null
    FieldInfo field(int i) const;  // name, base table and column, kind and size
    const QString &sql() const { return m_sql; }

private:
    [[noreturn]] void fail(int rc) const;

    sqlite3 *m_db;
    sqlite3_stmt *m_stmt = nullptr;
    QString m_sql;
};

} // namespace store
