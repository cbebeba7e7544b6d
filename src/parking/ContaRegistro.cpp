// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/ContaRegistro.h"

#include "parking/Ricerca.h"

#include "store/Database.h"
#include "store/Schema.h"

namespace parking {

namespace {

constexpr qint64 Blocco = 4096; // ids per row of the counts, as the triggers group them

} // namespace

store::RowCounter ContatoreRegistro(store::Database &db, OpzioneElenco opzione)
{
    // The option's condition on the state; yes/no fields store -1 and 0.
    const QString stato = opzione == OpzioneElenco::Dentro ? QStringLiteral(" and Entrato = -1")
                        : opzione == OpzioneElenco::Usciti ? QStringLiteral(" and Entrato = 0")
                                                           : QString();
    store::RowCounter c;
    // Checked at each use: a restore may have put back a file made before the counts.
    c.total = [&db, stato] {
        store::Schema::upgradeRegister(db);
        return db.scalar(QStringLiteral("select coalesce(sum(Righe), 0) from ConteggiMovimenti where 1") + stato).toLongLong();
    };
    c.before = [&db, stato](const QVariant &chiave) -> std::optional<qint64> {
        store::Schema::upgradeRegister(db);
        store::Statement riga = db.prepare(QStringLiteral("select Anno from Movimentazioni where id = ?") + stato);
        riga.bindAll({chiave});
        if (!riga.step())
            return std::nullopt;
        const QVariant anno = riga.value(0);
        const qint64 id = chiave.toLongLong();
        const qint64 blocco = id / Blocco;
        // Whole blocks of the years before and of its own year, then its own block by rows.
        // Years without a value come first, as the list orders them.
        const QString prima = anno.isNull() ? QStringLiteral("Anno is null and Blocco < ?")
                                            : QStringLiteral("(Anno is null or Anno < ? or (Anno = ? and Blocco < ?))");
        const QVariantList perBlocchi = anno.isNull() ? QVariantList{blocco} : QVariantList{anno, anno, blocco};
        const qint64 blocchi =
            db.scalar(QStringLiteral("select coalesce(sum(Righe), 0) from ConteggiMovimenti where ") + prima + stato, perBlocchi)
                .toLongLong();
        const qint64 righe = db.scalar(QStringLiteral("select count(*) from Movimentazioni where id >= ? and id < ? and Anno is ?") + stato,
                                       {blocco * Blocco, id, anno})
                                 .toLongLong();
        return blocchi + righe;
    };
    c.at = [&db, stato](qint64 posizione) -> QVariant {
        store::Schema::upgradeRegister(db);
        // The block that holds it, by the counts in the list's order; then its row there.
        store::Statement blocchi = db.prepare(QStringLiteral("select Anno, Blocco, sum(Righe) from ConteggiMovimenti where 1") + stato
                                              + QStringLiteral(" group by Anno, Blocco order by Anno, Blocco"));
        qint64 prima = 0;
        while (posizione >= 0 && blocchi.step()) {
            const qint64 righe = blocchi.value(2).toLongLong();
            if (posizione < prima + righe) {
                const qint64 blocco = blocchi.value(1).toLongLong();
                return db.scalar(QStringLiteral("select id from Movimentazioni where id >= ? and id < ? and Anno is ?") + stato
                                     + QStringLiteral(" order by id limit 1 offset ?"),
                                 {blocco * Blocco, (blocco + 1) * Blocco, blocchi.value(0), posizione - prima});
            }
            prima += righe;
        }
        return {};
    };
    return c;
}

} // namespace parking
