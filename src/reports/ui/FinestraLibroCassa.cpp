// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ui/FinestraLibroCassa.h"

#include "customers/LibroCassa.h"
#include "frame/Language.h"
#include "frame/Routines.h"
#include "frame/widgets/CasellaData.h"
#include "store/DbError.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>

namespace reports {

using frame::TestoLingua;

namespace {

template <typename W>
W *figlio(const QWidget *w, const char *nome)
{
    return w->findChild<W *>(QLatin1String(nome));
}

bool spuntato(const QWidget *w, const char *nome)
{
    const auto *b = figlio<QAbstractButton>(w, nome);
    return b && b->isChecked();
}

} // namespace

FinestraLibroCassa::FinestraLibroCassa(frame::Prompter &prompter, QWidget *parent) : FinestraStampa(prompter, parent) {}

void FinestraLibroCassa::preparaLibro()
{
    const struct {
        const char *nome;
        const char *chiave;
    } didascalie[] = {
        {"lblDal", "M0313"}, {"lblAl", "M0314"},      {"Opt1", "M0315"},     {"Opt2", "M0310"},      {"Opt3", "M0178"},
        {"ChkGrafOre", "CAP60"}, {"ChkGrafSaldo", "CAP61"}, {"Okstampa", "M0142"}, {"cmdAnnulla", "M0144"},
    };
    for (const auto &d : didascalie) {
        if (auto *b = figlio<QAbstractButton>(this, d.nome))
            b->setText(TestoLingua(d.chiave));
        else if (auto *l = figlio<QLabel>(this, d.nome))
            l->setText(TestoLingua(d.chiave));
    }
    if (auto *f = figlio<QGroupBox>(this, "Frame1"))
        f->setTitle(TestoLingua("M0306"));
    for (const char *nome : {"TDBDGG", "TDBDGG2"})
        figlio<frame::CasellaData>(this, nome)->impostaData(std::nullopt);
    connect(figlio<QAbstractButton>(this, "cmdAnnulla"), &QAbstractButton::clicked, this, &QDialog::close);
}

OpzioniCassa FinestraLibroCassa::opzioniLibro() const
{
    OpzioniCassa o;
    o.dal = figlio<frame::CasellaData>(this, "TDBDGG")->data();
    o.al = figlio<frame::CasellaData>(this, "TDBDGG2")->data();
    o.righe = spuntato(this, "Opt1")   ? OpzioniCassa::Righe::SoloUscite
              : spuntato(this, "Opt2") ? OpzioniCassa::Righe::SoloEntrate
                                       : OpzioniCassa::Righe::Tutto;
    o.graficoSaldo = spuntato(this, "ChkGrafSaldo");
    return o;
}

bool FinestraLibroCassa::riportoLibro(const std::optional<QDate> &dal, customers::Somme &riporto)
{
    riporto = {};
    if (!dal || !dal->isValid())
        return true;
    try {
        riporto = customers::SaldoPrecedente(frame::basedati(), *dal);
        return true;
    } catch (const store::DbError &e) {
        frame::MostraErrore(m_prompter, e.message());
        return false;
    }
}

} // namespace reports
