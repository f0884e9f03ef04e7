#include "adbclient.h"
#include "appconfig.h"
#include "controller.h"
#include "device.h"
#include "framehandoff.h"
#include "devicegroup.h"
#include "phonefixture.h"
#include "scrcpyserver.h"
#include "videodecoder.h"
#include "videodemuxer.h"
#include "serverparams.h"

#include <QImageReader>
#include <QTcpSocket>
#include <QtTest>

// A Device mirroring simulated phones through Debian's real adb.
class TestDeviceSession : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_screenshots;

    // A device of its own group, on a new phone of the given size; full-size frames when maxSize is 0.
    Device *makeDevice(DeviceGroup &group, PhoneSimProcess *&phone, QSize size, int maxSize = 800, int maxFps = 30,
                       const QStringList &phoneArgs = {})
    {
        phone = m_fixture->addPhone(size, phoneArgs);
        if (!phone) {
            qWarning("%s", qPrintable(m_fixture->error()));
            return nullptr;
        }
        auto *device = new Device(nullptr, &group, phone->serial());
        device->serverParamsSmallView()->setMaxSize(maxSize);
        device->serverParamsSmallView()->setMaxFps(maxFps);
        group.appendDevice(device);
        return device;
    }

    // The roles of the server's connections, in the order they arrive.
    static std::shared_ptr<QStringList> recordSockets(Device *device)
    {
        auto order = std::make_shared<QStringList>();
        ScrcpyServer *server = device->server();
        QObject::connect(server, &ScrcpyServer::videoSocketConnected, server, [order] { *order << "video"; });
        QObject::connect(server, &ScrcpyServer::audioSocketConnected, server, [order] { *order << "audio"; });
        QObject::connect(server, &ScrcpyServer::controlSocketConnected, server, [order] { *order << "control"; });
        return order;
    }

    static int journalCount(PhoneSimProcess *phone, const QString &kind, const QString &type)
    {
        const QList<QJsonObject> lines = phone->journal(kind);
        return int(std::count_if(lines.cbegin(), lines.cend(),
                                 [&type](const QJsonObject &line) { return line.value("type").toString() == type; }));
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

    void sessionMirrorsThePhone_data()
    {
        QTest::addColumn<bool>("audio");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("audio off") << false << QStringList{"video", "control"};
        QTest::newRow("audio on") << true << QStringList{"video", "audio", "control"};
    }

    void sessionMirrorsThePhone()
    {
        QFETCH(bool, audio);
        QFETCH(QStringList, order);
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400});
        QVERIFY(device);
        device->serverParamsSmallView()->setAudio(audio);

        QSignalSpy frames(device->videoFrames(), &FrameHandoff::frameAvailable);
        device->startScrcpySession();
        QVERIFY(device->running());
        const auto sockets = recordSockets(device);
        QTRY_VERIFY_WITH_TIMEOUT(sockets->contains("control"), 15000);
        QCOMPARE(*sockets, order);
        QTRY_VERIFY_WITH_TIMEOUT(frames.count() > 0, 15000);
        // Longest side 800, both sides multiples of 8, as the phone scales its screen.
        QCOMPARE(device->frameSize(), QSize(360, 800));

        const QJsonObject start = phone->journal("server_start").value(0);
        QVERIFY(!start.isEmpty());
        device->stopScrcpySession();
        QVERIFY(!device->running());
        QTRY_VERIFY_WITH_TIMEOUT(!phone->journal("server_stop").isEmpty(), 10000);
        QCOMPARE(group.deviceCount(), 1);
    }

    void screenshotsAreSavedAsJpeg_data()
    {
        QTest::addColumn<QSize>("phoneSize");
        QTest::addColumn<QSize>("imageSize");
        QTest::newRow("portrait kept") << QSize(1080, 2400) << QSize(1080, 2400);
        QTest::newRow("landscape capped at 1920") << QSize(2400, 1080) << QSize(1920, 864);
    }

    void screenshotsAreSavedAsJpeg()
    {
        QFETCH(QSize, phoneSize);
        QFETCH(QSize, imageSize);
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, phoneSize, 0, 10);
        QVERIFY(device);

        QSignalSpy messages(device, &Device::deviceMessage);
        device->takeScreenshot();
        QCOMPARE(messages.count(), 1);
        QCOMPARE(messages.at(0), (QVariantList{"Not Connected", "error", 2000}));

        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->frameSize() == phoneSize, 20000);
        QDir folder(m_screenshots.path());
        const QStringList before = folder.entryList({"*.jpg"});
        messages.clear();
        device->takeScreenshot();
        QVERIFY(device->isScreenShotting());
        device->takeScreenshot(); // ignored while the first one runs
        QTRY_VERIFY_WITH_TIMEOUT(!device->isScreenShotting(), 10000);
        QCOMPARE(messages.count(), 1);
        QCOMPARE(messages.at(0), (QVariantList{"Screenshot Saved", "success", 2000}));

        QStringList added = folder.entryList({"*.jpg"});
        for (const QString &name : before)
            added.removeAll(name);
        QCOMPARE(added.size(), 1);
        const QRegularExpression pattern("^" + QRegularExpression::escape(phone->serial())
                                         + "_\\d{8}_\\d{6}_\\d{4}\\.jpg$");
        QVERIFY2(pattern.match(added.first()).hasMatch(), qPrintable(added.first()));
        QImageReader reader(folder.filePath(added.first()));
        QCOMPARE(reader.format(), QByteArray("jpeg"));
        QCOMPARE(reader.size(), imageSize);
        device->stopScrcpySession();
    }

    void oneServerAtATimeAndAKilledOneLeavesThePhone()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {720, 1600});
        QVERIFY(device);
        QSignalSpy running(device, &Device::runningChanged);
        device->startScrcpySession();
        ScrcpyServer *first = device->server();
        device->startScrcpySession();
        QCOMPARE(device->server(), first);
        QCOMPARE(running.count(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(device->frameSize().isValid(), 15000);
        QTest::qWait(500);
        QCOMPARE(phone->journal("server_start").size(), 1);

        // A server killed on the phone stops the session; the phone stays in its group.
        QCOMPARE(phone->ctl({"kill-server"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!device->running(), 15000);
        QTest::qWait(200);
        QCOMPARE(group.deviceCount(), 1);
        QCOMPARE(group.devices().first(), device);

        // And it starts again.
        device->startScrcpySession();
        QTRY_COMPARE_WITH_TIMEOUT(phone->journal("server_start").size(), 2, 15000);
        device->stopScrcpySession();
    }

    void hiddenPhonesPauseDecodingAndShownOnesGetAFreshPicture()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {720, 1600}, 400, 30, {"--animate"});
        QVERIFY(device);
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher();
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && frames->framesPublished() > 0, 15000);
        // Positive control: watched, the moving picture keeps coming; time five pictures.
        QElapsedTimer clock;
        clock.start();
        int before = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() >= before + 5, 10000);
        const int fivePictures = int(clock.elapsed());

        // Nobody watches: at most the picture in flight is still decoded.
        frames->removeWatcher();
        before = frames->framesPublished();
        QTest::qWaitFor([] { return false; }, 2 * fivePictures);
        QVERIFY2(frames->framesPublished() <= before + 1, qPrintable(QString::number(frames->framesPublished() - before)));

        // Shown again: the phone is asked for a key frame and a new picture comes at once.
        const int resetsBefore = journalCount(phone, "control", "ResetVideo");
        before = frames->framesPublished();
        frames->addWatcher();
        QTRY_COMPARE_WITH_TIMEOUT(journalCount(phone, "control", "ResetVideo"), resetsBefore + 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > before, 10000);
        device->stopScrcpySession();
        frames->removeWatcher();
    }

    void restartsLeaveNoDecoderBehind()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {720, 1600}, 320, 30);
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
        Device *hung = makeDevice(group, phone, {720, 1600}, 320, 30, {"--slow-sync", "1"});
        QVERIFY(hung);
        QList<Device *> others;
        for (int i = 0; i < 3; ++i) {
            PhoneSimProcess *other = nullptr;
            others << makeDevice(group, other, {720, 1600}, 320, 30);
            QVERIFY(others.last());
        }
        // A watchdog on the GUI thread: the longest gap between its ticks.
        QElapsedTimer sinceTick;
        qint64 longestGap = 0;
        QTimer watchdog;
        connect(&watchdog, &QTimer::timeout, this, [&] {
            longestGap = std::max(longestGap, sinceTick.restart());
        });
        sinceTick.start();
        watchdog.start(10);

        QSignalSpy failed(hung, &Device::scrcpyError);
        group.startAllDevices();
        for (Device *device : others)
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
        QList<QPointer<Device>> devices;
        for (int i = 0; i < 4; ++i) {
            PhoneSimProcess *phone = nullptr;
            devices << makeDevice(group, phone, {720, 1600}, 320, 30);
            QVERIFY(devices.last());
        }
        group.startAllDevices();
        for (const QPointer<Device> &device : devices)
            QTRY_VERIFY_WITH_TIMEOUT(device->videoFrames()->latest() != nullptr, 20000);

        m_fixture->adb().killServer();
        for (const QPointer<Device> &device : devices)
            QTRY_VERIFY_WITH_TIMEOUT(device && device->offline(), 20000);
        QCOMPARE(group.deviceCount(), 4);
        // Korvel brings adb back and reconnects the phones; every session streams again.
        for (const QPointer<Device> &device : devices) {
            QTRY_VERIFY_WITH_TIMEOUT(!device->offline(), 60000);
            QTRY_VERIFY_WITH_TIMEOUT(device->running() && device->videoFrames()->latest() != nullptr, 30000);
        }
        for (const QPointer<Device> &device : devices)
            device->stopScrcpySession();
    }

    void stoppingOneSessionLeavesAnotherOnTheSamePhone()
    {
        // Two sessions on one phone, as two Korvel instances (or two PCs) would hold them.
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *first = makeDevice(group, phone, {720, 1600}, 320, 30);
        QVERIFY(first);
        DeviceGroup otherGroup;
        auto *second = new Device(nullptr, &otherGroup, phone->serial());
        second->serverParamsSmallView()->setMaxSize(320);
        otherGroup.appendDevice(second);
        second->videoFrames()->addWatcher();
        first->startScrcpySession();
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

    void missingServerFileKeepsThePhone()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {720, 1600});
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
        QTest::qWait(300);
        QCOMPARE(group.deviceCount(), 1);
        QVERIFY(phone->journal("push").isEmpty());
    }

    void bigViewRestartsWithItsOwnParameters()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2400}, 280, 10);
        QVERIFY(device);
        device->serverParamsBigView()->setMaxSize(720);
        // Switching while stopped still starts a session, with the big view's size.
        device->setIsBigView(true);
        QVERIFY(!device->running());
        QTRY_VERIFY_WITH_TIMEOUT(device->running(), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize(), QSize(328, 720), 15000);
        device->setIsBigView(false);
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize(), QSize(128, 280), 15000);
        device->stopScrcpySession();
    }

    void adbCommandsAddressAndDetails()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {1080, 2340}, 800, 30, {"--model", "Galaxy Test"});
        QVERIFY(device);
        QSignalSpy address(device, &Device::ipAddressChanged);
        device->refreshAddressAndDetails();
        QTRY_COMPARE_WITH_TIMEOUT(address.count(), 1, 15000);
        QCOMPARE(device->ipAddress(), phone->wifiAddress());
        QCOMPARE(device->deviceInfo().model, QString("Galaxy Test"));
        QCOMPARE(device->deviceInfo().screen_size, QSize(1080, 2340));

        // Commands run line by line, blank lines skipped, failures reported in place.
        const QString output = device->executeADBCommand("shell echo first\n\n   shell   pwd  \nshell nosuchcommand");
        const QStringList lines = output.split("\n");
        QCOMPARE(lines.value(0), QString("first"));
        QCOMPARE(lines.value(1), QString("/"));
        QVERIFY2(lines.value(2).startsWith("[error] adb command failed (exit code 127): "), qPrintable(output));
        QVERIFY(output.endsWith("\n"));
    }

    void audioSwitchTakesEffectAtTheNextStart()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *device = makeDevice(group, phone, {720, 1600});
        QVERIFY(device);
        QSignalSpy messages(device, &Device::deviceMessage);
        QSignalSpy audio(device, &Device::isAudioEnabledChanged);
        device->setEnableAudio(true);
        QCOMPARE(messages.value(0), (QVariantList{"Audio Enabled, Need Reconnect", "info", 3000}));
        QCOMPARE(audio.count(), 1);
        QVERIFY(device->isAudioEnabled());
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(!phone->journal("server_start").isEmpty(), 15000);
        QCOMPARE(phone->journal("server_start").first().value("audio").toBool(), true);
        device->setEnableAudio(false);
        QCOMPARE(messages.value(1), (QVariantList{"Audio Disabled, Need Reconnect", "info", 3000}));
        // The running session keeps its streams until it is started again.
        QVERIFY(device->running());
        device->stopScrcpySession();
    }

    void wifiSwitchAndDisconnect()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        Device *usbDevice = makeDevice(group, phone, {1080, 2400});
        QVERIFY(usbDevice);
        QSignalSpy address(usbDevice, &Device::ipAddressChanged);
        usbDevice->refreshAddressAndDetails();
        QTRY_COMPARE_WITH_TIMEOUT(address.count(), 1, 15000);

        QSignalSpy messages(usbDevice, &Device::deviceMessage);
        usbDevice->setWiFiConnection();
        QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 1, 20000);
        QCOMPARE(messages.at(0), (QVariantList{"WiFi connection enabled", "success", 3000}));
        const QString wifiSerial = phone->wifiAddress() + ":5555";
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(wifiSerial), 10000);
        QCOMPARE(group.deviceCount(), 1);

        // Back to USB mode: the phone restarts its adb side as a real one does.
        usbDevice->setUSBConnection();
        QTRY_VERIFY(!phone->journal("usb").isEmpty());

        // The phone over Wi-Fi is a device of its own (adb reconnects it after the restart); disconnecting it takes it out of the group.
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(wifiSerial) || m_fixture->adb().listed(wifiSerial, "offline"), 10000);
        auto *wifiDevice = new Device(nullptr, &group, wifiSerial);
        group.appendDevice(wifiDevice);
        QSignalSpy removed(&group, &DeviceGroup::deviceRemovedFromGroup);
        wifiDevice->disconnectWiFi();
        QTRY_COMPARE_WITH_TIMEOUT(removed.count(), 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(!m_fixture->adb().listed(wifiSerial), 10000);
        QCOMPARE(group.deviceCount(), 1);
        // Only that address went: the phone's other network connection stays.
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
