// The controller's slots as bytes on its socket, adb calls and status messages of its session.
#include "adbclient.h"
#include "controller.h"
#include "framehandoff.h"
#include "controlwire.h"
#include "device.h"
#include "fakeadb.h"

#include <QBuffer>
#include <QImage>
#include <QStandardPaths>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
}

namespace {

using Action = std::function<void(Controller *)>;

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(QByteArray(text).replace(' ', ""));
}

Action mouse(int type, double x, double y, int button, int buttons)
{
    return [=](Controller *c) { c->handleMouseEvent(type, x, y, button, buttons); };
}

Action key(int type, int key, int modifiers = 0)
{
    return [=](Controller *c) { c->handleKeyEvent(type, key, modifiers, QStringLiteral("ignored")); };
}

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
        decoded->format = AV_PIX_FMT_YUV420P;
        av_frame_get_buffer(decoded, 0);
        device.videoFrames()->publish(decoded);
        av_frame_free(&decoded);
        QCoreApplication::sendPostedEvents(device.videoFrames());
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

Q_DECLARE_METATYPE(Action)

class TestController : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase();
    void init();
    void slotsKeepTheirOrder();
    void slotsWriteMessages_data();
    void slotsWriteMessages();
    void unknownSizesStillSend();
    void swipesStepOnATimer();
    void groupSendWaitsForTheClickDelay();
    void pendingGroupSendDiesWithTheController();
    void failedUploadIsReported();
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
        "handleKeyMapping", "releaseKeyMappings", "handleWheelEvent", "handleInputMethodText", "send", "groupSend", "setClickDelayMilliSeconds", "setWallpaper", "resetVideo"};
    const QMetaObject &meta = Controller::staticMetaObject;
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        names << QString::fromLatin1(meta.method(i).name());
    QCOMPARE(names, expected);
}

void TestController::slotsWriteMessages_data()
{
    // Show 540x1200 on a 1080x2400 frame: device points are twice the view points, truncated.
    QTest::addColumn<Action>("action");
    QTest::addColumn<QByteArray>("bytes");
    const char *copy = "00 00 00000116 00000000 00000000 00 01 00000116 00000000 00000000";
    const char *paste = "00 00 00000117 00000000 00000000 00 01 00000117 00000000 00000000";
    const char *cut = "00 00 00000115 00000000 00000000 00 01 00000115 00000000 00000000";
    const int ctrl = Qt::ControlModifier;

    QTest::newRow("copy") << Action([](Controller *c) { c->actionCopy(); }) << hex(copy);
    QTest::newRow("paste") << Action([](Controller *c) { c->actionPaste(); }) << hex(paste);
    QTest::newRow("cut") << Action([](Controller *c) { c->actionCut(); }) << hex(cut);
    QTest::newRow("rotate and reset video are one byte")
        << Action([](Controller *c) { c->actionRotateScreen(); c->resetVideo(); }) << hex("0B 11");
    // An empty text goes out as an empty record: no paste either.
    QTest::newRow("empty text") << Action([](Controller *c) { c->actionInputText(""); })
                                << hex("09 0000000000000000 00 00000000");
    QTest::newRow("group send without delay writes at once")
        << Action([](Controller *c) { c->setClickDelayMilliSeconds(-5); c->groupSend(ControlMsg::injectKeycode(0, 3, 0, 0)); })
        << hex("00 00 00000003 00000000 00000000");

    QTest::newRow("mouse: back and forward buttons")
        << mouse(3, 0.0, 0.0, 16, 8 | 16) << hex("02 01 FFFFFFFFFFFFFFFE 00000000 00000000 0438 0960 0000 00000010 00000018");
    QTest::newRow("mouse: unknown button")
        << mouse(2, 0.0, 0.0, 64, 0xFF) << hex("02 00 FFFFFFFFFFFFFFFE 00000000 00000000 0438 0960 FFFF 00000000 0000001F");
    QTest::newRow("mouse: outside the view")
        << mouse(5, -10.0, 1300.0, 0, 1) << hex("02 02 FFFFFFFFFFFFFFFE FFFFFFEC 00000A28 0438 0960 0000 00000000 00000001");
    QTest::newRow("mouse: double click sends nothing") << mouse(4, 1.0, 1.0, 1, 1) << QByteArray();
    QTest::newRow("mouse: hover sends nothing") << mouse(129, 1.0, 1.0, 0, 0) << QByteArray();

    QTest::newRow("key: A press") << key(6, Qt::Key_A) << hex("00 00 0000001D 00000000 00000000");
    QTest::newRow("key: A release") << key(7, Qt::Key_A) << hex("00 01 0000001D 00000000 00000000");
    QTest::newRow("key: Ctrl+C press is copy") << key(6, Qt::Key_C, ctrl) << hex(copy);
    QTest::newRow("key: Ctrl+V press is paste") << key(6, Qt::Key_V, ctrl) << hex(paste);
    QTest::newRow("key: Ctrl+X press is cut") << key(6, Qt::Key_X, ctrl) << hex(cut);
    QTest::newRow("key: Ctrl+Shift+C press is copy") << key(6, Qt::Key_C, ctrl | Qt::ShiftModifier) << hex(copy);
    QTest::newRow("key: Ctrl+C release is the letter") << key(7, Qt::Key_C, ctrl) << hex("00 01 0000001F 00000000 00001000");
    QTest::newRow("key: Ctrl+A is the letter") << key(6, Qt::Key_A, ctrl) << hex("00 00 0000001D 00000000 00001000");
    QTest::newRow("key: Meta+Return release") << key(7, Qt::Key_Return, Qt::MetaModifier)
                                              << hex("00 01 00000042 00000000 00010000");
    QTest::newRow("key: F5 sends nothing") << key(6, Qt::Key_F5) << QByteArray();
    QTest::newRow("key: mouse type sends nothing") << key(2, Qt::Key_A) << QByteArray();
}

void TestController::slotsWriteMessages()
{
    QFETCH(Action, action);
    QFETCH(QByteArray, bytes);
    Session session;
    QSignalSpy announced(session.controller, &Controller::messageSent);
    action(session.controller);
    QCOMPARE(session.wire.data().toHex(' '), bytes.toHex(' '));
    QCOMPARE(announced.count(), readWire(bytes).size());
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

void TestController::swipesStepOnATimer()
{
    // The other directions' steps and end points are proven on a simulated phone.
    const int steps = 5;
    const QPoint end(540, 480);
    Session session;
    QSignalSpy announced(session.controller, &Controller::messageSent);
    session.controller->actionSwipeUp();
    // The press goes out at once, the rest on the timer.
    QCOMPARE(session.sent().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(session.sent().size(), steps + 2, 5000);
    QTest::qWait(50);

    const QList<WireMessage> sent = session.sent();
    QCOMPARE(sent.size(), steps + 2);
    QCOMPARE(announced.count(), steps + 2);
    for (int i = 0; i < sent.size(); ++i) {
        QCOMPARE(int(sent[i].action), i == 0 ? 0 : i <= steps ? 2 : 1);
        QCOMPARE(sent[i].pressure, quint16(i == 0 ? 0xFFFF : 0));
        QCOMPARE(sent[i].pointerId, quint64(0xFFFFFFFFFFFFFFFEULL));
        QCOMPARE(sent[i].actionButton, 1u);
        QCOMPARE(sent[i].buttons, 1u);
        QCOMPARE(sent[i].screenWidth, quint16(1080));
    }
    QCOMPARE(QPoint(sent[0].x, sent[0].y), QPoint(540, 1200));
    // The step fraction is single precision: 1/5 is a hair above 0.2, so the first step lands on 1055.
    QCOMPARE(QPoint(sent[1].x, sent[1].y), QPoint(540, 1055));
    QCOMPARE(QPoint(sent[steps].x, sent[steps].y), end);
    QCOMPARE(QPoint(sent.last().x, sent.last().y), end);
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

void TestController::pendingGroupSendDiesWithTheController()
{
    Session session;
    session.controller->setClickDelayMilliSeconds(30);
    session.controller->groupSend(ControlMsg::setClipboard(0, "dropped", true));
    delete session.controller;
    QTest::qWait(100);
    QVERIFY(session.wire.data().isEmpty());
}

void TestController::failedUploadIsReported()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    m_adb.addRule("-s S1 push*", 1, {}, "remote couldn't create file\\n");
    Session session;
    QSignalSpy messages(&session.device, &Device::deviceMessage);
    session.controller->uploadFile(file.fileName());
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 1, 10000);
    QCOMPARE(messages[0], (QVariantList{"File upload failed: remote couldn't create file", "error", 5000}));
    QCOMPARE(m_adb.calls().value(0), (QStringList{"-s", "S1", "push", file.fileName(),
                                                  "/sdcard/Download/" + QFileInfo(file.fileName()).fileName()}));
}

void TestController::wallpaperCarriesTheNickname()
{
    Session session;
    const QString path =
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation) + "/wallpaper_Farm 7.png";
    QFile::remove(path);
    session.controller->setWallpaper("Farm 7", 720, 1600);
    QTRY_COMPARE_WITH_TIMEOUT(m_adb.calls().size(), 2, 10000);

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
