// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/Filtro.h"

#include "reports/runs/Lancio.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/FieldKind.h"

#include <QRegularExpression>

#include <cmath>

namespace forms {

using frame::ApiciSQL;
using frame::TestoLingua;

namespace {

bool identificatoreSemplice(const QString &nome)
{
    if (nome.isEmpty() || nome.at(0).isDigit())
        return false;
    for (const QChar c : nome)
        if (!(c.unicode() < 128 && (c.isLetterOrNumber() || c == QLatin1Char('_'))))
            return false;
    return true;
}

// Joins one part to a clause, with the separator only between parts.
void aggiungi(QString &testo, const QString &separatore, const QString &parte)
{
    if (!testo.isEmpty())
        testo += separatore;
    testo += parte;
}

// A number written so that both SQL and the formula language read it back: no exponent, no locale.
QString testoNumero(double v)
{
    QString s = QString::number(v, 'f', 10);
    while (s.endsWith(QLatin1Char('0')))
        s.chop(1);
    if (s.endsWith(QLatin1Char('.')))
        s.chop(1);
    return s == QLatin1String("-0") ? QStringLiteral("0") : s;
}

QString condizioneSQL(const QString &campo, const Confronto &c, const QString &valore)
{
    if (!c.like())
        return campo + c.operatore + ApiciSQL(valore);
    // A typed % or _ stays a letter: the pattern's own wildcards are the only ones.
    const QString modello = (c.jollyPrima ? QStringLiteral("%") : QString()) + frame::EscapeLike(valore)
                            + (c.jollyDopo ? QStringLiteral("%") : QString());
    return campo + c.operatore + ApiciSQL(modello) + QStringLiteral(" escape '\\'");
}

QString condizioneFormula(const QString &campo, const Confronto &c, const QString &valore)
{
    if (!c.like())
        return QStringLiteral("UpperCase(") + campo + QLatin1Char(')') + c.operatore + TestoFormula(valore.toUpper());
    // The report compares the field's first characters only, for "contains" too: on paper
    // both like modes narrow as "starts with".
    return QStringLiteral(" UpperCase(Left(") + campo + QLatin1Char(',') + QString::number(valore.size()) + QStringLiteral("))=")
           + TestoFormula(valore.toUpper());
}

// One box over its fields: a single condition, or the alternatives in brackets.
QString piuCampi(const QStringList &condizioni)
{
    return condizioni.size() == 1 ? condizioni.first() : QLatin1Char('(') + condizioni.join(QStringLiteral(" or ")) + QLatin1Char(')');
}

QString testoDataSQL(const QDate &d)
{
    return QDateTime(d, QTime(0, 0)).toString(QLatin1String(store::DateFormat));
}

} // namespace

QString CasellaFiltro::nomeSQL(const QString &campo)
{
    const QString nome = nomeFormula(campo);
    return identificatoreSemplice(nome) ? nome : QLatin1Char('[') + nome + QLatin1Char(']');
}

QString CasellaFiltro::nomeFormula(const QString &campo)
{
    const QString t = campo.trimmed();
    return t.startsWith(QLatin1Char('[')) && t.endsWith(QLatin1Char(']')) ? t.mid(1, t.size() - 2) : t;
}

Confronto confronto(int indice)
{
    switch (ModoConfronto(indice)) {
    case ModoConfronto::Uguale: return {QStringLiteral(" = "), false, false};
    case ModoConfronto::Contiene: return {QStringLiteral(" like "), true, true};
    case ModoConfronto::Da: return {QStringLiteral(" >= "), false, false};
    case ModoConfronto::FinoA: return {QStringLiteral(" <= "), false, false};
    case ModoConfronto::IniziaPer: break;
    }
    return {QStringLiteral(" like "), false, true};
}

QString TestoFormula(const QString &valore)
{
    return QLatin1Char('\'') + frame::RaddoppiaApici(valore) + QLatin1Char('\'');
}

std::optional<double> LeggeNumeroFiltro(const QString &testo)
{
    QString t = testo.trimmed();
    if (t.isEmpty() || t.size() > 40 || (t.contains(QLatin1Char(',')) && t.contains(QLatin1Char('.'))))
        return std::nullopt;
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    static const QRegularExpression forma(QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)$"));
    if (!forma.match(t).hasMatch())
        return std::nullopt;
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (!ok || !std::isfinite(v))
        return std::nullopt;
    return v;
}

Filtro CostruisciFiltro(const QString &tabella, const QVector<CasellaFiltro> &caselle, int modo, frame::Prompter &prompter)
{
    const Confronto c = confronto(modo);
    frame::MostraStato(TestoLingua("M0012"));
    Filtro f;
    const QString prefissoSQL = tabella + QLatin1Char('.');
    auto prefissoFormula = [&](const CasellaFiltro &k) { return (k.tabella.isEmpty() ? tabella : k.tabella) + QLatin1Char('.'); };
    auto tutti = [](const CasellaFiltro &k) { return QStringList{k.campo} + k.altriCampi; };

    // Text boxes first, then dates, then numbers: the order of the criteria on paper.
    for (const CasellaFiltro &k : caselle) {
        if (k.tipo != TipoCasella::Testo || k.valore.isEmpty())
            continue;
        QStringList sql, formula;
        for (const QString &campo : tutti(k)) {
            sql << condizioneSQL(prefissoSQL + CasellaFiltro::nomeSQL(campo), c, k.valore);
            formula << condizioneFormula(QLatin1Char('{') + prefissoFormula(k) + CasellaFiltro::nomeFormula(campo) + QLatin1Char('}'), c,
                                         k.valore);
        }
        aggiungi(f.where, QStringLiteral(" and "), piuCampi(sql));
        aggiungi(f.formula, QStringLiteral(" and "), piuCampi(formula));
        QString parola;
        if (c.like() && c.jollyPrima)
            parola = QStringLiteral(" contiene -") + k.valore + QLatin1Char('-');
        else if (c.like())
            parola = QStringLiteral(" inizia per -") + k.valore + QLatin1Char('-');
        else
            parola = c.operatore + k.valore;
        aggiungi(f.descrizione, QStringLiteral(", "), k.didascalia + parola);
    }

    for (int i = 0; i < caselle.size(); ++i) {
        const CasellaFiltro &k = caselle.at(i);
        if (k.tipo != TipoCasella::Data)
            continue;
        const std::optional<QDate> dal = frame::LeggeData(k.valore), al = frame::LeggeData(k.valoreAl);
        const bool dalErrata = !k.valore.trimmed().isEmpty() && !dal;
        if (dalErrata || (!k.valoreAl.trimmed().isEmpty() && !al)) {
            frame::MostraStato(QString());
            prompter.message(TestoLingua("M0008"), frame::Prompter::Icon::Exclamation);
            Filtro errato;
            errato.valido = false;
            errato.casellaErrata = i;
            errato.erroreNelLimiteAl = !dalErrata;
            return errato;
        }
        const QString sql = prefissoSQL + CasellaFiltro::nomeSQL(k.campo);
        const QString formula = QLatin1Char('{') + prefissoFormula(k) + CasellaFiltro::nomeFormula(k.campo) + QLatin1Char('}');
        for (const auto &[data, verso] : {std::pair{dal, QStringLiteral(">=")}, std::pair{al, QStringLiteral("<=")}}) {
            if (!data)
                continue;
            // The upper bound is the date's midnight, as the list has always counted it.
            aggiungi(f.where, QStringLiteral(" and "), sql + QLatin1Char(' ') + verso + QLatin1Char(' ') + ApiciSQL(testoDataSQL(*data)));
            aggiungi(f.formula, QStringLiteral(" and "),
                     formula + verso + QStringLiteral(" date(") + data->toString(QStringLiteral("yyyy,MM,dd")) + QLatin1Char(')'));
        }
        if (dal && al && *dal == *al)
            aggiungi(f.descrizione, QStringLiteral(", "), k.didascalia + QStringLiteral(" = ") + k.valore.trimmed());
        else {
            if (dal)
                aggiungi(f.descrizione, QStringLiteral(", "), k.didascalia + QStringLiteral(" => ") + k.valore.trimmed());
            if (al)
                aggiungi(f.descrizione, QStringLiteral(", "), k.didascalia + QStringLiteral(" <= ") + k.valoreAl.trimmed());
        }
    }

    for (const CasellaFiltro &k : caselle) {
        if (k.tipo != TipoCasella::Numero)
            continue;
        const QString sql = prefissoSQL + CasellaFiltro::nomeSQL(k.campo);
        const QString formula = QLatin1Char('{') + prefissoFormula(k) + CasellaFiltro::nomeFormula(k.campo) + QLatin1Char('}');
        for (const auto &[testo, verso] : {std::pair{k.valore, QStringLiteral(">=")}, std::pair{k.valoreAl, QStringLiteral("<=")}}) {
            if (testo.trimmed().isEmpty())
                continue;
            const std::optional<double> n = LeggeNumeroFiltro(testo);
            // No number equals a text that isn't one: the criterion holds for no row.
            aggiungi(f.where, QStringLiteral(" and "), n ? sql + verso + testoNumero(*n) : QStringLiteral("0=1"));
            aggiungi(f.formula, QStringLiteral(" and "), n ? formula + QLatin1Char(' ') + verso + QLatin1Char(' ') + testoNumero(*n) : QStringLiteral("false"));
            aggiungi(f.descrizione, QStringLiteral(", "), k.didascalia + QLatin1Char(' ') + verso + QLatin1Char(' ') + testo.trimmed());
        }
    }

    if (!f.where.isEmpty())
        f.where.prepend(QStringLiteral("where "));
    return f;
}

std::optional<QString> DataAlDopoDal(const QString &dal, bool alVisibile)
{
    if (!alVisibile || dal.trimmed().isEmpty())
        return std::nullopt;
    return dal;
}

EsitoRicerca EsitoElenco(qint64 righe, bool chkAuto, frame::Prompter &prompter, const char *chiaveNessuna)
{
    frame::MostraStato(QString());
    if (chkAuto && righe == 1)
        return EsitoRicerca::Posiziona;
    if (righe == 0) {
        prompter.message(TestoLingua(chiaveNessuna), frame::Prompter::Icon::Stop);
        return EsitoRicerca::NessunaRiga;
    }
    return EsitoRicerca::MostraElenco;
}

reports::Lancio LancioFiltro(const Filtro &filtro, const QString &modello, const char *chiaveTitolo)
{
    reports::Lancio l;
    l.modello = modello;
    l.selezione = filtro.formula;
    l.formule.insert(0, filtro.descrizione.isEmpty() ? QStringLiteral("Descrizionefiltri0=''")
                                                     : QStringLiteral("Descrizionefiltri0='Dati elaborati secondo i seguenti  criteri:'"));
    l.formule.insert(1, QStringLiteral("Descrizionefiltri=") + TestoFormula(filtro.descrizione));
    l.formule.insert(2, QStringLiteral("Titolo=") + TestoFormula(TestoLingua(chiaveTitolo)));
    l.zoom = 1.0;
    return l;
}

} // namespace forms
