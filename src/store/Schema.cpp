// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Schema.h"

#include "store/Database.h"
#include "store/DbError.h"
#include "store/UnicodeText.h"

#include <QRegularExpression>

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <functional>

namespace store::Schema {

namespace {

// Declared types carry the kind and size of each field, so that forms read them
// from the database: TEXT(n), MEMO, LONG, CURRENCY, DOUBLE, DATE, YESNO, LONGBINARY;
// the counter keys are INTEGER PRIMARY KEY.
const char *const WorkingTables = R"SQL(
CREATE TABLE Movimentazioni (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  Anno TEXT(4),
  Progressivo LONG,
  DataOra DATE,
  DataOraOut DATE,
  Targa TEXT(20),
  IdFascia TEXT(10),
  Note TEXT(255),
  NoteImporto TEXT(70),
  Importo CURRENCY DEFAULT 0,
  Entrato YESNO DEFAULT 0,
  Annullato YESNO DEFAULT 0,
  Contabilizzato YESNO DEFAULT 0,
  IdUtente LONG,
  IdUtenteOut LONG
);
CREATE INDEX Movimentazioni_AnnoProgressivo ON Movimentazioni (Anno, Progressivo);
CREATE INDEX Movimentazioni_Anno ON Movimentazioni (Anno);
CREATE INDEX Movimentazioni_Stato ON Movimentazioni (Entrato, Annullato, Contabilizzato);
CREATE INDEX Movimentazioni_TargaAnno ON Movimentazioni (Targa, Anno);
CREATE INDEX Movimentazioni_DataOra ON Movimentazioni (DataOra);

CREATE TABLE Clienti (
  Id INTEGER PRIMARY KEY AUTOINCREMENT,
  Cliente YESNO DEFAULT -1,
  Titolo TEXT(20),
  Cognome TEXT(100),
  Nome TEXT(50),
  Contatto TEXT(100),
  Indirizzo TEXT(100),
  "Località" TEXT(50),
  Cap TEXT(10),
  Provincia TEXT(30),
  CF TEXT(20),
  Email TEXT(100),
  "Tel Casa" TEXT(30),
  "Tel Uff" TEXT(30),
  "Tel Cel" TEXT(30),
  "Tel Cel2" TEXT(30),
  "Tel Altro" TEXT(30),
  QualificaCliente TEXT(50),
  Note MEMO,
  Marca TEXT(30),
  VModello TEXT(50),
  Targa TEXT(10),
  Posto TEXT(30),
  Canone DOUBLE DEFAULT 0,
  DataScadenzaAssic DATE,
  DataUltimoPagamento DATE,
  SaldoEntrate DOUBLE DEFAULT 0,
  SaldoUscite DOUBLE DEFAULT 0,
  "Data Registrazione" DATE,
  DataUltimaModifica DATE,
  IdUtente LONG
);
CREATE INDEX Clienti_Nominativo ON Clienti (Cognome, Nome);
CREATE INDEX Clienti_Targa ON Clienti (Targa);
CREATE INDEX Clienti_Modo ON Clienti (Cliente, Cognome, Nome);

CREATE TABLE Cassa (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  IdCliente LONG REFERENCES Clienti (Id),
  IdUtente LONG,
  Data DATE,
  Descrizione TEXT(255),
  Entrata DOUBLE DEFAULT 0,
  Uscita DOUBLE DEFAULT 0,
  Esercizio TEXT(4)
);
CREATE INDEX Cassa_IdCliente ON Cassa (IdCliente);
CREATE INDEX Cassa_Data ON Cassa (Data);
CREATE INDEX Cassa_Esercizio ON Cassa (Esercizio);
CREATE INDEX Cassa_Descrizione ON Cassa (Descrizione);

CREATE TABLE Fascia (
  id TEXT(10) PRIMARY KEY,
  DescrizioneFascia TEXT(50),
  Importo CURRENCY DEFAULT 0,
  Minuti1Frazione LONG DEFAULT 0,
  ImportoSuccessivo CURRENCY DEFAULT 0,
  MinutiSucFrazione LONG DEFAULT 0
);

CREATE TABLE QualificaCliente (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  descrizione TEXT(50)
);

CREATE TABLE Autorizzazioni (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  Utente TEXT(50),
  Password TEXT(50),
  Master TEXT(1)
);
CREATE INDEX Autorizzazioni_Utente ON Autorizzazioni (Utente);

CREATE TABLE Accessi (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  IdAutorizzazioni LONG,
  Item LONG,
  Autorizzazione TEXT(10),
  Abilitato YESNO DEFAULT -1,
  Visibile YESNO DEFAULT -1,
  Password TEXT(50)
);
CREATE INDEX Accessi_Utente ON Accessi (IdAutorizzazioni, Item);

CREATE TABLE TabProgressivi (
  Anno TEXT(4) PRIMARY KEY,
  Progressivo LONG DEFAULT 0,
  EntrataPrecedente DOUBLE DEFAULT 0,
  UscitaPrecedente DOUBLE DEFAULT 0
);

CREATE TABLE Impostazioni (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  AnnoEsercizio TEXT(4),
  VerDatabase LONG,
  TgObbligatoria TEXT(20),
  OpAnnullare TEXT(20),
  OpModificare TEXT(20),
  OpContabilizzare TEXT(20),
  StampaEntrata TEXT(20),
  StampaUscita TEXT(20),
  FasciaDefault TEXT(10),
  IRagSoc TEXT(100),
  IAttivita1 TEXT(100),
  IAttivita2 TEXT(100),
  IAttivita3 TEXT(100),
  IIndirizzo TEXT(100),
  ICap TEXT(10),
  IPr TEXT(30),
  ILocalita TEXT(50),
  ICF TEXT(30),
  IEmail TEXT(100),
  ITel TEXT(30),
  IIndHttp TEXT(255),
  IIndFTP TEXT(255),
  ILoginFTP TEXT(50),
  IpswFTP TEXT(50),
  IproxyFTP TEXT(255),
  ILogoP LONGBINARY,
  ILogoS LONGBINARY
);

CREATE VIEW Q_Movimentazioni_Utenti AS
SELECT Movimentazioni.*,
       Autorizzazioni.Utente AS "Autorizzazioni.utente",
       Autorizzazioni_1.Utente AS "Autorizzazioni_1.utente"
FROM Movimentazioni
LEFT JOIN Autorizzazioni ON Autorizzazioni.id = Movimentazioni.IdUtente
LEFT JOIN Autorizzazioni AS Autorizzazioni_1 ON Autorizzazioni_1.id = Movimentazioni.IdUtenteOut;

CREATE VIEW Q_Clienti_Utenti AS
SELECT Clienti.*, Autorizzazioni.Utente AS Utente
FROM Clienti
LEFT JOIN Autorizzazioni ON Autorizzazioni.id = Clienti.IdUtente;
)SQL";

// The register's rows counted by year, state and block of 4096 ids, one row
// for each (NULL years too), kept by triggers: the list counts a million movements and tells the place of one of
// them by summing a few thousand of these rows, not by reading the register.
const char *const RegisterCountsTable = R"SQL(
CREATE TABLE ConteggiMovimenti (
  Anno TEXT(4),
  Entrato YESNO,
  Blocco LONG,
  Righe LONG
);
CREATE UNIQUE INDEX ConteggiMovimenti_Chiave ON ConteggiMovimenti (Anno, Entrato, Blocco);
)SQL";

// What a movement adds to its count and takes from it; %R is the row (NEW or OLD).
const char *const RegisterCountsAdd = R"SQL(
  UPDATE ConteggiMovimenti SET Righe = Righe + 1 WHERE Anno IS %R.Anno AND Entrato IS %R.Entrato AND Blocco = %R.id / 4096;
  INSERT INTO ConteggiMovimenti (Anno, Entrato, Blocco, Righe) SELECT %R.Anno, %R.Entrato, %R.id / 4096, 1
    WHERE NOT EXISTS (SELECT 1 FROM ConteggiMovimenti WHERE Anno IS %R.Anno AND Entrato IS %R.Entrato AND Blocco = %R.id / 4096);
)SQL";
const char *const RegisterCountsRemove = R"SQL(
  UPDATE ConteggiMovimenti SET Righe = Righe - 1 WHERE Anno IS %R.Anno AND Entrato IS %R.Entrato AND Blocco = %R.id / 4096;
)SQL";

const char *const RegisterCountsFill =
    "INSERT INTO ConteggiMovimenti (Anno, Entrato, Blocco, Righe) "
    "SELECT Anno, Entrato, id / 4096, count(*) FROM Movimentazioni GROUP BY Anno, Entrato, id / 4096";

// The cash book's receipts and payments by day, in ten-thousandths (each row
// taken to the nearest one, so the day sums are exact integers), kept by
// triggers: the balance of the whole book before a day sums a few hundred of
// these rows instead of the book. Rows without a date stand under a null day.
const char *const CashBookDaysTable = R"SQL(
CREATE TABLE CassaGiorni (
  Giorno TEXT(10),
  Entrate LONG,
  Uscite LONG,
  Righe LONG
);
CREATE UNIQUE INDEX CassaGiorni_Giorno ON CassaGiorni (Giorno);
)SQL";

// What a cash row adds to its day and takes from it; %R is the row (NEW or OLD).
const char *const CashBookDaysAdd = R"SQL(
  UPDATE CassaGiorni SET Entrate = Entrate + ifnull(round(%R.Entrata * 10000), 0),
    Uscite = Uscite + ifnull(round(%R.Uscita * 10000), 0), Righe = Righe + 1 WHERE Giorno IS substr(%R.Data, 1, 10);
  INSERT INTO CassaGiorni (Giorno, Entrate, Uscite, Righe)
    SELECT substr(%R.Data, 1, 10), ifnull(round(%R.Entrata * 10000), 0), ifnull(round(%R.Uscita * 10000), 0), 1
    WHERE NOT EXISTS (SELECT 1 FROM CassaGiorni WHERE Giorno IS substr(%R.Data, 1, 10));
)SQL";
const char *const CashBookDaysRemove = R"SQL(
  UPDATE CassaGiorni SET Entrate = Entrate - ifnull(round(%R.Entrata * 10000), 0),
    Uscite = Uscite - ifnull(round(%R.Uscita * 10000), 0), Righe = Righe - 1 WHERE Giorno IS substr(%R.Data, 1, 10);
  DELETE FROM CassaGiorni WHERE Giorno IS substr(%R.Data, 1, 10) AND Righe <= 0;
)SQL";

const char *const CashBookDaysFill =
    "INSERT INTO CassaGiorni (Giorno, Entrate, Uscite, Righe) SELECT substr(Data, 1, 10), total(round(Entrata * 10000)), "
    "total(round(Uscita * 10000)), count(*) FROM Cassa GROUP BY substr(Data, 1, 10)";

const char *const BackupCatalogue = R"SQL(
CREATE TABLE backup (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  Data DATE,
  Utilizzatore TEXT(50),
  Percorso TEXT(255),
  NomeFile TEXT(255),
  Note TEXT(255)
);
CREATE INDEX backup_Data ON backup (Data);
)SQL";

} // namespace

namespace {

// Text compares blind to case, as users expect of names, plates and codes.
QString caseBlindText(const QString &ddl)
{
    QString s = ddl;
    static const QRegularExpression text(QStringLiteral("\\b(TEXT\\(\\d+\\)|MEMO)(?=[ ,\\n])"));
    return s.replace(text, QStringLiteral("\\1 COLLATE ") + QLatin1String(CaseBlindCollation));
}

// A table of counts kept by three triggers on `source`: a row inserted adds
// itself, a row deleted takes itself away, a row changed (in `changedOf`, when
// `when` holds) does both. `add` and `remove` name the row as %R.
QString keptCounts(const char *table, const char *prefix, const char *source, const char *changedOf, const char *when,
                   const char *add, const char *remove)
{
    const auto of = [](const char *statements, const char *row) {
        return QString::fromUtf8(statements).replace(QLatin1String("%R"), QLatin1String(row));
    };
    return QString::fromUtf8(table)
           + QStringLiteral("CREATE TRIGGER %1_Entra AFTER INSERT ON %2 BEGIN%3END;\n"
                            "CREATE TRIGGER %1_Esce AFTER DELETE ON %2 BEGIN%4END;\n"
                            "CREATE TRIGGER %1_Cambia AFTER UPDATE OF %5 ON %2%6 BEGIN%4%3END;\n")
                 .arg(QLatin1String(prefix), QLatin1String(source), of(add, "NEW"), of(remove, "OLD"), QLatin1String(changedOf),
                      *when ? QStringLiteral("\nWHEN ") + QLatin1String(when) : QString());
}

QString registerCounts()
{
    return keptCounts(RegisterCountsTable, "ConteggiMovimenti", "Movimentazioni", "id, Anno, Entrato",
                      "OLD.id IS NOT NEW.id OR OLD.Anno IS NOT NEW.Anno OR OLD.Entrato IS NOT NEW.Entrato", RegisterCountsAdd,
                      RegisterCountsRemove);
}

QString cashBookDays()
{
    return keptCounts(CashBookDaysTable, "CassaGiorni", "Cassa", "Data, Entrata, Uscita", "", CashBookDaysAdd, CashBookDaysRemove);
}

// Runs `work` under a savepoint, not a transaction (the caller may be inside
// one): a failure leaves the file as it was and goes on to the caller.
void sottoSavepoint(Database &db, const QString &nome, const std::function<void()> &work)
{
    db.executeScript(QStringLiteral("SAVEPOINT ") + nome);
    try {
        work();
    } catch (const DbError &) {
        db.executeScript(QStringLiteral("ROLLBACK TO %1; RELEASE %1").arg(nome));
        throw;
    }
    db.executeScript(QStringLiteral("RELEASE ") + nome);
}

} // namespace

void createWorkingTables(Database &db)
{
    db.executeScript(caseBlindText(WorkingTables));
    db.executeScript(caseBlindText(registerCounts()));
    db.executeScript(cashBookDays());
}

void upgradeRegister(Database &db)
{
    const auto has = [&db](const char *type, const char *name) {
        return db.scalar(QStringLiteral("select 1 from sqlite_master where type = ? and name = ?"),
                         {QLatin1String(type), QLatin1String(name)})
            .isValid();
    };
    const bool counts = has("trigger", "ConteggiMovimenti_Cambia");
    const bool plates = has("index", "Movimentazioni_TargaAnno");
    if (counts && plates)
        return;
    sottoSavepoint(db, QStringLiteral("registro"), [&] {
        if (!counts) {
            db.executeScript(QStringLiteral("DROP TRIGGER IF EXISTS ConteggiMovimenti_Entra; DROP TRIGGER IF EXISTS ConteggiMovimenti_Esce;"
                                            "DROP TABLE IF EXISTS ConteggiMovimenti"));
            db.executeScript(caseBlindText(registerCounts()));
            db.execute(QLatin1String(RegisterCountsFill));
        }
        if (!plates) // the year beside the plate: a search by plate finds the first row by the index alone
            db.executeScript(QStringLiteral("CREATE INDEX Movimentazioni_TargaAnno ON Movimentazioni (Targa, Anno);"
                                            "DROP INDEX IF EXISTS Movimentazioni_Targa"));
    });
}

void upgradeCashBook(Database &db)
{
    // The table editor sorts and finds the cash book by its description.
    db.executeScript(QStringLiteral("CREATE INDEX IF NOT EXISTS Cassa_Descrizione ON Cassa (Descrizione)"));
    if (db.scalar(QStringLiteral("select 1 from sqlite_master where type = 'trigger' and name = 'CassaGiorni_Cambia'")).isValid())
        return;
    sottoSavepoint(db, QStringLiteral("giorni"), [&] {
        db.executeScript(QStringLiteral("DROP TRIGGER IF EXISTS CassaGiorni_Entra; DROP TRIGGER IF EXISTS CassaGiorni_Esce;"
                                        "DROP TABLE IF EXISTS CassaGiorni"));
        db.executeScript(cashBookDays());
        db.execute(QLatin1String(CashBookDaysFill));
    });
}

void upgradeRegistry(Database &db)
{
    // The registry's window counts and places the records of one mode by name.
    db.executeScript(QStringLiteral("CREATE INDEX IF NOT EXISTS Clienti_Modo ON Clienti (Cliente, Cognome, Nome)"));
}

void refillRegisterCounts(Database &db)
{
    if (db.scalar(QStringLiteral("select 1 from sqlite_master where type = 'table' and name = 'ConteggiMovimenti'")).isValid()) {
        db.execute(QStringLiteral("DELETE FROM ConteggiMovimenti"));
        db.execute(QLatin1String(RegisterCountsFill));
    }
    if (db.scalar(QStringLiteral("select 1 from sqlite_master where type = 'table' and name = 'CassaGiorni'")).isValid()) {
        db.execute(QStringLiteral("DELETE FROM CassaGiorni"));
        db.execute(QLatin1String(CashBookDaysFill));
    }
}

void insertDeliveredRows(Database &db, int minorVersion)
{
    // The yes/no settings hold the word for yes ("S") or no ("N") of the language files.
    db.execute(QStringLiteral(
                   "insert into Impostazioni (AnnoEsercizio, VerDatabase, TgObbligatoria, OpAnnullare, OpModificare, "
                   "OpContabilizzare, StampaEntrata, StampaUscita, FasciaDefault, IRagSoc, ILoginFTP) "
                   "values ('', ?, 'N', 'S', 'S', 'S', 'N', 'N', '01', 'Veltano', 'anonymous')"),
               {minorVersion});
    db.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password, Master) values ('administrator', null, 'S')"));
    db.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password, Master) values ('processo automatico', null, null)"));
    db.execute(QStringLiteral("insert into Fascia values ('01', ?, ?, 60, 0, 0)"),
               {QStringLiteral("Tariffa oraria"), qint64(2 * 10000)});
    db.execute(QStringLiteral("insert into Fascia values ('02', ?, ?, 60, ?, 30)"),
               {QStringLiteral("Prima ora e mezz'ore successive"), qint64(3 * 10000), qint64(15000)});
}

void createBackupCatalogue(Database &db)
{
    db.executeScript(caseBlindText(BackupCatalogue));
}

namespace {

// Builds a database under a scratch name and gives it its name only when
// complete, so that a failure never leaves a half-made file in its place.
bool writeIfMissing(const QString &path, const std::function<void(Database &)> &build)
{
    if (QFileInfo::exists(path))
        return false;
    const QString scratch = path + QStringLiteral(".new");
    QFile::remove(scratch);
    {
        Database db(scratch, QLatin1String(DatabaseKey), Database::Mode::Create);
        Transaction t(db);
        build(db);
        t.commit();
    }
    return QFile::rename(scratch, path);
}

} // namespace

QStringList writeDeliveredDatabases(const QString &folder, int minorVersion)
{
    QStringList written;
    QDir().mkpath(folder);
    const QString working = QDir(folder).filePath(QStringLiteral("basedati.mdb"));
    if (writeIfMissing(working, [&](Database &db) {
            createWorkingTables(db);
            insertDeliveredRows(db, minorVersion);
        }))
        written << working;
    const QString catalogue = QDir(folder).filePath(QStringLiteral("ElencoBackup.mdb"));
    if (writeIfMissing(catalogue, createBackupCatalogue))
        written << catalogue;
    return written;
}

} // namespace store::Schema
