// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/StampeMenu.h"

#include "reports/runs/StampeElenchi.h"

#include <QWidget>

namespace reports {

StampeMenu::StampeMenu(frame::Prompter &prompter, QWidget *principale)
    : QObject(principale), m_principale(principale), m_visore(principale), m_report(prompter, &m_visore)
{
    setObjectName(QStringLiteral("StampeMenu"));
}

StampeMenu &StampeMenu::di(frame::Prompter &prompter, QWidget *principale)
{
    if (auto *s = principale->findChild<StampeMenu *>(QStringLiteral("StampeMenu"), Qt::FindDirectChildrenOnly))
        return *s;
    return *new StampeMenu(prompter, principale);
}

QWidget *StampeMenu::stampa(const QString &codice)
{
    if (!m_report.esegui(LancioElenco(codice, m_principale->windowTitle())))
        return nullptr;
    return m_visore.finestra();
}

} // namespace reports
