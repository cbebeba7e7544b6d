// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/ui/FinestraLibroCassa.h"

namespace Ui {
class frmStampaCassa;
}

namespace reports {

// The fiscal year's cash book, over a period and a kind of row, with its daily-balance graph.
class frmStampaCassa final : public FinestraLibroCassa {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmStampaCassa)

public:
    frmStampaCassa(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmStampaCassa() override;
    OpzioniCassa opzioni() const { return opzioniLibro(); }

private:
    Ui::frmStampaCassa *m_ui;
};

} // namespace reports
