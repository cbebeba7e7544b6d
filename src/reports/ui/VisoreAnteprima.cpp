// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/VisoreAnteprima.h"

#include <QScreen>

namespace reports {

AnteprimaReport *VisoreAnteprima::finestra() const
{
    return m_finestra.data();
}

void VisoreAnteprima::mostra(std::shared_ptr<const PagineReport> pagine, int statoFinestra, double zoom)
{
    if (m_finestra)
        m_finestra->close();
    auto *finestra = new AnteprimaReport(std::move(pagine), zoom, m_parent);
    finestra->setAttribute(Qt::WA_DeleteOnClose);
    finestra->resize(finestra->screen()->availableGeometry().size() * 3 / 4); // pages readable at once
    m_finestra = finestra;
    if (statoFinestra == 2)
        finestra->showMaximized();
    else
        finestra->show();
}

} // namespace reports
