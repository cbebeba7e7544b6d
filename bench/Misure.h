// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace bench {

struct Stats {
    double median, p99;
};

// Median and 99th percentile of a set of times.
inline Stats stats(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms[std::min(ms.size() - 1, ms.size() * 99 / 100)]};
}

// Milliseconds that `f` took.
template <typename F>
double timed(F &&f)
{
    QElapsedTimer t;
    t.start();
    f();
    return t.nsecsElapsed() / 1e6;
}

// One line of a benchmark's report: the median and the 99th percentile of a
// set of times, and whether the median meets the goal.
inline void rigaTempi(QTextStream &out, const char *nome, const std::vector<double> &ms, double goal = 50)
{
    const Stats s = stats(ms);
    out << "  " << nome << ": median " << s.median << " ms, p99 " << s.p99 << " ms"
        << (s.median < goal ? QStringLiteral("  (goal met)\n") : QStringLiteral("  (over the %1 ms goal)\n").arg(goal));
}

// A memory figure of this process in megabytes: "VmRSS" (resident now) or "VmHWM" (peak).
inline double memoriaMb(const char *voce)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray chiave = QByteArray(voce) + ':';
    for (const QByteArray &riga : status.readAll().split('\n'))
        if (riga.startsWith(chiave))
            return riga.mid(chiave.size()).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return -1;
}

} // namespace bench
