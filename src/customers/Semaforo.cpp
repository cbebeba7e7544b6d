// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/Semaforo.h"

namespace customers {

namespace {

QColor colore(Scadenza s)
{
    switch (s) {
    case Scadenza::Vuota:
        return QColor(255, 255, 0);
    case Scadenza::Scaduta:
        return QColor(255, 0, 0);
    case Scadenza::InTempo:
        break;
    }
    return QColor(0, 255, 0);
}

} // namespace

Scadenza StatoScadenza(const std::optional<QDate> &data, const QDate &oggi)
{
    if (!data || !data->isValid())
        return Scadenza::Vuota;
    return *data < oggi ? Scadenza::Scaduta : Scadenza::InTempo;
}

Lampada LampadaUltimoPagamento(Scadenza s)
{
    return {colore(s), s == Scadenza::Vuota ? "M0359" : s == Scadenza::Scaduta ? "M0212" : "M0214"};
}

Lampada LampadaScadenzaAssic(Scadenza s)
{
    return {colore(s), s == Scadenza::Vuota ? "M0360" : s == Scadenza::Scaduta ? "M0213" : "M0215"};
}

bool TestoRosso(Scadenza s)
{
    return s == Scadenza::Scaduta;
}

} // namespace customers
