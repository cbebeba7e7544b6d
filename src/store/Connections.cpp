// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/Connections.h"

#include "store/DbError.h"
#include "store/Sqlite.h"

#include <QFileInfo>

#include <map>
#include <memory>

namespace store {

namespace {

// Connections are never destroyed before the process ends: lists and windows keep references to them.
std::map<QString, std::unique_ptr<Database>> &registry()
{
    static std::map<QString, std::unique_ptr<Database>> connections;
    return connections;
}

// Files under whole-file work that no connection had open yet: none may open them meanwhile.
std::map<QString, int> &heldUnopened()
{
    static std::map<QString, int> held;
    return held;
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
    if (it == reg.end()) {
        if (heldUnopened().count(name))
            throw DbError(SQLITE_BUSY, QStringLiteral("%1 is closed while the whole file is copied or replaced.").arg(name));
        it = reg.emplace(name, std::make_unique<Database>(name, key)).first;
    } else if (it->second->key() != key) {
        it->second->setKey(key); // a file made anew with another key
    }
    it->second->handle();
    return *it->second;
}

void Connections::close(const QString &path)
{
    const auto it = registry().find(canonical(path));
    if (it != registry().end())
        it->second->close();
}

void Connections::closeAll()
{
    for (auto &c : registry())
        c.second->close();
}

bool Connections::isOpen(const QString &path)
{
    const auto it = registry().find(canonical(path));
    return it != registry().end() && it->second->isOpen();
}

Connections::WholeFileWork::WholeFileWork(const QStringList &paths)
{
    for (const QString &p : paths) {
        const QString name = canonical(p);
        if (m_paths.contains(name))
            continue;
        m_paths << name;
        const auto it = registry().find(name);
        if (it != registry().end())
            it->second->hold();
        else
            ++heldUnopened()[name];
    }
}

Connections::WholeFileWork::~WholeFileWork()
{
    for (const QString &name : std::as_const(m_paths)) {
        const auto it = registry().find(name);
        if (it != registry().end()) {
            it->second->release();
            continue;
        }
        auto held = heldUnopened().find(name);
        if (held != heldUnopened().end() && --held->second == 0)
            heldUnopened().erase(held);
    }
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
