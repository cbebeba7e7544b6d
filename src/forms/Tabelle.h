// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/FieldKind.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace frame {
class Prompter;
}
namespace store {
class Database;
class Recordset;
}

namespace forms {

// What the tables menu sets up for the table editor: the table, its caption,
// its sort field, the columns shown with their caption keys, the hidden ones
// and the widths (in twips, as the grid takes them).
struct ImpostazioneTabella {
    struct Colonna {
        QString campo;
        const char *didascalia;
    };
    QString tabella;
    const char *titolo = nullptr;
    QString ordine;
    QList<Colonna> colonne;
    QStringList nascoste;
    QHash<QString, int> larghezze;
};
ImpostazioneTabella ImpostazioneFascia();
ImpostazioneTabella ImpostazioneCassa();

// What a table needs before the editor opens it: the cash book its description's index.
void PreparaTabella(store::Database &db, const QString &tabella);
// The statement of the editor: the table, by the sort field when there is one.
QString IstruzioneTabella(const QString &tabella, const QString &ordine);

// The sort of the editor: a click on a heading sorts by that field, and a second
// click on the same one sorts it descending (" desc"); a click elsewhere ascending.
class OrdineTabella {
public:
    explicit OrdineTabella(QString campo) : m_campo(std::move(campo)) {}
    void clic(const QString &campo);
    const QString &campo() const { return m_campo; }
    bool discendente() const { return m_discendente; }
    QString testo() const { return m_campo.isEmpty() ? QString() : m_campo + (m_discendente ? QStringLiteral(" desc") : QString()); }

private:
    QString m_campo;
    bool m_discendente = false;
};

// The check before a row is written, field by field: a date that isn't one is
// refused (false, with the message shown); an empty or unreadable number becomes 0.
bool ConvalidaCampo(const store::FieldInfo &campo, QVariant &valore, frame::Prompter &prompter);
// What a new row gets by itself: IDUTENTE the current user when still empty, ESERCIZIO the fiscal year.
void CompletaRiga(store::Recordset &rs);
// The back colour of a cash-book row by its amounts, in the table editor and in
// a customer's card: both above 0 grey, only the receipt green, only the payment
// light blue, neither white; a null amount counts as not above 0.
QColor ColoreImportiCassa(const QVariant &entrata, const QVariant &uscita);
// The same for a row of a list, as a brush; invalid for other tables' rows.
QVariant ColoreCassa(const store::Recordset &rs);

// The find of the editor: the key of the first row of the list (its query
// `sql`, in its order) whose sort field begins with the text, case-blind.
// M0081 without a sort field; a text with a double quote is refused with its
// message. The list stays where it was when nothing is found.
enum class EsitoTrova { Trovato, NonTrovato, Rifiutato };
EsitoTrova TrovaInTabella(store::Database &db, const QString &sql, const QString &chiave, const QString &campo, const QString &testo,
                          frame::Prompter &prompter, QVariant *trovata);

} // namespace forms
