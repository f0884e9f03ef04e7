// Korvel's own user interface (the real Main.qml, loaded as the application loads it) with the
// phones of a farm remembered in its group, driven through the group's own Start All, Stop All and
// Clear All. Run it through bench/startall (time until every phone is live, the longest stall of
// the GUI thread meanwhile) or bench/app_idle (CPU per shown picture while live, CPU once nothing
// streams). Prints its figures as "key value" lines for the script to tabulate.

#include "appstartup.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "framehandoff.h"
#include "processstats.h"
#include "waituntil.h"
#include "yuvfboitem.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <algorithm>
#include <csignal>
#include <functional>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

namespace {

volatile std::sig_atomic_t stopSignal = 0;
void requestStop(int) { stopSignal = 1; }

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

void report(const QString &key, const QString &value)
{
    out() << key << " " << value << Qt::endl;
}

QString fixed(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

bool waitUntil(const std::function<bool()> &done, int timeoutMs)
{
    return ::waitUntil(done, timeoutMs, [] { return stopSignal != 0; });
}

void collectItems(QQuickItem *item, QList<YuvFboItem *> *items)
{
    if (auto *video = qobject_cast<YuvFboItem *>(item))
        items->append(video);
    for (QQuickItem *child : item->childItems())
        collectItems(child, items);
}

QList<YuvFboItem *> videoItems(QQuickWindow *window)
{
    QList<YuvFboItem *> items;
    collectItems(window->contentItem(), &items);
    return items;
}

qint64 totalUploads(QQuickWindow *window)
{
    qint64 sum = 0;
    for (const YuvFboItem *item : videoItems(window))
        sum += item->uploads();
    return sum;
}

bool live(const Device *device)
{
    return device->running() && !device->starting() && device->videoFrames()->framesPublished() > 0;
}

// CPU of the whole process over a quiet window of the given length, with the busiest threads.
struct CpuWindow
{
    double seconds = 0;
    double cpuSeconds = 0;
    double guiSeconds = 0;
    qint64 uploads = 0;
    QStringList busiest;
};

CpuWindow measure(QQuickWindow *window, int milliseconds)
{
    CpuWindow result;
    const qint64 uploadsBefore = totalUploads(window);
    const ProcessStats::Threads before = ProcessStats::threads();
    const double cpu = ProcessStats::processCpuSeconds();
    const double gui = ProcessStats::mainThreadCpuSeconds();
    QElapsedTimer wall;
    wall.start();
    waitUntil([] { return false; }, milliseconds);
    result.cpuSeconds = ProcessStats::processCpuSeconds() - cpu;
    result.guiSeconds = ProcessStats::mainThreadCpuSeconds() - gui;
    result.seconds = double(wall.nsecsElapsed()) / 1e9;
    result.uploads = totalUploads(window) - uploadsBefore;
    result.busiest = ProcessStats::busiestThreads(before, ProcessStats::threads(), result.seconds, 6);
    return result;
}

void reportWindow(const QString &prefix, const CpuWindow &w)
{
    report(prefix + "_cores", fixed(w.cpuSeconds / w.seconds, 4));
    report(prefix + "_gui_cores", fixed(w.guiSeconds / w.seconds, 4));
    report(prefix + "_uploads_per_s", fixed(double(w.uploads) / w.seconds, 1));
    if (w.uploads > 0)
        report(prefix + "_cpu_ms_per_shown_frame", fixed(w.cpuSeconds * 1000 / double(w.uploads), 2));
    report(prefix + "_threads", w.busiest.join(", "));
}

} // namespace

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    AppStartup::configureApplication();

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"phones", "Phones remembered in the current group that must appear.", "n", "16"});
    parser.addOption({"mode", "startall or idle.", "mode", "startall"});
    parser.addOption({"seconds", "Length of each CPU window (idle mode).", "seconds", "10"});
    parser.process(app);
    const int phones = parser.value("phones").toInt();
    const QString mode = parser.value("mode");
    const int windowMs = int(parser.value("seconds").toDouble() * 1000);
    QTextStream err(stderr);
    if (phones < 1 || (mode != "startall" && mode != "idle") || windowMs <= 0) {
        err << "bench_app: needs --phones >= 1, --mode startall|idle, --seconds > 0" << Qt::endl;
        return 2;
    }
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);

    QQmlApplicationEngine engine;
    AppStartup::loadUserInterface(engine);
    auto *window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().first());
    auto *manager = window ? window->findChild<DeviceGroupManager *>("deviceGroupManager") : nullptr;
    if (!manager) {
        err << "bench_app: the user interface did not load" << Qt::endl;
        return 1;
    }
    report("window", QString("%1x%2").arg(window->width()).arg(window->height()));

    auto group = [manager] { return manager->currentSelectedGroup(); };
    QElapsedTimer sinceLoad;
    sinceLoad.start();
    if (!waitUntil([&] { return group() && group()->devices().size() >= phones; }, 120000)) {
        err << "bench_app: the group holds " << (group() ? group()->devices().size() : 0) << " of " << phones
            << " phones" << Qt::endl;
        return 1;
    }
    report("phones_in_group", QString::number(group()->devices().size()));
    report("phones_placed_s", fixed(sinceLoad.elapsed() / 1000.0, 2));
    // Let the cells settle before anything is measured.
    waitUntil([] { return false; }, 3000);

    if (mode == "idle") {
        const CpuWindow before = measure(window, windowMs);
        reportWindow("before_start", before);
    }

    const QList<Device *> devices = group()->devices();
    QHash<Device *, qint64> liveAtMs;
    QElapsedTimer sinceStart;
    for (Device *device : devices) {
        QObject::connect(device, &Device::startingChanged, device, [&liveAtMs, &sinceStart, device] {
            if (!liveAtMs.contains(device) && device->running() && !device->starting())
                liveAtMs.insert(device, sinceStart.elapsed());
        });
    }
    const QStringList others{"phonesim", "adb", "Xvfb"};
    const QHash<QString, double> othersBefore = ProcessStats::cpuByCommand(others);
    const ProcessStats::Threads threadsBefore = ProcessStats::threads();
    LatenessProbe lateness;
    lateness.start();
    sinceStart.start();
    group()->startAllDevices();
    // What Start All itself costs the GUI thread, before any reply comes back.
    report("start_all_call_ms", fixed(double(sinceStart.nsecsElapsed()) / 1e6, 1));
    const bool allLive = waitUntil([&] { return std::all_of(devices.begin(), devices.end(), live); },
                                   30000 + 1000 * phones);
    const double allLiveS = sinceStart.elapsed() / 1000.0;
    lateness.stop();
    const QHash<QString, double> othersAfter = ProcessStats::cpuByCommand(others);
    const ProcessStats::Threads threadsAfter = ProcessStats::threads();
    int liveCount = int(std::count_if(devices.begin(), devices.end(), live));
    report("live", QString("%1/%2").arg(liveCount).arg(devices.size()));
    report("all_live_s", allLive ? fixed(allLiveS, 2) : QString("not reached in %1 s").arg(fixed(allLiveS, 0)));
    std::vector<double> perPhone;
    for (qint64 ms : liveAtMs)
        perPhone.push_back(double(ms));
    report("first_picture_median_ms", fixed(ProcessStats::percentile(perPhone, 0.5), 0));
    report("first_picture_max_ms", fixed(ProcessStats::percentile(perPhone, 1.0), 0));
    report("start_longest_stall_ms", fixed(lateness.maxGapMs(), 1));
    report("start_longest_stall_ended_at_ms", fixed(lateness.maxGapEndMs(), 0));
    report("start_lateness_p99_ms", fixed(lateness.p99Ms(), 2));
    // Where the time of the longest stall went: run, waiting for a CPU, asleep (on a lock, a
    // condition or the event loop) for the GUI and render threads, and how busy the machine was.
    const LatenessProbe::Anatomy stall = lateness.maxGapAnatomy();
    auto anatomy = [&](const ProcessStats::Schedule &s) {
        return QString("%1 %2 %3").arg(fixed(s.runMs, 0), fixed(s.cpuWaitMs, 0),
                                        fixed(std::max(0.0, lateness.maxGapMs() - s.runMs - s.cpuWaitMs), 0));
    };
    report("start_stall_gui_run_cpuwait_sleep_ms", anatomy(stall.gui));
    report("start_stall_render_run_cpuwait_sleep_ms", anatomy(stall.render));
    // Summed over Mesa's threads, so only run and CPU wait mean anything.
    report("start_stall_rasteriser_run_cpuwait_ms",
           QString("%1 %2").arg(fixed(stall.rasteriser.runMs, 0), fixed(stall.rasteriser.cpuWaitMs, 0)));
    report("start_stall_machine_busy_percent", fixed(100 * stall.machineBusyFraction, 0));
    // Cores used from Start All until every phone was live, by whom.
    auto cores = [&](double seconds) { return fixed(seconds / allLiveS, 2); };
    QStringList byWhom;
    for (const QString &name : others + QStringList{"children"})
        byWhom << QString("%1 %2").arg(name == "children" ? "adb calls" : name,
                                       cores(othersAfter.value(name) - othersBefore.value(name)));
    report("start_cores_others", byWhom.join(", "));
    report("start_cores_korvel",
           QString("%1 (%2)").arg(cores(ProcessStats::cpuOfThreads(threadsBefore, threadsAfter, {""})),
                                  ProcessStats::busiestThreads(threadsBefore, threadsAfter, allLiveS, 5).join(", ")));

    if (mode == "idle" && allLive && !stopSignal) {
        waitUntil([] { return false; }, 3000);
        QList<YuvFboItem *> items = videoItems(window);
        report("video_items", QString::number(items.size()));
        report("video_items_shown",
               QString::number(std::count_if(items.begin(), items.end(), [](YuvFboItem *i) { return i->isShown(); })));
        reportWindow("live", measure(window, windowMs));

        group()->stopAllDevices();
        if (!waitUntil([&] { return std::none_of(devices.begin(), devices.end(),
                                                 [](Device *d) { return d->running(); }); }, 60000))
            err << "bench_app: not every phone stopped" << Qt::endl;
        waitUntil([] { return false; }, 3000);
        reportWindow("stopped", measure(window, windowMs));

        // Clear All removes the phones one after another; measured once the group is empty.
        group()->clearDevices();
        QElapsedTimer clearing;
        clearing.start();
        if (!waitUntil([&] { return group()->devices().isEmpty(); }, 60000))
            err << "bench_app: the group still holds phones after Clear All" << Qt::endl;
        report("clear_all_s", fixed(clearing.elapsed() / 1000.0, 2));
        waitUntil([] { return false; }, 3000);
        report("video_items_after_clear", QString::number(videoItems(window).size()));
        report("phones_in_group_after_clear", QString::number(group()->devices().size()));
        reportWindow("cleared", measure(window, windowMs));
    } else {
        group()->stopAllDevices();
        waitUntil([&] { return std::none_of(devices.begin(), devices.end(), [](Device *d) { return d->running(); }); },
                  60000);
    }
    return stopSignal ? 130 : (allLive ? 0 : 1);
}
