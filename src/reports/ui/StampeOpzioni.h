// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDate>
#include <QString>
#include <QTime>

#include <optional>

namespace frame {
class Prompter;
}

namespace reports {

class CrystalReport;

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
// Sets the engine for the parking report, formulas in their order, and runs it.
bool StampaPark(CrystalReport &report, const OpzioniPark &o);

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
// Tells M0084 for a start before the fiscal year, sums what the book holds before
// the start, sets the engine and runs it.
bool StampaCassa(CrystalReport &report, frame::Prompter &prompter, const OpzioniCassa &o);

// Common settings of every report run: template file beside the program, connection, working database.
void ImpostaModello(CrystalReport &report, const QString &modello);

} // namespace reports
