// SPDX-License-Identifier: GPL-3.0-or-later
#include "Formula.h"

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
        QTest::addColumn<QString>("testo");
        QTest::addColumn<Valore>("atteso");
        const Valore N;
        auto r = [](const char *t, const Valore &v) { QTest::newRow(t) << QString::fromUtf8(t) << v; };
        // Arithmetic and texts.
        r("1 + 2 * 3", Valore(7)); r("(1 + 2) * 3", Valore(9)); r("7 - 2 - 1", Valore(4)); r("10 / 4", Valore(2.5));
        r("-{Cassa.Entrata} + 0.5", Valore(-150.0)); r("'ab' + \"cd\"", Valore("abcd"));
        r("'n. ' & {Cassa.id}", Valore("n. 12")); r("'it''s'", Valore("it's"));
        r("\"say \"\"hi\"\"\"", Valore("say \"hi\"")); r("TRUE", Valore(true)); r("False", Valore(false));
        // Comparisons: texts are case-sensitive unless the caller folds them.
        r("1 = 1", Valore(true)); r("1 <> 1", Valore(false)); r("2 < 3", Valore(true)); r("3 > 2", Valore(true));
        r("2 <= 2", Valore(true)); r("3 >= 4", Valore(false)); r("'abc' < 'abd'", Valore(true));
        r("'ABC' = 'abc'", Valore(false)); r("UpperCase('abc') = 'ABC'", Valore(true));
        // Precedence.
        r("true or false and false", Valore(true)); r("not false and false", Valore(false));
        r("not 1 = 2", Valore(true)); r("NOT (1 = 1) OR 2 > 1", Valore(true));
        // Containment, ranges, lists, patterns.
        r("'abc' in 'xxabcxx'", Valore(true)); r("'abc' in 'ab'", Valore(false));
        r("'CASTELLO' in UpperCase({Q_Clienti_Utenti.Località})", Valore(true));
        r("'castello' in {Q_Clienti_Utenti.Località}", Valore(false)); r("5 in 1 to 10", Valore(true));
        r("{Cassa.Data} in DateSerial(2026,2,1) to DateSerial(2026,2,28)", Valore(true));
        r("3 in [1, 2, 3]", Valore(true)); r("'x' in ['a', 'b']", Valore(false));
        r("'Rossi' like 'Ro*'", Valore(true)); r("'Rossi' like 'R?ssi'", Valore(true));
        r("'Rossi' like 'r*'", Valore(false));
        // Functions.
        r("Left('Parcheggio', 4)", Valore("Parc")); r("Left({Q_Clienti_Utenti.Cognome}, 10)", Valore("Rossi"));
        r("UpperCase({Q_Clienti_Utenti.Nome})", Valore("MARIO")); r("isnull({Cassa.uscita})", Valore(true));
        r("ISNULL({Cassa.Entrata})", Valore(false)); r("DateSerial (2026,3,1)", Valore(QDate(2026, 3, 1)));
        r("DateSerial(2026,13,1)", Valore(QDate(2027, 1, 1))); r("DateSerial(2026,3,0)", Valore(QDate(2026, 2, 28)));
        r("date(2026,01,15)", Valore(QDate(2026, 1, 15)));
        r("date({Q_Movimentazioni_Utenti.DataOra})", Valore(QDate(2026, 3, 10)));
        r("TimeSerial(8,30,0)", Valore::oraDelGiorno(8.5 * 3600000));
        r("TimeSerial(25,0,0)", Valore::oraDelGiorno(3600000));
        r("Hour({Q_Movimentazioni_Utenti.DataOra})", Valore(9));
        r("minute({Q_Movimentazioni_Utenti.DataOra})", Valore(15)); r("CurrentDate", Valore(QDate(2026, 3, 1)));
        r("currentdate()", Valore(QDate(2026, 3, 1))); r("DateSerial(2026,3,2) - DateSerial(2026,3,1)", Valore(1));
        r("DateSerial(2026,2,28) + 1", Valore(QDate(2026, 3, 1)));
        // Dates against date-times: compared by the day, so a period's last day is whole.
        r("{Q_Movimentazioni_Utenti.DataOra} >= DateSerial(2026,3,10)", Valore(true));
        r("{Q_Movimentazioni_Utenti.DataOra} <= DateSerial(2026,3,10)", Valore(true));
        r("{Q_Movimentazioni_Utenti.DataOra} < DateSerial(2026,3,10)", Valore(false));
        r("{Q_Movimentazioni_Utenti.DataOra} > DateSerial(2026,3,9)", Valore(true));
        r("date({Q_Movimentazioni_Utenti.DataOra}) = DateSerial(2026,3,10)", Valore(true));
        r("TimeSerial (Hour ({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) "
          ">= TimeSerial (9,15,0)", Valore(true));
        // Names: case-blind, with blanks and accents.
        r("{@Nominativo}", Valore("Rossi mario")); r("{@nominativo} = 'Rossi mario'", Valore(true));
        r("{q_movimentazioni_utenti.TARGA}", Valore("AB123CD"));
        r("{ Q_Clienti_Utenti . Tel Casa }", Valore("06 555 1234")); r("{TabProgressivi.Anno} = 2026", Valore(true));
        // Single-row selections: receipt, slip, customer card.
        r("{Cassa.id}= 12", Valore(true)); r("{Q_Movimentazioni_Utenti.Id}=5", Valore(true));
        r("{Q_Clienti_Utenti.Id}= 8", Valore(false));
        // Nulls spread, except where and/or are decided anyway.
        r("{Cassa.uscita} = 0", N); r("{Cassa.uscita} + 1", N); r("not ({Cassa.uscita} = 0)", N);
        r("{Cassa.uscita} = 0 and false", Valore(false)); r("{Cassa.uscita} = 0 or true", Valore(true));
        r("{Cassa.uscita} = 0 and true", N); r("{Cassa.uscita} = 0 or false", N);
        r("'555' in {Q_Clienti_Utenti.Tel Cel}", N); r("UpperCase({Cassa.uscita})", N);
        r("10 / ({Cassa.id} - 12)", N); r("// a comment\n1 + 1", Valore(2));
    }
    void valori()
    {
        QFETCH(QString, testo); QFETCH(Valore, atteso);
        const Valore v = compila(testo).valuta(RigaProva());
        QVERIFY2(v == atteso, qPrintable(testo + " gave '" + v.comeTesto() + "', expected '" + atteso.comeTesto() + "'"));
    }

    void parcheggio_data()
    {
        QTest::addColumn<QString>("selezione");
        QTest::addColumn<QDateTime>("quando");
        QTest::addColumn<bool>("entrato");
        QTest::addColumn<QString>("targa");
        QTest::addColumn<bool>("atteso");
        const QString tutto = Uscite + " and " + Dal + " and " + Al;
        const QString targa = "{Q_Movimentazioni_Utenti.targa} = \"AB123CD\" and {Q_Movimentazioni_Utenti.entrato} = true";
        auto dt = [](int m, int d, int h, int mi, int s = 0) { return QDateTime(QDate(2026, m, d), QTime(h, mi, s)); };
        QTest::newRow("inside") << tutto << dt(3, 10, 9, 15) << false << "X" << true;
        QTest::newRow("before 8:00") << tutto << dt(3, 10, 7, 59) << false << "X" << false;
        QTest::newRow("18:30 seconds ignored") << tutto << dt(3, 10, 18, 30, 59) << false << "X" << true;
        QTest::newRow("after 18:30") << tutto << dt(3, 10, 18, 31) << false << "X" << false;
        QTest::newRow("day before") << tutto << dt(2, 28, 10, 0) << false << "X" << false;
        QTest::newRow("last day, within the hours") << tutto << dt(3, 31, 10, 0) << false << "X" << true;
        QTest::newRow("day after the last") << tutto << dt(4, 1, 10, 0) << false << "X" << false;
        QTest::newRow("still inside") << tutto << dt(3, 10, 9, 15) << true << "X" << false;
        QTest::newRow("no date") << tutto << QDateTime() << false << "X" << false;
        QTest::newRow("plate in") << targa << dt(1, 1, 0, 0) << true << "AB123CD" << true;
        QTest::newRow("other plate") << targa << dt(1, 1, 0, 0) << true << "AB123CE" << false;
        QTest::newRow("plate case") << targa << dt(1, 1, 0, 0) << true << "ab123cd" << false;
        const QString mezzanotte = QString(Dal).replace("TimeSerial (8,0,0)", "TimeSerial (0,0,0)");
        QTest::newRow("from midnight") << mezzanotte << dt(3, 1, 0, 0) << true << "X" << true;
        QTest::newRow("empty selects all") << QString() << QDateTime() << true << "" << true;
    }
    void parcheggio()
    {
        QFETCH(QString, selezione); QFETCH(QDateTime, quando);
        QFETCH(bool, entrato); QFETCH(QString, targa);
        QFETCH(bool, atteso);
        RigaProva r;
        r.v[DataOra] = Valore(quando);
        r.v[Entrato] = Valore(entrato);
        r.v[Targa] = Valore(targa);
        QCOMPARE(compila(selezione).seleziona(r), atteso);
    }

    // Account statement and cash report: the amount condition has no brackets
    // and is read by precedence, "(year and isnull(x)) or (x = 0 and ...)".
    void cassa_data()
    {
        QTest::addColumn<QString>("selezione");
        QTest::addColumn<QString>("anno");
        QTest::addColumn<QVariant>("entrata");
        QTest::addColumn<QVariant>("uscita");
        QTest::addColumn<QVariant>("cliente");
        QTest::addColumn<bool>("atteso");
        const QString estratto = "{TabProgressivi.Anno}='2026' and isnull({Cassa.uscita}) or {Cassa.uscita}=0"
                                 " and {Cassa.idcliente} = 7 and {Cassa.Data} >= DateSerial (2026,2,1)";
        const QString cassa = "{TabProgressivi.Anno}='2026' and isnull({Cassa.Entrata}) or {Cassa.Entrata}=0"
                              " and {Cassa.Data} >= DateSerial (2026,2,1) and {Cassa.Data} <= DateSerial (2026,2,28)";
        const QVariant nullo;
        QTest::newRow("statement: income row") << estratto << "2026" << QVariant(50.0) << nullo << QVariant(7) << true;
        QTest::newRow("statement: other customer, null out") << estratto << "2026" << QVariant(50.0) << nullo << QVariant(9) << true;
        QTest::newRow("statement: zero out, other year") << estratto << "2025" << QVariant(50.0) << QVariant(0) << QVariant(7) << true;
        QTest::newRow("statement: expense row") << estratto << "2026" << nullo << QVariant(20.0) << QVariant(7) << false;
        QTest::newRow("statement: zero out, no customer") << estratto << "2026" << nullo << QVariant(0) << nullo << false;
        QTest::newRow("cash: expense") << cassa << "2026" << nullo << QVariant(20.0) << nullo << true;
        QTest::newRow("cash: income") << cassa << "2026" << QVariant(qint64(20)) << nullo << nullo << false;
        QTest::newRow("cash: zero income") << cassa << "2025" << QVariant(0.0) << nullo << nullo << true;
    }
    void cassa()
    {
        QFETCH(QString, selezione); QFETCH(QString, anno);
        QFETCH(QVariant, entrata); QFETCH(QVariant, uscita);
        QFETCH(QVariant, cliente); QFETCH(bool, atteso);
        RigaProva r;
        r.v[Anno] = Valore(anno);
        r.v[Entrata] = Valore::daVariant(entrata);
        r.v[Uscita] = Valore::daVariant(uscita);
        r.v[IdCliCassa] = Valore::daVariant(cliente);
        QCOMPARE(compila(selezione).seleziona(r), atteso);
    }

    // Customer lists and the print filters of the search panel.
    void clienti_data()
    {
        QTest::addColumn<QString>("selezione");
        QTest::addColumn<QVariant>("telCel");
        QTest::addColumn<QVariant>("scadenza");
        QTest::addColumn<bool>("atteso");
        const QVariant nullo;
        const QVariant cel("333 555 0000");
        auto r = [](const char *t, const QVariant &tel, const QVariant &sc, bool a) {
            QTest::newRow(t) << QString::fromUtf8(t) << tel << sc << a;
        };
        r("{Q_Clienti_Utenti.Cliente}=true", nullo, nullo, true);
        r("{Q_Clienti_Utenti.Cliente}=false", nullo, nullo, false);
        r("{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataUltimoPagamento}<CurrentDate", nullo, nullo, true);
        r("{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataScadenzaAssic}<CurrentDate", nullo, nullo, false);
        r("{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataScadenzaAssic}<CurrentDate", nullo, QDate(2026, 2, 28), true);
        r("{Q_Clienti_Utenti.Cliente}=true and {Q_Clienti_Utenti.DataScadenzaAssic}<CurrentDate", nullo, QDate(2026, 3, 1), false);
        r("UpperCase({Q_Clienti_Utenti.Cognome}) = 'ROSSI'", nullo, nullo, true);
        r("UpperCase({Q_Clienti_Utenti.Cognome}) >= 'M'", nullo, nullo, true);
        r(" UpperCase(Left({Q_Clienti_Utenti.Cognome},3))='ROS'", nullo, nullo, true);
        r(" UpperCase(Left({Q_Clienti_Utenti.Cognome},3))='OSS'", nullo, nullo, false);
        r("'CITTÀ' in UpperCase({Q_Clienti_Utenti.Località})", nullo, nullo, true);
        r("{Q_Clienti_Utenti.Data Registrazione}>= date(2025,06,15) and {Q_Clienti_Utenti.Data Registrazione}<= date(2025,06,15)", nullo, nullo, true);
        r("{Q_Clienti_Utenti.Data Registrazione}>= date(2025,06,16)", nullo, nullo, false);
        r("{Q_Clienti_Utenti.Canone} >= 50 and {Q_Clienti_Utenti.Canone} <= 100", nullo, nullo, true);
        r("'555' in UpperCase({Q_Clienti_Utenti.Tel Cel}) or '555' in UpperCase({Q_Clienti_Utenti.Tel Casa})", nullo, nullo, true);
        r("'0000' in UpperCase({Q_Clienti_Utenti.Tel Cel}) or '0000' in UpperCase({Q_Clienti_Utenti.Tel Casa})", nullo, nullo, false);
        r("'0000' in UpperCase({Q_Clienti_Utenti.Tel Cel}) or '0000' in UpperCase({Q_Clienti_Utenti.Tel Casa})", cel, nullo, true);
        r("{Q_Clienti_Utenti.Cliente}=true and UpperCase({Q_Clienti_Utenti.Cognome}) = 'ROSSI' and '555' in "
          "UpperCase({Q_Clienti_Utenti.Tel Cel}) or '555' in UpperCase({Q_Clienti_Utenti.Tel Casa})", nullo, nullo, true);
    }
    void clienti()
    {
        QFETCH(QString, selezione); QFETCH(QVariant, telCel);
        QFETCH(QVariant, scadenza); QFETCH(bool, atteso);
        RigaProva r;
        r.v[TelCel] = Valore::daVariant(telCel);
        r.v[Scadenza] = Valore::daVariant(scadenza);
        QCOMPARE(compila(selezione).seleziona(r), atteso);
    }

    void errori_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<int>("pos");
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("messaggio");
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
        QTest::addColumn<QString>("testo");
        QTest::addColumn<QString>("nome");
        QTest::addColumn<Valore>("valore");
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
        QTest::addColumn<QString>("testo");
        QTest::addColumn<int>("pos");
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
        QCOMPARE(locale(utc(1, 15, 10, 0)), 1100);
        QCOMPARE(locale(utc(3, 29, 0, 30)), 130);
        QCOMPARE(locale(utc(3, 29, 1, 30)), 330);
        QCOMPARE(locale(utc(10, 25, 0, 30)), 230);
        QCOMPARE(locale(utc(10, 25, 1, 30)), 230);
        QCOMPARE(locale(utc(7, 1, 22, 45)), 45);
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
