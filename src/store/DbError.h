// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>
#include <stdexcept>

namespace store {

// Every failure of the database layer carries the engine's code and text.
class DbError : public std::runtime_error {
public:
    DbError(int code, const QString &message)
        : std::runtime_error(message.toStdString()), m_code(code), m_message(message) {}
    int code() const { return m_code; }
    const QString &message() const { return m_message; }

private:
    int m_code;
    QString m_message;
};

} // namespace store
