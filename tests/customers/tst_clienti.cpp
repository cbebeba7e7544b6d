// SPDX-License-Identifier: GPL-3.0-or-later
// The registry of customers and suppliers: the deadline lamps, the letter strip,
// and the window driven as a user drives it.
#include "customers/Clienti.h"
#include "customers/Semaforo.h"
#include "customers/ui/frmClienti.h"
#include "forms/RecordsetModel.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaData.h"
#include "store/Database.h"
#include "store/Recordset.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestWindows.h"

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using customers::Modo;
using customers::Scadenza;
using frame::Prompter;
using frame::pub;

namespace {

store::Database &db()
{
    return frame::basedati();
}

// A registry row: surname, first name, customer or supplier, last payment and insurance dates.
qint64 aggiungi(const QString &cognome, bool cliente, const QVariant &pagato = {}, const QVariant &assicurato = {})
{
    db().execute(QStringLiteral("insert into Clienti (Cognome, Nome, Cliente, DataUltimoPagamento, DataScadenzaAssic, IdUtente) "
                                "values (?, 'N', ?, ?, ?, 1)"),
                 {cognome, cliente ? -1 : 0, pagato, assicurato});
    return db().lastInsertId();
}

QString giorno(int dagliOggi)
{
    return QDate::currentDate().addDays(dagliOggi).startOfDay().toString(QLatin1String(store::DateFormat));
}

} // namespace

class TestClienti : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;


private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        pub().IdUtenteCorrente = 1;
        pub().UtenteMaster = true;
    }
    void cleanup() { m_db.reset(); }

    // Whole dates against today; the last payment drives the lamp named after the
    // insurance and the other way round, each with its own texts.
    void lampade_data()
    {
        QTest::addColumn<int>("giorni"); // from today; 99 for no date
        QTest::addColumn<Scadenza>("stato");
        QTest::addColumn<QColor>("colore");
        QTest::addColumn<QString>("testoPagamento");
        QTest::addColumn<QString>("testoAssicurazione");
        QTest::newRow("no date: yellow") << 99 << Scadenza::Vuota << QColor(255, 255, 0) << "M0359" << "M0360";
        QTest::newRow("yesterday: red") << -1 << Scadenza::Scaduta << QColor(255, 0, 0) << "M0212" << "M0213";
        QTest::newRow("today: green") << 0 << Scadenza::InTempo << QColor(0, 255, 0) << "M0214" << "M0215";
        QTest::newRow("next year: green") << 365 << Scadenza::InTempo << QColor(0, 255, 0) << "M0214" << "M0215";
    }
    void lampade()
    {
        QFETCH(int, giorni);
        QFETCH(Scadenza, stato);
        const QDate oggi(2026, 11, 24);
        const std::optional<QDate> data = giorni == 99 ? std::nullopt : std::optional<QDate>(oggi.addDays(giorni));
        QCOMPARE(customers::StatoScadenza(data, oggi), stato);
        QTEST(customers::LampadaUltimoPagamento(stato).colore, "colore");
        QTEST(QString::fromLatin1(customers::LampadaUltimoPagamento(stato).chiave), "testoPagamento");
        QTEST(QString::fromLatin1(customers::LampadaScadenzaAssic(stato).chiave), "testoAssicurazione");
        QCOMPARE(customers::TestoRosso(stato), stato == Scadenza::Scaduta);
    }

    // A letter lists customers and suppliers together, whatever the case of the
    // initial; "Tutti" lists everyone; the mode's own list keeps to its mode.
    void striscia()
    {
        aggiungi(QStringLiteral("Rossi"), true);
        aggiungi(QStringLiteral("rossini"), false);
        aggiungi(QStringLiteral("Bianchi"), true);
        aggiungi(QStringLiteral("R'%_"), true);
        const auto nomi = [](const customers::Sorgente &s) {
            QStringList v;
            store::Recordset rs(db(), s.sql, s.parametri);
            for (rs.MoveFirst(); !rs.isEmpty() && !rs.eof(); rs.MoveNext())
                v << rs.value(QStringLiteral("Cognome")).toString();
            return v;
        };
        QCOMPARE(customers::LettereStriscia().size(), 27);
        QCOMPARE(nomi(customers::SorgenteLettera(QStringLiteral("R"))), (QStringList{"R'%_", "Rossi", "rossini"}));
        QCOMPARE(nomi(customers::SorgenteLettera(QStringLiteral("Tutti"))).size(), 4);
        QCOMPARE(nomi(customers::SorgenteModo(Modo::Fornitori)), QStringList{"rossini"});
        QCOMPARE(nomi(customers::SorgenteModo(Modo::Clienti)), (QStringList{"Bianchi", "R'%_", "Rossi"}));
    }

    // A customer typed in the card: a surname of blanks is refused on the first tab;
    // quotes stay as typed, empty dates are stored empty, the fee as typed, and the
    // save writes the mode, the user and today's date of the change.
    void nuovoCliente()
    {
        customers::frmClienti w(m_prompter, Modo::Clienti);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        w.bottoni(QStringLiteral("aggiungi"));
        QCOMPARE(c<QLabel>(w, "LblAss")->text(), frame::TestoLingua("M0359")); // a new card: both lamps yellow
        QCOMPARE(c<QLabel>(w, "LblCanone")->text(), frame::TestoLingua("M0360"));
        c(w, "TxtT_21")->setText(QStringLiteral("   "));
        c<QTabWidget>(w, "SSTab1")->setCurrentIndex(1);
        w.bottoni(QStringLiteral("ok"));
        QCOMPARE(m_prompter.texts(), QStringList{frame::TestoLingua("M0007")});
        QCOMPARE(c<QTabWidget>(w, "SSTab1")->currentIndex(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Clienti")).toInt(), 0);

        c(w, "TxtT_21")->setText(QStringLiteral("O'Brien \"Jr\" %_"));
        c(w, "TxtT_1")->setText(QStringLiteral("Zoë"));
        c(w, "TxtN_0")->setText(QStringLiteral("55.5"));
        c<QComboBox>(w, "Combo2")->setCurrentText(QStringLiteral("Dott.ssa"));
        c<frame::CasellaData>(w, "TxtD_3")->impostaData(QDate::currentDate().addDays(-1));
        w.bottoni(QStringLiteral("ok"));
        store::Recordset rs(db(), QStringLiteral("select * from Clienti"));
        rs.MoveFirst();
        QCOMPARE(rs.value(QStringLiteral("Cognome")).toString(), QStringLiteral("O'Brien \"Jr\" %_"));
        QCOMPARE(rs.value(QStringLiteral("Titolo")).toString(), QStringLiteral("Dott.ssa"));
        QCOMPARE(rs.value(QStringLiteral("Canone")).toDouble(), 55.5);
        QCOMPARE(rs.value(QStringLiteral("Cliente")).toBool(), true);
        QCOMPARE(rs.value(QStringLiteral("IdUtente")).toInt(), 1);
        QVERIFY(rs.value(QStringLiteral("DataUltimoPagamento")).isNull());
        QCOMPARE(rs.value(QStringLiteral("DataUltimaModifica")).toDateTime().date(), QDate::currentDate());
        QCOMPARE(c<QLabel>(w, "LblCanone")->text(), frame::TestoLingua("M0213")); // insurance gone by: red
        QCOMPARE(c<frame::CasellaData>(w, "TxtD_3")->palette().color(QPalette::Text), QColor(Qt::red));
    }

    // The lamps and the cash rows follow each move without a save; the phone book
    // moves the card, but not while a card is being written.
    void seguonoIlRecord()
    {
        const qint64 ritardo = aggiungi(QStringLiteral("Aaa"), true, giorno(-1), giorno(10));
        aggiungi(QStringLiteral("Bbb"), true);
        db().execute(QStringLiteral("insert into Cassa (IdCliente, Data, Descrizione, Entrata) values (?, ?, 'canone', 50)"),
                     {ritardo, giorno(-1)});
        customers::frmClienti w(m_prompter, Modo::Clienti);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        QCOMPARE(c(w, "TxtT_21")->text(), QStringLiteral("Bbb")); // opens on the last record
        QCOMPARE(c<QLabel>(w, "LblAss")->text(), frame::TestoLingua("M0359"));
        QCOMPARE(w.Datagrid().rowCount(), 0);
        auto *rubrica = c<QTableView>(w, "TDBGridRubrica");
        rubrica->setCurrentIndex(rubrica->model()->index(0, 0));
        QCOMPARE(c(w, "TxtT_21")->text(), QStringLiteral("Aaa"));
        QCOMPARE(c<QLabel>(w, "LblAss")->text(), frame::TestoLingua("M0212"));
        QCOMPARE(c<QLabel>(w, "LblCanone")->text(), frame::TestoLingua("M0215"));
        QCOMPARE(w.Datagrid().rowCount(), 1);

        w.bottoni(QStringLiteral("modifica"));
        rubrica->setCurrentIndex(rubrica->model()->index(1, 0));
        QCOMPARE(m_prompter.texts(), QStringList{frame::TestoLingua("M0005")});
        QCOMPARE(c(w, "TxtT_21")->text(), QStringLiteral("Aaa"));
        m_prompter.answer(Prompter::Answer::Ok);
        w.bottoni(QStringLiteral("annulla"));
    }

    // A supplier's card has no parking block and its list no parking columns; its
    // save keeps it a supplier and leaves the stored parking fields alone.
    void fornitore()
    {
        const qint64 id = aggiungi(QStringLiteral("Fornitore"), false, giorno(-5));
        db().execute(QStringLiteral("update Clienti set Targa = 'AB123CD' where Id = ?"), {id});
        customers::frmClienti w(m_prompter, Modo::Fornitori);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        QVERIFY(!c<QGroupBox>(w, "FrmParcheggio")->isVisible());
        QVERIFY(!c<QWidget>(w, "PicSemaforo")->isVisible());
        const int targa = w.datPrimaryRSGrd().colonna(QStringLiteral("Targa"));
        QVERIFY(targa >= 0 && w.grdDataGrid()->isColumnHidden(targa));

        // A layout saved from the heading's menu comes back by its name.
        QTemporaryDir programma;
        pub().CartellaProgramma = programma.path() + QLatin1Char('/');
        const auto azione = [&](const char *nome) { return w.grdDataGrid()->horizontalHeader()->findChild<QAction *>(QLatin1String(nome)); };
        const int nome = w.datPrimaryRSGrd().colonna(QStringLiteral("Nome"));
        w.grdDataGrid()->setColumnHidden(nome, true);
        azione("salva_clienti2")->trigger();
        w.grdDataGrid()->setColumnHidden(nome, false);
        azione("carica_clienti2")->trigger();
        QVERIFY(w.grdDataGrid()->isColumnHidden(nome));
        w.bottoni(QStringLiteral("modifica"));
        c(w, "TxtT_1")->setText(QStringLiteral("Mario"));
        w.bottoni(QStringLiteral("ok"));
        QCOMPARE(db().scalar(QStringLiteral("select Cliente || Targa || Nome from Clienti")).toString(), QStringLiteral("0AB123CDMario"));
    }

    // Delete asks once; the cash rows of the card stay. F3 finds by the surname's
    // beginning, and tells when nothing begins so.
    void eliminaERicercaVeloce()
    {
        const qint64 id = aggiungi(QStringLiteral("Verdi"), true);
        aggiungi(QStringLiteral("Rossi"), true);
        aggiungi(QStringLiteral("R'%_x"), true);
        db().execute(QStringLiteral("insert into Cassa (IdCliente, Data, Entrata) values (?, ?, 10)"), {id, giorno(0)});
        customers::frmClienti w(m_prompter, Modo::Clienti);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        w.RicercaVeloce(QStringLiteral("ve"));
        QCOMPARE(c(w, "TxtT_21")->text(), QStringLiteral("Verdi"));
        w.Command5();
        w.RicercaVeloce(QStringLiteral("r'%")); // pattern letters are plain text, case is not
        QCOMPARE(c(w, "TxtT_21")->text(), QStringLiteral("R'%_x"));
        for (const char *niente : {"Z'", "[#*", "R'%_xy"}) {
            w.Command5();
            w.RicercaVeloce(QString::fromUtf8(niente));
            QCOMPARE(m_prompter.texts().last(), frame::TestoLingua("M0004"));
        }
        w.Command5();
        w.RicercaVeloce(QStringLiteral("ve"));
        m_prompter.answer(Prompter::Answer::Ok);
        w.bottoni(QStringLiteral("elimina"));
        QCOMPARE(m_prompter.questions, QStringList{frame::TestoLingua("M0006")});
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Clienti where Cognome = 'Verdi'")).toInt(), 0);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Cassa where IdCliente = ?"), {id}).toInt(), 1);
    }

    // The fee taken twice while the card is changed, once refused; a row deleted
    // after its question; the receipt of the shown row and the card printed.
    void canoneERicevuta()
    {
        pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");
        const qint64 id = aggiungi(QStringLiteral("Neri"), true, giorno(-40));
        db().execute(QStringLiteral("update Clienti set Canone = 80 where Id = ?"), {id});
        customers::frmClienti w(m_prompter, Modo::Clienti);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        QVERIFY(!c<QPushButton>(w, "CmdPag")->isEnabled()); // only while the card is written
        w.bottoni(QStringLiteral("modifica"));
        for (const auto risposta : {Prompter::Answer::Ok, Prompter::Answer::Cancel, Prompter::Answer::Ok}) {
            m_prompter.answer(risposta);
            c<QPushButton>(w, "CmdPag")->click();
        }
        QCOMPARE(w.Datagrid().rowCount(), 2);
        QCOMPARE(db().scalar(QStringLiteral("select sum(Entrata) || ' ' || min(Descrizione) from Cassa where IdCliente = ?"), {id}).toString(),
                 QStringLiteral("160.0 ") + frame::TestoLingua("M0303"));
        w.bottoni(QStringLiteral("ok"));
        QCOMPARE(db().scalar(QStringLiteral("select DataUltimoPagamento from Clienti")).toDateTime().date(), QDate::currentDate());
        QCOMPARE(c<QLabel>(w, "LblAss")->text(), frame::TestoLingua("M0214"));

        auto *cassa = c<QTableView>(w, "TDBGrid_0");
        cassa->setCurrentIndex(w.Datagrid().index(0, 0));
        w.bottoni(QStringLiteral("modifica"));
        for (const auto risposta : {Prompter::Answer::No, Prompter::Answer::Yes}) {
            m_prompter.answer(risposta);
            c<QPushButton>(w, "CmdCancella")->click();
        }
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 1);
        m_prompter.answer(Prompter::Answer::Ok);
        w.bottoni(QStringLiteral("annulla"));

        const auto anteprime = [] {
            int n = 0;
            for (QWidget *t : QApplication::topLevelWidgets())
                if (t->objectName() == QLatin1String("AnteprimaReport") && t->isVisible()) {
                    ++n;
                    t->close();
                }
            return n;
        };
        cassa->setCurrentIndex(w.Datagrid().index(0, 0));
        c<QPushButton>(w, "CmdStampaDoc")->click();
        QCOMPARE(anteprime(), 1);
        w.bottoni(QStringLiteral("scheda"));
        QCOMPARE(anteprime(), 1);
        w.bottoni(QStringLiteral("stampa")); // the print panel offers the labels of the same filter
        auto *etichette = c<QPushButton>(w, "CmdEtichette");
        QVERIFY(etichette->isVisible());
        etichette->click();
        QCOMPARE(anteprime(), 1);
        QVERIFY2(m_prompter.messages.isEmpty(), qPrintable(m_prompter.texts().join(QLatin1Char('|'))));
    }

    // A card deleted by another window while shown: its change and its fee are
    // refused with a message, and nothing is written.
    void cancellatoAltrove()
    {
        const qint64 id = aggiungi(QStringLiteral("Sparito"), true);
        customers::frmClienti w(m_prompter, Modo::Clienti);
        w.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&w));
        w.bottoni(QStringLiteral("modifica"));
        db().execute(QStringLiteral("delete from Clienti where Id = ?"), {id});
        m_prompter.answer(Prompter::Answer::Ok);
        c<QPushButton>(w, "CmdPag")->click();
        c(w, "TxtT_1")->setText(QStringLiteral("dopo"));
        w.bottoni(QStringLiteral("ok"));
        QCOMPARE(m_prompter.messages.size(), 2);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Clienti")).toInt() + db().scalar(QStringLiteral("select count(*) from Cassa")).toInt(), 0);
    }
};

QTEST_MAIN(TestClienti)
#include "tst_clienti.moc"
