// SPDX-License-Identifier: GPL-3.0-or-later
// bench_search [PATH]: the quick search of the parking window on the database at
// PATH, or on the million and ten million movements (bench::BasiDati): by number and year,
// and by plate prefixes of 2, 3 and 5 characters. Each timing covers the search,
// opening its list as a Recordset and reading the first row; moving the list to
// the found row (and reading it) is timed apart. Goal: under 50 ms.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Programma.h"
#include "Misure.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "parking/Ricerca.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTextStream>

#include <algorithm>
#include <random>
#include <vector>

namespace {

struct Caso {
    QString nome;
    std::vector<parking::PannelloRicerca> pannelli;
};

// Every figure of the search on one database.
void misura(const QString &path, QTextStream &out)
{
    auto &p = bench::PreparaProgramma(path);
    p.FormatoData = QStringLiteral("dd/mm/yyyy");
    store::Database &db = frame::basedati();
    const qint64 movimenti = db.scalar(QStringLiteral("select count(*) from Movimentazioni")).toLongLong();
    const qint64 maxId = db.scalar(QStringLiteral("select max(id) from Movimentazioni")).toLongLong();

    // Numbers and plates of existing movements, drawn at random but repeatably.
    std::mt19937 rng(42);
    std::uniform_int_distribution<qint64> ids(1, maxId);
    auto campione = [&](int n) {
        std::vector<std::pair<QString, QString>> v; // (number, year) and plate
        std::vector<QString> targhe;
        while (int(v.size()) < n) {
            const qint64 id = ids(rng);
            store::Statement st = db.prepare(QStringLiteral("select Progressivo, Anno, Targa from Movimentazioni where id = ?"));
            st.bindAll({id});
            if (st.step())
                v.emplace_back(st.value(0).toString() + QLatin1Char('|') + st.value(1).toString(), st.value(2).toString());
        }
        return v;
    };
    const int N = 200;
    const auto righe = campione(N);

    // Two states of the panel: the whole register (day cleared, all
    // movements), the costly one; and a day as the window opens with.
    std::vector<Caso> casi;
    auto aggiungi = [&](const QString &nome, auto riempi) {
        Caso c{nome, {}};
        for (const auto &r : righe) {
            parking::PannelloRicerca pn;
            pn.opzione = parking::OpzioneElenco::Tutti;
            riempi(pn, r);
            c.pannelli.push_back(pn);
        }
        casi.push_back(c);
    };
    aggiungi(QStringLiteral("number + year, all movements"), [](parking::PannelloRicerca &pn, const auto &r) {
        pn.TxtProg = r.first.section(QLatin1Char('|'), 0, 0);
        pn.anno = r.first.section(QLatin1Char('|'), 1, 1);
    });
    for (int n : {2, 3, 5})
        aggiungi(QStringLiteral("plate prefix %1, all movements").arg(n), [n](parking::PannelloRicerca &pn, const auto &r) {
            pn.targa = r.second.left(n);
        });
    aggiungi(QStringLiteral("number + year, one day, inside"), [](parking::PannelloRicerca &pn, const auto &r) {
        pn.TxtProg = r.first.section(QLatin1Char('|'), 0, 0);
        pn.anno = r.first.section(QLatin1Char('|'), 1, 1);
        pn.data = QStringLiteral("31/12/2026"); // the day the generated vehicles inside entered
        pn.opzione = parking::OpzioneElenco::Dentro;
    });
    aggiungi(QStringLiteral("plate prefix 3, one day, all"), [](parking::PannelloRicerca &pn, const auto &r) {
        pn.targa = r.second.left(3);
        pn.data = QStringLiteral("15/06/2026");
    });

    out << Qt::fixed;
    out.setRealNumberPrecision(2);
    out << "database: " << movimenti << " movements\n";
    bench::AlwaysOk prompter;
    for (Caso &c : casi) {
        std::vector<double> cerca, apri, posiziona;
        int trovati = 0;
        for (std::size_t i = 0; i < c.pannelli.size(); ++i) {
            parking::PannelloRicerca &pn = c.pannelli[i];
            parking::EsitoRicerca e;
            const double tCerca = bench::timed([&] { e = parking::RicercaRapida(pn, true, prompter); });
            if (!e.eseguita)
                throw store::DbError(0, QStringLiteral("search failed: ") + prompter.shown.join(QLatin1Char('|')));
            std::unique_ptr<store::Recordset> rs;
            const double tApri = bench::timed([&] {
                rs = std::make_unique<store::Recordset>(db, e.elenco.sql, e.elenco.parametri, e.elenco.contatore);
                rs->MoveFirst();
                if (!rs->isEmpty())
                    rs->value(QStringLiteral("Targa"));
            });
            cerca.push_back(tCerca);
            apri.push_back(tCerca + tApri);
            if (e.chiave.isValid()) {
                ++trovati;
                if (posiziona.size() < 20)
                    posiziona.push_back(bench::timed([&] {
                        parking::PosizionaSu(*rs, e.chiave);
                        rs->value(QStringLiteral("Targa"));
                    }));
            }
        }
        const bench::Stats s = bench::stats(cerca), a = bench::stats(apri);
        out << c.nome << " (" << trovati << "/" << c.pannelli.size() << " found)\n";
        out << "  search alone:                 median " << s.median << " ms, p99 " << s.p99 << " ms\n";
        out << "  search + list open + 1st row: median " << a.median << " ms, p99 " << a.p99 << " ms"
            << (a.median < 50 ? "  (goal met)\n" : "  (over the 50 ms goal)\n");
        if (!posiziona.empty()) {
            const bench::Stats m = bench::stats(posiziona);
            out << "  moving the list to the row:   median " << m.median << " ms, p99 " << m.p99 << " ms ("
                << posiziona.size() << " runs)\n";
        }
        out.flush();
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    try {
        for (const QString &path : bench::BasiDati(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString())) {
            misura(path, out);
            store::Connections::closeAll();
        }
    } catch (const store::DbError &err) {
        QTextStream(stderr) << "failed: " << err.message() << "\n";
        return 1;
    }
    return 0;
}
