// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Statement.h"

#include "store/Currency.h"
#include "store/DbError.h"
#include "store/Sqlite.h"

#include <QDateTime>

namespace store {

Statement::Statement(sqlite3 *db, const QString &sql) : m_db(db), m_sql(sql)
{
    const QByteArray utf8 = sql.toUtf8();
    const int rc = sqlite3_prepare_v2(db, utf8.constData(), int(utf8.size()), &m_stmt, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
        fail(rc);
    }
    if (!m_stmt)
        throw DbError(SQLITE_MISUSE, QStringLiteral("Empty SQL statement"));
}

Statement::~Statement()
{
    sqlite3_finalize(m_stmt);
}

Statement::Statement(Statement &&other) noexcept
    : m_db(other.m_db), m_stmt(other.m_stmt), m_sql(std::move(other.m_sql))
{
    other.m_stmt = nullptr;
}

void Statement::fail(int rc) const
{
    QString text = QString::fromUtf8(sqlite3_errmsg(m_db));
    if (text.isEmpty())
        text = QString::fromUtf8(sqlite3_errstr(rc));
    throw DbError(rc, text);
}

void Statement::bind(int index, const QVariant &value)
{
    int rc;
    if (!value.isValid() || value.isNull()) {
        rc = sqlite3_bind_null(m_stmt, index);
    } else {
        switch (value.metaType().id()) {
        case QMetaType::Bool:
            rc = sqlite3_bind_int(m_stmt, index, value.toBool() ? -1 : 0);
            break;
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::Long:
        case QMetaType::Short:
            rc = sqlite3_bind_int64(m_stmt, index, value.toLongLong());
            break;
        case QMetaType::Double:
        case QMetaType::Float:
            rc = sqlite3_bind_double(m_stmt, index, value.toDouble());
            break;
        case QMetaType::QByteArray: {
            const QByteArray b = value.toByteArray();
            rc = sqlite3_bind_blob64(m_stmt, index, b.constData(), sqlite3_uint64(b.size()), SQLITE_TRANSIENT);
            break;
        }
        case QMetaType::QDateTime:
        case QMetaType::QDate:
            return bind(index, toStorage(FieldKind::Date, value));
        default: {
            if (value.metaType() == QMetaType::fromType<Currency>())
                return bind(index, toStorage(FieldKind::Currency, value));
            const QByteArray t = value.toString().toUtf8();
            rc = sqlite3_bind_text64(m_stmt, index, t.constData(), sqlite3_uint64(t.size()), SQLITE_TRANSIENT,
                                     SQLITE_UTF8);
        }
        }
    }
    if (rc != SQLITE_OK)
        fail(rc);
}

void Statement::bindAll(const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        bind(i + 1, values.at(i));
}

bool Statement::step()
{
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    if (rc == SQLITE_DONE)
        return false;
    sqlite3_reset(m_stmt);
    fail(rc);
}

void Statement::reset()
{
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
}

int Statement::columnCount() const
{
    return sqlite3_column_count(m_stmt);
}

QString Statement::columnName(int i) const
{
    return QString::fromUtf8(sqlite3_column_name(m_stmt, i));
}

QVariant Statement::value(int i) const
{
    switch (sqlite3_column_type(m_stmt, i)) {
    case SQLITE_INTEGER:
        return QVariant::fromValue<qint64>(sqlite3_column_int64(m_stmt, i));
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_stmt, i);
    case SQLITE_TEXT:
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_stmt, i)),
                                 sqlite3_column_bytes(m_stmt, i));
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_stmt, i)), sqlite3_column_bytes(m_stmt, i));
    default:
        return QVariant();
    }
}

FieldInfo Statement::field(int i) const
{
    FieldInfo f;
    f.name = columnName(i);
    f.table = QString::fromUtf8(sqlite3_column_table_name(m_stmt, i));
    f.column = QString::fromUtf8(sqlite3_column_origin_name(m_stmt, i));
    f.kind = kindFromDeclaredType(QString::fromUtf8(sqlite3_column_decltype(m_stmt, i)), &f.size);
    return f;
}

} // namespace store
