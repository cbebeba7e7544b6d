// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/ChiudeFinestra.h"

#include <QMdiSubWindow>

namespace frame {

void ChiudeFinestra(QWidget *form)
{
    if (auto *cornice = qobject_cast<QMdiSubWindow *>(form->parentWidget()))
        cornice->close();
    else
        form->close();
}

} // namespace frame
