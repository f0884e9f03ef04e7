#include "adbclient.h"
#include "adbpool.h"
#include "appowned.h"
#include "deviceactions.h"
#include "audiodecoder.h"
#include "controller.h"
#include "device.h"
#include "devicegroup.h"
#include "framehandoff.h"
#include "groupoperation.h"
#include "mediarecorder.h"
#include "packetsink.h"
#include "phonefixture.h"
#include "safefilename.h"
#include "scrcpyserver.h"
#include "screenshotwriter.h"
#include "serverparams.h"
#include "videodecoder.h"

#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

namespace {

// What FFmpeg's own ffprobe finds in a file: complaints, codecs, length, whether every stream's
// times rise, and whether the video starts with a key frame.
struct Probe
{
    QByteArray errors;
    QStringList codecs;
    double duration = 0;
    bool timesRise = true;
    bool keyFirst = false;
};

Probe probe(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start("ffprobe", {"-v", "error", "-show_entries", "stream=codec_name:format=duration:packet=stream_index,pts,flags",
                              "-of", "json", path});
    if (!ffprobe.waitForFinished(30000))
        return {"ffprobe did not finish"};
    Probe result{ffprobe.readAllStandardError()};
    const QJsonObject root = QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object();
    for (const QJsonValue &stream : root.value("streams").toArray())
        result.codecs << stream["codec_name"].toString();
    result.duration = root.value("format")["duration"].toString().toDouble();
    QMap<int, double> last;
    for (const QJsonValue &packet : root.value("packets").toArray()) {
        const int stream = packet["stream_index"].toInt();
        if (!last.contains(stream) && result.codecs.value(stream) == "h264")
            result.keyFirst = packet["flags"].toString().startsWith('K');
        result.timesRise = result.timesRise && (!last.contains(stream) || packet["pts"].toDouble() > last[stream]);
        last[stream] = packet["pts"].toDouble();
    }
    result.codecs.sort();
    return result;
}

constexpr double ToneHz = 440.0;

// The tone's frequency in one channel's 48 kHz samples, from its rising zero crossings; 0 with
// less than a quarter of a second between the first and the last.
double toneFrequency(const QList<float> &samples)
{
    qsizetype first = -1, last = -1, crossings = 0;
    for (qsizetype i = 1; i < samples.size(); ++i) {
        if (samples[i - 1] < 0 && samples[i] >= 0) {
            first = first < 0 ? i : first;
            last = i;
            ++crossings;
        }
    }
    return last - first < 48000 / 4 ? 0 : (crossings - 1) * 48000.0 / double(last - first);
}

// The left channel of interleaved stereo s16 PCM.
QList<float> leftChannel(const QByteArray &pcm)
{
    const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData());
    QList<float> left;
    for (qsizetype i = 0; i < pcm.size() / 4; ++i)
        left << samples[2 * i];
    return left;
}

} // namespace

// A Device mirroring simulated phones through Debian's real adb: its session, what survives a
// failure, and the media it saves and plays.
class TestDeviceSession : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_screenshots;
    QTemporaryDir m_videos;
    QTemporaryDir m_pulseDir{QDir::tempPath() + "/kvpa-XXXXXX"};
    QProcess m_pulse;

    // A device of the group on the phone (a new one when null), its pictures at most maxSize long.
    Device *makeDevice(DeviceGroup &group, PhoneSimProcess *&phone, QSize size = {720, 1600}, int maxSize = 320,
                       const QStringList &phoneArgs = {})
    {
        phone = phone ? phone : m_fixture->addPhone(size, phoneArgs);
        if (!phone) {
            qWarning("%s", qPrintable(m_fixture->error()));
            return nullptr;
        }
        auto *device = new Device(nullptr, phone->serial());
        device->serverParamsSmallView()->setMaxSize(maxSize);
        device->serverParamsSmallView()->setMaxFps(30);
        group.appendDevice(device);
        return device;
    }
    // A running session with sound on a new, animated phone.
    Device *startWithSound(DeviceGroup &group, PhoneSimProcess *&phone, const QStringList &phoneArgs = {})
    {
        Device *device = makeDevice(group, phone, {1080, 2400}, 400, QStringList{"--animate"} + phoneArgs);
        if (device) {
            device->serverParamsSmallView()->setAudio(true);
            device->startScrcpySession();
        }
        return device;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        // A null sink stands in for the speakers; it must be known before the first audio output opens.
        const QString dir = m_pulseDir.path();
        QVERIFY(QDir().mkpath(dir + "/runtime"));
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", dir);
        env.insert("XDG_RUNTIME_DIR", dir + "/runtime");
        m_pulse.setProcessEnvironment(env);
        m_pulse.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_pulse.start("pulseaudio", {"-n", "--daemonize=no", "--system=false", "--exit-idle-time=-1", "--disallow-exit",
                                     "--use-pid-file=false", "--disable-shm=yes", "--log-target=stderr", "--log-level=error",
                                     "-L", "module-native-protocol-unix socket=" + dir + "/runtime/native auth-anonymous=1",
                                     "-L", "module-null-sink sink_name=korvel_test rate=48000 channels=2"});
        QVERIFY2(m_pulse.waitForStarted(), "pulseaudio did not start");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(dir + "/runtime/native"), 10000);
        qputenv("PULSE_SERVER", ("unix:" + dir + "/runtime/native").toUtf8());

        m_fixture = std::make_unique<PhoneFixture>();
        ScreenshotWriter::setFolder(m_screenshots.path());
        Device::setRecordingFolder(m_videos.path());
        // View switches wait between adb steps; a tenth of the time keeps the test short.
        Device::setStepDelay(100);
    }

    void cleanupTestCase()
    {
        m_fixture.reset();
        m_pulse.terminate();
        m_pulse.waitForFinished(5000);
    }

    void sessionMirrorsThePhoneAndSavesScreenshots()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400}, 800);
        QVERIFY(device);
        QSignalSpy messages(device, &Device::deviceMessage);
        device->takeScreenshot();
        QCOMPARE(messages.value(0), (QVariantList{"Not Connected", QVariant::fromValue(MessageKind::Error), 2000}));
        device->startScrcpySession();
        QVERIFY(device->running());
        // Longest side 800, both sides multiples of 8, as the phone scales its screen.
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize(), QSize(360, 800), 15000);
        QCOMPARE(phone->journal("server_start").size(), 1);

        device->takeScreenshot();
        QVERIFY(device->isScreenShotting());
        device->takeScreenshot(); // ignored while the first one runs
        QTRY_VERIFY_WITH_TIMEOUT(!device->isScreenShotting(), 10000);
        QCOMPARE(messages.size(), 2);
        QCOMPARE(messages.at(1), (QVariantList{"Screenshot Saved", QVariant::fromValue(MessageKind::Success), 2000}));
        // Named after the network serial, its colon made safe.
        QVERIFY(phone->serial().contains(':'));
        const QStringList saved =
            QDir(m_screenshots.path()).entryList({SafeFileName::make(phone->serial()) + "_*.jpg"});
        QCOMPARE(saved.size(), 1);
        QCOMPARE(QImageReader(m_screenshots.filePath(saved.first())).size(), QSize(360, 800));

        device->stopScrcpySession();
        QVERIFY(!device->running());
        QTRY_VERIFY_WITH_TIMEOUT(!phone->journal("server_stop").isEmpty(), 10000);
        QCOMPARE(group.deviceCount(), 1);
    }

    void oneServerPerSessionAndStoppingOneLeavesTheOther()
    {
        // Two sessions on one phone, as two Korvel instances (or two PCs) would hold them.
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *first = makeDevice(group, phone);
        QVERIFY(first);
        DeviceGroup otherGroup;
        Device *second = makeDevice(otherGroup, phone);
        second->videoFrames()->addWatcher();
        QSignalSpy running(first, &Device::runningChanged);
        first->startScrcpySession();
        ScrcpyServer *server = first->server();
        first->startScrcpySession();
        QCOMPARE(first->server(), server);
        QCOMPARE(running.count(), 1);
        // Launched after the ignored start: once it streams, a second server of the first would be there.
        second->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(first->videoFrames()->latest() && second->videoFrames()->latest(), 20000);
        QCOMPARE(phone->journal("server_start").size(), 2);

        first->stopScrcpySession();
        QTRY_COMPARE_WITH_TIMEOUT(phone->journal("server_stop").size(), 1, 10000);
        // The other session's server is untouched and still streams.
        const int published = second->videoFrames()->framesPublished();
        second->controller()->resetVideo();
        QTRY_VERIFY_WITH_TIMEOUT(second->videoFrames()->framesPublished() > published, 10000);
        QVERIFY(second->running());
        QCOMPARE(phone->journal("server_stop").size(), 1);
        second->stopScrcpySession();
        second->videoFrames()->removeWatcher();
    }

    // Phones ending together queue their tear-downs on the adb threads; the application's end
    // carries out every one of them instead of dropping those still queued.
    void endingTheApplicationStopsEveryPhonesServer()
    {
        // One adb thread: the tear-downs queue as a crowd of phones' would on all of them.
        AdbPool::instance()->setMaxThreadCount(1);
        DeviceGroup group;
        QList<PhoneSimProcess *> phones(3, nullptr);
        QList<Device *> devices;
        for (PhoneSimProcess *&phone : phones) {
            devices << makeDevice(group, phone);
            QVERIFY(devices.last());
            devices.last()->startScrcpySession();
        }
        for (PhoneSimProcess *phone : phones)
            QTRY_COMPARE_WITH_TIMEOUT(phone->journal("server_start").size(), 1, 20000);

        for (Device *device : devices)
            device->stopScrcpySession();
        AppOwnedBase::endAll();
        for (PhoneSimProcess *phone : phones) {
            QStringList shell;
            for (const QJsonObject &line : phone->journal("shell"))
                shell << line.value("command").toString();
            QCOMPARE(shell.filter(QRegularExpression("^pkill -f scid=")).size(), 1);
            const QList<QJsonObject> tunnels = phone->journal("reverse");
            QCOMPARE(std::count_if(tunnels.cbegin(), tunnels.cend(),
                                   [](const QJsonObject &line) { return line.value("action") == "killforward"; }),
                     1);
        }
    }

    void hiddenPhonesAreNeitherDecodedNorHeardAndShownOnesGetAFreshPicture()
    {
        struct : PacketSink
        {
            std::atomic_int count{0};
            void pushPacket(const AVPacket *) override { ++count; }
        } packets;
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {720, 1600}, 400, {"--animate"});
        QVERIFY(device);
        device->addVideoPacketProbe(&packets);
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher();
        device->serverParamsSmallView()->setAudio(true);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && frames->framesPublished() > 0 && device->audioDecoder(), 15000);
        std::atomic_int heard{0};
        connect(device->audioDecoder(), &AudioDecoder::frameDecoded, device->audioDecoder(), [&heard] { ++heard; },
                Qt::DirectConnection);
        int before = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() >= before + 5, 10000);

        // Nobody watches: the moving picture's packets keep coming; at most the one in flight is decoded.
        frames->removeWatcher();
        before = frames->framesPublished();
        const int arrived = packets.count;
        QTRY_VERIFY_WITH_TIMEOUT(packets.count >= arrived + 10, 10000);
        QVERIFY2(frames->framesPublished() <= before + 1, qPrintable(QString::number(frames->framesPublished() - before)));
        // By now the pause has long reached the media thread: no sound is decoded either.
        const int heardPaused = heard;
        QTRY_VERIFY_WITH_TIMEOUT(packets.count >= arrived + 20, 10000);
        QCOMPARE(heard, heardPaused);

        // Shown again: the phone is asked for a key frame and a new picture comes at once.
        const auto resets = [&] { return phone->controlMessages("ResetVideo").size(); };
        const auto resetsBefore = resets();
        before = frames->framesPublished();
        frames->addWatcher();
        QTRY_COMPARE_WITH_TIMEOUT(resets(), resetsBefore + 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > before && heard > heardPaused, 10000);
        device->stopScrcpySession();
        frames->removeWatcher();
    }

    void restartsLeaveNoDecoderBehind()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone);
        QVERIFY(device);
        const int decoders = VideoDecoder::liveInstances();
        const int contexts = VideoDecoder::liveCodecContexts();
        for (int cycle = 0; cycle < 50; ++cycle) {
            device->startScrcpySession();
            QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 15000);
            QCOMPARE(VideoDecoder::liveInstances(), decoders + 1);
            device->stopScrcpySession();
            QCOMPARE(VideoDecoder::liveInstances(), decoders);
            QCOMPARE(VideoDecoder::liveCodecContexts(), contexts);
        }
    }

    void hungPushNeitherFreezesTheWindowNorOtherPhones()
    {
        // The server file creeps to this phone at one byte a second: its launch times out.
        AdbClient::setTimeouts(30000, 3000);
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *hung = makeDevice(group, phone, {720, 1600}, 320, {"--slow-sync", "1"});
        QVERIFY(hung);
        PhoneSimProcess *others[3] = {};
        for (PhoneSimProcess *&other : others)
            QVERIFY(makeDevice(group, other));
        // A watchdog on the GUI thread: the longest gap between its ticks.
        QElapsedTimer sinceTick;
        qint64 longestGap = 0;
        QTimer watchdog;
        connect(&watchdog, &QTimer::timeout, this, [&] { longestGap = std::max(longestGap, sinceTick.restart()); });
        sinceTick.start();
        watchdog.start(10);

        QSignalSpy failed(hung, &Device::scrcpyError);
        group.startAllDevices();
        for (Device *device : group.devices().mid(1))
            QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 20000);
        QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, 20000);
        QVERIFY2(failed.at(0).at(0).toString().contains("timed out"), qPrintable(failed.at(0).at(0).toString()));
        watchdog.stop();
        QVERIFY2(longestGap < 500, qPrintable(QString("the event loop stalled for %1 ms").arg(longestGap)));
        QCOMPARE(group.deviceCount(), 4);
        AdbClient::setTimeouts(30000, 300000);
        for (Device *device : group.devices())
            device->stopScrcpySession();
    }

    // The server killed on the phone, then the phone unplugged with a recording running, then back.
    void lostServerOrPhoneKeepsTheDeviceAndItsRecording()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        QPointer<Device> device = startWithSound(group, phone);
        QVERIFY(device);
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
        QCOMPARE(phone->ctl({"kill-server"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!device->running(), 15000);
        // It starts again, and by then anything that dropped the phone would have done so.
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
        QCOMPARE(phone->journal("server_start").size(), 2);
        QCOMPARE(group.devices(), QList<Device *>{device});

        QSignalSpy messages(device, &Device::deviceMessage);
        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Started", QVariant::fromValue(MessageKind::Success), 2000}), 10000);
        const QString path = device->videoRecorder()->filePath();
        // A second of the stream goes to the recorder before the phone goes.
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher();
        const int seen = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() >= seen + 30, 20000);
        const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
        QCOMPARE(phone->ctl({"vanish"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(device->offline(), 30000);
        QVERIFY(!device->running());
        QVERIFY(device->offlineSince() >= before && device->offlineSince() <= QDateTime::currentDateTime());
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Stopped", QVariant::fromValue(MessageKind::Success), 2000}), 10000);
        const Probe result = probe(path);
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.codecs, (QStringList{"h264", "opus"}));
        QVERIFY(result.duration > 0);

        // Plugged in again: the session starts by itself and streams.
        const int published = frames->framesPublished();
        QCOMPARE(phone->ctl({"return"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!device->offline(), 40000);
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > published, 20000);
        QCOMPARE(phone->journal("server_start").size(), 3);
        QCOMPARE(group.deviceCount(), 1);
        device->stopScrcpySession();
        frames->removeWatcher();
    }

    void killedAdbServerLeavesEveryPhoneOfflineUntilItIsBack()
    {
        DeviceGroup group;
        PhoneSimProcess *phones[2] = {};
        QList<QPointer<Device>> devices{makeDevice(group, phones[0]), makeDevice(group, phones[1])};
        QVERIFY(devices[0] && devices[1]);
        group.startAllDevices();
        for (const QPointer<Device> &device : devices)
            QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 20000);

        m_fixture->adb().killServer();
        for (const QPointer<Device> &device : devices)
            QTRY_VERIFY_WITH_TIMEOUT(device && device->offline(), 20000);
        QCOMPARE(group.deviceCount(), 2);
        // Korvel brings adb back and reconnects the phones; every session streams again.
        for (const QPointer<Device> &device : devices) {
            QTRY_VERIFY_WITH_TIMEOUT(!device->offline(), 60000);
            QTRY_VERIFY_WITH_TIMEOUT(device->running() && device->videoFrames()->latest() != nullptr, 30000);
        }
        for (const QPointer<Device> &device : devices)
            device->stopScrcpySession();
    }

    void missingServerFileKeepsThePhone()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone);
        QVERIFY(device);
        const QByteArray previous = qgetenv("KORVEL_SCRCPY_SERVER");
        qputenv("KORVEL_SCRCPY_SERVER", "/nonexistent/scrcpy-server");
        QSignalSpy messages(device, &Device::deviceMessage);
        device->startScrcpySession();
        qputenv("KORVEL_SCRCPY_SERVER", previous);
        QVERIFY(!device->running());
        QCOMPARE(messages.count(), 1);
        const QString text = messages.at(0).at(0).toString();
        QVERIFY2(text.contains("/nonexistent/scrcpy-server") && text.contains("3.3.1"), qPrintable(text));
        QCOMPARE(messages.at(0).at(1).value<MessageKind::Kind>(), MessageKind::Error);
        // With the file back the phone streams; only that start pushed anything.
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 15000);
        QCOMPARE(phone->journal("push").size(), 1);
        QCOMPARE(group.deviceCount(), 1);
        device->stopScrcpySession();
    }

    void detailsCommandsAndWifiSwitch()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *usbDevice = makeDevice(group, phone, {1080, 2340}, 320, {"--model", "Galaxy Test"});
        QVERIFY(usbDevice);
        QSignalSpy address(usbDevice, &Device::ipAddressChanged);
        usbDevice->refreshAddressAndDetails();
        QTRY_COMPARE_WITH_TIMEOUT(address.count(), 1, 15000);
        QCOMPARE(usbDevice->ipAddress(), phone->wifiAddress());
        QCOMPARE(usbDevice->deviceInfo().model, QString("Galaxy Test"));
        QCOMPARE(usbDevice->deviceInfo().screen_size, QSize(1080, 2340));

        // Commands run line by line in the phone's one row, blank lines skipped, failures in place.
        GroupOperation *commands = usbDevice->actions()->executeADBCommand("shell echo first\n\n   shell   pwd  \nshell nosuchcommand");
        QTRY_VERIFY_WITH_TIMEOUT(!commands->running(), 15000);
        QCOMPARE(commands->state(0), GroupOperation::Failed);
        QCOMPARE(commands->output(0), QString("first\n/\n/system/bin/sh: nosuchcommand: inaccessible or not found\n"));

        QSignalSpy messages(usbDevice, &Device::deviceMessage);
        usbDevice->actions()->setWiFiConnection();
        QTRY_COMPARE_WITH_TIMEOUT(messages.value(0), (QVariantList{"WiFi connection enabled", QVariant::fromValue(MessageKind::Success), 3000}), 20000);
        const QString wifiSerial = phone->wifiAddress() + ":5555";
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(wifiSerial), 10000);
        QCOMPARE(group.deviceCount(), 1);

        // Back to USB mode: the phone restarts its adb side as a real one does.
        usbDevice->actions()->setUSBConnection();
        QTRY_VERIFY(!phone->journal("usb").isEmpty());

        // The phone over Wi-Fi is a device of its own (adb reconnects it after the restart);
        // disconnecting it takes only that address out of adb and the device out of the group.
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(wifiSerial) || m_fixture->adb().listed(wifiSerial, "offline"), 10000);
        auto *wifiDevice = new Device(nullptr, wifiSerial);
        group.appendDevice(wifiDevice);
        QSignalSpy removed(&group, &DeviceGroup::deviceRemovedFromGroup);
        wifiDevice->actions()->disconnectWiFi();
        QTRY_COMPARE_WITH_TIMEOUT(removed.count(), 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->adb().listed(wifiSerial), 10000);
        QCOMPARE(group.deviceCount(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(usbDevice->adbConnectionSerial()), 10000);

        // A phone that adb does not know cannot switch.
        Device unknown(nullptr, "127.0.0.1:1");
        QSignalSpy failed(&unknown, &Device::deviceMessage);
        unknown.actions()->setWiFiConnection();
        QTRY_COMPARE_WITH_TIMEOUT(failed.value(0), (QVariantList{"Failed to tcpip", QVariant::fromValue(MessageKind::Error), 3000}), 10000);
    }
    void recordingIsAPlayableFile_data()
    {
        QTest::addColumn<bool>("audio");
        QTest::addColumn<QStringList>("codecs");
        QTest::addColumn<QString>("nickname");
        QTest::newRow("video and sound") << true << QStringList{"h264", "opus"} << "desk";
        QTest::newRow("video only, nickname with a slash") << false << QStringList{"h264"} << "Rack A/12";
    }

    void recordingIsAPlayableFile()
    {
        QFETCH(bool, audio);
        QFETCH(QStringList, codecs);
        QFETCH(QString, nickname);
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400}, 400, {"--animate"});
        QVERIFY(device);
        device->updateNickName(nickname);
        device->serverParamsSmallView()->setAudio(audio);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
        MediaRecorder *recorder = device->videoRecorder();
        QSignalSpy messages(device, &Device::deviceMessage);

        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Started", QVariant::fromValue(MessageKind::Success), 2000}), 10000);
        QVERIFY(recorder->isRecording());
        QElapsedTimer recorded;
        recorded.start();
        // The length of the recording is the thing under test.
        QTRY_VERIFY_WITH_TIMEOUT(recorded.elapsed() >= 3000, 10000);
        device->stopRecord();
        const double seconds = recorded.elapsed() / 1000.0;
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Stopped", QVariant::fromValue(MessageKind::Success), 2000}), 10000);
        QVERIFY(messages.contains(QVariantList{"Stop Recording", QVariant::fromValue(MessageKind::Info), 2000}));
        QTRY_VERIFY(!recorder->isRecording());

        const QFileInfo file(recorder->filePath());
        QCOMPARE(file.absolutePath(), QFileInfo(m_videos.path()).absoluteFilePath());
        // Named after the phone's nickname and serial, made safe for the file system.
        QVERIFY2(file.fileName().startsWith(SafeFileName::make(nickname + "_" + device->adbConnectionSerial()) + "_")
                     && file.suffix() == "mkv", qPrintable(file.fileName()));
        const Probe result = probe(file.filePath());
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.codecs, codecs);
        QVERIFY2(qAbs(result.duration - seconds) <= seconds * 0.1,
                 qPrintable(QString("%1 s in the file, %2 s recorded").arg(result.duration).arg(seconds)));
        QVERIFY(result.timesRise);
        QVERIFY(result.keyFirst);
        device->stopScrcpySession();
    }

    // What the decoder gives is 48 kHz stereo carrying the phone's tone, and the tone is heard.
    void soundIsDecodedAndReachesTheSpeakers()
    {
        QTemporaryDir dir;
        const QString heard = dir.filePath("monitor.raw");
        QProcess parec;
        parec.start("parec", {"--device=korvel_test.monitor", "--format=s16le", "--rate=48000", "--channels=2",
                              "--raw", "--latency-msec=20", heard});
        QVERIFY(parec.waitForStarted());
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = startWithSound(group, phone);
        QVERIFY(device);
        device->videoFrames()->addWatcher(); // on screen, so it is heard
        QTRY_VERIFY_WITH_TIMEOUT(device->audioDecoder(), 15000);
        QMutex mutex;
        QSet<QString> formats;
        QList<float> decoded;
        connect(device->audioDecoder(), &AudioDecoder::frameDecoded, device->audioDecoder(), [&](AVFrame *frame) {
            QMutexLocker lock(&mutex);
            formats << QString("%1 Hz, %2 channels, %3").arg(frame->sample_rate).arg(frame->ch_layout.nb_channels)
                           .arg(av_get_sample_fmt_name(AVSampleFormat(frame->format)));
            // Planar float (checked below): the first plane is the left channel.
            const auto *left = reinterpret_cast<const float *>(frame->extended_data[0]);
            decoded.append(QList<float>(left, left + frame->nb_samples));
        }, Qt::DirectConnection);
        const auto decodedFrequency = [&] {
            QMutexLocker lock(&mutex);
            return toneFrequency(decoded);
        };
        QTRY_VERIFY_WITH_TIMEOUT(qAbs(decodedFrequency() - ToneHz) <= ToneHz * 0.02, 15000);
        {
            QMutexLocker lock(&mutex);
            QCOMPARE(formats, QSet<QString>{"48000 Hz, 2 channels, fltp"});
        }
        const auto frequency = [&heard] {
            QFile file(heard);
            return file.open(QIODevice::ReadOnly) ? toneFrequency(leftChannel(file.readAll())) : 0.0;
        };
        QTRY_VERIFY_WITH_TIMEOUT(qAbs(frequency() - ToneHz) <= ToneHz * 0.02, 15000);
        device->stopScrcpySession();
        device->videoFrames()->removeWatcher();
        parec.terminate();
        parec.waitForFinished(5000);
    }

    void soundAndRecordingFailuresLeaveTheVideoGoing_data()
    {
        QTest::addColumn<QString>("audio");
        QTest::addColumn<QString>("message");
        QTest::newRow("Android 10") << "disabled" << "Audio is not available on this phone (Android 11 or later)";
        QTest::newRow("capture failed") << "error" << "Audio capture failed on this phone";
    }

    // A phone without sound, recording into a file where a folder should be: both are reported,
    // and the picture keeps coming.
    void soundAndRecordingFailuresLeaveTheVideoGoing()
    {
        QFETCH(QString, audio);
        QFETCH(QString, message);
        QTemporaryDir dir;
        QFile blocker(dir.filePath("not-a-folder"));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        Device::setRecordingFolder(blocker.fileName() + "/Videos");
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = startWithSound(group, phone, {"--audio", audio});
        QVERIFY(device);
        QSignalSpy messages(device, &Device::deviceMessage);
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher(); // as a view on screen: every picture is decoded
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{message, QVariant::fromValue(MessageKind::Error), 5000}), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(device->controller(), 20000);
        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Failed", QVariant::fromValue(MessageKind::Error), 5000}), 10000);
        Device::setRecordingFolder(m_videos.path());
        QVERIFY(!device->videoRecorder()->isRecording());
        const int seen = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > seen + 3, 10000);
        QVERIFY(device->running());
        device->stopScrcpySession();
        frames->removeWatcher();
    }
};

QTEST_MAIN(TestDeviceSession)
#include "tst_devicesession.moc"
