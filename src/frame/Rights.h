// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/PublicState.h"

#include <QString>
#include <QVariant>
#include <QVector>

namespace store {
class Database;
}

namespace frame {

class Prompter;

// The menus of the item list, by the hundreds of the item number.
enum class MenuVoci { Anagrafiche = 1, Tabelle = 2, Stampe = 3, Servizio = 4 };

// One entry as the login attaches it to its menu.
struct VoceMenu {
    MenuVoci menu;
    int indice = 0;        // element number within its menu
    int posizione = 0;     // position in ElencoElementi
    QString didascalia;    // "" for a first element that the rights hide
    bool abilitato = true;
    bool visibile = true;
};

// The password mark of a rights row is kept as text: a yes in any of its spellings ("-1", "S", "True"...).
bool PasswordMarcata(const QVariant &marca);
// ElencoElementi in its fixed order, with the spare last element; IndiceTabelle and IndiceStampe.
void CostruisceElencoElementi();
// DirittiUtente from the user's rows of Accessi, by position in the order they come; empty without rows.
void LeggeDirittiUtente(store::Database &db, int idUtente);
// The entries of the four item menus for the current user.
QVector<VoceMenu> VociMenu();
// The rights row a click reads: DirittiUtente at `posizione`, or nullptr when the user has no rows there.
const ElementoAccesso *DirittoAlla(int posizione);
// Position in the rights that a click of element `indice` of `menu` reads; the service menu
// reads by its bare index, as the registry menu does.
int PosizioneDiritti(MenuVoci menu, int indice);
bool EAmministratore();

// Whether the letter allows the operation ("aggiungi", "modifica", "elimina",
// "gestioneaccessi") on a record written by `idUtenteRecord` (-1: none); a
// refusal other than for "gestioneaccessi" is told in a critical box.
bool AutorizzaOperazione(Prompter &prompter, const QString &operazione, const QString &autorizzazione, int idUtenteRecord);

// The fixed words the rights grid shows for a letter.
QString DescrizioneAutorizzazione(const QString &lettera);

} // namespace frame
