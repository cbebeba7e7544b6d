// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "frame/Session.h"
#include "frame/SettingsStore.h"
#include "store/Database.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"
#include "support/TestFiles.h"
#include "frame/FileError.h"

#include <QFile>
#include <QtTest>

#include <memory>

using frame::EsitoVerifica;
using frame::MenuVoci;
using frame::Prompter;
using frame::pub;

class TestSession : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    store::Database &db() { return frame::basedati(); }

    int addUser(const QString &name, const QVariant &password, const QString &master = QString())
    {
        db().execute(QStringLiteral("insert into Autorizzazioni (Utente, Password, Master) values (?, ?, ?)"),
                     {name, password, master.isEmpty() ? QVariant() : QVariant(master)});
        return int(db().lastInsertId());
    }
    void addRight(int user, int item, const QString &letter, bool enabled, bool visible, const QString &password = QString())
    {
        db().execute(QStringLiteral("insert into Accessi (IdAutorizzazioni, Item, Autorizzazione, Abilitato, Visibile, Password) "
                                    "values (?, ?, ?, ?, ?, ?)"),
                     {user, item, letter, enabled, visible, password});
    }
    void signIn(const QString &name, int id)
    {
        pub().UtenteCorrente = name;
        pub().IdUtenteCorrente = id;
        frame::CostruisceElencoElementi();
        frame::LeggeDirittiUtente(db(), id);
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        QFile::remove(frame::SettingsStore::fileName());
        m_db = std::make_unique<TestDatabase>();
    }
    void cleanup() { m_db.reset(); }

    void loginRules_data()
    {
        colonne<QVariant, QString, bool, bool>({"stored", "typed", "login", "passwordWindow"});
        QTest::newRow("same text") << QVariant("Segreto") << "Segreto" << true << true;
        QTest::newRow("other case at login only") << QVariant("ADMIN") << "Admin" << true << false;
        QTest::newRow("wrong") << QVariant("Segreto") << "segret" << false << false;
        QTest::newRow("null and empty") << QVariant() << "" << true << true;
        QTest::newRow("empty text and empty") << QVariant("") << "" << true << true;
        QTest::newRow("set, left empty") << QVariant("x") << "" << false << false;
        QTest::newRow("null, something typed") << QVariant() << "x" << false << false;
        QTest::newRow("master password") << QVariant("Segreto") << "quartzel" << true << false;
        QTest::newRow("master in capitals") << QVariant("Segreto") << "QUARTZEL" << true << false;
        QTest::newRow("quotes") << QVariant("a'b\"c") << "A'B\"C" << true << false;
    }
    void loginRules()
    {
        QFETCH(QVariant, stored); QFETCH(QString, typed); QFETCH(bool, login); QFETCH(bool, passwordWindow);
        const int id = addUser(QStringLiteral("O'Neil"), stored);
        ScriptedPrompter p;
        const EsitoVerifica esito = frame::VerificaLogin(db(), p, QStringLiteral("O'Neil"), typed);
        QCOMPARE(esito == EsitoVerifica::Accettato, login);
        QCOMPARE(pub().IdUtenteCorrente, id); // read before the password test, as the user's own row
        QCOMPARE(pub().UtenteCorrente, QStringLiteral("O'Neil"));
        if (login) {
            QVERIFY(p.messages.isEmpty());
            QCOMPARE(frame::SettingsStore::get(QStringLiteral("Impostazioni"), QStringLiteral("UltimoUtente")), QStringLiteral("O'Neil"));
        } else {
            QCOMPARE(p.messages.size(), 1);
            QCOMPARE(p.messages.first().text, frame::TestoLingua("M0100"));
            QCOMPARE(p.messages.first().icon, Prompter::Icon::Critical);
        }
        QCOMPARE(frame::PasswordEsatta(typed), passwordWindow);
    }

    // The name is found blind to case and remembered as typed; a master user is flagged; no name matches by injection.
    void loginByName()
    {
        addUser(QStringLiteral("Capo"), QVariant(), QStringLiteral("S"));
        ScriptedPrompter p;
        QCOMPARE(frame::VerificaLogin(db(), p, QStringLiteral("capo"), QString()), EsitoVerifica::Accettato);
        QVERIFY(pub().UtenteMaster);
        QCOMPARE(pub().UtenteCorrente, QStringLiteral("Capo"));
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("Impostazioni"), QStringLiteral("UltimoUtente")), QStringLiteral("capo"));
        QCOMPARE(frame::VerificaLogin(db(), p, QStringLiteral("nobody' or '1'='1"), QStringLiteral("quartzel")),
                 EsitoVerifica::UtenteSconosciuto);
        QCOMPARE(p.messages.first().text, frame::TestoLingua("M0101"));
    }

    void oldAdministratorSpellingAndEmptyTable()
    {
        db().execute(QStringLiteral("update Autorizzazioni set Utente = 'amministratore' where Utente = 'administrator'"));
        QVERIFY(frame::PreparaAutorizzazioni(db()));
        QCOMPARE(db().scalar(QStringLiteral("select count(*) from Autorizzazioni where Utente = 'administrator'")).toInt(), 1);
        QVERIFY(!frame::PreparaAutorizzazioni(db()));

        db().execute(QStringLiteral("delete from Autorizzazioni"));
        frame::PreparaAutorizzazioni(db());
        QCOMPARE(frame::ElencoUtenti(db()), QStringList{QStringLiteral("administrator")});
        ScriptedPrompter p;
        QCOMPARE(frame::VerificaLogin(db(), p, QStringLiteral("administrator"), QString()), EsitoVerifica::Accettato);
    }

    void authorisation_data()
    {
        // message: end of the refusal, empty for none
        colonne<QString, QString, int, bool, QString>({"letter", "operation", "recordUser", "allowed", "message"});
        const QString soloLettura = QStringLiteral("è autorizzato solo a leggere le registrazione");
        const QString nonModifica = QStringLiteral("non è autorizzato a modificare o cancellare le registrazioni");
        const QString nonCancella = QStringLiteral("non è autorizzato a cancellare le registrazioni");
        const QString altri = QStringLiteral("non è autorizzato a modificare o cancellare le registrazioni fatte da altri utenti");
        for (const char *op : {"aggiungi", "modifica", "elimina", "gestioneaccessi"}) {
            const QString o = QString::fromLatin1(op);
            const bool aggiungi = o == QLatin1String("aggiungi");
            const bool gestione = o == QLatin1String("gestioneaccessi");
            const bool scrive = !aggiungi && !gestione;
            QTest::addRow("C %s", op) << "C" << o << 7 << true << "";
            QTest::addRow("empty %s", op) << "" << o << 7 << true << "";
            QTest::addRow("unknown %s", op) << "Z" << o << 7 << true << "";
            QTest::addRow("L %s", op) << "L" << o << 7 << false << (gestione ? QString() : soloLettura);
            QTest::addRow("A %s", op) << "A" << o << 7 << !scrive << (scrive ? nonModifica : QString());
            const bool elimina = o == QLatin1String("elimina");
            QTest::addRow("M %s", op) << "M" << o << 7 << !elimina << (elimina ? nonCancella : QString());
            QTest::addRow("N %s", op) << "N" << o << 7 << !elimina << (elimina ? nonCancella : QString());
            QTest::addRow("X other's %s", op) << "X" << o << 7 << !scrive << (scrive ? altri : QString());
            QTest::addRow("X own %s", op) << "X" << o << 3 << true << "";
            QTest::addRow("X no author %s", op) << "X" << o << -1 << true << "";
        }
        QTest::newRow("lower-case letter is another letter") << "l" << "modifica" << 7 << true << "";
    }
    void authorisation()
    {
        QFETCH(QString, letter); QFETCH(QString, operation); QFETCH(int, recordUser); QFETCH(bool, allowed);
        QFETCH(QString, message);
        pub().UtenteCorrente = QStringLiteral("mario");
        pub().IdUtenteCorrente = 3;
        ScriptedPrompter p;
        QCOMPARE(frame::AutorizzaOperazione(p, operation, letter, recordUser), allowed);
        if (message.isEmpty()) {
            QVERIFY(p.messages.isEmpty());
        } else {
            QCOMPARE(p.messages.size(), 1);
            QCOMPARE(p.messages.first().text, QStringLiteral("L'utente 'mario' ") + message);
            QCOMPARE(p.messages.first().icon, Prompter::Icon::Critical);
        }
    }

    void itemList()
    {
        frame::CostruisceElencoElementi();
        const auto &e = pub().ElencoElementi;
        QCOMPARE(e.size(), 17); // sixteen items and the spare element
        QCOMPARE(e.last().Item, 0);
        QCOMPARE(pub().IndiceTabelle, 4);
        QCOMPARE(pub().IndiceStampe, 6);
        QCOMPARE(e[2].Item, 111);
        QCOMPARE(e[2].Descrizione, QLatin1Char('&') + frame::TestoLingua("M0264"));
        QVERIFY(!e[13].Abilitato); // the service items start disabled
        const auto voci = frame::VociMenu();
        QCOMPARE(voci.size(), 16);
        QCOMPARE(voci[13].menu, MenuVoci::Servizio);
        QCOMPARE(voci[13].indice, 0);
        QCOMPARE(voci[12].menu, MenuVoci::Stampe);
        QCOMPARE(voci[12].indice, 6);
        // The service handler reads rights by its bare index, like the registry menu.
        QCOMPARE(frame::PosizioneDiritti(MenuVoci::Servizio, 1), 1);
        QCOMPARE(frame::PosizioneDiritti(MenuVoci::Tabelle, 1), 5);
        QCOMPARE(frame::PosizioneDiritti(MenuVoci::Stampe, 2), 8);
    }

    // Administrator, whatever rows stand for him, and a user with no rows at all see every entry.
    void everythingWithoutRights()
    {
        addRight(1, 101, QStringLiteral("L"), false, false);
        const int id = addUser(QStringLiteral("nuovo"), QVariant());
        for (const auto &[nome, n] : {std::pair{QStringLiteral("administrator"), 1}, std::pair{QStringLiteral("nuovo"), id}}) {
            signIn(nome, n);
            for (const auto &v : frame::VociMenu())
                QVERIFY(v.abilitato && v.visibile && !v.didascalia.isEmpty());
        }
        QVERIFY(pub().DirittiUtente.isEmpty());
        QVERIFY(frame::DirittoAlla(0) == nullptr);
    }

    void limitedUser()
    {
        const int id = addUser(QStringLiteral("mario"), QStringLiteral("pw"));
        addRight(id, 101, QStringLiteral("L"), true, false);          // first registry entry hidden
        addRight(id, 105, QStringLiteral("A"), false, true, QStringLiteral("S"));
        addRight(id, 111, QStringLiteral("X"), true, true);
        addRight(id, 211, QStringLiteral("C"), true, false);         // second of its menu: hidden for real
        signIn(QStringLiteral("mario"), id);
        const auto voci = frame::VociMenu();
        QCOMPARE(voci[0].didascalia, QString());
        QVERIFY(voci[0].visibile);
        QVERIFY(!voci[1].abilitato);
        QVERIFY(voci[2].abilitato && voci[2].visibile);
        QVERIFY(!voci[5].visibile);
        QVERIFY(voci[6].abilitato && voci[6].visibile); // no row: untouched
        QCOMPARE(frame::DirittoAlla(2)->Autorizzazione, QStringLiteral("X"));
        QVERIFY(frame::DirittoAlla(1)->Password);
        QVERIFY(!frame::DirittoAlla(2)->Password);
    }

    // Templates newer in the database's folder are copied beside the program; a
    // copy that can't be made is a file failure naming the file, not a database one.
    void sharedFilesCopied()
    {
        QTemporaryDir condivisa, programma;
        const QString salvaPath = pub().Pathdata, salvaCartella = pub().CartellaProgramma;
        pub().Pathdata = condivisa.filePath(QStringLiteral("basedati.mdb"));
        writeBytes(condivisa.filePath(QStringLiteral("park.rpt")), "nuovo");
        writeBytes(programma.filePath(QStringLiteral("park.rpt")), "vecchio");
        {
            QFile vecchio(programma.filePath(QStringLiteral("park.rpt")));
            QVERIFY(vecchio.open(QIODevice::ReadWrite));
            QVERIFY(vecchio.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
        }
        pub().CartellaProgramma = programma.path() + QLatin1Char('/');
        ScriptedPrompter p;
        QVERIFY(!frame::AggiornaFileCondivisi(p, programma.filePath(QStringLiteral("veltano"))));
        QCOMPARE(bytesOf(programma.filePath(QStringLiteral("park.rpt"))), QByteArray("nuovo"));

        pub().CartellaProgramma = programma.filePath(QStringLiteral("missing/"));
        try {
            frame::AggiornaFileCondivisi(p, programma.filePath(QStringLiteral("veltano")));
            QFAIL("no failure");
        } catch (const frame::FileError &e) {
            QCOMPARE(e.path(), programma.filePath(QStringLiteral("missing/park.rpt")));
        }
        QVERIFY(p.messages.isEmpty());
        pub().Pathdata = salvaPath;
        pub().CartellaProgramma = salvaCartella;
    }
};

QTEST_GUILESS_MAIN(TestSession)
#include "tst_session.moc"
