// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Currency.h"

#include <cmath>

namespace store {

Currency Currency::fromDouble(double value)
{
    return fromRaw(int64_t(std::nearbyint(value * Scale))); // default rounding mode: half to even
}

bool Currency::parse(const QString &text, Currency *out)
{
    QString t = text.trimmed();
    if (t.isEmpty() || t.size() > 24)
        return false;
    bool negative = false;
    if (t.startsWith(QLatin1Char('-')) || t.startsWith(QLatin1Char('+'))) {
        negative = t.startsWith(QLatin1Char('-'));
        t.remove(0, 1);
    }
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    const qsizetype dot = t.indexOf(QLatin1Char('.'));
    const QString whole = dot < 0 ? t : t.left(dot);
    const QString frac = dot < 0 ? QString() : t.mid(dot + 1);
    if ((whole.isEmpty() && frac.isEmpty()) || frac.size() > 4 || whole.size() > 14)
        return false;
    for (QChar c : whole + frac)
        if (!c.isDigit() || c.unicode() > '9')
            return false;
    int64_t raw = whole.isEmpty() ? 0 : whole.toLongLong() * Scale;
    if (!frac.isEmpty())
        raw += frac.leftJustified(4, QLatin1Char('0')).toLongLong();
    *out = fromRaw(negative ? -raw : raw);
    return true;
}

QString Currency::toPlainText(QChar decimalPoint) const
{
    const uint64_t mag = m_raw < 0 ? uint64_t(-(m_raw + 1)) + 1 : uint64_t(m_raw);
    QString text = QString::number(mag / Scale);
    if (const uint64_t frac = mag % Scale) {
        QString digits = QString::number(frac).rightJustified(4, QLatin1Char('0'));
        while (digits.endsWith(QLatin1Char('0')))
            digits.chop(1);
        text += decimalPoint + digits;
    }
    return m_raw < 0 ? QLatin1Char('-') + text : text;
}

} // namespace store
