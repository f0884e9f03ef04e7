#include "mirrorround.h"

#include "audiodecoder.h"
#include "device.h"
#include "framehandoff.h"
#include "mediarecorder.h"
#include "devicegroup.h"
#include "phonefixture.h"
#include "phoneprobe.h"
#include "processstats.h"
#include "serverparams.h"
#include "waituntil.h"
#include "yuvfboitem.h"

#include <QDir>
#include <QFileInfo>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <memory>
#include <time.h>
#include <unistd.h>

extern "C" {
#include <libavutil/frame.h>
}

namespace {

struct Session
{
    std::unique_ptr<PhoneProbe> probe = std::make_unique<PhoneProbe>();
    std::unique_ptr<Device> device;
    qint64 startNs = 0;
    int publishedAtStart = 0;
    int decoded = 0;
};

} // namespace

MirrorRound::MirrorRound(PhoneFixture &fixture, quint16 adbServerPort, std::function<bool()> stopRequested)
    : m_fixture(fixture)
    , m_adbServerPort(adbServerPort)
    , m_stopRequested(std::move(stopRequested))
{
}

bool MirrorRound::waitUntil(const std::function<bool()> &done, int timeoutMs)
{
    return ::waitUntil(done, timeoutMs, m_stopRequested);
}

double MirrorRound::adbServerCpuSeconds()
{
    // The server runs as "adb -L tcp:PORT fork-server server ..."; found once, then read directly.
    const QByteArray listen = "tcp:" + QByteArray::number(m_adbServerPort);
    if (m_adbServerPid < 0) {
        const QStringList pids = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString &pid : pids) {
            QFile cmdline("/proc/" + pid + "/cmdline");
            if (!cmdline.open(QIODevice::ReadOnly))
                continue;
            const QList<QByteArray> args = cmdline.readAll().split('\0');
            if (args.contains("fork-server") && args.contains(listen)) {
                m_adbServerPid = pid.toInt();
                break;
            }
        }
    }
    if (m_adbServerPid < 0)
        return -1;
    QFile stat(QString("/proc/%1/stat").arg(m_adbServerPid));
    if (!stat.open(QIODevice::ReadOnly)) {
        m_adbServerPid = -1;
        return -1;
    }
    // Fields after the parenthesised name: state is field 3, utime and stime are fields 14 and 15.
    const QByteArray text = stat.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        return -1;
    const double ticks = double(sysconf(_SC_CLK_TCK));
    return (fields.at(11).toDouble() + fields.at(12).toDouble()) / ticks;
}

MirrorRound::Result MirrorRound::run(int phoneCount, double seconds, int warmupMs, const Options &options)
{
    Result result;
    result.drawn = options.drawn;
    const auto &phones = m_fixture.phones();
    result.phones = std::min(phoneCount, int(phones.size()));
    const qint64 rssBefore = ProcessStats::residentBytes();

    // Drawn: one window holding the grid, as many cells a row as the options say.
    std::unique_ptr<QQuickWindow> window;
    std::vector<YuvFboItem *> items;
    if (options.drawn) {
        window = std::make_unique<QQuickWindow>();
        const int columns = std::max(1, std::min(options.columns, result.phones));
        const int rows = (result.phones + columns - 1) / columns;
        window->resize(columns * options.cellSize.width(), rows * options.cellSize.height());
        window->setColor(Qt::black);
        window->show();
    }

    std::vector<Session> sessions(size_t(result.phones));
    for (size_t i = 0; i < sessions.size(); ++i) {
        Session &session = sessions[i];
        session.device = std::make_unique<Device>(nullptr, phones[i]->serial());
        Device *device = session.device.get();
        ServerParams *params = device->serverParamsSmallView();
        params->setMaxSize(options.maxSize);
        params->setMaxFps(0);
        params->setBitRate(options.bitRate);
        params->setAudio(options.audio);
        device->addVideoPacketProbe(session.probe.get());
        FrameHandoff *frames = device->videoFrames();
        if (window) {
            auto *item = new YuvFboItem(window->contentItem());
            const int columns = std::max(1, std::min(options.columns, result.phones));
            item->setPosition(QPointF(int(i) % columns * options.cellSize.width(),
                                      int(i) / columns * options.cellSize.height()));
            item->setSize(options.cellSize);
            item->setSource(frames);
            items.push_back(item);
        } else {
            // Watched as by a view on screen, so that every picture is decoded.
            frames->addWatcher();
        }
        // The GUI thread sees each hand-off as a view does.
        PhoneProbe *probe = session.probe.get();
        QObject::connect(frames, &FrameHandoff::frameAvailable, device, [probe, frames] {
            if (const FrameHandoff::Frame frame = frames->latest())
                probe->framePresented(frame->pts);
        });
        session.startNs = PhoneProbe::nowNs();
        device->startScrcpySession();
        if (!device->running()) {
            result.error = "session did not start on " + phones[i]->serial();
            break;
        }
    }

    auto allShowPictures = [&] {
        return std::all_of(sessions.begin(), sessions.end(),
                           [](const Session &s) { return s.probe->framesSinceStart() > 0; });
    };
    if (result.error.isEmpty() && !waitUntil(allShowPictures, 30000 + 2000 * int(sessions.size())))
        result.error = m_stopRequested() ? "stopped" : "not every phone showed a picture within the time limit";

    if (result.error.isEmpty() && options.record) {
        for (Session &s : sessions)
            s.device->startRecord();
        const auto allRecording = [&] {
            return std::all_of(sessions.begin(), sessions.end(),
                               [](const Session &s) { return s.device->videoRecorder()->isRecording(); });
        };
        if (!waitUntil(allRecording, 10000))
            result.error = "not every phone started recording";
    }
    qint64 audioFramesBefore = 0;
    // Counted on the sessions' media threads.
    auto audioFrames = std::make_shared<std::atomic<qint64>>(0);
    if (result.error.isEmpty() && options.audio) {
        const auto allHaveSound = [&] {
            return std::all_of(sessions.begin(), sessions.end(),
                               [](const Session &s) { return s.device->audioDecoder() != nullptr; });
        };
        if (!waitUntil(allHaveSound, 10000))
            result.error = "not every phone opened its sound";
        for (Session &s : sessions) {
            if (AudioDecoder *decoder = s.device->audioDecoder())
                QObject::connect(decoder, &AudioDecoder::frameDecoded, decoder, [audioFrames] { ++*audioFrames; },
                                 Qt::DirectConnection);
        }
    }

    if (result.error.isEmpty()) {
        std::vector<double> firstMs;
        for (const Session &s : sessions)
            firstMs.push_back(double(s.probe->firstPresentedNs() - s.startNs) / 1e6);
        result.firstPictureMedianMs = ProcessStats::percentile(firstMs, 0.5);
        result.firstPictureMaxMs = ProcessStats::percentile(firstMs, 1.0);

        waitUntil([] { return false; }, warmupMs);
        audioFramesBefore = *audioFrames;
        for (Session &s : sessions) {
            s.probe->startCounting();
            s.publishedAtStart = s.device->videoFrames()->framesPublished();
        }
        qint64 uploadsBefore = 0;
        for (const YuvFboItem *item : items)
            uploadsBefore += item->uploads();
        LatenessProbe lateness;
        const ProcessStats::Threads threadsBefore = ProcessStats::threads();
        const double adbBefore = adbServerCpuSeconds();
        const double guiBefore = ProcessStats::mainThreadCpuSeconds();
        const double cpuBefore = ProcessStats::processCpuSeconds();
        QElapsedTimer wall;
        wall.start();
        lateness.start();
        waitUntil([] { return false; }, int(seconds * 1000));
        lateness.stop();
        result.cpuSeconds = ProcessStats::processCpuSeconds() - cpuBefore;
        result.guiCpuSeconds = ProcessStats::mainThreadCpuSeconds() - guiBefore;
        result.seconds = double(wall.nsecsElapsed()) / 1e9;
        const double adbAfter = adbServerCpuSeconds();
        const ProcessStats::Threads threadsAfter = ProcessStats::threads();
        const qint64 rssAfter = ProcessStats::residentBytes();
        result.latenessP99Ms = lateness.p99Ms();
        if (rssBefore > 0 && rssAfter > 0 && result.phones > 0)
            result.rssPerPhoneMb = double(rssAfter - rssBefore) / 1048576.0 / result.phones;
        result.busiestThreads = ProcessStats::busiestThreads(threadsBefore, threadsAfter, result.seconds, 6);
        if (window) {
            result.renderCpuSeconds = ProcessStats::cpuOfThreads(threadsBefore, threadsAfter,
                                                                 {"QSGRenderThread", "llvmpipe"});
            result.uploads = -uploadsBefore;
            result.shownItems = 0;
            for (const YuvFboItem *item : items) {
                result.uploads += item->uploads();
                result.shownItems += item->isShown() ? 1 : 0;
            }
        }
        if (adbBefore >= 0 && adbAfter >= adbBefore)
            result.adbCpuSeconds = adbAfter - adbBefore;
        for (Session &s : sessions) {
            s.probe->stopCounting();
            s.decoded = s.device->videoFrames()->framesPublished() - s.publishedAtStart;
        }
        result.audioFrames = *audioFrames - audioFramesBefore;
        if (m_stopRequested())
            result.error = "stopped";
    }

    result.slowestPhoneFps = -1;
    for (const Session &s : sessions) {
        result.packets += s.probe->packets();
        result.frames += s.decoded;
        result.packetsWithoutFrame += std::max<qint64>(0, s.probe->packets() - s.decoded);
        const auto &latencies = s.probe->latenciesNs();
        result.latenciesNs.insert(result.latenciesNs.end(), latencies.begin(), latencies.end());
        const double fps = result.seconds > 0 ? double(s.decoded) / result.seconds : 0;
        if (result.slowestPhoneFps < 0 || fps < result.slowestPhoneFps)
            result.slowestPhoneFps = fps;
    }
    std::sort(result.latenciesNs.begin(), result.latenciesNs.end());

    QStringList recordings;
    for (Session &s : sessions) {
        if (s.device && options.record) {
            recordings << s.device->videoRecorder()->filePath();
            s.device->stopRecord();
        }
    }
    if (options.record) {
        waitUntil([&] {
            return std::none_of(sessions.begin(), sessions.end(),
                                [](const Session &s) { return s.device && s.device->videoRecorder()->isRecording(); });
        }, 30000);
        for (const QString &path : recordings) {
            result.recordedBytes += QFileInfo(path).size();
            QFile::remove(path);
        }
    }
    for (Session &s : sessions) {
        if (s.device)
            s.device->stopScrcpySession();
    }
    // The items go before the sessions whose handoffs they show.
    for (YuvFboItem *item : items)
        item->setSource(nullptr);
    window.reset();
    // Let the phones see their sockets close before the next round or the ffmpeg reference.
    waitUntil([] { return false; }, 1000);
    sessions.clear();
    result.ok = result.error.isEmpty();
    return result;
}
