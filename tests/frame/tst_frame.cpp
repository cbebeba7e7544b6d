// SPDX-License-Identifier: GPL-3.0-or-later
// Tests of the frame logic: shared routines, language texts, settings store and start-up steps.
#include <Database.h>
#include <Language.h>
#include <PublicState.h>
#include <Routines.h>
#include <ScriptedPrompter.h>
#include <SettingsStore.h>
#include <Startup.h>
#include <TestDatabase.h>

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
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

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY2(f.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    f.write(bytes);
}

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

QStringList textsOf(const Table &t)
{
    QStringList r;
    for (const auto &v : t)
        r << v.testo;
    return r;
}

Table parseLanguageFile(const QString &name)
{
    QFile f(sourceDir() + QStringLiteral("Language/") + name + QStringLiteral(".Res"));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return parse(f.readAll());
}

QString year() { return QString::number(QDate::currentDate().year()); }

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

    // ---- quoting and small text routines

    void apiciSql_data()
    {
        QTest::addColumn<QVariant>("valore");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("null") << QVariant() << QStringLiteral("''");
        QTest::newRow("empty") << QVariant(QString()) << QStringLiteral("''");
        QTest::newRow("plain") << QVariant(QStringLiteral("abc")) << QStringLiteral("'abc'");
        QTest::newRow("apostrophe") << QVariant(QStringLiteral("l'auto")) << QStringLiteral("'l''auto'");
        QTest::newRow("only apostrophes") << QVariant(QStringLiteral("''")) << QStringLiteral("''''''");
        QTest::newRow("quotes and percent untouched")
            << QVariant(QStringLiteral("say \"hi\" 50% _x")) << QStringLiteral("'say \"hi\" 50% _x'");
        QTest::newRow("number") << QVariant(12) << QStringLiteral("'12'");
    }
    void apiciSql()
    {
        QFETCH(QVariant, valore);
        QFETCH(QString, atteso);
        QCOMPARE(frame::ApiciSQL(valore), atteso);
    }

    void apiciSqlRoundTripsThroughSql_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::newRow("surname") << QStringLiteral("O'Brien");
        QTest::newRow("lone apostrophe") << QStringLiteral("'");
        QTest::newRow("two apostrophes") << QStringLiteral("''");
        QTest::newRow("injection") << QStringLiteral("x'; drop table Fascia; --");
        QTest::newRow("quotes percent underscore") << QStringLiteral("a\"b%c_d\\e");
        QTest::newRow("accents") << QStringLiteral("Città perché l'è così: àèìòù ÀÈ ß € ✓");
        QTest::newRow("line break") << QStringLiteral("one'\ntwo");
        QTest::newRow("10000 characters") << QStringLiteral("ab'c").repeated(2500);
        QTest::newRow("10000 accented") << QStringLiteral("é'").repeated(5000);
    }
    void apiciSqlRoundTripsThroughSql()
    {
        QFETCH(QString, testo);
        TestDatabase db;
        auto &base = frame::basedati();
        QCOMPARE(base.scalar(QStringLiteral("select ") + frame::ApiciSQL(testo)).toString(), testo);

        base.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values (?, 'pw')"), {testo});
        const QString sql = QStringLiteral("select * from Autorizzazioni where Utente = ") + frame::ApiciSQL(testo);
        QCOMPARE(frame::LeggeTestoSQL(sql, QStringLiteral("Utente")), testo);
        QCOMPARE(frame::LeggeTestoSQL(sql, QStringLiteral("Password")), QStringLiteral("pw"));
        QVERIFY(base.scalar(QStringLiteral("select count(*) from Fascia")).toLongLong() > 0);
    }

    void raddoppiaApici_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("none") << QStringLiteral("abc") << QStringLiteral("abc");
        QTest::newRow("one") << QStringLiteral("'") << QStringLiteral("''");
        QTest::newRow("first and last") << QStringLiteral("'a'") << QStringLiteral("''a''");
        QTest::newRow("run") << QStringLiteral("a'''b") << QStringLiteral("a''''''b");
        QTest::newRow("double quote kept") << QStringLiteral("a\"b") << QStringLiteral("a\"b");
    }
    void raddoppiaApici()
    {
        QFETCH(QString, testo);
        QFETCH(QString, atteso);
        QCOMPARE(frame::RaddoppiaApici(testo), atteso);
    }

    void togliSpaziDoppi_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("only blanks") << QStringLiteral("    ") << QString();
        QTest::newRow("trim") << QStringLiteral("  ab  ") << QStringLiteral("ab");
        QTest::newRow("runs") << QStringLiteral(" a   b  c ") << QStringLiteral("a b c");
        QTest::newRow("single kept") << QStringLiteral("a b") << QStringLiteral("a b");
        QTest::newRow("tabs inside kept") << QStringLiteral("a\t\tb") << QStringLiteral("a\t\tb");
    }
    void togliSpaziDoppi()
    {
        QFETCH(QString, testo);
        QFETCH(QString, atteso);
        QString arg = testo;
        QCOMPARE(frame::TogliSpaziDoppi(arg), atteso);
        QCOMPARE(arg, atteso); // by reference
    }

    void barre_data()
    {
        QTest::addColumn<QString>("percorso");
        QTest::addColumn<QString>("aggiunge");
        QTest::addColumn<QString>("conBarra");
        QTest::newRow("empty") << QString() << QStringLiteral("/") << QString();
        QTest::newRow("no separator") << QStringLiteral("/srv/park") << QStringLiteral("/srv/park/") << QStringLiteral("/srv/park/");
        QTest::newRow("separator") << QStringLiteral("/srv/park/") << QStringLiteral("/srv/park/") << QStringLiteral("/srv/park/");
        QTest::newRow("blanks") << QStringLiteral(" /srv ") << QStringLiteral("/srv/") << QStringLiteral(" /srv /");
    }
    void barre()
    {
        QFETCH(QString, percorso);
        QFETCH(QString, aggiunge);
        QFETCH(QString, conBarra);
        QCOMPARE(frame::ConBarra(percorso), conBarra);
        frame::AggiungeBarra(percorso);
        QCOMPARE(percorso, aggiunge);
    }

    void esisteFile()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("dati.txt"));
        writeFile(file, "x");

        QString p = file;
        QVERIFY(frame::EsisteFile(p));
        p = dir.path() + QLatin1Char('/');
        QVERIFY(!frame::EsisteFile(p)); // a folder is not a file
        QVERIFY(frame::EsisteFile(p, true));
        QCOMPARE(p, dir.path()); // the trailing separator went, by reference
        p = file;
        QVERIFY(!frame::EsisteFile(p, true)); // a file is not a folder
        p = dir.filePath(QStringLiteral("missing.txt"));
        QVERIFY(!frame::EsisteFile(p));
        p = dir.filePath(QStringLiteral("missing/"));
        QVERIFY(!frame::EsisteFile(p, true));
        p.clear();
        QVERIFY(!frame::EsisteFile(p));
        QVERIFY(!frame::EsisteFile(p, true));

        p = sourceDir() + QStringLiteral("Language/*.Res");
        QVERIFY(frame::EsisteFile(p));
        p = sourceDir() + QStringLiteral("Language/Engl?sh.Res");
        QVERIFY(frame::EsisteFile(p));
        p = sourceDir() + QStringLiteral("Language/*.nothing");
        QVERIFY(!frame::EsisteFile(p));
        p = dir.filePath(QStringLiteral("*.txt"));
        QVERIFY(frame::EsisteFile(p));
        QDir(dir.path()).mkdir(QStringLiteral("sub.dat"));
        p = dir.filePath(QStringLiteral("*.dat")); // only a folder matches
        QVERIFY(!frame::EsisteFile(p));
    }

    void giornoSettimana_data()
    {
        QTest::addColumn<QDate>("data");
        QTest::addColumn<QString>("atteso");
        const char *const nomi[] = {"Domenica", "Lunedì", "Martedì", "Mercoledì", "Giovedì", "Venerdì", "Sabato"};
        const QDate domenica(2026, 3, 1);
        for (int i = 0; i < 7; ++i)
            QTest::newRow(nomi[i]) << domenica.addDays(i) << QString::fromUtf8(nomi[i]);
        QTest::newRow("next Sunday") << domenica.addDays(7) << QStringLiteral("Domenica");
        QTest::newRow("leap day 2024") << QDate(2024, 2, 29) << QStringLiteral("Giovedì");
    }
    void giornoSettimana()
    {
        QFETCH(QDate, data);
        QFETCH(QString, atteso);
        QCOMPARE(QDate(2026, 3, 1).dayOfWeek(), 7); // the fixture's first day is a Sunday
        QCOMPARE(frame::GiornoSettimana(data), atteso);
    }

    void numeroONullo_data()
    {
        QTest::addColumn<QVariant>("valore");
        QTest::addColumn<QVariant>("atteso");
        QTest::newRow("null") << QVariant() << QVariant(0);
        QTest::newRow("empty") << QVariant(QString()) << QVariant(0);
        QTest::newRow("letters") << QVariant(QStringLiteral("abc")) << QVariant(0);
        QTest::newRow("number and letters") << QVariant(QStringLiteral("12abc")) << QVariant(0);
        QTest::newRow("decimal text") << QVariant(QStringLiteral("12.5")) << QVariant(QStringLiteral("12.5"));
        QTest::newRow("negative text") << QVariant(QStringLiteral("-3")) << QVariant(QStringLiteral("-3"));
        QTest::newRow("blanks around") << QVariant(QStringLiteral(" 4 ")) << QVariant(QStringLiteral(" 4 "));
        QTest::newRow("exponent") << QVariant(QStringLiteral("1e3")) << QVariant(QStringLiteral("1e3"));
        QTest::newRow("nan text") << QVariant(QStringLiteral("nan")) << QVariant(0);
        QTest::newRow("inf text") << QVariant(QStringLiteral("inf")) << QVariant(0);
        QTest::newRow("-inf text") << QVariant(QStringLiteral("-inf")) << QVariant(0);
        QTest::newRow("int") << QVariant(7) << QVariant(7);
        QTest::newRow("double") << QVariant(3.25) << QVariant(3.25);
    }
    void numeroONullo()
    {
        QFETCH(QVariant, valore);
        QFETCH(QVariant, atteso);
        const QVariant r = frame::NumeroONullo(valore);
        QCOMPARE(r.typeId(), atteso.typeId());
        QCOMPARE(r, atteso);
    }

    void nullHelpers()
    {
        const QVariant t = frame::TestoONullo(QVariant());
        QVERIFY(!t.isNull());
        QCOMPARE(t.typeId(), QMetaType::QString);
        QCOMPARE(t.toString(), QString());
        QCOMPARE(frame::TestoONullo(QStringLiteral("abc")), QVariant(QStringLiteral("abc")));
        QCOMPARE(frame::TestoONullo(5), QVariant(5));

        QCOMPARE(frame::ValoreNonNullo(QVariant(), QStringLiteral("def")), QVariant(QStringLiteral("def")));
        QCOMPARE(frame::ValoreNonNullo(QVariant(), 0), QVariant(0));
        QCOMPARE(frame::ValoreNonNullo(QStringLiteral("x"), QStringLiteral("def")), QVariant(QStringLiteral("x")));
        QCOMPARE(frame::ValoreNonNullo(QString(), QStringLiteral("def")), QVariant(QString())); // "" is not Null
        QCOMPARE(frame::ValoreNonNullo(0, 9), QVariant(0));
    }

    void listaContiene_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<QStringList>("lista");
        QTest::addColumn<bool>("atteso");
        const QStringList l{QStringLiteral("Targa"), QStringLiteral("Marca"), QString()};
        QTest::newRow("first") << QStringLiteral("Targa") << l << true;
        QTest::newRow("middle") << QStringLiteral("Marca") << l << true;
        QTest::newRow("empty entry") << QString() << l << true;
        QTest::newRow("prefix only") << QStringLiteral("Targ") << l << false;
        QTest::newRow("longer") << QStringLiteral("Targhe") << l << false;
        QTest::newRow("empty list") << QStringLiteral("Targa") << QStringList() << false;
    }
    void listaContiene()
    {
        QFETCH(QString, testo);
        QFETCH(QStringList, lista);
        QFETCH(bool, atteso);
        QCOMPARE(frame::ListaContiene(testo, lista), atteso);
    }

    void cartellaDati_data()
    {
        QTest::addColumn<QString>("pathdata");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("short folder") << QStringLiteral("/x/basedati.mdb") << QStringLiteral("/x");
        QTest::newRow("deep folder") << QStringLiteral("/srv/park/dati/basedati.mdb") << QStringLiteral("/srv/park/dati");
        QTest::newRow("exactly 13") << QStringLiteral("/basedati.mdb") << QString();
        QTest::newRow("12 characters") << QStringLiteral("basedati.mdb") << QString();
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("other name length cuts 13 anyway") << QStringLiteral("/srv/park/dati.sqlite") << QStringLiteral("/srv/par");
    }
    void cartellaDati()
    {
        QFETCH(QString, pathdata);
        QFETCH(QString, atteso);
        QCOMPARE(frame::CartellaDati(pathdata), atteso);
    }

    // ---- language texts

    void leggiTestiLingua_data()
    {
        QTest::addColumn<QByteArray>("contenuto");
        QTest::addColumn<QStringList>("chiavi");
        QTest::addColumn<QStringList>("testi");
        QTest::newRow("blanks around") << QByteArray(" m0100 ; Testo ") << QStringList{"M0100"} << QStringList{" Testo"};
        QTest::newRow("empty key") << QByteArray(";abc") << QStringList{""} << QStringList{"abc"};
        QTest::newRow("comment with leading blank") << QByteArray("  ' M0001;no\nM0002;yes")
                                                    << QStringList{"M0002"} << QStringList{"yes"};
        QTest::newRow("no separator skipped") << QByteArray("just words\nM0003;y") << QStringList{"M0003"} << QStringList{"y"};
        QTest::newRow("later separators in text") << QByteArray("M0004;a;b; c") << QStringList{"M0004"} << QStringList{"a;b; c"};
        QTest::newRow("empty lines") << QByteArray("\n\n   \nM0005;z\n\n") << QStringList{"M0005"} << QStringList{"z"};
        QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBFM0006;bom\nM0007;next")
                                         << QStringList{"M0006", "M0007"} << QStringList{"bom", "next"};
        QTest::newRow("CRLF") << QByteArray("M0008;first\r\nM0009;second\r\n")
                              << QStringList{"M0008", "M0009"} << QStringList{"first", "second"};
        QTest::newRow("duplicates both kept") << QByteArray("M0010;one\nm0010;two")
                                              << QStringList{"M0010", "M0010"} << QStringList{"one", "two"};
        QTest::newRow("empty text") << QByteArray("M0011;") << QStringList{"M0011"} << QStringList{""};
        QTest::newRow("nothing") << QByteArray() << QStringList() << QStringList();
        QTest::newRow("accents") << QByteArray("M0012;perché città")
                                 << QStringList{"M0012"} << QStringList{QStringLiteral("perché città")};
    }
    void leggiTestiLingua()
    {
        QFETCH(QByteArray, contenuto);
        QFETCH(QStringList, chiavi);
        QFETCH(QStringList, testi);
        const Table t = parse(contenuto);
        QCOMPARE(keysOf(t), chiavi);
        QCOMPARE(textsOf(t), testi);
    }

    void testoLingua_data()
    {
        QTest::addColumn<QByteArray>("contenuto");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("trimmed on lookup") << QByteArray(" m0100 ; Testo ") << QStringLiteral("M0100") << QStringLiteral("Testo");
        QTest::newRow("lower-case key") << QByteArray("M0020;Hello") << QStringLiteral("m0020") << QStringLiteral("Hello");
        QTest::newRow("first duplicate wins") << QByteArray("M0001;first\nm0001;second") << QStringLiteral("M0001")
                                              << QStringLiteral("first");
        QTest::newRow("missing key") << QByteArray("M0001;x") << QStringLiteral("M9999") << QString();
        QTest::newRow("empty table") << QByteArray() << QStringLiteral("M0001") << QString();
        QTest::newRow("apostrophe kept") << QByteArray("M0050;l'auto") << QStringLiteral("M0050") << QStringLiteral("l'auto");
        static const char junkBytes[] = "M0030;before\n\x00\x01\xff\xfe\x80 garbage\n\x81\xc3;junk\n\xff\xff\xff\nM0031;after";
        const QByteArray junk(junkBytes, sizeof junkBytes - 1);
        QTest::newRow("junk, line before") << junk << QStringLiteral("M0030") << QStringLiteral("before");
        QTest::newRow("junk, line after") << junk << QStringLiteral("M0031") << QStringLiteral("after");
        QTest::newRow("CRLF lookup") << QByteArray("M0040;text \r\n") << QStringLiteral("M0040") << QStringLiteral("text");
    }
    void testoLingua()
    {
        QFETCH(QByteArray, contenuto);
        QFETCH(QString, chiave);
        QFETCH(QString, atteso);
        pub().TestiLingua = parse(contenuto);
        QString k = chiave;
        QCOMPARE(frame::TestoLingua(k), atteso);
        QCOMPARE(k, chiave.toUpper()); // folded in place
        QCOMPARE(frame::TestoLinguaApici(chiave), QString(atteso).replace(QLatin1Char('\''), QLatin1Char('`')));
    }

    void testoLinguaApiciTurnsApostrophes()
    {
        pub().TestiLingua = parse("M0050; l'auto dell'utente ");
        QCOMPARE(frame::TestoLingua("M0050"), QStringLiteral("l'auto dell'utente"));
        QCOMPARE(frame::TestoLinguaApici(QStringLiteral("m0050")), QStringLiteral("l`auto dell`utente"));
    }

    void reloadingShorterTextOverwritesFromTheStart()
    {
        Table t = parse("A;1\nB;2\nC;3");
        frame::LeggiTestiLingua("X;9", t);
        QCOMPARE(keysOf(t), (QStringList{"X", "B", "C"}));
        QCOMPARE(textsOf(t), (QStringList{"9", "2", "3"}));
    }

    void caricaFileLingua()
    {
        QTemporaryDir prog;
        writeFile(prog.filePath(QStringLiteral("Language/Long.Res")), "K1;long one\nK2;long two\nK3;long three\n");
        writeFile(prog.filePath(QStringLiteral("Language/Short.Res")), "K9;short\n");
        pub().CartellaProgramma = prog.path() + QLatin1Char('/');
        pub().TestiLingua.clear();

        QVERIFY(frame::CaricaFileLingua(QStringLiteral("Long")));
        QCOMPARE(pub().TestiLingua.size(), 3);
        QVERIFY(frame::CaricaFileLingua(QStringLiteral("Short")));
        QCOMPARE(keysOf(pub().TestiLingua), (QStringList{"K9", "K2", "K3"}));
        QCOMPARE(frame::TestoLingua("K9"), QStringLiteral("short"));
        QCOMPARE(frame::TestoLingua("K1"), QString());
        QCOMPARE(frame::TestoLingua("K3"), QStringLiteral("long three")); // left from the longer file

        const Table before = pub().TestiLingua;
        QVERIFY(!frame::CaricaFileLingua(QStringLiteral("Missing")));
        QVERIFY(!frame::CaricaFileLingua(QString()));
        QCOMPARE(keysOf(pub().TestiLingua), keysOf(before));
        QCOMPARE(textsOf(pub().TestiLingua), textsOf(before));
    }

    void elencaLingue()
    {
        QTemporaryDir prog;
        for (const char *f : {"Zulu.Res", "Alpha.res", "beta.RES", "notes.txt", "Res"})
            writeFile(prog.filePath(QStringLiteral("Language/") + QLatin1String(f)), "K;v\n");
        QDir(prog.path()).mkpath(QStringLiteral("Language/Folder.Res"));
        pub().CartellaProgramma = prog.path() + QLatin1Char('/');
        pub().Lingue = QStringList{QStringLiteral("stale")};

        frame::ElencaLingue();
        QCOMPARE(pub().Lingue, (QStringList{"Alpha", "beta", "Zulu"}));
        // Every listed name loads, whatever the case of its extension.
        for (const QString &nome : std::as_const(pub().Lingue)) {
            pub().TestiLingua.clear();
            QVERIFY2(frame::CaricaFileLingua(nome), qPrintable(nome));
            QCOMPARE(frame::TestoLingua("K"), QStringLiteral("v"));
        }
    }

    void elencaLingueWithoutFiles()
    {
        QTemporaryDir prog;
        pub().CartellaProgramma = prog.path() + QLatin1Char('/');
        frame::ElencaLingue(); // no Language folder at all
        QCOMPARE(pub().Lingue, QStringList{QString()});
        writeFile(prog.filePath(QStringLiteral("Language/readme.txt")), "x");
        frame::ElencaLingue();
        QCOMPARE(pub().Lingue, QStringList{QString()});
    }

    void deliveredLanguageFiles()
    {
        pub().CartellaProgramma = sourceDir();
        frame::ElencaLingue();
        QVERIFY(pub().Lingue.contains(QStringLiteral("English")));
        QVERIFY(std::any_of(pub().Lingue.cbegin(), pub().Lingue.cend(),
                            [](const QString &n) { return n.toUpper() == QLatin1String("ITALIAN"); }));

        const Table en = parseLanguageFile(QStringLiteral("English"));
        const Table it = parseLanguageFile(QStringLiteral("Italian"));
        QVERIFY(en.size() > 100);
        const QStringList enKeys = keysOf(en), itKeys = keysOf(it);
        const QSet<QString> enSet(enKeys.cbegin(), enKeys.cend()), itSet(itKeys.cbegin(), itKeys.cend());
        QCOMPARE(enSet.size(), enKeys.size()); // no key twice: the second would never be found
        QCOMPARE(itSet.size(), itKeys.size());
        QCOMPARE(enSet - itSet, QSet<QString>());
        QCOMPARE(itSet - enSet, QSet<QString>());
        for (const Table *t : {&en, &it})
            for (const auto &v : *t) {
                QVERIFY2(!v.chiave.isEmpty(), qPrintable(v.testo));
                QVERIFY2(!v.testo.trimmed().isEmpty(), qPrintable(v.chiave));
            }
    }

    // ---- settings store

    void settingsStoreKeysAreCaseBlind()
    {
        frame::SettingsStore::save(kSection, QStringLiteral("PathData"), QStringLiteral("/srv/park/basedati.mdb"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Pathdata")), QStringLiteral("/srv/park/basedati.mdb"));
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("IMPOSTAZIONI"), QStringLiteral("PATHDATA")),
                 QStringLiteral("/srv/park/basedati.mdb"));
        frame::SettingsStore::save(kSection, QStringLiteral("pathdata"), QStringLiteral("/b/basedati.mdb"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("PathData")), QStringLiteral("/b/basedati.mdb"));
        // Sections stay apart.
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("Contatori"), QStringLiteral("Pathdata"), QStringLiteral("d")),
                 QStringLiteral("d"));
    }

    void settingsStoreDefaults()
    {
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Nothing"), QStringLiteral("dflt")), QStringLiteral("dflt"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Nothing")), QString());
        frame::SettingsStore::save(kSection, QStringLiteral("Vuoto"), QString());
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Vuoto"), QStringLiteral("dflt")), QString());
        const QString odd = QStringLiteral("a, b; c=d \"e\" [f] 'g' à");
        frame::SettingsStore::save(kSection, QStringLiteral("Strano"), odd);
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("strano")), odd);
    }

    void settingsStoreJunkValues()
    {
        writeFile(frame::SettingsStore::fileName(),
                  "[impostazioni]\nlingua=1, 2\npathdata=@ByteArray(abc)\navvio=@Invalid()\ninsertpremuto=S\n");
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("lingua"), QStringLiteral("0")), QStringLiteral("0"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Pathdata"), QStringLiteral("d")), QStringLiteral("d"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Avvio"), QStringLiteral("N")), QStringLiteral("N"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("InsertPremuto"), QStringLiteral("N")), QStringLiteral("S"));
    }

    // ---- start-up steps

    void impostaPercorsi_data()
    {
        QTest::addColumn<QString>("pathdata");
        QTest::addColumn<QString>("backup");
        QTest::addColumn<QString>("immagini");
        QTest::newRow("usual") << QStringLiteral("/srv/park/basedati.mdb") << QStringLiteral("/srv/park/ElencoBackup.mdb")
                               << QStringLiteral("/srv/park/immagini/");
        QTest::newRow("exactly 13") << QStringLiteral("/basedati.mdb") << QStringLiteral("/ElencoBackup.mdb")
                                    << QStringLiteral("/immagini/");
        QTest::newRow("shorter than 13") << QStringLiteral("/a/b.mdb") << QString() << QString();
        QTest::newRow("other name length") << QStringLiteral("/srv/park/dati.sqlite") << QStringLiteral("/srv/par/ElencoBackup.mdb")
                                           << QStringLiteral("/srv/par/immagini/");
    }
    void impostaPercorsi()
    {
        QFETCH(QString, pathdata);
        QFETCH(QString, backup);
        QFETCH(QString, immagini);
        frame::SettingsStore::save(kSection, QStringLiteral("PathData"), pathdata);
        pub().PercorsoElencoBackup = QStringLiteral("stale");
        pub().CartellaImmagini = QStringLiteral("stale");
        QVERIFY_THROWS_NO_EXCEPTION(frame::ImpostaPercorsi(QStringLiteral("/opt/veltano")));
        QCOMPARE(pub().Pathdata, pathdata);
        QCOMPARE(pub().PercorsoElencoBackup, backup);
        QCOMPARE(pub().CartellaImmagini, immagini);
        QCOMPARE(pub().PercorsoLocadati, QStringLiteral("/opt/veltano/locadati.mdb"));
    }

    void impostaPercorsiDefaults_data()
    {
        QTest::addColumn<QString>("cartella");
        QTest::newRow("no separator") << QStringLiteral("/opt/veltano");
        QTest::newRow("separator") << QStringLiteral("/opt/veltano/");
        QTest::newRow("unclean") << QStringLiteral("/opt/./veltano//");
    }
    void impostaPercorsiDefaults()
    {
        QFETCH(QString, cartella);
        frame::ImpostaPercorsi(cartella);
        QCOMPARE(pub().CartellaProgramma, QStringLiteral("/opt/veltano/"));
        QCOMPARE(pub().Pathdata, QStringLiteral("/opt/veltano/basedati.mdb"));
        QCOMPARE(pub().PercorsoElencoBackup, QStringLiteral("/opt/veltano/ElencoBackup.mdb"));
        QCOMPARE(pub().CartellaImmagini, QStringLiteral("/opt/veltano/immagini/"));
        QCOMPARE(pub().PercorsoLocadati, QStringLiteral("/opt/veltano/locadati.mdb"));
        QCOMPARE(pub().CodaConnessione, QStringLiteral(";PWD=quartzel"));
        QVERIFY(pub().CartellaWin.endsWith(QLatin1Char('/')));
        QCOMPARE(pub().CartellaTemp, pub().CartellaWin + QLatin1String(frame::TitoloApplicazione) + QLatin1Char('/'));
        QVERIFY(pub().IndirizzoProdotto.endsWith(QLatin1Char('/')));
    }

    void impostaLingua_data()
    {
        QTest::addColumn<bool>("presente");
        QTest::addColumn<QString>("salvato");
        QTest::addColumn<int>("atteso");
        QTest::newRow("missing") << false << QString() << 0;
        QTest::newRow("first") << true << QStringLiteral("0") << 0;
        QTest::newRow("second") << true << QStringLiteral("1") << 1;
        QTest::newRow("blanks") << true << QStringLiteral(" 1 ") << 1;
        QTest::newRow("junk") << true << QStringLiteral("junk") << 0;
        QTest::newRow("empty") << true << QString() << 0;
        QTest::newRow("decimal") << true << QStringLiteral("1.5") << 0;
        QTest::newRow("negative") << true << QStringLiteral("-1") << 0;
        QTest::newRow("out of range") << true << QStringLiteral("99") << 0;
    }
    void impostaLingua()
    {
        QFETCH(bool, presente);
        QFETCH(QString, salvato);
        QFETCH(int, atteso);
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
        const Table expected = parseLanguageFile(pub().Lingue.at(atteso));
        QCOMPARE(keysOf(pub().TestiLingua), keysOf(expected));
        QCOMPARE(textsOf(pub().TestiLingua), textsOf(expected));
    }

    void annoEsercizio_data()
    {
        QTest::addColumn<QVariant>("salvato");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("empty") << QVariant(QString()) << year();
        QTest::newRow("null") << QVariant() << year();
        QTest::newRow("blanks") << QVariant(QStringLiteral("   ")) << year();
        QTest::newRow("set") << QVariant(QStringLiteral("2031")) << QStringLiteral("2031");
    }
    void annoEsercizio()
    {
        QFETCH(QVariant, salvato);
        QFETCH(QString, atteso);
        TestDatabase db;
        frame::basedati().execute(QStringLiteral("update Impostazioni set AnnoEsercizio = ?"), {salvato});
        pub().AnnoEsercizio.clear();
        frame::LeggeImpostazioniAvvio();
        QCOMPARE(pub().AnnoEsercizio, atteso);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("AnnoEsercizio")).toString().trimmed(), atteso);
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Impostazioni")).toLongLong(), 1);
    }

    void opzioni_data()
    {
        QTest::addColumn<QVariant>("salvato");
        QTest::addColumn<bool>("attiva");
        QTest::newRow("N") << QVariant(QStringLiteral("N")) << false;
        QTest::newRow("S") << QVariant(QStringLiteral("S")) << true;
        QTest::newRow("empty") << QVariant(QString()) << true;
        QTest::newRow("null") << QVariant() << true;
        QTest::newRow("No") << QVariant(QStringLiteral("No")) << true;
        QTest::newRow("n") << QVariant(QStringLiteral("n")) << true;
        QTest::newRow("N with blank") << QVariant(QStringLiteral("N ")) << true;
    }
    void opzioni()
    {
        QFETCH(QVariant, salvato);
        QFETCH(bool, attiva);
        TestDatabase db;
        QCOMPARE(frame::TestoLingua("M0305"), QStringLiteral("N"));
        for (const auto &o : kOpzioni) {
            frame::basedati().execute(QStringLiteral("update Impostazioni set %1 = ?").arg(QLatin1String(o.campo)), {salvato});
            pub().*o.flag = !attiva;
        }
        frame::LeggeImpostazioniAvvio();
        for (const auto &o : kOpzioni)
            QVERIFY2(pub().*o.flag == attiva, o.campo);
    }

    void eachOptionReadsItsOwnField()
    {
        TestDatabase db;
        for (const auto &off : kOpzioni) {
            for (const auto &o : kOpzioni)
                frame::basedati().execute(QStringLiteral("update Impostazioni set %1 = ?").arg(QLatin1String(o.campo)),
                                          {QString::fromLatin1(&o == &off ? "N" : "S")});
            frame::LeggeImpostazioniAvvio();
            for (const auto &o : kOpzioni)
                QVERIFY2(pub().*o.flag == (&o != &off), qPrintable(QStringLiteral("%1 off, %2").arg(off.campo, o.campo)));
        }
    }

    void optionWordFollowsTheLanguage()
    {
        TestDatabase db;
        pub().TestiLingua = parse("M0304;Si\nM0305;No\n");
        QVERIFY(!frame::OpzioneAttiva(QStringLiteral("No")));
        QVERIFY(frame::OpzioneAttiva(QStringLiteral("N")));
        frame::ScriveImpostazione(QStringLiteral("OpAnnullare"), QStringLiteral("No"));
        frame::ScriveImpostazione(QStringLiteral("OpModificare"), QStringLiteral("N"));
        frame::LeggeImpostazioniAvvio();
        QVERIFY(!pub().OpAnnullare);
        QVERIFY(pub().OpModificare);
    }

    void emptySettingsTable()
    {
        TestDatabase db;
        frame::basedati().execute(QStringLiteral("delete from Impostazioni"));
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("FasciaDefault")), QVariant(QString()));
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("AnnoEsercizio")).toString(), QString());

        for (const auto &o : kOpzioni)
            pub().*o.flag = false;
        pub().FasciaDefault = QStringLiteral("stale");
        frame::LeggeImpostazioniAvvio();
        for (const auto &o : kOpzioni)
            QVERIFY2(pub().*o.flag, o.campo);
        QCOMPARE(pub().FasciaDefault, QString());
        QCOMPARE(pub().AnnoEsercizio, year());
        // Writing the year back made the one row.
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Impostazioni")).toLongLong(), 1);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("AnnoEsercizio")).toString(), year());

        frame::basedati().execute(QStringLiteral("delete from Impostazioni"));
        frame::ScriveImpostazione(QStringLiteral("FasciaDefault"), QStringLiteral("02"));
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Impostazioni")).toLongLong(), 1);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("FasciaDefault")).toString(), QStringLiteral("02"));
        frame::ScriveImpostazione(QStringLiteral("FasciaDefault"), QStringLiteral("03"));
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Impostazioni")).toLongLong(), 1);
        QCOMPARE(frame::LeggeImpostazione(QStringLiteral("FasciaDefault")).toString(), QStringLiteral("03"));
    }

    void startupCopiesTheRest()
    {
        TestDatabase db;
        frame::basedati().execute(QStringLiteral("update Impostazioni set FasciaDefault = ' 07 '"));
        frame::SettingsStore::save(kSection, QStringLiteral("Avvio"), QStringLiteral("S"));
        frame::SettingsStore::save(kSection, QStringLiteral("InsertPremuto"), QStringLiteral("S"));
        frame::LeggeImpostazioniAvvio();
        QCOMPARE(pub().FasciaDefault, QStringLiteral(" 07 "));
        QVERIFY(pub().AvvioPark);
        QVERIFY(pub().InsertPremuto);

        QFile::remove(frame::SettingsStore::fileName());
        frame::LeggeImpostazioniAvvio();
        QVERIFY(!pub().AvvioPark);
        QVERIFY(!pub().InsertPremuto);
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

    // ---- SQL reads

    void sqlReads()
    {
        TestDatabase db;
        frame::basedati().execute(QStringLiteral("insert into Autorizzazioni (Utente, Password, Master) values ('mario', 'segreto', null)"));
        const QString none = QStringLiteral("select * from Autorizzazioni where Utente = 'nobody'");
        const QString mario = QStringLiteral("select * from Autorizzazioni where Utente = 'mario'");

        QCOMPARE(frame::LeggeTestoSQL(none, QStringLiteral("Utente")), QString());
        QVERIFY(!frame::LeggiCampoSQL(none, QStringLiteral("Utente")).isValid());
        QVERIFY(!frame::LeggiCampoSQL(none, QStringLiteral("Utente"), QStringLiteral("dflt")).isValid());

        QCOMPARE(frame::LeggeTestoSQL(mario, QStringLiteral("Password")), QStringLiteral("segreto"));
        QCOMPARE(frame::LeggeTestoSQL(mario, QStringLiteral("master")), QString());
        QCOMPARE(frame::LeggiCampoSQL(mario, QStringLiteral("Password")).toString(), QStringLiteral("segreto"));
        QCOMPARE(frame::LeggiCampoSQL(mario, QStringLiteral("Master"), QStringLiteral("dflt")), QVariant(QStringLiteral("dflt")));
        const QVariant vuoto = frame::LeggiCampoSQL(mario, QStringLiteral("Master"));
        QVERIFY(vuoto.isValid());
        QCOMPARE(vuoto.toString(), QString());
        QCOMPARE(frame::LeggiCampoSQL(mario, QStringLiteral("Master"), 0), QVariant(0));
    }

    // ---- status and errors

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

    void formatoDataDiSistema()
    {
        const QString f = frame::FormatoDataDiSistema();
        QVERIFY2(f == QLatin1String("dd/mm/yyyy") || f == QLatin1String("mm/dd/yyyy"), qPrintable(f));
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
        QFile f(path);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()) && f.open(QIODevice::WriteOnly) && f.write(text) == size);
        f.close();
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("Lingua")), read ? QStringLiteral("1") : QString());
        frame::SettingsStore::save(kSection, QStringLiteral("lingua"), QStringLiteral("2"));
        QCOMPARE(frame::SettingsStore::get(kSection, QStringLiteral("lingua")), read ? QStringLiteral("2") : QString());
        QCOMPARE(frame::SettingsStore::problem().contains(path), !read);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll() == text, !read);
        QFile::remove(path);
    }
};

QTEST_GUILESS_MAIN(TestFrame)
#include "tst_frame.moc"
