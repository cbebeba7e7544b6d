// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/Contatti.h"
#include "customers/StampeCliente.h"
#include "forms/Filtro.h"

#include "reports/engine/CrystalReport.h"
#include "reports/engine/ReportRun.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Database.h"

#include "support/Colonne.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using customers::Contatti;
using customers::Desktop;
using Icon = frame::Prompter::Icon;

namespace {

// A desktop that records what it was handed and answers as told.
struct DesktopFinto {
    bool apre = true;
    QString browser = QStringLiteral("/usr/bin/firefox");
    bool avvia = true;
    QStringList aperti;
    QStringList avviati; // program | arguments joined by "," | folder

    Desktop desktop()
    {
        Desktop d;
        d.apri = [this](const QUrl &u) { aperti << u.toString(); return apre; };
        d.browser = [this] { return browser; };
        d.avvia = [this](const QString &p, const QStringList &a, const QString &c) {
            avviati << p + QLatin1Char('|') + a.join(QLatin1Char(',')) + QLatin1Char('|') + c;
            return avvia;
        };
        return d;
    }
};

const QString ErroreChiamata = QStringLiteral("Error dialing number : ");

} // namespace

class TestContatti : public QObject {
    Q_OBJECT

    std::unique_ptr<TestDatabase> m_db;
    QTemporaryDir m_out;
    qint64 m_obrien = 0, m_rossi = 0;
    qint64 m_incasso = 0, m_pagamento = 0;

    qint64 ultimoId(const char *tabella)
    {
        return frame::LeggiCampoSQL(QStringLiteral("select max(id) as m from ") + QLatin1String(tabella), QStringLiteral("m")).toLongLong();
    }

    // Runs a description into a PDF, keeping what each section printed.
    void stampa(reports::CrystalReport &report, reports::Lancio l, const char *file)
    {
        l.destinazione = reports::Lancio::ToFile;
        report.setKeepLayout(true);
        report.setPrintFileName(m_out.filePath(QLatin1String(file)));
        QVERIFY2(report.esegui(l), qPrintable(report.lastError()));
        QVERIFY(QFileInfo(m_out.filePath(QLatin1String(file))).size() > 0);
    }

private slots:
    void initTestCase()
    {
        m_db = std::make_unique<TestDatabase>();
        frame::pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");
        frame::pub().FormatoData = QStringLiteral("dd/mm/yyyy");
        store::Database &db = frame::basedati();
        db.execute(QStringLiteral("update Impostazioni set IRagSoc = ?, IIndirizzo = ?, ITel = ?, ICF = ?"),
                   {QStringLiteral("Garage dell'Àncora"), QStringLiteral("Via Roma 1"), QStringLiteral("0543 1234"), QStringLiteral("01234567890")});
        const QString ins = QStringLiteral("insert into Clienti (Cliente, Titolo, Cognome, Nome, Indirizzo, Cap, [Località], Provincia, "
                                           "[Tel Cel], [Tel Cel2], Email, Note, DataUltimoPagamento) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        db.execute(ins, {-1, QStringLiteral("Sig.ra"), QStringLiteral("O'Brien"), QStringLiteral("Zoë"), QStringLiteral("Via \"Dante\" 3"),
                         QStringLiteral("47121"), QStringLiteral("Forlì"), QStringLiteral("FC"), QStringLiteral("333 1234567"),
                         QStringLiteral("340 7654321"), QStringLiteral("zoe@example.it"), QStringLiteral("Paga a fine mese"),
                         QStringLiteral("2026-03-31 00:00:00")});
        m_obrien = ultimoId("Clienti");
        db.execute(ins, {0, QVariant(), QStringLiteral("Rossi"), QStringLiteral("Mario"), QVariant(), QVariant(), QVariant(), QVariant(),
                         QVariant(), QVariant(), QVariant(), QVariant(), QVariant()});
        m_rossi = ultimoId("Clienti");
        // Seven more, so that the labels fill a page and go on to the next.
        for (const char *c : {"Bianchi", "Conti", "Esposito", "Ferrari", "Gallo", "Greco", "Zàccaria"})
            db.execute(QStringLiteral("insert into Clienti (Cognome, Nome) values (?, 'N')"), {QString::fromUtf8(c)});

        const QString cassa = QStringLiteral("insert into Cassa (IdCliente, Data, Descrizione, Entrata, Uscita, Esercizio) values (?, ?, ?, ?, ?, '2026')");
        db.execute(cassa, {m_obrien, QStringLiteral("2026-04-02 00:00:00"), QStringLiteral("Canone d'aprile"), 1234.5, QVariant()});
        m_incasso = ultimoId("Cassa");
        db.execute(cassa, {m_rossi, QStringLiteral("2026-04-03 00:00:00"), QStringLiteral("Ricambi"), 0, 80});
        m_pagamento = ultimoId("Cassa");
    }
    void cleanupTestCase() { m_db.reset(); }

    // --- the file opener's reading of a command line

    void dividiRiga_data()
    {
        colonne<QString, QString, QString, QString>({"riga", "programma", "cartella", "parametri"});
        QTest::newRow("quoted, blanks inside") << "\"/opt/my app/run\" -x \"two words\"" << "/opt/my app/run" << "/opt/my app" << "-x \"two words\"";
        QTest::newRow("quoted, blanks before parameters") << "\"/bin/ls\"    -l" << "/bin/ls" << "/bin" << "-l";
        QTest::newRow("quote never closed") << "\"/a b/c" << "/a b/c" << "/a b" << "";
        QTest::newRow("plain, ends at first blank") << "/usr/bin/gedit   notes.txt more" << "/usr/bin/gedit" << "/usr/bin" << "notes.txt more";
        QTest::newRow("at the root keeps the separator") << "/prog a" << "/prog" << "/" << "a";
        QTest::newRow("after a colon keeps the separator") << "x:/prog" << "x:/prog" << "x:/" << "";
        QTest::newRow("relative folder") << "bin/tool -v" << "bin/tool" << "bin" << "-v";
        QTest::newRow("no folder: the current one") << "gedit file.txt" << "gedit" << "" << "file.txt";
        QTest::newRow("empty") << "" << "" << "" << "";
    }
    void dividiRiga()
    {
        QFETCH(QString, riga);
        const customers::RigaComando r = customers::DividiRigaComando(riga);
        QTEST(r.programma, "programma");
        QTEST(r.cartella, "cartella");
        QTEST(r.parametri, "parametri");
    }

    void apreFileAss()
    {
        ScriptedPrompter p;
        DesktopFinto d;
        Contatti c(p, d.desktop());
        QVERIFY(c.ApreFileAss(QStringLiteral("\"/opt/my app/run\" -x \"two words\""), 1));
        QCOMPARE(d.avviati, QStringList{QStringLiteral("/opt/my app/run|-x,two words|/opt/my app")});
        QVERIFY(d.aperti.isEmpty());

        // What can't be started is a document: the program tied to it opens it.
        d.avvia = false;
        d.avviati.clear();
        QVERIFY(c.ApreFileAss(QStringLiteral("/tmp/lettera.odt"), 3));
        QCOMPARE(d.avviati.size(), 1);
        QCOMPARE(d.aperti, QStringList{QStringLiteral("file:///tmp/lettera.odt")});
        d.apre = false;
        QVERIFY(!c.ApreFileAss(QStringLiteral("/tmp/lettera.odt"), 3));

        // An empty line starts nothing.
        d.avviati.clear();
        d.aperti.clear();
        QVERIFY(!c.ApreFileAss(QString(), 1));
        QVERIFY(d.avviati.isEmpty() && d.aperti.isEmpty());
        QVERIFY(p.messages.isEmpty());

        // The desktop's own starter starts a real program.
        Contatti reale(p);
        QVERIFY(reale.ApreFileAss(QStringLiteral("/bin/true --ignored"), 1));
    }

    // --- dial, mail, web page

    void telefono_data()
    {
        colonne<QString, bool, int, QString, QString>({"numero", "apre", "esito", "url", "messaggio"});
        const QString nessuno = QStringLiteral("No Windows Telephony dialing application is running and none could be started.");
        QTest::newRow("empty: nothing") << "" << true << 0 << "" << "";
        QTest::newRow("blanks: nothing") << "   " << true << 0 << "" << "";
        QTest::newRow("dialled, trimmed") << "  333 123/4567 " << true << 0 << "tel:3331234567" << "";
        QTest::newRow("separators kept") << "+39 (02) 123-45.6" << true << 0 << "tel:+39(02)123-45.6" << "";
        QTest::newRow("no handler") << "030 991234" << false << int(customers::NessunDialer) << "tel:030991234" << nessuno;
        QTest::newRow("not a number") << "chiama Mario" << true << int(customers::NumeroNonValido) << "" << "The phone number is not valid.";
        QTest::newRow("marks without a digit") << "--" << true << int(customers::NumeroNonValido) << "" << "The phone number is not valid.";
    }
    void telefono()
    {
        QFETCH(QString, numero); QFETCH(bool, apre); QFETCH(QString, url); QFETCH(QString, messaggio);
        ScriptedPrompter p;
        DesktopFinto d;
        d.apre = apre;
        Contatti c(p, d.desktop());
        QTEST(c.Telefono(numero), "esito");
        QCOMPARE(d.aperti, url.isEmpty() ? QStringList() : QStringList{url});
        QCOMPARE(p.texts(), messaggio.isEmpty() ? QStringList() : QStringList{ErroreChiamata + messaggio});
    }

    void email_data()
    {
        colonne<QString, QString>({"indirizzo", "url"});
        QTest::newRow("empty: nothing") << "" << "";
        QTest::newRow("blanks: nothing") << "  " << "";
        QTest::newRow("address") << "o'brien@example.it" << "mailto:o'brien@example.it";
        QTest::newRow("form not checked") << "not an address" << "mailto:not an address";
    }
    void email()
    {
        QFETCH(QString, indirizzo); QFETCH(QString, url);
        ScriptedPrompter p;
        DesktopFinto d;
        Contatti c(p, d.desktop());
        QCOMPARE(c.Email(indirizzo), !url.isEmpty());
        QCOMPARE(d.aperti, url.isEmpty() ? QStringList() : QStringList{url});
        QVERIFY(p.messages.isEmpty());
        // No mail account can be read on this desktop.
        QVERIFY(customers::GetEmail().indirizzo.isEmpty() && customers::GetEmail().nome.isEmpty());
    }

    void paginaWeb_data()
    {
        colonne<QString, bool, bool, QString, QString, int>({"url", "browser", "apre", "aperto", "messaggio", "icona"});
        QTest::newRow("empty") << "" << true << true << "" << "Enter a URL" << int(Icon::Exclamation);
        QTest::newRow("blanks") << "   " << true << true << "" << "Enter a URL" << int(Icon::Exclamation);
        QTest::newRow("no browser") << "www.example.com" << false << true << "" << "Could not find your Browser" << int(Icon::Information);
        QTest::newRow("not opened") << "www.example.com" << true << false << "http://www.example.com" << "Web Page Not Opened" << int(Icon::Information);
        QTest::newRow("opened, trimmed") << " https://example.com/a?b=1 " << true << true << "https://example.com/a?b=1" << "" << 0;
    }
    void paginaWeb()
    {
        QFETCH(QString, url); QFETCH(bool, browser); QFETCH(bool, apre); QFETCH(QString, aperto); QFETCH(QString, messaggio); QFETCH(int, icona);
        ScriptedPrompter p;
        DesktopFinto d;
        d.apre = apre;
        if (!browser)
            d.browser.clear();
        Contatti c(p, d.desktop());
        QCOMPARE(c.AprePaginaWeb(url), messaggio.isEmpty());
        QCOMPARE(d.aperti, aperto.isEmpty() ? QStringList() : QStringList{aperto});
        QCOMPARE(p.texts(), messaggio.isEmpty() ? QStringList() : QStringList{messaggio});
        if (!messaggio.isEmpty())
            QCOMPARE(int(p.messages.first().icon), icona);
    }

    // --- what each print hands the engine

    void lancioRicevuta_data()
    {
        colonne<QVariant, bool, QString, QString>({"id", "cliente", "selezione", "parte"});
        QTest::newRow("row not stored") << QVariant() << true << "" << "";
        QTest::newRow("empty id") << QVariant(QString()) << true << "" << "";
        QTest::newRow("customer's row") << QVariant(qint64(15)) << true << "{Cassa.id}= 15" << "lblcliente='Customer'";
        QTest::newRow("supplier's row, id as text") << QVariant(QStringLiteral("8")) << false << "{Cassa.id}= 8" << "lblcliente='Supplier'";
    }
    void lancioRicevuta()
    {
        QFETCH(QVariant, id); QFETCH(bool, cliente); QFETCH(QString, selezione); QFETCH(QString, parte);
        const std::optional<reports::Lancio> l = customers::LancioRicevuta(id, cliente);
        QCOMPARE(l.has_value(), !selezione.isEmpty());
        if (!l)
            return;
        QCOMPARE(l->selezione, selezione);
        QCOMPARE(l->formule.value(1), parte);
    }

    // --- the templates, printed from the database

    void stampaScheda()
    {
        ScriptedPrompter p;
        reports::CrystalReport report(p);
        stampa(report, customers::LancioScheda(m_obrien, true), "scheda.pdf");
        QCOMPARE(report.lastRowCount(), 1);
        const reports::LaidOutSection testata = report.laidOut(QStringLiteral("pageHeader")).value(0);
        QCOMPARE(testata.named.value(QStringLiteral("ditta")), QStringLiteral("Garage dell'Àncora"));
        QCOMPARE(testata.named.value(QStringLiteral("titolo")), QStringLiteral("Scheda Customer"));
        const reports::LaidOutSection scheda = report.laidOut(QStringLiteral("detail")).value(0);
        QCOMPARE(scheda.named.value(QStringLiteral("titoloCortesia")), QStringLiteral("Sig.ra"));
        QCOMPARE(scheda.named.value(QStringLiteral("nominativo")), QStringLiteral("O'Brien Zoë"));
        QCOMPARE(scheda.named.value(QStringLiteral("indirizzo")), QStringLiteral("Via \"Dante\" 3"));
        QCOMPARE(scheda.named.value(QStringLiteral("localita")), QStringLiteral("47121 Forlì"));
        QCOMPARE(scheda.named.value(QStringLiteral("cellulare2")), QStringLiteral("340 7654321"));
        QCOMPARE(scheda.named.value(QStringLiteral("ultimoPagamento")), QStringLiteral("31/03/2026"));
        QCOMPARE(scheda.named.value(QStringLiteral("note")), QStringLiteral("Paga a fine mese"));
        QVERIFY(scheda.texts.contains(QStringLiteral("Mobile 2")) && scheda.texts.contains(QStringLiteral("Last payment")));
        // A supplier's record without a courtesy title prints none.
        stampa(report, customers::LancioScheda(m_rossi, false), "scheda2.pdf");
        QCOMPARE(report.laidOut(QStringLiteral("pageHeader")).value(0).named.value(QStringLiteral("titolo")), QStringLiteral("Scheda Supplier"));
        QVERIFY(!report.laidOut(QStringLiteral("detail")).value(0).named.contains(QStringLiteral("titoloCortesia")));
        QVERIFY(p.messages.isEmpty());
    }

    void stampaRicevuta()
    {
        ScriptedPrompter p;
        reports::CrystalReport report(p);
        stampa(report, *customers::LancioRicevuta(m_incasso, true), "ricevuta.pdf");
        QCOMPARE(report.lastRowCount(), 1);
        reports::LaidOutSection r = report.laidOut(QStringLiteral("detail")).value(0);
        QCOMPARE(r.named.value(QStringLiteral("ditta")), QStringLiteral("Garage dell'Àncora"));
        QCOMPARE(r.named.value(QStringLiteral("numero")), QStringLiteral("N. ") + QString::number(m_incasso));
        QCOMPARE(r.named.value(QStringLiteral("data")), QStringLiteral("02/04/2026"));
        QCOMPARE(r.named.value(QStringLiteral("nominativo")), QStringLiteral("O'Brien Zoë"));
        QCOMPARE(r.named.value(QStringLiteral("descrizione")), QStringLiteral("Canone d'aprile"));
        QCOMPARE(r.named.value(QStringLiteral("importo")), reports::engine::formatMoney(1234.5));
        QVERIFY(r.texts.contains(QStringLiteral("Customer")) && r.texts.contains(QStringLiteral("Amount")));
        QCOMPARE(r.texts.count(reports::engine::formatMoney(1234.5)), 1); // one amount, not both

        // A row that only paid out shows what it paid.
        stampa(report, *customers::LancioRicevuta(m_pagamento, false), "ricevuta2.pdf");
        r = report.laidOut(QStringLiteral("detail")).value(0);
        QCOMPARE(r.named.value(QStringLiteral("importo")), reports::engine::formatMoney(80));
        QCOMPARE(r.named.value(QStringLiteral("nominativo")), QStringLiteral("Rossi Mario"));
        QVERIFY(r.texts.contains(QStringLiteral("Supplier")));
        QVERIFY(p.messages.isEmpty());
    }

    void stampaEtichette()
    {
        ScriptedPrompter p;
        reports::CrystalReport report(p);
        stampa(report, forms::LancioFiltro(forms::CostruisciFiltro(QStringLiteral("Q_Clienti_Utenti"), {}, 0, p), QStringLiteral("Etichette")), "etichette.pdf");
        QCOMPARE(report.lastRowCount(), 9);
        QCOMPARE(report.lastPageCount(), 2);
        const QList<reports::LaidOutSection> etichette = report.laidOut(QStringLiteral("detail"));
        QCOMPARE(etichette.size(), 9);
        QStringList nomi;
        for (const reports::LaidOutSection &e : etichette) {
            nomi << e.named.value(QStringLiteral("nominativo"));
            QCOMPARE(e.page, nomi.size() <= 7 ? 1 : 2);
        }
        QCOMPARE(nomi, QStringList({"Bianchi N", "Conti N", "Esposito N", "Ferrari N", "Gallo N", "Greco N", "O'Brien Zoë",
                                    "Rossi Mario", "Zàccaria N"}));
        const reports::LaidOutSection obrien = etichette.value(6);
        QCOMPARE(obrien.named.value(QStringLiteral("titoloCortesia")), QStringLiteral("Sig.ra"));
        QCOMPARE(obrien.named.value(QStringLiteral("indirizzo")), QStringLiteral("Via \"Dante\" 3"));
        QCOMPARE(obrien.named.value(QStringLiteral("localita")), QStringLiteral("47121 Forlì FC"));

        QVERIFY(p.messages.isEmpty());
    }
};

QTEST_MAIN(TestContatti)
#include "tst_contatti.moc"
