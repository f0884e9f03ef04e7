// How long a group install of one APK takes on 1 to 100 simulated phones, all at once on the adb
// work pool against the same work done one phone after another, what it costs the application in
// CPU, and how late the user interface's event loop runs meanwhile (a 5 ms timer's lateness).
// Phones are phonesim processes attached to Debian's real adb on a private server port.
//
// Usage: group_ops [phone counts...] [--apk-mb N] [--link-rate BYTES_PER_S] [--out results.md]
// (default: 1 8; with --link-rate a second round holds every phone's link to that rate)

#include "adbworkpool.h"
#include "groupactions.h"
#include "device.h"
#include "devicegroup.h"
#include "groupoperation.h"
#include "phonefixture.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <utility>
#include <vector>

namespace {

constexpr int kTickMs = 5;

double cpuSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// CPU time of the calling thread: the GUI thread's own share of a run.
double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

// All processors' busy and total jiffies since boot, from /proc/stat's first line.
std::pair<double, double> machineJiffies()
{
    QFile file("/proc/stat");
    if (!file.open(QIODevice::ReadOnly))
        return {0, 0};
    const QList<QByteArray> fields = file.readLine().simplified().split(' ');
    double total = 0;
    for (int i = 1; i < fields.size(); ++i)
        total += fields.at(i).toDouble();
    // idle and iowait are the 4th and 5th numbers.
    const double idle = fields.value(4).toDouble() + fields.value(5).toDouble();
    return {total - idle, total};
}

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, size_t(fraction * (values.size() - 1) + 0.5));
    return values.at(index);
}

QString firstLineWith(const QString &path, const QString &key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "unknown";
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key.toLatin1()))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1)).trimmed();
    }
    return "unknown";
}

struct Run
{
    double wallS = 0;
    double appCpuS = 0;
    double adbCpuS = 0;
    double latenessP99Ms = 0;
    double latenessMaxMs = 0;
    // Fractions of the wall time: the GUI thread on a processor, and the whole machine's processors busy.
    double guiBusy = 0;
    double machineBusy = 0;
    int done = 0;
};

struct Row
{
    int phones = 0;
    Run idle;
    Run parallel;
    Run serial;
};

// The same lateness probe with nothing to do: how late the loaded machine alone makes the timer.
Run idleLateness(int milliseconds)
{
    std::vector<double> lateness;
    QElapsedTimer tick;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    probe.setInterval(kTickMs);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        lateness.push_back(std::max(0.0, tick.nsecsElapsed() / 1e6 - kTickMs));
        tick.start();
    });
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    tick.start();
    probe.start();
    loop.exec();
    Run run;
    run.latenessP99Ms = percentile(lateness, 0.99);
    run.latenessMaxMs = lateness.empty() ? 0 : *std::max_element(lateness.begin(), lateness.end());
    return run;
}

// One group install with at most `bound` adb processes at once, timed while a 5 ms timer measures
// how late the event loop answers.
Run install(DeviceGroup &group, const QString &apk, int bound)
{
    AdbWorkPool::instance()->setMaxRunning(bound);
    std::vector<double> lateness;
    QElapsedTimer tick;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    probe.setInterval(kTickMs);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        lateness.push_back(std::max(0.0, tick.nsecsElapsed() / 1e6 - kTickMs));
        tick.start();
    });

    Run run;
    const double guiCpu = threadCpuSeconds();
    const auto machine = machineJiffies();
    const double appCpu = cpuSeconds(RUSAGE_SELF);
    const double adbCpu = cpuSeconds(RUSAGE_CHILDREN);
    QElapsedTimer wall;
    wall.start();
    tick.start();
    probe.start();
    GroupOperation *operation = group.actions()->installApk(apk);
    QEventLoop loop;
    QObject::connect(operation, &GroupOperation::finished, &loop, &QEventLoop::quit);
    if (operation->running())
        loop.exec();
    probe.stop();
    run.wallS = wall.nsecsElapsed() / 1e9;
    run.appCpuS = cpuSeconds(RUSAGE_SELF) - appCpu;
    run.adbCpuS = cpuSeconds(RUSAGE_CHILDREN) - adbCpu;
    run.guiBusy = (threadCpuSeconds() - guiCpu) / run.wallS;
    const auto machineAfter = machineJiffies();
    const double jiffies = machineAfter.second - machine.second;
    run.machineBusy = jiffies > 0 ? (machineAfter.first - machine.first) / jiffies : 0;
    run.latenessP99Ms = percentile(lateness, 0.99);
    run.latenessMaxMs = lateness.empty() ? 0 : *std::max_element(lateness.begin(), lateness.end());
    run.done = operation->count(GroupOperation::Done);
    if (run.done != operation->rowCount())
        std::fprintf(stderr, "not every phone installed: %s\n", qPrintable(operation->summary()));
    return run;
}

std::vector<Row> measureAll(const QList<int> &counts, const QString &apk, const QStringList &phoneArgs,
                            QString *stoppedAt)
{
    PhoneFixture fixture;
    std::vector<Row> rows;
    for (const int count : counts) {
        while (int(fixture.phones().size()) < count) {
            if (!fixture.addPhone({720, 1600}, phoneArgs)) {
                *stoppedAt = QString("phone %1 did not start: %2").arg(fixture.phones().size() + 1).arg(fixture.error());
                std::fprintf(stderr, "%s\n", qPrintable(*stoppedAt));
                return rows;
            }
        }
        DeviceGroup group;
        for (int i = 0; i < count; ++i)
            group.appendDevice(new Device(nullptr, fixture.phones().at(i)->serial()));
        Row row;
        row.phones = count;
        row.idle = idleLateness(3000);
        row.parallel = install(group, apk, AdbWorkPool::defaultMaxRunning);
        row.serial = install(group, apk, 1);
        rows.push_back(row);
        std::printf("%3d phones %s: parallel %.2f s (app CPU %.2f s, lateness p99 %.2f ms, idle %.2f ms, GUI busy "
                    "%.1f %%, machine busy %.1f %%), one after another %.2f s, speed-up %.2fx\n",
                    count, qPrintable(phoneArgs.join(' ')), row.parallel.wallS, row.parallel.appCpuS,
                    row.parallel.latenessP99Ms, row.idle.latenessP99Ms, 100 * row.parallel.guiBusy,
                    100 * row.parallel.machineBusy, row.serial.wallS,
                    row.serial.wallS / row.parallel.wallS);
        std::fflush(stdout);
    }
    return rows;
}

void writeTable(QTextStream &md, const std::vector<Row> &rows)
{
    md << "| Phones | Parallel wall (s) | One after another (s) | Speed-up | App CPU (s) | adb clients CPU (s) | "
          "GUI lateness p99 (ms) | GUI lateness max (ms) | Idle lateness p99 (ms) | GUI thread busy | Machine busy | "
          "Installed |\n";
    md << "|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n";
    for (const Row &r : rows) {
        md << "| " << r.phones << " | " << QString::number(r.parallel.wallS, 'f', 2) << " | "
           << QString::number(r.serial.wallS, 'f', 2) << " | "
           << QString::number(r.serial.wallS / r.parallel.wallS, 'f', 2) << "x | "
           << QString::number(r.parallel.appCpuS, 'f', 2) << " | " << QString::number(r.parallel.adbCpuS, 'f', 2)
           << " | " << QString::number(r.parallel.latenessP99Ms, 'f', 2) << " | "
           << QString::number(r.parallel.latenessMaxMs, 'f', 2) << " | "
           << QString::number(r.idle.latenessP99Ms, 'f', 2) << " | "
           << QString::number(100 * r.parallel.guiBusy, 'f', 1) << " % | "
           << QString::number(100 * r.parallel.machineBusy, 'f', 1) << " % | " << r.parallel.done << "/" << r.phones
           << " |\n";
    }
}

}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    // The simulated phone is built beside the benchmark: build/bench/group_ops, build/phonesim.
    if (qEnvironmentVariableIsEmpty("KORVEL_BUILD_DIR"))
        qputenv("KORVEL_BUILD_DIR", QDir(QCoreApplication::applicationDirPath() + "/..").absolutePath().toLocal8Bit());
    QList<int> counts;
    int apkMb = 20;
    int linkRate = 0;
    QString output = QString(KORVEL_BENCH_RESULTS_DIR) + "/group_ops.md";
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        if (args.at(i) == "--apk-mb" && i + 1 < args.size())
            apkMb = args.at(++i).toInt();
        else if (args.at(i) == "--link-rate" && i + 1 < args.size())
            linkRate = args.at(++i).toInt();
        else if (args.at(i) == "--out" && i + 1 < args.size())
            output = args.at(++i);
        else if (args.at(i).toInt() > 0)
            counts << args.at(i).toInt();
    }
    if (counts.isEmpty())
        counts = {1, 8};
    std::sort(counts.begin(), counts.end());

    QTemporaryDir dir;
    const QString apk = dir.filePath("bench.apk");
    {
        QFile file(apk);
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        QByteArray bytes(apkMb * 1024 * 1024, '\0');
        QRandomGenerator generator(12);
        generator.fillRange(reinterpret_cast<quint32 *>(bytes.data()), bytes.size() / 4);
        bytes.replace(0, 4, QByteArray("PK\x03\x04", 4));
        file.write(bytes);
    }

    // First as fast as loopback goes, then with every phone's link held to a USB 2 / Wi-Fi rate.
    QString stoppedAt;
    const std::vector<Row> fast = measureAll(counts, apk, {}, &stoppedAt);
    std::vector<Row> linked;
    if (linkRate > 0)
        linked = measureAll(counts, apk, {"--slow-sync", QString::number(linkRate)}, &stoppedAt);

    QFile file(output);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(output));
        return 1;
    }
    QTextStream md(&file);
    md << "# Group APK install: all phones at once against one after another\n\n";
    md << "Run on " << QDateTime::currentDateTime().toString(Qt::ISODate) << " by `build/bench/group_ops "
       << args.join(' ') << "`.\n\n";
    md << "## Machine\n\n";
    md << "- CPUs (nproc): " << QThread::idealThreadCount() << "\n";
    md << "- CPU model: " << firstLineWith("/proc/cpuinfo", "model name") << "\n";
    md << "- Memory: " << firstLineWith("/proc/meminfo", "MemTotal") << "\n";
    md << "- System: " << QSysInfo::prettyProductName() << ", kernel " << QSysInfo::kernelVersion() << ", Qt "
       << qVersion() << "\n";
    md << "- Note: a machine shared with other builds and tests; the simulated phones and adb run on the "
          "same cores as the application, so figures vary from run to run.\n\n";
    md << "## Method\n\n";
    md << "- Phones: phonesim processes attached to Debian's adb over loopback on a private adb server.\n";
    md << "- Work: `DeviceGroup::installApk` of one " << apkMb << " MB APK: per phone a push to a temporary "
          "file, `pm install -r`, removal of the temporary file, each an adb process.\n";
    md << "- Parallel: the adb work pool's default bound of " << AdbWorkPool::defaultMaxRunning
       << " adb processes at once. One after another: the same operation with the bound set to 1.\n";
    md << "- App CPU: user + system time of the benchmark process (GUI thread and adb work pool). adb CPU: the "
          "adb client processes it started (children's rusage). The phones' and the adb server's CPU are "
          "not counted.\n";
    md << "- Lateness: a 5 ms precise timer on the GUI thread; each tick's delay beyond 5 ms, during the "
          "parallel install. Idle lateness: the same probe for 3 s just before, with the phones attached and "
          "nothing running in the application, to show what the shared machine alone adds.\n";
    md << "- GUI thread busy: the GUI thread's own CPU time over the parallel install's wall time. Machine busy: "
          "all processors' busy time over their total during it (/proc/stat), everyone's work included.\n\n";
    md << "## Results\n\n";
    md << "### Loopback at full speed\n\n";
    writeTable(md, fast);
    if (!linked.empty()) {
        md << "\n### Each phone's link held to " << QString::number(linkRate / 1e6, 'f', 1)
           << " MB/s (phonesim --slow-sync), as over USB 2 or Wi-Fi\n\n";
        writeTable(md, linked);
    }
    if (!stoppedAt.isEmpty())
        md << "\nStopped: " << stoppedAt << "\n";
    std::printf("results written to %s\n", qPrintable(output));
    return 0;
}
