// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/frmStampaCassa.h"

#include "ui_frmStampaCassa.h"

#include "customers/LibroCassa.h"
#include "frame/Language.h"
#include "frame/Routines.h"
#include "store/DbError.h"

namespace reports {

using frame::TestoLingua;

frmStampaCassa::frmStampaCassa(frame::Prompter &prompter, QWidget *parent)
    : FinestraStampa(prompter, parent), m_ui(new Ui::frmStampaCassa)
{
    m_ui->setupUi(this);
    m_ui->Frame1->setTitle(TestoLingua("M0306"));
    m_ui->lblDal->setText(TestoLingua("M0313"));
    m_ui->lblAl->setText(TestoLingua("M0314"));
    m_ui->Frame2->setTitle(TestoLingua("M0316"));
    m_ui->Opt1->setText(TestoLingua("M0315"));
    m_ui->Opt2->setText(TestoLingua("M0310"));
    m_ui->Opt3->setText(TestoLingua("M0178"));
    m_ui->Okstampa->setText(TestoLingua("M0142"));
    m_ui->cmdAnnulla->setText(TestoLingua("M0144"));
    setWindowTitle(TestoLingua("M0317"));
    m_ui->TDBDGG->impostaData(std::nullopt);
    m_ui->TDBDGG2->impostaData(std::nullopt);
    connect(m_ui->Okstampa, &QPushButton::clicked, this, [this] {
        if (!frame::CasellaTesto::confermaTutte(this))
            return;
        const OpzioniCassa o = opzioni();
        // The balance carried in is the whole book's before the start, whoever the rows belong to.
        customers::Somme riporto;
        if (o.dal && o.dal->isValid()) {
            try {
                riporto = customers::SaldoPrecedente(frame::basedati(), *o.dal);
            } catch (const store::DbError &e) {
                frame::MostraErrore(m_prompter, e.message());
                return;
            }
        }
        m_report.esegui(LancioCassa(m_prompter, o, riporto.entrate, riporto.uscite));
    });
    connect(m_ui->cmdAnnulla, &QPushButton::clicked, this, &QDialog::close);
}

frmStampaCassa::~frmStampaCassa()
{
    delete m_ui;
}

OpzioniCassa frmStampaCassa::opzioni() const
{
    OpzioniCassa o;
    o.dal = m_ui->TDBDGG->data();
    o.al = m_ui->TDBDGG2->data();
    o.righe = m_ui->Opt1->isChecked()   ? OpzioniCassa::Righe::SoloUscite
              : m_ui->Opt2->isChecked() ? OpzioniCassa::Righe::SoloEntrate
                                        : OpzioniCassa::Righe::Tutto;
    o.graficoSaldo = m_ui->ChkGrafSaldo->isChecked();
    return o;
}

} // namespace reports
