// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Connections.h"
#include "store/Currency.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/FieldKind.h"
#include "store/Recordset.h"
#include "store/Schema.h"
#include "store/UnicodeText.h"

#include "support/Colonne.h"
#include "support/TestFiles.h"

#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;
using store::Currency;
using store::Database;
using store::DbError;
using store::FieldKind;
using store::Recordset;

namespace {

constexpr int NotADatabase = 26; // SQLITE_NOTADB
const QString Key = u"quartzel"_s;

// Inserts a movement of user 1 with plain SQL and returns its id.
qint64 addMovement(Database &db, const QString &targa, const QVariant &idUtenteOut = {})
{
    db.execute(u"insert into Movimentazioni (Anno, Progressivo, DataOra, Targa, IdFascia, Entrato, IdUtente, "
               "IdUtenteOut) values ('2026', 1, '2026-03-10 08:00:00', ?, '01', -1, 1, ?)"_s,
               {targa, idUtenteOut});
    return db.lastInsertId();
}

// Adds a row through `rs` with the given values and makes it the current one.
void addRow(Recordset &rs, const QList<std::pair<QString, QVariant>> &values)
{
    rs.AddNew();
    for (const auto &[name, value] : values)
        rs.setValue(name, value);
    rs.Update();
    rs.MoveLastModified();
}

} // namespace

class TestStore : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Database> m_db;

    // A scratch folder with the delivered databases, made on first use.
    QTemporaryDir &dir()
    {
        if (!m_folder) {
            m_folder = std::make_unique<QTemporaryDir>();
            if (!m_folder->isValid())
                qFatal("no scratch folder: %s", qPrintable(m_folder->errorString()));
            store::Schema::writeDeliveredDatabases(m_folder->path(), 7);
        }
        return *m_folder;
    }
    QString working() { return dir().filePath(u"basedati.mdb"_s); }
    QString catalogue() { return dir().filePath(u"ElencoBackup.mdb"_s); }
    Database &db()
    {
        if (!m_db)
            m_db = std::make_unique<Database>(working(), Key);
        return *m_db;
    }
    QVariant sql(const QString &query, const QVariantList &params = {}) { return db().scalar(query, params); }
    QString plateOf(qint64 id) { return sql(u"select Targa from Movimentazioni where id = ?"_s, {id}).toString(); }
    // Movements 1..n in one transaction, each bound by `bind(i)` into `insert`.
    void insertMovements(int n, const QString &insert, const std::function<QVariantList(int)> &bind)
    {
        store::Transaction t(db());
        store::Statement ins = db().prepare(insert);
        for (int i = 1; i <= n; ++i) {
            ins.reset();
            ins.bindAll(bind(i));
            ins.step();
        }
        t.commit();
    }

private slots:
    void cleanup()
    {
        store::Connections::closeAll();
        m_db.reset();
        m_folder.reset();
    }

    void openRejectsWrongKeyAndOtherFiles_data()
    {
        // file: what stands at the path opened; code: 0: any code
        colonne<QString, QString, int>({"file", "key", "code"});
        QTest::newRow("other password") << "working" << u"quartzel2"_s << NotADatabase;
        QTest::newRow("no password") << "working" << QString() << NotADatabase;
        QTest::newRow("junk bytes") << "junk" << Key << NotADatabase;
        QTest::newRow("database without password") << "plain" << Key << NotADatabase;
        QTest::newRow("missing file") << "missing" << Key << 0;
        QTest::newRow("folder") << "folder" << Key << 0;
    }
    void openRejectsWrongKeyAndOtherFiles()
    {
        QFETCH(QString, file); QFETCH(QString, key); QFETCH(int, code);
        QString path = dir().filePath(u"other.mdb"_s);
        if (file == "junk"_L1) {
            QByteArray bytes(8192, 0);
            for (int i = 0; i < bytes.size(); ++i)
                bytes[i] = char((i * 7919 + 13) % 251);
            writeBytes(path, bytes);
        } else if (file == "plain"_L1) {
            Database plain(path, QString(), Database::Mode::Create);
            plain.execute(u"create table t (x)"_s);
        } else if (file == "folder"_L1) {
            path = dir().path();
        } else if (file == "working"_L1) {
            path = working();
        }
        try {
            Database other(path, key);
            QFAIL("opened");
        } catch (const DbError &e) {
            if (code)
                QCOMPARE(e.code(), code);
            QVERIFY2(e.message().contains(path), qPrintable(e.message()));
            if (code == NotADatabase)
                QVERIFY2(e.message().contains("password"_L1), qPrintable(e.message()));
        }
        if (file == "missing"_L1)
            QVERIFY2(!QFileInfo::exists(path), "opening must not create the file");
        Database right(working(), Key); // a failed attempt leaves the working file intact
        QCOMPARE(right.scalar(u"select count(*) from Autorizzazioni"_s).toInt(), 2);
    }

    void executeReportsErrors()
    {
        QVERIFY_THROWS_EXCEPTION(DbError, db().execute(u"insert into Nowhere values (1)"_s));
        QVERIFY_THROWS_EXCEPTION(DbError, db().execute(u"   "_s));
        QVERIFY_THROWS_EXCEPTION(DbError, sql(u"select 'a' like 'a' escape '!!'"_s));
        QVERIFY(!sql(u"select id from Movimentazioni where id = -1"_s).isValid());
        QCOMPARE(db().execute(u"update Fascia set Minuti1Frazione = 30"_s), 2);
    }

    void likeMatch_data()
    {
        colonne<QString, QString, QString, bool>({"pattern", "text", "escape", "matches"});
        const QString no;
        QTest::newRow("empty both") << "" << "" << no << true;
        QTest::newRow("empty pattern") << "" << "a" << no << false;
        QTest::newRow("prefix") << "ab%" << "abcdef" << no << true;
        QTest::newRow("needs backtracking") << "a%b%c" << "axbxbyc" << no << true;
        QTest::newRow("order matters") << "a%b%c" << "axcyb" << no << false;
        QTest::newRow("repeated tail") << "%ana" << "banana" << no << true;
        QTest::newRow("underscore one") << "a_c" << "abc" << no << true;
        QTest::newRow("underscore not zero") << "a_c" << "ac" << no << false;
        QTest::newRow("underscore accent") << "_" << "à" << no << true;
        QTest::newRow("whole text") << "abc" << "abcd" << no << false;
        QTest::newRow("ascii case") << "ABC" << "abc" << no << true;
        QTest::newRow("grave lower-upper") << "à" << "À" << no << true;
        QTest::newRow("accent is not plain letter") << "e" << "è" << no << false;
        QTest::newRow("escaped percent") << "a!%c" << "a%c" << "!" << true;
        QTest::newRow("escaped underscore literal") << "a!_c" << "abc" << "!" << false;
        QTest::newRow("escaped inside wildcards") << "%!%%" << "sconto 50% oggi" << "!" << true;
        QTest::newRow("escaped escape") << "a!!b" << "a!b" << "!" << true;
        QTest::newRow("no escape char") << "a!%c" << "a!xyzc" << no << true;
        QTest::newRow("long pattern") << u"T"_s + QString(10000, u'%') + u"z"_s << "tXZ" << no << true;
        QTest::newRow("long pattern, no match") << u"t"_s + QString(10000, u'_') << "tx" << no << false;
        QTest::newRow("null text") << "a" << "NULL" << no << false;
    }
    void likeMatch()
    {
        QFETCH(QString, pattern); QFETCH(QString, text); QFETCH(QString, escape); QFETCH(bool, matches);
        QCOMPARE(store::likeMatch(pattern, text, escape.isEmpty() ? QChar() : escape.at(0)), matches);
        // The same through the LIKE operator of a connection.
        Database mem(u":memory:"_s, QString(), Database::Mode::Create);
        const QVariant value = text == "NULL"_L1 ? QVariant() : QVariant(text);
        const QVariant viaSql = escape.isEmpty() ? mem.scalar(u"select ? like ?"_s, {value, pattern})
                                                 : mem.scalar(u"select ? like ? escape ?"_s, {value, pattern, escape});
        if (!value.isValid())
            QVERIFY(viaSql.isNull()); // a Null text matches nothing
        else
            QCOMPARE(viaSql.toInt(), int(matches));
    }

    void caseBlindCollation()
    {
        QCOMPARE(sql(u"select 'À' = 'à' collate VNOCASE"_s).toInt(), 1);
        QCOMPARE(sql(u"select 'ÈRBA' = 'erba' collate VNOCASE"_s).toInt(), 0);
        // A pattern that changes from row to row is read anew for each.
        QCOMPARE(sql(u"select group_concat(p) from (select 'A%' p union all select 'B%' union all select 'a_m%') "
                     "where 'admin' like p"_s).toString(), u"A%,a_m%"_s);
        db().execute(u"create temp table words (w text)"_s);
        for (const char *w : {"b", "À", "a", "Z", "àb"})
            db().execute(u"insert into words values (?)"_s, {QString::fromUtf8(w)});
        store::Statement st = db().prepare(u"select w from words order by w collate VNOCASE"_s);
        QStringList order;
        while (st.step())
            order << st.value(0).toString();
        // Accented letters sort with their plain letter, not after 'z'; case is ignored.
        QCOMPARE(order, QStringList({u"a"_s, u"À"_s, u"àb"_s, u"b"_s, u"Z"_s}));
    }

    void currencyParse_data()
    {
        colonne<QString, bool, qint64>({"text", "ok", "raw"});
        QTest::newRow("comma") << "1,5" << true << qint64(15000);
        QTest::newRow("plus and blanks") << " +7.25 " << true << qint64(72500);
        QTest::newRow("no whole part") << ".5" << true << qint64(5000);
        QTest::newRow("four decimals") << "1234.5678" << true << qint64(12345678);
        QTest::newRow("largest whole") << "99999999999999" << true << qint64(999999999999990000);
        QTest::newRow("five decimals") << "12.34567" << false << qint64(0);
        QTest::newRow("letters") << "abc" << false << qint64(0);
        QTest::newRow("empty") << "" << false << qint64(0);
        QTest::newRow("point only") << "." << false << qint64(0);
        QTest::newRow("two points") << "1.2.3" << false << qint64(0);
        QTest::newRow("exponent") << "1e3" << false << qint64(0);
        QTest::newRow("inner blank") << "1 000" << false << qint64(0);
        QTest::newRow("non-latin digits") << u"١٢"_s << false << qint64(0);
        QTest::newRow("would overflow") << "999999999999999" << false << qint64(0);
        QTest::newRow("very long") << QString(60, u'9') << false << qint64(0);
    }
    void currencyParse()
    {
        QFETCH(QString, text); QFETCH(bool, ok); QFETCH(qint64, raw);
        Currency c = Currency::fromRaw(42);
        QCOMPARE(Currency::parse(text, &c), ok);
        QCOMPARE(c.raw(), ok ? raw : qint64(42)); // a failed parse leaves the target alone
    }

    void currencyPlainText_data()
    {
        colonne<qint64, QString>({"raw", "text"});
        QTest::newRow("zero") << qint64(0) << "0";
        QTest::newRow("whole") << qint64(30000) << "3";
        QTest::newRow("trailing zeros cut") << qint64(15000) << "1.5";
        QTest::newRow("leading zeros kept") << qint64(100) << "0.01";
        QTest::newRow("smallest negative") << qint64(-1) << "-0.0001";
        QTest::newRow("negative") << qint64(-125000) << "-12.5";
        QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << "-922337203685477.5808";
    }
    void currencyPlainText()
    {
        QFETCH(qint64, raw); QFETCH(QString, text);
        const Currency c = Currency::fromRaw(raw);
        QCOMPARE(c.toPlainText(), text);
        QCOMPARE(c.toPlainText(u','), QString(text).replace(u'.', u','));
        Currency back;
        if (raw > -Currency::Scale * 100000000000000LL) { // the parser takes at most 14 whole digits
            QVERIFY(Currency::parse(text, &back));
            QCOMPARE(back, c);
        }
    }

    void currencyFromDouble_data()
    {
        colonne<double, bool, qint64>({"value", "tie", "raw"});
        // Odd multiples of 1/32 are exact in binary and land exactly on .5 ten-thousandths.
        QTest::newRow("tie down to even") << 1.0 / 32 << true << qint64(312);
        QTest::newRow("tie up to even") << 3.0 / 32 << true << qint64(938);
        QTest::newRow("negative tie down") << -1.0 / 32 << true << qint64(-312);
        QTest::newRow("negative tie up") << -3.0 / 32 << true << qint64(-938);
        QTest::newRow("four decimals") << 1234.5678 << false << qint64(12345678);
        QTest::newRow("tenth") << 0.1 << false << qint64(1000);
        QTest::newRow("below half") << 0.00004 << false << qint64(0);
        QTest::newRow("above half") << 0.00006 << false << qint64(1);
    }
    void currencyFromDouble()
    {
        QFETCH(double, value); QFETCH(bool, tie); QFETCH(qint64, raw);
        if (tie)
            QCOMPARE(std::fabs(std::fmod(value * 10000, 1.0)), 0.5); // the case really is a tie
        QCOMPARE(Currency::fromDouble(value).raw(), raw);
    }

    void kindFromDeclaredType_data()
    {
        colonne<QString, int, int>({"declared", "kind", "size"});
        QTest::newRow("text sized") << "TEXT(20)" << int(FieldKind::Text) << 20;
        QTest::newRow("text spaced, lower case") << " text ( 255 ) " << int(FieldKind::Text) << 255;
        QTest::newRow("memo") << "MEMO" << int(FieldKind::Memo) << 0;
        QTest::newRow("long") << "LONG" << int(FieldKind::Long) << 0;
        QTest::newRow("counter") << "INTEGER" << int(FieldKind::Counter) << 0;
        QTest::newRow("currency") << "CURRENCY" << int(FieldKind::Currency) << 0;
        QTest::newRow("double") << "DOUBLE" << int(FieldKind::Double) << 0;
        QTest::newRow("date") << "DATE" << int(FieldKind::Date) << 0;
        QTest::newRow("yes/no") << "YESNO" << int(FieldKind::YesNo) << 0;
        QTest::newRow("binary") << "LONGBINARY" << int(FieldKind::Binary) << 0;
        QTest::newRow("no type") << "" << int(FieldKind::Unknown) << 0;
        QTest::newRow("foreign type") << "VARCHAR(10)" << int(FieldKind::Unknown) << 0;
        QTest::newRow("bad size") << "TEXT(abc)" << int(FieldKind::Unknown) << 0;
    }
    void kindFromDeclaredType()
    {
        QFETCH(QString, declared); QFETCH(int, kind); QFETCH(int, size);
        int got = -7;
        QCOMPARE(int(store::kindFromDeclaredType(declared, &got)), kind);
        QCOMPARE(got, size);
    }

    void deliveredDatabases()
    {
        QVERIFY(QFileInfo(working()).isFile() && QFileInfo(catalogue()).isFile());
        QVERIFY(!QFileInfo::exists(working() + u".new"_s));
        QCOMPARE(sql(u"select count(*) from Impostazioni"_s).toInt(), 1);
        QCOMPARE(sql(u"select VerDatabase from Impostazioni"_s).toInt(), 7);
        QCOMPARE(sql(u"select Utente from Autorizzazioni where id = 1"_s).toString(), u"administrator"_s);
        QVERIFY(sql(u"select Password from Autorizzazioni where id = 1"_s).isNull());
        QCOMPARE(sql(u"select group_concat(id) from (select id from Fascia order by id)"_s).toString(), u"01,02"_s);
        QCOMPARE(sql(u"select count(*) from sqlite_master where type = 'view' and name in "
                     "('Q_Movimentazioni_Utenti', 'Q_Clienti_Utenti')"_s).toInt(), 2);
        // Written again, the files already there are left as they are.
        const qint64 id = addMovement(db(), u"KEEP1"_s);
        QVERIFY(store::Schema::writeDeliveredDatabases(dir().path(), 8).isEmpty());
        QCOMPARE(plateOf(id), u"KEEP1"_s);
        QCOMPARE(sql(u"select VerDatabase from Impostazioni"_s).toInt(), 7);
    }

    void fieldsThroughView_data()
    {
        colonne<QString, int, QString>({"name", "kind", "table"});
        const QString m = u"Movimentazioni"_s;
        QTest::newRow("Targa") << "Targa" << int(FieldKind::Text) << m;
        QTest::newRow("Importo") << "Importo" << int(FieldKind::Currency) << m;
        QTest::newRow("Progressivo") << "Progressivo" << int(FieldKind::Long) << m;
        QTest::newRow("operator at entry") << "Autorizzazioni.utente" << int(FieldKind::Text) << "Autorizzazioni";
    }
    void fieldsThroughView()
    {
        QFETCH(QString, name); QFETCH(int, kind); QFETCH(QString, table);
        Recordset view(db(), u"select * from Q_Movimentazioni_Utenti where id = -1"_s);
        QVERIFY(view.updatable());
        QCOMPARE(view.baseTable(), u"Movimentazioni"_s);
        const store::FieldInfo &f = view.field(name);
        QCOMPARE(int(f.kind), kind);
        QCOMPARE(f.table, table);
        // The size seen through the view is the table's own.
        Recordset base(db(), u"select * from %1 where 0"_s.arg(table));
        QCOMPARE(f.size, base.field(f.column).size);
        QCOMPARE(f.size > 0, kind == int(FieldKind::Text));
    }

    void navigation()
    {
        QList<qint64> ids;
        for (int i = 0; i < 4; ++i)
            ids << addMovement(db(), u"N%1"_s.arg(i));
        Recordset rs(db(), u"select * from Movimentazioni order by id"_s);
        QVERIFY(rs.bof() && !rs.eof());
        QCOMPARE(rs.RecordCount(), 4);
        QVERIFY_THROWS_EXCEPTION(DbError, rs.value(u"id"_s));
        rs.MoveFirst();
        QCOMPARE(rs.value(u"id"_s).toLongLong(), ids[0]);
        rs.MovePrevious();
        QVERIFY(rs.bof());
        rs.MoveNext();
        QCOMPARE(rs.key().toLongLong(), ids[0]);
        rs.MoveLast();
        QCOMPARE(rs.AbsolutePosition(), 3);
        QCOMPARE(rs.value(u"targa"_s).toString(), u"N3"_s);
        rs.MoveNext();
        rs.MoveNext(); // past the end stays there
        QVERIFY(rs.eof() && !rs.bof());
        rs.MovePrevious();
        QCOMPARE(rs.key().toLongLong(), ids[3]);
        QVERIFY(rs.setAbsolutePosition(1));
        QCOMPARE(rs.key().toLongLong(), ids[1]);
        QVERIFY(!rs.setAbsolutePosition(4) && !rs.setAbsolutePosition(-2));
        QCOMPARE(rs.AbsolutePosition(), 1);
        QVERIFY_THROWS_EXCEPTION(DbError, rs.value(u"NoSuchField"_s));

        // A deleted row stays current until the next move, which reaches the row after it; moving back skips it.
        QVERIFY(rs.setAbsolutePosition(2));
        rs.Delete();
        QVERIFY_THROWS_EXCEPTION(DbError, rs.value(u"Targa"_s));
        QVERIFY(!sql(u"select id from Movimentazioni where id = ?"_s, {ids[2]}).isValid());
        QCOMPARE(rs.RecordCount(), 3);
        rs.MoveNext();
        QCOMPARE(rs.key().toLongLong(), ids[3]);
        rs.Delete();
        rs.MoveNext();
        QVERIFY(rs.eof());
        rs.MovePrevious();
        QCOMPARE(rs.key().toLongLong(), ids[1]);
        QCOMPARE(sql(u"select count(*) from Movimentazioni"_s).toInt(), 2);

        Recordset none(db(), u"select * from Movimentazioni where Targa = 'nobody'"_s);
        QVERIFY(none.isEmpty() && none.RecordCount() == 0);
        none.MoveFirst();
        QVERIFY(none.bof());
        none.MoveLast();
        QVERIFY(none.bof());
        QVERIFY_THROWS_EXCEPTION(DbError, none.Edit());

        Recordset computed(db(), u"select upper(Targa) as t from Movimentazioni order by id"_s);
        QVERIFY(!computed.updatable());
        computed.MoveLast();
        QCOMPARE(computed.value(0).toString(), u"N1"_s);
        QVERIFY_THROWS_EXCEPTION(DbError, computed.Edit());
    }

    // A row added to an empty set, then to a set partly read, where a walk meets each row once; a row added and
    // deleted before the first count is not counted.
    void addNew()
    {
        Recordset rs(db(), u"select * from Movimentazioni where id = -1"_s);
        QVERIFY(rs.updatable() && rs.isEmpty());
        addRow(rs, {{u"Targa"_s, u"NEW001"_s}, {u"Anno"_s, u"2026"_s}});
        const qint64 id = sql(u"select max(id) from Movimentazioni"_s).toLongLong();
        QCOMPARE(rs.value(u"id"_s).toLongLong(), id);
        QCOMPARE(rs.value(u"Targa"_s).toString(), u"NEW001"_s);
        QCOMPARE(rs.value(u"Entrato"_s).toBool(), false); // column default
        QCOMPARE(rs.RecordCount(), 1);
        QCOMPARE(sql(u"select Anno from Movimentazioni where id = ?"_s, {id}).toString(), u"2026"_s);

        addMovement(db(), u"C2"_s);
        Recordset partly(db(), u"select * from Movimentazioni order by id"_s);
        partly.MoveFirst();
        partly.AddNew();
        partly.setValue(u"Targa"_s, u"C3"_s);
        partly.Update();
        QCOMPARE(partly.RecordCount(), 3);
        QStringList seen;
        for (partly.MoveFirst(); !partly.eof(); partly.MoveNext())
            seen << partly.value(u"Targa"_s).toString();
        seen.sort();
        QCOMPARE(seen, QStringList({u"C2"_s, u"C3"_s, u"NEW001"_s}));
        partly.Requery();
        QCOMPARE(partly.RecordCount(), 3);
        QCOMPARE(partly.AbsolutePosition(), 0);

        Recordset again(db(), u"select * from Movimentazioni order by id"_s);
        again.MoveFirst();
        addRow(again, {{u"Targa"_s, u"C4"_s}});
        again.Delete();
        QCOMPARE(again.RecordCount(), 3);
        QCOMPARE(sql(u"select count(*) from Movimentazioni"_s).toInt(), 3);

        Recordset bands(db(), u"select * from Fascia order by id"_s); // a key typed by the user
        addRow(bands, {{u"id"_s, u"03"_s}});
        QCOMPARE(bands.key().toString(), u"03"_s);
        QCOMPARE(sql(u"select count(*) from Fascia"_s).toInt(), 3);
    }

    void editThroughViewWritesBaseTable()
    {
        const qint64 id = addMovement(db(), u"OLD"_s);
        Recordset rs(db(), u"select * from Q_Movimentazioni_Utenti where id = ?"_s, {id});
        rs.MoveFirst();
        rs.Edit();
        rs.setValue(u"Targa"_s, u"NEWPLATE"_s);
        rs.setValue(u"IdUtenteOut"_s, 2);
        QVERIFY_THROWS_EXCEPTION(DbError, rs.setValue(u"Autorizzazioni.utente"_s, u"x"_s));
        rs.Update();
        QCOMPARE(plateOf(id), u"NEWPLATE"_s);
        QCOMPARE(sql(u"select group_concat(Utente) from Autorizzazioni"_s).toString(),
                 u"administrator,processo automatico"_s);
        QCOMPARE(rs.value(u"Targa"_s).toString(), u"NEWPLATE"_s);
        QCOMPARE(rs.value(u"Autorizzazioni_1.utente"_s).toString(), u"processo automatico"_s);

        // A cancelled edit or addition writes nothing.
        rs.Edit();
        rs.setValue(u"Targa"_s, u"CHANGED"_s);
        QCOMPARE(rs.value(u"Targa"_s).toString(), u"CHANGED"_s); // the edit buffer
        rs.CancelUpdate();
        QCOMPARE(rs.value(u"Targa"_s).toString(), u"NEWPLATE"_s);
        rs.AddNew();
        rs.setValue(u"Targa"_s, u"NEVER"_s);
        rs.CancelUpdate();
        QVERIFY_THROWS_EXCEPTION(DbError, rs.Update());
        QCOMPARE(sql(u"select group_concat(Targa) from Movimentazioni"_s).toString(), u"NEWPLATE"_s);
    }

    void findFirst_data()
    {
        // position: -1: no match
        colonne<QString, int>({"wanted", "position"});
        QTest::newRow("same case") << "AB123CD" << 1;
        QTest::newRow("lower case") << "ab123cd" << 1;
        QTest::newRow("accented lower") << u"città"_s << 2;
        QTest::newRow("no match") << "ZZ999ZZ" << -1;
        QTest::newRow("prefix is not a match") << "AB123" << -1;
    }
    void findFirst()
    {
        QFETCH(QString, wanted); QFETCH(int, position);
        for (const char *t : {"XY000XY", "AB123CD", "CITTÀ", "AB123CD"})
            addMovement(db(), QString::fromUtf8(t));
        Recordset rs(db(), u"select * from Movimentazioni order by id"_s);
        rs.MoveLast();
        QCOMPARE(rs.FindFirst(u"Targa"_s, wanted), position >= 0);
        QCOMPARE(rs.AbsolutePosition(), position >= 0 ? position : 3); // the first match, or unmoved
        if (position >= 0)
            QCOMPARE(rs.value(u"Targa"_s).toString().compare(wanted, Qt::CaseInsensitive), 0);
    }

    void typedValuesRoundTrip()
    {
        const QDateTime when(QDate(2026, 3, 10), QTime(14, 5, 9, 678));
        Recordset rs(db(), u"select * from Movimentazioni where id = -1"_s);
        addRow(rs, {{u"Importo"_s, QVariant::fromValue(Currency::fromRaw(12345678))}, {u"DataOra"_s, when},
                    {u"Entrato"_s, true}, {u"Annullato"_s, false}, {u"NoteImporto"_s, QVariant()}});
        const QVariant id = rs.key();
        QCOMPARE(rs.value(u"Importo"_s).value<Currency>().toPlainText(), u"1234.5678"_s);
        QCOMPARE(rs.value(u"DataOra"_s).toDateTime(), when.addMSecs(-678)); // to the second
        QCOMPARE(rs.value(u"Entrato"_s).toBool(), true);
        QCOMPARE(rs.value(u"Annullato"_s).toBool(), false);
        QVERIFY(rs.value(u"NoteImporto"_s).isNull() && rs.value(u"DataOraOut"_s).isNull());
        const auto raw = [&](const char *column) { // what the file holds
            return sql(u"select %1 from Movimentazioni where id = ?"_s.arg(QLatin1String(column)), {id});
        };
        QCOMPARE(raw("Importo").toLongLong(), 12345678);
        QCOMPARE(raw("typeof(Importo)").toString(), u"integer"_s);
        QCOMPARE(raw("DataOra").toString(), u"2026-03-10 14:05:09"_s);
        QCOMPARE(raw("Entrato").toInt(), -1);
        QCOMPARE(raw("Annullato").toInt(), 0);

        rs.Edit();
        rs.setValue(u"Importo"_s, 2.5); // a floating amount becomes ten-thousandths
        rs.setValue(u"Entrato"_s, false);
        const int size = rs.field(u"Targa"_s).size;
        QVERIFY_THROWS_EXCEPTION(DbError, rs.setValue(u"Targa"_s, QString(size + 1, u'X'))); // too long: refused alone
        rs.Update();
        QCOMPARE(raw("Importo").toLongLong(), 25000);
        QCOMPARE(raw("Entrato").toInt(), 0);
        QVERIFY(raw("Targa").isNull());
        rs.Edit();
        const QString full(size, u'È'); // characters are counted, not bytes
        rs.setValue(u"Targa"_s, full);
        rs.Update();
        QCOMPARE(raw("Targa").toString(), full);
        const QDate day(2026, 3, 10); // stored dates compare as times in SQL
        QCOMPARE(sql(u"select count(*) from Movimentazioni where DataOra between ? and ?"_s,
                     {day.startOfDay(), day.addDays(1).startOfDay()}).toInt(), 1);
    }

    void valuesAreStoredExactly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("single quote") << "O'Brien d'Amico";
        QTest::newRow("percent and underscore") << "100% a_b";
        QTest::newRow("accents") << u"àèéìòù ÀÈÉÌÒÙ"_s;
        QTest::newRow("double quotes") << "il \"vecchio\" garage";
        QTest::newRow("sql text") << "'); delete from Movimentazioni; --";
        QTest::newRow("parameter marks") << "? ?1 :a";
    }
    void valuesAreStoredExactly()
    {
        QFETCH(QString, text);
        addMovement(db(), u"OTHER"_s);
        Recordset rs(db(), u"select * from Q_Movimentazioni_Utenti where id = -1"_s);
        addRow(rs, {{u"Note"_s, text}});
        QCOMPARE(sql(u"select Note from Movimentazioni where id = ?"_s, {rs.key()}).toString(), text);
        QCOMPARE(sql(u"select count(*) from Movimentazioni"_s).toInt(), 2);
        Recordset all(db(), u"select * from Movimentazioni"_s);
        QVERIFY(all.FindFirst(u"Note"_s, text));
        QCOMPARE(all.value(u"Note"_s).toString(), text);
    }

    void largeSetIsReadLazily()
    {
        constexpr int Rows = 20000; // more than the 64 cached blocks of 256 rows
        insertMovements(Rows, u"insert into Movimentazioni (Anno, Progressivo, Targa, Importo, IdUtente, IdUtenteOut) values ('2026', ?, ?, ?, 1, ?)"_s,
                        [](int i) { return QVariantList{i, u"T%1"_s.arg(i, 5, 10, QLatin1Char('0')), qint64(i) * 100, i % 2 ? QVariant(2) : QVariant()}; });
        QVector<qint64> ids; // the expected order, read plainly
        QHash<qint64, QString> plates;
        for (auto st = db().prepare(u"select id, Targa from Movimentazioni order by id desc"_s); st.step();) {
            ids << st.value(0).toLongLong();
            plates.insert(ids.last(), st.value(1).toString());
        }
        QCOMPARE(ids.size(), Rows);

        // Every other movement is still open: the view keeps it, with no operator at exit.
        Recordset rs(db(), u"select * from Q_Movimentazioni_Utenti order by id desc"_s);
        QCOMPARE(rs.RecordCount(), Rows); // before any row is read
        QVERIFY(rs.bof());
        const auto check = [&](qint64 pos) {
            if (!rs.setAbsolutePosition(pos))
                return false;
            const qint64 id = rs.key().toLongLong();
            return id == ids[pos] && rs.value(u"Targa"_s).toString() == plates[id]
                && rs.value(u"Autorizzazioni.utente"_s).toString() == "administrator"_L1
                && rs.value(u"Autorizzazioni_1.utente"_s).isNull() == rs.value(u"IdUtenteOut"_s).isNull();
        };
        QVERIFY(check(Rows - 1));
        // An edit far down; the walk over every block then drops its block from the cache and reads it again.
        QVERIFY(check(17000));
        const qint64 far = rs.key().toLongLong();
        rs.Edit();
        rs.setValue(u"Targa"_s, u"FARAWAY"_s);
        rs.Update();
        QCOMPARE(plateOf(far), u"FARAWAY"_s);
        plates[far] = u"FARAWAY"_s;
        for (qint64 pos = 0; pos < Rows; pos += 97) // every block, more than the cache holds
            QVERIFY2(check(pos), qPrintable(QString::number(pos)));
        QVERIFY(check(17000));
        QVERIFY(!rs.setAbsolutePosition(Rows));

        rs.MoveLast();
        QCOMPARE(rs.key().toLongLong(), ids.last());
        rs.MovePrevious();
        QCOMPARE(rs.key().toLongLong(), ids[Rows - 2]);
        qint64 n = 0;
        bool inOrder = true;
        for (rs.MoveFirst(); !rs.eof(); rs.MoveNext())
            inOrder = inOrder && rs.key().toLongLong() == ids[n++];
        QVERIFY(inOrder);
        QCOMPARE(n, Rows);
    }

    // A row found deep by its count: the keys around it are read both ways by the
    // values of the order, gaps fill from the nearer side, edits keep the places.
    void deepRowByCount_data()
    {
        QTest::addColumn<QString>("order");
        QTest::newRow("year, id") << u"Anno, id"_s;                     // no-year rows first
        QTest::newRow("year desc, id desc") << u"Anno desc, id desc"_s; // no-year rows last
    }

    void deepRowByCount()
    {
        QFETCH(QString, order);
        constexpr int Rows = 6000; // years interleaved, so that the order is not that of the ids
        insertMovements(Rows, u"insert into Movimentazioni (Anno, Progressivo, Targa, IdUtente) values (?, ?, ?, 1)"_s, [](int i) {
            return QVariantList{i % 50 == 0 ? QVariant() : QVariant(QString::number(2024 + i % 3)), i, u"T%1"_s.arg(i)};
        });
        const QString query = u"select * from Q_Movimentazioni_Utenti order by "_s + order;
        const auto expected = [&] {
            QVector<qint64> ids;
            for (auto st = db().prepare(u"select id from Movimentazioni order by "_s + order); st.step();)
                ids << st.value(0).toLongLong();
            return ids;
        };
        // The counter a set's maker would give, here from the whole order read plainly.
        store::RowCounter counter{[&] { return qint64(expected().size()); },
                                  [&](const QVariant &key) -> std::optional<qint64> {
                                      if (const qint64 at = expected().indexOf(key.toLongLong()); at >= 0)
                                          return at;
                                      return std::nullopt;
                                  },
                                  [&](qint64 pos) { return pos < Rows ? QVariant(expected().value(pos)) : QVariant(); }};
        Recordset rs(db(), query, {}, counter);
        QVector<qint64> ids = expected();
        QCOMPARE(rs.RecordCount(), Rows);
        const auto keyAt = [&](qint64 pos) { return rs.setAbsolutePosition(pos) ? rs.key().toLongLong() : -1; };

        QCOMPARE(keyAt(Rows - 3), ids[Rows - 3]); // a jump, by the key at that place
        QVERIFY(!rs.setAbsolutePosition(Rows));
        QCOMPARE(rs.positionOfKey(ids[40]), 40); // near the start: read on
        QCOMPARE(rs.positionOfKey(999999), -1);
        const qint64 deep = 4500;
        QCOMPARE(rs.positionOfKey(ids[deep]), deep);
        for (qint64 pos = deep - 700; pos <= deep + 700; pos += 7) // beyond a block both ways
            QCOMPARE(keyAt(pos), ids[pos]);
        QCOMPARE(rs.value(u"Targa"_s).toString(), plateOf(ids[deep + 700]));
        const qint64 nulls = order.contains(u"desc"_s) ? Rows - 10 : 10; // a row among those without a year
        QCOMPARE(rs.positionOfKey(ids[nulls]), nulls);

        // Edits in the run: a delete closes up, an added row stands at the end of the rows known.
        QCOMPARE(rs.positionOfKey(ids[deep]), deep);
        rs.setAbsolutePosition(deep);
        rs.Delete();
        ids.removeAt(deep);
        rs.MoveNext();
        QCOMPARE(rs.key().toLongLong(), ids[deep]);
        addRow(rs, {{u"Targa"_s, u"NEW"_s}});
        QCOMPARE(rs.value(u"Targa"_s).toString(), u"NEW"_s);

        // The whole set in order, the gap read from both sides; then the last row by a jump.
        Recordset again(db(), query, {}, counter);
        ids = expected();
        QCOMPARE(again.positionOfKey(ids[3000]), 3000);
        again.setAbsolutePosition(3000); // the current row keeps its run: no jump away from it
        bool inOrder = true;
        for (qint64 pos = 0; pos < ids.size(); ++pos)
            inOrder = inOrder && again.setAbsolutePosition(pos) && again.key().toLongLong() == ids[pos];
        QVERIFY(inOrder);
        QVERIFY(!again.setAbsolutePosition(ids.size()));
        again.MoveLast();
        QCOMPARE(again.key().toLongLong(), ids.last());
        QCOMPARE(again.RecordCount(), ids.size());
    }

    void connectionsAreShared()
    {
        Database &a = store::Connections::get(working());
        QCOMPARE(&store::Connections::get(dir().path() + u"/./basedati.mdb"_s), &a);
        QVERIFY(store::Connections::isOpen(working()));
        a.execute(u"create temp table probe (x)"_s);
        store::Connections::close(working());
        QVERIFY(!store::Connections::isOpen(working()));
        Database &b = store::Connections::get(working()); // the same object on a new handle: the temporary table is gone
        QCOMPARE(&b, &a);
        QCOMPARE(b.scalar(u"select count(*) from sqlite_temp_master where name = 'probe'"_s).toInt(), 0);
        QCOMPARE(b.scalar(u"select count(*) from Fascia"_s).toInt(), 2);

        QVERIFY_THROWS_EXCEPTION(DbError, store::Connections::get(catalogue(), u"wrong"_s));
        QVERIFY(!store::Connections::isOpen(catalogue()));
        QCOMPARE(store::Connections::get(catalogue()).scalar(u"select count(*) from backup"_s).toInt(), 0);
    }

    void keyFromConnect_data()
    {
        colonne<QString, QString>({"connect", "key"});
        QTest::newRow("lower") << ";pwd=quartzel" << "quartzel";
        QTest::newRow("among others") << "MS Access;DSN=x;Pwd=abc;UID=me" << "abc";
        QTest::newRow("empty") << "" << "";
        QTest::newRow("junk") << "quartzel" << "";
        QTest::newRow("other key") << ";UID=quartzel" << "";
        QTest::newRow("report form") << ";pwd=;PWD=quartzel" << "quartzel";
    }
    void keyFromConnect()
    {
        QFETCH(QString, connect); QFETCH(QString, key);
        QCOMPARE(store::keyFromConnect(connect), key);
    }

    // Left without commit, or failing before it, a transaction leaves nothing; committed, another connection sees it.
    void transactionRollsBackUnlessCommitted()
    {
        for (const bool fallisce : {false, true}) {
            try {
                store::Transaction t(db());
                addMovement(db(), u"GONE"_s);
                if (fallisce)
                    db().execute(u"insert into Nowhere values (1)"_s);
            } catch (const DbError &) {
            }
            QCOMPARE(sql(u"select count(*) from Movimentazioni"_s).toInt(), 0);
        }
        {
            store::Transaction t(db());
            addMovement(db(), u"KEPT"_s);
            t.commit();
        }
        QCOMPARE(Database(working(), Key).scalar(u"select Targa from Movimentazioni"_s).toString(), u"KEPT"_s);
    }
};

QTEST_GUILESS_MAIN(TestStore)
#include "tst_store.moc"
