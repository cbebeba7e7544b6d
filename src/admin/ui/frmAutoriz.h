// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "forms/ui/FormRecord.h"

#include <memory>

namespace Ui {
class frmAutorizDettaglio;
}

namespace forms {
class RecordsetModel;
}

class QTableView;

namespace admin {

class ModelloAccessi;

// The users and their rights: a user's name and password, and under them the
// grid of that user's rows of Accessi, one per menu item. Opens on the
// signed-in user; only administrator adds, deletes, searches and prints.
class frmAutoriz final : public forms::FormRecord {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmAutoriz)

public:
    explicit frmAutoriz(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmAutoriz() override;

    // The rights grid TDBGrid1 and what it shows.
    QTableView *TDBGrid1() const;
    ModelloAccessi &Data1() { return *m_accessi; }

protected:
    void LeggeDati() override;
    bool convalida() override;
    bool verificaInterna(const QString &azione) override;

private:
    void impostaDidascalie();
    // The rights grid follows the stored user shown, after completing its rows.
    void caricaAccessi();
    // The stored name of the current user row ("" while adding).
    QString utenteRecord();
    bool inScrittura();
    void elencoCambiato(const QModelIndex &riga);
    // Puts the user list on a row without moving the record.
    void mostraInElenco(qint64 posizione);

    Ui::frmAutorizDettaglio *m_ui;
    std::unique_ptr<forms::RecordsetModel> m_righe;
    ModelloAccessi *m_accessi;
};

} // namespace admin
