// SPDX-License-Identifier: GPL-3.0-or-later
// veltano_generate PATH [MOVEMENTS]: writes a large working database for the benchmarks.
#include "Generator.h"

#include "store/DbError.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    if (argc < 2) {
        QTextStream(stderr) << "usage: veltano_generate PATH [MOVEMENTS]\n";
        return 2;
    }
    bench::Volume v;
    if (argc > 2)
        v.movimenti = QString::fromLocal8Bit(argv[2]).toInt();
    QElapsedTimer t;
    t.start();
    try {
        bench::GeneraBasedati(QString::fromLocal8Bit(argv[1]), v);
    } catch (const store::DbError &e) {
        QTextStream(stderr) << e.message() << "\n";
        return 1;
    }
    out << "written " << argv[1] << ": " << v.movimenti << " movements, " << v.clienti << " customers in "
        << t.elapsed() / 1000.0 << " s\n";
    return 0;
}
