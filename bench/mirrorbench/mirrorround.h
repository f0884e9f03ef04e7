#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class PhoneFixture;

// One measurement: a Device session on each of the fixture's first phones, all in this process, with
// no frame-rate cap. Decode-only, a harness watches every phone's frame handoff; drawn, every phone
// has a YuvFboItem of the grid's cell size in one window, which watches it as in the application.
class MirrorRound
{
public:
    // What each session does besides mirroring, and how the pictures are shown.
    struct Options
    {
        bool audio = false;      // the phone's sound is decoded and played as well
        bool record = false;     // every session records to a Matroska file
        int maxSize = 0;
        int bitRate = 4000000;
        bool drawn = false;
        QSize cellSize{220, 483};
        int columns = 10;
    };

    struct Result
    {
        bool ok = false;
        QString error;
        int phones = 0;
        double seconds = 0;        // wall time of the measured window
        double cpuSeconds = 0;     // this process, all threads, over the window
        double adbCpuSeconds = -1; // the adb server relaying the sockets; -1 if not found
        qint64 packets = 0;        // picture packets that reached the decoders
        qint64 frames = 0;         // pictures presented
        double slowestPhoneFps = 0;
        qint64 packetsWithoutFrame = 0;
        std::vector<qint64> latenciesNs;
        qint64 audioFrames = 0;    // sound frames decoded, all phones, in the window
        qint64 recordedBytes = 0;  // size of the recordings, all phones, whole recording
        bool drawn = false;
        double guiCpuSeconds = 0;     // the main thread over the window
        double renderCpuSeconds = -1; // Qt's render thread and Mesa's llvmpipe threads; drawn only
        double latenessP99Ms = -1;    // a 5 ms timer on the GUI thread
        double rssPerPhoneMb = -1;    // VmRSS growth from before the sessions, per phone
        double firstPictureMedianMs = -1;
        double firstPictureMaxMs = -1;
        qint64 uploads = -1;          // pictures the shown items uploaded in the window; drawn only
        int shownItems = -1;
        QStringList busiestThreads;
    };

    MirrorRound(PhoneFixture &fixture, quint16 adbServerPort, std::function<bool()> stopRequested);

    // Starts the sessions, waits until every phone shows pictures, lets them settle for warmupMs,
    // measures for seconds, then stops every session again, on failure too.
    Result run(int phones, double seconds, int warmupMs, const Options &options);

private:
    // Runs the event loop until done() holds, the timeout passes or a stop is requested.
    bool waitUntil(const std::function<bool()> &done, int timeoutMs);
    // CPU seconds of the adb server listening on the private port, or -1.
    double adbServerCpuSeconds();

    PhoneFixture &m_fixture;
    quint16 m_adbServerPort;
    std::function<bool()> m_stopRequested;
    int m_adbServerPid = -1;
};
