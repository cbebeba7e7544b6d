// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <functional>

class QDialog;

namespace frame {

// The entry routine of the process: one instance, paths, language, settings,
// main window, login. Returns the process's exit code. `loginMostrato`, when
// given, is called once the login window stands on the screen (the start-up benchmark).
int EntryRoutine(int argc, char **argv, const std::function<void(QDialog &)> &loginMostrato = {});

} // namespace frame
