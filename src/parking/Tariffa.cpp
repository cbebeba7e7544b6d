// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/Tariffa.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/Routines.h"
#include "store/Recordset.h"

#include <QLocale>

#include <cmath>

namespace parking {

using store::Currency;

namespace {

Currency comeCurrency(const QVariant &v)
{
    const QVariant n = frame::NumeroONullo(v);
    if (n.metaType() == QMetaType::fromType<Currency>())
        return n.value<Currency>();
    return Currency::fromDouble(n.toDouble());
}

// Rounds up to a whole number, towards plus infinity for negative quotients too.
qint64 arrotondaInEccesso(double q)
{
    double n = std::floor(q);
    if (q - n > 0)
        n += 1;
    return qint64(n);
}

} // namespace

const char *DifettoFascia(const Fascia &f)
{
    if (f.Minuti1Frazione == 0)
        return "M0073";
    if (f.Importo.isZero())
        return "M0074";
    if (!f.ImportoSuccessivo.isZero() && f.MinutiSucFrazione == 0)
        return "M0075";
    if (f.MinutiSucFrazione != 0 && f.ImportoSuccessivo.isZero())
        return "M0076";
    return nullptr;
}

qint64 MinutiSosta(const QDateTime &ingresso, const QDateTime &uscita)
{
    auto minuto = [](const QDateTime &t) { return (t.toSecsSinceEpoch() - t.time().second()) / 60; };
    return minuto(uscita) - minuto(ingresso);
}

Importo CalcolaTariffa(const Fascia &f, qint64 minuti)
{
    Importo r;
    if (f.ImportoSuccessivo.isZero()) {
        r.frazioni = arrotondaInEccesso(double(minuti) / double(f.Minuti1Frazione));
        r.importo = f.Importo * r.frazioni;
        return r;
    }
    r.frazioni = arrotondaInEccesso(double(minuti - f.Minuti1Frazione) / double(f.MinutiSucFrazione));
    r.conNota = r.frazioni > 0;
    r.importo = r.conNota ? f.Importo + f.ImportoSuccessivo * r.frazioni : f.Importo;
    return r;
}

QString TestoNumero(Currency valore)
{
    return valore.toPlainText(QLocale().decimalPoint().at(0));
}

QString TestoNumero(qint64 valore)
{
    return QString::number(valore);
}

QString NotaImporto(const Fascia &f, const Importo &i)
{
    const QString nota = frame::TestoLingua("M0368") + QLatin1Char(' ') + TestoNumero(f.Importo) + QStringLiteral("; ")
                         + frame::TestoLingua("M0369") + QLatin1Char(' ') + TestoNumero(i.frazioni) + QLatin1Char(' ')
                         + frame::TestoLingua("M0370") + QLatin1Char(' ') + TestoNumero(f.ImportoSuccessivo * i.frazioni);
    return nota.left(70);
}

bool CalcolaImporto(store::Recordset &rs, store::Database &db, frame::Prompter &prompter, const QDateTime &adesso)
{
    auto rifiuta = [&](const char *chiave) {
        rs.CancelUpdate();
        prompter.stop(frame::TestoLingua(chiave));
        return false;
    };
    store::Recordset banda(db, QStringLiteral("select * from fascia where id = ?"), {rs.value(QStringLiteral("idfascia"))});
    if (banda.isEmpty())
        return rifiuta("M0065");
    banda.MoveFirst();
    Fascia f;
    f.Importo = comeCurrency(banda.value(QStringLiteral("Importo")));
    f.ImportoSuccessivo = comeCurrency(banda.value(QStringLiteral("ImportoSuccessivo")));
    f.Minuti1Frazione = qint64(frame::NumeroONullo(banda.value(QStringLiteral("Minuti1Frazione"))).toDouble());
    f.MinutiSucFrazione = qint64(frame::NumeroONullo(banda.value(QStringLiteral("MinutiSucFrazione"))).toDouble());
    if (const char *difetto = DifettoFascia(f))
        return rifiuta(difetto);

    const Importo importo = CalcolaTariffa(f, MinutiSosta(rs.value(QStringLiteral("dataora")).toDateTime(), adesso));
    rs.setValue(QStringLiteral("Importo"), QVariant::fromValue(importo.importo));
    if (importo.conNota)
        rs.setValue(QStringLiteral("NoteImporto"), NotaImporto(f, importo));
    return true;
}

} // namespace parking
