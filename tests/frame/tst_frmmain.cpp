// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"
#include "frame/Startup.h"
#include "frame/ui/frmLogin.h"
#include "frame/ui/frmMain.h"
#include "store/Connections.h"
#include "store/Database.h"

#include "support/ScriptedPrompter.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestWindows.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "support/Colonne.h"

#include <QFile>
#include <QScreen>
#include <QtTest>

using frame::SettingsStore::get;
using frame::SettingsStore::save;

using frame::MenuVoci;

class TestFrmMain : public QObject {
    Q_OBJECT

    ScriptedPrompter m_prompter;

    static QString key(const char *k) { return QString::fromLatin1(k); }
    static QString section() { return QString::fromLatin1(frame::SettingsStore::Section); }

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init()
    {
        QFile::remove(frame::SettingsStore::fileName());
        m_prompter = ScriptedPrompter();
    }

    // The remembered place and size, made to fit the screen; junk gives the screen's size.
    void geometryFromSettings_data()
    {
        // salvata: left, top, width, height
        // attesa: null: the whole screen; a negative place counts from its far edge, height 0 is its height
        colonne<QStringList, QRect>({"salvata", "attesa"});
        QTest::newRow("inside") << QStringList{"40", "30", "700", "500"} << QRect(40, 30, 700, 500);
        QTest::newRow("junk") << QStringList{"0", "0", "abc", "-5"} << QRect();
        QTest::newRow("taller than the screen") << QStringList{"0", "0", "700", "99999"} << QRect(0, 0, 700, 0);
        QTest::newRow("off the bottom right") << QStringList{"99999", "99999", "700", "500"} << QRect(-700, -500, 700, 500);
        QTest::newRow("off the top left") << QStringList{"-300", "-200", "700", "500"} << QRect(0, 0, 700, 500);
    }
    void geometryFromSettings()
    {
        QFETCH(QStringList, salvata); QFETCH(QRect, attesa);
        const char *chiavi[] = {"MainLeft", "MainTop", "MainWidth", "MainHeight"};
        for (int i = 0; i < 4; ++i)
            save(section(), key(chiavi[i]), salvata[i]);
        const QRect schermo = QGuiApplication::primaryScreen()->availableGeometry();
        QRect r = attesa.isNull() ? schermo : attesa;
        if (r.height() == 0)
            r.setHeight(schermo.height());
        r.moveTo(r.x() < 0 ? schermo.right() + 1 + r.x() : r.x(), r.y() < 0 ? schermo.bottom() + 1 + r.y() : r.y());
        frame::frmMain w(m_prompter);
        QCOMPARE(QRect(w.pos(), w.size()), r);
        QVERIFY(schermo.contains(QRect(w.pos(), w.size())));
        QVERIFY(w.windowTitle().startsWith(QLatin1String("Veltano ")));
        QVERIFY(!w.windowIcon().isNull());
    }

    // Beside the executable: the desktop entry, with the program and its icon.
    void desktopEntry()
    {
        const QString cartella = QCoreApplication::applicationDirPath() + QLatin1Char('/');
        QFile f(cartella + QStringLiteral("veltano.desktop"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString voce = QString::fromUtf8(f.readAll());
        for (const QString &riga : {QStringLiteral("Name=Veltano"), QStringLiteral("Exec=") + cartella + QStringLiteral("veltano"),
                                    QStringLiteral("Icon=") + cartella + QStringLiteral("veltano.png"), QStringLiteral("Categories=")})
            QVERIFY2(voce.contains(riga), qPrintable(riga));
        QVERIFY(!QIcon(cartella + QStringLiteral("veltano.png")).pixmap(32).isNull());
    }

    // Qt's own texts, month names and the date placeholder follow the language file in use; a switch replaces them.
    void qtTextsFollowTheLanguage_data()
    {
        colonne<QString, QString, QString, QString>({"lingua", "annulla", "mese", "segnaposto"});
        QTest::newRow("Italian") << "Italian" << "Annulla" << "novembre" << "gg/mm/aaaa";
        QTest::newRow("English") << "English" << "Cancel" << "November" << "mm/dd/yyyy";
    }
    void qtTextsFollowTheLanguage()
    {
        QFETCH(QString, lingua); QFETCH(QString, annulla); QFETCH(QString, mese); QFETCH(QString, segnaposto);
        frame::pub().CartellaProgramma = QStringLiteral(VELTANO_SOURCE_DIR "/");
        frame::ElencaLingue();
        frame::pub().LinguaCorrente = int(frame::pub().Lingue.indexOf(lingua));
        frame::CaricaLinguaCorrente();
        frame::pub().FormatoData = frame::FormatoDataDiSistema();
        QDialogButtonBox box(QDialogButtonBox::Cancel);
        QCOMPARE(box.button(QDialogButtonBox::Cancel)->text().remove(QLatin1Char('&')), annulla);
        QCOMPARE(QLocale().standaloneMonthName(11), mese);
        QCOMPARE(frame::SegnapostoData(), segnaposto);
    }

    void statusPanel()
    {
        frame::frmMain w(m_prompter);
        frame::MostraStato(QStringLiteral("Compacting..."));
        QCOMPARE(w.statusText(), QStringLiteral("Compacting..."));
        frame::MostraStato(QString());
        QCOMPARE(w.statusText(), QString());
    }

    // Closing saves the place and size, unless the window is minimised.
    void closingSavesGeometry()
    {
        {
            frame::frmMain w(m_prompter);
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
        frame::frmMain w(m_prompter);
        w.show();
        w.resize(300, 200);
        w.showMinimized();
        if (!w.isMinimized())
            QSKIP("this platform does not minimise windows");
        w.close();
        QCOMPARE(get(section(), key("MainWidth")), key("640"));
    }

    void loginWindow_data()
    {
        colonne<QString, QString, bool, QString>({"name", "password", "accepted", "message"});
        QTest::newRow("administrator, empty") << "administrator" << "" << true << "";
        QTest::newRow("wrong password") << "administrator" << "x" << false << "M0100";
        QTest::newRow("unknown user") << "nobody" << "" << false << "M0101";
    }
    // The window reads its boxes, calls the check and closes only on success.
    void loginWindow()
    {
        QFETCH(QString, name); QFETCH(QString, password); QFETCH(bool, accepted); QFETCH(QString, message);
        TestDatabase db;
        frame::frmLogin login(m_prompter, frame::frmLogin::Modo::Accesso);
        QVERIFY(login.prepara());
        auto *user = login.findChild<QComboBox *>(QStringLiteral("TDBCUserName"));
        QCOMPARE(user->currentText(), QStringLiteral("administrator"));
        user->setCurrentText(name);
        login.findChild<QLineEdit *>(QStringLiteral("txtPassword"))->setText(password);
        login.show();
        QTest::keyClick(&login, Qt::Key_F5);
        QCOMPARE(login.LoginSucceeded(), accepted);
        QCOMPARE(login.result() == QDialog::Accepted, accepted);
        if (!message.isEmpty())
            QCOMPARE(m_prompter.messages.last().text, frame::TestoLingua(message.toLatin1().constData()));
        if (accepted)
            QCOMPARE(frame::pub().ElencoElementi.size(), 17);
    }

    // A database file that is not a database: the user declines the repair and the start ends.
    void loginOnJunkFile()
    {
        TestDatabase db;
        store::Connections::closeAll();
        writeBytes(db.path(), QByteArray(8192, 'x'));
        frame::frmLogin login(m_prompter, frame::frmLogin::Modo::Accesso);
        m_prompter.answer(frame::Prompter::Answer::Cancel);
        QVERIFY(!login.prepara());
        QCOMPARE(m_prompter.questions.size(), 1);
        QVERIFY(m_prompter.questions.first().startsWith(frame::TestoLingua("M0093")));
        QCOMPARE(m_prompter.questionIcons.first(), frame::Prompter::Icon::Exclamation);
        QCOMPARE(m_prompter.messages.last().text, frame::TestoLingua("M0099"));
    }

    // Administrator sees every item; a later limited user gets menus rebuilt from rights, which also shape the toolbar
    // and the letter a window gets. What each item shows comes from the session and is proved there.
    void menusFollowTheUser()
    {
        TestDatabase db;
        frame::frmMain w(m_prompter);
        QVERIFY(!w.menu(QStringLiteral("ana"))->menuAction()->isVisible());
        int opened = 0;
        for (int item : {101, 105, 111, 131})
            w.RegistraFinestra(item, [&opened](frame::frmMain &main) {
                ++opened;
                return new QWidget(&main);
            });
        frame::pub().UtenteCorrente = QStringLiteral("administrator");
        frame::CostruisceElencoElementi();
        frame::pub().DirittiUtente.clear();
        w.ApplicaSessione();
        QVERIFY(w.menu(QStringLiteral("ana"))->menuAction()->isVisible());
        QCOMPARE(w.menu(QStringLiteral("ana"))->actions().size(), 4);
        // Service items stand before the login entry.
        QCOMPARE(w.menu(QStringLiteral("ser"))->actions().first(), w.voce(MenuVoci::Servizio, 0));
        w.BottoniMain(QStringLiteral("park"));
        QCOMPARE(opened, 1);

        store::Database &base = frame::basedati();
        base.execute(QStringLiteral("insert into Autorizzazioni (Utente, Password) values ('mario', 'Pw')"));
        const int id = int(base.lastInsertId());
        // The registry's first entry hidden, the second behind a password, the park window by author, users not enabled.
        base.execute(QStringLiteral("insert into Accessi (IdAutorizzazioni, Item, Autorizzazione, Abilitato, Visibile, Password) values "
                                    "(?1, 101, 'L', -1, 0, null), (?1, 105, 'A', -1, -1, 'S'), (?1, 111, 'X', -1, -1, null), "
                                    "(?1, 131, 'C', 0, -1, null)"),
                     {id});
        frame::pub().UtenteCorrente = QStringLiteral("mario");
        frame::pub().IdUtenteCorrente = id;
        frame::pub().PasswordCorrente = QStringLiteral("Pw");
        frame::LeggeDirittiUtente(base, id);
        w.ApplicaSessione();
        QCOMPARE(w.menu(QStringLiteral("ana"))->actions().size(), 4); // rebuilt, not added to
        QVERIFY(!w.voce(MenuVoci::Anagrafiche, 3)->isEnabled());
        w.CliccaVoce(MenuVoci::Anagrafiche, 0); // hidden, so no caption: nothing opens
        QCOMPARE(opened, 1);
        w.BottoniMain(QStringLiteral("park"));
        QCOMPARE(opened, 2);
        QCOMPARE(w.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).last()->property("Tag").toString(),
                 QStringLiteral("X"));
        w.BottoniMain(QStringLiteral("utenti")); // not enabled: the toolbar does nothing
        QCOMPARE(opened, 2);

        // The item marked for a password asks for it again, letter case included.
        whenModal([](QWidget *dlg) {
            dlg->findChild<QLineEdit *>(QStringLiteral("txtPassword"))->setText(QStringLiteral("pw"));
            dlg->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
            QTimer::singleShot(0, [dlg] { dlg->findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click(); });
        });
        w.CliccaVoce(MenuVoci::Anagrafiche, 1);
        QCOMPARE(opened, 2);
        QCOMPARE(m_prompter.messages.last().text, frame::TestoLingua("M0100"));
        whenModal([](QWidget *dlg) {
            dlg->findChild<QLineEdit *>(QStringLiteral("txtPassword"))->setText(QStringLiteral("Pw"));
            dlg->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
        });
        w.CliccaVoce(MenuVoci::Anagrafiche, 1);
        QCOMPARE(opened, 3);

        // Only administrator opens the settings.
        w.menu(QStringLiteral("Imp"))->actions().first()->trigger();
        QCOMPARE(m_prompter.messages.last().text, frame::TestoLingua("M0373"));
    }
};

QTEST_MAIN(TestFrmMain)
#include "tst_frmmain.moc"
