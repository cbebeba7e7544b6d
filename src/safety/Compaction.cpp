// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/Compaction.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/FileError.h"
#include "store/Connections.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Schema.h"
#include "store/Sqlite.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <optional>

namespace safety {

namespace {

QString letterale(const QString &testo)
{
    return QLatin1Char('\'') + QString(testo).replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

QString identificatore(const QString &nome)
{
    return QLatin1Char('"') + QString(nome).replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

// What a faithful copy must show again: its version mark, its objects and the rows of each table.
struct Fotografia {
    qint64 versione = 0;
    QStringList oggetti;
    QMap<QString, qint64> righe;
};

Fotografia fotografa(store::Database &db)
{
    Fotografia f;
    f.versione = db.scalar(QStringLiteral("PRAGMA user_version")).toLongLong();
    store::Statement st = db.prepare(QStringLiteral("SELECT type, name FROM sqlite_master ORDER BY type, name"));
    QStringList tabelle;
    while (st.step()) {
        f.oggetti << st.value(0).toString() + QLatin1Char(':') + st.value(1).toString();
        if (st.value(0).toString() == QLatin1String("table"))
            tabelle << st.value(1).toString();
    }
    for (const QString &t : tabelle)
        f.righe.insert(t, db.scalar(QStringLiteral("SELECT count(*) FROM %1").arg(identificatore(t))).toLongLong());
    return f;
}

// The scratch file and the journals the engine keeps beside a file of that
// name: a journal left by a crash would otherwise be played into the new copy.
bool togliAppoggio(const QString &copia)
{
    for (const QString &nome : {copia, copia + QStringLiteral("-journal"), copia + QStringLiteral("-wal"),
                                copia + QStringLiteral("-shm")}) {
        const QFileInfo info(nome);
        if (!info.exists() && !info.isSymLink())
            continue;
        if (info.isDir() && !info.isSymLink())
            return false;
        if (!QFile::remove(nome))
            return false;
    }
    return true;
}

// The copy takes the source's name in one step: at every moment one of the two is whole.
bool sostituisci(const QString &copia, const QString &sorgente)
{
    QFile::setPermissions(copia, QFile::permissions(sorgente));
    if (std::rename(QFile::encodeName(copia).constData(), QFile::encodeName(sorgente).constData()) != 0)
        return false;
    // Make the new name durable too, not only the file's contents.
    const int dir = ::open(QFile::encodeName(QFileInfo(sorgente).absolutePath()).constData(), O_RDONLY | O_DIRECTORY);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}

QString primoRisultato(store::Database &db, const QString &pragma)
{
    return db.scalar(pragma).toString();
}

// Opens the copy afresh and compares it with what the source showed; throws on a difference.
void verifica(const QString &copia, const QString &chiave, const Fotografia &attesa)
{
    store::Database db(copia, chiave);
    const QString controllo = primoRisultato(db, QStringLiteral("PRAGMA quick_check"));
    if (controllo != QLatin1String("ok"))
        throw store::DbError(SQLITE_CORRUPT, QStringLiteral("The compacted copy fails its check: %1").arg(controllo));
    const Fotografia f = fotografa(db);
    if (f.versione != attesa.versione || f.oggetti != attesa.oggetti || f.righe != attesa.righe)
        throw store::DbError(SQLITE_MISMATCH, QStringLiteral("The compacted copy differs from its source."));
}

// Copies the whole open source into `copia` with the engine's export, which
// leaves out the version mark: it is set on the copy here.
void esporta(store::Database &sorgente, const QString &copia, const QString &chiave, qint64 versione)
{
    // An attached file opens with the flags of the main connection, which may not
    // create files: an empty file is an empty database to the engine.
    QFile vuoto(copia);
    if (!vuoto.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        throw frame::FileError(copia, QStringLiteral("Cannot create %1: %2").arg(copia, vuoto.errorString()));
    vuoto.close();
    sorgente.executeScript(QStringLiteral("ATTACH DATABASE %1 AS dataap KEY %2")
                               .arg(letterale(copia), letterale(chiave)));
    try {
        sorgente.executeScript(QStringLiteral("SELECT sqlcipher_export('dataap'); PRAGMA dataap.user_version = %1")
                                   .arg(versione));
    } catch (...) {
        sqlite3_exec(sorgente.handle(), "DETACH DATABASE dataap", nullptr, nullptr, nullptr);
        throw;
    }
    sorgente.executeScript(QStringLiteral("DETACH DATABASE dataap"));
}

struct Percorsi {
    QString sorgente;
    QString copia;
};

// The source and its scratch copy; nothing when the two would be one file.
std::optional<Percorsi> percorsi(const QString &sorgente)
{
    const QFileInfo info(sorgente);
    Percorsi p{info.absoluteFilePath(), QDir(info.absolutePath()).filePath(QLatin1String(FileAppoggio))};
    if (p.copia == p.sorgente)
        return std::nullopt;
    return p;
}

// Export, check and replace, for a source that the engine can read whole.
bool compattaFile(const Percorsi &p, const QString &chiave)
{
    if (!QFileInfo(p.sorgente).isFile() || !togliAppoggio(p.copia))
        return false;
    // The shared connection must not hold the file while it is replaced.
    const store::Connections::WholeFileWork work({p.sorgente, p.copia});
    try {
        Fotografia attesa;
        {
            store::Database sorgente(p.sorgente, chiave);
            attesa = fotografa(sorgente);
            esporta(sorgente, p.copia, chiave, attesa.versione);
        }
        verifica(p.copia, chiave, attesa);
    } catch (const std::exception &) {
        togliAppoggio(p.copia);
        return false;
    }
    if (!sostituisci(p.copia, p.sorgente)) {
        togliAppoggio(p.copia);
        return false;
    }
    return true;
}

// Row-by-row salvage of one table. Where a read breaks on a damaged page, the
// next rowid from which the table reads again is searched (doubling steps, then
// halving), and the copy goes on from there. Returns the rows copied; sets
// `guasto` when some part could not be read. Throws only on errors of the copy.
class Salvataggio {
public:
    Salvataggio(store::Database &sorgente, store::Database &copia, const QString &tabella)
        : m_sorgente(sorgente), m_copia(copia), m_nome(identificatore(tabella))
    {
    }

    qint64 copia()
    {
        qint64 inizio = std::numeric_limits<qint64>::min();
        for (;;) {
            std::optional<qint64> ultimo;
            if (leggiDa(inizio, ultimo))
                return m_copiate;
            m_guasto = true;
            // No row came from this start: the search starts after it.
            qint64 da;
            if (ultimo)
                da = *ultimo;
            else
                da = inizio;
            if (da == std::numeric_limits<qint64>::max())
                return m_copiate;
            const std::optional<qint64> riprendi = primoLeggibile(da + 1);
            if (!riprendi)
                return m_copiate;
            inizio = *riprendi;
        }
    }

    bool guasto() const { return m_guasto; }

private:
    // Copies rows from `inizio` on; true when the table ended, false when a read broke.
    bool leggiDa(qint64 inizio, std::optional<qint64> &ultimo)
    {
        try {
            store::Statement st = m_sorgente.prepare(
                QStringLiteral("SELECT rowid, * FROM %1 WHERE rowid >= ? ORDER BY rowid").arg(m_nome));
            st.bind(1, inizio);
            for (;;) {
                bool riga;
                try {
                    riga = st.step();
                } catch (const store::DbError &) {
                    return false;
                }
                if (!riga)
                    return true;
                scrivi(st);
                ultimo = st.value(0).toLongLong();
            }
        } catch (const store::DbError &) {
            if (m_scrivendo)
                throw;
            return false;
        }
    }

    void scrivi(const store::Statement &st)
    {
        m_scrivendo = true;
        const int colonne = st.columnCount() - 1;
        if (!m_inserimento) {
            QStringList segnaposti;
            for (int i = 0; i < colonne; ++i)
                segnaposti << QStringLiteral("?");
            m_inserimento = std::make_unique<store::Statement>(m_copia.prepare(
                QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(m_nome, segnaposti.join(QLatin1Char(',')))));
        }
        m_inserimento->reset();
        for (int i = 0; i < colonne; ++i)
            m_inserimento->bind(i + 1, st.value(i + 1));
        m_inserimento->step();
        ++m_copiate;
        m_scrivendo = false;
    }

    // Whether the table reads from rowid `p` on (its first row, or its end).
    bool leggibileDa(qint64 p)
    {
        try {
            store::Statement st = m_sorgente.prepare(
                QStringLiteral("SELECT rowid FROM %1 WHERE rowid >= ? ORDER BY rowid LIMIT 1").arg(m_nome));
            st.bind(1, p);
            st.step();
            return true;
        } catch (const store::DbError &) {
            return false;
        }
    }

    std::optional<qint64> primoLeggibile(qint64 da)
    {
        constexpr qint64 massimo = std::numeric_limits<qint64>::max();
        if (leggibileDa(da))
            return da;
        qint64 male = da;
        qint64 bene = 0;
        quint64 passo = 1;
        for (;;) {
            const qint64 p = quint64(massimo) - quint64(da) < passo ? massimo : qint64(quint64(da) + passo);
            if (leggibileDa(p)) {
                bene = p;
                break;
            }
            male = p;
            if (p == massimo)
                return std::nullopt;
            passo *= 2;
        }
        while (quint64(bene) - quint64(male) > 1) {
            const qint64 mezzo = qint64(quint64(male) + (quint64(bene) - quint64(male)) / 2);
            if (leggibileDa(mezzo))
                bene = mezzo;
            else
                male = mezzo;
        }
        return bene;
    }

    store::Database &m_sorgente;
    store::Database &m_copia;
    QString m_nome;
    std::unique_ptr<store::Statement> m_inserimento;
    qint64 m_copiate = 0;
    bool m_guasto = false;
    bool m_scrivendo = false;
};

struct Oggetto {
    QString tipo, nome, sql;
};

// Builds the scratch copy from what can be read. True when the copy is complete
// and holds something; the copy is left for the caller to check and rename.
bool salva(store::Database &sorgente, const QString &copiaPath, const QString &chiave)
{
    QVector<Oggetto> oggetti;
    try {
        store::Statement st = sorgente.prepare(QStringLiteral(
            "SELECT type, name, sql FROM sqlite_master WHERE sql IS NOT NULL AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'"));
        while (st.step())
            oggetti.append({st.value(0).toString(), st.value(1).toString(), st.value(2).toString()});
    } catch (const store::DbError &) {
        return false; // without the schema nothing can be rebuilt
    }
    qint64 versione = 0;
    try {
        versione = sorgente.scalar(QStringLiteral("PRAGMA user_version")).toLongLong();
    } catch (const store::DbError &) {
    }

    store::Database copia(copiaPath, chiave, store::Database::Mode::Create);
    copia.executeScript(QStringLiteral("PRAGMA user_version = %1").arg(versione));
    store::Transaction t(copia);
    qint64 righe = 0;
    bool guasto = false;
    for (const Oggetto &o : oggetti)
        if (o.tipo == QLatin1String("table"))
            copia.executeScript(o.sql);
    for (const Oggetto &o : oggetti) {
        if (o.tipo != QLatin1String("table"))
            continue;
        Salvataggio s(sorgente, copia, o.nome);
        righe += s.copia();
        guasto = guasto || s.guasto();
    }
    // Rows lost to damage would leave the register's counts and the cash book's days counting them.
    if (guasto)
        store::Schema::refillRegisterCounts(copia);
    // Counters of AUTOINCREMENT tables, so that no number is given twice.
    try {
        store::Statement st = sorgente.prepare(QStringLiteral("SELECT name, seq FROM sqlite_sequence"));
        while (st.step())
            if (copia.execute(QStringLiteral("UPDATE sqlite_sequence SET seq = max(seq, ?) WHERE name = ?"),
                              {st.value(1), st.value(0)}) == 0)
                copia.execute(QStringLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)"),
                              {st.value(0), st.value(1)});
    } catch (const store::DbError &) {
        // No such table, or unreadable: the counters restart from the rows copied.
    }
    // Indexes, views and triggers once the rows are in, so that no trigger fires on the copy.
    for (const Oggetto &o : oggetti)
        if (o.tipo != QLatin1String("table"))
            copia.executeScript(o.sql);
    t.commit();
    // A damaged file of which no row could be read keeps its chances elsewhere.
    return !(guasto && righe == 0);
}

} // namespace

bool CompattaMdb(const QString &cartella, const QString &file, const QString &codaConnessione)
{
    if (cartella.trimmed().isEmpty() || file.trimmed().isEmpty())
        return false;
    const std::optional<Percorsi> p = percorsi(QDir(cartella).filePath(file));
    if (!p)
        return false;
    return compattaFile(*p, store::keyFromConnect(codaConnessione));
}

void compatta_locadati()
{
    auto &pub = frame::pub();
    if (pub.PercorsoLocadati.isEmpty() || !QFileInfo(pub.PercorsoLocadati).isFile())
        return;
    int contatore = frame::preferenze().compattaLocadati() + 1;
    // Past ten as well: a counter raised by hand must not put the compaction off for good.
    if (contatore >= 10) {
        frame::MostraStato(frame::TestoLingua("M0020"));
        // The file tested above is the file compacted: the program folder's locadati.mdb.
        const QFileInfo locadati(pub.PercorsoLocadati);
        const bool riuscita = CompattaMdb(locadati.absolutePath(), locadati.fileName(), QString());
        frame::MostraStato(frame::TestoLingua(riuscita ? "M0021" : "M0022"));
        contatore = 0;
    }
    frame::preferenze().setCompattaLocadati(contatore);
}

bool CompattazioneServizio(frame::Prompter &prompter)
{
    const QString domanda = frame::TestoLingua("M0104") + QLatin1Char('\n') + frame::TestoLingua("M0105") +
                            QLatin1Char('\n') + frame::TestoLingua("M0106") + QLatin1Char('\n') +
                            frame::TestoLingua("M0107") + QStringLiteral(", ") + frame::TestoLingua("M0029");
    if (prompter.question(domanda, frame::Prompter::Buttons::OkCancel, frame::Prompter::Answer::Cancel) !=
        frame::Prompter::Answer::Ok)
        return false;
    const bool riuscita = CompattaMdb(frame::CartellaDati(frame::pub().Pathdata) + QLatin1Char('/'),
                                      QStringLiteral("basedati.mdb"), frame::pub().CodaConnessione);
    if (riuscita)
        prompter.information(frame::TestoLingua("M0108"));
    else
        prompter.message(frame::TestoLingua("M0109"), frame::Prompter::Icon::Exclamation);
    return riuscita;
}

bool RiparaDatabase(const QString &path, const QString &codaConnessione)
{
    const std::optional<Percorsi> p = percorsi(path);
    if (!p || !QFileInfo(p->sorgente).isFile())
        return false;
    const QString chiave = store::keyFromConnect(codaConnessione);
    const store::Connections::WholeFileWork work({p->sorgente, p->copia});
    std::unique_ptr<store::Database> sorgente;
    try {
        sorgente = std::make_unique<store::Database>(p->sorgente, chiave);
    } catch (const store::DbError &) {
        return false; // a wrong key or not a database: nothing to read
    }
    QString controllo;
    try {
        controllo = primoRisultato(*sorgente, QStringLiteral("PRAGMA integrity_check"));
    } catch (const store::DbError &e) {
        controllo = e.message();
    }
    if (controllo == QLatin1String("ok")) {
        // A sound file: the export with its checks rebuilds it cleanly.
        sorgente.reset();
        return compattaFile(*p, chiave);
    }
    if (!togliAppoggio(p->copia))
        return false;
    try {
        if (!salva(*sorgente, p->copia, chiave)) {
            togliAppoggio(p->copia);
            return false;
        }
        sorgente.reset();
        store::Database copia(p->copia, chiave);
        if (primoRisultato(copia, QStringLiteral("PRAGMA quick_check")) != QLatin1String("ok"))
            throw store::DbError(SQLITE_CORRUPT, QStringLiteral("The repaired copy fails its check."));
    } catch (const std::exception &) {
        togliAppoggio(p->copia);
        return false;
    }
    if (!sostituisci(p->copia, p->sorgente)) {
        togliAppoggio(p->copia);
        return false;
    }
    return true;
}

} // namespace safety
