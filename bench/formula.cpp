// SPDX-License-Identifier: GPL-3.0-or-later
// bench_formula [ROWS]: compiles the parking report's selections and runs them
// over in-memory movements (a million by default, dates over five years),
// printing rows per second for each; the best of five passes counts.
#include "reports/formula/Formula.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTextStream>

#include <QVariant>
#include <QVector>

#include <vector>

namespace {

enum { DataOra, Entrato, Targa, NumCampi };

struct Ambiente : reports::Ambito {
    int campo(const QString &t, const QString &n) const override
    {
        if (t.compare(QLatin1String("Q_Movimentazioni_Utenti"), Qt::CaseInsensitive) != 0)
            return -1;
        const char *nomi[] = {"DataOra", "entrato", "targa"};
        for (int i = 0; i < NumCampi; ++i)
            if (n.compare(QLatin1String(nomi[i]), Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
    int formula(const QString &) const override { return -1; }
};

// One row is a window on a flat array, as the engine's column store would be.
struct RigaPiatta : reports::Riga {
    const reports::Valore *base = nullptr;
    const reports::Valore &campo(int i) const override { return base[i]; }
    reports::Valore formula(int) const override { return reports::Valore(); }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const int righe = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 1000000;

    // Plates repeat, as they do in a car park; entries spread over five years,
    // mostly in opening hours; about one vehicle in twenty is still inside.
    QRandomGenerator caso(42);
    QStringList targhe;
    for (int i = 0; i < 5000; ++i)
        targhe << QStringLiteral("%1%2%3").arg(QChar('A' + caso.bounded(26))).arg(QChar('A' + caso.bounded(26)))
                      .arg(caso.bounded(100000, 999999));
    targhe[0] = QStringLiteral("AB123CD");
    std::vector<reports::Valore> dati(size_t(righe) * NumCampi);
    const QDate inizio(2022, 1, 1);
    for (int r = 0; r < righe; ++r) {
        const QDate giorno = inizio.addDays(caso.bounded(5 * 365));
        const QTime ora = QTime(6, 0).addSecs(caso.bounded(17 * 3600));
        reports::Valore *riga = &dati[size_t(r) * NumCampi];
        riga[DataOra] = reports::Valore::daDataOra(giorno, ora);
        riga[Entrato] = reports::Valore(caso.bounded(20) == 0);
        // One regular customer's plate comes back every fiftieth row or so.
        riga[Targa] = reports::Valore(targhe.at(caso.bounded(50) == 0 ? 0 : caso.bounded(targhe.size())));
    }

    const QString periodo =
        "{Q_Movimentazioni_Utenti.DataOra} >= DateSerial (2026,3,1) and TimeSerial (Hour "
        "({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) >= TimeSerial (8,0,0) and "
        "{Q_Movimentazioni_Utenti.DataOra} <= DateSerial (2026,3,31) and TimeSerial (Hour "
        "({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) <= TimeSerial (18,30,0)";
    const struct {
        const char *nome;
        QString testo;
    } prove[] = {
        {"vehicles out, period, hours", "{Q_Movimentazioni_Utenti.entrato} = false and " + periodo},
        {"plate, vehicles in, period, hours",
         "{Q_Movimentazioni_Utenti.targa} = \"AB123CD\" and {Q_Movimentazioni_Utenti.entrato} = true and " + periodo},
        {"period and hours first", periodo + " and {Q_Movimentazioni_Utenti.entrato} = false"},
    };

    out << "rows: " << righe << "\n";
    for (const auto &prova : prove) {
        const reports::Formula f = reports::Formula::compila(prova.testo, Ambiente());
        RigaPiatta riga;
        double migliore = 0;
        qint64 scelte = 0;
        for (int passo = 0; passo < 5; ++passo) {
            QElapsedTimer t;
            t.start();
            scelte = 0;
            for (int r = 0; r < righe; ++r) {
                riga.base = &dati[size_t(r) * NumCampi];
                scelte += f.seleziona(riga);
            }
            const double secondi = double(t.nsecsElapsed()) / 1e9;
            migliore = std::max(migliore, righe / secondi);
        }
        out << prova.nome << ": " << scelte << " selected, " << qRound64(migliore) << " rows/s\n";
        out.flush();
    }

    // What the engine pays to bring a date column in from the database layer.
    QVector<QVariant> varianti;
    varianti.reserve(righe);
    for (int r = 0; r < righe; ++r)
        varianti.append(QVariant(dati[size_t(r) * NumCampi + DataOra].dataOra()));
    QElapsedTimer t;
    t.start();
    qint64 somma = 0;
    for (const QVariant &v : std::as_const(varianti))
        somma += reports::Valore::daVariant(v).millisecondi() / 1000;
    const double secondi = double(t.nsecsElapsed()) / 1e9;
    out << "daVariant(QDateTime): " << qRound64(righe / secondi) << " values/s (" << (somma & 1) << ")\n";
    return 0;
}
