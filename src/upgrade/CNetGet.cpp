// SPDX-License-Identifier: GPL-3.0-or-later
#include "upgrade/CNetGet.h"

#include "frame/PublicState.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QSaveFile>
#include <QTimer>
#include <QUrl>

namespace upgrade {

namespace {

// Bytes taken from the reply at a time: large enough that the copy costs nothing next to the network.
constexpr qint64 Blocco = 64 * 1024;
// What Qt Network may hold unread: the memory of a read stays flat whatever the file's size.
constexpr qint64 MemoriaLettura = 4 * 1024 * 1024;

struct Voce {
    int numero;
    const char *testo;
};

const Voce TabellaErrori[] = {
    {12001, "No more handles could be generated at this time"},
    {12002, "The request has timed out."},
    {12003, "An extended error was returned from the server."},
    {12004, "An internal error has occurred."},
    {12005, "The URL is invalid."},
    {12006, "The URL scheme could not be recognized, or is not supported."},
    {12007, "The server name could not be resolved."},
    {12008, "The requested protocol could not be located."},
    {12009, "A request to InternetQueryOption or InternetSetOption specified an invalid option value."},
    {12010, "The length of an option supplied to InternetQueryOption or InternetSetOption is incorrect for the type of "
            "option specified."},
    {12011, "The request option can not be set, only queried. "},
    {12012, "The Win32 Internet support is being shutdown or unloaded."},
    {12013, "The user name given to the FTP server is incorrect."},
    {12014, "The password given to the FTP server is incorrect."},
    {12015, "The request to connect to and login to an FTP server failed."},
    {12016, "The requested operation is invalid. "},
    {12017, "The operation was cancelled."},
    {12018, "The type of handle supplied is incorrect for this operation."},
    {12019, "The handle is not in the right state for the requested operation."},
    {12020, "The request can not be made via a proxy."},
    {12021, "A required registry value could not be located. "},
    {12022, "A required registry value was located but is an incorrect type or has an invalid value."},
    {12023, "Direct network access cannot be made at this time. "},
    {12024, "An asynchronous request could not be made because a zero context value was supplied."},
    {12025, "An asynchronous request could not be made because a callback function has not been set."},
    {12026, "The required operation could not be completed because one or more requests are pending."},
    {12027, "The format of the request is invalid."},
    {12028, "The requested item could not be located."},
    {12029, "The attempt to connect to the server failed."},
    {12030, "The connection with the server has been terminated."},
    {12031, "The connection with the server has been reset."},
    {12036, "The request failed because the handle already exists."},
};

} // namespace

int CodiceDaErrore(QNetworkReply::NetworkError errore)
{
    using E = QNetworkReply;
    switch (errore) {
    case E::NoError:
        return 0;
    case E::ConnectionRefusedError:
        return ErroreConnessione;
    case E::RemoteHostClosedError:
        return ErroreTerminata;
    case E::HostNotFoundError:
        return ErroreNome;
    case E::TimeoutError:
        return ErroreTimeout;
    case E::OperationCanceledError:
        return ErroreAnnullato;
    case E::TemporaryNetworkFailureError:
    case E::NetworkSessionFailedError:
    case E::BackgroundRequestNotAllowedError:
        return ErroreAccessoDiretto;
    case E::ProxyConnectionRefusedError:
    case E::ProxyConnectionClosedError:
    case E::ProxyNotFoundError:
    case E::ProxyTimeoutError:
    case E::ProxyAuthenticationRequiredError:
    case E::UnknownProxyError:
        return ErroreProxy;
    case E::ContentNotFoundError:
    case E::ContentGoneError:
        return ErroreNonTrovato;
    case E::ContentAccessDenied:
    case E::ContentOperationNotPermittedError:
    case E::AuthenticationRequiredError:
    case E::ContentConflictError:
    case E::UnknownContentError:
    case E::ProtocolInvalidOperationError:
    case E::InternalServerError:
    case E::OperationNotImplementedError:
    case E::ServiceUnavailableError:
    case E::UnknownServerError:
    case E::TooManyRedirectsError:
    case E::InsecureRedirectError:
        return ErroreServer;
    case E::ProtocolUnknownError:
        return ErroreSchema;
    default:
        return ErroreAltro;
    }
}

CNetGet::CNetGet() = default;

CNetGet::~CNetGet()
{
    Term();
}

void CNetGet::CheckError()
{
    if (m_codice > 0)
        m_ultimoErrore = TranslateErrorCode(m_codice);
}

void CNetGet::Init(const QString &agente)
{
    Term();
    m_agente = agente.isEmpty() ? QString::fromLatin1(frame::TitoloApplicazione) : agente;
    m_sessione = std::make_unique<QNetworkAccessManager>();
    // A fresh read every time, redirects followed unless they lead from HTTPS to HTTP.
    m_sessione->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

int CNetGet::ParseHTML(QChar delimitatore)
{
    stato(QStringLiteral("Parsing page..."));
    m_parti.clear();
    for (QString pezzo : GetRawHTML().split(delimitatore)) {
        pezzo.removeIf([](QChar c) { return c.unicode() >= 9 && c.unicode() <= 13; });
        if (!pezzo.isEmpty())
            m_parti << pezzo;
    }
    stato(QStringLiteral("Ready"));
    return int(m_parti.size());
}

qint64 CNetGet::ReadUrl(const QString &url, const QString &file)
{
    // A read asked for from an event of a running one (a second click) does nothing, never nests.
    if (m_inLettura)
        return 0;
    m_inLettura = true;
    m_ultimoErrore.clear();
    m_codice = 0;
    const qint64 totale = leggi(url, file);
    stato(QStringLiteral("Ready"));
    m_inLettura = false;
    return totale;
}

qint64 CNetGet::leggi(const QString &url, const QString &file)
{
    stato(QStringLiteral("Opening: ") + url);
    m_grezzo.clear();
    m_fermato = false;
    std::unique_ptr<QSaveFile> uscita;
    if (!file.isEmpty()) {
        uscita = std::make_unique<QSaveFile>(file);
        if (!uscita->open(QIODevice::WriteOnly)) {
            m_ultimoErrore = uscita->errorString();
            return 0;
        }
    }
    const auto fallisce = [&](int codice) {
        m_codice = codice;
        CheckError();
        if (uscita)
            uscita->cancelWriting();
    };

    const QUrl indirizzo(url, QUrl::StrictMode);
    if (!m_sessione) {
        fallisce(ErroreHandle);
        return 0;
    }
    if (!indirizzo.isValid() || indirizzo.isRelative()) {
        fallisce(ErroreUrl);
        return 0;
    }
    const QString schema = indirizzo.scheme().toLower();
    if (schema != QLatin1String("http") && schema != QLatin1String("https")) {
        fallisce(ErroreSchema);
        return 0;
    }
    if (indirizzo.host().isEmpty()) {
        fallisce(ErroreUrl);
        return 0;
    }

    QNetworkRequest richiesta(indirizzo);
    richiesta.setHeader(QNetworkRequest::UserAgentHeader, m_agente);
    richiesta.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    richiesta.setRawHeader("Cache-Control", "no-cache");
    richiesta.setRawHeader("Pragma", "no-cache");
    std::unique_ptr<QNetworkReply> risposta(m_sessione->get(richiesta));
    risposta->setReadBufferSize(MemoriaLettura);

    m_stop = false;
    qint64 totale = 0;
    bool scaduto = false;
    QEventLoop attesa;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setInterval(m_timeout);
    QObject::connect(&timer, &QTimer::timeout, &attesa, [&] {
        scaduto = true;
        attesa.quit();
    });
    QObject::connect(risposta.get(), &QIODevice::readyRead, &attesa, &QEventLoop::quit);
    QObject::connect(risposta.get(), &QNetworkReply::finished, &attesa, &QEventLoop::quit);
    timer.start();

    QByteArray blocco(Blocco, Qt::Uninitialized);
    for (;;) {
        // Waiting is the event loop's turn: the window repaints and its stop button is heard.
        if (risposta->bytesAvailable() == 0 && !risposta->isFinished() && !m_stop && !scaduto)
            attesa.exec();
        if (m_stop || scaduto)
            break;
        bool letto = false;
        while (risposta->bytesAvailable() > 0) {
            const qint64 n = risposta->read(blocco.data(), Blocco);
            if (n <= 0)
                break;
            letto = true;
            totale += n;
            if (uscita) {
                if (uscita->write(blocco.constData(), n) != n) {
                    m_ultimoErrore = uscita->errorString();
                    uscita->cancelWriting();
                    risposta->abort();
                    return totale;
                }
            } else {
                m_grezzo.append(blocco.constData(), n);
            }
        }
        if (letto) {
            timer.start();
            if (m_stato)
                m_stato->letti(totale);
            // A turn even when data keeps coming, so that a fast read never freezes the window.
            QCoreApplication::processEvents();
        }
        if (risposta->isFinished() && risposta->bytesAvailable() == 0)
            break;
    }

    if (m_stop || scaduto) {
        risposta->abort();
        m_fermato = m_stop;
        // A stop is the user's choice and no error; the file is dropped all the same.
        if (scaduto)
            fallisce(ErroreTimeout);
        else if (uscita)
            uscita->cancelWriting();
        return totale;
    }
    if (risposta->error() != QNetworkReply::NoError) {
        fallisce(CodiceDaErrore(risposta->error()));
        return totale;
    }
    // A body shorter than the length the server announced is a broken transfer, whatever Qt says of it.
    const QVariant lunghezza = risposta->header(QNetworkRequest::ContentLengthHeader);
    if (lunghezza.isValid() && lunghezza.toLongLong() != totale) {
        fallisce(ErroreTerminata);
        return totale;
    }
    if (uscita && !uscita->commit()) {
        m_ultimoErrore = uscita->errorString();
        return totale;
    }
    return totale;
}

void CNetGet::Term()
{
    // Asked for from an event of a running read, it stops that read; the session goes with the next call.
    if (m_inLettura) {
        m_stop = true;
        return;
    }
    m_sessione.reset();
    stato(QStringLiteral("Ready"));
}

QString CNetGet::TranslateErrorCode(int numero)
{
    for (const Voce &v : TabellaErrori)
        if (v.numero == numero)
            return QString::fromLatin1(v.testo);
    return QStringLiteral("Error details not available.");
}

QString CNetGet::GetRawHTML() const
{
    return QString::fromUtf8(m_grezzo).trimmed();
}

void CNetGet::SetUserAgent(const QString &agente)
{
    if (!agente.isEmpty())
        m_agente = agente;
}

void CNetGet::stato(const QString &testo)
{
    if (m_stato)
        m_stato->testo(testo);
}

} // namespace upgrade
