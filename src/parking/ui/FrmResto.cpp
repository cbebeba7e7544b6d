// SPDX-License-Identifier: GPL-3.0-or-later
#include "parking/ui/FrmResto.h"

#include "ui_FrmResto.h"

#include "frame/Language.h"
#include "parking/Resto.h"

#include <QValidator>

namespace {

// Lets through only what is, or can still become, an amount: a letter, a
// quote or a second separator is refused as it is typed or pasted.
class ValidatoreImporto final : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString &input, int &) const override
    {
        if (parking::LeggeImporto(input))
            return Acceptable;
        return parking::ImportoIncompleto(input) ? Intermediate : Invalid;
    }
};

} // namespace

namespace parking {

FrmResto::FrmResto(QWidget *parent) : QDialog(parent), m_ui(new Ui::FrmResto)
{
    m_ui->setupUi(this);
    setWindowTitle(frame::TestoLingua("M0365"));
    m_ui->lblImporto->setText(frame::TestoLingua("M0322"));
    m_ui->lblCalcolaResto->setText(frame::TestoLingua("M0367"));
    m_ui->LblResto->setText(frame::TestoLingua("M0365"));
    m_ui->cmdOK->setText(frame::TestoLingua("M0143"));
    m_ui->TxtNImportoCliente->setValidator(new ValidatoreImporto(m_ui->TxtNImportoCliente));
    m_ui->TxtNImporto->setText(TestoImporto(m_importo));
    connect(m_ui->TxtNImportoCliente, &QLineEdit::textChanged, this, &FrmResto::ricalcola);
    // Only closes: the takings come from the movement, never from here.
    connect(m_ui->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

FrmResto::~FrmResto()
{
    delete m_ui;
}

void FrmResto::impostaImporto(store::Currency importo)
{
    m_importo = importo;
    m_ui->TxtNImporto->setText(TestoImporto(importo));
    ricalcola();
}

store::Currency FrmResto::resto() const
{
    return RestoDaTesto(m_importo, m_ui->TxtNImportoCliente->text()).value_or(store::Currency());
}

bool FrmResto::restoCalcolato() const
{
    return RestoDaTesto(m_importo, m_ui->TxtNImportoCliente->text()).has_value();
}

void FrmResto::ricalcola()
{
    const auto resto = RestoDaTesto(m_importo, m_ui->TxtNImportoCliente->text());
    m_ui->TxtNResto->setText(resto ? TestoImporto(*resto) : QString());
}

void FrmResto::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    m_ui->TxtNImportoCliente->setFocus();
    m_ui->TxtNImportoCliente->selectAll();
}

void FrmResto::Mostra(store::Currency importo, QWidget *parent)
{
    FrmResto w(parent);
    w.impostaImporto(importo);
    w.exec();
}

} // namespace parking
