// The rescaling edge cases of group replay. Delivery to every phone after its own delay is proven by
// tst_rack, the end of a pending copy with its controller by tst_controller.
#include "controller.h"
#include "groupreplay.h"

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
        const auto row = [](const char *name, QSize host, QSize target, QPoint point, QPoint expected, QSize screen) {
            QTest::newRow(name) << host << target << point << expected << screen;
        };
        row("1080x2340 to 1080x2400", {1080, 2340}, {1080, 2400}, {500, 1000}, {500, 1026}, {1080, 2400});
        row("halves round up", {200, 200}, {300, 300}, {1, 3}, {2, 5}, {300, 300});
        row("negative halves round down", {200, 200}, {300, 300}, {-1, -3}, {-2, -5}, {300, 300});
        row("host frame unknown", {-1, -1}, {720, 1600}, {540, 1200}, {540, 1200}, {1080, 2400});
        row("host width zero", {0, 2400}, {720, 1600}, {540, 1200}, {540, 1200}, {1080, 2400});
        row("target frame unknown", {1080, 2400}, {-1, -1}, {540, 1200}, {540, 1200}, {1080, 2400});
    }

    void rescaling()
    {
        QFETCH(QSize, host);
        QFETCH(QSize, target);
        QFETCH(QPoint, point);
        // The host's controller writes positions on its own frame when it knows one.
        const QSize screen = host.width() > 0 ? host : QSize(1080, 2400);
        const ControlMsg original = touchAt(point.x(), point.y(), screen, ControlMsg::TouchMove);
        const ControlMsg copy = GroupReplay::rescaled(original, host, target);
        QTEST(copy.touch.position.point, "expectedPoint");
        QTEST(copy.touch.position.screenSize, "expectedScreen");
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
