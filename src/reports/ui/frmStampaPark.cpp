// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/frmStampaPark.h"

#include "ui_frmStampaPark.h"

#include "frame/Language.h"

namespace reports {

using frame::TestoLingua;

frmStampaPark::frmStampaPark(frame::Prompter &prompter, QWidget *parent)
    : FinestraStampa(prompter, parent), m_ui(new Ui::frmStampaPark)
{
    m_ui->setupUi(this);
    m_ui->lblDal->setText(TestoLingua("M0311"));
    m_ui->lblAl->setText(TestoLingua("M0312"));
    m_ui->lblTarga->setText(TestoLingua("M0203"));
    m_ui->Frame1->setTitle(TestoLingua("M0306"));
    m_ui->Opt1->setText(TestoLingua("M0200"));
    m_ui->Opt2->setText(TestoLingua("M0310"));
    m_ui->Opt3->setText(TestoLingua("M0178"));
    m_ui->ChkGrafGio->setText(TestoLingua("M0307"));
    m_ui->ChkGrafOre->setText(TestoLingua("M0308"));
    m_ui->Okstampa->setText(TestoLingua("M0142"));
    m_ui->cmdAnnulla->setText(TestoLingua("M0144"));
    setWindowTitle(TestoLingua("M0309"));
    m_ui->TDBDGG->impostaData(QDate::currentDate());
    m_ui->TDBDGG2->impostaData(QDate::currentDate());
    m_ui->TDBTGG->impostaOra(QTime(0, 0));
    m_ui->TDBTGG2->impostaSecondi(true);
    m_ui->TDBTGG2->impostaOra(QTime(23, 59, 59));
    connect(m_ui->Okstampa, &QPushButton::clicked, this, [this] {
        if (frame::CasellaTesto::confermaTutte(this))
            m_report.esegui(LancioPark(opzioni()));
    });
    connect(m_ui->cmdAnnulla, &QPushButton::clicked, this, &QDialog::close);
}

frmStampaPark::~frmStampaPark()
{
    delete m_ui;
}

OpzioniPark frmStampaPark::opzioni() const
{
    OpzioniPark o;
    o.dal = m_ui->TDBDGG->data();
    o.oraDal = m_ui->TDBTGG->ora();
    o.al = m_ui->TDBDGG2->data();
    o.oraAl = m_ui->TDBTGG2->ora();
    o.targa = m_ui->TxtTarga->text().trimmed();
    o.stato = m_ui->Opt1->isChecked()   ? OpzioniPark::Stato::Usciti
              : m_ui->Opt2->isChecked() ? OpzioniPark::Stato::Dentro
                                        : OpzioniPark::Stato::Tutti;
    o.graficoGiorni = m_ui->ChkGrafGio->isChecked();
    o.graficoOre = m_ui->ChkGrafOre->isChecked();
    return o;
}

} // namespace reports
