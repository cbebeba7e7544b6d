// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "forms/Filtro.h"

#include <QVector>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace store {
class Recordset;
}

namespace forms {

// The filter panel PicRic: one row of boxes per entry of the field catalogue
// (a text box, or a lower and an upper box for a date or a number), the match
// mode, and the buttons that run, cancel or bring back the last list. It only
// collects what is typed; the form runs the builder with it.
class PannelloFiltro final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PannelloFiltro)

public:
    enum class Modo { Ricerca, Stampa };

    explicit PannelloFiltro(QWidget *parent = nullptr);

    // Builds the boxes; each takes its caption and its field from the catalogue.
    void impostaCatalogo(const QVector<CasellaFiltro> &catalogo);
    // Text boxes get the size of their field as their maximum length.
    void impostaLunghezze(const store::Recordset &rs);
    // Sets the heading, the mode button and ChkAuto for a mode.
    void impostaModo(Modo modo);
    Modo modo() const { return m_modo; }
    // The catalogue with what is typed now.
    QVector<CasellaFiltro> caselle() const;
    int modoConfronto() const;
    bool chkAuto() const;
    // The box of entry `indice` (the upper one of a date or number with `limiteAl`).
    QLineEdit *casella(int indice, bool limiteAl = false) const;
    void impostaDidascalie();
    // The form prints labels, or a list of the user's own, too: a button for
    // each beside the print one, in the print mode.
    void impostaStampeAggiunte(bool conEtichette, bool conPersonalizzato);

signals:
    void esegui();           // Command6: run the builder in the panel's mode
    void chiudi();           // Command5: leave the panel
    void elencoPrecedente(); // CmdElencoPrec: the last list, without a new search
    void etichette();        // CmdEtichette: the labels of the filtered records
    void personalizzato();   // CmdPersonalizzato: the user's own list of the filtered records

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *m_intestazione;
    QComboBox *m_combo1;
    QGridLayout *m_griglia;
    QCheckBox *m_chkAuto;
    QPushButton *m_modoBottone;
    QPushButton *m_etichette;
    QPushButton *m_personalizzato;
    bool m_conEtichette = false;
    bool m_conPersonalizzato = false;
    Modo m_modo = Modo::Ricerca;
    QVector<CasellaFiltro> m_catalogo;
    QVector<QLineEdit *> m_dal; // the text box, or the lower bound
    QVector<QLineEdit *> m_al;  // the upper bound, or nullptr for a text box
};

} // namespace forms
