// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/StampeCliente.h"

#include "frame/Language.h"

namespace customers {

using frame::TestoLinguaApici;

namespace {

// The window's title by its mode, made safe to stand in a quoted formula text.
QString titoloForm(bool cliente)
{
    return TestoLinguaApici(QLatin1String(cliente ? "M0349" : "M0350"));
}

} // namespace

reports::Lancio LancioScheda(qint64 id, bool cliente)
{
    reports::Lancio l;
    l.modello = QStringLiteral("SchedaCliente");
    l.selezione = QStringLiteral("{Q_Clienti_Utenti.Id}= ") + QString::number(id);
    l.formule.insert(0, QStringLiteral("Titolo='Scheda ") + titoloForm(cliente) + QLatin1Char('\''));
    l.etichette(1, {{"lbldescrizione", "M0210"}, {"lblindirizzo", "M0181"}, {"lbllocalita", "M0182"}, {"lblprovincia", "M0184"},
                    {"lblemail", "M0190"}, {"lblmobile", "M0185"}});
    l.formule.insert(7, QStringLiteral("lblmobile2='") + TestoLinguaApici(QStringLiteral("M0185")) + QStringLiteral(" 2'"));
    l.etichette(8, {{"lblufficio", "M0187"}, {"lblcasa", "M0186"}, {"lblfax", "M0188"}, {"lblcontatto", "M0189"},
                    {"lblultimopagamento", "M0206"}});
    return l;
}

std::optional<reports::Lancio> LancioRicevuta(const QVariant &idRiga, bool cliente)
{
    bool numero = false;
    const qint64 id = idRiga.isNull() ? 0 : idRiga.toLongLong(&numero);
    if (!numero)
        return std::nullopt;
    reports::Lancio l;
    l.modello = QStringLiteral("Ricevuta");
    l.selezione = QStringLiteral("{Cassa.id}= ") + QString::number(id);
    l.etichette(0, {{"lbldescrizione", "M0210"}});
    l.formule.insert(1, QStringLiteral("lblcliente='") + titoloForm(cliente) + QLatin1Char('\''));
    l.etichette(2, {{"lblimporto", "M0322"}});
    return l;
}

} // namespace customers
