// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

namespace frame {

// The steps of the entry routine that need no window, in the order it runs them.

// "mm/dd/yyyy" when the short date format of the locale in use writes the month first, else "dd/mm/yyyy".
QString FormatoDataDiSistema();
// Endpoints, colours, connect tail, system and temporary folders, `Pathdata`
// and the folders derived from it. `cartellaProgramma` is the executable's folder.
void ImpostaPercorsi(const QString &cartellaProgramma);
// `lingua` from the settings store, the list of languages, the texts, and the save.
void ImpostaLingua();
// Reads the data settings into the public state; an empty fiscal year is
// replaced by the present year and written back. A failing read is skipped.
void LeggeImpostazioniAvvio();
// An option counts as on unless it holds this language's word for "no".
bool OpzioneAttiva(const QString &valore);

} // namespace frame
