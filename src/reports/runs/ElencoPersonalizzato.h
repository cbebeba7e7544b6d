// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include "reports/runs/Lancio.h"

#include <QStringList>

#include <optional>

namespace reports {

// The user's own list of the registry: the fields he prints, in print order,
// with their captions, and the sort fields he names. The sort fields are kept
// for him but don't reach the report: the list prints in the template's order.
class SceltaCampi {
public:
    // Adds a field at the end; a field already chosen is left where it is. True when added.
    bool aggiungiCampo(const QString &nome, const QString &didascalia);
    void togliCampo(int riga);
    bool aggiungiOrdinamento(const QString &nome);
    void togliOrdinamento(int riga);
    // Empties the chosen fields and the sort fields.
    void cancella();

    const QStringList &campi() const { return m_campi; }
    const QStringList &didascalie() const { return m_didascalie; }
    const QStringList &ordinamenti() const { return m_ordinamenti; }

private:
    QStringList m_campi, m_didascalie, m_ordinamenti;
};

// The run of the custom list over a filter's run (its selection and its three
// filter lines): the engine's slots of earlier runs emptied, then for each field
// chosen "Campo<i>={Clienti.<field>}" and "TitoloCampo<i>='<caption>'" from 1.
// None when no field is chosen (the caller tells M0010).
std::optional<Lancio> LancioElencoPersonalizzato(Lancio filtro, const SceltaCampi &scelta);

} // namespace reports
