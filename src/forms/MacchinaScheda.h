// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "forms/Filtro.h"
#include "forms/RecordsetModel.h"
#include "forms/Scheda.h"

#include <QObject>
#include <QVector>

#include <functional>
#include <memory>

namespace frame {
class Prompter;
}

namespace forms {

// What tells one record form from another: its data and what its table offers.
struct ConfigurazioneScheda {
    QString tabella;            // table or query of the form, the prefix of the filter's fields
    QString sorgenteIniziale;   // the detail panel's first source
    QString ordinePredefinito;  // the list's default order text, with its " order by ", or ""
    QStringList azioni;         // the toolbar keys the table offers
    const char *chiaveNessunElenco = "M0009"; // CmdElencoPrec with no earlier list
    bool attivazione = false;   // the form has the operation layout
    QString modelloStampa = QStringLiteral("Elenco"); // the list template of the print mode
    const char *chiaveTitoloStampa = "M0327";          // and its title
    QString modelloEtichette;                          // the labels template of the print mode; empty: no labels
    bool elencoPersonalizzato = false;                 // the print mode offers the user's own list
    QList<const char *> domandeElimina = {"M0013", "M0047"}; // asked in turn before a delete, each must be OK
    QStringList formuleStampa;                                // formulas of the form's own that the print adds
};

// A field of the detail recordset bound to a box of the window: read by "ok",
// shown at each move. The window gives the two ways to its box.
struct CampoLegato {
    QString campo;
    TipoCasellaScheda tipo = TipoCasellaScheda::Testo;
    std::function<QVariant()> leggi;
    std::function<void(const QVariant &)> mostra;
};

// The record form machine with no widget: the detail set (datPrimaryRS) and the
// list (datPrimaryRSGrd), the layout of the toolbar, the panel in front, the
// pending row and the one routine `bottoni` behind every key, with its rights
// test, questions and status messages. A window shows the state it reports
// (statoCambiato) and forwards keys and clicks; the concrete form's own part
// comes through Ganci.
class MacchinaScheda : public QObject {
    Q_OBJECT

public:
    enum class Pannello { Dettaglio, Elenco, Filtri };
    enum class ModoFiltri { Ricerca, Stampa };
    enum class Fuoco { PrimaCasella, Filtri, Griglia };

    // The concrete form's part of the machine.
    class Ganci {
    public:
        virtual ~Ganci() = default;
        // A check of the form's own before an action ("modifica", "elimina", "esci"); false stops it.
        virtual bool verificaInterna(const QString &azione) = 0;
        virtual void impostaPredefiniti() = 0;
        virtual bool convalida() = 0;
        // Shows the current row (or the row being written) in the window.
        virtual void LeggeDati() = 0;
        virtual void azioneRefresh() = 0;
        virtual void layoutCambiato(Layout layout) = 0;
        // The file was read again after a backup, restore or compaction.
        virtual void fileRiletto() = 0;
        // The form was activated or its rights changed.
        virtual void attivata(bool gestioneAccessi) = 0;
        // A key of the form's own ("scheda": the record's card printed).
        virtual void azionePropria(const QString &azione) = 0;
    };

    MacchinaScheda(store::Database &db, frame::Prompter &prompter, ConfigurazioneScheda configurazione, Ganci &ganci,
                   QObject *parent = nullptr);
    ~MacchinaScheda() override;

    // Every action of the form: a toolbar key, "refresh", "gestione" or "attivazione".
    void bottoni(const QString &Azione);
    void Gestione();
    void Attivazione();
    // The rights letter of the user, as the menu gives it to the window.
    void impostaAutorizzazione(const QString &lettera);
    const QString &autorizzazione() const { return m_autorizzazione; }
    // The window came in front (or its rights changed): the form's own part hears whether the user may manage accesses.
    void attivata();

    // Fields and rows.
    void lega(CampoLegato campo);
    const QVector<CampoLegato> &legami() const { return m_legami; }
    void mostraCampi(); // the bound fields of the current row, or empty ones without a row
    void abilitaPagine(bool abilitate); // Abilita and Disabilita of the detail pages
    void vaiA(qint64 posizione);
    void Riposiziona();
    void apriDettaglio(const QString &sql, const QVariantList &parametri, const QVariant &chiave = QVariant(),
                       store::RowCounter contatore = {});
    void ricaricaDettaglio(const QVariant &chiave);
    bool rigaCorrente();
    QVariant chiaveCorrente();

    // The list and filter panels.
    void CaricaGriglia(const QString &Ordine);
    void ordinaElenco(const QString &campo, bool discendente);
    // Makes current, in the detail panel, the row of the list with this key, and leaves the list.
    void PosizionaRecord(const QVariant &chiave);
    void apriFiltri(ModoFiltri modo);
    // Runs a search the filter panel built, in the order given; tells what the list holds.
    // `chiaveNessuna` tells that no row was found.
    EsitoRicerca applicaFiltro(const QString &where, const QString &ordine, bool chkAuto, const char *chiaveNessuna = "M0009");
    void Command5();
    void CmdElencoPrec();
    void CmdRefresh();
    void CmdFitriGrid();
    void mostraDettaglio();

    // The state a window shows.
    Layout layout() const { return m_layout; }       // the last layout outside editing
    Layout layoutCorrente() const { return m_corrente; }
    QHash<QString, StatoPulsante> pulsanti() const;
    bool pagineAbilitate() const { return m_pagineAbilitate; }
    Pannello pannello() const { return m_pannello; }
    bool toolbarVisibile() const { return m_toolbar; }
    ModoFiltri modoFiltri() const { return m_modoFiltri; }
    const QString &didascaliaRecord() const { return m_didascalia; }
    const QString &where() const { return m_where; }
    const ConfigurazioneScheda &configurazione() const { return m_cfg; }

    RecordsetModel &datPrimaryRS() { return *m_dettaglio; }
    RecordsetModel &datPrimaryRSGrd() { return *m_elenco; }
    store::Recordset &recordset() { return m_dettaglio->recordset(); }
    frame::Prompter &prompter() { return m_prompter; }

signals:
    // The keys, the pages, the panel in front or the record caption changed.
    void statoCambiato();
    void fuocoRichiesto(forms::MacchinaScheda::Fuoco dove);
    // The detail recordset stands on another row (or on none, -1).
    void posizioneCambiata(qint64 posizione);
    // The list was opened on another query: its columns may differ.
    void elencoRiaperto();
    void chiusuraRichiesta();

private:
    void applicaLayout(Layout layout);
    void impostaPannello(Pannello p, bool toolbar);
    void posizionaDettaglio(const QVariant &chiave);
    void eseguiAggiungi();
    void eseguiModifica();
    void eseguiOk();
    void eseguiAnnulla();
    void eseguiElimina();
    void scriviCampi();
    int idProprietario();

    frame::Prompter &m_prompter;
    ConfigurazioneScheda m_cfg;
    Ganci &m_ganci;
    QString m_autorizzazione;
    QString m_where;
    QString m_ordine;
    Layout m_layout = Layout::Gestione;  // the last layout outside editing, where "ok" and "annulla" return
    Layout m_corrente = Layout::Gestione;
    bool m_chiaviBloccate = false;       // add, edit, delete, find and print held off while the form checks an edit
    bool m_pagineAbilitate = false;
    Pannello m_pannello = Pannello::Dettaglio;
    bool m_toolbar = true;               // hidden while the filter panel (and the list it opens) is in front
    ModoFiltri m_modoFiltri = ModoFiltri::Ricerca;
    QString m_didascalia;
    std::unique_ptr<RecordsetModel> m_dettaglio;
    std::unique_ptr<RecordsetModel> m_elenco;
    QVector<CampoLegato> m_legami;
};

} // namespace forms
