// SPDX-License-Identifier: GPL-3.0-or-later
#include "upgrade/Aggiornamento.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/Version.h"

#include <QCryptographicHash>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTcpSocket>
#include <QTemporaryFile>
#include <QThread>
#include <QTimer>
#include <QUrl>

#include <exception>

namespace upgrade {

namespace {

// A descriptor is a few lines; anything longer isn't one.
constexpr qsizetype DescrittoreMassimo = 64 * 1024;
// The private-profile read fills a buffer of 255 characters, its null included.
constexpr qsizetype ValoreMassimo = 254;

// A number made of digits only, 1 to 15 of them.
std::optional<qint64> numero(const QString &testo)
{
    static const QRegularExpression cifre(QStringLiteral("^[0-9]{1,15}$"));
    if (!cifre.match(testo).hasMatch())
        return std::nullopt;
    return testo.toLongLong();
}

// A file name with no folder in it, that lands where it is put and nowhere else.
bool NomeNudo(const QString &nome)
{
    if (nome.isEmpty() || nome.size() > 200 || nome.startsWith(QLatin1Char('.')))
        return false;
    for (const QChar c : nome)
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c == QLatin1Char(':') || c.unicode() < 32)
            return false;
    return true;
}

// Clears the status bar however the check ends; one check at a time.
class Corsa {
public:
    explicit Corsa(bool &inCorso) : m_inCorso(inCorso) { m_inCorso = true; }
    ~Corsa()
    {
        frame::MostraStato(QString());
        m_inCorso = false;
    }
    Corsa(const Corsa &) = delete;
    Corsa &operator=(const Corsa &) = delete;

private:
    bool &m_inCorso;
};

struct Guasto {
    int numero;
    QString testo;
};

// Copies a program over `destinazione` through a temporary name beside it, and
// keeps it executable: a failure leaves the old file whole.
std::optional<Guasto> CopiaEseguibile(const QString &sorgente, const QString &destinazione)
{
    QFile da(sorgente);
    QSaveFile a(destinazione);
    const auto guasto = [&](const QFileDevice &f) {
        const Guasto g{f.error() == QFileDevice::NoError ? int(QFileDevice::OpenError) : int(f.error()), f.errorString()};
        a.cancelWriting(); // after the reading of the error: cancelling sets one of its own
        return g;
    };
    if (!da.open(QIODevice::ReadOnly))
        return guasto(da);
    if (!a.open(QIODevice::WriteOnly))
        return guasto(a);
    while (!da.atEnd()) {
        const QByteArray blocco = da.read(1 << 20);
        if (blocco.isEmpty())
            return guasto(da);
        if (a.write(blocco) != blocco.size())
            return guasto(a);
    }
    a.setPermissions(da.permissions() | QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeUser);
    if (!a.commit())
        return guasto(a);
    return std::nullopt;
}

// The downloaded program becomes "Upgrade" beside it and starts. "" or what went wrong.
QString Consegna(const QString &scaricato)
{
    const QString copia = frame::pub().CartellaProgramma + QLatin1String(NomeCopia);
    if (const auto guasto = CopiaEseguibile(scaricato, copia))
        return guasto->testo;
    if (!AvviaProgramma(QLatin1Char('"') + copia + QLatin1Char('"')))
        return QStringLiteral("Cannot start %1.").arg(copia);
    return QString();
}

bool controllo(frame::Prompter &prompter, Scaricamento &scarica, const AmbienteControllo &ambiente)
{
    using frame::TestoLingua;
    using Icon = frame::Prompter::Icon;
    if (!prompter.confirm(TestoLingua("peref"), Icon::Information))
        return false;
    frame::MostraStato(TestoLingua("WITPL"));
    const QString cartella = frame::pub().CartellaProgramma;
    const QString locale = cartella + QLatin1String(NomeDescrittore);
    const QString sito = IndirizzoAggiornamenti();
    if (!TestConnessione(sito, ambiente.attesaConnessione)) {
        prompter.information(TestoLingua("peref"));
        return false;
    }
    // Both files land in the program folder: say so plainly when it can't take them.
    if (QTemporaryFile prova(cartella + QStringLiteral("XXXXXX.prova")); !prova.open()) {
        prompter.stop(TestoLingua("VERU7") + QLatin1Char('\n') + QDir::toNativeSeparators(cartella));
        return false;
    }
    QFile::remove(locale);
    QString errore = scarica.Download(sito + QLatin1String(NomeDescrittore), locale, 5);
    frame::MostraStato(QString());
    if (!errore.isEmpty()) {
        prompter.stop(errore);
        return false;
    }

    QFile file(locale);
    QByteArray contenuto;
    if (file.open(QIODevice::ReadOnly))
        contenuto = file.read(DescrittoreMassimo + 1);
    const std::optional<Descrittore> d = LeggeDescrittore(contenuto);
    if (!d) {
        prompter.information(TestoLingua("VERU6"));
        return false;
    }
    if (d->versione <= ambiente.corrente) {
        prompter.information(TestoLingua("VERU5"));
        return false;
    }
    QString offerta = TestoLingua("VERU1") + QLatin1Char(' ') + ambiente.corrente.testo() + QLatin1Char('\n')
                      + TestoLingua("VERU2") + QLatin1Char(' ') + d->versione.testo() + QLatin1Char('\n')
                      + TestoLingua("VERU3") + QLatin1Char('\n') + d->Message;
    if (d->Sha256.isEmpty())
        offerta += QLatin1Char('\n') + TestoLingua("VERU9");
    if (prompter.question(offerta, frame::Prompter::Buttons::YesNo, frame::Prompter::Answer::Yes)
        != frame::Prompter::Answer::Yes)
        return false;

    frame::MostraStato(TestoLingua("WITPL"));
    frame::preferenze().setPathProgramma(ambiente.eseguibile);
    const QString programma = cartella + d->Ver;
    QFile::remove(programma);
    errore = scarica.Download(sito + QString::fromLatin1(QUrl::toPercentEncoding(d->Ver)), programma, d->Dim);
    frame::MostraStato(QString());
    if (!errore.isEmpty()) {
        prompter.stop(errore);
        return false;
    }
    if (!d->Sha256.isEmpty() && Sha256File(programma) != d->Sha256) {
        QFile::remove(programma);
        prompter.stop(TestoLingua("VERU8"));
        return false;
    }
    frame::MostraStato(TestoLingua("WITPL"));
    prompter.information(TestoLingua("VERU4"));
    if (const QString mancata = Consegna(programma); !mancata.isEmpty()) {
        prompter.stop(mancata);
        return false;
    }
    return true;
}

} // namespace

QString Versione::testo() const
{
    return QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(revision);
}

Versione VersioneCorrente()
{
    const QStringList parti = QString::fromLatin1(frame::VersioneProgramma).split(QLatin1Char('.'));
    return {parti.value(0).toLongLong(), parti.value(1).toLongLong(), parti.value(2).toLongLong()};
}

std::optional<Versione> VersioneDaNome(const QString &ver)
{
    // From the end: a name with underscores of its own keeps them.
    const qsizetype punto = ver.lastIndexOf(QLatin1Char('.'));
    if (punto < 0)
        return std::nullopt;
    qsizetype segni[3];
    qsizetype da = punto;
    for (int i = 2; i >= 0; --i) {
        segni[i] = da > 0 ? ver.lastIndexOf(QLatin1Char('_'), da - 1) : -1;
        if (segni[i] < 0)
            return std::nullopt;
        da = segni[i];
    }
    const auto major = numero(ver.mid(segni[0] + 1, segni[1] - segni[0] - 1));
    const auto minor = numero(ver.mid(segni[1] + 1, segni[2] - segni[1] - 1));
    const auto revision = numero(ver.mid(segni[2] + 1, punto - segni[2] - 1));
    if (!major || !minor || !revision)
        return std::nullopt;
    return Versione{*major, *minor, *revision};
}

QString LeggeProfilo(const QByteArray &contenuto, const QString &sezione, const QString &chiave)
{
    bool dentro = false;
    for (QByteArray riga : contenuto.split('\n')) {
        riga = riga.trimmed();
        if (riga.startsWith('[')) {
            const qsizetype fine = riga.indexOf(']');
            dentro = fine > 0
                     && QString::fromUtf8(riga.mid(1, fine - 1)).trimmed().compare(sezione, Qt::CaseInsensitive) == 0;
            continue;
        }
        const qsizetype uguale = riga.indexOf('=');
        if (!dentro || riga.startsWith(';') || uguale <= 0)
            continue;
        if (QString::fromUtf8(riga.left(uguale)).trimmed().compare(chiave, Qt::CaseInsensitive) != 0)
            continue;
        QByteArray valore = riga.mid(uguale + 1).trimmed();
        if (valore.size() >= 2 && (valore.front() == '"' || valore.front() == '\'') && valore.back() == valore.front())
            valore = valore.mid(1, valore.size() - 2);
        if (const qsizetype zero = valore.indexOf('\0'); zero >= 0)
            valore.truncate(zero);
        QString testo = QString::fromUtf8(valore).left(ValoreMassimo);
        while (!testo.isEmpty() && testo.back().isSpace())
            testo.chop(1);
        return testo;
    }
    return QString();
}

std::optional<Descrittore> LeggeDescrittore(const QByteArray &contenuto)
{
    if (contenuto.size() > DescrittoreMassimo)
        return std::nullopt;
    const QString sezione = QString::fromLatin1(frame::TitoloApplicazione);
    Descrittore d;
    d.Ver = LeggeProfilo(contenuto, sezione, QStringLiteral("Ver"));
    d.Message = LeggeProfilo(contenuto, sezione, QStringLiteral("Message"));
    const QString dim = LeggeProfilo(contenuto, sezione, QStringLiteral("Dim"));
    d.Sha256 = LeggeProfilo(contenuto, sezione, QStringLiteral("Sha256")).toLower();
    static const QRegularExpression esadecimale(QStringLiteral("^[0-9a-f]{64}$"));
    if (!d.Sha256.isEmpty() && !esadecimale.match(d.Sha256).hasMatch())
        return std::nullopt;
    if (!dim.isEmpty()) {
        const auto n = numero(dim);
        if (!n)
            return std::nullopt;
        d.Dim = *n;
    }
    const auto versione = VersioneDaNome(d.Ver);
    if (!NomeNudo(d.Ver) || !versione)
        return std::nullopt;
    d.versione = *versione;
    return d;
}

QString Sha256File(const QString &percorso)
{
    QFile file(percorso);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return QString();
    return QString::fromLatin1(hash.result().toHex());
}

QString IndirizzoAggiornamenti()
{
    QString base = frame::pub().IndirizzoSito;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    return base + QStringLiteral("/software/") + QLatin1String(CartellaProdotto) + QLatin1Char('/');
}

QStringList DividiRiga(const QString &riga)
{
    const QString testo = riga.trimmed();
    qsizetype fine;
    QString programma;
    if (testo.startsWith(QLatin1Char('"'))) {
        fine = testo.indexOf(QLatin1Char('"'), 1);
        if (fine < 0)
            fine = testo.size();
        programma = testo.mid(1, fine - 1);
        ++fine;
    } else {
        fine = testo.indexOf(QLatin1Char(' '));
        if (fine < 0)
            fine = testo.size();
        programma = testo.left(fine);
    }
    return QStringList{programma} + QProcess::splitCommand(testo.mid(fine));
}

bool AvviaProgramma(const QString &riga)
{
    QStringList parti = DividiRiga(riga);
    const QString programma = parti.takeFirst();
    if (programma.isEmpty())
        return false;
    return QProcess::startDetached(programma, parti, QFileInfo(programma).absolutePath());
}

bool TestConnessione(const QString &url, int attesaMs)
{
    const QUrl indirizzo(url);
    if (!indirizzo.isValid() || indirizzo.host().isEmpty())
        return false;
    const bool sicuro = indirizzo.scheme().compare(QLatin1String("https"), Qt::CaseInsensitive) == 0;
    QTcpSocket presa;
    QEventLoop attesa;
    QTimer::singleShot(attesaMs, &attesa, &QEventLoop::quit);
    QObject::connect(&presa, &QTcpSocket::connected, &attesa, &QEventLoop::quit);
    QObject::connect(&presa, &QTcpSocket::errorOccurred, &attesa, &QEventLoop::quit);
    presa.connectToHost(indirizzo.host(), quint16(indirizzo.port(sicuro ? 443 : 80)));
    if (presa.state() != QAbstractSocket::ConnectedState && presa.state() != QAbstractSocket::UnconnectedState)
        attesa.exec();
    return presa.state() == QAbstractSocket::ConnectedState;
}

bool ControlloAggiornamento(frame::Prompter &prompter, Scaricamento &scarica, const AmbienteControllo &ambiente)
{
    static bool inCorso = false;
    if (inCorso)
        return false;
    Corsa corsa(inCorso);
    try {
        return controllo(prompter, scarica, ambiente);
    } catch (const std::exception &e) {
        frame::MostraErrore(prompter, QString::fromLocal8Bit(e.what()));
        return false;
    }
}

bool EntrataCopia(frame::Prompter &prompter, const QString &eseguibile, const QStringList &argomenti, int attesaMs)
{
    const QFileInfo proprio(eseguibile);
    if (proprio.completeBaseName().toUpper() != QLatin1String("UPGRADE"))
        return false;
    // The program that started this one needs a moment to end.
    QThread::msleep(attesaMs);
    QString destinazione = frame::preferenze().pathProgramma();
    if (destinazione.isEmpty() && !argomenti.isEmpty())
        destinazione = proprio.absoluteDir().filePath(QFileInfo(argomenti.first()).fileName());

    std::optional<Guasto> guasto;
    if (destinazione.isEmpty())
        guasto = Guasto{int(QFileDevice::OpenError), QStringLiteral("No installed program is named by the key Path.")};
    else
        guasto = CopiaEseguibile(eseguibile, destinazione);
    if (guasto) {
        prompter.stop(QString::number(guasto->numero) + QLatin1Char('\n') + guasto->testo
                      + QStringLiteral(" Close The Program and repeat the operation"));
        return true;
    }
    AvviaProgramma(QLatin1Char('"') + destinazione + QLatin1Char('"'));
    return true;
}

} // namespace upgrade
