// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the delivered empty databases into the folder given on the command line.
#include "store/DbError.h"
#include "store/Schema.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        QTextStream(stderr) << "usage: veltano_makedb FOLDER\n";
        return 2;
    }
    try {
        for (const QString &f : store::Schema::writeDeliveredDatabases(QString::fromLocal8Bit(argv[1]), VELTANO_MINOR_VERSION))
            QTextStream(stdout) << "written " << f << "\n";
    } catch (const store::DbError &e) {
        QTextStream(stderr) << e.message() << "\n";
        return 1;
    }
    return 0;
}
