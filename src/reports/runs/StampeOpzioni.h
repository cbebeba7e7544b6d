// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

#include <QDate>
#include <QString>
#include <QTime>

#include <optional>

namespace frame {
class Prompter;
}

namespace reports {

// The choices of the parking report's window.
struct OpzioniPark {
    enum class Stato { Usciti, Dentro, Tutti };
    std::optional<QDate> dal;
    std::optional<QTime> oraDal; // an emptied box counts as 0:00
    std::optional<QDate> al;
    std::optional<QTime> oraAl;
    QString targa;
    Stato stato = Stato::Tutti;
    bool graficoGiorni = true;
    bool graficoOre = true;
};

// The selection formula: plate, state, and a window by the clock on every day of the period.
QString SelezionePark(const OpzioniPark &o);
// The parking report's run: formulas in their order, maximised on screen.
Lancio LancioPark(const OpzioniPark &o);

// The choices of the cash report's window.
struct OpzioniCassa {
    enum class Righe { SoloUscite, SoloEntrate, Tutto };
    std::optional<QDate> dal;
    std::optional<QDate> al;
    Righe righe = Righe::Tutto;
    bool graficoSaldo = true;
};

// The selection formula of the fiscal year's cash book.
QString SelezioneCassa(const OpzioniCassa &o, const QString &anno);
// The cash report's run. Tells M0084 for a start before the fiscal year. With a
// start, the receipts and payments the whole book holds before it are carried
// in as given (the caller sums them); without one nothing is carried in.
Lancio LancioCassa(frame::Prompter &prompter, const OpzioniCassa &o, store::Currency entrateRiportate,
                   store::Currency usciteRiportate);

// The choices of the account statement's window: the cash report's, and one
// customer or supplier of the list shown.
struct OpzioniEstratto : OpzioniCassa {
    std::optional<qint64> cliente; // none: no customer chosen, or a number that is none of the list
    bool fornitori = false;        // the list is the suppliers'
};

// The selection formula of one customer's rows of the fiscal year: the year, the
// kind of row, the customer, then the period.
QString SelezioneEstratto(const OpzioniCassa &o, const QString &anno, qint64 cliente);
// The account statement's run; std::nullopt, with M0083 told, when no customer
// is chosen. Otherwise the cash report's steps, then the labels from index 0 on,
// which take the place of the carried sums (the template's own defaults apply),
// "clifor" at 11 and the graph switch again at 12.
std::optional<Lancio> LancioEstratto(frame::Prompter &prompter, const OpzioniEstratto &o, store::Currency entrateRiportate,
                                     store::Currency usciteRiportate);

} // namespace reports
