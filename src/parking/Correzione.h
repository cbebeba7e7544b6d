// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "parking/Registro.h"

#include <QString>
#include <QStringList>

namespace frame {
class Prompter;
}
namespace store {
class Recordset;
}

namespace parking {

// The control of the parking window that gets the focus after an operation.
enum class FuocoPark {
    Nessuno,
    Griglia,        // TDBGrid2, the list of movements
    StatoMovimento, // TxtT(4), the status word
    Targa,          // TxtT(0)
    CodiceFascia,   // TxtTC(0)
};

// What the parking window must do after ComMod or ComAnn.
struct EsitoCorrezione {
    bool eseguito = false;      // the movement was rewritten
    FuocoPark fuoco = FuocoPark::Nessuno;
    bool aggiorna = false;      // re-read the list and the panel (LeggeDati): after a write, or when the
                                // row or the panel was not as shown
    bool contaVeicoli = false;  // with OptEn chosen, set LblAuto to RigaVeicoliDentro()
    EsitoEntraEsce entraEsce;   // a correction's replay: print the slip, open FrmResto with its amount
};

// The two status words TxtT(4) takes, in the active language: inside (M0297), then out (M0298).
// The window offers them as a two-way choice.
QStringList ParoleStato();
// The status word of a movement.
QString ParolaStato(bool entrato);

// "Vehicles inside: n", the count line of LblAuto while OptEn is chosen.
QString RigaVeicoliDentro();

// Corrects the movement current in `rs` (a set over Q_Movimentazioni_Utenti)
// by replaying its entry or its exit with the panel as it stands, chosen by
// the status word `statoMovimento` (TxtT(4)). The row keeps its id, number and
// year; an exit is priced again up to the moment of the correction. A panel
// not filled from the current row is not written: the window is asked to show
// the row instead. `autorizzazione` is the letter in the window's tag ("" for administrator).
EsitoCorrezione ComMod(store::Recordset &rs, const QString &statoMovimento, PannelloMovimento &pannello,
                       const QString &autorizzazione, frame::Prompter &prompter,
                       const Orologio &adesso = OraDiSistema);

// Cancels the movement current in `rs`: marks it Annullato and gives it the
// signed-in user as IdUtente. The row and its number stay. Both operations
// decide on the row as stored, read again inside the transaction of their write.
EsitoCorrezione ComAnn(store::Recordset &rs, const QString &autorizzazione, frame::Prompter &prompter);

} // namespace parking
