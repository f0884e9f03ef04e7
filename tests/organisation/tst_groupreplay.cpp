#include "controller.h"
#include "groupreplay.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>
#include <QtTest>

#include <memory>

namespace {
ControlMsg touchAt(int x, int y, const QSize &screen, quint32 action = ControlMsg::TouchDown)
{
    return ControlMsg::injectTouch(quint64(-2), action, 1, 1, {QPoint(x, y), screen}, 1.0f);
}

// The fields of a touch message as the phone reads them off the wire.
struct WireTouch
{
    int action = -1;
    qint64 pointerId = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

QList<WireTouch> readTouches(QByteArray &bytes)
{
    QList<WireTouch> touches;
    while (bytes.size() >= 32 && bytes.at(0) == 2) {
        const auto *p = reinterpret_cast<const uchar *>(bytes.constData());
        touches.append({p[1], qint64(qFromBigEndian<quint64>(p + 2)), qFromBigEndian<qint32>(p + 10),
                        qFromBigEndian<qint32>(p + 14), qFromBigEndian<quint16>(p + 18),
                        qFromBigEndian<quint16>(p + 20)});
        bytes.remove(0, 32);
    }
    return touches;
}

// One simulated phone: the controller writes on one end of a loopback connection, the test
// reads what arrives at the other.
struct Phone
{
    std::unique_ptr<QTcpSocket> hostSide;
    QTcpSocket *phoneSide = nullptr;
    std::unique_ptr<Controller> controller;
    QByteArray received;
    QList<qint64> arrivals;
};
}

class TestGroupReplay : public QObject
{
    Q_OBJECT

private:
    QTcpServer m_listener;

    std::unique_ptr<Phone> connectPhone(QElapsedTimer &clock)
    {
        auto phone = std::make_unique<Phone>();
        phone->hostSide = std::make_unique<QTcpSocket>();
        phone->hostSide->connectToHost(QHostAddress::LocalHost, m_listener.serverPort());
        if (!phone->hostSide->waitForConnected(3000) || !m_listener.waitForNewConnection(3000))
            return nullptr;
        phone->phoneSide = m_listener.nextPendingConnection();
        phone->controller = std::make_unique<Controller>(nullptr, phone->hostSide.get());
        Phone *raw = phone.get();
        connect(phone->phoneSide, &QTcpSocket::readyRead, this, [raw, &clock] {
            raw->received += raw->phoneSide->readAll();
            raw->arrivals.append(clock.elapsed());
        });
        return phone;
    }

private slots:
    void initTestCase() { QVERIFY(m_listener.listen(QHostAddress::LocalHost, 0)); }

    void rescaling_data()
    {
        QTest::addColumn<QSize>("host");
        QTest::addColumn<QSize>("target");
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<QPoint>("expectedPoint");
        QTest::addColumn<QSize>("expectedScreen");
        QTest::newRow("1080x2400 to 720x1600") << QSize(1080, 2400) << QSize(720, 1600) << QPoint(540, 1200)
                                               << QPoint(360, 800) << QSize(720, 1600);
        QTest::newRow("1080x2340 to 1080x2400") << QSize(1080, 2340) << QSize(1080, 2400) << QPoint(500, 1000)
                                                << QPoint(500, 1026) << QSize(1080, 2400);
        QTest::newRow("1080x2400 to 1440x3200") << QSize(1080, 2400) << QSize(1440, 3200) << QPoint(540, 1200)
                                                << QPoint(720, 1600) << QSize(1440, 3200);
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
        // A scroll carries a position too, but only touches are rescaled.
        const ControlMsg scroll = ControlMsg::injectScroll({QPoint(540, 1200), QSize(1080, 2400)}, 0, 1, 0);
        QCOMPARE(GroupReplay::rescaled(scroll, QSize(1080, 2400), QSize(720, 1600)).scroll.position.point,
                 QPoint(540, 1200));
    }

    void eachPhoneGetsItsCopyAfterItsOwnDelay()
    {
        QElapsedTimer clock;
        const QList<int> delays{0, 60, 120};
        const QList<QSize> frames{QSize(720, 1600), QSize(1440, 3200), QSize(1080, 2340)};
        std::vector<std::unique_ptr<Phone>> phones;
        QList<GroupReplay::Target> targets;
        for (int i = 0; i < 3; ++i) {
            phones.push_back(connectPhone(clock));
            QVERIFY(phones.back());
            phones.back()->controller->setClickDelayMilliSeconds(delays.at(i));
            targets.append({phones.back()->controller.get(), frames.at(i)});
        }
        // A phone whose session has no controller is skipped.
        targets.insert(1, {nullptr, QSize(720, 1600)});

        clock.start();
        // A whole gesture: every phone must see it in order, shifted by its own delay.
        for (const quint32 action : {ControlMsg::TouchDown, ControlMsg::TouchMove, ControlMsg::TouchUp}) {
            const ControlMsg msg = touchAt(540, 1200, QSize(1080, 2400), action);
            GroupReplay::replay(msg, QSize(1080, 2400), targets);
        }
        for (const auto &phone : phones)
            QTRY_COMPARE(phone->received.size(), 3 * 32);

        const QList<QPoint> expected{QPoint(360, 800), QPoint(720, 1600), QPoint(540, 1170)};
        for (int i = 0; i < 3; ++i) {
            QByteArray bytes = phones.at(i)->received;
            const QList<WireTouch> touches = readTouches(bytes);
            QCOMPARE(touches.size(), 3);
            QCOMPARE(touches.at(0).action, 0);
            QCOMPARE(touches.at(1).action, 2);
            QCOMPARE(touches.at(2).action, 1);
            for (const WireTouch &touch : touches) {
                QCOMPARE(QPoint(touch.x, touch.y), expected.at(i));
                QCOMPARE(QSize(touch.width, touch.height), frames.at(i));
                QCOMPARE(touch.pointerId, qint64(-2));
            }
            // Never before the phone's delay.
            QVERIFY2(phones.at(i)->arrivals.first() >= delays.at(i),
                     qPrintable(QString("phone %1 at %2 ms").arg(i).arg(phones.at(i)->arrivals.first())));
        }
        QVERIFY(phones.at(0)->arrivals.first() < phones.at(2)->arrivals.first());
    }

    void pendingCopiesDieWithTheirController()
    {
        QElapsedTimer clock;
        std::unique_ptr<Phone> phone = connectPhone(clock);
        QVERIFY(phone);
        phone->controller->setClickDelayMilliSeconds(30);
        clock.start();
        GroupReplay::replay(touchAt(1, 1, QSize(10, 10)), QSize(10, 10), {{phone->controller.get(), QSize(10, 10)}});
        phone->controller.reset();
        QTest::qWait(80);
        QCOMPARE(phone->received.size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestGroupReplay)
#include "tst_groupreplay.moc"
