// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QMainWindow>

class QLabel;
class QMdiArea;

namespace frame {

// The one multi-document window: every record window opens as its child.
class frmMain final : public QMainWindow {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMain)

public:
    explicit frmMain(QWidget *parent = nullptr);
    ~frmMain() override;

    QMdiArea *mdiArea() const { return m_mdi; }
    QString statusText() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void ImpostaTitolo();
    void restoreGeometryFromSettings();

    QMdiArea *m_mdi;
    QLabel *m_panel1;
};

} // namespace frame
