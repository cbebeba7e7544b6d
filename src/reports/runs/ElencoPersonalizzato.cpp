// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/runs/ElencoPersonalizzato.h"

#include "frame/Routines.h"

namespace reports {

bool SceltaCampi::aggiungiCampo(const QString &nome, const QString &didascalia)
{
    if (nome.isEmpty() || m_campi.contains(nome))
        return false;
    m_campi << nome;
    m_didascalie << didascalia;
    return true;
}

void SceltaCampi::togliCampo(int riga)
{
    if (riga < 0 || riga >= m_campi.size())
        return;
    m_campi.removeAt(riga);
    m_didascalie.removeAt(riga);
}

bool SceltaCampi::aggiungiOrdinamento(const QString &nome)
{
    if (nome.isEmpty() || m_ordinamenti.contains(nome))
        return false;
    m_ordinamenti << nome;
    return true;
}

void SceltaCampi::togliOrdinamento(int riga)
{
    if (riga >= 0 && riga < m_ordinamenti.size())
        m_ordinamenti.removeAt(riga);
}

void SceltaCampi::cancella()
{
    m_campi.clear();
    m_didascalie.clear();
    m_ordinamenti.clear();
}

std::optional<Lancio> LancioElencoPersonalizzato(Lancio filtro, const SceltaCampi &scelta)
{
    if (scelta.campi().isEmpty())
        return std::nullopt;
    filtro.modello = QStringLiteral("ElencoPersonalizzato");
    filtro.svuota = true;
    int indice = int(filtro.formule.isEmpty() ? 0 : filtro.formule.lastKey() + 1);
    for (int i = 0; i < scelta.campi().size(); ++i) {
        const QString n = QString::number(i + 1);
        filtro.formule.insert(indice++, QStringLiteral("Campo") + n + QStringLiteral("={Clienti.") + scelta.campi().at(i) + QLatin1Char('}'));
        // The caption prints as it is: its quotes are doubled inside the literal, so they can't end it early.
        filtro.formule.insert(indice++, QStringLiteral("TitoloCampo") + n + QStringLiteral("='")
                                            + frame::RaddoppiaApici(scelta.didascalie().at(i)) + QLatin1Char('\''));
    }
    return filtro;
}

} // namespace reports
