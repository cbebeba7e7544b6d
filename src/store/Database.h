// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Statement.h"

#include <QString>
#include <QVariantList>

#include <functional>
#include <map>

struct sqlite3;

namespace store {

// The password of the working database and of the backup catalogue.
inline constexpr const char *DatabaseKey = "quartzel";

// One connection to an encrypted database file. Opening checks the key by a
// read, so a wrong key or a file that is not a database fails at once.
//
// The object outlives its handle: work on the whole file (backup, restore,
// compaction) closes the file underneath and holds it closed, and the next use
// after that opens it again. Users that keep statements open listen for the
// closing (to drop them) and the reopening (to read again).
class Database {
public:
    enum class Mode { ReadWrite, Create };
    enum class Event { Closing, Reopened };
    using Listener = std::function<void(Event)>;

    // Ends a listener's subscription when it goes.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(Subscription &&other) noexcept;
        Subscription &operator=(Subscription &&other) noexcept;
        ~Subscription();
        Subscription(const Subscription &) = delete;
        Subscription &operator=(const Subscription &) = delete;

    private:
        friend class Database;
        Subscription(Database *db, int id) : m_db(db), m_id(id) {}
        Database *m_db = nullptr;
        int m_id = 0;
    };

    Database(const QString &path, const QString &key, Mode mode = Mode::ReadWrite);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    const QString &path() const { return m_path; }
    const QString &key() const { return m_key; }
    // Closes the file; the next use opens it with this key.
    void setKey(const QString &key);
    // The open handle, opening the file again when it was closed. Throws DbError.
    sqlite3 *handle();
    bool isOpen() const { return m_db != nullptr; }

    Statement prepare(const QString &sql);
    // Runs one statement with bound values; returns the rows it changed.
    int execute(const QString &sql, const QVariantList &params = {});
    // Runs a script of statements without parameters.
    void executeScript(const QString &sql);
    // First column of the first row, or an invalid QVariant when no row came back.
    QVariant scalar(const QString &sql, const QVariantList &params = {});
    qint64 lastInsertId() const;

    // Closes the file; the next use opens it again. Listeners hear Closing first.
    void close();
    // Closes the file and keeps it closed until as many release() calls; the last
    // one tells the listeners that the file is back (Reopened). A use meanwhile throws.
    void hold();
    void release();
    bool held() const { return m_holds > 0; }

    [[nodiscard]] Subscription listen(Listener listener);

private:
    void open(Mode mode);
    void notify(Event event);
    [[noreturn]] void fail(int rc, const QString &prefix = {});

    sqlite3 *m_db = nullptr;
    QString m_path;
    QString m_key;
    int m_holds = 0;
    int m_nextListener = 0;
    std::map<int, Listener> m_listeners;
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
