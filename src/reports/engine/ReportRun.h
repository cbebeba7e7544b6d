// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/engine/CrystalReport.h"
#include "reports/engine/ReportTemplate.h"

#include "reports/formula/Formula.h"
#include "store/FieldKind.h"

#include <QDate>
#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QPageLayout>

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

class QPainter;
class QPagedPaintDevice;
class QPaintDevice;
struct sqlite3_stmt;

namespace store {
class Database;
}

namespace reports::engine {

// What the caller set on the engine for one run.
struct RunSettings {
    QString selection;
    QStringList sortFields;     // "+{@Nominativo}", "-{Cassa.Data}"
    QStringList formulas;       // "name=value"
    QStringList graphTexts;     // " GROUPFTR.0.0; 0; title;;;;;;y axis;"
};

// A run that can't go on; the message is for the user.
class RunError : public std::runtime_error {
public:
    explicit RunError(const QString &message) : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString &message() const { return m_message; }

private:
    QString m_message;
};

// Total order of values for sorting and grouping: null first, then booleans,
// numbers, date-times and texts (texts blind to case).
int compareValues(const Valore &a, const Valore &b);
struct ValueLess {
    bool operator()(const Valore &a, const Valore &b) const { return compareValues(a, b) < 0; }
};

// The text of a value in a field's format, dates in the user's format.
QString formatValue(const Valore &v, const tpl::Item &item);
QString formatMoney(double amount, int decimals = 2);
QString formatDate(qint64 wallMs, bool withTime);
// The bucket of a key for a group or a graph, and the bucket's caption on a graph axis.
Valore bucketOf(const Valore &key, tpl::Interval interval);
QString bucketCaption(const Valore &bucket, tpl::Interval interval);

// One run of one template: compiled formulas, the selected rows in order, and
// the walk that lays them out on pages. The walk runs twice: once to count
// pages and gather the graphs' data, once to paint.
class ReportRun final : public Ambito {
public:
    // Compiles everything against the database's columns. Throws RunError.
    ReportRun(tpl::Template t, const RunSettings &settings, store::Database &db);
    ~ReportRun() override;

    // Reads the source through one query, keeps the rows the selection
    // accepts, converting only the columns in use, and sorts them.
    void readRows(store::Database &db);
    // First pass; returns the number of pages.
    int paginate();
    // Second pass, onto a paged device whose page layout is pageLayout().
    // `keep` receives the texts of every section when given.
    void paint(QPainter &painter, QPagedPaintDevice &device, QList<LaidOutSection> *keep);
    // Paints page `page` (from 1) alone, on any device of the page's size: the walk
    // runs from the start, for the variables and groups, and stops once that page ends.
    void paintPage(QPainter &painter, QPaintDevice &device, int page);

    // The detail rows as a table, for a spreadsheet: one column for each field of
    // the detail, headed by the text drawn above it in the page or group header,
    // and one row for each detail printed, with the texts as printed.
    struct Tabella {
        QStringList intestazioni;
        std::vector<QStringList> righe;
    };
    Tabella tabella();

    int rowCount() const { return int(m_order.size()); }
    int pageCount() const { return m_pages; }
    QPageLayout pageLayout() const;
    const tpl::Template &templ() const { return m_t; }

    // Ambito
    int campo(const QString &tabella, const QString &nome) const override;
    int formula(const QString &nome) const override;

    class Row;

private:
    struct Column {
        QString name;
        store::FieldKind kind = store::FieldKind::Unknown;
    };
    struct Table {
        QString name;
        QVector<Column> columns;
        bool lookup = false;
        QVariantList lookupRow;   // lookups: the first row, as read
    };
    struct Slot {
        int table = 0, column = 0;
        bool lookup = false;
        int index = 0;            // into the row's cells, or into m_lookupValues
    };
    struct TextPart {
        QString literal;
        int special = 0;          // 0 literal, 1 formula, 2 page, 3 pages, 4 print date
        Formula formula;
    };
    struct CItem {
        const tpl::Item *item = nullptr;
        Formula suppress, value, since, by;
        QVector<Formula> series;
        QVector<TextPart> parts;
        QFont font;
        int graph = -1;           // index into m_graphs
        int group = -1;           // field showing a group's key
        std::shared_ptr<QFontMetricsF> metrics; // on the device being painted
    };
    struct CSection {
        const tpl::Section *section = nullptr;
        QString label;            // for the laid-out record
        Formula suppress;
        QVector<CItem> items;
    };
    struct Accumulator {
        double sum = 0;
        qint64 count = 0;
        Valore min, max, last;
        void add(const Valore &v);
        Valore result(const QString &function, double start = 0) const;
    };
    struct GraphBuckets {
        std::map<Valore, QVector<Accumulator>, ValueLess> buckets;
    };
    struct GraphState {
        int scope = -1;           // group index, -1 for the whole report
        const CItem *item = nullptr;
        QStringList texts;
        bool open = false;
        GraphBuckets current;
        QVector<GraphBuckets> done;   // by instance of the scope
        int instance = -1;            // instance being painted
    };
    struct VarState {
        Formula value, start, when;
        int resetGroup = -2;      // -2 report, -1 page, else the group
        Accumulator acc;
        double startValue = 0;
    };

    // Compilation.
    void readColumns(store::Database &db);
    Formula compile(const QString &text, const QString &where) const;
    void compileFormulas(const RunSettings &settings);
    void compileSections();
    CItem compileItem(const tpl::Item &item, const tpl::Section &section);
    QFont fontFor(const tpl::FontDefinition &definition) const;
    void applyGraphTexts(const QStringList &texts);
    QString pushdown(const QString &selection, QVariantList &params) const;
    Valore convert(store::FieldKind kind, sqlite3_stmt *stmt, int column) const;

    // Evaluation.
    friend class Row;
    Valore evaluateFormula(int index, const Row &row) const;
    const Valore *cells(int rowIndex) const { return rowIndex < 0 ? nullptr : m_cells.data() + size_t(rowIndex) * m_width; }

    // The walk.
    void walk(QPainter *painter, QList<LaidOutSection> *keep);
    void startPage(const Row &row, bool first);
    void endPage(const Row &row);
    bool suppressed(const Formula &f, const Row &row) const;
    void place(const CSection &s, const Row &row, double keepExtra = 0);
    void draw(const CSection &s, const Row &row, double top);
    void resetVariables(int group, const Row &row);
    void accumulate(const Row &row);
    void openGraphs(int scope);
    void closeGraphs(int scope);
    double mm(double v) const { return v * m_dotsPerMm; }
    QString itemText(const CItem &ci, const Row &row) const;
    void rigaTabella(const Row &row);
    void prepareDevice(QPaintDevice &device);

    tpl::Template m_t;
    QVector<Table> m_tables;                  // the source, its joins, then the lookups
    mutable QVector<Slot> m_slots;            // by field index of the formulas
    mutable QHash<quint64, int> m_slotOf;     // (table, column) → field index
    mutable int m_width = 0;                  // cells kept per row
    mutable QVector<Valore> m_lookupValues;

    QHash<QString, int> m_formulaNames;       // lower-case name → formula index
    QVector<Formula> m_formulas;              // template formulas, compiled
    QVector<std::optional<Valore>> m_constants; // formulas set to a plain value by the caller
    QVector<VarState> m_vars;
    int m_specialBase = 0;                    // PageNumber, TotalPageCount, PrintDate, RecordNumber follow the variables

    Formula m_selection;
    struct SortKey {
        Formula formula;
        bool descending = false;
        tpl::Interval interval = tpl::Interval::None;
    };
    QVector<SortKey> m_keys;                  // groups first, then sort fields
    QVector<CSection> m_sections;
    QVector<int> m_reportHeaders, m_pageHeaders, m_details, m_reportFooters, m_pageFooters;
    QVector<QVector<int>> m_groupHeaders, m_groupFooters;
    QVector<GraphState> m_graphs;

    // Rows.
    std::vector<Valore> m_cells;              // m_width cells per kept row
    std::vector<Valore> m_keyValues;          // m_keys.size() per kept row
    std::vector<int> m_order;

    // Walk state.
    QPainter *m_painter = nullptr;            // while the page being walked is painted
    QPainter *m_target = nullptr;             // the painter the caller gave
    QPagedPaintDevice *m_paged = nullptr;     // turns its pages while a whole run is painted
    int m_onlyPage = 0;                       // the one page painted, 0 for all
    QList<LaidOutSection> *m_keep = nullptr;
    bool m_gathering = false;                 // first pass: graphs gather their data
    double m_dotsPerMm = 1;
    double m_y = 0, m_bodyTop = 0, m_bodyBottom = 0;
    int m_page = 0, m_pages = 0, m_recordNumber = 0;
    QDate m_printDate;
    QVector<int> m_groupInstance;
    Tabella *m_tabella = nullptr;             // rows gathered by tabella()
    QVector<std::pair<int, int>> m_colonne;   // its columns: (section, item)
};

// One row as the formulas read it: the run's fields, formulas and variables.
class ReportRun::Row final : public Riga {
public:
    Row(const ReportRun &run, int rowIndex) : m_run(run), m_index(rowIndex), m_cells(run.cells(rowIndex)) {}
    Row(const ReportRun &run, const Valore *cells) : m_run(run), m_cells(cells) {}
    const Valore &campo(int indice) const override;
    Valore formula(int indice) const override;
    int index() const { return m_index; }

private:
    const ReportRun &m_run;
    int m_index = -1;
    const Valore *m_cells;
};

} // namespace reports::engine
