// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <QStringList>

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

// The path of a benchmark database of `movimenti` movements: `argomento` when
// given, else bench-data/basedati.mdb (a million) or basedati-Nm.mdb in the
// build folder. Written first when missing.
QString BasedatiGrande(const QString &argomento, int movimenti = 1000000);

// The databases a benchmark measures: `argomento` alone when given; else the
// million movements, and ten million too when that file is there or
// VELTANO_BENCH_10M=1 asks for it (writing it takes about ten minutes).
QStringList BasiDati(const QString &argomento);

} // namespace bench
