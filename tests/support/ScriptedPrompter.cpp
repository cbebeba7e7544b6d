// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ScriptedPrompter.h"

void ScriptedPrompter::message(const QString &text, Icon icon, const QString &title)
{
    messages << Shown{text, icon, title};
}

frame::Prompter::Answer ScriptedPrompter::question(const QString &text, Buttons, Answer defaultAnswer, const QString &,
                                                  Icon icon)
{
    questions << text;
    questionIcons << icon;
    if (atQuestion)
        std::exchange(atQuestion, nullptr)();
    if (m_answers.isEmpty()) {
        ++unanswered;
        return defaultAnswer;
    }
    return m_answers.takeFirst();
}

QStringList ScriptedPrompter::texts() const
{
    QStringList v;
    for (const Shown &m : messages)
        v << m.text;
    return v;
}

std::optional<QString> ScriptedPrompter::input(const QString &prompt, const QString &, const QString &)
{
    questions << prompt;
    if (m_inputs.isEmpty()) {
        ++unanswered;
        return std::nullopt;
    }
    return m_inputs.takeFirst();
}
