// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/FinestraStampa.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"

#include <QFileInfo>
#include <QTimer>

namespace reports {

FinestraStampa::FinestraStampa(frame::Prompter &prompter, QWidget *parent)
    : QDialog(parent), m_prompter(prompter), m_visore(this), m_report(prompter, &m_visore)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

void FinestraStampa::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (frame::pub().Pathdata.isEmpty() || !QFileInfo::exists(frame::pub().Pathdata)) {
        m_prompter.information(frame::TestoLingua("M0082"));
        QTimer::singleShot(0, this, &QDialog::close);
    }
}

} // namespace reports
