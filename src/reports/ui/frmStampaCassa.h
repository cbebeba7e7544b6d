// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/StampeOpzioni.h"
#include "reports/ui/FinestraStampa.h"

namespace Ui {
class frmStampaCassa;
}

namespace reports {

// The fiscal year's cash book, over a period and a kind of row, with its daily-balance graph.
class frmStampaCassa final : public FinestraStampa {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmStampaCassa)

public:
    frmStampaCassa(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmStampaCassa() override;
    OpzioniCassa opzioni() const;

private:
    Ui::frmStampaCassa *m_ui;
};

} // namespace reports
