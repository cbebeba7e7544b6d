// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/FieldKind.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace forms {

// What a record form's toolbar and panels are, with no widget: the button
// keys, which of them each layout offers, the limits a box takes from its
// field, the caption keys, and the list panel's query.

// The keys of the toolbar's buttons, in their order; "sep1" and "sep2" are its separators.
const QStringList &ChiaviToolbar();

// The toolbar layouts of a record form.
enum class Layout {
    Attivazione, // operation: only "gestione", the quick search panel in front
    Gestione,    // browse: the table's buttons, "ok" and "annulla" shown but off
    Modifica,    // adding or editing: "ok", "annulla" and "esci" only
};

struct StatoPulsante {
    bool visibile = false;
    bool abilitato = false;
};

// The state of each key of ChiaviToolbar() in a layout, among the actions the
// form's table offers (a key it doesn't offer is never shown).
QHash<QString, StatoPulsante> Pulsanti(Layout layout, const QStringList &offerti);

// The kinds of input box a record form binds to fields.
enum class TipoCasellaScheda {
    Testo,  // TxtT: text and memo fields
    Codice, // TxtTC: a code box, text fields only
    Numero, // TxtN: numbers
};

// What ImpostaCampi sets on a box from the type of its field.
struct LimitiCasella {
    std::optional<int> lunghezzaMassima;
    std::optional<double> minimo, massimo;
    std::optional<int> decimali; // digits after the decimal point a number box accepts
};
LimitiCasella LimitiCampo(const store::FieldInfo &campo, TipoCasellaScheda tipo);

// A fixed caption of a record form: the control (or toolbar key), the caption
// key and the tool-tip key (either may be empty). `ComEsegueRic_Stampa` appears
// twice: first for the print mode, then for the search mode.
struct Didascalia {
    const char *controllo;
    const char *testo;
    const char *suggerimento;
};
const QVector<Didascalia> &DidascalieScheda();

// The list panel's query: the table, the where clause, and the order (with
// " Order by ") or, without one, the form's default order text.
QString QueryGriglia(const QString &tabella, const QString &where, const QString &ordine,
                     const QString &ordinePredefinito);

// The order text of a click on a column heading or a change of the sort choice.
QString OrdineColonna(const QString &campo, bool discendente);

} // namespace forms
