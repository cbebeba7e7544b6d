// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QDate>
#include <QVariant>

#include <optional>

namespace frame {
class Prompter;
}
namespace store {
class Database;
class Recordset;
}

// The cash book (table Cassa): every row written into it and every balance
// taken from it. There is no stored running balance; each sum is made when asked.
// The back colour of a row, shared with the table editor, is forms::ColoreCassa.
namespace customers {

// Receipts (Entrata) and payments (Uscita) of a set of rows, nulls counting as 0.
struct Somme {
    store::Currency entrate;
    store::Currency uscite;
    store::Currency saldo() const { return entrate - uscite; }
    bool operator==(const Somme &) const = default;
};

// Which rows a sum takes: one customer's or the whole book's (rows with no
// customer too), dated from `dal` to `al`, both days included; an end left
// empty is open.
struct SceltaRighe {
    std::optional<qint64> cliente;
    std::optional<QDate> dal;
    std::optional<QDate> al;
};

// Throws store::DbError.
Somme SommeCassa(store::Database &db, const SceltaRighe &scelta);
// What is carried into a period starting on `inizio`: the rows dated before
// that day, of one customer or (without one) of the whole book.
Somme SaldoPrecedente(store::Database &db, const QDate &inizio, std::optional<qint64> cliente = std::nullopt);

// The fee payment of a customer's card: one row dated `giorno` with the fee as
// receipt (a null, empty or non-number fee counts as 0), the text of M0303, the
// customer and the fiscal year. Returns the row's id; -1 when nothing was
// written: a customer not in Clienti (told by M0083) or a failed write (shown
// as an error), which leaves the book as it was.
qint64 PagamentoCanone(store::Database &db, frame::Prompter &prompter, qint64 idCliente, const QVariant &canone,
                       const QDate &giorno);

// What a row typed in a customer's card grid gets just before it is written:
// the customer and the fiscal year, nothing else (IdUtente stays as typed).
// Bound to the shown customer, it is the grid's completion hook
// (forms::RecordsetModel::Completa).
void CompletaRigaCliente(store::Recordset &rs, qint64 idCliente);

// The parking takings as one row of no customer, dated `giorno`, written by the
// signed-in user into the fiscal year: "M0301 (n M0302)" and the sum as
// receipt. Runs inside the caller's transaction; returns the row's id. Throws
// store::DbError.
qint64 RegistraIncassoParcheggio(store::Database &db, const QDate &giorno, qint32 movimenti, store::Currency totale);

} // namespace customers
