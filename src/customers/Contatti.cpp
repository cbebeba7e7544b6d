// SPDX-License-Identifier: GPL-3.0-or-later
#include "customers/Contatti.h"

#include "frame/Prompter.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <utility>

namespace customers {

using frame::Prompter;

namespace {

// The programs the desktop opens web pages with, in the order Qt itself tries them.
QString browserDiSistema()
{
    QStringList candidati{QStringLiteral("xdg-open")};
    for (const char *variabile : {"DEFAULT_BROWSER", "BROWSER"}) {
        const QString valore = qEnvironmentVariable(variabile).section(QLatin1Char(':'), 0, 0).trimmed();
        if (!valore.isEmpty())
            candidati << valore;
    }
    candidati << QStringLiteral("x-www-browser") << QStringLiteral("firefox") << QStringLiteral("chromium")
              << QStringLiteral("google-chrome");
    for (const QString &c : std::as_const(candidati)) {
        const QString percorso = QStandardPaths::findExecutable(c);
        if (!percorso.isEmpty())
            return percorso;
    }
    return QString();
}

// A number of digits and the marks people write between them; at least one digit.
bool numeroComponibile(const QString &numero)
{
    bool cifra = false;
    for (const QChar c : numero) {
        if (c.isDigit())
            cifra = true;
        else if (!c.isSpace() && !QStringLiteral("+-.()/*#").contains(c))
            return false;
    }
    return cifra;
}

// A tel: link keeps the visual separators it knows and drops blanks and slashes.
QUrl urlTelefono(const QString &numero)
{
    QString compatto;
    for (const QChar c : numero)
        if (!c.isSpace() && c != QLatin1Char('/'))
            compatto += c;
    QUrl url;
    url.setScheme(QStringLiteral("tel"));
    url.setPath(compatto);
    return url;
}

} // namespace

Desktop::Desktop()
    : apri([](const QUrl &url) { return QDesktopServices::openUrl(url); }),
      browser(browserDiSistema),
      avvia([](const QString &programma, const QStringList &argomenti, const QString &cartella) {
          return QProcess::startDetached(programma, argomenti, cartella);
      })
{
}

QString MotivoErroreChiamata(int esito)
{
    switch (esito) {
    case NumeroNonValido:
        return QStringLiteral("The phone number is not valid.");
    case CodaPiena:
        return QStringLiteral("The queue of pending Windows Telephony dialing requests is full.");
    case NessunDialer:
        return QStringLiteral("No Windows Telephony dialing application is running and none could be started.");
    default:
        return QStringLiteral("Unknown error.");
    }
}

RigaComando DividiRigaComando(const QString &riga)
{
    RigaComando r;
    QString resto;
    if (riga.startsWith(QLatin1Char('"'))) {
        const qsizetype chiusa = riga.indexOf(QLatin1Char('"'), 1);
        r.programma = chiusa < 0 ? riga.mid(1) : riga.mid(1, chiusa - 1);
        resto = chiusa < 0 ? QString() : riga.mid(chiusa + 1);
    } else {
        const qsizetype spazio = riga.indexOf(QLatin1Char(' '));
        r.programma = spazio < 0 ? riga : riga.left(spazio);
        resto = spazio < 0 ? QString() : riga.mid(spazio);
    }

    const qsizetype barra = r.programma.lastIndexOf(QLatin1Char('/'));
    if (barra == 0 || (barra > 0 && r.programma.at(barra - 1) == QLatin1Char(':')))
        r.cartella = r.programma.left(barra + 1); // a root keeps its separator
    else if (barra > 0)
        r.cartella = r.programma.left(barra);

    qsizetype inizio = 0;
    while (inizio < resto.size() && resto.at(inizio).isSpace())
        ++inizio;
    r.parametri = resto.mid(inizio);
    return r;
}

AccountPosta GetEmail()
{
    return {};
}

Contatti::Contatti(frame::Prompter &prompter, Desktop desktop) : m_prompter(prompter), m_desktop(std::move(desktop)) {}

int Contatti::Telefono(const QString &numero)
{
    const QString n = numero.trimmed();
    if (n.isEmpty())
        return Chiamata;
    int esito = Chiamata;
    if (!numeroComponibile(n))
        esito = NumeroNonValido;
    else if (!m_desktop.apri(urlTelefono(n)))
        esito = NessunDialer;
    if (esito != Chiamata)
        m_prompter.message(QStringLiteral("Error dialing number : ") + MotivoErroreChiamata(esito), Prompter::Icon::Information);
    return esito;
}

bool Contatti::Email(const QString &indirizzo)
{
    const QString a = indirizzo.trimmed();
    return !a.isEmpty() && m_desktop.apri(QUrl(QStringLiteral("mailto:") + a));
}

bool Contatti::AprePaginaWeb(const QString &url)
{
    const QString u = url.trimmed();
    if (u.isEmpty()) {
        m_prompter.message(QStringLiteral("Enter a URL"), Prompter::Icon::Exclamation);
        return false;
    }
    if (m_desktop.browser().isEmpty()) {
        m_prompter.message(QStringLiteral("Could not find your Browser"), Prompter::Icon::Information);
        return false;
    }
    if (!m_desktop.apri(QUrl::fromUserInput(u))) {
        m_prompter.message(QStringLiteral("Web Page Not Opened"), Prompter::Icon::Information);
        return false;
    }
    return true;
}

bool Contatti::ApreFileAss(const QString &riga, int /*modo*/)
{
    const RigaComando r = DividiRigaComando(riga);
    if (r.programma.isEmpty())
        return false;
    if (m_desktop.avvia(r.programma, QProcess::splitCommand(r.parametri), r.cartella))
        return true;
    return m_desktop.apri(QUrl::fromLocalFile(QFileInfo(r.programma).absoluteFilePath()));
}

} // namespace customers
