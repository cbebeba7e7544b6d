// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/PublicState.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

namespace frame {

// Texts of the user interface come from Language/<name>.Res beside the
// executable: lines "KEY;text", comments begin with an apostrophe.

// `Lingue` := names of the language files, in sorted order; one empty name when there are none.
void ElencaLingue();
// Reads a language file over `TestiLingua` from entry 0, growing it as needed;
// a missing file leaves the table as it was. Returns false when the file is missing.
bool CaricaFileLingua(const QString &nome);
// The parsing of a file's contents, for CaricaFileLingua and its tests.
void LeggiTestiLingua(const QByteArray &contenuto, QVector<TestoLinguaVoce> &tabella);
// Loads the file of `LinguaCorrente`, then makes Qt's own texts (dialog buttons, print
// and file windows), month names and the date order follow that language.
void CaricaLinguaCorrente();
// The locale of a language file's name ("Italian" -> it), in the machine's territory where
// the language is written there; the machine's own locale for a name Qt does not know.
QLocale LocaleLingua(const QString &nome);
// The placeholder of a date box, in the order of `FormatoData` and the letters of the language ("gg/mm/aaaa").
QString SegnapostoData();
void SalvaLingua();
// The text of a key (folded to upper case in place), trimmed; "" when absent.
QString TestoLingua(QString &chiave);
QString TestoLingua(const char *chiave);
// As TestoLingua, with apostrophes turned into backticks for report formulas.
QString TestoLinguaApici(const QString &chiave);

} // namespace frame
