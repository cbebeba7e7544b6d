// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/SettingsStore.h"

#include <QFileInfo>
#include <QMutex>
#include <QSettings>
#include <QStandardPaths>

#include <memory>

namespace frame::SettingsStore {

namespace {

// A real store holds a few dozen short keys; anything near this size was not written by the program.
constexpr qint64 MaxBytes = qint64(1) << 20;

QMutex storeLock;

QString path(const QString &section, const QString &key)
{
    return section.toLower() + QLatin1Char('/') + key.toLower();
}

// The one parsed copy of the file, read again only when the file changed on the disk:
// parsing it for every key read made the start grow with the file's size times the keys.
// Nothing when the file is too large to be read at all.
QSettings *store()
{
    static std::unique_ptr<QSettings> settings;
    if (QFileInfo(fileName()).size() > MaxBytes) {
        settings.reset();
        return nullptr;
    }
    if (settings)
        settings->sync();
    else
        settings = std::make_unique<QSettings>(fileName(), QSettings::IniFormat);
    return settings.get();
}

} // namespace

QString get(const QString &section, const QString &key, const QString &defaultValue)
{
    const QMutexLocker locked(&storeLock);
    QSettings *s = store();
    const QVariant v = s ? s->value(path(section, key)) : QVariant();
    // A value that is not text (a list written by hand into the file) counts as missing.
    if (!v.isValid() || v.metaType().id() != QMetaType::QString)
        return defaultValue;
    return v.toString();
}

void save(const QString &section, const QString &key, const QString &value)
{
    const QMutexLocker locked(&storeLock);
    // An oversized file is left as it is: problem() tells the user about it.
    if (QSettings *s = store()) {
        s->setValue(path(section, key), value);
        s->sync();
    }
}

QString fileName()
{
    // Where QSettings keeps the user's file of this program, named here so that its size can be checked before it is read.
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Veltano/Veltano.ini");
}

QString problem()
{
    const qint64 size = QFileInfo(fileName()).size();
    if (size <= MaxBytes)
        return QString();
    return QStringLiteral("The settings file %1 is %2 MB, too large to be the settings of this program (at most %3 MB). "
                          "It was left as it is and is not read: the program runs on its default settings, and keeps "
                          "no change to them, until the file is removed or replaced.")
        .arg(fileName())
        .arg(double(size) / (1 << 20), 0, 'f', 1)
        .arg(MaxBytes >> 20);
}

} // namespace frame::SettingsStore
