// The controller's slots as bytes on its socket.
// What it wrote is read back with phonesim's own decoder.
#include "controldescription.h"
#include "controller.h"
#include "controlmessagedecoder.h"
#include "keymappingprofile.h"

#include <QBuffer>
#include <QtTest>


namespace {

using Action = std::function<void(Controller *)>;

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// A key's press and release; the code as eight hex digits.
QByteArray keyPress(const char *code)
{
    return hex("00 00") + hex(code) + hex("00000000 00000000 00 01") + hex(code) + hex("00000000 00000000");
}

Action mouse(InputEvent::Type type, double x, double y, int button, int buttons)
{
    return [=](Controller *c) { c->handleMouseEvent(type, x, y, button, buttons); };
}

Action key(InputEvent::Type type, int key, int modifiers = 0)
{
    return [=](Controller *c) { c->handleKeyEvent(type, key, modifiers, QStringLiteral("ignored")); };
}

// A session as the controller sees it: the view's and the picture's sizes, and a socket stand-in.
struct Session
{
    Session(QSize show = {540, 1200}, QSize frame = {1080, 2400})
        : controller(new Controller(nullptr, &wire))
    {
        wire.open(QIODevice::WriteOnly);
        controller->setShowSize(show);
        controller->setFrameSize(frame);
    }
    ~Session() { delete controller; }

    QList<QJsonObject> sent() const { return ControlMessageDecoder().feed(wire.data()); }

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
    void init() { Controller::setSwipeInterval(10); }

    void slotsWriteMessages_data()
    {
        // Show 540x1200 on a 1080x2400 frame: device points are twice the view points, truncated.
        QTest::addColumn<Action>("action");
        QTest::addColumn<QByteArray>("bytes");
        const int ctrl = Qt::ControlModifier;
        const QByteArray copy = keyPress("00000116"), paste = keyPress("00000117"), cut = keyPress("00000115");

        QTest::newRow("home") << Action(&Controller::actionHome) << keyPress("00000003");
        QTest::newRow("back") << Action(&Controller::actionBack) << keyPress("00000004");
        QTest::newRow("task list") << Action(&Controller::actionShowTaskList) << keyPress("000000BB");
        QTest::newRow("volume up") << Action(&Controller::actionVolumeUp) << keyPress("00000018");
        QTest::newRow("volume down") << Action(&Controller::actionVolumeDown) << keyPress("00000019");
        QTest::newRow("sleep") << Action(&Controller::actionSleep) << keyPress("000000DF");
        QTest::newRow("wake up") << Action(&Controller::actionWakeUp) << keyPress("000000E0");
        QTest::newRow("copy") << Action(&Controller::actionCopy) << copy;
        QTest::newRow("paste") << Action(&Controller::actionPaste) << paste;
        QTest::newRow("cut") << Action(&Controller::actionCut) << cut;
        QTest::newRow("rotate and reset video are one byte")
            << Action([](Controller *c) { c->actionRotateScreen(); c->resetVideo(); }) << hex("0B 11");
        // An empty text goes out as an empty record: no paste either.
        QTest::newRow("empty text") << Action([](Controller *c) { c->actionInputText(""); })
                                    << hex("09 0000000000000000 00 00000000");
        QTest::newRow("group send without delay writes at once")
            << Action([](Controller *c) { c->setClickDelayMilliSeconds(-5); c->groupSend(ControlMsg::injectKeycode(0, 3, 0, 0)); })
            << hex("00 00 00000003 00000000 00000000");

        QTest::newRow("mouse: drag, pressure only while pressing")
            << Action([](Controller *c) {
                   c->handleMouseEvent(InputEvent::MousePress, 10.7, 20.2, 1, 1);
                   c->handleMouseEvent(InputEvent::MouseMove, 100.0, 300.5, 0, 1);
                   c->handleMouseEvent(InputEvent::MouseRelease, 539.9, 1199.9, 1, 0);
               })
            << hex("02 00 FFFFFFFFFFFFFFFE 00000015 00000028 0438 0960 FFFF 00000001 00000001"
                   "02 02 FFFFFFFFFFFFFFFE 000000C8 00000259 0438 0960 0000 00000000 00000001"
                   "02 01 FFFFFFFFFFFFFFFE 00000437 0000095F 0438 0960 0000 00000001 00000000");
        QTest::newRow("mouse: back and forward buttons")
            << mouse(InputEvent::MouseRelease, 0.0, 0.0, 16, 8 | 16) << hex("02 01 FFFFFFFFFFFFFFFE 00000000 00000000 0438 0960 0000 00000010 00000018");
        QTest::newRow("mouse: unknown button")
            << mouse(InputEvent::MousePress, 0.0, 0.0, 64, 0xFF) << hex("02 00 FFFFFFFFFFFFFFFE 00000000 00000000 0438 0960 FFFF 00000000 0000001F");
        QTest::newRow("mouse: outside the view")
            << mouse(InputEvent::MouseMove, -10.0, 1300.0, 0, 1) << hex("02 02 FFFFFFFFFFFFFFFE FFFFFFEC 00000A28 0438 0960 0000 00000000 00000001");
        QTest::newRow("mouse: double click sends nothing") << mouse(InputEvent::Type(4), 1.0, 1.0, 1, 1) << QByteArray();
        QTest::newRow("mouse: hover sends nothing") << mouse(InputEvent::Type(129), 1.0, 1.0, 0, 0) << QByteArray();
        // Qt counts a tilt to the left as positive, Android a scroll to the right.
        QTest::newRow("wheel: two notches towards the user")
            << Action([](Controller *c) { c->handleWheelEvent(135.4, 900.9, 0, -240, 0); })
            << hex("03 0000010E 00000709 0438 0960 0000 F000 00000000");
        QTest::newRow("wheel: one notch tilted left")
            << Action([](Controller *c) { c->handleWheelEvent(135.4, 900.9, 120, 0, 0); })
            << hex("03 0000010E 00000709 0438 0960 F800 0000 00000000");

        QTest::newRow("key: A press") << key(InputEvent::KeyPress, Qt::Key_A) << hex("00 00 0000001D 00000000 00000000");
        QTest::newRow("key: A release") << key(InputEvent::KeyRelease, Qt::Key_A) << hex("00 01 0000001D 00000000 00000000");
        QTest::newRow("key: Ctrl+C press is copy") << key(InputEvent::KeyPress, Qt::Key_C, ctrl) << copy;
        QTest::newRow("key: Ctrl+V press is paste") << key(InputEvent::KeyPress, Qt::Key_V, ctrl) << paste;
        QTest::newRow("key: Ctrl+X press is cut") << key(InputEvent::KeyPress, Qt::Key_X, ctrl) << cut;
        QTest::newRow("key: Ctrl+Shift+C press is copy") << key(InputEvent::KeyPress, Qt::Key_C, ctrl | Qt::ShiftModifier) << copy;
        QTest::newRow("key: Ctrl+C release is the letter") << key(InputEvent::KeyRelease, Qt::Key_C, ctrl) << hex("00 01 0000001F 00000000 00001000");
        QTest::newRow("key: Ctrl+A is the letter") << key(InputEvent::KeyPress, Qt::Key_A, ctrl) << hex("00 00 0000001D 00000000 00001000");
        QTest::newRow("key: Meta+Return release") << key(InputEvent::KeyRelease, Qt::Key_Return, Qt::MetaModifier)
                                                  << hex("00 01 00000042 00000000 00010000");
        QTest::newRow("key: F5 sends nothing") << key(InputEvent::KeyPress, Qt::Key_F5) << QByteArray();
        QTest::newRow("key: mouse type sends nothing") << key(InputEvent::MousePress, Qt::Key_A) << QByteArray();
        // Text without key codes is pasted; a plain letter after it is a key code again.
        QTest::newRow("key: accented letter is pasted once")
            << Action([](Controller *c) {
                   c->handleKeyEvent(InputEvent::KeyPress, Qt::Key_Eacute, 0, "é");
                   c->handleKeyEvent(InputEvent::KeyRelease, Qt::Key_Eacute, 0, "é");
                   c->handleKeyEvent(InputEvent::KeyPress, Qt::Key_Z, 0, "z");
               })
            << hex("09 0000000000000000 01 00000002 C3A9 00 00 00000036 00000000 00000000");
        QTest::newRow("input method text is pasted")
            << Action([](Controller *c) { c->handleInputMethodText("你好"); c->handleInputMethodText(""); })
            << hex("09 0000000000000000 01 00000006 E4BDA0E5A5BD");
    }

    void slotsWriteMessages()
    {
        QFETCH(Action, action);
        QFETCH(QByteArray, bytes);
        Session session;
        QSignalSpy announced(session.controller, &Controller::messageSent);
        action(session.controller);
        QCOMPARE(session.wire.data().toHex(' '), bytes.toHex(' '));
        QCOMPARE(announced.count(), ControlMessageDecoder().feed(bytes).size());
    }

    void unknownSizesStillSend()
    {
        // Before the first frame both sizes are (-1, -1); the touch goes out all the same.
        Session session({-1, -1}, {-1, -1});
        session.controller->processMouseEvent(5, InputEvent::MousePress, 12.9, 7.0, 1, 1);
        QCOMPARE(session.wire.data().toHex(' '),
                 hex("02 00 0000000000000005 0000000C 00000007 FFFF FFFF FFFF 00000001 00000001").toHex(' '));
        // A zero show size divides by zero: the message is still written, with a clamped point.
        Session zero({0, 0}, {1080, 2400});
        zero.controller->handleMouseEvent(InputEvent::MousePress, 1.0, 1.0, 1, 1);
        QCOMPARE(zero.sent().size(), 1);
    }

    void swipesStepOnATimer_data()
    {
        QTest::addColumn<Action>("swipe");
        QTest::addColumn<int>("steps");
        QTest::addColumn<QString>("firstMove");
        QTest::addColumn<QString>("end");
        // The step fraction is single precision: 1/5 is a hair above 0.2, so the first step up lands on 1055.
        QTest::newRow("up") << Action(&Controller::actionSwipeUp) << 5 << "540,1055" << "540,480";
        QTest::newRow("down") << Action(&Controller::actionSwipeDown) << 10 << "540,1272" << "540,1920";
        QTest::newRow("left") << Action(&Controller::actionSwipeLeft) << 10 << "507,1200" << "216,1200";
        QTest::newRow("right") << Action(&Controller::actionSwipeRight) << 10 << "572,1200" << "864,1200";
    }

    void swipesStepOnATimer()
    {
        QFETCH(Action, swipe);
        QFETCH(int, steps);
        QFETCH(QString, firstMove);
        QFETCH(QString, end);
        Session session;
        QSignalSpy announced(session.controller, &Controller::messageSent);
        swipe(session.controller);
        // The press goes out at once, the rest on a timer that is gone once the swipe is done.
        QCOMPARE(describeControl(session.sent()), QStringList{"touch 0@540,1200"});
        QTRY_VERIFY(session.controller->findChildren<QTimer *>().isEmpty());

        // Each step is the mouse's own touch, whose fields are pinned by the drag's bytes above.
        const QStringList lines = describeControl(session.sent());
        QCOMPARE(lines.size(), steps + 2);
        QCOMPARE(announced.count(), steps + 2);
        QCOMPARE(lines.filter("touch 2@").size(), steps);
        QCOMPARE(lines[1], "touch 2@" + firstMove);
        QCOMPARE(lines[steps], "touch 2@" + end);
        QCOMPARE(lines.last(), "touch 1@" + end);
        QCOMPARE(session.sent().last().value("pointerId").toInteger(), -2);
    }

    // What a profile's keys play on a phone is tst_phonegrid's; here what only a unit can reach.
    void mappedKeysPlayTheirTouches_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QStringList>("sent");
        // The finger of a held key is lifted when the view loses focus, before the key's release.
        QTest::newRow("focus lost") << int(Qt::Key_A) << 0 << QStringList{"touch 0@540,1200", "touch 1@540,1200"};
        // Shift+A is not A: it goes out as the letter with the shift meta state; auto-repeat too.
        QTest::newRow("unmapped modifiers") << int(Qt::Key_A) << int(Qt::ShiftModifier)
                                            << QStringList{"key 0 29 meta 1", "key 0 29 meta 1", "key 1 29 meta 1"};
    }

    void mappedKeysPlayTheirTouches()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QStringList, sent);
        Session session;
        KeyMappingProfile profile("Game");
        QVERIFY(profile.addMapping(Qt::Key_A, 0, "A", 0.5, 0.5, 1));
        Controller *controller = session.controller;
        controller->setKeyMappingProfile(&profile);
        // Auto-repeat of a held mapped key adds nothing.
        controller->handleKeyEvent(InputEvent::KeyPress, key, modifiers, QString());
        controller->handleKeyEvent(InputEvent::KeyPress, key, modifiers, QString());
        controller->releaseKeyMappings();
        controller->handleKeyEvent(InputEvent::KeyRelease, key, modifiers, QString());
        QCOMPARE(describeControl(session.sent()), sent);

        // A profile deleted in the editor turns the phone's mapping off: the key is typed again.
        auto *deleted = new KeyMappingProfile("Gone");
        QVERIFY(deleted->addMapping(Qt::Key_B, 0, "B", 0.5, 0.5, 1));
        controller->setKeyMappingProfile(deleted);
        delete deleted;
        const int before = int(session.sent().size());
        controller->handleKeyEvent(InputEvent::KeyPress, Qt::Key_B, 0, QString());
        QCOMPARE(describeControl(session.sent().mid(before)), QStringList{"key 0 30"});
    }

    void tappingFingerIsNotTakenByAnotherKey()
    {
        Session session;
        KeyMappingProfile profile("Game");
        QVERIFY(profile.addMapping(Qt::Key_T, 0, "T", 0.1, 0.9, 3));
        QVERIFY(profile.addMapping(Qt::Key_A, 0, "A", 0.5, 0.5, 1));
        session.controller->setKeyMappingProfile(&profile);
        // The ten mapping pointers come round to the taps' own while the taps still play.
        session.controller->handleKeyEvent(InputEvent::KeyPress, Qt::Key_T, 0, QString());
        const qint64 tapping = session.sent().first().value("pointerId").toInteger();
        for (int press = 0; press < 10; ++press) {
            session.controller->handleKeyEvent(InputEvent::KeyPress, Qt::Key_A, 0, QString());
            session.controller->handleKeyEvent(InputEvent::KeyRelease, Qt::Key_A, 0, QString());
        }
        const QList<QJsonObject> sent = session.sent();
        QCOMPARE(sent.size(), 1 + 20);
        for (const QJsonObject &touch : sent.mid(1))
            QVERIFY(touch.value("pointerId").toInteger() != tapping);
    }

    void groupSendWaitsForTheClickDelay()
    {
        Session session;
        session.controller->setClickDelayMilliSeconds(150);
        QSignalSpy announced(session.controller, &Controller::messageSent);
        {
            // The original is gone before the delay ends; the copy keeps its text.
            const ControlMsg msg = ControlMsg::setClipboard(0, "later", true);
            session.controller->groupSend(msg);
        }
        QVERIFY(session.wire.data().isEmpty());
        QCOMPARE(announced.count(), 0);
        QTRY_COMPARE(announced.count(), 1);
        QCOMPARE(describeControl(session.sent()), QStringList{"clipboard 0 paste later"});
    }

    void pendingGroupSendDiesWithTheController()
    {
        Session session;
        session.controller->setClickDelayMilliSeconds(30);
        session.controller->groupSend(ControlMsg::setClipboard(0, "dropped", true));
        delete std::exchange(session.controller, nullptr);
        // A message sent later with the same delay arrives; the dropped one would have come first.
        Controller later(nullptr, &session.wire);
        later.setClickDelayMilliSeconds(30);
        later.groupSend(ControlMsg::ofType(ControlMsgType::RotateDevice));
        QTRY_VERIFY(!session.wire.data().isEmpty());
        QCOMPARE(describeControl(session.sent()), QStringList{"RotateDevice"});
    }

    void withoutSessionNothingBreaks()
    {
        Controller controller;
        QSignalSpy announced(&controller, &Controller::messageSent);
        controller.actionHome();
        controller.handleMouseEvent(InputEvent::MousePress, 5.0, 5.0, 1, 1);
        controller.actionSwipeLeft();
        QTRY_COMPARE_WITH_TIMEOUT(announced.count(), 2 + 1 + 12, 5000);
    }
};

QTEST_MAIN(TestController)
#include "tst_controller.moc"
