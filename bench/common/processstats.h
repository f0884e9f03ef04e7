#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

#include <vector>

// Figures of this process read from /proc, for the benchmarks: per-thread CPU, resident memory.
namespace ProcessStats {

// User + system CPU seconds of every thread, by thread id, with the thread names.
struct Threads
{
    QHash<int, double> cpuSeconds;
    QHash<int, QString> names;
};
Threads threads();
// CPU seconds of the main (GUI) thread.
double mainThreadCpuSeconds();
// CPU seconds of the whole process, all threads.
double processCpuSeconds();
// VmRSS in bytes, or -1.
qint64 residentBytes();
// CPU seconds between two snapshots of the threads whose names start with one of prefixes.
double cpuOfThreads(const Threads &before, const Threads &after, const QStringList &prefixes);
// The busiest threads between two snapshots, "name 0.42" in cores over seconds, at most n.
QStringList busiestThreads(const Threads &before, const Threads &after, double seconds, int n);

double percentile(std::vector<double> values, double fraction);

} // namespace ProcessStats

// How late a 5 ms timer on the GUI thread fires: the event loop's answer time.
class LatenessProbe : public QObject
{
public:
    static constexpr int TickMs = 5;
    LatenessProbe();
    void start();
    void stop();
    void clear() { m_latenessMs.clear(); }
    double p99Ms() const { return ProcessStats::percentile(m_latenessMs, 0.99); }
    // The longest gap between two ticks (the longest stall of the thread), in ms.
    double maxGapMs() const { return m_maxGapMs; }
    // When that longest gap ended, in ms since start().
    double maxGapEndMs() const { return m_maxGapEndMs; }

private:
    QTimer m_timer;
    QElapsedTimer m_tick;
    QElapsedTimer m_sinceStart;
    std::vector<double> m_latenessMs;
    double m_maxGapMs = 0;
    double m_maxGapEndMs = 0;
};
