// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/MacchinaScheda.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/Rights.h"
#include "frame/Routines.h"
#include "store/DbError.h"

namespace forms {

using frame::MostraStato;
using frame::TestoLingua;

MacchinaScheda::MacchinaScheda(store::Database &db, frame::Prompter &prompter, ConfigurazioneScheda configurazione,
                               Ganci &ganci, QObject *parent)
    : QObject(parent), m_prompter(prompter), m_cfg(std::move(configurazione)), m_ganci(ganci)
{
    m_dettaglio = std::make_unique<RecordsetModel>(db, m_cfg.sorgenteIniziale);
    m_elenco = std::make_unique<RecordsetModel>(db, m_cfg.sorgenteIniziale);
    // After a backup, restore or compaction the record shown is read again from the file.
    connect(m_dettaglio.get(), &RecordsetModel::riletto, this, [this] {
        if (recordset().editMode() == store::Recordset::EditMode::None)
            m_ganci.fileRiletto();
    });
}

MacchinaScheda::~MacchinaScheda() = default;

QHash<QString, StatoPulsante> MacchinaScheda::pulsanti() const
{
    QHash<QString, StatoPulsante> stato = Pulsanti(m_corrente, m_cfg.azioni);
    if (m_chiaviBloccate)
        for (const char *k : {"aggiungi", "modifica", "elimina", "trova", "stampa"})
            stato[QLatin1String(k)].abilitato = false;
    return stato;
}

void MacchinaScheda::impostaAutorizzazione(const QString &lettera)
{
    m_autorizzazione = lettera;
    attivata();
}

void MacchinaScheda::attivata()
{
    m_ganci.attivata(frame::AutorizzaOperazione(m_prompter, QStringLiteral("gestioneaccessi"), m_autorizzazione, -1));
}

int MacchinaScheda::idProprietario()
{
    store::Recordset &rs = recordset();
    const int c = rs.fieldIndex(QStringLiteral("IdUtente"));
    if (c < 0 || !rigaCorrente())
        return -1;
    const QVariant v = rs.value(c);
    return v.isValid() ? v.toInt() : -1;
}

void MacchinaScheda::bottoni(const QString &Azione)
{
    try {
        // Rights first: a refusal ends here, told by the rights test itself.
        if (Azione == QLatin1String("modifica") || Azione == QLatin1String("elimina")) {
            if (!frame::AutorizzaOperazione(m_prompter, Azione, m_autorizzazione, idProprietario()))
                return;
        } else if (Azione == QLatin1String("aggiungi")) {
            if (!frame::AutorizzaOperazione(m_prompter, Azione, m_autorizzazione, -1))
                return;
        }

        if (Azione == QLatin1String("refresh"))
            m_ganci.azioneRefresh();
        else if (Azione == QLatin1String("gestione"))
            Gestione();
        else if (Azione == QLatin1String("attivazione"))
            Attivazione();
        else if (Azione == QLatin1String("aggiungi"))
            eseguiAggiungi();
        else if (Azione == QLatin1String("modifica"))
            eseguiModifica();
        else if (Azione == QLatin1String("elimina"))
            eseguiElimina();
        else if (Azione == QLatin1String("trova"))
            apriFiltri(ModoFiltri::Ricerca);
        else if (Azione == QLatin1String("stampa"))
            apriFiltri(ModoFiltri::Stampa);
        else if (Azione == QLatin1String("ok"))
            eseguiOk();
        else if (Azione == QLatin1String("scheda"))
            m_ganci.azionePropria(Azione);
        else if (Azione == QLatin1String("annulla"))
            eseguiAnnulla();
        else if (Azione == QLatin1String("esci") && m_ganci.verificaInterna(Azione))
            emit chiusuraRichiesta();
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
}

void MacchinaScheda::eseguiAggiungi()
{
    store::Recordset &rs = recordset();
    abilitaPagine(true);
    m_chiaviBloccate = true;
    emit statoCambiato();
    emit fuocoRichiesto(Fuoco::PrimaCasella);
    if (rs.editMode() == store::Recordset::EditMode::Edit)
        rs.Update();
    rs.AddNew();
    m_didascalia = TestoLingua("M0216"); // "New record"
    m_ganci.LeggeDati();
    m_ganci.impostaPredefiniti();
    MostraStato(TestoLingua("M0014"));
    applicaLayout(Layout::Modifica);
}

void MacchinaScheda::eseguiModifica()
{
    if (!rigaCorrente())
        return;
    abilitaPagine(true);
    m_chiaviBloccate = true;
    emit statoCambiato();
    if (!m_ganci.verificaInterna(QStringLiteral("modifica"))) {
        applicaLayout(m_layout);
        return;
    }
    emit fuocoRichiesto(Fuoco::PrimaCasella);
    recordset().Edit();
    MostraStato(TestoLingua("M0015"));
    applicaLayout(Layout::Modifica);
}

void MacchinaScheda::eseguiOk()
{
    store::Recordset &rs = recordset();
    if (rs.editMode() != store::Recordset::EditMode::None) {
        if (!m_ganci.convalida())
            return;
        // The bound boxes reach the row only here, while the recordset adds or edits.
        scriviCampi();
        rs.Update(); // a failure throws: the form stays in its editing state
        MostraStato(TestoLingua("M0017"));
        rs.MoveLastModified();
        ricaricaDettaglio(rs.key());
    }
    abilitaPagine(false);
    applicaLayout(m_layout);
}

void MacchinaScheda::eseguiAnnulla()
{
    if (!m_prompter.confirm(TestoLingua("M0048")))
        return;
    store::Recordset &rs = recordset();
    const auto modo = rs.editMode();
    abilitaPagine(false);
    applicaLayout(m_layout);
    if (modo == store::Recordset::EditMode::AddNew) {
        rs.CancelUpdate();
        MostraStato(TestoLingua("M0018"));
        if (!rs.isEmpty()) {
            rs.MoveLast();
            rs.MoveLastModified();
        }
    } else if (modo == store::Recordset::EditMode::Edit) {
        rs.CancelUpdate();
        MostraStato(TestoLingua("M0019"));
    }
    Riposiziona();
}

void MacchinaScheda::eseguiElimina()
{
    store::Recordset &rs = recordset();
    if (!rigaCorrente() || !m_ganci.verificaInterna(QStringLiteral("elimina")))
        return;
    // Each question has Cancel as its default, and all must be answered OK.
    for (const char *domanda : std::as_const(m_cfg.domandeElimina))
        if (!m_prompter.confirm(TestoLingua(domanda)))
            return;
    rs.Delete();
    rs.MoveNext();
    if (rs.eof())
        rs.MovePrevious();
    const QVariant chiave = chiaveCorrente();
    MostraStato(TestoLingua("M0016"));
    ricaricaDettaglio(chiave);
}

void MacchinaScheda::lega(CampoLegato campo)
{
    m_legami.append(std::move(campo));
}

void MacchinaScheda::scriviCampi()
{
    store::Recordset &rs = recordset();
    for (const CampoLegato &l : std::as_const(m_legami))
        if (l.leggi && rs.fieldIndex(l.campo) >= 0)
            rs.setValue(l.campo, l.leggi());
}

void MacchinaScheda::mostraCampi()
{
    store::Recordset &rs = recordset();
    const bool riga = rs.editMode() != store::Recordset::EditMode::None || rigaCorrente();
    for (const CampoLegato &l : std::as_const(m_legami))
        if (l.mostra)
            l.mostra(riga && rs.fieldIndex(l.campo) >= 0 ? rs.value(l.campo) : QVariant());
}

void MacchinaScheda::applicaLayout(Layout layout)
{
    m_corrente = layout;
    m_chiaviBloccate = false;
    if (layout != Layout::Modifica)
        m_layout = layout;
    emit statoCambiato();
    m_ganci.layoutCambiato(layout);
}

void MacchinaScheda::Gestione()
{
    applicaLayout(Layout::Gestione);
}

void MacchinaScheda::Attivazione()
{
    applicaLayout(m_cfg.attivazione ? Layout::Attivazione : Layout::Gestione);
}

void MacchinaScheda::abilitaPagine(bool abilitate)
{
    m_pagineAbilitate = abilitate;
    emit statoCambiato();
}

void MacchinaScheda::impostaPannello(Pannello p, bool toolbar)
{
    m_pannello = p;
    m_toolbar = toolbar;
    emit statoCambiato();
}

void MacchinaScheda::vaiA(qint64 posizione)
{
    store::Recordset &rs = recordset();
    if (rs.editMode() != store::Recordset::EditMode::None || posizione == rs.AbsolutePosition())
        return;
    if (rs.setAbsolutePosition(posizione))
        Riposiziona();
}

void MacchinaScheda::Riposiziona()
{
    store::Recordset &rs = recordset();
    const bool valida = rigaCorrente();
    if (valida) {
        m_pannello = Pannello::Dettaglio;
        m_pagineAbilitate = true;
        m_ganci.LeggeDati();
    }
    m_didascalia = QStringLiteral("Reg. ") + (valida ? QString::number(rs.AbsolutePosition() + 1) : QString());
    emit statoCambiato();
    emit posizioneCambiata(valida ? rs.AbsolutePosition() : -1);
}

void MacchinaScheda::apriDettaglio(const QString &sql, const QVariantList &parametri, const QVariant &chiave,
                                   store::RowCounter contatore)
{
    m_dettaglio->riapri(sql, parametri, std::move(contatore));
    posizionaDettaglio(chiave);
}

void MacchinaScheda::ricaricaDettaglio(const QVariant &chiave)
{
    m_dettaglio->aggiorna();
    posizionaDettaglio(chiave);
}

void MacchinaScheda::posizionaDettaglio(const QVariant &chiave)
{
    store::Recordset &rs = recordset();
    const int riga = chiave.isValid() ? m_dettaglio->posizione(chiave) : -1;
    if (riga >= 0)
        rs.setAbsolutePosition(riga);
    else if (!rs.isEmpty())
        rs.MoveFirst();
    Riposiziona();
}

bool MacchinaScheda::rigaCorrente()
{
    store::Recordset &rs = recordset();
    return !rs.bof() && !rs.eof();
}

QVariant MacchinaScheda::chiaveCorrente()
{
    return rigaCorrente() ? recordset().key() : QVariant();
}

void MacchinaScheda::CaricaGriglia(const QString &Ordine)
{
    m_ordine = Ordine;
    m_elenco->riapri(QueryGriglia(m_cfg.tabella, m_where, Ordine, m_cfg.ordinePredefinito));
    emit elencoRiaperto();
}

void MacchinaScheda::ordinaElenco(const QString &campo, bool discendente)
{
    if (campo.isEmpty())
        return;
    MostraStato(TestoLingua("M0011")); // "Sorting..."
    try {
        CaricaGriglia(OrdineColonna(campo, discendente));
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    MostraStato(QString());
}

void MacchinaScheda::PosizionaRecord(const QVariant &chiave)
{
    if (!chiave.isValid())
        return;
    try {
        const int riga = m_dettaglio->posizione(chiave);
        if (riga >= 0) {
            recordset().setAbsolutePosition(riga);
            Riposiziona();
        } else {
            // The detail source doesn't hold the row: it takes the list's rows, and finds it there.
            apriDettaglio(m_elenco->sql(), {}, chiave);
        }
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
    Command5();
}

void MacchinaScheda::apriFiltri(ModoFiltri modo)
{
    m_modoFiltri = modo;
    impostaPannello(Pannello::Filtri, false);
    emit fuocoRichiesto(Fuoco::Filtri);
}

EsitoRicerca MacchinaScheda::applicaFiltro(const QString &where, const QString &ordine, bool chkAuto, const char *chiaveNessuna)
{
    m_where = where;
    try {
        CaricaGriglia(ordine);
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
        return EsitoRicerca::NessunaRiga;
    }
    // Whether the list holds one row or more, reading no further than two.
    store::Recordset &elenco = m_elenco->recordset();
    const qint64 righe = elenco.readTo(1) ? 2 : elenco.rowsRead();
    const EsitoRicerca esito = EsitoElenco(righe, chkAuto, m_prompter, chiaveNessuna);
    switch (esito) {
    case EsitoRicerca::Posiziona:
        PosizionaRecord(m_elenco->chiave(0));
        break;
    case EsitoRicerca::NessunaRiga:
        break;
    case EsitoRicerca::MostraElenco:
        impostaPannello(Pannello::Elenco, m_toolbar);
        emit fuocoRichiesto(Fuoco::Griglia);
        break;
    }
    return esito;
}

void MacchinaScheda::Command5()
{
    impostaPannello(Pannello::Dettaglio, true);
    if (m_cfg.attivazione)
        Attivazione();
}

void MacchinaScheda::CmdElencoPrec()
{
    if (!m_elenco->recordset().readTo(1)) {
        m_prompter.message(TestoLingua(m_cfg.chiaveNessunElenco), frame::Prompter::Icon::Stop);
        return;
    }
    impostaPannello(Pannello::Elenco, m_toolbar);
    emit fuocoRichiesto(Fuoco::Griglia);
}

void MacchinaScheda::CmdRefresh()
{
    try {
        m_elenco->aggiorna();
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
    }
}

void MacchinaScheda::CmdFitriGrid()
{
    impostaPannello(Pannello::Filtri, m_toolbar);
}

void MacchinaScheda::mostraDettaglio()
{
    impostaPannello(Pannello::Dettaglio, true);
}

} // namespace forms
