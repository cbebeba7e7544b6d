// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QVector>

class QPainter;

namespace reports::engine {

// A graph as the page shows it: buckets along one axis, one or more series of values.
struct ChartDefinition {
    QString type;               // bar, hbar (buckets down the side), line
    QStringList texts;          // title, subtitle, footnote, groups, series, x axis, y axis
    QStringList categories;
    struct Series {
        QString label;
        QVector<double> values;
    };
    QVector<Series> series;
};

// Draws the graph with Qt Charts into `target` (device units) of the painter;
// `dotsPerMm` tells the device's scale, so that texts keep their size on paper.
void renderChart(QPainter &painter, const QRectF &target, double dotsPerMm, const ChartDefinition &definition);

} // namespace reports::engine
