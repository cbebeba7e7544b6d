// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QApplication>
#include <QLineEdit>
#include <QTimer>
#include <QtTest>

// Shows `w` as the active window, as the user's click on it would.
inline bool showActive(QWidget *w)
{
    w->show();
    QApplication::setActiveWindow(w);
    return QTest::qWaitForWindowActive(w);
}

// Runs `f` on the modal window once its event loop is up.
template <typename F>
void whenModal(const F &f)
{
    QTimer::singleShot(10, [f] {
        if (QWidget *w = QApplication::activeModalWidget())
            f(w);
        else
            whenModal(f);
    });
}

// A control of a window by its object name; a name the window lacks ends the run.
template <typename T = QLineEdit>
T *c(QWidget &w, const char *nome)
{
    T *controllo = w.findChild<T *>(QLatin1String(nome));
    if (!controllo)
        qFatal("no control %s", nome);
    return controllo;
}
template <typename T = QLineEdit>
T *c(QWidget *w, const char *nome)
{
    return c<T>(*w, nome);
}
