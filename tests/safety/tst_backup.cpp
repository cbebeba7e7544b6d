// SPDX-License-Identifier: GPL-3.0-or-later
#include <Backup.h>
#include <Connections.h>
#include <Database.h>
#include <Language.h>
#include <PublicState.h>
#include <Routines.h>
#include <SettingsStore.h>
#include <frmCopia.h>
#include <frmRipristina.h>

#include <ScriptedPrompter.h>
#include <TestDatabase.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using frame::Prompter;
using safety::CatalogueEntry;

namespace {

QByteArray bytesOf(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeBytes(const QString &path, const QByteArray &data)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(data), data.size());
}

// Every file of a folder, hidden ones too: a half-written backup would be hidden.
QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

bool hasMessage(const ScriptedPrompter &p, const QString &text, Prompter::Icon icon)
{
    for (const auto &m : p.messages)
        if (m.text.startsWith(text) && m.icon == icon)
            return true;
    return false;
}

// Keeps the process's file size limit low for one scope: writes beyond it fail as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_saved);
        rlimit low = m_saved;
        low.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &low);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_saved); }

private:
    rlimit m_saved{};
};

// Runs `f` on the modal window once its event loop is up.
template <typename F>
void whenModal(F &&f)
{
    QTimer::singleShot(0, [f] {
        if (QWidget *w = QApplication::activeModalWidget())
            f(w);
    });
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
        store::Database &db = frame::basedati();
        store::Transaction t(db);
        for (int i = 0; i < count; ++i)
            db.execute(u"insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, IdUtente) "
                       "values ('2026', ?, '2026-03-10 08:00:00', ?, '01', -1, 1)"_s,
                       {i + 1, u"AB%1CD"_s.arg(i, 3, 10, QLatin1Char('0'))});
        t.commit();
    }

    // A catalogue row made by hand, as an earlier backup would have left it.
    CatalogueEntry listFile(const QString &folder, const QString &name, const QDateTime &when, bool withFile)
    {
        if (withFile)
            writeBytes(QDir(folder).filePath(name), "old backup");
        catalogue().execute(u"insert into backup (Data, Utilizzatore, Percorso, NomeFile, Note) values (?, 'x', ?, ?, '')"_s,
                            {when, folder + u'/', name});
        const qint64 id = catalogue().lastInsertId();
        for (const CatalogueEntry &e : safety::readCatalogue())
            if (e.id == id)
                return e;
        return {};
    }

    std::optional<QString> backup(bool compressed = true, bool autoDelete = false, int keep = 6, const QString &folder = {})
    {
        safety::BackupRequest r;
        r.folder = folder.isNull() ? dest() : folder;
        r.note = u"nota di prova"_s;
        r.compressed = compressed;
        r.autoDelete = autoDelete;
        r.keep = keep;
        return safety::makeBackup(r, prompter(), {});
    }

    // Restores the catalogue row of `file` with OK answered.
    bool restore(const QString &file)
    {
        const CatalogueEntry e = listFile(QFileInfo(file).path(), QFileInfo(file).fileName(), QDateTime::currentDateTime(), false);
        prompter().answer(Prompter::Answer::Ok);
        return safety::restoreBackup(e, prompter());
    }

    // The working database is the same file as before and still a sound database.
    void verifyWorkingUntouched(const QByteArray &before)
    {
        QCOMPARE(bytesOf(working()), before);
        store::Database db(working(), QLatin1String(store::DatabaseKey));
        QCOMPARE(db.scalar(u"PRAGMA quick_check"_s).toString(), u"ok"_s);
        QCOMPARE(filesIn(QFileInfo(working()).path()), QStringList({u"ElencoBackup.mdb"_s, u"basedati.mdb"_s}));
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

    void fileName()
    {
        QCOMPARE(safety::backupFileName(QDateTime(QDate(2006, 3, 6), QTime(14, 5, 9))), u"DB2006_03_06__14_05_09.zl"_s);
        QCOMPARE(safety::backupFileName(QDateTime(QDate(2026, 11, 23), QTime(0, 0, 0))), u"DB2026_11_23__00_00_00.zl"_s);
    }

    void roundTrip_data()
    {
        QTest::addColumn<bool>("compressed");
        QTest::addColumn<char>("levelByte");
        QTest::newRow("level 9") << true << char(0xDA);
        QTest::newRow("level 0") << false << char(0x01);
    }

    void roundTrip()
    {
        QFETCH(bool, compressed);
        QFETCH(char, levelByte);
        store::Connections::close(working());
        const QByteArray original = bytesOf(working());
        const std::optional<QString> file = backup(compressed);
        QVERIFY(file);
        QVERIFY(QRegularExpression(u"^DB\\d{4}_\\d\\d_\\d\\d__\\d\\d_\\d\\d_\\d\\d\\.zl$"_s).match(QFileInfo(*file).fileName()).hasMatch());
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0116"), Prompter::Icon::Information));
        // One zlib stream: its header tells the level it was made with.
        const QByteArray packed = bytesOf(*file);
        QCOMPARE(packed.at(0), char(0x78));
        QCOMPARE(packed.at(1), levelByte);
        QCOMPARE(filesIn(dest()), QStringList({QFileInfo(*file).fileName()}));

        addMovements(50); // work done after the backup, which the restore takes away
        QVERIFY(bytesOf(working()) != original);
        prompter().messages.clear();
        QVERIFY(restore(*file));
        QCOMPARE(bytesOf(working()), original);
        QCOMPARE(prompter().questions.size(), 1);
        const QString asked = prompter().questions.first();
        QVERIFY(asked.startsWith(frame::TestoLingua("M0024") + u"\n\n"_s + frame::TestoLingua("M0025")));
        QVERIFY(asked.endsWith(u"\n\n"_s + frame::TestoLingua("M0026") + u'.'));
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0027"), Prompter::Icon::Information));
        QCOMPARE(frame::basedati().scalar(u"select count(*) from Movimentazioni"_s).toInt(), 300);
        QCOMPARE(filesIn(QFileInfo(working()).path()), QStringList({u"ElencoBackup.mdb"_s, u"basedati.mdb"_s}));
    }

    void catalogueRow()
    {
        const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
        const std::optional<QString> file = backup(true, false, 6, dest()); // no final separator given
        QVERIFY(file);
        const QVector<CatalogueEntry> rows = safety::readCatalogue();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows[0].percorso, dest() + u'/');
        QCOMPARE(rows[0].nomeFile, QFileInfo(*file).fileName());
        QCOMPARE(rows[0].utilizzatore, u"administrator"_s);
        QCOMPARE(rows[0].note, u"nota di prova"_s);
        QVERIFY(rows[0].data >= before && rows[0].data <= QDateTime::currentDateTime());
        QCOMPARE(rows[0].nomeFile, safety::backupFileName(rows[0].data));
    }

    void automaticDeletion_data()
    {
        QTest::addColumn<bool>("autoDelete");
        QTest::addColumn<int>("keep");
        QTest::addColumn<QStringList>("left");
        const QString fresh = u"new"_s;
        QTest::newRow("keep 1") << true << 1 << QStringList{fresh};
        QTest::newRow("keep 2 of 3") << true << 2 << QStringList{fresh, u"DB2021.zl"_s};
        QTest::newRow("off") << false << 1 << QStringList{fresh, u"DB2021.zl"_s, u"DB2020.zl"_s};
    }

    void automaticDeletion()
    {
        QFETCH(bool, autoDelete);
        QFETCH(int, keep);
        QFETCH(QStringList, left);
        listFile(dest(), u"DB2020.zl"_s, QDateTime(QDate(2020, 1, 1), QTime(9, 0)), true);
        listFile(dest(), u"DB2021.zl"_s, QDateTime(QDate(2021, 1, 1), QTime(9, 0)), true);
        const std::optional<QString> file = backup(true, autoDelete, keep);
        QVERIFY(file);
        left.replace(0, QFileInfo(*file).fileName());
        QStringList rows;
        for (const CatalogueEntry &e : safety::readCatalogue())
            rows << e.nomeFile;
        QCOMPARE(rows, left); // newest first
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
        QCOMPARE(prompter().questions.last(), frame::TestoLingua("M0115"));

        prompter().answer(Prompter::Answer::Ok);
        QVERIFY(safety::deleteBackup(kept, prompter()));
        QVERIFY(!QFileInfo::exists(kept.filePath()));
        // A file removed by hand: the row goes all the same, and restoring it says the file is missing.
        prompter().questions.clear();
        QVERIFY(!safety::restoreBackup(gone, prompter()));
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0028"), Prompter::Icon::Stop));
        QVERIFY(prompter().questions.isEmpty());
        prompter().answer(Prompter::Answer::Ok);
        QVERIFY(safety::deleteBackup(gone, prompter()));
        QVERIFY(safety::readCatalogue().isEmpty());
        QCOMPARE(prompter().messages.size(), 1);
    }

    void badDestination_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("missing") << u"/nonexistent/veltano/backup"_s;
        QTest::newRow("empty") << u"  "_s;
        QTest::newRow("a file") << QString(); // filled in below: the working database itself
        QTest::newRow("takes no file") << u"/proc"_s;
    }

    void badDestination()
    {
        QFETCH(QString, folder);
        if (folder.isNull())
            folder = working();
        QVERIFY(!backup(true, false, 6, folder));
        QCOMPARE(prompter().messages.size(), 1);
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0117"), Prompter::Icon::Stop));
        QVERIFY(safety::readCatalogue().isEmpty());
        QVERIFY(filesIn(dest()).isEmpty());
    }

    void diskFullLeavesNothing()
    {
        const QTemporaryDir elsewhere;
        const std::optional<QString> made = backup();
        QVERIFY(made);
        const QString file = elsewhere.filePath(QFileInfo(*made).fileName());
        QVERIFY(QFile::rename(*made, file));
        catalogue().execute(u"delete from backup"_s);
        store::Connections::close(working());
        const QByteArray before = bytesOf(working());
        QVERIFY(before.size() > 16384);
        prompter().messages.clear();
        {
            const FileSizeLimit limit(8192);
            QVERIFY(!backup());
        }
        QCOMPARE(prompter().messages.size(), 1);
        QCOMPARE(prompter().messages.first().icon, Prompter::Icon::Critical);
        QVERIFY(safety::readCatalogue().isEmpty());
        QVERIFY(filesIn(dest()).isEmpty());

        const CatalogueEntry entry = listFile(elsewhere.path(), QFileInfo(file).fileName(), QDateTime::currentDateTime(), false);
        prompter().messages.clear();
        prompter().answer(Prompter::Answer::Ok);
        {
            const FileSizeLimit limit(8192);
            QVERIFY(!safety::restoreBackup(entry, prompter()));
        }
        QCOMPARE(prompter().messages.size(), 1);
        QCOMPARE(prompter().messages.first().icon, Prompter::Icon::Critical);
        verifyWorkingUntouched(before);
    }

    void cancelLeavesNothing()
    {
        safety::BackupRequest r;
        r.folder = dest();
        QVERIFY(!safety::makeBackup(r, prompter(), [](qint64, qint64) { return false; }));
        QVERIFY(prompter().messages.isEmpty());
        QVERIFY(safety::readCatalogue().isEmpty());
        QVERIFY(filesIn(dest()).isEmpty());
    }

    void badBackupRefused_data()
    {
        QTest::addColumn<QString>("damage");
        for (const char *d : {"cut in half", "bytes flipped", "empty", "plain text", "bytes after the end", "no database inside"})
            QTest::newRow(d) << QString::fromLatin1(d);
    }

    // A bad file in place of a backup is refused with an error, and the working database stays as it was.
    void badBackupRefused()
    {
        QFETCH(QString, damage);
        const std::optional<QString> made = backup(damage != u"bytes flipped"_s);
        QVERIFY(made);
        QByteArray bytes = bytesOf(*made);
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
            const QString plain = QDir(dest()).filePath(u"plain.txt"_s);
            writeBytes(plain, QByteArray(100000, 'x'));
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
        verifyWorkingUntouched(before);
    }

    void restoreAccessError()
    {
        const std::optional<QString> file = backup();
        QVERIFY(file);
        prompter().messages.clear();
        const QString saved = frame::pub().Pathdata;
        frame::pub().Pathdata = u"/proc/veltano-none/basedati.mdb"_s;
        QVERIFY(!restore(*file));
        frame::pub().Pathdata = saved;
        QCOMPARE(prompter().messages.size(), 1);
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0029"), Prompter::Icon::Stop));
    }

    void settingsAndNote()
    {
        const safety::BackupSettings defaults = safety::readBackupSettings();
        QCOMPARE(defaults.folder, frame::pub().CartellaProgramma);
        QVERIFY(defaults.autoDelete);
        QCOMPARE(defaults.keep, 6);
        safety::saveBackupSettings({u"/tmp/copie/"_s, false, 3});
        const safety::BackupSettings read = safety::readBackupSettings();
        QCOMPARE(read.folder, u"/tmp/copie/"_s);
        QVERIFY(!read.autoDelete);
        QCOMPARE(read.keep, 3);
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"autobackup"_s), u"N"_s);
        QCOMPARE(safety::keepCount(u"0"_s), 1);
        QCOMPARE(safety::keepCount(u"-4"_s), 1);
        QCOMPARE(safety::keepCount(u"abc"_s), 1);
        QCOMPARE(safety::keepCount(u" 12 "_s), 12);
        QCOMPARE(safety::proposedNote(QDate(2006, 3, 6)), u"Lunedì 06/03/2006"_s);
        frame::pub().FormatoData = u"mm/dd/yyyy"_s;
        QCOMPARE(safety::proposedNote(QDate(2006, 3, 6)), u"Lunedì 03/06/2006"_s);
    }

    void windowWarnings()
    {
        prompter().answer(Prompter::Answer::Ok);
        QVERIFY(safety::confirmBackupWindow(prompter()));
        QVERIFY(!safety::confirmRestoreWindow(prompter())); // unanswered: Cancel, the default
        using frame::TestoLingua;
        QCOMPARE(prompter().questions[0], TestoLingua("M0118") + u'\n' + TestoLingua("M0119") + u'\n' + TestoLingua("M0120"));
        QCOMPARE(prompter().questions[1], TestoLingua("M0031") + u"\n\n"_s + TestoLingua("M0032") + u"\n\n"_s +
                                              TestoLingua("M0033") + u"\n\n"_s + TestoLingua("M0029"));
    }

    void frmCopiaMakesABackup()
    {
        frmCopia w;
        prompter().answer(Prompter::Answer::Ok);
        int rows = -1;
        QString shownFolder;
        whenModal([&](QWidget *win) {
            win->findChild<QLineEdit *>(u"Texth"_s)->setText(dest());
            auto *keep = win->findChild<QLineEdit *>(u"TxtAS"_s);
            keep->setText(u"0"_s);
            emit keep->editingFinished();
            QTest::mouseClick(win->findChild<QPushButton *>(u"Command2"_s), Qt::LeftButton);
            rows = win->findChild<QTableView *>(u"TDBGrid1"_s)->model()->rowCount();
            shownFolder = win->findChild<QLineEdit *>(u"Texth"_s)->text();
            QTest::mouseClick(win->findChild<QPushButton *>(u"Command3"_s), Qt::LeftButton);
        });
        QCOMPARE(w.mostra(prompter()), int(QDialog::Accepted));
        QCOMPARE(rows, 1);
        QCOMPARE(shownFolder, dest() + u'/');
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0116"), Prompter::Icon::Information));
        QCOMPARE(w.findChild<QLineEdit *>(u"Text1"_s)->text(), safety::proposedNote(QDate::currentDate()));
        // Leaving by the close button keeps the settings; a keep count of 0 became 1.
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"PathBackup"_s), dest() + u'/');
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"AutoBackupCont"_s), u"1"_s);
    }

    void frmCopiaEscapeKeepsSettings()
    {
        frmCopia w;
        prompter().answer(Prompter::Answer::Ok);
        whenModal([](QWidget *win) {
            win->findChild<QLineEdit *>(u"Texth"_s)->setText(u"/elsewhere"_s);
            win->findChild<QCheckBox *>(u"ChkAutoCanc"_s)->setChecked(false);
            QTest::keyClick(win, Qt::Key_Escape);
        });
        QCOMPARE(w.mostra(prompter()), int(QDialog::Rejected));
        QVERIFY(!w.findChild<QLineEdit *>(u"TxtAS"_s)->isEnabled());
        QCOMPARE(frame::SettingsStore::get(u"Impostazioni"_s, u"PathBackup"_s), QString());
    }

    void windowsCloseWithoutCatalogue()
    {
        store::Connections::closeAll();
        QVERIFY(QFile::remove(frame::pub().PercorsoElencoBackup));
        frmCopia copia;
        frmRipristina ripristina(nullptr, true);
        QCOMPARE(copia.mostra(prompter()), int(QDialog::Rejected));
        QCOMPARE(ripristina.mostra(prompter()), int(QDialog::Rejected));
        QVERIFY(ripristina.daLogin());
        QVERIFY(prompter().questions.isEmpty());
        QVERIFY(prompter().messages.isEmpty());
    }

    void warningCancelledClosesWindows()
    {
        frmCopia copia;
        frmRipristina ripristina(nullptr, false);
        QCOMPARE(copia.mostra(prompter()), int(QDialog::Rejected));
        QCOMPARE(ripristina.mostra(prompter()), int(QDialog::Rejected));
        QCOMPARE(prompter().questions.size(), 2);
        QVERIFY(!ripristina.daLogin());
    }

    void frmRipristinaRestores()
    {
        store::Connections::close(working());
        const QByteArray original = bytesOf(working());
        QVERIFY(backup());
        addMovements(10);
        frmRipristina w(nullptr, false);
        prompter().answer(Prompter::Answer::Ok); // the warning
        prompter().answer(Prompter::Answer::Ok); // the restore question
        int rows = -1;
        whenModal([&](QWidget *win) {
            rows = win->findChild<QTableView *>(u"TDBGrid1"_s)->model()->rowCount();
            QTest::mouseClick(win->findChild<QPushButton *>(u"Command2"_s), Qt::LeftButton);
            QTest::mouseClick(win->findChild<QPushButton *>(u"Command3"_s), Qt::LeftButton);
        });
        QCOMPARE(w.mostra(prompter()), int(QDialog::Accepted));
        QCOMPARE(rows, 1);
        QVERIFY(hasMessage(prompter(), frame::TestoLingua("M0027"), Prompter::Icon::Information));
        QCOMPARE(bytesOf(working()), original);
    }
};

QTEST_MAIN(TestBackup)
#include "tst_backup.moc"
