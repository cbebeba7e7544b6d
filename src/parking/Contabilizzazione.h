// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "parking/Correzione.h"
#include "parking/Registro.h"

#include "store/Currency.h"

#include <QString>

namespace frame {
class Prompter;
}

namespace parking {

// What a posting did, and where the parking window puts the focus.
struct EsitoContabilizzazione {
    bool contabilizzato = false;  // a cash row was written and its movements marked
    qint32 movimenti = 0;         // movements posted
    store::Currency totale;       // their exact sum, as the cash row holds it (rounded to a double)
    qint64 idCassa = -1;          // the new row of Cassa
    FuocoPark fuoco = FuocoPark::Nessuno;
};

// The posting button: the right to post, the tag's letter, then Contabilizza.
// One press posts: there is no question.
EsitoContabilizzazione ComCont(const QString &autorizzazione, frame::Prompter &prompter,
                               const Orologio &adesso = OraDiSistema);

// Adds up every movement that is out, not posted and not cancelled, of any
// year, into one row of Cassa for the present fiscal year dated today, and
// marks them posted. Row and marks are written together or not at all: on a
// failure the database stays as it was and the error is shown.
EsitoContabilizzazione Contabilizza(frame::Prompter &prompter, const Orologio &adesso = OraDiSistema);

} // namespace parking
