#include "adbclient.h"
#include "appconfig.h"
#include "controller.h"
#include "device.h"
#include "devicegroup.h"
#include "framehandoff.h"
#include "packetsink.h"
#include "phonefixture.h"
#include "scrcpyserver.h"
#include "serverparams.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QImageReader>
#include <QtTest>

// A Device mirroring simulated phones through Debian's real adb.
class TestDeviceSession : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_screenshots;

    // A device of the group on a new phone; full-size pictures when maxSize is 0.
    Device *makeDevice(DeviceGroup &group, PhoneSimProcess *&phone, QSize size = {720, 1600}, int maxSize = 320,
                       const QStringList &phoneArgs = {})
    {
        phone = m_fixture->addPhone(size, phoneArgs);
        if (!phone) {
            qWarning("%s", qPrintable(m_fixture->error()));
            return nullptr;
        }
        auto *device = new Device(nullptr, &group, phone->serial());
        device->serverParamsSmallView()->setMaxSize(maxSize);
        device->serverParamsSmallView()->setMaxFps(30);
        group.appendDevice(device);
        return device;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        AppConfig::instance()->setScreenshotSavePath(m_screenshots.path());
        // View switches wait between adb steps; a tenth of the time keeps the test short.
        Device::setStepDelay(100);
    }

    void cleanupTestCase()
    {
        m_fixture.reset();
        AppConfig::instance()->reset();
    }

    void sessionMirrorsThePhone()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400}, 800);
        QVERIFY(device);
        device->startScrcpySession();
        QVERIFY(device->running());
        // Longest side 800, both sides multiples of 8, as the phone scales its screen.
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize(), QSize(360, 800), 15000);
        QCOMPARE(phone->journal("server_start").size(), 1);
        device->stopScrcpySession();
        QVERIFY(!device->running());
        QTRY_VERIFY_WITH_TIMEOUT(!phone->journal("server_stop").isEmpty(), 10000);
        QCOMPARE(group.deviceCount(), 1);
    }

    void screenshotIsSavedAsJpeg()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400}, 0);
        QVERIFY(device);
        QSignalSpy messages(device, &Device::deviceMessage);
        device->takeScreenshot();
        QCOMPARE(messages.value(0), (QVariantList{"Not Connected", "error", 2000}));

        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->frameSize() == QSize(1080, 2400), 20000);
        messages.clear();
        device->takeScreenshot();
        QVERIFY(device->isScreenShotting());
        device->takeScreenshot(); // ignored while the first one runs
        QTRY_VERIFY_WITH_TIMEOUT(!device->isScreenShotting(), 10000);
        QCOMPARE(messages.count(), 1);
        QCOMPARE(messages.at(0), (QVariantList{"Screenshot Saved", "success", 2000}));
        const QStringList saved = QDir(m_screenshots.path()).entryList({phone->serial() + "_*.jpg"});
        QCOMPARE(saved.size(), 1);
        QImageReader reader(m_screenshots.filePath(saved.first()));
        QCOMPARE(reader.format(), QByteArray("jpeg"));
        QCOMPARE(reader.size(), QSize(1080, 2400));
        device->stopScrcpySession();
    }

    void oneServerPerSessionAndStoppingOneLeavesTheOther()
    {
        // Two sessions on one phone, as two Korvel instances (or two PCs) would hold them.
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *first = makeDevice(group, phone);
        QVERIFY(first);
        DeviceGroup otherGroup;
        auto *second = new Device(nullptr, &otherGroup, phone->serial());
        second->serverParamsSmallView()->setMaxSize(320);
        otherGroup.appendDevice(second);
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

    void killedServerStopsTheSessionAndLeavesThePhone()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone);
        QVERIFY(device);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->frameSize().isValid(), 15000);
        QCOMPARE(phone->ctl({"kill-server"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!device->running(), 15000);
        // It starts again, and by then anything that dropped the phone would have done so.
        device->startScrcpySession();
        QTRY_COMPARE_WITH_TIMEOUT(phone->journal("server_start").size(), 2, 15000);
        QCOMPARE(group.devices(), QList<Device *>{device});
        device->stopScrcpySession();
    }

    void hiddenPhonesPauseDecodingAndShownOnesGetAFreshPicture()
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
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && frames->framesPublished() > 0, 15000);
        int before = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() >= before + 5, 10000);

        // Nobody watches: the moving picture's packets keep coming; at most the one in flight is decoded.
        frames->removeWatcher();
        before = frames->framesPublished();
        const int arrived = packets.count;
        QTRY_VERIFY_WITH_TIMEOUT(packets.count >= arrived + 10, 10000);
        QVERIFY2(frames->framesPublished() <= before + 1, qPrintable(QString::number(frames->framesPublished() - before)));

        // Shown again: the phone is asked for a key frame and a new picture comes at once.
        const auto resets = [phone] {
            const QList<QJsonObject> lines = phone->journal("control");
            return std::count_if(lines.cbegin(), lines.cend(), [](const QJsonObject &l) { return l.value("type").toString() == "ResetVideo"; });
        };
        const auto resetsBefore = resets();
        before = frames->framesPublished();
        frames->addWatcher();
        QTRY_COMPARE_WITH_TIMEOUT(resets(), resetsBefore + 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > before, 10000);
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
        const int contexts = VideoDemuxer::liveCodecContexts();
        for (int cycle = 0; cycle < 50; ++cycle) {
            device->startScrcpySession();
            QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 15000);
            QCOMPARE(VideoDecoder::liveInstances(), decoders + 1);
            device->stopScrcpySession();
            QCOMPARE(VideoDecoder::liveInstances(), decoders);
            QCOMPARE(VideoDemuxer::liveCodecContexts(), contexts);
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
        for (int i = 0; i < 3; ++i)
            QVERIFY(makeDevice(group, phone));
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

    void vanishedPhoneStaysOfflineAndComesBackStreaming()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        QPointer<Device> device = makeDevice(group, phone, {1440, 3200});
        QVERIFY(device);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->frameSize().isValid(), 15000);
        const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
        QCOMPARE(phone->ctl({"vanish"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(device->offline(), 20000);
        QVERIFY(!device->running());
        QVERIFY(device->offlineSince() >= before && device->offlineSince() <= QDateTime::currentDateTime());
        QCOMPARE(group.deviceCount(), 1);

        // Plugged in again: the session starts by itself and streams.
        const int startsBefore = int(phone->journal("server_start").size());
        QCOMPARE(phone->ctl({"return"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!device->offline(), 40000);
        QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 20000);
        QCOMPARE(phone->journal("server_start").size(), startsBefore + 1);
        QCOMPARE(group.deviceCount(), 1);
        device->stopScrcpySession();
    }

    void killedAdbServerLeavesEveryPhoneOfflineUntilItIsBack()
    {
        DeviceGroup group;
        PhoneSimProcess *phone = nullptr;
        QList<QPointer<Device>> devices{makeDevice(group, phone), makeDevice(group, phone)};
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
        QCOMPARE(messages.at(0).at(1).toString(), QString("error"));
        // With the file back the phone streams; only that start pushed anything.
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 15000);
        QCOMPARE(phone->journal("push").size(), 1);
        QCOMPARE(group.deviceCount(), 1);
        device->stopScrcpySession();
    }

    void bigViewSwitchStartsWithItsOwnSize()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400}, 280);
        QVERIFY(device);
        device->serverParamsBigView()->setMaxSize(720);
        // Switching while stopped still starts a session, with the big view's size.
        device->setIsBigView(true);
        QVERIFY(!device->running());
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize(), QSize(328, 720), 15000);
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

        // Commands run line by line, blank lines skipped, failures reported in place.
        const QString output = usbDevice->executeADBCommand("shell echo first\n\n   shell   pwd  \nshell nosuchcommand");
        const QStringList lines = output.split("\n");
        QCOMPARE(lines.mid(0, 2), (QStringList{"first", "/"}));
        QVERIFY2(lines.value(2).startsWith("[error] adb command failed (exit code 127): "), qPrintable(output));
        QVERIFY(output.endsWith("\n"));

        QSignalSpy messages(usbDevice, &Device::deviceMessage);
        usbDevice->setWiFiConnection();
        QTRY_COMPARE_WITH_TIMEOUT(messages.value(0), (QVariantList{"WiFi connection enabled", "success", 3000}), 20000);
        const QString wifiSerial = phone->wifiAddress() + ":5555";
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(wifiSerial), 10000);
        QCOMPARE(group.deviceCount(), 1);

        // Back to USB mode: the phone restarts its adb side as a real one does.
        usbDevice->setUSBConnection();
        QTRY_VERIFY(!phone->journal("usb").isEmpty());

        // The phone over Wi-Fi is a device of its own (adb reconnects it after the restart);
        // disconnecting it takes only that address out of adb and the device out of the group.
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(wifiSerial) || m_fixture->adb().listed(wifiSerial, "offline"), 10000);
        auto *wifiDevice = new Device(nullptr, &group, wifiSerial);
        group.appendDevice(wifiDevice);
        QSignalSpy removed(&group, &DeviceGroup::deviceRemovedFromGroup);
        wifiDevice->disconnectWiFi();
        QTRY_COMPARE_WITH_TIMEOUT(removed.count(), 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->adb().listed(wifiSerial), 10000);
        QCOMPARE(group.deviceCount(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(usbDevice->adbConnectionSerial()), 10000);

        // A phone that adb does not know cannot switch.
        Device unknown(nullptr, &group, "127.0.0.1:1");
        QSignalSpy failed(&unknown, &Device::deviceMessage);
        unknown.setWiFiConnection();
        QTRY_COMPARE_WITH_TIMEOUT(failed.value(0), (QVariantList{"Failed to tcpip", "error", 3000}), 10000);
    }
};

QTEST_MAIN(TestDeviceSession)
#include "tst_devicesession.moc"
