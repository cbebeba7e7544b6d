// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace frame {
class Prompter;
}

namespace customers {

// What the desktop does for the contact actions. Each part can be replaced, so
// that tests need neither a desktop nor a started program.
struct Desktop {
    Desktop(); // the running desktop's own

    // Hands a URL (tel:, mailto:, a web page, a file) to the program the desktop
    // ties to it; false when none takes it.
    std::function<bool(const QUrl &)> apri;
    // The program that shows web pages; empty when there is none.
    std::function<QString()> browser;
    // Starts a program on its own in a working folder (empty: the current one); false when it can't start.
    std::function<bool(const QString &programma, const QStringList &argomenti, const QString &cartella)> avvia;
};

// The results of a dial, and the reason each failure gives after "Error dialing number : ".
enum EsitoChiamata { Chiamata = 0, NessunDialer = -2, CodaPiena = -3, NumeroNonValido = -4 };
QString MotivoErroreChiamata(int esito);

// A command line split as the file opener reads it.
struct RigaComando {
    QString programma;
    QString cartella;   // the program's folder; empty: the current one
    QString parametri;
};
// A line that begins with a double quote names the program between that quote and
// the next; otherwise the program ends at the first blank. The folder is the part
// of the program before its last "/", keeping the "/" when it is the first
// character or follows a ":". The rest of the line, left-trimmed, is the parameters.
RigaComando DividiRigaComando(const QString &riga);

// The default mail account of the machine.
struct AccountPosta {
    QString indirizzo;
    QString nome;
};
// The desktop keeps no mail account a program could read: both texts are empty.
AccountPosta GetEmail();

// The outward actions of a customer's card and of other places: dial, mail,
// web page, open a file or program.
class Contatti {
public:
    explicit Contatti(frame::Prompter &prompter, Desktop desktop = Desktop());

    // Dials the trimmed number through the desktop's tel: handler; an empty or
    // blank number does nothing. A failure tells "Error dialing number : " and
    // its reason. The result is one of EsitoChiamata. A tel: link has no place
    // for the called party's name, so none is taken.
    int Telefono(const QString &numero);
    // Starts a mail to the address; an empty address does nothing. The address's form isn't checked.
    bool Email(const QString &indirizzo);
    // Opens the page in the browser: a blank URL tells "Enter a URL", no
    // browser "Could not find your Browser", a failure "Web Page Not Opened".
    bool AprePaginaWeb(const QString &url);
    // Starts the program of the line with its parameters in its own folder; what
    // can't be started (a document, say) is opened by the program tied to it.
    // `modo` is the window's show mode: the desktop places the windows of the
    // programs it starts, so it has no effect here.
    bool ApreFileAss(const QString &riga, int modo);

private:
    frame::Prompter &m_prompter;
    Desktop m_desktop;
};

} // namespace customers
