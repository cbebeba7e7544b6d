// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "frame/Rights.h"

#include <QHash>
#include <QIcon>
#include <QMainWindow>
#include <QRect>

#include <functional>

class QAction;
class QLabel;
class QMdiArea;
class QMenu;
class QToolBar;

namespace frame {

class Prompter;

// The program's own icon, for its windows and the login's logo.
QIcon IconaProgramma();
// A window's wanted place and size, made to fit the free area of the screen.
QRect DentroSchermo(const QRect &voluta, const QRect &schermo);

// The one multi-document window: every record window opens as its child.
// Its four item menus are built at login from the user's rights.
class frmMain final : public QMainWindow {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMain)

public:
    explicit frmMain(Prompter &prompter, QWidget *parent = nullptr);
    ~frmMain() override;

    // What opens a window for an item of the menus; the window gets the user's letter in its "Tag" property.
    using Apertura = std::function<QWidget *(frmMain &)>;
    void RegistraFinestra(int item, Apertura apertura);

    // After the first show: the periodic compaction of the side file, the structure update check.
    void Avvio();
    // After a login: the top menus shown, captions set, the item menus built for that user.
    void ApplicaSessione();
    // First activation: the language menu and the fiscal-year message.
    void PrimaAttivazione();
    // A toolbar button by its key: clienti, park, utenti, esci.
    void BottoniMain(const QString &chiave);
    // Clicks element `indice` of an item menu, with the rights and password tests.
    void CliccaVoce(MenuVoci menu, int indice);

    QMdiArea *mdiArea() const { return m_mdi; }
    Prompter &prompter() const { return m_prompter; }
    QString statusText() const;
    QMenu *menu(const QString &nome) const;
    QAction *voce(MenuVoci menu, int indice) const;
    QToolBar *toolbar() const { return m_toolbar; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void affianca(Qt::Orientation verso);
    void creaMenu();
    void creaToolbar();
    void impostaDidascalie();
    void restoreGeometryFromSettings();
    void apri(int posizione, const QString &lettera);
    void servizio(int indice);
    void login();
    void calcolatrice();
    void scegliLingua(int indice);

    Prompter &m_prompter;
    QMdiArea *m_mdi;
    QLabel *m_panel1;
    QToolBar *m_toolbar = nullptr;
    QHash<QString, QMenu *> m_menu;
    QHash<QString, QAction *> m_azioni;
    QHash<int, QList<QAction *>> m_voci; // by menu: the item entries built at login
    QHash<int, Apertura> m_finestre;
    bool m_attivato = false;
};

} // namespace frame
