// SPDX-License-Identifier: GPL-3.0-or-later
// The detail rows of a run as a table, for a spreadsheet.
#include "reports/engine/ReportRun.h"

#include <algorithm>

namespace reports::engine {

namespace {

double sovrapposizione(const QRectF &a, const QRectF &b)
{
    return std::min(a.right(), b.right()) - std::max(a.left(), b.left());
}

} // namespace

ReportRun::Tabella ReportRun::tabella()
{
    Tabella out;
    m_colonne.clear();
    const Row first(*this, m_order.empty() ? -1 : m_order.front());
    // A column's heading is the text above it: the page headers first, then the groups' headers.
    QVector<int> testate = m_pageHeaders;
    for (const QVector<int> &g : m_groupHeaders)
        testate += g;
    for (int d : m_details) {
        const CSection &sec = m_sections.at(d);
        for (int i = 0; i < sec.items.size(); ++i) {
            const CItem &ci = sec.items.at(i);
            const tpl::Item &it = *ci.item;
            const bool calcolato = it.kind == tpl::ItemKind::Field
                                   || (it.kind == tpl::ItemKind::Text
                                       && std::any_of(ci.parts.cbegin(), ci.parts.cend(), [](const TextPart &p) { return p.special != 0; }));
            if (!calcolato)
                continue;
            m_colonne.append({d, i});
            const CItem *migliore = nullptr;
            double meglio = 0;
            for (int t : testate)
                for (const CItem &h : m_sections.at(t).items) {
                    if (h.item->kind != tpl::ItemKind::Text && h.item->kind != tpl::ItemKind::Field)
                        continue;
                    const double o = sovrapposizione(h.item->rect, it.rect);
                    if (o > meglio + 0.01) {
                        meglio = o;
                        migliore = &h;
                    }
                }
            const QString testata = migliore ? itemText(*migliore, first).trimmed() : QString();
            out.intestazioni << (testata.isEmpty() ? it.name : testata);
        }
    }
    m_tabella = &out;
    try {
        walk(nullptr, nullptr);
    } catch (...) {
        m_tabella = nullptr;
        throw;
    }
    m_tabella = nullptr;
    return out;
}

void ReportRun::rigaTabella(const Row &row)
{
    QStringList riga;
    riga.reserve(m_colonne.size());
    bool mostrata = false;
    int sezione = -1;
    bool nascosta = false;
    for (const auto &[d, i] : m_colonne) {
        const CSection &sec = m_sections.at(d);
        if (d != sezione) {
            sezione = d;
            nascosta = suppressed(sec.suppress, row);
            mostrata = mostrata || !nascosta;
        }
        const CItem &ci = sec.items.at(i);
        riga << (nascosta || suppressed(ci.suppress, row) ? QString() : itemText(ci, row));
    }
    if (mostrata)
        m_tabella->righe.push_back(std::move(riga));
}

} // namespace reports::engine
