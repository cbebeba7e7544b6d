// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"

#include <QString>
#include <QVector>

#include <functional>

namespace store {
class Database;
}

namespace safety {

// Field kinds by the numbers of the original database engine.
enum TipoCampo {
    TipoSiNo = 1,
    TipoByte = 2,
    TipoIntero = 3,
    TipoLungo = 4,
    TipoValuta = 6,
    TipoDoppio = 7,
    TipoData = 8,
    TipoTesto = 10,
    TipoMemo = 12,
};

// A field that a table of the working database must have.
struct CampoVoluto {
    QString nome;
    int tipo = TipoTesto;
    int dimensione = 0;          // characters, for text only
    bool richiesto = false;
    bool lunghezzaZero = true;
    QString valoreIniziale;      // SQL text given to the rows that exist when the field is added
};

struct TabellaVoluta {
    QString nome;
    QVector<CampoVoluto> campi;  // at most MaxCampiTabella; the list ends at the first empty name
};

inline constexpr int MaxCampiTabella = 20;

// The fields that newer versions of the program added, table by table.
const QVector<TabellaVoluta> &StrutturaVoluta();

using StatoFn = std::function<void(const QString &)>;

// True when the structure update must run: the settings key VerDatabase differs
// from the text of `versioneMinore`, or the column Impostazioni.VerDatabase differs
// from it as a number. When it is not due, the key is saved.
bool AggiornamentoDovuto(int versioneMinore);

// Whether `tabella` has a field named exactly `campo` (letter case included).
bool EsisteCampo(store::Database &db, const QString &tabella, const QString &campo);

// Adds a field to a table, with the declared type of its kind. An unsupported
// kind shows M0040 and adds nothing; false then, and on an engine error (thrown as store::DbError).
bool AppendNewField(store::Database &db, const QString &tabella, const QString &campo, int tipo, bool richiesto,
                    int dimensione, bool lunghezzaZero, frame::Prompter &prompter);

// Brings one table up to its wanted fields in one transaction: a failure shows
// M0045 naming the field and leaves the table as it was. A field that exists is never touched.
bool AggiornaTabella(store::Database &db, const TabellaVoluta &tabella, frame::Prompter &prompter,
                     const StatoFn &stato = {});

// Every table of StrutturaVoluta(), stopping at the first that fails.
bool AddFieldsBasedati(store::Database &db, frame::Prompter &prompter, const StatoFn &stato = {});

// The whole run of the update window on the working database (frame::pub().Pathdata):
// adds the missing fields, then writes VerDatabase in the table and in the settings
// store and shows M0043. On failure shows M0044 and writes nothing. True on success.
bool EseguiAggiornamento(int versioneMinore, frame::Prompter &prompter, const StatoFn &stato = {});

} // namespace safety
