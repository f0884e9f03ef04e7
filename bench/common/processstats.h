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

// Where a thread of this process spent its time (schedstat): on a CPU, and runnable but waiting
// for one; the rest of the wall time it slept (waited on a lock, a condition or the event loop).
struct Schedule
{
    double runMs = 0;
    double cpuWaitMs = 0;
};
Schedule schedule(const QList<int> &tids);
// Ids of this process's threads whose names start with prefix.
QList<int> threadIds(const QString &prefix);

// Busy and total CPU time of the whole machine, in clock ticks (/proc/stat).
struct MachineCpu
{
    double busy = 0;
    double total = 0;
};
MachineCpu machineCpu();

// CPU seconds used so far by the processes with these names, summed per name; "children" holds
// what this process's finished children used (short-lived adb calls).
QHash<QString, double> cpuByCommand(const QStringList &names);

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

    // What the GUI thread, the scene graph's render thread, Mesa's rasteriser threads (summed) and
    // the machine did during the longest gap: the answer to "what was the GUI thread waiting for".
    struct Anatomy
    {
        ProcessStats::Schedule gui;
        ProcessStats::Schedule render;
        ProcessStats::Schedule rasteriser;
        double machineBusyFraction = 0;
    };
    Anatomy maxGapAnatomy() const { return m_maxGapAnatomy; }

private:
    struct Snapshot
    {
        ProcessStats::Schedule gui;
        ProcessStats::Schedule render;
        ProcessStats::Schedule rasteriser;
        ProcessStats::MachineCpu machine;
    };
    Snapshot snapshot() const;

    QList<int> m_renderThreads;
    QList<int> m_rasteriserThreads;
    Snapshot m_lastTick;
    Anatomy m_maxGapAnatomy;
    QTimer m_timer;
    QElapsedTimer m_tick;
    QElapsedTimer m_sinceStart;
    std::vector<double> m_latenessMs;
    double m_maxGapMs = 0;
    double m_maxGapEndMs = 0;
};
