// Controlling simulated phones end to end: a Device's commands go through Debian's real adb and
// the control socket, and arrive in the phone's journal.
#include "autojs.h"
#include "controller.h"
#include "device.h"
#include "framehandoff.h"
#include "devicegroup.h"
#include "keymappingprofile.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QClipboard>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QPointer>
#include <QTemporaryDir>
#include <QtTest>

namespace {


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
    void mappedKeysPlayTheirTouches_data();
    void mappedKeysPlayTheirTouches();
    void wheelArrivesAsScroll_data();
    void wheelArrivesAsScroll();
    void textWithoutKeyCodesIsPasted_data();
    void textWithoutKeyCodesIsPasted();
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
    m_fixture = std::make_unique<PhoneFixture>();
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

void TestDeviceControl::mappedKeysPlayTheirTouches_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    // Whether the finger is lifted by the key's release or by the view losing focus.
    QTest::addColumn<bool>("focusLost");
    // Expected touches as action@x,y in phone pixels.
    QTest::addColumn<QStringList>("touches");
    QTest::addColumn<int>("keycode");

    const QStringList tap{"0@540,1200", "1@540,1200"};
    QTest::newRow("tap held while the key is down") << int(Qt::Key_A) << 0 << false << tap << -1;
    QTest::newRow("tap lifted when the view loses focus") << int(Qt::Key_A) << 0 << true << tap << -1;
    QTest::newRow("three taps") << int(Qt::Key_T) << 0 << false
                                << QStringList{"0@108,2160", "1@108,2160", "0@108,2160", "1@108,2160",
                                               "0@108,2160", "1@108,2160"}
                                << -1;
    QStringList swipe{"0@216,1200"};
    for (int step = 1; step <= 12; ++step) {
        const double fraction = 0.2 + (0.8 - 0.2) * double(float(step) / 12.0f);
        swipe << QString("2@%1,1200").arg(int(fraction * 540 * 1080 / 540));
    }
    swipe << "1@864,1200";
    QTest::newRow("swipe of 200 ms in 12 moves") << int(Qt::Key_W) << 0 << false << swipe << -1;
    // Shift+A is not A: it goes out as the letter with the shift meta state.
    QTest::newRow("unmapped modifiers") << int(Qt::Key_A) << int(Qt::ShiftModifier) << false << QStringList() << 29;
    QTest::newRow("unmapped key") << int(Qt::Key_B) << 0 << false << QStringList() << 30;
}

void TestDeviceControl::mappedKeysPlayTheirTouches()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, focusLost);
    QFETCH(QStringList, touches);
    QFETCH(int, keycode);

    KeyMappingProfile profile("Game");
    QVERIFY(profile.addMapping(Qt::Key_A, 0, "A", 0.5, 0.5, 1));
    QVERIFY(profile.addMapping(Qt::Key_T, 0, "T", 0.1, 0.9, 3));
    QVERIFY(profile.addSwipeMapping(Qt::Key_W, 0, "W", 0.2, 0.5, 0.8, 0.5, 200));
    QSignalSpy messages(m_main.device.data(), &Device::deviceMessage);
    m_main.device->setCurrentKeyMappingProfile(&profile);
    QCOMPARE(messages.value(0), (QVariantList{"KeyMapping Profile: Game", "info", 2000}));

    const int from = controlCount();
    Controller *controller = m_main.device->controller();
    controller->handleKeyEvent(6, key, modifiers, QString());
    // Auto-repeat of a held key adds nothing.
    if (key != Qt::Key_T)
        controller->handleKeyEvent(6, key, modifiers, QString());
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectTouchEvent", from).size(), qMax(0, touches.size() - 1) + (key == Qt::Key_T),
                              10000);
    if (focusLost)
        controller->releaseKeyMappings();
    controller->handleKeyEvent(7, key, modifiers, QString());
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectTouchEvent", from).size(), touches.size(), 10000);

    const QList<QJsonObject> sent = control("InjectTouchEvent", from);
    QStringList arrived;
    for (const QJsonObject &t : sent) {
        arrived << QString("%1@%2,%3").arg(t.value("action").toInt()).arg(t.value("x").toInt()).arg(t.value("y").toInt());
        QCOMPARE(t.value("pointerId").toInteger(), sent.first().value("pointerId").toInteger());
        QCOMPARE(QSize(t.value("screenWidth").toInt(), t.value("screenHeight").toInt()), QSize(1080, 2400));
    }
    QCOMPARE(arrived, touches);
    if (!sent.isEmpty())
        QVERIFY(sent.first().value("pointerId").toInteger() >= 0 && sent.first().value("pointerId").toInteger() <= 9);

    const QList<QJsonObject> keys = control("InjectKeycode", from);
    if (keycode < 0) {
        QVERIFY(keys.isEmpty());
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(control("InjectKeycode", from).size(), 3, 10000);
        for (const QJsonObject &k : control("InjectKeycode", from))
            QCOMPARE(k.value("keycode").toInt(), keycode);
    }
    if (QTest::currentDataTag() == QByteArray("unmapped key")) {
        // A profile deleted in the editor turns the phone's mapping off.
        auto *deleted = new KeyMappingProfile("Gone");
        m_main.device->setCurrentKeyMappingProfile(deleted);
        delete deleted;
        QCOMPARE(m_main.device->currentKeyMappingProfile(), nullptr);
    } else {
        m_main.device->setCurrentKeyMappingProfile(nullptr);
    }
    QCOMPARE(messages.last(), (QVariantList{"KeyMapping Disabled", "info", 2000}));
}

void TestDeviceControl::wheelArrivesAsScroll_data()
{
    QTest::addColumn<QPointF>("angleDelta");
    QTest::addColumn<double>("hscroll");
    QTest::addColumn<double>("vscroll");
    QTest::newRow("two notches towards the user") << QPointF(0, -240) << 0.0 << -2.0;
    QTest::newRow("one notch tilted left") << QPointF(120, 0) << -1.0 << 0.0;
}

void TestDeviceControl::wheelArrivesAsScroll()
{
    QFETCH(QPointF, angleDelta);
    QFETCH(double, hscroll);
    QFETCH(double, vscroll);
    const int from = controlCount();
    m_main.device->controller()->handleWheelEvent(135.4, 900.9, angleDelta.x(), angleDelta.y(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectScrollEvent", from).size(), 1, 10000);
    const QJsonObject scroll = control("InjectScrollEvent", from).first();
    QCOMPARE(pointOf(scroll), QPoint(270, 1801));
    QCOMPARE(QSize(scroll.value("screenWidth").toInt(), scroll.value("screenHeight").toInt()), QSize(1080, 2400));
    QCOMPARE(scroll.value("hscroll").toDouble(), hscroll);
    QCOMPARE(scroll.value("vscroll").toDouble(), vscroll);
}

void TestDeviceControl::textWithoutKeyCodesIsPasted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("fromInputMethod");
    QTest::newRow("input method commit") << QString("你好") << true;
    QTest::newRow("accented letter key") << QString("é") << false;
}

void TestDeviceControl::textWithoutKeyCodesIsPasted()
{
    QFETCH(QString, text);
    QFETCH(bool, fromInputMethod);
    const int from = controlCount();
    Controller *controller = m_main.device->controller();
    if (fromInputMethod) {
        controller->handleInputMethodText(text);
    } else {
        controller->handleKeyEvent(6, Qt::Key_Eacute, 0, text);
        controller->handleKeyEvent(7, Qt::Key_Eacute, 0, text);
    }
    // A plain letter after it still goes out as a key code.
    controller->handleKeyEvent(6, Qt::Key_Z, 0, "z");
    QTRY_COMPARE_WITH_TIMEOUT(control("InjectKeycode", from).size(), 1, 10000);
    const QList<QJsonObject> clips = control("SetClipboard", from);
    QCOMPARE(clips.size(), 1);
    QCOMPARE(clips.first().value("text").toString(), text);
    QCOMPARE(clips.first().value("paste").toBool(), true);
    QCOMPARE(control("InjectKeycode", from).first().value("keycode").toInt(), 54);
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
                               << QVariantList{"APK installation failed: Failure [INSTALL_FAILED_INVALID_APK", "error", 100000}
                               << false;
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
    // The package manager's answer follows the message; it names the temporary file.
    QVERIFY2(messages[1].value(0).toString().startsWith(outcome.value(0).toString()), qPrintable(messages[1].value(0).toString()));
    QCOMPARE(messages[1].mid(1), outcome.mid(1));

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
