// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

class QTableView;

namespace frame {
class Prompter;
}

namespace forms {

// Column layouts of the list grids: order, widths and hidden columns, kept by
// name in a layout file that can hold the layouts of many grids. A column is
// known by its field name (the model's header under Qt::UserRole), or else by
// its caption, so a layout survives a change of the query's column order.

// The layout file: the program folder + `nomeFile` ("TdbLayout" when empty),
// or the same name in the user's application data folder when the program
// folder can't be written (an installed, read-only program).
QString PercorsoLayoutGriglia(const QString &nomeFile = QString());

// Adds (or replaces) the layout `nomeLayout` (the grid's objectName when empty)
// in the file; false when the file can't be written.
bool SalvaLayoutGriglia(QTableView &griglia, const QString &nomeLayout = QString(), const QString &nomeFile = QString());

// Applies the saved layout; a missing, corrupt or foreign file, or a name it
// doesn't hold, leaves the grid on its default layout and returns false.
bool CaricaLayoutGriglia(QTableView &griglia, const QString &nomeLayout = QString(), const QString &nomeFile = QString());

// Asks M0090; on OK deletes the file (M0091) and puts the grid back on its
// default layout, or says there is none (M0092). True when a file was deleted.
bool EliminaLayoutGriglia(QTableView &griglia, const QString &nomeFile, frame::Prompter &prompter);

// Every column shown, in the model's order, at the header's default width.
void LayoutPredefinitoGriglia(QTableView &griglia);

} // namespace forms
