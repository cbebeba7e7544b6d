// SPDX-License-Identifier: GPL-3.0-or-later
// bench_elenchi [PATH]: the customer lists of the reports menu on 100,000 customers
// and suppliers and 1,000,000 cash rows (PATH, by default bench-data/cassa.mdb,
// written when missing; only read): the customer list and the overdue-fee list to
// PDF, the customer list's run until the viewer is handed its pages, the print
// preview from then to its first paint (the preview draws only the page it shows),
// and the customer list as CSV.
// Goals: each under 5 s, the first preview page under 1 s, under 500 MB resident.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "frame/Routines.h"
#include "reports/engine/CrystalReport.h"
#include "reports/runs/StampeElenchi.h"
#include "reports/ui/VisoreAnteprima.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QScrollArea>
#include <QTest>
#include <QTextStream>

namespace {

constexpr int Giri = 3;

// Keeps the pages of a run sent to the window and when they were handed over.
struct Registra final : reports::Visore {
    void mostra(std::shared_ptr<const reports::PagineReport> p, int, double) override
    {
        ms = inizio.nsecsElapsed() / 1e6;
        pagine = std::move(p);
    }
    QElapsedTimer inizio;
    double ms = -1;
    std::shared_ptr<const reports::PagineReport> pagine;
};

// Notes the first paint of a widget.
struct PrimoPaint final : QObject {
    bool eventFilter(QObject *o, QEvent *e) override
    {
        dipinto = dipinto || e->type() == QEvent::Paint;
        return QObject::eventFilter(o, e);
    }
    bool dipinto = false;
};

} // namespace

int main(int argc, char **argv)
{
    bench::SenzaSchermo();
    QApplication app(argc, argv);
    QTextStream out(stdout);
    out << Qt::fixed;
    out.setRealNumberPrecision(2);
    int esito = 0;
    try {
        const QString path = bench::BasedatiCassa(app.arguments().value(1));
        bench::PreparaProgramma(path);
        store::Database &db = frame::basedati();
        out << "database: " << db.scalar(QStringLiteral("select count(*) from Clienti where Cliente <> 0")).toLongLong()
            << " customers, " << db.scalar(QStringLiteral("select count(*) from Clienti where Cliente = 0")).toLongLong()
            << " suppliers, "
            << db.scalar(QStringLiteral("select count(*) from Clienti where Cliente <> 0 and DataUltimoPagamento < ?"),
                         {QDateTime(QDate::currentDate(), QTime(0, 0))})
                   .toLongLong()
            << " customers overdue today\n";
        const QDir cartella(QFileInfo(path).path());
        bench::AlwaysOk prompter;
        bool tutto = true;

        // The two lists to PDF, as the reports menu runs them with the file as destination.
        for (const char *codice : {"C", "CC"}) {
            reports::Lancio l = reports::LancioElenco(QLatin1String(codice), QStringLiteral("Elenco"));
            l.destinazione = reports::Lancio::ToFile;
            reports::CrystalReport report(prompter);
            const QString pdf = cartella.filePath(QStringLiteral("elenco-%1.pdf").arg(QLatin1String(codice)));
            report.setPrintFileName(pdf);
            std::vector<double> ms;
            for (int giro = 0; giro < Giri; ++giro) {
                bool ok = false;
                ms.push_back(bench::timed([&] { ok = report.esegui(l); }));
                if (!ok)
                    throw store::DbError(0, QStringLiteral("the list failed: ") + prompter.shown.join(QLatin1Char('|')));
            }
            out << "list \"" << codice << "\": " << report.lastRowCount() << " rows, " << report.lastPageCount() << " pages, "
                << QFileInfo(pdf).size() / 1024 << " KB of PDF\n";
            bench::rigaTempi(out, "  to PDF", ms, 5000);
            tutto = tutto && bench::stats(ms).median < 5000;
        }

        // The customer list to the window: from the run's start to the viewer handed its pages.
        Registra registra;
        reports::CrystalReport finestra(prompter, &registra);
        const reports::Lancio l = reports::LancioElenco(QStringLiteral("C"), QStringLiteral("Elenco"));
        std::vector<double> pagine, csv;
        for (int giro = 0; giro < Giri; ++giro) {
            registra.inizio.start();
            if (!finestra.esegui(l) || !registra.pagine)
                throw store::DbError(0, QStringLiteral("the list failed: ") + prompter.shown.join(QLatin1Char('|')));
            pagine.push_back(registra.ms);
        }
        bench::rigaTempi(out, "list \"C\" to the window, run until the viewer has its pages", pagine, 1000);

        // The same pages as CSV.
        const QString fileCsv = cartella.filePath(QStringLiteral("elenco-C.csv"));
        for (int giro = 0; giro < Giri; ++giro) {
            QString errore;
            csv.push_back(bench::timed([&] { errore = registra.pagine->writeCsv(fileCsv); }));
            if (!errore.isEmpty())
                throw store::DbError(0, QStringLiteral("the CSV failed: ") + errore);
        }
        out << "list \"C\" as CSV: " << QFileInfo(fileCsv).size() / 1024 << " KB\n";
        bench::rigaTempi(out, "  CSV written", csv, 5000);
        const double piccoSenzaAnteprima = bench::memoriaMb("VmHWM");

        // The print preview of those pages, from its opening to its first paint.
        reports::VisoreAnteprima anteprima;
        std::vector<double> primaPagina;
        for (int giro = 0; giro < Giri; ++giro) {
            PrimoPaint primo;
            primaPagina.push_back(bench::timed([&] {
                anteprima.mostra(registra.pagine, l.statoFinestra, l.zoom);
                reports::AnteprimaReport *d = anteprima.finestra();
                QScrollArea *area = d ? d->findChild<QScrollArea *>() : nullptr;
                if (!area || !area->widget())
                    throw store::DbError(0, QStringLiteral("no preview window"));
                area->widget()->installEventFilter(&primo);
                if (!QTest::qWaitFor([&] { return primo.dipinto; }, 120000))
                    throw store::DbError(0, QStringLiteral("the preview was never painted"));
            }));
            anteprima.finestra()->close();
            QCoreApplication::processEvents();
        }
        bench::rigaTempi(out, "print preview, opened to first paint", primaPagina, 1000);
        // The last page: the longest walk before a page is drawn, as when the user jumps to the end.
        const QSizeF mm = registra.pagine->pageLayout().fullRect(QPageLayout::Millimeter).size();
        QImage ultima(int(mm.width() * 96 / 25.4), int(mm.height() * 96 / 25.4), QImage::Format_RGB32);
        ultima.setDotsPerMeterX(3780);
        ultima.setDotsPerMeterY(3780);
        ultima.fill(Qt::white);
        const double msUltima = bench::timed([&] {
            QPainter painter(&ultima);
            registra.pagine->paintPage(painter, ultima, registra.pagine->pageCount());
        });
        out << "    the last page alone, drawn: " << msUltima << " ms\n";
        const double primo = bench::stats(pagine).median + bench::stats(primaPagina).median;
        out << "  first preview page from the run's start: " << primo << " ms"
            << (primo < 1000 ? QStringLiteral("  (goal met)\n") : QStringLiteral("  (over the 1000 ms goal)\n"));

        const double picco = bench::memoriaMb("VmHWM");
        out << "RSS " << bench::memoriaMb("VmRSS") << " MB (peak " << picco << " MB; " << piccoSenzaAnteprima
            << " MB before the preview)" << (picco < 500 ? QStringLiteral("  (goal met)\n") : QStringLiteral("  (over the 500 MB goal)\n"));
        esito = tutto && bench::stats(csv).median < 5000 && primo < 1000 && picco < 500 ? 0 : 3;
        store::Connections::closeAll();
    } catch (const store::DbError &e) {
        QTextStream(stderr) << "failed: " << e.message() << Qt::endl;
        return 1;
    }
    return esito;
}
