// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/Scheda.h"

#include "forms/RecordsetModel.h"

namespace forms {

const QStringList &ChiaviToolbar()
{
    static const QStringList chiavi = {
        QStringLiteral("aggiungi"), QStringLiteral("modifica"), QStringLiteral("elimina"), QStringLiteral("sep1"),
        QStringLiteral("trova"),    QStringLiteral("stampa"),   QStringLiteral("scheda"),  QStringLiteral("sep2"),    QStringLiteral("ok"),
        QStringLiteral("annulla"),  QStringLiteral("gestione"), QStringLiteral("refresh"), QStringLiteral("esci"),
    };
    return chiavi;
}

QHash<QString, StatoPulsante> Pulsanti(Layout layout, const QStringList &offerti)
{
    static const QStringList modifica = {QStringLiteral("aggiungi"), QStringLiteral("modifica"),
                                         QStringLiteral("elimina"), QStringLiteral("trova"), QStringLiteral("stampa")};
    static const QStringList conferma = {QStringLiteral("ok"), QStringLiteral("annulla")};
    QHash<QString, StatoPulsante> stato;
    for (const QString &k : ChiaviToolbar()) {
        const bool separatore = k.startsWith(QLatin1String("sep"));
        StatoPulsante s;
        switch (layout) {
        case Layout::Attivazione:
            s.visibile = s.abilitato = k == QLatin1String("gestione");
            break;
        case Layout::Gestione:
            // "gestione" has done its work: the way back is the filter panel's cancel.
            s.visibile = separatore || k != QLatin1String("gestione");
            s.abilitato = s.visibile && !conferma.contains(k);
            break;
        case Layout::Modifica:
            s.visibile = separatore || k != QLatin1String("gestione");
            s.abilitato = conferma.contains(k) || k == QLatin1String("esci");
            break;
        }
        if (!separatore && !offerti.contains(k))
            s = {};
        if (separatore)
            s.abilitato = false;
        stato.insert(k, s);
    }
    // A separator shows only between groups that are there.
    const auto alcuno = [&](const QStringList &chiavi) {
        for (const QString &k : chiavi)
            if (stato.value(k).visibile)
                return true;
        return false;
    };
    stato[QStringLiteral("sep1")].visibile &= alcuno(modifica.mid(0, 3));
    stato[QStringLiteral("sep2")].visibile &= alcuno(modifica.mid(3, 2));
    return stato;
}

LimitiCasella LimitiCampo(const store::FieldInfo &campo, TipoCasellaScheda tipo)
{
    using store::FieldKind;
    LimitiCasella l;
    switch (tipo) {
    case TipoCasellaScheda::Testo:
        if ((campo.kind == FieldKind::Text || campo.kind == FieldKind::Memo) && campo.size > 0)
            l.lunghezzaMassima = campo.size;
        break;
    case TipoCasellaScheda::Codice:
        if (campo.kind == FieldKind::Text && campo.size > 0)
            l.lunghezzaMassima = campo.size;
        break;
    case TipoCasellaScheda::Numero:
        switch (campo.kind) {
        case FieldKind::Currency:
            l.massimo = 922337203685477.0;
            l.minimo = -922337203685477.0;
            l.decimali = 4;
            break;
        case FieldKind::Long:
        case FieldKind::Counter:
            l.massimo = 2147483647.0;
            l.minimo = -2147483648.0;
            l.decimali = 0;
            break;
        default:
            break;
        }
        break;
    }
    return l;
}

const QVector<Didascalia> &DidascalieScheda()
{
    static const QVector<Didascalia> d = {
        {"aggiungi", "M0138", "M0154"},
        {"modifica", "M0139", "M0155"},
        {"elimina", "M0140", "M0156"},
        {"trova", "M0141", "M0157"},
        {"stampa", "M0142", "M0158"},
        {"scheda", "M0177", ""},
        {"ok", "M0143", "M0159"},
        {"annulla", "M0144", "M0160"},
        {"esci", "M0137", "M0161"},
        {"gestione", "FRM01", "FRM02"},
        {"refresh", "M0151", "FRM03"},
        {"ComEsegueRic_Stampa", "M0142", "M0162"},
        {"ComEsegueRic_Stampa", "M0141", "M0157"},
        {"Command5", "M0144", "M0160"},
        {"Command6", "M0147", "M0163"},
        {"CmdElencoPrec", "M0148", "M0164"},
        {"ChkAuto", "M0149", "M0165"},
        {"CmdOkGrid", "M0143", "M0166"},
        {"CmdStampa", "M0142", "M0158"},
        {"CmdCsv", "CAP66", "CAP65"},
        {"CmdFitriGrid", "M0150", "M0167"},
        {"CmdRefresh", "M0151", "M0168"},
        {"CmdAnnulla2", "M0144", "M0160"},
        {"lblOrdinamento", "M0152", ""},
        {"Label2", "M0153", ""},
        {"ChkOrdinamento", "", "M0169"},
    };
    return d;
}

QString QueryGriglia(const QString &tabella, const QString &where, const QString &ordine,
                     const QString &ordinePredefinito)
{
    QString sql = QStringLiteral("select * from ") + tabella + QLatin1Char(' ') + where;
    if (!ordine.isEmpty())
        sql += QStringLiteral(" Order by ") + ordine;
    else
        sql += ordinePredefinito;
    return sql;
}

QString OrdineColonna(const QString &campo, bool discendente)
{
    return RecordsetModel::nomeSQL(campo) + (discendente ? QStringLiteral(" desc") : QString());
}

} // namespace forms
