// SPDX-License-Identifier: GPL-3.0-or-later
#include "Registro.h"

#include "Tariffa.h"

#include <DbError.h>
#include <Language.h>
#include <Prompter.h>
#include <PublicState.h>
#include <Recordset.h>
#include <Routines.h>

namespace parking {

using frame::pub;
using frame::TestoLingua;

QDateTime OraDiSistema()
{
    const QDateTime t = QDateTime::currentDateTime();
    return t.addMSecs(-t.time().msec()); // stored to the second
}

QVariant LeggiProgressivo(const QString &Tabella, const QString &Campo, const QString &Condizione,
                          const QString & /*Azienda: one company per database*/, bool Aggiorna, frame::Prompter &prompter)
{
    try {
        const QString where = Condizione.isEmpty() ? QString() : QStringLiteral(" Where ") + Condizione;
        const bool contatore = Tabella.toUpper() == QLatin1String("TABPROGRESSIVI");
        store::Recordset rs(frame::basedati(), contatore
                                                   ? QStringLiteral("select * from ") + Tabella + where
                                                   : QStringLiteral("select Max(") + Campo + QStringLiteral(") as Massimo from ") + Tabella + where);
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

namespace {

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

    if (Variazione)
        rs.Edit();
    else
        rs.AddNew();
    rs.setValue(QStringLiteral("entrato"), true);
    rs.setValue(QStringLiteral("targa"), p.targa);
    rs.setValue(QStringLiteral("idfascia"), p.fascia);
    rs.setValue(QStringLiteral("dataora"), adesso());
    rs.setValue(QStringLiteral("dataoraOut"), QVariant());
    rs.setValue(QStringLiteral("note"), p.note);
    rs.setValue(QStringLiteral("IdUtente"), pub().IdUtenteCorrente);
    rs.setValue(QStringLiteral("IdUtenteout"), QVariant());

    if (!Variazione) {
        const QString condizione = QStringLiteral("anno=") + frame::ApiciSQL(pub().AnnoEsercizio);
        // The counter is committed here, before the row: a number not used later is lost.
        const qint64 numero =
            LeggiProgressivo(QStringLiteral("TabProgressivi"), QStringLiteral("Progressivo"), condizione, QString(), true, prompter)
                .toLongLong()
            + 1;
        rs.setValue(QStringLiteral("progressivo"), numero);
        rs.setValue(QStringLiteral("Anno"), pub().AnnoEsercizio);
        const QVariant usato = frame::LeggiCampoSQL(QStringLiteral("select id from movimentazioni where progressivo = ")
                                                        + QString::number(numero) + QStringLiteral(" and Anno = ")
                                                        + frame::ApiciSQL(pub().AnnoEsercizio),
                                                    QStringLiteral("id"));
        if (usato.isValid()) {
            rs.CancelUpdate();
            const QVariant massimo = LeggiProgressivo(QStringLiteral("movimentazioni"), QStringLiteral("Progressivo"),
                                                      condizione, QString(), true, prompter);
            prompter.information(TestoLingua("M0067") + QStringLiteral("\n\n") + TestoLingua("M0068") + QLatin1Char('\n')
                                 + TestoLingua("M0069") + QLatin1Char('\n') + TestoLingua("M0070") + QLatin1Char(' ')
                                 + massimo.toString());
            EsitoEntraEsce esito;
            esito.collisione = true;
            return esito;
        }
    }
    rs.Update();
    rs.MoveLastModified();
    EsitoEntraEsce esito;
    esito.scritto = true;
    esito.stampa = pub().StampaEntrata;
    return esito;
}

EsitoEntraEsce uscita(store::Recordset &rs, PannelloMovimento &p, frame::Prompter &prompter, const Orologio &adesso)
{
    if (p.dataIngresso.isValid() && adesso() < p.dataIngresso.startOfDay())
        return rifiuta(prompter, "M0071", Fuoco::Nessuno);
    if (!prompter.confirm(domanda("M0072", p.targa)))
        return {};
    rs.Edit();
    rs.setValue(QStringLiteral("entrato"), false);
    rs.setValue(QStringLiteral("dataoraOut"), adesso());
    rs.setValue(QStringLiteral("note"), p.note);
    rs.setValue(QStringLiteral("IdUtenteout"), pub().IdUtenteCorrente);
    // The stay is measured on a reading of the clock of its own.
    if (!CalcolaImporto(rs, frame::basedati(), prompter, adesso()))
        return {};
    rs.Update();
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
        return Entrata ? entrata(rs, Variazione, pannello, prompter, adesso) : uscita(rs, pannello, prompter, adesso);
    } catch (const store::DbError &e) {
        if (rs.editMode() != store::Recordset::EditMode::None)
            rs.CancelUpdate();
        frame::MostraErrore(prompter, e.message());
        return {};
    }
}

} // namespace parking
