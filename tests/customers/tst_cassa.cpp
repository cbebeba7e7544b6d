// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/LibroCassa.h"
#include "forms/RecordsetModel.h"
#include "forms/Tabelle.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "reports/runs/StampeOpzioni.h"
#include "store/Database.h"
#include "store/Recordset.h"

#include "support/Colonne.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include <QBrush>
#include <QtTest>

#include <memory>

using customers::SceltaRighe;
using customers::Somme;
using frame::Prompter;
using frame::TestoLingua;
using store::Currency;

Q_DECLARE_METATYPE(std::optional<QDate>)

namespace {

Currency soldi(const char *testo)
{
    Currency c;
    if (!Currency::parse(QLatin1String(testo), &c))
        qFatal("bad amount in test: %s", testo);
    return c;
}

store::Database &db()
{
    return frame::basedati();
}

qint64 nuovoCliente(const QString &cognome, bool cliente = true)
{
    db().execute(QStringLiteral("insert into Clienti (Cliente, Cognome, Canone) values (?, ?, 80)"), {cliente ? -1 : 0, cognome});
    return db().lastInsertId();
}

void riga(const QVariant &cliente, const char *data, const QVariant &entrata, const QVariant &uscita)
{
    db().execute(QStringLiteral("insert into Cassa (IdCliente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?, ?, 'r', ?, ?, '2026')"),
                 {cliente, QLatin1String(data), entrata, uscita});
}

// The book's rows as text, fields joined by '|', Null as empty.
QStringList libro(const QString &campi = QStringLiteral("IdCliente, IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio"))
{
    QStringList righe;
    store::Statement st = db().prepare(QStringLiteral("select %1 from Cassa order by id").arg(campi));
    while (st.step()) {
        QStringList r;
        for (int i = 0; i < st.columnCount(); ++i)
            r << st.value(i).toString();
        righe << r.join(QLatin1Char('|'));
    }
    return righe;
}

const QString Oggi = QDate::currentDate().toString(Qt::ISODate) + QStringLiteral(" 00:00:00");

} // namespace

class TestCassa : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    qint64 m_anna = 0;  // a customer
    qint64 m_bruno = 0; // a supplier
    qint64 m_vuoto = 0; // a customer with no rows

    // A small book: a customer's rows (a receipt on a day's midnight, a payment
    // late on the last day of January, ten receipts of 0.1, a negative one), a
    // supplier's, and the parking takings of no customer; nulls here and there.
    void libroDiProva()
    {
        store::Transaction t(db());
        riga(m_anna, "2026-01-05 00:00:00", 100.1, QVariant());
        riga(m_anna, "2026-01-31 18:30:00", QVariant(), 20.25);
        for (int i = 0; i < 10; ++i)
            riga(m_anna, "2026-02-01 00:00:00", 0.1, 0.0);
        riga(m_anna, "2026-03-15 00:00:00", -5.0, 0.0001);
        riga(m_bruno, "2026-01-10 00:00:00", QVariant(), 300.0);
        riga(m_bruno, "2026-02-20 00:00:00", 50.0, 50.0);
        riga(QVariant(), "2026-01-31 00:00:00", 1234.5678, QVariant());
        riga(QVariant(), "2026-02-01 09:00:00", 0.3333, QVariant());
        t.commit();
    }

private slots:
    void initTestCase() { loadLanguage(QStringLiteral("English")); }
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_anna = nuovoCliente(QStringLiteral("D'Annunzio"));
        m_bruno = nuovoCliente(QStringLiteral("Forniture Bertè"), false);
        m_vuoto = nuovoCliente(QStringLiteral("Nessuno"));
        libroDiProva();
    }
    void cleanup() { m_db.reset(); }

    // who: 1 the customer, 2 the supplier, 3 a customer with no rows, 0 the whole book.
    void sums_data()
    {
        colonne<int, std::optional<QDate>, std::optional<QDate>, Currency, Currency>({"who", "dal", "al", "entrate", "uscite"});
        const std::optional<QDate> aperto;
        QTest::newRow("customer, every row") << 1 << aperto << aperto << soldi("96.1") << soldi("20.2501");
        QTest::newRow("customer from February") << 1 << std::optional(QDate(2026, 2, 1)) << aperto << soldi("-4") << soldi("0.0001");
        QTest::newRow("customer in January, a row stamped late on its last day")
            << 1 << std::optional(QDate(2026, 1, 1)) << std::optional(QDate(2026, 1, 31)) << soldi("100.1") << soldi("20.25");
        QTest::newRow("supplier") << 2 << aperto << aperto << soldi("50") << soldi("350");
        QTest::newRow("customer with no rows") << 3 << aperto << aperto << Currency() << Currency();
        QTest::newRow("whole book, rows of no customer too") << 0 << aperto << aperto << soldi("1381.0011") << soldi("370.2501");
        QTest::newRow("whole book, one day") << 0 << std::optional(QDate(2026, 2, 1)) << std::optional(QDate(2026, 2, 1))
                                             << soldi("1.3333") << Currency();
        QTest::newRow("whole book up to a day") << 0 << aperto << std::optional(QDate(2026, 1, 10)) << soldi("100.1") << soldi("300");
        QTest::newRow("a period with no rows") << 0 << std::optional(QDate(2026, 6, 1)) << std::optional(QDate(2026, 6, 30))
                                               << Currency() << Currency();
    }
    void sums()
    {
        QFETCH(int, who); QFETCH(std::optional<QDate>, dal); QFETCH(std::optional<QDate>, al);
        const std::optional<qint64> cliente = who == 1 ? std::optional(m_anna) : who == 2 ? std::optional(m_bruno)
                                              : who == 3                     ? std::optional(m_vuoto)
                                                                             : std::nullopt;
        const Somme s = customers::SommeCassa(db(), SceltaRighe{cliente, dal, al});
        QTEST(s.entrate, "entrate");
        QTEST(s.uscite, "uscite");
    }

    void balanceBefore_data()
    {
        colonne<bool, QDate, Currency, Currency>({"customer", "inizio", "entrate", "uscite"});
        QTest::newRow("customer, a row on the first day's midnight stays out") << true << QDate(2026, 1, 5) << Currency() << Currency();
        QTest::newRow("customer, the day after") << true << QDate(2026, 1, 6) << soldi("100.1") << Currency();
        QTest::newRow("customer, a late row of the day before counts") << true << QDate(2026, 2, 1) << soldi("100.1") << soldi("20.25");
        QTest::newRow("customer, after every row") << true << QDate(2026, 3, 16) << soldi("96.1") << soldi("20.2501");
        QTest::newRow("book before the year") << false << QDate(2026, 1, 1) << Currency() << Currency();
        QTest::newRow("book before February") << false << QDate(2026, 2, 1) << soldi("1334.6678") << soldi("320.25");
        QTest::newRow("book before the next year: all of it") << false << QDate(2027, 1, 1) << soldi("1381.0011") << soldi("370.2501");
    }
    void balanceBefore()
    {
        QFETCH(bool, customer); QFETCH(QDate, inizio);
        const Somme s = customers::SaldoPrecedente(db(), inizio, customer ? std::optional(m_anna) : std::nullopt);
        QTEST(s.entrate, "entrate");
        QTEST(s.uscite, "uscite");
        QCOMPARE(s.saldo(), s.entrate - s.uscite);
    }

    // A thousand rows of 0.0001 and large amounts: summed as floating numbers they
    // drift; as ten-thousandths they are exact.
    void sumsAreExact()
    {
        store::Transaction t(db());
        db().execute(QStringLiteral("delete from Cassa"));
        for (int i = 0; i < 1000; ++i)
            riga(m_anna, "2026-04-01 00:00:00", 0.0001, 123456789.0123);
        t.commit();
        const Somme s = customers::SommeCassa(db(), SceltaRighe{m_anna, {}, {}});
        QCOMPARE(s.entrate, soldi("0.1"));
        QCOMPARE(s.uscite, soldi("123456789012.3"));
    }

    // The whole book is summed from its days: they follow every write, and a
    // file made before them gets them at the first sum.
    void bookDaysFollowEveryWrite_data()
    {
        colonne<QString>({"scrittura"});
        QTest::newRow("a receipt added") << "insert into Cassa (Data, Entrata) values ('2026-02-01 10:00:00', 7.77)";
        QTest::newRow("a row of a new day") << "insert into Cassa (Data, Uscita) values ('2026-05-05 00:00:00', 1.5)";
        QTest::newRow("a row with no date") << "insert into Cassa (Entrata, Uscita) values (3, 4)";
        QTest::newRow("an amount changed") << "update Cassa set Entrata = 1000 where Entrata = 100.1";
        QTest::newRow("an amount emptied") << "update Cassa set Uscita = null where Uscita = 300";
        QTest::newRow("a row moved to another day") << "update Cassa set Data = '2026-12-01 00:00:00' where Entrata = 1234.5678";
        QTest::newRow("a day's last row deleted") << "delete from Cassa where Data = '2026-03-15 00:00:00'";
        QTest::newRow("the closing empties the book") << "delete from Cassa";
        QTest::newRow("a file made earlier")
            << "drop trigger CassaGiorni_Entra; drop trigger CassaGiorni_Esce; drop trigger CassaGiorni_Cambia; drop table CassaGiorni";
    }
    void bookDaysFollowEveryWrite()
    {
        QFETCH(QString, scrittura);
        db().executeScript(scrittura);
        // Row by row, as exact amounts.
        const auto aMano = [](const std::optional<QDate> &dal, const std::optional<QDate> &al) {
            Somme s;
            store::Statement st = db().prepare(QStringLiteral("select Data, Entrata, Uscita from Cassa"));
            while (st.step()) {
                const QDate d = st.value(0).isNull() ? QDate() : QDate::fromString(st.value(0).toString().left(10), Qt::ISODate);
                if ((dal && (!d.isValid() || d < *dal)) || (al && (!d.isValid() || d > *al)))
                    continue;
                s.entrate = s.entrate + Currency::fromDouble(st.value(1).toDouble());
                s.uscite = s.uscite + Currency::fromDouble(st.value(2).toDouble());
            }
            return s;
        };
        const std::optional<QDate> aperto, febbraio(QDate(2026, 2, 1)), gennaio(QDate(2026, 1, 31)), dicembre(QDate(2026, 12, 1));
        for (const auto &[dal, al] : {std::pair(aperto, aperto), std::pair(aperto, gennaio), std::pair(febbraio, aperto),
                                      std::pair(febbraio, febbraio), std::pair(dicembre, aperto)}) {
            const Somme s = customers::SommeCassa(db(), SceltaRighe{std::nullopt, dal, al});
            QCOMPARE(s, aMano(dal, al));
        }
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from CassaGiorni where Righe <= 0")).toInt(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select total(Righe) from CassaGiorni")).toInt(),
                 db().scalar(QStringLiteral("select count(*) from Cassa")).toInt());
    }

    // The carried sums reach the cash report as numbers with a point, only with a start date.
    void carriedIntoTheReport()
    {
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        ScriptedPrompter p;
        reports::OpzioniCassa o;
        o.dal = QDate(2026, 2, 1);
        Somme r = customers::SaldoPrecedente(db(), *o.dal);
        reports::Lancio l = reports::LancioCassa(p, o, r.entrate, r.uscite);
        QCOMPARE(l.formule.value(0), QStringLiteral("EntrataPeriodo=1334.6678"));
        QCOMPARE(l.formule.value(1), QStringLiteral("UscitaPeriodo=320.25"));
        QCOMPARE(l.formule.value(2), QStringLiteral("DataPeriodo='01/02/2026'"));
        QVERIFY(p.messages.isEmpty());

        l = reports::LancioCassa(p, o, soldi("-4"), soldi("20.2501"));
        QCOMPARE(l.formule.value(0), QStringLiteral("EntrataPeriodo=-4"));
        QCOMPARE(l.formule.value(1), QStringLiteral("UscitaPeriodo=20.2501"));

        o.dal = QDate(2025, 12, 1); // before the fiscal year: told, and printed all the same
        l = reports::LancioCassa(p, o, Currency(), Currency());
        QCOMPARE(p.texts(), QStringList(TestoLingua("M0084")));
        QCOMPARE(l.formule.value(0), QStringLiteral("EntrataPeriodo=0"));

        o.dal.reset();
        l = reports::LancioCassa(p, o, soldi("5"), soldi("6"));
        QCOMPARE(l.formule.value(0), QStringLiteral("EntrataPeriodo=0"));
        QCOMPARE(l.formule.value(1), QStringLiteral("UscitaPeriodo=0"));
        QCOMPARE(l.formule.value(2), QStringLiteral("DataPeriodo=''"));
    }

    void feePayment_data()
    {
        colonne<QVariant, QString, QString>({"canone", "scritto", "colore"});
        QTest::newRow("null") << QVariant() << "0" << "#ffffff";
        QTest::newRow("empty") << QVariant(QString()) << "0" << "#ffffff";
        QTest::newRow("not a number") << QVariant(QStringLiteral("ottanta")) << "0" << "#ffffff";
        QTest::newRow("nan") << QVariant(QStringLiteral("nan")) << "0" << "#ffffff";
        QTest::newRow("typed with a comma") << QVariant(QStringLiteral(" 80,5 ")) << "80.5" << "#dfffea";
        QTest::newRow("a number") << QVariant(75.25) << "75.25" << "#dfffea";
        QTest::newRow("an exact amount") << QVariant::fromValue(soldi("99.9999")) << "99.9999" << "#dfffea";
        QTest::newRow("negative, as typed") << QVariant(QStringLiteral("-10")) << "-10" << "#ffffff";
    }
    void feePayment()
    {
        QFETCH(QVariant, canone); QFETCH(QString, scritto);
        frame::pub().IdUtenteCorrente = 7; // the fee row names no user
        const qsizetype prima = libro().size();
        ScriptedPrompter p;
        const qint64 id = customers::PagamentoCanone(db(), p, m_vuoto, canone, QDate::currentDate());
        QVERIFY(id > 0);
        QVERIFY(p.messages.isEmpty());
        QCOMPARE(libro().size(), prima + 1);
        QCOMPARE(libro().last(), QStringLiteral("%1||%2|%3|%4|0|2026").arg(m_vuoto).arg(Oggi, TestoLingua("M0303"), scritto));
        QCOMPARE(db().scalar(QStringLiteral("select max(id) from Cassa")).toLongLong(), id);

        // It stands in the customer's card, newest on top, coloured by the rule of the table editor.
        store::Recordset scheda(db(), QStringLiteral("select * from Cassa where IdCliente = ? order by Data desc"), {m_vuoto});
        scheda.MoveFirst();
        QCOMPARE(scheda.key().toLongLong(), id);
        QTEST(forms::ColoreCassa(scheda).value<QBrush>().color().name(), "colore");
        QCOMPARE(customers::SommeCassa(db(), SceltaRighe{m_vuoto, {}, {}}).entrate,
                 Currency::fromDouble(db().scalar(QStringLiteral("select Entrata from Cassa where id = ?"), {id}).toDouble()));
    }

    // A customer that isn't in the registry (a card not saved yet) gets no row.
    void feePaymentWithoutCustomer()
    {
        const QStringList prima = libro();
        ScriptedPrompter p;
        QCOMPARE(customers::PagamentoCanone(db(), p, 99999, 80, QDate::currentDate()), qint64(-1));
        QCOMPARE(p.texts(), QStringList(TestoLingua("M0083")));
        QCOMPARE(libro(), prima);
    }

    // A write that fails half-way leaves the book as it was and is told as an error.
    void feePaymentFailure_data()
    {
        colonne<QString, bool>({"guasto", "tenuto"});
        QTest::newRow("row refused") << "create trigger guasto before insert on Cassa begin select raise(abort, 'book locked'); end" << false;
        // FAIL keeps what the statement wrote before it: only the transaction takes the row back.
        QTest::newRow("fault after the row is written")
            << "create trigger guasto after insert on Cassa begin select raise(fail, 'book locked after the row'); end" << false;
        QTest::newRow("file held by a backup") << "" << true;
    }
    void feePaymentFailure()
    {
        QFETCH(QString, guasto); QFETCH(bool, tenuto);
        if (!guasto.isEmpty())
            db().execute(guasto);
        const QStringList prima = libro();
        ScriptedPrompter p;
        store::Database &d = db(); // taken while the file is open
        if (tenuto)
            d.hold();
        const qint64 id = customers::PagamentoCanone(d, p, m_anna, 80, QDate::currentDate());
        if (tenuto)
            d.release();
        QCOMPARE(id, qint64(-1));
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().icon, Prompter::Icon::Critical);
        QCOMPARE(libro(), prima);

        // With the fault gone the same payment is written.
        if (!guasto.isEmpty())
            db().execute(QStringLiteral("drop trigger guasto"));
        QVERIFY(customers::PagamentoCanone(db(), p, m_anna, 80, QDate::currentDate()) > 0);
        QCOMPARE(libro().size(), prima.size() + 1);
    }

    // A row typed in the card gets the customer and the year; a user typed stays, none is added.
    void cardRowCompletion()
    {
        frame::pub().IdUtenteCorrente = 7;
        frame::pub().AnnoEsercizio = QStringLiteral("2027");
        db().execute(QStringLiteral("delete from Cassa"));
        {
            store::Recordset rs(db(), QStringLiteral("select * from Cassa where IdCliente = ? order by Data desc"), {m_anna});
            rs.AddNew();
            rs.setValue(QStringLiteral("Descrizione"), QStringLiteral("typed with a user"));
            rs.setValue(QStringLiteral("IdUtente"), 3);
            rs.setValue(QStringLiteral("IdCliente"), m_bruno); // the shown customer wins
            customers::CompletaRigaCliente(rs, m_anna);
            rs.Update();
        }
        // Through the grid's own hook, as the card's grid writes a new row.
        forms::RecordsetModel griglia(db(), QStringLiteral("select * from Cassa where IdCliente = ? order by Data desc"), {m_anna});
        ScriptedPrompter p;
        const qint64 mostrato = m_anna;
        griglia.impostaModifica(p, {}, [mostrato](store::Recordset &rs) { customers::CompletaRigaCliente(rs, mostrato); });
        griglia.impostaColori(forms::ColoreCassa);
        QVERIFY(griglia.insertRows(griglia.rowCount(), 1));
        const int nuova = griglia.rigaNuova();
        QVERIFY(griglia.setData(griglia.index(nuova, griglia.colonna(QStringLiteral("Descrizione"))), QStringLiteral("typed in the grid")));
        QVERIFY(griglia.setData(griglia.index(nuova, griglia.colonna(QStringLiteral("Uscita"))), 12.5));
        QVERIFY(griglia.scriviNuova());
        QVERIFY(p.messages.isEmpty());
        QCOMPARE(libro(QStringLiteral("IdCliente, IdUtente, Descrizione, Esercizio")),
                 (QStringList{QStringLiteral("%1|3|typed with a user|2027").arg(m_anna),
                              QStringLiteral("%1||typed in the grid|2027").arg(m_anna)}));
        QCOMPARE(griglia.data(griglia.index(nuova, 0), Qt::BackgroundRole).value<QBrush>().color(), QColor(0xFF, 0xF2, 0xEA));
    }

    // The parking takings: one row of no customer, by the signed-in user, inside the caller's transaction.
    void parkingTakings()
    {
        frame::pub().IdUtenteCorrente = 4;
        db().execute(QStringLiteral("delete from Cassa"));
        {
            store::Transaction t(db());
            QVERIFY(customers::RegistraIncassoParcheggio(db(), QDate(2026, 12, 31), 3, soldi("7.5")) > 0);
        } // not committed: nothing stays
        QVERIFY(libro().isEmpty());
        store::Transaction t(db());
        const qint64 id = customers::RegistraIncassoParcheggio(db(), QDate(2026, 12, 31), 12, soldi("3.2222"));
        t.commit();
        QCOMPARE(libro(QStringLiteral("id, IdCliente, IdUtente, Data, Descrizione, Entrata, Uscita, Esercizio")),
                 QStringList(QStringLiteral("%1||4|2026-12-31 00:00:00|%2 (12 %3)|3.2222|0|2026")
                                 .arg(id)
                                 .arg(TestoLingua("M0301"), TestoLingua("M0302"))));
        QCOMPARE(customers::SommeCassa(db(), {}).entrate, soldi("3.2222"));
    }
};

QTEST_MAIN(TestCassa)
#include "tst_cassa.moc"
