// SPDX-License-Identifier: GPL-3.0-or-later
// The report engine: templates, selection, sort, groups, variables, graphs and the three destinations.
#include "ScriptedPrompter.h"
#include "TestDatabase.h"

#include <Connections.h>
#include <CrystalReport.h>
#include <Database.h>
#include <PublicState.h>

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QPrintPreviewDialog>
#include <QPrinterInfo>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using reports::CrystalReport;

namespace {

const QString Templates = QStringLiteral(VELTANO_SOURCE_DIR "/templates/");

store::Database &db()
{
    return store::Connections::get(frame::pub().Pathdata);
}

void movement(int progressivo, const QDateTime &in, const QDateTime &out, const QString &targa, double importo,
              bool annullato = false, const QString &note = QString())
{
    db().execute(QStringLiteral("insert into Movimentazioni (Anno, Progressivo, DataOra, DataOraOut, Targa, Importo, Entrato, "
                                "Annullato, Note, IdUtente) values ('2026', ?, ?, ?, ?, ?, ?, ?, ?, 1)"),
                 {progressivo, in, out.isValid() ? QVariant(out) : QVariant(), targa, qint64(importo * 10000),
                  out.isValid() ? 0 : -1, annullato ? -1 : 0, note});
}

void cash(const QDate &day, const QString &what, double in, double out)
{
    db().execute(QStringLiteral("insert into Cassa (Data, Descrizione, Entrata, Uscita, Esercizio, IdUtente) values (?, ?, ?, ?, '2026', 1)"),
                 {day.startOfDay(), what, in, out});
}

QDateTime at(int month, int day, int hour, int minute = 0)
{
    return QDateTime(QDate(2026, month, day), QTime(hour, minute));
}

// A day of traffic: `count` stays from 07:00 on, every 20 minutes, each an hour long and paid 2.50.
void traffic(int month, int day, int count, int firstNumber)
{
    for (int i = 0; i < count; ++i) {
        const QDateTime in = at(month, day, 7).addSecs(i * 1200);
        movement(firstNumber + i, in, in.addSecs(3600), QStringLiteral("AB%1CD").arg(100 + i), 2.5);
    }
}

} // namespace

class TestEngine : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_out;
    int m_file = 0;

    // An engine set as the program's windows set it, writing a PDF.
    void prepare(CrystalReport &r, const QString &templ)
    {
        r.setReportFileName(templ.contains(QLatin1Char('/')) ? templ : Templates + templ + QStringLiteral(".rpt"));
        r.setConnect(QStringLiteral(";pwd=;PWD=quartzel"));
        r.setDataFiles(0, frame::pub().Pathdata);
        r.setDiscardSavedData(true);
        r.setDestination(CrystalReport::ToFile);
        r.setPrintFileName(m_out.filePath(QStringLiteral("out%1.pdf").arg(++m_file)));
        r.setKeepLayout(true);
    }

    static QString named(const CrystalReport &r, const QString &section, const QString &item, int index = 0)
    {
        const QList<reports::LaidOutSection> s = r.laidOut(section);
        return index < s.size() ? s.at(index).named.value(item) : QStringLiteral("<no section %1 #%2>").arg(section).arg(index);
    }

    QString writeTemplate(const QByteArray &xml)
    {
        const QString path = m_out.filePath(QStringLiteral("t%1.rpt").arg(++m_file));
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(xml);
        return path;
    }

private slots:
    void initTestCase()
    {
        // Money reads 1,234.50 whatever the machine's language.
        QLocale::setDefault(QLocale::c());
        QVERIFY(m_out.isValid());
    }

    void templateErrorsAreToldAndStopTheRun()
    {
        TestDatabase base;
        ScriptedPrompter p;
        CrystalReport r(p);

        prepare(r, QStringLiteral("NoSuchTemplate"));
        QVERIFY(!r.setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY2(p.messages.at(0).text.contains(QLatin1String("NoSuchTemplate.rpt")), qPrintable(p.messages.at(0).text));
        QCOMPARE(r.lastError(), p.messages.at(0).text);

        const QString bad = writeTemplate("<report><data source=\"Cassa\"/><section type=\"detail\"><field value=\"{Cassa.id}\"></report>");
        prepare(r, bad);
        QVERIFY(!r.setAction(1));
        QVERIFY2(p.messages.last().text.contains(QFileInfo(bad).fileName()), qPrintable(p.messages.last().text));

        prepare(r, writeTemplate("<report><data source=\"Cassa\"/><section type=\"detail\" height=\"5\">"
                                 "<field value=\"{@NonEsiste}\"/></section></report>"));
        QVERIFY(!r.setAction(1));
        QVERIFY2(p.messages.last().text.contains(QLatin1String("line 1")), qPrintable(p.messages.last().text));
        QVERIFY(p.messages.last().text.contains(QLatin1String("NonEsiste")));

        prepare(r, writeTemplate("<report><data source=\"Fatture\"/></report>"));
        QVERIFY(!r.setAction(1));
        QVERIFY(p.messages.last().text.contains(QLatin1String("Fatture")));

        // A failed run leaves the figures of the last good one.
        QCOMPARE(r.lastPageCount(), 0);
        QCOMPARE(p.messages.size(), 4);
    }

    void slipOfOneMovementToPdf()
    {
        TestDatabase base;
        db().execute(QStringLiteral("update Impostazioni set IRagSoc = 'Garage Centrale', ITel = '0461 000000'"));
        movement(1, at(3, 2, 8), at(3, 2, 9, 30), QStringLiteral("AA111AA"), 3);
        movement(2, at(3, 2, 8, 15), at(3, 2, 10, 45), QStringLiteral("BB222BB"), 4.5, false, QStringLiteral("l'auto blu"));
        movement(3, at(3, 2, 8, 20), QDateTime(), QStringLiteral("CC333CC"), 0);
        const qint64 id = db().scalar(QStringLiteral("select id from Movimentazioni where Progressivo = 2")).toLongLong();

        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("Movimento"));
        r.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.Id}=") + QString::number(id));
        const char *labels[] = {"lblprogressivo='N.'", "lblingresso='Entrata'", "lbluscita='Uscita'", "lbltarga='Kennzeichen'",
                                "lblimporto='Importo'", "lblnote='Note dell''operatore'"};
        for (int i = 0; i < 6; ++i)
            r.setFormulas(i, QLatin1String(labels[i]));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(r.lastRowCount(), 1);
        QCOMPARE(r.lastPageCount(), 1);
        QVERIFY(p.messages.isEmpty());

        const reports::LaidOutSection detail = r.laidOut(QStringLiteral("detail")).value(0);
        QCOMPARE(detail.named.value(QStringLiteral("targa")), QStringLiteral("BB222BB"));
        QCOMPARE(detail.named.value(QStringLiteral("progressivo")), QStringLiteral("2"));
        QCOMPARE(detail.named.value(QStringLiteral("Importo")), QStringLiteral("4.50"));
        QCOMPARE(detail.named.value(QStringLiteral("note")), QStringLiteral("l'auto blu"));
        QCOMPARE(detail.named.value(QStringLiteral("ore")), QStringLiteral("2:30"));
        QVERIFY(detail.texts.contains(QStringLiteral("Kennzeichen")));
        QVERIFY(detail.texts.contains(QStringLiteral("Note dell'operatore")));
        QVERIFY(r.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Garage Centrale")));

        QFile pdf(m_out.filePath(QStringLiteral("out%1.pdf").arg(m_file)));
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(4) == "%PDF");
        QVERIFY(pdf.size() > 1000);

        // Formulas stay by index: a second run with only the selection changed keeps the labels.
        const qint64 inside = db().scalar(QStringLiteral("select id from Movimentazioni where Progressivo = 3")).toLongLong();
        r.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.Id}=") + QString::number(inside));
        QVERIFY(r.setAction(1));
        const reports::LaidOutSection second = r.laidOut(QStringLiteral("detail")).value(0);
        QCOMPARE(second.named.value(QStringLiteral("targa")), QStringLiteral("CC333CC"));
        QVERIFY(second.texts.contains(QStringLiteral("Kennzeichen")));
        QCOMPARE(second.named.value(QStringLiteral("Importo")), QString()); // no amount while the vehicle is inside
    }

    void parkingSelectionPicksTheRows()
    {
        TestDatabase base;
        traffic(4, 1, 5, 1);
        traffic(4, 2, 7, 6);
        movement(13, at(4, 2, 9), QDateTime(), QStringLiteral("ZZ999ZZ"), 0);
        movement(14, at(4, 3, 9), at(4, 3, 11), QStringLiteral("AB100CD"), 5, true);

        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("park"));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(r.lastRowCount(), 14);
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("movimenti")), QStringLiteral("14"));
        // The cancelled stay is listed but its money isn't counted: 12 paid stays of 2.50.
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("importoTotale")), QStringLiteral("30.00"));
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("annullati")), QStringLiteral("1"));
        QCOMPARE(r.laidOut(QStringLiteral("groupFooter:giorno")).size(), 3);
        QCOMPARE(named(r, QStringLiteral("groupFooter:giorno"), QStringLiteral("importoGiorno"), 1), QStringLiteral("17.50"));

        r.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.entrato} = true"));
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 1);
        QCOMPARE(named(r, QStringLiteral("detail"), QStringLiteral("targa")), QStringLiteral("ZZ999ZZ"));

        // The window by the clock on every day of the period, as the parking report's window writes it.
        r.setSelectionFormula(QStringLiteral(
            "{Q_Movimentazioni_Utenti.entrato} = false and {Q_Movimentazioni_Utenti.DataOra} >= DateSerial (2026,4,2) and "
            "TimeSerial (Hour ({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) >= TimeSerial (8,0,0) and "
            "{Q_Movimentazioni_Utenti.DataOra} <= DateSerial (2026,4,4) and "
            "TimeSerial (Hour ({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) <= TimeSerial (9,0,0)"));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        // On 2 April the stays of 08:00, 08:20, 08:40 and 09:00, on 3 April the one of 09:00; 07:00 to 07:40 are outside the window.
        QCOMPARE(r.lastRowCount(), 5);

        r.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.targa} = \"AB100CD\""));
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 3);
    }

    void parkingGraphsAndPages()
    {
        TestDatabase base;
        traffic(5, 4, 10, 1);
        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("park"));
        r.setFormulas(0, QStringLiteral("OmetteGrafGiorni=true"));
        r.setFormulas(1, QStringLiteral("OmetteGrafOre=true"));
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastPageCount(), 1);
        QVERIFY(r.laidOut(QStringLiteral("GROUPFTR")).isEmpty());
        const QStringList first = r.laidOut(QStringLiteral("pageFooter")).value(0).texts;
        QVERIFY2(first.contains(QStringLiteral("1 / 1")), qPrintable(first.join(QLatin1Char('|'))));

        r.setFormulas(0, QStringLiteral("OmetteGrafGiorni=false"));
        r.setFormulas(1, QStringLiteral("OmetteGrafOre=false"));
        r.setGraphText(0, QStringLiteral(" GROUPFTR.0.0; 0; Ingressi per ora;;;;;;Ore;"));
        r.setGraphText(1, QStringLiteral(" GROUPFTR.0.1; 0;Ingressi per giorno;;;;;Giorni;Veicoli;"));
        QVERIFY(r.setAction(1));
        QVERIFY(r.lastPageCount() >= 2);
        const reports::LaidOutSection hours = r.laidOut(QStringLiteral("GROUPFTR.0.0")).value(0);
        QCOMPARE(hours.graphTitles, QStringList{QStringLiteral("Ingressi per ora")});
        QCOMPARE(hours.graphBuckets, QList<int>{4}); // 07 to 10 o'clock
        QCOMPARE(r.laidOut(QStringLiteral("GROUPFTR.0.1")).value(0).graphBuckets, QList<int>{1});
        const int withGraphs = r.lastPageCount();

        // Many rows: more pages, numbered n / N throughout.
        traffic(5, 5, 40, 100);
        traffic(5, 6, 40, 200);
        traffic(5, 7, 40, 300);
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 130);
        QVERIFY(r.lastPageCount() >= withGraphs + 2);
        const QList<reports::LaidOutSection> footers = r.laidOut(QStringLiteral("pageFooter"));
        QCOMPARE(footers.size(), r.lastPageCount());
        QVERIFY(footers.last().texts.contains(QStringLiteral("%1 / %1").arg(r.lastPageCount())));
        QCOMPARE(r.laidOut(QStringLiteral("GROUPFTR.0.1")).value(0).graphBuckets, QList<int>{4});
        QCOMPARE(r.laidOut(QStringLiteral("pageHeader")).size(), r.lastPageCount());
    }

    void cashBookCarriesAndRunsTheBalance()
    {
        TestDatabase base;
        db().execute(QStringLiteral("delete from TabProgressivi where Anno = '2026'"));
        db().execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo, EntrataPrecedente, UscitaPrecedente) values ('2026', 0, 100, 30)"));
        cash(QDate(2026, 1, 10), QStringLiteral("Canone gennaio"), 50, 0);
        cash(QDate(2026, 1, 20), QStringLiteral("Pulizie"), 0, 20);
        cash(QDate(2026, 2, 5), QStringLiteral("Incassi parcheggio"), 1200, 0);
        db().execute(QStringLiteral("insert into Cassa (Data, Descrizione, Entrata, Uscita, Esercizio) values (?, 'Senza importi', null, null, '2026')"),
                     {QDate(2026, 2, 6).startOfDay()});

        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("cassa"));
        r.setFormulas(0, QStringLiteral("EntrataPeriodo=1000.0000"));
        r.setFormulas(1, QStringLiteral("UscitaPeriodo=400.0000"));
        r.setFormulas(2, QStringLiteral("DataPeriodo='01/01/2026'"));
        r.setFormulas(4, QStringLiteral("OmetteGrafSaldo=false"));
        r.setFormulas(10, QStringLiteral("lbltitolo='Cassa'"));
        r.setSelectionFormula(QStringLiteral("{TabProgressivi.Anno}='2026'"));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(r.lastRowCount(), 4);

        // 70 carried from earlier years and 600 before the first day: the rows run from 670.
        QCOMPARE(named(r, QStringLiteral("reportHeader"), QStringLiteral("saldoIniziale")), QStringLiteral("70.00"));
        QCOMPARE(named(r, QStringLiteral("reportHeader"), QStringLiteral("saldoRiportato")), QStringLiteral("600.00"));
        QStringList balances;
        for (const reports::LaidOutSection &s : r.laidOut(QStringLiteral("detail")))
            balances << s.named.value(QStringLiteral("saldo"));
        QCOMPARE(balances, (QStringList{QStringLiteral("720.00"), QStringLiteral("700.00"), QStringLiteral("1,900.00"),
                                        QStringLiteral("1,900.00")}));
        QCOMPARE(named(r, QStringLiteral("groupFooter:mese"), QStringLiteral("entrateMese")), QStringLiteral("50.00"));
        QCOMPARE(named(r, QStringLiteral("groupFooter:mese"), QStringLiteral("usciteMese")), QStringLiteral("20.00"));
        QCOMPARE(named(r, QStringLiteral("groupFooter:mese"), QStringLiteral("saldoMese")), QStringLiteral("700.00"));
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("entrateTotali")), QStringLiteral("1,250.00"));
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("saldoTotale")), QStringLiteral("1,900.00"));
        QVERIFY(r.laidOut(QStringLiteral("reportHeader")).value(0).texts.contains(QStringLiteral("Cassa")));
        QCOMPARE(r.laidOut(QStringLiteral("GROUPFTR.0.1")).value(0).graphBuckets, QList<int>{4});

        // Only the money in: the rows narrow, the carried sums stay.
        r.setSelectionFormula(QStringLiteral("{TabProgressivi.Anno}='2026' and isnull({Cassa.uscita}) or {Cassa.uscita}=0"));
        r.setFormulas(4, QStringLiteral("OmetteGrafSaldo=true"));
        r.setPrintFileName(m_out.filePath(QStringLiteral("cash-in.pdf")));
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 3);
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("saldoTotale")), QStringLiteral("1,920.00"));
        QVERIFY(r.laidOut(QStringLiteral("GROUPFTR")).isEmpty());
    }

    void emptyCashBookPrintsLabels()
    {
        TestDatabase base;
        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("cassa"));
        r.setSelectionFormula(QStringLiteral("{TabProgressivi.Anno}='2026'"));
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 0);
        QCOMPARE(r.lastPageCount(), 1);
        QVERIFY(r.laidOut(QStringLiteral("pageHeader")).value(0).texts.contains(QStringLiteral("Description")));
    }

    void sortFieldsOrderTheList()
    {
        TestDatabase base;
        for (const char *name : {"Rossi Mario", "Bianchi Anna", "Verdi Luca", "Neri Carla"}) {
            const QStringList parts = QString::fromUtf8(name).split(QLatin1Char(' '));
            db().execute(QStringLiteral("insert into Clienti (Cliente, Cognome, Nome, \"Tel Cel\") values (-1, ?, ?, '333')"), {parts[0], parts[1]});
        }
        db().execute(QStringLiteral("insert into Clienti (Cliente, Cognome) values (0, 'Fornitore')"));
        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("Elenco"));
        r.setSelectionFormula(QStringLiteral("{Q_Clienti_Utenti.Cliente}=true"));
        auto names = [&] {
            QStringList out;
            for (const reports::LaidOutSection &s : r.laidOut(QStringLiteral("detail")))
                out << s.named.value(QStringLiteral("nominativo"));
            return out;
        };
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(names(), (QStringList{QStringLiteral("Bianchi Anna"), QStringLiteral("Neri Carla"), QStringLiteral("Rossi Mario"),
                                       QStringLiteral("Verdi Luca")}));
        QCOMPARE(named(r, QStringLiteral("reportFooter"), QStringLiteral("totale")), QStringLiteral("4"));

        r.setSortFields(0, QStringLiteral("-{@Nominativo}"));
        QVERIFY(r.setAction(1));
        QCOMPARE(names().first(), QStringLiteral("Verdi Luca"));
        r.setSortFields(0, QStringLiteral("+{Q_Clienti_Utenti.Nome}"));
        QVERIFY(r.setAction(1));
        QCOMPARE(names().first(), QStringLiteral("Bianchi Anna"));
        QCOMPARE(names().last(), QStringLiteral("Rossi Mario"));
    }

    void formulaErrorsChangeNothing()
    {
        TestDatabase base;
        traffic(6, 1, 3, 1);
        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("park"));
        QVERIFY(r.setAction(1));
        const int pages = r.lastPageCount();
        r.setSelectionFormula(QStringLiteral("{Q_Movimentazioni_Utenti.targa} = = 'X'"));
        QVERIFY(!r.setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY2(p.messages.at(0).text.contains(QLatin1String("selection")), qPrintable(p.messages.at(0).text));
        QCOMPARE(r.lastPageCount(), pages);
        QCOMPARE(r.lastRowCount(), 3);

        r.setSelectionFormula(QString());
        r.setSortFields(0, QStringLiteral("+{Q_Movimentazioni_Utenti.NonEsiste}"));
        QVERIFY(!r.setAction(1));
        QVERIFY(p.messages.last().text.contains(QLatin1String("SortFields(0)")));
    }

    void printerMissingIsTold()
    {
        if (!QPrinterInfo::defaultPrinter().isNull())
            QSKIP("this machine has a printer");
        TestDatabase base;
        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("Movimento"));
        r.setDestination(CrystalReport::ToPrinter);
        QVERIFY(!r.setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY(p.messages.at(0).text.contains(QLatin1String("No printer is installed")));
    }

    void previewOpensInItsOwnWindow()
    {
        TestDatabase base;
        traffic(7, 1, 4, 1);
        ScriptedPrompter p;
        CrystalReport r(p);
        prepare(r, QStringLiteral("park"));
        r.setDestination(CrystalReport::ToWindow);
        r.setWindowState(2);
        r.setWindowTitle(QStringLiteral("Parking report"));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        auto *preview = qobject_cast<QPrintPreviewDialog *>(r.previewWindow());
        QVERIFY(preview);
        QVERIFY(preview->isVisible());
        QVERIFY(!preview->isModal());
        QCOMPARE(preview->windowTitle(), QStringLiteral("Parking report"));
        QVERIFY(preview->windowState() & Qt::WindowMaximized);
        QVERIFY(preview->findChild<QAction *>(QStringLiteral("savePdf")));
        QTimer::singleShot(50, preview, &QWidget::close);
        QTRY_VERIFY(!r.previewWindow());
        QVERIFY(p.messages.isEmpty());
    }

    // Templates that would hang the program or fill thousands of pages are refused, naming the file.
    void hostileTemplatesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QByteArray>("detail");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("told");
        const QByteArray field = "><field value=\"{Cassa.Descrizione}\"/>";
        QTest::newRow("file too large") << QByteArray() << field + "<!--" + QByteArray(1 << 20, ' ') + "-->" << 0 << "too large";
        QTest::newRow("no room between the margins") << QByteArray("top=\"150\" bottom=\"145\"") << field << 0 << "no room";
        QTest::newRow("detail taller than a page") << QByteArray() << "height=\"300\"" + field << 0 << "leaves only 277";
        QTest::newRow("too many items") << QByteArray() << ">" + QByteArray("<text>a</text>").repeated(501) << 0 << "500 items";
        QTest::newRow("too many pages") << QByteArray() << "newPageBefore=\"true\"" + field << 10001 << "10000 pages";
    }

    void hostileTemplatesAreRefused()
    {
        QFETCH(QByteArray, page);
        QFETCH(QByteArray, detail);
        QFETCH(int, rows);
        QFETCH(QString, told);
        TestDatabase base;
        store::Transaction t(db());
        for (int i = 0; i < rows; ++i)
            cash(QDate(2026, 1, 1), QStringLiteral("riga"), 1, 0);
        t.commit();
        ScriptedPrompter p;
        CrystalReport r(p);
        const QString file = writeTemplate("<report><data source=\"Cassa\"/><page " + page + "/><section type=\"detail\" " + detail +
                                           "</section></report>");
        prepare(r, file);
        QVERIFY(!r.setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY2(p.messages.at(0).text.contains(QFileInfo(file).fileName()) && p.messages.at(0).text.contains(told),
                 qPrintable(p.messages.at(0).text));
    }
};

QTEST_MAIN(TestEngine)
#include "tst_engine.moc"
