// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

#include <QMap>
#include <QPageLayout>
#include <QString>
#include <QStringList>

#include <memory>

class QPagedPaintDevice;
class QPaintDevice;
class QPainter;

namespace frame {
class Prompter;
}

namespace reports {

namespace engine {
class ReportRun;
}

// The pages of one run, drawn again whenever a window asks (zoom, print).
class PagineReport {
public:
    PagineReport(std::shared_ptr<engine::ReportRun> run, QString titolo);
    const QString &titolo() const { return m_titolo; }
    QPageLayout pageLayout() const;
    int pageCount() const;
    void paint(QPainter &painter, QPagedPaintDevice &device) const;
    // Paints page `page` (from 1) alone, sized to the device's resolution: a preview shows
    // its first page without waiting for the others.
    void paintPage(QPainter &painter, QPaintDevice &device, int page) const;
    // Writes the pages as a PDF file; the text of the failure, empty when written.
    QString writePdf(const QString &path) const;
    // Writes the detail rows as a CSV file, headed by the columns' captions; the text of the failure, empty when written.
    QString writeCsv(const QString &path) const;

private:
    std::shared_ptr<engine::ReportRun> m_run;
    QString m_titolo;
};

// Who shows a run sent to the window. The windows' library gives one; the
// engine itself opens no window.
class Visore {
public:
    virtual ~Visore() = default;
    // statoFinestra 2 is maximised; zoom 0 leaves the window's own fit.
    virtual void mostra(std::shared_ptr<const PagineReport> pagine, int statoFinestra, double zoom) = 0;
};

// One section as the last run laid it out: which section, on which page, and
// the texts of its fields and text items in template order (by item name when
// the item has one). Graphs give their title and their number of buckets.
struct LaidOutSection {
    QString section;            // "reportHeader", "pageHeader", "groupHeader:<group>", "detail",
                                // "groupFooter:<group>", "reportFooter", "pageFooter"; the name when the section has one
    int page = 0;               // from 1
    QStringList texts;
    QMap<QString, QString> named;
    QStringList graphTitles;
    QList<int> graphBuckets;
};

// The report engine as the program's windows drive it: properties set one by
// one, then Action = 1 runs the report. The engine reads its rows itself from
// the database named in DataFiles(0), filters them with the selection formula,
// sorts and groups them as the template says, and draws the pages.
// Formulas, sort fields and graph texts are kept by index between runs.
class CrystalReport {
public:
    // Destination values.
    static constexpr int ToWindow = Lancio::ToWindow;   // the viewer: pages, zoom, print, save as PDF
    static constexpr int ToPrinter = Lancio::ToPrinter; // the default printer; a clear message when there is none
    static constexpr int ToFile = Lancio::ToFile;       // a PDF file at PrintFileName

    // Without a viewer, a run to the window is refused with a message.
    explicit CrystalReport(frame::Prompter &prompter, Visore *visore = nullptr);
    ~CrystalReport();
    CrystalReport(const CrystalReport &) = delete;
    CrystalReport &operator=(const CrystalReport &) = delete;

    void setReportFileName(const QString &path);
    void setConnect(const QString &connect);          // ";pwd=;PWD=quartzel" or ";PWD=quartzel"
    void setDataFiles(int index, const QString &path);
    void setSelectionFormula(const QString &formula);
    void setSortFields(int index, const QString &field); // "+{@Nominativo}", "-{Cassa.Data}"
    void setFormulas(int index, const QString &assignment); // "lbltarga='Plate'", "OmetteGrafOre=true"
    void setGraphText(int index, const QString &text);
    void setWindowTitle(const QString &title);
    void setWindowState(int state);                    // 2: maximised
    void setDestination(int destination);
    void setPrintFileName(const QString &path);        // the PDF written with ToFile
    void setDiscardSavedData(bool discard);
    void setZoom(double zoom);
    // 1 runs the report. A missing template, a formula error or a database error is
    // told through the prompter; the result is false and nothing else changes.
    bool setAction(int action);
    // Sets what the run names (the template beside the program, the working
    // database, the indices it gives) and runs it.
    bool esegui(const Lancio &lancio);

    // What the last run laid out: the number of pages and of detail rows (for tests and benchmarks).
    int lastPageCount() const;
    int lastRowCount() const;
    const QString &lastError() const;

    // When on, the next runs keep what each section printed, for lastLayout().
    // Off by default: a report of many thousands of rows should not hold its texts.
    void setKeepLayout(bool keep);
    const QList<LaidOutSection> &lastLayout() const;
    // The sections of the last layout whose name starts with `section`.
    QList<LaidOutSection> laidOut(const QString &section) const;

private:
    struct Data;
    Data *d;
};

} // namespace reports
