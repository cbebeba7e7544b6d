// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/runs/StampeElenchi.h"

#include "frame/Language.h"

namespace reports {

namespace {

struct Elenco {
    const char *codice;
    const char *modello;
    const char *selezione;
    const char *secondoOrdinamento;
    const char *titolo;
};

constexpr Elenco Elenchi[] = {
    {"C", "elencocliente", "{Q_Clienti_Utenti.Cliente}=true", "", "M0361"},
    {"F", "elencofornitore", "{Q_Clienti_Utenti.Cliente}=false", "", "M0362"},
    {"CC", "elencocliente", "{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataUltimoPagamento}<CurrentDate",
     "+{Q_Clienti_Utenti.DataUltimoPagamento}", "M0363"},
    {"CA", "elencocliente", "{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataScadenzaAssic}<CurrentDate",
     "+{Q_Clienti_Utenti.DataScadenzaAssic}", "M0364"},
};

} // namespace

Lancio LancioElenco(const QString &codice, const QString &titoloFinestra)
{
    Lancio l;
    l.modello = QStringLiteral("elencocliente");
    for (const Elenco &e : Elenchi) {
        if (codice != QLatin1String(e.codice))
            continue;
        l.modello = QLatin1String(e.modello);
        l.selezione = QLatin1String(e.selezione);
        l.ordinamenti.insert(0, QStringLiteral("+{@Nominativo}"));
        l.ordinamenti.insert(1, QLatin1String(e.secondoOrdinamento));
        l.formule.insert(0, QStringLiteral("titolo='") + frame::TestoLinguaApici(QLatin1String(e.titolo)) + QLatin1Char('\''));
    }
    l.titoloFinestra = titoloFinestra;
    l.statoFinestra = 2;
    l.etichette(1, {{"lbldescrizione", "M0210"}, {"lblmobile", "M0185"}, {"lblufficio", "M0187"}, {"lblcasa", "M0186"},
                    {"lblultimopagamento", "M0206"}, {"lblscadenzass", "M0207"}, {"lblmarca", "M0202"},
                    {"lblmodello", "M0204"}, {"lblposto", "M0201"}});
    return l;
}

} // namespace reports
