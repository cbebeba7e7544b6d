// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/ElencoPersonalizzato.h"

#include <QDialog>
#include <QHash>
#include <QString>
#include <QVector>

#include <utility>

class QListWidget;

namespace Ui {
class frmStampa;
}

namespace reports {

// The choices of the custom list: which fields print, in which order, and the
// sort fields. Closing only hides the window, so the next opening finds them.
class frmStampa final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmStampa)

public:
    // `campi`: the fields of the registry and their captions, in the list's order.
    frmStampa(const QVector<std::pair<QString, QString>> &campi, QWidget *parent = nullptr);
    ~frmStampa() override;
    const SceltaCampi &scelta() const { return m_scelta; }

private:
    void Command3();  // add the field picked
    void Command4();  // remove the chosen field picked
    void Command5();  // add the sort field picked
    void Command6();  // remove the sort field picked
    void Command1();  // clear the choices
    void mostraScelta();

    Ui::frmStampa *m_ui;
    SceltaCampi m_scelta;
    QHash<QString, QString> m_didascalie; // field → caption
};

} // namespace reports
