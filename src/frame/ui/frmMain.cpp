// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmMain.h"

#include <PublicState.h>
#include <SettingsStore.h>

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiArea>
#include <QScreen>
#include <QStatusBar>

namespace frame {

namespace {

QString registro(const QString &key, const QString &def)
{
    return SettingsStore::get(QLatin1String(SettingsStore::Section), key, def);
}

void salva(const QString &key, int value)
{
    SettingsStore::save(QLatin1String(SettingsStore::Section), key, QString::number(value));
}

} // namespace

frmMain::frmMain(QWidget *parent) : QMainWindow(parent), m_mdi(new QMdiArea(this)), m_panel1(new QLabel(this))
{
    setObjectName(QStringLiteral("frmMain"));
    setCentralWidget(m_mdi);
    m_mdi->setObjectName(QStringLiteral("MDIClient"));
    m_panel1->setObjectName(QStringLiteral("sbStatusBar_panel1"));
    statusBar()->setObjectName(QStringLiteral("sbStatusBar"));
    statusBar()->addWidget(m_panel1, 1);
    ImpostaTitolo();
    restoreGeometryFromSettings();

    pub().statusSink = [this](const QString &text) {
        m_panel1->setText(text);
        if (text.isEmpty())
            QApplication::restoreOverrideCursor();
        statusBar()->repaint();
    };
}

frmMain::~frmMain()
{
    pub().statusSink = nullptr;
}

QString frmMain::statusText() const
{
    return m_panel1->text();
}

void frmMain::ImpostaTitolo()
{
    setWindowTitle(QString::fromLatin1(TitoloApplicazione) + QLatin1Char(' ') + QStringLiteral(VELTANO_VERSION));
}

void frmMain::restoreGeometryFromSettings()
{
    const QRect screen = QGuiApplication::primaryScreen() ? QGuiApplication::primaryScreen()->availableGeometry()
                                                          : QRect(0, 0, 1024, 768);
    auto number = [](const QString &text, int def) {
        bool ok = false;
        const int n = text.toInt(&ok);
        return ok ? n : def;
    };
    const int left = number(registro(QStringLiteral("MainLeft"), QStringLiteral("0")), 0);
    const int top = number(registro(QStringLiteral("MainTop"), QStringLiteral("0")), 0);
    // Junk or a size beyond the screen falls back to the screen's size.
    int width = number(registro(QStringLiteral("MainWidth"), QString()), screen.width());
    int height = number(registro(QStringLiteral("MainHeight"), QString()), screen.height());
    if (width < 200 || width > 4 * screen.width())
        width = screen.width();
    if (height < 150 || height > 4 * screen.height())
        height = screen.height();
    move(left, top);
    resize(width, height);
}

void frmMain::closeEvent(QCloseEvent *event)
{
    if (!isMinimized()) {
        salva(QStringLiteral("MainLeft"), x());
        salva(QStringLiteral("MainTop"), y());
        salva(QStringLiteral("MainWidth"), width());
        salva(QStringLiteral("MainHeight"), height());
    }
    SettingsStore::save(QLatin1String(SettingsStore::Section), QStringLiteral("InsertPremuto"),
                        pub().InsertPremuto ? QStringLiteral("S") : QStringLiteral("N"));
    event->accept();
}

} // namespace frame
