// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"
#include "frame/Version.h"
#include "safety/Compaction.h"
#include "safety/Update.h"
#include "safety/ui/frmAggiornaMDB.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QtTest>

#include <unistd.h>

using frame::TestoLingua;
using namespace Qt::StringLiterals;

namespace {

const int V = frame::VersioneMinore;
const QString Key = u"quartzel"_s;
const QString Coda = u";PWD=quartzel"_s;

QString section() { return QString::fromLatin1(frame::SettingsStore::Section); }
QString setting(const QString &sec, const QString &key) { return frame::SettingsStore::get(sec, key, u"<none>"_s); }

// One text per row of a one-column query.
QStringList texts(store::Database &db, const QString &sql)
{
    QStringList out;
    auto st = db.prepare(sql);
    while (st.step())
        out << st.value(0).toString();
    return out;
}

QStringList columns(store::Database &db, const QString &table)
{
    QStringList out;
    auto st = db.prepare(u"PRAGMA table_info('%1')"_s.arg(table));
    while (st.step())
        out << st.value(1).toString() + u' ' + st.value(2).toString();
    return out;
}
QString schemaText(store::Database &db) { return texts(db, u"SELECT sql FROM sqlite_master ORDER BY name"_s).join(u'\n'); }

qint64 count(store::Database &db, const QString &table)
{
    return db.scalar(u"SELECT count(*) FROM %1"_s.arg(table)).toLongLong();
}

QMap<QString, qint64> tableCounts(store::Database &db)
{
    QMap<QString, qint64> out;
    for (const QString &n : texts(db, u"SELECT name FROM sqlite_master WHERE type = 'table'"_s))
        out[n] = count(db, u'"' + n + u'"');
    return out;
}

// A Clienti of an older program: none of the fields the update adds, three customers.
void makeOldClienti(store::Database &db)
{
    db.executeScript(
        u"DROP TABLE Clienti;"
        "CREATE TABLE Clienti (Id INTEGER PRIMARY KEY AUTOINCREMENT, Cognome TEXT(100), Nome TEXT(50), IdUtente LONG);"
        "INSERT INTO Clienti (Cognome, Nome) VALUES ('Rossi', 'Mario'), ('D''Angelo', 'Lucia'), ('Bianchi', NULL);"
        "UPDATE Impostazioni SET VerDatabase = 0;"_s);
}

// Rows in several tables, some deleted again so that the file has free pages.
void fillWorking(store::Database &db)
{
    db.executeScript(
        u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 600) INSERT INTO Movimentazioni (Anno, "
        "Progressivo, DataOra, Targa, IdFascia, Entrato, Annullato, Contabilizzato, IdUtente) SELECT '2026', i, "
        "'2026-01-02 10:00:00', printf('AB%03dCD', i), '01', 0, 0, 0, 1 FROM n;"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40) INSERT INTO Clienti (Cognome, Note) "
        "SELECT 'Cliente ' || i, replace(hex(zeroblob(150)), '0', 'n') FROM n;"
        "INSERT INTO Cassa (IdCliente, Data, Descrizione, Entrata, Uscita, Esercizio) "
        "VALUES (1, '2026-01-03 00:00:00', 'Canone', 80, 0, '2026');"
        "DELETE FROM Movimentazioni WHERE Progressivo % 3 = 0; PRAGMA user_version = 42;"_s);
}

} // namespace

class TestUpdate : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { QFile::remove(frame::SettingsStore::fileName()); }
    void cleanup() { frame::pub().statusSink = nullptr; }

    // Through the window: the invitation at its first activation, then the run adds the fields
    // to the rows there are, writes the version and closes the window.
    void updateAddsMissingFields()
    {
        TestDatabase tdb;
        makeOldClienti(frame::basedati());
        ScriptedPrompter p;
        frmAggiornaMDB w(p);
        auto *avvio = w.findChild<QPushButton *>(u"cmdAvvio"_s);
        QVERIFY(avvio && w.findChild<QPushButton *>(u"Command1"_s));
        QCOMPARE(w.windowTitle() + u'|' + avvio->text(), TestoLingua("M0135") + u'|' + TestoLingua("M0136"));
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QTRY_COMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, TestoLingua("M0046"));
        QTest::mouseClick(avvio, Qt::LeftButton);
        QVERIFY(w.riuscito() && !w.isVisible());
        QCOMPARE(w.result(), int(QDialog::Accepted));

        store::Database &db = frame::basedati();
        QCOMPARE(columns(db, u"Clienti"_s).mid(4),
                 QStringList({u"Posto TEXT(30)"_s, u"Marca TEXT(30)"_s, u"Targa TEXT(10)"_s, u"DataScadenzaAssic DATE"_s,
                              u"Canone DOUBLE"_s, u"Cliente YESNO"_s, u"SaldoEntrate DOUBLE"_s, u"SaldoUscite DOUBLE"_s}));
        QCOMPARE(db.scalar(u"SELECT count(*) FROM Clienti WHERE Posto IS NULL AND Marca IS NULL AND Targa IS NULL AND "
                           "DataScadenzaAssic IS NULL AND Canone = 0 AND Cliente = -1 AND SaldoEntrate = 0 AND "
                           "SaldoUscite = 0 AND (Cognome <> 'D''Angelo' OR Nome = 'Lucia')"_s).toInt(), 3);
        QCOMPARE(frame::LeggeImpostazione(u"VerDatabase"_s).toInt(), V);
        QCOMPARE(setting(section(), u"VerDatabase"_s), QString::number(V));
        QVERIFY(!safety::AggiornamentoDovuto(V));
        QCOMPARE(p.messages.size(), 2);
        QCOMPARE(p.messages.last().text, TestoLingua("M0043"));
        QCOMPARE(p.messages.last().icon, frame::Prompter::Icon::Information);

        // A database with every field and an old version, as after a second machine: no field
        // or value changes, the version is written.
        db.executeScript(u"UPDATE Clienti SET Canone = 5, Cliente = 0; UPDATE Impostazioni SET VerDatabase = 0"_s);
        const QString before = schemaText(db);
        QStringList status;
        QVERIFY(safety::EseguiAggiornamento(V, p, [&](const QString &s) { status << s; }));
        QVERIFY(status.contains(TestoLingua("M0037") + u" Aggiornamento della tabella Clienti"_s));
        QCOMPARE(schemaText(db), before);
        QCOMPARE(db.scalar(u"SELECT count(*) FROM Clienti WHERE Canone = 5 AND Cliente = 0"_s).toInt(), 3);
        QCOMPARE(frame::LeggeImpostazione(u"VerDatabase"_s).toInt(), V);
        QCOMPARE(p.messages.last().text, TestoLingua("M0043"));

        frame::pub().Pathdata = tdb.folder() + u"/nothing.mdb"_s;
        QFile::remove(frame::SettingsStore::fileName());
        QVERIFY(!safety::EseguiAggiornamento(V, p));
        QCOMPARE(p.messages.last().text, TestoLingua("M0042"));
        QCOMPARE(setting(section(), u"VerDatabase"_s), u"<none>"_s);
    }

    // A failure at the fifth field rolls back the four added before it; nothing is written.
    // The box names the field alone; the engine's own words go to the error output.
    void failureMidTableLeavesTableAsItWas()
    {
        TestDatabase tdb;
        store::Database &db = frame::basedati();
        makeOldClienti(db);
        db.executeScript(u"CREATE TRIGGER blocca BEFORE UPDATE OF Canone ON Clienti BEGIN SELECT RAISE(ABORT, 'bloccato'); END;"_s);
        const QStringList before = columns(db, u"Clienti"_s);
        ScriptedPrompter p;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^AddFieldsBasedati \\[Clienti\\]\\.\\[Canone\\]: .*bloccato"_s));
        QVERIFY(!safety::EseguiAggiornamento(V, p));
        QCOMPARE(columns(db, u"Clienti"_s), before);
        QCOMPARE(count(db, u"Clienti"_s), 3);
        QCOMPARE(p.messages.size(), 2);
        QCOMPARE(p.messages[0].text, TestoLingua("M0045") + u"\n[Clienti].[Canone]"_s);
        QCOMPARE(p.messages[0].title, TestoLingua("M0035") + u" AddFieldsBasedati"_s);
        QCOMPARE(p.messages[1].text, TestoLingua("M0044"));
        QCOMPARE(p.messages[1].icon, frame::Prompter::Icon::Stop);
        QCOMPARE(frame::LeggeImpostazione(u"VerDatabase"_s).toInt(), 0);
        QCOMPARE(setting(section(), u"VerDatabase"_s), u"<none>"_s);
        QVERIFY(safety::AggiornamentoDovuto(V));
    }

    void appendNewFieldKinds()
    {
        TestDatabase tdb;
        store::Database &db = frame::basedati();
        db.executeScript(u"CREATE TABLE Prova (id INTEGER PRIMARY KEY)"_s);
        ScriptedPrompter p;
        const QList<QPair<int, QString>> kinds = {{1, "YESNO"}, {2, "LONG"},   {3, "LONG"},     {4, "LONG"},  {6, "CURRENCY"},
                                                  {7, "DOUBLE"}, {8, "DATE"}, {10, "TEXT(25)"}, {12, "MEMO"}};
        QStringList expected{u"id INTEGER"_s};
        for (const auto &[type, declared] : kinds) {
            QVERIFY(safety::AppendNewField(db, u"Prova"_s, u"F%1"_s.arg(type), type, false, 25, true, p));
            expected << u"F%1 %2"_s.arg(type).arg(declared);
        }
        QCOMPARE(columns(db, u"Prova"_s), expected);

        // An unsupported kind: the message, and the table keeps its fields.
        QVERIFY(!safety::AppendNewField(db, u"Prova"_s, u"Strano"_s, 5, false, 0, true, p));
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages[0].text, TestoLingua("M0040"));
        QCOMPARE(p.messages[0].title, u"Errore"_s);
        QCOMPARE(p.messages[0].icon, frame::Prompter::Icon::Exclamation);
        QCOMPARE(columns(db, u"Prova"_s), expected);

        // Required and no zero length bind the rows written afterwards.
        QVERIFY(safety::AppendNewField(db, u"Prova"_s, u"Obbligo"_s, 10, true, 5, false, p));
        QVERIFY_THROWS_EXCEPTION(store::DbError, db.execute(u"INSERT INTO Prova (Obbligo) VALUES (NULL)"_s));
        QVERIFY_THROWS_EXCEPTION(store::DbError, db.execute(u"INSERT INTO Prova (Obbligo) VALUES ('')"_s));
        db.execute(u"INSERT INTO Prova (Obbligo) VALUES ('x')"_s);
        QVERIFY(safety::EsisteCampo(db, u"Prova"_s, u"Obbligo"_s));
        QVERIFY(!safety::EsisteCampo(db, u"Prova"_s, u"obbligo"_s));
    }

    void updateDue()
    {
        TestDatabase tdb;
        const QString key = u"VerDatabase"_s;
        // Each step: the settings key (null: none), the column, and whether the update is due.
        const struct {
            QString setting, column;
            bool due;
        } steps[] = {{QString(), QString::number(V), true}, // the key's default "0" differs
                     {QString::number(V), QString::number(V), false},
                     {u" %1"_s.arg(V), QString::number(V), true},
                     {QString::number(V), u"NULL"_s, true},
                     {QString::number(V), QString::number(V + 1), true}};
        for (const auto &step : steps) {
            if (!step.setting.isNull())
                frame::SettingsStore::save(section(), key, step.setting);
            frame::basedati().executeScript(u"UPDATE Impostazioni SET VerDatabase = "_s + step.column);
            QCOMPARE(safety::AggiornamentoDovuto(V), step.due);
        }
        QCOMPARE(setting(section(), key), QString::number(V));
    }

    void compactionFailureKeepsSource()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        store::Connections::closeAll();
        const QByteArray original = bytesOf(tdb.path());
        // The scratch name is taken by a folder.
        QVERIFY(QDir(tdb.folder()).mkdir(u"dataap.mdb"_s));
        QVERIFY(!safety::CompattaMdb(tdb.folder(), u"basedati.mdb"_s, Coda));
        QCOMPARE(bytesOf(tdb.path()), original);
        QVERIFY(QDir(tdb.folder()).rmdir(u"dataap.mdb"_s));
        // A wrong key, a missing file, a file named as the scratch.
        QVERIFY(!safety::CompattaMdb(tdb.folder(), u"basedati.mdb"_s, u";pwd=wrong"_s));
        QVERIFY(!safety::CompattaMdb(tdb.folder(), u"missing.mdb"_s, Coda));
        QVERIFY(!safety::CompattaMdb(tdb.folder(), u"dataap.mdb"_s, Coda));
        QVERIFY(!safety::CompattaMdb(QString(), u"basedati.mdb"_s, Coda));
        QCOMPARE(bytesOf(tdb.path()), original);
        QVERIFY(!QFileInfo::exists(tdb.folder() + u"/dataap.mdb"_s));
        // A folder that refuses new files (not for root, whom no permission stops).
        if (geteuid() != 0) {
            QFile::setPermissions(tdb.folder(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
            const bool done = safety::CompattaMdb(tdb.folder(), u"basedati.mdb"_s, Coda);
            QFile::setPermissions(tdb.folder(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
            QVERIFY(!done);
            QCOMPARE(bytesOf(tdb.path()), original);
        }
    }

    // At the tenth start with locadati.mdb present it is compacted and the counter restarts;
    // without the file nothing moves; junk counts as 0; a file that can't be compacted is told
    // and left as it was.
    void locadatiEveryTenthStart()
    {
        TestDatabase tdb;
        const QString saved = frame::pub().CartellaProgramma;
        frame::pub().CartellaProgramma = tdb.folder() + u'/';
        frame::pub().PercorsoLocadati = tdb.folder() + u"/locadati.mdb"_s;
        QStringList status;
        frame::pub().statusSink = [&](const QString &s) { status << s; };
        const QString sec = u"Contatori"_s, key = u"CompattaLocadati"_s;
        // Each step: the file (0 none, 1 a database without key, 2 junk), the counter before and after, the last status.
        const struct {
            int file;
            QString before, after, told;
        } steps[] = {{0, u"9"_s, u"9"_s, {}}, {1, u"9"_s, u"0"_s, TestoLingua("M0021")}, {1, u"0"_s, u"1"_s, TestoLingua("M0021")},
                     {1, u"abc"_s, u"1"_s, TestoLingua("M0021")}, {2, u"9"_s, u"0"_s, TestoLingua("M0022")}};
        for (const auto &step : steps) {
            if (step.file == 1 && !QFileInfo::exists(frame::pub().PercorsoLocadati))
                store::Database(frame::pub().PercorsoLocadati, QString(), store::Database::Mode::Create)
                    .executeScript(u"CREATE TABLE t (x); INSERT INTO t VALUES (1), (2), (3);"_s);
            if (step.file == 2)
                writeBytes(frame::pub().PercorsoLocadati, QByteArray(4096, 'x'));
            frame::SettingsStore::save(sec, key, step.before);
            safety::compatta_locadati();
            QCOMPARE(setting(sec, key), step.after);
            QCOMPARE(status.value(status.size() - 1), step.told);
        }
        QCOMPARE(status.mid(0, 2), (QStringList{TestoLingua("M0020"), TestoLingua("M0021")}));
        QCOMPARE(bytesOf(frame::pub().PercorsoLocadati), QByteArray(4096, 'x'));
        frame::pub().CartellaProgramma = saved;
    }

    // Asked first; on OK every table keeps its rows and the file shrinks, and a scratch file
    // left by a crash goes, with its journal. A database path of another name fails.
    void compactionOnRequest()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        const QMap<QString, qint64> before = tableCounts(frame::basedati());
        store::Connections::closeAll();
        const QByteArray original = bytesOf(tdb.path());
        const QString scratch = tdb.folder() + u"/dataap.mdb"_s;
        writeBytes(scratch, "left over");
        writeBytes(scratch + u"-journal"_s, "left over");
        ScriptedPrompter p;
        p.answer(frame::Prompter::Answer::Cancel);
        QVERIFY(!safety::CompattazioneServizio(p));
        QCOMPARE(bytesOf(tdb.path()), original);
        QVERIFY(p.questions.first().startsWith(TestoLingua("M0104") + u'\n'));
        QVERIFY(p.questions.first().endsWith(TestoLingua("M0107") + u", "_s + TestoLingua("M0029")));
        QVERIFY(p.messages.isEmpty());

        p.answer(frame::Prompter::Answer::Ok);
        QVERIFY(safety::CompattazioneServizio(p));
        QCOMPARE(p.messages.last().text, TestoLingua("M0108"));
        QVERIFY(!QFileInfo::exists(scratch) && !QFileInfo::exists(scratch + u"-journal"_s));
        QVERIFY(QFileInfo(tdb.path()).size() < original.size());
        {
            store::Database db(tdb.path(), Key);
            QCOMPARE(tableCounts(db), before);
            QCOMPARE(db.scalar(u"PRAGMA user_version"_s).toInt(), 42);
            QCOMPARE(db.scalar(u"SELECT count(*) FROM Q_Clienti_Utenti"_s).toInt(), 40);
        }

        frame::pub().Pathdata = tdb.folder() + u"/x"_s;
        p.answer(frame::Prompter::Answer::Ok);
        QVERIFY(!safety::CompattazioneServizio(p));
        QCOMPARE(p.messages.last().text, TestoLingua("M0109"));
        QCOMPARE(p.messages.last().icon, frame::Prompter::Icon::Exclamation);
    }

    // A sound file comes back whole; a damaged page costs only its rows; the wrong key, or a
    // file that is no database, is left byte for byte.
    void repair()
    {
        TestDatabase tdb;
        fillWorking(frame::basedati());
        const QMap<QString, qint64> before = tableCounts(frame::basedati());
        QVERIFY(safety::RiparaDatabase(tdb.path(), Coda));
        {
            store::Database db(tdb.path(), Key);
            QCOMPARE(tableCounts(db), before);
            QCOMPARE(db.scalar(u"PRAGMA user_version"_s).toInt(), 42);
        }
        QByteArray junk;
        for (int i = 0; i < 20000; ++i)
            junk.append(char((i * 7919) % 251));
        writeBytes(tdb.folder() + u"/rotto.mdb"_s, junk);
        const QByteArray original = bytesOf(tdb.path());
        QVERIFY(!safety::RiparaDatabase(tdb.path(), u";PWD=other"_s));
        QVERIFY(!safety::RiparaDatabase(tdb.folder() + u"/rotto.mdb"_s, Coda));
        QCOMPARE(bytesOf(tdb.path()), original);
        QCOMPARE(bytesOf(tdb.folder() + u"/rotto.mdb"_s), junk);
        QVERIFY(!QFileInfo::exists(tdb.folder() + u"/dataap.mdb"_s));

        const QString path = tdb.folder() + u"/grande.mdb"_s;
        const int rows = 5000;
        {
            store::Database db(path, Key, store::Database::Mode::Create);
            db.executeScript(u"CREATE TABLE Piccola (a TEXT); INSERT INTO Piccola VALUES ('uno');"
                             "CREATE TABLE Grande (id INTEGER PRIMARY KEY, x TEXT);"_s);
            store::Transaction t(db);
            for (int i = 1; i <= rows; ++i)
                db.execute(u"INSERT INTO Grande (x) VALUES (?)"_s, {u"riga %1 con un poco di testo per riempire le pagine"_s.arg(i)});
            t.commit();
            // The index comes last, so that the damaged page below is one of the table's.
            db.executeScript(u"CREATE INDEX Grande_x ON Grande (x)"_s);
        }
        QByteArray damaged = bytesOf(path);
        damaged.replace((damaged.size() / 1024) / 4 * 1024 + 200, 32, QByteArray(32, 'X'));
        writeBytes(path, damaged);
        QVERIFY(safety::RiparaDatabase(path, Coda));
        store::Database db(path, Key);
        QCOMPARE(db.scalar(u"PRAGMA integrity_check"_s).toString(), u"ok"_s);
        const qint64 saved = count(db, u"Grande"_s);
        QVERIFY2(saved > rows / 2 && saved < rows, qPrintable(QString::number(saved)));
        QCOMPARE(count(db, u"Grande WHERE id IN (1, 5000)"_s) + count(db, u"Piccola"_s), 3);
    }
};

QTEST_MAIN(TestUpdate)
#include "tst_update.moc"
