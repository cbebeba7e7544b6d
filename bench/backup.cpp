// SPDX-License-Identifier: GPL-3.0-or-later
// bench_backup [FOLDER]: backup at level 9 and 0 and restore of a working
// database of about 200 MB (written first into FOLDER when missing), through
// the same routines as the windows, side by side with gzip on the same file.
// Throughput is the database size over the time taken, in MB/s (10^6 bytes).
#include "AlwaysOk.h"
#include "Generator.h"

#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "safety/Backup.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Schema.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTextStream>

#include <algorithm>
#include <functional>

namespace {

constexpr int Movements = 1'070'000; // about 200 MB of working database
constexpr int Runs = 2;              // the best of these counts, so that a stray hiccup does not


double bestSeconds(const std::function<void()> &work)
{
    double best = 1e300;
    for (int i = 0; i < Runs; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        best = std::min(best, t.nsecsElapsed() / 1e9);
    }
    return best;
}

// gzip with `args` from `input` into `output`, as a shell would run "gzip args < input > output".
void gzip(const QStringList &args, const QString &input, const QString &output)
{
    QProcess p;
    p.setStandardInputFile(input);
    p.setStandardOutputFile(output, QIODevice::Truncate);
    p.start(QStringLiteral("gzip"), args);
    if (!p.waitForFinished(-1) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        throw store::DbError(0, QStringLiteral("gzip %1 failed: %2").arg(args.join(u' '), QString::fromLocal8Bit(p.readAllStandardError())));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                    : QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bench-data/backup"));
    QDir().mkpath(folder);
    QDir().mkpath(folder + QStringLiteral("/copie"));
    const QString db = QDir(folder).filePath(QStringLiteral("basedati.mdb"));
    const QString backups = QDir(folder).filePath(QStringLiteral("copie/"));
    bench::AlwaysOk prompter;
    try {
        if (!QFileInfo::exists(db)) {
            out << "writing " << db << " (" << Movements << " movements)..." << Qt::endl;
            bench::Volume v;
            v.movimenti = Movements;
            bench::GeneraBasedati(db, v);
        }
        store::Schema::writeDeliveredDatabases(folder, 1); // the catalogue beside it
        auto &p = frame::pub();
        p.Pathdata = QFileInfo(db).absoluteFilePath();
        p.PercorsoElencoBackup = QDir(folder).absoluteFilePath(QStringLiteral("ElencoBackup.mdb"));
        p.UtenteCorrente = QStringLiteral("bench");
        const double mb = QFileInfo(db).size() / 1e6;

        QString made9, made0;
        const auto backupAt = [&](bool compressed, QString *made) {
            safety::BackupRequest r;
            r.folder = backups;
            r.compressed = compressed;
            r.keep = 1;
            const std::optional<QString> file = safety::makeBackup(r, prompter, {});
            if (!file)
                throw store::DbError(0, QStringLiteral("backup failed: ") + prompter.shown.join(u'|'));
            *made = *file;
        };
        const double ours9 = bestSeconds([&] { backupAt(true, &made9); });
        const qint64 size9 = QFileInfo(made9).size();
        QFile::rename(made9, backups + QStringLiteral("level9.zl"));
        const double ours0 = bestSeconds([&] { backupAt(false, &made0); });
        const qint64 size0 = QFileInfo(made0).size();

        safety::CatalogueEntry entry;
        entry.percorso = backups;
        entry.nomeFile = QStringLiteral("level9.zl");
        entry.data = QDateTime::currentDateTime();
        const double oursRestore = bestSeconds([&] {
            if (!safety::restoreBackup(entry, prompter))
                throw store::DbError(0, QStringLiteral("restore failed: ") + prompter.shown.join(u'|'));
        });
        // The expansion alone, without the check of the expanded database.
        const QString scratch = QDir(folder).filePath(QStringLiteral("expanded.tmp"));
        const double oursExpand = bestSeconds([&] { safety::expandFile(entry.filePath(), scratch); });
        QFile::remove(scratch);

        const QString gz = QDir(folder).filePath(QStringLiteral("gzip.out"));
        const double gzip9 = bestSeconds([&] { gzip({QStringLiteral("-9"), QStringLiteral("-c")}, db, gz); });
        const double gzip1 = bestSeconds([&] { gzip({QStringLiteral("-1"), QStringLiteral("-c")}, db, gz); });
        const QString gz9 = gz + QStringLiteral(".gz");
        gzip({QStringLiteral("-9"), QStringLiteral("-c")}, db, gz9);
        const double gunzip = bestSeconds([&] { gzip({QStringLiteral("-d"), QStringLiteral("-c")}, gz9, gz); });
        QFile::remove(gz);
        QFile::remove(gz9);
        // The backups go; the database stays for the next run.
        QFile::remove(entry.filePath());
        QFile::remove(made0);

        out << Qt::fixed;
        out.setRealNumberPrecision(1);
        out << "database: " << mb << " MB; backup files: level 9 " << size9 / 1e6 << " MB, level 0 " << size0 / 1e6
            << " MB; best of " << Runs << " runs\n";
        out << "                         ours MB/s   gzip MB/s         ours/gzip\n";
        const auto row = [&](const char *what, double ours, const char *tool, double theirs) {
            out << qSetFieldWidth(24) << Qt::left << what << qSetFieldWidth(10) << Qt::right << mb / ours
                << qSetFieldWidth(0) << "   " << qSetFieldWidth(9) << mb / theirs << qSetFieldWidth(0) << " "
                << qSetFieldWidth(8) << Qt::left << tool << qSetFieldWidth(0);
            out.setRealNumberPrecision(2);
            out << theirs / ours << "x\n";
            out.setRealNumberPrecision(1);
        };
        row("backup, level 9", ours9, "gzip -9", gzip9);
        row("backup, level 0", ours0, "gzip -1", gzip1);
        row("restore (with check)", oursRestore, "gzip -d", gunzip);
        row("expansion alone", oursExpand, "gzip -d", gunzip);
        out << "ours: written under a temporary name, flushed to disk, renamed, listed in the catalogue; gzip: to the page cache\n";
    } catch (const store::DbError &e) {
        QTextStream(stderr) << "failed: " << e.message() << "\n";
        return 1;
    } catch (const safety::BackupError &e) {
        QTextStream(stderr) << "failed: " << e.message() << "\n";
        return 1;
    }
    store::Connections::closeAll();
    return 0;
}
