// SPDX-License-Identifier: GPL-3.0-or-later
// What every build shares: the meaning of SANE's status codes and their messages.
#include "images/Scanner.h"

#include "frame/Language.h"

namespace images {

Scanner::Esito Scanner::esitoDaStato(int stato)
{
    // The codes are SANE_Status, fixed by the SANE standard.
    switch (stato) {
    case 0: // GOOD
        return Esito::Ok;
    case 2: // CANCELLED
        return Esito::Annullato;
    case 3:  // DEVICE_BUSY
    case 6:  // JAMMED
    case 7:  // NO_DOCS
    case 8:  // COVER_OPEN
    case 11: // ACCESS_DENIED
        return Esito::NonPronto;
    default: // UNSUPPORTED, INVAL, EOF out of place, IO_ERROR, NO_MEM, anything newer
        return Esito::Errore;
    }
}

QString Scanner::testoEsito(Esito esito)
{
    switch (esito) {
    case Esito::Ok:
        return QString();
    case Esito::NonPronto:
        return frame::TestoLingua("M0087"); // No scanner found, or the scanner is not ready.
    case Esito::Errore:
        return frame::TestoLingua("M0086"); // The image could not be acquired from the scanner.
    case Esito::Annullato:
        return frame::TestoLingua("M0088"); // Image acquisition cancelled.
    case Esito::SenzaSupporto:
        return frame::TestoLingua("M0087") + QLatin1Char('\n') + frame::TestoLingua("CAP49");
    }
    return QString();
}

} // namespace images
