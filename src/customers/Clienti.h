// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Recordset.h"

#include <QString>
#include <QStringList>
#include <QVariantList>

namespace frame {
class Prompter;
}

namespace customers {

// The registry keeps customers and suppliers in one table; the form's mode
// tells which of them it opens with and what a save writes into `Cliente`.
enum class Modo { Clienti, Fornitori };

// An SQL source: the statement and its bound values.
struct Sorgente {
    QString sql;
    QVariantList parametri;
};

// The form's own list: the mode's records by name (and by key among equal names,
// so that a place in the list is always the same record).
Sorgente SorgenteModo(Modo modo);
// The counts of that list: its size and the record at a place, so that the form
// opens on the last record without reading all before it.
store::RowCounter ContatoreModo(store::Database &db, Modo modo);
// The letter strip: a letter lists every surname starting with it, whatever its
// case, customers and suppliers together; "Tutti" lists everything in the
// query's own order. The mode stays as it was.
Sorgente SorgenteLettera(const QString &lettera);
// The captions of the strip's buttons, "A" to "Z" and then "Tutti".
const QStringList &LettereStriscia();
constexpr int IndiceTutti = 26;

// The twenty courtesy titles of the pick list, in their order.
const QStringList &Titoli();

// The list columns of the parking block, hidden for suppliers.
const QStringList &ColonneParcheggio();

// The record's check before a save: a surname of blanks is no surname
// (M0007, and the card's first tab takes the focus).
bool ConvalidaCognome(const QString &cognome, frame::Prompter &prompter);

} // namespace customers
