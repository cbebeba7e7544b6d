// SPDX-License-Identifier: GPL-3.0-or-later
// bench_chiusura [PATH]: the year closing and the removal of cancelled
// movements on 1,000,000 movements of five years, 100,000 customers and
// suppliers and 1,000,000 cash rows (PATH, by default bench-data/chiusura.mdb,
// written when missing). Each run works on a fresh copy of the file. Goals:
// the closing under 5 s, the removal under 2 s, under 300 MB resident.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "admin/ChiusuraAnno.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

// The register of the big benchmark database with the registry and cash book
// of the cash-book benchmark in the same file.
QString BasedatiChiusura(const QString &argomento)
{
    const QString path = QFileInfo(argomento.isEmpty()
                                       ? QCoreApplication::applicationDirPath() + QStringLiteral("/../bench-data/chiusura.mdb")
                                       : argomento)
                             .absoluteFilePath();
    if (QFileInfo::exists(path))
        return path;
    QDir().mkpath(QFileInfo(path).path());
    QTextStream(stdout) << "writing " << path << " (1,000,000 movements, 100,000 customers, 1,000,000 cash rows)..." << Qt::endl;
    // Written aside and renamed when whole: an interrupted run leaves no half file behind.
    const QString parziale = path + QStringLiteral(".part");
    bench::Volume v;
    v.clienti = 0;
    bench::GeneraBasedati(parziale, v);
    {
        store::Database db(parziale, QLatin1String(store::DatabaseKey));
        bench::GeneraClientiCassa(db, {});
    }
    QFile::rename(parziale, path);
    return path;
}

// A fresh copy of the file to work on, so that every run starts from the same data.
QString Copia(const QString &originale)
{
    const QString copia = originale + QStringLiteral(".run");
    QFile::remove(copia);
    if (!QFile::copy(originale, copia))
        throw store::DbError(0, QStringLiteral("cannot copy %1").arg(originale));
    return copia;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    out << Qt::fixed;
    out.setRealNumberPrecision(2);
    constexpr int Giri = 3;
    try {
        const QString path = BasedatiChiusura(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
        bench::PreparaProgramma(path);
        {
            store::Database db(path, QLatin1String(store::DatabaseKey));
            const auto conta = [&](const char *sql) { return db.scalar(QLatin1String(sql)).toLongLong(); };
            out << "database: " << conta("select count(*) from Movimentazioni") << " movements ("
                << conta("select count(*) from Movimentazioni where Contabilizzato <> 0 or Annullato <> 0") << " posted or cancelled, "
                << conta("select count(*) from Movimentazioni where Annullato <> 0") << " cancelled), "
                << conta("select count(*) from Clienti") << " customers and suppliers, " << conta("select count(*) from Cassa")
                << " cash rows\n";
        }
        bench::AlwaysOk prompter;
        std::vector<double> chiusura, rimozione;
        admin::DopoChiusura dopo;
        for (int giro = 0; giro < Giri; ++giro) {
            const QString copia = Copia(path);
            store::Database db(copia, QLatin1String(store::DatabaseKey));
            bool fatto = false;
            chiusura.push_back(bench::timed([&] {
                const auto esito = admin::ChiudiAnno(db, prompter, QStringLiteral("2026"), {}, QDate(2026, 12, 31));
                if ((fatto = esito.has_value()))
                    dopo = *esito;
            }));
            if (!fatto)
                throw store::DbError(0, QStringLiteral("the closing failed: ") + prompter.shown.join(QLatin1Char('|')));
        }
        for (int giro = 0; giro < Giri; ++giro) {
            const QString copia = Copia(path);
            store::Database db(copia, QLatin1String(store::DatabaseKey));
            bool fatto = false;
            rimozione.push_back(bench::timed([&] { fatto = admin::RimuoviAnnullati(db, prompter, QStringLiteral("2026")); }));
            if (!fatto)
                throw store::DbError(0, QStringLiteral("the removal failed: ") + prompter.shown.join(QLatin1Char('|')));
        }
        QFile::remove(path + QStringLiteral(".run"));

        bench::rigaTempi(out, "year closing", chiusura, 5000);
        bench::rigaTempi(out, "removal of cancelled movements", rimozione, 2000);
        out << "  carried into 2027: receipts " << dopo.contatori.entrata.toPlainText() << ", payments "
            << dopo.contatori.uscita.toPlainText() << "\n";
        const double picco = bench::memoriaMb("VmHWM");
        out << "RSS " << bench::memoriaMb("VmRSS") << " MB (peak " << picco << " MB)"
            << (picco < 300 ? QStringLiteral("  (goal met)\n") : QStringLiteral("  (over the 300 MB goal)\n"));
    } catch (const store::DbError &e) {
        QTextStream(stderr) << "failed: " << e.message() << "\n";
        return 1;
    }
    return 0;
}
