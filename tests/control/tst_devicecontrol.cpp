// Controlling simulated phones end to end: a Device's commands go through Debian's real adb and
// the control socket, and arrive in the phone's journal. The bytes of each kind of input are
// proven in tst_controller; here one case per capability shows it reaches a phone (the mouse, the
// wheel and mapped keys through the grid, in tst_phonegrid).
#include "controldescription.h"
#include "controller.h"
#include "device.h"
#include "deviceactions.h"
#include "devicegroup.h"
#include "framehandoff.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QClipboard>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QPointer>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using Input = std::function<void(Device *)>;

QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

} // namespace

Q_DECLARE_METATYPE(Input)

class TestDeviceControl : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    PhoneSimProcess *m_phone = nullptr;
    std::unique_ptr<DeviceGroup> m_group;
    QPointer<Device> m_device;
    QTemporaryDir m_files;

    int controlCount() const { return int(m_phone->journal("control").size()); }
    // What the phone has read on its control socket since journal line `from`.
    QStringList controlSince(int from) const { return describeControl(m_phone->journal("control").mid(from)); }

    QString writeFile(const QString &name, const QByteArray &content)
    {
        QFile file(m_files.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        m_phone = m_fixture->addPhone({1080, 2400});
        QVERIFY2(m_phone, qPrintable(m_fixture->error()));
        m_group = std::make_unique<DeviceGroup>();
        m_device = new Device(nullptr, m_phone->serial());
        // Full-size frames, so that device points and frame points are the same.
        m_device->serverParamsSmallView()->setMaxSize(0);
        m_device->serverParamsSmallView()->setMaxFps(10);
        m_group->appendDevice(m_device);
        QSignalSpy frames(m_device->videoFrames(), &FrameHandoff::frameAvailable);
        // Watched, as by a view on screen: pictures keep coming.
        m_device->videoFrames()->addWatcher();
        m_device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(m_device->controller() && frames.count() > 0, 20000);
        QCOMPARE(m_device->frameSize(), QSize(1080, 2400));
        m_device->setShowSize(QSize(540, 1200));
    }

    void cleanupTestCase()
    {
        if (m_device)
            m_device->stopScrcpySession();
        m_group.reset();
        m_fixture.reset();
    }

    void commandsWithoutSessionReportNotConnected()
    {
        Device idle(nullptr, "nowhere");
        QSignalSpy messages(&idle, &Device::deviceMessage);
        idle.actions()->installAPK("/tmp/a.apk");
        idle.actions()->uploadFile("/tmp/a.txt");
        // The buttons do nothing without a session.
        idle.actions()->home();
        idle.actions()->swipeUp();
        idle.actions()->reboot();
        QCOMPARE(messages.count(), 2);
        QCOMPARE(messages[0], (QVariantList{"Not Connected", QVariant::fromValue(MessageKind::Error), 2000}));
        QCOMPARE(messages[1], (QVariantList{"Not Connected", QVariant::fromValue(MessageKind::Error), 5000}));
        QVERIFY(!idle.controller());
    }

    void inputArrivesOnThePhone_data()
    {
        QTest::addColumn<Input>("input");
        QTest::addColumn<QStringList>("arrived");
        QTest::newRow("home button") << Input([](Device *d) { d->actions()->home(); }) << QStringList{"key 0 3", "key 1 3"};
        QTest::newRow("swipe up") << Input([](Device *d) { d->actions()->swipeUp(); })
                                  << QStringList{"touch 0@540,1200", "touch 2@540,1055", "touch 2@540,911", "touch 2@540,767",
                                                 "touch 2@540,623", "touch 2@540,480", "touch 1@540,480"};
        QTest::newRow("typed text, pasted") << Input([](Device *d) { d->controller()->actionInputText("你好 farm"); })
                                            << QStringList{"clipboard 0 paste 你好 farm"};
    }

    void inputArrivesOnThePhone()
    {
        QFETCH(Input, input);
        QFETCH(QStringList, arrived);
        const int from = controlCount();
        input(m_device);
        QTRY_COMPARE_WITH_TIMEOUT(controlSince(from), arrived, 10000);
    }

    void phoneClipboardReachesThePc()
    {
        QGuiApplication::clipboard()->setText("before");
        QCOMPARE(m_phone->ctl({"clipboard", "hello"}), 0);
        QTRY_COMPARE_WITH_TIMEOUT(QGuiApplication::clipboard()->text(), QString("hello"), 10000);
    }

    // A reset's new picture is tst_devicesession's (a phone shown again).
    void rotationTurnsThePicture()
    {
        const int from = controlCount();
        m_device->actions()->rotateScreen();
        QTRY_COMPARE_WITH_TIMEOUT(m_device->frameSize(), QSize(2400, 1080), 15000);
        m_device->actions()->rotateScreen();
        QTRY_COMPARE_WITH_TIMEOUT(m_device->frameSize(), QSize(1080, 2400), 15000);
        QCOMPARE(controlSince(from), (QStringList{"RotateDevice", "RotateDevice"}));
    }

    void apkInstall_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QVariantList>("outcome");
        QTest::newRow("zip") << QByteArray("PK\x03\x04 tiny apk", 13) << QVariantList{"APK installed", QVariant::fromValue(MessageKind::Success), 2000};
        QTest::newRow("not a zip") << QByteArray("definitely not an apk")
                                   << QVariantList{"APK installation failed: Failure [INSTALL_FAILED_INVALID_APK", QVariant::fromValue(MessageKind::Error), 100000};
    }

    void apkInstall()
    {
        QFETCH(QByteArray, content);
        QFETCH(QVariantList, outcome);
        const QString path = writeFile(QString("app_%1.apk").arg(QTest::currentDataTag()).replace(' ', '_'), content);
        QVERIFY(!path.isEmpty());
        const int before = int(m_phone->journal("install").size());
        QSignalSpy messages(m_device.data(), &Device::deviceMessage);
        m_device->actions()->installAPK(path);
        QCOMPARE(messages.value(0), (QVariantList{"Installing APK", QVariant::fromValue(MessageKind::Info), 100000}));
        QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 30000);
        // The package manager's answer follows the message; it names the temporary file.
        QVERIFY2(messages[1].value(0).toString().startsWith(outcome.value(0).toString()), qPrintable(messages[1].value(0).toString()));
        QCOMPARE(messages[1].mid(1), outcome.mid(1));
        const QList<QJsonObject> installs = m_phone->journal("install");
        QCOMPARE(installs.size(), before + 1);
        QCOMPARE(installs.last().value("ok").toBool(), outcome.value(1).value<MessageKind::Kind>() == MessageKind::Success);
        QCOMPARE(installs.last().value("sha256").toString(), sha256(content));
    }

    void fileUpload()
    {
        QByteArray content;
        for (int i = 0; i < 20000; ++i)
            content += QByteArray::number(i) + ' ';
        const QString path = writeFile("notes.txt", content);
        QVERIFY(!path.isEmpty());
        QSignalSpy messages(m_device.data(), &Device::deviceMessage);
        m_device->actions()->uploadFile(path);
        QCOMPARE(messages.value(0), (QVariantList{"Uploading File", QVariant::fromValue(MessageKind::Info), 100000}));
        QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 30000);
        QCOMPARE(messages[1], (QVariantList{"File uploaded", QVariant::fromValue(MessageKind::Success), 2000}));
        QFile arrived(m_phone->sandboxPath("/sdcard/Download/notes.txt"));
        QVERIFY(arrived.open(QIODevice::ReadOnly));
        QCOMPARE(arrived.readAll(), content);
    }

    void nicknameBecomesTheWallpaper()
    {
        m_device->setNickName("Rack 3");
        // Drawn and pushed in the background; the phone is told to use it last.
        QTRY_VERIFY_WITH_TIMEOUT(!m_phone->journal("am").isEmpty(), 15000);
        QVERIFY(m_phone->journal("am").last().value("args").toVariant().toStringList().contains(
            "android.intent.action.ATTACH_DATA"));
        QVERIFY(QFile::exists(QStandardPaths::writableLocation(QStandardPaths::DesktopLocation) + "/wallpaper_Rack 3.png"));
        QImage picture;
        QVERIFY(picture.load(m_phone->sandboxPath("/data/local/tmp/wallpaper_korvel.png")));
        QCOMPARE(picture.size(), QSize(1080, 2400));
        // Yellow writing on black, none in the top 150 pixels.
        int yellowAbove = 0;
        int yellowBelow = 0;
        for (int y = 0; y < picture.height(); y += 2) {
            for (int x = 0; x < picture.width(); x += 2) {
                const QColor c = picture.pixelColor(x, y);
                (y < 150 ? yellowAbove : yellowBelow) += c.red() > 128 && c.green() > 128 && c.blue() < 64;
            }
        }
        QCOMPARE(yellowAbove, 0);
        QVERIFY(yellowBelow > 50);
        QCOMPARE(picture.pixelColor(0, 0), QColor(Qt::black));
    }

    void autojsRunAndStop()
    {
        // Its messages and running flag are tst_autojs's, the phone's reading of the commands
        // tst_simserver's; here the script reaches the phone.
        const QByteArray script = "// 收菜\nwhile (true) { click(540, 1200); sleep(1000); }\n";
        const QString path = writeFile("farm.task.js", script);
        QVERIFY(!path.isEmpty());
        m_device->actions()->runAutojs(path);
        QTRY_VERIFY_WITH_TIMEOUT(!m_phone->journal("autojs").isEmpty(), 30000);
        QCOMPARE(m_phone->journal("autojs").last().value("sha256").toString(), sha256(script));
        m_device->actions()->stopAutojs();
        QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("autojs").last().value("type").toString(), QString("stopAll"), 10000);
    }
};

QTEST_MAIN(TestDeviceControl)
#include "tst_devicecontrol.moc"
