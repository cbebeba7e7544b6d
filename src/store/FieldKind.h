// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <QVariant>

namespace store {

// The kinds of value a column holds, told by its declared type:
// TEXT(n), MEMO, LONG, INTEGER (the counter key), CURRENCY, DOUBLE, DATE, YESNO, LONGBINARY.
enum class FieldKind { Text, Memo, Long, Counter, Currency, Double, Date, YesNo, Binary, Unknown };

struct FieldInfo {
    QString name;          // column name as the query gives it
    QString table;         // base table of the column, empty for expressions
    QString column;        // column name in the base table
    FieldKind kind = FieldKind::Unknown;
    int size = 0;          // text size in characters, 0 when unbounded
};

FieldKind kindFromDeclaredType(const QString &declared, int *size);

// The text format of stored dates: ISO, so that text order is time order.
inline constexpr const char *DateFormat = "yyyy-MM-dd HH:mm:ss";

// Storage value of a program value for a column of the given kind, and back.
QVariant toStorage(FieldKind kind, const QVariant &value);
QVariant fromStorage(FieldKind kind, const QVariant &stored);

} // namespace store
