#include "processstats.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cmath>
#include <time.h>
#include <unistd.h>

namespace {

// utime + stime of a /proc stat file; the name in parentheses may hold spaces.
double statCpuSeconds(const QString &path)
{
    QFile stat(path);
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = stat.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    return (fields.at(11).toDouble() + fields.at(12).toDouble()) / double(sysconf(_SC_CLK_TCK));
}

} // namespace

namespace ProcessStats {

Threads threads()
{
    Threads result;
    const QStringList tids = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &tid : tids) {
        const double cpu = statCpuSeconds("/proc/self/task/" + tid + "/stat");
        if (cpu < 0)
            continue;
        QFile comm("/proc/self/task/" + tid + "/comm");
        comm.open(QIODevice::ReadOnly);
        result.cpuSeconds.insert(tid.toInt(), cpu);
        result.names.insert(tid.toInt(), QString::fromUtf8(comm.readAll()).trimmed());
    }
    return result;
}

double mainThreadCpuSeconds()
{
    return statCpuSeconds(QString("/proc/self/task/%1/stat").arg(getpid()));
}

double processCpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

qint64 residentBytes()
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong() * 1024;
    }
    return -1;
}

double cpuOfThreads(const Threads &before, const Threads &after, const QStringList &prefixes)
{
    double sum = 0;
    for (auto it = after.cpuSeconds.begin(); it != after.cpuSeconds.end(); ++it) {
        const QString name = after.names.value(it.key());
        if (std::none_of(prefixes.begin(), prefixes.end(), [&](const QString &p) { return name.startsWith(p); }))
            continue;
        sum += it.value() - before.cpuSeconds.value(it.key(), 0);
    }
    return sum;
}

QStringList busiestThreads(const Threads &before, const Threads &after, double seconds, int n)
{
    // Threads of one kind (the phones' media threads, llvmpipe's) are summed under their name.
    QHash<QString, double> byName;
    QHash<QString, int> countByName;
    for (auto it = after.cpuSeconds.begin(); it != after.cpuSeconds.end(); ++it) {
        QString name = after.names.value(it.key());
        if (it.key() == getpid())
            name = "GUI thread";
        byName[name] += it.value() - before.cpuSeconds.value(it.key(), 0);
        ++countByName[name];
    }
    QList<QPair<double, QString>> sorted;
    for (auto it = byName.begin(); it != byName.end(); ++it)
        sorted.append({it.value(), it.key()});
    std::sort(sorted.begin(), sorted.end(), [](const auto &a, const auto &b) { return a.first > b.first; });
    QStringList lines;
    for (const auto &entry : sorted.mid(0, n)) {
        if (entry.first <= 0)
            break;
        const int count = countByName.value(entry.second);
        lines << QString("%1%2 %3").arg(entry.second, count > 1 ? QString(" (x%1)").arg(count) : QString(),
                                        QString::number(entry.first / seconds, 'f', 3));
    }
    return lines;
}

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return -1;
    std::sort(values.begin(), values.end());
    // Nearest rank.
    size_t rank = size_t(std::ceil(fraction * double(values.size())));
    rank = std::clamp<size_t>(rank, 1, values.size());
    return values[rank - 1];
}

} // namespace ProcessStats

LatenessProbe::LatenessProbe()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(TickMs);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        const double gapMs = double(m_tick.nsecsElapsed()) / 1e6;
        m_tick.start();
        m_latenessMs.push_back(std::max(0.0, gapMs - TickMs));
        if (gapMs > m_maxGapMs) {
            m_maxGapMs = gapMs;
            m_maxGapEndMs = double(m_sinceStart.nsecsElapsed()) / 1e6;
        }
    });
}

void LatenessProbe::start()
{
    m_latenessMs.clear();
    m_maxGapMs = 0;
    m_maxGapEndMs = 0;
    m_sinceStart.start();
    m_tick.start();
    m_timer.start();
}

void LatenessProbe::stop()
{
    m_timer.stop();
}
