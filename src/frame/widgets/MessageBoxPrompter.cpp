// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/MessageBoxPrompter.h"

#include "frame/PublicState.h"

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>

namespace frame {

namespace {

QString captionOr(const QString &title)
{
    return title.isEmpty() ? QString::fromLatin1(TitoloApplicazione) : title;
}

QMessageBox::StandardButton toButton(Prompter::Answer a)
{
    switch (a) {
    case Prompter::Answer::Ok: return QMessageBox::Ok;
    case Prompter::Answer::Cancel: return QMessageBox::Cancel;
    case Prompter::Answer::Yes: return QMessageBox::Yes;
    case Prompter::Answer::No: return QMessageBox::No;
    }
    return QMessageBox::NoButton;
}

QMessageBox::Icon toIcon(Prompter::Icon icon)
{
    switch (icon) {
    case Prompter::Icon::Stop:
    case Prompter::Icon::Critical: return QMessageBox::Critical;
    case Prompter::Icon::Exclamation: return QMessageBox::Warning;
    case Prompter::Icon::Question: return QMessageBox::Question;
    case Prompter::Icon::Information: return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

} // namespace

void MessageBoxPrompter::message(const QString &text, Icon icon, const QString &title)
{
    QApplication::restoreOverrideCursor();
    QMessageBox box(toIcon(icon), captionOr(title), text, QMessageBox::Ok, m_parent);
    box.exec();
}

Prompter::Answer MessageBoxPrompter::question(const QString &text, Buttons buttons, Answer defaultAnswer,
                                              const QString &title, Icon icon)
{
    QMessageBox::StandardButtons set = QMessageBox::Ok | QMessageBox::Cancel;
    if (buttons == Buttons::YesNo)
        set = QMessageBox::Yes | QMessageBox::No;
    else if (buttons == Buttons::YesNoCancel)
        set = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    else if (buttons == Buttons::Ok)
        set = QMessageBox::Ok;
    QApplication::restoreOverrideCursor();
    QMessageBox box(toIcon(icon), captionOr(title), text, set, m_parent);
    box.setDefaultButton(toButton(defaultAnswer));
    switch (box.exec()) {
    case QMessageBox::Ok: return Answer::Ok;
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    default: return Answer::Cancel;
    }
}

std::optional<QString> MessageBoxPrompter::input(const QString &prompt, const QString &title, const QString &initial)
{
    bool ok = false;
    const QString text = QInputDialog::getText(m_parent, captionOr(title), prompt, QLineEdit::Normal, initial, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

} // namespace frame
