// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/StampeOpzioni.h"
#include "reports/ui/FinestraStampa.h"

namespace Ui {
class frmStampaPark;
}

namespace reports {

// Period, plate and state of the movements to print, with the graphs by day and by hour.
class frmStampaPark final : public FinestraStampa {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmStampaPark)

public:
    frmStampaPark(frame::Prompter &prompter, QWidget *parent = nullptr);
    ~frmStampaPark() override;
    OpzioniPark opzioni() const;

private:
    Ui::frmStampaPark *m_ui;
};

} // namespace reports
