// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Database.h"
#include "store/FieldKind.h"

#include <QHash>
#include <QList>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

namespace store {

// A navigable, updatable set of rows over any SELECT on a table or a view.
//
// Rows are read lazily: opening runs the query and reads nothing, moving on
// reads as far as needed. Of the rows read, only their keys stay in memory
// for good; whole rows live in a bounded cache of blocks and are read again
// by key when needed, so a set of a million rows costs a few megabytes.
//
// Edits are written to the base table of the set (the table of its first
// column) by its primary key, so rows of a view update the table beneath.
// What the maker of a set knows of its counts without reading it (counts kept by
// triggers, say): the rows of the whole set, the rows before a key in the set's
// order (nothing when the set holds no such key), and the key at a position
// (invalid past the end). Any may be left empty.
struct RowCounter {
    std::function<qint64()> total;
    std::function<std::optional<qint64>(const QVariant &key)> before;
    std::function<QVariant(qint64 pos)> at;
};

// Where a query's final ORDER BY clause begins (outside parentheses, quotes and
// brackets), or -1 when it has none.
int orderByPosition(const QString &sql);

class Recordset {
public:
    enum class EditMode { None, Edit, AddNew };

    Recordset(Database &db, const QString &sql, const QVariantList &params = {}, RowCounter counter = {});
    ~Recordset();
    Recordset(const Recordset &) = delete;
    Recordset &operator=(const Recordset &) = delete;

    const QVector<FieldInfo> &fields() const { return m_fields; }
    int fieldIndex(const QString &name) const; // case-blind, -1 when absent
    const FieldInfo &field(const QString &name) const;
    bool updatable() const { return m_keyColumn >= 0; }
    QString keyField() const { return m_keyColumn >= 0 ? m_fields[m_keyColumn].name : QString(); }
    const QString &baseTable() const { return m_baseTable; }

    // Navigation. Positions run from 0; -1 is before the first row (BOF) and
    // RecordCount() after the last (EOF).
    bool bof() const { return m_pos < 0; }
    bool eof();
    bool isEmpty();
    qint64 RecordCount();
    qint64 AbsolutePosition() const { return m_pos; }
    bool setAbsolutePosition(qint64 pos);
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();
    void MoveLastModified();
    // Moves to the first row for which the test holds; stays put and returns false if none.
    bool FindFirst(const std::function<bool(const Recordset &)> &test);
    bool FindFirst(const QString &field, const QVariant &value);
    void Requery();

    // Reading for lists, which must not disturb the current row.
    qint64 rowsRead() const { return m_keyColumn >= 0 ? knownEnd() : m_unkeyed.size(); }
    bool fullyRead() const { return m_runBase >= 0 ? m_runEnded : m_exhausted; }
    // Reads forward until row `pos` is read, without moving; false if the set ends first.
    bool readTo(qint64 pos) { return pos < 0 || fetchUpTo(pos); }
    // Runs `look` with the set standing on row `pos` as a plain, unedited row, then
    // puts back the current row, the edit and its buffer; false if there is no such row.
    bool peek(qint64 pos, const std::function<void(const Recordset &)> &look);
    // Position of the row with this key; -1 when the set holds no such row, told
    // by one query before any reading. With a counter that tells the rows before
    // it, a deep row is reached at once: the keys around it are read from there
    // both ways, by the values of the set's order (a run apart from the rows read
    // from the start). Otherwise the keys are read forward as far as it lies.
    qint64 positionOfKey(const QVariant &key);

    // Values of the current row (or of the edit buffer while editing), as program
    // values: Currency, QDateTime, bool, qint64, double, QString; Null is an invalid QVariant.
    QVariant value(int column) const;
    QVariant value(const QString &field) const;
    QVariant key() const;

    void AddNew();
    void Edit();
    void setValue(const QString &field, const QVariant &value);
    void setValue(int column, const QVariant &value);
    void Update();
    void CancelUpdate();
    void Delete();
    EditMode editMode() const { return m_mode; }

private:
    using Row = QVector<QVariant>;
    static constexpr int BlockSize = 256;
    static constexpr int MaxBlocks = 64;
    static constexpr int NearRows = 4 * BlockSize; // a row this near the rows read is reached by reading on

    void openStatement();
    void detach();
    void resume();
    // `sql` prepared with the set's parameters and stepped past the rows already read.
    std::unique_ptr<Statement> statementPastRead(const QString &sql);
    bool fetchUpTo(qint64 pos); // reads forward until `pos` is read; false if the set ends first
    void fetchAll();
    void readKeysOnly(); // goes on reading with a statement of the keys alone
    bool takeKey(const QVariant &key); // appends a key the query read, unless the row was added here
    const Row &rowAt(qint64 pos) const;
    std::optional<Row> readByKey(const QVariant &key) const;
    void cacheRow(qint64 pos, const Row &row) const;
    void dropCacheFrom(qint64 pos);
    void requireCurrent() const;
    void requireUpdatable() const;

    // Runs of keys read around a row found by its count.
    struct OrderTerm {
        QString name;
        bool desc = false;
    };
    struct Side { // the rows on one side of a row: equal on the terms before `term`, beyond it on that one
        QString condition;
        QVariantList params;
        qsizetype term;
    };
    void readOrder(); // fills m_order from the query's final ORDER BY
    QList<Side> sidesOf(const QVariantList &anchor, bool after) const; // nearest first
    std::optional<QVariantList> orderValues(const QVariant &key);
    QList<QVariantList> rowsBeside(const QVariantList &anchor, bool after, qint64 limit); // order values, key last
    bool startRun(const QVariant &key, qint64 base);
    bool fetchRun(qint64 pos);
    bool farFromRead(qint64 pos) const; // more than NearRows away from any key read
    qint64 knownEnd() const { return m_runBase >= 0 ? m_runBase + m_run.size() : m_keys.size(); }
    QVariant keyAt(qint64 pos) const;

    Database &m_db;
    QString m_sql;
    QVariantList m_params;
    QVector<FieldInfo> m_fields;
    QString m_baseTable;
    QString m_baseKey;           // primary-key column of the base table
    int m_keyColumn = -1;        // column of the set holding that key
    bool m_keyIsCounter = false;

    std::unique_ptr<Statement> m_stmt;
    std::unique_ptr<Statement> m_keyStmt; // once set, the rows are read by it, not by m_stmt
    qint64 m_stepped = 0;                 // rows of the query stepped over, by either statement
    bool m_detached = false;              // the file was closed under the set: its statements are gone
    bool m_exhausted = false;
    QVector<Row> m_unkeyed;      // rows of sets without a key: kept whole
    QVector<QVariant> m_keys;    // keys of the rows read so far, in order
    QHash<QString, QVariant> m_addedKeys; // rows added here, skipped when the query reaches them
    mutable QHash<qint64, QVector<Row>> m_blocks;
    mutable QList<qint64> m_blockOrder; // least recently used first
    std::optional<qint64> m_total;
    RowCounter m_counter;
    QList<OrderTerm> m_order;      // the final order when it ends on the key and a run can follow it
    QVector<QVariant> m_run;       // keys of the run, beyond those read from the start
    qint64 m_runBase = -1;         // position of its first key; -1 when there is no run
    QVariantList m_runHead, m_runTail; // order values of its first and last rows
    bool m_runEnded = false;       // the run reached the end of the set

    qint64 m_pos = -1;
    qint64 m_lastModified = -1;
    bool m_deletedCurrent = false; // the current row was deleted; the next move leaves it
    EditMode m_mode = EditMode::None;
    Row m_buffer;
    QVector<bool> m_dirty;
    Database::Subscription m_listening; // last: it goes first, before anything it could touch
};

} // namespace store
