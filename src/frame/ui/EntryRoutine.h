// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace frame {

// The entry routine of the process: one instance, paths, language, settings,
// main window. Returns the process's exit code.
int EntryRoutine(int argc, char **argv);

} // namespace frame
