// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

#include <stdexcept>

namespace frame {

// A file the program needs that can't be created, copied or replaced, or a
// program it can't start: a failure of the system around the database, told
// apart from the engine's own.
class FileError : public std::runtime_error {
public:
    FileError(const QString &path, const QString &message)
        : std::runtime_error(message.toStdString()), m_path(path), m_message(message) {}
    const QString &path() const { return m_path; }
    const QString &message() const { return m_message; }

private:
    QString m_path;
    QString m_message;
};

} // namespace frame
