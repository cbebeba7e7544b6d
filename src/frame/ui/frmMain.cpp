// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/ui/frmMain.h"

#include "admin/ui/frmimposta.h"
#include "frame/ui/FrmPassword.h"
#include "frame/ui/frmLogin.h"

#include "frame/Language.h"
#include "frame/Preferenze.h"
#include "frame/Prompter.h"
#include "frame/PublicState.h"
#include "frame/Routines.h"
#include "frame/Version.h"
#include "safety/Compaction.h"
#include "safety/Update.h"
#include "safety/ui/frmAggiornaMDB.h"
#include "safety/ui/frmCopia.h"
#include "safety/ui/frmRipristina.h"
#include "upgrade/ui/frmDownload.h"

#include "store/DbError.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDate>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QUrl>

#include <algorithm>

namespace frame {

namespace {

// The top menus that stay hidden until someone has signed in.
const char *const MenuDopoAccesso[] = {"ana", "tab", "Sta", "ser", "Imp", "chiu", "mnuLan", "help"};

const char *nomeMenu(MenuVoci m)
{
    switch (m) {
    case MenuVoci::Anagrafiche: return "ana";
    case MenuVoci::Tabelle: return "tab";
    case MenuVoci::Stampe: return "Sta";
    case MenuVoci::Servizio: return "ser";
    }
    return "";
}

} // namespace

frmMain::frmMain(Prompter &prompter, QWidget *parent)
    : QMainWindow(parent), m_prompter(prompter), m_mdi(new QMdiArea(this)), m_panel1(new QLabel(this))
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowIcon(IconaProgramma());
    setCentralWidget(m_mdi);
    m_mdi->setObjectName(QStringLiteral("MDIClient"));
    m_panel1->setObjectName(QStringLiteral("sbStatusBar_panel1"));
    statusBar()->setObjectName(QStringLiteral("sbStatusBar"));
    statusBar()->addWidget(m_panel1, 1);
    creaMenu();
    creaToolbar();
    impostaDidascalie();
    setWindowTitle(QString::fromLatin1(TitoloApplicazione) + QLatin1Char(' ') + QString::fromLatin1(VersioneProgramma));
    restoreGeometryFromSettings();

    const bool barra = preferenze().barraStrumenti();
    m_toolbar->setVisible(barra);
    m_azioni.value(QStringLiteral("BarraStrumenti"))->setChecked(barra);

    pub().statusSink = [this](const QString &text) {
        m_panel1->setText(text);
        if (text.isEmpty())
            QApplication::restoreOverrideCursor();
        statusBar()->repaint();
    };
    pub().languageMenuSink = [this](int corrente) {
        const QList<QAction *> voci = m_menu.value(QStringLiteral("mnuLan"))->actions();
        for (int i = 0; i < voci.size() && i < 20; ++i)
            voci[i]->setChecked(i == corrente);
    };
}

frmMain::~frmMain()
{
    pub().statusSink = nullptr;
    pub().languageMenuSink = nullptr;
}

void frmMain::creaMenu()
{
    auto top = [this](const char *nome) {
        QMenu *m = menuBar()->addMenu(QString::fromLatin1(nome));
        m->setObjectName(QString::fromLatin1(nome));
        m_menu.insert(QString::fromLatin1(nome), m);
        return m;
    };
    auto azione = [this](QMenu *menu, const char *nome, const QString &testo, auto &&slot) {
        QAction *a = menu->addAction(testo);
        a->setObjectName(QString::fromLatin1(nome));
        connect(a, &QAction::triggered, this, slot);
        m_azioni.insert(QString::fromLatin1(nome), a);
        return a;
    };
    top("ana");
    top("tab");
    top("Sta");
    QMenu *ser = top("ser");
    QAction *sep = ser->addSeparator();
    sep->setObjectName(QStringLiteral("serSeparatore"));
    m_azioni.insert(sep->objectName(), sep);
    azione(ser, "log", QString(), [this] { login(); });

    QMenu *utilita = top("utilita");
    azione(utilita, "calcolatrice", QString(), [this] { calcolatrice(); });
    // The phone book lives in the customers window and the counters in the settings: nothing stands behind these two.
    // CAP09: "Object variable not set"
    azione(utilita, "rubrica", QString(), [this] { MostraErrore(m_prompter, TestoLingua("CAP09") + QStringLiteral(": rubrica")); });

    QMenu *imp = top("Imp");
    azione(imp, "impostazioni", QString(), [this] {
        if (pub().UtenteCorrente != QLatin1String("administrator")) {
            m_prompter.information(TestoLingua("M0373")); // only the administrator opens the settings
            return;
        }
        admin::frmimposta impostazioni(m_prompter, admin::frmimposta::Modo::Normale, this);
        impostazioni.exec();
    });
    azione(imp, "Impostazioni_progressivi", QString(),
           [this] { MostraErrore(m_prompter, TestoLingua("CAP09") + QStringLiteral(": Impostazioni_progressivi")); });
    QAction *barra = azione(imp, "BarraStrumenti", QString(), [this](bool on) { m_toolbar->setVisible(on); });
    barra->setCheckable(true);

    QMenu *finestre = top("mnuWindow");
    azione(finestre, "mnuWindowCascade", QString(), [this] { m_mdi->cascadeSubWindows(); });
    azione(finestre, "mnuWindowTileHorizontal", QString(), [this] { affianca(Qt::Vertical); });
    azione(finestre, "mnuWindowTileVertical", QString(), [this] { affianca(Qt::Horizontal); });

    top("mnuLan");

    QMenu *help = top("help");
    help->setTitle(QStringLiteral("&?"));
    azione(help, "guida", QString(), [this] {
        const QString nome = pub().Lingue.value(pub().LinguaCorrente).toLower();
        QDesktopServices::openUrl(QUrl(pub().IndirizzoProdotto + QStringLiteral("guide/help_") + nome + QStringLiteral(".htm")));
    });
    azione(help, "informazioni", QString(), [this] {
        frmLogin about(m_prompter, frmLogin::Modo::About, this);
        about.exec();
    });
    azione(help, "mnuUpgrade", QString(), [this] {
        upgrade::ScaricaConFinestra finestre(this);
        upgrade::AmbienteControllo ambiente;
        ambiente.eseguibile = QApplication::applicationFilePath();
        // The new program has started: it takes this one's place once it has ended.
        if (upgrade::ControlloAggiornamento(m_prompter, finestre, ambiente))
            close();
    });

    QAction *chiu = menuBar()->addAction(QStringLiteral("chiu"));
    chiu->setObjectName(QStringLiteral("chiu"));
    connect(chiu, &QAction::triggered, this, &QWidget::close);
    m_azioni.insert(QStringLiteral("chiu"), chiu);

    for (const char *nome : MenuDopoAccesso) {
        if (QMenu *m = m_menu.value(QString::fromLatin1(nome)))
            m->menuAction()->setVisible(false);
        else
            m_azioni.value(QString::fromLatin1(nome))->setVisible(false);
    }
}

void frmMain::creaToolbar()
{
    m_toolbar = addToolBar(QStringLiteral("Toolbar1"));
    m_toolbar->setObjectName(QStringLiteral("Toolbar1"));
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    const struct {
        const char *chiave;
        QStyle::StandardPixmap icona;
    } bottoni[] = {
        {"clienti", QStyle::SP_DirHomeIcon},
        {"park", QStyle::SP_DriveHDIcon},
        {"utenti", QStyle::SP_FileDialogDetailedView},
        {"esci", QStyle::SP_DialogCloseButton},
    };
    for (const auto &b : bottoni) {
        const QString chiave = QString::fromLatin1(b.chiave);
        QAction *a = m_toolbar->addAction(style()->standardIcon(b.icona), chiave);
        a->setObjectName(chiave);
        connect(a, &QAction::triggered, this, [this, chiave] { BottoniMain(chiave); });
        m_azioni.insert(QStringLiteral("tb_") + chiave, a);
    }
    m_toolbar->setVisible(true);
}

void frmMain::impostaDidascalie()
{
    const struct {
        const char *controllo;
        const char *chiave;
    } didascalie[] = {
        {"impostazioni", "M0357"}, {"mnuWindow", "M0274"}, {"mnuWindowCascade", "M0275"},
        {"mnuWindowTileHorizontal", "M0276"}, {"mnuWindowTileVertical", "M0277"}, {"BarraStrumenti", "M0278"},
        {"guida", "M0279"}, {"informazioni", "M0280"}, {"mnuUpgrade", "M0282"}, {"ana", "M0283"},
        {"tab", "M0284"}, {"Sta", "M0285"}, {"ser", "M0286"}, {"Imp", "M0287"}, {"chiu", "M0288"},
        // The entries that have no key of their own: login, tools, calculator, phone book, counters, language.
        {"log", "CAP02"}, {"utilita", "CAP03"}, {"calcolatrice", "CAP04"}, {"rubrica", "CAP05"},
        {"Impostazioni_progressivi", "CAP06"}, {"mnuLan", "CAP07"},
    };
    for (const auto &d : didascalie) {
        const QString nome = QString::fromLatin1(d.controllo);
        if (QMenu *m = m_menu.value(nome))
            m->setTitle(TestoLingua(d.chiave));
        else if (QAction *a = m_azioni.value(nome))
            a->setText(TestoLingua(d.chiave));
    }
    const struct {
        const char *bottone;
        const char *chiave;
    } suggerimenti[] = {{"clienti", "M0262"}, {"park", "M0264"}, {"utenti", "M0265"}, {"esci", "M0288"}};
    for (const auto &s : suggerimenti) {
        QAction *a = m_azioni.value(QStringLiteral("tb_") + QString::fromLatin1(s.bottone));
        QString testo = TestoLingua(s.chiave);
        a->setToolTip(testo);
        a->setText(testo.remove(QLatin1Char('&')));
    }
}

// Lays the child windows side by side (Horizontal) or one above the other (Vertical).
void frmMain::affianca(Qt::Orientation verso)
{
    const QList<QMdiSubWindow *> finestre = m_mdi->subWindowList();
    if (finestre.isEmpty())
        return;
    const QRect area = m_mdi->viewport()->rect();
    const int n = int(finestre.size());
    for (int i = 0; i < n; ++i) {
        QMdiSubWindow *w = finestre[i];
        w->showNormal();
        if (verso == Qt::Horizontal)
            w->setGeometry(area.width() * i / n, 0, area.width() / n, area.height());
        else
            w->setGeometry(0, area.height() * i / n, area.width(), area.height() / n);
    }
}

void frmMain::RegistraFinestra(int item, Apertura apertura)
{
    m_finestre.insert(item, std::move(apertura));
}

QString frmMain::statusText() const
{
    return m_panel1->text();
}

QMenu *frmMain::menu(const QString &nome) const
{
    return m_menu.value(nome);
}

QAction *frmMain::voce(MenuVoci menu, int indice) const
{
    return m_voci.value(int(menu)).value(indice);
}

QIcon IconaProgramma()
{
    return QIcon(QStringLiteral(":/icons/veltano.png"));
}

QRect DentroSchermo(const QRect &voluta, const QRect &schermo)
{
    // No larger than the screen's free area, and moved back onto it: the status bar stays in sight.
    const QSize dim = voluta.size().boundedTo(schermo.size());
    const int left = std::clamp(voluta.left(), schermo.left(), schermo.right() + 1 - dim.width());
    const int top = std::clamp(voluta.top(), schermo.top(), schermo.bottom() + 1 - dim.height());
    return QRect(QPoint(left, top), dim);
}

void frmMain::restoreGeometryFromSettings()
{
    const Preferenze &pref = preferenze();
    const int left = pref.mainLeft();
    const int top = pref.mainTop();
    const QScreen *schermo = QGuiApplication::screenAt(QPoint(left, top));
    if (!schermo)
        schermo = QGuiApplication::primaryScreen();
    const QRect area = schermo ? schermo->availableGeometry() : QRect(0, 0, 1024, 768);
    // Junk or a size too small to use falls back to the screen's size.
    int width = pref.mainWidth().value_or(area.width());
    int height = pref.mainHeight().value_or(area.height());
    if (width < 200)
        width = area.width();
    if (height < 150)
        height = area.height();
    const QRect r = DentroSchermo(QRect(left, top, width, height), area);
    move(r.topLeft());
    resize(r.size());
}

void frmMain::Avvio()
{
    safety::compatta_locadati();
    try {
        if (safety::AggiornamentoDovuto(VersioneMinore)) {
            frmAggiornaMDB aggiorna(m_prompter, this);
            aggiorna.exec();
        }
    } catch (const store::DbError &) {
        // A database that cannot be read is the login's to handle.
    }
}

void frmMain::ApplicaSessione()
{
    for (const char *nome : MenuDopoAccesso) {
        if (QMenu *m = m_menu.value(QString::fromLatin1(nome)))
            m->menuAction()->setVisible(true);
        else
            m_azioni.value(QString::fromLatin1(nome))->setVisible(true);
    }
    impostaDidascalie();

    // A new login rebuilds the item menus for the user who signed in.
    for (auto it = m_voci.begin(); it != m_voci.end(); ++it) {
        qDeleteAll(*it);
        it->clear();
    }
    for (const VoceMenu &v : VociMenu()) {
        QMenu *menu = m_menu.value(QString::fromLatin1(nomeMenu(v.menu)));
        QAction *a = new QAction(v.didascalia, menu);
        a->setObjectName(QStringLiteral("%1_%2").arg(QString::fromLatin1(nomeMenu(v.menu))).arg(v.indice));
        a->setEnabled(v.abilitato);
        a->setVisible(v.visibile);
        // The service items come before the separator and the login entry.
        menu->insertAction(v.menu == MenuVoci::Servizio ? m_azioni.value(QStringLiteral("serSeparatore")) : nullptr, a);
        const MenuVoci quale = v.menu;
        const int indice = v.indice;
        connect(a, &QAction::triggered, this, [this, quale, indice] { CliccaVoce(quale, indice); });
        m_voci[int(v.menu)].append(a);
    }
}

void frmMain::CliccaVoce(MenuVoci menu, int indice)
{
    QAction *a = voce(menu, indice);
    if (!a || a->text().isEmpty())
        return;
    const int posizione = PosizioneDiritti(menu, indice);
    QString lettera;
    if (!EAmministratore()) {
        const ElementoAccesso *diritto = DirittoAlla(posizione);
        if (!diritto) {
            MostraErrore(m_prompter, TestoLingua("CAP10")); // "Subscript out of range: no rights for this user."
            return;
        }
        if (diritto->Password && !FrmPassword::Conferma(m_prompter, this))
            return;
        lettera = diritto->Autorizzazione;
    }
    if (menu == MenuVoci::Servizio) {
        servizio(indice);
        return;
    }
    // The window of the item, by its place in the list of items.
    const int elemento = indice + (menu == MenuVoci::Tabelle ? pub().IndiceTabelle : menu == MenuVoci::Stampe ? pub().IndiceStampe : 0);
    apri(elemento, lettera);
}

void frmMain::apri(int posizione, const QString &lettera)
{
    const int item = pub().ElencoElementi.value(posizione).Item;
    const auto it = m_finestre.constFind(item);
    if (it == m_finestre.constEnd())
        return;
    if (QWidget *w = (*it)(*this))
        w->setProperty("Tag", lettera);
}

void frmMain::servizio(int indice)
{
    switch (indice) {
    case 0:
        safety::CompattazioneServizio(m_prompter);
        break;
    case 1: {
        frmCopia copia(this);
        copia.mostra(m_prompter);
        break;
    }
    case 2: {
        frmRipristina ripristino(this, false);
        ripristino.mostra(m_prompter);
        break;
    }
    default:
        break;
    }
}

void frmMain::BottoniMain(const QString &chiave)
{
    m_toolbar->update();
    if (chiave == QLatin1String("esci")) {
        close();
        return;
    }
    const int item = chiave == QLatin1String("clienti") ? 101 : chiave == QLatin1String("park") ? 111
                   : chiave == QLatin1String("utenti")  ? 131 : 0;
    if (!item)
        return;
    // The entry's number within its menu, counted over the items of the same hundreds.
    int conta = 0;
    for (const ElementoAccesso &e : std::as_const(pub().ElencoElementi)) {
        if (e.Item / 100 != item / 100)
            continue;
        if (e.Item == item)
            break;
        ++conta;
    }
    if (!EAmministratore()) {
        const ElementoAccesso *diritto = DirittoAlla(conta);
        if (diritto && !(diritto->Abilitato && diritto->Visibile))
            return;
    }
    CliccaVoce(MenuVoci(item / 100), conta);
}

void frmMain::PrimaAttivazione()
{
    if (m_attivato)
        return;
    m_attivato = true;
    QMenu *lingue = m_menu.value(QStringLiteral("mnuLan"));
    lingue->clear();
    for (int i = 0; i < pub().Lingue.size() && i < 20; ++i) {
        if (pub().Lingue[i].isEmpty())
            continue;
        QAction *a = lingue->addAction(pub().Lingue[i]);
        a->setObjectName(QStringLiteral("mnuLanguage_%1").arg(i));
        a->setCheckable(true);
        a->setChecked(i == pub().LinguaCorrente);
        connect(a, &QAction::triggered, this, [this, i] { scegliLingua(i); });
    }
    try {
        if (pub().AnnoEsercizio.isEmpty()) {
            pub().AnnoEsercizio = QString::number(QDate::currentDate().year());
            preferenze().setAnnoEsercizio(pub().AnnoEsercizio);
        }
    } catch (const store::DbError &e) {
        MostraErrore(m_prompter, e.message());
    }
    if (QString::number(QDate::currentDate().year()) != pub().AnnoEsercizio)
        m_prompter.information(TestoLingua("M0103"));
}

void frmMain::scegliLingua(int indice)
{
    pub().LinguaCorrente = indice;
    SalvaLingua();
    CaricaLinguaCorrente();
    m_prompter.information(TestoLingua("M0129"));
    QApplication::exit(0);
}

void frmMain::login()
{
    frmLogin nuovo(m_prompter, frmLogin::Modo::Accesso, this);
    if (!nuovo.prepara() || nuovo.exec() != QDialog::Accepted || !nuovo.LoginSucceeded()) {
        QApplication::exit(0);
        return;
    }
    ApplicaSessione();
}

void frmMain::calcolatrice()
{
    for (const char *nome : {"gnome-calculator", "kcalc", "galculator", "mate-calc", "qalculate-gtk", "xcalc"}) {
        const QString programma = QStandardPaths::findExecutable(QString::fromLatin1(nome));
        if (!programma.isEmpty() && QProcess::startDetached(programma, {}))
            return;
    }
    MostraErrore(m_prompter, TestoLingua("CAP08") + QStringLiteral(" (gnome-calculator, kcalc, galculator, xcalc)")); // no calculator found
}

void frmMain::closeEvent(QCloseEvent *event)
{
    Preferenze &pref = preferenze();
    if (!isMinimized())
        pref.setMainGeometria(x(), y(), width(), height());
    pref.setBarraStrumenti(m_azioni.value(QStringLiteral("BarraStrumenti"))->isChecked());
    pref.setInsertPremuto(pub().InsertPremuto);
    event->accept();
}

} // namespace frame
