// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/Clienti.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "store/Database.h"
#include "store/Schema.h"

namespace customers {

namespace {

const QString Vista = QStringLiteral("SELECT * FROM Q_Clienti_Utenti");
const QString PerNome = QStringLiteral(" order by Cognome,Nome");

} // namespace

Sorgente SorgenteModo(Modo modo)
{
    // Yes/No stores -1 for yes.
    return {Vista + QStringLiteral(" where cliente = ?") + PerNome + QStringLiteral(",Id"), {modo == Modo::Clienti ? -1 : 0}};
}

store::RowCounter ContatoreModo(store::Database &db, Modo modo)
{
    // The view adds a name to each record and takes none away: the table counts alike.
    store::Schema::upgradeRegistry(db);
    const QVariant cliente = modo == Modo::Clienti ? -1 : 0;
    store::RowCounter c;
    c.total = [&db, cliente] { return db.scalar(QStringLiteral("select count(*) from Clienti where Cliente = ?"), {cliente}).toLongLong(); };
    c.at = [&db, cliente](qint64 pos) {
        return db.scalar(QStringLiteral("select Id from Clienti where Cliente = ? order by Cognome,Nome,Id limit 1 offset ?"), {cliente, pos});
    };
    return c;
}

Sorgente SorgenteLettera(const QString &lettera)
{
    if (lettera.isEmpty() || lettera == LettereStriscia().at(IndiceTutti))
        return {Vista, {}};
    // LIKE folds case for every letter, accented ones included; the letter is a value, never SQL.
    return {Vista + QStringLiteral(" WHERE Cognome Like ?") + PerNome, {lettera.left(1) + QLatin1Char('%')}};
}

const QStringList &LettereStriscia()
{
    static const QStringList lettere = [] {
        QStringList l;
        for (char c = 'A'; c <= 'Z'; ++c)
            l << QString(QLatin1Char(c));
        l << QStringLiteral("Tutti");
        return l;
    }();
    return lettere;
}

const QStringList &Titoli()
{
    static const QStringList titoli = {
        QStringLiteral("Arch."), QStringLiteral("Avv."), QStringLiteral("Cav."), QStringLiteral("Dott."),
        QStringLiteral("Dott.ssa"), QStringLiteral("Dr."), QStringLiteral("Egr."), QStringLiteral("Geom."),
        QStringLiteral("Ing."), QStringLiteral("Miss"), QStringLiteral("Mr."), QStringLiteral("Mrs."),
        QStringLiteral("Notaio"), QStringLiteral("On."), QStringLiteral("Prof."), QStringLiteral("Rag."),
        QStringLiteral("Sen."), QStringLiteral("Sig."), QStringLiteral("Sig.ina"), QStringLiteral("Sig.ra"),
    };
    return titoli;
}

const QStringList &ColonneParcheggio()
{
    static const QStringList colonne = {QStringLiteral("VModello"), QStringLiteral("Marca"), QStringLiteral("Posto"),
                                        QStringLiteral("Targa"), QStringLiteral("DataScadenzaAssic"),
                                        QStringLiteral("DataUltimoPagamento")};
    return colonne;
}

bool ConvalidaCognome(const QString &cognome, frame::Prompter &prompter)
{
    if (!cognome.trimmed().isEmpty())
        return true;
    prompter.message(frame::TestoLingua("M0007"), frame::Prompter::Icon::Critical);
    return false;
}

} // namespace customers
