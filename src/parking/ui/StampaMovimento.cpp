// SPDX-License-Identifier: GPL-3.0-or-later
#include "StampaMovimento.h"

#include <CrystalReport.h>
#include <Language.h>
#include <StampeOpzioni.h>

namespace parking {

bool StampaMovimento(reports::CrystalReport &report, qint64 idMovimento, bool /*Entrata: one slip for both*/)
{
    reports::ImpostaModello(report, QStringLiteral("Movimento"));
    report.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.Id}=") + QString::number(idMovimento));
    const struct {
        const char *nome;
        const char *chiave;
    } etichette[] = {
        {"lblprogressivo", "M0291"}, {"lblingresso", "M0194"}, {"lbluscita", "M0195"},
        {"lbltarga", "M0203"}, {"lblimporto", "M0322"}, {"lblnote", "M0192"},
    };
    int n = 0;
    for (const auto &e : etichette)
        report.setFormulas(n++, QLatin1String(e.nome) + QStringLiteral("='") + frame::TestoLinguaApici(QLatin1String(e.chiave))
                                    + QLatin1Char('\''));
    report.setDiscardSavedData(true);
    report.setDestination(reports::CrystalReport::ToPrinter);
    return report.setAction(1);
}

} // namespace parking
