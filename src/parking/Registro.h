// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

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
    QVariant id;               // key of the movement the boxes were filled from; invalid for a new entry
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
    bool rileggi = false;         // the row is not as shown: read the list and the panel again
};

// A movement's state as the database holds it at the moment of reading.
struct StatoMovimento {
    bool entrato = false;
    bool annullato = false;
    bool contabilizzato = false;
    int autore = -1; // IdUtente; -1 when it has none
};

// The state of the movement `id`, read from its row; nullopt when the row is gone.
std::optional<StatoMovimento> LeggeStato(const QVariant &id);

// Whether `rs` stands on a row.
bool RigaCorrente(store::Recordset &rs);

// Whether the panel's boxes were filled from the row current in `rs`: only
// then may a write to that row take what they hold.
bool PannelloDellaRiga(store::Recordset &rs, const PannelloMovimento &pannello);

// The last number of a counter, or the highest value in use, read through
// `Condizione`, whose '?' marks take `Parametri`. With `Aggiorna` on the counter
// table the counter is advanced by one and committed before returning the value
// it had. -1 after a failure, which is shown as M0079.
QVariant LeggiProgressivo(const QString &Tabella, const QString &Campo, const QString &Condizione,
                          const QString &Azienda, bool Aggiorna, frame::Prompter &prompter,
                          const QVariantList &Parametri = {});

// Vehicles inside: entered, not cancelled.
qint32 VeicoliDentro();

// Records an entry (`Entrata`) or an exit of the movement current in `rs`, a set
// over Q_Movimentazioni_Utenti. `Variazione` corrects the current row in place:
// an entry keeps its number and year. The panel's plate is trimmed in place.
// Writing to an existing row needs a panel filled from that row, and a row
// whose stored state still allows the write, read in the write's transaction.
EsitoEntraEsce EntraEsce(store::Recordset &rs, bool Entrata, bool Variazione, PannelloMovimento &pannello,
                         frame::Prompter &prompter, const Orologio &adesso = OraDiSistema);

} // namespace parking
