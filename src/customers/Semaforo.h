// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QColor>
#include <QDate>

#include <optional>

namespace customers {

// A deadline against today, whole dates only: still on time on its own day.
enum class Scadenza { Vuota, Scaduta, InTempo };
Scadenza StatoScadenza(const std::optional<QDate> &data, const QDate &oggi);

// One lamp of the card: its fill and the language key of its text.
struct Lampada {
    QColor colore;
    const char *chiave;
};

// The two lamps are wired crosswise to their fields: the last payment drives the
// lamp called after the insurance, and the insurance deadline the fee's lamp.
Lampada LampadaUltimoPagamento(Scadenza s); // ShpAss, LblAss
Lampada LampadaScadenzaAssic(Scadenza s);   // ShpCanone, LblCanone
// A date box's text: red for a date gone by, the window's text colour otherwise.
bool TestoRosso(Scadenza s);

} // namespace customers
