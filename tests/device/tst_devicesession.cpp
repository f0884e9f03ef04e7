#include "adbclient.h"
#include "appconfig.h"
#include "device.h"
#include "framehandoff.h"
#include "devicegroup.h"
#include "phonefixture.h"
#include "scrcpyserver.h"
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

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>(15051);
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

    void vanishedPhoneLeavesTheGroup()
    {
        PhoneSimProcess *phone = nullptr;
        DeviceGroup group;
        QPointer<Device> device = makeDevice(group, phone, {1440, 3200});
        QVERIFY(device);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->frameSize().isValid(), 15000);
        QSignalSpy removed(&group, &DeviceGroup::deviceRemovedFromGroup);
        QCOMPARE(phone->ctl({"vanish"}), 0);
        QTRY_COMPARE_WITH_TIMEOUT(removed.count(), 1, 20000);
        QCOMPARE(group.deviceCount(), 0);
        QTRY_VERIFY(device.isNull());
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
