// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/formula/Formula.h"

#include "support/Colonne.h"

#include <QRandomGenerator>
#include <QtTest>
#include <ctime>

using reports::Formula;
using reports::FormulaError;
using reports::Valore;

Q_DECLARE_METATYPE(reports::Valore)

namespace {

// The columns the report templates read, in the order the engine would give them.
const QStringList Campi = {
    "Q_Movimentazioni_Utenti.DataOra", "Q_Movimentazioni_Utenti.entrato", "Q_Movimentazioni_Utenti.targa",
    "Q_Movimentazioni_Utenti.Id", "Q_Clienti_Utenti.Cliente", "Q_Clienti_Utenti.Id",
    "Q_Clienti_Utenti.Cognome", "Q_Clienti_Utenti.Nome", "Q_Clienti_Utenti.Tel Casa",
    "Q_Clienti_Utenti.Tel Cel", "Q_Clienti_Utenti.Località", "Q_Clienti_Utenti.DataUltimoPagamento",
    "Q_Clienti_Utenti.DataScadenzaAssic", "Q_Clienti_Utenti.Data Registrazione", "Q_Clienti_Utenti.Canone",
    "Cassa.id", "Cassa.Entrata", "Cassa.uscita", "Cassa.Data", "Cassa.idcliente", "TabProgressivi.Anno"};
enum { DataOra, Entrato, Targa, IdMov, Cliente, IdCli, Cognome, Nome, TelCasa, TelCel, Localita,
       UltimoPag, Scadenza, Registrazione, Canone, IdCassa, Entrata, Uscita, DataCassa, IdCliCassa, Anno };

struct Ambiente : reports::Ambito {
    int campo(const QString &t, const QString &n) const override
    {
        const QString chiave = t + QLatin1Char('.') + n;
        for (int i = 0; i < Campi.size(); ++i)
            if (Campi.at(i).compare(chiave, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
    int formula(const QString &n) const override { return n.compare("Nominativo", Qt::CaseInsensitive) ? -1 : 0; }
};

struct RigaProva : reports::Riga {
    QVector<Valore> v;
    // One row of every table at once, in the order of Campi; nulls where a row lacks a value.
    RigaProva()
        : v{Valore(QDateTime(QDate(2026, 3, 10), QTime(9, 15, 30))), Valore(false), Valore("AB123CD"), Valore(5),
            Valore(true), Valore(7), Valore("Rossi"), Valore("mario"), Valore("06 555 1234"), Valore(),
            Valore("Città di Castello"), Valore(QDate(2026, 1, 31)), Valore(), Valore(QDate(2025, 6, 15)),
            Valore(80.0), Valore(12), Valore(150.5), Valore(), Valore(QDate(2026, 2, 15)), Valore(7), Valore("2026")}
    {
        Q_ASSERT(v.size() == Campi.size());
    }
    const Valore &campo(int i) const override { return v.at(i); }
    Valore formula(int) const override { return Valore(v[Cognome].testo() + ' ' + v[Nome].testo()); }
};

Formula compila(const QString &t) { return Formula::compila(t, Ambiente()); }

const QString Dal = "{Q_Movimentazioni_Utenti.DataOra} >= DateSerial (2026,3,1) and TimeSerial (Hour "
                    "({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) >= "
                    "TimeSerial (8,0,0)";
const QString Al = "{Q_Movimentazioni_Utenti.DataOra} <= DateSerial (2026,3,31) and TimeSerial (Hour "
                   "({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) <= "
                   "TimeSerial (18,30,0)";
const QString Uscite = "{Q_Movimentazioni_Utenti.entrato} = false";

} // namespace

class TestFormula : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        // A zone with daylight saving, so that local-time handling is really exercised.
        qputenv("TZ", "Europe/Rome");
        tzset();
        reports::ImpostaDataCorrente(QDate(2026, 3, 1));
    }

    void valori_data()
    {
        colonne<QString, Valore>({"testo", "atteso"});
        auto r = [](const char *t, const Valore &v) { QTest::newRow(t) << QString::fromUtf8(t) << v; };
        // Arithmetic, texts, functions and names (case-blind, with blanks and accents).
        r("1 + 2 * 3", Valore(7)); r("(1 + 2) * 3", Valore(9)); r("7 - 2 - 1", Valore(4)); r("10 / 4", Valore(2.5));
        r("-{Cassa.Entrata} + 0.5", Valore(-150.0)); r("'ab' + \"cd\"", Valore("abcd")); r("'n. ' & {Cassa.id}", Valore("n. 12"));
        r("'it''s'", Valore("it's")); r("\"say \"\"hi\"\"\"", Valore("say \"hi\"")); r("// a comment\n1 + 1", Valore(2));
        r("Left('Parcheggio', 4)", Valore("Parc")); r("Left({Q_Clienti_Utenti.Cognome}, 10)", Valore("Rossi"));
        r("UpperCase({Q_Clienti_Utenti.Nome})", Valore("MARIO")); r("DateSerial (2026,3,1)", Valore(QDate(2026, 3, 1)));
        r("DateSerial(2026,13,1)", Valore(QDate(2027, 1, 1))); r("DateSerial(2026,3,0)", Valore(QDate(2026, 2, 28)));
        r("date(2026,01,15)", Valore(QDate(2026, 1, 15))); r("date({Q_Movimentazioni_Utenti.DataOra})", Valore(QDate(2026, 3, 10)));
        r("TimeSerial(8,30,0)", Valore::oraDelGiorno(8.5 * 3600000)); r("TimeSerial(25,0,0)", Valore::oraDelGiorno(3600000));
        r("Hour({Q_Movimentazioni_Utenti.DataOra})", Valore(9)); r("minute({Q_Movimentazioni_Utenti.DataOra})", Valore(15));
        r("CurrentDate", Valore(QDate(2026, 3, 1))); r("currentdate()", Valore(QDate(2026, 3, 1)));
        r("DateSerial(2026,3,2) - DateSerial(2026,3,1)", Valore(1)); r("DateSerial(2026,2,28) + 1", Valore(QDate(2026, 3, 1)));
        r("{@Nominativo}", Valore("Rossi mario")); r("{q_movimentazioni_utenti.TARGA}", Valore("AB123CD"));
        r("{ Q_Clienti_Utenti . Tel Casa }", Valore("06 555 1234"));
        // Comparisons (texts case-sensitive unless folded), precedence, containment, ranges, lists,
        // patterns; dates against date-times by the day, so a period's last day is whole; single-row
        // selections (receipt, slip, customer card); and/or decided whatever a null.
        for (const char *t : {"TRUE", "1 = 1", "2 < 3", "3 > 2", "2 <= 2", "'abc' < 'abd'", "UpperCase('abc') = 'ABC'",
                              "true or false and false", "not 1 = 2", "NOT (1 = 1) OR 2 > 1", "'abc' in 'xxabcxx'",
                              "'CASTELLO' in UpperCase({Q_Clienti_Utenti.Località})", "5 in 1 to 10", "3 in [1, 2, 3]",
                              "{Cassa.Data} in DateSerial(2026,2,1) to DateSerial(2026,2,28)", "'Rossi' like 'Ro*'", "'Rossi' like 'R?ssi'",
                              "isnull({Cassa.uscita})", "{Q_Movimentazioni_Utenti.DataOra} >= DateSerial(2026,3,10)",
                              "{Q_Movimentazioni_Utenti.DataOra} <= DateSerial(2026,3,10)", "{Q_Movimentazioni_Utenti.DataOra} > DateSerial(2026,3,9)",
                              "date({Q_Movimentazioni_Utenti.DataOra}) = DateSerial(2026,3,10)",
                              "TimeSerial (Hour ({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) >= TimeSerial (9,15,0)",
                              "{@nominativo} = 'Rossi mario'", "{TabProgressivi.Anno} = 2026", "{Cassa.id}= 12", "{Q_Movimentazioni_Utenti.Id}=5",
                              "{Cassa.uscita} = 0 or true"})
            r(t, Valore(true));
        for (const char *t : {"False", "1 <> 1", "3 >= 4", "'ABC' = 'abc'", "not false and false", "'abc' in 'ab'",
                              "'castello' in {Q_Clienti_Utenti.Località}", "'x' in ['a', 'b']", "'Rossi' like 'r*'", "ISNULL({Cassa.Entrata})",
                              "{Q_Movimentazioni_Utenti.DataOra} < DateSerial(2026,3,10)", "{Q_Clienti_Utenti.Id}= 8", "{Cassa.uscita} = 0 and false"})
            r(t, Valore(false));
        for (const char *t : {"{Cassa.uscita} = 0", "{Cassa.uscita} + 1", "not ({Cassa.uscita} = 0)", "{Cassa.uscita} = 0 and true",
                              "{Cassa.uscita} = 0 or false", "'555' in {Q_Clienti_Utenti.Tel Cel}", "UpperCase({Cassa.uscita})", "10 / ({Cassa.id} - 12)"})
            r(t, Valore()); // nulls spread
    }
    void valori()
    {
        QFETCH(QString, testo); QFETCH(Valore, atteso);
        const Valore v = compila(testo).valuta(RigaProva());
        QVERIFY2(v == atteso, qPrintable(testo + " gave '" + v.comeTesto() + "', expected '" + atteso.comeTesto() + "'"));
    }

    // Selections the windows pass, on the test row with some fields changed (index, value, ...):
    // the parking report, the account statement and cash report (whose amount condition has no
    // brackets and reads "(year and isnull(x)) or (x = 0 and ...)"), the customer lists and print filters.
    void selezioni_data()
    {
        colonne<QString, QVariantList, bool>({"selezione", "campi", "atteso"});
        auto r = [](const char *t, const QString &s, const QVariantList &c, bool a) { QTest::newRow(t) << s << c << a; };
        auto dt = [](int m, int d, int h, int mi, int s = 0) { return QDateTime(QDate(2026, m, d), QTime(h, mi, s)); };
        const QString tutto = Uscite + " and " + Dal + " and " + Al, nessuno;
        const QString targa = "{Q_Movimentazioni_Utenti.targa} = \"AB123CD\" and {Q_Movimentazioni_Utenti.entrato} = true";
        r("inside", tutto, {}, true); r("before 8:00", tutto, {DataOra, dt(3, 10, 7, 59)}, false);
        r("18:30 seconds ignored", tutto, {DataOra, dt(3, 10, 18, 30, 59)}, true);
        r("after 18:30", tutto, {DataOra, dt(3, 10, 18, 31)}, false); r("day before", tutto, {DataOra, dt(2, 28, 10, 0)}, false);
        r("last day, within the hours", tutto, {DataOra, dt(3, 31, 10, 0)}, true);
        r("day after the last", tutto, {DataOra, dt(4, 1, 10, 0)}, false); r("still inside", tutto, {Entrato, true}, false);
        r("no date", tutto, {DataOra, QDateTime()}, false); r("plate in", targa, {Entrato, true}, true);
        r("other plate", targa, {Entrato, true, Targa, "AB123CE"}, false); r("plate case", targa, {Entrato, true, Targa, "ab123cd"}, false);
        r("from midnight", QString(Dal).replace("TimeSerial (8,0,0)", "TimeSerial (0,0,0)"), {DataOra, dt(3, 1, 0, 0)}, true);
        r("empty selects all", nessuno, {DataOra, QDateTime(), Targa, ""}, true);
        const QString estratto = "{TabProgressivi.Anno}='2026' and isnull({Cassa.uscita}) or {Cassa.uscita}=0"
                                 " and {Cassa.idcliente} = 7 and {Cassa.Data} >= DateSerial (2026,2,1)";
        const QString cassa = "{TabProgressivi.Anno}='2026' and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0"
                              " and {Cassa.Data} >= DateSerial (2026,2,1) and {Cassa.Data} <= DateSerial (2026,2,28)";
        const QVariant nullo;
        r("statement: income row", estratto, {}, true); r("statement: other customer, null out", estratto, {IdCliCassa, 9}, true);
        r("statement: zero out, other year", estratto, {Anno, "2025", Uscita, 0}, true);
        r("statement: expense row", estratto, {Entrata, nullo, Uscita, 20.0}, false);
        r("statement: zero out, no customer", estratto, {Entrata, nullo, Uscita, 0, IdCliCassa, nullo}, false);
        r("cash: expense", cassa, {Entrata, nullo, Uscita, 20.0}, true); r("cash: income", cassa, {Entrata, qint64(20)}, false);
        r("cash: zero income", cassa, {Anno, "2025", Entrata, 0.0}, true);
        const QString scade = "{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataScadenzaAssic}<CurrentDate";
        const QString tel = "'0000' in UpperCase({Q_Clienti_Utenti.Tel Cel}) or '0000' in UpperCase({Q_Clienti_Utenti.Tel Casa})";
        // The print filters' own texts (starts with, equals, from, dates, numbers) run over real rows in the filter test.
        for (const char *t : {"{Q_Clienti_Utenti.Cliente}=true", "{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataUltimoPagamento}<CurrentDate",
                              "'CITTÀ' in UpperCase({Q_Clienti_Utenti.Località})",
                              "'555' in UpperCase({Q_Clienti_Utenti.Tel Cel}) or '555' in UpperCase({Q_Clienti_Utenti.Tel Casa})",
                              "{Q_Clienti_Utenti.Cliente}=true and UpperCase({Q_Clienti_Utenti.Cognome}) = 'ROSSI' and '555' in "
                              "UpperCase({Q_Clienti_Utenti.Tel Cel}) or '555' in UpperCase({Q_Clienti_Utenti.Tel Casa})"})
            r(t, QString::fromUtf8(t), {}, true);
        r("not a customer", "{Q_Clienti_Utenti.Cliente}=false", {}, false);
        r("no expiry", scade, {}, false); r("expired", scade, {Scadenza, QDate(2026, 2, 28)}, true);
        r("expires today", scade, {Scadenza, QDate(2026, 3, 1)}, false);
        r("no mobile", tel, {}, false); r("mobile", tel, {TelCel, "333 555 0000"}, true);
    }
    void selezioni()
    {
        QFETCH(QString, selezione); QFETCH(QVariantList, campi);
        RigaProva r;
        for (int i = 0; i + 1 < campi.size(); i += 2)
            r.v[campi.at(i).toInt()] = Valore::daVariant(campi.at(i + 1));
        QTEST(compila(selezione).seleziona(r), "atteso");
    }

    void errori_data()
    {
        colonne<QString, int, QString, QString>({"testo", "pos", "token", "messaggio"});
        auto r = [](const char *t, int p, const char *tok, const char *m) {
            QTest::newRow(t) << QString::fromUtf8(t) << p << QString::fromUtf8(tok) << QString::fromUtf8(m);
        };
        r("UpperCse({Cassa.id})", 0, "UpperCse", "unknown function");
        r("CurrentDat", 0, "CurrentDat", "unknown name");
        r("{Cassa.nonesiste} = 1", 0, "{Cassa.nonesiste}", "unknown field");
        r("{@Boh} = 1", 0, "{@Boh}", "unknown formula"); r("(1 + 2", 6, "", "')' expected");
        r("1 + 2)", 5, ")", "unbalanced parenthesis"); r("isnull({Cassa.id}", 17, "", "')' expected");
        r("Left('abc')", 0, "Left", "wrong number of arguments");
        r("DateSerial (2026,3)", 0, "DateSerial", "wrong number of arguments");
        r("UpperCase(5)", 10, "5", "text expected"); r("Hour('x')", 5, "'x'", "date-time or time expected");
        r("{Cassa.id} = 1 and 1 = 'a'", 21, "=", "type mismatch");
        r("TimeSerial(8,0,0) = DateSerial(2026,1,1)", 18, "=", "type mismatch");
        r("true and 5", 9, "5", "true or false expected"); r("'a' in 5", 7, "5", "text expected after 'in'");
        r("'abc", 0, "'abc", "unterminated text"); r("1 # 2", 2, "#", "unexpected character");
        r("date(2026,2,30)", 0, "date", "invalid date"); r("1/0", 1, "/", "division by zero");
        r("{Cassa", 0, "{Cassa", "unterminated field"); r("{Cassa} = 1", 0, "{Cassa}", "{Table.Field}");
        r("true and", 8, "", "unexpected end"); r("{Cassa.id} = = 1", 13, "=", "value expected");
        r("1 2", 2, "2", "operator expected");
    }
    void errori()
    {
        QFETCH(QString, testo); QFETCH(int, pos);
        QFETCH(QString, token); QFETCH(QString, messaggio);
        try {
            compila(testo);
            QFAIL("no error raised");
        } catch (const FormulaError &e) {
            QCOMPARE(e.posizione(), pos);
            QCOMPARE(e.token(), token);
            QVERIFY2(e.messaggio().contains(messaggio), qPrintable(e.messaggio()));
            const QString what = QString::fromStdString(e.what());
            QVERIFY2(what.contains(QString("position %1").arg(pos)) && what.contains(e.messaggio()), qPrintable(what));
            if (!token.isEmpty())
                QVERIFY(what.contains("near '" + token + "'"));
        }
    }

    void assegnazioni_data()
    {
        colonne<QString, QString, Valore>({"testo", "nome", "valore"});
        auto r = [](const char *t, const char *n, const Valore &v) { QTest::newRow(t) << QString::fromUtf8(t) << QString(n) << v; };
        r("lbltarga='Targa'", "lbltarga", Valore("Targa"));
        r("lblore='Ore d''uscita'", "lblore", Valore("Ore d'uscita"));
        r("a='it''s = ''ok'''", "a", Valore("it's = 'ok'")); r("OmetteGrafOre=true", "OmetteGrafOre", Valore(true));
        r("OmetteGrafSaldo=FALSE", "OmetteGrafSaldo", Valore(false));
        r("EntrataPeriodo=1234.5", "EntrataPeriodo", Valore(1234.5));
        r("UscitaPeriodo=-12.25", "UscitaPeriodo", Valore(-12.25)); r("UscitaPeriodo=0", "UscitaPeriodo", Valore(0));
        r("DataPeriodo=''", "DataPeriodo", Valore(""));
        r("Descrizionefiltri0='Dati elaborati secondo i seguenti  criteri:'", "Descrizionefiltri0",
          Valore("Dati elaborati secondo i seguenti  criteri:"));
        r("Descrizionefiltri='Cognome inizia per -ROS-, Città = x'", "Descrizionefiltri", Valore("Cognome inizia per -ROS-, Città = x"));
        r(" Titolo = 'Scheda Clienti' ", "Titolo", Valore("Scheda Clienti"));
    }
    void assegnazioni()
    {
        QFETCH(QString, testo); QFETCH(QString, nome);
        QFETCH(Valore, valore);
        const reports::Assegnazione a = reports::ParseAssegnazione(testo);
        QCOMPARE(a.nome, nome);
        QVERIFY2(a.valore == valore, qPrintable(a.valore.comeTesto()));
    }

    void assegnazioniErrate_data()
    {
        colonne<QString, int>({"testo", "pos"});
        for (auto [t, p] : {std::pair{"lbltarga", 8}, {"='x'", 0}, {"lbl='abc", 4}, {"lbl='l'uscita'", 7}, {"lbl=abc", 4},
                            {"lbl=1.234.5", 4}, {"lbl=", 4}, {"a b='x'", 0}, {"lbl='x' y", 8}, {"lbl=\"x\"", 4}})
            QTest::newRow(t) << QString(t) << p;
    }
    void assegnazioniErrate()
    {
        QFETCH(QString, testo); QFETCH(int, pos);
        try {
            reports::ParseAssegnazione(testo);
            QFAIL("accepted");
        } catch (const FormulaError &e) {
            QCOMPARE(e.posizione(), pos);
        }
    }

    void vuotaECopie()
    {
        const Formula vuota = compila("   \n ");
        QVERIFY(vuota.vuota());
        QVERIFY(vuota.seleziona(RigaProva()));
        QVERIFY(vuota.valuta(RigaProva()).isNull());
        QVERIFY(Formula().campiUsati().isEmpty());
        const Formula f = compila("{Cassa.id} = 12 and {Q_Movimentazioni_Utenti.DataOra} > DateSerial(2026,1,1)"
                                  " and {cassa.ID} > 0 and {@Nominativo} <> ''");
        Formula copia;
        copia = f;
        QCOMPARE(copia.campiUsati(), (QVector<int>{DataOra, IdCassa}));
        QCOMPARE(copia.formuleUsate(), QVector<int>{0});
        QVERIFY(copia.seleziona(RigaProva()));
        RigaProva altra;
        altra.v[IdCassa] = Valore(13);
        QVERIFY(!f.seleziona(altra));
        QVERIFY(!compila("{Cassa.id}").seleziona(RigaProva()));   // a number is not a yes
    }

    void varianti()
    {
        const QDateTime quando(QDate(2026, 3, 10), QTime(9, 15, 30));
        QCOMPARE(Valore::daVariant(QVariant(quando)).aVariant().toDateTime(), quando);
        QCOMPARE(Valore::daVariant(QVariant(QDate(2026, 3, 1))).aVariant(), QVariant(QDate(2026, 3, 1)));
        QCOMPARE(Valore::daVariant(QVariant(QTime(8, 30))).aVariant(), QVariant(QTime(8, 30)));
        QCOMPARE(Valore::daVariant(QVariant(qint64(5000000000))).numero(), 5e9);
        QCOMPARE(Valore::daVariant(QVariant(true)).aVariant(), QVariant(true));
        QCOMPARE(Valore::daVariant(QVariant(QString("x"))).aVariant(), QVariant(QString("x")));
        QVERIFY(Valore::daVariant(QVariant()).isNull());
        QVERIFY(Valore::daVariant(QVariant(QMetaType(QMetaType::QString))).isNull());
        QVERIFY(Valore::daVariant(QVariant(QDateTime())).isNull());
    }

    // Local time comes from the zone's rules, daylight saving included.
    void oraLegale()
    {
        const Formula ora = compila("Hour({Q_Movimentazioni_Utenti.DataOra}) * 100 + Minute({Q_Movimentazioni_Utenti.DataOra})");
        auto locale = [&](const QDateTime &utc) {
            RigaProva r;
            r.v[DataOra] = Valore(utc);
            return int(ora.valuta(r).numero());
        };
        auto utc = [](int m, int d, int h, int mi) { return QDateTime(QDate(2026, m, d), QTime(h, mi), Qt::UTC); };
        // Winter, the spring change (2:00 skipped), the autumn change (2:00-3:00 twice), summer across midnight.
        QCOMPARE((QVector<int>{locale(utc(1, 15, 10, 0)), locale(utc(3, 29, 0, 30)), locale(utc(3, 29, 1, 30)), locale(utc(10, 25, 0, 30)),
                               locale(utc(10, 25, 1, 30)), locale(utc(7, 1, 22, 45))}),
                 (QVector<int>{1100, 130, 330, 230, 230, 45}));
    }

    void dataDelGiorno()
    {
        reports::AzzeraDataCorrente();
        const Valore oggi = compila("CurrentDate").valuta(RigaProva());
        reports::ImpostaDataCorrente(QDate(2026, 3, 1));
        QCOMPARE(oggi.data(), QDate::currentDate());
    }

    // Whatever the input, compilation either succeeds or names a place in the text.
    void spazzatura()
    {
        const QStringList pezzi = {"{Cassa.id}", "{Q_Movimentazioni_Utenti.DataOra}", "{@Nominativo}", "{Cassa.uscita}",
                                   "(", ")", ",", "'", "\"", "'x'", " and ", " or ", "not ", " in ", " to ", " like ", "[", "]",
                                   "=", "<>", "<", ">=", "+", "-", "*", "/", "&", "1", "0", "2.5", "DateSerial", "TimeSerial",
                                   "Hour", "UpperCase", "Left", "isnull", "date", "CurrentDate", " ", "{", "}", "@", ".", "é", "#"};
        QRandomGenerator caso(20260301);
        int compilate = 0, errate = 0;
        for (int i = 0; i < 20000; ++i) {
            QString t;
            const int n = int(caso.bounded(1, 14));
            for (int k = 0; k < n; ++k)
                t += i % 4 == 0 ? QChar(ushort(caso.bounded(1, 0x300))) : QChar(0) + pezzi.at(caso.bounded(int(pezzi.size())));
            t.remove(QChar(0));
            try {
                const Formula f = compila(t);
                f.valuta(RigaProva());
                f.seleziona(RigaProva());
                ++compilate;
            } catch (const FormulaError &e) {
                QVERIFY2(e.posizione() >= 0 && e.posizione() <= t.size(), qPrintable(t));
                ++errate;
            }
        }
        QVERIFY(compilate > 100);
        QVERIFY(errate > 100);
        // Nesting and chains far beyond any real formula are refused, not a crash.
        QVERIFY_THROWS_EXCEPTION(FormulaError, compila(QString(5000, '(') + "1" + QString(5000, ')')));
        QVERIFY_THROWS_EXCEPTION(FormulaError, compila("1" + QString(" + {Cassa.id}").repeated(3000)));
        QVERIFY(compila("{Cassa.id} = 1" + QString(" or {Cassa.id} = 12").repeated(400)).seleziona(RigaProva()));
    }
};

QTEST_GUILESS_MAIN(TestFormula)
#include "tst_formula.moc"
