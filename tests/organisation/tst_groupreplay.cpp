// The rescaling edge cases of group replay. Delivery to every phone after its own delay is proven on
// simulated phones by tst_groupcontrol, the end of a pending copy with its controller by tst_controller.
#include "controller.h"
#include "groupreplay.h"

#include <QBuffer>
#include <QtTest>

namespace {
ControlMsg touchAt(int x, int y, const QSize &screen, quint32 action = ControlMsg::TouchDown)
{
    return ControlMsg::injectTouch(quint64(-2), action, 1, 1, {QPoint(x, y), screen}, 1.0f);
}
}

class TestGroupReplay : public QObject
{
    Q_OBJECT

private slots:
    void rescaling_data()
    {
        QTest::addColumn<QSize>("host");
        QTest::addColumn<QSize>("target");
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<QPoint>("expectedPoint");
        QTest::addColumn<QSize>("expectedScreen");
        QTest::newRow("1080x2340 to 1080x2400") << QSize(1080, 2340) << QSize(1080, 2400) << QPoint(500, 1000)
                                                << QPoint(500, 1026) << QSize(1080, 2400);
        QTest::newRow("halves round up") << QSize(200, 200) << QSize(300, 300) << QPoint(1, 3) << QPoint(2, 5)
                                         << QSize(300, 300);
        QTest::newRow("negative halves round down") << QSize(200, 200) << QSize(300, 300) << QPoint(-1, -3)
                                                    << QPoint(-2, -5) << QSize(300, 300);
        QTest::newRow("host frame unknown") << QSize(-1, -1) << QSize(720, 1600) << QPoint(540, 1200)
                                            << QPoint(540, 1200) << QSize(1080, 2400);
        QTest::newRow("host width zero") << QSize(0, 2400) << QSize(720, 1600) << QPoint(540, 1200)
                                         << QPoint(540, 1200) << QSize(1080, 2400);
        QTest::newRow("target frame unknown") << QSize(1080, 2400) << QSize(-1, -1) << QPoint(540, 1200)
                                              << QPoint(540, 1200) << QSize(1080, 2400);
    }

    void rescaling()
    {
        QFETCH(QSize, host);
        QFETCH(QSize, target);
        QFETCH(QPoint, point);
        QFETCH(QPoint, expectedPoint);
        QFETCH(QSize, expectedScreen);
        // The host's controller writes positions on its own frame when it knows one.
        const QSize screen = host.width() > 0 ? host : QSize(1080, 2400);
        const ControlMsg original = touchAt(point.x(), point.y(), screen, ControlMsg::TouchMove);
        const ControlMsg copy = GroupReplay::rescaled(original, host, target);
        QCOMPARE(copy.touch.position.point, expectedPoint);
        QCOMPARE(copy.touch.position.screenSize, expectedScreen);
        QCOMPARE(copy.touch.pointerId, original.touch.pointerId);
        QCOMPARE(copy.touch.action, quint32(ControlMsg::TouchMove));
        QCOMPARE(copy.touch.actionButton, 1u);
        QCOMPARE(copy.touch.buttons, 1u);
        QCOMPARE(copy.touch.pressure, 1.0f);
    }

    void otherMessagesPassUnchanged()
    {
        const ControlMsg home = ControlMsg::injectKeycode(ControlMsg::KeyDown, 3, 0, 0);
        const ControlMsg homeCopy = GroupReplay::rescaled(home, QSize(1080, 2400), QSize(720, 1600));
        QCOMPARE(homeCopy.type, ControlMsgType::InjectKeycode);
        QCOMPARE(homeCopy.keycode.keycode, 3);
        const ControlMsg paste = ControlMsg::setClipboard(0, "hello", true);
        const ControlMsg pasteCopy = GroupReplay::rescaled(paste, QSize(1080, 2400), QSize(720, 1600));
        QCOMPARE(pasteCopy.text, QByteArray("hello"));
        QVERIFY(pasteCopy.clipboard.paste);
        // A scroll lands where the host's pointer was, at each phone's scale, like a touch.
        const ControlMsg scroll = ControlMsg::injectScroll({QPoint(540, 1200), QSize(1080, 2400)}, 0, 1, 0);
        const ControlMsg scrollCopy = GroupReplay::rescaled(scroll, QSize(1080, 2400), QSize(720, 1600));
        QCOMPARE(scrollCopy.scroll.position.point, QPoint(360, 800));
        QCOMPARE(scrollCopy.scroll.position.screenSize, QSize(720, 1600));
        QCOMPARE(scrollCopy.scroll.vscroll, 1.0f);
    }

    void phonesWithoutControllerAreSkipped()
    {
        // A phone whose session has no controller yet: the others still get their copies.
        QBuffer wire;
        QVERIFY(wire.open(QIODevice::WriteOnly));
        Controller controller(nullptr, &wire);
        GroupReplay::replay(touchAt(540, 1200, QSize(1080, 2400)), QSize(1080, 2400),
                            {{nullptr, QSize(720, 1600)}, {&controller, QSize(720, 1600)}});
        QCOMPARE(wire.data().toHex(' '),
                 QByteArray::fromHex("02 00 FFFFFFFFFFFFFFFE 00000168 00000320 02D0 0640 FFFF 00000001 00000001")
                     .toHex(' '));
    }
};

QTEST_GUILESS_MAIN(TestGroupReplay)
#include "tst_groupreplay.moc"
