// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QMetaType>
#include <QString>
#include <cstdint>

namespace store {

// A fixed-point amount: a signed count of ten-thousandths, exact in sums and
// multiples by whole numbers.
class Currency {
public:
    static constexpr int64_t Scale = 10000;

    constexpr Currency() = default;
    static constexpr Currency fromRaw(int64_t raw) { Currency c; c.m_raw = raw; return c; }
    // Conversion from a floating number rounds half to even at the fourth decimal.
    static Currency fromDouble(double value);
    // Parses "12", "12.5", "-0.0001" (a point or a comma as decimal separator);
    // more than four decimals or anything else fails.
    static bool parse(const QString &text, Currency *out);

    constexpr int64_t raw() const { return m_raw; }
    double toDouble() const { return double(m_raw) / Scale; }
    // Plain text without trailing zeros: 3, 1.5, -0.0001; the separator is the caller's.
    QString toPlainText(QChar decimalPoint = QLatin1Char('.')) const;

    constexpr bool isZero() const { return m_raw == 0; }
    constexpr Currency operator+(Currency o) const { return fromRaw(m_raw + o.m_raw); }
    constexpr Currency operator-(Currency o) const { return fromRaw(m_raw - o.m_raw); }
    constexpr Currency operator*(int64_t n) const { return fromRaw(m_raw * n); }
    constexpr bool operator==(const Currency &) const = default;
    constexpr auto operator<=>(const Currency &) const = default;

private:
    int64_t m_raw = 0;
};

} // namespace store

Q_DECLARE_METATYPE(store::Currency)
