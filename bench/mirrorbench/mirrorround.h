#pragma once

#include <QString>

#include <functional>
#include <vector>

class PhoneFixture;

// One measurement: a Device session on each of the fixture's first phones, all in this process, mirrored
// at full size with no frame-rate cap, each one presenting into a YuvFboItem that is never shown.
class MirrorRound
{
public:
    // What each session does besides mirroring.
    struct Options
    {
        bool audio = false;      // the phone's sound is decoded and played as well
        bool record = false;     // every session records to a Matroska file
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
    };

    MirrorRound(PhoneFixture &fixture, quint16 adbServerPort, std::function<bool()> stopRequested);

    // Starts the sessions, waits until every phone shows pictures, lets them settle for warmupMs,
    // measures for seconds, then stops every session again, on failure too.
    Result run(int phones, double seconds, int warmupMs, Options options);
    Result run(int phones, double seconds, int warmupMs) { return run(phones, seconds, warmupMs, Options()); }

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
