// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/runs/Lancio.h"

#include "frame/Language.h"

namespace reports {

void Lancio::etichette(int da, std::initializer_list<std::pair<const char *, const char *>> nomiChiavi)
{
    for (const auto &[nome, chiave] : nomiChiavi)
        formule.insert(da++, QLatin1String(nome) + QStringLiteral("='") + frame::TestoLinguaApici(QLatin1String(chiave)) + QLatin1Char('\''));
}

} // namespace reports
