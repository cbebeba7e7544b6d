// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/Tabelle.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Currency.h"
#include "store/Database.h"
#include "store/Recordset.h"
#include "store/Schema.h"

#include <QBrush>
#include <QColor>
#include <QDateTime>

namespace forms {

ImpostazioneTabella ImpostazioneFascia()
{
    return {QStringLiteral("Fascia"),
            "M0325",
            QStringLiteral("id"),
            {{QStringLiteral("id"), "M0319"},
             {QStringLiteral("DescrizioneFascia"), "M0320"},
             {QStringLiteral("importo"), "M0322"},
             {QStringLiteral("Minuti1Frazione"), "M0321"},
             {QStringLiteral("MinutiSucFrazione"), "M0323"},
             {QStringLiteral("ImportoSuccessivo"), "M0324"}},
            {},
            {{QStringLiteral("DescrizioneFascia"), 4000}, {QStringLiteral("Importo"), 1000}, {QStringLiteral("ImportoSuccessivo"), 1000}}};
}

ImpostazioneTabella ImpostazioneCassa()
{
    return {QStringLiteral("Cassa"),
            "M0267",
            QStringLiteral("Data"),
            {{QStringLiteral("Data"), "M0249"},
             {QStringLiteral("Descrizione"), "M0210"},
             {QStringLiteral("entrata"), "M0355"},
             {QStringLiteral("uscita"), "M0356"}},
            {QStringLiteral("id"), QStringLiteral("idcliente"), QStringLiteral("idUtente"), QStringLiteral("esercizio")},
            {{QStringLiteral("Descrizione"), 4000}}};
}

void PreparaTabella(store::Database &db, const QString &tabella)
{
    if (tabella.compare(QLatin1String("Cassa"), Qt::CaseInsensitive) == 0)
        store::Schema::upgradeCashBook(db);
}

QString IstruzioneTabella(const QString &tabella, const QString &ordine)
{
    QString sql = QStringLiteral("select * from [") + tabella + QLatin1Char(']');
    if (!ordine.isEmpty())
        sql += QStringLiteral(" Order by ") + ordine;
    return sql;
}

void OrdineTabella::clic(const QString &campo)
{
    m_discendente = campo.compare(m_campo, Qt::CaseInsensitive) == 0 && !m_discendente;
    m_campo = campo;
}

bool ConvalidaCampo(const store::FieldInfo &campo, QVariant &valore, frame::Prompter &prompter)
{
    using store::FieldKind;
    switch (campo.kind) {
    case FieldKind::Date:
        if (valore.isValid() && !valore.isNull() && !valore.toDateTime().isValid()) {
            prompter.message(frame::TestoLingua("M0008"), frame::Prompter::Icon::Exclamation); // not a date
            return false;
        }
        return true;
    case FieldKind::Currency:
    case FieldKind::Double:
    case FieldKind::Long: {
        // An empty box is 0; a value the editor could read arrives typed; any text
        // left is a number the field can't hold (too many decimals, too large).
        const int tipo = valore.userType();
        if (!valore.isValid() || valore.isNull() || (tipo == QMetaType::QString && valore.toString().trimmed().isEmpty())) {
            valore = campo.kind == FieldKind::Currency ? QVariant::fromValue(store::Currency())
                     : campo.kind == FieldKind::Long   ? QVariant(qint64(0))
                                                       : QVariant(0.0);
            return true;
        }
        if (tipo != QMetaType::QString)
            return true;
        // "%1" can't be stored in this field: it is not a number, or too large, or has too many decimals.
        prompter.message(frame::TestoLingua("CAP21").arg(valore.toString()), frame::Prompter::Icon::Exclamation);
        return false;
    }
    default:
        return true;
    }
}

void CompletaRiga(store::Recordset &rs)
{
    for (const store::FieldInfo &f : rs.fields()) {
        const QString nome = f.name.toUpper();
        if (nome == QLatin1String("IDUTENTE") && !rs.value(f.name).isValid())
            rs.setValue(f.name, frame::pub().IdUtenteCorrente);
        else if (nome == QLatin1String("ESERCIZIO"))
            rs.setValue(f.name, frame::pub().AnnoEsercizio);
    }
}

QColor ColoreImportiCassa(const QVariant &entrata, const QVariant &uscita)
{
    const bool e = entrata.toDouble() > 0;
    const bool u = uscita.toDouble() > 0;
    if (e && u)
        return QColor(192, 192, 192);
    if (e)
        return QColor(223, 255, 234);
    if (u)
        return QColor(255, 242, 234);
    return QColor(Qt::white);
}

QVariant ColoreCassa(const store::Recordset &rs)
{
    if (rs.baseTable().compare(QLatin1String("Cassa"), Qt::CaseInsensitive) != 0)
        return {};
    return QBrush(ColoreImportiCassa(rs.value(QStringLiteral("Entrata")), rs.value(QStringLiteral("Uscita"))));
}

EsitoTrova TrovaInTabella(store::Database &db, const QString &sql, const QString &chiave, const QString &campo, const QString &testo,
                          frame::Prompter &prompter, QVariant *trovata)
{
    if (campo.isEmpty()) {
        prompter.message(frame::TestoLingua("M0081"), frame::Prompter::Icon::Exclamation);
        return EsitoTrova::Rifiutato;
    }
    if (testo.contains(QLatin1Char('"'))) {
        prompter.message(frame::TestoLingua("CAP20"), frame::Prompter::Icon::Exclamation); // a double quote can't be searched
        return EsitoTrova::Rifiutato;
    }
    // One query in the list's own order: the engine stops at the first row, and walks an index where there is one.
    QString condizione = QStringLiteral("[%1] like ? escape '\\'").arg(campo);
    QVariantList valori{frame::EscapeLike(testo) + QLatin1Char('%')};
    if (const auto limiti = frame::LimitiPrefisso(testo)) { // the bounds narrow, the LIKE decides
        condizione += QStringLiteral(" and [%1] >= ? and [%1] < ?").arg(campo);
        valori << limiti->first << limiti->second;
    }
    *trovata = db.scalar(QStringLiteral("select [%1] from (%2) where %3 limit 1").arg(chiave, sql, condizione), valori);
    return trovata->isValid() ? EsitoTrova::Trovato : EsitoTrova::NonTrovato;
}

} // namespace forms
