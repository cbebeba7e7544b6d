// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace frame {
class Prompter;
}
namespace store {
class Database;
class Recordset;
}

namespace parking {

// The four numbers of a tariff band.
struct Fascia {
    store::Currency Importo;            // price of the first slice (of every slice, one-stage)
    qint64 Minuti1Frazione = 0;         // minutes of the first slice
    store::Currency ImportoSuccessivo;  // price of each further slice; zero: one-stage band
    qint64 MinutiSucFrazione = 0;       // minutes of each further slice
};

// The language key of the first fault of a band, or nullptr for a valid band.
const char *DifettoFascia(const Fascia &f);

// The stay in minute boundaries crossed: seconds of both moments dropped.
qint64 MinutiSosta(const QDateTime &ingresso, const QDateTime &uscita);

struct Importo {
    store::Currency importo;
    qint64 frazioni = 0;     // the rounded-up count of slices (of further slices, two-stage)
    bool conNota = false;    // two-stage with further slices: the amount has a note
};

// The price of a stay of `minuti` on a valid band. A one-stage band charges
// every started slice, nothing for 0 minutes; a two-stage band charges the
// first price for anything up to its first slice, then every started further slice.
Importo CalcolaTariffa(const Fascia &f, qint64 minuti);

// Number in a note: regional decimal separator, no fixed decimals.
QString TestoNumero(store::Currency valore);
QString TestoNumero(qint64 valore);
// "M0368 3; M0369 2 M0370 3", cut to 70 characters.
QString NotaImporto(const Fascia &f, const Importo &i);

// Prices the movement that `rs` is editing for exit: reads its band, tests it,
// writes Importo (and NoteImporto for a two-stage band). On a fault it cancels
// the edit, tells the user and returns false.
bool CalcolaImporto(store::Recordset &rs, store::Database &db, frame::Prompter &prompter, const QDateTime &adesso);

} // namespace parking
