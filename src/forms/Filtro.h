// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace frame {
class Prompter;
}
namespace forms {

// The kind of a filter box: a text matched by the panel's match mode, or a
// date or number with a lower ("from") and an upper ("to") bound.
enum class TipoCasella { Testo, Data, Numero };

// One box of the filter panel, as its Tag and caption describe it, with what
// the user typed. The window fills the catalogue once and the values before each run.
struct CasellaFiltro {
    QString campo;          // the field, as in the box's Tag: "Cognome", "Tel Cel" or "[Tel Cel]"
    QString tabella;        // table or query the report formula names ({Q_Clienti_Utenti.Cognome}); empty: the form's
    QString didascalia;     // caption, for the readable description
    TipoCasella tipo = TipoCasella::Testo;
    QStringList altriCampi; // further fields the same box searches, joined by " or " (the telephones)
    QString valore;         // text, or the lower bound of a date or number
    QString valoreAl;       // the upper bound of a date or number

    // The field for SQL: in [brackets] when it has blanks, accents or other non-plain characters.
    static QString nomeSQL(const QString &campo);
    // The field for the formula language: brackets taken away.
    static QString nomeFormula(const QString &campo);
};

// Match modes of the panel, by their index in Combo1.
enum class ModoConfronto { IniziaPer = 0, Uguale = 1, Contiene = 2, Da = 3, FinoA = 4 };

struct Confronto {
    QString operatore; // " like ", " = ", " >= ", " <= "
    bool jollyPrima = false; // any text may come before the value
    bool jollyDopo = false;  // any text may come after the value
    bool like() const { return operatore == QLatin1String(" like "); }
};
// An index out of range is read as "starts with", the panel's default.
Confronto confronto(int indice);

// What a run of the builder gives.
struct Filtro {
    bool valido = true;       // false: a date box held no date; M0008 was shown and nothing else holds
    int casellaErrata = -1;   // that box's index, to give it the focus
    bool erroreNelLimiteAl = false; // the bad value was in the upper box
    QString where;            // "where ..." for the list, or empty
    QString formula;          // selection formula for the report engine, or empty
    QString descrizione;      // the criteria in words, or empty
};

// A text literal of the formula language: quoted, quotes inside doubled.
QString TestoFormula(const QString &valore);
// A number as typed in a box (decimal point or comma); std::nullopt when it isn't one.
std::optional<double> LeggeNumeroFiltro(const QString &testo);

// Builds the where clause, the selection formula and the description from the
// boxes. `tabella` is the form's table or query, the prefix of each field in SQL.
// Shows M0012 in the status line; a box with a non-date shows M0008 and stops.
Filtro CostruisciFiltro(const QString &tabella, const QVector<CasellaFiltro> &caselle, int modo, frame::Prompter &prompter);

// On leaving a lower-bound date box: the text the upper box of the same index
// takes, so that one date gives a one-day filter; std::nullopt leaves it alone.
std::optional<QString> DataAlDopoDal(const QString &dal, bool alVisibile);

// What the search mode does once the list holds the filtered rows.
enum class EsitoRicerca { Posiziona, NessunaRiga, MostraElenco };
// One row with ChkAuto ticked goes straight to that record; no row shows `chiaveNessuna`
// and the filter panel stays; anything else shows the list. Clears the status line.
EsitoRicerca EsitoElenco(qint64 righe, bool chkAuto, frame::Prompter &prompter, const char *chiaveNessuna = "M0009");

// Print mode: runs a list template (Elenco, the customers; ElencoMovimenti, the
// movements) with the filter's selection, the description and the title.
// The preview opens at 100%.
reports::Lancio LancioFiltro(const Filtro &filtro, const QString &modello = QStringLiteral("Elenco"), const char *chiaveTitolo = "M0327");

} // namespace forms
