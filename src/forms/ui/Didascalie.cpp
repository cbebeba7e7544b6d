// SPDX-License-Identifier: GPL-3.0-or-later
#include "forms/ui/Didascalie.h"

#include "frame/Language.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>

namespace forms {

void ApplicaDidascalia(QObject *controllo, const char *testo, const char *suggerimento)
{
    using frame::TestoLingua;
    if (auto *a = qobject_cast<QAction *>(controllo)) {
        if (*testo)
            a->setText(TestoLingua(testo).remove(QLatin1Char('&')));
        if (*suggerimento)
            a->setToolTip(TestoLingua(suggerimento));
        return;
    }
    auto *w = qobject_cast<QWidget *>(controllo);
    if (!w)
        return;
    if (*testo) {
        if (auto *b = qobject_cast<QAbstractButton *>(w))
            b->setText(TestoLingua(testo));
        else if (auto *l = qobject_cast<QLabel *>(w))
            l->setText(TestoLingua(testo));
        else if (auto *g = qobject_cast<QGroupBox *>(w))
            g->setTitle(TestoLingua(testo));
    }
    if (*suggerimento)
        w->setToolTip(TestoLingua(suggerimento));
}

} // namespace forms
