// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/Update.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Sqlite.h"

#include <QDebug>
#include <QFileInfo>

#include <optional>

namespace safety {

namespace {

// A table or field name in SQL: between brackets, or between double quotes
// when the name itself holds a closing bracket.
QString nomeSQL(const QString &nome)
{
    if (!nome.contains(QLatin1Char(']')))
        return QLatin1Char('[') + nome + QLatin1Char(']');
    return QLatin1Char('"') + QString(nome).replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

// The declared type that carries the kind (and size) of a field; nothing for
// a kind the program does not support.
std::optional<QString> tipoDichiarato(int tipo, int dimensione)
{
    switch (tipo) {
    case TipoSiNo:
        return QStringLiteral("YESNO");
    case TipoByte:
    case TipoIntero:
    case TipoLungo:
        // One integer kind holds all three; the counter's INTEGER is kept for keys.
        return QStringLiteral("LONG");
    case TipoValuta:
        return QStringLiteral("CURRENCY");
    case TipoDoppio:
        return QStringLiteral("DOUBLE");
    case TipoData:
        return QStringLiteral("DATE");
    case TipoTesto:
        // A text field without a size takes the engine's usual 50 characters.
        return QStringLiteral("TEXT(%1)").arg(dimensione > 0 ? dimensione : 50);
    case TipoMemo:
        return QStringLiteral("MEMO");
    default:
        return std::nullopt;
    }
}

} // namespace

const QVector<TabellaVoluta> &StrutturaVoluta()
{
    static const QVector<TabellaVoluta> tabelle = {
        {QStringLiteral("Clienti"),
         {
             {QStringLiteral("Posto"), TipoTesto, 30, false, true, QStringLiteral("NULL")},
             {QStringLiteral("Marca"), TipoTesto, 30, false, true, QStringLiteral("NULL")},
             {QStringLiteral("Targa"), TipoTesto, 10, false, true, QStringLiteral("NULL")},
             {QStringLiteral("DataScadenzaAssic"), TipoData, 0, false, true, QStringLiteral("NULL")},
             {QStringLiteral("Canone"), TipoDoppio, 0, false, true, QStringLiteral("0")},
             {QStringLiteral("Cliente"), TipoSiNo, 0, false, true, QStringLiteral("-1")},
             {QStringLiteral("SaldoEntrate"), TipoDoppio, 0, false, true, QStringLiteral("0")},
             {QStringLiteral("SaldoUscite"), TipoDoppio, 0, false, true, QStringLiteral("0")},
         }},
    };
    return tabelle;
}

bool AggiornamentoDovuto(int versioneMinore)
{
    frame::Preferenze &pref = frame::preferenze();
    if (pref.verDatabaseLocale() != versioneMinore)
        return true;
    try {
        if (pref.verDatabase() != versioneMinore)
            return true;
    } catch (const store::DbError &) {
        // The structure cannot be confirmed: the update window runs and tells the engine's reason.
        return true;
    }
    pref.setVerDatabaseLocale(versioneMinore);
    return false;
}

bool EsisteCampo(store::Database &db, const QString &tabella, const QString &campo)
{
    store::Statement st = db.prepare(QStringLiteral("PRAGMA table_info(%1)").arg(frame::ApiciSQL(tabella)));
    while (st.step())
        if (st.value(1).toString() == campo)
            return true;
    return false;
}

bool AppendNewField(store::Database &db, const QString &tabella, const QString &campo, int tipo, bool richiesto,
                    int dimensione, bool lunghezzaZero, frame::Prompter &prompter)
{
    const std::optional<QString> dichiarato = tipoDichiarato(tipo, dimensione);
    if (!dichiarato) {
        prompter.message(frame::TestoLingua("M0040"), frame::Prompter::Icon::Exclamation, QStringLiteral("Errore"));
        return false;
    }
    if (tabella.trimmed().isEmpty() || campo.trimmed().isEmpty())
        throw store::DbError(SQLITE_MISUSE, QStringLiteral("A field and its table need a name."));

    // The engine's field properties become checks on the column. As with the
    // original engine they bind the rows written from now on, not those already there.
    QString definizione = nomeSQL(campo) + QLatin1Char(' ') + *dichiarato;
    if (richiesto)
        definizione += QStringLiteral(" CHECK (%1 IS NOT NULL)").arg(nomeSQL(campo));
    if (!lunghezzaZero && (tipo == TipoTesto || tipo == TipoMemo))
        definizione += QStringLiteral(" CHECK (%1 <> '')").arg(nomeSQL(campo));
    db.executeScript(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2").arg(nomeSQL(tabella), definizione));
    return true;
}

bool AggiornaTabella(store::Database &db, const TabellaVoluta &tabella, frame::Prompter &prompter,
                     const StatoFn &stato)
{
    QString campo; // the field being worked on, named by the message when the table fails
    try {
        // The whole table in one transaction: a failure leaves it as it was.
        store::Transaction t(db);
        bool riuscito = true;
        const int n = int(qMin<qsizetype>(tabella.campi.size(), MaxCampiTabella));
        for (int i = 0; i < n && riuscito; ++i) {
            const CampoVoluto &c = tabella.campi.at(i);
            if (c.nome.isEmpty())
                break;
            campo = c.nome;
            if (stato)
                stato(frame::TestoLingua("M0037") + QStringLiteral(" Aggiornamento della tabella ") + tabella.nome);
            if (EsisteCampo(db, tabella.nome, c.nome))
                continue;
            riuscito = AppendNewField(db, tabella.nome, c.nome, c.tipo, c.richiesto, c.dimensione, c.lunghezzaZero, prompter);
            if (riuscito)
                db.executeScript(QStringLiteral("UPDATE %1 SET %2 = %3; ")
                                     .arg(nomeSQL(tabella.nome), nomeSQL(c.nome),
                                          c.valoreIniziale.isEmpty() ? QStringLiteral("NULL") : c.valoreIniziale));
        }
        if (riuscito) {
            t.commit();
            return true;
        }
    } catch (const store::DbError &e) {
        // The engine's own words are for whoever reads the program's error output, not for the box.
        qWarning().noquote() << QStringLiteral("AddFieldsBasedati [%1].[%2]:").arg(tabella.nome, campo) << e.message();
    }
    // Told only once the transaction is rolled back, so that the box holds no lock.
    // M0045: "Unable to add the field:".
    prompter.message(frame::TestoLingua("M0045") + QStringLiteral("\n[%1].[%2]").arg(tabella.nome, campo),
                     frame::Prompter::Icon::Exclamation, frame::TestoLingua("M0035") + QStringLiteral(" AddFieldsBasedati"));
    return false;
}

bool AddFieldsBasedati(store::Database &db, frame::Prompter &prompter, const StatoFn &stato)
{
    for (const TabellaVoluta &t : StrutturaVoluta())
        if (!AggiornaTabella(db, t, prompter, stato))
            return false;
    return true;
}

bool EseguiAggiornamento(int versioneMinore, frame::Prompter &prompter, const StatoFn &stato)
{
    if (!QFileInfo(frame::pub().Pathdata).isFile()) {
        prompter.information(frame::TestoLingua("M0042"));
        return false;
    }
    try {
        store::Database &db = frame::basedati();
        bool riuscito = true;
        frame::Preferenze &pref = frame::preferenze();
        if (pref.verDatabase() != versioneMinore)
            riuscito = AddFieldsBasedati(db, prompter, stato);
        if (riuscito) {
            pref.setVerDatabase(versioneMinore);
            pref.setVerDatabaseLocale(versioneMinore);
            if (stato)
                stato(QString());
            prompter.information(frame::TestoLingua("M0043"));
            return true;
        }
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
    }
    if (stato)
        stato(QString());
    prompter.stop(frame::TestoLingua("M0044"));
    return false;
}

} // namespace safety
