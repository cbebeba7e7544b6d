// SPDX-License-Identifier: GPL-3.0-or-later
// The walk over the sorted rows: group breaks, variables, sections placed on pages, painting.
#include "reports/engine/ReportChart.h"
#include "reports/engine/ReportRun.h"

#include <QFontMetricsF>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>

#include <cmath>

namespace reports::engine {

namespace {

// Far beyond any list worth printing; a run that reaches it stops with a message instead of writing on.
constexpr int MaxPages = 10000;

// Thrown when the one page asked for has ended: the rest of the walk would paint nothing.
struct PageDone {};

} // namespace

QPageLayout ReportRun::pageLayout() const
{
    const QPageSize size(QSizeF(m_t.pageWidth, m_t.pageHeight), QPageSize::Millimeter, QString(), QPageSize::FuzzyMatch);
    return QPageLayout(size, m_t.landscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF(0, 0, 0, 0),
                       QPageLayout::Millimeter);
}

int ReportRun::paginate()
{
    for (GraphState &g : m_graphs) {
        g.done.clear();
        g.open = false;
    }
    m_gathering = true;
    m_pages = 0;
    walk(nullptr, nullptr);
    m_gathering = false;
    m_pages = m_page;
    return m_pages;
}

void ReportRun::prepareDevice(QPaintDevice &device)
{
    m_dotsPerMm = device.logicalDpiX() / 25.4;
    // Metrics of each item's font on this device, made once rather than for every row.
    for (CSection &s : m_sections)
        for (CItem &c : s.items)
            c.metrics = std::make_shared<QFontMetricsF>(c.font, &device);
}

void ReportRun::paint(QPainter &painter, QPagedPaintDevice &device, QList<LaidOutSection> *keep)
{
    prepareDevice(device);
    m_paged = &device;
    walk(&painter, keep);
    m_paged = nullptr;
}

void ReportRun::paintPage(QPainter &painter, QPaintDevice &device, int page)
{
    if (page < 1)
        return;
    prepareDevice(device);
    m_onlyPage = page;
    try {
        walk(&painter, nullptr);
    } catch (const PageDone &) {
        m_painter = m_target = nullptr;
        m_keep = nullptr;
    } catch (...) {
        m_onlyPage = 0;
        throw;
    }
    m_onlyPage = 0;
}

bool ReportRun::suppressed(const Formula &f, const Row &row) const
{
    return !f.vuota() && f.seleziona(row);
}

void ReportRun::resetVariables(int group, const Row &row)
{
    // group: -2 every variable (start of the report), -1 those of the page, else the group's and those of inner groups.
    for (VarState &v : m_vars) {
        const bool reset = group == -2 || (group == -1 ? v.resetGroup == -1 : v.resetGroup >= group);
        if (!reset)
            continue;
        v.acc = Accumulator{};
        const Valore start = v.start.vuota() ? Valore() : v.start.valuta(row);
        v.startValue = start.isNumero() ? start.numero() : 0;
    }
}

void ReportRun::accumulate(const Row &row)
{
    for (VarState &v : m_vars)
        if (v.when.vuota() || v.when.seleziona(row))
            v.acc.add(v.value.vuota() ? Valore(1) : v.value.valuta(row));
    if (!m_gathering)
        return;
    for (GraphState &g : m_graphs) {
        if (!g.open)
            continue;
        const Valore key = bucketOf(g.item->by.valuta(row), g.item->item->interval);
        QVector<Accumulator> &accs = g.current.buckets[key];
        accs.resize(g.item->series.size());
        for (int s = 0; s < g.item->series.size(); ++s) {
            const Formula &f = g.item->series.at(s);
            accs[s].add(f.vuota() ? Valore(1) : f.valuta(row));
        }
    }
}

void ReportRun::openGraphs(int scope)
{
    for (GraphState &g : m_graphs) {
        if (g.scope != scope)
            continue;
        if (m_gathering) {
            g.current = GraphBuckets{};
            g.open = true;
        }
        g.instance = scope < 0 ? 0 : m_groupInstance.at(scope);
    }
}

void ReportRun::closeGraphs(int scope)
{
    if (!m_gathering)
        return;
    for (GraphState &g : m_graphs)
        if (g.scope == scope && g.open) {
            g.done << std::move(g.current);
            g.current = GraphBuckets{};
            g.open = false;
        }
}

void ReportRun::walk(QPainter *painter, QList<LaidOutSection> *keep)
{
    m_target = painter;
    m_keep = keep;
    m_page = 0;
    m_recordNumber = 0;
    const int nGroups = int(m_t.groups.size());
    const size_t nKeys = size_t(m_keys.size());
    m_groupInstance.fill(-1, nGroups);
    const int n = rowCount();
    auto key = [&](int row, int g) -> const Valore & { return m_keyValues[size_t(row) * nKeys + size_t(g)]; };

    // A group header keeps the first row of its group on the same page.
    double detailHeight = 0;
    for (int d : m_details)
        detailHeight += m_sections.at(d).section->height;

    const Row first(*this, n ? m_order.front() : -1);
    resetVariables(-2, first);
    openGraphs(-1);
    startPage(first, true);
    for (int i = 0; i < n; ++i) {
        const int r = m_order[size_t(i)];
        const Row row(*this, r);
        int level = 0;
        if (i > 0) {
            const int prev = m_order[size_t(i - 1)];
            level = nGroups;
            for (int g = 0; g < nGroups; ++g)
                if (compareValues(key(r, g), key(prev, g)) != 0) {
                    level = g;
                    break;
                }
            const Row before(*this, prev);
            for (int g = nGroups - 1; g >= level; --g) {
                for (int s : m_groupFooters.at(g))
                    place(m_sections.at(s), before);
                closeGraphs(g);
            }
        }
        for (int g = level; g < nGroups; ++g) {
            ++m_groupInstance[g];
            resetVariables(g, row);
            openGraphs(g);
            for (int s : m_groupHeaders.at(g))
                place(m_sections.at(s), row, m_sections.at(s).section->keepWithNext ? detailHeight : 0);
        }
        m_recordNumber = i + 1;
        accumulate(row);
        for (int s : m_details)
            place(m_sections.at(s), row);
        if (m_tabella)
            rigaTabella(row);
    }
    const Row last(*this, n ? m_order.back() : -1);
    if (n)
        for (int g = nGroups - 1; g >= 0; --g) {
            for (int s : m_groupFooters.at(g))
                place(m_sections.at(s), last);
            closeGraphs(g);
        }
    for (int s : m_reportFooters)
        place(m_sections.at(s), last);
    closeGraphs(-1);
    endPage(last);
    m_painter = m_target = nullptr;
    m_keep = nullptr;
}

void ReportRun::startPage(const Row &row, bool first)
{
    if (!first && m_onlyPage == m_page)
        throw PageDone{};
    if (!first && m_paged)
        m_paged->newPage();
    if (++m_page > MaxPages)
        throw RunError(QStringLiteral("The report %1 would run to more than %2 pages. Choose a shorter period or fewer "
                                      "rows, or check the sizes of the template's page and sections.")
                           .arg(m_t.fileName)
                           .arg(MaxPages));
    m_painter = m_onlyPage == 0 || m_onlyPage == m_page ? m_target : nullptr;
    double footer = 0;
    for (int s : m_pageFooters)
        footer += m_sections.at(s).section->height;
    const double pageHeight = m_t.landscape ? m_t.pageWidth : m_t.pageHeight;
    m_y = m_t.marginTop;
    m_bodyTop = m_y;
    m_bodyBottom = pageHeight - m_t.marginBottom - footer;
    resetVariables(-1, row);
    if (first)
        for (int s : m_reportHeaders)
            place(m_sections.at(s), row);
    for (int s : m_pageHeaders) {
        const CSection &sec = m_sections.at(s);
        if (suppressed(sec.suppress, row))
            continue;
        draw(sec, row, m_y);
        m_y += sec.section->height;
    }
    m_bodyTop = m_y;
}

void ReportRun::endPage(const Row &row)
{
    double y = m_bodyBottom;
    for (int s : m_pageFooters) {
        const CSection &sec = m_sections.at(s);
        if (!suppressed(sec.suppress, row))
            draw(sec, row, y);
        y += sec.section->height;
    }
}

void ReportRun::place(const CSection &s, const Row &row, double keepExtra)
{
    if (suppressed(s.suppress, row))
        return;
    const double h = s.section->height;
    const bool pageHasBody = m_y > m_bodyTop + 0.01;
    if (pageHasBody && (s.section->newPageBefore || m_y + h + keepExtra > m_bodyBottom + 0.001)) {
        endPage(row);
        startPage(row, false);
    }
    draw(s, row, m_y);
    m_y += h;
}

QString ReportRun::itemText(const CItem &ci, const Row &row) const
{
    const tpl::Item &it = *ci.item;
    if (it.kind == tpl::ItemKind::Text) {
        QString out;
        for (const TextPart &p : ci.parts) {
            switch (p.special) {
            case 0: out += p.literal; break;
            case 1: out += formatValue(p.formula.valuta(row), it); break;
            case 2: out += QString::number(m_page); break;
            case 3: out += QString::number(m_pages); break;
            default: out += formatDate((m_printDate.toJulianDay() - 2440588) * qint64(86400000), false); break;
            }
        }
        return out;
    }
    if (ci.group >= 0) {
        const int r = row.index();
        if (r < 0)
            return QString();
        return formatValue(m_keyValues[size_t(r) * size_t(m_keys.size()) + size_t(ci.group)], it);
    }
    const Valore v = ci.value.valuta(row);
    if (it.format == tpl::Format::Hours) {
        const Valore from = ci.since.valuta(row);
        if (!v.isDataOra() || !from.isDataOra())
            return QString();
        const qint64 minutes = (v.millisecondi() - from.millisecondi()) / 60000;
        if (minutes < 0)
            return QString();
        return QStringLiteral("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
    }
    return formatValue(v, it);
}

void ReportRun::draw(const CSection &s, const Row &row, double top)
{
    if (!m_painter && !m_keep)
        return; // first pass: only the place taken counts
    LaidOutSection *record = nullptr;
    if (m_keep) {
        m_keep->append(LaidOutSection{s.label, m_page, {}, {}, {}, {}});
        record = &m_keep->last();
    }
    QPainter *p = m_painter;
    const double left = m_t.marginLeft;
    if (p && s.section->fill.isValid())
        p->fillRect(QRectF(mm(left), mm(top), mm(m_t.contentWidth()), mm(s.section->height)), s.section->fill);
    for (const CItem &ci : s.items) {
        const tpl::Item &it = *ci.item;
        if (suppressed(ci.suppress, row))
            continue;
        const QRectF r(mm(left + it.rect.x()), mm(top + it.rect.y()), mm(it.rect.width()), mm(it.rect.height()));
        switch (it.kind) {
        case tpl::ItemKind::Text:
        case tpl::ItemKind::Field: {
            QString text = itemText(ci, row);
            if (record) {
                record->texts << text;
                if (!it.name.isEmpty())
                    record->named.insert(it.name, text);
            }
            if (!p)
                break;
            if (it.fill.isValid())
                p->fillRect(r, it.fill);
            if (text.isEmpty())
                break;
            p->setFont(ci.font);
            p->setPen(it.color);
            if (it.wrap) {
                p->drawText(r, int(it.align) | Qt::TextWordWrap, text);
            } else {
                // Cut a text that would run into its neighbour; the cheap bound spares most measuring.
                const QFontMetricsF &fm = *ci.metrics;
                if (text.size() * fm.maxWidth() > r.width() && fm.horizontalAdvance(text) > r.width())
                    text = fm.elidedText(text, Qt::ElideRight, r.width());
                p->drawText(r, int(it.align) | Qt::TextSingleLine, text);
            }
            break;
        }
        case tpl::ItemKind::Line:
            if (p) {
                p->setPen(QPen(it.color, mm(it.penWidth)));
                p->drawLine(QPointF(mm(left + it.rect.left()), mm(top + it.rect.top())),
                            QPointF(mm(left + it.rect.right()), mm(top + it.rect.bottom())));
            }
            break;
        case tpl::ItemKind::Box:
            if (p) {
                p->setPen(it.penWidth > 0 ? QPen(it.color, mm(it.penWidth)) : QPen(Qt::NoPen));
                p->setBrush(it.fill.isValid() ? QBrush(it.fill) : QBrush(Qt::NoBrush));
                p->drawRect(r);
                p->setBrush(Qt::NoBrush);
            }
            break;
        case tpl::ItemKind::Graph: {
            const GraphState &g = m_graphs.at(ci.graph);
            const GraphBuckets empty;
            const GraphBuckets &data = g.instance >= 0 && g.instance < g.done.size() ? g.done.at(g.instance) : empty;
            if (record) {
                record->graphTitles << g.texts.value(0);
                record->graphBuckets << int(data.buckets.size());
            }
            if (!p)
                break;
            ChartDefinition definition;
            definition.type = it.graphType;
            definition.texts = g.texts;
            definition.series.resize(it.series.size());
            for (int si = 0; si < it.series.size(); ++si)
                definition.series[si].label = it.series.at(si).label;
            for (const auto &[bucket, accs] : data.buckets) {
                definition.categories << bucketCaption(bucket, it.interval);
                for (int si = 0; si < it.series.size(); ++si) {
                    const Valore v = si < accs.size() ? accs.at(si).result(it.series.at(si).function) : Valore();
                    definition.series[si].values << (v.isNumero() ? v.numero() : 0.0);
                }
            }
            renderChart(*p, r, m_dotsPerMm, definition);
            break;
        }
        }
    }
}

} // namespace reports::engine
