// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/VisoreAnteprima.h"

#include "frame/widgets/Esportazioni.h"

#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QScreen>

namespace reports {

QPrintPreviewDialog *VisoreAnteprima::finestra() const
{
    return m_finestra.data();
}

void VisoreAnteprima::mostra(std::shared_ptr<const PagineReport> pagine, int statoFinestra, double zoom)
{
    if (m_finestra)
        m_finestra->close();
    auto *dialog = new QPrintPreviewDialog(m_parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const QString title = pagine->titolo();
    dialog->setWindowTitle(title);
    dialog->resize(dialog->screen()->availableGeometry().size() * 3 / 4); // pages readable at once
    QPrinter *printer = dialog->printer();
    printer->setFullPage(true);
    printer->setPageLayout(pagine->pageLayout());
    printer->setDocName(title);
    QObject::connect(dialog, &QPrintPreviewDialog::paintRequested, dialog, [pagine](QPrinter *p) {
        QPainter painter(p);
        pagine->paint(painter, *p);
    });
    frame::AggiungeEsportazioni(
        *dialog, title, [pagine](const QString &path) { return pagine->writePdf(path); },
        [pagine](const QString &path) { return pagine->writeCsv(path); });
    if (zoom > 0) {
        if (auto *pagineWidget = dialog->findChild<QPrintPreviewWidget *>()) {
            pagineWidget->setZoomMode(QPrintPreviewWidget::CustomZoom);
            pagineWidget->setZoomFactor(zoom);
        }
    }
    m_finestra = dialog;
    if (statoFinestra == 2)
        dialog->showMaximized();
    else
        dialog->show();
}

} // namespace reports
