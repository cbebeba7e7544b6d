// SPDX-License-Identifier: GPL-3.0-or-later
#include <Compaction.h>
#include <Connections.h>
#include <Database.h>
#include <DbError.h>
#include <Language.h>
#include <PublicState.h>
#include <Routines.h>
#include <ScriptedPrompter.h>
#include <SettingsStore.h>
#include <TestDatabase.h>
#include <Update.h>
#include <Version.h>
#include <frmAggiornaMDB.h>

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QtTest>

#include <unistd.h>

using frame::TestoLingua;

namespace {

const int V = frame::VersioneMinore;
const QString Key = QStringLiteral("quartzel");
const QString Coda = QStringLiteral(";PWD=quartzel");

// Keeps the title of each box too, which the shared scripted prompter does not.
class TitlePrompter final : public frame::Prompter {
public:
    void message(const QString &text, Icon icon, const QString &title) override { shown << Box{text, icon, title}; }
    Answer question(const QString &, Buttons, Answer d, const QString &, Icon) override { return d; }
    std::optional<QString> input(const QString &, const QString &, const QString &) override { return std::nullopt; }
    struct Box {
        QString text;
        Icon icon;
        QString title;
    };
    QList<Box> shown;
};

QString section() { return QString::fromLatin1(frame::SettingsStore::Section); }
QString setting(const QString &sec, const QString &key) { return frame::SettingsStore::get(sec, key, QStringLiteral("<none>")); }

QByteArray bytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QStringList columns(store::Database &db, const QString &table)
{
    QStringList out;
    auto st = db.prepare(QStringLiteral("PRAGMA table_info('%1')").arg(table));
    while (st.step())
        out << st.value(1).toString() + QLatin1Char(' ') + st.value(2).toString();
    return out;
}

QString schemaText(store::Database &db)
{
    QStringList out;
    auto st = db.prepare(QStringLiteral("SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY name"));
    while (st.step())
        out << st.value(0).toString();
    return out.join(QLatin1Char('\n'));
}

// A Clienti of an older program: none of the fields the update adds, three customers.
void makeOldClienti(store::Database &db)
{
    db.executeScript(QStringLiteral(
        "DROP TABLE Clienti;"
        "CREATE TABLE Clienti (Id INTEGER PRIMARY KEY AUTOINCREMENT, Cognome TEXT(100), Nome TEXT(50), IdUtente LONG);"
        "INSERT INTO Clienti (Cognome, Nome) VALUES ('Rossi', 'Mario'), ('D''Angelo', 'Lucia'), ('Bianchi', NULL);"
        "UPDATE Impostazioni SET VerDatabase = 0;"));
}

qint64 count(store::Database &db, const QString &table)
{
    return db.scalar(QStringLiteral("SELECT count(*) FROM %1").arg(table)).toLongLong();
}

// Rows in several tables, some deleted again so that the file has free pages.
void fillWorking(store::Database &db)
{
    store::Transaction t(db);
    for (int i = 1; i <= 600; ++i)
        db.execute(QStringLiteral("INSERT INTO Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, "
                                  "Annullato, Contabilizzato, IdUtente) VALUES ('2026', ?, '2026-01-02 10:00:00', ?, "
                                  "'01', 0, 0, 0, 1)"),
                   {i, QStringLiteral("AB%1CD").arg(i, 3, 10, QLatin1Char('0'))});
    for (int i = 1; i <= 40; ++i)
        db.execute(QStringLiteral("INSERT INTO Clienti (Cognome, Note) VALUES (?, ?)"),
                   {QStringLiteral("Cliente %1").arg(i), QString(300, QLatin1Char('n'))});
    db.execute(QStringLiteral("INSERT INTO Cassa (IdCliente, Data, Descrizione, Entrata, Uscita, Esercizio) "
                              "VALUES (1, '2026-01-03 00:00:00', 'Canone', 80, 0, '2026')"));
    db.execute(QStringLiteral("DELETE FROM Movimentazioni WHERE Progressivo % 3 = 0"));
    t.commit();
    db.executeScript(QStringLiteral("PRAGMA user_version = 42"));
}

QMap<QString, qint64> tableCounts(store::Database &db)
{
    QMap<QString, qint64> out;
    QStringList names;
    auto st = db.prepare(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"));
    while (st.step())
        names << st.value(0).toString();
    for (const QString &n : names)
        out[n] = count(db, QLatin1Char('"') + n + QLatin1Char('"'));
    return out;
}

} // namespace

class TestUpdate : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { QFile::remove(frame::SettingsStore::fileName()); }
    void cleanup() { frame::pub().statusSink = nullptr; }

    void updateAddsMissingFields()
    {
        TestDatabase tdb;
        makeOldClienti(frame::basedati());
        ScriptedPrompter p;
        QStringList status;
        QVERIFY(safety::EseguiAggiornamento(V, p, [&](const QString &s) { status << s; }));

        store::Database &db = frame::basedati();
        const QStringList cols = columns(db, QStringLiteral("Clienti"));
        for (const char *c : {"Posto TEXT(30)", "Marca TEXT(30)", "Targa TEXT(10)", "DataScadenzaAssic DATE",
                              "Canone DOUBLE", "Cliente YESNO", "SaldoEntrate DOUBLE", "SaldoUscite DOUBLE"})
            QVERIFY2(cols.contains(QLatin1String(c)), c);
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM Clienti WHERE Posto IS NULL AND Marca IS NULL AND "
                                          "Targa IS NULL AND DataScadenzaAssic IS NULL AND Canone = 0 AND "
                                          "Cliente = -1 AND SaldoEntrate = 0 AND SaldoUscite = 0")).toInt(), 3);
        QCOMPARE(db.scalar(QStringLiteral("SELECT Nome FROM Clienti WHERE Cognome = 'D''Angelo'")).toString(),
                 QStringLiteral("Lucia"));
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("VerDatabase")).toInt(), V);
        QCOMPARE(setting(section(), QStringLiteral("VerDatabase")), QString::number(V));
        QVERIFY(status.contains(TestoLingua("M0037") + QStringLiteral(" Aggiornamento della tabella Clienti")));
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.last().text, TestoLingua("M0043"));
        QCOMPARE(p.messages.last().icon, frame::Prompter::Icon::Information);

        // A rerun, as after a second machine: the list finds every field and touches no data.
        db.executeScript(QStringLiteral("UPDATE Clienti SET Canone = 5, Cliente = 0; UPDATE Impostazioni SET VerDatabase = 0"));
        const QString before = schemaText(db);
        ScriptedPrompter again;
        QVERIFY(safety::EseguiAggiornamento(V, again));
        QCOMPARE(schemaText(db), before);
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM Clienti WHERE Canone = 5 AND Cliente = 0")).toInt(), 3);
        QCOMPARE(again.messages.last().text, TestoLingua("M0043"));
    }

    void completeDatabaseOnlyTakesTheVersion()
    {
        TestDatabase tdb;
        store::Database &db = frame::basedati();
        db.executeScript(QStringLiteral("UPDATE Impostazioni SET VerDatabase = 0"));
        const QString before = schemaText(db);
        ScriptedPrompter p;
        QVERIFY(safety::EseguiAggiornamento(V, p));
        QCOMPARE(schemaText(db), before);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("VerDatabase")).toInt(), V);
        QCOMPARE(p.messages.last().text, TestoLingua("M0043"));
    }

    void missingDatabaseFile()
    {
        TestDatabase tdb;
        frame::pub().Pathdata = tdb.folder() + QStringLiteral("/nothing.mdb");
        ScriptedPrompter p;
        QVERIFY(!safety::EseguiAggiornamento(V, p));
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, TestoLingua("M0042"));
        QCOMPARE(setting(section(), QStringLiteral("VerDatabase")), QStringLiteral("<none>"));
    }

    // A failure at the fifth field rolls back the four added before it; nothing is written.
    void failureMidTableLeavesTableAsItWas()
    {
        TestDatabase tdb;
        store::Database &db = frame::basedati();
        makeOldClienti(db);
        db.executeScript(QStringLiteral("CREATE TRIGGER blocca BEFORE UPDATE OF Canone ON Clienti "
                                        "BEGIN SELECT RAISE(ABORT, 'bloccato'); END;"));
        const QStringList before = columns(db, QStringLiteral("Clienti"));
        TitlePrompter p;
        QVERIFY(!safety::EseguiAggiornamento(V, p));
        QCOMPARE(columns(db, QStringLiteral("Clienti")), before);
        QCOMPARE(count(db, QStringLiteral("Clienti")), 3);
        QCOMPARE(p.shown.size(), 2);
        QVERIFY(p.shown[0].text.startsWith(TestoLingua("M0045") + QStringLiteral("\n[Clienti].[Canone]")));
        QCOMPARE(p.shown[0].title, TestoLingua("M0035") + QStringLiteral(" AddFieldsBasedati"));
        QCOMPARE(p.shown[1].text, TestoLingua("M0044"));
        QCOMPARE(p.shown[1].icon, frame::Prompter::Icon::Stop);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("VerDatabase")).toInt(), 0);
        QCOMPARE(setting(section(), QStringLiteral("VerDatabase")), QStringLiteral("<none>"));
        QVERIFY(safety::AggiornamentoDovuto(V));
    }

    void appendNewFieldKinds()
    {
        TestDatabase tdb;
        store::Database &db = frame::basedati();
        db.executeScript(QStringLiteral("CREATE TABLE Prova (id INTEGER PRIMARY KEY)"));
        TitlePrompter p;
        const QList<QPair<int, QString>> kinds = {{1, "YESNO"}, {2, "LONG"},      {3, "LONG"},
                                                  {4, "LONG"},  {6, "CURRENCY"},  {7, "DOUBLE"},
                                                  {8, "DATE"},  {10, "TEXT(25)"}, {12, "MEMO"}};
        for (const auto &[type, declared] : kinds)
            QVERIFY(safety::AppendNewField(db, QStringLiteral("Prova"), QStringLiteral("F%1").arg(type), type, false, 25,
                                           true, p));
        QStringList expected{QStringLiteral("id INTEGER")};
        for (const auto &[type, declared] : kinds)
            expected << QStringLiteral("F%1 %2").arg(type).arg(declared);
        QCOMPARE(columns(db, QStringLiteral("Prova")), expected);

        // An unsupported kind: the message, and the table keeps its fields.
        QVERIFY(!safety::AppendNewField(db, QStringLiteral("Prova"), QStringLiteral("Strano"), 5, false, 0, true, p));
        QCOMPARE(p.shown.size(), 1);
        QCOMPARE(p.shown[0].text, TestoLingua("M0040"));
        QCOMPARE(p.shown[0].title, QStringLiteral("Errore"));
        QCOMPARE(p.shown[0].icon, frame::Prompter::Icon::Exclamation);
        QCOMPARE(columns(db, QStringLiteral("Prova")), expected);

        // Required and no zero length bind the rows written afterwards.
        QVERIFY(safety::AppendNewField(db, QStringLiteral("Prova"), QStringLiteral("Obbligo"), 10, true, 5, false, p));
        QVERIFY_THROWS_EXCEPTION(store::DbError, db.execute(QStringLiteral("INSERT INTO Prova (Obbligo) VALUES (NULL)")));
        QVERIFY_THROWS_EXCEPTION(store::DbError, db.execute(QStringLiteral("INSERT INTO Prova (Obbligo) VALUES ('')")));
        db.execute(QStringLiteral("INSERT INTO Prova (Obbligo) VALUES ('x')"));
        QVERIFY(safety::EsisteCampo(db, QStringLiteral("Prova"), QStringLiteral("Obbligo")));
        QVERIFY(!safety::EsisteCampo(db, QStringLiteral("Prova"), QStringLiteral("obbligo")));
    }

    void updateDue()
    {
        TestDatabase tdb;
        const QString key = QStringLiteral("VerDatabase");
        // The key's default "0" differs from the version.
        QVERIFY(safety::AggiornamentoDovuto(V));
        frame::SettingsStore::save(section(), key, QString::number(V));
        QVERIFY(!safety::AggiornamentoDovuto(V));
        frame::SettingsStore::save(section(), key, QStringLiteral(" %1").arg(V));
        QVERIFY(safety::AggiornamentoDovuto(V));
        frame::SettingsStore::save(section(), key, QString::number(V));
        frame::basedati().executeScript(QStringLiteral("UPDATE Impostazioni SET VerDatabase = NULL"));
        QVERIFY(safety::AggiornamentoDovuto(V));
        frame::basedati().executeScript(QStringLiteral("UPDATE Impostazioni SET VerDatabase = %1").arg(V + 1));
        QVERIFY(safety::AggiornamentoDovuto(V));
        // Not due: the key is saved, as when a second machine finds the column already right.
        frame::basedati().executeScript(QStringLiteral("UPDATE Impostazioni SET VerDatabase = %1").arg(V));
        QFile::remove(frame::SettingsStore::fileName());
        QVERIFY(safety::AggiornamentoDovuto(V)); // the key still says "0"
        frame::SettingsStore::save(section(), key, QString::number(V));
        QVERIFY(!safety::AggiornamentoDovuto(V));
        QCOMPARE(setting(section(), key), QString::number(V));
    }

    void compactionKeepsEveryRow()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        const QMap<QString, qint64> before = tableCounts(frame::basedati());
        const qint64 sizeBefore = QFileInfo(tdb.path()).size();
        // A scratch file left by a crash, with a journal beside it.
        const QString scratch = tdb.folder() + QStringLiteral("/dataap.mdb");
        QFile junk(scratch);
        QVERIFY(junk.open(QIODevice::WriteOnly));
        junk.write("left over");
        junk.close();
        QFile::copy(scratch, scratch + QStringLiteral("-journal"));

        QVERIFY(store::Connections::isOpen(tdb.path()));
        QVERIFY(safety::CompattaMdb(tdb.folder(), QStringLiteral("basedati.mdb"), Coda));
        QVERIFY(!store::Connections::isOpen(tdb.path()));
        QVERIFY(!QFileInfo::exists(scratch));
        QVERIFY(!QFileInfo::exists(scratch + QStringLiteral("-journal")));
        QVERIFY(QFileInfo(tdb.path()).size() < sizeBefore);
        store::Database db(tdb.path(), Key);
        QCOMPARE(tableCounts(db), before);
        QCOMPARE(db.scalar(QStringLiteral("PRAGMA user_version")).toInt(), 42);
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM Q_Clienti_Utenti")).toInt(), 40);
    }

    void compactionFailureKeepsSource()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        store::Connections::closeAll();
        const QByteArray original = bytes(tdb.path());
        // The scratch name is taken by a folder.
        QVERIFY(QDir(tdb.folder()).mkdir(QStringLiteral("dataap.mdb")));
        QVERIFY(!safety::CompattaMdb(tdb.folder(), QStringLiteral("basedati.mdb"), Coda));
        QCOMPARE(bytes(tdb.path()), original);
        QVERIFY(QDir(tdb.folder()).rmdir(QStringLiteral("dataap.mdb")));
        // A wrong key, a missing file, a file named as the scratch.
        QVERIFY(!safety::CompattaMdb(tdb.folder(), QStringLiteral("basedati.mdb"), QStringLiteral(";pwd=wrong")));
        QVERIFY(!safety::CompattaMdb(tdb.folder(), QStringLiteral("missing.mdb"), Coda));
        QVERIFY(!safety::CompattaMdb(tdb.folder(), QStringLiteral("dataap.mdb"), Coda));
        QVERIFY(!safety::CompattaMdb(QString(), QStringLiteral("basedati.mdb"), Coda));
        QCOMPARE(bytes(tdb.path()), original);
        QVERIFY(!QFileInfo::exists(tdb.folder() + QStringLiteral("/dataap.mdb")));
        // A folder that refuses new files (not for root, whom no permission stops).
        if (geteuid() != 0) {
            QFile::setPermissions(tdb.folder(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
            const bool done = safety::CompattaMdb(tdb.folder(), QStringLiteral("basedati.mdb"), Coda);
            QFile::setPermissions(tdb.folder(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
            QVERIFY(!done);
            QCOMPARE(bytes(tdb.path()), original);
        }
    }

    void locadatiEveryTenthStart()
    {
        TestDatabase tdb;
        const QString saved = frame::pub().CartellaProgramma;
        frame::pub().CartellaProgramma = tdb.folder() + QLatin1Char('/');
        frame::pub().PercorsoLocadati = tdb.folder() + QStringLiteral("/locadati.mdb");
        QStringList status;
        frame::pub().statusSink = [&](const QString &s) { status << s; };
        const QString sec = QStringLiteral("Contatori"), key = QStringLiteral("CompattaLocadati");

        // Without the file nothing moves.
        frame::SettingsStore::save(sec, key, QStringLiteral("9"));
        safety::compatta_locadati();
        QCOMPARE(setting(sec, key), QStringLiteral("9"));

        {
            // locadati.mdb carries no key.
            store::Database loc(frame::pub().PercorsoLocadati, QString(), store::Database::Mode::Create);
            loc.executeScript(QStringLiteral("CREATE TABLE t (x); INSERT INTO t VALUES (1), (2), (3);"));
        }
        safety::compatta_locadati();
        QCOMPARE(setting(sec, key), QStringLiteral("0"));
        QCOMPARE(status, (QStringList{TestoLingua("M0020"), TestoLingua("M0021")}));
        {
            store::Database loc(frame::pub().PercorsoLocadati, QString());
            QCOMPARE(count(loc, QStringLiteral("t")), 3);
        }
        safety::compatta_locadati();
        QCOMPARE(setting(sec, key), QStringLiteral("1"));
        // Junk counts as 0.
        frame::SettingsStore::save(sec, key, QStringLiteral("abc"));
        safety::compatta_locadati();
        QCOMPARE(setting(sec, key), QStringLiteral("1"));
        // A file that cannot be compacted: the failure is told and the counter restarts.
        QFile::remove(frame::pub().PercorsoLocadati);
        QFile junk(frame::pub().PercorsoLocadati);
        QVERIFY(junk.open(QIODevice::WriteOnly));
        junk.write(QByteArray(4096, 'x'));
        junk.close();
        status.clear();
        frame::SettingsStore::save(sec, key, QStringLiteral("9"));
        safety::compatta_locadati();
        QCOMPARE(status.last(), TestoLingua("M0022"));
        QCOMPARE(setting(sec, key), QStringLiteral("0"));
        QCOMPARE(bytes(frame::pub().PercorsoLocadati), QByteArray(4096, 'x'));
        frame::pub().CartellaProgramma = saved;
    }

    void compactionOnRequest()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        store::Connections::closeAll();
        const QByteArray original = bytes(tdb.path());
        ScriptedPrompter p;
        p.answer(frame::Prompter::Answer::Cancel);
        QVERIFY(!safety::CompattazioneServizio(p));
        QCOMPARE(bytes(tdb.path()), original);
        QVERIFY(p.questions.first().startsWith(TestoLingua("M0104") + QLatin1Char('\n')));
        QVERIFY(p.questions.first().endsWith(TestoLingua("M0107") + QStringLiteral(", ") + TestoLingua("M0029")));
        QVERIFY(p.messages.isEmpty());

        p.answer(frame::Prompter::Answer::Ok);
        QVERIFY(safety::CompattazioneServizio(p));
        QCOMPARE(p.messages.last().text, TestoLingua("M0108"));
        QCOMPARE(count(frame::basedati(), QStringLiteral("Movimentazioni")), 400);

        frame::pub().Pathdata = tdb.folder() + QStringLiteral("/x");
        p.answer(frame::Prompter::Answer::Ok);
        QVERIFY(!safety::CompattazioneServizio(p));
        QCOMPARE(p.messages.last().text, TestoLingua("M0109"));
        QCOMPARE(p.messages.last().icon, frame::Prompter::Icon::Exclamation);
    }

    void repairHealthyAndUnreadable()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        const QMap<QString, qint64> before = tableCounts(frame::basedati());
        QVERIFY(safety::RiparaDatabase(tdb.path(), Coda));
        {
            store::Database db(tdb.path(), Key);
            QCOMPARE(tableCounts(db), before);
            QCOMPARE(db.scalar(QStringLiteral("PRAGMA user_version")).toInt(), 42);
        }
        // The wrong key, and a file that is no database: left byte for byte.
        const QByteArray original = bytes(tdb.path());
        QVERIFY(!safety::RiparaDatabase(tdb.path(), QStringLiteral(";PWD=other")));
        QCOMPARE(bytes(tdb.path()), original);
        const QString junkPath = tdb.folder() + QStringLiteral("/rotto.mdb");
        QByteArray junk;
        for (int i = 0; i < 20000; ++i)
            junk.append(char((i * 7919) % 251));
        QFile f(junkPath);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(junk);
        f.close();
        QVERIFY(!safety::RiparaDatabase(junkPath, Coda));
        QCOMPARE(bytes(junkPath), junk);
        QVERIFY(!QFileInfo::exists(tdb.folder() + QStringLiteral("/dataap.mdb")));
    }

    // A damaged page in the middle of a table: the rows before and after it are saved.
    void repairDamagedPage()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("basedati.mdb"));
        const int rows = 5000;
        {
            store::Database db(path, Key, store::Database::Mode::Create);
            db.executeScript(QStringLiteral("CREATE TABLE Piccola (a TEXT); INSERT INTO Piccola VALUES ('uno');"
                                            "CREATE TABLE Grande (id INTEGER PRIMARY KEY, x TEXT);"));
            store::Transaction t(db);
            for (int i = 1; i <= rows; ++i)
                db.execute(QStringLiteral("INSERT INTO Grande (x) VALUES (?)"),
                           {QStringLiteral("riga %1 con un poco di testo per riempire le pagine").arg(i)});
            t.commit();
            // The index comes last, so that the damaged page below is one of the table's.
            db.executeScript(QStringLiteral("CREATE INDEX Grande_x ON Grande (x)"));
        }
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadWrite));
        const qint64 page = 1024;
        QVERIFY(f.seek((f.size() / page) / 4 * page + 200));
        f.write(QByteArray(32, 'X'));
        f.close();

        QVERIFY(safety::RiparaDatabase(path, Coda));
        store::Database db(path, Key);
        QCOMPARE(db.scalar(QStringLiteral("PRAGMA integrity_check")).toString(), QStringLiteral("ok"));
        const qint64 saved = count(db, QStringLiteral("Grande"));
        QVERIFY2(saved > rows / 2 && saved < rows, qPrintable(QString::number(saved)));
        QCOMPARE(count(db, QStringLiteral("Grande WHERE id IN (1, 5000)")), 2);
        QCOMPARE(count(db, QStringLiteral("Piccola")), 1);
    }

    void windowRunsTheUpdate()
    {
        TestDatabase tdb;
        makeOldClienti(frame::basedati());
        ScriptedPrompter p;
        frmAggiornaMDB w(p);
        QCOMPARE(w.windowTitle(), TestoLingua("M0135"));
        auto *avvio = w.findChild<QPushButton *>(QStringLiteral("cmdAvvio"));
        QVERIFY(avvio && w.findChild<QPushButton *>(QStringLiteral("Command1")));
        QCOMPARE(avvio->text(), TestoLingua("M0136"));
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QTRY_COMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, TestoLingua("M0046"));
        QTest::mouseClick(avvio, Qt::LeftButton);
        QVERIFY(w.riuscito());
        QCOMPARE(w.result(), int(QDialog::Accepted));
        QVERIFY(!w.isVisible());
        QCOMPARE(p.messages.last().text, TestoLingua("M0043"));
        QVERIFY(safety::EsisteCampo(frame::basedati(), QStringLiteral("Clienti"), QStringLiteral("SaldoUscite")));
        QVERIFY(!safety::AggiornamentoDovuto(V));
    }
};

QTEST_MAIN(TestUpdate)
#include "tst_update.moc"
