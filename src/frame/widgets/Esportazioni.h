// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

#include <functional>

class QToolBar;
class QWidget;

namespace frame {

// A writer of a file at a path: the text of the failure, empty when written.
using ScriveFile = std::function<QString(const QString &)>;

// Adds to a preview's toolbar the buttons that save what it shows as a PDF file
// and as a CSV file for a spreadsheet. Each asks for the file's name and tells
// its own failure over the toolbar's window: the one that opened it may be gone.
void AggiungeEsportazioni(QToolBar &bar, const QString &titolo, ScriveFile pdf, ScriveFile csv);

// Asks where to save `titolo` as CSV and writes it there; the failure is shown over `parent`.
void SalvaCsv(QWidget *parent, const QString &titolo, const ScriveFile &csv);

} // namespace frame
