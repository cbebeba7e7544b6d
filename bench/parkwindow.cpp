// SPDX-License-Identifier: GPL-3.0-or-later
// bench_parkwindow [PATH] [--grab DIR]: the parking window on the database at
// PATH, or on the million and ten million movements (bench::BasiDati): opening it (which
// lists the vehicles inside), the first painted screen of OptTu with no date
// (every movement, on the first row of the year in the preset year box) and
// of OptEn, a quick search by number and by plate prefix,
// and the resident memory with the whole list read. With --grab, pictures of
// the window in both layouts are written to DIR.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "parking/ui/frmPark.h"

#include "forms/RecordsetModel.h"
#include "forms/ui/FormRecord.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Connections.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableView>
#include <QTextStream>

#include <memory>
#include <vector>

namespace {

// Lets the window paint what changed, as the user would see it.
void dipingi(QWidget &w)
{
    QApplication::processEvents();
    w.repaint();
}

template <typename T>
T *figlio(QWidget &w, const char *nome)
{
    return w.findChild<T *>(QLatin1String(nome));
}

// Every figure of the window on one database.
void misura(const QString &path, const QString &cartellaFoto, QTextStream &out)
{
    auto &p = bench::PreparaProgramma(path);
    p.UtenteCorrente = QStringLiteral("administrator");
    p.FasciaDefault = QStringLiteral("01");
    bench::AlwaysOk prompter;

    std::unique_ptr<parking::frmPark> finestra;
    double costruita = 0;
    const auto apri = [&] {
        return bench::timed([&] {
            costruita = bench::timed([&] { finestra = std::make_unique<parking::frmPark>(prompter); });
            finestra->setAttribute(Qt::WA_DeleteOnClose, false);
            finestra->resize(1200, 720);
            finestra->show();
            dipingi(*finestra);
        });
    };
    // The first opening in a process also loads the style, fonts and plugins once.
    const double prima = apri();
    const double primaCostruita = costruita;
    finestra.reset();
    const double seconda = apri();
    out << "open the window (OptEn, today), painted: first " << prima << " ms (built in " << primaCostruita
        << "), again " << seconda << " ms (built in " << costruita << ")\n";

    auto *data = figlio<QLineEdit>(*finestra, "TxtDR_0");
    auto *griglia = figlio<QTableView>(*finestra, "TDBGrid2");
    const auto opzione = [&](const char *nome) {
        return bench::timed([&] {
            figlio<QRadioButton>(*finestra, nome)->click();
            dipingi(*finestra);
        });
    };
    data->clear();
    std::vector<double> tutti, dentro;
    for (int i = 0; i < 7; ++i) {
        tutti.push_back(opzione("OptTu"));
        dentro.push_back(opzione("OptEn"));
    }
    out << "OptTu, no date, first screen: median " << bench::stats(tutti).median << " ms (p99 "
        << bench::stats(tutti).p99 << ")\n";
    out << "OptEn, no date, first screen: median " << bench::stats(dentro).median << " ms (p99 "
        << bench::stats(dentro).p99 << ")\n";

    // With the year box emptied no row is sought: the list opens on its first rows.
    auto *anno = figlio<QLineEdit>(*finestra, "TxtTR_1");
    anno->clear();
    std::vector<double> senzaAnno;
    for (int i = 0; i < 7; ++i) {
        senzaAnno.push_back(opzione("OptTu"));
        opzione("OptEn");
    }
    out << "OptTu, no date, no year, first screen: median " << bench::stats(senzaAnno).median << " ms\n";
    anno->setText(QStringLiteral("2026"));

    opzione("OptTu");
    auto *numero = figlio<QLineEdit>(*finestra, "TxtProg");
    auto *targa = figlio<QLineEdit>(*finestra, "TxtTR_2");
    const auto cerca = [&](const QString &n, const QString &t) {
        std::vector<double> v;
        for (int i = 0; i < 9; ++i) {
            numero->setText(n);
            targa->setText(t);
            v.push_back(bench::timed([&] {
                finestra->RicercaRapida(true);
                dipingi(*finestra);
            }));
        }
        return bench::stats(v).median;
    };
    out << "quick search by number (year 2026, no. 1000, in OptTu), shown: " << cerca(QStringLiteral("1000"), QString()) << " ms\n";
    out << "quick search by plate prefix 'AB1', shown: " << cerca(QString(), QStringLiteral("AB1")) << " ms\n";
    out << "quick search by plate prefix 'AB12C', shown: " << cerca(QString(), QStringLiteral("AB12C")) << " ms\n";

    if (!cartellaFoto.isEmpty()) {
        numero->clear();
        targa->clear();
        data->clear();
        opzione("OptTu");
        griglia->selectRow(3);
        dipingi(*finestra);
        finestra->grab().save(cartellaFoto + QStringLiteral("/park-operation.png"));
        finestra->bottoni(QStringLiteral("gestione"));
        finestra->bottoni(QStringLiteral("trova"));
        dipingi(*finestra);
        finestra->grab().save(cartellaFoto + QStringLiteral("/park-filters.png"));
        finestra->Command6();
        dipingi(*finestra);
        finestra->grab().save(cartellaFoto + QStringLiteral("/park-list.png"));
        finestra->Command5();
    }

    opzione("OptTu");
    const double tutto = bench::timed([&] {
        finestra->datPrimaryRS().caricaTutto();
        griglia->scrollToBottom();
        dipingi(*finestra);
    });
    out << "whole list read and shown at its end: " << tutto << " ms, " << finestra->datPrimaryRS().rowCount()
        << " rows\n";
    out << "resident memory with the full list open: " << bench::memoriaMb("VmRSS") << " MB (peak "
        << bench::memoriaMb("VmHWM") << " MB)\n";
    finestra.reset();
    store::Connections::closeAll();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QStringList argomenti = app.arguments().mid(1);
    QString cartellaFoto;
    if (const int g = int(argomenti.indexOf(QStringLiteral("--grab"))); g >= 0 && g + 1 < argomenti.size()) {
        cartellaFoto = argomenti[g + 1];
        argomenti.remove(g, 2);
    }
    QTextStream out(stdout);
    for (const QString &path : bench::BasiDati(argomenti.value(0))) {
        out << "database " << path << Qt::endl;
        misura(path, cartellaFoto, out);
    }
    return 0;
}
