// SPDX-License-Identifier: GPL-3.0-or-later
// bench_tables: the table editor on a cash book of 100,000 rows and a table of
// 1,000 tariff bands: the first screen painted, a sort by a heading, one cell
// written, the find, and the resident memory with the whole cash book scrolled
// through. Goal: each under 50 ms, under 100 MB resident.
#include "AlwaysOk.h"
#include "Misure.h"
#include "Programma.h"

#include "forms/Tabelle.h"
#include "forms/ui/frmtabelle.h"
#include "frame/Routines.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Schema.h"



#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

namespace {

void riempi(store::Database &db)
{
    store::Transaction t(db);
    store::Statement cassa = db.prepare(QStringLiteral(
        "insert into Cassa (IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio) values (1, ?, ?, ?, ?, '2026')"));
    for (int i = 0; i < 100000; ++i) {
        cassa.reset();
        cassa.bindAll({QDate(2026, 1, 1).addDays(i % 365).toString(Qt::ISODate) + QStringLiteral(" 00:00:00"),
                       QStringLiteral("Row %1").arg((i * 7919) % 100000, 6, 10, QLatin1Char('0')), i % 3 ? 10.5 : 0.0,
                       i % 2 ? 0.0 : 4.25});
        cassa.step();
    }
    store::Statement fascia = db.prepare(QStringLiteral("insert into Fascia values (?, ?, ?, 60, ?, 30)"));
    for (int i = 3; i < 1003; ++i) {
        fascia.reset();
        fascia.bindAll({QStringLiteral("%1").arg(i, 4, 10, QLatin1Char('0')), QStringLiteral("Band %1").arg(i), qint64(i) * 100, qint64(i) * 50});
        fascia.step();
    }
    t.commit();
}

void misura(const forms::ImpostazioneTabella &imp, const QString &cerca, QTextStream &out)
{
    bench::AlwaysOk prompter;
    std::vector<double> primo, ordina, scrivi, trova;
    for (int giro = 0; giro < 7; ++giro) {
        auto *t = new forms::frmtabelle(prompter);
        primo.push_back(bench::timed([&] {
            t->CaricaTextFormatGriglia(imp);
            t->resize(1000, 700);
            t->show();
            if (!QTest::qWaitForWindowExposed(t))
                qWarning("the editor was not shown");
            t->grab();
        }));
        auto *g = t->findChild<QTableView *>(QStringLiteral("grdDataGrid"));
        forms::RecordsetModel &m = t->datPrimaryRS();
        const int c = m.colonna(imp.colonne.at(1).campo);
        ordina.push_back(bench::timed([&] {
            QHeaderView *h = g->horizontalHeader();
            QTest::mouseClick(h->viewport(), Qt::LeftButton, {}, QPoint(h->sectionViewportPosition(c) + 5, 5));
            t->grab();
        }));
        scrivi.push_back(bench::timed([&] { m.setData(m.index(giro, c), QStringLiteral("Written %1").arg(giro)); }));
        trova.push_back(bench::timed([&] {
            t->bottoni(QStringLiteral("trova"));
            t->findChild<QLineEdit *>(QStringLiteral("Text1"))->setText(cerca);
            t->bottoni(QStringLiteral("trova"));
            t->grab();
        }));
        if (giro == 6) {
            while (m.canFetchMore())
                m.fetchMore();
            g->scrollToBottom();
            t->grab();
            out << imp.tabella << ": " << m.rowCount() << " rows; RSS with every row scrolled through " << bench::memoriaMb("VmRSS")
                << " MB (peak " << bench::memoriaMb("VmHWM") << " MB)\n";
        }
        t->close();
        QCoreApplication::processEvents();
    }
    bench::rigaTempi(out, "first screen", primo);
    bench::rigaTempi(out, "sort by a heading", ordina);
    bench::rigaTempi(out, "one cell written", scrivi);
    bench::rigaTempi(out, "find", trova);
    out.flush();
}

} // namespace

int main(int argc, char **argv)
{
    bench::SenzaSchermo();
    QApplication app(argc, argv);
    QTextStream out(stdout);
    out.setRealNumberPrecision(3);
    QTemporaryDir cartella;
    try {
        store::Schema::writeDeliveredDatabases(cartella.path(), 0);
        bench::PreparaProgramma(cartella.filePath(QStringLiteral("basedati.mdb")));
        riempi(frame::basedati());
        misura(forms::ImpostazioneCassa(), QStringLiteral("Row 05"), out);
        misura(forms::ImpostazioneFascia(), QStringLiteral("Band 9"), out);
        store::Connections::closeAll();
    } catch (const store::DbError &e) {
        out << "error: " << e.message() << Qt::endl;
        return 1;
    }
    return 0;
}
