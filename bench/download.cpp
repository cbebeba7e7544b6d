// SPDX-License-Identifier: GPL-3.0-or-later
// bench_download [MB]: downloads a file of MB megabytes (100 by default) from a
// server on the loopback, running in a thread of its own, into a scratch file:
// by a plain QNetworkAccessManager read, by CNetGet, and by the progress window
// (offscreen). Prints each throughput, its ratio to the plain read, and the
// resident memory the read added at its peak. Goal: at least 0.9 of the plain
// read, under 50 MB of memory above the program's own.
#include "Misure.h"
#include "Programma.h"

#include "upgrade/CNetGet.h"
#include "upgrade/ui/frmDownload.h"

#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <functional>
#include <vector>

namespace {

// Serves `dimensione` bytes to every GET, with blocking writes in its own thread.
class Server {
public:
    explicit Server(qint64 dimensione)
    {
        std::atomic<quint16> porta{0};
        m_thread.reset(QThread::create([this, dimensione, &porta] {
            QTcpServer server;
            server.listen(QHostAddress::LocalHost);
            porta = server.serverPort();
            const QByteArray blocco(256 * 1024, 'v');
            while (!m_fine) {
                if (!server.waitForNewConnection(100))
                    continue;
                std::unique_ptr<QTcpSocket> s(server.nextPendingConnection());
                QByteArray testa;
                while (!testa.contains("\r\n\r\n") && s->waitForReadyRead(5000))
                    testa += s->readAll();
                s->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(dimensione)
                         + "\r\n\r\n");
                for (qint64 inviati = 0; inviati < dimensione && s->state() == QAbstractSocket::ConnectedState;) {
                    const qint64 n = std::min<qint64>(blocco.size(), dimensione - inviati);
                    s->write(blocco.constData(), n);
                    inviati += n;
                    while (s->bytesToWrite() > 1024 * 1024)
                        if (!s->waitForBytesWritten(5000))
                            break;
                }
                s->disconnectFromHost();
                if (s->state() != QAbstractSocket::UnconnectedState)
                    s->waitForDisconnected(5000);
            }
        }));
        m_thread->start();
        while (porta == 0)
            QThread::msleep(1);
        m_porta = porta;
    }
    ~Server()
    {
        m_fine = true;
        m_thread->wait();
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/file").arg(m_porta); }

private:
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_fine{false};
    quint16 m_porta = 0;
};

struct Esito {
    double secondi;
    double memoriaMb; // resident memory at the peak of the read, above what it was before
};

// Times a read; the resident memory is sampled while the event loop turns.
Esito misura(const std::function<qint64()> &leggi, qint64 atteso)
{
    const double prima = bench::memoriaMb("VmRSS");
    double picco = prima;
    QTimer campione;
    QObject::connect(&campione, &QTimer::timeout, [&] { picco = std::max(picco, bench::memoriaMb("VmRSS")); });
    campione.start(10);
    qint64 letti = 0;
    const double ms = bench::timed([&] { letti = leggi(); });
    picco = std::max(picco, bench::memoriaMb("VmRSS"));
    if (letti != atteso)
        qFatal("read %lld bytes instead of %lld", letti, atteso);
    return {ms / 1000.0, picco - prima};
}

qint64 letturaQt(const QString &url, const QString &file)
{
    QNetworkAccessManager manager;
    QFile uscita(file);
    uscita.open(QIODevice::WriteOnly);
    std::unique_ptr<QNetworkReply> risposta(manager.get(QNetworkRequest(QUrl(url))));
    QEventLoop attesa;
    QObject::connect(risposta.get(), &QIODevice::readyRead, [&] { uscita.write(risposta->readAll()); });
    QObject::connect(risposta.get(), &QNetworkReply::finished, &attesa, &QEventLoop::quit);
    attesa.exec();
    uscita.write(risposta->readAll());
    return uscita.size();
}

} // namespace

int main(int argc, char **argv)
{
    bench::SenzaSchermo();
    QApplication app(argc, argv);
    const qint64 mb = argc > 1 ? QByteArray(argv[1]).toLongLong() : 100;
    const qint64 dimensione = mb * 1024 * 1024;
    QTextStream out(stdout);
    Server server(dimensione);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("scaricato"));

    const std::pair<const char *, std::function<qint64()>> modi[] = {
        {"QNetworkAccessManager", [&] { return letturaQt(server.url(), file); }},
        {"CNetGet", [&] {
             upgrade::CNetGet net;
             net.Init();
             const qint64 n = net.ReadUrl(server.url(), file);
             if (!net.GetLastError().isEmpty())
                 qFatal("%s", qPrintable(net.GetLastError()));
             return n;
         }},
        {"frmDownload", [&] {
             upgrade::frmDownload finestra;
             if (const QString errore = finestra.Download(server.url(), file, dimensione); !errore.isEmpty())
                 qFatal("%s", qPrintable(errore));
             return QFileInfo(file).size();
         }},
    };
    const double base = bench::memoriaMb("VmRSS");
    out << "Download of " << mb << " MB from the loopback, program's own memory " << QString::number(base, 'f', 1)
        << " MB\n";
    // Five rounds, the kinds taken in turn; the median of each.
    std::vector<double> tempi[3], memoria[3];
    for (int giro = 0; giro < 5; ++giro)
        for (int i = 0; i < 3; ++i) {
            QFile::remove(file);
            const Esito e = misura(modi[i].second, dimensione);
            tempi[i].push_back(e.secondi);
            memoria[i].push_back(e.memoriaMb);
        }
    const double riferimento = bench::stats(tempi[0]).median;
    for (int i = 0; i < 3; ++i) {
        const double s = bench::stats(tempi[i]).median;
        out << QStringLiteral("%1: %2 MB/s, %3 of the plain read, memory +%4 MB at the peak\n")
                   .arg(QString::fromLatin1(modi[i].first), -22)
                   .arg(mb / s, 0, 'f', 0)
                   .arg(riferimento / s, 0, 'f', 2)
                   .arg(*std::max_element(memoria[i].begin(), memoria[i].end()), 0, 'f', 1);
    }
    return 0;
}
