// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QMap>
#include <QString>

#include <initializer_list>
#include <utility>

namespace reports {

// Everything one report run sets on the engine, built by widget-free code and
// read back by tests without printing. The engine keeps formulas, sorts and
// graph texts by index between runs: a run sets only the indices it names.
struct Lancio {
    enum Destinazione { ToWindow = 0, ToPrinter = 1, ToFile = 2 };

    QString modello;                 // template name beside the program, without ".rpt"
    QString selezione;               // selection formula
    QMap<int, QString> formule;      // "lbltarga='Plate'"
    QMap<int, QString> ordinamenti;  // "+{@Nominativo}"
    QMap<int, QString> testiGrafico;
    QString titoloFinestra;
    int statoFinestra = 0;           // 2: maximised
    double zoom = 0;                 // the preview's zoom; 0 leaves the window's own fit
    int destinazione = ToWindow;
    bool svuota = false;             // the formulas and sort fields left by earlier runs are emptied first

    // The label formulas "name='text'" from language keys, from index `da` on.
    void etichette(int da, std::initializer_list<std::pair<const char *, const char *>> nomiChiavi);
};

// An amount as a number of the formula language, which reads a point as the
// decimal separator whatever the language of the desk: "1234.5", "-0.0001".
inline QString NumeroFormula(store::Currency importo)
{
    return importo.toPlainText(QLatin1Char('.'));
}

} // namespace reports
