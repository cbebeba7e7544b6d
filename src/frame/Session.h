// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace store {
class Database;
}

namespace frame {

class Prompter;

// The master password opens every user's session at login (never FrmPassword).
inline constexpr const char *PasswordMaster = "quartzel";

// Before the login: the old spelling "amministratore" becomes "administrator",
// and a table without users gets "administrator". True when a row was renamed.
bool PreparaAutorizzazioni(store::Database &db);
// The names the login list offers, in table order.
QStringList ElencoUtenti(store::Database &db);

// Case-blind equal, an empty text for a Null password, or the master password in any case.
bool PasswordAccettata(const QString &digitata, const QVariant &memorizzata);
// FrmPassword: exactly the logged-in user's password, letter case included.
bool PasswordEsatta(const QString &digitata);

enum class EsitoVerifica { Accettato, UtenteSconosciuto, PasswordErrata };
// The check of the login: on success the session belongs to that user and the
// typed name is remembered; a refusal is told with its message.
EsitoVerifica VerificaLogin(store::Database &db, Prompter &prompter, const QString &nome, const QString &password);

// Copies templates (*.rpt) and Splash.bmp from the database's folder where they
// are missing or older beside the program. When that folder holds a newer copy of
// the program, tells the user, hands over to the upgrade copy and returns true:
// the process must then end.
bool AggiornaFileCondivisi(Prompter &prompter, const QString &eseguibile);

} // namespace frame
