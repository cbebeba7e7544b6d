// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/ui/frmAggiornaMDB.h"

#include "ui_frmAggiornaMDB.h"

#include "frame/Language.h"
#include "frame/Prompter.h"
#include "frame/Version.h"
#include "safety/Update.h"

#include <QApplication>
#include <QTimer>

namespace {

// While the run works the pointer is an hourglass; a box it shows gets the
// normal pointer back for as long as it stands.
class PuntatoreNormaleNeiMessaggi final : public frame::Prompter {
public:
    explicit PuntatoreNormaleNeiMessaggi(frame::Prompter &inner) : m_inner(inner) {}

    void message(const QString &text, Icon icon, const QString &title) override
    {
        Pausa p;
        m_inner.message(text, icon, title);
    }
    Answer question(const QString &text, Buttons buttons, Answer defaultAnswer, const QString &title, Icon icon) override
    {
        Pausa p;
        return m_inner.question(text, buttons, defaultAnswer, title, icon);
    }
    std::optional<QString> input(const QString &prompt, const QString &title, const QString &initial) override
    {
        Pausa p;
        return m_inner.input(prompt, title, initial);
    }

private:
    struct Pausa {
        Pausa() { QApplication::restoreOverrideCursor(); }
        ~Pausa() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    };
    frame::Prompter &m_inner;
};

struct Clessidra {
    Clessidra() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Clessidra() { QApplication::restoreOverrideCursor(); }
};

} // namespace

frmAggiornaMDB::frmAggiornaMDB(frame::Prompter &prompter, QWidget *parent)
    : QDialog(parent), m_ui(new Ui::frmAggiornaMDB), m_prompter(prompter)
{
    m_ui->setupUi(this);
    setWindowTitle(frame::TestoLingua("M0135"));
    m_ui->lblMessaggio->setText(frame::TestoLingua("CAP19")); // a structure change was found: press Start
    m_ui->cmdAvvio->setText(frame::TestoLingua("M0136"));
    m_ui->Command1->setText(frame::TestoLingua("M0137"));
    connect(m_ui->cmdAvvio, &QPushButton::clicked, this, &frmAggiornaMDB::cmdAvvio_Click);
    connect(m_ui->Command1, &QPushButton::clicked, this, &QDialog::reject);
}

frmAggiornaMDB::~frmAggiornaMDB()
{
    delete m_ui;
}

void frmAggiornaMDB::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (m_attivato)
        return;
    m_attivato = true;
    // After the window is on screen, so that the box stands in front of it.
    QTimer::singleShot(0, this, [this] {
        if (!m_riuscito)
            m_prompter.information(frame::TestoLingua("M0046"));
    });
}

void frmAggiornaMDB::MostraStato(const QString &testo)
{
    m_ui->pnlStato->setText(testo);
    m_ui->pnlStato->repaint();
}

void frmAggiornaMDB::cmdAvvio_Click()
{
    m_ui->cmdAvvio->setEnabled(false);
    {
        Clessidra c;
        PuntatoreNormaleNeiMessaggi prompter(m_prompter);
        m_riuscito = safety::EseguiAggiornamento(frame::VersioneMinore, prompter,
                                                 [this](const QString &t) { MostraStato(t); });
    }
    m_ui->cmdAvvio->setEnabled(true);
    if (m_riuscito)
        accept();
}
