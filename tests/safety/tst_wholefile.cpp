// SPDX-License-Identifier: GPL-3.0-or-later
// Work on the whole file (backup, compaction, restore) while sets of rows and
// the parking window stay open on it: nothing they hold dies, they read the
// file again afterwards, and the register goes on numbering without a gap.
#include "parking/ui/FrmResto.h"
#include "parking/ui/frmPark.h"
#include "admin/ui/frmAutoriz.h"
#include "customers/ui/frmClienti.h"
#include "forms/RecordsetModel.h"
#include "forms/Tabelle.h"
#include "forms/ui/frmtabelle.h"
#include "reports/ui/frmStampaEstrattoC.h"

#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "safety/Backup.h"
#include "safety/Compaction.h"
#include "store/Connections.h"
#include "store/DbError.h"
#include "store/Recordset.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestWindows.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <memory>

using frame::Prompter;
using frame::pub;

namespace {

enum class Lavoro { Backup, Compattazione, Ripristino };

QList<qint64> progressivi()
{
    QList<qint64> v;
    store::Recordset rs(frame::basedati(), QStringLiteral("select Progressivo from Movimentazioni order by Progressivo"));
    for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
        v << rs.value(0).toLongLong();
    return v;
}

} // namespace

Q_DECLARE_METATYPE(Lavoro)

class TestWholeFile : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;

    QString cartellaBackup() const { return QDir(m_db->folder()).filePath(QStringLiteral("copie")); }

    bool backup(const safety::Progress &progresso = {})
    {
        safety::BackupRequest r;
        r.folder = cartellaBackup();
        r.note = QStringLiteral("prova");
        return safety::makeBackup(r, m_prompter, progresso).has_value();
    }

    // Runs one kind of work; a restore puts back the backup taken before.
    bool esegui(Lavoro lavoro, const safety::Progress &progresso = {})
    {
        switch (lavoro) {
        case Lavoro::Backup:
            return backup(progresso);
        case Lavoro::Compattazione:
            return safety::CompattaMdb(m_db->folder() + QLatin1Char('/'), QStringLiteral("basedati.mdb"),
                                       pub().CodaConnessione);
        case Lavoro::Ripristino:
            m_prompter.answer(Prompter::Answer::Ok);
            return safety::restoreBackup(safety::readCatalogue().first(), m_prompter, progresso);
        }
        return false;
    }

    void aggiungi(const QString &targa, qint64 progressivo)
    {
        frame::basedati().execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, Targa, DataOra, Entrato, "
                                                 "Annullato, Contabilizzato, IdFascia) values ('2026', ?, ?, ?, -1, 0, 0, '01')"),
                                  {progressivo, targa, QDateTime::currentDateTime().toString(Qt::ISODate).replace('T', ' ')});
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        QVERIFY(QDir().mkpath(cartellaBackup()));
        pub().PercorsoElencoBackup = QDir(m_db->folder()).filePath(QStringLiteral("ElencoBackup.mdb"));
        pub().CodaConnessione = QStringLiteral(";PWD=quartzel");
        pub().FasciaDefault = QStringLiteral("01");
        pub().StampaEntrata = pub().StampaUscita = pub().TgObbligatoria = false;
        pub().OpModificare = pub().OpAnnullare = pub().OpContabilizzare = false;
        pub().FormatoData = QStringLiteral("dd/MM/yyyy");
    }
    void cleanup() { m_db.reset(); }

    void lavori_data()
    {
        QTest::addColumn<Lavoro>("lavoro");
        QTest::newRow("backup") << Lavoro::Backup;
        QTest::newRow("compaction") << Lavoro::Compattazione;
        QTest::newRow("restore") << Lavoro::Ripristino;
    }

    // A set stopped halfway keeps its connection and reads on from the same row.
    void aSetReadsOnAfterTheWork_data() { lavori_data(); }
    void aSetReadsOnAfterTheWork()
    {
        QFETCH(Lavoro, lavoro);
        for (int i = 1; i <= 600; ++i)
            aggiungi(QStringLiteral("AA%1").arg(i), i);
        QVERIFY(backup());
        store::Recordset rs(frame::basedati(), QStringLiteral("select * from Movimentazioni order by Progressivo"));
        store::Recordset tabella(frame::basedati(), QStringLiteral("select Targa from Movimentazioni"));
        rs.MoveFirst();
        QVERIFY(rs.setAbsolutePosition(299));
        tabella.MoveFirst();
        QVERIFY(esegui(lavoro));
        QCOMPARE(rs.value(QStringLiteral("Progressivo")).toLongLong(), 300);
        QCOMPARE(rs.RecordCount(), 600);
        rs.MoveNext();
        QCOMPARE(rs.value(QStringLiteral("Targa")).toString(), QStringLiteral("AA301"));
        QVERIFY(rs.setAbsolutePosition(599));
        QCOMPARE(rs.value(QStringLiteral("Progressivo")).toLongLong(), 600);
        qint64 n = 1;
        for (tabella.MoveNext(); !tabella.eof(); tabella.MoveNext())
            ++n;
        QCOMPARE(n, 600);
        rs.Edit();
        rs.setValue(QStringLiteral("Targa"), QStringLiteral("ZZ600"));
        rs.Update();
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select Targa from Movimentazioni where Progressivo = 600")).toString(),
                 QStringLiteral("ZZ600"));
    }

    // While the file is closed a set refuses to read what it has not read, and throws no further.
    void readsDuringTheWorkAreRefused()
    {
        aggiungi(QStringLiteral("AA1"), 1);
        store::Recordset rs(frame::basedati(), QStringLiteral("select * from Movimentazioni"));
        rs.MoveFirst();
        {
            store::Connections::WholeFileWork lavoro(pub().Pathdata);
            QVERIFY(!store::Connections::isOpen(pub().Pathdata));
            QCOMPARE(rs.value(QStringLiteral("Targa")).toString(), QStringLiteral("AA1")); // read before: still shown
            QVERIFY_THROWS_EXCEPTION(store::DbError, rs.RecordCount());
            QVERIFY_THROWS_EXCEPTION(store::DbError, frame::basedati());
        }
        QCOMPARE(rs.RecordCount(), 1);
    }

    // The parking window stays open across the work, shows the file as it is
    // afterwards, and records, moves and posts on it with consecutive numbers.
    void theParkingWindowGoesOn_data() { lavori_data(); }
    void theParkingWindowGoesOn()
    {
        QFETCH(Lavoro, lavoro);
        parking::frmPark park(m_prompter);
        park.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&park));
        auto *targa = park.findChild<QLineEdit *>(QStringLiteral("TxtT_0"));
        auto *azione = park.findChild<QPushButton *>(QStringLiteral("CmdEntraEsce"));
        const auto entra = [&](const QString &t) {
            QTest::keyClick(&park, Qt::Key_F5);
            targa->setText(t);
            m_prompter.answer(Prompter::Answer::Ok);
            azione->click();
        };

        entra(QStringLiteral("AB123CD"));
        QVERIFY(backup());
        entra(QStringLiteral("XY999ZZ"));
        QCOMPARE(park.datPrimaryRS().rowCount(), 2);

        // The window keeps painting while the work runs.
        int dipinte = 0;
        const safety::Progress progresso = [&](qint64, qint64) {
            park.datPrimaryRS().data(park.datPrimaryRS().index(1, 0));
            park.repaint();
            ++dipinte;
            return true;
        };
        QVERIFY(esegui(lavoro, progresso));
        QVERIFY(lavoro == Lavoro::Compattazione || dipinte > 0);

        const qint64 attese = lavoro == Lavoro::Ripristino ? 1 : 2;
        QCOMPARE(park.datPrimaryRS().rowCount(), attese);
        QCOMPARE(progressivi().size(), attese);
        QVERIFY(park.findChild<QLabel *>(QStringLiteral("LblAuto"))->text().endsWith(QStringLiteral(": %1").arg(attese)));
        entra(QStringLiteral("CD456EF"));
        QList<qint64> numeri;
        for (qint64 i = 1; i <= attese + 1; ++i)
            numeri << i;
        QCOMPARE(progressivi(), numeri);
        QCOMPARE(park.datPrimaryRS().rowCount(), attese + 1);

        // The first vehicle leaves through the quick search; the day is posted.
        auto *numero = park.findChild<QLineEdit *>(QStringLiteral("TxtProg"));
        numero->setText(QStringLiteral("1"));
        QTest::keyClick(&park, Qt::Key_F1);
        QCOMPARE(targa->text(), QStringLiteral("AB123CD"));
        QTimer::singleShot(0, this, [] {
            if (auto *r = qobject_cast<parking::FrmResto *>(QApplication::activeModalWidget()))
                r->accept();
        });
        m_prompter.answer(Prompter::Answer::Ok);
        azione->click();
        park.findChild<QPushButton *>(QStringLiteral("ComCont"))->click();
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 1);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select Contabilizzato from Movimentazioni where Progressivo = 1")).toInt(), -1);
    }

    // The table editor and the registry window stay open side by side across the
    // work: afterwards each shows the file as it is and writes into it.
    void theEditingWindowsGoOn_data() { lavori_data(); }
    void theEditingWindowsGoOn()
    {
        QFETCH(Lavoro, lavoro);
        store::Database &db = frame::basedati();
        const auto riga = [&](const QString &nome) {
            db.execute(QStringLiteral("insert into Cassa (Data, Descrizione, Entrata) values ('2026-03-01 00:00:00', ?, 1)"), {nome});
            db.execute(QStringLiteral("insert into Clienti (Cognome, Cliente) values (?, -1)"), {nome});
        };
        riga(QStringLiteral("Primo"));
        QVERIFY(backup());
        riga(QStringLiteral("Secondo"));
        forms::frmtabelle t(m_prompter);
        t.setAttribute(Qt::WA_DeleteOnClose, false);
        t.CaricaTextFormatGriglia(forms::ImpostazioneCassa());
        customers::frmClienti w(m_prompter, customers::Modo::Clienti);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        pub().UtenteCorrente = QStringLiteral("administrator");
        pub().IdUtenteCorrente = db.scalar(QStringLiteral("select id from Autorizzazioni where Utente = 'administrator'")).toInt();
        frame::CostruisceElencoElementi();
        admin::frmAutoriz u(m_prompter);
        u.setAttribute(Qt::WA_DeleteOnClose, false);
        reports::frmStampaEstrattoC estratto(m_prompter);
        QVERIFY(showActive(&t) && showActive(&w) && showActive(&u) && showActive(&estratto));
        forms::RecordsetModel &m = t.datPrimaryRS();
        QCOMPARE(m.rowCount(), 2);
        QCOMPARE(w.findChild<QLineEdit *>(QStringLiteral("TxtT_21"))->text(), QStringLiteral("Secondo"));

        QVERIFY(esegui(lavoro));
        m_prompter.messages.clear(); // the work's own report
        const QString ultimo = lavoro == Lavoro::Ripristino ? QStringLiteral("Primo") : QStringLiteral("Secondo");
        QCOMPARE(m.rowCount(), lavoro == Lavoro::Ripristino ? 1 : 2);
        QCOMPARE(w.findChild<QLineEdit *>(QStringLiteral("TxtT_21"))->text(), ultimo);
        QVERIFY(m.setData(m.index(0, m.colonna(QStringLiteral("Descrizione"))), QStringLiteral("dopo")));
        w.bottoni(QStringLiteral("modifica"));
        w.findChild<QLineEdit *>(QStringLiteral("TxtT_1"))->setText(QStringLiteral("dopo"));
        w.bottoni(QStringLiteral("ok"));
        QCOMPARE(db.scalar(QStringLiteral("select group_concat(Descrizione) from Cassa where Descrizione = 'dopo'")).toString(), QStringLiteral("dopo"));
        QCOMPARE(db.scalar(QStringLiteral("select Nome from Clienti where Cognome = ?"), {ultimo}).toString(), QStringLiteral("dopo"));
        // The users window adds a user with his rights; the statement finds the customer left by the work.
        u.bottoni(QStringLiteral("aggiungi"));
        c(u, "TxtT_0")->setText(QStringLiteral("nuovo"));
        u.bottoni(QStringLiteral("ok"));
        QVERIFY(db.scalar(QStringLiteral("select count(*) from Accessi join Autorizzazioni on Autorizzazioni.id = IdAutorizzazioni "
                                         "where Utente = 'nuovo'")).toInt() > 0);
        c(estratto, "TxtTC_0")->setText(db.scalar(QStringLiteral("select Id from Clienti where Cognome = ?"), {ultimo}).toString());
        QVERIFY(c<QComboBox>(estratto, "TDBComboC_0")->currentText().startsWith(ultimo));
        QVERIFY2(m_prompter.messages.isEmpty(), qPrintable(m_prompter.texts().join(QLatin1Char('|'))));
    }
};

QTEST_MAIN(TestWholeFile)
#include "tst_wholefile.moc"
