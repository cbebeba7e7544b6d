// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "forms/RecordsetModel.h"
#include "forms/Tabelle.h"

#include <QHash>
#include <QWidget>

#include <memory>

class QAction;
class QDataWidgetMapper;
class QToolBar;

namespace frame {
class Prompter;
}
namespace Ui {
class frmtabelle;
}

namespace forms {

class EditoreCampi;

// The table editor: any one table in a grid, edited in place (a new row pending
// at the end until the caret leaves it), or one row at a time in the detail
// panel; found by the sort field, sorted by a click on a heading, printed as the
// grid stands. The caller sets `sorgente_data`, then CaricaTextFormatGriglia.
class frmtabelle final : public QWidget {
    Q_OBJECT

public:
    explicit frmtabelle(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmtabelle() override;

    QString sorgente_data;
    // Opens the table with the caller's columns and gives each its editor by the field's type.
    void CaricaTextFormatGriglia(const ImpostazioneTabella &impostazione);
    // Every key of the toolbar.
    void bottoni(const QString &chiave);

    RecordsetModel &datPrimaryRS() { return *m_model; }
    QAction *pulsante(const QString &chiave) const { return m_pulsanti.value(chiave); }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void apri();
    void ordina(int colonna);
    void trova();
    void rigaCambiata(const QModelIndex &attuale, const QModelIndex &precedente);
    bool chiudiNuova(); // writes or drops a pending row; false when the user keeps it

    std::unique_ptr<Ui::frmtabelle> m_ui;
    frame::Prompter &m_prompter;
    QToolBar *m_toolbar;
    QHash<QString, QAction *> m_pulsanti;
    ImpostazioneTabella m_impostazione;
    OrdineTabella m_ordine{QString()};
    std::unique_ptr<RecordsetModel> m_model;
    EditoreCampi *m_editore;
    QDataWidgetMapper *m_mappa;
};

} // namespace forms
