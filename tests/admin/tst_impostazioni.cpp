// SPDX-License-Identifier: GPL-3.0-or-later
// The settings: the yes-or-no rule, the year checks, the save of the company,
// counters and options in one transaction, the autostart entry, the change of the
// database path; then the window, driven as the administrator drives it.
#include "admin/Impostazioni.h"
#include "admin/ui/frmimposta.h"
#include "images/Immagini.h"
#include "images/ui/RiquadroLogo.h"
#include "parking/ui/frmPark.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"
#include "frame/widgets/Colori.h"
#include "store/Database.h"

#include "support/Colonne.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestWindows.h"

#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QtTest>

#include <memory>

using frame::Prompter;
using frame::pub;
using frame::TestoLingua;

namespace {

// What a save may touch in the database, to tell that a refused one touched nothing.
QStringList istantanea()
{
    QStringList righe;
    for (const QString &sql : {QStringLiteral("select * from Impostazioni"), QStringLiteral("select * from TabProgressivi order by rowid")}) {
        auto st = frame::basedati().prepare(sql);
        while (st.step()) {
            QStringList valori;
            for (int i = 0; i < st.columnCount(); ++i)
                valori << st.value(i).toString();
            righe << valori.join(QLatin1Char('|'));
        }
    }
    return righe;
}

admin::DatiImpostazioni datiCompleti()
{
    admin::DatiImpostazioni d;
    d.anno = QStringLiteral("2027");
    d.progressivi = {41, store::Currency::fromRaw(12'5000), store::Currency::fromRaw(3'2500)};
    d.azienda = {"Garage Centrale", "Parcheggio", "Custodia", "Lavaggio", "Via Roma 1", "00100", "RM", "Roma",
                 "01234567890", "info@garage.it", "06 123456", "www.garage.it"};
    d.opzioni = {"S", "s", "N", "S", "S", "N", " 02", true};
    d.logoP = QByteArray("logo-principale");
    d.logoS = QVariant();
    return d;
}

QString colonna(const char *nome)
{
    return frame::basedati().scalar(QStringLiteral("select %1 from Impostazioni").arg(QLatin1String(nome))).toString();
}

} // namespace

class TestImpostazioni : public QObject {
    Q_OBJECT

    frame::PublicState m_salvato;
    std::unique_ptr<TestDatabase> m_db;
    ScriptedPrompter m_prompter;

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(qEnvironmentVariableIsSet("XDG_CONFIG_HOME"));
    }
    void init()
    {
        m_salvato = pub();
        m_db = std::make_unique<TestDatabase>();
        m_prompter = ScriptedPrompter();
        pub().CartellaProgramma = QDir::currentPath() + QLatin1Char('/');
        frame::basedati().execute(QStringLiteral("insert into TabProgressivi (Anno, Progressivo, EntrataPrecedente, UscitaPrecedente) "
                                                 "values ('2026', 7, 1.5, 0)"));
        QFile::remove(frame::SettingsStore::fileName());
        QFile::remove(admin::FileAvvioAutomatico());
    }
    void cleanup()
    {
        m_db.reset();
        pub() = m_salvato;
        QFile::remove(frame::SettingsStore::fileName());
        QFile::remove(admin::FileAvvioAutomatico());
    }

    // Only the word for yes stands, as typed; anything else becomes the word for no. Both sides are
    // folded to upper case, accented letters too.
    void regolaSiNo_data()
    {
        // lingua: the yes-or-no words in use, empty for English ("S", "N")
        colonne<QByteArray, QString, QString, bool>({"lingua", "testo", "atteso", "si"});
        const QByteArray italiano("M0304;Sì\nM0305;No\n");
        QTest::newRow("S") << QByteArray() << "S" << "S" << true;
        QTest::newRow("s stands as typed") << QByteArray() << "s" << "s" << true;
        QTest::newRow("N") << QByteArray() << "N" << "N" << false;
        QTest::newRow("empty") << QByteArray() << "" << "N" << false;
        QTest::newRow("other word") << QByteArray() << "Yes" << "N" << false;
        QTest::newRow("blank before") << QByteArray() << " S" << "N" << false;
        QTest::newRow("typed after the word") << QByteArray() << "NS" << "N" << false;
        QTest::newRow("accented, lower") << italiano << "sì" << "sì" << true;
        QTest::newRow("accented, upper") << italiano << "SÌ" << "SÌ" << true;
        QTest::newRow("S under another word") << italiano << "S" << "No" << false;
    }
    void regolaSiNo()
    {
        QFETCH(QByteArray, lingua); QFETCH(QString, testo); QFETCH(QString, atteso); QFETCH(bool, si);
        if (!lingua.isEmpty())
            frame::LeggiTestiLingua(lingua, pub().TestiLingua);
        const admin::CasellaSiNo esito = admin::RegolaSiNo(testo);
        QCOMPARE(esito.testo, atteso);
        QCOMPARE(esito.si, si);
    }

    void controllaAnno_data()
    {
        // atteso: the key of the refusal, empty when the year stands
        colonne<QString, QString>({"testo", "atteso"});
        QTest::newRow("four digits") << "2026" << "";
        QTest::newRow("blanks") << " 2026 " << "";
        QTest::newRow("zero") << "0" << "M0130";
        QTest::newRow("four zeros") << "0000" << "M0130";
        QTest::newRow("empty") << "" << "M0130";
        QTest::newRow("three digits") << "202" << "M0131";
        QTest::newRow("five digits") << "20260" << "M0131";
        QTest::newRow("leading zero") << "0202" << "";
        QTest::newRow("sign") << "-202" << "M0131";
        QTest::newRow("letter") << "20a6" << "M0131";
        QTest::newRow("other digits") << QStringLiteral("٢٠٢٦") << "M0131";
    }
    void controllaAnno()
    {
        QFETCH(QString, testo); QFETCH(QString, atteso);
        const char *rifiuto = admin::ControllaAnno(testo);
        QCOMPARE(QString::fromLatin1(rifiuto), atteso);
    }

    // A refused year shows its message with the stop icon and writes nothing at all.
    void annoRifiutatoNonScrive_data()
    {
        colonne<QString, QString>({"anno", "chiave"});
        QTest::newRow("zero") << "0" << "M0130";
        QTest::newRow("three digits") << "202" << "M0131";
    }
    void annoRifiutatoNonScrive()
    {
        QFETCH(QString, anno); QFETCH(QString, chiave);
        const QStringList prima = istantanea();
        admin::DatiImpostazioni d = datiCompleti();
        d.anno = anno;
        QVERIFY(!admin::SalvaImpostazioni(m_prompter, d));
        QCOMPARE(m_prompter.messages.size(), 1);
        QCOMPARE(m_prompter.messages.first().text, TestoLingua(chiave.toLatin1().constData()));
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Stop);
        QCOMPARE(istantanea(), prima);
        QCOMPARE(pub().AnnoEsercizio, QStringLiteral("2026"));
        QVERIFY(!QFile::exists(admin::FileAvvioAutomatico()));
    }

    // Everything of the three tabs reaches its column; the year gets its counters; the flags follow the "S"
    // test (a lower "s" stands in its box but is off); the start-up key and the autostart entry are written.
    void salvaTutto()
    {
        QSignalSpy cambiate(&frame::preferenze(), &frame::Preferenze::cambiata);
        QVERIFY(admin::SalvaImpostazioni(m_prompter, datiCompleti()));
        QCOMPARE(m_prompter.texts(), QStringList{TestoLingua("M0132")});
        QCOMPARE(colonna("AnnoEsercizio"), QStringLiteral("2027"));
        QCOMPARE(colonna("IRagSoc"), QStringLiteral("Garage Centrale"));
        QCOMPARE(colonna("IIndHttp"), QStringLiteral("www.garage.it"));
        QCOMPARE(colonna("OpAnnullare"), QStringLiteral("s"));
        QCOMPARE(colonna("FasciaDefault"), QStringLiteral(" 02"));
        QCOMPARE(frame::preferenze().iLogoP(), QByteArray("logo-principale"));
        QVERIFY(frame::preferenze().iLogoS().isNull());
        // A year without a counters row gets one that holds the counters but no year.
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from TabProgressivi where Anno is null and "
                                                         "Progressivo = 41 and EntrataPrecedente = 12.5")).toInt(), 1);
        QCOMPARE(pub().AnnoEsercizio, QStringLiteral("2027"));
        QVERIFY(pub().TgObbligatoria);
        QVERIFY(!pub().OpAnnullare);
        QVERIFY(!pub().OpModificare);
        QVERIFY(pub().OpContabilizzare && pub().StampaEntrata);
        QVERIFY(!pub().StampaUscita);
        QCOMPARE(pub().FasciaDefault, QStringLiteral(" 02"));
        QVERIFY(pub().AvvioPark);
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("impostazioni"), QStringLiteral("AVVIO")), QStringLiteral("S"));
        const QString voce = QString::fromUtf8(bytesOf(admin::FileAvvioAutomatico()));
        QVERIFY2(voce.startsWith(QLatin1String("[Desktop Entry]\n")), qPrintable(voce));
        QVERIFY2(voce.contains(QStringLiteral("\nExec=\"%1\"\n").arg(QCoreApplication::applicationFilePath())), qPrintable(voce));
        QVERIFY(admin::FileAvvioAutomatico().startsWith(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/autostart/")));
        QVERIFY(cambiate.size() >= 10);

        // Back to manual start: the entry goes, and the counters of an existing year are edited in place.
        admin::DatiImpostazioni d = datiCompleti();
        d.anno = QStringLiteral("2026");
        d.opzioni.avvioAutomatico = false;
        QVERIFY(admin::SalvaImpostazioni(m_prompter, d));
        QVERIFY(!QFile::exists(admin::FileAvvioAutomatico()));
        QVERIFY(!pub().AvvioPark);
        QCOMPARE(admin::LeggiProgressivi(frame::basedati(), QStringLiteral("2026"))->progressivo, 41);
    }

    // A failure half-way keeps nothing: not the year written first, not the counters, not the state, and no
    // change is announced; the user is told why.
    void salvaUnaTransazione()
    {
        // A value the save changes, so that it writes the column that fails.
        frame::basedati().execute(QStringLiteral("update Impostazioni set StampaUscita = 'prima'"));
        frame::basedati().executeScript(QStringLiteral(
            "CREATE TRIGGER guasto BEFORE UPDATE OF StampaUscita ON Impostazioni BEGIN SELECT RAISE(ABORT, 'disk full'); END;"));
        const QStringList prima = istantanea();
        QSignalSpy cambiate(&frame::preferenze(), &frame::Preferenze::cambiata);
        admin::DatiImpostazioni d = datiCompleti();
        d.anno = QStringLiteral("2026");
        QVERIFY(!admin::SalvaImpostazioni(m_prompter, d));
        QCOMPARE(m_prompter.messages.size(), 1);
        QVERIFY2(m_prompter.messages.first().text.contains(QLatin1String("disk full")), qPrintable(m_prompter.messages.first().text));
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Critical);
        QCOMPARE(istantanea(), prima);
        QCOMPARE(cambiate.size(), 0);
        QVERIFY(!pub().AvvioPark);
        QVERIFY(!QFile::exists(admin::FileAvvioAutomatico()));
    }

    // Reserved characters of the program's path are escaped in the entry's Exec line.
    void avvioAutomaticoEscape()
    {
        QVERIFY(admin::ImpostaAvvioAutomatico(true, QStringLiteral("/opt/my \"car\" park/$HOME/100%/veltano")));
        const QString voce = QString::fromUtf8(bytesOf(admin::FileAvvioAutomatico()));
        QVERIFY2(voce.contains(QStringLiteral("\nExec=\"/opt/my \\\\\"car\\\\\" park/\\\\$HOME/100%%/veltano\"\n")), qPrintable(voce));
        QVERIFY(admin::ImpostaAvvioAutomatico(false, QString()));
        QVERIFY(!QFile::exists(admin::FileAvvioAutomatico()));
        QVERIFY(admin::ImpostaAvvioAutomatico(false, QString()));
    }

    // A new path is taken only when it names a database of this program that opens with the key.
    void cambiaPercorso_data()
    {
        // atteso: the key of the message shown
        colonne<QString, QString>({"caso", "atteso"});
        QTest::newRow("missing") << "missing" << "M0117";
        QTest::newRow("empty") << "empty" << "M0117";
        QTest::newRow("folder") << "folder" << "CAP39";
        QTest::newRow("text file") << "text" << "CAP39";
        QTest::newRow("wrong key") << "key" << "CAP39";
        QTest::newRow("backup catalogue") << "catalogue" << "CAP39";
        QTest::newRow("a copy of the database") << "copy" << "M0128";
    }
    void cambiaPercorso()
    {
        QFETCH(QString, caso); QFETCH(QString, atteso);
        QTemporaryDir altra;
        const QString file = altra.filePath(QStringLiteral("basedati.mdb"));
        if (caso == QLatin1String("text"))
            writeBytes(file, "not a database\n");
        if (caso == QLatin1String("key"))
            store::Database(file, QStringLiteral("another"), store::Database::Mode::Create).executeScript(QStringLiteral("CREATE TABLE Impostazioni (id INTEGER)"));
        if (caso == QLatin1String("copy"))
            QVERIFY(QFile::copy(m_db->path(), file));
        const QString percorso = caso == QLatin1String("empty")        ? QStringLiteral("  ")
                                 : caso == QLatin1String("folder")    ? altra.path()
                                 : caso == QLatin1String("catalogue") ? QDir(m_db->folder()).filePath(QStringLiteral("ElencoBackup.mdb"))
                                                                      : file;
        const QString prima = pub().Pathdata;
        const bool preso = admin::CambiaPercorso(m_prompter, percorso);
        QCOMPARE(preso, atteso == QLatin1String("M0128"));
        QCOMPARE(m_prompter.messages.size(), 1);
        QVERIFY2(m_prompter.messages.first().text.startsWith(TestoLingua(atteso.toLatin1().constData()).section(QLatin1Char('%'), 0, 0)),
                 qPrintable(m_prompter.messages.first().text));
        QCOMPARE(pub().Pathdata, preso ? file : prima);
        QCOMPARE(frame::SettingsStore::get(QStringLiteral("Impostazioni"), QStringLiteral("pathdata")), preso ? file : QString());
        if (preso)
            QCOMPARE(m_prompter.messages.first().text, TestoLingua("M0128") + QStringLiteral("\n\n") + TestoLingua("M0129"));
    }

    // ---- The window

    // Opens with the company tab first and four tabs in reach; the boxes show the row, the year and its counters;
    // the yes-or-no boxes show the options in force.
    void finestraApertura()
    {
        frame::preferenze().setIRagSoc(QStringLiteral("Garage Centrale"));
        frame::preferenze().setTgObbligatoria(QStringLiteral("N")); // the box shows the flag, not the word
        pub().TgObbligatoria = true;
        pub().StampaEntrata = false;
        admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Normale);
        QVERIFY(showActive(&f));
        auto *schede = c<QTabWidget>(&f, "SSTab1");
        QCOMPARE(schede->currentIndex(), 1);
        QList<int> visibili;
        for (int i = 0; i < schede->count(); ++i)
            if (schede->isTabVisible(i))
                visibili << i;
        QCOMPARE(visibili, (QList<int>{1, 3, 6, 7}));
        QVERIFY(!schede->isTabEnabled(0));
        QCOMPARE(schede->tabText(0), QString());
        QCOMPARE(schede->tabText(1), TestoLingua("M0256"));
        QCOMPARE(c(&f, "IRagSoc")->text(), QStringLiteral("Garage Centrale"));
        QCOMPARE(c(&f, "TgObbligatoria")->text(), QStringLiteral("S"));
        QCOMPARE(c(&f, "StampaEntrata")->text(), QStringLiteral("N"));
        QCOMPARE(c(&f, "ILoginFTP")->text(), QStringLiteral("anonymous"));
        QCOMPARE(c(&f, "TDBNumAnnoEsercizio")->text(), QStringLiteral("2026"));
        QCOMPARE(c<QComboBox>(&f, "ComboAnno")->currentText(), QStringLiteral("2026"));
        QCOMPARE(c(&f, "TDBNumProgressivo")->text(), QStringLiteral("7"));
        QCOMPARE(c(&f, "TxtNEnt")->text(), QLocale().toString(1.5));
        QVERIFY(c<QWidget>(&f, "RiquadroLogoP")->layout() && c<QWidget>(&f, "RiquadroLogoS")->layout());
        QVERIFY(c<QWidget>(&f, "CmdChiusura") && c<QWidget>(&f, "Command11"));
        QVERIFY(m_prompter.messages.isEmpty());
    }

    // An empty counters table is told at opening; the year's number then shows 0.
    void finestraSenzaAnni()
    {
        frame::basedati().execute(QStringLiteral("delete from TabProgressivi"));
        admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Normale);
        QVERIFY(showActive(&f));
        QCOMPARE(m_prompter.texts(), QStringList{TestoLingua("M0023")});
        QCOMPARE(c<QComboBox>(&f, "ComboAnno")->count(), 0);
        QCOMPARE(c(&f, "TDBNumProgressivo")->text(), QStringLiteral("0"));
    }

    // Typing in a yes-or-no box: anything but the word for yes turns to the word for no, in the "off" colour.
    void finestraCaselleSiNo()
    {
        admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Normale);
        QVERIFY(showActive(&f));
        c<QTabWidget>(&f, "SSTab1")->setCurrentIndex(7);
        QLineEdit *box = c(&f, "OpModificare");
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QStringLiteral("x"));
        QCOMPARE(box->text(), QStringLiteral("N"));
        QCOMPARE(box->palette().color(QPalette::Base), frame::ColoreDaValore(pub().ColoreCampo5));
        QTest::keyClicks(box, QStringLiteral("S")); // the word was selected: the key replaces it
        QCOMPARE(box->text(), QStringLiteral("S"));
        QCOMPARE(box->palette().color(QPalette::Base), frame::ColoreDaValore(pub().ColoreCampo4, box));
    }

    // The year checks through the window: the message, nothing written, the window still open for a correction.
    void finestraAnnoRifiutato_data()
    {
        colonne<QString, QString>({"anno", "chiave"});
        QTest::newRow("three digits") << "202" << "M0131";
        QTest::newRow("zero") << "0" << "M0130";
    }
    void finestraAnnoRifiutato()
    {
        QFETCH(QString, anno); QFETCH(QString, chiave);
        admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Normale);
        QVERIFY(showActive(&f));
        const QStringList prima = istantanea();
        c(&f, "IRagSoc")->setText(QStringLiteral("Changed"));
        c(&f, "TDBNumAnnoEsercizio")->setText(anno);
        c<QPushButton>(&f, "Command8")->click();
        QCOMPARE(m_prompter.texts(), QStringList{TestoLingua(chiave.toLatin1().constData())});
        QCOMPARE(istantanea(), prima);
        QCOMPARE(c<QPushButton>(&f, "CmdAnnulla")->text(), TestoLingua("M0144"));
        QVERIFY(f.isVisible());
        // A correct year then saves, and Cancel becomes Close.
        c(&f, "TDBNumAnnoEsercizio")->setText(QStringLiteral("2026"));
        c<QPushButton>(&f, "Command8")->click();
        QCOMPARE(m_prompter.texts().last(), TestoLingua("M0132"));
        QCOMPARE(colonna("IRagSoc"), QStringLiteral("Changed"));
        QCOMPARE(c<QPushButton>(&f, "CmdAnnulla")->text(), QStringLiteral("&Chiudi"));
    }

    // The logos through the window: the stored one shown and kept, one loaded from
    // a file and zoomed, both written by the save and read back.
    void finestraLoghi()
    {
        QImage rosso(40, 30, QImage::Format_RGB32);
        rosso.fill(Qt::red);
        frame::preferenze().setILogoP(images::ImmagineInCampo(rosso).toByteArray());
        QTemporaryDir cartella;
        QImage blu(200, 100, QImage::Format_RGB32);
        blu.fill(Qt::blue);
        QVERIFY(blu.save(cartella.filePath(QStringLiteral("logo.png"))));

        admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Normale);
        QVERIFY(showActive(&f));
        auto *logoP = c<QWidget>(&f, "RiquadroLogoP")->findChild<images::RiquadroLogo *>();
        auto *logoS = c<QWidget>(&f, "RiquadroLogoS")->findChild<images::RiquadroLogo *>();
        QCOMPARE(logoP->immagine().size(), QSize(40, 30));
        QVERIFY(logoS->immagine().isNull());
        QVERIFY(logoS->caricaFile(cartella.filePath(QStringLiteral("logo.png"))));
        logoS->zoomPiu();
        logoS->zoomPiu();
        c<QPushButton>(&f, "Command8")->click();
        QCOMPARE(images::ImmagineDaCampo(frame::preferenze().iLogoP()).pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(images::ImmagineDaCampo(frame::preferenze().iLogoS()).size(), QSize(220, 110));
        QVERIFY(logoS->zoom().isEmpty());
    }

    // The slip at entry, switched on in the settings, is printed at the next entry of the parking window
    // (here: tried, and the missing printer told), and not before.
    void finestraStampaEntrata()
    {
        if (!QPrinterInfo::defaultPrinter().isNull())
            QSKIP("this machine has a printer: the slip would really print");
        pub().CartellaProgramma = QCoreApplication::applicationDirPath() + QLatin1Char('/'); // the slip's template
        pub().FasciaDefault = QStringLiteral("01");
        pub().StampaEntrata = false;
        pub().FormatoData = QStringLiteral("dd/MM/yyyy");
        parking::frmPark park(m_prompter);
        park.setAttribute(Qt::WA_DeleteOnClose, false);
        QVERIFY(showActive(&park));
        const auto entra = [&](const QString &targa) {
            QTest::keyClick(&park, Qt::Key_F5);
            c(&park, "TxtT_0")->setText(targa);
            m_prompter.answer(Prompter::Answer::Ok);
            c<QPushButton>(&park, "CmdEntraEsce")->click();
        };
        const QString nessunaStampante = TestoLingua("CAP11").section(QLatin1Char('%'), 0, 0);
        const auto stampe = [&] {
            return m_prompter.texts().filter(nessunaStampante).size();
        };
        entra(QStringLiteral("AB123CD"));
        QCOMPARE(stampe(), 0);

        {
            admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Normale);
            QVERIFY(showActive(&f));
            c<QTabWidget>(&f, "SSTab1")->setCurrentIndex(7);
            QLineEdit *box = c(&f, "StampaEntrata");
            box->setFocus();
            box->selectAll();
            QTest::keyClicks(box, QStringLiteral("S"));
            c<QPushButton>(&f, "Command8")->click();
            QCOMPARE(m_prompter.texts().last(), TestoLingua("M0132"));
        }
        QVERIFY(pub().StampaEntrata);
        QVERIFY(showActive(&park));
        entra(QStringLiteral("EF456GH"));
        QCOMPARE(frame::basedati().scalar(QStringLiteral("select count(*) from Movimentazioni")).toInt(), 2);
        QCOMPARE(stampe(), 1);
    }

    // At start without a database only the path's tab is there, with M0134; a valid path is saved.
    void finestraAvvio()
    {
        pub().Pathdata = QDir(m_db->folder()).filePath(QStringLiteral("missing/basedati.mdb"));
        admin::frmimposta f(m_prompter, admin::frmimposta::Modo::Avvio);
        QVERIFY(showActive(&f));
        QTRY_COMPARE(m_prompter.messages.size(), 1);
        QCOMPARE(m_prompter.messages.first().text, TestoLingua("M0134"));
        QCOMPARE(m_prompter.messages.first().icon, Prompter::Icon::Exclamation);
        auto *schede = c<QTabWidget>(&f, "SSTab1");
        QCOMPARE(schede->currentIndex(), 3);
        for (int i = 0; i < schede->count(); ++i)
            QCOMPARE(schede->isTabVisible(i), i == 3);
        QVERIFY(!c<QWidget>(&f, "Command8")->isVisible());
        QCOMPARE(c(&f, "Text1")->text(), QDir::toNativeSeparators(pub().Pathdata));
        c(&f, "Text1")->setText(m_db->path());
        c<QPushButton>(&f, "Command2")->click();
        QCOMPARE(m_prompter.texts().last(), TestoLingua("M0128") + QStringLiteral("\n\n") + TestoLingua("M0129"));
        QCOMPARE(frame::preferenze().pathData(), m_db->path());
    }
};

QTEST_MAIN(TestImpostazioni)
#include "tst_impostazioni.moc"
