// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Prompter.h"

class QWidget;

namespace frame {

// Asks the user through real message boxes, parented to `parent`.
class MessageBoxPrompter final : public Prompter {
public:
    explicit MessageBoxPrompter(QWidget *parent = nullptr) : m_parent(parent) {}
    void message(const QString &text, Icon icon, const QString &title = QString()) override;
    Answer question(const QString &text, Buttons buttons, Answer defaultAnswer, const QString &title = QString(),
                    Icon icon = Icon::Question) override;
    std::optional<QString> input(const QString &prompt, const QString &title, const QString &initial) override;

private:
    QWidget *m_parent;
};

} // namespace frame
