// SPDX-License-Identifier: GPL-3.0-or-later
// bench_register [PATH]: entry and exit through the register logic on a database
// of a million movements (written first when PATH does not exist), against the
// floor of one durable single-row insert; the count of vehicles inside; opening.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Programma.h"
#include "Misure.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "parking/Registro.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTextStream>

#include <algorithm>
#include <vector>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QString path = bench::BasedatiGrande(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    try {
        bench::PreparaProgramma(path);

        std::vector<double> open;
        for (int i = 0; i < 10; ++i)
            open.push_back(bench::timed([&] { store::Database db(path, QLatin1String(store::DatabaseKey)); }));

        store::Database &db = frame::basedati();
        const qint64 movimenti = db.scalar(QStringLiteral("select count(*) from Movimentazioni")).toLongLong();

        std::vector<double> floor;
        for (int i = 0; i < 200; ++i)
            floor.push_back(bench::timed([&] {
                db.execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, IdUtente) "
                                          "values ('2026', ?, ?, 'FLOOR01', '01', -1, 1)"),
                           {-1 - i, QDateTime::currentDateTime()});
            }));
        db.execute(QStringLiteral("delete from Movimentazioni where Targa = 'FLOOR01'"));

        bench::AlwaysOk prompter;
        store::Recordset form(db, QStringLiteral("select * from Q_Movimentazioni_Utenti order by id desc"));
        form.MoveFirst();
        std::vector<double> entries;
        std::vector<qint64> ids;
        for (int i = 0; i < 1000; ++i) {
            parking::PannelloMovimento pn;
            pn.targa = QStringLiteral("BN%1XY").arg(i, 4, 10, QLatin1Char('0'));
            pn.fascia = i % 2 ? QStringLiteral("01") : QStringLiteral("02");
            entries.push_back(bench::timed([&] {
                if (!parking::EntraEsce(form, true, false, pn, prompter).scritto)
                    throw store::DbError(0, QStringLiteral("entry refused: ") + prompter.shown.join(QLatin1Char('|')));
            }));
            ids.push_back(form.value(QStringLiteral("id")).toLongLong());
        }

        std::vector<double> exits;
        for (qint64 id : ids) {
            store::Recordset one(db, QStringLiteral("select * from Q_Movimentazioni_Utenti where id = ?"), {id});
            one.MoveFirst();
            parking::PannelloMovimento pn;
            pn.targa = one.value(QStringLiteral("Targa")).toString();
            pn.dataIngresso = one.value(QStringLiteral("DataOra")).toDateTime().date();
            exits.push_back(bench::timed([&] {
                if (!parking::EntraEsce(one, false, false, pn, prompter).scritto)
                    throw store::DbError(0, QStringLiteral("exit refused: ") + prompter.shown.join(QLatin1Char('|')));
            }));
        }

        std::vector<double> inside;
        qint32 dentro = 0;
        for (int i = 0; i < 50; ++i)
            inside.push_back(bench::timed([&] { dentro = parking::VeicoliDentro(); }));

        const bench::Stats o = bench::stats(open), f = bench::stats(floor), e = bench::stats(entries), x = bench::stats(exits), v = bench::stats(inside);
        out << Qt::fixed;
        out.setRealNumberPrecision(2);
        out << "database: " << movimenti << " movements\n";
        out << "open with key:            median " << o.median << " ms\n";
        out << "bare durable insert:      median " << f.median << " ms, p99 " << f.p99 << " ms\n";
        out << "entry (EntraEsce):        median " << e.median << " ms, p99 " << e.p99 << " ms  = " << e.median / f.median
            << "x the bare insert\n";
        out << "exit (EntraEsce):         median " << x.median << " ms, p99 " << x.p99 << " ms  = " << x.median / f.median
            << "x the bare insert\n";
        out << "VeicoliDentro:            median " << v.median << " ms (" << dentro << " inside)\n";
        // Leave the file as it was found, for the next run.
        db.execute(QStringLiteral("delete from Movimentazioni where Targa like 'BN____XY'"));
        db.execute(QStringLiteral("update TabProgressivi set Progressivo = (select max(Progressivo) from Movimentazioni "
                                  "where Anno = '2026') where Anno = '2026'"));
    } catch (const store::DbError &err) {
        QTextStream(stderr) << "failed: " << err.message() << "\n";
        return 1;
    }
    store::Connections::closeAll();
    return 0;
}
