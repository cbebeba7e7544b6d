// SPDX-License-Identifier: GPL-3.0-or-later
// Tests of the frame logic: shared routines, language texts, settings store and start-up steps.
#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"
#include "frame/Startup.h"
#include "store/Database.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"

#include "support/Colonne.h"

#include <QDate>
#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using frame::pub;
using Table = QVector<frame::TestoLinguaVoce>;

namespace {

const struct {
    const char *campo;
    bool frame::PublicState::*flag;
} kOpzioni[] = {
    {"TgObbligatoria", &frame::PublicState::TgObbligatoria},
    {"OpAnnullare", &frame::PublicState::OpAnnullare},
    {"OpModificare", &frame::PublicState::OpModificare},
    {"OpContabilizzare", &frame::PublicState::OpContabilizzare},
    {"StampaEntrata", &frame::PublicState::StampaEntrata},
    {"StampaUscita", &frame::PublicState::StampaUscita},
};

const QString kSection = QLatin1String(frame::SettingsStore::Section);

QString sourceDir() { return QStringLiteral(VELTANO_SOURCE_DIR "/"); }

Table parse(const QByteArray &bytes)
{
    Table t;
    frame::LeggiTestiLingua(bytes, t);
    return t;
}

QStringList keysOf(const Table &t)
{
    QStringList r;
    for (const auto &v : t)
        r << v.chiave;
    return r;
}

// Each line as read: key, separator, text.
QStringList righe(const Table &t)
{
    QStringList r;
    for (const auto &v : t)
        r << v.chiave + QLatin1Char(';') + v.testo;
    return r;
}

Table parseLanguageFile(const QString &name)
{
    return parse(bytesOf(sourceDir() + QStringLiteral("Language/") + name + QStringLiteral(".Res")));
}

QString year() { return QString::number(QDate::currentDate().year()); }

// A typed setting read back as a comparable value; none reads as an invalid QVariant.
template <typename T>
QVariant comeVariante(const std::optional<T> &v)
{
    return v ? QVariant::fromValue(*v) : QVariant();
}

// The store's setting under any case of its key, as its typed reader gives it.
QVariant letturaRegistro(const QString &chiave)
{
    const frame::Preferenze &p = frame::preferenze();
    const QHash<QString, std::function<QVariant()>> letture{
        {QStringLiteral("Pathdata"), [&] { return QVariant(p.pathData()); }},
        {QStringLiteral("lingua"), [&] { return QVariant(p.lingua()); }},
        {QStringLiteral("Avvio"), [&] { return QVariant(p.avvio()); }},
        {QStringLiteral("InsertPremuto"), [&] { return QVariant(p.insertPremuto()); }},
        {QStringLiteral("UltimoUtente"), [&] { return QVariant(p.ultimoUtente()); }},
        {QStringLiteral("MainLeft"), [&] { return QVariant(p.mainLeft()); }},
        {QStringLiteral("MainWidth"), [&] { return comeVariante(p.mainWidth()); }},
        {QStringLiteral("BarraStumenti"), [&] { return QVariant(p.barraStrumenti()); }},
        {QStringLiteral("VerDatabase"), [&] { return comeVariante(p.verDatabaseLocale()); }},
        {QStringLiteral("PathBackup"), [&] { return QVariant(p.pathBackup()); }},
        {QStringLiteral("AutoBackup"), [&] { return QVariant(p.autoBackup()); }},
        {QStringLiteral("AutoBackupCont"), [&] { return QVariant(p.autoBackupCont()); }},
        {QStringLiteral("Path"), [&] { return QVariant(p.pathProgramma()); }},
        {QStringLiteral("CompattaLocadati"), [&] { return QVariant(p.compattaLocadati()); }},
    };
    for (auto l = letture.cbegin(); l != letture.cend(); ++l)
        if (l.key().compare(chiave, Qt::CaseInsensitive) == 0)
            return l.value()();
    qFatal("no reader for %s", qPrintable(chiave));
}

} // namespace

class TestFrame : public QObject {
    Q_OBJECT

    frame::PublicState m_saved;

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        const QString file = frame::SettingsStore::fileName();
        QVERIFY2(file.contains(QLatin1String(".qttest")), qPrintable(file));
    }
    void init()
    {
        m_saved = pub();
        QFile::remove(frame::SettingsStore::fileName());
    }
    void cleanup()
    {
        pub() = m_saved;
        QFile::remove(frame::SettingsStore::fileName());
    }

    // ApiciSQL, and RaddoppiaApici on the text between the outer apostrophes; then the quoted text read back through
    // SQL, and the reads by query of the row it names.
    void apiciSql_data()
    {
        // atteso: null: the round trip only
        colonne<QVariant, QString>({"valore", "atteso"});
        QTest::newRow("null") << QVariant() << QStringLiteral("''");
        QTest::newRow("empty") << QVariant(QString()) << QStringLiteral("''");
        QTest::newRow("plain") << QVariant(QStringLiteral("abc")) << QStringLiteral("'abc'");
        QTest::newRow("apostrophe") << QVariant(QStringLiteral("l'auto")) << QStringLiteral("'l''auto'");
        QTest::newRow("first and last") << QVariant(QStringLiteral("'a'")) << QStringLiteral("'''a'''");
        QTest::newRow("run") << QVariant(QStringLiteral("a'''b")) << QStringLiteral("'a''''''b'");
        QTest::newRow("quotes and percent untouched")
            << QVariant(QStringLiteral("say \"hi\" 50% _x")) << QStringLiteral("'say \"hi\" 50% _x'");
        QTest::newRow("number") << QVariant(12) << QStringLiteral("'12'");
        QTest::newRow("lone apostrophe") << QVariant(QStringLiteral("'")) << QString();
        QTest::newRow("injection") << QVariant(QStringLiteral("x'; drop table Fascia; --")) << QString();
        QTest::newRow("quotes percent underscore") << QVariant(QStringLiteral("a\"b%c_d\\e")) << QString();
        QTest::newRow("accents") << QVariant(QStringLiteral("Città perché l'è così: àèìòù ÀÈ ß € ✓")) << QString();
        QTest::newRow("line break") << QVariant(QStringLiteral("one'\ntwo")) << QString();
        QTest::newRow("10000 accented") << QVariant(QStringLiteral("é'").repeated(5000)) << QString();
    }
    void apiciSql()
    {
        QFETCH(QVariant, valore); QFETCH(QString, atteso);
        const QString testo = valore.toString();
        if (!atteso.isNull()) {
            QCOMPARE(frame::ApiciSQL(valore), atteso);
            QCOMPARE(frame::RaddoppiaApici(testo), atteso.mid(1, atteso.size() - 2));
        }
        TestDatabase db;
        auto &base = frame::basedati();
        QCOMPARE(base.scalar(QStringLiteral("select ") + frame::ApiciSQL(testo)).toString(), testo);

        base.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values (?, 'pw')"), {testo});
        const QString sql = QStringLiteral("select * from Autorizzazioni where Utente = ") + frame::ApiciSQL(testo);
        QCOMPARE(frame::LeggeTestoSQL(sql, QStringLiteral("Utente")), testo);
        QCOMPARE(frame::LeggeTestoSQL(sql, QStringLiteral("Password")), QStringLiteral("pw"));
        QVERIFY(base.scalar(QStringLiteral("select count(*) from Fascia")).toLongLong() > 0);
        // A null field reads as "" or as the default given; no row reads as nothing.
        QCOMPARE(frame::LeggeTestoSQL(sql, QStringLiteral("master")), QString());
        QCOMPARE(frame::LeggiCampoSQL(sql, QStringLiteral("Password")).toString(), QStringLiteral("pw"));
        QCOMPARE(frame::LeggiCampoSQL(sql, QStringLiteral("Master"), QStringLiteral("dflt")), QVariant(QStringLiteral("dflt")));
        QCOMPARE(frame::LeggiCampoSQL(sql, QStringLiteral("Master"), 0), QVariant(0));
        const QVariant vuoto = frame::LeggiCampoSQL(sql, QStringLiteral("Master"));
        QVERIFY(vuoto.isValid());
        QCOMPARE(vuoto.toString(), QString());
        const QString none = QStringLiteral("select * from Autorizzazioni where Utente = 'nobody'");
        QCOMPARE(frame::LeggeTestoSQL(none, QStringLiteral("Utente")), QString());
        QVERIFY(!frame::LeggiCampoSQL(none, QStringLiteral("Utente")).isValid());
        QVERIFY(!frame::LeggiCampoSQL(none, QStringLiteral("Utente"), QStringLiteral("dflt")).isValid());
    }

    // The small text routines, one table: routine, argument, result.
    void testi_data()
    {
        colonne<QString, QString, QString>({"routine", "testo", "atteso"});
        const struct {
            const char *routine, *riga, *testo, *atteso;
        } righe[] = {
            {"TogliSpaziDoppi", "empty", "", ""}, {"TogliSpaziDoppi", "only blanks", "    ", ""},
            {"TogliSpaziDoppi", "trim", "  ab  ", "ab"}, {"TogliSpaziDoppi", "runs", " a   b  c ", "a b c"},
            {"TogliSpaziDoppi", "tabs inside kept", "a\t\tb", "a\t\tb"},
            {"ConBarra", "empty", "", ""}, {"ConBarra", "no separator", "/srv/park", "/srv/park/"},
            {"ConBarra", "separator", "/srv/park/", "/srv/park/"}, {"ConBarra", "blanks", " /srv ", " /srv /"},
            {"AggiungeBarra", "empty", "", "/"}, {"AggiungeBarra", "no separator", "/srv/park", "/srv/park/"},
            {"AggiungeBarra", "separator", "/srv/park/", "/srv/park/"}, {"AggiungeBarra", "blanks", " /srv ", "/srv/"},
            {"CartellaDati", "folder", "/srv/park/dati/basedati.mdb", "/srv/park/dati"},
            {"CartellaDati", "exactly 13", "/basedati.mdb", ""}, {"CartellaDati", "12 characters", "basedati.mdb", ""},
            {"CartellaDati", "empty", "", ""}, {"CartellaDati", "other name length cuts 13", "/srv/park/dati.sqlite", "/srv/par"},
            // ListaContiene on the list "Targa|Marca|" (an empty entry last): "S" when found.
            {"ListaContiene", "first", "Targa", "S"},
            {"ListaContiene", "empty entry", "", "S"}, {"ListaContiene", "prefix only", "Targ", "N"},
            {"ListaContiene", "longer", "Targhe", "N"},
        };
        for (const auto &r : righe)
            QTest::addRow("%s, %s", r.routine, r.riga) << QString::fromLatin1(r.routine) << QString::fromLatin1(r.testo)
                                                       << QString::fromLatin1(r.atteso);
    }
    void testi()
    {
        QFETCH(QString, routine); QFETCH(QString, testo); QFETCH(QString, atteso);
        QString arg = testo;
        if (routine == QLatin1String("TogliSpaziDoppi")) {
            QCOMPARE(frame::TogliSpaziDoppi(arg), atteso);
            QCOMPARE(arg, atteso); // by reference
        } else if (routine == QLatin1String("ConBarra")) {
            QCOMPARE(frame::ConBarra(testo), atteso);
        } else if (routine == QLatin1String("AggiungeBarra")) {
            frame::AggiungeBarra(arg);
            QCOMPARE(arg, atteso);
        } else if (routine == QLatin1String("CartellaDati")) {
            QCOMPARE(frame::CartellaDati(testo), atteso);
        } else {
            QCOMPARE(frame::ListaContiene(testo, {QStringLiteral("Targa"), QStringLiteral("Marca"), QString()}), atteso == QLatin1String("S"));
            QVERIFY(!frame::ListaContiene(testo, {}));
        }
    }

    // A file, a folder (its trailing separator dropped in place), or a name with wildcards that some file matches.
    void esisteFile()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("dati.txt"));
        writeBytes(file, "x");
        QDir(dir.path()).mkdir(QStringLiteral("sub.dat"));

        QString p = file;
        QVERIFY(frame::EsisteFile(p));
        QVERIFY(!frame::EsisteFile(p, true)); // a file is not a folder
        p = dir.path() + QLatin1Char('/');
        QVERIFY(!frame::EsisteFile(p)); // a folder is not a file
        QVERIFY(frame::EsisteFile(p, true));
        QCOMPARE(p, dir.path());
        p = dir.filePath(QStringLiteral("missing.txt"));
        QVERIFY(!frame::EsisteFile(p));
        p = dir.filePath(QStringLiteral("missing/"));
        QVERIFY(!frame::EsisteFile(p, true));
        p.clear();
        QVERIFY(!frame::EsisteFile(p));
        QVERIFY(!frame::EsisteFile(p, true));
        for (const char *nome : {"*.txt", "dat?.txt"}) {
            p = dir.filePath(QLatin1String(nome));
            QVERIFY2(frame::EsisteFile(p), nome);
        }
        p = dir.filePath(QStringLiteral("*.dat")); // only a folder matches
        QVERIFY(!frame::EsisteFile(p));
    }

    void giornoSettimana()
    {
        const char *const nomi[] = {"Domenica", "Lunedì", "Martedì", "Mercoledì", "Giovedì", "Venerdì", "Sabato"};
        for (int i = 0; i < 7; ++i) // from Sunday 1 March 2026
            QCOMPARE(frame::GiornoSettimana(QDate(2026, 3, 1).addDays(i)), QString::fromUtf8(nomi[i]));
    }

    // NumeroONullo, and TestoONullo and ValoreNonNullo (default "def") where the row gives their results.
    void nullHelpers_data()
    {
        colonne<QVariant, QVariant, QVariant, QVariant>({"valore", "numero", "testo", "nonNullo"});
        const QVariant x; // not checked on this row
        QTest::newRow("null") << QVariant() << QVariant(0) << QVariant(QString()) << QVariant(QStringLiteral("def"));
        QTest::newRow("empty") << QVariant(QString()) << QVariant(0) << QVariant(QString()) << QVariant(QString());
        QTest::newRow("letters") << QVariant(QStringLiteral("abc")) << QVariant(0) << QVariant(QStringLiteral("abc")) << x;
        QTest::newRow("number and letters") << QVariant(QStringLiteral("12abc")) << QVariant(0) << x << x;
        for (const char *n : {"12.5", "-3", " 4 ", "1e3"})
            QTest::addRow("text %s", n) << QVariant(QString::fromLatin1(n)) << QVariant(QString::fromLatin1(n)) << x << x;
        for (const char *n : {"nan", "inf", "-inf"})
            QTest::addRow("text %s", n) << QVariant(QString::fromLatin1(n)) << QVariant(0) << x << x;
        QTest::newRow("int") << QVariant(7) << QVariant(7) << QVariant(7) << QVariant(7);
        QTest::newRow("zero") << QVariant(0) << QVariant(0) << x << QVariant(0);
        QTest::newRow("double") << QVariant(3.25) << QVariant(3.25) << x << x;
    }
    void nullHelpers()
    {
        QFETCH(QVariant, valore); QFETCH(QVariant, numero); QFETCH(QVariant, testo); QFETCH(QVariant, nonNullo);
        for (const auto &[r, atteso] : {std::pair{frame::NumeroONullo(valore), numero}, std::pair{frame::TestoONullo(valore), testo},
                                         std::pair{frame::ValoreNonNullo(valore, QStringLiteral("def")), nonNullo}})
            if (atteso.isValid()) {
                QCOMPARE(r.typeId(), atteso.typeId());
                QCOMPARE(r, atteso);
            }
    }

    // The lines read, and the lookup of the first key (trimmed text, key folded in place, apostrophes to backticks).
    void leggiTestiLingua_data()
    {
        // trovato: TestoLingua of the first key in lower case
        colonne<QByteArray, QStringList, QString>({"contenuto", "righe", "trovato"});
        QTest::newRow("blanks around") << QByteArray(" m0100 ; Testo ") << QStringList{"M0100; Testo"} << "Testo";
        QTest::newRow("empty key") << QByteArray(";abc") << QStringList{";abc"} << "abc";
        QTest::newRow("comment with leading blank") << QByteArray("  ' M0001;no\nM0002;yes") << QStringList{"M0002;yes"} << "yes";
        QTest::newRow("no separator skipped") << QByteArray("just words\nM0003;y") << QStringList{"M0003;y"} << "y";
        QTest::newRow("later separators in text") << QByteArray("M0004;a;b; c") << QStringList{"M0004;a;b; c"} << "a;b; c";
        QTest::newRow("empty lines") << QByteArray("\n\n   \nM0005;z\n\n") << QStringList{"M0005;z"} << "z";
        QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBFM0006;bom\nM0007;next") << QStringList{"M0006;bom", "M0007;next"}
                                         << "bom";
        QTest::newRow("CRLF") << QByteArray("M0008;first \r\nM0009;second\r\n") << QStringList{"M0008;first", "M0009;second"} << "first";
        QTest::newRow("first of two equal keys wins") << QByteArray("M0010;one\nm0010;two") << QStringList{"M0010;one", "M0010;two"}
                                                      << "one";
        QTest::newRow("empty text") << QByteArray("M0011;") << QStringList{"M0011;"} << "";
        QTest::newRow("nothing") << QByteArray() << QStringList() << "";
        QTest::newRow("accents") << QByteArray("M0012;perché città") << QStringList{QStringLiteral("M0012;perché città")}
                                 << QStringLiteral("perché città");
        QTest::newRow("apostrophe") << QByteArray("M0050; l'auto dell'utente ") << QStringList{"M0050; l'auto dell'utente"}
                                    << "l'auto dell'utente";
        static const char junk[] = "M0030;before\n\x00\x01\xff\xfe\x80 garbage\n\x81\xc3;junk\n\xff\xff\xff\nM0031;after";
        const Table t = parse(QByteArray(junk, sizeof junk - 1));
        QTest::newRow("junk between lines") << QByteArray(junk, sizeof junk - 1) << righe(t) << "before";
        QVERIFY(righe(t).contains(QStringLiteral("M0031;after")));
    }
    void leggiTestiLingua()
    {
        QFETCH(QByteArray, contenuto); QFETCH(QStringList, righe); QFETCH(QString, trovato);
        pub().TestiLingua = parse(contenuto);
        QCOMPARE(::righe(pub().TestiLingua), righe);
        QString k = righe.value(0, QStringLiteral("M0001;")).section(QLatin1Char(';'), 0, 0).toLower();
        QCOMPARE(frame::TestoLingua(k), trovato);
        QCOMPARE(k, k.toUpper()); // folded in place
        QCOMPARE(frame::TestoLinguaApici(k), QString(trovato).replace(QLatin1Char('\''), QLatin1Char('`')));
        QCOMPARE(frame::TestoLingua("M9999"), QString());
    }

    // The language files of a program folder, listed in any case of extension and sorted blind to case; a load
    // overwrites the texts from the top and keeps those below, a missing file leaves them alone.
    void languageFolder()
    {
        QTemporaryDir prog;
        writeBytes(prog.filePath(QStringLiteral("Language/long.res")), "K1;long one\nK2;long two\nK3;long three\n");
        writeBytes(prog.filePath(QStringLiteral("Language/Short.RES")), "K9;short\n");
        for (const char *f : {"notes.txt", "Res"})
            writeBytes(prog.filePath(QStringLiteral("Language/") + QLatin1String(f)), "K;v\n");
        QDir(prog.path()).mkpath(QStringLiteral("Language/Folder.Res"));
        pub().CartellaProgramma = prog.path() + QLatin1Char('/');
        pub().Lingue = QStringList{QStringLiteral("stale")};
        pub().TestiLingua.clear();

        frame::ElencaLingue();
        QCOMPARE(pub().Lingue, (QStringList{"long", "Short"}));
        QVERIFY(frame::CaricaFileLingua(pub().Lingue.at(0)));
        QCOMPARE(pub().TestiLingua.size(), 3);
        QVERIFY(frame::CaricaFileLingua(pub().Lingue.at(1)));
        QCOMPARE(keysOf(pub().TestiLingua), (QStringList{"K9", "K2", "K3"}));
        QCOMPARE(frame::TestoLingua("K9"), QStringLiteral("short"));
        QCOMPARE(frame::TestoLingua("K1"), QString());
        QCOMPARE(frame::TestoLingua("K3"), QStringLiteral("long three")); // left from the longer file

        const QStringList before = righe(pub().TestiLingua);
        QVERIFY(!frame::CaricaFileLingua(QStringLiteral("Missing")));
        QVERIFY(!frame::CaricaFileLingua(QString()));
        QCOMPARE(righe(pub().TestiLingua), before);

        // Without a Language folder, or with no language file in it, one empty name.
        QTemporaryDir vuota;
        writeBytes(vuota.filePath(QStringLiteral("Language/readme.txt")), "x");
        for (const QString &cartella : {vuota.filePath(QStringLiteral("missing/")), vuota.path() + QLatin1Char('/')}) {
            pub().CartellaProgramma = cartella;
            frame::ElencaLingue();
            QCOMPARE(pub().Lingue, QStringList{QString()});
        }
    }

    // The delivered languages hold the same keys, each once and with a text, among them every key the code names.
    void deliveredLanguageFiles()
    {
        const Table en = parseLanguageFile(QStringLiteral("English"));
        const Table it = parseLanguageFile(QStringLiteral("Italian"));
        QVERIFY(en.size() > 100);
        const QStringList enKeys = keysOf(en), itKeys = keysOf(it);
        const QSet<QString> enSet(enKeys.cbegin(), enKeys.cend()), itSet(itKeys.cbegin(), itKeys.cend());
        QCOMPARE(enSet.size(), enKeys.size()); // no key twice: the second would never be found
        QCOMPARE(itSet.size(), itKeys.size());
        QCOMPARE(enSet, itSet);
        for (const Table *t : {&en, &it})
            for (const auto &v : *t) {
                QVERIFY2(!v.chiave.isEmpty(), qPrintable(v.testo));
                QVERIFY2(!v.testo.trimmed().isEmpty(), qPrintable(v.chiave));
            }

        // The families of keys are the letters before the digits of those in the files (M0100, CAP01, VERU1).
        QSet<QString> famiglie;
        static const QRegularExpression numerata(QStringLiteral("^([A-Z]+)\\d+$"));
        for (const QString &k : enKeys)
            if (const auto m = numerata.match(k); m.hasMatch())
                famiglie << m.captured(1);
        const QRegularExpression uso(QStringLiteral("\"((?:%1)\\d+)\"").arg(famiglie.values().join(QLatin1Char('|'))));
        QSet<QString> visti;
        QStringList mancanti;
        QDirIterator sorgenti(sourceDir() + QStringLiteral("src"), {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                              QDirIterator::Subdirectories);
        while (sorgenti.hasNext()) {
            QFile f(sorgenti.next());
            QVERIFY(f.open(QIODevice::ReadOnly));
            for (const auto &m : uso.globalMatch(QString::fromUtf8(f.readAll()))) {
                visti << m.captured(1);
                if (!enSet.contains(m.captured(1)))
                    mancanti << m.captured(1) + QLatin1Char(' ') + f.fileName();
            }
        }
        QVERIFY(visti.size() > 150);
        QCOMPARE(mancanti, QStringList());
    }

    // Keys are blind to case, sections stay apart, and a value that is not plain text reads as the default.
    void settingsStore_data()
    {
        // atteso: with "dflt" as default
        colonne<QString, QString, QString>({"sezione", "chiave", "atteso"});
        QTest::newRow("other case") << "IMPOSTAZIONI" << "PATHDATA" << "/b/basedati.mdb";
        QTest::newRow("other section") << "Contatori" << "Pathdata" << "dflt";
        QTest::newRow("missing") << "Impostazioni" << "Nothing" << "dflt";
        QTest::newRow("saved empty") << "Impostazioni" << "Vuoto" << "";
        QTest::newRow("odd characters") << "Impostazioni" << "strano" << QStringLiteral("a, b; c=d \"e\" [f] 'g' à");
        QTest::newRow("list written by hand") << "Impostazioni" << "lingua" << "dflt";
        QTest::newRow("byte array") << "Impostazioni" << "logo" << "dflt";
        QTest::newRow("invalid") << "Impostazioni" << "avvio" << "dflt";
        QTest::newRow("plain, by hand") << "Impostazioni" << "InsertPremuto" << "S";
    }
    void settingsStore()
    {
        QFETCH(QString, sezione); QFETCH(QString, chiave); QFETCH(QString, atteso);
        writeBytes(frame::SettingsStore::fileName(), "[impostazioni]\nlingua=1, 2\nlogo=@ByteArray(abc)\navvio=@Invalid()\ninsertpremuto=S\n");
        frame::SettingsStore::save(kSection, QStringLiteral("PathData"), QStringLiteral("/a/basedati.mdb"));
        frame::SettingsStore::save(kSection, QStringLiteral("pathdata"), QStringLiteral("/b/basedati.mdb"));
        frame::SettingsStore::save(kSection, QStringLiteral("Vuoto"), QString());
        frame::SettingsStore::save(kSection, QStringLiteral("Strano"), QStringLiteral("a, b; c=d \"e\" [f] 'g' à"));
        QCOMPARE(frame::SettingsStore::get(sezione, chiave, QStringLiteral("dflt")), atteso);
        QCOMPARE(frame::SettingsStore::get(sezione, QStringLiteral("Nothing")), QString());
    }

    void impostaPercorsi_data()
    {
        // salvato: null: nothing in the store; dati: folder of the backup list and the images, null for none
        colonne<QString, QString, QString, QString>({"cartella", "salvato", "pathdata", "dati"});
        const QString opt = QStringLiteral("/opt/veltano");
        QTest::newRow("default") << opt << QString() << "/opt/veltano/basedati.mdb" << "/opt/veltano/";
        QTest::newRow("default, separator") << "/opt/veltano/" << QString() << "/opt/veltano/basedati.mdb" << "/opt/veltano/";
        QTest::newRow("default, unclean") << "/opt/./veltano//" << QString() << "/opt/veltano/basedati.mdb" << "/opt/veltano/";
        QTest::newRow("usual") << opt << "/srv/park/basedati.mdb" << "/srv/park/basedati.mdb" << "/srv/park/";
        QTest::newRow("exactly 13") << opt << "/basedati.mdb" << "/basedati.mdb" << "/";
        QTest::newRow("shorter than 13") << opt << "/a/b.mdb" << "/a/b.mdb" << QString();
        QTest::newRow("other name length") << opt << "/srv/park/dati.sqlite" << "/srv/park/dati.sqlite" << "/srv/par/";
    }
    void impostaPercorsi()
    {
        QFETCH(QString, cartella); QFETCH(QString, salvato); QFETCH(QString, pathdata); QFETCH(QString, dati);
        if (!salvato.isNull())
            frame::SettingsStore::save(kSection, QStringLiteral("PathData"), salvato);
        pub().PercorsoElencoBackup = pub().CartellaImmagini = QStringLiteral("stale");
        QVERIFY_THROWS_NO_EXCEPTION(frame::ImpostaPercorsi(cartella));
        QCOMPARE(pub().CartellaProgramma, QStringLiteral("/opt/veltano/"));
        QCOMPARE(pub().Pathdata, pathdata);
        QCOMPARE(pub().PercorsoElencoBackup, dati.isNull() ? QString() : dati + QStringLiteral("ElencoBackup.mdb"));
        QCOMPARE(pub().CartellaImmagini, dati.isNull() ? QString() : dati + QStringLiteral("immagini/"));
        QCOMPARE(pub().PercorsoLocadati, QStringLiteral("/opt/veltano/locadati.mdb"));
        QCOMPARE(pub().CodaConnessione, QStringLiteral(";PWD=quartzel"));
        QCOMPARE(pub().CartellaTemp, pub().CartellaWin + QLatin1String(frame::TitoloApplicazione) + QLatin1Char('/'));
        QVERIFY(pub().CartellaWin.endsWith(QLatin1Char('/')) && pub().IndirizzoProdotto.endsWith(QLatin1Char('/')));
    }

    void impostaLingua_data()
    {
        colonne<bool, QString, int>({"presente", "salvato", "atteso"});
        QTest::newRow("missing") << false << QString() << 0;
        QTest::newRow("second") << true << QStringLiteral("1") << 1;
        QTest::newRow("junk") << true << QStringLiteral("junk") << 0; // the store's reader is checked with the others
        QTest::newRow("out of range") << true << QStringLiteral("99") << 0;
    }
    void impostaLingua()
    {
        QFETCH(bool, presente); QFETCH(QString, salvato); QFETCH(int, atteso);
        if (presente)
            frame::SettingsStore::save(kSection, QStringLiteral("lingua"), salvato);
        pub().CartellaProgramma = sourceDir();
        pub().TestiLingua.clear();
        int menu = -1;
        pub().languageMenuSink = [&menu](int i) { menu = i; };

        frame::ImpostaLingua();
        QVERIFY(pub().Lingue.size() >= 2);
        QCOMPARE(pub().LinguaCorrente, atteso);
        QCOMPARE(menu, atteso);
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Lingua")), QString::number(atteso));
        QCOMPARE(righe(pub().TestiLingua), righe(parseLanguageFile(pub().Lingue.at(atteso))));
    }

    // The year and the other settings at start; with no settings row every option is on and the year makes the row, which
    // a later write edits. The "set" row also holds a default band (blanks kept) and the two flags of the settings store.
    void annoEsercizio_data()
    {
        // salvato: invalid with "no row": the row is deleted
        colonne<QVariant, QString>({"salvato", "atteso"});
        QTest::newRow("empty") << QVariant(QString()) << year();
        QTest::newRow("null") << QVariant() << year();
        QTest::newRow("blanks") << QVariant(QStringLiteral("   ")) << year();
        QTest::newRow("set") << QVariant(QStringLiteral("2031")) << QStringLiteral("2031");
        QTest::newRow("no row") << QVariant() << year();
    }
    void annoEsercizio()
    {
        QFETCH(QVariant, salvato); QFETCH(QString, atteso);
        TestDatabase db;
        const bool senzaRiga = QByteArray(QTest::currentDataTag()) == "no row";
        const bool impostata = QByteArray(QTest::currentDataTag()) == "set";
        frame::basedati().execute(senzaRiga ? QStringLiteral("delete from Impostazioni") : QStringLiteral("update Impostazioni set AnnoEsercizio = ?"),
                                  senzaRiga ? QVariantList() : QVariantList{salvato});
        if (senzaRiga)
            QCOMPARE(frame::LeggeImpostazione(QStringLiteral("FasciaDefault")), QVariant(QString()));
        if (impostata) {
            frame::basedati().execute(QStringLiteral("update Impostazioni set FasciaDefault = ' 07 '"));
            frame::SettingsStore::save(kSection, QStringLiteral("Avvio"), QStringLiteral("S"));
            frame::SettingsStore::save(kSection, QStringLiteral("InsertPremuto"), QStringLiteral("S"));
        }
        for (const auto &o : kOpzioni)
            pub().*o.flag = false;
        pub().AnnoEsercizio.clear();
        pub().FasciaDefault = QStringLiteral("stale");
        frame::LeggeImpostazioniAvvio();
        QCOMPARE(pub().AnnoEsercizio, atteso);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("AnnoEsercizio")).toString().trimmed(), atteso);
        QCOMPARE(pub().AvvioPark, impostata);
        QCOMPARE(pub().InsertPremuto, impostata);
        if (impostata)
            QCOMPARE(pub().FasciaDefault, QStringLiteral(" 07 "));
        if (senzaRiga) {
            for (const auto &o : kOpzioni)
                QVERIFY2(pub().*o.flag, o.campo);
            QCOMPARE(pub().FasciaDefault, QString());
        }
        frame::ScriveImpostazione(QStringLiteral("FasciaDefault"), QStringLiteral("03"));
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Impostazioni")).toLongLong(), 1);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("FasciaDefault")).toString(), QStringLiteral("03"));
    }

    // Each option reads its own field: the one under test holds the value, the others its opposite.
    void opzioni_data()
    {
        // lingua: the texts in use, empty for English
        colonne<QByteArray, QVariant, bool>({"lingua", "salvato", "attiva"});
        const QByteArray no("M0304;Si\nM0305;No\n");
        QTest::newRow("N") << QByteArray() << QVariant(QStringLiteral("N")) << false;
        QTest::newRow("S") << QByteArray() << QVariant(QStringLiteral("S")) << true;
        QTest::newRow("empty") << QByteArray() << QVariant(QString()) << true;
        QTest::newRow("null") << QByteArray() << QVariant() << true;
        QTest::newRow("No") << QByteArray() << QVariant(QStringLiteral("No")) << true;
        QTest::newRow("n") << QByteArray() << QVariant(QStringLiteral("n")) << true;
        QTest::newRow("N with blank") << QByteArray() << QVariant(QStringLiteral("N ")) << true;
        QTest::newRow("No, the word of the language") << no << QVariant(QStringLiteral("No")) << false;
        QTest::newRow("N under another word") << no << QVariant(QStringLiteral("N")) << true;
    }
    void opzioni()
    {
        QFETCH(QByteArray, lingua); QFETCH(QVariant, salvato); QFETCH(bool, attiva);
        TestDatabase db;
        if (!lingua.isEmpty())
            pub().TestiLingua = parse(lingua);
        const QVariant opposto = attiva ? frame::TestoLingua("M0305") : QStringLiteral("S");
        for (const auto &prova : kOpzioni) {
            for (const auto &o : kOpzioni)
                frame::basedati().execute(QStringLiteral("update Impostazioni set %1 = ?").arg(QLatin1String(o.campo)),
                                          {&o == &prova ? salvato : opposto});
            frame::LeggeImpostazioniAvvio();
            for (const auto &o : kOpzioni)
                QVERIFY2(pub().*o.flag == (&o == &prova ? attiva : !attiva), qPrintable(QStringLiteral("%1: %2").arg(prova.campo, o.campo)));
        }
    }

    // Each key of the store read through its typed reader: its default when missing, the value when stored
    // (under any case of the key), and the default again for what the type can't hold.
    void preferenzeRegistro_data()
    {
        // salvato: null: the key is missing; sezione: where it is written
        colonne<QString, QString, QString, QVariant>({"chiave", "sezione", "salvato", "atteso"});
        const QString imp = kSection, cont = QStringLiteral("Contatori");
        QTest::newRow("path, default") << "Pathdata" << imp << QString() << QVariant("/opt/veltano/basedati.mdb");
        QTest::newRow("path, other case") << "PATHDATA" << imp << "/srv/basedati.mdb" << QVariant("/srv/basedati.mdb");
        QTest::newRow("language, default") << "lingua" << imp << QString() << QVariant(0);
        QTest::newRow("language, blanks") << "LINGUA" << imp << " 2 " << QVariant(2);
        QTest::newRow("language, junk") << "lingua" << imp << "due" << QVariant(0);
        QTest::newRow("language, negative") << "lingua" << imp << "-1" << QVariant(0);
        QTest::newRow("language, decimal") << "lingua" << imp << "1.5" << QVariant(0);
        QTest::newRow("language, empty") << "lingua" << imp << "" << QVariant(0);
        QTest::newRow("start, default") << "Avvio" << imp << QString() << QVariant(false);
        QTest::newRow("start, S") << "avvio" << imp << "S" << QVariant(true);
        QTest::newRow("start, lower s") << "Avvio" << imp << "s" << QVariant(false);
        QTest::newRow("overtype, S") << "InsertPremuto" << imp << "S" << QVariant(true);
        QTest::newRow("last user") << "ultimoutente" << imp << "mario" << QVariant("mario");
        QTest::newRow("left, junk") << "MainLeft" << imp << "x" << QVariant(0);
        QTest::newRow("left, negative") << "MainLeft" << imp << "-40" << QVariant(-40);
        QTest::newRow("width, missing") << "MainWidth" << imp << QString() << QVariant();
        QTest::newRow("width, junk") << "MainWidth" << imp << "wide" << QVariant();
        QTest::newRow("width") << "MAINWIDTH" << imp << "800" << QVariant(800);
        QTest::newRow("toolbar, default") << "BarraStumenti" << imp << QString() << QVariant(true);
        QTest::newRow("toolbar, N") << "BarraStumenti" << imp << "N" << QVariant(false);
        QTest::newRow("version, default") << "VerDatabase" << imp << QString() << QVariant(0);
        QTest::newRow("version, junk") << "VerDatabase" << imp << "3b" << QVariant();
        QTest::newRow("version, blank") << "VerDatabase" << imp << " 3" << QVariant();
        QTest::newRow("version") << "VerDatabase" << imp << "3" << QVariant(3);
        QTest::newRow("backup folder, default") << "PathBackup" << imp << QString() << QVariant("/opt/veltano/");
        QTest::newRow("auto backup, default") << "AutoBackup" << imp << QString() << QVariant(true);
        QTest::newRow("copies kept, default") << "AutoBackupCont" << imp << QString() << QVariant("6");
        QTest::newRow("program path") << "Path" << imp << "/opt/veltano/veltano" << QVariant("/opt/veltano/veltano");
        QTest::newRow("compactions, own section") << "CompattaLocadati" << cont << "7" << QVariant(7);
        QTest::newRow("compactions, other section") << "CompattaLocadati" << imp << "7" << QVariant(0);
        QTest::newRow("compactions, negative") << "CompattaLocadati" << cont << "-3" << QVariant(0);
    }
    void preferenzeRegistro()
    {
        QFETCH(QString, chiave); QFETCH(QString, sezione); QFETCH(QString, salvato); QFETCH(QVariant, atteso);
        pub().CartellaProgramma = QStringLiteral("/opt/veltano/");
        if (!salvato.isNull())
            frame::SettingsStore::save(sezione, chiave, salvato);
        QCOMPARE(letturaRegistro(chiave), atteso);
    }

    // A setter writes its key in the store's own spelling, read back under any case; a change is announced once
    // by the key's name, and writing the value already stored announces nothing.
    void preferenzeScritturaRegistro()
    {
        frame::Preferenze &p = frame::preferenze();
        QSignalSpy cambiate(&p, &frame::Preferenze::cambiata);
        p.setPathData(QStringLiteral("/srv/park/basedati.mdb"));
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("IMPOSTAZIONI"), QStringLiteral("pathdata")), QStringLiteral("/srv/park/basedati.mdb"));
        QCOMPARE(p.pathData(), QStringLiteral("/srv/park/basedati.mdb"));
        p.setPathData(QStringLiteral("/srv/park/basedati.mdb"));
        p.setAvvio(true);
        p.setAvvio(true);
        p.setCompattaLocadati(4);
        p.setMainGeometria(10, 20, 800, 600);
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("avvio")), QStringLiteral("S"));
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("contatori"), QStringLiteral("compattalocadati")), QStringLiteral("4"));
        QCOMPARE(p.mainHeight(), std::optional<int>(600));
        QStringList nomi;
        for (const QList<QVariant> &segnale : std::as_const(cambiate))
            nomi << segnale.first().toString();
        QCOMPARE(nomi, (QStringList{"PathData", "Avvio", "CompattaLocadati", "MainLeft", "MainTop", "MainWidth", "MainHeight"}));
        // Exactly one key in the file for the path, whatever the spellings used.
        QCOMPARE(QString::fromUtf8(bytesOf(frame::SettingsStore::fileName())).count(QStringLiteral("pathdata="), Qt::CaseInsensitive), 1);
    }

    // The columns of the settings row through their typed readers: Null and the empty text alike, the year
    // trimmed, the FTP user's default, the version a whole number or none, the logos' bytes or none.
    void preferenzeColonne()
    {
        TestDatabase db;
        frame::Preferenze &p = frame::preferenze();
        frame::basedati().execute(QStringLiteral("update Impostazioni set AnnoEsercizio = ' 2027 ', VerDatabase = NULL, "
                                                 "ILoginFTP = NULL, IRagSoc = NULL, FasciaDefault = ' 07 ', ILogoP = NULL"));
        QCOMPARE(p.annoEsercizio(), QStringLiteral("2027"));
        QCOMPARE(p.verDatabase(), std::nullopt);
        QCOMPARE(p.iLoginFTP(), QStringLiteral("anonymous"));
        QCOMPARE(p.iRagSoc(), QString());
        QCOMPARE(p.fasciaDefault(), QStringLiteral(" 07 "));
        QVERIFY(p.iLogoP().isNull());

        const QByteArray png("\x89PNG\r\n\x1a\n\0\x01", 10);
        p.setILogoP(png);
        p.setVerDatabase(4);
        p.setICap(QStringLiteral("00100"));
        QCOMPARE(p.iLogoP(), png);
        QVERIFY(p.iLogoS().isNull());
        QCOMPARE(p.verDatabase(), std::optional<int>(4));
        QCOMPARE(p.iCap(), QStringLiteral("00100"));
        p.setILogoP(QByteArray());
        QVERIFY(frame::basedati().scalar(QStringLiteral("select ILogoP is null from Impostazioni")).toBool());
        frame::basedati().execute(QStringLiteral("update Impostazioni set VerDatabase = '4.5'"));
        QCOMPARE(p.verDatabase(), std::nullopt);

        // With no row every column reads empty, and a setter makes the row.
        frame::basedati().execute(QStringLiteral("delete from Impostazioni"));
        QCOMPARE(p.annoEsercizio(), QString());
        QCOMPARE(p.stampaUscita(), QString());
        p.setStampaUscita(QStringLiteral("S"));
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Impostazioni")).toInt(), 1);
        QCOMPARE(p.stampaUscita(), QStringLiteral("S"));
    }

    // Column changes are announced at once outside a transaction; inside one only at its commit, and never
    // when it rolls back, which also leaves the row as it was.
    void preferenzeTransazione()
    {
        TestDatabase db;
        frame::Preferenze &p = frame::preferenze();
        p.setIRagSoc(QStringLiteral("Garage Roma"));
        QSignalSpy cambiate(&p, &frame::Preferenze::cambiata);
        p.setIRagSoc(QStringLiteral("Garage Roma"));
        QCOMPARE(cambiate.size(), 0);
        p.setIRagSoc(QStringLiteral("Garage Milano"));
        QCOMPARE(cambiate.size(), 1);
        QCOMPARE(cambiate.takeFirst().first().toString(), QStringLiteral("IRagSoc"));
        {
            frame::Preferenze::Transazione t(p);
            p.setIRagSoc(QStringLiteral("Garage Torino"));
            p.setOpAnnullare(QStringLiteral("N"));
            QCOMPARE(cambiate.size(), 0);
        }
        QCOMPARE(cambiate.size(), 0);
        QCOMPARE(p.iRagSoc(), QStringLiteral("Garage Milano"));
        {
            frame::Preferenze::Transazione t(p);
            p.setIRagSoc(QStringLiteral("Garage Torino"));
            p.setIRagSoc(QStringLiteral("Garage Napoli"));
            p.setIIndHttp(p.iIndHttp());
            QCOMPARE(cambiate.size(), 0);
            t.commit();
        }
        QCOMPARE(cambiate.size(), 1);
        QCOMPARE(p.iRagSoc(), QStringLiteral("Garage Napoli"));
        p.setIRagSoc(QStringLiteral("Garage Bari"));
        QCOMPARE(cambiate.size(), 2);
    }

    void startupSkipsAMissingDatabase()
    {
        QTemporaryDir dir;
        pub().Pathdata = dir.filePath(QStringLiteral("basedati.mdb"));
        pub().AnnoEsercizio = QStringLiteral("2020");
        QVERIFY_THROWS_NO_EXCEPTION(frame::LeggeImpostazioniAvvio());
        QCOMPARE(pub().AnnoEsercizio, QStringLiteral("2020"));
        QVERIFY(!QFile::exists(pub().Pathdata));
    }

    void mostraErrore()
    {
        QStringList stato;
        pub().statusSink = [&stato](const QString &t) { stato << t; };
        frame::MostraStato(QStringLiteral("Searching..."));
        ScriptedPrompter prompter;
        frame::MostraErrore(prompter, QStringLiteral("Disk full"));
        QCOMPARE(stato, (QStringList{QStringLiteral("Searching..."), QString()}));
        QCOMPARE(prompter.messages.size(), 1);
        QCOMPARE(prompter.messages.first().text, QStringLiteral("Disk full\n"));
        QCOMPARE(prompter.messages.first().icon, frame::Prompter::Icon::Critical);
        QVERIFY(prompter.questions.isEmpty());

        pub().statusSink = nullptr;
        QVERIFY_THROWS_NO_EXCEPTION(frame::MostraStato(QStringLiteral("nobody listens")));
        frame::MostraErrore(prompter, QString());
        QCOMPARE(prompter.messages.size(), 2);
    }

    // A settings file far larger than the program ever writes is neither read nor written,
    // and the message names it; one within the limit is read and kept as usual.
    void settingsFileSizeLimit_data()
    {
        QTest::addColumn<int>("size");
        QTest::newRow("within it") << (1 << 19);
        QTest::newRow("beyond it") << (1 << 20) + 1;
    }

    void settingsFileSizeLimit()
    {
        QFETCH(int, size);
        const bool read = size <= (1 << 20);
        const QString path = frame::SettingsStore::fileName();
        QByteArray text = "[impostazioni]\nlingua=1\n[riempimento]\n";
        for (int i = 0; text.size() < size; ++i)
            text += "chiave" + QByteArray::number(i) + "=valore\n";
        text.truncate(size);
        writeBytes(path, text);
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Lingua")), read ? QStringLiteral("1") : QString());
        frame::SettingsStore::save(kSection, QStringLiteral("lingua"), QStringLiteral("2"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("lingua")), read ? QStringLiteral("2") : QString());
        QCOMPARE(frame::SettingsStore::problem().contains(path), !read);
        QCOMPARE(bytesOf(path) == text, !read);
        QFile::remove(path);
    }
};

QTEST_GUILESS_MAIN(TestFrame)
#include "tst_frame.moc"
