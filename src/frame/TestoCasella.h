// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDate>
#include <QString>
#include <QTime>

#include <optional>

namespace frame {

// What a box read from its text: `valida` is false when the text is no value
// of the box's kind; an empty text is valid and holds no value.
template <typename T>
struct Lettura {
    bool valida = false;
    std::optional<T> valore;
};

// A date as a user types it: the user's date order (FormatoData) with any of
// "/.- " between the parts or with none ("01112026", "011126"), or ISO.
Lettura<QDate> LeggeTestoData(const QString &testo);
// A date as every date box shows it: FormatoData with a four-digit year; "" for none.
QString TestoCasellaData(const std::optional<QDate> &data);

// A time as a user types it: "8", "830", "0830", "083015", "8.30", "08:30:15".
Lettura<QTime> LeggeTestoOra(const QString &testo);
// A time as every time box shows it, "HH:mm" or with the seconds; "" for none.
QString TestoCasellaOra(const std::optional<QTime> &ora, bool secondi);

// Whether a text, as typed so far, may still become a value: a key that makes
// this false is refused by the box.
bool PuoDiventareData(const QString &testo);
bool PuoDiventareOra(const QString &testo);
// `decimali`: a sign and one decimal separator ("." or ",") are allowed too.
bool PuoDiventareNumero(const QString &testo, bool decimali);

} // namespace frame
