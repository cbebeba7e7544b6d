// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/engine/ReportTemplate.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QPageSize>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include <algorithm>

namespace reports::tpl {

const QStringList &knownSources()
{
    static const QStringList s{QStringLiteral("Q_Movimentazioni_Utenti"), QStringLiteral("Q_Clienti_Utenti"),
                               QStringLiteral("Cassa"), QStringLiteral("TabProgressivi"),
                               QStringLiteral("Autorizzazioni"), QStringLiteral("Accessi")};
    return s;
}

namespace {

class Reader {
public:
    Reader(const QByteArray &xml, const QString &name) : m_xml(xml), m_name(name) {}

    Template read()
    {
        m_t.fileName = m_name;
        if (!m_xml.readNextStartElement())
            fail(QStringLiteral("the file holds no report"));
        if (m_xml.name() != QLatin1String("report"))
            fail(QStringLiteral("the first element is <%1>, not <report>").arg(m_xml.name().toString()));
        m_t.title = attr(QStringLiteral("title"));
        while (m_xml.readNextStartElement()) {
            const QString el = m_xml.name().toString();
            if (el == QLatin1String("page"))
                readPage();
            else if (el == QLatin1String("font"))
                readFontElement(m_t.font);
            else if (el == QLatin1String("data"))
                readData();
            else if (el == QLatin1String("lookup"))
                readLookup();
            else if (el == QLatin1String("formula"))
                readFormula();
            else if (el == QLatin1String("variable"))
                readVariable();
            else if (el == QLatin1String("sort"))
                readSort();
            else if (el == QLatin1String("group"))
                readGroup();
            else if (el == QLatin1String("section"))
                m_t.sections << readSection(sectionKind(attr(QStringLiteral("type"))), -1);
            else
                fail(QStringLiteral("unknown element <%1>").arg(el));
        }
        if (m_xml.hasError())
            fail(m_xml.errorString());
        if (m_t.source.isEmpty())
            failAt(1, QStringLiteral("no <data source=\"...\"> names the rows of the report"));
        checkNames();
        checkRoom();
        return m_t;
    }

private:
    [[noreturn]] void fail(const QString &why) { failAt(int(m_xml.lineNumber()), why); }
    [[noreturn]] void failAt(int line, const QString &why)
    {
        throw TemplateError(QStringLiteral("The report template %1 can't be used (line %2): %3.").arg(m_name).arg(line).arg(why));
    }

    int line() const { return int(m_xml.lineNumber()); }
    QString attr(const QString &name) const { return m_xml.attributes().value(name).toString(); }
    bool has(const QString &name) const { return m_xml.attributes().hasAttribute(name); }

    double number(const QString &name, double fallback)
    {
        if (!has(name))
            return fallback;
        bool ok = false;
        const double v = attr(name).trimmed().toDouble(&ok);
        if (!ok || v < -10000 || v > 10000)
            fail(QStringLiteral("attribute %1=\"%2\" is not a number of millimetres").arg(name, attr(name)));
        return v;
    }

    bool flag(const QString &name, bool fallback)
    {
        if (!has(name))
            return fallback;
        const QString v = attr(name).trimmed().toLower();
        if (v == QLatin1String("true") || v == QLatin1String("yes") || v == QLatin1String("1"))
            return true;
        if (v == QLatin1String("false") || v == QLatin1String("no") || v == QLatin1String("0"))
            return false;
        fail(QStringLiteral("attribute %1=\"%2\" is neither true nor false").arg(name, attr(name)));
    }

    QColor color(const QString &name, const QColor &fallback)
    {
        if (!has(name))
            return fallback;
        const QColor c = QColor::fromString(attr(name).trimmed());
        if (!c.isValid())
            fail(QStringLiteral("attribute %1=\"%2\" is not a colour").arg(name, attr(name)));
        return c;
    }

    void skip() { m_xml.skipCurrentElement(); }

    void readPage()
    {
        const QString size = attr(QStringLiteral("size")).trimmed();
        if (!size.isEmpty()) {
            static const QHash<QString, QPageSize::PageSizeId> sizes{
                {QStringLiteral("a4"), QPageSize::A4}, {QStringLiteral("a5"), QPageSize::A5},
                {QStringLiteral("a3"), QPageSize::A3}, {QStringLiteral("letter"), QPageSize::Letter},
                {QStringLiteral("legal"), QPageSize::Legal}};
            const auto it = sizes.constFind(size.toLower());
            if (it == sizes.constEnd())
                fail(QStringLiteral("unknown page size \"%1\" (A3, A4, A5, Letter, Legal, or width and height)").arg(size));
            const QSizeF mm = QPageSize::size(*it, QPageSize::Millimeter);
            m_t.pageWidth = mm.width();
            m_t.pageHeight = mm.height();
        }
        m_t.pageWidth = number(QStringLiteral("width"), m_t.pageWidth);
        m_t.pageHeight = number(QStringLiteral("height"), m_t.pageHeight);
        const QString o = attr(QStringLiteral("orientation")).trimmed().toLower();
        if (!o.isEmpty() && o != QLatin1String("portrait") && o != QLatin1String("landscape"))
            fail(QStringLiteral("orientation must be portrait or landscape"));
        m_t.landscape = o == QLatin1String("landscape");
        const double all = number(QStringLiteral("margin"), 10);
        m_t.marginLeft = number(QStringLiteral("left"), all);
        m_t.marginRight = number(QStringLiteral("right"), all);
        m_t.marginTop = number(QStringLiteral("top"), all);
        m_t.marginBottom = number(QStringLiteral("bottom"), all);
        if (m_t.pageWidth < 20 || m_t.pageHeight < 20)
            fail(QStringLiteral("the page must be at least 20 mm each way"));
        if (m_t.contentWidth() <= 5 || bodyHeight() <= 5)
            fail(QStringLiteral("the margins leave no room on the page"));
        skip();
    }

    FontDefinition readFont()
    {
        FontDefinition f;
        f.family = attr(QStringLiteral("font"));
        if (has(QStringLiteral("size"))) {
            f.size = number(QStringLiteral("size"), 9);
            if (f.size < 3 || f.size > 96)
                fail(QStringLiteral("font size %1 is out of range (3 to 96 points)").arg(f.size));
        }
        if (has(QStringLiteral("bold")))
            f.bold = flag(QStringLiteral("bold"), false) ? 1 : 0;
        if (has(QStringLiteral("italic")))
            f.italic = flag(QStringLiteral("italic"), false) ? 1 : 0;
        return f;
    }

    void readFontElement(FontDefinition &into)
    {
        if (has(QStringLiteral("family")))
            into.family = attr(QStringLiteral("family"));
        const FontDefinition f = readFont();
        if (f.size > 0)
            into.size = f.size;
        if (f.bold >= 0)
            into.bold = f.bold;
        if (f.italic >= 0)
            into.italic = f.italic;
        skip();
    }

    void readData()
    {
        m_t.source = attr(QStringLiteral("source")).trimmed();
        bool known = false;
        for (const QString &s : knownSources())
            if (s.compare(m_t.source, Qt::CaseInsensitive) == 0) {
                m_t.source = s;
                known = true;
            }
        if (!known)
            fail(QStringLiteral("unknown data source \"%1\"; it must be one of %2").arg(m_t.source, knownSources().join(QStringLiteral(", "))));
        const QString nulls = attr(QStringLiteral("nulls")).trimmed().toLower();
        if (!nulls.isEmpty() && nulls != QLatin1String("default") && nulls != QLatin1String("null"))
            fail(QStringLiteral("nulls must be \"default\" or \"null\""));
        m_t.nullsAsDefault = nulls == QLatin1String("default");
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != QLatin1String("join"))
                fail(QStringLiteral("unknown element <%1> in <data>").arg(m_xml.name().toString()));
            Join j{attr(QStringLiteral("table")).trimmed(), attr(QStringLiteral("field")).trimmed(), attr(QStringLiteral("to")).trimmed()};
            // The customers' table itself may be joined too: its view can't be read by key from a join.
            const bool tabella = knownSources().contains(j.table, Qt::CaseInsensitive) || j.table.compare(QLatin1String("Clienti"), Qt::CaseInsensitive) == 0;
            if (!tabella || j.field.isEmpty() || j.to.isEmpty())
                fail(QStringLiteral("a <join> needs a known table, a field of the source and the column it matches (to)"));
            m_t.joins << j;
            skip();
        }
    }

    void readLookup()
    {
        const QString table = attr(QStringLiteral("table")).trimmed();
        static const QRegularExpression ident(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
        if (!ident.match(table).hasMatch())
            fail(QStringLiteral("a <lookup> needs the name of a table"));
        m_t.lookups << Lookup{table, line()};
        skip();
    }

    QString formulaText()
    {
        // The default value stands in `default`, a computation in the element's text.
        const QString def = attr(QStringLiteral("default"));
        const bool hasDefault = has(QStringLiteral("default"));
        const QString body = m_xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement).trimmed();
        if (hasDefault && !body.isEmpty())
            fail(QStringLiteral("a formula has either a default or a text, not both"));
        return hasDefault ? def : body;
    }

    void readFormula()
    {
        FormulaDef f;
        f.line = line();
        f.name = attr(QStringLiteral("name")).trimmed();
        if (f.name.isEmpty())
            fail(QStringLiteral("a <formula> has no name"));
        f.text = formulaText();
        m_t.formulas << f;
    }

    void readVariable()
    {
        Variable v;
        v.line = line();
        v.name = attr(QStringLiteral("name")).trimmed();
        v.function = attr(QStringLiteral("function")).trimmed().toLower();
        if (v.function.isEmpty())
            v.function = QStringLiteral("sum");
        static const QStringList functions{QStringLiteral("sum"), QStringLiteral("count"), QStringLiteral("min"),
                                           QStringLiteral("max"), QStringLiteral("average")};
        if (!functions.contains(v.function))
            fail(QStringLiteral("unknown function \"%1\" of a variable (sum, count, min, max, average)").arg(v.function));
        v.value = attr(QStringLiteral("value"));
        v.start = attr(QStringLiteral("start"));
        v.reset = attr(QStringLiteral("reset")).trimmed();
        v.when = attr(QStringLiteral("when"));
        if (v.reset.isEmpty())
            v.reset = QStringLiteral("report");
        if (v.name.isEmpty() || (v.value.trimmed().isEmpty() && v.function != QLatin1String("count")))
            fail(QStringLiteral("a <variable> needs a name and a value"));
        m_t.variables << v;
        skip();
    }

    bool descending()
    {
        const QString o = attr(QStringLiteral("order")).trimmed().toLower();
        if (o.isEmpty() || o == QLatin1String("ascending"))
            return false;
        if (o == QLatin1String("descending"))
            return true;
        fail(QStringLiteral("order must be ascending or descending"));
    }

    void readSort()
    {
        Sort s{attr(QStringLiteral("field")), descending()};
        if (s.field.trimmed().isEmpty())
            fail(QStringLiteral("a <sort> needs a field"));
        m_t.sorts << s;
        skip();
    }

    Interval interval()
    {
        const QString i = attr(QStringLiteral("interval")).trimmed().toLower();
        if (i.isEmpty())
            return Interval::None;
        static const QHash<QString, Interval> map{{QStringLiteral("day"), Interval::Day},
                                                  {QStringLiteral("month"), Interval::Month},
                                                  {QStringLiteral("year"), Interval::Year},
                                                  {QStringLiteral("hour"), Interval::Hour},
                                                  {QStringLiteral("hourofday"), Interval::HourOfDay}};
        const auto it = map.constFind(i);
        if (it == map.constEnd())
            fail(QStringLiteral("unknown interval \"%1\" (day, month, year, hour, hourOfDay)").arg(i));
        return *it;
    }

    void readGroup()
    {
        Group g;
        g.line = line();
        g.name = attr(QStringLiteral("name")).trimmed();
        g.by = attr(QStringLiteral("by"));
        g.interval = interval();
        g.descending = descending();
        if (g.name.isEmpty() || g.by.trimmed().isEmpty())
            fail(QStringLiteral("a <group> needs a name and a field or formula to group by"));
        const int index = int(m_t.groups.size());
        m_t.groups << g;
        while (m_xml.readNextStartElement()) {
            const QString el = m_xml.name().toString();
            if (el == QLatin1String("header"))
                m_t.sections << readSection(SectionKind::GroupHeader, index);
            else if (el == QLatin1String("footer"))
                m_t.sections << readSection(SectionKind::GroupFooter, index);
            else
                fail(QStringLiteral("unknown element <%1> in <group>").arg(el));
        }
    }

    SectionKind sectionKind(const QString &type)
    {
        static const QHash<QString, SectionKind> map{{QStringLiteral("reportheader"), SectionKind::ReportHeader},
                                                     {QStringLiteral("pageheader"), SectionKind::PageHeader},
                                                     {QStringLiteral("detail"), SectionKind::Detail},
                                                     {QStringLiteral("reportfooter"), SectionKind::ReportFooter},
                                                     {QStringLiteral("pagefooter"), SectionKind::PageFooter}};
        const auto it = map.constFind(type.trimmed().toLower());
        if (it == map.constEnd())
            fail(QStringLiteral("unknown section type \"%1\" (reportHeader, pageHeader, detail, reportFooter, pageFooter)").arg(type));
        return *it;
    }

    Section readSection(SectionKind kind, int group)
    {
        Section s;
        s.kind = kind;
        s.group = group;
        s.line = line();
        s.name = attr(QStringLiteral("name")).trimmed();
        s.height = number(QStringLiteral("height"), 5);
        if (s.height < 0 || s.height > 1000)
            fail(QStringLiteral("section height out of range"));
        s.suppress = attr(QStringLiteral("suppress"));
        s.newPageBefore = flag(QStringLiteral("newPageBefore"), false);
        s.keepWithNext = flag(QStringLiteral("keepWithNext"), kind == SectionKind::GroupHeader);
        s.fill = color(QStringLiteral("fill"), QColor());
        while (m_xml.readNextStartElement()) {
            // Each item is drawn for every row of its section: a template of this program has some dozens.
            if (++m_items > MaxItems)
                fail(QStringLiteral("the template has more than %1 items").arg(MaxItems));
            s.items << readItem(s);
        }
        return s;
    }

    Format format()
    {
        const QString f = attr(QStringLiteral("format")).trimmed().toLower();
        if (f.isEmpty())
            return Format::Auto;
        static const QHash<QString, Format> map{
            {QStringLiteral("text"), Format::Text},       {QStringLiteral("date"), Format::Date},
            {QStringLiteral("datetime"), Format::DateTime}, {QStringLiteral("time"), Format::Time},
            {QStringLiteral("money"), Format::Money},     {QStringLiteral("number"), Format::Number},
            {QStringLiteral("integer"), Format::Integer}, {QStringLiteral("boolean"), Format::Boolean},
            {QStringLiteral("hours"), Format::Hours},     {QStringLiteral("month"), Format::Month},
            {QStringLiteral("hourofday"), Format::HourOfDay}};
        const auto it = map.constFind(f);
        if (it == map.constEnd())
            fail(QStringLiteral("unknown format \"%1\"").arg(f));
        return *it;
    }

    Qt::Alignment alignment(Qt::Alignment fallback)
    {
        const QString a = attr(QStringLiteral("align")).trimmed().toLower();
        if (a.isEmpty())
            return fallback;
        if (a == QLatin1String("left"))
            return Qt::AlignLeft | Qt::AlignVCenter;
        if (a == QLatin1String("right"))
            return Qt::AlignRight | Qt::AlignVCenter;
        if (a == QLatin1String("center"))
            return Qt::AlignHCenter | Qt::AlignVCenter;
        fail(QStringLiteral("align must be left, center or right"));
    }

    Item readItem(const Section &s)
    {
        Item it;
        it.line = line();
        const QString el = m_xml.name().toString();
        it.name = attr(QStringLiteral("name")).trimmed();
        it.suppress = attr(QStringLiteral("suppress"));
        it.font = readFont();
        it.color = color(QStringLiteral("color"), Qt::black);
        it.fill = color(QStringLiteral("fill"), QColor());
        const double x = number(QStringLiteral("x"), 0), y = number(QStringLiteral("y"), 0);
        const double w = number(QStringLiteral("width"), m_t.contentWidth() - x);
        const double h = number(QStringLiteral("height"), s.height - y);
        it.rect = QRectF(x, y, w, h);
        if (el == QLatin1String("text")) {
            it.kind = ItemKind::Text;
            it.align = alignment(it.align);
            it.wrap = flag(QStringLiteral("wrap"), false);
            it.text = m_xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        } else if (el == QLatin1String("field")) {
            it.kind = ItemKind::Field;
            it.value = attr(QStringLiteral("value"));
            it.group = attr(QStringLiteral("group")).trimmed();
            it.since = attr(QStringLiteral("since"));
            it.format = format();
            it.decimals = int(number(QStringLiteral("decimals"), 2));
            it.trueText = has(QStringLiteral("true")) ? attr(QStringLiteral("true")) : QStringLiteral("✓");
            it.falseText = attr(QStringLiteral("false"));
            it.wrap = flag(QStringLiteral("wrap"), false);
            const bool numeric = it.format == Format::Money || it.format == Format::Number || it.format == Format::Integer ||
                                 it.format == Format::Hours;
            it.align = alignment(numeric ? Qt::AlignRight | Qt::AlignVCenter : it.align);
            if (it.value.trimmed().isEmpty() == it.group.isEmpty())
                fail(QStringLiteral("a <field> shows either a value or a group's key"));
            if (it.format == Format::Hours && it.since.trimmed().isEmpty())
                fail(QStringLiteral("a field in hours needs the start of the span (since)"));
            skip();
        } else if (el == QLatin1String("line")) {
            it.kind = ItemKind::Line;
            const double x2 = number(QStringLiteral("x2"), x + (has(QStringLiteral("width")) ? w : (has(QStringLiteral("y2")) ? 0 : w)));
            const double y2 = number(QStringLiteral("y2"), y);
            it.rect = QRectF(QPointF(x, y), QPointF(x2, y2));
            it.penWidth = number(QStringLiteral("thickness"), 0.25);
            skip();
        } else if (el == QLatin1String("box")) {
            it.kind = ItemKind::Box;
            it.penWidth = number(QStringLiteral("thickness"), 0.25);
            skip();
        } else if (el == QLatin1String("graph")) {
            readGraph(it, s);
        } else {
            fail(QStringLiteral("unknown element <%1> in a section").arg(el));
        }
        if (it.kind != ItemKind::Line && (it.rect.width() <= 0 || it.rect.height() <= 0))
            fail(QStringLiteral("<%1> has no room (width and height must be above 0)").arg(el));
        return it;
    }

    void readGraph(Item &it, const Section &s)
    {
        if (s.kind == SectionKind::Detail || s.kind == SectionKind::PageHeader || s.kind == SectionKind::PageFooter)
            fail(QStringLiteral("a graph stands in a report or group header or footer"));
        it.kind = ItemKind::Graph;
        it.graphType = attr(QStringLiteral("type")).trimmed().toLower();
        if (it.graphType.isEmpty())
            it.graphType = QStringLiteral("bar");
        if (it.graphType != QLatin1String("bar") && it.graphType != QLatin1String("hbar") && it.graphType != QLatin1String("line"))
            fail(QStringLiteral("a graph is of type bar, hbar or line"));
        it.by = attr(QStringLiteral("by"));
        if (it.by.trimmed().isEmpty())
            fail(QStringLiteral("a graph needs the field or formula of its buckets (by)"));
        it.interval = interval();
        it.number = attr(QStringLiteral("number")).trimmed();
        it.texts = QStringList{attr(QStringLiteral("title")), attr(QStringLiteral("subtitle")), attr(QStringLiteral("footnote")),
                               QString(), QString(), attr(QStringLiteral("xtitle")), attr(QStringLiteral("ytitle"))};
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != QLatin1String("series"))
                fail(QStringLiteral("unknown element <%1> in <graph>").arg(m_xml.name().toString()));
            Series se;
            se.value = attr(QStringLiteral("value"));
            se.function = attr(QStringLiteral("function")).trimmed().toLower();
            if (se.function.isEmpty())
                se.function = se.value.trimmed().isEmpty() ? QStringLiteral("count") : QStringLiteral("sum");
            static const QStringList functions{QStringLiteral("count"), QStringLiteral("sum"), QStringLiteral("last"),
                                               QStringLiteral("min"), QStringLiteral("max"), QStringLiteral("average")};
            if (!functions.contains(se.function))
                fail(QStringLiteral("unknown function \"%1\" of a series").arg(se.function));
            if (se.function != QLatin1String("count") && se.value.trimmed().isEmpty())
                fail(QStringLiteral("a series needs a value"));
            se.label = attr(QStringLiteral("label"));
            it.series << se;
            skip();
        }
        if (it.series.isEmpty())
            it.series << Series{};
    }

    double bodyHeight() const
    {
        return (m_t.landscape ? m_t.pageWidth : m_t.pageHeight) - m_t.marginTop - m_t.marginBottom;
    }

    // Every band must fit on a page beside the page's own header and footer: one that
    // doesn't would take a page of its own for each row, thousands of pages for a long list.
    void checkRoom()
    {
        double room = bodyHeight();
        for (const Section &s : m_t.sections)
            if (s.kind == SectionKind::PageHeader || s.kind == SectionKind::PageFooter)
                room -= s.height;
        for (const Section &s : m_t.sections)
            if (s.kind != SectionKind::PageHeader && s.kind != SectionKind::PageFooter && s.height > room)
                failAt(s.line, QStringLiteral("the section is %1 mm high, but a page leaves only %2 mm between its margins, "
                                              "header and footer")
                                   .arg(s.height)
                                   .arg(std::max(room, 0.0)));
    }

    void checkNames()
    {
        QSet<QString> names;
        auto unique = [&](const QString &n, int at) {
            if (names.contains(n.toLower()))
                failAt(at, QStringLiteral("the name \"%1\" is given twice").arg(n));
            names.insert(n.toLower());
        };
        for (const FormulaDef &f : m_t.formulas)
            unique(f.name, f.line);
        for (const Variable &v : m_t.variables)
            unique(v.name, v.line);
        QSet<QString> groups;
        for (const Group &g : m_t.groups)
        {
            if (groups.contains(g.name.toLower()))
                failAt(g.line, QStringLiteral("two groups are named \"%1\"").arg(g.name));
            groups.insert(g.name.toLower());
        }
        for (const Variable &v : m_t.variables)
            if (v.reset.compare(QLatin1String("report"), Qt::CaseInsensitive) != 0 &&
                v.reset.compare(QLatin1String("page"), Qt::CaseInsensitive) != 0 && !groups.contains(v.reset.toLower()))
                failAt(v.line, QStringLiteral("variable %1 is reset by \"%2\", which is neither report, page nor a group").arg(v.name, v.reset));
        for (const Section &s : m_t.sections)
            for (const Item &it : s.items)
                if (!it.group.isEmpty() && !groups.contains(it.group.toLower()))
                    failAt(it.line, QStringLiteral("the field shows the key of group \"%1\", which the template doesn't have").arg(it.group));
    }

    static constexpr int MaxItems = 500;

    QXmlStreamReader m_xml;
    QString m_name;
    Template m_t;
    int m_items = 0;
};

} // namespace

Template parseTemplate(const QByteArray &xml, const QString &name)
{
    return Reader(xml, name).read();
}

Template loadTemplate(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    QFile f(path);
    if (path.trimmed().isEmpty())
        throw TemplateError(QStringLiteral("No report template was named."));
    if (!f.exists())
        throw TemplateError(QStringLiteral("The report template %1 is missing (looked for %2).").arg(name, QFileInfo(path).absoluteFilePath()));
    if (!f.open(QIODevice::ReadOnly))
        throw TemplateError(QStringLiteral("The report template %1 can't be read: %2.").arg(name, f.errorString()));
    // The templates of the program are a few kilobytes; a file far beyond that is no template of it.
    constexpr qint64 MaxBytes = qint64(1) << 20;
    if (f.size() > MaxBytes)
        throw TemplateError(QStringLiteral("The report template %1 is %2 KB, too large to be a template (at most %3 KB).")
                                .arg(name)
                                .arg(f.size() >> 10)
                                .arg(MaxBytes >> 10));
    return parseTemplate(f.readAll(), name);
}

} // namespace reports::tpl
