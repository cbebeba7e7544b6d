// SPDX-License-Identifier: GPL-3.0-or-later
#include "Generator.h"

#include "store/Database.h"
#include "store/Schema.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <QFile>

#include <random>

namespace bench {

QString BasedatiGrande(const QString &argomento, int movimenti)
{
    const QString nome = movimenti == 1000000 ? QStringLiteral("basedati.mdb")
                                              : QStringLiteral("basedati-%1m.mdb").arg(movimenti / 1000000);
    const QString path = QFileInfo(argomento.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/../bench-data/") + nome
                                                       : argomento)
                             .absoluteFilePath();
    if (!QFileInfo::exists(path)) {
        QDir().mkpath(QFileInfo(path).path());
        QTextStream(stdout) << "writing " << path << " (" << movimenti << " movements, 10,000 customers)..." << Qt::endl;
        Volume v;
        v.movimenti = movimenti;
        GeneraBasedati(path, v);
    }
    return path;
}

QStringList BasiDati(const QString &argomento)
{
    if (!argomento.isEmpty())
        return {BasedatiGrande(argomento)};
    QStringList paths{BasedatiGrande(QString())};
    const QString dieci = QCoreApplication::applicationDirPath() + QStringLiteral("/../bench-data/basedati-10m.mdb");
    if (QFileInfo::exists(dieci) || qEnvironmentVariable("VELTANO_BENCH_10M") == QLatin1String("1"))
        paths << BasedatiGrande(QString(), 10000000);
    return paths;
}

void GeneraBasedati(const QString &path, const Volume &v)
{
    QFile::remove(path);
    store::Database db(path, QLatin1String(store::DatabaseKey), store::Database::Mode::Create);
    store::Schema::createWorkingTables(db);
    store::Schema::insertDeliveredRows(db, 1);
    db.execute(QStringLiteral("update Impostazioni set AnnoEsercizio = ?"), {QString::number(v.ultimoAnno)});

    std::mt19937 rng(20261123);
    store::Transaction t(db);
    for (int u = 0; u < 8; ++u)
        db.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values (?, ?)"),
                   {QStringLiteral("operatore%1").arg(u), QStringLiteral("pw%1").arg(u)});

    store::Statement mov = db.prepare(QStringLiteral(
        "insert into Movimentazioni (Anno, Progressivo, DataOra, DataOraOut, Targa, IdFascia, Note, NoteImporto, Importo, "
        "Entrato, Annullato, Contabilizzato, IdUtente, IdUtenteOut) values (?,?,?,?,?,?,?,?,?,?,?,?,?,?)"));
    const int perAnno = v.movimenti / v.anni;
    const QString lettere = QStringLiteral("ABCDEFGHJKLMNPRSTVWXYZ");
    int scritti = 0;
    for (int a = 0; a < v.anni; ++a) {
        const int anno = v.ultimoAnno - v.anni + 1 + a;
        const bool corrente = a == v.anni - 1;
        const int quanti = a == v.anni - 1 ? v.movimenti - scritti : perAnno;
        const QDateTime inizio(QDate(anno, 1, 1), QTime(6, 0));
        const qint64 passo = qint64(365) * 24 * 3600 / std::max(quanti, 1);
        for (int i = 0; i < quanti; ++i) {
            const QDateTime dentro = inizio.addSecs(passo * i + rng() % 600);
            const int sosta = 5 + int(rng() % 600);
            // The last few hundred of the current year are inside; the rest of
            // that year is out and partly unposted; earlier years are posted.
            const bool inside = corrente && i >= quanti - 300;
            const bool annullato = rng() % 50 == 0;
            const bool contabilizzato = !inside && !annullato && (!corrente || i < quanti * 9 / 10);
            const bool dueStadi = rng() % 3 == 0;
            QString targa;
            for (int k = 0; k < 2; ++k)
                targa += lettere.at(rng() % lettere.size());
            targa += QString::number(100 + rng() % 900);
            for (int k = 0; k < 2; ++k)
                targa += lettere.at(rng() % lettere.size());
            const qint64 importo = dueStadi ? 30000 + 15000 * std::max(0, (sosta - 60 + 29) / 30) : 20000 * ((sosta + 59) / 60);
            mov.bindAll({QString::number(anno), i + 1, dentro,
                         inside ? QVariant() : QVariant(dentro.addSecs(sosta * 60)), targa,
                         dueStadi ? QStringLiteral("02") : QStringLiteral("01"),
                         i % 7 == 0 ? QStringLiteral("abbonato l'auto") : QString(), QVariant(), importo,
                         inside ? -1 : 0, annullato ? -1 : 0, contabilizzato ? -1 : 0, 1 + int(rng() % 10),
                         inside ? QVariant() : QVariant(1 + int(rng() % 10))});
            mov.step();
            mov.reset();
        }
        db.execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo) values (?, ?)"), {QString::number(anno), quanti});
        scritti += quanti;
    }

    store::Statement cli = db.prepare(QStringLiteral(
        "insert into Clienti (Cliente, Cognome, Nome, Targa, Posto, Canone, DataScadenzaAssic, \"Data Registrazione\", IdUtente) "
        "values (?,?,?,?,?,?,?,?,1)"));
    store::Statement cassa = db.prepare(QStringLiteral(
        "insert into Cassa (IdCliente, IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?,1,?,?,?,0,?)"));
    for (int c = 0; c < v.clienti; ++c) {
        cli.bindAll({c % 10 == 0 ? 0 : -1, QStringLiteral("Cognome%1").arg(c), QStringLiteral("Nome%1").arg(c % 300),
                     QStringLiteral("CL%1").arg(c, 5, 10, QLatin1Char('0')), QStringLiteral("P%1").arg(c % 500),
                     80.0 + c % 5 * 10, QDateTime(QDate(v.ultimoAnno, 1 + c % 12, 1 + c % 28), QTime(0, 0)),
                     QDateTime(QDate(v.ultimoAnno - 1, 1 + c % 12, 1), QTime(9, 0))});
        cli.step();
        cli.reset();
        const qint64 id = db.lastInsertId();
        for (int m = 0; m < 3; ++m) {
            cassa.bindAll({id, QDateTime(QDate(v.ultimoAnno, 1 + m, 5), QTime(9, 0)), QStringLiteral("Canone"),
                           80.0 + c % 5 * 10, QString::number(v.ultimoAnno)});
            cassa.step();
            cassa.reset();
        }
    }
    t.commit();
}

} // namespace bench
