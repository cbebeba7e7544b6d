// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "admin/Progressivi.h"

#include <QString>
#include <QVariant>

namespace frame {
class Prompter;
}

namespace admin {

// What a yes-or-no box holds after a change: the word for yes when the text is
// that word (case aside: it stands as typed), else the word for no.
struct CasellaSiNo {
    QString testo;
    bool si = false; // false: the box shows the "off" colour
};
CasellaSiNo RegolaSiNo(const QString &testo);

// The key of the message that refuses a fiscal year as typed in its box: "M0130"
// for 0 (or an empty box), "M0131" for anything but four digits; nullptr when it stands.
const char *ControllaAnno(const QString &testo);

// The company data of the settings, by column.
struct DatiAzienda {
    QString IRagSoc, IAttivita1, IAttivita2, IAttivita3, IIndirizzo, ICap, IPr, ILocalita, ICF, IEmail, ITel, IIndHttp;
};

// The options: the six yes-or-no words as their boxes hold them, the default band, the start-up choice.
struct DatiOpzioni {
    QString TgObbligatoria, OpAnnullare, OpModificare, OpContabilizzare, StampaEntrata, StampaUscita;
    QString FasciaDefault;
    bool avvioAutomatico = false; // OptionAuto
};

// What the save of the settings window writes.
struct DatiImpostazioni {
    QString anno; // the fiscal year's box, as typed
    Progressivi progressivi;
    DatiAzienda azienda;
    DatiOpzioni opzioni;
    QVariant logoP, logoS; // image bytes (QByteArray), or a null QVariant for no logo
};

// Saves the company, counter and option tabs: the year checks (nothing written
// when one refuses), then the fiscal year, its counters, the company, the options
// and the logos in one transaction (a failure keeps none of them and says why),
// then the public state (the options on when their word is "S"), the start-up key
// and the autostart entry, and M0132. False when nothing was saved.
bool SalvaImpostazioni(frame::Prompter &prompter, const DatiImpostazioni &dati);

// The desktop entry that starts the program with the session:
// $XDG_CONFIG_HOME/autostart/Veltano.desktop (~/.config when the variable is unset).
QString FileAvvioAutomatico();
// Writes that entry to start `eseguibile`, or removes it; false when the folder can't be written.
bool ImpostaAvvioAutomatico(bool attivo, const QString &eseguibile);

// Makes `percorso` the working database for the next start, when it is a
// database of this program that opens with the key: saved in the settings
// store, M0128 and M0129. A missing path gets M0117; a folder, another file or a
// wrong key a message of its own; the old path is then kept. False when refused.
bool CambiaPercorso(frame::Prompter &prompter, const QString &percorso);

} // namespace admin
