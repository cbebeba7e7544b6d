// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/frmStampa.h"

#include "ui_frmStampa.h"

#include "frame/Language.h"

#include <QListWidget>
#include <QPushButton>

namespace reports {

using frame::TestoLingua;

namespace {

// A list's row: the caption shown, the field's name beside it.
void riempi(QListWidget *lista, const QStringList &nomi, const QStringList &didascalie)
{
    lista->clear();
    for (qsizetype i = 0; i < nomi.size(); ++i) {
        auto *riga = new QListWidgetItem(didascalie.at(i), lista);
        riga->setData(Qt::UserRole, nomi.at(i));
    }
}

} // namespace

frmStampa::frmStampa(const QVector<std::pair<QString, QString>> &campi, QWidget *parent)
    : QDialog(parent), m_ui(new Ui::frmStampa)
{
    m_ui->setupUi(this);
    setWindowTitle(TestoLingua("M0327"));
    m_ui->Label1->setText(TestoLingua("M0328"));
    m_ui->Label2->setText(TestoLingua("M0329"));
    m_ui->Label3->setText(TestoLingua("CAP67")); // "Sort fields available"
    m_ui->Label4->setText(TestoLingua("CAP68")); // "Sort by"
    m_ui->Command3->setText(TestoLingua("M0330"));
    m_ui->Command5->setText(TestoLingua("M0330"));
    m_ui->Command4->setText(TestoLingua("M0140"));
    m_ui->Command6->setText(TestoLingua("M0140"));
    m_ui->Command1->setText(TestoLingua("M0331"));
    m_ui->CmdOkGrid->setText(TestoLingua("M0143"));
    QStringList nomi, didascalie;
    for (const auto &[nome, didascalia] : campi) {
        nomi << nome;
        didascalie << (didascalia.isEmpty() ? nome : didascalia);
        m_didascalie.insert(nome, didascalie.last());
    }
    riempi(m_ui->ListFieldsCaption, nomi, didascalie);
    riempi(m_ui->ListSorts, nomi, didascalie);

    connect(m_ui->Command3, &QPushButton::clicked, this, &frmStampa::Command3);
    connect(m_ui->Command4, &QPushButton::clicked, this, &frmStampa::Command4);
    connect(m_ui->Command5, &QPushButton::clicked, this, &frmStampa::Command5);
    connect(m_ui->Command6, &QPushButton::clicked, this, &frmStampa::Command6);
    connect(m_ui->Command1, &QPushButton::clicked, this, &frmStampa::Command1);
    connect(m_ui->CmdOkGrid, &QPushButton::clicked, this, &QDialog::accept);
    // A double click moves a field across, as the buttons do.
    connect(m_ui->ListFieldsCaption, &QListWidget::itemDoubleClicked, this, &frmStampa::Command3);
    connect(m_ui->ListFieldsSelCaption, &QListWidget::itemDoubleClicked, this, &frmStampa::Command4);
    connect(m_ui->ListSorts, &QListWidget::itemDoubleClicked, this, &frmStampa::Command5);
    connect(m_ui->ListSortsSel, &QListWidget::itemDoubleClicked, this, &frmStampa::Command6);
}

frmStampa::~frmStampa()
{
    delete m_ui;
}

void frmStampa::Command3()
{
    if (const QListWidgetItem *r = m_ui->ListFieldsCaption->currentItem())
        if (m_scelta.aggiungiCampo(r->data(Qt::UserRole).toString(), r->text()))
            mostraScelta();
}

void frmStampa::Command4()
{
    m_scelta.togliCampo(m_ui->ListFieldsSelCaption->currentRow());
    mostraScelta();
}

void frmStampa::Command5()
{
    if (const QListWidgetItem *r = m_ui->ListSorts->currentItem())
        if (m_scelta.aggiungiOrdinamento(r->data(Qt::UserRole).toString()))
            mostraScelta();
}

void frmStampa::Command6()
{
    m_scelta.togliOrdinamento(m_ui->ListSortsSel->currentRow());
    mostraScelta();
}

void frmStampa::Command1()
{
    m_scelta.cancella();
    mostraScelta();
}

void frmStampa::mostraScelta()
{
    riempi(m_ui->ListFieldsSelCaption, m_scelta.campi(), m_scelta.didascalie());
    QStringList didascalie;
    for (const QString &nome : m_scelta.ordinamenti())
        didascalie << m_didascalie.value(nome, nome);
    riempi(m_ui->ListSortsSel, m_scelta.ordinamenti(), didascalie);
}

} // namespace reports
