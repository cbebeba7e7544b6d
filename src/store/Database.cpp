// SPDX-License-Identifier: GPL-3.0-or-later
#include "Database.h"

#include "DbError.h"
#include "Sqlite.h"
#include "UnicodeText.h"

#include <QFileInfo>

namespace store {

Database::Database(const QString &path, const QString &key, Mode mode) : m_path(path)
{
    if (mode == Mode::ReadWrite && !QFileInfo(path).isFile())
        throw DbError(SQLITE_CANTOPEN, QStringLiteral("The database file %1 does not exist.").arg(path));
    // A connection is only ever used by the thread that opened it: no lock around each call,
    // about a tenth of the time of a long read of keys.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    const int rc = sqlite3_open_v2(path.toUtf8().constData(), &m_db, flags, nullptr);
    if (rc != SQLITE_OK)
        fail(rc, QStringLiteral("Cannot open %1: ").arg(path));
    if (!key.isEmpty()) {
        // Pages of 4 KiB: a quarter of the per-page decryption and checks of the engine's 1 KiB default.
        // Set as the default too, so that databases attached with a key (compaction) share it.
        sqlite3_exec(m_db, "PRAGMA cipher_default_page_size = 4096", nullptr, nullptr, nullptr);
        const QByteArray k = key.toUtf8();
        if (sqlite3_key(m_db, k.constData(), int(k.size())) != SQLITE_OK)
            fail(SQLITE_ERROR, QStringLiteral("Cannot set the key of %1: ").arg(path));
    }
    // The key is accepted blindly; the first read tells whether it fits.
    const int check = sqlite3_exec(m_db, "select count(*) from sqlite_master", nullptr, nullptr, nullptr);
    if (check == SQLITE_NOTADB)
        fail(check, QStringLiteral("%1 is not a database of this program or its password is wrong: ").arg(path));
    if (check != SQLITE_OK)
        fail(check, QStringLiteral("Cannot read %1: ").arg(path));
    sqlite3_busy_timeout(m_db, 5000);
    registerUnicodeText(m_db);
}

Database::~Database()
{
    sqlite3_close_v2(m_db);
}

void Database::fail(int rc, const QString &prefix)
{
    QString text = m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QString();
    if (text.isEmpty() || text == QLatin1String("not an error"))
        text = QString::fromUtf8(sqlite3_errstr(rc));
    sqlite3_close_v2(m_db);
    m_db = nullptr;
    throw DbError(rc, prefix + text);
}

Statement Database::prepare(const QString &sql)
{
    return Statement(m_db, sql);
}

int Database::execute(const QString &sql, const QVariantList &params)
{
    Statement st(m_db, sql);
    st.bindAll(params);
    while (st.step()) {
    }
    return sqlite3_changes(m_db);
}

void Database::executeScript(const QString &sql)
{
    char *err = nullptr;
    const int rc = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &err);
    if (rc != SQLITE_OK) {
        const QString text = QString::fromUtf8(err ? err : sqlite3_errstr(rc));
        sqlite3_free(err);
        throw DbError(rc, text);
    }
}

QVariant Database::scalar(const QString &sql, const QVariantList &params)
{
    Statement st(m_db, sql);
    st.bindAll(params);
    return st.step() ? st.value(0) : QVariant();
}

qint64 Database::lastInsertId() const
{
    return sqlite3_last_insert_rowid(m_db);
}

Transaction::Transaction(Database &db) : m_db(db)
{
    m_db.executeScript(QStringLiteral("BEGIN IMMEDIATE"));
}

Transaction::~Transaction()
{
    if (!m_done)
        sqlite3_exec(m_db.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    m_db.executeScript(QStringLiteral("COMMIT"));
    m_done = true;
}

} // namespace store
