// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

namespace frame {

// The per-user store of named text values, by section and key. Keys are blind
// to case: "PathData" and "Pathdata" are one key.
namespace SettingsStore {

inline constexpr const char *Section = "Impostazioni";

QString get(const QString &section, const QString &key, const QString &defaultValue = QString());
void save(const QString &section, const QString &key, const QString &value);
// The file that holds the store, for the README and for tests.
QString fileName();
// A message for the user when the file is too large to be read (the store then
// answers defaults and writes nothing); empty when all is well.
QString problem();

} // namespace SettingsStore
} // namespace frame
