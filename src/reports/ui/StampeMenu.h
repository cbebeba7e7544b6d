// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/engine/CrystalReport.h"
#include "reports/ui/VisoreAnteprima.h"

#include <QObject>

namespace frame {
class Prompter;
}

namespace reports {

// The lists the reports menu prints without a window of options (customers,
// suppliers, the two overdue lists), on one engine of the main window that
// keeps its formulas between runs.
class StampeMenu final : public QObject {
    Q_OBJECT

public:
    // The one of this main window, made at its first use.
    static StampeMenu &di(frame::Prompter &prompter, QWidget *principale);
    // Prints the list of `codice` to the preview; the preview, or nullptr when the run failed.
    QWidget *stampa(const QString &codice);

private:
    StampeMenu(frame::Prompter &prompter, QWidget *principale);

    QWidget *m_principale;
    VisoreAnteprima m_visore;
    CrystalReport m_report;
};

} // namespace reports
