// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDate>
#include <QtGlobal>

// Wall-clock arithmetic shared by the value type and the evaluator: dates and
// times are counted in milliseconds from 1970-01-01 00:00 of the local clock.
namespace reports::formula_detail {

constexpr qint64 MsGiorno = 86400000;
constexpr qint64 MsOra = 3600000;
constexpr qint64 MsMinuto = 60000;
constexpr qint64 GiornoZero = 2440588;   // Julian day of 1970-01-01

// Division and remainder rounding towards minus infinity, so that times
// before 1970 still split into a day and a non-negative time of day.
inline qint64 divGiu(qint64 a, qint64 b)
{
    qint64 q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0)))
        --q;
    return q;
}

inline qint64 modGiu(qint64 a, qint64 b) { return a - divGiu(a, b) * b; }

inline qint64 msDaData(const QDate &d) { return (d.toJulianDay() - GiornoZero) * MsGiorno; }

inline QDate dataDaMs(qint64 ms) { return QDate::fromJulianDay(divGiu(ms, MsGiorno) + GiornoZero); }

} // namespace reports::formula_detail
