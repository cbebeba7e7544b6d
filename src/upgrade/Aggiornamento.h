// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace frame {
class Prompter;
}

namespace upgrade {

// The folder of the maker's site that holds the descriptor and the program files.
inline constexpr const char *CartellaProdotto = "veltano";
// The descriptor's name, on the site and in the program folder.
inline constexpr const char *NomeDescrittore = "upgrade.txt";
// The name under which a downloaded program does the copy job.
inline constexpr const char *NomeCopia = "Upgrade";

struct Versione {
    qint64 major = 0;
    qint64 minor = 0;
    qint64 revision = 0;
    QString testo() const;
    // Compared part by part; the first difference decides.
    auto operator<=>(const Versione &) const = default;
};

// The running program's version.
Versione VersioneCorrente();
// The version carried by a file name "name_major_minor_revision.extension";
// std::nullopt when the form isn't that one.
std::optional<Versione> VersioneDaNome(const QString &ver);

// A key of a file in INI form, read as the platform's private-profile call reads
// it: section and key blind to case, at most 254 characters, cut at a null and
// right-trimmed. A missing key reads "".
QString LeggeProfilo(const QByteArray &contenuto, const QString &sezione, const QString &chiave);

// What the maker's descriptor says of the new program.
struct Descrittore {
    QString Ver;       // bare file name of the new program
    QString Message;   // the maker's words, shown in the offer
    qint64 Dim = 0;    // its size in bytes; 0 when not given
    QString Sha256;    // lower-case hex digest, or "" when not given
    Versione versione;
};
// std::nullopt for a descriptor that can't be trusted: too long, no usable `Ver`
// (a path, not of the versioned form), a `Dim` that isn't a count, a malformed `Sha256`.
std::optional<Descrittore> LeggeDescrittore(const QByteArray &contenuto);

// Lower-case hex SHA-256 of a file's contents; "" when it can't be read.
QString Sha256File(const QString &percorso);

// Address of the folder of the site that holds the descriptor and the program files.
QString IndirizzoAggiornamenti();

// The program and its arguments of a command line: a path in double quotes or up
// to the first blank, then the rest.
QStringList DividiRiga(const QString &riga);
// Starts a command line detached, in the folder of its program. False when it can't start.
bool AvviaProgramma(const QString &riga);

// Whether the site can be reached now: a connection to its host and port within
// `attesaMs`. Blocks until it knows, turning the event loop.
bool TestConnessione(const QString &url, int attesaMs);

// How the check reads a file from the site: a window with progress in the program, a plain read in tests.
class Scaricamento {
public:
    virtual ~Scaricamento() = default;
    // Reads `url` into `file` against a total of `totale` bytes (0: unknown). "" or the error's text.
    virtual QString Download(const QString &url, const QString &file, qint64 totale) = 0;
};

struct AmbienteControllo {
    Versione corrente = VersioneCorrente();
    QString eseguibile;            // path of the installed program, remembered as `Path`
    int attesaConnessione = 10000; // milliseconds the connection test may take
};

// The upgrade check of the menu: asks, reads the descriptor, compares versions,
// offers the new program, downloads and verifies it, and starts it as the copy
// entry. True when the new program runs: the caller closes the main window.
// A second call while one runs does nothing.
bool ControlloAggiornamento(frame::Prompter &prompter, Scaricamento &scarica, const AmbienteControllo &ambiente);

// The copy entry of a program named "upgrade" in any case: waits `attesaMs`,
// copies itself over the installed program (`Path`, or the program named by the
// first argument beside it), keeps it executable and starts it. True when this
// process was the copy entry and must end; false for any other name.
bool EntrataCopia(frame::Prompter &prompter, const QString &eseguibile, const QStringList &argomenti, int attesaMs = 1000);

} // namespace upgrade
