// SPDX-License-Identifier: GPL-3.0-or-later
#include <PublicState.h>
#include <Routines.h>
#include <SettingsStore.h>
#include <frmMain.h>

#include <QFile>
#include <QScreen>
#include <QtTest>

using frame::SettingsStore::get;
using frame::SettingsStore::save;

class TestFrmMain : public QObject {
    Q_OBJECT

    static QString key(const char *k) { return QString::fromLatin1(k); }
    static QString section() { return QString::fromLatin1(frame::SettingsStore::Section); }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { QFile::remove(frame::SettingsStore::fileName()); }

    void geometryFromSettings()
    {
        save(section(), key("MainLeft"), key("40"));
        save(section(), key("MainTop"), key("30"));
        save(section(), key("MainWidth"), key("700"));
        save(section(), key("MainHeight"), key("500"));
        frame::frmMain w;
        QCOMPARE(w.pos(), QPoint(40, 30));
        QCOMPARE(w.size(), QSize(700, 500));
        QVERIFY(w.windowTitle().startsWith(QLatin1String("Veltano ")));
    }

    // Junk in the store gives the screen's size, never a window of no size.
    void junkGeometry()
    {
        save(section(), key("MainWidth"), key("abc"));
        save(section(), key("MainHeight"), key("-5"));
        frame::frmMain w;
        const QSize screen = QGuiApplication::primaryScreen()->availableGeometry().size();
        QCOMPARE(w.size(), screen);
    }

    void statusPanel()
    {
        frame::frmMain w;
        frame::MostraStato(QStringLiteral("Compacting..."));
        QCOMPARE(w.statusText(), QStringLiteral("Compacting..."));
        frame::MostraStato(QString());
        QCOMPARE(w.statusText(), QString());
    }

    void closingSavesGeometry()
    {
        {
            frame::frmMain w;
            w.move(12, 34);
            w.resize(640, 480);
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            frame::pub().InsertPremuto = true;
            w.close();
        }
        QCOMPARE(get(section(), key("mainwidth")), key("640"));
        QCOMPARE(get(section(), key("MAINHEIGHT")), key("480"));
        QCOMPARE(get(section(), key("InsertPremuto")), key("S"));
    }

    void minimisedKeepsSavedGeometry()
    {
        save(section(), key("MainWidth"), key("900"));
        {
            frame::frmMain w;
            w.show();
            w.resize(300, 200);
            w.showMinimized();
            if (!w.isMinimized())
                QSKIP("this platform does not minimise windows");
            w.close();
        }
        QCOMPARE(get(section(), key("MainWidth")), key("900"));
    }
};

QTEST_MAIN(TestFrmMain)
#include "tst_frmmain.moc"
