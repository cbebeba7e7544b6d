// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/Resto.h"

#include <QLocale>

namespace parking {

using store::Currency;

Currency CalcolaResto(Currency importo, Currency importoCliente)
{
    // Currency::parse allows 14 whole digits, so the difference of two typed
    // amounts stays far inside 64 bits.
    return importoCliente - importo;
}

std::optional<Currency> LeggeImporto(const QString &testo)
{
    Currency c;
    if (!Currency::parse(testo, &c))
        return std::nullopt;
    return c;
}

bool ImportoIncompleto(const QString &testo)
{
    const QString t = testo.trimmed();
    if (t.isEmpty() || t == QLatin1String("-") || t == QLatin1String("+"))
        return true;
    // A trailing separator: "12." or "-," can still become an amount.
    if (t.endsWith(QLatin1Char('.')) || t.endsWith(QLatin1Char(','))) {
        const QString resto = t.left(t.size() - 1);
        return resto.isEmpty() || resto == QLatin1String("-") || resto == QLatin1String("+")
               || (LeggeImporto(resto).has_value() && !resto.contains(QLatin1Char('.'))
                   && !resto.contains(QLatin1Char(',')));
    }
    return false;
}

std::optional<Currency> RestoDaTesto(Currency importo, const QString &importoCliente)
{
    const std::optional<Currency> dato = LeggeImporto(importoCliente);
    if (!dato)
        return std::nullopt;
    return CalcolaResto(importo, *dato);
}

QString TestoImporto(Currency valore)
{
    const QChar separatore = QLocale().decimalPoint().at(0);
    QString testo = valore.toPlainText(separatore);
    const qsizetype punto = testo.indexOf(separatore);
    if (punto < 0)
        testo += separatore + QStringLiteral("00");
    else if (testo.size() - punto - 1 < 2)
        testo += QLatin1Char('0');
    return testo;
}

} // namespace parking
