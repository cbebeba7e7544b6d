// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/StampaMovimento.h"

namespace parking {

reports::Lancio LancioMovimento(qint64 idMovimento)
{
    reports::Lancio l;
    l.modello = QStringLiteral("Movimento");
    l.selezione = QStringLiteral("{Q_Movimentazioni_Utenti.Id}=") + QString::number(idMovimento);
    l.etichette(0, {{"lblprogressivo", "M0291"}, {"lblingresso", "M0194"}, {"lbluscita", "M0195"},
                    {"lbltarga", "M0203"}, {"lblimporto", "M0322"}, {"lblnote", "M0192"}});
    l.destinazione = reports::Lancio::ToPrinter;
    return l;
}

} // namespace parking
