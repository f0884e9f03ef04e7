// Controlling simulated phones end to end: a Device's commands go through Debian's real adb and
// the control socket, and arrive in the phone's journal.
#include "autojs.h"
#include "controller.h"
#include "device.h"
#include "framehandoff.h"
#include "devicegroup.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QClipboard>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QPointer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr quint16 AdbServerPort = 15301;

QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QPoint pointOf(const QJsonObject &touch)
{
    return QPoint(touch.value("x").toInt(), touch.value("y").toInt());
}

// A running session on one phone, with its group.
struct Session
{
    PhoneSimProcess *phone = nullptr;
    std::unique_ptr<DeviceGroup> group;
    QPointer<Device> device;
};

} // namespace

class TestDeviceControl : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase();
    void cleanupTestCase();

    void commandsWithoutSessionReportNotConnected();
    void mouseDragArrivesAtDevicePoints();
    void keyActionsArrive_data();
    void keyActionsArrive();
    void swipesArrive_data();
    void swipesArrive();
    void clipboardGoesBothWays();
    void resetAndRotateRestartTheStream();
    void apkInstall_data();
    void apkInstall();
    void fileUpload();
    void nicknameBecomesTheWallpaper();
    void autojsRunAndStop();
    void rebootAndShutdownReachThePhone_data();
    void rebootAndShutdownReachThePhone();

private:
    bool start(Session &session);
    // The control messages of one type the main phone has read since line `from` of its journal.
    QList<QJsonObject> control(const QString &type, int from) const;
    int controlCount() const { return m_main.phone->journal("control").size(); }
    QString writeFile(const QString &name, const QByteArray &content);

    std::unique_ptr<PhoneFixture> m_fixture;
    Session m_main;
    QTemporaryDir m_files;
};

bool TestDeviceControl::start(Session &session)
{
    session.phone = m_fixture->addPhone({1080, 2400}, {"--reboot-delay", "100"});
    if (!session.phone) {
        qWarning("%s", qPrintable(m_fixture->error()));
        return false;
    }
    session.group = std::make_unique<DeviceGroup>();
    session.device = new Device(nullptr, session.group.get(), session.phone->serial());
    // Full-size frames, so that device points and frame points are the same.
    session.device->serverParamsSmallView()->setMaxSize(0);
    session.device->serverParamsSmallView()->setMaxFps(10);
    session.group->appendDevice(session.device);
    QSignalSpy frames(session.device->videoFrames(), &FrameHandoff::frameAvailable);
    // Watched, as by a view on screen: pictures keep coming.
    session.device->videoFrames()->addWatcher();
    session.device->startScrcpySession();
    if (!QTest::qWaitFor([&] { return session.device->controller() && frames.count() > 0; }, 20000)) {
        qWarning("no controller or no frames");
        return false;
    }
    session.device->setShowSize(QSize(540, 1200));
    return true;
}

QList<QJsonObject> TestDeviceControl::control(const QString &type, int from) const
{
    QList<QJsonObject> found;
    const QList<QJsonObject> lines = m_main.phone->journal("control");
    for (int i = from; i < lines.size(); ++i) {
        if (lines[i].value("type").toString() == type)
            found << lines[i];
    }
    return found;
}

QString TestDeviceControl::writeFile(const QString &name, const QByteArray &content)
{
    QFile file(m_files.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
}

void TestDeviceControl::initTestCase()
{
    QVERIFY(AdbRunner::available());
    m_fixture = std::make_unique<PhoneFixture>(AdbServerPort);
    QVERIFY(start(m_main));
    QCOMPARE(m_main.device->frameSize(), QSize(1080, 2400));
}

void TestDeviceControl::cleanupTestCase()
{
    if (m_main.device)
        m_main.device->stopScrcpySession();
    m_main.group.reset();
    m_fixture.reset();
}

void TestDeviceControl::commandsWithoutSessionReportNotConnected()
{
    Device idle(nullptr, nullptr, "nowhere");
    QSignalSpy messages(&idle, &Device::deviceMessage);
    idle.installAPK("/tmp/a.apk");
    idle.uploadFile("/tmp/a.txt");
    // The buttons do nothing without a session.
    idle.home();
    idle.swipeUp();
    idle.reboot();
    QCOMPARE(messages.count(), 2);
    QCOMPARE(messages[0], (QVariantList{"Not Connected", "error", 2000}));
    QCOMPARE(messages[1], (QVariantList{"Not Connected", "error", 5000}));
    QVERIFY(!idle.controller());
}

void TestDeviceControl::mouseDragArrivesAtDevicePoints()
{
    const int from = controlCount();
    Controller *controller = m_main.device->controller();
    controller->handleMouseEvent(2, 10.7, 20.2, 1, 1);
    controller->handleMouseEvent(5, 100.0, 300.5, 0, 1);
    controller->handleMouseEvent(3, 539.9, 1199.9, 1, 0);
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectTouchEvent", from).size(), 3, 10000);
    const QList<QJsonObject> touches = control("InjectTouchEvent", from);

    const struct
    {
        int action, x, y, actionButton, buttons;
        double pressure;
    } expected[] = {{0, 21, 40, 1, 1, 1.0}, {2, 200, 601, 0, 1, 0.0}, {1, 1079, 2399, 1, 0, 0.0}};
    for (int i = 0; i < 3; ++i) {
        const QJsonObject &t = touches[i];
        QCOMPARE(t.value("action").toInt(), expected[i].action);
        QCOMPARE(pointOf(t), QPoint(expected[i].x, expected[i].y));
        QCOMPARE(QSize(t.value("screenWidth").toInt(), t.value("screenHeight").toInt()), QSize(1080, 2400));
        QCOMPARE(t.value("pressure").toDouble(), expected[i].pressure);
        QCOMPARE(t.value("actionButton").toInt(), expected[i].actionButton);
        QCOMPARE(t.value("buttons").toInt(), expected[i].buttons);
        QCOMPARE(t.value("pointerId").toInteger(), qint64(-2));
    }
}

void TestDeviceControl::keyActionsArrive_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("keycode");
    QTest::newRow("home") << QByteArray("home") << 3;
    QTest::newRow("back") << QByteArray("back") << 4;
    QTest::newRow("task list") << QByteArray("showTaskList") << 187;
    QTest::newRow("volume up") << QByteArray("volumeUp") << 24;
    QTest::newRow("volume down") << QByteArray("volumeDown") << 25;
    QTest::newRow("sleep") << QByteArray("sleep") << 223;
    QTest::newRow("wake up") << QByteArray("wakeUp") << 224;
}

void TestDeviceControl::keyActionsArrive()
{
    QFETCH(QByteArray, command);
    QFETCH(int, keycode);
    const int from = controlCount();
    QVERIFY(QMetaObject::invokeMethod(m_main.device.data(), command.constData()));
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectKeycode", from).size(), 2, 10000);
    const QList<QJsonObject> keys = control("InjectKeycode", from);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(keys[i].value("action").toInt(), i);
        QCOMPARE(keys[i].value("keycode").toInt(), keycode);
        QCOMPARE(keys[i].value("repeat").toInt(), 0);
        QCOMPARE(keys[i].value("metastate").toInt(), 0);
    }
}

void TestDeviceControl::swipesArrive_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<int>("steps");
    QTest::addColumn<QPoint>("end");
    QTest::newRow("up") << QByteArray("swipeUp") << 5 << QPoint(540, 480);
    QTest::newRow("down") << QByteArray("swipeDown") << 10 << QPoint(540, 1920);
    QTest::newRow("left") << QByteArray("swipeLeft") << 10 << QPoint(216, 1200);
    QTest::newRow("right") << QByteArray("swipeRight") << 10 << QPoint(864, 1200);
}

void TestDeviceControl::swipesArrive()
{
    QFETCH(QByteArray, command);
    QFETCH(int, steps);
    QFETCH(QPoint, end);
    const int from = controlCount();
    QVERIFY(QMetaObject::invokeMethod(m_main.device.data(), command.constData()));
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectTouchEvent", from).size(), steps + 2, 10000);
    QTest::qWait(100);
    const QList<QJsonObject> touches = control("InjectTouchEvent", from);
    QCOMPARE(touches.size(), steps + 2);
    QCOMPARE(touches.first().value("action").toInt(), 0);
    QCOMPARE(pointOf(touches.first()), QPoint(540, 1200));
    for (int i = 1; i <= steps; ++i)
        QCOMPARE(touches[i].value("action").toInt(), 2);
    QCOMPARE(pointOf(touches[steps]), end);
    QCOMPARE(touches.last().value("action").toInt(), 1);
    QCOMPARE(pointOf(touches.last()), end);
    for (const QJsonObject &t : touches)
        QCOMPARE(t.value("pointerId").toInteger(), qint64(-2));
}

void TestDeviceControl::clipboardGoesBothWays()
{
    // Typed text is pasted through the phone's clipboard.
    const int from = controlCount();
    m_main.device->controller()->actionInputText("你好 farm");
    QTRY_COMPARE_WITH_TIMEOUT(control("SetClipboard", from).size(), 1, 10000);
    const QJsonObject clip = control("SetClipboard", from).first();
    QCOMPARE(clip.value("text").toString(), QString("你好 farm"));
    QCOMPARE(clip.value("paste").toBool(), true);
    QCOMPARE(clip.value("sequence").toInt(), 0);

    // The phone's clipboard reaches the PC's.
    QGuiApplication::clipboard()->setText("before");
    QCOMPARE(m_main.phone->ctl({"clipboard", "hello"}), 0);
    QTRY_COMPARE_WITH_TIMEOUT(QGuiApplication::clipboard()->text(), QString("hello"), 10000);
}

void TestDeviceControl::resetAndRotateRestartTheStream()
{
    const int from = controlCount();
    QSignalSpy frames(m_main.device->videoFrames(), &FrameHandoff::frameAvailable);
    m_main.device->controller()->resetVideo();
    QTRY_COMPARE_WITH_TIMEOUT(control("ResetVideo", from).size(), 1, 10000);
    frames.clear();
    QTRY_VERIFY_WITH_TIMEOUT(frames.count() > 0, 10000);
    QCOMPARE(m_main.device->frameSize(), QSize(1080, 2400));

    m_main.device->rotateScreen();
    QTRY_COMPARE_WITH_TIMEOUT(control("RotateDevice", from).size(), 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(m_main.device->frameSize(), QSize(2400, 1080), 15000);
    m_main.device->rotateScreen();
    QTRY_COMPARE_WITH_TIMEOUT(m_main.device->frameSize(), QSize(1080, 2400), 15000);
}

void TestDeviceControl::apkInstall_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QVariantList>("outcome");
    QTest::addColumn<bool>("installed");
    QTest::newRow("zip") << QByteArray("PK\x03\x04 tiny apk", 13) << QVariantList{"APK installed", "success", 2000}
                         << true;
    QTest::newRow("not a zip") << QByteArray("definitely not an apk")
                               << QVariantList{"APK installation failed", "error", 100000} << false;
}

void TestDeviceControl::apkInstall()
{
    QFETCH(QByteArray, content);
    QFETCH(QVariantList, outcome);
    QFETCH(bool, installed);
    const QString path = writeFile(QString("app_%1.apk").arg(QTest::currentDataTag()).replace(' ', '_'), content);
    QVERIFY(!path.isEmpty());

    const int before = m_main.phone->journal("install").size();
    QSignalSpy messages(m_main.device.data(), &Device::deviceMessage);
    m_main.device->installAPK(path);
    QCOMPARE(messages.count(), 1);
    QCOMPARE(messages[0], (QVariantList{"Installing APK", "info", 100000}));
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 30000);
    QCOMPARE(messages[1], outcome);

    const QList<QJsonObject> installs = m_main.phone->journal("install");
    QCOMPARE(installs.size(), before + 1);
    QCOMPARE(installs.last().value("ok").toBool(), installed);
    QCOMPARE(installs.last().value("sha256").toString(), sha256(content));
}

void TestDeviceControl::fileUpload()
{
    QByteArray content;
    for (int i = 0; i < 20000; ++i)
        content += QByteArray::number(i) + ' ';
    const QString path = writeFile("notes.txt", content);
    QVERIFY(!path.isEmpty());

    QSignalSpy messages(m_main.device.data(), &Device::deviceMessage);
    m_main.device->uploadFile(path);
    QCOMPARE(messages.count(), 1);
    QCOMPARE(messages[0], (QVariantList{"Uploading File", "info", 100000}));
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 30000);
    QCOMPARE(messages[1], (QVariantList{"File uploaded", "success", 2000}));

    const QList<QJsonObject> pushes = m_main.phone->journal("push");
    QVERIFY(!pushes.isEmpty());
    QCOMPARE(pushes.last().value("path").toString(), QString("/sdcard/Download/notes.txt"));
    QCOMPARE(pushes.last().value("sha256").toString(), sha256(content));
    QFile arrived(m_main.phone->sandboxPath("/sdcard/Download/notes.txt"));
    QVERIFY(arrived.open(QIODevice::ReadOnly));
    QCOMPARE(arrived.readAll(), content);
}

void TestDeviceControl::nicknameBecomesTheWallpaper()
{
    m_main.device->setNickName("Rack 3");
    QCOMPARE(m_main.device->nickName(), QString("Rack 3"));
    // Drawn and pushed in the background; the phone is told to use it last.
    QTRY_VERIFY_WITH_TIMEOUT(!m_main.phone->journal("am").isEmpty(), 15000);
    const QList<QJsonObject> pushes = m_main.phone->journal("push");
    QCOMPARE(pushes.last().value("path").toString(), QString("/data/local/tmp/wallpaper_korvel.png"));
    QImage picture;
    QVERIFY(picture.load(m_main.phone->sandboxPath("/data/local/tmp/wallpaper_korvel.png")));
    QCOMPARE(picture.size(), QSize(1080, 2400));
    const QList<QJsonObject> am = m_main.phone->journal("am");
    QVERIFY(!am.isEmpty());
    QVERIFY(am.last().value("args").toVariant().toStringList().contains("android.intent.action.ATTACH_DATA"));
}

void TestDeviceControl::autojsRunAndStop()
{
    const QByteArray script = "// 收菜\nwhile (true) { click(540, 1200); sleep(1000); }\n";
    const QString path = writeFile("farm.task.js", script);
    QVERIFY(!path.isEmpty());

    QSignalSpy messages(m_main.device.data(), &Device::deviceMessage);
    QSignalSpy running(m_main.device.data(), &Device::isRunningAutojsChanged);
    m_main.device->runAutojs(path);
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 1, 30000);
    QCOMPARE(messages[0], (QVariantList{"AutoJS script started", "info", 2000}));
    QVERIFY(m_main.device->autojs()->isRunning());
    QCOMPARE(running.count(), 1);

    QTRY_VERIFY_WITH_TIMEOUT(!m_main.phone->journal("autojs").isEmpty(), 10000);
    const QJsonObject run = m_main.phone->journal("autojs").last();
    QCOMPARE(run.value("type").toString(), QString("run"));
    QCOMPARE(run.value("name").toString(), QString("farm"));
    QCOMPARE(run.value("size").toInt(), script.size());
    QCOMPARE(run.value("sha256").toString(), sha256(script));

    m_main.device->stopAutojs();
    QVERIFY(!m_main.device->autojs()->isRunning());
    QCOMPARE(running.count(), 2);
    QTRY_COMPARE_WITH_TIMEOUT(m_main.phone->journal("autojs").last().value("type").toString(), QString("stopAll"),
                              10000);
}

void TestDeviceControl::rebootAndShutdownReachThePhone_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("mode");
    QTest::newRow("reboot") << QByteArray("reboot") << QString();
    QTest::newRow("shutdown") << QByteArray("shutdown") << QString("-p");
}

void TestDeviceControl::rebootAndShutdownReachThePhone()
{
    QFETCH(QByteArray, command);
    QFETCH(QString, mode);
    Session session;
    QVERIFY(start(session));
    const int controlBefore = session.phone->journal("control").size();
    QVERIFY(QMetaObject::invokeMethod(session.device.data(), command.constData()));
    QTRY_COMPARE_WITH_TIMEOUT(session.phone->journal("reboot").size(), 1, 15000);
    QCOMPARE(session.phone->journal("reboot").first().value("mode").toString(), mode);
    // An adb command, not a control message.
    QCOMPARE(session.phone->journal("control").size(), controlBefore);
    if (session.device)
        session.device->stopScrcpySession();
}

QTEST_MAIN(TestDeviceControl)
#include "tst_devicecontrol.moc"
