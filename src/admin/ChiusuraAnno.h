// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "admin/Progressivi.h"

#include <QDate>
#include <QString>

#include <functional>
#include <optional>

namespace frame {
class Prompter;
}
namespace store {
class Database;
}

// The year closing and the removal of cancelled movements, started from the
// counters tab of the settings window. Each runs in one transaction: a failure
// shows M0126 and leaves the file exactly as it was, so a later run starts from
// the same sums and adds them once.
//
// How the settings window uses them:
//   CmdChiusura: auto dopo = admin::ChiudiAnno(db, prompter, pub().AnnoEsercizio,
//                    {box progressivo, box TxtNEnt, box TxtNUsc}, QDate::currentDate(),
//                    [&] { open the backup window modally });
//                if (dopo) { TDBNumAnnoEsercizio := dopo->annoCasella; the three
//                    boxes := dopo->contatori; close the window }
//   Command11:   if (admin::RimuoviAnnullati(db, prompter, pub().AnnoEsercizio)) close the window.
namespace admin {

// What the counters tab shows after a closing: the year box holds today's
// calendar year while the fiscal year in force is the next one; the movement
// number is 0 and the balances are the carried totals.
struct DopoChiusura {
    int annoCasella = 0;
    Progressivi contatori;
};

// Closes the fiscal year `anno` (the year in force, four digits). `contatori`
// are the tab's boxes: the year's last movement number and the balances
// carried into it. Before the two confirmations a backup is offered (CAP50);
// on Yes `offriBackup` runs (the window's backup window; the user may still
// close it without a backup) and the closing goes on either way; without a
// callback nothing is offered.
//
// In one transaction: the year's cash receipts and payments are added to the
// balances and stored as the closed year's counters; each customer's sums of
// that year raise his opening balances (rows of other years, rows without a
// customer and rows of a customer no longer there raise none); the cash book
// is emptied; posted and cancelled movements go, while vehicles inside and
// unposted exits stay with their year and number; the new fiscal year,
// today's year + 1, is written with number 0 and the carried balances. Then
// pub().AnnoEsercizio takes the new year and M0125 is shown.
//
// std::nullopt when nothing changed: a cancelled confirmation, a year that is
// not four digits (M0131), or a failure (M0126).
std::optional<DopoChiusura> ChiudiAnno(store::Database &db, frame::Prompter &prompter, const QString &anno,
                                       const Progressivi &contatori, const QDate &oggi,
                                       const std::function<void()> &offriBackup = {});

// Removes the cancelled movements of every year (the message names the year
// in force, the removal doesn't look at it), after two confirmations, in one
// transaction. True when they were removed; false when cancelled or on a
// failure (M0126, nothing removed).
bool RimuoviAnnullati(store::Database &db, frame::Prompter &prompter, const QString &anno);

} // namespace admin
