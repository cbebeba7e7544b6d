// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Startup.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"

#include "store/DbError.h"

#include <QDate>
#include <QDir>
#include <QLocale>
#include <QStandardPaths>

namespace frame {

namespace {

// Runs one step; a database failure skips it and the start goes on.
template <typename F>
void passo(F &&f)
{
    try {
        f();
    } catch (const store::DbError &) {
    }
}

} // namespace

QString FormatoDataDiSistema()
{
    // Read off the format of the locale in use (the language's, once it is loaded): the clock is never touched.
    const QString testo = QLocale().toString(QDate(2002, 12, 31), QLocale::ShortFormat);
    return testo.startsWith(QLatin1String("31")) ? QStringLiteral("dd/mm/yyyy") : QStringLiteral("mm/dd/yyyy");
}

void ImpostaPercorsi(const QString &cartellaProgramma)
{
    PublicState &p = pub();
    p.CartellaProgramma = ConBarra(QDir::cleanPath(cartellaProgramma));
    p.IndirizzoProdotto = QStringLiteral("https://www.veltano.org/prodotto/");
    p.IndirizzoSito = QStringLiteral("https://www.veltano.org/");
    p.CodaConnessione = QStringLiteral(";PWD=quartzel");
    p.CartellaWin = ConBarra(QStandardPaths::writableLocation(QStandardPaths::TempLocation));
    p.CartellaTemp = p.CartellaWin + QLatin1String(TitoloApplicazione) + QLatin1Char('/');
    p.Pathdata = preferenze().pathData();
    p.PercorsoElencoBackup.clear();
    p.CartellaImmagini.clear();
    if (p.Pathdata.size() >= 13) {
        p.PercorsoElencoBackup = CartellaDati(p.Pathdata) + QStringLiteral("/ElencoBackup.mdb");
        p.CartellaImmagini = CartellaDati(p.Pathdata) + QStringLiteral("/immagini/");
    }
    p.PercorsoLocadati = p.CartellaProgramma + QStringLiteral("locadati.mdb");
}

void ImpostaLingua()
{
    const int n = preferenze().lingua();
    ElencaLingue();
    // A number outside the list (a file removed, junk in the store) falls back to the first language.
    pub().LinguaCorrente = n < pub().Lingue.size() ? n : 0;
    CaricaLinguaCorrente();
    SalvaLingua();
}

bool OpzioneAttiva(const QString &valore)
{
    return valore != TestoLingua("M0305");
}

void LeggeImpostazioniAvvio()
{
    PublicState &p = pub();
    Preferenze &pref = preferenze();
    p.AvvioPark = pref.avvio();
    passo([&] {
        p.AnnoEsercizio = pref.annoEsercizio();
        if (p.AnnoEsercizio.isEmpty()) {
            p.AnnoEsercizio = QString::number(QDate::currentDate().year());
            pref.setAnnoEsercizio(p.AnnoEsercizio);
        }
    });
    const struct {
        QString (Preferenze::*parola)() const;
        bool PublicState::*flag;
    } opzioni[] = {
        {&Preferenze::tgObbligatoria, &PublicState::TgObbligatoria},
        {&Preferenze::opAnnullare, &PublicState::OpAnnullare},
        {&Preferenze::opModificare, &PublicState::OpModificare},
        {&Preferenze::opContabilizzare, &PublicState::OpContabilizzare},
        {&Preferenze::stampaEntrata, &PublicState::StampaEntrata},
        {&Preferenze::stampaUscita, &PublicState::StampaUscita},
    };
    for (const auto &o : opzioni)
        passo([&] { p.*o.flag = OpzioneAttiva((pref.*o.parola)()); });
    passo([&] { p.FasciaDefault = pref.fasciaDefault(); });
    p.InsertPremuto = pref.insertPremuto();
}

} // namespace frame
