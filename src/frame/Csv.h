// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QLocale>
#include <QString>
#include <QStringList>

#include <functional>

namespace frame {

// Lists and reports as a spreadsheet reads them: UTF-8, one header row, and the
// locale's separators: a semicolon between fields where the decimal separator
// is a comma, a comma elsewhere.
QChar SeparatoreCsv(const QLocale &locale = QLocale());
// One line: a field holding the separator, a quote or a line break is quoted,
// its quotes doubled.
QString RigaCsv(const QStringList &campi, QChar separatore);
// Writes the file whole or not at all: an existing file is replaced only when
// every row is written. `riga(i)` gives row i of `righe`. Throws FileError.
void ScriviCsv(const QString &path, const QStringList &intestazioni, qsizetype righe,
               const std::function<QStringList(qsizetype)> &riga);

} // namespace frame
