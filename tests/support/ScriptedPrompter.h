// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"

#include <QList>
#include <QStringList>

#include <functional>

// Answers questions from a script and records every box shown, so a test can
// check both what the user was asked and what the logic did with the answer.
class ScriptedPrompter final : public frame::Prompter {
public:
    struct Shown {
        QString text;
        Icon icon;
        QString title;
    };

    void answer(Answer a) { m_answers << a; }
    void answerInput(const std::optional<QString> &reply) { m_inputs << reply; }
    QStringList texts() const; // of the messages shown

    void message(const QString &text, Icon icon, const QString &title = QString()) override;
    Answer question(const QString &text, Buttons buttons, Answer defaultAnswer, const QString &title = QString(),
                    Icon icon = Icon::Question) override;
    std::optional<QString> input(const QString &prompt, const QString &title, const QString &initial) override;

    QList<Shown> messages;
    QStringList questions;
    QList<Icon> questionIcons;
    int unanswered = 0; // questions asked beyond the script: answered with the default
    std::function<void()> atQuestion; // run once, at the next question: the world changing while a box stands

private:
    QList<Answer> m_answers;
    QList<std::optional<QString>> m_inputs;
};
