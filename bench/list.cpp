// SPDX-License-Identifier: GPL-3.0-or-later
// bench_list [PATH]: the movement list in a grid: time to the first painted
// screen of 40 rows, the count, jumps to the middle and to the end, the position
// of a key three quarters down, and the resident memory, on the database at PATH
// or on the million and ten million movements (bench::BasiDati).
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "forms/RecordsetModel.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "parking/Ricerca.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QTableView>
#include <QTextStream>
#include <QWindow>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

constexpr int RigheSchermo = 40;

// A grid as the parking window shows it: the movement colours, 40 rows high.
struct Griglia {
    std::unique_ptr<forms::RecordsetModel> model;
    std::unique_ptr<QTableView> view;
};

Griglia apri(const parking::SorgenteElenco &s)
{
    Griglia g;
    g.model = std::make_unique<forms::RecordsetModel>(frame::basedati(), s.sql, s.parametri, s.contatore);
    g.model->impostaColori(forms::sfondoMovimento, forms::testoMovimento);
    g.view = std::make_unique<QTableView>();
    g.view->setModel(g.model.get());
    const int alta = g.view->verticalHeader()->defaultSectionSize();
    g.view->resize(1200, g.view->horizontalHeader()->sizeHint().height() + RigheSchermo * alta + 2 * g.view->frameWidth() + 20);
    g.view->show();
    // Waits for the window to be exposed, as a test would, without linking the test library.
    QElapsedTimer attesa;
    attesa.start();
    while (!(g.view->windowHandle() && g.view->windowHandle()->isExposed()) && attesa.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    if (!g.view->windowHandle() || !g.view->windowHandle()->isExposed())
        throw store::DbError(0, QStringLiteral("the grid was never shown"));
    g.view->grab(); // paints every visible row, reading its cells
    return g;
}

int righeVisibili(QTableView &v)
{
    const int ultima = v.rowAt(v.viewport()->height() - 1);
    return (ultima < 0 ? v.model()->rowCount() - 1 : ultima) - v.rowAt(0) + 1;
}

// Every figure of the list on one database; false when a row is not where it should be.
bool misura(const QString &path, QTextStream &out)
{
    auto &p = frame::pub();
    p.CartellaProgramma = QCoreApplication::applicationDirPath() + QLatin1Char('/');
    p.Pathdata = QFileInfo(path).absoluteFilePath();
    store::Database &db = frame::basedati(); // the program keeps its connection open
    const qint64 movimenti = db.scalar(QStringLiteral("select count(*) from Movimentazioni")).toLongLong();
    // The lists as the parking window opens them: all movements and the vehicles inside.
    const parking::SorgenteElenco tutti = parking::ElencoMovimenti(parking::OpzioneElenco::Tutti);
    const parking::SorgenteElenco dentro = parking::ElencoMovimenti(parking::OpzioneElenco::Dentro);
    out << "database " << path << ": " << movimenti << " movements, RSS " << bench::memoriaMb("VmRSS") << " MB" << Qt::endl;

    // The count of a list as the program takes it, on fresh sets (none keeps a count).
    for (const parking::SorgenteElenco *s : {&tutti, &dentro}) {
        std::vector<double> countMs;
        for (int i = 0; i < 5; ++i)
            countMs.push_back(bench::timed([&] { store::Recordset(db, s->sql, s->parametri, s->contatore).RecordCount(); }));
        out << "count of \"" << s->sql << "\": median " << bench::stats(countMs).median << " ms" << Qt::endl;
    }

    for (const parking::SorgenteElenco *s : {&tutti, &dentro}) {
        std::vector<double> ms;
        int visibili = 0;
        for (int i = 0; i < 7; ++i) {
            Griglia g;
            ms.push_back(bench::timed([&] { g = apri(*s); }));
            visibili = righeVisibili(*g.view);
        }
        out << "first screen (" << visibili << " rows painted) of \"" << s->sql << "\": first " << ms.front()
            << " ms, median " << bench::stats(ms).median << " ms" << Qt::endl;
    }

    Griglia g = apri(tutti);
    out << "RSS with the full list open: " << bench::memoriaMb("VmRSS") << " MB (rows read " << g.model->righeLette() << ")" << Qt::endl;
    qint64 totale = 0;
    const double conta = bench::timed([&] {
        totale = g.model->caricaTutto();
        QCoreApplication::processEvents(); // the view takes the new row count
    });
    const double mezzo = bench::timed([&] {
        g.view->scrollTo(g.model->index(int(totale / 2), 0), QAbstractItemView::PositionAtTop);
        g.view->grab();
    });
    out << "count on a jump: " << conta << " ms (" << totale << " rows); scroll to the middle: " << mezzo
        << " ms (top row " << g.view->rowAt(0) << ")" << Qt::endl;
    const double fine = bench::timed([&] {
        g.view->scrollToBottom();
        g.view->grab();
    });
    const QString ultimo = g.model->data(g.model->index(int(totale - 1), g.model->colonna(QStringLiteral("id")))).toString();
    const QString ultimoAtteso = db.scalar(QStringLiteral("select id from Movimentazioni order by Anno desc, id desc limit 1")).toString();
    out << "scroll to the end: " << fine << " ms (top row " << g.view->rowAt(0) << "); last row id " << ultimo << (ultimo == ultimoAtteso ? " (right)" : " (WRONG)")
        << "; RSS " << bench::memoriaMb("VmRSS") << " MB" << Qt::endl;
    const double inizio = bench::timed([&] {
        g.view->scrollToTop();
        g.view->grab();
    });
    out << "back to the top: " << inizio << " ms; RSS " << bench::memoriaMb("VmRSS") << " MB" << Qt::endl;

    // Three quarters down: row 750,000 of a million.
    const qint64 profondo = movimenti * 3 / 4;
    const QVariant chiave = db.scalar(QStringLiteral("select id from Movimentazioni order by Anno, id limit 1 offset ?"), {profondo});
    Griglia h = apri(tutti);
    int riga = -1;
    double trovata = 0;
    const double pos = bench::timed([&] {
        trovata = bench::timed([&] { riga = h.model->posizione(chiave); });
        h.view->scrollTo(h.model->index(riga, 0));
        h.view->grab();
    });
    out << "position of the key of row " << profondo << ": " << trovata << " ms, shown: " << pos << " ms (row " << riga << ")" << Qt::endl;
    return ultimo == ultimoAtteso && riga == profondo;
}

} // namespace

int main(int argc, char **argv)
{
    bench::SenzaSchermo();
    QApplication app(argc, argv);
    QTextStream out(stdout);
    try {
        for (const QString &path : bench::BasiDati(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString())) {
            const bool giusto = misura(path, out);
            store::Connections::closeAll();
            if (!giusto)
                return 1;
        }
    } catch (const store::DbError &e) {
        out << "error: " << e.what() << Qt::endl;
        return 1;
    }
    return 0;
}
