// SPDX-License-Identifier: GPL-3.0-or-later
// bench_report [PATH]: the parking report over 100,000 movements, both graphs on,
// written to a PDF; prints the time, the pages and the peak memory of the process.
// The database is written first when PATH (default <build>/bench-data/report.mdb) is missing.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Programma.h"
#include "Misure.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "reports/engine/CrystalReport.h"
#include "store/DbError.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

int main(int argc, char **argv)
{
    // The graphs are drawn with Qt Charts, which needs a widget application; no screen is needed.
    bench::SenzaSchermo();
    QApplication app(argc, argv);
    QTextStream out(stdout);
    const QString dir = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bench-data"));
    const QString path = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir(dir).filePath(QStringLiteral("report.mdb"));
    const QString pdf = QDir(QFileInfo(path).path()).filePath(QStringLiteral("park-report.pdf"));
    try {
        if (!QFileInfo::exists(path)) {
            QDir().mkpath(QFileInfo(path).path());
            out << "writing " << path << " (100,000 movements)..." << Qt::endl;
            QElapsedTimer t;
            t.start();
            bench::GeneraBasedati(path, bench::Volume{100000, 1000, 1, 2026});
            out << "  written in " << t.elapsed() / 1000.0 << " s" << Qt::endl;
        }
    } catch (const store::DbError &e) {
        QTextStream(stderr) << e.message() << Qt::endl;
        return 1;
    }
    auto &p = bench::PreparaProgramma(path);
    const double before = bench::memoriaMb("VmHWM");

    bench::AlwaysOk prompter;
    reports::CrystalReport report(prompter);
    report.setReportFileName(p.CartellaProgramma + QStringLiteral("park.rpt"));
    report.setConnect(QStringLiteral(";pwd=") + p.CodaConnessione);
    report.setDataFiles(0, p.Pathdata);
    report.setFormulas(0, QStringLiteral("OmetteGrafGiorni=false"));
    report.setFormulas(1, QStringLiteral("OmetteGrafOre=false"));
    report.setGraphText(0, QStringLiteral(" GROUPFTR.0.0; 0; ") + frame::TestoLinguaApici(QStringLiteral("M0336")) + QStringLiteral(";;;;;;") +
                               frame::TestoLinguaApici(QStringLiteral("M0334")) + QLatin1Char(';'));
    report.setGraphText(1, QStringLiteral(" GROUPFTR.0.1; 0;") + frame::TestoLinguaApici(QStringLiteral("M0337")) + QStringLiteral(";;;;;") +
                               frame::TestoLinguaApici(QStringLiteral("M0339")) + QLatin1Char(';') +
                               frame::TestoLinguaApici(QStringLiteral("M0338")) + QLatin1Char(';'));
    report.setDiscardSavedData(true);
    report.setDestination(reports::CrystalReport::ToFile);
    report.setPrintFileName(pdf);

    QElapsedTimer t;
    t.start();
    const bool ok = report.setAction(1);
    const double seconds = t.elapsed() / 1000.0;
    if (!ok) {
        QTextStream(stderr) << "the report failed: " << prompter.shown.join(QLatin1Char('\n')) << Qt::endl;
        return 1;
    }
    const double peak = bench::memoriaMb("VmHWM");
    out << "park report, both graphs, to PDF: " << report.lastRowCount() << " rows, " << report.lastPageCount() << " pages, "
        << QString::number(seconds, 'f', 2) << " s (goal < 15 s), " << QFileInfo(pdf).size() / (1024 * 1024) << " MB of PDF\n";
    out << "peak memory: " << QString::number(peak, 'f', 0) << " MB (goal < 500 MB; " << QString::number(before, 'f', 0)
        << " MB before the run)\n";
    out << "written to " << pdf << Qt::endl;

    // The slip of one stay on the same database, as the register prints it at each entry and exit.
    report.setReportFileName(p.CartellaProgramma + QStringLiteral("Movimento.rpt"));
    report.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.Id}=54321"));
    report.setPrintFileName(QDir(QFileInfo(path).path()).filePath(QStringLiteral("slip.pdf")));
    t.restart();
    if (!report.setAction(1) || report.lastRowCount() != 1) {
        QTextStream(stderr) << "the slip failed: " << prompter.shown.join(QLatin1Char('\n')) << Qt::endl;
        return 1;
    }
    out << "slip of one movement to PDF: " << t.elapsed() << " ms" << Qt::endl;
    return seconds < 15 && peak < 500 ? 0 : 3;
}
