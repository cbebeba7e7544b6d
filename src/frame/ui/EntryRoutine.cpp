// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/ui/EntryRoutine.h"

#include "admin/ui/frmAutoriz.h"
#include "admin/ui/frmimposta.h"
#include "customers/ui/frmClienti.h"

#include "frame/ui/frmLogin.h"
#include "frame/ui/frmMain.h"
#include "frame/widgets/MessageBoxPrompter.h"

#include "forms/ui/frmtabelle.h"
#include "parking/ui/frmPark.h"
#include "reports/ui/StampeMenu.h"
#include "reports/ui/frmStampaCassa.h"
#include "reports/ui/frmStampaEstrattoC.h"
#include "reports/ui/frmStampaPark.h"

#include "upgrade/Aggiornamento.h"

#include "frame/Language.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/SettingsStore.h"
#include "frame/Startup.h"
#include "store/DbError.h"
#include "store/EngineCheck.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QStandardPaths>
#include <QTimer>

namespace frame {

namespace {

// One window per kind: a second click brings the open one forward.
template <typename Finestra>
frmMain::Apertura unica()
{
    return [](frmMain &main) -> QWidget * {
        static QPointer<Finestra> aperta;
        if (!aperta) {
            aperta = new Finestra(main.prompter(), &main);
            aperta->show();
        }
        aperta->raise();
        aperta->activateWindow();
        return aperta;
    };
}

// Shows a record window inside the main window's area, at the size it asks for
// within that area: nothing starts off screen.
QWidget *mostraInterna(frmMain &main, QWidget *f)
{
    QMdiSubWindow *sotto = main.mdiArea()->addSubWindow(f);
    sotto->setAttribute(Qt::WA_DeleteOnClose);
    sotto->resize(f->size().boundedTo(main.mdiArea()->viewport()->size()));
    sotto->show();
    return f;
}

// One record window per kind, inside the main window's area.
template <typename Finestra>
frmMain::Apertura unicaInterna()
{
    return [](frmMain &main) -> QWidget * {
        static QPointer<Finestra> aperta;
        if (!aperta)
            aperta = static_cast<Finestra *>(mostraInterna(main, new Finestra(main.prompter())));
        main.mdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(aperta->parentWidget()));
        aperta->setFocus();
        return aperta;
    };
}

// A new table editor at each click, inside the main window's area: two tables may be open at once.
frmMain::Apertura tabella(forms::ImpostazioneTabella (*impostazione)())
{
    return [impostazione](frmMain &main) -> QWidget * {
        const forms::ImpostazioneTabella i = impostazione();
        auto *f = new forms::frmtabelle(main.prompter());
        f->setWindowTitle(TestoLingua(i.titolo));
        f->sorgente_data = i.tabella;
        try {
            f->CaricaTextFormatGriglia(i);
        } catch (const store::DbError &e) {
            delete f;
            MostraErrore(main.prompter(), e.message());
            return nullptr;
        }
        return mostraInterna(main, f);
    };
}

// A new registry window at each click, customers or suppliers, inside the main window's area.
frmMain::Apertura registro(customers::Modo modo)
{
    return [modo](frmMain &main) -> QWidget * {
        try {
            return mostraInterna(main, new customers::frmClienti(main.prompter(), modo));
        } catch (const store::DbError &e) {
            MostraErrore(main.prompter(), e.message());
            return nullptr;
        }
    };
}

// The windows behind the items of the menus, by item number.
void RegistraFinestre(frmMain &main)
{
    main.RegistraFinestra(101, registro(customers::Modo::Clienti));
    main.RegistraFinestra(105, registro(customers::Modo::Fornitori));
    main.RegistraFinestra(111, unicaInterna<parking::frmPark>());
    main.RegistraFinestra(131, unicaInterna<admin::frmAutoriz>());
    main.RegistraFinestra(201, tabella(forms::ImpostazioneFascia));
    main.RegistraFinestra(211, tabella(forms::ImpostazioneCassa));
    main.RegistraFinestra(301, unica<reports::frmStampaPark>());
    main.RegistraFinestra(311, unica<reports::frmStampaCassa>());
    main.RegistraFinestra(321, unica<reports::frmStampaEstrattoC>());
    for (const auto &[item, codice] : {std::pair{331, "C"}, {341, "F"}, {351, "CC"}, {361, "CA"}})
        main.RegistraFinestra(item, [codice](frmMain &m) -> QWidget * {
            return reports::StampeMenu::di(m.prompter(), &m).stampa(QLatin1String(codice));
        });
}

} // namespace

int EntryRoutine(int argc, char **argv, const std::function<void(QDialog &)> &loginMostrato)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(TitoloApplicazione));
    QApplication::setOrganizationName(QString::fromLatin1(TitoloApplicazione));
    QApplication::setWindowIcon(IconaProgramma());
    QApplication::setDesktopFileName(QStringLiteral("veltano"));

    // A program named "Upgrade" only copies itself over the installed one, before anything else.
    {
        MessageBoxPrompter boxes;
        if (upgrade::EntrataCopia(boxes, QApplication::applicationFilePath(), QApplication::arguments().mid(1)))
            return 0;
    }

    // A second instance of the same user ends at once, without a word.
    QLockFile instance(QDir(QStandardPaths::writableLocation(QStandardPaths::TempLocation))
                           .filePath(QStringLiteral("veltano-%1.lock").arg(QString::fromLocal8Bit(qgetenv("USER")))));
    instance.setStaleLockTime(0);
    if (!instance.tryLock(0))
        return 0;

    MessageBoxPrompter prompter;
    if (const QString engine = store::engineMismatch(); !engine.isEmpty()) {
        prompter.message(engine, Prompter::Icon::Critical);
        return 1;
    }
    // A settings file too large to read is left aside; the user learns why his settings are gone.
    if (const QString settings = SettingsStore::problem(); !settings.isEmpty())
        prompter.message(settings, Prompter::Icon::Exclamation);

    const QString cartella = QApplication::applicationDirPath();
    QDir::setCurrent(cartella);
    ImpostaPercorsi(cartella);
    ImpostaLingua();
    // Dates follow the locale of the language just loaded.
    pub().FormatoData = FormatoDataDiSistema();

    if (!QFileInfo::exists(pub().Pathdata)) {
        // Only the path can be given now, with no login and no main window; the new
        // database is opened at the next start, so closing the window ends this one.
        admin::frmimposta impostazioni(prompter, admin::frmimposta::Modo::Avvio);
        impostazioni.show();
        return app.exec();
    }
    frmMain main(prompter);
    RegistraFinestre(main);
    main.show();
    main.Avvio();
    LeggeImpostazioniAvvio();

    {
        frmLogin login(prompter, frmLogin::Modo::Accesso, &main);
        if (loginMostrato)
            QTimer::singleShot(0, &login, [&] { loginMostrato(login); });
        if (!login.prepara() || login.exec() != QDialog::Accepted || !login.LoginSucceeded())
            return 0;
    }
    // A database repaired at the login had its settings unread.
    if (pub().AnnoEsercizio.isEmpty())
        LeggeImpostazioniAvvio();
    main.ApplicaSessione();
    main.PrimaAttivazione();
    return app.exec();
}

} // namespace frame
