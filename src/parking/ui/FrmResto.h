// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "store/Currency.h"

#include <QDialog>

namespace Ui {
class FrmResto;
}

namespace parking {

// The change calculator opened at every exit: the amount due, what the
// customer hands over, and the change. It stores nothing; Enter and Esc close it.
class FrmResto final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FrmResto)

public:
    explicit FrmResto(QWidget *parent = nullptr);
    ~FrmResto() override;

    // Fills TxtNImporto, the amount due; the change follows what is typed afterwards.
    void impostaImporto(store::Currency importo);
    store::Currency importo() const { return m_importo; }
    // The change shown: zero while the amount given box holds no amount.
    store::Currency resto() const;
    // False while nothing, or nothing that is an amount, has been typed.
    bool restoCalcolato() const;

    // Shows the calculator for `importo` as a modal dialog, as an exit does.
    static void Mostra(store::Currency importo, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void ricalcola();

    Ui::FrmResto *m_ui;
    store::Currency m_importo;
};

} // namespace parking
