// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "forms/ui/PannelloFiltro.h"

#include "forms/MacchinaScheda.h"
#include "reports/engine/CrystalReport.h"
#include "reports/ui/VisoreAnteprima.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QStackedWidget;
class QTableView;
class QToolBar;

namespace frame {
class Prompter;
}

namespace forms {

// The window of the record form machine (MacchinaScheda): the detail panel, the
// list panel, the filter panel and the toolbar of keyed buttons, showing the
// machine's state and forwarding keys and clicks to it. A concrete window gives
// its detail page, its field catalogue, its bound boxes and its hooks.
class FormRecord : public QWidget, protected MacchinaScheda::Ganci {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FormRecord)

public:
    ~FormRecord() override;

    // Every action of the form: a toolbar key, "refresh", "gestione" or "attivazione".
    void bottoni(const QString &Azione) { m_macchina->bottoni(Azione); }
    void Gestione() { m_macchina->Gestione(); }
    void Attivazione() { m_macchina->Attivazione(); }
    void NonAutorizzato();
    void Autorizzato();
    // Makes current, in the detail panel, the row picked in the list, and leaves the list.
    void PosizionaRecord();
    // The buttons of the filter and list panels.
    void Command5() { m_macchina->Command5(); }
    void Command6();
    void CmdElencoPrec() { m_macchina->CmdElencoPrec(); }
    void CmdRefresh() { m_macchina->CmdRefresh(); }
    void CmdFitriGrid() { m_macchina->CmdFitriGrid(); }

    MacchinaScheda &macchina() { return *m_macchina; }
    RecordsetModel &datPrimaryRS() { return m_macchina->datPrimaryRS(); }
    RecordsetModel &datPrimaryRSGrd() { return m_macchina->datPrimaryRSGrd(); }
    store::Recordset &recordset() { return m_macchina->recordset(); }
    QAction *pulsante(const QString &chiave) const { return m_pulsanti.value(chiave); }
    QTableView *grdDataGrid() const { return m_griglia; }
    PannelloFiltro *filtri() const { return m_filtri; }
    Layout layout() const { return m_macchina->layout(); }
    const QString &where() const { return m_macchina->where(); }
    // The rights letter of the user, as the menu wrote it into the "Tag" property.
    QString autorizzazione() const { return m_macchina->autorizzazione(); }
    // The panel in front: 0 the detail, 1 the list, 2 the filters.
    int pannelloVisibile() const { return int(m_macchina->pannello()); }
    // The detail panel's record caption: "Reg. " and the position.
    QString didascaliaRecord() const { return m_macchina->didascaliaRecord(); }

signals:
    // The detail recordset stands on another row (or on none, -1).
    void posizioneCambiata(qint64 posizione);

protected:
    FormRecord(frame::Prompter &prompter, ConfigurazioneScheda configurazione, QWidget *parent);

    // The detail panel (the window's own .ui), and its pages that Abilita and
    // Disabilita open and close.
    void impostaDettaglio(QWidget *dettaglio, const QList<QWidget *> &pagine);
    void impostaCatalogoFiltri(const QVector<CasellaFiltro> &catalogo);
    // A box bound to a field of the detail recordset, written by "ok" and read at each move.
    void lega(QWidget *casella, const QString &campo, TipoCasellaScheda tipo);
    // The limits of the bound boxes from their fields' types and sizes.
    void ImpostaCampi();
    void ImpostaDidascalie();
    // Moves the detail recordset to a row and runs the reposition event.
    void vaiA(qint64 posizione) { m_macchina->vaiA(posizione); }
    // The reposition event: shows the row in the detail panel.
    void Riposiziona() { m_macchina->Riposiziona(); }
    // Opens the detail source on another query and puts the current row on `chiave` if it is there.
    void apriDettaglio(const QString &sql, const QVariantList &parametri, const QVariant &chiave = QVariant(),
                       store::RowCounter contatore = {})
    {
        m_macchina->apriDettaglio(sql, parametri, chiave, std::move(contatore));
    }
    // Reads the detail source again, staying on the row with `chiave` if it is still there.
    void ricaricaDettaglio(const QVariant &chiave) { m_macchina->ricaricaDettaglio(chiave); }
    frame::Prompter &prompter() { return m_macchina->prompter(); }
    // Whether the detail recordset stands on a row, and that row's key (invalid when none).
    bool rigaCorrente() { return m_macchina->rigaCorrente(); }
    QVariant chiaveCorrente() { return m_macchina->chiaveCorrente(); }
    // Brings the detail panel in front of the list and the filters.
    void mostraDettaglio() { m_macchina->mostraDettaglio(); }
    void Abilita() { m_macchina->abilitaPagine(true); }

    // The concrete form's part of the machine, by default nothing of its own.
    bool verificaInterna(const QString &) override { return true; }
    void impostaPredefiniti() override {}
    bool convalida() override { return true; }
    void LeggeDati() override { m_macchina->mostraCampi(); }
    void azioneRefresh() override {}
    void attivata(bool) override {}
    void azionePropria(const QString &) override {}
    // A form with an operation panel shows or hides it.
    void layoutCambiato(Layout) override {}
    // The record shown is read afresh.
    void fileRiletto() override { Riposiziona(); }
    // The quick-search key (F1) and the new-entry key (F5), on windows that have them.
    virtual void tastoF1() {}
    virtual void tastoF5() {}
    // The print panel's custom list, on windows that offer it.
    virtual void elencoPersonalizzato() {}
    // The filter panel's boxes built into a filter; a box refused takes the focus.
    std::optional<Filtro> filtroDelPannello();

    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

    reports::VisoreAnteprima m_visore;
    reports::CrystalReport m_report;

private:
    void creaToolbar();
    void stampaFiltro(const QString &modello);
    QWidget *creaPannelloElenco();
    void mostraStato();
    void daiFuoco(MacchinaScheda::Fuoco dove);
    void elencoRiaperto();
    void ordinaElenco(int colonna);
    QWidget *primaCasella() const;

    std::unique_ptr<MacchinaScheda> m_macchina;
    QToolBar *m_toolbar;
    QHash<QString, QAction *> m_pulsanti;
    QStackedWidget *m_pannelli;
    QWidget *m_dettaglioPagina = nullptr;
    QList<QWidget *> m_pagine;
    QLabel *m_velo;
    QLabel *m_posizione;
    PannelloFiltro *m_filtri;
    QTableView *m_griglia;
    QCheckBox *m_chkOrdinamento;
    QComboBox *m_cmbOrdinamento;
    QList<QPointer<QWidget>> m_caselle; // the bound boxes, in the order bound
};

} // namespace forms
