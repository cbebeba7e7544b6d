// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Database.h"

#include "store/DbError.h"
#include "store/Sqlite.h"
#include "store/UnicodeText.h"

#include <QFileInfo>
#include <QtGlobal>

#include <utility>
#include <vector>

namespace store {

Database::Database(const QString &path, const QString &key, Mode mode) : m_path(path), m_key(key)
{
    open(mode);
}

Database::~Database()
{
    sqlite3_close_v2(m_db);
}

void Database::open(Mode mode)
{
    if (mode == Mode::ReadWrite && !QFileInfo(m_path).isFile())
        throw DbError(SQLITE_CANTOPEN, QStringLiteral("The database file %1 does not exist.").arg(m_path));
    // A connection is only ever used by the thread that opened it: no lock around each call,
    // about a tenth of the time of a long read of keys.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (mode == Mode::Create ? SQLITE_OPEN_CREATE : 0);
    const int rc = sqlite3_open_v2(m_path.toUtf8().constData(), &m_db, flags, nullptr);
    if (rc != SQLITE_OK)
        fail(rc, QStringLiteral("Cannot open %1: ").arg(m_path));
    if (!m_key.isEmpty()) {
        // Pages of 4 KiB: a quarter of the per-page decryption and checks of the engine's 1 KiB default.
        // Set as the default too, so that databases attached with a key (compaction) share it.
        sqlite3_exec(m_db, "PRAGMA cipher_default_page_size = 4096", nullptr, nullptr, nullptr);
        const QByteArray k = m_key.toUtf8();
        if (sqlite3_key(m_db, k.constData(), int(k.size())) != SQLITE_OK)
            fail(SQLITE_ERROR, QStringLiteral("Cannot set the key of %1: ").arg(m_path));
    }
    // The key is accepted blindly; the first read tells whether it fits.
    const int check = sqlite3_exec(m_db, "select count(*) from sqlite_master", nullptr, nullptr, nullptr);
    if (check == SQLITE_NOTADB)
        fail(check, QStringLiteral("%1 is not a database of this program or its password is wrong: ").arg(m_path));
    if (check != SQLITE_OK)
        fail(check, QStringLiteral("Cannot read %1: ").arg(m_path));
    sqlite3_busy_timeout(m_db, 5000);
    registerUnicodeText(m_db);
}

sqlite3 *Database::handle()
{
    if (!m_db) {
        if (m_holds > 0)
            throw DbError(SQLITE_BUSY, QStringLiteral("%1 is closed while the whole file is copied or replaced.").arg(m_path));
        open(Mode::ReadWrite);
    }
    return m_db;
}

void Database::close()
{
    if (!m_db)
        return;
    notify(Event::Closing);
    // Statements still alive elsewhere keep the old handle valid until they end.
    sqlite3_close_v2(m_db);
    m_db = nullptr;
}

void Database::setKey(const QString &key)
{
    close();
    m_key = key;
}

void Database::hold()
{
    close();
    ++m_holds;
}

void Database::release()
{
    if (m_holds > 0 && --m_holds == 0)
        notify(Event::Reopened);
}

Database::Subscription Database::listen(Listener listener)
{
    const int id = ++m_nextListener;
    m_listeners.emplace(id, std::move(listener));
    return Subscription(this, id);
}

void Database::notify(Event event)
{
    // A listener may come or go while the others are told (a list opens a new set).
    std::vector<int> ids;
    for (const auto &l : m_listeners)
        ids.push_back(l.first);
    for (int id : ids) {
        auto it = m_listeners.find(id);
        if (it == m_listeners.end())
            continue;
        const Listener listener = it->second;
        try {
            listener(event);
        } catch (const std::exception &e) {
            qWarning("Reading %s again failed: %s", qUtf8Printable(m_path), e.what());
        }
    }
}

Database::Subscription::Subscription(Subscription &&other) noexcept
    : m_db(std::exchange(other.m_db, nullptr)), m_id(other.m_id)
{
}

Database::Subscription &Database::Subscription::operator=(Subscription &&other) noexcept
{
    if (this != &other) {
        if (m_db)
            m_db->m_listeners.erase(m_id);
        m_db = std::exchange(other.m_db, nullptr);
        m_id = other.m_id;
    }
    return *this;
}

Database::Subscription::~Subscription()
{
    if (m_db)
        m_db->m_listeners.erase(m_id);
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
    return Statement(handle(), sql);
}

int Database::execute(const QString &sql, const QVariantList &params)
{
    Statement st(handle(), sql);
    st.bindAll(params);
    while (st.step()) {
    }
    return sqlite3_changes(m_db);
}

void Database::executeScript(const QString &sql)
{
    char *err = nullptr;
    const int rc = sqlite3_exec(handle(), sql.toUtf8().constData(), nullptr, nullptr, &err);
    if (rc != SQLITE_OK) {
        const QString text = QString::fromUtf8(err ? err : sqlite3_errstr(rc));
        sqlite3_free(err);
        throw DbError(rc, text);
    }
}

QVariant Database::scalar(const QString &sql, const QVariantList &params)
{
    Statement st(handle(), sql);
    st.bindAll(params);
    return st.step() ? st.value(0) : QVariant();
}

qint64 Database::lastInsertId() const
{
    return m_db ? sqlite3_last_insert_rowid(m_db) : 0;
}

Transaction::Transaction(Database &db) : m_db(db)
{
    m_db.executeScript(QStringLiteral("BEGIN IMMEDIATE"));
}

Transaction::~Transaction()
{
    // A file closed meanwhile has dropped the transaction with its handle.
    if (!m_done && m_db.isOpen())
        sqlite3_exec(m_db.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    m_db.executeScript(QStringLiteral("COMMIT"));
    m_done = true;
}

} // namespace store
