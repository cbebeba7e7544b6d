// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QMap>
#include <QString>
#include <QStringList>

class QWidget;

namespace frame {
class Prompter;
}

namespace reports {

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
    static constexpr int ToWindow = 0;   // print preview: pages, zoom, print, save as PDF
    static constexpr int ToPrinter = 1;  // the default printer; a clear message when there is none
    static constexpr int ToFile = 2;     // a PDF file at PrintFileName

    explicit CrystalReport(frame::Prompter &prompter, QWidget *parent = nullptr);
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
    // 1 runs the report. A missing template, a formula error or a database error is
    // told through the prompter; the result is false and nothing else changes.
    bool setAction(int action);

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
    // The preview window of the last run to the window, while it is open.
    QWidget *previewWindow() const;

private:
    struct Data;
    Data *d;
};

} // namespace reports
