// SPDX-License-Identifier: GPL-3.0-or-later
// The users and their rights: the check before a save, the rights grid's rule,
// the rows each user needs, the password asked before a change, the row that
// can't go, and a user made in the window signing in with the rights given there.
#include "admin/Utenti.h"
#include "admin/ui/frmAutoriz.h"
#include "forms/RecordsetModel.h"
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "frame/ui/frmLogin.h"
#include "frame/ui/frmMain.h"
#include "reports/engine/CrystalReport.h"
#include "reports/ui/VisoreAnteprima.h"
#include "store/Database.h"
#include "store/Recordset.h"
#include "support/Colonne.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestWindows.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using admin::EsitoConvalida;
using frame::MenuVoci;
using frame::Prompter;
using frame::pub;

namespace {

store::Database &db()
{
    return frame::basedati();
}

qint64 utente(const QString &nome, const QVariant &password = {})
{
    db().execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values (?, ?)"), {nome, password});
    return db().lastInsertId();
}

qint64 idDi(const QString &nome)
{
    return db().scalar(QStringLiteral("select id from Autorizzazioni where Utente = ?"), {nome}).toLongLong();
}

int righeAccessi(qint64 id)
{
    return db().scalar(QStringLiteral("select count(*) from Accessi where IdAutorizzazioni = ?"), {id}).toInt();
}

void accedi(const QString &nome, qint64 id)
{
    pub().UtenteCorrente = nome;
    pub().IdUtenteCorrente = int(id);
}

// The row of the rights grid that shows an item.
int rigaItem(admin::ModelloAccessi &m, int item)
{
    const QString etichetta = admin::EtichetteItem().value(item);
    for (int r = 0; r < m.rowCount(); ++r)
        if (m.index(r, 0).data().toString() == etichetta)
            return r;
    return -1;
}

// Picks a user in the window's list, as a click would.
void scegli(QWidget &w, const QString &nome)
{
    auto *elenco = w.findChild<QTableView *>(QStringLiteral("lstUtenti"));
    const QModelIndex i = elenco->model()->match(elenco->model()->index(0, elenco->currentIndex().column()), Qt::DisplayRole, nome, 1,
                                                 Qt::MatchExactly).value(0);
    QVERIFY(i.isValid());
    elenco->setCurrentIndex(i);
}

} // namespace

class TestUtenti : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;
    QStringList m_stato;


private slots:
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        m_stato.clear();
        pub().statusSink = [this](const QString &t) { m_stato << t; };
        accedi(QStringLiteral("administrator"), idDi(QStringLiteral("administrator")));
        frame::CostruisceElencoElementi();
        pub().DirittiUtente.clear();
    }
    void cleanup()
    {
        pub().statusSink = nullptr;
        m_db.reset();
    }

    // The check before a save.
    void convalida_data()
    {
        // id: the record changed ("" while adding); attesa: the name saved; chiave: the critical box, "" none
        colonne<QString, QString, QString, QString, QString, int, QString, QString>(
            {"corrente", "id", "nome", "password", "ripetizione", "esito", "attesa", "chiave"});
        const int V = int(EsitoConvalida::Valido), VUOTO = int(EsitoConvalida::NomeVuoto),
                  DOPPIO = int(EsitoConvalida::NomeDoppio), DIVERSE = int(EsitoConvalida::PasswordDiverse);
        QTest::newRow("blanks only") << "administrator" << "" << "   " << "" << "" << VUOTO << "" << "M0113";
        QTest::newRow("double blanks go") << "administrator" << "" << "  anna   maria " << "" << "" << V << "anna maria" << "";
        QTest::newRow("a quote is a name") << "administrator" << "" << "d'Angelo" << "" << "" << V << "d'Angelo" << "";
        QTest::newRow("taken, on add") << "administrator" << "" << "mario" << "" << "" << DOPPIO << "mario" << "M0114";
        QTest::newRow("taken but for case") << "administrator" << "" << "MARIO" << "" << "" << DOPPIO << "MARIO" << "M0114";
        QTest::newRow("taken, with its quote") << "administrator" << "" << "o'neil" << "" << "" << DOPPIO << "o'neil" << "M0114";
        QTest::newRow("taken, on change") << "administrator" << "O'Neil" << "Mario" << "" << "" << DOPPIO << "Mario" << "M0114";
        QTest::newRow("own name in other case") << "administrator" << "mario" << "Mario" << "" << "" << V << "Mario" << "";
        QTest::newRow("own password differs") << "mario" << "mario" << "mario" << "a" << "b" << DIVERSE << "mario" << "M0100";
        QTest::newRow("own password agrees") << "mario" << "mario" << "mario" << "a" << "a" << V << "mario" << "";
        QTest::newRow("another's password not compared") << "administrator" << "mario" << "mario" << "a" << "b" << V << "mario" << "";
        QTest::newRow("a new user's not compared") << "administrator" << "" << "luigi" << "a" << "b" << V << "luigi" << "";
    }
    void convalida()
    {
        QFETCH(QString, corrente); QFETCH(QString, id); QFETCH(QString, nome); QFETCH(QString, password);
        QFETCH(QString, ripetizione); QFETCH(QString, chiave);
        utente(QStringLiteral("mario"), QStringLiteral("a"));
        utente(QStringLiteral("O'Neil"));
        accedi(corrente, idDi(corrente));
        admin::DatiUtente d;
        d.nome = nome;
        d.password = password;
        d.ripetizione = ripetizione;
        if (!id.isEmpty()) {
            d.id = idDi(id);
            d.utenteRecord = id;
        }
        QTEST(int(admin::ConvalidaUtente(db(), m_prompter, d)), "esito");
        QTEST(d.nome, "attesa");
        if (chiave.isEmpty()) {
            QVERIFY(m_prompter.messages.isEmpty());
            QCOMPARE(d.password, password);
        } else {
            QCOMPARE(m_prompter.texts(), QStringList{frame::TestoLingua(chiave)});
            QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Critical);
        }
        if (chiave == QLatin1String("M0100"))
            QVERIFY(d.password.isEmpty() && d.ripetizione.isEmpty());
    }

    // The labels of the grid, and the levels each item takes.
    void etichette()
    {
        QCOMPARE(admin::EtichettaItem(101, QStringLiteral("&Customers")), QStringLiteral("Anagrafica &Customers"));
        QCOMPARE(admin::EtichettaItem(211, QStringLiteral("&Cash")), QStringLiteral("Tabella &Cash"));
        QCOMPARE(admin::EtichettaItem(361, QStringLiteral("&X")), QStringLiteral("Stampa &X"));
        QCOMPARE(admin::EtichettaItem(431, QStringLiteral("&Restore")), QStringLiteral("Servizio &Restore"));
        const QMap<int, QString> tutte = admin::EtichetteItem();
        QCOMPARE(tutte.size(), 16); // the spare last element has none
        QCOMPARE(tutte.value(131), QStringLiteral("Anagrafica &") + frame::TestoLingua("M0265"));
    }
    void regola_data()
    {
        colonne<int, QString, QString, bool>({"item", "lettera", "attesa", "avviso"});
        QTest::newRow("empty is full") << 101 << "" << "C" << false;
        QTest::newRow("blank is full") << 201 << " " << "C" << false;
        QTest::newRow("registry, read only") << 101 << "L" << "L" << false;
        QTest::newRow("registry, own records") << 105 << "X" << "X" << false;
        QTest::newRow("table, no delete") << 211 << "M" << "M" << false;
        QTest::newRow("users' own window") << 131 << "L" << "C" << true;
        QTest::newRow("users' own window, full") << 131 << "C" << "C" << false;
        QTest::newRow("report") << 301 << "A" << "C" << true;
        QTest::newRow("report, empty") << 321 << "" << "C" << false;
        QTest::newRow("service") << 431 << "N" << "C" << true;
    }
    void regola()
    {
        QFETCH(int, item); QFETCH(QString, lettera); QFETCH(bool, avviso);
        QTEST(admin::RegolaAutorizzazione(m_prompter, item, admin::EtichetteItem().value(item), lettera), "attesa");
        QCOMPARE(m_prompter.texts(), avviso ? QStringList{frame::TestoLingua("M0111")} : QStringList());
    }

    // Every item gets its row, in the list's order, with the list's defaults; nothing twice.
    void completamento()
    {
        const qint64 mario = utente(QStringLiteral("mario"));
        const qint64 altro = utente(QStringLiteral("anna"));
        db().execute(QStringLiteral("insert into Accessi (IdAutorizzazioni, Item, Autorizzazione) values (?, 101, 'L')"), {altro});
        QCOMPARE(admin::CompletaAccessi(db(), mario), 16);
        QCOMPARE(admin::CompletaAccessi(db(), mario), 0);
        QCOMPARE(righeAccessi(altro), 1);
        store::Recordset rs(db(), QStringLiteral("select Item, Autorizzazione, Abilitato, Visibile from Accessi where IdAutorizzazioni = ? order by id"),
                            {mario});
        int i = 0;
        for (rs.MoveFirst(); !rs.eof(); rs.MoveNext(), ++i) {
            const frame::ElementoAccesso &e = pub().ElencoElementi.at(i);
            QCOMPARE(rs.value(0).toInt(), e.Item);
            QCOMPARE(rs.value(1).toString(), QStringLiteral("C"));
            QCOMPARE(rs.value(2).toBool(), e.Item < 400); // services start off
            QVERIFY(rs.value(3).toBool());
        }
        // A row that went missing comes back; the one there keeps its letter.
        db().execute(QStringLiteral("delete from Accessi where IdAutorizzazioni = ? and Item = 311"), {mario});
        db().execute(QStringLiteral("update Accessi set Autorizzazione = 'X' where IdAutorizzazioni = ? and Item = 105"), {mario});
        QCOMPARE(admin::CompletaAccessi(db(), mario), 1);
        QCOMPARE(righeAccessi(mario), 16);
        QCOMPARE(db().scalar(QStringLiteral("select Autorizzazione from Accessi where IdAutorizzazioni = ? and Item = 105"), {mario}).toString(),
                 QStringLiteral("X"));
        QCOMPARE(admin::CompletaAccessi(db(), altro), 15);
    }

    // The password asked before a change.
    void chiedePassword_data()
    {
        colonne<QString, QString, QString, QVariant, bool>({"corrente", "casella", "record", "password", "chiede"});
        QTest::newRow("administrator on another's row") << "administrator" << "mario" << "mario" << QVariant("pw") << false;
        QTest::newRow("administrator on its own row") << "administrator" << "administrator" << "administrator" << QVariant("pw") << true;
        QTest::newRow("a user on another's row") << "mario" << "anna" << "anna" << QVariant("pw") << true;
        QTest::newRow("a user on its own row") << "mario" << "mario" << "mario" << QVariant("pw") << true;
        QTest::newRow("no password") << "mario" << "anna" << "anna" << QVariant() << false;
        QTest::newRow("an empty password") << "mario" << "anna" << "anna" << QVariant("") << false;
        QTest::newRow("a row with no name") << "mario" << "" << "" << QVariant("pw") << false;
    }
    void chiedePassword()
    {
        QFETCH(QString, corrente); QFETCH(QString, casella); QFETCH(QString, record); QFETCH(QVariant, password);
        QTEST(admin::ChiedePassword(corrente, casella, record, password), "chiede");
    }
    void verificaPassword_data()
    {
        // annulla: the box is cancelled
        colonne<bool, QString, bool, bool>({"annulla", "risposta", "accettata", "avviso"});
        QTest::newRow("cancel") << true << "" << false << false;
        QTest::newRow("empty") << false << "" << false << false;
        QTest::newRow("same, other case") << false << "sEcReT" << true << false;
        QTest::newRow("master password") << false << "quartzel" << true << false;
        QTest::newRow("master password, other case") << false << "QUARTZEL" << false << true;
        QTest::newRow("wrong") << false << "secrets" << false << true;
    }
    void verificaPassword()
    {
        QFETCH(bool, annulla); QFETCH(QString, risposta); QFETCH(bool, avviso);
        m_prompter.answerInput(annulla ? std::nullopt : std::optional<QString>(risposta));
        QTEST(admin::VerificaPasswordRecord(m_prompter, QStringLiteral("Secret")), "accettata");
        QCOMPARE(m_prompter.texts(), avviso ? QStringList{frame::TestoLingua("M0100")} : QStringList());
        if (avviso)
            QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Critical);
    }

    // The window opens on the signed-in user; administrator's name stays, others' may change.
    void finestraAmministratore()
    {
        utente(QStringLiteral("mario"));
        admin::frmAutoriz w(m_prompter);
        QCOMPARE(c(w, "TxtT_0")->text(), QStringLiteral("administrator"));
        QVERIFY(!c(w, "TxtT_0")->isEnabled());
        QCOMPARE(w.didascaliaRecord(), QStringLiteral("Reg. 1"));
        for (const char *k : {"aggiungi", "modifica", "elimina", "trova", "stampa"})
            QVERIFY2(w.pulsante(QLatin1String(k))->isVisible(), k);
        for (const char *k : {"scheda", "refresh", "gestione"})
            QVERIFY2(!w.pulsante(QLatin1String(k))->isVisible(), k);
        // The rights grid shows the user's rows, completed, by label and words.
        QCOMPARE(w.Data1().rowCount(), 16);
        QCOMPARE(w.Data1().index(0, 0).data().toString(), admin::EtichetteItem().value(101));
        QCOMPARE(w.Data1().index(0, 1).data().toString(), QStringLiteral("COMPLETA"));
        QCOMPARE(w.Data1().index(0, 2).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QVERIFY(!(w.Data1().flags(w.Data1().index(0, 1)) & Qt::ItemIsEditable)); // not while browsing

        scegli(w, QStringLiteral("mario"));
        QCOMPARE(c(w, "TxtT_0")->text(), QStringLiteral("mario"));
        QVERIFY(c(w, "TxtT_0")->isEnabled());
        QCOMPARE(w.didascaliaRecord(), QStringLiteral("Reg. 2")); // by name: administrator, mario, processo automatico
        QCOMPARE(righeAccessi(idDi(QStringLiteral("mario"))), 16);
    }

    // A user who isn't administrator: no add, delete, search or print, and no name to change.
    void finestraUtente()
    {
        const qint64 mario = utente(QStringLiteral("mario"));
        utente(QStringLiteral("anna"));
        accedi(QStringLiteral("mario"), mario);
        admin::frmAutoriz w(m_prompter);
        QCOMPARE(c(w, "TxtT_0")->text(), QStringLiteral("mario"));
        QVERIFY(!c(w, "TxtT_0")->isEnabled());
        for (const char *k : {"aggiungi", "elimina", "trova", "stampa"})
            QVERIFY2(!w.pulsante(QLatin1String(k))->isVisible(), k);
        QVERIFY(w.pulsante(QStringLiteral("modifica"))->isVisible());
        // Another user without a password is changed freely; the name box stays shut.
        scegli(w, QStringLiteral("anna"));
        QCOMPARE(c(w, "TxtT_0")->text(), QStringLiteral("anna"));
        QVERIFY(!c(w, "TxtT_0")->isEnabled());
        w.bottoni(QStringLiteral("modifica"));
        QCOMPARE(w.recordset().editMode(), store::Recordset::EditMode::Edit);
        QVERIFY(m_prompter.messages.isEmpty());
    }

    // "modifica" on a row with a password asks for it; a wrong one leaves the row as it was.
    void modificaConPassword_data()
    {
        colonne<bool, QString, bool>({"annulla", "risposta", "modifica"});
        QTest::newRow("right, other case") << false << "PW" << true;
        QTest::newRow("wrong") << false << "nope" << false;
        QTest::newRow("cancel") << true << "" << false;
    }
    void modificaConPassword()
    {
        QFETCH(bool, annulla); QFETCH(QString, risposta); QFETCH(bool, modifica);
        db().execute(QStringLiteral("update Autorizzazioni set Password = 'pw' where Utente = 'administrator'"));
        admin::frmAutoriz w(m_prompter);
        m_prompter.answerInput(annulla ? std::nullopt : std::optional<QString>(risposta));
        m_stato.clear();
        w.bottoni(QStringLiteral("modifica"));
        QCOMPARE(w.recordset().editMode() == store::Recordset::EditMode::Edit, modifica);
        QCOMPARE(m_stato.contains(frame::TestoLingua("M0015")), modifica);
        QCOMPARE(w.pulsante(QStringLiteral("ok"))->isEnabled(), modifica);
        QCOMPARE(w.pulsante(QStringLiteral("aggiungi"))->isEnabled(), !modifica);
        QCOMPARE(m_prompter.texts().contains(frame::TestoLingua("M0100")), !modifica && !annulla);
    }

    // administrator's row survives a delete; another goes after one question.
    void elimina()
    {
        utente(QStringLiteral("mario"));
        admin::frmAutoriz w(m_prompter);
        QVERIFY(!admin::UtenteEliminabile(m_prompter, QStringLiteral("administrator")));
        QVERIFY(admin::UtenteEliminabile(m_prompter, QStringLiteral("Mario")));
        m_prompter.messages.clear();
        w.bottoni(QStringLiteral("elimina"));
        QCOMPARE(m_prompter.texts(), QStringList{frame::TestoLingua("M0112")});
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Critical);
        QVERIFY(m_prompter.questions.isEmpty());
        QVERIFY(idDi(QStringLiteral("administrator")) > 0);

        scegli(w, QStringLiteral("mario"));
        m_prompter.answer(Prompter::Answer::Ok);
        m_stato.clear();
        w.bottoni(QStringLiteral("elimina"));
        QCOMPARE(m_prompter.questions, QStringList{frame::TestoLingua("M0006")});
        QCOMPARE(idDi(QStringLiteral("mario")), 0);
        QVERIFY(m_stato.contains(frame::TestoLingua("M0016")));
        QCOMPARE(c(w, "TxtT_0")->text(), QStringLiteral("processo automatico")); // the next row takes its place
    }

    // The window refuses a duplicate and a blank name at "ok" and stays in its edit.
    void salvataggioRifiutato()
    {
        utente(QStringLiteral("mario"));
        const int utenti = db().scalar(QStringLiteral("select count(*) from Autorizzazioni")).toInt();
        admin::frmAutoriz w(m_prompter);
        w.bottoni(QStringLiteral("aggiungi"));
        QVERIFY(c(w, "TxtT_0")->isEnabled());
        QCOMPARE(w.Data1().rowCount(), 0); // a user not yet written has no rights yet
        c(w, "TxtT_0")->setText(QStringLiteral("MARIO"));
        w.bottoni(QStringLiteral("ok"));
        c(w, "TxtT_0")->setText(QStringLiteral("   "));
        w.bottoni(QStringLiteral("ok"));
        QCOMPARE(m_prompter.texts(), (QStringList{frame::TestoLingua("M0114"), frame::TestoLingua("M0113")}));
        QCOMPARE(w.recordset().editMode(), store::Recordset::EditMode::AddNew);
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Autorizzazioni")).toInt(), utenti);
    }

    // A user made in the window, with rights changed in its grid, signs in and finds them in the menus.
    void utenteNuovoAccede()
    {
        auto w = std::make_unique<admin::frmAutoriz>(m_prompter);
        m_stato.clear();
        w->pulsante(QStringLiteral("aggiungi"))->trigger();
        QVERIFY(m_stato.contains(frame::TestoLingua("M0014")));
        c(*w, "TxtT_0")->setText(QStringLiteral("  luigi  verdi "));
        c(*w, "TxtT_1")->setText(QStringLiteral("Pw"));
        c(*w, "TxtT_2")->setText(QStringLiteral("Pw"));
        w->pulsante(QStringLiteral("ok"))->trigger();
        QVERIFY(m_stato.contains(frame::TestoLingua("M0017")));
        QCOMPARE(c(*w, "TxtT_0")->text(), QStringLiteral("luigi verdi"));
        const qint64 luigi = idDi(QStringLiteral("luigi verdi"));
        QVERIFY(luigi > 0);
        QCOMPARE(righeAccessi(luigi), 16);

        // administrator changes another user's rows without a password.
        w->pulsante(QStringLiteral("modifica"))->trigger();
        QCOMPARE(w->recordset().editMode(), store::Recordset::EditMode::Edit);
        admin::ModelloAccessi &m = w->Data1();
        QVERIFY(w->TDBGrid1()->editTriggers() != QAbstractItemView::NoEditTriggers);
        QVERIFY(m.setData(m.index(rigaItem(m, 105), 2), Qt::Unchecked, Qt::CheckStateRole)); // suppliers off
        QVERIFY(m.setData(m.index(rigaItem(m, 101), 1), QStringLiteral("L"), Qt::EditRole));  // customers read only
        QVERIFY(m.setData(m.index(rigaItem(m, 111), 4), Qt::Checked, Qt::CheckStateRole));   // parking asks the password
        QVERIFY(m.setData(m.index(rigaItem(m, 301), 1), QStringLiteral("A"), Qt::EditRole));  // a report: back to full
        QCOMPARE(m_prompter.texts(), QStringList{frame::TestoLingua("M0111")});
        QCOMPARE(m.index(rigaItem(m, 301), 1).data().toString(), QStringLiteral("COMPLETA"));
        QCOMPARE(m.index(rigaItem(m, 101), 1).data().toString(), frame::DescrizioneAutorizzazione(QStringLiteral("L")));
        w->pulsante(QStringLiteral("ok"))->trigger();
        QVERIFY(!(m.flags(m.index(0, 2)) & Qt::ItemIsUserCheckable));
        w.reset();

        // The login as that user, name typed in another case.
        frame::frmLogin login(m_prompter, frame::frmLogin::Modo::Accesso);
        QVERIFY(login.prepara());
        login.findChild<QComboBox *>(QStringLiteral("TDBCUserName"))->setCurrentText(QStringLiteral("LUIGI VERDI"));
        login.findChild<QLineEdit *>(QStringLiteral("txtPassword"))->setText(QStringLiteral("pw"));
        login.show();
        QTest::keyClick(&login, Qt::Key_F5);
        QVERIFY(login.LoginSucceeded());
        QCOMPARE(pub().UtenteCorrente, QStringLiteral("luigi verdi"));

        frame::frmMain main(m_prompter);
        QWidget *aperta = nullptr;
        main.RegistraFinestra(101, [&aperta](frame::frmMain &f) { return aperta = new QWidget(&f); });
        main.ApplicaSessione();
        QVERIFY(main.voce(MenuVoci::Anagrafiche, 0)->isEnabled());
        QVERIFY(!main.voce(MenuVoci::Anagrafiche, 1)->isEnabled());
        QVERIFY(main.voce(MenuVoci::Anagrafiche, 3)->isEnabled());
        QVERIFY(!main.voce(MenuVoci::Servizio, 0)->isEnabled()); // services start off for a new user
        QVERIFY(pub().DirittiUtente.at(2).Password);
        main.CliccaVoce(MenuVoci::Anagrafiche, 0);
        QVERIFY(aperta);
        QCOMPARE(aperta->property("Tag").toString(), QStringLiteral("L"));
    }

    // The print: each user a search found, with its rights in words.
    void stampa()
    {
        const qint64 mario = utente(QStringLiteral("mario"));
        admin::CompletaAccessi(db(), mario);
        db().execute(QStringLiteral("update Accessi set Autorizzazione = 'X', Password = '-1' where IdAutorizzazioni = ? and Item = 101"), {mario});
        pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");
        QTemporaryDir out;
        reports::VisoreAnteprima visore;
        reports::CrystalReport report(m_prompter, &visore);
        report.setKeepLayout(true);
        report.setPrintFileName(out.filePath(QStringLiteral("utenti.pdf")));
        reports::Lancio l;
        l.modello = QStringLiteral("Autorizzazzioni");
        l.selezione = QStringLiteral(" UpperCase(Left({Autorizzazioni.Utente},3))='MAR'");
        for (const QString &f : admin::FormuleStampaUtenti())
            l.formule.insert(l.formule.size(), f);
        l.destinazione = reports::Lancio::ToFile;
        QVERIFY2(report.esegui(l), qPrintable(report.lastError()));
        QCOMPARE(report.lastRowCount(), 16);
        const auto righe = report.laidOut(QStringLiteral("detail"));
        QCOMPARE(righe.size(), 16);
        QVERIFY(righe.first().texts.contains(QString(admin::EtichetteItem().value(101)).remove(QLatin1Char('&'))));
        QVERIFY(righe.first().texts.contains(QStringLiteral("Modifica Solo Proprie Registrazioni")));
        QVERIFY(righe.first().texts.contains(QStringLiteral("✓")));
        QVERIFY(righe.at(1).texts.contains(QStringLiteral("COMPLETA")));
        QVERIFY(m_prompter.messages.isEmpty());
    }
};

QTEST_MAIN(TestUtenti)
#include "tst_utenti.moc"
