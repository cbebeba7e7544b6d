// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace frame {

// Closes the window a form lives in: its frame inside the main window when it
// has one (closing only the form would leave an empty frame behind), else the
// form itself. The form's close event still decides, as for the frame's own button.
void ChiudeFinestra(QWidget *form);

} // namespace frame
