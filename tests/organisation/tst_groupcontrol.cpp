#include "adbclient.h"
#include "controller.h"
#include "device.h"
#include "devicegroup.h"
#include "keymappingprofile.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QDateTime>
#include <QtTest>

// A group of four simulated phones of different sizes, through Debian's real adb: added, started,
// driven from the host phone, and stopped.
class TestGroupControl : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    std::unique_ptr<DeviceGroup> m_group;
    const QList<QSize> m_sizes{{1080, 2400}, {720, 1600}, {1080, 2340}, {1440, 3200}};
    // The phones encode sizes in multiples of 8, so 2340 lines arrive as 2336.
    const QList<QSize> m_frames{{1080, 2400}, {720, 1600}, {1080, 2336}, {1440, 3200}};

    PhoneSimProcess *phone(int row) const { return m_fixture->phones().at(row).get(); }
    Device *device(int row) const { return m_group->devices().at(row); }

    // The control messages of one type a phone has read since `since` (ms since the epoch).
    static QList<QJsonObject> readSince(const PhoneSimProcess *phone, const QString &type, qint64 since)
    {
        QList<QJsonObject> found;
        for (const QJsonObject &line : phone->journal("control")) {
            if (line.value("type").toString() == type && qint64(line.value("time").toDouble()) >= since)
                found.append(line);
        }
        return found;
    }

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        for (const QSize &size : m_sizes)
            QVERIFY2(m_fixture->addPhone(size), qPrintable(m_fixture->error()));
        DeviceGroup::setStaggerIntervals({20, 30, 50});
    }

    void cleanupTestCase()
    {
        m_group.reset();
        m_fixture.reset();
    }

    void addAndStartAll()
    {
        m_group = std::make_unique<DeviceGroup>();
        m_group->renameTo("Rack");
        // Full-size frames, so that every phone's frame is its screen.
        m_group->setMaxSize(0);

        const QList<ADBDeviceInfo> listed = AdbClient::devices();
        QList<ADBDeviceInfo> records;
        for (const auto &sim : m_fixture->phones()) {
            const auto found = std::find_if(listed.cbegin(), listed.cend(),
                                            [&](const ADBDeviceInfo &info) { return info.adb_serial == sim->serial(); });
            QVERIFY2(found != listed.cend(), qPrintable(sim->serial()));
            records.append(*found);
        }
        QVERIFY(m_group->addDevices(records));
        QTRY_COMPARE(m_group->deviceCount(), 4);
        for (int row = 0; row < 4; ++row) {
            QCOMPARE(device(row)->adbConnectionSerial(), phone(row)->serial());
            QCOMPARE(device(row)->serverParamsSmallView()->maxSize(), 0);
        }

        m_group->startAllDevices();
        for (int row = 0; row < 4; ++row) {
            QTRY_VERIFY_WITH_TIMEOUT(device(row)->running(), 20000);
            QTRY_VERIFY_WITH_TIMEOUT(device(row)->controller() != nullptr, 20000);
            QTRY_COMPARE_WITH_TIMEOUT(device(row)->frameSize(), m_frames.at(row), 20000);
        }
    }

    void delaysAreDrawnForTheOtherPhonesOnly()
    {
        QVERIFY(m_group && m_group->deviceCount() == 4);
        m_group->startGroupControl();
        QCOMPARE(m_group->hostDevice(), device(0));

        // Several draws: each must stay below the bound, and they must not all be the same.
        QSet<int> seen;
        for (int round = 0; round < 3; ++round) {
            m_group->setClickDelaySeconds(round % 2 ? 2 : 1);
            m_group->applySettingsToAllDevices();
            QTest::qWait(100);
            for (int row = 1; row < 4; ++row) {
                const int delay = device(row)->controller()->clickDelayMilliSeconds();
                QVERIFY2(delay >= 0 && delay < m_group->clickDelaySeconds() * 1000, qPrintable(QString::number(delay)));
                seen.insert(delay);
            }
            QCOMPARE(device(0)->controller()->clickDelayMilliSeconds(), 0);
        }
        QVERIFY(seen.size() > 1);

        // Back to no delay: the phones keep the delays they drew.
        QList<int> before;
        for (int row = 1; row < 4; ++row)
            before << device(row)->controller()->clickDelayMilliSeconds();
        m_group->setClickDelaySeconds(0);
        QTest::qWait(100);
        for (int row = 1; row < 4; ++row)
            QCOMPARE(device(row)->controller()->clickDelayMilliSeconds(), before.at(row - 1));
    }

    void hostTouchReachesEveryPhoneRescaledAfterItsDelay()
    {
        QVERIFY(m_group && m_group->groupControlMode());
        m_group->setClickDelaySeconds(1);
        m_group->applySettingsToAllDevices();
        QTest::qWait(100);
        QList<int> delays{0};
        for (int row = 1; row < 4; ++row)
            delays << device(row)->controller()->clickDelayMilliSeconds();

        const qint64 sentAt = QDateTime::currentMSecsSinceEpoch();
        ControlMsg down = ControlMsg::injectTouch(quint64(-2), ControlMsg::TouchDown, 1, 1,
                                                  {QPoint(540, 1200), QSize(1080, 2400)}, 1.0f);
        device(0)->controller()->send(down);
        ControlMsg up = ControlMsg::injectTouch(quint64(-2), ControlMsg::TouchUp, 1, 1,
                                                {QPoint(540, 1200), QSize(1080, 2400)}, 0.0f);
        device(0)->controller()->send(up);

        const QList<QPoint> expected{{540, 1200}, {360, 800}, {540, 1168}, {720, 1600}};
        for (int row = 0; row < 4; ++row) {
            QTRY_COMPARE_WITH_TIMEOUT(readSince(phone(row), "InjectTouchEvent", sentAt).size(), 2, 10000);
            const QList<QJsonObject> touches = readSince(phone(row), "InjectTouchEvent", sentAt);
            for (const QJsonObject &touch : touches) {
                QCOMPARE(QPoint(touch.value("x").toInt(), touch.value("y").toInt()), expected.at(row));
                QCOMPARE(QSize(touch.value("screenWidth").toInt(), touch.value("screenHeight").toInt()),
                         m_frames.at(row));
                QCOMPARE(touch.value("pointerId").toDouble(), -2.0);
            }
            QCOMPARE(touches.at(0).value("action").toInt(), 0);
            QCOMPARE(touches.at(1).value("action").toInt(), 1);
            // Not before the phone's own delay; the upper bound is wide, the machine is shared.
            const qint64 after = qint64(touches.at(0).value("time").toDouble()) - sentAt;
            QVERIFY2(after >= delays.at(row) && after <= delays.at(row) + 3000,
                     qPrintable(QString("phone %1: %2 ms for a %3 ms delay").arg(row).arg(after).arg(delays.at(row))));
        }
    }

    void keysAreReplayedAndOtherPhonesAreNot()
    {
        QVERIFY(m_group && m_group->groupControlMode());
        const qint64 since = QDateTime::currentMSecsSinceEpoch();
        device(0)->controller()->actionHome();
        for (int row = 0; row < 4; ++row) {
            QTRY_COMPARE_WITH_TIMEOUT(readSince(phone(row), "InjectKeycode", since).size(), 2, 10000);
            QCOMPARE(readSince(phone(row), "InjectKeycode", since).at(0).value("keycode").toInt(), 3);
        }

        // A phone that is not the host only drives itself.
        const qint64 later = QDateTime::currentMSecsSinceEpoch();
        device(2)->controller()->actionBack();
        QTRY_COMPARE_WITH_TIMEOUT(readSince(phone(2), "InjectKeycode", later).size(), 2, 10000);
        QTest::qWait(1200);
        for (int row : {0, 1, 3})
            QCOMPARE(readSince(phone(row), "InjectKeycode", later).size(), 0);
    }

    // What the host's view plays (a mapped key, a wheel turn, a stored phrase) reaches every phone
    // of the group, positions at each phone's own scale.
    void hostViewInputReachesEveryPhone()
    {
        QVERIFY(m_group && m_group->groupControlMode());
        KeyMappingProfile profile("Farm");
        QVERIFY(profile.addMapping(Qt::Key_F, 0, "F", 0.25, 0.75, 1));
        device(0)->setCurrentKeyMappingProfile(&profile);
        device(0)->setShowSize(QSize(540, 1200));

        const qint64 since = QDateTime::currentMSecsSinceEpoch();
        Controller *host = device(0)->controller();
        host->handleKeyEvent(6, Qt::Key_F, 0, "f");
        host->handleKeyEvent(7, Qt::Key_F, 0, "f");
        host->handleWheelEvent(270, 600, 0, 120, 0);
        host->actionInputText("收菜 ✓");

        const QList<QPoint> taps{{270, 1800}, {180, 1200}, {270, 1752}, {360, 2400}};
        const QList<QPoint> scrolls{{540, 1200}, {360, 800}, {540, 1168}, {720, 1600}};
        for (int row = 0; row < 4; ++row) {
            QTRY_COMPARE_WITH_TIMEOUT(readSince(phone(row), "SetClipboard", since).size(), 1, 10000);
            const QList<QJsonObject> touches = readSince(phone(row), "InjectTouchEvent", since);
            QCOMPARE(touches.size(), 2);
            for (int i = 0; i < 2; ++i) {
                QCOMPARE(touches[i].value("action").toInt(), i);
                QCOMPARE(QPoint(touches[i].value("x").toInt(), touches[i].value("y").toInt()), taps.at(row));
                QCOMPARE(touches[i].value("pointerId").toDouble(), touches[0].value("pointerId").toDouble());
                QVERIFY(touches[i].value("pointerId").toDouble() >= 0);
            }
            const QList<QJsonObject> wheel = readSince(phone(row), "InjectScrollEvent", since);
            QCOMPARE(wheel.size(), 1);
            QCOMPARE(QPoint(wheel[0].value("x").toInt(), wheel[0].value("y").toInt()), scrolls.at(row));
            QCOMPARE(QSize(wheel[0].value("screenWidth").toInt(), wheel[0].value("screenHeight").toInt()),
                     m_frames.at(row));
            QCOMPARE(wheel[0].value("vscroll").toDouble(), 1.0);
            QCOMPARE(readSince(phone(row), "SetClipboard", since)[0].value("text").toString(), QString("收菜 ✓"));
            // The mapped letter is not typed.
            QCOMPARE(readSince(phone(row), "InjectKeycode", since).size(), 0);
        }
        device(0)->setCurrentKeyMappingProfile(nullptr);
    }

    void stopAllLeavesEveryPhoneStoppedAndListed()
    {
        QVERIFY(m_group && m_group->deviceCount() == 4);
        m_group->stopGroupControl();
        m_group->stopAllDevices();
        for (int row = 0; row < 4; ++row)
            QTRY_VERIFY_WITH_TIMEOUT(!device(row)->running(), 10000);
        // The phones stay attached, so the group keeps them, ready for a new start.
        QTest::qWait(500);
        QCOMPARE(m_group->deviceCount(), 4);
        for (int row = 0; row < 4; ++row) {
            QCOMPARE(device(row)->adbConnectionSerial(), phone(row)->serial());
            QVERIFY(m_fixture->adb().listed(phone(row)->serial()));
            QTRY_VERIFY_WITH_TIMEOUT(!phone(row)->journal("server_stop").isEmpty(), 10000);
        }
    }
};

QTEST_MAIN(TestGroupControl)
#include "tst_groupcontrol.moc"
