// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/Immagini.h"
#include "images/Scanner.h"
#include "images/ui/FrmMostra.h"
#include "images/ui/RiquadroLogo.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"

#include "support/Colonne.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestWindows.h"

#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

using images::Scanner;

Q_DECLARE_METATYPE(Scanner::Esito)

namespace {

// A picture with a different colour in every pixel, so a shifted crop or a lossy store shows.
QImage motivo(int larghezza, int altezza, QImage::Format formato = QImage::Format_RGB32)
{
    QImage img(larghezza, altezza, formato);
    for (int y = 0; y < altezza; ++y)
        for (int x = 0; x < larghezza; ++x)
            img.setPixel(x, y, qRgba(x * 7 % 256, y * 13 % 256, (x + y) % 256,
                                     formato == QImage::Format_ARGB32 ? (x * 3) % 256 : 255));
    return img;
}

bool tuttiDelColore(const QImage &img, QRgb colore)
{
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            if (img.pixel(x, y) != colore)
                return false;
    return true;
}

QPushButton *bottone(QWidget *w, const char *nome)
{
    return w->findChild<QPushButton *>(QLatin1String(nome));
}

} // namespace

class TestImages : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { loadLanguage(QStringLiteral("English")); }

    // --- The image field ---
    void campoAndataERitorno_data()
    {
        colonne<QImage>({"immagine"});
        QTest::newRow("colours") << motivo(40, 25);
        QTest::newRow("transparency") << motivo(17, 9, QImage::Format_ARGB32);
        QTest::newRow("one pixel") << motivo(1, 1);
    }

    void campoAndataERitorno()
    {
        QFETCH(QImage, immagine);
        const QVariant campo = images::ImmagineInCampo(immagine);
        QCOMPARE(campo.typeId(), QMetaType::QByteArray);
        QVERIFY(campo.toByteArray().startsWith("\x89PNG"));
        const QImage letta = images::ImmagineDaCampo(campo);
        QCOMPARE(letta.convertToFormat(QImage::Format_ARGB32), immagine.convertToFormat(QImage::Format_ARGB32));
    }

    void campoIlleggibile_data()
    {
        colonne<QVariant>({"valore"});
        QTest::newRow("null") << QVariant();
        QTest::newRow("no bytes") << QVariant(QByteArray());
        QTest::newRow("not a picture") << QVariant(QByteArray("this is no picture at all"));
        QTest::newRow("cut PNG") << QVariant(images::ImmagineInCampo(motivo(30, 30)).toByteArray().left(60));
        QTest::newRow("empty text") << QVariant(QString());
    }

    void campoIlleggibile()
    {
        QFETCH(QVariant, valore);
        QVERIFY(images::ImmagineDaCampo(valore).isNull());
        QVERIFY(images::ImmagineInCampo(QImage()).isNull());
    }

    // --- Picture files ---
    void fileRifiutati_data()
    {
        colonne<QByteArray, QString>({"contenuto", "messaggio"});
        QTest::newRow("not an image") << QByteArray("plain words, no picture")
                                      << QStringLiteral("can't be read as an image");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("is empty");
        // Only a header: decoding would fail as unreadable, so the size test must come first.
        QTest::newRow("100 megapixels") << QByteArray("P6\n10000 10000\n255\n")
                                        << QStringLiteral("10000 x 10000 pixels");
        QTest::newRow("missing") << QByteArray("-") << QStringLiteral("can't be read as an image");
    }

    void fileRifiutati()
    {
        QFETCH(QByteArray, contenuto); QFETCH(QString, messaggio);
        QTemporaryDir dir;
        const QString percorso = dir.filePath(QStringLiteral("logo.ppm"));
        if (contenuto != "-")
            writeBytes(percorso, contenuto);
        const images::FileImmagine letto = images::CaricaFileImmagine(percorso);
        QVERIFY(letto.immagine.isNull());
        QVERIFY2(letto.errore.contains(messaggio), qPrintable(letto.errore));
        QVERIFY(letto.errore.contains(QStringLiteral("logo.ppm")));
    }

    // --- Crop and zoom ---
    void taglio_data()
    {
        colonne<QRect, bool, QRect, QSize>({"angoli", "valido", "rettangolo", "ritagliata"});
        // angoli holds left, top, right, bottom as they were clicked: QRect(QPoint, QPoint) keeps them as given.
        auto angoli = [](int l, int t, int r, int b) { return QRect(QPoint(l, t), QPoint(r, b)); };
        QTest::newRow("dragged down right") << angoli(10, 20, 50, 60) << true << QRect(10, 20, 40, 40) << QSize(40, 40);
        QTest::newRow("dragged up left") << angoli(50, 60, 10, 20) << true << QRect(10, 20, 40, 40) << QSize(40, 40);
        QTest::newRow("dragged up right") << angoli(10, 60, 50, 20) << true << QRect(10, 20, 40, 40) << QSize(40, 40);
        QTest::newRow("past the edge") << angoli(80, 70, 120, 90) << true << QRect(80, 70, 40, 20) << QSize(20, 20);
        QTest::newRow("one click") << angoli(5, 5, 5, 5) << true << QRect(5, 5, 0, 0) << QSize(0, 0);
        QTest::newRow("at zero") << angoli(0, 0, 3, 2) << true << QRect(0, 0, 3, 2) << QSize(3, 2);
        QTest::newRow("no right corner") << angoli(10, 20, -1, -1) << false << QRect() << QSize();
        QTest::newRow("nothing selected") << angoli(-1, -1, -1, -1) << false << QRect() << QSize();
    }

    void taglio()
    {
        QFETCH(QRect, angoli); QFETCH(bool, valido); QFETCH(QRect, rettangolo); QFETCH(QSize, ritagliata);
        const auto r = images::RettangoloTaglio(angoli.left(), angoli.top(), angoli.right(), angoli.bottom());
        QCOMPARE(r.has_value(), valido);
        if (!valido)
            return;
        QCOMPARE(*r, rettangolo);
        const QImage sorgente = motivo(100, 90);
        const QImage tagliata = images::Ritaglia(sorgente, *r);
        QCOMPARE(tagliata.size(), ritagliata);
        if (!tagliata.isNull())
            QCOMPARE(tagliata.pixel(0, 0), sorgente.pixel(r->topLeft()));
    }

    void zoom_data()
    {
        colonne<QString, bool, double, QString>({"testo", "piu", "fattore", "etichetta"});
        QTest::newRow("empty counts 1, minus") << QString() << false << 0.95 << "95%";
        QTest::newRow("empty counts 1, plus") << QString() << true << 1.05 << "105%";
        QTest::newRow("one step above the floor") << "0.15" << false << 0.1 << "10%";
        QTest::newRow("one step below the ceiling") << "3.85" << true << 3.9 << "390%";
        QTest::newRow("plus at the floor") << "0.1" << true << 0.15 << "15%";
        QTest::newRow("not a number counts 1") << "abc" << true << 1.05 << "105%";
    }

    void zoom()
    {
        QFETCH(QString, testo); QFETCH(bool, piu); QFETCH(double, fattore); QFETCH(QString, etichetta);
        const double prima = images::FattoreZoom(testo);
        const double dopo = piu ? images::ZoomPiu(prima) : images::ZoomMeno(prima);
        QCOMPARE(dopo, fattore);
        QCOMPARE(images::TestoZoom(dopo), etichetta);
        QCOMPARE(images::FattoreZoom(images::TestoFattore(dopo)), dopo);
    }

    void zoomFinoAiLimiti()
    {
        // Many steps from 1 must stop exactly at the limits, not one step past them, and stay there.
        double f = 1.0;
        for (int i = 0; i < 100; ++i)
            f = images::ZoomMeno(f);
        QCOMPARE(f, 0.1);
        for (int i = 0; i < 200; ++i)
            f = images::ZoomPiu(f);
        QCOMPARE(f, 3.9);
    }

    void applicaZoom()
    {
        QCOMPARE(images::ApplicaZoom(motivo(100, 50), 0.5).size(), QSize(50, 25));
        QCOMPARE(images::ApplicaZoom(motivo(100, 50), 1.05).size(), QSize(105, 53));
        QCOMPARE(images::ApplicaZoom(motivo(10, 4), 0.1).size(), QSize(1, 1));
        QVERIFY(images::ApplicaZoom(QImage(), 2).isNull());
    }

    // --- Scanner ---
    void esitiSane_data()
    {
        colonne<int, Scanner::Esito, QString>({"stato", "esito", "chiave"});
        QTest::newRow("good") << 0 << Scanner::Esito::Ok << QString();
        QTest::newRow("cancelled") << 2 << Scanner::Esito::Annullato << "M0088";
        QTest::newRow("busy") << 3 << Scanner::Esito::NonPronto << "M0087";
        QTest::newRow("jammed") << 6 << Scanner::Esito::NonPronto << "M0087";
        QTest::newRow("access denied") << 11 << Scanner::Esito::NonPronto << "M0087";
        QTest::newRow("unsupported") << 1 << Scanner::Esito::Errore << "M0086";
        QTest::newRow("i/o error") << 9 << Scanner::Esito::Errore << "M0086";
    }

    void esitiSane()
    {
        QFETCH(int, stato); QFETCH(Scanner::Esito, esito); QFETCH(QString, chiave);
        QCOMPARE(Scanner::esitoDaStato(stato), esito);
        QCOMPARE(Scanner::testoEsito(esito), chiave.isEmpty() ? QString() : frame::TestoLingua(chiave));
    }

    void scansione_data()
    {
        colonne<QString, QString, QString, QRgb>({"modo", "profondita", "figura", "colore"});
        for (const char *modo : {"Color", "Gray"})
            for (const char *profondita : {"1", "8", "16"}) {
                QTest::addRow("%s %s-bit white", modo, profondita)
                    << modo << profondita << "Solid white" << qRgb(255, 255, 255);
                QTest::addRow("%s %s-bit black", modo, profondita)
                    << modo << profondita << "Solid black" << qRgb(0, 0, 0);
            }
    }

    void scansione()
    {
        if (!Scanner::supportato())
            QSKIP("built without SANE");
        QFETCH(QString, modo); QFETCH(QString, profondita); QFETCH(QString, figura); QFETCH(QRgb, colore);
        Scanner scanner;
        QStringList nomi;
        for (const Scanner::Dispositivo &d : scanner.dispositivi())
            nomi << d.nome;
        QVERIFY2(nomi.contains(QStringLiteral("test:0")), qPrintable(nomi.join(',')));
        const QMap<QString, QString> opzioni{{"mode", modo}, {"depth", profondita}, {"test-picture", figura},
                                             {"resolution", "50"}, {"br-x", "20"}, {"br-y", "10"}};
        QImage img;
        QCOMPARE(scanner.acquisisci(QStringLiteral("test:0"), img, opzioni), Scanner::Esito::Ok);
        // 20 x 10 mm at 50 dpi.
        QCOMPARE(img.size(), QSize(39, 19));
        QVERIFY(tuttiDelColore(img, colore));

        // A three-pass device sends red, green and blue apart; a hand scanner doesn't know its height.
        for (const QString &opzione : {QStringLiteral("three-pass"), QStringLiteral("hand-scanner")}) {
            if (opzione == QLatin1String("three-pass") && modo != QLatin1String("Color"))
                continue;
            QMap<QString, QString> altre = opzioni;
            altre.insert(opzione, QStringLiteral("true"));
            QCOMPARE(scanner.acquisisci(QStringLiteral("test:0"), img, altre), Scanner::Esito::Ok);
            QVERIFY(!img.isNull());
            QVERIFY(tuttiDelColore(img, colore));
        }
    }

    void scansioneFallita_data()
    {
        colonne<QString, QString, Scanner::Esito>({"dispositivo", "ritorno", "esito"});
        QTest::newRow("no such device") << "nothere:0" << QString() << Scanner::Esito::NonPronto;
        QTest::newRow("cancelled") << "test:0" << "SANE_STATUS_CANCELLED" << Scanner::Esito::Annullato;
        QTest::newRow("jammed") << "test:0" << "SANE_STATUS_JAMMED" << Scanner::Esito::NonPronto;
        QTest::newRow("i/o error") << "test:0" << "SANE_STATUS_IO_ERROR" << Scanner::Esito::Errore;
        QTest::newRow("unknown option value") << "test:0" << "NOT_A_STATUS" << Scanner::Esito::Errore;
    }

    void scansioneFallita()
    {
        if (!Scanner::supportato())
            QSKIP("built without SANE");
        QFETCH(QString, dispositivo); QFETCH(QString, ritorno); QFETCH(Scanner::Esito, esito);
        Scanner scanner;
        QMap<QString, QString> opzioni;
        if (!ritorno.isEmpty())
            opzioni.insert(QStringLiteral("read-return-value"), ritorno);
        QImage img(5, 5, QImage::Format_RGB32);
        QCOMPARE(scanner.acquisisci(dispositivo, img, opzioni), esito);
        QVERIFY(img.isNull());
    }

    // --- The logo box and the large view ---
    void riquadroSelezionaTagliaSalva()
    {
        ScriptedPrompter prompter;
        QTemporaryDir dir;
        const QString percorso = dir.filePath(QStringLiteral("logo.png"));
        QVERIFY(motivo(200, 120).save(percorso));

        images::RiquadroLogo riquadro(prompter, QStringLiteral("LogoP"));
        riquadro.resize(400, 300);
        QVERIFY(showActive(&riquadro));
        auto *vista = riquadro.findChild<QWidget *>(QStringLiteral("Xpress1"));
        auto *labZoom = riquadro.findChild<QLabel *>(QStringLiteral("LabZoom"));
        QVERIFY(vista && labZoom);
        QVERIFY(!vista->isVisible());

        QVERIFY(riquadro.caricaFile(percorso));
        QVERIFY(vista->isVisible());
        QCOMPARE(riquadro.immagine().size(), QSize(200, 120));

        // Crop with nothing selected does nothing.
        QTest::mouseClick(bottone(&riquadro, "ComCrop"), Qt::LeftButton);
        QCOMPARE(riquadro.immagine().size(), QSize(200, 120));

        // At zoom 1.1 the view's pixels are divided by the zoom: (22, 11)-(88, 66) is (20, 10)-(80, 60).
        QTest::mouseClick(bottone(&riquadro, "ComZoomP"), Qt::LeftButton);
        QTest::mouseClick(bottone(&riquadro, "ComZoomP"), Qt::LeftButton);
        QCOMPARE(labZoom->text(), QStringLiteral("110%"));
        QCOMPARE(vista->size(), QSize(220, 132));
        QTest::mousePress(vista, Qt::LeftButton, {}, QPoint(88, 66));
        QCOMPARE(riquadro.angoli(), QRect(QPoint(80, 60), QPoint(-1, -1)));
        QTest::mouseMove(vista, QPoint(50, 40));
        QCOMPARE(riquadro.angoli().bottomRight(), QPoint(45, 36));
        QTest::mouseRelease(vista, Qt::LeftButton, {}, QPoint(22, 11));
        QCOMPARE(riquadro.angoli(), QRect(QPoint(80, 60), QPoint(20, 10)));
        const QImage grab = vista->grab().toImage();
        QCOMPARE(QColor(grab.pixel(22, 30)), QColor(Qt::red)); // the selection's left side

        QTest::mouseClick(bottone(&riquadro, "ComCrop"), Qt::LeftButton);
        QCOMPARE(riquadro.immagine().size(), QSize(60, 50));
        QCOMPARE(riquadro.immagine().pixel(0, 0), motivo(200, 120).pixel(20, 10));
        QCOMPARE(riquadro.zoom(), QStringLiteral("1"));
        QCOMPARE(labZoom->text(), QStringLiteral("100%"));

        // Saving resizes the image itself by the zoom and puts the zoom back to 1; what it gives reads back
        // the same (the settings window's tests store and reload it).
        QTest::mouseClick(bottone(&riquadro, "ComZoomM"), Qt::LeftButton);
        QTest::mouseClick(bottone(&riquadro, "ComZoomM"), Qt::LeftButton);
        const QVariant campo = riquadro.valorePerCampo();
        QCOMPARE(riquadro.immagine().size(), QSize(54, 45));
        QVERIFY(riquadro.zoom().isEmpty());
        QCOMPARE(labZoom->text(), QStringLiteral("100%"));
        QCOMPARE(images::ImmagineDaCampo(campo).convertToFormat(QImage::Format_RGB32),
                 riquadro.immagine().convertToFormat(QImage::Format_RGB32));
        QVERIFY(prompter.messages.isEmpty());
    }

    void riquadroRifiutiEdElimina()
    {
        ScriptedPrompter prompter;
        QTemporaryDir dir;
        images::RiquadroLogo riquadro(prompter, QStringLiteral("LogoS"));
        QVERIFY(showActive(&riquadro));
        auto *vista = riquadro.findChild<QWidget *>(QStringLiteral("Xpress1"));
        riquadro.setImmagine(motivo(30, 20));
        QVERIFY(vista->isVisible());

        // A refused file is explained and leaves the logo as it was.
        const QString testo = dir.filePath(QStringLiteral("note.png"));
        writeBytes(testo, "no picture");
        QVERIFY(!riquadro.caricaFile(testo));
        QCOMPARE(prompter.messages.size(), 1);
        QCOMPARE(prompter.messages.at(0).icon, frame::Prompter::Icon::Stop);
        QCOMPARE(riquadro.immagine().size(), QSize(30, 20));

        // Delete asks first; No keeps the image, Yes empties and hides the box.
        prompter.answer(frame::Prompter::Answer::No);
        riquadro.eliminaImmagine();
        QCOMPARE(prompter.questions, QStringList{frame::TestoLingua("M0102")});
        QVERIFY(!riquadro.immagine().isNull());
        prompter.answer(frame::Prompter::Answer::Yes);
        riquadro.eliminaImmagine();
        QVERIFY(riquadro.immagine().isNull());
        QVERIFY(!vista->isVisible());
        QVERIFY(!bottone(&riquadro, "ComCrop")->isEnabled());

        // The deleted logo stores null and reloads as an empty, hidden box.
        const QVariant campo = riquadro.valorePerCampo();
        QVERIFY(campo.isNull());
        riquadro.setImmagine(motivo(5, 5));
        riquadro.caricaDaCampo(campo);
        QVERIFY(riquadro.immagine().isNull());
        QVERIFY(!vista->isVisible());
        riquadro.setImmagine(motivo(5, 5));
        riquadro.caricaDaCampo(QByteArray("damaged"));
        QVERIFY(riquadro.immagine().isNull());
        QVERIFY(!vista->isVisible());
    }

    void riquadroAcquisisciMenuEScanner()
    {
        ScriptedPrompter prompter;
        images::RiquadroLogo riquadro(prompter, QStringLiteral("LogoS"));
        QVERIFY(showActive(&riquadro));
        frame::pub().CampoLogo.clear();
        QTest::mouseClick(bottone(&riquadro, "Command10"), Qt::LeftButton);
        QCOMPARE(frame::pub().CampoLogo, QStringLiteral("LogoS"));
        auto *menu = riquadro.findChild<QMenu *>(QStringLiteral("AcquisizioneFoto"));
        QVERIFY(menu);
        QTRY_VERIFY(menu->isVisible());
        QStringList voci;
        for (QAction *a : menu->actions())
            voci << a->text();
        QCOMPARE(voci,
                 (QStringList{frame::TestoLingua("CAP40"), frame::TestoLingua("CAP41"), frame::TestoLingua("CAP42")}));
        menu->close();

        if (!Scanner::supportato()) {
            riquadro.acquisisciScanner();
            QCOMPARE(prompter.messages.size(), 1);
            QVERIFY(prompter.messages.at(0).text.contains(frame::TestoLingua("CAP49")));
            return;
        }
        // The test backend offers two devices: the user is asked which, and takes the first.
        QString richiesta;
        whenModal([&richiesta](QWidget *w) {
            auto *scelta = qobject_cast<QInputDialog *>(w);
            QVERIFY(scelta);
            richiesta = scelta->textValue();
            scelta->accept();
        });
        riquadro.acquisisciScanner();
        QVERIFY2(richiesta.contains(QStringLiteral("test:0")), qPrintable(richiesta));
        QVERIFY(prompter.messages.isEmpty());
        QVERIFY(!riquadro.immagine().isNull());
        QVERIFY(riquadro.findChild<QWidget *>(QStringLiteral("Xpress1"))->isVisible());

        // Cancelling the choice is a cancelled acquisition, and the logo stays.
        const QImage prima = riquadro.immagine();
        whenModal([](QWidget *w) { qobject_cast<QDialog *>(w)->reject(); });
        riquadro.acquisisciScanner();
        QCOMPARE(prompter.messages.size(), 1);
        QCOMPARE(prompter.messages.at(0).text, frame::TestoLingua("M0088"));
        QCOMPARE(prompter.messages.at(0).icon, frame::Prompter::Icon::Critical);
        QCOMPARE(riquadro.immagine(), prima);
    }

    void mostra()
    {
        QPointer<images::FrmMostra> finestra = new images::FrmMostra(motivo(400, 200));
        finestra->resize(300, 300);
        QVERIFY(showActive(finestra));
        // At zoom 1 the image fits the window, keeping its proportions, and follows a resize.
        QCOMPARE(finestra->dimensioneMostrata(), QSize(300, 150));
        finestra->resize(600, 500);
        QTRY_COMPARE(finestra->findChild<QLabel *>(QStringLiteral("Xpress1"))->size(), QSize(600, 300));

        for (int i = 0; i < 40; ++i)
            QTest::keyClick(finestra, Qt::Key_Plus);
        QCOMPARE(finestra->zoom(), images::FrmMostra::ZoomMassimo);
        for (int i = 0; i < 40; ++i)
            QTest::keyClick(finestra, Qt::Key_Minus);
        QCOMPARE(finestra->zoom(), images::FrmMostra::ZoomMinimo);
        QCOMPARE(finestra->dimensioneMostrata(), QSize(150, 75));

        QTest::keyClick(finestra, Qt::Key_Escape);
        QTRY_VERIFY(finestra.isNull());
    }
};

QTEST_MAIN(TestImages)
#include "tst_images.moc"
