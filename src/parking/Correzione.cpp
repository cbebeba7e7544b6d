// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/Correzione.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

namespace parking {

using frame::Prompter;
using frame::pub;
using frame::TestoLingua;

QStringList ParoleStato()
{
    return {TestoLingua("M0297"), TestoLingua("M0298")};
}

QString ParolaStato(bool entrato)
{
    return TestoLingua(entrato ? "M0297" : "M0298");
}

QString RigaVeicoliDentro()
{
    return TestoLingua("M0299") + QStringLiteral(": ") + QString::number(VeicoliDentro());
}

namespace {

// A refusal: an information box, then the list takes the focus.
EsitoCorrezione rifiuta(Prompter &prompter, const char *chiave)
{
    prompter.information(TestoLingua(chiave));
    EsitoCorrezione esito;
    esito.fuoco = FuocoPark::Griglia;
    return esito;
}

EsitoCorrezione allaGriglia()
{
    EsitoCorrezione esito;
    esito.fuoco = FuocoPark::Griglia;
    return esito;
}

// A refusal told by the row's stored state, which the window's copy did not show:
// the window reads the row again.
EsitoCorrezione rifiutaERilegge(Prompter &prompter, const char *chiave)
{
    EsitoCorrezione esito = rifiuta(prompter, chiave);
    esito.aggiorna = true;
    return esito;
}

FuocoPark fuocoDi(Fuoco f)
{
    switch (f) {
    case Fuoco::Targa:
        return FuocoPark::Targa;
    case Fuoco::CodiceFascia:
        return FuocoPark::CodiceFascia;
    case Fuoco::Nessuno:
        break;
    }
    return FuocoPark::Nessuno;
}

EsitoCorrezione correggi(store::Recordset &rs, const QString &statoMovimento, PannelloMovimento &pannello,
                         const QString &autorizzazione, Prompter &prompter, const Orologio &adesso)
{
    if (!frame::EAmministratore() && !pub().OpModificare)
        return rifiuta(prompter, "M0049");
    if (!RigaCorrente(rs))
        return rifiuta(prompter, "M0050");
    // The row as stored decides; the replay checks it again in its own transaction.
    const std::optional<StatoMovimento> stato = LeggeStato(rs.key());
    if (!stato)
        return rifiutaERilegge(prompter, "M0050");
    // The tag's letter; AutorizzaOperazione shows its own refusal.
    if (!frame::AutorizzaOperazione(prompter, QStringLiteral("modifica"), autorizzazione, stato->autore))
        return allaGriglia();
    if (stato->annullato)
        return rifiutaERilegge(prompter, "M0051");
    if (stato->contabilizzato)
        return rifiutaERilegge(prompter, "M0052");
    // Boxes emptied or filled for another row are never written: the panel shows
    // the row first, and the user corrects what it shows.
    if (!PannelloDellaRiga(rs, pannello)) {
        EsitoCorrezione esito;
        esito.aggiorna = true;
        esito.fuoco = FuocoPark::Targa;
        return esito;
    }
    if (!prompter.confirm(TestoLingua("M0053"), Prompter::Icon::Exclamation))
        return allaGriglia();

    bool entrata;
    if (statoMovimento == TestoLingua("M0297")) {
        entrata = true;
    } else if (statoMovimento == TestoLingua("M0298")) {
        entrata = false;
    } else {
        prompter.stop(TestoLingua("M0054"));
        EsitoCorrezione esito;
        esito.fuoco = FuocoPark::StatoMovimento;
        return esito;
    }

    // The register's own path, on the current row: number and year stay.
    EsitoCorrezione esito;
    esito.entraEsce = EntraEsce(rs, entrata, true, pannello, prompter, adesso);
    esito.eseguito = esito.entraEsce.scritto;
    esito.fuoco = esito.entraEsce.rileggi ? FuocoPark::Griglia : fuocoDi(esito.entraEsce.fuoco);
    // A written replay ends as the action button does: refresh, then the count line.
    esito.aggiorna = esito.eseguito || esito.entraEsce.rileggi;
    esito.contaVeicoli = esito.eseguito;
    return esito;
}

EsitoCorrezione annulla(store::Recordset &rs, const QString &autorizzazione, Prompter &prompter)
{
    if (!frame::EAmministratore() && !pub().OpAnnullare)
        return rifiuta(prompter, "M0054");
    if (!RigaCorrente(rs))
        return rifiuta(prompter, "M0055");
    const QVariant id = rs.key();
    const std::optional<StatoMovimento> stato = LeggeStato(id);
    if (!stato)
        return rifiutaERilegge(prompter, "M0055");
    // A cancellation takes the place of a delete, so it needs the right to delete.
    if (!frame::AutorizzaOperazione(prompter, QStringLiteral("elimina"), autorizzazione, stato->autore))
        return allaGriglia();
    if (stato->contabilizzato)
        return rifiutaERilegge(prompter, "M0056");
    if (prompter.question(TestoLingua("M0057") + QStringLiteral("\n\n") + TestoLingua("M0006"),
                          Prompter::Buttons::OkCancel, Prompter::Answer::Cancel, QString(), Prompter::Icon::Stop)
        != Prompter::Answer::Ok)
        return {};

    // The question may have stood open while the row was posted or removed.
    store::Transaction transazione(frame::basedati());
    const std::optional<StatoMovimento> ora = LeggeStato(id);
    if (!ora) {
        EsitoCorrezione esito;
        esito.aggiorna = true;
        return esito;
    }
    if (ora->contabilizzato)
        return rifiutaERilegge(prompter, "M0056");
    rs.Edit();
    rs.setValue(QStringLiteral("Annullato"), true);
    rs.setValue(QStringLiteral("Idutente"), pub().IdUtenteCorrente);
    rs.Update();
    transazione.commit();

    EsitoCorrezione esito;
    esito.eseguito = true;
    esito.aggiorna = true;
    esito.contaVeicoli = true;
    esito.fuoco = FuocoPark::Griglia;
    return esito;
}

// A failed read or write shows nothing of its own: the edit is dropped and the
// window's refresh shows the row as the database holds it.
EsitoCorrezione dopoErrore(store::Recordset &rs)
{
    if (rs.editMode() != store::Recordset::EditMode::None)
        rs.CancelUpdate();
    EsitoCorrezione esito;
    esito.aggiorna = true;
    esito.fuoco = FuocoPark::Griglia;
    return esito;
}

} // namespace

EsitoCorrezione ComMod(store::Recordset &rs, const QString &statoMovimento, PannelloMovimento &pannello,
                       const QString &autorizzazione, Prompter &prompter, const Orologio &adesso)
{
    try {
        return correggi(rs, statoMovimento, pannello, autorizzazione, prompter, adesso);
    } catch (const store::DbError &) {
        return dopoErrore(rs);
    }
}

EsitoCorrezione ComAnn(store::Recordset &rs, const QString &autorizzazione, Prompter &prompter)
{
    try {
        return annulla(rs, autorizzazione, prompter);
    } catch (const store::DbError &) {
        return dopoErrore(rs);
    }
}

} // namespace parking
