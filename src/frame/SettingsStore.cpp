// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsStore.h"

#include <QSettings>

namespace frame::SettingsStore {

namespace {

QSettings store()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Veltano"), QStringLiteral("Veltano"));
}

QString path(const QString &section, const QString &key)
{
    return section.toLower() + QLatin1Char('/') + key.toLower();
}

} // namespace

QString get(const QString &section, const QString &key, const QString &defaultValue)
{
    const QVariant v = store().value(path(section, key));
    // A value that is not text (a list written by hand into the file) counts as missing.
    if (!v.isValid() || v.metaType().id() != QMetaType::QString)
        return defaultValue;
    return v.toString();
}

void save(const QString &section, const QString &key, const QString &value)
{
    auto s = store();
    s.setValue(path(section, key), value);
    s.sync();
}

QString fileName()
{
    return store().fileName();
}

} // namespace frame::SettingsStore
