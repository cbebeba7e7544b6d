// SPDX-License-Identifier: GPL-3.0-or-later
// bench_impostazioni: the settings window on a copy of the delivered database whose
// settings row holds two logos of 1600x1250 pixels: the window opened until its
// data and logos are shown (first screen painted), and its Save (Command8), which
// writes both logos back, and what encoding two changed logos adds to it. Runs in a
// settings home of its own, so the user's settings and autostart entry are never touched.
// Goals: open and save each under 300 ms, under 300 MB resident.
#include "AlwaysOk.h"
#include "Misure.h"
#include "Programma.h"

#include "admin/ui/frmimposta.h"
#include "frame/Preferenze.h"
#include "images/Immagini.h"
#include "store/Connections.h"
#include "store/DbError.h"

#include <QApplication>
#include <QFile>
#include <QLinearGradient>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

namespace {

// A logo with some content: a gradient, rings and lettering, so that its PNG is not trivially small.
QByteArray logo(QColor colore, const QString &scritta)
{
    QImage immagine(1600, 1250, QImage::Format_RGB32);
    QPainter p(&immagine);
    QLinearGradient sfondo(0, 0, 1600, 1250);
    sfondo.setColorAt(0, Qt::white);
    sfondo.setColorAt(1, colore.lighter(160));
    p.fillRect(immagine.rect(), sfondo);
    p.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < 40; ++i) {
        p.setPen(QPen(colore.darker(100 + 5 * i), 3 + i % 5));
        p.drawEllipse(QPoint(200 + 31 * i, 300 + 17 * (i % 9)), 40 + 7 * i, 30 + 5 * i);
    }
    QFont carattere = p.font();
    carattere.setPixelSize(180);
    p.setFont(carattere);
    p.setPen(colore.darker(200));
    p.drawText(immagine.rect(), Qt::AlignCenter, scritta);
    p.end();
    return images::ImmagineInCampo(immagine).toByteArray();
}

} // namespace

int main(int argc, char **argv)
{
    bench::SenzaSchermo();
    QTemporaryDir casa;
    qputenv("HOME", casa.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (casa.path() + QStringLiteral("/.config")).toLocal8Bit());
    QApplication app(argc, argv);
    QTextStream out(stdout);
    out << Qt::fixed;
    out.setRealNumberPrecision(2);
    constexpr int Giri = 9;
    int esito = 0;
    try {
        // A fresh copy of the delivered database, the working database of the run.
        const QString path = casa.filePath(QStringLiteral("basedati.mdb"));
        if (!QFile::copy(QCoreApplication::applicationDirPath() + QStringLiteral("/basedati.mdb"), path))
            throw store::DbError(0, QStringLiteral("cannot copy the delivered basedati.mdb"));
        bench::PreparaProgramma(path);
        const QByteArray logoP = logo(QColor(20, 70, 160), QStringLiteral("Parcheggio"));
        const QByteArray logoS = logo(QColor(170, 40, 30), QStringLiteral("Veltano"));
        frame::preferenze().setILogoP(logoP);
        frame::preferenze().setILogoS(logoS);
        out << "logos: " << logoP.size() / 1024 << " KB and " << logoS.size() / 1024 << " KB of PNG, 1600x1250\n";

        bench::AlwaysOk prompter;
        std::vector<double> apre, salva;
        for (int giro = 0; giro < Giri; ++giro) {
            admin::frmimposta *w = nullptr;
            apre.push_back(bench::timed([&] {
                w = new admin::frmimposta(prompter, admin::frmimposta::Modo::Normale);
                w->show();
                if (!QTest::qWaitForWindowExposed(w))
                    qWarning("the window was not shown");
                w->grab();
            }));
            prompter.shown.clear();
            bool salvato = false;
            salva.push_back(bench::timed([&] { salvato = w->Salva(); }));
            if (!salvato)
                throw store::DbError(0, QStringLiteral("the save failed: ") + prompter.shown.join(QLatin1Char('|')));
            w->close();
            delete w;
            QCoreApplication::processEvents();
        }
        if (frame::preferenze().iLogoP().isEmpty() || frame::preferenze().iLogoS().isEmpty())
            throw store::DbError(0, QStringLiteral("the logos were lost by the save"));
        // A logo the user changed is encoded again at its save; one kept as read goes back as its bytes.
        const QImage immagineP = images::ImmagineDaCampo(logoP), immagineS = images::ImmagineDaCampo(logoS);
        std::vector<double> codifica;
        for (int giro = 0; giro < Giri; ++giro)
            codifica.push_back(bench::timed([&] {
                images::ImmagineInCampo(immagineP);
                images::ImmagineInCampo(immagineS);
            }));
        bench::rigaTempi(out, "window opened, data and logos shown", apre, 300);
        bench::rigaTempi(out, "settings saved (Command8)", salva, 300);
        out << "    both logos changed: their encoding adds a median " << bench::stats(codifica).median << " ms\n";
        const double picco = bench::memoriaMb("VmHWM");
        out << "RSS " << bench::memoriaMb("VmRSS") << " MB (peak " << picco << " MB)"
            << (picco < 300 ? QStringLiteral("  (goal met)\n") : QStringLiteral("  (over the 300 MB goal)\n"));
        esito = bench::stats(apre).median < 300 && bench::stats(salva).median < 300 && picco < 300 ? 0 : 3;
        store::Connections::closeAll();
    } catch (const store::DbError &e) {
        QTextStream(stderr) << "failed: " << e.message() << Qt::endl;
        return 1;
    }
    return esito;
}
