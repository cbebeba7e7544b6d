// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Routines.h"

#include "frame/PublicState.h"

#include "store/Connections.h"
#include "store/Recordset.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>

namespace frame {

store::Database &basedati()
{
    return store::Connections::get(pub().Pathdata, store::keyFromConnect(pub().CodaConnessione));
}

namespace {

// The settings row with only the id and one field: the row also holds the logos, large blobs that a
// read or write of another field has no reason to carry.
QString sqlImpostazione(const QString &campo)
{
    return QStringLiteral("select id, \"") + QString(campo).replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QStringLiteral("\" from Impostazioni");
}

} // namespace

QVariant CampoImpostazione(const QString &campo)
{
    store::Recordset rs(basedati(), sqlImpostazione(campo));
    if (rs.isEmpty())
        return QVariant();
    rs.MoveFirst();
    return rs.value(campo);
}

QVariant LeggeImpostazione(const QString &campo)
{
    const QVariant v = CampoImpostazione(campo);
    return v.isNull() ? QVariant(QString()) : v;
}

void ScriveImpostazione(const QString &campo, const QVariant &valore)
{
    store::Recordset rs(basedati(), sqlImpostazione(campo));
    if (rs.isEmpty()) {
        rs.AddNew();
    } else {
        rs.MoveFirst();
        rs.Edit();
    }
    rs.setValue(campo, valore);
    rs.Update();
}

QString LeggeTestoSQL(const QString &sql, const QString &campo)
{
    store::Recordset rs(basedati(), sql);
    if (rs.isEmpty())
        return QString();
    rs.MoveFirst();
    const QVariant v = rs.value(campo);
    return v.isNull() ? QString() : v.toString();
}

QVariant LeggiCampoSQL(const QString &sql, const QString &campo, const QVariant &predefinito)
{
    store::Recordset rs(basedati(), sql);
    if (rs.isEmpty())
        return QVariant();
    rs.MoveFirst();
    return ValoreNonNullo(rs.value(campo), predefinito);
}

QString ApiciSQL(const QVariant &valore)
{
    if (valore.isNull())
        return QStringLiteral("''");
    return QLatin1Char('\'') + RaddoppiaApici(valore.toString()) + QLatin1Char('\'');
}

QString RaddoppiaApici(const QString &testo)
{
    if (!testo.contains(QLatin1Char('\'')))
        return testo;
    return QString(testo).replace(QLatin1Char('\''), QLatin1String("''"));
}

QVariant ValoreNonNullo(const QVariant &valore, const QVariant &predefinito)
{
    return valore.isNull() ? predefinito : valore;
}

void AggiungeBarra(QString &percorso)
{
    percorso = percorso.trimmed();
    if (!percorso.endsWith(QLatin1Char('\\')) && !percorso.endsWith(QLatin1Char('/')))
        percorso += QLatin1Char('/');
}

QString ConBarra(const QString &percorso)
{
    if (percorso.isEmpty() || percorso.endsWith(QLatin1Char('/')))
        return percorso;
    return percorso + QLatin1Char('/');
}

bool EsisteFile(QString &percorso, bool cartella)
{
    if (cartella) {
        while (percorso.size() > 1 && percorso.endsWith(QLatin1Char('/')))
            percorso.chop(1);
        return !percorso.isEmpty() && QFileInfo(percorso).isDir();
    }
    if (percorso.isEmpty())
        return false;
    const QFileInfo info(percorso);
    if (info.fileName().contains(QLatin1Char('*')) || info.fileName().contains(QLatin1Char('?')))
        return !QDir(info.path()).entryList({info.fileName()}, QDir::Files).isEmpty();
    return info.isFile();
}

QString TogliSpaziDoppi(QString &testo)
{
    const QString t = testo.trimmed();
    QString risultato;
    risultato.reserve(t.size());
    for (qsizetype i = 0; i < t.size(); ++i)
        if (t.at(i) != QLatin1Char(' ') || i == 0 || t.at(i - 1) != QLatin1Char(' '))
            risultato += t.at(i);
    testo = risultato;
    return risultato;
}

bool ListaContiene(const QString &testo, const QStringList &lista)
{
    return lista.contains(testo);
}

QString GiornoSettimana(const QDate &data)
{
    // Fixed Italian names, Sunday first, whatever the language in use.
    static const char *const nomi[] = {"Domenica", "Lunedì", "Martedì", "Mercoledì", "Giovedì", "Venerdì", "Sabato"};
    if (!data.isValid())
        return QString();
    return QString::fromUtf8(nomi[data.dayOfWeek() % 7]);
}

QVariant NumeroONullo(const QVariant &valore)
{
    if (valore.isNull())
        return 0;
    if (valore.metaType().id() == QMetaType::QString) {
        bool ok = false;
        const double d = valore.toString().trimmed().toDouble(&ok);
        // toDouble takes "nan" and "inf", which are no numbers a user or a field holds.
        return ok && std::isfinite(d) ? valore : QVariant(0);
    }
    return valore;
}

QVariant TestoONullo(const QVariant &valore)
{
    return valore.isNull() ? QVariant(QString()) : valore;
}

std::optional<QDate> LeggeData(const QString &testo)
{
    const QString t = testo.trimmed();
    if (t.isEmpty() || t.size() > 20)
        return std::nullopt;
    static const QRegularExpression forma(QStringLiteral("^(\\d{1,4})[/.\\- ](\\d{1,2})[/.\\- ](\\d{1,4})$"));
    const QRegularExpressionMatch m = forma.match(t);
    if (!m.hasMatch())
        return std::nullopt;
    int parti[3] = {m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt()};
    int y, mo, d;
    if (m.captured(1).size() == 4) { // ISO order whatever the user's format
        y = parti[0], mo = parti[1], d = parti[2];
    } else {
        // The user's order: the places of d, m and y in FormatoData.
        const QString f = pub().FormatoData.toLower();
        const int pd = int(f.indexOf(QLatin1Char('d'))), pm = int(f.indexOf(QLatin1Char('m'))), py = int(f.indexOf(QLatin1Char('y')));
        auto rango = [&](int p) { return int(p > pd) + int(p > pm) + int(p > py); };
        if (pd < 0 || pm < 0 || py < 0)
            return std::nullopt;
        d = parti[rango(pd)], mo = parti[rango(pm)], y = parti[rango(py)];
        const int cifreAnno = int(m.captured(rango(py) + 1).size());
        if (cifreAnno == 3)
            return std::nullopt;
        if (cifreAnno <= 2)
            y += y < 30 ? 2000 : 1900;
    }
    const QDate data(y, mo, d);
    if (!data.isValid() || y < 100)
        return std::nullopt;
    return data;
}

std::optional<std::pair<QString, QString>> LimitiPrefisso(const QString &prefisso)
{
    QString base = prefisso.normalized(QString::NormalizationForm_D);
    base.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
    if (base.isEmpty())
        return std::nullopt;
    for (QChar c : std::as_const(base))
        if (c.unicode() >= 0x80)
            return std::nullopt;
    QString basso = base.toLower();
    const char16_t ultimo = basso.back().unicode();
    if (ultimo >= 0x7F)
        return std::nullopt;
    QString alto = basso;
    alto.back() = QChar(char16_t(ultimo + 1));
    return std::make_pair(basso, alto);
}

QString EscapeLike(const QString &valore)
{
    QString r;
    r.reserve(valore.size() + 8);
    for (const QChar c : valore) {
        if (c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('\\'))
            r += QLatin1Char('\\');
        r += c;
    }
    return r;
}

QString FormatoDataQt(bool annoIntero)
{
    // FormatoData writes the month as "mm", which is the minute for Qt.
    QString formato = pub().FormatoData;
    formato.replace(QLatin1String("mm"), QLatin1String("MM"));
    if (annoIntero)
        formato.replace(QRegularExpression(QStringLiteral("y+")), QStringLiteral("yyyy"));
    return formato;
}

QString TestoData(const QDateTime &momento, bool conOra)
{
    if (!momento.isValid())
        return QString();
    QString formato = FormatoDataQt(false);
    if (conOra)
        formato += QStringLiteral(" HH:mm:ss");
    return momento.toString(formato);
}

QString CartellaDati(const QString &pathdata)
{
    return pathdata.size() >= 13 ? pathdata.left(pathdata.size() - 13) : QString();
}

void MostraStato(const QString &testo)
{
    if (pub().statusSink)
        pub().statusSink(testo);
}

void MostraErrore(Prompter &prompter, const QString &descrizione)
{
    MostraStato(QString());
    prompter.message(descrizione + QLatin1Char('\n'), Prompter::Icon::Critical);
}

} // namespace frame
