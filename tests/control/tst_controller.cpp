// The controller's slots as bytes on its socket, adb calls and status messages of its session.
#include "adbclient.h"
#include "controller.h"
#include "controlwire.h"
#include "device.h"
#include "fakeadb.h"

#include <QBuffer>
#include <QImage>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
}

namespace {

struct Expected
{
    quint32 action;
    qint32 keycode;
    quint32 meta;
};
using KeyList = QList<Expected>;

// A session as the controller sees it: its Device (sizes, serial, messages) and a socket stand-in.
struct Session
{
    Session(QSize show = {540, 1200}, QSize frame = {1080, 2400})
        : device(nullptr, nullptr, "S1")
    {
        wire.open(QIODevice::WriteOnly);
        device.setShowSize(show);
        AVFrame *decoded = av_frame_alloc();
        decoded->width = frame.width();
        decoded->height = frame.height();
        decoded->format = 0;
        device.handleDecodedVideoFrame(decoded);
        av_frame_free(&decoded);
        controller = new Controller(&device, &wire);
    }

    QList<WireMessage> sent() const
    {
        bool complete = false;
        const QList<WireMessage> messages = readWire(wire.data(), &complete);
        return complete ? messages : QList<WireMessage>{};
    }

    Device device;
    QBuffer wire;
    Controller *controller;
};

} // namespace

Q_DECLARE_METATYPE(KeyList)

class TestController : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase();
    void init();
    void slotsKeepTheirOrder();
    void keyActionsPressAndRelease_data();
    void keyActionsPressAndRelease();
    void rotateAndResetVideoAreOneByte();
    void typedTextIsPastedThroughTheClipboard();
    void mouseBecomesTouches_data();
    void mouseBecomesTouches();
    void unknownSizesStillSend();
    void keysBecomeKeyCodes_data();
    void keysBecomeKeyCodes();
    void swipesStepOnATimer_data();
    void swipesStepOnATimer();
    void groupSendWaitsForTheClickDelay();
    void groupSendWithoutDelayWritesAtOnce();
    void pendingGroupSendDiesWithTheController();
    void messagesReachALoopbackPeer();
    void rebootAndShutdownGoThroughAdb();
    void installReportsItsOutcome_data();
    void installReportsItsOutcome();
    void uploadReportsItsOutcome_data();
    void uploadReportsItsOutcome();
    void wallpaperCarriesTheNickname();
    void withoutSessionNothingBreaks();

private:
    FakeAdb m_adb;
};

void TestController::initTestCase()
{
    AdbClient::setProgram(m_adb.program());
}

void TestController::init()
{
    m_adb.clear();
    Controller::setSwipeInterval(10);
}

void TestController::slotsKeepTheirOrder()
{
    const QStringList expected = {
        "messageSent", "actionHome", "actionShowTaskList", "actionBack", "actionSwipeUp", "actionSwipeDown",
        "actionSwipeLeft", "actionSwipeRight", "actionReboot", "actionShutdown", "actionSleep", "actionWakeUp",
        "actionVolumeUp", "actionVolumeDown", "actionCopy", "actionPaste", "actionCut", "actionRotateScreen",
        "installApk", "uploadFile", "actionInputText", "handleMouseEvent", "processMouseEvent", "handleKeyEvent",
        "handleKeyMapping", "send", "groupSend", "setClickDelayMilliSeconds", "setWallpaper", "resetVideo"};
    const QMetaObject &meta = Controller::staticMetaObject;
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        names << QString::fromLatin1(meta.method(i).name());
    QCOMPARE(names, expected);
}

void TestController::keyActionsPressAndRelease_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<int>("keycode");
    QTest::newRow("home") << QByteArray("actionHome") << 3;
    QTest::newRow("task list") << QByteArray("actionShowTaskList") << 187;
    QTest::newRow("back") << QByteArray("actionBack") << 4;
    QTest::newRow("sleep") << QByteArray("actionSleep") << 223;
    QTest::newRow("wake up") << QByteArray("actionWakeUp") << 224;
    QTest::newRow("volume up") << QByteArray("actionVolumeUp") << 24;
    QTest::newRow("volume down") << QByteArray("actionVolumeDown") << 25;
    QTest::newRow("copy") << QByteArray("actionCopy") << 278;
    QTest::newRow("paste") << QByteArray("actionPaste") << 279;
    QTest::newRow("cut") << QByteArray("actionCut") << 277;
}

void TestController::keyActionsPressAndRelease()
{
    QFETCH(QByteArray, slot);
    QFETCH(int, keycode);
    Session session;
    QSignalSpy announced(session.controller, &Controller::messageSent);
    QVERIFY(QMetaObject::invokeMethod(session.controller, slot.constData()));

    QCOMPARE(session.wire.data().size(), 28);
    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), 2);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(sent[i].type, 0);
        QCOMPARE(sent[i].action, quint32(i));
        QCOMPARE(sent[i].keycode, keycode);
        QCOMPARE(sent[i].repeat, 0u);
        QCOMPARE(sent[i].metastate, 0u);
    }
    QCOMPARE(announced.count(), 2);
}

void TestController::rotateAndResetVideoAreOneByte()
{
    Session session;
    QSignalSpy announced(session.controller, &Controller::messageSent);
    session.controller->actionRotateScreen();
    session.controller->resetVideo();
    QCOMPARE(session.wire.data(), QByteArray::fromHex("0B11"));
    QCOMPARE(announced.count(), 2);
}

void TestController::typedTextIsPastedThroughTheClipboard()
{
    Session session;
    session.controller->actionInputText("héllo");
    session.controller->actionInputText("");
    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), 2);
    QCOMPARE(sent[0].type, 9);
    QCOMPARE(sent[0].sequence, quint64(0));
    QVERIFY(sent[0].paste);
    QCOMPARE(QString::fromUtf8(sent[0].text), QString("héllo"));
    // An empty text goes out as an empty record: no paste either.
    QCOMPARE(session.wire.data().mid(sent[0].size), QByteArray::fromHex("0900000000000000000000000000"));
}

void TestController::mouseBecomesTouches_data()
{
    QTest::addColumn<int>("eventType");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("buttons");
    QTest::addColumn<bool>("sends");
    QTest::addColumn<int>("action");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("pressure");
    QTest::addColumn<uint>("actionButton");
    QTest::addColumn<uint>("heldButtons");

    QTest::newRow("press") << 2 << 10.7 << 20.2 << 1 << 1 << true << 0 << QPoint(21, 40) << 0xFFFF << 1u << 1u;
    QTest::newRow("move") << 5 << 270.0 << 600.0 << 0 << 1 << true << 2 << QPoint(540, 1200) << 0 << 0u << 1u;
    QTest::newRow("release") << 3 << 539.9 << 1199.9 << 1 << 0 << true << 1 << QPoint(1079, 2399) << 0 << 1u << 0u;
    QTest::newRow("right press") << 2 << 1.0 << 1.0 << 2 << 2 << true << 0 << QPoint(2, 2) << 0xFFFF << 2u << 2u;
    QTest::newRow("second button held") << 2 << 0.0 << 0.0 << 1 << 3 << true << 0 << QPoint(0, 0) << 0xFFFF << 1u
                                        << 3u;
    QTest::newRow("middle") << 2 << 0.4 << 0.4 << 4 << 4 << true << 0 << QPoint(0, 0) << 0xFFFF << 4u << 4u;
    QTest::newRow("back and forward buttons")
        << 3 << 0.0 << 0.0 << 16 << int(8 | 16) << true << 1 << QPoint(0, 0) << 0 << 16u << 24u;
    QTest::newRow("unknown button") << 2 << 0.0 << 0.0 << 64 << 0xFF << true << 0 << QPoint(0, 0) << 0xFFFF << 0u
                                    << 0x1Fu;
    QTest::newRow("outside the view") << 5 << -10.0 << 1300.0 << 0 << 1 << true << 2 << QPoint(-20, 2600) << 0
                                      << 0u << 1u;
    QTest::newRow("double click sends nothing") << 4 << 1.0 << 1.0 << 1 << 1 << false << 0 << QPoint() << 0 << 0u
                                                << 0u;
    QTest::newRow("hover sends nothing") << 129 << 1.0 << 1.0 << 0 << 0 << false << 0 << QPoint() << 0 << 0u << 0u;
    QTest::newRow("key press type sends nothing") << 6 << 1.0 << 1.0 << 0 << 0 << false << 0 << QPoint() << 0 << 0u
                                                  << 0u;
}

void TestController::mouseBecomesTouches()
{
    QFETCH(int, eventType);
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(int, button);
    QFETCH(int, buttons);
    QFETCH(bool, sends);
    Session session;
    QSignalSpy announced(session.controller, &Controller::messageSent);
    session.controller->handleMouseEvent(eventType, x, y, button, buttons);
    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), sends ? 1 : 0);
    QCOMPARE(announced.count(), sends ? 1 : 0);
    if (!sends)
        return;
    QFETCH(int, action);
    QFETCH(QPoint, point);
    QFETCH(int, pressure);
    QFETCH(uint, actionButton);
    QFETCH(uint, heldButtons);
    const WireMessage &touch = sent.first();
    QCOMPARE(touch.type, 2);
    QCOMPARE(touch.pointerId, quint64(0xFFFFFFFFFFFFFFFEULL));
    QCOMPARE(int(touch.action), action);
    QCOMPARE(QPoint(touch.x, touch.y), point);
    QCOMPARE(touch.screenWidth, quint16(1080));
    QCOMPARE(touch.screenHeight, quint16(2400));
    QCOMPARE(int(touch.pressure), pressure);
    QCOMPARE(touch.actionButton, actionButton);
    QCOMPARE(touch.buttons, heldButtons);
}

void TestController::unknownSizesStillSend()
{
    // Before the first frame both sizes are (-1, -1); the touch goes out all the same.
    Session session({-1, -1}, {0, 0});
    session.controller->processMouseEvent(5, 2, 12.9, 7.0, 1, 1);
    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), 1);
    QCOMPARE(QPoint(sent[0].x, sent[0].y), QPoint(12, 7));
    QCOMPARE(sent[0].pointerId, quint64(5));
    QCOMPARE(sent[0].screenWidth, quint16(0xFFFF));

    // A zero show size divides by zero: the message is still written, with a clamped point.
    Session zero({0, 0}, {1080, 2400});
    zero.controller->handleMouseEvent(2, 1.0, 1.0, 1, 1);
    QCOMPARE(zero.sent().size(), 1);
}

void TestController::keysBecomeKeyCodes_data()
{
    QTest::addColumn<int>("eventType");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<KeyList>("expected");

    const int ctrl = Qt::ControlModifier;
    QTest::newRow("A press") << 6 << int(Qt::Key_A) << 0 << KeyList{{0, 29, 0}};
    QTest::newRow("A release") << 7 << int(Qt::Key_A) << 0 << KeyList{{1, 29, 0}};
    QTest::newRow("Ctrl+C press is copy") << 6 << int(Qt::Key_C) << ctrl << KeyList{{0, 278, 0}, {1, 278, 0}};
    QTest::newRow("Ctrl+V press is paste") << 6 << int(Qt::Key_V) << ctrl << KeyList{{0, 279, 0}, {1, 279, 0}};
    QTest::newRow("Ctrl+X press is cut") << 6 << int(Qt::Key_X) << ctrl << KeyList{{0, 277, 0}, {1, 277, 0}};
    QTest::newRow("Ctrl+C release is the letter") << 7 << int(Qt::Key_C) << ctrl << KeyList{{1, 31, 0x1000}};
    QTest::newRow("Ctrl+V release is the letter") << 7 << int(Qt::Key_V) << ctrl << KeyList{{1, 50, 0x1000}};
    QTest::newRow("Ctrl+Shift+C press is copy")
        << 6 << int(Qt::Key_C) << int(ctrl | Qt::ShiftModifier) << KeyList{{0, 278, 0}, {1, 278, 0}};
    QTest::newRow("Ctrl+A is the letter") << 6 << int(Qt::Key_A) << ctrl << KeyList{{0, 29, 0x1000}};
    QTest::newRow("Shift+1") << 6 << int(Qt::Key_Exclam) << int(Qt::ShiftModifier) << KeyList{{0, 8, 0x1}};
    QTest::newRow("Alt+A sends nothing") << 6 << int(Qt::Key_A) << int(Qt::AltModifier) << KeyList{};
    QTest::newRow("Alt+Left") << 6 << int(Qt::Key_Left) << int(Qt::AltModifier) << KeyList{{0, 21, 0x2}};
    QTest::newRow("Meta+Return") << 7 << int(Qt::Key_Return) << int(Qt::MetaModifier) << KeyList{{1, 66, 0x10000}};
    QTest::newRow("F5 sends nothing") << 6 << int(Qt::Key_F5) << 0 << KeyList{};
    QTest::newRow("lower-case sends nothing") << 6 << int('q') << 0 << KeyList{};
    QTest::newRow("mouse type sends nothing") << 2 << int(Qt::Key_A) << 0 << KeyList{};
    QTest::newRow("at sign") << 6 << int(Qt::Key_At) << int(Qt::ShiftModifier) << KeyList{{0, 77, 0x1}};
}

void TestController::keysBecomeKeyCodes()
{
    QFETCH(int, eventType);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(KeyList, expected);
    Session session;
    session.controller->handleKeyEvent(eventType, key, modifiers, QStringLiteral("ignored"));
    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(sent[i].type, 0);
        QCOMPARE(sent[i].action, expected[i].action);
        QCOMPARE(sent[i].keycode, expected[i].keycode);
        QCOMPARE(sent[i].repeat, 0u);
        QCOMPARE(sent[i].metastate, expected[i].meta);
    }
}

void TestController::swipesStepOnATimer_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<int>("steps");
    QTest::addColumn<QPoint>("firstMove");
    QTest::addColumn<QPoint>("end");
    // Show 540x1200 on a 1080x2400 frame: device points are twice the view points, truncated. The
    // step fraction is single precision: 1/5 is a hair above 0.2, so the first up-step lands on 1055.
    QTest::newRow("up") << QByteArray("actionSwipeUp") << 5 << QPoint(540, 1055) << QPoint(540, 480);
    QTest::newRow("down") << QByteArray("actionSwipeDown") << 10 << QPoint(540, 1272) << QPoint(540, 1920);
    QTest::newRow("left") << QByteArray("actionSwipeLeft") << 10 << QPoint(507, 1200) << QPoint(216, 1200);
    QTest::newRow("right") << QByteArray("actionSwipeRight") << 10 << QPoint(572, 1200) << QPoint(864, 1200);
}

void TestController::swipesStepOnATimer()
{
    QFETCH(QByteArray, slot);
    QFETCH(int, steps);
    QFETCH(QPoint, firstMove);
    QFETCH(QPoint, end);
    Session session;
    QSignalSpy announced(session.controller, &Controller::messageSent);
    QVERIFY(QMetaObject::invokeMethod(session.controller, slot.constData()));
    // The press goes out at once, the rest on the timer.
    QCOMPARE(session.sent().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(session.sent().size(), steps + 2, 5000);
    QTest::qWait(50);

    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), steps + 2);
    QCOMPARE(announced.count(), steps + 2);
    QCOMPARE(int(sent.first().action), 0);
    QCOMPARE(QPoint(sent.first().x, sent.first().y), QPoint(540, 1200));
    QCOMPARE(sent.first().pressure, quint16(0xFFFF));
    QCOMPARE(QPoint(sent[1].x, sent[1].y), firstMove);
    for (int i = 1; i <= steps; ++i) {
        QCOMPARE(int(sent[i].action), 2);
        QCOMPARE(sent[i].pressure, quint16(0));
    }
    QCOMPARE(QPoint(sent[steps].x, sent[steps].y), end);
    QCOMPARE(int(sent.last().action), 1);
    QCOMPARE(QPoint(sent.last().x, sent.last().y), end);
    for (const WireMessage &m : sent) {
        QCOMPARE(m.pointerId, quint64(0xFFFFFFFFFFFFFFFEULL));
        QCOMPARE(m.actionButton, 1u);
        QCOMPARE(m.buttons, 1u);
        QCOMPARE(m.screenWidth, quint16(1080));
    }
    // The swipe's timer is gone once it is done.
    QCOMPARE(session.controller->findChildren<QTimer *>().size(), 0);
}

void TestController::groupSendWaitsForTheClickDelay()
{
    Session session;
    session.controller->setClickDelayMilliSeconds(150);
    QCOMPARE(session.controller->clickDelayMilliSeconds(), 150);
    QSignalSpy announced(session.controller, &Controller::messageSent);
    {
        // The original is gone before the delay ends; the copy keeps its text.
        const ControlMsg msg = ControlMsg::setClipboard(0, "later", true);
        session.controller->groupSend(msg);
    }
    QVERIFY(session.wire.data().isEmpty());
    QCOMPARE(announced.count(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(announced.count(), 1, 5000);
    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent[0].text, QByteArray("later"));
}

void TestController::groupSendWithoutDelayWritesAtOnce()
{
    Session session;
    session.controller->setClickDelayMilliSeconds(-5);
    session.controller->groupSend(ControlMsg::injectKeycode(0, 3, 0, 0));
    QCOMPARE(session.sent().size(), 1);
}

void TestController::pendingGroupSendDiesWithTheController()
{
    Session session;
    session.controller->setClickDelayMilliSeconds(30);
    session.controller->groupSend(ControlMsg::setClipboard(0, "dropped", true));
    delete session.controller;
    QTest::qWait(100);
    QVERIFY(session.wire.data().isEmpty());
}

void TestController::messagesReachALoopbackPeer()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, server.serverPort());
    QVERIFY(client.waitForConnected(5000));
    QTRY_VERIFY(server.hasPendingConnections());
    QTcpSocket *peer = server.nextPendingConnection();

    Device device(nullptr, nullptr, "S1");
    Controller controller(&device, &client);
    controller.actionHome();
    controller.actionInputText("over the wire");
    QByteArray received;
    QTRY_VERIFY_WITH_TIMEOUT((received += peer->readAll(), readWire(received).size() == 3), 5000);
    const QList<WireMessage> sent = readWire(received);
    QCOMPARE(sent[0].keycode, 3);
    QCOMPARE(sent[2].text, QByteArray("over the wire"));
}

void TestController::rebootAndShutdownGoThroughAdb()
{
    Session session;
    session.controller->actionReboot();
    session.controller->actionShutdown();
    const QList<QStringList> calls = m_adb.calls();
    QCOMPARE(calls.value(0), (QStringList{"-s", "S1", "reboot"}));
    QCOMPARE(calls.value(1), (QStringList{"-s", "S1", "shell", "getprop", "ro.kernel.qemu"}));
    QCOMPARE(calls.value(2), (QStringList{"-s", "S1", "reboot", "-p"}));
    QCOMPARE(calls.size(), 3);
    QVERIFY(session.wire.data().isEmpty());
}

void TestController::installReportsItsOutcome_data()
{
    QTest::addColumn<int>("installExit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("timeout");
    QTest::newRow("installed") << 0 << "APK installed" << "success" << 2000;
    QTest::newRow("failed") << 1 << "APK installation failed" << "error" << 100000;
}

void TestController::installReportsItsOutcome()
{
    QFETCH(int, installExit);
    QFETCH(QString, text);
    QFETCH(QString, type);
    QFETCH(int, timeout);
    m_adb.addRule("-s S1 shell pm install*", installExit, installExit ? "" : "Success\\n", "Failure [bad]\\n", 0.2);
    Session session;
    QSignalSpy messages(&session.device, &Device::deviceMessage);
    session.controller->installApk("/tmp/some/app.apk");
    QCOMPARE(messages.count(), 1);
    QCOMPARE(messages[0], (QVariantList{"Installing APK", "info", 100000}));
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 10000);
    QCOMPARE(messages[1], (QVariantList{text, type, timeout}));
    QCOMPARE(m_adb.calls().last(), (QStringList{"-s", "S1", "shell", "pm install -r /data/local/tmp/app.apk"}));
    QVERIFY(session.wire.data().isEmpty());
}

void TestController::uploadReportsItsOutcome_data()
{
    QTest::addColumn<int>("pushExit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("timeout");
    QTest::newRow("uploaded") << 0 << "File uploaded" << "success" << 2000;
    QTest::newRow("failed") << 1 << "File upload failed" << "error" << 5000;
}

void TestController::uploadReportsItsOutcome()
{
    QFETCH(int, pushExit);
    QFETCH(QString, text);
    QFETCH(QString, type);
    QFETCH(int, timeout);
    QTemporaryFile file;
    QVERIFY(file.open());
    m_adb.addRule("-s S1 push*", pushExit, {}, "remote couldn't create file\\n");
    Session session;
    QSignalSpy messages(&session.device, &Device::deviceMessage);
    session.controller->uploadFile(file.fileName());
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 1, 10000);
    QCOMPARE(messages[0], (QVariantList{text, type, timeout}));
    QCOMPARE(m_adb.calls().value(0), (QStringList{"-s", "S1", "push", file.fileName(), "/sdcard/Download/"}));
}

void TestController::wallpaperCarriesTheNickname()
{
    Session session;
    const QString path =
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation) + "/wallpaper_Farm 7.png";
    QFile::remove(path);
    session.controller->setWallpaper("Farm 7", 720, 1600);

    QImage picture(path);
    QVERIFY2(!picture.isNull(), qPrintable(path));
    QCOMPARE(picture.size(), QSize(720, 1600));
    int yellowAbove = 0;
    int yellowBelow = 0;
    for (int y = 0; y < picture.height(); y += 2) {
        for (int x = 0; x < picture.width(); x += 2) {
            const QColor c = picture.pixelColor(x, y);
            const bool yellow = c.red() > 128 && c.green() > 128 && c.blue() < 64;
            (y < 150 ? yellowAbove : yellowBelow) += yellow ? 1 : 0;
        }
    }
    QCOMPARE(yellowAbove, 0);
    QVERIFY(yellowBelow > 50);
    QCOMPARE(picture.pixelColor(0, 0), QColor(Qt::black));

    const QList<QStringList> calls = m_adb.calls();
    QCOMPARE(calls.value(0), (QStringList{"-s", "S1", "push", path, "/data/local/tmp/wallpaper_korvel.png"}));
    QVERIFY(calls.value(1).join(' ').contains("shell am start -a android.intent.action.ATTACH_DATA"));
    QVERIFY(session.wire.data().isEmpty());

    // A size that is not known yet draws nothing and calls nothing.
    m_adb.clear();
    session.controller->setWallpaper("Farm 8", -1, -1);
    QVERIFY(m_adb.calls().isEmpty());
}

void TestController::withoutSessionNothingBreaks()
{
    Controller controller;
    QSignalSpy announced(&controller, &Controller::messageSent);
    controller.actionHome();
    controller.handleMouseEvent(2, 5.0, 5.0, 1, 1);
    controller.actionSwipeLeft();
    controller.actionReboot();
    controller.actionShutdown();
    controller.installApk("/nowhere.apk");
    controller.uploadFile("/nowhere");
    controller.setWallpaper("x", 10, 10);
    QTRY_COMPARE_WITH_TIMEOUT(announced.count(), 2 + 1 + 12, 5000);
    QVERIFY(m_adb.calls().isEmpty());
}

QTEST_MAIN(TestController)
#include "tst_controller.moc"
