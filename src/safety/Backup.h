// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QDateTime>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>
#include <stdexcept>

namespace frame {
class Prompter;
}

namespace safety {

// Called after each chunk of long work with the bytes done and the bytes in all.
// A total of 0 means the amount is unknown (the check of a restored copy).
// Returning false asks the work to stop; it then leaves nothing behind.
using Progress = std::function<bool(qint64 done, qint64 total)>;

// A failure of the file work, told apart by what the user can do about it.
class BackupError : public std::runtime_error {
public:
    enum class Kind {
        Access,    // a file or folder cannot be opened, created or renamed
        Io,        // reading or writing failed part-way (disk full, device error)
        Content,   // the input is not a complete backup of a database of this program
        Cancelled, // the progress callback asked to stop
    };
    BackupError(Kind kind, const QString &message)
        : std::runtime_error(message.toStdString()), m_kind(kind), m_message(message) {}
    Kind kind() const { return m_kind; }
    const QString &message() const { return m_message; }

private:
    Kind m_kind;
    QString m_message;
};

// A file written under a temporary name in the folder of its final path. It
// takes its final name only through commit(), replacing any file of that name
// in one step; dropped before that, it is removed, so a failure never leaves a
// partial file where a complete one is expected. Until then it is locked, which
// tells it from the leftover of a killed run that a later run removes.
class PendingFile {
public:
    // Creates the temporary file; throws BackupError(Access) when the folder refuses it.
    explicit PendingFile(const QString &finalPath);
    ~PendingFile();
    PendingFile(const PendingFile &) = delete;
    PendingFile &operator=(const PendingFile &) = delete;

    void write(const char *data, size_t size);
    // Flushes the data to the disk and ends the writing; the temporary file stays readable.
    void finish();
    // finish(), then gives the file its final name.
    void commit();
    const QString &temporaryPath() const { return m_temporary; }
    const QString &finalPath() const { return m_final; }

private:
    QString m_final;
    QString m_temporary;
    int m_fd = -1;
    qint64 m_written = 0;
    qint64 m_flushed = 0; // bytes handed to the disk so far, so that the final flush is short
    bool m_finished = false;
    bool m_committed = false;
};

// ---- The compressor: one zlib stream of one file, nothing else in it.

// "DB" + yyyy_mm_dd__hh_mi_ss + ".zl", e.g. DB2006_03_06__14_05_09.zl.
QString backupFileName(const QDateTime &moment);

// Streams `input` through the compressor at `level` (0 stores, 9 packs hardest) into `output`.
void compressTo(const QString &input, PendingFile &output, int level, const Progress &progress = {});
// Expands one zlib stream from `input` into `output`. A file that is empty, cut
// short, damaged, followed by other bytes or no zlib stream at all throws BackupError(Content).
void expandTo(const QString &input, PendingFile &output, const Progress &progress = {});
// Both of the above with the output committed under `output`.
void compressFile(const QString &input, const QString &output, int level, const Progress &progress = {});
void expandFile(const QString &input, const QString &output, const Progress &progress = {});

// Throws BackupError(Content) unless `path` opens with the program's key and holds
// the settings table of a working database.
// Messages name the file as `shownAs` when given (the backup a scratch copy came from).
void verifyWorkingDatabase(const QString &path, const Progress &progress = {}, const QString &shownAs = {});

// ---- The catalogue of backups (table `backup` of ElencoBackup.mdb).

struct CatalogueEntry {
    qint64 id = 0;
    QDateTime data;
    QString utilizzatore;
    QString percorso; // folder, with a final separator
    QString nomeFile;
    QString note;
    QString filePath() const { return percorso + nomeFile; }
};

bool catalogueExists();
// Newest first. Throws store::DbError.
QVector<CatalogueEntry> readCatalogue();

// ---- Settings of the backup window, in the per-user store.

struct BackupSettings {
    QString folder;          // PathBackup: the program folder by default
    bool autoDelete = true;  // AutoBackup "S"
    int keep = 6;            // AutoBackupCont
};
BackupSettings readBackupSettings();
void saveBackupSettings(const BackupSettings &settings);
// The number of backups kept, read from a box as leading digits; anything below 1 gives 1.
int keepCount(const QString &text);
// The note proposed for a new backup: weekday name and today's date.
QString proposedNote(const QDate &today);

// ---- What the windows do. Each talks to the user only through `prompter`.

// The warnings shown when the windows open; true when the user goes on.
bool confirmBackupWindow(frame::Prompter &prompter);
bool confirmRestoreWindow(frame::Prompter &prompter);

struct BackupRequest {
    QString folder;         // destination folder; a final separator is added
    QString note;
    bool compressed = true; // level 9 when on, 0 when off
    bool autoDelete = true; // delete the oldest backups beyond `keep`
    int keep = 6;
};

// Copies the working database into `folder` and lists it in the catalogue.
// Returns the path of the new file, or nothing when the copy was not made
// (the user has been told why, unless he cancelled it). `listChanged` runs once
// the catalogue holds the new row, before the closing message.
std::optional<QString> makeBackup(const BackupRequest &request, frame::Prompter &prompter,
                                  const Progress &progress = {}, const std::function<void()> &listChanged = {});
// Deletes a backup's row, and its file unless another row names the same file.
// Asks first unless `silent`. Returns true when the row is gone.
bool deleteBackup(const CatalogueEntry &entry, frame::Prompter &prompter, bool silent = false);
// Puts the backup in place of the working database, once it is known to be sound.
// Returns true when the working file was replaced.
bool restoreBackup(const CatalogueEntry &entry, frame::Prompter &prompter, const Progress &progress = {});

} // namespace safety
