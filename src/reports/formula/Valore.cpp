// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/formula/Calendario.h"
#include "reports/formula/Formula.h"

#include <QAtomicInteger>
#include <cmath>

namespace reports {

using namespace formula_detail;

Valore::Valore(const QDateTime &dt)
{
    if (!dt.isValid())
        return;
    // Only the wall clock counts: a time given in another zone is first
    // brought to local time, as the database would have stored it.
    const QDateTime locale = dt.timeSpec() == Qt::LocalTime ? dt : dt.toLocalTime();
    *this = daDataOra(locale.date(), locale.time());
}

Valore::Valore(const QDate &d)
{
    if (!d.isValid())
        return;
    m_tipo = Tipo::DataOra;
    m_soloData = true;
    m_ms = msDaData(d);
}

Valore Valore::daMillisecondi(qint64 msLocali, bool soloData)
{
    Valore v;
    v.m_tipo = Tipo::DataOra;
    v.m_soloData = soloData;
    v.m_ms = soloData ? divGiu(msLocali, MsGiorno) * MsGiorno : msLocali;
    return v;
}

Valore Valore::oraDelGiorno(qint64 msDaMezzanotte)
{
    Valore v;
    v.m_tipo = Tipo::DataOra;
    v.m_soloOra = true;
    v.m_ms = modGiu(msDaMezzanotte, MsGiorno);
    return v;
}

Valore Valore::daDataOra(const QDate &d, const QTime &t)
{
    if (!d.isValid())
        return Valore();
    Valore v;
    v.m_tipo = Tipo::DataOra;
    v.m_ms = msDaData(d) + (t.isValid() ? t.msecsSinceStartOfDay() : 0);
    return v;
}

Valore Valore::daVariant(const QVariant &v)
{
    if (!v.isValid() || v.isNull())
        return Valore();
    switch (v.typeId()) {
    case QMetaType::Bool:
        return Valore(v.toBool());
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Double:
    case QMetaType::Float:
        return Valore(v.toDouble());
    case QMetaType::QString:
        return Valore(v.toString());
    case QMetaType::QChar:
        return Valore(QString(v.toChar()));
    case QMetaType::QByteArray:
        return Valore(QString::fromUtf8(v.toByteArray()));
    case QMetaType::QDateTime:
        return Valore(v.toDateTime());
    case QMetaType::QDate:
        return Valore(v.toDate());
    case QMetaType::QTime: {
        const QTime t = v.toTime();
        return t.isValid() ? oraDelGiorno(t.msecsSinceStartOfDay()) : Valore();
    }
    default:
        break;
    }
    // Anything else the engine did not convert: a number if it is one, else its text.
    bool ok = false;
    const double n = v.toDouble(&ok);
    if (ok)
        return Valore(n);
    if (v.canConvert<QString>())
        return Valore(v.toString());
    return Valore();
}

QVariant Valore::aVariant() const
{
    switch (m_tipo) {
    case Tipo::Nullo:
        return QVariant();
    case Tipo::Booleano:
        return QVariant(m_bool);
    case Tipo::Numero:
        return QVariant(m_num);
    case Tipo::Testo:
        return QVariant(m_testo);
    case Tipo::DataOra:
        if (m_soloOra)
            return QVariant(ora());
        if (m_soloData)
            return QVariant(data());
        return QVariant(dataOra());
    }
    return QVariant();
}

QDateTime Valore::dataOra() const
{
    if (m_tipo != Tipo::DataOra || m_soloOra)
        return QDateTime();
    return QDateTime(data(), ora());
}

QDate Valore::data() const
{
    if (m_tipo != Tipo::DataOra || m_soloOra)
        return QDate();
    return dataDaMs(m_ms);
}

QTime Valore::ora() const
{
    if (m_tipo != Tipo::DataOra)
        return QTime();
    return QTime::fromMSecsSinceStartOfDay(int(modGiu(m_ms, MsGiorno)));
}

QString Valore::comeTesto() const
{
    switch (m_tipo) {
    case Tipo::Nullo:
        return QString();
    case Tipo::Booleano:
        return m_bool ? QStringLiteral("True") : QStringLiteral("False");
    case Tipo::Numero:
        // Whole numbers without decimals; others with as many digits as they need.
        if (std::isfinite(m_num) && m_num == std::trunc(m_num) && std::fabs(m_num) < 1e15)
            return QString::number(qint64(m_num));
        return QString::number(m_num, 'g', 15);
    case Tipo::Testo:
        return m_testo;
    case Tipo::DataOra:
        if (m_soloOra)
            return ora().toString(QStringLiteral("HH:mm:ss"));
        if (m_soloData)
            return data().toString(QStringLiteral("dd/MM/yyyy"));
        return data().toString(QStringLiteral("dd/MM/yyyy")) + QLatin1Char(' ')
               + ora().toString(QStringLiteral("HH:mm:ss"));
    }
    return QString();
}

bool Valore::operator==(const Valore &o) const
{
    if (m_tipo != o.m_tipo)
        return false;
    switch (m_tipo) {
    case Tipo::Nullo:
        return true;
    case Tipo::Booleano:
        return m_bool == o.m_bool;
    case Tipo::Numero:
        return m_num == o.m_num;
    case Tipo::Testo:
        return m_testo == o.m_testo;
    case Tipo::DataOra:
        return m_ms == o.m_ms && m_soloData == o.m_soloData && m_soloOra == o.m_soloOra;
    }
    return false;
}

namespace {

QString testoErrore(int posizione, const QString &token, const QString &messaggio)
{
    if (token.isEmpty())
        return QStringLiteral("Error at position %1 (end of formula): %2").arg(posizione).arg(messaggio);
    return QStringLiteral("Error at position %1 near '%2': %3").arg(posizione).arg(token, messaggio);
}

} // namespace

FormulaError::FormulaError(int posizione, const QString &token, const QString &messaggio)
    : std::runtime_error(testoErrore(posizione, token, messaggio).toStdString()),
      m_pos(posizione), m_token(token), m_msg(messaggio)
{
}

// ---------------------------------------------------------------- assignments

Assegnazione ParseAssegnazione(const QString &testo)
{
    const int n = int(testo.size());
    const int uguale = int(testo.indexOf(QLatin1Char('=')));
    if (uguale < 0)
        throw FormulaError(n, QString(), QStringLiteral("'=' expected after the formula name"));

    Assegnazione a;
    a.nome = testo.left(uguale).trimmed();
    if (a.nome.isEmpty())
        throw FormulaError(uguale, QStringLiteral("="), QStringLiteral("formula name expected"));
    for (const QChar c : std::as_const(a.nome)) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('_')) {
            const int inizio = int(testo.indexOf(a.nome));
            throw FormulaError(inizio, a.nome, QStringLiteral("invalid formula name"));
        }
    }

    int i = uguale + 1;
    while (i < n && testo.at(i).isSpace())
        ++i;
    if (i >= n)
        throw FormulaError(n, QString(), QStringLiteral("value expected"));

    if (testo.at(i) == QLatin1Char('\'')) {
        const int apertura = i;
        QString valore;
        ++i;
        bool chiuso = false;
        while (i < n) {
            const QChar c = testo.at(i);
            if (c == QLatin1Char('\'')) {
                if (i + 1 < n && testo.at(i + 1) == QLatin1Char('\'')) {
                    valore += c;   // a doubled quote stands for one
                    i += 2;
                    continue;
                }
                chiuso = true;
                ++i;
                break;
            }
            valore += c;
            ++i;
        }
        if (!chiuso)
            throw FormulaError(apertura, testo.mid(apertura, 20), QStringLiteral("unterminated text"));
        int dopo = i;
        while (dopo < n && testo.at(dopo).isSpace())
            ++dopo;
        if (dopo < n)
            throw FormulaError(dopo, testo.mid(dopo, 20),
                               QStringLiteral("unexpected text after the closing quote"));
        a.valore = Valore(valore);
        return a;
    }

    const QString resto = testo.mid(i).trimmed();
    if (resto.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) {
        a.valore = Valore(true);
        return a;
    }
    if (resto.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0) {
        a.valore = Valore(false);
        return a;
    }
    // A plain decimal number with a point: no exponent, no thousands separator.
    bool numero = !resto.isEmpty();
    int cifre = 0, punti = 0;
    for (int k = 0; numero && k < resto.size(); ++k) {
        const QChar c = resto.at(k);
        if (c.isDigit() && c.unicode() < 128)
            ++cifre;
        else if (c == QLatin1Char('.'))
            ++punti;
        else if (!(k == 0 && (c == QLatin1Char('-') || c == QLatin1Char('+'))))
            numero = false;
    }
    if (numero && cifre > 0 && punti <= 1) {
        bool ok = false;
        const double v = resto.toDouble(&ok);
        if (ok) {
            a.valore = Valore(v);
            return a;
        }
    }
    throw FormulaError(i, resto.left(20),
                       QStringLiteral("a quoted text, true, false or a number expected"));
}

// ---------------------------------------------------------------- current date

namespace {
// Julian day fixed by a test, or 0 when CurrentDate reads the clock.
QAtomicInteger<qint64> g_dataFissa(0);
}

void ImpostaDataCorrente(const QDate &data)
{
    g_dataFissa.storeRelaxed(data.isValid() ? data.toJulianDay() : 0);
}

void AzzeraDataCorrente() { g_dataFissa.storeRelaxed(0); }

QDate DataCorrente()
{
    const qint64 jd = g_dataFissa.loadRelaxed();
    return jd != 0 ? QDate::fromJulianDay(jd) : QDate::currentDate();
}

} // namespace reports
