// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <QStringList>

namespace store {
class Database;
}

namespace bench {

struct Volume {
    int movimenti = 1000000;
    int clienti = 10000;
    int anni = 5;          // fiscal years, the last one current
    int ultimoAnno = 2026;
};

// Writes a working database at `path` (replacing it) with the delivered rows,
// `v.movimenti` movements spread over the years in every state, and customers
// with cash rows. Deterministic: the same volume gives the same file.
void GeneraBasedati(const QString &path, const Volume &v);

// The registry and the cash book of a busy desk, for the cash-book benchmarks.
struct VolumeClienti {
    int clienti = 100000; // customers and suppliers, about 30% suppliers
    int righe = 1000000;  // cash rows over the fiscal year
    int anno = 2026;
};

// Adds to the open working database `db` the customers and suppliers of `v`
// (names and places with accents and apostrophes, plates, places, fees,
// deadlines, some fields empty) and the cash rows: fees, refunds, suppliers'
// invoices and the parking takings of no customer, day by day over the year
// with some rows entered late, nulls among the amounts. Deterministic.
void GeneraClientiCassa(store::Database &db, const VolumeClienti &v);

// The path of the cash-book benchmark database: `argomento` when given, else
// bench-data/cassa.mdb in the build folder. Written first when missing.
QString BasedatiCassa(const QString &argomento, const VolumeClienti &v = {});

// The path of a benchmark database of `movimenti` movements: `argomento` when
// given, else bench-data/basedati.mdb (a million) or basedati-Nm.mdb in the
// build folder. Written first when missing.
QString BasedatiGrande(const QString &argomento, int movimenti = 1000000);

// The databases a benchmark measures: `argomento` alone when given; else the
// million movements, and ten million too when that file is there or
// VELTANO_BENCH_10M=1 asks for it (writing it takes about ten minutes).
QStringList BasiDati(const QString &argomento);

} // namespace bench
