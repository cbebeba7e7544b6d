// SPDX-License-Identifier: GPL-3.0-or-later
// The report engine: templates, selection, sort, groups, variables, graphs and the three destinations.
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"

#include "frame/PublicState.h"
#include "reports/engine/CrystalReport.h"
#include "reports/ui/AnteprimaReport.h"
#include "reports/ui/VisoreAnteprima.h"
#include "store/Connections.h"
#include "store/Database.h"

#include "support/Colonne.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QMessageBox>
#include <QPaintEngine>
#include <QSpinBox>
#include <QPrinterInfo>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace Qt::StringLiterals;

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
    db().execute(u"insert into Cassa (Data, Descrizione, Entrata, Uscita, Esercizio, IdUtente) values (?, ?, ?, ?, '2026', 1)"_s,
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
        movement(firstNumber + i, in, in.addSecs(3600), u"AB%1CD"_s.arg(100 + i), 2.5);
    }
}

// Keeps the pages of a run sent to the window.
struct Pagine final : reports::Visore {
    void mostra(std::shared_ptr<const reports::PagineReport> p, int, double) override { pagine = std::move(p); }
    std::shared_ptr<const reports::PagineReport> pagine;
};

// A page-sized device that notes the texts drawn on it instead of drawing them.
class Testi final : public QPaintDevice, QPaintEngine {
public:
    explicit Testi(QSizeF mm) : QPaintEngine(AllFeatures), m_mm(mm) {}
    QStringList testi;

    QPaintEngine *paintEngine() const override { return const_cast<Testi *>(this); }
    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState &) override {}
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    void drawPolygon(const QPointF *, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF &, const QTextItem &item) override { testi << item.text(); }
    Type type() const override { return User; }

protected:
    int metric(PaintDeviceMetric m) const override
    {
        switch (m) {
        case PdmWidth: return int(m_mm.width() * Dpi / 25.4);
        case PdmHeight: return int(m_mm.height() * Dpi / 25.4);
        case PdmWidthMM: return int(m_mm.width());
        case PdmHeightMM: return int(m_mm.height());
        case PdmDpiX: case PdmDpiY: case PdmPhysicalDpiX: case PdmPhysicalDpiY: return Dpi;
        case PdmDevicePixelRatioScaled: return int(devicePixelRatioFScale());
        case PdmDepth: return 32;
        default: return 1;
        }
    }

private:
    static constexpr int Dpi = 300;
    QSizeF m_mm;
};

} // namespace

class TestEngine : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_out;
    int m_file = 0;
    std::unique_ptr<TestDatabase> m_base;
    ScriptedPrompter p;
    reports::VisoreAnteprima m_visore;
    std::unique_ptr<CrystalReport> m_report;

    // An engine set as the program's windows set it, writing a PDF.
    void prepare(CrystalReport &r, const QString &templ)
    {
        r.setReportFileName(templ.contains(QLatin1Char('/')) ? templ : Templates + templ + u".rpt"_s);
        r.setConnect(u";pwd=;PWD=quartzel"_s);
        r.setDataFiles(0, frame::pub().Pathdata);
        r.setDiscardSavedData(true);
        r.setDestination(CrystalReport::ToFile);
        r.setPrintFileName(m_out.filePath(u"out%1.pdf"_s.arg(++m_file)));
        r.setKeepLayout(true);
    }

    static QString named(const CrystalReport &r, const QString &section, const QString &item, int index = 0)
    {
        const QList<reports::LaidOutSection> s = r.laidOut(section);
        return index < s.size() ? s.at(index).named.value(item) : u"<no section %1 #%2>"_s.arg(section).arg(index);
    }

    QString writeTemplate(const QByteArray &xml)
    {
        const QString path = m_out.filePath(u"t%1.rpt"_s.arg(++m_file));
        writeBytes(path, xml);
        return path;
    }

    // A fresh engine over `templ`, answering to p.
    CrystalReport &report(const QString &templ)
    {
        m_report = std::make_unique<CrystalReport>(p, &m_visore);
        prepare(*m_report, templ);
        return *m_report;
    }

private slots:
    void initTestCase()
    {
        // Money reads 1,234.50 whatever the machine's language.
        QLocale::setDefault(QLocale::c());
        QVERIFY(m_out.isValid());
    }
    void init()
    {
        m_base = std::make_unique<TestDatabase>();
        p = ScriptedPrompter();
    }
    void cleanup()
    {
        m_report.reset();
        m_base.reset();
    }

    void templateErrorsAreToldAndStopTheRun()
    {
        CrystalReport &r = report(u"NoSuchTemplate"_s);
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
        db().execute(u"update Impostazioni set IRagSoc = 'Garage Centrale', ITel = '0461 000000'"_s);
        movement(1, at(3, 2, 8), at(3, 2, 9, 30), u"AA111AA"_s, 3);
        movement(2, at(3, 2, 8, 15), at(3, 2, 10, 45), u"BB222BB"_s, 4.5, false, u"l'auto blu"_s);
        movement(3, at(3, 2, 8, 20), QDateTime(), u"CC333CC"_s, 0);
        const qint64 id = db().scalar(u"select id from Movimentazioni where Progressivo = 2"_s).toLongLong();

        CrystalReport &r = report(u"Movimento"_s);
        r.setSelectionFormula(u"{Q_Movimentazioni_Utenti.Id}="_s + QString::number(id));
        const char *labels[] = {"lblprogressivo='N.'", "lblingresso='Entrata'", "lbluscita='Uscita'", "lbltarga='Kennzeichen'",
                                "lblimporto='Importo'", "lblnote='Note dell''operatore'"};
        for (int i = 0; i < 6; ++i)
            r.setFormulas(i, QLatin1String(labels[i]));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(r.lastRowCount(), 1);
        QCOMPARE(r.lastPageCount(), 1);
        QVERIFY(p.messages.isEmpty());

        const reports::LaidOutSection detail = r.laidOut(u"detail"_s).value(0);
        QCOMPARE(detail.named.value(u"targa"_s), u"BB222BB"_s);
        QCOMPARE(detail.named.value(u"progressivo"_s), u"2"_s);
        QCOMPARE(detail.named.value(u"Importo"_s), u"4.50"_s);
        QCOMPARE(detail.named.value(u"note"_s), u"l'auto blu"_s);
        QCOMPARE(detail.named.value(u"ore"_s), u"2:30"_s);
        QVERIFY(detail.texts.contains(u"Kennzeichen"_s));
        QVERIFY(detail.texts.contains(u"Note dell'operatore"_s));
        QVERIFY(r.laidOut(u"reportHeader"_s).value(0).texts.contains(u"Garage Centrale"_s));

        const QByteArray pdf = bytesOf(m_out.filePath(u"out%1.pdf"_s.arg(m_file)));
        QVERIFY(pdf.startsWith("%PDF") && pdf.size() > 1000);

        // Formulas stay by index: a second run with only the selection changed keeps the labels.
        const qint64 inside = db().scalar(u"select id from Movimentazioni where Progressivo = 3"_s).toLongLong();
        r.setSelectionFormula(u"{Q_Movimentazioni_Utenti.Id}="_s + QString::number(inside));
        QVERIFY(r.setAction(1));
        const reports::LaidOutSection second = r.laidOut(u"detail"_s).value(0);
        QCOMPARE(second.named.value(u"targa"_s), u"CC333CC"_s);
        QVERIFY(second.texts.contains(u"Kennzeichen"_s));
        QCOMPARE(second.named.value(u"Importo"_s), QString()); // no amount while the vehicle is inside
    }

    void parkingSelectionPicksTheRows()
    {
        traffic(4, 1, 5, 1);
        traffic(4, 2, 7, 6);
        movement(13, at(4, 2, 9), QDateTime(), u"ZZ999ZZ"_s, 0);
        movement(14, at(4, 3, 9), at(4, 3, 11), u"AB100CD"_s, 5, true);

        CrystalReport &r = report(u"park"_s);
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(r.lastRowCount(), 14);
        QCOMPARE(named(r, u"reportFooter"_s, u"movimenti"_s), u"14"_s);
        // The cancelled stay is listed but its money isn't counted: 12 paid stays of 2.50.
        QCOMPARE(named(r, u"reportFooter"_s, u"importoTotale"_s), u"30.00"_s);
        QCOMPARE(named(r, u"reportFooter"_s, u"annullati"_s), u"1"_s);
        QCOMPARE(r.laidOut(u"groupFooter:giorno"_s).size(), 3);
        QCOMPARE(named(r, u"groupFooter:giorno"_s, u"importoGiorno"_s, 1), u"17.50"_s);

        r.setSelectionFormula(u"{Q_Movimentazioni_Utenti.entrato} = true"_s);
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 1);
        QCOMPARE(named(r, u"detail"_s, u"targa"_s), u"ZZ999ZZ"_s);

        // The window by the clock on every day of the period, as the parking report's window writes it.
        r.setSelectionFormula(QStringLiteral(
            "{Q_Movimentazioni_Utenti.entrato} = false and {Q_Movimentazioni_Utenti.DataOra} >= DateSerial (2026,4,2) and "
            "TimeSerial (Hour ({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) >= TimeSerial (8,0,0) and "
            "{Q_Movimentazioni_Utenti.DataOra} <= DateSerial (2026,4,4) and "
            "TimeSerial (Hour ({Q_Movimentazioni_Utenti.DataOra}),Minute ({Q_Movimentazioni_Utenti.DataOra}),0) <= TimeSerial (9,0,0)"));
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        // On 2 April the stays of 08:00, 08:20, 08:40 and 09:00, on 3 April the one of 09:00; 07:00 to 07:40 are outside the window.
        QCOMPARE(r.lastRowCount(), 5);

        r.setSelectionFormula(u"{Q_Movimentazioni_Utenti.targa} = \"AB100CD\""_s);
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 3);
    }

    void parkingGraphsAndPages()
    {
        traffic(5, 4, 10, 1);
        CrystalReport &r = report(u"park"_s);
        r.setFormulas(0, u"OmetteGrafGiorni=true"_s);
        r.setFormulas(1, u"OmetteGrafOre=true"_s);
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastPageCount(), 1);
        QVERIFY(r.laidOut(u"GROUPFTR"_s).isEmpty());
        const QStringList first = r.laidOut(u"pageFooter"_s).value(0).texts;
        QVERIFY2(first.contains(u"1 / 1"_s), qPrintable(first.join(QLatin1Char('|'))));

        r.setFormulas(0, u"OmetteGrafGiorni=false"_s);
        r.setFormulas(1, u"OmetteGrafOre=false"_s);
        r.setGraphText(0, u" GROUPFTR.0.0; 0; Ingressi per ora;;;;;;Ore;"_s);
        r.setGraphText(1, u" GROUPFTR.0.1; 0;Ingressi per giorno;;;;;Giorni;Veicoli;"_s);
        QVERIFY(r.setAction(1));
        QVERIFY(r.lastPageCount() >= 2);
        const reports::LaidOutSection hours = r.laidOut(u"GROUPFTR.0.0"_s).value(0);
        QCOMPARE(hours.graphTitles, QStringList{u"Ingressi per ora"_s});
        QCOMPARE(hours.graphBuckets, QList<int>{4}); // 07 to 10 o'clock
        QCOMPARE(r.laidOut(u"GROUPFTR.0.1"_s).value(0).graphBuckets, QList<int>{1});
        const int withGraphs = r.lastPageCount();

        // Many rows: more pages, numbered n / N throughout.
        traffic(5, 5, 40, 100);
        traffic(5, 6, 40, 200);
        traffic(5, 7, 40, 300);
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 130);
        QVERIFY(r.lastPageCount() >= withGraphs + 2);
        const QList<reports::LaidOutSection> footers = r.laidOut(u"pageFooter"_s);
        QCOMPARE(footers.size(), r.lastPageCount());
        QVERIFY(footers.last().texts.contains(u"%1 / %1"_s.arg(r.lastPageCount())));
        QCOMPARE(r.laidOut(u"GROUPFTR.0.1"_s).value(0).graphBuckets, QList<int>{4});
        QCOMPARE(r.laidOut(u"pageHeader"_s).size(), r.lastPageCount());
    }

    void cashBookCarriesAndRunsTheBalance()
    {
        db().execute(u"delete from TabProgressivi where Anno = '2026'"_s);
        db().execute(u"insert into TabProgressivi (Anno, Progressivo, EntrataPrecedente, UscitaPrecedente) values ('2026', 0, 100, 30)"_s);
        cash(QDate(2026, 1, 10), u"Canone gennaio"_s, 50, 0);
        cash(QDate(2026, 1, 20), u"Pulizie"_s, 0, 20);
        cash(QDate(2026, 2, 5), u"Incassi parcheggio"_s, 1200, 0);
        db().execute(u"insert into Cassa (Data, Descrizione, Entrata, Uscita, Esercizio) values (?, 'Senza importi', null, null, '2026')"_s,
                     {QDate(2026, 2, 6).startOfDay()});

        CrystalReport &r = report(u"cassa"_s);
        r.setFormulas(0, u"EntrataPeriodo=1000.0000"_s);
        r.setFormulas(1, u"UscitaPeriodo=400.0000"_s);
        r.setFormulas(2, u"DataPeriodo='01/01/2026'"_s);
        r.setFormulas(4, u"OmetteGrafSaldo=false"_s);
        r.setFormulas(10, u"lbltitolo='Cassa'"_s);
        r.setSelectionFormula(u"{TabProgressivi.Anno}='2026'"_s);
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(r.lastRowCount(), 4);

        // 70 carried from earlier years and 600 before the first day: the rows run from 670.
        QCOMPARE(named(r, u"reportHeader"_s, u"saldoIniziale"_s), u"70.00"_s);
        QCOMPARE(named(r, u"reportHeader"_s, u"saldoRiportato"_s), u"600.00"_s);
        QStringList balances;
        for (const reports::LaidOutSection &s : r.laidOut(u"detail"_s))
            balances << s.named.value(u"saldo"_s);
        QCOMPARE(balances, (QStringList{u"720.00"_s, u"700.00"_s, u"1,900.00"_s, u"1,900.00"_s}));
        QCOMPARE(named(r, u"groupFooter:mese"_s, u"entrateMese"_s), u"50.00"_s);
        QCOMPARE(named(r, u"groupFooter:mese"_s, u"usciteMese"_s), u"20.00"_s);
        QCOMPARE(named(r, u"groupFooter:mese"_s, u"saldoMese"_s), u"700.00"_s);
        QCOMPARE(named(r, u"reportFooter"_s, u"entrateTotali"_s), u"1,250.00"_s);
        QCOMPARE(named(r, u"reportFooter"_s, u"saldoTotale"_s), u"1,900.00"_s);
        QVERIFY(r.laidOut(u"reportHeader"_s).value(0).texts.contains(u"Cassa"_s));
        QCOMPARE(r.laidOut(u"GROUPFTR.0.1"_s).value(0).graphBuckets, QList<int>{4});

        // Only the money in: the rows narrow, the carried sums stay.
        r.setSelectionFormula(u"{TabProgressivi.Anno}='2026' and isnull({Cassa.uscita}) or {Cassa.uscita}=0"_s);
        r.setFormulas(4, u"OmetteGrafSaldo=true"_s);
        r.setPrintFileName(m_out.filePath(u"cash-in.pdf"_s));
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 3);
        QCOMPARE(named(r, u"reportFooter"_s, u"saldoTotale"_s), u"1,920.00"_s);
        QVERIFY(r.laidOut(u"GROUPFTR"_s).isEmpty());
    }

    void emptyCashBookPrintsLabels()
    {
        CrystalReport &r = report(u"cassa"_s);
        r.setSelectionFormula(u"{TabProgressivi.Anno}='2026'"_s);
        QVERIFY(r.setAction(1));
        QCOMPARE(r.lastRowCount(), 0);
        QCOMPARE(r.lastPageCount(), 1);
        QVERIFY(r.laidOut(u"pageHeader"_s).value(0).texts.contains(u"Description"_s));
    }

    void sortFieldsOrderTheList()
    {
        for (const char *name : {"Rossi Mario", "Bianchi Anna", "Verdi Luca", "Neri Carla"}) {
            const QStringList parts = QString::fromUtf8(name).split(QLatin1Char(' '));
            db().execute(u"insert into Clienti (Cliente, Cognome, Nome, \"Tel Cel\") values (-1, ?, ?, '333')"_s, {parts[0], parts[1]});
        }
        db().execute(u"insert into Clienti (Cliente, Cognome) values (0, 'Fornitore')"_s);
        CrystalReport &r = report(u"Elenco"_s);
        r.setSelectionFormula(u"{Q_Clienti_Utenti.Cliente}=true"_s);
        auto names = [&] {
            QStringList out;
            for (const reports::LaidOutSection &s : r.laidOut(u"detail"_s))
                out << s.named.value(u"nominativo"_s);
            return out;
        };
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        QCOMPARE(names(), (QStringList{u"Bianchi Anna"_s, u"Neri Carla"_s, u"Rossi Mario"_s, u"Verdi Luca"_s}));
        QCOMPARE(named(r, u"reportFooter"_s, u"totale"_s), u"4"_s);

        r.setSortFields(0, u"-{@Nominativo}"_s);
        QVERIFY(r.setAction(1));
        QCOMPARE(names().first(), u"Verdi Luca"_s);
        r.setSortFields(0, u"+{Q_Clienti_Utenti.Nome}"_s);
        QVERIFY(r.setAction(1));
        QCOMPARE(names().first(), u"Bianchi Anna"_s);
        QCOMPARE(names().last(), u"Rossi Mario"_s);
    }

    void formulaErrorsChangeNothing()
    {
        traffic(6, 1, 3, 1);
        CrystalReport &r = report(u"park"_s);
        QVERIFY(r.setAction(1));
        const int pages = r.lastPageCount();
        r.setSelectionFormula(u"{Q_Movimentazioni_Utenti.targa} = = 'X'"_s);
        QVERIFY(!r.setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY2(p.messages.at(0).text.contains(QLatin1String("selection")), qPrintable(p.messages.at(0).text));
        QCOMPARE(r.lastPageCount(), pages);
        QCOMPARE(r.lastRowCount(), 3);

        r.setSelectionFormula(QString());
        r.setSortFields(0, u"+{Q_Movimentazioni_Utenti.NonEsiste}"_s);
        QVERIFY(!r.setAction(1));
        QVERIFY(p.messages.last().text.contains(QLatin1String("SortFields(0)")));
    }

    void printerMissingIsTold()
    {
        if (!QPrinterInfo::defaultPrinter().isNull())
            QSKIP("this machine has a printer");
        CrystalReport &r = report(u"Movimento"_s);
        r.setDestination(CrystalReport::ToPrinter);
        QVERIFY(!r.setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY(p.messages.at(0).text.contains(QLatin1String("No printer is installed")));
    }

    // Pages drawn one at a time, as the preview shows them, are the pages of the whole run.
    void onePageIsPaintedAlone()
    {
        traffic(5, 4, 40, 1);
        traffic(5, 5, 40, 100);
        traffic(5, 6, 40, 200);
        CrystalReport &r = report(u"park"_s);
        QVERIFY(r.setAction(1));
        const int n = r.lastPageCount();
        QVERIFY(n >= 3);
        Pagine visore;
        CrystalReport finestra(p, &visore);
        prepare(finestra, u"park"_s);
        finestra.setDestination(CrystalReport::ToWindow);
        QVERIFY(finestra.setAction(1));
        QCOMPARE(visore.pagine->pageCount(), n);

        // paintPage(k) draws every text the run laid out on page k, and no other page's number,
        // whatever page was drawn before it.
        const QSizeF mm = visore.pagine->pageLayout().fullRect(QPageLayout::Millimeter).size();
        for (int k : {2, n, 1, n - 1}) {
            Testi device(mm);
            QPainter painter(&device);
            visore.pagine->paintPage(painter, device, k);
            painter.end();
            QStringList resto = device.testi;
            for (const reports::LaidOutSection &s : r.lastLayout())
                for (const QString &t : s.texts)
                    if (s.page == k && !t.isEmpty())
                        QVERIFY2(resto.removeOne(t), qPrintable(u"page %1 lacks \"%2\""_s.arg(k).arg(t)));
            const QStringList numeri = device.testi.filter(QRegularExpression(u"^\\d+ / %1$"_s.arg(n)));
            QCOMPARE(numeri, QStringList{u"%1 / %2"_s.arg(k).arg(n)});
        }

        // On an image: drawn, the same each time, and each page its own.
        const auto immagine = [&](int k) {
            QImage img(int(mm.width() * 96 / 25.4), int(mm.height() * 96 / 25.4), QImage::Format_RGB32);
            img.setDotsPerMeterX(3780);
            img.setDotsPerMeterY(3780);
            img.fill(Qt::white);
            QPainter painter(&img);
            visore.pagine->paintPage(painter, img, k);
            return img;
        };
        const QImage seconda = immagine(2);
        QVERIFY(immagine(1) != seconda); // neither page is blank
        immagine(n);
        QCOMPARE(immagine(2), seconda);
    }

    void previewOpensInItsOwnWindow()
    {
        traffic(7, 1, 4, 1);
        CrystalReport &r = report(u"park"_s);
        r.setDestination(CrystalReport::ToWindow);
        r.setWindowState(2);
        r.setWindowTitle(u"Parking report"_s);
        QVERIFY2(r.setAction(1), qPrintable(r.lastError()));
        reports::AnteprimaReport *preview = m_visore.finestra();
        QVERIFY(preview);
        QVERIFY(preview->isVisible());
        QVERIFY(!preview->isModal());
        QCOMPARE(preview->windowTitle(), u"Parking report"_s);
        QVERIFY(preview->windowState() & Qt::WindowMaximized);
        QVERIFY(preview->findChild<QAction *>(u"savePdf"_s));
        QVERIFY(preview->findChild<QAction *>(u"saveCsv"_s));
        QTimer::singleShot(50, preview, &QWidget::close);
        QTRY_VERIFY(!m_visore.finestra());
        QVERIFY(p.messages.isEmpty());
    }

    // The preview shows page 1 first and turns pages from its buttons, its keys and its page box.
    void previewTurnsPagesAndZooms()
    {
        traffic(5, 4, 40, 1);
        traffic(5, 5, 40, 100);
        CrystalReport &r = report(u"park"_s);
        r.setDestination(CrystalReport::ToWindow);
        r.setZoom(1);
        QVERIFY(r.setAction(1));
        const int n = r.lastPageCount();
        QVERIFY(n >= 3);
        reports::AnteprimaReport *preview = m_visore.finestra();
        QVERIFY(preview);
        preview->activateWindow(); // the keys below go to the active window
        QVERIFY(QTest::qWaitForWindowActive(preview));
        auto *numero = preview->findChild<QSpinBox *>(u"numeroPagina"_s);
        QVERIFY(numero);
        QCOMPARE(preview->pagina(), 1);
        QCOMPARE(preview->pagine(), n);
        QCOMPARE(numero->text(), u"1 / %1"_s.arg(n));
        QCOMPARE(preview->zoom(), 1.0);

        const auto azione = [&](const char *nome) { preview->findChild<QAction *>(QLatin1String(nome))->trigger(); };
        azione("paginaDopo");
        QCOMPARE(numero->value(), 2);
        azione("ultimaPagina");
        azione("paginaDopo");
        QCOMPARE(preview->pagina(), n); // no page after the last
        QTest::keyClick(preview, Qt::Key_Home);
        QCOMPARE(preview->pagina(), 1);
        QTest::keyClick(preview, Qt::Key_PageDown);
        QCOMPARE(preview->pagina(), 2);
        QTest::keyClick(preview, Qt::Key_End);
        QTest::keyClick(preview, Qt::Key_PageUp);
        QCOMPARE(preview->pagina(), n - 1);
        numero->setValue(2);
        QCOMPARE(preview->pagina(), 2);

        // Zoom in, out, and the page's width fitted to the window.
        QTest::keyClick(preview, Qt::Key_Plus, Qt::ControlModifier);
        QCOMPARE(preview->zoom(), 1.25);
        azione("zoomMeno");
        azione("zoomMeno");
        QCOMPARE(preview->zoom(), 0.8);
        azione("adattaLarghezza");
        QVERIFY(preview->adattaLarghezza());
        const QImage shown = preview->immagine(preview->pagina(), qRound(96 * preview->zoom()));
        QVERIFY(!shown.isNull());
        QVERIFY(shown.width() <= preview->width());

        // Print with no printer installed says so and prints nothing.
        if (QPrinterInfo::availablePrinters().isEmpty()) {
            QString detto;
            QTimer::singleShot(0, preview, [&detto] {
                if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                    detto = box->text();
                    box->close();
                }
            });
            azione("stampa");
            QVERIFY2(detto.contains(u"No printer is installed"_s), qPrintable(detto));
        }
        preview->close();
        QTRY_VERIFY(!m_visore.finestra());
        QVERIFY(p.messages.isEmpty());
    }

    // Templates that would hang the program or fill thousands of pages are refused, naming the file.
    void hostileTemplatesAreRefused_data()
    {
        colonne<QByteArray, QByteArray, int, QString>({"page", "detail", "rows", "told"});
        const QByteArray field = "><field value=\"{Cassa.Descrizione}\"/>";
        QTest::newRow("file too large") << QByteArray() << field + "<!--" + QByteArray(1 << 20, ' ') + "-->" << 0 << "too large";
        QTest::newRow("no room between the margins") << QByteArray("top=\"150\" bottom=\"145\"") << field << 0 << "no room";
        QTest::newRow("detail taller than a page") << QByteArray() << "height=\"300\"" + field << 0 << "leaves only 277";
        QTest::newRow("too many items") << QByteArray() << ">" + QByteArray("<text>a</text>").repeated(501) << 0 << "500 items";
        QTest::newRow("too many pages") << QByteArray() << "newPageBefore=\"true\"" + field << 10001 << "10000 pages";
    }

    void hostileTemplatesAreRefused()
    {
        QFETCH(QByteArray, page); QFETCH(QByteArray, detail); QFETCH(int, rows); QFETCH(QString, told);
        store::Transaction t(db());
        for (int i = 0; i < rows; ++i)
            cash(QDate(2026, 1, 1), u"riga"_s, 1, 0);
        t.commit();
        const QString file = writeTemplate("<report><data source=\"Cassa\"/><page " + page + "/><section type=\"detail\" " + detail +
                                           "</section></report>");
        QVERIFY(!report(file).setAction(1));
        QCOMPARE(p.messages.size(), 1);
        QVERIFY2(p.messages.at(0).text.contains(QFileInfo(file).fileName()) && p.messages.at(0).text.contains(told),
                 qPrintable(p.messages.at(0).text));
    }
};

QTEST_MAIN(TestEngine)
#include "tst_engine.moc"
