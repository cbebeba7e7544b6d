// SPDX-License-Identifier: GPL-3.0-or-later
// Order of values, their text on the page, and the buckets of groups and graphs.
#include "reports/engine/ReportRun.h"

#include "frame/PublicState.h"

#include <QLocale>

#include <cmath>

namespace reports::engine {

namespace {

constexpr qint64 DayMs = 86400000;
constexpr qint64 UnixJulianDay = 2440588;

qint64 floorDiv(qint64 a, qint64 b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

int rank(const Valore &v)
{
    switch (v.tipo()) {
    case Valore::Tipo::Nullo: return 0;
    case Valore::Tipo::Booleano: return 1;
    case Valore::Tipo::Numero: return 2;
    case Valore::Tipo::DataOra: return 3;
    case Valore::Tipo::Testo: return 4;
    }
    return 5;
}

// The user's date format in Qt's letters: it writes the month as "mm", Qt's minute.
QString qtDateFormat()
{
    static QString source, converted;
    const QString &f = frame::pub().FormatoData;
    if (f != source || converted.isEmpty()) {
        source = f;
        converted = f;
        converted.replace(QLatin1String("mm"), QLatin1String("MM"));
        if (converted.isEmpty())
            converted = QStringLiteral("dd/MM/yyyy");
    }
    return converted;
}

// The day and month without the year, for the crowded axis of a graph.
QString qtShortDateFormat()
{
    QString f = qtDateFormat();
    for (const char *y : {"/yyyy", "-yyyy", ".yyyy", "yyyy/", "yyyy-", "yyyy.", "yyyy"})
        if (f.contains(QLatin1String(y)))
            return f.remove(QLatin1String(y));
    return f;
}

QLocale numberLocale()
{
    // The user's separators, with thousands grouped even where the locale leaves them out by default.
    QLocale l;
    l.setNumberOptions(l.numberOptions() & ~QLocale::OmitGroupSeparator);
    return l;
}

} // namespace

int compareValues(const Valore &a, const Valore &b)
{
    const int ra = rank(a), rb = rank(b);
    if (ra != rb)
        return ra < rb ? -1 : 1;
    switch (a.tipo()) {
    case Valore::Tipo::Nullo:
        return 0;
    case Valore::Tipo::Booleano:
        return int(a.booleano()) - int(b.booleano());
    case Valore::Tipo::Numero:
        return a.numero() < b.numero() ? -1 : (a.numero() > b.numero() ? 1 : 0);
    case Valore::Tipo::DataOra:
        return a.millisecondi() < b.millisecondi() ? -1 : (a.millisecondi() > b.millisecondi() ? 1 : 0);
    case Valore::Tipo::Testo: {
        const int c = a.testo().compare(b.testo(), Qt::CaseInsensitive);
        return c != 0 ? c : a.testo().compare(b.testo(), Qt::CaseSensitive);
    }
    }
    return 0;
}

QString formatMoney(double amount, int decimals)
{
    static const QLocale locale = numberLocale();
    if (std::fabs(amount) < 0.5 * std::pow(10.0, -decimals))
        amount = 0; // no "-0.00"
    return locale.toString(amount, 'f', decimals);
}

QString formatDate(qint64 wallMs, bool withTime)
{
    // Reports repeat the same day many times over: keep the last day's text.
    static QString lastFormat, lastText;
    static qint64 lastDay = std::numeric_limits<qint64>::min();
    const QString format = qtDateFormat();
    const qint64 day = floorDiv(wallMs, DayMs);
    if (day != lastDay || format != lastFormat) {
        lastText = QDate::fromJulianDay(day + UnixJulianDay).toString(format);
        lastDay = day;
        lastFormat = format;
    }
    if (!withTime)
        return lastText;
    const qint64 minutes = (wallMs - day * DayMs) / 60000;
    return lastText + QStringLiteral(" %1:%2").arg(minutes / 60, 2, 10, QLatin1Char('0')).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString formatValue(const Valore &v, const tpl::Item &item)
{
    using tpl::Format;
    if (item.format == Format::Boolean)
        return v.isBool() && v.booleano() ? item.trueText : item.falseText;
    if (v.isNull())
        return QString();
    switch (item.format) {
    case Format::Text:
        return v.comeTesto();
    case Format::Money:
    case Format::Number:
        return v.isNumero() ? formatMoney(v.numero(), item.format == Format::Money ? 2 : item.decimals) : v.comeTesto();
    case Format::Integer:
        return v.isNumero() ? QString::number(qint64(std::llround(v.numero()))) : v.comeTesto();
    case Format::Date:
        return v.isDataOra() && !v.soloOra() ? formatDate(v.millisecondi(), false) : v.comeTesto();
    case Format::DateTime:
        return v.isDataOra() && !v.soloOra() ? formatDate(v.millisecondi(), true) : v.comeTesto();
    case Format::Time:
        if (v.isDataOra()) {
            const qint64 minutes = (v.millisecondi() - floorDiv(v.millisecondi(), DayMs) * DayMs) / 60000;
            return QStringLiteral("%1:%2").arg(minutes / 60, 2, 10, QLatin1Char('0')).arg(minutes % 60, 2, 10, QLatin1Char('0'));
        }
        return v.comeTesto();
    case Format::Month:
        if (v.isDataOra()) {
            const QDate d = QDate::fromJulianDay(floorDiv(v.millisecondi(), DayMs) + UnixJulianDay);
            QString m = QLocale().standaloneMonthName(d.month());
            if (!m.isEmpty())
                m[0] = m.at(0).toUpper();
            return m + QLatin1Char(' ') + QString::number(d.year());
        }
        return v.comeTesto();
    case Format::HourOfDay:
        if (v.isNumero())
            return QStringLiteral("%1:00").arg(int(v.numero()), 2, 10, QLatin1Char('0'));
        return v.comeTesto();
    default:
        break;
    }
    // Auto: as the value's kind suggests.
    switch (v.tipo()) {
    case Valore::Tipo::DataOra: {
        if (v.soloOra())
            return v.comeTesto();
        const qint64 ms = v.millisecondi();
        return formatDate(ms, !v.soloData() && ms - floorDiv(ms, DayMs) * DayMs != 0);
    }
    case Valore::Tipo::Numero: {
        const double n = v.numero();
        if (n == std::floor(n) && std::fabs(n) < 1e15)
            return QString::number(qint64(n));
        return formatMoney(n, item.decimals);
    }
    default:
        return v.comeTesto();
    }
}

Valore bucketOf(const Valore &key, tpl::Interval interval)
{
    using tpl::Interval;
    if (interval == Interval::None || !key.isDataOra() || key.soloOra())
        return key;
    const qint64 ms = key.millisecondi();
    const qint64 day = floorDiv(ms, DayMs);
    switch (interval) {
    case Interval::Day:
        return Valore::daMillisecondi(day * DayMs, true);
    case Interval::Month:
    case Interval::Year: {
        const QDate d = QDate::fromJulianDay(day + UnixJulianDay);
        const QDate first(d.year(), interval == Interval::Month ? d.month() : 1, 1);
        return Valore::daMillisecondi((first.toJulianDay() - UnixJulianDay) * DayMs, true);
    }
    case Interval::Hour:
        return Valore::daMillisecondi(floorDiv(ms, 3600000) * 3600000);
    case Interval::HourOfDay:
        return Valore(int((ms - day * DayMs) / 3600000));
    default:
        return key;
    }
}

QString bucketCaption(const Valore &bucket, tpl::Interval interval)
{
    using tpl::Interval;
    if (!bucket.isDataOra()) {
        if (interval == Interval::HourOfDay && bucket.isNumero())
            return QStringLiteral("%1:00").arg(int(bucket.numero()), 2, 10, QLatin1Char('0'));
        if (bucket.isNumero() && bucket.numero() == std::floor(bucket.numero()))
            return QString::number(qint64(bucket.numero()));
        return bucket.isNumero() ? formatMoney(bucket.numero()) : bucket.comeTesto();
    }
    const qint64 ms = bucket.millisecondi();
    const QDate d = QDate::fromJulianDay(floorDiv(ms, DayMs) + UnixJulianDay);
    switch (interval) {
    case Interval::Month:
        return d.toString(QStringLiteral("MM/yyyy"));
    case Interval::Year:
        return QString::number(d.year());
    case Interval::Hour:
        return d.toString(qtShortDateFormat()) + QStringLiteral(" %1h").arg((ms - floorDiv(ms, DayMs) * DayMs) / 3600000);
    default:
        return d.toString(qtShortDateFormat());
    }
}

void ReportRun::Accumulator::add(const Valore &v)
{
    if (v.isNull())
        return;
    ++count;
    if (v.isNumero())
        sum += v.numero();
    if (min.isNull() || compareValues(v, min) < 0)
        min = v;
    if (max.isNull() || compareValues(v, max) > 0)
        max = v;
    last = v;
}

Valore ReportRun::Accumulator::result(const QString &function, double start) const
{
    if (function == QLatin1String("sum"))
        return Valore(start + sum);
    if (function == QLatin1String("count"))
        return Valore(count);
    if (function == QLatin1String("average"))
        return count ? Valore(sum / double(count)) : Valore();
    if (function == QLatin1String("min"))
        return min;
    if (function == QLatin1String("max"))
        return max;
    return last;
}

} // namespace reports::engine
