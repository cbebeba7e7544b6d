// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/Backup.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/FieldKind.h"
#include "store/Sqlite.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace safety {

namespace {

// Large chunks keep the system calls few and the compressor busy; two of them
// are all the memory the file work needs, whatever the size of the database.
constexpr size_t Chunk = size_t(1) << 20;
// Dirty data handed to the disk in slices of this size while writing, so that
// the final flush before the rename waits for little.
constexpr qint64 WritebackSlice = qint64(16) << 20;

QString systemError(int err)
{
    return QString::fromLocal8Bit(std::strerror(err));
}

QByteArray nativePath(const QString &path)
{
    return QFile::encodeName(path);
}

// Closes a descriptor on every path out.
class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

int openForReading(const QString &path, qint64 *size)
{
    const int fd = ::open(nativePath(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw BackupError(BackupError::Kind::Access, QStringLiteral("Cannot open %1: %2.").arg(path, systemError(errno)));
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        throw BackupError(BackupError::Kind::Access, QStringLiteral("%1 is not a file that can be read.").arg(path));
    }
    *size = st.st_size;
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    return fd;
}

// Fills `buffer` as far as the file allows: short reads only at its end.
size_t readChunk(int fd, unsigned char *buffer, size_t size, const QString &path)
{
    size_t got = 0;
    while (got < size) {
        const ssize_t n = ::read(fd, buffer + got, size - got);
        if (n == 0)
            break;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            throw BackupError(BackupError::Kind::Io, QStringLiteral("Cannot read %1: %2.").arg(path, systemError(errno)));
        }
        got += size_t(n);
    }
    return got;
}

void report(const Progress &progress, qint64 done, qint64 total)
{
    if (progress && !progress(std::min(done, total), total))
        throw BackupError(BackupError::Kind::Cancelled, QStringLiteral("Stopped by the user."));
}

// The zlib stream state, released on every path out.
struct Deflater {
    z_stream zs{};
    bool ready = false;
    ~Deflater()
    {
        if (ready)
            deflateEnd(&zs);
    }
};
struct Inflater {
    z_stream zs{};
    bool ready = false;
    ~Inflater()
    {
        if (ready)
            inflateEnd(&zs);
    }
};

QString databaseKey()
{
    const QString key = store::keyFromConnect(frame::pub().CodaConnessione);
    return key.isEmpty() ? QString::fromLatin1(store::DatabaseKey) : key;
}

store::Database &catalogue()
{
    return store::Connections::get(frame::pub().PercorsoElencoBackup, databaseKey());
}

QString damaged(const QString &path, const QString &why)
{
    return QStringLiteral("%1 is not a complete backup of the database (%2). The database in use has not been changed.")
        .arg(path, why);
}

// The file of a catalogue row goes only when no other row still names it:
// two backups made within one second share one file.
bool fileStillListed(store::Database &cat, const QString &percorso, const QString &nomeFile)
{
    return cat.scalar(QStringLiteral("select count(*) from backup where Percorso = ? and NomeFile = ?"),
                      {percorso, nomeFile})
               .toLongLong() > 0;
}

struct Listed {
    QString percorso;
    QString nomeFile;
};

// Deletes the rows beyond the newest `keep`, inside the caller's transaction.
QVector<Listed> dropOldestRows(store::Database &cat, int keep)
{
    QVector<qint64> ids;
    QVector<Listed> files;
    {
        store::Statement st = cat.prepare(
            QStringLiteral("select id, Percorso, NomeFile from backup  order by data DESC, id DESC"));
        for (int position = 0; st.step(); ++position) {
            if (position < keep)
                continue;
            ids << st.value(0).toLongLong();
            files << Listed{st.value(1).toString(), st.value(2).toString()};
        }
    }
    for (qint64 id : ids)
        cat.execute(QStringLiteral("delete from backup where id = ?"), {id});
    return files;
}

// The names the backup routine gives its files.
const QRegularExpression &backupName()
{
    static const QRegularExpression name(QStringLiteral("^DB\\d{4}_\\d\\d_\\d\\d__\\d\\d_\\d\\d_\\d\\d\\.zl$"));
    return name;
}

// Removes the temporary files that a killed PendingFile left in `folder` for a
// final name that `finalName` matches, and nothing else. A writer still at work
// holds a lock on its file, which therefore stays.
void removeLeftovers(const QString &folder, const QRegularExpression &finalName)
{
    static const QRegularExpression temporary(QStringLiteral("^\\.(.+)\\.[0-9a-f]{8}\\.tmp$"));
    const QDir dir(folder);
    for (const QString &name : dir.entryList({QStringLiteral(".*.tmp")}, QDir::Files | QDir::Hidden | QDir::NoSymLinks)) {
        const QRegularExpressionMatch m = temporary.match(name);
        if (!m.hasMatch() || !finalName.match(m.captured(1)).hasMatch())
            continue;
        const QByteArray path = nativePath(dir.filePath(name));
        const Descriptor fd(::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        if (fd.get() >= 0 && ::flock(fd.get(), LOCK_EX | LOCK_NB) == 0)
            ::unlink(path.constData());
    }
}

// Lists the backup files of `folder` that no catalogue row names, inside the caller's
// transaction. Such a file is what a backup killed between the rename of its file and
// the commit of its row leaves (or an automatic deletion killed before removing the
// file): complete, yet invisible to the windows and to the automatic deletion.
void listOrphans(store::Database &cat, const QString &folder)
{
    QSet<QString> listed;
    for (const CatalogueEntry &e : readCatalogue())
        listed.insert(QFileInfo(e.filePath()).canonicalFilePath());
    for (const QString &name : QDir(folder).entryList({QStringLiteral("DB*.zl")}, QDir::Files | QDir::NoSymLinks)) {
        if (!backupName().match(name).hasMatch() || listed.contains(QFileInfo(folder + name).canonicalFilePath()))
            continue;
        // The name tells when it was made; who made it and why is not known.
        QDateTime made = QDateTime::fromString(name.mid(2, 20), QStringLiteral("yyyy_MM_dd__HH_mm_ss"));
        if (!made.isValid())
            made = QFileInfo(folder + name).lastModified();
        cat.execute(QStringLiteral("insert into backup (Data, Utilizzatore, Percorso, NomeFile, Note) values (?, '', ?, ?, '')"),
                    {made, folder, name});
    }
}

// Settles the rollback journal (or write-ahead log) that a killed write left beside
// `path`, before another file takes that name: opening the database rolls it back into
// the file it belongs to; one that cannot be rolled back goes with its file. Left in
// place, it would be played into the new file at its next opening and damage it.
void settleJournal(const QString &path)
{
    const QStringList journals{path + QStringLiteral("-journal"), path + QStringLiteral("-wal")};
    if (std::none_of(journals.begin(), journals.end(), [](const QString &j) { return QFileInfo::exists(j); }))
        return;
    try {
        store::Database old(path, databaseKey());
        old.scalar(QStringLiteral("PRAGMA schema_version"));
    } catch (const store::DbError &) {
        // The old file cannot take its journal back: both are about to go.
    }
    for (const QString &j : journals + QStringList{path + QStringLiteral("-shm")})
        if (QFileInfo::exists(j) && !QFile::remove(j))
            throw BackupError(BackupError::Kind::Access, QStringLiteral("Cannot delete %1.").arg(j));
}

// Lets the progress callback stop a long statement of the engine.
int statementProgress(void *context)
{
    const Progress &progress = *static_cast<const Progress *>(context);
    return progress && !progress(0, 0) ? 1 : 0;
}

} // namespace

// ---- PendingFile

PendingFile::PendingFile(const QString &finalPath) : m_final(finalPath)
{
    const QFileInfo info(finalPath);
    const QString folder = info.absolutePath();
    // A hidden name, so that a listing of the folder never offers a half-written file.
    for (int attempt = 0; attempt < 100 && m_fd < 0; ++attempt) {
        m_temporary = QDir(folder).filePath(QStringLiteral(".%1.%2.tmp")
                                                .arg(info.fileName())
                                                .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0')));
        m_fd = ::open(nativePath(m_temporary).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_fd < 0 && errno != EEXIST)
            throw BackupError(BackupError::Kind::Access,
                              QStringLiteral("Cannot create a file in %1: %2.").arg(folder, systemError(errno)));
    }
    if (m_fd < 0)
        throw BackupError(BackupError::Kind::Access, QStringLiteral("Cannot create a file in %1.").arg(folder));
    // Held until the file is closed or the process ends: it tells a file being written from a leftover.
    ::flock(m_fd, LOCK_EX | LOCK_NB);
    // The replacement keeps the permissions of the file it replaces.
    struct stat st {};
    if (::stat(nativePath(finalPath).constData(), &st) == 0 && S_ISREG(st.st_mode))
        ::fchmod(m_fd, st.st_mode & 07777);
}

PendingFile::~PendingFile()
{
    if (m_fd >= 0)
        ::close(m_fd);
    if (!m_committed)
        ::unlink(nativePath(m_temporary).constData());
}

void PendingFile::write(const char *data, size_t size)
{
    if (m_finished)
        throw BackupError(BackupError::Kind::Io, QStringLiteral("%1 is already closed.").arg(m_final));
    while (size > 0) {
        const ssize_t n = ::write(m_fd, data, size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            throw BackupError(BackupError::Kind::Io, QStringLiteral("Cannot write %1: %2.").arg(m_final, systemError(errno)));
        }
        data += n;
        size -= size_t(n);
        m_written += n;
    }
    if (m_written - m_flushed >= WritebackSlice) {
        // Start the disk on this slice now and wait for the one before, so that
        // writing overlaps the compression and dirty memory stays bounded.
        ::sync_file_range(m_fd, m_flushed, m_written - m_flushed, SYNC_FILE_RANGE_WRITE);
        if (m_flushed > 0)
            ::sync_file_range(m_fd, 0, m_flushed,
                              SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
        m_flushed = m_written;
    }
}

void PendingFile::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    if (::fdatasync(m_fd) != 0)
        throw BackupError(BackupError::Kind::Io, QStringLiteral("Cannot write %1: %2.").arg(m_final, systemError(errno)));
}

void PendingFile::commit()
{
    finish();
    if (::rename(nativePath(m_temporary).constData(), nativePath(m_final).constData()) != 0)
        throw BackupError(BackupError::Kind::Access,
                          QStringLiteral("Cannot write %1: %2.").arg(m_final, systemError(errno)));
    m_committed = true;
    // The lock goes only now: until the rename, the file is one that a run is still working on.
    ::close(m_fd);
    m_fd = -1;
    // The new name must reach the disk too, or a crash could bring the old file back.
    const Descriptor folder(::open(nativePath(QFileInfo(m_final).absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() >= 0)
        ::fsync(folder.get());
}

// ---- The compressor

QString backupFileName(const QDateTime &moment)
{
    return QStringLiteral("DB") + moment.toString(QStringLiteral("yyyy_MM_dd__HH_mm_ss")) + QStringLiteral(".zl");
}

void compressTo(const QString &input, PendingFile &output, int level, const Progress &progress)
{
    qint64 total = 0;
    const Descriptor in(openForReading(input, &total));
    Deflater d;
    // memLevel 9 gives the match finder a larger hash table: faster at level 9 on data that does not repeat.
    if (deflateInit2(&d.zs, std::clamp(level, 0, 9), Z_DEFLATED, 15, 9, Z_DEFAULT_STRATEGY) != Z_OK)
        throw BackupError(BackupError::Kind::Io, QStringLiteral("The compressor cannot start: not enough memory."));
    d.ready = true;
    const auto inBuf = std::make_unique<unsigned char[]>(Chunk);
    const auto outBuf = std::make_unique<unsigned char[]>(Chunk);
    qint64 done = 0;
    report(progress, 0, total);
    for (;;) {
        const size_t n = readChunk(in.get(), inBuf.get(), Chunk, input);
        const int flush = n < Chunk ? Z_FINISH : Z_NO_FLUSH;
        d.zs.next_in = inBuf.get();
        d.zs.avail_in = uInt(n);
        int rc;
        do {
            d.zs.next_out = outBuf.get();
            d.zs.avail_out = uInt(Chunk);
            rc = deflate(&d.zs, flush);
            if (rc == Z_STREAM_ERROR)
                throw BackupError(BackupError::Kind::Io, QStringLiteral("The compressor failed on %1.").arg(input));
            output.write(reinterpret_cast<const char *>(outBuf.get()), Chunk - d.zs.avail_out);
        } while (d.zs.avail_out == 0);
        done += qint64(n);
        report(progress, done, std::max(total, done));
        if (flush == Z_FINISH) {
            if (rc != Z_STREAM_END)
                throw BackupError(BackupError::Kind::Io, QStringLiteral("The compressor did not end %1.").arg(input));
            return;
        }
    }
}

void expandTo(const QString &input, PendingFile &output, const Progress &progress)
{
    qint64 total = 0;
    const Descriptor in(openForReading(input, &total));
    if (total == 0)
        throw BackupError(BackupError::Kind::Content, damaged(input, QStringLiteral("the file is empty")));
    Inflater f;
    // Window bits 15: a zlib stream only; a gzip or raw file is not a backup.
    if (inflateInit2(&f.zs, 15) != Z_OK)
        throw BackupError(BackupError::Kind::Io, QStringLiteral("The expander cannot start: not enough memory."));
    f.ready = true;
    const auto inBuf = std::make_unique<unsigned char[]>(Chunk);
    const auto outBuf = std::make_unique<unsigned char[]>(Chunk);
    qint64 done = 0;
    bool ended = false;
    report(progress, 0, total);
    while (!ended) {
        const size_t n = readChunk(in.get(), inBuf.get(), Chunk, input);
        if (n == 0)
            throw BackupError(BackupError::Kind::Content, damaged(input, QStringLiteral("the file is cut short")));
        done += qint64(n);
        f.zs.next_in = inBuf.get();
        f.zs.avail_in = uInt(n);
        // Drain the output while it fills the buffer: the stream may end on a call that consumed no input.
        do {
            f.zs.next_out = outBuf.get();
            f.zs.avail_out = uInt(Chunk);
            const int rc = inflate(&f.zs, Z_NO_FLUSH);
            if (rc == Z_MEM_ERROR)
                throw BackupError(BackupError::Kind::Io, QStringLiteral("The expander ran out of memory."));
            if (rc == Z_NEED_DICT || rc == Z_DATA_ERROR || rc == Z_STREAM_ERROR)
                throw BackupError(BackupError::Kind::Content,
                                  damaged(input, QStringLiteral("the compressed data are damaged: %1")
                                                     .arg(QString::fromLatin1(f.zs.msg ? f.zs.msg : "no detail"))));
            output.write(reinterpret_cast<const char *>(outBuf.get()), Chunk - f.zs.avail_out);
            if (rc == Z_STREAM_END) {
                ended = true;
                break;
            }
        } while (f.zs.avail_out == 0);
        report(progress, done, total);
    }
    if (f.zs.avail_in > 0 || readChunk(in.get(), inBuf.get(), 1, input) > 0)
        throw BackupError(BackupError::Kind::Content, damaged(input, QStringLiteral("other bytes follow the compressed data")));
}

void compressFile(const QString &input, const QString &output, int level, const Progress &progress)
{
    PendingFile file(output);
    compressTo(input, file, level, progress);
    file.commit();
}

void expandFile(const QString &input, const QString &output, const Progress &progress)
{
    PendingFile file(output);
    expandTo(input, file, progress);
    file.commit();
}

void verifyWorkingDatabase(const QString &path, const Progress &progress, const QString &shownAs)
{
    const QString name = shownAs.isEmpty() ? path : shownAs;
    try {
        store::Database db(path, databaseKey());
        const qint64 tables = db.scalar(QStringLiteral("select count(*) from sqlite_master where type = 'table' "
                                                       "and lower(name) = 'impostazioni'"))
                                  .toLongLong();
        if (tables == 0)
            throw BackupError(BackupError::Kind::Content,
                              damaged(name, QStringLiteral("the database inside is not a working database")));
        db.scalar(QStringLiteral("select count(*) from Impostazioni"));
        // The stream's checksum vouches only for the bytes as they were copied: pages that
        // were already damaged in the file copied are found by reading every page of every
        // table and index. The quick check does that in well under a second for 190 MB; the
        // full one, which also matches each index against its table, took 11 s.
        sqlite3_progress_handler(db.handle(), 100000, statementProgress, const_cast<Progress *>(&progress));
        const QString check = db.scalar(QStringLiteral("PRAGMA quick_check(1)")).toString();
        sqlite3_progress_handler(db.handle(), 0, nullptr, nullptr);
        if (check != QLatin1String("ok")) {
            qWarning().noquote() << "integrity check of" << name << ":" << check;
            throw BackupError(BackupError::Kind::Content, damaged(name, QStringLiteral("the database inside is damaged")));
        }
        report(progress, 1, 1);
    } catch (const store::DbError &e) {
        if ((e.code() & 0xff) == SQLITE_INTERRUPT)
            throw BackupError(BackupError::Kind::Cancelled, QStringLiteral("Stopped by the user."));
        // The engine's text names the scratch file, which means nothing to the user.
        throw BackupError(BackupError::Kind::Content,
                          damaged(name, e.code() == SQLITE_NOTADB
                                            ? QStringLiteral("it holds no database of this program")
                                            : QStringLiteral("the database inside cannot be read, code %1").arg(e.code())));
    }
}

// ---- The catalogue and the settings

bool catalogueExists()
{
    const QString path = frame::pub().PercorsoElencoBackup;
    return !path.isEmpty() && QFileInfo(path).isFile();
}

QVector<CatalogueEntry> readCatalogue()
{
    QVector<CatalogueEntry> rows;
    // The id breaks ties of one second, so that "newest first" holds for them too.
    store::Statement st = catalogue().prepare(QStringLiteral(
        "select id, Data, Utilizzatore, Percorso, NomeFile, Note from backup  order by data DESC, id DESC"));
    while (st.step()) {
        CatalogueEntry e;
        e.id = st.value(0).toLongLong();
        e.data = store::fromStorage(store::FieldKind::Date, st.value(1)).toDateTime();
        e.utilizzatore = st.value(2).toString();
        e.percorso = st.value(3).toString();
        e.nomeFile = st.value(4).toString();
        e.note = st.value(5).toString();
        rows << e;
    }
    return rows;
}

BackupSettings readBackupSettings()
{
    const frame::Preferenze &pref = frame::preferenze();
    BackupSettings s;
    s.folder = pref.pathBackup();
    s.autoDelete = pref.autoBackup();
    s.keep = keepCount(pref.autoBackupCont());
    return s;
}

void saveBackupSettings(const BackupSettings &settings)
{
    frame::Preferenze &pref = frame::preferenze();
    pref.setPathBackup(settings.folder);
    pref.setAutoBackup(settings.autoDelete);
    pref.setAutoBackupCont(std::max(1, settings.keep));
}

int keepCount(const QString &text)
{
    const QString t = text.trimmed();
    qsizetype i = 0;
    const bool negative = i < t.size() && t.at(i) == QLatin1Char('-');
    if (i < t.size() && (t.at(i) == QLatin1Char('-') || t.at(i) == QLatin1Char('+')))
        ++i;
    qint64 value = 0;
    for (; i < t.size() && t.at(i).isDigit() && t.at(i).unicode() < 128; ++i)
        value = std::min<qint64>(value * 10 + t.at(i).digitValue(), 999999);
    return negative || value < 1 ? 1 : int(value);
}

QString proposedNote(const QDate &today)
{
    return frame::GiornoSettimana(today) + QLatin1Char(' ') + frame::TestoData(today.startOfDay(), false);
}

// ---- What the windows do

bool confirmBackupWindow(frame::Prompter &prompter)
{
    using frame::TestoLingua;
    const QString text = TestoLingua("M0118") + QLatin1Char('\n') + TestoLingua("M0119") + QLatin1Char('\n') +
                         TestoLingua("M0120");
    return prompter.confirm(text);
}

bool confirmRestoreWindow(frame::Prompter &prompter)
{
    using frame::TestoLingua;
    const QString gap = QStringLiteral("\n\n");
    const QString text = TestoLingua("M0031") + gap + TestoLingua("M0032") + gap + TestoLingua("M0033") + gap +
                         TestoLingua("M0029");
    return prompter.confirm(text, frame::Prompter::Icon::Exclamation);
}

std::optional<QString> makeBackup(const BackupRequest &request, frame::Prompter &prompter, const Progress &progress,
                                  const std::function<void()> &listChanged)
{
    using frame::TestoLingua;
    QString folder = request.folder.trimmed();
    QString probe = folder;
    if (folder.isEmpty() || !frame::EsisteFile(probe, true) || !QFileInfo(probe).isWritable()) {
        prompter.stop(TestoLingua("M0117"));
        return std::nullopt;
    }
    frame::AggiungeBarra(folder);
    removeLeftovers(folder, backupName());
    try {
        const QDateTime now = QDateTime::currentDateTime();
        const QDateTime moment(now.date(), QTime(now.time().hour(), now.time().minute(), now.time().second()));
        const QString name = backupFileName(moment);
        const QString output = folder + name;
        // The catalogue is opened first: no backup file is written that could not be listed.
        store::Database &cat = catalogue();
        std::optional<PendingFile> file;
        try {
            file.emplace(output);
        } catch (const BackupError &) {
            // The folder exists but takes no file: for the user it is a destination that does not work.
            prompter.stop(TestoLingua("M0117"));
            return std::nullopt;
        }
        {
            // The copy is made of the closed file; open windows read it again afterwards.
            store::Connections::WholeFileWork work(frame::pub().Pathdata);
            compressTo(frame::pub().Pathdata, *file, request.compressed ? 9 : 0, progress);
            file->finish();
        }

        // The new row, the deletion of the oldest rows and the new file's name: all or nothing.
        QVector<Listed> dropped;
        {
            store::Transaction t(cat);
            listOrphans(cat, folder);
            cat.execute(QStringLiteral("insert into backup (Data, Utilizzatore, Percorso, NomeFile, Note) values (?, ?, ?, ?, ?)"),
                        {moment, frame::pub().UtenteCorrente, folder, name, request.note});
            if (request.autoDelete)
                dropped = dropOldestRows(cat, std::max(1, request.keep));
            file->commit();
            try {
                t.commit();
            } catch (...) {
                QFile::remove(output);
                throw;
            }
        }
        // The files of the deleted rows go silently; one that resists stays on the disk.
        for (const Listed &old : dropped)
            if (!fileStillListed(cat, old.percorso, old.nomeFile))
                QFile::remove(old.percorso + old.nomeFile);
        if (listChanged)
            listChanged();
        prompter.information(TestoLingua("M0116"));
        return output;
    } catch (const BackupError &e) {
        if (e.kind() != BackupError::Kind::Cancelled)
            frame::MostraErrore(prompter, e.message());
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
    }
    return std::nullopt;
}

bool deleteBackup(const CatalogueEntry &entry, frame::Prompter &prompter, bool silent)
{
    if (!silent && !prompter.confirm(frame::TestoLingua("M0115")))
        return false;
    try {
        store::Database &cat = catalogue();
        const bool shared = cat.scalar(QStringLiteral("select count(*) from backup where Percorso = ? and NomeFile = ? "
                                                      "and id <> ?"),
                                       {entry.percorso, entry.nomeFile, entry.id})
                                .toLongLong() > 0;
        // The file goes first: when it resists, the row stays and tells the user it is still there.
        QFile file(entry.filePath());
        if (!shared && QFileInfo(entry.filePath()).isFile() && !file.remove())
            throw BackupError(BackupError::Kind::Access,
                              QStringLiteral("Cannot delete %1: %2.").arg(entry.filePath(), file.errorString()));
        cat.execute(QStringLiteral("delete from backup where id = ?"), {entry.id});
        return true;
    } catch (const BackupError &e) {
        frame::MostraErrore(prompter, e.message());
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
    }
    return false;
}

bool restoreBackup(const CatalogueEntry &entry, frame::Prompter &prompter, const Progress &progress)
{
    using frame::TestoLingua;
    const QString source = entry.filePath();
    if (entry.nomeFile.isEmpty() || !QFileInfo(source).isFile()) {
        prompter.stop(TestoLingua("M0028"));
        return false;
    }
    const QString gap = QStringLiteral("\n\n");
    if (!prompter.confirm(TestoLingua("M0024") + gap + TestoLingua("M0025") + QLatin1Char(' ') +
                          frame::TestoData(entry.data, true) + gap + TestoLingua("M0026") + QLatin1Char('.')))
        return false;
    const QString working = frame::pub().Pathdata;
    try {
        removeLeftovers(QFileInfo(working).absolutePath(),
                        QRegularExpression(QLatin1Char('^') + QRegularExpression::escape(QFileInfo(working).fileName()) +
                                           QLatin1Char('$')));
        // Expanded beside the working file and checked there: a bad backup never costs the working database.
        PendingFile scratch(working);
        expandTo(source, scratch, progress);
        scratch.finish();
        verifyWorkingDatabase(scratch.temporaryPath(), progress, source);
        {
            // Open windows show the restored data once the file is in place.
            store::Connections::WholeFileWork work(working);
            settleJournal(working);
            scratch.commit();
        }
        prompter.information(TestoLingua("M0027"));
        return true;
    } catch (const BackupError &e) {
        switch (e.kind()) {
        case BackupError::Kind::Cancelled:
            break;
        case BackupError::Kind::Access:
            prompter.stop(TestoLingua("M0029"));
            break;
        default:
            frame::MostraErrore(prompter, e.message());
        }
    } catch (const store::DbError &e) {
        frame::MostraErrore(prompter, e.message());
    }
    return false;
}

} // namespace safety
