// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/FieldKind.h"

#include "store/Currency.h"

#include <QDateTime>
#include <QRegularExpression>

namespace store {

FieldKind kindFromDeclaredType(const QString &declared, int *size)
{
    static const QRegularExpression re(QStringLiteral("^\\s*([A-Za-z/ ]+?)\\s*(?:\\(\\s*(\\d+)\\s*\\))?\\s*$"));
    *size = 0;
    const auto m = re.match(declared);
    if (!m.hasMatch())
        return FieldKind::Unknown;
    const QString base = m.captured(1).toUpper();
    if (base == QLatin1String("TEXT")) {
        *size = m.captured(2).toInt();
        return FieldKind::Text;
    }
    if (base == QLatin1String("MEMO")) return FieldKind::Memo;
    if (base == QLatin1String("LONG")) return FieldKind::Long;
    if (base == QLatin1String("INTEGER")) return FieldKind::Counter;
    if (base == QLatin1String("CURRENCY")) return FieldKind::Currency;
    if (base == QLatin1String("DOUBLE")) return FieldKind::Double;
    if (base == QLatin1String("DATE")) return FieldKind::Date;
    if (base == QLatin1String("YESNO")) return FieldKind::YesNo;
    if (base == QLatin1String("LONGBINARY")) return FieldKind::Binary;
    return FieldKind::Unknown;
}

QVariant toStorage(FieldKind kind, const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return QVariant();
    // An amount typed in a box arrives as Currency whatever the column holds.
    if (value.metaType() == QMetaType::fromType<Currency>() && kind != FieldKind::Currency)
        return kind == FieldKind::Long || kind == FieldKind::Counter ? QVariant(qint64(value.value<Currency>().raw() / Currency::Scale))
                                                                      : QVariant(value.value<Currency>().toDouble());
    switch (kind) {
    case FieldKind::Currency:
        if (value.metaType() == QMetaType::fromType<Currency>())
            return QVariant::fromValue<qint64>(value.value<Currency>().raw());
        return QVariant::fromValue<qint64>(Currency::fromDouble(value.toDouble()).raw());
    case FieldKind::YesNo:
        return value.toBool() ? -1 : 0;
    case FieldKind::Date:
        if (value.metaType() == QMetaType::fromType<QDateTime>())
            return value.toDateTime().toString(QLatin1String(DateFormat));
        if (value.metaType() == QMetaType::fromType<QDate>())
            return value.toDate().startOfDay().toString(QLatin1String(DateFormat));
        return value;
    case FieldKind::Long:
    case FieldKind::Counter:
        return value.toLongLong();
    case FieldKind::Double:
        return value.toDouble();
    default:
        return value;
    }
}

QVariant fromStorage(FieldKind kind, const QVariant &stored)
{
    if (stored.isNull())
        return QVariant();
    switch (kind) {
    case FieldKind::Currency:
        return QVariant::fromValue(Currency::fromRaw(stored.toLongLong()));
    case FieldKind::YesNo:
        return stored.toLongLong() != 0;
    case FieldKind::Date: {
        const QDateTime dt = QDateTime::fromString(stored.toString(), QLatin1String(DateFormat));
        return dt.isValid() ? QVariant(dt) : stored;
    }
    default:
        return stored;
    }
}

} // namespace store
