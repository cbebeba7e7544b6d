// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QString>

#include <optional>

namespace parking {

// The change the attendant hands back: what the customer gave less what is due.
// Negative when the customer gives less; nothing stops that.
store::Currency CalcolaResto(store::Currency importo, store::Currency importoCliente);

// An amount as the attendant types it: blanks around it dropped, a point or a
// comma as decimal separator, at most four decimals. std::nullopt for anything
// else (letters, quotes, two separators, a text too long to be an amount).
std::optional<store::Currency> LeggeImporto(const QString &testo);

// True for a text that is no amount yet but can become one by typing on:
// "", "-", "+", ",", "12." (the box accepts these while the user types).
bool ImportoIncompleto(const QString &testo);

// The change as the calculator shows it after an amount typed in the box, or
// std::nullopt while that box holds no amount (nothing typed, or not a number).
std::optional<store::Currency> RestoDaTesto(store::Currency importo, const QString &importoCliente);

// An amount for the calculator's boxes: the regional decimal separator, two
// decimals at least and the fourth when the amount has it.
QString TestoImporto(store::Currency valore);

} // namespace parking
