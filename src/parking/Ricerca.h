// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDate>
#include <QString>
#include <QVariant>
#include <QVariantList>

#include "store/Recordset.h"

#include <optional>

namespace frame {
class Prompter;
}

namespace parking {

// The three option buttons of the quick search panel.
enum class OpzioneElenco {
    Dentro, // OptEn: only vehicles inside
    Usciti, // OptUs: only vehicles out
    Tutti,  // OptTu: all movements
};

// The boxes of the quick search panel PicRicRap, as the window reads them.
struct PannelloRicerca {
    QString TxtProg; // movement number
    QString anno;    // TxtTR(1), the year
    QString targa;   // TxtTR(2), a plate or its first characters
    QString data;    // TxtDR(0), the day of entry
    OpzioneElenco opzione = OpzioneElenco::Dentro;
    // Set while an option button runs the search, so that a change of option
    // never shows a not-found message.
    bool RicercaSilenziosa = false;
};

// A source for the list and the detail panel: SQL with its bound values, and
// over the whole register the counts that place a row without reading the list.
struct SorgenteElenco {
    QString sql;
    QVariantList parametri;
    store::RowCounter contatore;
};

// Where the window puts the focus after a search (if that control is visible).
enum class FuocoRicerca {
    Nessuno,
    Data,        // TxtDR(0)
    Progressivo, // TxtProg
    Griglia,     // TDBGrid2
};

// What the window must do after a quick search.
struct EsitoRicerca {
    bool eseguita = false;   // false: a bad date or a database error; the list is unchanged
    SorgenteElenco elenco;   // the list's new source, to open and refresh
    bool vuoto = true;       // the new source has no rows
    QVariant chiave;         // id of the row to make current; invalid: stay on the first row
    QString messaggio;       // the text that was shown, empty when none
    FuocoRicerca fuoco = FuocoRicerca::Nessuno;
    bool contaRecord = false; // run the record count display
};

// What the window must do after a click on an option button.
struct EsitoOpzione {
    QString LblAuto; // the count line
    EsitoRicerca ricerca;
};

// The source the window opens on: no row, so nothing is selected until a search runs.
SorgenteElenco SorgenteIniziale();

// The list of one option, over a whole day of entry when `giorno` is valid,
// ordered by year and id.
SorgenteElenco ElencoMovimenti(OpzioneElenco opzione, const QDate &giorno = QDate());

// The count line LblAuto for an option: the vehicles inside for OptEn, a caption otherwise.
QString RigaConteggio(OpzioneElenco opzione);


// The quick search. The boxes are trimmed in place. First stage: the date and
// the option choose the list. Second stage: the number, year and plate pick
// the first matching row inside it. Messages go through the prompter: M0008
// for a bad date, M0077 (with `CercaRiga`) or M0078 (without) for no result,
// none while `RicercaSilenziosa` is set.
EsitoRicerca RicercaRapida(PannelloRicerca &pannello, bool CercaRiga, frame::Prompter &prompter);

// An option button: chooses the option, sets the count line and runs the
// search with RicercaSilenziosa set for its duration.
EsitoOpzione ScegliOpzione(PannelloRicerca &pannello, OpzioneElenco opzione, frame::Prompter &prompter);

// "refresh" on the panel: empties the number and the plate, sets the year to
// AnnoEsercizio, keeps the date.
void AzzeraRicerca(PannelloRicerca &pannello);

// Makes the row with id `chiave` current in a set opened on an EsitoRicerca's
// source. False, with the set left where it was, when the row isn't there.
bool PosizionaSu(store::Recordset &rs, const QVariant &chiave);

} // namespace parking
