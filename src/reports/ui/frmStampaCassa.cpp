// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/frmStampaCassa.h"

#include "ui_frmStampaCassa.h"

#include "customers/LibroCassa.h"
#include "frame/Language.h"
#include "frame/widgets/CasellaTesto.h"

namespace reports {

using frame::TestoLingua;

frmStampaCassa::frmStampaCassa(frame::Prompter &prompter, QWidget *parent)
    : FinestraLibroCassa(prompter, parent), m_ui(new Ui::frmStampaCassa)
{
    m_ui->setupUi(this);
    preparaLibro();
    m_ui->Frame2->setTitle(TestoLingua("M0316"));
    setWindowTitle(TestoLingua("M0317"));
    connect(m_ui->Okstampa, &QPushButton::clicked, this, [this] {
        if (!frame::CasellaTesto::confermaTutte(this))
            return;
        const OpzioniCassa o = opzioni();
        customers::Somme riporto;
        if (riportoLibro(o.dal, riporto))
            m_report.esegui(LancioCassa(m_prompter, o, riporto.entrate, riporto.uscite));
    });
}

frmStampaCassa::~frmStampaCassa()
{
    delete m_ui;
}

} // namespace reports
