// SPDX-License-Identifier: GPL-3.0-or-later
// What the register's tests share: exact amounts, a clock moved by hand, the
// window's set of movements, and rows read back as text.
#pragma once
#include "frame/Routines.h"
#include "parking/Registro.h"
#include "store/Currency.h"
#include "store/Database.h"
#include "store/Recordset.h"

#include <QStringList>

#include <memory>

namespace prova {

inline store::Currency money(const QString &text)
{
    store::Currency c;
    if (!store::Currency::parse(text, &c))
        qFatal("bad amount in test: %s", qPrintable(text));
    return c;
}

struct Clock {
    QDateTime now{QDate(2026, 3, 10), QTime(10, 0, 0)};
    parking::Orologio fn() { return [this] { return now; }; }
};

// The parking window's data source over every movement, on its first row or on the row `id`.
inline std::unique_ptr<store::Recordset> form(qint64 id = -1)
{
    auto rs = std::make_unique<store::Recordset>(frame::basedati(), QStringLiteral("select * from Q_Movimentazioni_Utenti order by id"));
    if (id < 0)
        rs->MoveFirst();
    else if (!rs->FindFirst(QStringLiteral("id"), id))
        qFatal("movement %lld not found", id);
    return rs;
}

// The panel as LeggeDati fills it from the current row.
inline parking::PannelloMovimento panel(const store::Recordset &rs)
{
    parking::PannelloMovimento p;
    p.targa = rs.value(QStringLiteral("Targa")).toString();
    p.note = rs.value(QStringLiteral("Note")).toString();
    p.fascia = rs.value(QStringLiteral("IdFascia")).toString();
    p.dataIngresso = rs.value(QStringLiteral("DataOra")).toDateTime().date();
    p.id = rs.key();
    return p;
}

// Rows of a table (or the movement `id`) as text, fields joined by '|', Null as empty.
inline QStringList dump(const QString &table, const QString &campi = QStringLiteral("*"), qint64 id = -1)
{
    QStringList rows;
    store::Statement st = frame::basedati().prepare(
        QStringLiteral("select %1 from %2 where %3 order by 1")
            .arg(campi, table, id < 0 ? QStringLiteral("1") : QStringLiteral("id = %1").arg(id)));
    while (st.step()) {
        QStringList row;
        for (int i = 0; i < st.columnCount(); ++i)
            row << st.value(i).toString();
        rows << row.join(QLatin1Char('|'));
    }
    return rows;
}

// Fields of one movement, as dump gives them.
inline QString field(qint64 id, const QString &campi)
{
    return dump(QStringLiteral("Movimentazioni"), campi, id).value(0);
}

inline qint64 count(const QString &sql) { return frame::basedati().scalar(sql).toLongLong(); }

} // namespace prova
