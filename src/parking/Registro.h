// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <Currency.h>

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVariant>

#include <functional>

namespace frame {
class Prompter;
}
namespace store {
class Recordset;
}

namespace parking {

// The clock that stamps entries and exits; tests set their own.
using Orologio = std::function<QDateTime()>;
QDateTime OraDiSistema();

// What the parking window's detail panel holds when its action button is pressed.
struct PannelloMovimento {
    QString targa;             // TxtT(0)
    QString note;              // TxtT(1)
    QString fascia;            // TxtTC(0)
    bool fasciaNonTrovata = false; // the last look-up of TxtTC(0) in the band list found nothing
    QDate dataIngresso;        // TDBDGG
};

// Where the window puts the focus after a refusal.
enum class Fuoco { Nessuno, Targa, CodiceFascia };

// What the window must do after EntraEsce.
struct EsitoEntraEsce {
    bool scritto = false;         // the row was written
    Fuoco fuoco = Fuoco::Nessuno;
    bool collisione = false;      // number already in use: refresh the list, then Ingresso
    bool stampa = false;          // print the slip of the written movement
    bool resto = false;           // open the change calculator with `importo`
    store::Currency importo;
};

// The last number of a counter, or the highest value in use, read through
// `Condizione`. With `Aggiorna` on the counter table the counter is advanced
// by one and committed before returning the value it had. -1 after a failure,
// which is shown as M0079.
QVariant LeggiProgressivo(const QString &Tabella, const QString &Campo, const QString &Condizione,
                          const QString &Azienda, bool Aggiorna, frame::Prompter &prompter);

// Vehicles inside: entered, not cancelled.
qint32 VeicoliDentro();

// Records an entry (`Entrata`) or an exit of the movement current in `rs`, a set
// over Q_Movimentazioni_Utenti. `Variazione` corrects the current row in place:
// an entry keeps its number and year. The panel's plate is trimmed in place.
EsitoEntraEsce EntraEsce(store::Recordset &rs, bool Entrata, bool Variazione, PannelloMovimento &pannello,
                         frame::Prompter &prompter, const Orologio &adesso = OraDiSistema);

} // namespace parking
