// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Recordset.h"

#include "store/DbError.h"
#include "store/Sqlite.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

#include <utility>

namespace store {

namespace {

QString quoteName(const QString &name)
{
    return QLatin1Char('"') + QString(name).replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

QString keyText(const QVariant &key)
{
    return key.toString();
}

bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

// Whether `word` stands at `i` of `sql` as a whole word, and where it ends.
bool wordAt(const QString &sql, qsizetype i, QLatin1String word, qsizetype *end)
{
    if (i > 0 && isWordChar(sql[i - 1]))
        return false;
    if (sql.mid(i, word.size()).compare(word, Qt::CaseInsensitive) != 0)
        return false;
    const qsizetype e = i + word.size();
    if (e < sql.size() && isWordChar(sql[e]))
        return false;
    *end = e;
    return true;
}

// Calls `top(i)` at each character of `sql` that stands outside parentheses,
// quotes and brackets; stops early when it returns false.
template <typename F>
void scanTopLevel(const QString &sql, F top)
{
    int depth = 0;
    QChar closing;
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar c = sql[i];
        if (!closing.isNull()) {
            if (c == closing)
                closing = QChar();
            continue;
        }
        if (c == QLatin1Char('\'') || c == QLatin1Char('"') || c == QLatin1Char('`'))
            closing = c;
        else if (c == QLatin1Char('['))
            closing = QLatin1Char(']');
        else if (c == QLatin1Char('('))
            ++depth;
        else if (c == QLatin1Char(')'))
            --depth;
        else if (depth == 0 && !top(i))
            return;
    }
}

// The query without its final ORDER BY, for counting: a count needs no sort, and
// a sort on a field without an index would cost a pass over the whole set.
// A clause with a LIMIT or a parameter changes what is counted, so it stays.
QString withoutOrder(const QString &sql)
{
    const int at = orderByPosition(sql);
    if (at < 0)
        return sql;
    const QString tail = sql.mid(at);
    bool keep = tail.contains(QLatin1Char('?'));
    scanTopLevel(tail, [&](qsizetype i) {
        qsizetype end;
        if (wordAt(tail, i, QLatin1String("limit"), &end))
            keep = true;
        return !keep;
    });
    return keep ? sql : sql.left(at);
}

// A name without its brackets or quotes.
QString bareName(const QString &name)
{
    if (name.size() > 1 && (name.front() == QLatin1Char('[') || name.front() == QLatin1Char('"') || name.front() == QLatin1Char('`')))
        return name.mid(1, name.size() - 2);
    return name;
}

} // namespace

int orderByPosition(const QString &sql)
{
    int found = -1;
    scanTopLevel(sql, [&](qsizetype i) {
        qsizetype end;
        if (wordAt(sql, i, QLatin1String("order"), &end)) {
            qsizetype j = end;
            while (j < sql.size() && sql[j].isSpace())
                ++j;
            qsizetype after;
            if (j > end && wordAt(sql, j, QLatin1String("by"), &after))
                found = int(i);
        }
        return true;
    });
    return found;
}

Recordset::Recordset(Database &db, const QString &sql, const QVariantList &params, RowCounter counter)
    : m_db(db), m_sql(sql), m_params(params), m_counter(std::move(counter))
{
    openStatement();
    for (int i = 0; i < m_stmt->columnCount(); ++i)
        m_fields.append(m_stmt->field(i));

    // The base table is the table of the first column; the set can be written
    // when it carries that table's primary key.
    if (!m_fields.isEmpty() && !m_fields.first().table.isEmpty()) {
        m_baseTable = m_fields.first().table;
        Statement info = m_db.prepare(QStringLiteral("PRAGMA table_info(%1)").arg(quoteName(m_baseTable)));
        while (info.step()) {
            if (info.value(5).toInt() == 1) {
                m_baseKey = info.value(1).toString();
                m_keyIsCounter = info.value(2).toString().compare(QLatin1String("INTEGER"), Qt::CaseInsensitive) == 0;
            }
        }
        for (int i = 0; i < m_fields.size() && !m_baseKey.isEmpty(); ++i) {
            if (m_fields[i].table.compare(m_baseTable, Qt::CaseInsensitive) == 0
                && m_fields[i].column.compare(m_baseKey, Qt::CaseInsensitive) == 0) {
                m_keyColumn = i;
                break;
            }
        }
    }
    if (m_keyColumn >= 0 && (m_counter.before || m_counter.at))
        readOrder();
    // Whole-file work closes the file under the set: its statements go, and reading goes on after it.
    m_listening = m_db.listen([this](Database::Event e) {
        if (e == Database::Event::Closing)
            detach();
    });
}

Recordset::~Recordset() = default;

void Recordset::detach()
{
    m_stmt.reset();
    m_keyStmt.reset();
    m_detached = true;
}

void Recordset::resume()
{
    // Reads on from the row where the set stood, with a statement on the reopened file.
    if (m_keyColumn >= 0) {
        readKeysOnly();
        return;
    }
    m_stmt = statementPastRead(m_sql);
    m_detached = false;
}

std::unique_ptr<Statement> Recordset::statementPastRead(const QString &sql)
{
    auto st = std::make_unique<Statement>(m_db.prepare(sql));
    st->bindAll(m_params);
    for (qint64 i = 0; i < m_stepped; ++i)
        if (!st->step())
            break;
    return st;
}

void Recordset::openStatement()
{
    m_stmt = std::make_unique<Statement>(m_db.prepare(m_sql));
    m_stmt->bindAll(m_params);
    m_keyStmt.reset();
    m_detached = false;
    m_stepped = 0;
    m_exhausted = false;
}

int Recordset::fieldIndex(const QString &name) const
{
    for (int i = 0; i < m_fields.size(); ++i)
        if (m_fields[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

const FieldInfo &Recordset::field(const QString &name) const
{
    const int i = fieldIndex(name);
    if (i < 0)
        throw DbError(SQLITE_ERROR, QStringLiteral("Item not found in this collection: %1").arg(name));
    return m_fields[i];
}

bool Recordset::fetchUpTo(qint64 pos)
{
    // A row far from those read, as a jump of the scroll bar asks, starts a run of
    // its own, unless the current row stands in the run that would give way.
    if (m_counter.at && !m_order.isEmpty() && farFromRead(pos) && !(m_runBase >= 0 && m_pos >= m_keys.size())) {
        const QVariant key = m_counter.at(pos);
        if (key.isValid() && startRun(key, pos))
            return true;
    }
    // Beyond the rows read from the start, with a run: a row nearer the run is read from it.
    if (m_runBase >= 0 && pos >= m_keys.size() && (pos >= m_runBase || pos - m_keys.size() > m_runBase - pos))
        return fetchRun(pos);
    const bool keyed = m_keyColumn >= 0;
    // Rows whose blocks would leave the cache before `pos` is reached are read
    // by their key alone: a jump to the end of a long set builds no whole rows.
    const qint64 wholeFrom = pos - qint64(MaxBlocks) * BlockSize;
    if (keyed && !m_keyStmt && !m_exhausted && wholeFrom - m_keys.size() > qint64(MaxBlocks) * BlockSize)
        readKeysOnly();
    while ((keyed ? m_keys.size() : m_unkeyed.size()) <= pos) {
        if (m_detached && !m_exhausted)
            resume();
        Statement &st = m_keyStmt ? *m_keyStmt : *m_stmt;
        if (m_exhausted || !st.step()) {
            m_exhausted = true;
            return false;
        }
        ++m_stepped;
        if (m_keyStmt) {
            takeKey(st.value(0));
            continue;
        }
        if (keyed && m_keys.size() < wholeFrom) {
            takeKey(m_stmt->value(m_keyColumn));
            continue;
        }
        Row row(m_fields.size());
        for (int i = 0; i < row.size(); ++i)
            row[i] = m_stmt->value(i);
        if (!keyed) {
            m_unkeyed.append(row);
            continue;
        }
        if (takeKey(row[m_keyColumn]))
            cacheRow(m_keys.size() - 1, row);
    }
    return true;
}

bool Recordset::takeKey(const QVariant &key)
{
    // A row added here already stands in the set: the query reaching it is skipped.
    if (!m_addedKeys.isEmpty() && m_addedKeys.contains(keyText(key)))
        return false;
    m_keys.append(key);
    return true;
}

void Recordset::readKeysOnly()
{
    // A statement that selects the key alone can walk an index instead of the
    // table: several times faster over a long way. It takes over from the rows
    // read so far; whole rows are read afterwards a block at a time, by key.
    m_keyStmt = statementPastRead(QStringLiteral("select %1 from (%2)").arg(quoteName(m_fields[m_keyColumn].name), m_sql));
    m_stmt.reset();
    m_detached = false;
}

void Recordset::fetchAll()
{
    fetchUpTo(std::numeric_limits<qint64>::max());
}

void Recordset::cacheRow(qint64 pos, const Row &row) const
{
    const qint64 b = pos / BlockSize;
    auto it = m_blocks.find(b);
    if (it == m_blocks.end()) {
        it = m_blocks.insert(b, QVector<Row>(BlockSize));
        m_blockOrder.append(b);
        while (m_blockOrder.size() > MaxBlocks)
            m_blocks.remove(m_blockOrder.takeFirst());
        it = m_blocks.find(b);
    } else if (m_blockOrder.last() != b) {
        m_blockOrder.removeOne(b);
        m_blockOrder.append(b);
    }
    (*it)[pos % BlockSize] = row;
}

void Recordset::dropCacheFrom(qint64 pos)
{
    const qint64 first = pos / BlockSize;
    for (auto it = m_blocks.begin(); it != m_blocks.end();) {
        if (it.key() >= first) {
            m_blockOrder.removeOne(it.key());
            it = m_blocks.erase(it);
        } else {
            ++it;
        }
    }
}

const Recordset::Row &Recordset::rowAt(qint64 pos) const
{
    if (m_keyColumn < 0)
        return m_unkeyed[pos];
    const qint64 b = pos / BlockSize;
    auto it = m_blocks.constFind(b);
    if (it == m_blocks.constEnd() || it->at(pos % BlockSize).isEmpty()) {
        // Read the whole block again by its keys, in one query.
        const qint64 from = b * BlockSize;
        const qint64 to = std::min<qint64>(from + BlockSize, knownEnd());
        QStringList marks;
        QVariantList params = m_params;
        QHash<QString, qint64> where;
        for (qint64 p = from; p < to; ++p) {
            const QVariant k = keyAt(p);
            if (!k.isValid())
                continue; // between the rows read from the start and the run: read when reached
            marks << QStringLiteral("?");
            params << k;
            where.insert(keyText(k), p);
        }
        Statement st = m_db.prepare(QStringLiteral("select * from (%1) where %2 in (%3)")
                                        .arg(m_sql, quoteName(m_fields[m_keyColumn].name), marks.join(QLatin1Char(','))));
        st.bindAll(params);
        while (st.step()) {
            Row row(m_fields.size());
            for (int i = 0; i < row.size(); ++i)
                row[i] = st.value(i);
            const auto p = where.constFind(keyText(row[m_keyColumn]));
            if (p != where.constEnd())
                cacheRow(*p, row);
        }
        // Rows that left the query since (a changed or added row) are read from the base table.
        for (qint64 p = from; p < to; ++p) {
            auto blk = m_blocks.find(b);
            if (where.contains(keyText(keyAt(p))) && (blk == m_blocks.end() || blk->at(p % BlockSize).isEmpty())) {
                if (auto row = readByKey(keyAt(p)))
                    cacheRow(p, *row);
                else
                    cacheRow(p, Row(m_fields.size())); // deleted elsewhere: all Null
            }
        }
        it = m_blocks.constFind(b);
    }
    return it->at(pos % BlockSize);
}

std::optional<Recordset::Row> Recordset::readByKey(const QVariant &key) const
{
    // First through the query itself, so that joined columns are filled; then
    // from the base table for a row that no longer meets the query's condition.
    {
        Statement st = m_db.prepare(
            QStringLiteral("select * from (%1) where %2 = ?").arg(m_sql, quoteName(m_fields[m_keyColumn].name)));
        st.bindAll(m_params + QVariantList{key});
        if (st.step()) {
            Row row(m_fields.size());
            for (int i = 0; i < row.size(); ++i)
                row[i] = st.value(i);
            return row;
        }
    }
    Statement st = m_db.prepare(QStringLiteral("select * from %1 where %2 = ?").arg(quoteName(m_baseTable), quoteName(m_baseKey)));
    st.bind(1, key);
    if (!st.step())
        return std::nullopt;
    Row row(m_fields.size());
    for (int c = 0; c < st.columnCount(); ++c) {
        const QString name = st.columnName(c);
        for (int i = 0; i < m_fields.size(); ++i)
            if (m_fields[i].table.compare(m_baseTable, Qt::CaseInsensitive) == 0
                && m_fields[i].column.compare(name, Qt::CaseInsensitive) == 0)
                row[i] = st.value(c);
    }
    return row;
}

bool Recordset::eof()
{
    return m_pos >= 0 && !fetchUpTo(m_pos);
}

bool Recordset::isEmpty()
{
    return !fetchUpTo(0);
}

qint64 Recordset::RecordCount()
{
    if (m_runBase < 0 && m_exhausted)
        return rowsRead();
    if (!m_total) {
        if (m_keyColumn < 0) {
            fetchAll();
            return m_unkeyed.size();
        }
        const QString counted = withoutOrder(m_sql);
        m_total = m_counter.total ? m_counter.total()
                                  : m_db.scalar(QStringLiteral("select count(*) from (%1)").arg(counted), m_params).toLongLong();
        // Rows added here stand in the set whether or not the query would find them.
        if (!m_addedKeys.isEmpty()) {
            QStringList marks;
            QVariantList params = m_params;
            for (const QVariant &k : std::as_const(m_addedKeys)) {
                marks << QStringLiteral("?");
                params << k;
            }
            const qint64 found = m_db.scalar(QStringLiteral("select count(*) from (%1) where %2 in (%3)")
                                                 .arg(counted, quoteName(m_fields[m_keyColumn].name), marks.join(QLatin1Char(','))),
                                             params)
                                     .toLongLong();
            *m_total += m_addedKeys.size() - found;
        }
    }
    return *m_total;
}

bool Recordset::setAbsolutePosition(qint64 pos)
{
    if (pos < 0 || !fetchUpTo(pos))
        return false;
    m_deletedCurrent = false;
    m_pos = pos;
    return true;
}

void Recordset::MoveFirst()
{
    m_deletedCurrent = false;
    m_pos = fetchUpTo(0) ? 0 : -1;
}

void Recordset::MoveLast()
{
    m_deletedCurrent = false;
    // With counts the last rows are reached by a jump, not by reading all before them.
    if (m_counter.at && m_counter.total && !m_order.isEmpty())
        fetchUpTo(RecordCount() - 1);
    fetchAll();
    m_pos = rowsRead() - 1;
}

void Recordset::MoveNext()
{
    // After a Delete the row that followed already stands at the current position.
    if (!std::exchange(m_deletedCurrent, false) && (m_pos < 0 || fetchUpTo(m_pos)))
        ++m_pos;
    fetchUpTo(m_pos);
}

void Recordset::MovePrevious()
{
    m_deletedCurrent = false;
    if (m_pos >= 0)
        --m_pos;
}

void Recordset::MoveLastModified()
{
    if (m_lastModified >= 0) {
        m_pos = m_lastModified;
        m_deletedCurrent = false;
    }
}

bool Recordset::FindFirst(const std::function<bool(const Recordset &)> &test)
{
    const qint64 saved = m_pos;
    const bool savedDeleted = std::exchange(m_deletedCurrent, false);
    for (m_pos = 0; fetchUpTo(m_pos); ++m_pos)
        if (test(*this))
            return true;
    m_pos = saved;
    m_deletedCurrent = savedDeleted;
    return false;
}

bool Recordset::FindFirst(const QString &fieldName, const QVariant &wanted)
{
    const int column = fieldIndex(fieldName);
    if (column < 0)
        throw DbError(SQLITE_ERROR, QStringLiteral("Item not found in this collection: %1").arg(fieldName));
    const bool text = wanted.metaType().id() == QMetaType::QString;
    return FindFirst([&](const Recordset &rs) {
        const QVariant v = rs.value(column);
        if (text)
            return v.toString().compare(wanted.toString(), Qt::CaseInsensitive) == 0;
        return v == wanted;
    });
}

bool Recordset::peek(qint64 pos, const std::function<void(const Recordset &)> &look)
{
    if (pos < 0 || !fetchUpTo(pos))
        return false;
    // Put back what the caller stood on, even when `look` throws.
    struct Restore {
        Recordset &rs;
        qint64 pos;
        bool deleted;
        EditMode mode;
        ~Restore()
        {
            rs.m_pos = pos;
            rs.m_deletedCurrent = deleted;
            rs.m_mode = mode;
        }
    } restore{*this, m_pos, m_deletedCurrent, m_mode};
    m_pos = pos;
    m_deletedCurrent = false;
    m_mode = EditMode::None;
    look(*this);
    return true;
}

qint64 Recordset::positionOfKey(const QVariant &key)
{
    if (m_keyColumn < 0 || !key.isValid() || key.isNull())
        return -1;
    const QString text = keyText(key);
    bool numeric = false;
    const qint64 number = key.toLongLong(&numeric);
    const auto matches = [&](const QVariant &k) {
        if (numeric && k.typeId() == QMetaType::LongLong)
            return k.toLongLong() == number;
        return keyText(k) == text;
    };
    for (qint64 i = 0; i < m_keys.size(); ++i)
        if (matches(m_keys[i]))
            return i;
    for (qint64 i = 0; i < m_run.size(); ++i)
        if (matches(m_run[i]))
            return m_runBase + i;
    if (m_counter.before && !m_order.isEmpty() && (m_runBase >= 0 || !m_exhausted)) {
        // The counter tells where it stands; near the rows read, reading on costs less than a run.
        const std::optional<qint64> before = m_counter.before(key);
        if (!before)
            return -1;
        if (*before >= m_keys.size() + NearRows || m_runBase >= 0) {
            return startRun(key, *before) ? *before : -1;
        }
    }
    if (m_exhausted)
        return -1;
    // One query tells whether reading on can find it at all.
    const qint64 inSet = m_db.scalar(QStringLiteral("select count(*) from (%1) where %2 = ?")
                                         .arg(withoutOrder(m_sql), quoteName(m_fields[m_keyColumn].name)),
                                     m_params + QVariantList{key})
                             .toLongLong();
    if (inSet == 0)
        return -1;
    // It is there: read on by keys alone, looking at each as it comes, so that
    // nothing is read past the row; its neighbours are read whole when shown.
    if (!m_keyStmt)
        readKeysOnly();
    while (fetchUpTo(m_keys.size()))
        if (matches(m_keys.last()))
            return m_keys.size() - 1;
    return -1;
}

void Recordset::readOrder()
{
    // Only plain names, asc or desc, ending on the key: then the values of a row
    // in those names place every other row before or after it.
    const int at = orderByPosition(m_sql);
    if (at < 0)
        return;
    static const QRegularExpression head(QStringLiteral("^order\\s+by\\s+"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression term(QStringLiteral("^\\s*(\\w+|\\[[^\\]]+\\]|\"[^\"]+\")(?:\\s+(asc|desc))?\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QString tail = m_sql.mid(at).remove(head);
    QList<OrderTerm> terms;
    for (const QString &t : tail.split(QLatin1Char(','))) {
        const QRegularExpressionMatch m = term.match(t);
        if (!m.hasMatch() || m.captured(1).front().isDigit())
            return; // an expression, a column number, a limit or a collation: no run follows it
        terms << OrderTerm{bareName(m.captured(1)), m.captured(2).compare(QLatin1String("desc"), Qt::CaseInsensitive) == 0};
    }
    if (!terms.isEmpty() && terms.last().name.compare(m_fields[m_keyColumn].name, Qt::CaseInsensitive) == 0)
        m_order = terms;
}

QList<Recordset::Side> Recordset::sidesOf(const QVariantList &anchor, bool after) const
{
    // Nulls come first going up and last going down, as the engine orders them.
    QList<Side> sides;
    for (qsizetype i = m_order.size() - 1; i >= 0; --i) {
        Side equal{QString(), {}, i};
        for (qsizetype j = 0; j < i; ++j) {
            equal.condition += quoteName(m_order[j].name) + (anchor[j].isNull() ? QStringLiteral(" is null and ") : QStringLiteral(" = ? and "));
            if (!anchor[j].isNull())
                equal.params << anchor[j];
        }
        const QString name = quoteName(m_order[i].name);
        const bool key = i == m_order.size() - 1; // never null
        if (after != m_order[i].desc) {
            if (!anchor[i].isNull())
                sides << Side{equal.condition + name + QStringLiteral(" > ?"), equal.params + QVariantList{anchor[i]}, i};
            else if (!key)
                sides << Side{equal.condition + name + QStringLiteral(" is not null"), equal.params, i};
        } else if (!anchor[i].isNull()) {
            sides << Side{equal.condition + name + QStringLiteral(" < ?"), equal.params + QVariantList{anchor[i]}, i};
            if (!key)
                sides << Side{equal.condition + name + QStringLiteral(" is null"), equal.params, i};
        }
    }
    return sides;
}

std::optional<QVariantList> Recordset::orderValues(const QVariant &key)
{
    QStringList names;
    for (const OrderTerm &t : std::as_const(m_order))
        names << quoteName(t.name);
    Statement st = m_db.prepare(QStringLiteral("select %1 from (%2) where %3 = ?")
                                    .arg(names.join(QLatin1Char(',')), withoutOrder(m_sql), quoteName(m_order.last().name)));
    st.bindAll(m_params + QVariantList{key});
    if (!st.step())
        return std::nullopt;
    QVariantList values;
    for (int i = 0; i < names.size(); ++i)
        values << st.value(i);
    return values;
}

QList<QVariantList> Recordset::rowsBeside(const QVariantList &anchor, bool after, qint64 limit)
{
    QStringList names;
    for (const OrderTerm &t : std::as_const(m_order))
        names << quoteName(t.name);
    QList<QVariantList> rows;
    for (const Side &side : sidesOf(anchor, after)) {
        if (rows.size() >= limit)
            break;
        // Ordered by the side's own term and those after it: the ones held equal
        // would only make the engine sort instead of walking an index. Going back, reversed.
        QStringList by;
        for (qsizetype i = side.term; i < m_order.size(); ++i)
            by << quoteName(m_order[i].name) + (m_order[i].desc == after ? QStringLiteral(" desc") : QString());
        Statement st = m_db.prepare(QStringLiteral("select %1 from (%2) where %3 order by %4 limit %5")
                                        .arg(names.join(QLatin1Char(',')), withoutOrder(m_sql), side.condition,
                                             by.join(QLatin1Char(',')))
                                        .arg(limit - rows.size()));
        st.bindAll(m_params + side.params);
        while (st.step()) {
            QVariantList values;
            for (int i = 0; i < names.size(); ++i)
                values << st.value(i);
            rows << values;
        }
    }
    return rows;
}

bool Recordset::startRun(const QVariant &key, qint64 base)
{
    const std::optional<QVariantList> anchor = orderValues(key);
    if (!anchor)
        return false;
    // A run already read gives way, and with it its rows and the current row in it;
    // rows added in it are read again where they belong.
    for (const QVariant &k : std::as_const(m_run))
        m_addedKeys.remove(keyText(k));
    dropCacheFrom(m_keys.size());
    if (m_pos >= m_keys.size())
        m_pos = -1;
    if (m_lastModified >= m_keys.size())
        m_lastModified = -1;
    m_run = {anchor->last()};
    m_runHead = m_runTail = *anchor;
    m_runBase = base;
    m_runEnded = false;
    return true;
}

bool Recordset::fetchRun(qint64 pos)
{
    const auto fresh = [&](const QVariantList &row) {
        return m_addedKeys.isEmpty() || !m_addedKeys.contains(keyText(row.last()));
    };
    while (pos >= knownEnd()) {
        if (m_runEnded)
            return false;
        // As far as asked in one go, a block at least.
        const qint64 wanted = std::clamp<qint64>(pos - knownEnd() + 1, BlockSize, qint64(1) << 24);
        const QList<QVariantList> more = rowsBeside(m_runTail, true, wanted);
        m_runEnded = more.size() < wanted;
        for (const QVariantList &row : more)
            if (fresh(row))
                m_run.append(row.last());
        if (!more.isEmpty())
            m_runTail = more.last();
    }
    if (pos >= m_runBase)
        return true;
    // Back towards the rows read from the start, as far as the start of the row's block.
    const qint64 from = std::max<qint64>(m_keys.size(), pos / BlockSize * BlockSize);
    const QList<QVariantList> before = rowsBeside(m_runHead, false, m_runBase - from);
    QVector<QVariant> run;
    run.reserve(before.size() + m_run.size());
    for (auto row = before.crbegin(); row != before.crend(); ++row)
        if (fresh(*row))
            run << row->last();
    if (!before.isEmpty())
        m_runHead = before.last();
    m_runBase -= run.size();
    m_run = run + m_run;
    // Fewer rows before the run than counted leave a gap that a Requery closes.
    return pos >= m_runBase;
}

bool Recordset::farFromRead(qint64 pos) const
{
    constexpr qint64 Far = NearRows;
    // Past the counted end there is no key to jump to: reading on (MoveLast's) finds the end.
    if (pos < m_keys.size() || (m_total && pos >= *m_total))
        return false;
    if (m_runBase < 0)
        return pos - m_keys.size() > Far && !m_exhausted;
    if (pos < m_runBase)
        return std::min(pos - m_keys.size(), m_runBase - pos) > Far;
    return pos - knownEnd() > Far && !m_runEnded;
}

QVariant Recordset::keyAt(qint64 pos) const
{
    if (pos >= 0 && pos < m_keys.size())
        return m_keys[pos];
    if (m_runBase >= 0 && pos >= m_runBase && pos < knownEnd())
        return m_run[pos - m_runBase];
    return {};
}

void Recordset::Requery()
{
    m_mode = EditMode::None;
    m_keys.clear();
    m_run.clear();
    m_runBase = -1;
    m_unkeyed.clear();
    m_addedKeys.clear();
    m_blocks.clear();
    m_blockOrder.clear();
    m_total.reset();
    m_lastModified = -1;
    m_deletedCurrent = false;
    openStatement();
    MoveFirst();
}

void Recordset::requireCurrent() const
{
    if (m_deletedCurrent)
        throw DbError(SQLITE_ERROR, QStringLiteral("Record is deleted."));
    if (m_pos < 0 || (m_keyColumn >= 0 ? !keyAt(m_pos).isValid() : m_pos >= m_unkeyed.size()))
        throw DbError(SQLITE_ERROR, QStringLiteral("No current record."));
}

void Recordset::requireUpdatable() const
{
    if (m_keyColumn < 0)
        throw DbError(SQLITE_READONLY, QStringLiteral("The set of rows cannot be updated: %1").arg(m_sql));
}

QVariant Recordset::value(int column) const
{
    if (column < 0 || column >= m_fields.size())
        throw DbError(SQLITE_RANGE, QStringLiteral("Column %1 out of range").arg(column));
    if (m_mode != EditMode::None)
        return fromStorage(m_fields[column].kind, m_buffer[column]);
    requireCurrent();
    return fromStorage(m_fields[column].kind, rowAt(m_pos)[column]);
}

QVariant Recordset::value(const QString &name) const
{
    const int column = fieldIndex(name);
    if (column < 0)
        throw DbError(SQLITE_ERROR, QStringLiteral("Item not found in this collection: %1").arg(name));
    return value(column);
}

QVariant Recordset::key() const
{
    return m_keyColumn >= 0 ? value(m_keyColumn) : QVariant();
}

void Recordset::AddNew()
{
    requireUpdatable();
    m_mode = EditMode::AddNew;
    m_buffer = Row(m_fields.size());
    m_dirty = QVector<bool>(m_fields.size(), false);
}

void Recordset::Edit()
{
    requireUpdatable();
    requireCurrent();
    m_buffer = rowAt(m_pos);
    m_dirty = QVector<bool>(m_fields.size(), false);
    m_mode = EditMode::Edit;
}

void Recordset::setValue(const QString &name, const QVariant &v)
{
    const int column = fieldIndex(name);
    if (column < 0)
        throw DbError(SQLITE_ERROR, QStringLiteral("Item not found in this collection: %1").arg(name));
    setValue(column, v);
}

void Recordset::setValue(int column, const QVariant &v)
{
    if (m_mode == EditMode::None)
        throw DbError(SQLITE_MISUSE, QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    const FieldInfo &f = m_fields.at(column);
    if (f.table.compare(m_baseTable, Qt::CaseInsensitive) != 0)
        throw DbError(SQLITE_READONLY, QStringLiteral("Field '%1' cannot be updated.").arg(f.name));
    const QVariant stored = toStorage(f.kind, v);
    if (f.kind == FieldKind::Text && f.size > 0 && stored.toString().size() > f.size)
        throw DbError(SQLITE_TOOBIG, QStringLiteral("Field '%1' is too small to accept the amount of data (at most %2 characters).")
                                         .arg(f.name).arg(f.size));
    m_buffer[column] = stored;
    m_dirty[column] = true;
}

void Recordset::Update()
{
    if (m_mode == EditMode::None)
        throw DbError(SQLITE_MISUSE, QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    QStringList names;
    QVariantList values;
    for (int i = 0; i < m_fields.size(); ++i) {
        if (m_dirty[i]) {
            names << quoteName(m_fields[i].column);
            values << m_buffer[i];
        }
    }
    QVariant key;
    if (m_mode == EditMode::AddNew) {
        if (names.isEmpty())
            m_db.execute(QStringLiteral("insert into %1 default values").arg(quoteName(m_baseTable)));
        else
            m_db.execute(QStringLiteral("insert into %1 (%2) values (%3)")
                             .arg(quoteName(m_baseTable), names.join(QLatin1Char(',')),
                                  QStringList(QVector<QString>(names.size(), QStringLiteral("?"))).join(QLatin1Char(','))),
                         values);
        key = m_keyIsCounter || !m_dirty[m_keyColumn] ? QVariant(m_db.lastInsertId()) : m_buffer[m_keyColumn];
        m_addedKeys.insert(keyText(key), key);
        (m_runBase >= 0 ? m_run : m_keys).append(key);
        if (m_total)
            ++*m_total;
        m_lastModified = knownEnd() - 1;
    } else {
        key = rowAt(m_pos)[m_keyColumn];
        if (!names.isEmpty()) {
            QStringList sets;
            for (const QString &n : names)
                sets << n + QStringLiteral(" = ?");
            const int changed = m_db.execute(QStringLiteral("update %1 set %2 where %3 = ?")
                                                 .arg(quoteName(m_baseTable), sets.join(QLatin1Char(',')), quoteName(m_baseKey)),
                                             values + QVariantList{key});
            if (changed == 0)
                throw DbError(SQLITE_NOTFOUND, QStringLiteral("The record is no longer there: it was deleted elsewhere, and nothing was written."));
        }
        if (m_dirty[m_keyColumn])
            (m_pos < m_keys.size() ? m_keys[m_pos] : m_run[m_pos - m_runBase]) = key = m_buffer[m_keyColumn];
        m_lastModified = m_pos;
    }
    m_mode = EditMode::None;
    cacheRow(m_lastModified, readByKey(key).value_or(m_buffer));
}

void Recordset::CancelUpdate()
{
    m_mode = EditMode::None;
    m_buffer.clear();
}

void Recordset::Delete()
{
    requireUpdatable();
    requireCurrent();
    const QVariant key = rowAt(m_pos)[m_keyColumn];
    m_db.execute(QStringLiteral("delete from %1 where %2 = ?").arg(quoteName(m_baseTable), quoteName(m_baseKey)), {key});
    if (m_pos < m_keys.size()) {
        m_keys.removeAt(m_pos);
        if (m_runBase >= 0)
            --m_runBase;
    } else {
        m_run.removeAt(m_pos - m_runBase);
    }
    m_addedKeys.remove(keyText(key)); // gone from the table: no longer counted as added
    dropCacheFrom(m_pos);
    if (m_total)
        --*m_total;
    m_lastModified = -1;
    m_deletedCurrent = true;
}

} // namespace store
