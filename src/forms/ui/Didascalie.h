// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QObject;

namespace forms {

// Gives a control (a toolbar action, a button, a label or a frame) its caption
// and tool tip from language keys; an empty key leaves that part as it is.
void ApplicaDidascalia(QObject *controllo, const char *testo, const char *suggerimento = "");

} // namespace forms
