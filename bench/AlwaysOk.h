// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"

#include <QStringList>

namespace bench {

// Answers every question with OK and keeps what it was told, so a benchmark runs unattended.
class AlwaysOk final : public frame::Prompter {
public:
    void message(const QString &text, Icon, const QString &) override { shown << text; }
    Answer question(const QString &, Buttons, Answer, const QString &, Icon) override { return Answer::Ok; }
    std::optional<QString> input(const QString &, const QString &, const QString &initial) override { return initial; }
    QStringList shown;
};

} // namespace bench
