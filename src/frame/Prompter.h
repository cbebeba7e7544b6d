// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

#include <optional>

namespace frame {

// How logic talks to the user: message boxes, questions and the input box.
// Windows pass a prompter that shows real boxes; tests pass a scripted one.
class Prompter {
public:
    enum class Icon { Information, Stop, Critical, Exclamation, Question };
    enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
    enum class Answer { Ok, Cancel, Yes, No };

    virtual ~Prompter() = default;
    virtual void message(const QString &text, Icon icon, const QString &title = QString()) = 0;
    virtual Answer question(const QString &text, Buttons buttons, Answer defaultAnswer, const QString &title = QString(),
                            Icon icon = Icon::Question) = 0;
    // std::nullopt when the user cancels the box.
    virtual std::optional<QString> input(const QString &prompt, const QString &title, const QString &initial) = 0;

    void information(const QString &text) { message(text, Icon::Information); }
    void stop(const QString &text) { message(text, Icon::Stop); }
    // An OK and Cancel question with Cancel as default, true on OK.
    bool confirm(const QString &text, Icon icon = Icon::Question)
    {
        return question(text, Buttons::OkCancel, Answer::Cancel, QString(), icon) == Answer::Ok;
    }
};

} // namespace frame
