// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/Colori.h"

#include <QApplication>
#include <QPalette>

namespace frame {

QColor ColoreDaValore(double valore, const QWidget *widget)
{
    if (valore < 0)
        return widget ? QApplication::palette(widget).color(QPalette::Base) : QApplication::palette().color(QPalette::Base);
    const auto v = static_cast<quint32>(valore);
    return QColor(int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF));
}

void ImpostaSfondo(QWidget *box, double valore)
{
    QPalette pal = box->palette();
    pal.setColor(QPalette::Base, ColoreDaValore(valore, box));
    box->setPalette(pal);
}

} // namespace frame
