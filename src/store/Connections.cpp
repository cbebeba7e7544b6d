// SPDX-License-Identifier: GPL-3.0-or-later
#include "Connections.h"

#include <QFileInfo>

#include <map>
#include <memory>

namespace store {

namespace {

std::map<QString, std::unique_ptr<Database>> &registry()
{
    static std::map<QString, std::unique_ptr<Database>> connections;
    return connections;
}

QString canonical(const QString &path)
{
    return QFileInfo(path).absoluteFilePath();
}

} // namespace

Database &Connections::get(const QString &path, const QString &key)
{
    auto &reg = registry();
    const QString name = canonical(path);
    auto it = reg.find(name);
    if (it == reg.end())
        it = reg.emplace(name, std::make_unique<Database>(name, key)).first;
    return *it->second;
}

void Connections::close(const QString &path)
{
    registry().erase(canonical(path));
}

void Connections::closeAll()
{
    registry().clear();
}

bool Connections::isOpen(const QString &path)
{
    return registry().count(canonical(path)) > 0;
}

QString keyFromConnect(const QString &connect)
{
    // The report paths write ";pwd=" before the whole tail (";pwd=;PWD=quartzel"): the last value that is not empty counts.
    QString key;
    for (const QString &part : connect.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const qsizetype eq = part.indexOf(QLatin1Char('='));
        if (eq > 0 && part.left(eq).trimmed().compare(QLatin1String("PWD"), Qt::CaseInsensitive) == 0 && eq + 1 < part.size())
            key = part.mid(eq + 1);
    }
    return key;
}

} // namespace store
