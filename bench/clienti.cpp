// SPDX-License-Identifier: GPL-3.0-or-later
// bench_clienti: the customers' window on 100,000 customers and suppliers and a
// cash book of 1,000,000 rows: the window opened (first screen painted), a click
// on the letter strip, F3 by the beginning of a surname, a move to another card
// (its cash rows and both lamps), a fee payment written, and the resident memory.
// Goal: each under 50 ms, under 150 MB resident.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "customers/ui/frmClienti.h"
#include "store/Connections.h"
#include "store/DbError.h"

#include <QApplication>
#include <QTableView>
#include <QTest>
#include <QTextStream>

int main(int argc, char **argv)
{
    bench::SenzaSchermo();
    QApplication app(argc, argv);
    QTextStream out(stdout);
    out.setRealNumberPrecision(3);
    try {
        bench::PreparaProgramma(bench::BasedatiCassa(app.arguments().value(1)));
        bench::AlwaysOk prompter;
        std::vector<double> apre, lettera, veloce, sposta, canone;
        const char *iniziali[] = {"B", "R", "M", "C", "V", "G", "F"};
        const char *cerca[] = {"Ros", "Bia", "Fer", "Col", "Ver", "Ric", "Mar"};
        for (int giro = 0; giro < 7; ++giro) {
            customers::frmClienti *w = nullptr;
            apre.push_back(bench::timed([&] {
                w = new customers::frmClienti(prompter, customers::Modo::Clienti);
                w->resize(1100, 720);
                w->show();
                if (!QTest::qWaitForWindowExposed(w))
                    qWarning("the window was not shown");
                w->grab();
            }));
            lettera.push_back(bench::timed([&] {
                w->ComElenco(customers::LettereStriscia().indexOf(QLatin1String(iniziali[giro])));
                w->grab();
            }));
            auto *rubrica = w->findChild<QTableView *>(QStringLiteral("TDBGridRubrica"));
            sposta.push_back(bench::timed([&] {
                rubrica->setCurrentIndex(rubrica->model()->index(40 + giro, 0));
                w->grab();
            }));
            veloce.push_back(bench::timed([&] {
                w->RicercaVeloce(QLatin1String(cerca[giro]));
                w->grab();
            }));
            w->Command5();
            w->bottoni(QStringLiteral("modifica"));
            canone.push_back(bench::timed([&] {
                w->CmdPag();
                w->grab();
            }));
            w->bottoni(QStringLiteral("annulla"));
            if (giro == 6)
                out << "RSS after seven rounds " << bench::memoriaMb("VmRSS") << " MB (peak " << bench::memoriaMb("VmHWM") << " MB)\n";
            w->close();
            QCoreApplication::processEvents();
        }
        bench::rigaTempi(out, "window opened, first screen", apre);
        bench::rigaTempi(out, "letter strip click", lettera);
        bench::rigaTempi(out, "F3 by a surname's beginning", veloce);
        bench::rigaTempi(out, "move to another card", sposta);
        bench::rigaTempi(out, "fee payment written", canone);
        store::Connections::closeAll();
    } catch (const store::DbError &e) {
        out << "error: " << e.message() << Qt::endl;
        return 1;
    }
    return 0;
}
