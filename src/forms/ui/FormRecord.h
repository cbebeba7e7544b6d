// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "PannelloFiltro.h"

#include <CrystalReport.h>
#include <RecordsetModel.h>
#include <Scheda.h>

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
};

// The record form machine: a detail panel on the form's recordset (datPrimaryRS),
// a list panel on a second one (datPrimaryRSGrd), the filter panel, a toolbar of
// keyed buttons, and the one routine `bottoni` behind all of them. A concrete
// window gives its detail page, its field catalogue, its bound boxes and its hooks.
class FormRecord : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FormRecord)

public:
    ~FormRecord() override;

    // Every action of the form: a toolbar key, "refresh", "gestione" or "attivazione".
    void bottoni(const QString &Azione);
    void Gestione();
    void Attivazione();
    void Abilita();
    void Disabilita();
    void NonAutorizzato();
    void Autorizzato();
    // Makes current, in the detail panel, the row picked in the list, and leaves the list.
    void PosizionaRecord();
    void CaricaGriglia(const QString &Ordine);
    // The buttons of the filter and list panels.
    void Command5();
    void Command6();
    void CmdElencoPrec();
    void CmdRefresh();
    void CmdFitriGrid();

    RecordsetModel &datPrimaryRS() { return *m_dettaglio; }
    RecordsetModel &datPrimaryRSGrd() { return *m_elenco; }
    store::Recordset &recordset() { return m_dettaglio->recordset(); }
    QAction *pulsante(const QString &chiave) const { return m_pulsanti.value(chiave); }
    QTableView *grdDataGrid() const { return m_griglia; }
    PannelloFiltro *filtri() const { return m_filtri; }
    Layout layout() const { return m_layout; }
    const QString &where() const { return m_where; }
    // The rights letter of the user, as the menu wrote it into the "Tag" property.
    QString autorizzazione() const;
    // The panel in front: 0 the detail, 1 the list, 2 the filters.
    int pannelloVisibile() const;
    // The detail panel's record caption: "Reg. " and the position.
    QString didascaliaRecord() const;

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
    void vaiA(qint64 posizione);
    // The reposition event: shows the row in the detail panel.
    void Riposiziona();
    // Opens the detail source on another query and puts the current row on `chiave` if it is there.
    void apriDettaglio(const QString &sql, const QVariantList &parametri, const QVariant &chiave = QVariant(),
                       store::RowCounter contatore = {});
    // Reads the detail source again, staying on the row with `chiave` if it is still there.
    void ricaricaDettaglio(const QVariant &chiave);
    frame::Prompter &prompter() { return m_prompter; }
    // Whether the detail recordset stands on a row, and that row's key (invalid when none).
    bool rigaCorrente();
    QVariant chiaveCorrente();
    // Brings the detail panel in front of the list and the filters.
    void mostraDettaglio();

    // The concrete form's part of the machine.
    virtual bool verificaInterna(const QString &azione);
    virtual void impostaPredefiniti() {}
    virtual bool convalida() { return true; }
    virtual void LeggeDati();
    virtual void azioneRefresh() {}
    // The quick-search key (F1) and the new-entry key (F5), on windows that have them.
    virtual void tastoF1() {}
    virtual void tastoF5() {}
    // The form was activated; the rights letter may have changed.
    virtual void attivata(bool gestioneAccessi);
    // The layout changed: a form with an operation panel shows or hides it.
    virtual void layoutCambiato(Layout) {}
    // The file was read again after a backup, restore or compaction: the record shown is read afresh.
    virtual void fileRiletto();

    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

    reports::CrystalReport m_report;

private:
    struct Legame {
        QPointer<QWidget> casella;
        QString campo;
        TipoCasellaScheda tipo;
    };

    void creaToolbar();
    QWidget *creaPannelloElenco();
    void applicaLayout(Layout layout);
    void abilitaPulsanti(const QStringList &chiavi, bool abilitato);
    void apriFiltri(PannelloFiltro::Modo modo);
    void ordinaElenco(int colonna);
    void scriviCampi();
    void posizionaDettaglio(const QVariant &chiave);
    bool eseguiAggiungi();
    bool eseguiOk();
    void eseguiAnnulla();
    void eseguiElimina();
    QWidget *primaCasella() const;
    int idProprietario();

    frame::Prompter &m_prompter;
    ConfigurazioneScheda m_cfg;
    QString m_where;
    QString m_ordine;
    Layout m_layout = Layout::Gestione; // the last layout outside editing, where "ok" and "annulla" return

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
    std::unique_ptr<RecordsetModel> m_dettaglio;
    std::unique_ptr<RecordsetModel> m_elenco;
    QVector<Legame> m_legami;
};

} // namespace forms
