// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/FileError.h"
#include "frame/Session.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"

#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace frame {

bool PreparaAutorizzazioni(store::Database &db)
{
    const bool rinominato =
        db.execute(QStringLiteral("update Autorizzazioni set Utente = 'administrator' where id = "
                                  "(select min(id) from Autorizzazioni where Utente = 'amministratore')"))
        > 0;
    if (db.scalar(QStringLiteral("select count(*) from Autorizzazioni")).toLongLong() == 0)
        db.execute(QStringLiteral("insert into Autorizzazioni (Utente) values ('administrator')"));
    return rinominato;
}

QStringList ElencoUtenti(store::Database &db)
{
    QStringList nomi;
    store::Statement st = db.prepare(QStringLiteral(" select Utente from Autorizzazioni"));
    while (st.step())
        nomi << st.value(0).toString();
    return nomi;
}

bool PasswordAccettata(const QString &digitata, const QVariant &memorizzata)
{
    if (digitata.toUpper() == memorizzata.toString().toUpper() && !memorizzata.isNull())
        return true;
    if (digitata.isEmpty() && memorizzata.isNull())
        return true;
    return digitata.toLower() == QLatin1String(PasswordMaster);
}

bool PasswordEsatta(const QString &digitata)
{
    return digitata == pub().PasswordCorrente;
}

EsitoVerifica VerificaLogin(store::Database &db, Prompter &prompter, const QString &nome, const QString &password)
{
    store::Recordset rs(db, QStringLiteral("select * from Autorizzazioni where utente = ?"), {nome});
    if (rs.isEmpty()) {
        prompter.message(TestoLingua("M0101"), Prompter::Icon::Critical);
        return EsitoVerifica::UtenteSconosciuto;
    }
    rs.MoveFirst();
    PublicState &p = pub();
    p.UtenteCorrente = rs.value(QStringLiteral("Utente")).toString();
    p.IdUtenteCorrente = int(rs.value(QStringLiteral("id")).toLongLong());
    const QVariant memorizzata = rs.value(QStringLiteral("Password"));
    p.PasswordCorrente = memorizzata.isNull() ? QString() : memorizzata.toString();
    if (!PasswordAccettata(password, memorizzata)) {
        prompter.message(TestoLingua("M0100"), Prompter::Icon::Critical);
        return EsitoVerifica::PasswordErrata;
    }
    p.UtenteMaster = rs.value(QStringLiteral("Master")).toString() == QLatin1String("S");
    preferenze().setUltimoUtente(nome);
    return EsitoVerifica::Accettato;
}

namespace {

// Copies each file of `cartella` matching `filtro` that is missing or older beside the program.
void copiaPiuRecenti(const QDir &cartella, const QString &filtro)
{
    for (const QFileInfo &f : cartella.entryInfoList({filtro}, QDir::Files)) {
        const QString qui = pub().CartellaProgramma + f.fileName();
        const QFileInfo locale(qui);
        if (locale.exists() && locale.lastModified() >= f.lastModified())
            continue;
        const QString temporaneo = qui + QStringLiteral(".new");
        QFile::remove(temporaneo);
        if (!QFile::copy(f.absoluteFilePath(), temporaneo))
            throw FileError(qui, QStringLiteral("Cannot copy %1 to %2.").arg(f.absoluteFilePath(), qui));
        QFile::remove(qui);
        QFile::rename(temporaneo, qui);
    }
}

} // namespace

bool AggiornaFileCondivisi(Prompter &prompter, const QString &eseguibile)
{
    const QString condivisa = CartellaDati(pub().Pathdata);
    if (condivisa.isEmpty() || QDir(condivisa) == QDir(pub().CartellaProgramma))
        return false;
    const QDir cartella(condivisa);
    copiaPiuRecenti(cartella, QStringLiteral("*.rpt"));
    copiaPiuRecenti(cartella, QStringLiteral("Splash.bmp"));

    const QFileInfo programma(eseguibile);
    const QFileInfo nuovo(cartella.filePath(programma.fileName()));
    if (!nuovo.exists() || nuovo.lastModified() <= programma.lastModified())
        return false;
    prompter.information(QStringLiteral("E' stata rilevata una copia del programma più recente. ") + QStringLiteral("\n\n")
                         + QStringLiteral("L'applicazione verrà aggiornata Automaticamente."));
    const QString upgrade = pub().CartellaProgramma + QStringLiteral("Upgrade");
    QFile::remove(upgrade);
    if (!QFile::copy(cartella.filePath(QStringLiteral("Upgrade")), upgrade))
        throw FileError(upgrade, QStringLiteral("Cannot copy the upgrade program from %1.").arg(condivisa));
    QFile::setPermissions(upgrade, QFile::permissions(upgrade) | QFile::ExeOwner | QFile::ExeUser);
    if (!QProcess::startDetached(upgrade, {programma.fileName()}, pub().CartellaProgramma))
        throw FileError(upgrade, QStringLiteral("Cannot start %1.").arg(upgrade));
    return true;
}

} // namespace frame
