// SPDX-License-Identifier: GPL-3.0-or-later
// bench_compaction [PATH]: times the compaction of a working database of a
// million movements (PATH, by default /tmp/veltano-bench/basedati.mdb, written
// first when missing) on a copy, as it stands and after the oldest fiscal year
// is deleted, with the file size before and after.
#include "Generator.h"

#include "safety/Compaction.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

double megabytes(const QString &path)
{
    return QFileInfo(path).size() / (1024.0 * 1024.0);
}

// The source of the benchmark: the given file, the register benchmark's copy, or a new one.
bool preparaSorgente(const QString &path, QTextStream &out)
{
    if (QFileInfo::exists(path))
        return true;
    QDir().mkpath(QFileInfo(path).path());
    const QString registro =
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bench-data/basedati.mdb"));
    if (QFileInfo::exists(registro)) {
        out << "copying " << QDir::cleanPath(registro) << Qt::endl;
        return QFile::copy(registro, path);
    }
    out << "writing " << path << " (1,000,000 movements, 10,000 customers)..." << Qt::endl;
    bench::GeneraBasedati(path, bench::Volume{});
    return true;
}

bool misura(const QString &cartella, const QString &etichetta, QTextStream &out)
{
    const QString file = QDir(cartella).filePath(QStringLiteral("basedati.mdb"));
    const double prima = megabytes(file);
    QElapsedTimer t;
    t.start();
    const bool ok = safety::CompattaMdb(cartella, QStringLiteral("basedati.mdb"), QStringLiteral(";PWD=quartzel"));
    const double secondi = t.nsecsElapsed() / 1e9;
    out << etichetta << ": " << (ok ? "compacted" : "FAILED") << " in " << secondi << " s, " << prima << " MB -> "
        << megabytes(file) << " MB" << Qt::endl;
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    out << Qt::fixed;
    out.setRealNumberPrecision(2);
    const QString sorgente = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                      : QStringLiteral("/tmp/veltano-bench/basedati.mdb");
    try {
        if (!preparaSorgente(sorgente, out)) {
            QTextStream(stderr) << "cannot prepare " << sorgente << "\n";
            return 1;
        }
        // Work on a copy: the source stays for the next run.
        const QString cartella = QFileInfo(sorgente).absolutePath() + QStringLiteral("/compaction");
        QDir(cartella).removeRecursively();
        QDir().mkpath(cartella);
        const QString copia = QDir(cartella).filePath(QStringLiteral("basedati.mdb"));
        if (!QFile::copy(sorgente, copia)) {
            QTextStream(stderr) << "cannot copy " << sorgente << " to " << copia << "\n";
            return 1;
        }
        qint64 movimenti = 0;
        QString anno;
        {
            store::Database db(copia, QStringLiteral("quartzel"));
            movimenti = db.scalar(QStringLiteral("select count(*) from Movimentazioni")).toLongLong();
            anno = db.scalar(QStringLiteral("select min(Anno) from Movimentazioni")).toString();
        }
        out << "database: " << movimenti << " movements" << Qt::endl;
        bool ok = misura(cartella, QStringLiteral("as generated       "), out);

        qint64 tolti = 0;
        {
            store::Database db(copia, QStringLiteral("quartzel"));
            tolti = db.execute(QStringLiteral("delete from Movimentazioni where Anno = ?"), {anno});
        }
        out << "deleted the " << tolti << " movements of " << anno << Qt::endl;
        ok = misura(cartella, QStringLiteral("after the deletion "), out) && ok;
        QDir(cartella).removeRecursively();
        return ok ? 0 : 1;
    } catch (const store::DbError &e) {
        QTextStream(stderr) << e.message() << "\n";
        return 1;
    }
}
