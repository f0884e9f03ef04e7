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

Schedule schedule(const QList<int> &tids)
{
    Schedule sum;
    for (int tid : tids) {
        QFile file(QString("/proc/self/task/%1/schedstat").arg(tid));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> fields = file.readAll().trimmed().split(' ');
        sum.runMs += fields.value(0).toDouble() / 1e6;
        sum.cpuWaitMs += fields.value(1).toDouble() / 1e6;
    }
    return sum;
}

QList<int> threadIds(const QString &prefix)
{
    QList<int> ids;
    const QStringList tids = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &tid : tids) {
        QFile comm("/proc/self/task/" + tid + "/comm");
        if (comm.open(QIODevice::ReadOnly) && QString::fromUtf8(comm.readAll()).startsWith(prefix))
            ids << tid.toInt();
    }
    return ids;
}

MachineCpu machineCpu()
{
    QFile stat("/proc/stat");
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    // cpu user nice system idle iowait irq softirq steal ...
    const QList<QByteArray> fields = stat.readLine().simplified().split(' ');
    MachineCpu cpu;
    for (int i = 1; i < fields.size(); ++i) {
        cpu.total += fields.at(i).toDouble();
        if (i != 4 && i != 5)
            cpu.busy += fields.at(i).toDouble();
    }
    return cpu;
}

QHash<QString, double> cpuByCommand(const QStringList &names)
{
    QHash<QString, double> result;
    const QStringList pids = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &pid : pids) {
        QFile comm("/proc/" + pid + "/comm");
        if (pid.front().isDigit() && comm.open(QIODevice::ReadOnly)) {
            const QString name = QString::fromUtf8(comm.readAll()).trimmed();
            if (names.contains(name))
                result[name] += std::max(0.0, statCpuSeconds("/proc/" + pid + "/stat"));
        }
    }
    QFile self("/proc/self/stat");
    if (self.open(QIODevice::ReadOnly)) {
        const QByteArray text = self.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        // cutime and cstime
        result["children"] = (fields.value(13).toDouble() + fields.value(14).toDouble()) / double(sysconf(_SC_CLK_TCK));
    }
    return result;
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
        const Snapshot now = snapshot();
        if (gapMs > m_maxGapMs) {
            m_maxGapMs = gapMs;
            m_maxGapEndMs = double(m_sinceStart.nsecsElapsed()) / 1e6;
            const double ticks = now.machine.total - m_lastTick.machine.total;
            auto delta = [](const ProcessStats::Schedule &a, const ProcessStats::Schedule &b) {
                return ProcessStats::Schedule{a.runMs - b.runMs, a.cpuWaitMs - b.cpuWaitMs};
            };
            m_maxGapAnatomy = {delta(now.gui, m_lastTick.gui), delta(now.render, m_lastTick.render),
                               delta(now.rasteriser, m_lastTick.rasteriser),
                               ticks > 0 ? (now.machine.busy - m_lastTick.machine.busy) / ticks : 0};
        }
        m_lastTick = now;
    });
}

LatenessProbe::Snapshot LatenessProbe::snapshot() const
{
    return {ProcessStats::schedule({getpid()}), ProcessStats::schedule(m_renderThreads),
            ProcessStats::schedule(m_rasteriserThreads), ProcessStats::machineCpu()};
}

void LatenessProbe::start()
{
    m_latenessMs.clear();
    m_maxGapMs = 0;
    m_maxGapEndMs = 0;
    m_maxGapAnatomy = {};
    m_renderThreads = ProcessStats::threadIds("QSGRenderThread");
    m_rasteriserThreads = ProcessStats::threadIds("llvmpipe-");
    m_lastTick = snapshot();
    m_sinceStart.start();
    m_tick.start();
    m_timer.start();
}

void LatenessProbe::stop()
{
    m_timer.stop();
}
