// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "forms/ui/FormRecord.h"
#include "parking/Registro.h"
#include "parking/Ricerca.h"

namespace Ui {
class frmParkDettaglio;
}

namespace parking {

struct EsitoCorrezione;

// The parking window: the quick search panel, the movement in the detail
// panel beside the list of found movements, the entry and exit button, and
// the corrections, cancellation and posting. The record form machine gives
// the toolbar, the list panel and the filters.
class frmPark final : public forms::FormRecord {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmPark)

public:
    explicit frmPark(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmPark() override;

    // The quick search: `CercaRiga` from the search button, not from the option buttons.
    void RicercaRapida(bool CercaRiga);
    // Prepares the panel for a new entry.
    void Ingresso();
    // The action button: an entry or the exit of the movement shown.
    void EntraEsce();
    bool ProssimaEntrata() const { return m_prossimaEntrata; }
    // The clock of entries and exits (tests set their own).
    void impostaOrologio(Orologio adesso) { m_adesso = std::move(adesso); }

protected:
    void LeggeDati() override;
    void azioneRefresh() override;
    void tastoF1() override;
    void tastoF5() override;
    void attivata(bool gestioneAccessi) override;
    void layoutCambiato(forms::Layout layout) override;
    void fileRiletto() override;

private:
    void impostaDidascalie();
    void caricaFasce();
    void codiceFasciaCambiato(const QString &codice);
    void sceltaOpzione(OpzioneElenco opzione);
    void applicaRicerca(const EsitoRicerca &esito);
    PannelloMovimento pannello() const;
    PannelloRicerca pannelloRicerca() const;
    void fineOperazione(const EsitoEntraEsce &esito, qint64 id);
    void rilegge(const QVariant &chiave);
    void apriCorrezione(bool aperta);
    void dopoCorrezione(const EsitoCorrezione &esito);
    void fuoco(int dove);
    void ComMod();
    void ComAnn();
    void ComCont();
    void sincronizzaGriglia(qint64 posizione);
    OpzioneElenco opzione() const;

    Ui::frmParkDettaglio *m_ui;
    Orologio m_adesso = OraDiSistema;
    bool m_prossimaEntrata = true;
    bool m_fasciaNonTrovata = false;
    QVariant m_chiavePannello; // the movement the panel's boxes were filled from; invalid when none
};

} // namespace parking
