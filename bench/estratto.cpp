// SPDX-License-Identifier: GPL-3.0-or-later
// bench_estratto [PATH]: the account statement of one customer with 10,000 rows of
// the year among 1,000,000 cash rows and 100,000 customers and suppliers (PATH, by
// default bench-data/cassa.mdb, written when missing): the statement and its
// daily-balance graph to a PDF file, and from the window's Print to the first
// page of the preview painted (the preview draws only the page it shows). The rows the benchmark adds are removed at the end.
// Goals: the PDF under 5 s, the first page under 1 s, under 500 MB resident.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "frame/Routines.h"
#include "reports/engine/CrystalReport.h"
#include "reports/runs/StampeOpzioni.h"
#include "reports/ui/frmStampaEstrattoC.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QDialog>
#include <QPushButton>
#include <QTest>
#include <QTextStream>

namespace {

constexpr int Righe = 10000;

// The customer's rows over the fiscal year, in and out by turns; ids from the first written.
qint64 scriviRighe(store::Database &db, qint64 cliente)
{
    store::Transaction t(db);
    store::Statement s = db.prepare(QStringLiteral(
        "insert into Cassa (IdCliente, IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?, 1, ?, ?, ?, ?, '2026')"));
    qint64 primo = -1;
    for (int r = 0; r < Righe; ++r) {
        const QDateTime quando(QDate(2026, 1, 1).addDays(r * 365 / Righe), QTime(9, 0));
        const bool entrata = r % 3 != 0;
        s.bindAll({cliente, quando, entrata ? QStringLiteral("Pagamento canone mensile") : QStringLiteral("Rimborso d'acconto"),
                   entrata ? QVariant(85.0) : QVariant(), entrata ? QVariant(0.0) : QVariant(double(r % 100) + 0.25)});
        s.step();
        s.reset();
        if (r == 0)
            primo = db.lastInsertId();
    }
    t.commit();
    return primo;
}

struct Cieco final : reports::Visore {
    void mostra(std::shared_ptr<const reports::PagineReport>, int, double) override {}
};

QDialog *anteprima()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (auto *d = qobject_cast<QDialog *>(w); d && d->isVisible() && d->objectName() == QLatin1String("AnteprimaReport"))
            return d;
    return nullptr;
}

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
        const qint64 cliente = db.scalar(QStringLiteral("select min(Id) from Clienti where Cliente <> 0")).toLongLong();
        const bool senzaAnno = db.scalar(QStringLiteral("select count(*) from TabProgressivi where Anno = '2026'")).toInt() == 0;
        if (senzaAnno)
            db.execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo) values ('2026', 0)"));
        const qint64 primo = scriviRighe(db, cliente);
        out << "database: " << db.scalar(QStringLiteral("select count(*) from Cassa")).toLongLong() << " cash rows, customer " << cliente
            << " with " << db.scalar(QStringLiteral("select count(*) from Cassa where IdCliente = ?"), {cliente}).toLongLong()
            << " rows\n";

        // The run as the window makes it, to a PDF file.
        bench::AlwaysOk prompter;
        reports::OpzioniEstratto o;
        o.cliente = cliente;
        std::optional<reports::Lancio> l = reports::LancioEstratto(prompter, o, store::Currency(), store::Currency());
        l->destinazione = reports::Lancio::ToFile;
        reports::CrystalReport report(prompter);
        const QString pdf = QDir(QFileInfo(path).path()).filePath(QStringLiteral("estratto.pdf"));
        report.setPrintFileName(pdf);
        bool ok = false;
        const double msPdf = bench::timed([&] { ok = report.esegui(*l); });
        if (!ok)
            throw store::DbError(0, QStringLiteral("the statement failed: ") + prompter.shown.join(QLatin1Char('|')));
        out << "statement to PDF: " << report.lastRowCount() << " rows, " << report.lastPageCount() << " pages, "
            << msPdf / 1000 << " s (goal < 5 s), " << QFileInfo(pdf).size() / 1024 << " KB\n";

        // The same run to a viewer that shows nothing: the rows read, sorted and laid out.
        {
            Cieco cieco;
            reports::CrystalReport impaginato(prompter, &cieco);
            l->destinazione = reports::Lancio::ToWindow;
            out << "statement read and laid out, no output: " << bench::timed([&] { impaginato.esegui(*l); }) << " ms\n";
        }
        // From the window's Print to the preview's first page painted.
        auto *w = new reports::frmStampaEstrattoC(prompter);
        w->show();
        if (!QTest::qWaitForWindowExposed(w))
            qWarning("the window was not shown");
        w->findChild<QLineEdit *>(QStringLiteral("TxtTC_0"))->setText(QString::number(cliente));
        QDialog *finestra = nullptr;
        const double msPagina = bench::timed([&] {
            w->findChild<QPushButton *>(QStringLiteral("Okstampa"))->click();
            finestra = anteprima();
            if (finestra && QTest::qWaitForWindowExposed(finestra))
                finestra->grab();
        });
        if (!finestra)
            throw store::DbError(0, QStringLiteral("no preview: ") + prompter.shown.join(QLatin1Char('|')));
        out << "Print to the preview's first page: " << msPagina / 1000 << " s (goal < 1 s)\n";
        const double picco = bench::memoriaMb("VmHWM");
        out << "RSS " << bench::memoriaMb("VmRSS") << " MB (peak " << picco << " MB, goal < 500 MB)\n";
        finestra->close();
        w->close();
        QCoreApplication::processEvents();
        esito = msPdf < 5000 && msPagina < 1000 && picco < 500 ? 0 : 3;

        // The file goes back as it was, for the next run.
        store::Transaction t(db);
        db.execute(QStringLiteral("delete from Cassa where IdCliente = ? and id >= ?"), {cliente, primo});
        if (senzaAnno)
            db.execute(QStringLiteral("delete from TabProgressivi where Anno = '2026'"));
        t.commit();
        store::Connections::closeAll();
    } catch (const store::DbError &e) {
        QTextStream(stderr) << "failed: " << e.message() << Qt::endl;
        return 1;
    }
    return esito;
}
