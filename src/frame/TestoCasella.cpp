// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/TestoCasella.h"

#include "frame/PublicState.h"
#include "frame/Routines.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace frame {

namespace {

bool intera(const QRegularExpression &forma, const QString &testo)
{
    return forma.match(testo).hasMatch();
}

// Digits typed with no separator, cut into day, month and year in the user's
// order, so that the one reading of dates with separators decides.
QString conSeparatori(const QString &cifre)
{
    const QString f = pub().FormatoData.toLower();
    struct Parte {
        qsizetype posizione;
        int cifre;
    };
    std::array<Parte, 3> parti{{{f.indexOf(QLatin1Char('d')), 2},
                                {f.indexOf(QLatin1Char('m')), 2},
                                {f.indexOf(QLatin1Char('y')), int(cifre.size()) - 4}}};
    std::sort(parti.begin(), parti.end(), [](const Parte &a, const Parte &b) { return a.posizione < b.posizione; });
    QStringList pezzi;
    qsizetype da = 0;
    for (const Parte &p : parti) {
        pezzi << cifre.mid(da, p.cifre);
        da += p.cifre;
    }
    return pezzi.join(QLatin1Char('/'));
}

} // namespace

Lettura<QDate> LeggeTestoData(const QString &testo)
{
    const QString t = testo.trimmed();
    if (t.isEmpty())
        return {true, std::nullopt};
    static const QRegularExpression cifre(QStringLiteral("^(\\d{6}|\\d{8})$"));
    const std::optional<QDate> d = LeggeData(intera(cifre, t) ? conSeparatori(t) : t);
    return {d.has_value(), d};
}

QString TestoCasellaData(const std::optional<QDate> &data)
{
    if (!data || !data->isValid())
        return QString();
    return data->toString(FormatoDataQt(true));
}

Lettura<QTime> LeggeTestoOra(const QString &testo)
{
    const QString t = testo.trimmed();
    if (t.isEmpty())
        return {true, std::nullopt};
    static const QRegularExpression cifre(QStringLiteral("^\\d{1,6}$"));
    static const QRegularExpression separata(QStringLiteral("^(\\d{1,2})[.:](\\d{2})(?:[.:](\\d{2}))?$"));
    int h = 0, m = 0, s = 0;
    if (intera(cifre, t)) {
        // Hours alone take one or two digits; minutes and seconds always two, from the right.
        const qsizetype n = t.size();
        const qsizetype oreCifre = n <= 2 ? n : (n % 2 == 0 ? 2 : 1);
        h = t.left(oreCifre).toInt();
        m = t.mid(oreCifre, 2).toInt();
        s = t.mid(oreCifre + 2, 2).toInt();
    } else if (const QRegularExpressionMatch x = separata.match(t); x.hasMatch()) {
        h = x.captured(1).toInt();
        m = x.captured(2).toInt();
        s = x.captured(3).toInt();
    } else {
        return {};
    }
    const QTime ora(h, m, s);
    if (!ora.isValid())
        return {};
    return {true, ora};
}

QString TestoCasellaOra(const std::optional<QTime> &ora, bool secondi)
{
    if (!ora || !ora->isValid())
        return QString();
    return ora->toString(secondi ? QStringLiteral("HH:mm:ss") : QStringLiteral("HH:mm"));
}

bool PuoDiventareData(const QString &testo)
{
    static const QRegularExpression forma(QStringLiteral("^(\\d{0,8}|\\d{1,4}[/.\\- ](\\d{1,2}([/.\\- ]\\d{0,4})?)?)$"));
    return intera(forma, testo);
}

bool PuoDiventareOra(const QString &testo)
{
    static const QRegularExpression forma(QStringLiteral("^(\\d{0,6}|\\d{1,2}[.:](\\d{1,2}([.:]\\d{0,2})?)?)$"));
    return intera(forma, testo);
}

bool PuoDiventareNumero(const QString &testo, bool decimali)
{
    static const QRegularExpression intero(QStringLiteral("^\\d{0,18}$"));
    static const QRegularExpression decimale(QStringLiteral("^[+-]?\\d*([.,]\\d*)?$"));
    return decimali ? testo.size() <= 40 && intera(decimale, testo) : intera(intero, testo);
}

} // namespace frame
