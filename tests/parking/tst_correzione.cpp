// SPDX-License-Identifier: GPL-3.0-or-later
#include "Movimenti.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "parking/Contabilizzazione.h"
#include "parking/Correzione.h"
#include "parking/Resto.h"
#include "parking/ui/FrmResto.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include "support/Colonne.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using frame::Prompter;
using frame::pub;
using frame::TestoLingua;
using parking::FuocoPark;
using namespace prova;

Q_DECLARE_METATYPE(parking::FuocoPark)

class TestCorrezione : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_db;
    Clock m_clock;
    qint64 m_mario = 0; // a user who is not administrator

    store::Database &db() { return frame::basedati(); }
    qint64 insert(bool entrato, bool annullato, bool contabilizzato, const QString &importo = QStringLiteral("0"),
                  qint64 idUtente = 1, const QString &anno = QStringLiteral("2026"))
    {
        db().execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, DataOra, DataOraOut, Targa, IdFascia, "
                                    "Importo, Entrato, Annullato, Contabilizzato, IdUtente) values (?, (select count(*) + 1 "
                                    "from Movimentazioni), '2026-03-10 09:00:00', ?, 'AB123CD', '01', ?, ?, ?, ?, ?)"),
                     {anno, entrato ? QVariant() : QVariant(QStringLiteral("2026-03-10 09:30:00")),
                      qint64(money(importo).raw()), entrato ? -1 : 0, annullato ? -1 : 0, contabilizzato ? -1 : 0, idUtente});
        return db().lastInsertId();
    }
    void signInAs(const QString &user)
    {
        pub().UtenteCorrente = user;
        pub().IdUtenteCorrente = int(user == QLatin1String("administrator") ? 1 : m_mario);
    }

private slots:
    // The _data functions read texts before any fixture exists.
    void initTestCase() { loadLanguage(QStringLiteral("English")); }
    void init()
    {
        m_db = std::make_unique<TestDatabase>();
        db().execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values ('mario', null)"));
        m_mario = db().lastInsertId();
        pub().StampaEntrata = pub().StampaUscita = pub().TgObbligatoria = false;
        pub().OpModificare = pub().OpAnnullare = pub().OpContabilizzare = true;
        m_clock.now = QDateTime(QDate(2026, 3, 10), QTime(10, 0, 0));
    }
    void cleanup() { m_db.reset(); }

    // Every refusal of correction, cancellation, posting and exit, in their order; nothing changes.
    // A decision reads the row as stored, not the copy the window shows: a change made after the
    // set was read, before the press or while the first question stood open, stops the write and
    // asks for a re-read. A panel not filled from the row is never written either.
    void refusals_data()
    {
        // op: 0 ComMod, 1 ComAnn, 2 ComCont, 3 the exit button
        // right: OpModificare, OpAnnullare, OpContabilizzare
        // state: 0 inside, 1 cancelled, 2 posted, 3 out, -1 no row, -2 panel emptied
        // asked: the confirmation was asked, and answered Cancel unless a word follows
        // change: run after the set was read
        // during: while the first question is open, answered OK
        colonne<int, QString, bool, QString, int, QString, QString, bool, FuocoPark, QString, bool>(
            {"op", "user", "right", "tag", "state", "word", "message", "asked", "focus", "change", "during"});
        const QString in = QStringLiteral("INSIDE"), out = QStringLiteral("OUT"), mario = QStringLiteral("L'utente 'mario' ");
        const QString readOnly = mario + "è autorizzato solo a leggere le registrazione";
        const QString noChange = mario + "non è autorizzato a modificare o cancellare le registrazioni";
        const QString others = noChange + " fatte da altri utenti";
        const QString post = QStringLiteral("update Movimentazioni set Contabilizzato = -1");
        const QString cancel = QStringLiteral("update Movimentazioni set Annullato = -1");
        const QString left = QStringLiteral("update Movimentazioni set Entrato = 0, DataOraOut = '2026-03-10 09:45:00'");
        const QString gone = QStringLiteral("delete from Movimentazioni"), no;
        const auto G = FuocoPark::Griglia, N = FuocoPark::Nessuno;
        QTest::newRow("mod: no right") << 0 << "mario" << false << "" << 0 << in << TestoLingua("M0049") << false << G << no << false;
        QTest::newRow("mod: no row") << 0 << "mario" << true << "" << -1 << in << TestoLingua("M0050") << false << G << no << false;
        QTest::newRow("mod: letter A") << 0 << "mario" << true << "A" << 0 << in << noChange << false << G << no << false;
        QTest::newRow("mod: letter X, another's row") << 0 << "mario" << true << "X" << 0 << in << others << false << G << no << false;
        QTest::newRow("mod: administrator without the flag, cancelled")
            << 0 << "administrator" << false << "" << 1 << in << TestoLingua("M0051") << false << G << no << false;
        QTest::newRow("mod: posted") << 0 << "mario" << true << "N" << 2 << in << TestoLingua("M0052") << false << G << no << false;
        QTest::newRow("mod: question cancelled") << 0 << "mario" << true << "N" << 0 << "" << "" << true << G << no << false;
        QTest::newRow("mod: unknown word") << 0 << "mario" << true << "" << 3 << "MAYBE" << TestoLingua("M0054") << true
                                           << FuocoPark::StatoMovimento << no << false;
        QTest::newRow("mod: lower case word") << 0 << "mario" << true << "" << 3 << "inside" << TestoLingua("M0054")
                                              << true << FuocoPark::StatoMovimento << no << false;
        QTest::newRow("mod: quotes, 10000 characters") << 0 << "mario" << true << "" << 0
                                                       << "'\"" + QString(10000, QLatin1Char('x')) << TestoLingua("M0054")
                                                       << true << FuocoPark::StatoMovimento << no << false;
        QTest::newRow("mod: posted since shown") << 0 << "mario" << true << "" << 3 << out << TestoLingua("M0052") << false << G << post << false;
        QTest::newRow("mod: posted while asked") << 0 << "mario" << true << "" << 3 << in << TestoLingua("M0052") << true << G << post << true;
        QTest::newRow("mod: cancelled while asked") << 0 << "mario" << true << "" << 3 << out << TestoLingua("M0051") << true << G << cancel << true;
        QTest::newRow("mod: panel emptied") << 0 << "mario" << true << "" << -2 << in << "" << false << FuocoPark::Targa << no << false;
        QTest::newRow("ann: no right") << 1 << "mario" << false << "" << 0 << "" << TestoLingua("M0054") << false << G << no << false;
        QTest::newRow("ann: administrator without the flag") << 1 << "administrator" << false << "" << 0 << "" << ""
                                                             << true << N << no << false;
        QTest::newRow("ann: no row") << 1 << "mario" << true << "" << -1 << "" << TestoLingua("M0055") << false << G << no << false;
        QTest::newRow("ann: letter M") << 1 << "mario" << true << "M" << 0 << ""
                                       << mario + "non è autorizzato a cancellare le registrazioni" << false << G << no << false;
        QTest::newRow("ann: letter X, another's row") << 1 << "mario" << true << "X" << 0 << "" << others << false << G << no << false;
        QTest::newRow("ann: posted") << 1 << "mario" << true << "" << 2 << "" << TestoLingua("M0056") << false << G << no << false;
        QTest::newRow("ann: question cancelled") << 1 << "mario" << true << "C" << 1 << "" << "" << true << N << no << false;
        QTest::newRow("ann: posted since shown") << 1 << "mario" << true << "" << 3 << "" << TestoLingua("M0056") << false << G << post << false;
        QTest::newRow("ann: posted while asked") << 1 << "mario" << true << "" << 3 << "x" << TestoLingua("M0056") << true << G << post << true;
        QTest::newRow("ann: removed while asked") << 1 << "mario" << true << "" << 0 << "x" << "" << true << N << gone << true;
        QTest::newRow("cont: no right") << 2 << "mario" << false << "" << 3 << "" << TestoLingua("M0058") << false << G << no << false;
        QTest::newRow("cont: letter L") << 2 << "mario" << true << "L" << 3 << "" << readOnly << false << G << no << false;
        QTest::newRow("cont: only a vehicle inside") << 2 << "administrator" << false << "" << 0 << "" << TestoLingua("M0061")
                                                     << false << N << no << false;
        QTest::newRow("cont: only a cancelled exit") << 2 << "mario" << true << "N" << 1 << "" << TestoLingua("M0061") << false
                                                     << N << no << false;
        QTest::newRow("exit: left since shown") << 3 << "mario" << true << "" << 0 << "x" << TestoLingua("MOV01") << true << N << left << false;
        QTest::newRow("exit: left while asked") << 3 << "mario" << true << "" << 0 << "x" << TestoLingua("MOV01") << true << N << left << true;
        QTest::newRow("exit: cancelled since shown") << 3 << "mario" << true << "" << 0 << "x" << TestoLingua("MOV01") << true << N << cancel << false;
        QTest::newRow("exit: removed while asked") << 3 << "mario" << true << "" << 0 << "x" << "" << true << N << gone << true;
        QTest::newRow("exit: panel emptied") << 3 << "mario" << true << "" << -2 << "x" << "" << false << N << no << false;
    }
    void refusals()
    {
        QFETCH(int, op); QFETCH(QString, user); QFETCH(bool, right); QFETCH(QString, tag); QFETCH(int, state);
        QFETCH(QString, word); QFETCH(QString, message); QFETCH(bool, asked); QFETCH(FuocoPark, focus); QFETCH(QString, change);
        QFETCH(bool, during);
        const qint64 id = state == -1 ? -1 : insert(state == 0 || state == -2, state == 1, state == 2, QStringLiteral("1"));
        signInAs(user);
        (op == 0 ? pub().OpModificare : op == 1 ? pub().OpAnnullare : pub().OpContabilizzare) = right;
        m_clock.now = QDateTime(QDate(2026, 3, 10), QTime(11, 0, 0));
        auto rs = form(id); // the set holds its copy of the row from here on
        ScriptedPrompter p;
        for (int i = 0; i < 2; ++i) // a replay asks its own question
            p.answer(word.isEmpty() ? Prompter::Answer::Cancel : Prompter::Answer::Ok);
        parking::PannelloMovimento pn = state < 0 ? parking::PannelloMovimento() : panel(*rs);
        QStringList before; // the register as it must stay, once changed
        const auto cambia = [&] {
            if (!change.isEmpty())
                db().execute(change);
            before = dump(QStringLiteral("Movimentazioni"));
        };
        if (during)
            p.atQuestion = cambia;
        else
            cambia();
        bool scritto = true, rilegge = false;
        FuocoPark fuoco = FuocoPark::Nessuno;
        if (op == 2) {
            const auto esito = parking::ComCont(tag, p, m_clock.fn());
            scritto = esito.contabilizzato;
            fuoco = esito.fuoco;
        } else if (op == 3) {
            const auto esito = parking::EntraEsce(*rs, false, false, pn, p, m_clock.fn());
            scritto = esito.scritto;
            rilegge = esito.rileggi;
        } else {
            const auto esito = op == 1 ? parking::ComAnn(*rs, tag, p) : parking::ComMod(*rs, word, pn, tag, p, m_clock.fn());
            scritto = esito.eseguito;
            rilegge = esito.aggiorna;
            fuoco = esito.fuoco;
        }
        QVERIFY(!scritto);
        if (op != 3)
            QCOMPARE(fuoco, focus);
        QCOMPARE(p.texts(), message.isEmpty() ? QStringList() : QStringList{message});
        if (!change.isEmpty() || state == -2)
            QVERIFY(rilegge); // the window must show the row as it stands
        QCOMPARE(p.questions.size(), !asked ? 0 : op == 0 && during ? 2 : 1);
        QVERIFY(!p.atQuestion);
        if (asked && op < 2) {
            QCOMPARE(p.questions.first(), op == 1 ? TestoLingua("M0057") + QStringLiteral("\n\n") + TestoLingua("M0006")
                                              : TestoLingua("M0053"));
            QCOMPARE(p.questionIcons.first(), op == 1 ? Prompter::Icon::Stop : Prompter::Icon::Exclamation);
        }
        QCOMPARE(dump(QStringLiteral("Movimentazioni")), before);
        QCOMPARE(count(QStringLiteral("select count(*) from Cassa")), 0);
    }

    // A correction of an entry replays the entry on the same row: fresh time, number and year kept.
    void correctEntry()
    {
        const qint64 id = insert(false, false, false, QStringLiteral("4"), m_mario); // X: own rows only
        const QVariant number = db().scalar(QStringLiteral("select Progressivo from Movimentazioni"));
        pub().AnnoEsercizio = QStringLiteral("2027"); // the year moved on: the row keeps its own
        signInAs(QStringLiteral("mario"));
        m_clock.now = QDateTime(QDate(2026, 3, 10), QTime(12, 0, 0));
        auto rs = form(id);
        parking::PannelloMovimento pn = panel(*rs);
        pn.targa = QStringLiteral("  ZZ999ZZ  ");
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok); // M0053
        p.answer(Prompter::Answer::Ok); // M0066
        const auto esito = parking::ComMod(*rs, parking::ParolaStato(true), pn, QStringLiteral("X"), p, m_clock.fn());

        QVERIFY2(esito.eseguito, qPrintable(p.messages.isEmpty() ? QString() : p.messages.first().text));
        QVERIFY(esito.aggiorna && !esito.entraEsce.resto);
        QCOMPARE(p.questions.last(), TestoLingua("M0066") + QStringLiteral("ZZ999ZZ'' ?"));
        // Back inside with a fresh time; the old amount stays until the next exit; no number taken.
        QCOMPARE(dump(QStringLiteral("Movimentazioni"), QStringLiteral("Entrato, Targa, DataOra, DataOraOut, IdUtenteOut, IdUtente, "
                                                                        "Progressivo, Anno, Importo")),
                 QStringList(QStringLiteral("-1|ZZ999ZZ|2026-03-10 12:00:00|||%1|%2|2026|%3")
                                 .arg(m_mario).arg(number.toLongLong()).arg(money(QStringLiteral("4")).raw())));
        QCOMPARE(count(QStringLiteral("select count(*) from TabProgressivi")), 0);
    }

    // A correction of an exit stamps the exit again and prices the stay (entered 09:00) up to now.
    void correctExit()
    {
        using Caso = std::tuple<const char *, QTime, const char *>; // band, time of the correction, amount
        for (const auto &[band, correctedAt, amount] : {Caso("01", QTime(11, 1, 0), "6"),   // 121 min, 2.00 per hour started
                                                       Caso("02", QTime(11, 1, 0), "7.5"), // 3.00 + 3 x 1.50
                                                       Caso("01", QTime(9, 59, 59), "2")}) {
            const qint64 id = insert(false, false, false, QStringLiteral("1"));
            db().execute(QStringLiteral("update Movimentazioni set IdFascia = ? where id = ?"), {QLatin1String(band), id});
            m_clock.now = QDateTime(QDate(2026, 3, 10), correctedAt);
            auto rs = form(id);
            parking::PannelloMovimento pn = panel(*rs);
            ScriptedPrompter p;
            p.answer(Prompter::Answer::Ok); // M0053
            p.answer(Prompter::Answer::Ok); // M0072
            const auto esito = parking::ComMod(*rs, parking::ParolaStato(false), pn, QString(), p, m_clock.fn());
            QVERIFY(esito.eseguito);
            QCOMPARE(p.questions.last(), TestoLingua("M0072") + QStringLiteral("AB123CD'' ?"));
            QVERIFY(esito.entraEsce.resto); // the change calculator opens with the new amount
            QCOMPARE(esito.entraEsce.importo, money(QLatin1String(amount)));
            QCOMPARE(field(id, QStringLiteral("Importo, DataOraOut, DataOra, Entrato, Progressivo")),
                     QStringLiteral("%1|%2|2026-03-10 09:00:00|0|%3")
                         .arg(money(QLatin1String(amount)).raw())
                         .arg(m_clock.now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
                         .arg(id));
        }
        QCOMPARE(count(QStringLiteral("select count(*) from TabProgressivi")), 0);
    }

    void cancellation()
    {
        const qint64 a = insert(true, false, false, QStringLiteral("0"), 1);
        insert(true, false, false);
        insert(false, false, false, QStringLiteral("5"));
        QCOMPARE(parking::VeicoliDentro(), 2);
        signInAs(QStringLiteral("mario"));
        auto rs = form(a);
        ScriptedPrompter p;
        p.answer(Prompter::Answer::Ok);
        const auto esito = parking::ComAnn(*rs, QStringLiteral("C"), p);
        QVERIFY(esito.eseguito && esito.aggiorna && esito.contaVeicoli);
        QCOMPARE(esito.fuoco, FuocoPark::Griglia);
        // Marked, still entered, and the author replaced by who cancelled.
        QCOMPARE(dump(QStringLiteral("Movimentazioni"), QStringLiteral("Annullato, Entrato, IdUtente"), a),
                 QStringList(QStringLiteral("-1|-1|%1").arg(m_mario)));
        QCOMPARE(parking::VeicoliDentro(), 1);
        QCOMPARE(parking::RigaVeicoliDentro(), TestoLingua("M0299") + QStringLiteral(": 1"));
    }

    void posting()
    {
        for (int i = 0; i < 10; ++i) // ten times 0.1: a floating sum would miss 1 by a hair
            insert(false, false, false, QStringLiteral("0.1"));
        insert(false, false, false, QStringLiteral("0"));                             // zero still counts
        insert(false, false, false, QStringLiteral("2.2222"), 1, QStringLiteral("2025")); // any year
        insert(true, false, false, QStringLiteral("9"));  // inside
        insert(false, true, false, QStringLiteral("9"));  // cancelled
        insert(false, false, true, QStringLiteral("9"));  // posted before
        signInAs(QStringLiteral("mario"));
        m_clock.now = QDateTime(QDate(2026, 12, 31), QTime(23, 59, 59));

        ScriptedPrompter p;
        const auto esito = parking::ComCont(QStringLiteral("M"), p, m_clock.fn());
        QVERIFY(esito.contabilizzato);
        QCOMPARE(esito.movimenti, 12);
        QCOMPARE(esito.totale, money(QStringLiteral("3.2222")));
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().text, TestoLingua("M0059") + QStringLiteral(" 12 ") + TestoLingua("M0296"));
        QCOMPARE(p.messages.first().icon, Prompter::Icon::Information);
        // id, no customer, user, date without time, text, the double nearest the exact sum, no outflow, year.
        QCOMPARE(dump(QStringLiteral("Cassa")),
                 QStringList(QStringLiteral("%1||%2|2026-12-31 00:00:00|%3 (12 %4)|3.2222|0|2026")
                                 .arg(esito.idCassa).arg(m_mario).arg(TestoLingua("M0301"), TestoLingua("M0302"))));
        QCOMPARE(count(QStringLiteral("select count(*) from Movimentazioni where Contabilizzato = -1")), 13);
        QCOMPARE(count(QStringLiteral("select count(*) from Movimentazioni where Contabilizzato = 0 and (Entrato = -1 or Annullato = -1)")), 2);
    }

    // A failure before or after the cash row leaves both tables as they were.
    void postingFailure_data()
    {
        QTest::addColumn<QString>("trigger");
        QTest::newRow("cash row refused") << "create trigger stop before insert on Cassa begin select raise(abort, 'cash book locked'); end";
        QTest::newRow("marking refused after the cash row")
            << "create trigger stop before update on Movimentazioni begin select raise(abort, 'register locked'); end";
    }
    void postingFailure()
    {
        QFETCH(QString, trigger);
        insert(false, false, false, QStringLiteral("1.5"));
        insert(false, false, false, QStringLiteral("2.5"));
        db().execute(trigger);
        const QStringList movements = dump(QStringLiteral("Movimentazioni"));
        const QStringList cash = dump(QStringLiteral("Cassa"));
        ScriptedPrompter p;
        const auto esito = parking::Contabilizza(p, m_clock.fn());
        QVERIFY(!esito.contabilizzato);
        QCOMPARE(p.messages.size(), 1);
        QCOMPARE(p.messages.first().icon, Prompter::Icon::Critical);
        QVERIFY(p.messages.first().text.contains(QStringLiteral("locked")));
        QCOMPARE(dump(QStringLiteral("Movimentazioni")), movements);
        QCOMPARE(dump(QStringLiteral("Cassa")), cash);

        // Once the fault is gone the same movements post normally.
        db().execute(QStringLiteral("drop trigger stop"));
        ScriptedPrompter ok;
        const auto posted = parking::Contabilizza(ok, m_clock.fn());
        QVERIFY(posted.contabilizzato);
        QCOMPARE(posted.totale, money(QStringLiteral("4")));
    }

    void changeArithmetic_data()
    {
        colonne<QString, QString, bool, QString>({"due", "given", "valid", "change"});
        QTest::newRow("plain") << "12.5" << "20" << true << "7.5";
        QTest::newRow("comma") << "12.5" << " 20,25 " << true << "7.75";
        QTest::newRow("pays less") << "12.5" << "10" << true << "-2.5";
        QTest::newRow("four decimals") << "0.0001" << "0.0003" << true << "0.0002";
        QTest::newRow("largest") << "0" << "99999999999999.9999" << true << "99999999999999.9999";
        QTest::newRow("empty") << "3" << "" << false << "";
        QTest::newRow("letters") << "3" << "ten" << false << "";
        QTest::newRow("quote") << "3" << "1'0" << false << "";
        QTest::newRow("two separators") << "3" << "1.2.3" << false << "";
        QTest::newRow("five decimals") << "3" << "1.23456" << false << "";
        QTest::newRow("10000 digits") << "3" << QString(10000, QLatin1Char('9')) << false << "";
        QTest::newRow("nan") << "3" << "nan" << false << "";
    }
    void changeArithmetic()
    {
        QFETCH(QString, due); QFETCH(QString, given); QFETCH(bool, valid); QFETCH(QString, change);
        const auto resto = parking::RestoDaTesto(money(due), given);
        QCOMPARE(resto.has_value(), valid);
        QCOMPARE(resto.value_or(store::Currency()), valid ? money(change) : store::Currency());
        if (valid)
            QCOMPARE(parking::CalcolaResto(money(due), *parking::LeggeImporto(given)), money(change));
        // What the box lets through while typing, and how amounts are shown.
        QCOMPARE(parking::ImportoIncompleto(given), given.isEmpty());
        QVERIFY(parking::ImportoIncompleto(QStringLiteral("12.")) && parking::ImportoIncompleto(QStringLiteral("-")));
        QVERIFY(!parking::ImportoIncompleto(QStringLiteral("1.2.")));
        QCOMPARE(parking::TestoImporto(money(QStringLiteral("-3"))), QStringLiteral("-3.00"));
        QCOMPARE(parking::TestoImporto(money(QStringLiteral("0.1235"))), QStringLiteral("0.1235"));
    }

    // Shown modally as an exit shows it: the amount given has the focus, letters and quotes
    // are refused as typed, the change follows what is typed; Enter and Esc close it, storing nothing.
    void changeWindow()
    {
        for (const auto &[key, result] : {std::pair(Qt::Key_Return, int(QDialog::Accepted)), std::pair(Qt::Key_Escape, int(QDialog::Rejected))}) {
            parking::FrmResto w;
            auto *importo = w.findChild<QLineEdit *>(QStringLiteral("TxtNImporto"));
            auto *cliente = w.findChild<QLineEdit *>(QStringLiteral("TxtNImportoCliente"));
            auto *resto = w.findChild<QLineEdit *>(QStringLiteral("TxtNResto"));
            QVERIFY(importo && cliente && resto);
            w.impostaImporto(money(QStringLiteral("12.5")));
            QCOMPARE(importo->text(), QStringLiteral("12.50"));
            QVERIFY(resto->text().isEmpty() && !w.restoCalcolato()); // nothing typed, nothing shown
            QWidget *fuoco = nullptr;
            QTimer::singleShot(0, this, [&, key = key] {
                fuoco = QApplication::activeModalWidget() == &w ? w.focusWidget() : nullptr;
                QTest::keyClicks(cliente, QStringLiteral("2x'0"));
                QTest::keyClick(cliente, key);
            });
            QCOMPARE(w.exec(), result);
            QCOMPARE(fuoco, cliente);
            QCOMPARE(cliente->text(), QStringLiteral("20"));
            QCOMPARE(resto->text(), QStringLiteral("7.50"));
            QCOMPARE(w.resto(), money(QStringLiteral("7.5")));
            QTest::keyClick(cliente, Qt::Key_Backspace);
            QCOMPARE(resto->text(), QStringLiteral("-10.50"));
            QTest::keyClicks(cliente, QStringLiteral(",55"));
            QCOMPARE(resto->text(), QStringLiteral("-9.95"));
            cliente->selectAll();
            QTest::keyClicks(cliente, QString(10000, QLatin1Char('9')));
            QCOMPARE(cliente->text(), QString(14, QLatin1Char('9'))); // more whole digits are refused
            QVERIFY(w.restoCalcolato());
            QCOMPARE(w.findChild<QLabel *>(QStringLiteral("LblResto"))->text(), TestoLingua("M0365"));
            QCOMPARE(w.findChild<QLabel *>(QStringLiteral("lblImporto"))->text(), TestoLingua("M0322"));
            QCOMPARE(w.findChild<QLabel *>(QStringLiteral("lblCalcolaResto"))->text(), TestoLingua("M0367"));
            QCOMPARE(w.findChild<QPushButton *>(QStringLiteral("cmdOK"))->text(), TestoLingua("M0143"));
        }
        QCOMPARE(count(QStringLiteral("select count(*) from Cassa")), 0);
    }
};

QTEST_MAIN(TestCorrezione)
#include "tst_correzione.moc"
