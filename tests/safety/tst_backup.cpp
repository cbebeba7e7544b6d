// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"
#include "safety/Backup.h"
#include "safety/ui/frmCopia.h"
#include "safety/ui/frmRipristina.h"
#include "store/Connections.h"
#include "store/Database.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestWindows.h"

#include "support/Colonne.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableView>
#include <QThread>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using frame::Prompter;
using frame::TestoLingua;
using safety::CatalogueEntry;

namespace {

// Every file of a folder, hidden ones too: a half-written backup would be hidden.
QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

bool hasMessage(const ScriptedPrompter &p, const QString &text, Prompter::Icon icon)
{
    return std::any_of(p.messages.begin(), p.messages.end(), [&](const auto &m) { return m.text.startsWith(text) && m.icon == icon; });
}

// Runs `work` with writes beyond 8 KB failing, as on a full disk.
template <typename F>
void withDiskFull(F &&work)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const rlimit low{8192, saved.rlim_max};
    setrlimit(RLIMIT_FSIZE, &low);
    work();
    setrlimit(RLIMIT_FSIZE, &saved);
}

// Runs `work` in a child process that it kills with SIGKILL part-way (die()), as a power cut would.
template <typename F>
void killedDuring(F &&work)
{
    store::Connections::closeAll(); // the child inherits no open connection
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            work();
        } catch (const std::exception &e) {
            std::fprintf(stderr, "%s\n", e.what()); // the child must never go on with the parent's tests
        }
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}
bool die(qint64 = 0, qint64 = 0)
{
    return ::raise(SIGKILL) == 0;
}

// A user who takes a moment over each box, the event loop running as under a real box;
// counts the progress boxes that stood over one.
struct SlowUser final : Prompter {
    explicit SlowUser(ScriptedPrompter &p) : inner(p) {}
    void look()
    {
        QTest::qWait(600);
        for (QWidget *w : QApplication::allWidgets())
            covered += qobject_cast<QProgressDialog *>(w) && w->isVisible();
    }
    void message(const QString &t, Icon i, const QString &title) override { look(); inner.message(t, i, title); }
    Answer question(const QString &t, Buttons b, Answer d, const QString &title, Icon i) override
    {
        look();
        return inner.question(t, b, d, title, i);
    }
    std::optional<QString> input(const QString &p, const QString &t, const QString &i) override { return inner.input(p, t, i); }
    ScriptedPrompter &inner;
    int covered = 0;
};

template <typename T>
T *child(QWidget *w, const char *name)
{
    return w->findChild<T *>(QLatin1String(name));
}

} // namespace

class TestBackup : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    std::unique_ptr<QTemporaryDir> m_dest;
    std::unique_ptr<ScriptedPrompter> m_prompter;

    ScriptedPrompter &prompter() { return *m_prompter; }
    QString dest() const { return m_dest->path(); }
    QString working() const { return frame::pub().Pathdata; }
    store::Database &catalogue() { return store::Connections::get(frame::pub().PercorsoElencoBackup); }

    void addMovements(int count)
    {
        frame::basedati().execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) INSERT INTO "
                                  "Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, IdUtente) SELECT "
                                  "'2026', i, '2026-03-10 08:00:00', printf('AB%03dCD', i), '01', -1, 1 FROM n"_s, {count});
    }

    // A catalogue row made by hand, as an earlier backup would have left it.
    CatalogueEntry listFile(const QString &folder, const QString &name, const QDateTime &when, bool withFile)
    {
        if (withFile)
            writeBytes(QDir(folder).filePath(name), "old backup");
        catalogue().execute(u"insert into backup (Data, Utilizzatore, Percorso, NomeFile, Note) values (?, 'x', ?, ?, '')"_s,
                            {when, folder + u'/', name});
        return {catalogue().lastInsertId(), when, u"x"_s, folder + u'/', name, {}};
    }

    QStringList listed()
    {
        QStringList names;
        for (const CatalogueEntry &e : safety::readCatalogue())
            names << e.nomeFile;
        return names;
    }

    std::optional<QString> backup(bool compressed = true, bool autoDelete = false, int keep = 6, const QString &folder = {},
                                  const safety::Progress &progress = {})
    {
        const safety::BackupRequest r{folder.isNull() ? dest() : folder, u"nota di prova"_s, compressed, autoDelete, keep};
        return safety::makeBackup(r, prompter(), progress);
    }

    // Restores the catalogue row of `file` with OK answered.
    bool restore(const QString &file, const safety::Progress &progress = {})
    {
        const CatalogueEntry e = listFile(QFileInfo(file).path(), QFileInfo(file).fileName(), QDateTime::currentDateTime(), false);
        prompter().answer(Prompter::Answer::Ok);
        return safety::restoreBackup(e, prompter(), progress);
    }

    // The working database is sound, holds `movements` rows, and has nothing beside it.
    void verifyWorking(int movements, const QStringList &beside = {})
    {
        store::Database db(working(), QLatin1String(store::DatabaseKey));
        QCOMPARE(db.scalar(u"PRAGMA integrity_check"_s).toString(), u"ok"_s);
        QCOMPARE(db.scalar(u"select count(*) from Movimentazioni"_s).toInt(), movements);
        QStringList expected = beside + QStringList{u"ElencoBackup.mdb"_s, u"basedati.mdb"_s};
        expected.sort();
        QCOMPARE(filesIn(QFileInfo(working()).path()), expected);
    }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void init()
    {
        QFile::remove(frame::SettingsStore::fileName());
        m_db = std::make_unique<TestDatabase>();
        frame::pub().PercorsoElencoBackup = frame::CartellaDati(working()) + u"/ElencoBackup.mdb"_s;
        frame::pub().FormatoData = u"dd/mm/yyyy"_s;
        m_dest = std::make_unique<QTemporaryDir>();
        m_prompter = std::make_unique<ScriptedPrompter>();
        addMovements(300);
    }

    void cleanup()
    {
        m_db.reset();
        m_dest.reset();
    }

    void roundTrip_data()
    {
        colonne<bool, char>({"compressed", "levelByte"});
        QTest::newRow("level 9") << true << char(0xDA);
        QTest::newRow("level 0") << false << char(0x01);
    }

    void roundTrip()
    {
        QFETCH(bool, compressed); QFETCH(char, levelByte);
        QCOMPARE(safety::backupFileName(QDateTime(QDate(2006, 3, 6), QTime(14, 5, 9))), u"DB2006_03_06__14_05_09.zl"_s);
        store::Connections::close(working());
        const QByteArray original = bytesOf(working());
        const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
        const std::optional<QString> file = backup(compressed); // no final separator given
        QVERIFY(file);
        QVERIFY(hasMessage(prompter(), TestoLingua("M0116"), Prompter::Icon::Information));
        const QVector<CatalogueEntry> rows = safety::readCatalogue();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows[0].filePath(), dest() + u'/' + QFileInfo(*file).fileName());
        QCOMPARE(rows[0].nomeFile, safety::backupFileName(rows[0].data));
        QVERIFY(rows[0].data >= before && rows[0].data <= QDateTime::currentDateTime());
        QCOMPARE(rows[0].utilizzatore + u'|' + rows[0].note, u"administrator|nota di prova"_s);
        // One zlib stream: its header tells the level it was made with.
        const QByteArray packed = bytesOf(*file);
        QCOMPARE(packed.left(2), QByteArray("\x78") + levelByte);
        QCOMPARE(filesIn(dest()), QStringList({QFileInfo(*file).fileName()}));

        addMovements(50); // work done after the backup, which the restore takes away
        prompter().messages.clear();
        QVERIFY(restore(*file));
        QCOMPARE(bytesOf(working()), original);
        QCOMPARE(prompter().questions.size(), 1);
        QVERIFY(prompter().questions.first().startsWith(TestoLingua("M0024") + u"\n\n"_s + TestoLingua("M0025")));
        QVERIFY(prompter().questions.first().endsWith(u"\n\n"_s + TestoLingua("M0026") + u'.'));
        QVERIFY(hasMessage(prompter(), TestoLingua("M0027"), Prompter::Icon::Information));
        verifyWorking(300);
    }

    void automaticDeletion_data()
    {
        colonne<bool, int, QStringList>({"autoDelete", "keep", "left"});
        QTest::newRow("keep 1") << true << 1 << QStringList{u"new"_s};
        QTest::newRow("keep 2 of 3") << true << 2 << QStringList{u"new"_s, u"DB2021.zl"_s};
        QTest::newRow("off") << false << 1 << QStringList{u"new"_s, u"DB2021.zl"_s, u"DB2020.zl"_s};
    }

    void automaticDeletion()
    {
        QFETCH(bool, autoDelete); QFETCH(int, keep); QFETCH(QStringList, left);
        listFile(dest(), u"DB2020.zl"_s, QDateTime(QDate(2020, 1, 1), QTime(9, 0)), true);
        listFile(dest(), u"DB2021.zl"_s, QDateTime(QDate(2021, 1, 1), QTime(9, 0)), true);
        const std::optional<QString> file = backup(true, autoDelete, keep);
        QVERIFY(file);
        left.replace(0, QFileInfo(*file).fileName());
        QCOMPARE(listed(), left); // newest first
        left.sort();
        QCOMPARE(filesIn(dest()), left);
        QCOMPARE(prompter().questions.size(), 0); // deleted silently
    }

    void sameSecondKeepsTheSharedFile()
    {
        std::optional<QString> first, second;
        for (int attempt = 0; attempt < 3 && (!first || *first != *second); ++attempt) {
            while (QTime::currentTime().msec() > 200)
                QTest::qWait(20);
            first = backup(true, true, 1);
            second = backup(true, true, 1);
            QVERIFY(first && second);
        }
        QCOMPARE(*first, *second);
        QCOMPARE(safety::readCatalogue().size(), 1);
        QVERIFY(QFileInfo(*second).isFile()); // the row left still names it
    }

    void deleteRows()
    {
        const CatalogueEntry gone = listFile(dest(), u"DB2020.zl"_s, QDateTime(QDate(2020, 1, 1), QTime(9, 0)), false);
        const CatalogueEntry kept = listFile(dest(), u"DB2021.zl"_s, QDateTime(QDate(2021, 1, 1), QTime(9, 0)), true);
        prompter().answer(Prompter::Answer::Cancel);
        QVERIFY(!safety::deleteBackup(kept, prompter()));
        QVERIFY(QFileInfo::exists(kept.filePath()));
        QCOMPARE(safety::readCatalogue().size(), 2);
        QCOMPARE(prompter().questions.last(), TestoLingua("M0115"));

        prompter().answer(Prompter::Answer::Ok);
        QVERIFY(safety::deleteBackup(kept, prompter()));
        QVERIFY(!QFileInfo::exists(kept.filePath()));
        // A file removed by hand: the row goes all the same, and restoring it says the file is missing.
        prompter().questions.clear();
        QVERIFY(!safety::restoreBackup(gone, prompter()));
        QVERIFY(hasMessage(prompter(), TestoLingua("M0028"), Prompter::Icon::Stop));
        QVERIFY(prompter().questions.isEmpty());
        prompter().answer(Prompter::Answer::Ok);
        QVERIFY(safety::deleteBackup(gone, prompter()));
        QVERIFY(safety::readCatalogue().isEmpty());
        QCOMPARE(prompter().messages.size(), 1);
    }

    // A destination that is no usable folder, a disk that fills up, a user who stops the work,
    // a folder that refuses the restored file: each is told (or not, when the user stopped),
    // and nothing is left behind.
    void failuresLeaveNothing()
    {
        for (const QString &folder : {u"/nonexistent/veltano/backup"_s, u"  "_s, working(), u"/proc"_s})
            QVERIFY(!backup(true, false, 6, folder));
        QCOMPARE(prompter().messages.size(), 4);
        for (const auto &m : prompter().messages)
            QCOMPARE(m.text + QString::number(int(m.icon)), TestoLingua("M0117") + QString::number(int(Prompter::Icon::Stop)));
        QVERIFY(safety::readCatalogue().isEmpty() && filesIn(dest()).isEmpty());
        const QTemporaryDir elsewhere;
        const std::optional<QString> made = backup();
        QVERIFY(made);
        const QString file = elsewhere.filePath(QFileInfo(*made).fileName());
        QVERIFY(QFile::rename(*made, file));
        catalogue().execute(u"delete from backup"_s);
        const CatalogueEntry entry = listFile(elsewhere.path(), QFileInfo(file).fileName(), QDateTime::currentDateTime(), false);
        const auto restoreEntry = [&](const safety::Progress &progress) {
            prompter().answer(Prompter::Answer::Ok);
            return safety::restoreBackup(entry, prompter(), progress);
        };
        store::Connections::close(working());
        QVERIFY(QFileInfo(working()).size() > 16384);
        prompter().messages.clear();
        withDiskFull([&] {
            QVERIFY(!backup());
            QVERIFY(!restoreEntry({}));
        });
        QVERIFY(!backup(true, false, 6, {}, [](qint64, qint64) { return false; }));
        QVERIFY(!restoreEntry([](qint64, qint64) { return false; }));
        QCOMPARE(prompter().messages.size(), 2);
        QCOMPARE(prompter().messages[0].icon, Prompter::Icon::Critical);
        QCOMPARE(prompter().messages[1].icon, Prompter::Icon::Critical);
        QCOMPARE(listed(), QStringList(entry.nomeFile));
        QVERIFY(filesIn(dest()).isEmpty());
        verifyWorking(300);

        const QString saved = frame::pub().Pathdata;
        frame::pub().Pathdata = u"/proc/veltano-none/basedati.mdb"_s;
        QVERIFY(!restoreEntry({}));
        frame::pub().Pathdata = saved;
        QVERIFY(hasMessage(prompter(), TestoLingua("M0029"), Prompter::Icon::Stop));
    }

    void badBackupRefused_data()
    {
        QTest::addColumn<QString>("damage");
        for (const char *d : {"cut in half", "bytes flipped", "empty", "plain text", "bytes after the end", "no database inside",
                              "pages damaged inside"})
            QTest::newRow(d) << QString::fromLatin1(d);
    }

    // A bad file in place of a backup is refused with an error, and the working database stays as it was.
    void badBackupRefused()
    {
        QFETCH(QString, damage);
        const std::optional<QString> made = backup(damage != u"bytes flipped"_s);
        QVERIFY(made);
        QByteArray bytes = bytesOf(*made);
        const QString plain = QDir(dest()).filePath(u"plain.txt"_s);
        if (damage == u"cut in half"_s)
            bytes.truncate(bytes.size() / 2);
        else if (damage == u"bytes flipped"_s)
            for (qsizetype i = bytes.size() / 3; i < bytes.size() / 3 + 16; ++i)
                bytes[i] = char(bytes[i] ^ 0x5A);
        else if (damage == u"empty"_s)
            bytes.clear();
        else if (damage == u"plain text"_s)
            bytes = "this is not a backup\n";
        else if (damage == u"bytes after the end"_s)
            bytes += "extra";
        else {
            // A sound stream around a file that is no database, or a database with a damaged page
            // that the settings row does not lie on.
            QByteArray inside(100000, 'x');
            if (damage != u"no database inside"_s) {
                const qint64 page = frame::basedati().scalar(u"select rootpage from sqlite_master where name = 'Movimentazioni'"_s).toLongLong();
                store::Connections::close(working());
                inside = bytesOf(working());
                inside.replace((page - 1) * 4096 + 200, 16, QByteArray(16, 'X'));
            }
            writeBytes(plain, inside);
            safety::compressFile(plain, plain + u".zl"_s, 9);
            bytes = bytesOf(plain + u".zl"_s);
        }
        const QString file = QDir(dest()).filePath(u"DB2026_01_01__00_00_00.zl"_s);
        writeBytes(file, bytes);
        store::Connections::close(working());
        const QByteArray before = bytesOf(working());
        prompter().messages.clear();
        QVERIFY(!restore(file));
        QCOMPARE(prompter().messages.size(), 1);
        QCOMPARE(prompter().messages.first().icon, Prompter::Icon::Critical);
        QVERIFY2(prompter().messages.first().text.contains(u"not a complete backup"_s), qPrintable(prompter().messages.first().text));
        QCOMPARE(bytesOf(working()), before);
        verifyWorking(300);
    }

    // Backups and restores killed part-way, and a backup killed between the rename of its file
    // and its catalogue row: the next run removes the leftovers of its own naming, lists the
    // complete file, and leaves every other file alone. A write to the working file killed after
    // its journal reached the disk: the restore doesn't leave that journal to be played into
    // the restored file at its next opening.
    void killedRunsAreCleanedUp()
    {
        const std::optional<QString> orphan = backup();
        QVERIFY(orphan);
        catalogue().execute(u"delete from backup"_s);
        const CatalogueEntry unlisted{0, QDateTime::currentDateTime(), {}, dest() + u'/', QFileInfo(*orphan).fileName(), {}};
        addMovements(200);
        killedDuring([this] {
            store::Database db(working(), QLatin1String(store::DatabaseKey));
            // A tiny cache makes the engine write changed pages into the file before the commit.
            db.executeScript(u"PRAGMA cache_size = 2; BEGIN; UPDATE Movimentazioni SET Targa = Targa || 'X';"
                             "DELETE FROM Movimentazioni WHERE Progressivo % 2 = 0;"_s);
            die();
        });
        QVERIFY(QFileInfo(working() + u"-journal"_s).size() > 0);
        killedDuring([this] { backup(true, false, 6, {}, die); });
        killedDuring([&] {
            prompter().answer(Prompter::Answer::Ok);
            safety::restoreBackup(unlisted, prompter(), die);
        });
        const auto temporaries = [](const QString &folder, const QString &pattern) {
            return filesIn(folder).filter(QRegularExpression(pattern)).size();
        };
        QCOMPARE(temporaries(dest(), u"^\\.DB.*\\.zl\\.[0-9a-f]{8}\\.tmp$"_s), 1);
        QCOMPARE(temporaries(QFileInfo(working()).path(), u"^\\.basedati\\.mdb\\.[0-9a-f]{8}\\.tmp$"_s), 1);
        const QStringList strangers{u".DB2020.zl.0badf00d.tmp"_s, u".DB2026_01_01__00_00_00.zl.tmp"_s, u"DB2020.zl"_s};
        for (const QString &name : strangers)
            writeBytes(QDir(dest()).filePath(name), "not ours");
        writeBytes(QFileInfo(working()).dir().filePath(u".basedati.mdb.xyz.tmp"_s), "not ours");
        // A backup being written meanwhile by another run keeps its file.
        const safety::PendingFile running(QDir(dest()).filePath(u"DB2030_01_01__00_00_00.zl"_s));

        QThread::sleep(1); // a name of its own for the next backup
        const std::optional<QString> next = backup();
        QVERIFY(next);
        QStringList expected = strangers + QStringList{QFileInfo(running.temporaryPath()).fileName(),
                                                       QFileInfo(*orphan).fileName(), QFileInfo(*next).fileName()};
        expected.sort();
        QCOMPARE(filesIn(dest()), expected);
        QCOMPARE(listed(), QStringList({QFileInfo(*next).fileName(), QFileInfo(*orphan).fileName()}));
        QCOMPARE(safety::readCatalogue().last().data.toString(u"yyyy_MM_dd__HH_mm_ss"_s), QFileInfo(*orphan).fileName().mid(2, 20));
        QVERIFY(restore(*orphan));
        verifyWorking(300, {u".basedati.mdb.xyz.tmp"_s});
    }

    void settingsAndNote()
    {
        const safety::BackupSettings defaults = safety::readBackupSettings();
        QCOMPARE(defaults.folder + u'|' + QString::number(defaults.keep), frame::pub().CartellaProgramma + u"|6"_s);
        QVERIFY(defaults.autoDelete);
        safety::saveBackupSettings({u"/tmp/copie/"_s, false, 3});
        QVERIFY(!safety::readBackupSettings().autoDelete);
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"autobackup"_s), u"N"_s);
        for (const auto &[typed, kept] : {std::pair{"0", 1}, {"-4", 1}, {"abc", 1}, {" 12 ", 12}})
            QCOMPARE(safety::keepCount(QLatin1String(typed)), kept);
        QCOMPARE(safety::proposedNote(QDate(2006, 3, 6)), u"Lunedì 06/03/2006"_s);
        frame::pub().FormatoData = u"mm/dd/yyyy"_s;
        QCOMPARE(safety::proposedNote(QDate(2006, 3, 6)), u"Lunedì 03/06/2006"_s);
    }

    // Through the windows, with a user who takes his time over each box: no progress box stands
    // over a warning, a question or a closing message.
    void windowsBackUpAndRestore()
    {
        store::Connections::close(working());
        const QByteArray original = bytesOf(working());
        SlowUser user(prompter());
        prompter().answer(Prompter::Answer::Ok);
        int rows = -1;
        QString shownFolder;
        whenModal([&](QWidget *win) {
            child<QLineEdit>(win, "Texth")->setText(dest());
            child<QLineEdit>(win, "TxtAS")->setText(u"0"_s);
            emit child<QLineEdit>(win, "TxtAS")->editingFinished();
            QTest::mouseClick(child<QPushButton>(win, "Command2"), Qt::LeftButton);
            rows = child<QTableView>(win, "TDBGrid1")->model()->rowCount();
            shownFolder = child<QLineEdit>(win, "Texth")->text();
            QTest::mouseClick(child<QPushButton>(win, "Command3"), Qt::LeftButton);
        });
        frmCopia copia;
        QCOMPARE(copia.mostra(user), int(QDialog::Accepted));
        QCOMPARE(rows, 1);
        QCOMPARE(shownFolder, dest() + u'/');
        QVERIFY(hasMessage(prompter(), TestoLingua("M0116"), Prompter::Icon::Information));
        QCOMPARE(child<QLineEdit>(&copia, "Text1")->text(), safety::proposedNote(QDate::currentDate()));
        // Leaving by the close button keeps the settings; a keep count of 0 became 1.
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"PathBackup"_s), dest() + u'/');
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"AutoBackupCont"_s), u"1"_s);

        addMovements(10);
        prompter().answer(Prompter::Answer::Ok); // the warning
        prompter().answer(Prompter::Answer::Ok); // the restore question
        whenModal([](QWidget *win) {
            QTest::mouseClick(child<QPushButton>(win, "Command2"), Qt::LeftButton);
            QTest::mouseClick(child<QPushButton>(win, "Command3"), Qt::LeftButton);
        });
        frmRipristina ripristina(nullptr, false);
        QCOMPARE(ripristina.mostra(user), int(QDialog::Accepted));
        QVERIFY(hasMessage(prompter(), TestoLingua("M0027"), Prompter::Icon::Information));
        QCOMPARE(bytesOf(working()), original);
        QCOMPARE(user.covered, 0);
    }

    // The warnings of both windows; on Cancel, or without a catalogue, the windows close at
    // once; leaving by Escape keeps no setting.
    void windowsThatCloseAtOnce()
    {
        frmCopia copia;
        frmRipristina ripristina(nullptr, false);
        QCOMPARE(copia.mostra(prompter()), int(QDialog::Rejected));
        QCOMPARE(ripristina.mostra(prompter()), int(QDialog::Rejected));
        QVERIFY(!ripristina.daLogin());
        QCOMPARE(prompter().questions, QStringList({TestoLingua("M0118") + u'\n' + TestoLingua("M0119") + u'\n' + TestoLingua("M0120"),
                                                    TestoLingua("M0031") + u"\n\n"_s + TestoLingua("M0032") + u"\n\n"_s +
                                                        TestoLingua("M0033") + u"\n\n"_s + TestoLingua("M0029")}));
        QCOMPARE(prompter().questionIcons.last(), Prompter::Icon::Exclamation);

        prompter().answer(Prompter::Answer::Ok);
        whenModal([](QWidget *win) {
            child<QLineEdit>(win, "Texth")->setText(u"/elsewhere"_s);
            child<QCheckBox>(win, "ChkAutoCanc")->setChecked(false);
            QTest::keyClick(win, Qt::Key_Escape);
        });
        QCOMPARE(copia.mostra(prompter()), int(QDialog::Rejected));
        QVERIFY(!child<QLineEdit>(&copia, "TxtAS")->isEnabled());
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"PathBackup"_s), QString());

        store::Connections::closeAll();
        QVERIFY(QFile::remove(frame::pub().PercorsoElencoBackup));
        frmRipristina fromLogin(nullptr, true);
        QCOMPARE(copia.mostra(prompter()), int(QDialog::Rejected));
        QCOMPARE(fromLogin.mostra(prompter()), int(QDialog::Rejected));
        QVERIFY(fromLogin.daLogin());
        QCOMPARE(prompter().questions.size(), 3);
        QVERIFY(prompter().messages.isEmpty());
    }
};

QTEST_MAIN(TestBackup)
#include "tst_backup.moc"
