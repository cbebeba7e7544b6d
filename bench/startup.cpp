// SPDX-License-Identifier: GPL-3.0-or-later
// bench_startup [PATH]: time from process start to the login window standing on
// the screen, with the working database of a million movements (written first
// when PATH does not exist). Runs the program's own entry routine in a settings
// home of its own, so the user's settings are never touched.
#include "Programma.h"
#include "Generator.h"

#include "frame/Version.h"
#include "frame/ui/EntryRoutine.h"

#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>

#include <unistd.h>

namespace {

// Seconds since this process started, from the kernel's own record of it.
double secondsSinceProcessStart()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    QFile uptime(QStringLiteral("/proc/uptime"));
    if (!stat.open(QIODevice::ReadOnly) || !uptime.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray s = stat.readAll();
    const QList<QByteArray> fields = s.mid(s.lastIndexOf(')') + 2).split(' ');
    const double start = fields.value(19).toDouble() / double(sysconf(_SC_CLK_TCK)); // field 22 of the whole line
    return uptime.readAll().split(' ').value(0).toDouble() - start;
}

} // namespace

int main(int argc, char **argv)
{
    QElapsedTimer sinceMain;
    sinceMain.start();
    QTextStream out(stdout);
    QString path = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    if (path.isEmpty())
        path = QFileInfo(QString::fromLocal8Bit(argv[0])).absolutePath() + QStringLiteral("/../bench-data/basedati.mdb");
    path = QFileInfo(path).absoluteFilePath();
    if (!QFileInfo::exists(path)) {
        QDir().mkpath(QFileInfo(path).path());
        out << "writing " << path << " (1,000,000 movements)..." << Qt::endl;
        bench::GeneraBasedati(path, bench::Volume{});
        sinceMain.restart();
    }
    bench::SenzaSchermo();
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/.config")).toLocal8Bit());
    {
        QSettings settings(home.path() + QStringLiteral("/.config/Veltano/Veltano.ini"), QSettings::IniFormat);
        settings.setValue(QStringLiteral("impostazioni/pathdata"), path);
        settings.setValue(QStringLiteral("impostazioni/verdatabase"), QString::number(frame::VersioneMinore));
    }

    double fromStart = -1, fromMain = -1;
    frame::EntryRoutine(argc > 1 ? 1 : argc, argv, [&](QDialog &login) {
        fromMain = sinceMain.nsecsElapsed() / 1e6;
        fromStart = secondsSinceProcessStart() * 1000;
        login.reject();
    });
    if (fromMain < 0) {
        QTextStream(stderr) << "the login window never appeared\n";
        return 1;
    }
    out << "login window after " << fromStart << " ms from process start (" << fromMain << " ms from main)\n";
    return 0;
}
