// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/engine/ReportChart.h"

#include <QBarSet>
#include <QChart>
#include <QGraphicsScene>
#include <QHorizontalBarSeries>
#include <QBarSeries>
#include <QCategoryAxis>
#include <QLegend>
#include <QLineSeries>
#include <QPainter>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace reports::engine {

namespace {

// The chart is laid out at screen scale (96 dots per inch) and drawn scaled onto the page.
constexpr double ScenePerMm = 96.0 / 25.4;

QFont pixelFont(int px, bool bold = false)
{
    // Sizes in pixels scale with the drawing; sizes in points would be taken
    // once more at the printer's resolution and come out huge.
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(px);
    f.setBold(bold);
    return f;
}

const QColor Palette[] = {QColor(0x3d, 0x6f, 0xa8), QColor(0xc0, 0x5a, 0x3a), QColor(0x5a, 0x9a, 0x5a), QColor(0x8a, 0x6a, 0xb0)};

// Buckets along an axis, with no more than about `room` captions so they never overlap.
QCategoryAxis *bucketAxis(const QStringList &categories, int room)
{
    // The captions are thinned out below, so none is cut short to its bucket's width.
    auto *axis = new QCategoryAxis;
    axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    const int n = int(categories.size());
    const int step = std::max(1, int(std::ceil(double(n) / std::max(room, 1))));
    for (int i = 0; i < n; i += step)
        axis->append(categories.at(i), i);
    axis->setRange(-0.5, std::max(n, 1) - 0.5);
    axis->setLabelsFont(pixelFont(9));
    axis->setTitleFont(pixelFont(10, true));
    axis->setGridLineVisible(false);
    axis->setTruncateLabels(false);
    return axis;
}

QValueAxis *valueAxis(const QVector<ChartDefinition::Series> &series)
{
    double lo = 0, hi = 0;
    bool whole = true;
    for (const auto &s : series)
        for (double v : s.values) {
            lo = std::min(lo, v);
            hi = std::max(hi, v);
            whole = whole && v == std::floor(v);
        }
    if (hi <= lo)
        hi = lo + 1;
    auto *axis = new QValueAxis;
    axis->setRange(lo, hi);
    axis->applyNiceNumbers();
    axis->setLabelFormat(whole && hi - lo >= 4 ? QStringLiteral("%.0f") : QStringLiteral("%.2f"));
    axis->setLabelsFont(pixelFont(9));
    axis->setTitleFont(pixelFont(10, true));
    axis->setTruncateLabels(false);
    axis->setGridLineColor(QColor(0xdd, 0xdd, 0xdd));
    return axis;
}

} // namespace

void renderChart(QPainter &painter, const QRectF &target, double dotsPerMm, const ChartDefinition &definition)
{
    const QSizeF size(target.width() / dotsPerMm * ScenePerMm, target.height() / dotsPerMm * ScenePerMm);
    auto *chart = new QChart;
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->setDropShadowEnabled(false);
    chart->setBackgroundRoundness(0);
    chart->setBackgroundPen(QPen(QColor(0xbb, 0xbb, 0xbb), 0.8));
    chart->setMargins(QMargins(4, 4, 4, 4));
    const QString title = definition.texts.value(0);
    const QString subtitle = definition.texts.value(1);
    chart->setTitle(subtitle.isEmpty() ? title : title + QLatin1Char('\n') + subtitle);
    chart->setTitleFont(pixelFont(13, true));
    chart->legend()->setVisible(definition.series.size() > 1);
    chart->legend()->setFont(pixelFont(9));
    chart->legend()->setAlignment(Qt::AlignBottom);

    const bool horizontal = definition.type == QLatin1String("hbar");
    const bool line = definition.type == QLatin1String("line");
    // Room for a caption: a line of text down the side, a date across the bottom.
    QCategoryAxis *buckets = bucketAxis(definition.categories, int((horizontal ? size.height() : size.width()) / (horizontal ? 13 : 42)));
    QValueAxis *values = valueAxis(definition.series);
    chart->addAxis(buckets, horizontal ? Qt::AlignLeft : Qt::AlignBottom);
    chart->addAxis(values, horizontal ? Qt::AlignBottom : Qt::AlignLeft);
    // The x axis title runs along the bottom, the y axis title up the side, whatever they hold.
    (horizontal ? values : static_cast<QAbstractAxis *>(buckets))->setTitleText(definition.texts.value(5));
    (horizontal ? static_cast<QAbstractAxis *>(buckets) : values)->setTitleText(definition.texts.value(6));
    if (horizontal)
        buckets->setReverse(true); // the first bucket on top, as a list reads

    if (line) {
        for (int s = 0; s < definition.series.size(); ++s) {
            auto *ls = new QLineSeries;
            ls->setName(definition.series.at(s).label);
            const QVector<double> &v = definition.series.at(s).values;
            for (int i = 0; i < v.size(); ++i)
                ls->append(i, v.at(i));
            ls->setPen(QPen(Palette[s % 4], 1.6));
            ls->setPointsVisible(v.size() == 1); // a lone point has no segment to draw: its marker shows it
            chart->addSeries(ls);
            ls->attachAxis(buckets);
            ls->attachAxis(values);
        }
    } else {
        QAbstractBarSeries *bars = horizontal ? static_cast<QAbstractBarSeries *>(new QHorizontalBarSeries)
                                              : static_cast<QAbstractBarSeries *>(new QBarSeries);
        bars->setBarWidth(definition.categories.size() > 60 ? 1.0 : 0.7);
        for (int s = 0; s < definition.series.size(); ++s) {
            auto *set = new QBarSet(definition.series.at(s).label);
            for (double v : definition.series.at(s).values)
                set->append(v);
            set->setColor(Palette[s % 4]);
            set->setBorderColor(definition.categories.size() > 60 ? Palette[s % 4] : Palette[s % 4].darker(130));
            bars->append(set);
        }
        chart->addSeries(bars);
        bars->attachAxis(buckets);
        bars->attachAxis(values);
    }

    QGraphicsScene scene; // owns the chart and deletes it
    scene.addItem(chart);
    chart->setGeometry(QRectF(QPointF(0, 0), size));
    scene.setSceneRect(QRectF(QPointF(0, 0), size));
    painter.save();
    scene.render(&painter, target, scene.sceneRect(), Qt::IgnoreAspectRatio);
    painter.restore();
}

} // namespace reports::engine
