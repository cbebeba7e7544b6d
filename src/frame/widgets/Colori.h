// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QColor>
#include <QWidget>

namespace frame {

// A colour as the settings hold it: 0xBBGGRR, or a negative system colour
// (-2147483643 is the background of an input box).
QColor ColoreDaValore(double valore, const QWidget *widget = nullptr);
// Paints the background of an input box.
void ImpostaSfondo(QWidget *box, double valore);

} // namespace frame
