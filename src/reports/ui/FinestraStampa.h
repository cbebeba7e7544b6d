// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/engine/CrystalReport.h"
#include "reports/ui/VisoreAnteprima.h"

#include <QDialog>

namespace frame {
class Prompter;
}

namespace reports {

// What the option windows of the reports share: their engine, which keeps its
// formulas between runs, and the close at first show when there is no database.
class FinestraStampa : public QDialog {
    Q_OBJECT

public:
    FinestraStampa(frame::Prompter &prompter, QWidget *parent);

protected:
    void showEvent(QShowEvent *event) override;

    frame::Prompter &m_prompter;
    VisoreAnteprima m_visore;
    CrystalReport m_report;
};

} // namespace reports
