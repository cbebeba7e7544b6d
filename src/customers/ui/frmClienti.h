// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "customers/Clienti.h"
#include "forms/ui/FormRecord.h"

#include <memory>

namespace Ui {
class frmClientiDettaglio;
}

namespace forms {
class RecordsetModel;
}

class QCheckBox;
class QLineEdit;

namespace reports {
class frmStampa;
}

namespace customers {

// The registry of customers or suppliers: the card with its parking block and
// deadline lamps, the card's cash rows, the phone book beside it and the
// letter strip above. Each menu click opens a new one; the mode decides the
// list it opens with and what a save writes into `Cliente`.
class frmClienti final : public forms::FormRecord {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmClienti)

public:
    frmClienti(frame::Prompter &prompter, Modo modo, QWidget *parent = nullptr);
    ~frmClienti() override;

    Modo modo() const { return m_modo; }
    // A button of the letter strip, by its index (26 is "Tutti").
    void ComElenco(int indice);
    // F3 with what the user typed: the surnames that begin with it.
    void RicercaVeloce(const QString &inizio);
    // The card's cash tab: one monthly fee; the current row deleted; its receipt printed.
    void CmdPag();
    void CmdCancella();
    void CmdStampaDoc();
    forms::RecordsetModel &Datagrid() { return *m_cassa; }

protected:
    void LeggeDati() override;
    bool convalida() override;
    void impostaPredefiniti() override;
    bool verificaInterna(const QString &azione) override;
    void keyPressEvent(QKeyEvent *event) override;
    void azionePropria(const QString &azione) override;
    // The print panel's custom list: the fields chosen in frmStampa, over the panel's filter.
    void elencoPersonalizzato() override;

private:
    void impostaDidascalie();
    void impostaModo();
    void seguiCassa();
    void aggiornaLampade();
    void rubricaCambiata(const QModelIndex &riga);
    // Puts the phone book on a row without moving the card.
    void mostraInRubrica(qint64 posizione);
    // The card is being added or changed.
    bool inScrittura();

    Ui::frmClientiDettaglio *m_ui;
    Modo m_modo;
    QString m_lettera = QStringLiteral("Tutti");
    int m_indiceLettera = IndiceTutti;
    std::unique_ptr<forms::RecordsetModel> m_cassa;
    QVariant m_idCassa; // the customer whose rows the cash tab shows
    QCheckBox *m_cliente; // hidden boxes: what a save writes by itself
    QLineEdit *m_utente;
    reports::frmStampa *m_stampa = nullptr; // kept hidden between prints: the choices stay
};

} // namespace customers
