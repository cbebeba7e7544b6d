// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QColor>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <stdexcept>

namespace reports::tpl {

// A template, as read from its .rpt file: the page, the data, the formulas, the
// variables, the sort, the groups and the sections with their items. Sizes are
// in millimetres, font sizes in points. Formula texts stay texts here; the
// engine compiles them against the data source.

// A template that can't be used: the message says where (line) and why.
class TemplateError : public std::runtime_error {
public:
    explicit TemplateError(const QString &message) : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString &message() const { return m_message; }

private:
    QString m_message;
};

// How a value is written on the page.
enum class Format { Auto, Text, Date, DateTime, Time, Money, Number, Integer, Boolean, Hours, Month, HourOfDay };

// How a date-time key is cut into buckets for groups and graphs.
enum class Interval { None, Day, Month, Year, Hour, HourOfDay };

struct FontDefinition {
    QString family;
    double size = 0;   // points; 0 = inherit
    int bold = -1;     // -1 inherit, 0 no, 1 yes
    int italic = -1;
};

enum class ItemKind { Text, Field, Line, Box, Graph };

struct Series {
    QString value;              // formula; empty with `count`
    QString function = QStringLiteral("count"); // count, sum, last, min, max, average
    QString label;
};

struct Item {
    ItemKind kind = ItemKind::Text;
    int line = 0;               // line of the template, for messages
    QString name;               // optional, to find a laid-out value
    QRectF rect;                // x, y, width, height (mm, from the section's top left)
    FontDefinition font;
    Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter;
    QColor color = Qt::black;
    QColor fill;                // boxes and fields; invalid = none
    double penWidth = 0.25;     // lines and box borders, mm; 0 = no border
    QString suppress;           // formula: the item is left out when true

    // Text: the literal, with {Table.Field} / {@Formula} references and %page% %pages% %printdate%.
    QString text;
    // Field: the formula of the value, or the group whose key is shown.
    QString value;
    QString group;
    QString since;              // Hours: the start of the span that ends at `value`
    Format format = Format::Auto;
    int decimals = 2;
    QString trueText, falseText;
    bool wrap = false;          // break into lines inside the rectangle

    // Graph.
    QString graphType = QStringLiteral("bar"); // bar, hbar (buckets down the side), line
    QString by;                 // formula of the bucket
    Interval interval = Interval::None;
    QVector<Series> series;
    QStringList texts;          // title, subtitle, footnote, groups, series, x axis, y axis
    QString number;             // graph number inside its section, as GraphText names it
};

enum class SectionKind { ReportHeader, PageHeader, GroupHeader, Detail, GroupFooter, ReportFooter, PageFooter };

struct Section {
    SectionKind kind = SectionKind::Detail;
    int line = 0;
    QString name;               // e.g. "GROUPFTR.0.0", the name GraphText uses
    int group = -1;             // group headers and footers: the group's index
    double height = 5;
    QString suppress;           // formula: the section is left out when true
    bool newPageBefore = false;
    bool keepWithNext = false;
    QColor fill;                // background band
    QVector<Item> items;
};

struct Group {
    QString name;
    QString by;                 // formula
    Interval interval = Interval::None;
    bool descending = false;
    int line = 0;
};

struct Sort {
    QString field;              // formula
    bool descending = false;
};

struct FormulaDef {
    QString name;
    QString text;               // formula text: the default value or the computation
    int line = 0;
};

struct Variable {
    QString name;
    QString function = QStringLiteral("sum"); // sum, count, min, max, average
    QString value;              // formula; empty with count
    QString start;              // formula of the value the variable starts from (sum)
    QString reset;              // "report", "page" or a group's name
    QString when;               // formula: only rows for which it is true count
    int line = 0;
};

struct Join {
    QString table;
    QString field;              // column of the source
    QString to;                 // column of the joined table
};

struct Lookup {
    QString table;              // read once, first row
    int line = 0;
};

struct Template {
    QString fileName;
    QString title;
    // Page, mm.
    double pageWidth = 210, pageHeight = 297;
    bool landscape = false;
    double marginLeft = 10, marginRight = 10, marginTop = 10, marginBottom = 10;
    FontDefinition font{QStringLiteral("DejaVu Sans"), 9, 0, 0};

    QString source;
    bool nullsAsDefault = false; // empty numbers read 0, empty texts '', empty yes/no false
    QVector<Join> joins;
    QVector<Lookup> lookups;
    QVector<FormulaDef> formulas;
    QVector<Variable> variables;
    QVector<Sort> sorts;
    QVector<Group> groups;
    QVector<Section> sections;  // in template order; the engine picks them by kind

    double contentWidth() const { return (landscape ? pageHeight : pageWidth) - marginLeft - marginRight; }
};

// The data sources a template may name.
const QStringList &knownSources();

// Reads and checks a template file. Throws TemplateError naming the file.
Template loadTemplate(const QString &path);
// The same from text, for the engine's tests; `name` stands for the file in messages.
Template parseTemplate(const QByteArray &xml, const QString &name);

} // namespace reports::tpl
