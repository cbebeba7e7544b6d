// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/widgets/CasellaOra.h"

#include "frame/Language.h"
#include "frame/TestoCasella.h"

namespace frame {

CasellaOra::CasellaOra(QWidget *parent) : CasellaTesto(parent)
{
    setValidator(new ValidatoreCasella(PuoDiventareOra, this));
    impostaSecondi(false);
}

std::optional<QTime> CasellaOra::ora() const
{
    return LeggeTestoOra(text()).valore;
}

void CasellaOra::impostaOra(const std::optional<QTime> &ora)
{
    mostra(TestoCasellaOra(ora, m_secondi));
}

void CasellaOra::impostaSecondi(bool secondi)
{
    m_secondi = secondi;
    setPlaceholderText(secondi ? QStringLiteral("hh:mm:ss") : QStringLiteral("hh:mm"));
    impostaOra(ora());
}

std::optional<QString> CasellaOra::normalizza(const QString &testo) const
{
    const Lettura<QTime> l = LeggeTestoOra(testo);
    return l.valida ? std::optional<QString>(TestoCasellaOra(l.valore, m_secondi)) : std::nullopt;
}

QString CasellaOra::messaggioRifiuto() const
{
    return TestoLingua("ORAER"); // "The time entered is not valid."
}

} // namespace frame
