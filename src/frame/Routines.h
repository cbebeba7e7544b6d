// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"

#include <QDate>
#include <QDateTime>
#include <QStringList>
#include <QVariant>

#include <optional>
#include <utility>

namespace store {
class Database;
}

namespace frame {

// The working database, through its one connection. Throws store::DbError.
store::Database &basedati();

// The single row of Impostazioni: a field's value ("" for no row or Null), and its write.
QVariant LeggeImpostazione(const QString &campo);
// The same field as stored: Null kept, an invalid QVariant when there is no row.
QVariant CampoImpostazione(const QString &campo);
void ScriveImpostazione(const QString &campo, const QVariant &valore);
// Field of the first row of a query: "" (LeggeTestoSQL) or an invalid QVariant
// (LeggiCampoSQL) when no row came back; a Null field gives "" or `predefinito`.
QString LeggeTestoSQL(const QString &sql, const QString &campo);
QVariant LeggiCampoSQL(const QString &sql, const QString &campo, const QVariant &predefinito = QString());

QString ApiciSQL(const QVariant &valore);
QString RaddoppiaApici(const QString &testo);
QVariant ValoreNonNullo(const QVariant &valore, const QVariant &predefinito);
void AggiungeBarra(QString &percorso);
QString ConBarra(const QString &percorso);
// Folder test when `cartella` is true (a final separator is first removed from
// the path); a file test otherwise, with * and ? as wildcards in the last part.
bool EsisteFile(QString &percorso, bool cartella = false);
QString TogliSpaziDoppi(QString &testo);
bool ListaContiene(const QString &testo, const QStringList &lista);
QString GiornoSettimana(const QDate &data);
QVariant NumeroONullo(const QVariant &valore);
QVariant TestoONullo(const QVariant &valore);
// A date as typed in a box, in the user's date order (FormatoData) or ISO; std::nullopt when it isn't one.
std::optional<QDate> LeggeData(const QString &testo);
// A value made literal for a LIKE pattern whose escape character is '\\' (write "escape '\\'" after it).
QString EscapeLike(const QString &valore);
// The bounds [basso, alto) that hold, under the case-blind collation, every text
// that begins with `prefisso` (case and accents aside), so that an index narrows
// the rows a LIKE then checks. None when the prefix has letters the collation
// orders by rules we don't bound (then the LIKE alone).
std::optional<std::pair<QString, QString>> LimitiPrefisso(const QString &prefisso);
// A date as the program shows dates (FormatoData), with the time when `conOra`; "" for no date.
QString TestoData(const QDateTime &momento, bool conOra = false);
// FormatoData as a Qt date format; with a four-digit year when `annoIntero`.
QString FormatoDataQt(bool annoIntero);
// The folder of `Pathdata`: the path less the 13 characters of "/basedati.mdb".
QString CartellaDati(const QString &pathdata);

void MostraStato(const QString &testo);
void MostraErrore(Prompter &prompter, const QString &descrizione);

} // namespace frame
