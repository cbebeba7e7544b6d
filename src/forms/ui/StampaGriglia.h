// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QPageLayout>
#include <QString>
#include <QStringList>
#include <QVector>

class QPagedPaintDevice;
class QTableView;
class QWidget;

namespace forms {

// The print of a list as it stands: its visible columns in their order, with
// their captions and widths in proportion, and every row of the list in its
// order, page after page, each page headed by the captions. The model loads
// lazily: the whole list is read when the print is made.
class StampaGriglia final {
public:
    StampaGriglia(QTableView &griglia, QString titolo);

    int righe() const;
    // The width of the printed columns on screen, in pixels.
    int larghezzaSchermo() const;
    const QStringList &intestazioni() const { return m_intestazioni; }
    // The texts of row `r` as they are printed.
    QStringList riga(int r) const;
    // Rows that fit on a page of `dispositivo` under the heading.
    int righePerPagina(QPagedPaintDevice &dispositivo) const;
    // Draws every page; gives the number of pages.
    int stampa(QPagedPaintDevice &dispositivo) const;
    // The list as a PDF file, or as a CSV file of its captions and texts: the
    // text of the failure, empty when written.
    QString scriviPdf(const QString &path) const;
    QString scriviCsv(const QString &path) const;

    // Across the sheet when the list is wider than a portrait page of `dispositivo`.
    QPageLayout::Orientation orientamento(QPagedPaintDevice &dispositivo) const;

private:
    QTableView &m_griglia;
    QString m_titolo;
    QVector<int> m_colonne; // logical columns, in the order shown
    QStringList m_intestazioni;
};

// Opens the print preview of the list; paper, PDF or CSV from there.
void AnteprimaGriglia(QTableView &griglia, const QString &titolo, QWidget *parent);
// Asks for a file and saves the list there as CSV.
void CsvGriglia(QTableView &griglia, const QString &titolo, QWidget *parent);

} // namespace forms
