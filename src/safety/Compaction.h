// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"

#include <QString>

namespace safety {

// Name of the scratch copy made beside the file being compacted or repaired.
inline constexpr const char *FileAppoggio = "dataap.mdb";

// Compacts `cartella`/`file` by exporting it into a scratch copy in the same
// folder; the key comes from the connect tail (an empty tail: a file without
// key). The copy replaces the source only after it opened and its checks and
// row counts matched, so the source is never lost. False on any failure.
bool CompattaMdb(const QString &cartella, const QString &file, const QString &codaConnessione);

// At each loading of the main window: counts the starts and compacts
// locadati.mdb of the program folder every tenth, telling it on the status bar.
void compatta_locadati();

// Compaction of the working database on request, after a question (M0104...).
// Tells the outcome (M0108 or M0109); true when the file was compacted.
bool CompattazioneServizio(frame::Prompter &prompter);

// Repair of a database that cannot be used: copies every table, and of a table
// that breaks part-way every row that can still be read, into a scratch file of
// the same schema, which replaces the file only once complete. False, with the
// file left as it was, when nothing can be read (a wrong key, not a database).
bool RiparaDatabase(const QString &path, const QString &codaConnessione);

} // namespace safety
