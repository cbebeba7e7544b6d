// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/engine/CrystalReport.h"

#include <QPointer>

class QPrintPreviewDialog;
class QWidget;

namespace reports {

// The print preview of a run: pages, zoom, print, and a button that saves a PDF.
// The window keeps the pages it shows and may outlive the form that asked for
// it; a new run closes the previous window of the same viewer.
class VisoreAnteprima final : public Visore {
public:
    explicit VisoreAnteprima(QWidget *parent = nullptr) : m_parent(parent) {}
    void mostra(std::shared_ptr<const PagineReport> pagine, int statoFinestra, double zoom) override;
    // The window of the last run, while it is open.
    QPrintPreviewDialog *finestra() const;

private:
    QPointer<QWidget> m_parent;
    QPointer<QPrintPreviewDialog> m_finestra;
};

} // namespace reports
