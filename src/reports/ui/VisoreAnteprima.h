// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/engine/CrystalReport.h"
#include "reports/ui/AnteprimaReport.h"

#include <QPointer>

class QWidget;

namespace reports {

// The preview of a run: pages, zoom, print, and the buttons that save a PDF or a CSV.
// The window keeps the pages it shows and may outlive the form that asked for
// it; a new run closes the previous window of the same viewer.
class VisoreAnteprima final : public Visore {
public:
    explicit VisoreAnteprima(QWidget *parent = nullptr) : m_parent(parent) {}
    void mostra(std::shared_ptr<const PagineReport> pagine, int statoFinestra, double zoom) override;
    // The window of the last run, while it is open.
    AnteprimaReport *finestra() const;

private:
    QPointer<QWidget> m_parent;
    QPointer<AnteprimaReport> m_finestra;
};

} // namespace reports
