// SPDX-License-Identifier: GPL-3.0-or-later
// Compiling a template against the database, and reading, selecting and sorting its rows.
#include "reports/engine/ReportRun.h"

#include "store/Database.h"
#include "store/DbError.h"
#include "store/Sqlite.h"
#include "store/Statement.h"

#include <QRegularExpression>

#include <algorithm>

namespace reports::engine {

namespace {

const Valore NullValue;

QString quoted(const QString &identifier)
{
    QString s = identifier;
    return QLatin1Char('"') + s.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

// The base table under a stored query, so that {Clienti.Cognome} reads Q_Clienti_Utenti.
QString baseTableOf(const QString &source)
{
    if (source.compare(QLatin1String("Q_Movimentazioni_Utenti"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Movimentazioni");
    if (source.compare(QLatin1String("Q_Clienti_Utenti"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Clienti");
    return QString();
}

// Wall-clock milliseconds of "yyyy-MM-dd HH:mm:ss" (or a date alone) without QDateTime:
// the report converts up to hundreds of thousands of them.
bool parseStoredDate(const unsigned char *t, int n, qint64 *ms)
{
    auto digits = [&](int at, int count, int *out) {
        int v = 0;
        for (int i = at; i < at + count; ++i) {
            if (i >= n || t[i] < '0' || t[i] > '9')
                return false;
            v = v * 10 + (t[i] - '0');
        }
        *out = v;
        return true;
    };
    int y, mo, d, h = 0, mi = 0, s = 0;
    if (n < 10 || !digits(0, 4, &y) || t[4] != '-' || !digits(5, 2, &mo) || t[7] != '-' || !digits(8, 2, &d))
        return false;
    if (n >= 19 && !(digits(11, 2, &h) && digits(14, 2, &mi) && digits(17, 2, &s)))
        return false;
    const QDate date(y, mo, d);
    if (!date.isValid())
        return false;
    *ms = (date.toJulianDay() - 2440588) * qint64(86400000) + (h * 3600 + mi * 60 + s) * qint64(1000);
    return true;
}

// The value an empty column reads as, when the template asks for defaults instead of nulls.
Valore emptyValue(store::FieldKind kind, bool asDefault)
{
    using store::FieldKind;
    if (!asDefault)
        return Valore();
    switch (kind) {
    case FieldKind::Text:
    case FieldKind::Memo:
        return Valore(QString());
    case FieldKind::Currency:
    case FieldKind::Long:
    case FieldKind::Counter:
    case FieldKind::Double:
        return Valore(0.0);
    case FieldKind::YesNo:
        return Valore(false);
    default:
        return Valore();
    }
}

Valore fromVariant(store::FieldKind kind, const QVariant &v, bool nullsAsDefault)
{
    using store::FieldKind;
    if (!v.isValid() || v.isNull())
        return emptyValue(kind, nullsAsDefault);
    switch (kind) {
    case FieldKind::Date: {
        const QByteArray b = v.toString().toUtf8();
        qint64 ms;
        if (parseStoredDate(reinterpret_cast<const unsigned char *>(b.constData()), int(b.size()), &ms))
            return Valore::daMillisecondi(ms);
        return Valore();
    }
    case FieldKind::Currency:
        return Valore(v.toLongLong() / 10000.0);
    case FieldKind::YesNo:
        return Valore(v.toLongLong() != 0);
    case FieldKind::Long:
    case FieldKind::Counter:
    case FieldKind::Double:
        return Valore(v.toDouble());
    case FieldKind::Binary:
        return Valore();
    default:
        return Valore::daVariant(v);
    }
}

} // namespace

// ---- The scope of the formulas

int ReportRun::campo(const QString &tabella, const QString &nome) const
{
    auto find = [&](int table, const QString &column) -> int {
        const QVector<Column> &cols = m_tables.at(table).columns;
        for (int c = 0; c < cols.size(); ++c)
            if (cols.at(c).name.compare(column, Qt::CaseInsensitive) == 0)
                return c;
        return -1;
    };
    int table = -1, column = -1;
    for (int i = 0; i < m_tables.size() && column < 0; ++i) {
        const Table &t = m_tables.at(i);
        const bool named = t.name.compare(tabella, Qt::CaseInsensitive) == 0 ||
                           (i == 0 && baseTableOf(t.name).compare(tabella, Qt::CaseInsensitive) == 0 && !tabella.isEmpty());
        if (named && (column = find(i, nome)) >= 0)
            table = i;
    }
    // The stored query of movements names its operators "Autorizzazioni.utente" and "Autorizzazioni_1.utente".
    if (column < 0 && (column = find(0, tabella + QLatin1Char('.') + nome)) >= 0)
        table = 0;
    if (column < 0)
        return -1;
    const quint64 key = (quint64(table) << 32) | quint64(column);
    if (const auto it = m_slotOf.constFind(key); it != m_slotOf.constEnd())
        return *it;
    Slot s;
    s.table = table;
    s.column = column;
    s.lookup = m_tables.at(table).lookup;
    if (s.lookup) {
        s.index = int(m_lookupValues.size());
        m_lookupValues << fromVariant(m_tables.at(table).columns.at(column).kind, m_tables.at(table).lookupRow.value(column),
                                      m_t.nullsAsDefault);
    } else {
        s.index = m_width++;
    }
    m_slots << s;
    m_slotOf.insert(key, int(m_slots.size()) - 1);
    return int(m_slots.size()) - 1;
}

int ReportRun::formula(const QString &nome) const
{
    return m_formulaNames.value(nome.trimmed().toLower(), -1);
}

const Valore &ReportRun::Row::campo(int indice) const
{
    const Slot &s = m_run.m_slots.at(indice);
    if (s.lookup)
        return m_run.m_lookupValues.at(s.index);
    return m_cells ? m_cells[s.index] : NullValue;
}

Valore ReportRun::Row::formula(int indice) const
{
    return m_run.evaluateFormula(indice, *this);
}

Valore ReportRun::evaluateFormula(int index, const Row &row) const
{
    const int nFormulas = int(m_formulas.size());
    if (index < nFormulas) {
        if (const auto &c = m_constants.at(index))
            return *c;
        return m_formulas.at(index).valuta(row);
    }
    if (index < m_specialBase) {
        const VarState &v = m_vars.at(index - nFormulas);
        const tpl::Variable &def = m_t.variables.at(index - nFormulas);
        return v.acc.result(def.function, v.startValue);
    }
    switch (index - m_specialBase) {
    case 0:
        return Valore(m_page);
    case 1:
        return Valore(m_pages);
    case 2:
        return Valore(m_printDate);
    default:
        return Valore(m_recordNumber);
    }
}

// ---- Compilation

ReportRun::ReportRun(tpl::Template t, const RunSettings &settings, store::Database &db) : m_t(std::move(t))
{
    m_printDate = DataCorrente();
    readColumns(db);
    compileFormulas(settings);
    compileSections();
    applyGraphTexts(settings.graphTexts);
}

ReportRun::~ReportRun() = default;

void ReportRun::readColumns(store::Database &db)
{
    auto columnsOf = [&](const QString &table, bool lookup, int line) {
        Table t;
        t.name = table;
        t.lookup = lookup;
        try {
            store::Statement st = db.prepare(QStringLiteral("SELECT * FROM ") + quoted(table) + QStringLiteral(" LIMIT 1"));
            for (int i = 0; i < st.columnCount(); ++i) {
                const store::FieldInfo f = st.field(i);
                t.columns << Column{f.name, f.kind};
            }
            if (lookup && st.step())
                for (int i = 0; i < st.columnCount(); ++i)
                    t.lookupRow << st.value(i);
        } catch (const store::DbError &e) {
            throw RunError(QStringLiteral("The report template %1 reads the table %2 (line %3), which the database %4 doesn't have: %5")
                               .arg(m_t.fileName, table)
                               .arg(line)
                               .arg(db.path(), e.message()));
        }
        m_tables << t;
    };
    columnsOf(m_t.source, false, 1);
    for (const tpl::Join &j : m_t.joins) {
        columnsOf(j.table, false, 1);
        const Table &joined = m_tables.last();
        auto has = [](const Table &t, const QString &c) {
            return std::any_of(t.columns.begin(), t.columns.end(), [&](const Column &col) { return col.name.compare(c, Qt::CaseInsensitive) == 0; });
        };
        if (!has(m_tables.first(), j.field) || !has(joined, j.to))
            throw RunError(QStringLiteral("The report template %1 joins %2 on columns that don't exist (%3, %4).")
                               .arg(m_t.fileName, j.table, j.field, j.to));
    }
    for (const tpl::Lookup &l : m_t.lookups)
        columnsOf(l.table, true, l.line);
}

Formula ReportRun::compile(const QString &text, const QString &where) const
{
    try {
        return Formula::compila(text, *this);
    } catch (const FormulaError &e) {
        QString near = e.token().isEmpty() ? QString() : QStringLiteral(", at \"%1\"").arg(e.token());
        throw RunError(QStringLiteral("%1: %2 (character %3%4).\n\n%5").arg(where, e.messaggio()).arg(e.posizione() + 1).arg(near, text.trimmed()));
    }
}

void ReportRun::compileFormulas(const RunSettings &settings)
{
    // Every name first, so that formulas may refer to one another in any order.
    const int nFormulas = int(m_t.formulas.size());
    for (int i = 0; i < nFormulas; ++i)
        m_formulaNames.insert(m_t.formulas.at(i).name.toLower(), i);
    for (int i = 0; i < m_t.variables.size(); ++i)
        m_formulaNames.insert(m_t.variables.at(i).name.toLower(), nFormulas + i);
    m_specialBase = nFormulas + int(m_t.variables.size());
    const char *specials[] = {"pagenumber", "totalpagecount", "printdate", "recordnumber"};
    for (int i = 0; i < 4; ++i)
        if (!m_formulaNames.contains(QLatin1String(specials[i])))
            m_formulaNames.insert(QLatin1String(specials[i]), m_specialBase + i);

    const QString file = m_t.fileName;
    m_constants.resize(nFormulas);
    for (int i = 0; i < nFormulas; ++i) {
        const tpl::FormulaDef &f = m_t.formulas.at(i);
        m_formulas << compile(f.text, QStringLiteral("The formula %1 of the report template %2 (line %3)").arg(f.name, file).arg(f.line));
    }

    // The caller's formulas replace the template's by name; a name the template lacks is left aside,
    // since the same engine serves several templates and keeps its formulas between runs.
    for (int n = 0; n < settings.formulas.size(); ++n) {
        const QString text = settings.formulas.at(n).trimmed();
        if (text.isEmpty())
            continue;
        const qsizetype eq = text.indexOf(QLatin1Char('='));
        if (eq <= 0)
            throw RunError(QStringLiteral("Formulas(%1) = \"%2\" is not of the form name=value.").arg(n).arg(text));
        const int index = formula(text.left(eq));
        if (index < 0 || index >= nFormulas)
            continue;
        try {
            m_constants[index] = ParseAssegnazione(text).valore;
        } catch (const FormulaError &) {
            // Not a plain value: a computation such as "Campo1={Clienti.Cognome}".
            m_formulas[index] = compile(text.mid(eq + 1), QStringLiteral("Formulas(%1), %2").arg(n).arg(text.left(eq).trimmed()));
            m_constants[index].reset();
        }
    }

    // A formula that reaches itself would never end.
    QVector<int> state(nFormulas, 0);
    std::function<void(int)> visit = [&](int i) {
        state[i] = 1;
        if (!m_constants.at(i))
            for (int j : m_formulas.at(i).formuleUsate()) {
                if (j >= nFormulas)
                    continue;
                if (state.at(j) == 1)
                    throw RunError(QStringLiteral("The formula %1 of the report template %2 refers to itself through %3.")
                                       .arg(m_t.formulas.at(i).name, file, m_t.formulas.at(j).name));
                if (state.at(j) == 0)
                    visit(j);
            }
        state[i] = 2;
    };
    for (int i = 0; i < nFormulas; ++i)
        if (state.at(i) == 0)
            visit(i);

    for (const tpl::Variable &v : m_t.variables) {
        VarState s;
        const QString where = QStringLiteral("The variable %1 of the report template %2 (line %3)").arg(v.name, file).arg(v.line);
        s.value = compile(v.value, where);
        s.start = compile(v.start, where);
        s.when = compile(v.when, where);
        if (v.reset.compare(QLatin1String("report"), Qt::CaseInsensitive) == 0)
            s.resetGroup = -2;
        else if (v.reset.compare(QLatin1String("page"), Qt::CaseInsensitive) == 0)
            s.resetGroup = -1;
        else
            for (int g = 0; g < m_t.groups.size(); ++g)
                if (m_t.groups.at(g).name.compare(v.reset, Qt::CaseInsensitive) == 0)
                    s.resetGroup = g;
        m_vars << s;
    }

    m_selection = compile(settings.selection, QStringLiteral("The selection formula"));
    for (const tpl::Group &g : m_t.groups)
        m_keys << SortKey{compile(g.by, QStringLiteral("The group %1 of the report template %2 (line %3)").arg(g.name, file).arg(g.line)),
                          g.descending, g.interval};
    bool callerSorts = false;
    for (int n = 0; n < settings.sortFields.size(); ++n) {
        QString text = settings.sortFields.at(n).trimmed();
        if (text.isEmpty())
            continue;
        bool descending = false;
        if (text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-'))) {
            descending = text.startsWith(QLatin1Char('-'));
            text.remove(0, 1);
        }
        m_keys << SortKey{compile(text, QStringLiteral("SortFields(%1)").arg(n)), descending, tpl::Interval::None};
        callerSorts = true;
    }
    if (!callerSorts)
        for (const tpl::Sort &s : m_t.sorts)
            m_keys << SortKey{compile(s.field, QStringLiteral("A sort field of the report template %1").arg(file)), s.descending,
                              tpl::Interval::None};
}

QFont ReportRun::fontFor(const tpl::FontDefinition &definition) const
{
    QFont f(definition.family.isEmpty() ? m_t.font.family : definition.family);
    f.setPointSizeF(definition.size > 0 ? definition.size : m_t.font.size);
    f.setBold(definition.bold >= 0 ? definition.bold == 1 : m_t.font.bold == 1);
    f.setItalic(definition.italic >= 0 ? definition.italic == 1 : m_t.font.italic == 1);
    return f;
}

ReportRun::CItem ReportRun::compileItem(const tpl::Item &item, const tpl::Section &section)
{
    CItem c;
    c.item = &item;
    c.font = fontFor(item.font);
    const QString where = QStringLiteral("An item of the report template %1 (line %2)").arg(m_t.fileName).arg(item.line);
    c.suppress = compile(item.suppress, where);
    switch (item.kind) {
    case tpl::ItemKind::Field:
        if (!item.group.isEmpty()) {
            for (int g = 0; g < m_t.groups.size(); ++g)
                if (m_t.groups.at(g).name.compare(item.group, Qt::CaseInsensitive) == 0)
                    c.group = g;
        } else {
            c.value = compile(item.value, where);
        }
        c.since = compile(item.since, where);
        break;
    case tpl::ItemKind::Text: {
        // Literal text with embedded references and the page placeholders.
        static const QRegularExpression piece(QStringLiteral("\\{[^{}]+\\}|%page%|%pages%|%printdate%"));
        qsizetype at = 0;
        auto it = piece.globalMatch(item.text);
        while (it.hasNext()) {
            const auto m = it.next();
            if (m.capturedStart() > at)
                c.parts << TextPart{item.text.mid(at, m.capturedStart() - at), 0, {}};
            const QString p = m.captured();
            if (p == QLatin1String("%page%"))
                c.parts << TextPart{{}, 2, {}};
            else if (p == QLatin1String("%pages%"))
                c.parts << TextPart{{}, 3, {}};
            else if (p == QLatin1String("%printdate%"))
                c.parts << TextPart{{}, 4, {}};
            else
                c.parts << TextPart{{}, 1, compile(p, where)};
            at = m.capturedEnd();
        }
        if (at < item.text.size())
            c.parts << TextPart{item.text.mid(at), 0, {}};
        break;
    }
    case tpl::ItemKind::Graph: {
        c.by = compile(item.by, where);
        for (const tpl::Series &s : item.series)
            c.series << compile(s.value, where);
        GraphState g;
        g.scope = (section.kind == tpl::SectionKind::GroupHeader || section.kind == tpl::SectionKind::GroupFooter) ? section.group : -1;
        g.texts = item.texts;
        c.graph = int(m_graphs.size());
        m_graphs << g;
        break;
    }
    default:
        break;
    }
    return c;
}

void ReportRun::compileSections()
{
    m_groupHeaders.resize(m_t.groups.size());
    m_groupFooters.resize(m_t.groups.size());
    m_sections.reserve(m_t.sections.size());
    for (const tpl::Section &s : m_t.sections) {
        CSection c;
        c.section = &s;
        c.suppress = compile(s.suppress, QStringLiteral("A section of the report template %1 (line %2)").arg(m_t.fileName).arg(s.line));
        for (const tpl::Item &item : s.items)
            c.items << compileItem(item, s);
        const int index = int(m_sections.size());
        const QString group = s.group >= 0 ? m_t.groups.at(s.group).name : QString();
        switch (s.kind) {
        case tpl::SectionKind::ReportHeader: m_reportHeaders << index; c.label = QStringLiteral("reportHeader"); break;
        case tpl::SectionKind::PageHeader: m_pageHeaders << index; c.label = QStringLiteral("pageHeader"); break;
        case tpl::SectionKind::Detail: m_details << index; c.label = QStringLiteral("detail"); break;
        case tpl::SectionKind::ReportFooter: m_reportFooters << index; c.label = QStringLiteral("reportFooter"); break;
        case tpl::SectionKind::PageFooter: m_pageFooters << index; c.label = QStringLiteral("pageFooter"); break;
        case tpl::SectionKind::GroupHeader: m_groupHeaders[s.group] << index; c.label = QStringLiteral("groupHeader:") + group; break;
        case tpl::SectionKind::GroupFooter: m_groupFooters[s.group] << index; c.label = QStringLiteral("groupFooter:") + group; break;
        }
        if (!s.name.isEmpty())
            c.label = s.name;
        m_sections << c;
    }
    // The graphs point at their compiled items only now that the vectors stand still.
    for (CSection &s : m_sections)
        for (CItem &c : s.items)
            if (c.graph >= 0)
                m_graphs[c.graph].item = &c;
}

void ReportRun::applyGraphTexts(const QStringList &texts)
{
    // " GROUPFTR.0.0; 0; title;subtitle;footnote;groups;series;x axis;y axis;": the section,
    // the graph's number in it, then its texts; an empty text keeps the template's.
    for (const QString &entry : texts) {
        const QStringList parts = entry.split(QLatin1Char(';'));
        if (parts.size() < 3 || parts.at(0).trimmed().isEmpty())
            continue;
        const QString section = parts.at(0).trimmed();
        const QString number = parts.at(1).trimmed();
        for (CSection &s : m_sections) {
            if (s.section->name.compare(section, Qt::CaseInsensitive) != 0)
                continue;
            int ordinal = 0;
            for (CItem &c : s.items) {
                if (c.graph < 0)
                    continue;
                const QString own = c.item->number.isEmpty() ? QString::number(ordinal) : c.item->number;
                ++ordinal;
                if (own != number)
                    continue;
                QStringList &t = m_graphs[c.graph].texts;
                for (int i = 2; i < parts.size() && i - 2 < t.size(); ++i)
                    if (!parts.at(i).trimmed().isEmpty())
                        t[i - 2] = parts.at(i).trimmed();
            }
        }
    }
}

// ---- Rows

QString ReportRun::pushdown(const QString &selection, QVariantList &params) const
{
    // The selection is always evaluated on every row read; this only narrows what is
    // read, for the common shapes "{T.id} = 5" and date bounds joined by "and". A
    // clause is pushed only when the SQL keeps every row the formula could keep.
    QString bare;      // the text with string literals blanked out
    QChar quote;
    for (QChar c : selection) {
        if (!quote.isNull()) {
            bare += QLatin1Char(' ');
            if (c == quote)
                quote = QChar();
        } else {
            if (c == QLatin1Char('\'') || c == QLatin1Char('"'))
                quote = c;
            bare += c;
        }
    }
    static const QRegularExpression risky(QStringLiteral("\\b(or|not)\\b"), QRegularExpression::CaseInsensitiveOption);
    if (selection.trimmed().isEmpty() || !quote.isNull() || risky.match(bare).hasMatch())
        return QString();
    QStringList clauses;
    int depth = 0;
    qsizetype start = 0;
    static const QRegularExpression andWord(QStringLiteral("^and\\b"), QRegularExpression::CaseInsensitiveOption);
    for (qsizetype i = 0; i < bare.size(); ++i) {
        const QChar c = bare.at(i);
        if (c == QLatin1Char('('))
            ++depth;
        else if (c == QLatin1Char(')'))
            --depth;
        else if (depth == 0 && (i == 0 || !bare.at(i - 1).isLetterOrNumber()) &&
                 andWord.match(QStringView(bare).mid(i)).hasMatch()) {
            clauses << selection.mid(start, i - start);
            start = i + 3;
        }
    }
    clauses << selection.mid(start);

    static const QRegularExpression number(QStringLiteral("^\\s*\\{([^.{}]+)\\.([^.{}]+)\\}\\s*(=|>=|<=|>|<)\\s*(\\d{1,12})\\s*$"));
    static const QRegularExpression date(QStringLiteral(
        "^\\s*\\{([^.{}]+)\\.([^.{}]+)\\}\\s*(=|>=|<=|>|<)\\s*DateSerial\\s*\\(\\s*(\\d{1,4})\\s*,\\s*(\\d{1,2})\\s*,\\s*(\\d{1,2})\\s*\\)\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    QStringList where;
    for (const QString &clause : clauses) {
        auto column = [&](const QString &table, const QString &name, store::FieldKind *kind) -> QString {
            const int slot = campo(table, name);
            if (slot < 0 || m_slots.at(slot).lookup)
                return QString();
            const Table &t = m_tables.at(m_slots.at(slot).table);
            const Column &c = t.columns.at(m_slots.at(slot).column);
            *kind = c.kind;
            return quoted(t.name) + QLatin1Char('.') + quoted(c.name);
        };
        store::FieldKind kind;
        if (const auto m = number.match(clause); m.hasMatch()) {
            const QString col = column(m.captured(1).trimmed(), m.captured(2).trimmed(), &kind);
            if (!col.isEmpty() && (kind == store::FieldKind::Long || kind == store::FieldKind::Counter)) {
                where << col + QLatin1Char(' ') + m.captured(3) + QStringLiteral(" ?");
                params << m.captured(4).toLongLong();
            }
        } else if (const auto d = date.match(clause); d.hasMatch()) {
            const QString col = column(d.captured(1).trimmed(), d.captured(2).trimmed(), &kind);
            const QDate day(d.captured(4).toInt(), d.captured(5).toInt(), d.captured(6).toInt());
            if (col.isEmpty() || kind != store::FieldKind::Date || !day.isValid())
                continue;
            // A date-time compared with a day: the whole day stays in, whichever way the formula reads it.
            const QString from = day.startOfDay().toString(QLatin1String(store::DateFormat));
            const QString next = day.addDays(1).startOfDay().toString(QLatin1String(store::DateFormat));
            const QString op = d.captured(3);
            if (op == QLatin1String(">=") || op == QLatin1String(">")) {
                where << col + QStringLiteral(" >= ?");
                params << from;
            } else if (op == QLatin1String("<=") || op == QLatin1String("<")) {
                where << col + QStringLiteral(" < ?");
                params << next;
            } else {
                where << col + QStringLiteral(" >= ? AND ") + col + QStringLiteral(" < ?");
                params << from << next;
            }
        }
    }
    return where.join(QStringLiteral(" AND "));
}

Valore ReportRun::convert(store::FieldKind kind, sqlite3_stmt *stmt, int column) const
{
    using store::FieldKind;
    const int type = sqlite3_column_type(stmt, column);
    if (type == SQLITE_NULL)
        return emptyValue(kind, m_t.nullsAsDefault);
    switch (kind) {
    case FieldKind::Date: {
        qint64 ms;
        if (type == SQLITE_TEXT && parseStoredDate(sqlite3_column_text(stmt, column), sqlite3_column_bytes(stmt, column), &ms))
            return Valore::daMillisecondi(ms);
        return Valore();
    }
    case FieldKind::Currency:
        return Valore(double(sqlite3_column_int64(stmt, column)) / 10000.0);
    case FieldKind::YesNo:
        return Valore(sqlite3_column_int64(stmt, column) != 0);
    case FieldKind::Long:
    case FieldKind::Counter:
    case FieldKind::Double:
        return Valore(sqlite3_column_double(stmt, column));
    case FieldKind::Binary:
        return Valore();
    default:
        if (type == SQLITE_INTEGER || type == SQLITE_FLOAT)
            return Valore(sqlite3_column_double(stmt, column));
        return Valore(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(stmt, column)),
                                        sqlite3_column_bytes(stmt, column)));
    }
}

void ReportRun::readRows(store::Database &db)
{
    QVariantList params;
    const QString where = pushdown(m_selection.testo(), params);
    // The columns in use, in the order of their cells.
    QVector<int> cellSlot(m_width, -1);
    for (int i = 0; i < m_slots.size(); ++i)
        if (!m_slots.at(i).lookup)
            cellSlot[m_slots.at(i).index] = i;
    QStringList select;
    QVector<store::FieldKind> kinds;
    for (int slot : cellSlot) {
        const Slot &s = m_slots.at(slot);
        const Table &t = m_tables.at(s.table);
        select << quoted(t.name) + QLatin1Char('.') + quoted(t.columns.at(s.column).name);
        kinds << t.columns.at(s.column).kind;
    }
    if (select.isEmpty())
        select << QStringLiteral("1");
    QString sql = QStringLiteral("SELECT ") + select.join(QStringLiteral(", ")) + QStringLiteral(" FROM ") + quoted(m_t.source);
    for (int j = 0; j < m_t.joins.size(); ++j)
        sql += QStringLiteral(" LEFT JOIN ") + quoted(m_t.joins.at(j).table) + QStringLiteral(" ON ") + quoted(m_t.source) + QLatin1Char('.') +
               quoted(m_t.joins.at(j).field) + QStringLiteral(" = ") + quoted(m_t.joins.at(j).table) + QLatin1Char('.') + quoted(m_t.joins.at(j).to);
    if (!where.isEmpty())
        sql += QStringLiteral(" WHERE ") + where;

    m_cells.clear();
    m_order.clear();
    std::vector<Valore> buffer(size_t(std::max(m_width, 1)));
    try {
        sqlite3 *handle = db.handle();
        sqlite3_stmt *raw = nullptr;
        // The raw statement reads the cells straight into values, without a QVariant per cell.
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(handle, utf8.constData(), int(utf8.size()), &raw, nullptr) != SQLITE_OK)
            throw store::DbError(sqlite3_errcode(handle), QString::fromUtf8(sqlite3_errmsg(handle)));
        std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> guard(raw, sqlite3_finalize);
        for (int i = 0; i < params.size(); ++i) {
            const QVariant &p = params.at(i);
            if (p.metaType().id() == QMetaType::QString) {
                const QByteArray b = p.toString().toUtf8();
                sqlite3_bind_text(raw, i + 1, b.constData(), int(b.size()), SQLITE_TRANSIENT);
            } else {
                sqlite3_bind_int64(raw, i + 1, p.toLongLong());
            }
        }
        const Row row(*this, buffer.data());
        int rc;
        while ((rc = sqlite3_step(raw)) == SQLITE_ROW) {
            for (int c = 0; c < m_width; ++c)
                buffer[size_t(c)] = convert(kinds.at(c), raw, c);
            if (!m_selection.seleziona(row))
                continue;
            for (int c = 0; c < m_width; ++c)
                m_cells.push_back(std::move(buffer[size_t(c)]));
            m_order.push_back(int(m_order.size()));
        }
        if (rc != SQLITE_DONE)
            throw store::DbError(rc, QString::fromUtf8(sqlite3_errmsg(handle)));
    } catch (const store::DbError &e) {
        throw RunError(QStringLiteral("The rows of the report %1 can't be read from %2: %3").arg(m_t.fileName, db.path(), e.message()));
    }

    // Sort keys, groups first; a stable sort keeps the order of the query among equals.
    const size_t nKeys = size_t(m_keys.size());
    if (nKeys == 0)
        return;
    m_keyValues.resize(m_order.size() * nKeys);
    for (size_t r = 0; r < m_order.size(); ++r) {
        const Row row(*this, int(r));
        for (size_t k = 0; k < nKeys; ++k) {
            const SortKey &key = m_keys.at(qsizetype(k));
            m_keyValues[r * nKeys + k] = bucketOf(key.formula.valuta(row), key.interval);
        }
    }
    std::stable_sort(m_order.begin(), m_order.end(), [&](int a, int b) {
        for (size_t k = 0; k < nKeys; ++k) {
            const int c = compareValues(m_keyValues[size_t(a) * nKeys + k], m_keyValues[size_t(b) * nKeys + k]);
            if (c != 0)
                return m_keys.at(qsizetype(k)).descending ? c > 0 : c < 0;
        }
        return false;
    });
}

} // namespace reports::engine
