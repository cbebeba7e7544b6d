// SPDX-License-Identifier: GPL-3.0-or-later
#include "admin/Progressivi.h"

#include "store/Database.h"

namespace admin {

namespace {

// A stored balance is a Double column: a Null or a text that isn't a number is 0.
store::Currency importo(const QVariant &valore)
{
    bool ok = false;
    const double numero = valore.toDouble(&ok);
    return ok ? store::Currency::fromDouble(numero) : store::Currency();
}

} // namespace

void SalvaProgressivi(store::Database &db, const QString &anno, const Progressivi &valori)
{
    const QVariantList colonne{valori.progressivo, valori.entrata.toDouble(), valori.uscita.toDouble()};
    const QVariant rowid = db.scalar(QStringLiteral("select rowid from TabProgressivi where Anno = ? limit 1"), {anno});
    if (rowid.isValid()) {
        db.execute(QStringLiteral("update TabProgressivi set Progressivo = ?, EntrataPrecedente = ?, "
                                  "UscitaPrecedente = ? where rowid = ?"),
                   colonne + QVariantList{rowid});
        return;
    }
    db.execute(QStringLiteral("insert into TabProgressivi (Progressivo, EntrataPrecedente, UscitaPrecedente) "
                              "values (?, ?, ?)"),
               colonne);
}

std::optional<Progressivi> LeggiProgressivi(store::Database &db, const QString &anno)
{
    auto st = db.prepare(QStringLiteral("select Progressivo, EntrataPrecedente, UscitaPrecedente "
                                        "from TabProgressivi where Anno = ? limit 1"));
    st.bind(1, anno);
    if (!st.step())
        return std::nullopt;
    Progressivi p;
    bool ok = false;
    p.progressivo = st.value(0).toLongLong(&ok);
    if (!ok)
        p.progressivo = 0;
    p.entrata = importo(st.value(1));
    p.uscita = importo(st.value(2));
    return p;
}

QStringList AnniProgressivi(store::Database &db)
{
    QStringList anni;
    auto st = db.prepare(QStringLiteral("select Anno from TabProgressivi where Anno is not null order by Anno"));
    while (st.step())
        anni << st.value(0).toString();
    return anni;
}

} // namespace admin
