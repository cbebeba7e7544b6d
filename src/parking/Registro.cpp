// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/Registro.h"

#include "parking/Tariffa.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "store/Database.h"
#include "store/DbError.h"
#include "store/Recordset.h"

namespace parking {

using frame::pub;
using frame::TestoLingua;

QDateTime OraDiSistema()
{
    const QDateTime t = QDateTime::currentDateTime();
    return t.addMSecs(-t.time().msec()); // stored to the second
}

QVariant LeggiProgressivo(const QString &Tabella, const QString &Campo, const QString &Condizione,
                          const QString & /*Azienda: one company per database*/, bool Aggiorna, frame::Prompter &prompter,
                          const QVariantList &Parametri)
{
    try {
        const QString where = Condizione.isEmpty() ? QString() : QStringLiteral(" Where ") + Condizione;
        const bool contatore = Tabella.toUpper() == QLatin1String("TABPROGRESSIVI");
        store::Recordset rs(frame::basedati(), contatore
                                                   ? QStringLiteral("select * from ") + Tabella + where
                                                   : QStringLiteral("select Max(") + Campo + QStringLiteral(") as Massimo from ") + Tabella + where,
                            Parametri);
        QVariant risultato = 0;
        if (!rs.isEmpty()) {
            rs.MoveFirst();
            risultato = frame::NumeroONullo(rs.value(contatore ? Campo : QStringLiteral("Massimo")));
        }
        if (Aggiorna && contatore) {
            if (rs.isEmpty())
                rs.AddNew();
            else
                rs.Edit();
            rs.setValue(QStringLiteral("Anno"), pub().AnnoEsercizio);
            rs.setValue(Campo, risultato.toLongLong() + 1);
            rs.Update();
        }
        return risultato;
    } catch (const store::DbError &e) {
        prompter.stop(TestoLingua("M0079") + QLatin1Char(' ') + Campo + QStringLiteral(": ") + e.message());
        return -1;
    }
}

qint32 VeicoliDentro()
{
    return qint32(frame::basedati()
                      .scalar(QStringLiteral("select count(id) as numero from movimentazioni where entrato= -1 and Annullato=0"))
                      .toLongLong());
}

std::optional<StatoMovimento> LeggeStato(const QVariant &id)
{
    store::Statement st = frame::basedati().prepare(
        QStringLiteral("select Entrato, Annullato, Contabilizzato, IdUtente from Movimentazioni where id = ?"));
    st.bind(1, id);
    if (!st.step())
        return std::nullopt;
    StatoMovimento s;
    s.entrato = st.value(0).toLongLong() != 0;
    s.annullato = st.value(1).toLongLong() != 0;
    s.contabilizzato = st.value(2).toLongLong() != 0;
    s.autore = st.value(3).isNull() ? -1 : int(st.value(3).toLongLong());
    return s;
}

bool RigaCorrente(store::Recordset &rs)
{
    return !rs.isEmpty() && !rs.bof() && !rs.eof();
}

bool PannelloDellaRiga(store::Recordset &rs, const PannelloMovimento &pannello)
{
    return pannello.id.isValid() && RigaCorrente(rs) && rs.key().toLongLong() == pannello.id.toLongLong();
}

namespace {

EsitoEntraEsce rileggi()
{
    EsitoEntraEsce esito;
    esito.rileggi = true;
    return esito;
}

// A write to an existing row is decided on the row as stored, read inside the
// write's transaction, never on the copy the window showed: it may have been
// posted, cancelled or taken out since. A correction needs a row neither
// cancelled nor posted; an exit needs a vehicle still inside.
std::optional<EsitoEntraEsce> rifiutoDiStato(store::Recordset &rs, bool Variazione, frame::Prompter &prompter)
{
    const std::optional<StatoMovimento> s = LeggeStato(rs.key());
    if (!s)
        return rileggi(); // gone: there is nothing left to write to
    if (Variazione && (s->annullato || s->contabilizzato))
        prompter.information(TestoLingua(s->annullato ? "M0051" : "M0052"));
    else if (!Variazione && (!s->entrato || s->annullato || s->contabilizzato))
        prompter.stop(TestoLingua("MOV01")); // the vehicle is no longer inside
    else
        return std::nullopt;
    return rileggi();
}

EsitoEntraEsce rifiuta(frame::Prompter &prompter, const char *chiave, Fuoco fuoco)
{
    prompter.stop(TestoLingua(chiave));
    EsitoEntraEsce esito;
    esito.fuoco = fuoco;
    return esito;
}

QString domanda(const char *chiave, const QString &targa)
{
    return TestoLingua(chiave) + targa + QStringLiteral("'' ?");
}

EsitoEntraEsce entrata(store::Recordset &rs, bool Variazione, PannelloMovimento &p, frame::Prompter &prompter,
                       const Orologio &adesso)
{
    if (Variazione && !PannelloDellaRiga(rs, p))
        return rileggi();
    p.targa = p.targa.trimmed();
    if (p.targa.isEmpty() && pub().TgObbligatoria)
        return rifiuta(prompter, "M0062", Fuoco::Targa);
    if (!p.targa.isEmpty() && p.targa.size() < 5)
        return rifiuta(prompter, "M0063", Fuoco::Targa);
    if (p.fascia.isEmpty())
        return rifiuta(prompter, "M0064", Fuoco::Targa);
    if (p.fasciaNonTrovata)
        return rifiuta(prompter, "M0065", Fuoco::CodiceFascia);
    if (!prompter.confirm(domanda("M0066", p.targa)))
        return {};

    // A new row takes its number outside any transaction: the counter is committed on its own.
    std::optional<store::Transaction> transazione;
    if (Variazione) {
        transazione.emplace(frame::basedati());
        if (auto rifiuto = rifiutoDiStato(rs, true, prompter))
            return *rifiuto;
        rs.Edit();
    } else {
        rs.AddNew();
    }
    rs.setValue(QStringLiteral("entrato"), true);
    rs.setValue(QStringLiteral("targa"), p.targa);
    rs.setValue(QStringLiteral("idfascia"), p.fascia);
    rs.setValue(QStringLiteral("dataora"), adesso());
    rs.setValue(QStringLiteral("dataoraOut"), QVariant());
    rs.setValue(QStringLiteral("note"), p.note);
    rs.setValue(QStringLiteral("IdUtente"), pub().IdUtenteCorrente);
    rs.setValue(QStringLiteral("IdUtenteout"), QVariant());

    if (!Variazione) {
        const QString condizione = QStringLiteral("anno = ?");
        const QVariantList anno{pub().AnnoEsercizio};
        // The counter is committed here, before the row: a number not used later is lost.
        const qint64 numero = LeggiProgressivo(QStringLiteral("TabProgressivi"), QStringLiteral("Progressivo"), condizione,
                                               QString(), true, prompter, anno)
                                  .toLongLong()
                              + 1;
        rs.setValue(QStringLiteral("progressivo"), numero);
        rs.setValue(QStringLiteral("Anno"), pub().AnnoEsercizio);
        const QVariant usato = frame::basedati().scalar(
            QStringLiteral("select id from movimentazioni where progressivo = ? and Anno = ?"), {numero, pub().AnnoEsercizio});
        if (usato.isValid()) {
            rs.CancelUpdate();
            const QVariant massimo = LeggiProgressivo(QStringLiteral("movimentazioni"), QStringLiteral("Progressivo"),
                                                      condizione, QString(), true, prompter, anno);
            prompter.information(TestoLingua("M0067") + QStringLiteral("\n\n") + TestoLingua("M0068") + QLatin1Char('\n')
                                 + TestoLingua("M0069") + QLatin1Char('\n') + TestoLingua("M0070") + QLatin1Char(' ')
                                 + massimo.toString());
            EsitoEntraEsce esito;
            esito.collisione = true;
            return esito;
        }
    }
    rs.Update();
    if (transazione)
        transazione->commit();
    rs.MoveLastModified();
    EsitoEntraEsce esito;
    esito.scritto = true;
    esito.stampa = pub().StampaEntrata;
    return esito;
}

EsitoEntraEsce uscita(store::Recordset &rs, bool Variazione, PannelloMovimento &p, frame::Prompter &prompter,
                      const Orologio &adesso)
{
    if (!PannelloDellaRiga(rs, p))
        return rileggi();
    if (p.dataIngresso.isValid() && adesso() < p.dataIngresso.startOfDay())
        return rifiuta(prompter, "M0071", Fuoco::Nessuno);
    if (!prompter.confirm(domanda("M0072", p.targa)))
        return {};
    store::Transaction transazione(frame::basedati());
    if (auto rifiuto = rifiutoDiStato(rs, Variazione, prompter))
        return *rifiuto;
    rs.Edit();
    rs.setValue(QStringLiteral("entrato"), false);
    rs.setValue(QStringLiteral("dataoraOut"), adesso());
    rs.setValue(QStringLiteral("note"), p.note);
    rs.setValue(QStringLiteral("IdUtenteout"), pub().IdUtenteCorrente);
    // The stay is measured on a reading of the clock of its own.
    if (!CalcolaImporto(rs, frame::basedati(), prompter, adesso()))
        return {};
    rs.Update();
    transazione.commit();
    EsitoEntraEsce esito;
    esito.scritto = true;
    esito.stampa = pub().StampaUscita;
    esito.resto = true;
    const QVariant importo = frame::NumeroONullo(rs.value(QStringLiteral("Importo")));
    esito.importo = importo.metaType() == QMetaType::fromType<store::Currency>() ? importo.value<store::Currency>()
                                                                                  : store::Currency::fromDouble(importo.toDouble());
    return esito;
}

} // namespace

EsitoEntraEsce EntraEsce(store::Recordset &rs, bool Entrata, bool Variazione, PannelloMovimento &pannello,
                         frame::Prompter &prompter, const Orologio &adesso)
{
    try {
        return Entrata ? entrata(rs, Variazione, pannello, prompter, adesso) : uscita(rs, Variazione, pannello, prompter, adesso);
    } catch (const store::DbError &e) {
        if (rs.editMode() != store::Recordset::EditMode::None)
            rs.CancelUpdate();
        frame::MostraErrore(prompter, e.message());
        return {};
    }
}

} // namespace parking
