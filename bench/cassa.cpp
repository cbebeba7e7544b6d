// SPDX-License-Identifier: GPL-3.0-or-later
// bench_cassa [PATH]: the cash book's library on 100,000 customers and suppliers
// and 1,000,000 cash rows (PATH, by default bench-data/cassa.mdb, written when
// missing): a fee payment written, the sums of one customer, the balance carried
// into a period of one customer and of the whole book. Goal: each under 50 ms.
#include "AlwaysOk.h"
#include "Generator.h"
#include "Misure.h"
#include "Programma.h"

#include "customers/LibroCassa.h"
#include "frame/Routines.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"

#include <QCoreApplication>
#include <QTextStream>

#include <random>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    out << Qt::fixed;
    out.setRealNumberPrecision(2);
    constexpr int Giri = 21;
    try {
        const QString path = bench::BasedatiCassa(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
        bench::PreparaProgramma(path);
        store::Database &db = frame::basedati();
        const qint64 primo = db.scalar(QStringLiteral("select min(Id) from Clienti")).toLongLong();
        const qint64 ultimo = db.scalar(QStringLiteral("select max(Id) from Clienti")).toLongLong();
        out << "database: " << db.scalar(QStringLiteral("select count(*) from Clienti")).toLongLong() << " customers and suppliers, "
            << db.scalar(QStringLiteral("select count(*) from Cassa")).toLongLong() << " cash rows\n";

        std::mt19937 rng(7);
        const auto qualcuno = [&] { return primo + qint64(rng() % quint64(ultimo - primo + 1)); };
        const QDate luglio(2026, 7, 1);
        bench::AlwaysOk prompter;
        std::vector<double> pagamento, somme, saldoCliente, saldoLibro;
        QList<qint64> scritte;
        customers::Somme libro;
        for (int giro = 0; giro < Giri; ++giro) {
            const qint64 cliente = qualcuno();
            pagamento.push_back(bench::timed(
                [&] { scritte << customers::PagamentoCanone(db, prompter, cliente, 85.0, QDate::currentDate()); }));
            somme.push_back(bench::timed([&] { customers::SommeCassa(db, {cliente, std::nullopt, std::nullopt}); }));
            saldoCliente.push_back(bench::timed([&] { customers::SaldoPrecedente(db, luglio, qualcuno()); }));
            saldoLibro.push_back(bench::timed([&] { libro = customers::SaldoPrecedente(db, luglio); }));
        }
        if (scritte.contains(-1))
            throw store::DbError(0, QStringLiteral("a fee payment failed: ") + prompter.shown.join(QLatin1Char('|')));
        // The payments go again: the file stays as it was written, for the next run.
        {
            store::Transaction t(db);
            for (qint64 id : scritte)
                db.execute(QStringLiteral("delete from Cassa where id = ?"), {id});
            t.commit();
        }

        bench::rigaTempi(out, "fee payment written", pagamento);
        bench::rigaTempi(out, "sums of one customer", somme);
        bench::rigaTempi(out, "balance before 1 July, one customer", saldoCliente);
        bench::rigaTempi(out, "balance before 1 July, whole book", saldoLibro);
        out << "  whole book before 1 July: receipts " << libro.entrate.toPlainText() << ", payments " << libro.uscite.toPlainText()
            << "\n";
        out << "RSS " << bench::memoriaMb("VmRSS") << " MB (peak " << bench::memoriaMb("VmHWM") << " MB)\n";
        store::Connections::closeAll();
    } catch (const store::DbError &e) {
        QTextStream(stderr) << "failed: " << e.message() << "\n";
        return 1;
    }
    return 0;
}
