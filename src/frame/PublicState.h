// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

namespace frame {

// One menu item and what a user may do with it.
struct ElementoAccesso {
    int Item = 0;
    QString Descrizione;     // the item's text with "&" in front
    QString Autorizzazione;  // one letter: C, L, A, M, N, X
    bool Abilitato = false;
    bool Visibile = false;
    bool Password = false;
};

struct TestoLinguaVoce {
    QString chiave;
    QString testo;
};

// The variables that live for the whole process and that every window reads.
struct PublicState {
    QString FormatoData = QStringLiteral("dd/mm/yyyy");
    QString AnnoEsercizio;
    QString CartellaWin;
    QString CampoLogo;
    QString CodaConnessione = QStringLiteral(";PWD=quartzel");
    double ColoreCampo1 = 16250037;
    double ColoreCampo2 = 13104536;
    double ColoreCampo3 = 15334910;
    double ColoreCampo4 = -2147483643;
    double ColoreCampo5 = 8421504;
    QString CartellaImmagini;
    QString PercorsoElencoBackup;
    QString PercorsoLocadati;
    QString CartellaTemp;
    QString CartellaProgramma;   // folder of the executable, with a final separator
    QString IndirizzoProdotto;   // product page, ends in a folder path
    QString IndirizzoSito;       // the maker's site
    bool ModoRipristino = false;
    bool InsertPremuto = false;
    QString UtenteCorrente;
    int IdUtenteCorrente = 0;
    QString PasswordCorrente;
    bool UtenteMaster = false;
    QString Pathdata;
    QVector<ElementoAccesso> ElencoElementi;
    QVector<ElementoAccesso> DirittiUtente;
    int IndiceTabelle = 0;
    int IndiceStampe = 0;
    QStringList Lingue;
    QVector<TestoLinguaVoce> TestiLingua;
    int LinguaCorrente = 0;
    bool AvvioPark = false;
    bool OpContabilizzare = false;
    bool OpAnnullare = false;
    bool OpModificare = false;
    bool TgObbligatoria = false;
    bool StampaEntrata = false;
    bool StampaUscita = false;
    QString FasciaDefault;

    // Set by the main window: panel 1 of its status bar, and the check marks of the language menu.
    std::function<void(const QString &)> statusSink;
    std::function<void(int)> languageMenuSink;
};

PublicState &pub();

// Application title, used in the caption and in the temporary folder.
inline constexpr const char *TitoloApplicazione = "Veltano";

} // namespace frame
