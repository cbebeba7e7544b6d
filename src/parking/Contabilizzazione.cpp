// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/Contabilizzazione.h"

#include "customers/LibroCassa.h"
#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <cmath>

namespace parking {

using frame::Prompter;
using frame::pub;
using frame::TestoLingua;
using store::Currency;

namespace {

// Out, not posted, not cancelled: the same condition for the sum and for the
// marking, so that the index on (Entrato, Annullato, Contabilizzato) serves both.
constexpr const char *DaContabilizzare = " where Entrato = 0 and Annullato = 0 and Contabilizzato = 0";

// The sum of amounts stored as ten-thousandths. An integer sum is exact; a
// row written by hand as a floating number makes SQLite sum in floating point.
Currency somma(const QVariant &v)
{
    if (v.isNull())
        return {};
    if (v.metaType().id() == QMetaType::Double)
        return Currency::fromRaw(std::llround(v.toDouble()));
    return Currency::fromRaw(v.toLongLong());
}

} // namespace

EsitoContabilizzazione ComCont(const QString &autorizzazione, Prompter &prompter, const Orologio &adesso)
{
    EsitoContabilizzazione esito;
    if (!frame::EAmministratore() && !pub().OpContabilizzare) {
        prompter.information(TestoLingua("M0058"));
        esito.fuoco = FuocoPark::Griglia;
        return esito;
    }
    // Posting rewrites movements of any author: a change with no single record at hand.
    if (!frame::AutorizzaOperazione(prompter, QStringLiteral("modifica"), autorizzazione, -1)) {
        esito.fuoco = FuocoPark::Griglia;
        return esito;
    }
    return Contabilizza(prompter, adesso);
}

EsitoContabilizzazione Contabilizza(Prompter &prompter, const Orologio &adesso)
{
    EsitoContabilizzazione esito;
    try {
        store::Database &db = frame::basedati();
        // BEGIN IMMEDIATE: nothing can post or exit between the sum and the marking.
        store::Transaction transazione(db);
        qint32 num = 0;
        Currency imp;
        {
            store::Statement st = db.prepare(QStringLiteral("select sum(Importo) as Imp, count(id) as num from Movimentazioni")
                                             + QLatin1String(DaContabilizzare));
            if (st.step()) {
                imp = somma(st.value(0));
                num = qint32(frame::NumeroONullo(st.value(1)).toLongLong());
            }
        }
        if (num < 1) {
            prompter.information(TestoLingua("M0061"));
            return esito;
        }
        esito.idCassa = customers::RegistraIncassoParcheggio(db, adesso().date(), num, imp);
        const int marcati = db.execute(QStringLiteral("update Movimentazioni set Contabilizzato = -1")
                                       + QLatin1String(DaContabilizzare));
        if (marcati != num)
            throw store::DbError(0, QStringLiteral("%1 movements summed, %2 marked").arg(num).arg(marcati));
        transazione.commit();

        esito.contabilizzato = true;
        esito.movimenti = num;
        esito.totale = imp;
        prompter.information(TestoLingua("M0059") + QLatin1Char(' ') + QString::number(num) + QLatin1Char(' ')
                             + TestoLingua("M0296"));
    } catch (const store::DbError &e) {
        esito = EsitoContabilizzazione();
        frame::MostraErrore(prompter, e.message());
    }
    return esito;
}

} // namespace parking
