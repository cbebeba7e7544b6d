// SPDX-License-Identifier: GPL-3.0-or-later
// bench_posting [PATH]: posting of 100,000 finished movements into the cash book
// on a copy of the database of a million movements (PATH, by default the one
// bench_register writes under bench-data, generated when missing).
#include "AlwaysOk.h"
#include "Generator.h"
#include "Programma.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "parking/Contabilizzazione.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QString sorgente = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                      : QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bench-data/basedati.mdb"));
    constexpr int DaContabilizzare = 100000;
    QTemporaryDir scratch;
    const QString copia = scratch.filePath(QStringLiteral("basedati.mdb"));
    try {
        if (QFileInfo::exists(sorgente)) {
            // A copy: the posting changes the file, and the source serves the other benchmarks.
            if (!QFile::copy(sorgente, copia))
                throw store::DbError(0, QStringLiteral("cannot copy ") + sorgente);
        } else {
            out << "writing " << copia << " (1,000,000 movements)..." << Qt::endl;
            bench::GeneraBasedati(copia, bench::Volume{});
        }
        auto &p = bench::PreparaProgramma(copia);
        p.UtenteCorrente = QStringLiteral("administrator");

        store::Database &db = frame::basedati();
        const qint64 movimenti = db.scalar(QStringLiteral("select count(*) from Movimentazioni")).toLongLong();
        // Start from a clean state: everything finished is posted, then the
        // first 100,000 finished, not cancelled movements (by id) are unposted again.
        {
            store::Transaction t(db);
            db.execute(QStringLiteral("update Movimentazioni set Contabilizzato = -1 where Entrato = 0 and Annullato = 0 and Contabilizzato = 0"));
            db.execute(QStringLiteral("update Movimentazioni set Contabilizzato = 0 where id in (select id from Movimentazioni "
                                      "where Entrato = 0 and Annullato = 0 order by id limit ?)"),
                       {DaContabilizzare});
            t.commit();
        }
        const qint64 attesi = db.scalar(QStringLiteral("select count(*) from Movimentazioni where Entrato = 0 and Annullato = 0 and Contabilizzato = 0")).toLongLong();

        bench::AlwaysOk prompter;
        QElapsedTimer timer;
        timer.start();
        const parking::EsitoContabilizzazione esito = parking::Contabilizza(prompter);
        const double ms = timer.nsecsElapsed() / 1e6;

        QElapsedTimer secondo;
        secondo.start();
        const parking::EsitoContabilizzazione vuoto = parking::Contabilizza(prompter);
        const double msVuoto = secondo.nsecsElapsed() / 1e6;

        if (!esito.contabilizzato || esito.movimenti != attesi || vuoto.contabilizzato)
            throw store::DbError(0, QStringLiteral("posting went wrong: ") + prompter.shown.join(QLatin1Char('|')));
        out << Qt::fixed;
        out.setRealNumberPrecision(1);
        out << "database: " << movimenti << " movements\n";
        out << "Contabilizza, " << esito.movimenti << " movements, total " << esito.totale.toPlainText() << ": " << ms
            << " ms (goal: under 1000 ms)\n";
        out << "Contabilizza again, nothing to post: " << msVuoto << " ms\n";
    } catch (const store::DbError &err) {
        QTextStream(stderr) << "failed: " << err.message() << "\n";
        store::Connections::closeAll();
        return 1;
    }
    store::Connections::closeAll();
    return 0;
}
