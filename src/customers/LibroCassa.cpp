// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/LibroCassa.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"
#include "store/Schema.h"

#include <cmath>

namespace customers {

using store::Currency;

namespace {

// Entrata and Uscita are floating columns. Each row is taken to the nearest
// ten-thousandth, the amount it was typed as, and those whole counts add up
// exactly in a double (below 2^53, about 900 billion): the sum is exact however
// many rows it takes, where a sum of the floating amounts would gather an error
// with every row. Nulls and text count as 0; total() gives 0 for no rows.
// A customer's rows are summed from the book by its index on the customer; the
// whole book from its sums by day (CassaGiorni, kept the same way by triggers),
// a few hundred rows instead of a million.
constexpr const char *SommaCliente =
    "select total(round(Entrata * 10000)), total(round(Uscita * 10000)) from Cassa where IdCliente = ?";
constexpr const char *SommaLibro = "select total(Entrate), total(Uscite) from CassaGiorni where 1";

Currency decimillesimi(const QVariant &v)
{
    return Currency::fromRaw(std::llround(v.toDouble()));
}

// The fee as the card's box holds it: an exact amount, a number, a text typed
// with a point or a comma; anything else (null, empty, not a number) is 0.
Currency importoCanone(const QVariant &canone)
{
    if (canone.metaType() == QMetaType::fromType<Currency>())
        return canone.value<Currency>();
    Currency c;
    if (canone.metaType().id() == QMetaType::QString && Currency::parse(canone.toString(), &c))
        return c;
    const double d = frame::NumeroONullo(canone).toDouble();
    return std::isfinite(d) ? Currency::fromDouble(d) : Currency();
}

} // namespace

Somme SommeCassa(store::Database &db, const SceltaRighe &scelta)
{
    // Whole days: a row stamped with a time still belongs to its day.
    QString sql;
    QVariantList valori;
    if (scelta.cliente) {
        sql = QLatin1String(SommaCliente);
        valori << *scelta.cliente;
        if (scelta.dal) {
            sql += QStringLiteral(" and Data >= ?");
            valori << scelta.dal->startOfDay();
        }
        if (scelta.al) {
            sql += QStringLiteral(" and Data < ?");
            valori << scelta.al->addDays(1).startOfDay();
        }
    } else {
        store::Schema::upgradeCashBook(db); // a book written by an earlier version gets its days here
        sql = QLatin1String(SommaLibro);
        if (scelta.dal) {
            sql += QStringLiteral(" and Giorno >= ?");
            valori << scelta.dal->toString(Qt::ISODate);
        }
        if (scelta.al) {
            sql += QStringLiteral(" and Giorno <= ?");
            valori << scelta.al->toString(Qt::ISODate);
        }
    }
    store::Statement st = db.prepare(sql);
    st.bindAll(valori);
    Somme s;
    if (st.step()) {
        s.entrate = decimillesimi(st.value(0));
        s.uscite = decimillesimi(st.value(1));
    }
    return s;
}

Somme SaldoPrecedente(store::Database &db, const QDate &inizio, std::optional<qint64> cliente)
{
    return SommeCassa(db, {cliente, std::nullopt, inizio.addDays(-1)});
}

qint64 PagamentoCanone(store::Database &db, frame::Prompter &prompter, qint64 idCliente, const QVariant &canone,
                       const QDate &giorno)
{
    try {
        store::Transaction transazione(db);
        // The customer's key is not enforced by the file: a row of nobody would be seen nowhere.
        if (!db.scalar(QStringLiteral("select 1 from Clienti where Id = ?"), {idCliente}).isValid()) {
            prompter.message(frame::TestoLingua("M0083"), frame::Prompter::Icon::Information); // choose the customer
            return -1;
        }
        store::Recordset cassa(db, QStringLiteral("select * from Cassa where id = -1"));
        cassa.AddNew();
        cassa.setValue(QStringLiteral("Data"), giorno);
        cassa.setValue(QStringLiteral("Entrata"), importoCanone(canone).toDouble());
        cassa.setValue(QStringLiteral("Descrizione"), frame::TestoLingua("M0303")); // monthly fee payment
        CompletaRigaCliente(cassa, idCliente);
        cassa.Update();
        const qint64 id = db.lastInsertId();
        transazione.commit();
        return id;
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
        return -1;
    }
}

void CompletaRigaCliente(store::Recordset &rs, qint64 idCliente)
{
    rs.setValue(QStringLiteral("IdCliente"), idCliente);
    rs.setValue(QStringLiteral("Esercizio"), frame::pub().AnnoEsercizio);
}

qint64 RegistraIncassoParcheggio(store::Database &db, const QDate &giorno, qint32 movimenti, Currency totale)
{
    store::Recordset cassa(db, QStringLiteral("select * from Cassa where id = -1"));
    cassa.AddNew();
    cassa.setValue(QStringLiteral("Data"), giorno);
    // "Vehicles out (12 movements)"
    cassa.setValue(QStringLiteral("Descrizione"), frame::TestoLingua("M0301") + QStringLiteral(" (") + QString::number(movimenti)
                                                      + QLatin1Char(' ') + frame::TestoLingua("M0302") + QLatin1Char(')'));
    // The exact sum becomes the book's floating amount once, here.
    cassa.setValue(QStringLiteral("Entrata"), totale.toDouble());
    cassa.setValue(QStringLiteral("IdUtente"), frame::pub().IdUtenteCorrente);
    cassa.setValue(QStringLiteral("Esercizio"), frame::pub().AnnoEsercizio);
    cassa.Update();
    return db.lastInsertId();
}

} // namespace customers
