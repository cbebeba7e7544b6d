// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QByteArray>
#include <QNetworkReply>
#include <QString>
#include <QStringList>

#include <memory>

class QNetworkAccessManager;

namespace upgrade {

// Where a read tells how it goes: a status line, and the running count of bytes.
class DestinazioneStato {
public:
    virtual ~DestinazioneStato() = default;
    virtual void testo(const QString &testo) = 0;
    // A count of bytes read so far; by default told as a status line.
    virtual void letti(qint64 byte) { testo(QStringLiteral("Reading Url: %1 bytes read").arg(byte)); }
};

// The numbers of the failures a read can meet, each with its text in TranslateErrorCode.
enum CodiceRete : int {
    ErroreTimeout = 12002,
    ErroreServer = 12003,       // the server answered with an error status
    ErroreUrl = 12005,
    ErroreSchema = 12006,
    ErroreNome = 12007,
    ErroreAnnullato = 12017,
    ErroreHandle = 12018,       // a read without a session
    ErroreProxy = 12020,
    ErroreAccessoDiretto = 12023,
    ErroreNonTrovato = 12028,
    ErroreConnessione = 12029,
    ErroreTerminata = 12030,
    ErroreAltro = 1, // any failure the table has no text for
};

// The number of the table that stands for a failure of Qt Network.
int CodiceDaErrore(QNetworkReply::NetworkError errore);

// Reads a web address into memory or into a file, block after block, giving the
// event loop a turn after each so that a window stays alive and can stop it.
// A file is written under a temporary name beside it and takes its name only
// when the read is complete: a stopped or failed read leaves no file behind.
class CNetGet final {
public:
    CNetGet();
    ~CNetGet();
    CNetGet(const CNetGet &) = delete;
    CNetGet &operator=(const CNetGet &) = delete;

    // The last error's number (kept by the failing operation) becomes the last error text.
    void CheckError();
    // Opens the session; without an agent the application's title is given. Safe to call twice.
    void Init(const QString &agente = QString());
    // Splits the text read into the pieces between `delimitatore`, control characters
    // 9 to 13 removed; keeps the non-empty ones in Parti(). Returns their number.
    int ParseHTML(QChar delimitatore = QLatin1Char('\\'));
    // Reads `url` (into `file` when given). Returns the bytes read; look at GetLastError.
    // Called while a read runs (from one of its events), it does nothing and returns 0.
    qint64 ReadUrl(const QString &url, const QString &file = QString());
    // Closes the session and writes "Ready".
    void Term();
    static QString TranslateErrorCode(int numero);
    void SetStatusWindow(DestinazioneStato *destinazione) { m_stato = destinazione; }
    QString GetRawHTML() const;
    QString GetLastError() const { return m_ultimoErrore; }
    void SetUserAgent(const QString &agente);
    void StopMe() { m_stop = true; }

    // A read that receives nothing for this long fails as timed out.
    void SetTimeout(int millisecondi) { m_timeout = millisecondi; }
    const QStringList &Parti() const { return m_parti; }
    // True when the last read was ended by StopMe.
    bool Fermato() const { return m_fermato; }

private:
    void stato(const QString &testo);
    qint64 leggi(const QString &url, const QString &file);

    std::unique_ptr<QNetworkAccessManager> m_sessione;
    QString m_agente;
    QByteArray m_grezzo;
    QString m_ultimoErrore;
    DestinazioneStato *m_stato = nullptr;
    bool m_stop = false;
    bool m_fermato = false;
    bool m_inLettura = false;
    int m_codice = 0;
    int m_timeout = 30000;
    QStringList m_parti;
};

} // namespace upgrade
