#include "controller.h"
#include "device.h"
#include "devicegroup.h"
#include "keymappingprofile.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QtTest>

// A group of four simulated phones of different sizes, through Debian's real adb, started together
// and driven from the host phone. Stopping them all is proven by tst_phonegrid.
class TestGroupControl : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    std::unique_ptr<DeviceGroup> m_group;
    // The phones encode sizes in multiples of 8, so 2340 lines arrive as 2336.
    const QList<QSize> m_frames{{1080, 2400}, {720, 1600}, {1080, 2336}, {1440, 3200}};

    PhoneSimProcess *phone(int row) const { return m_fixture->phones().at(row).get(); }
    Device *device(int row) const { return m_group->devices().at(row); }
    int delayOf(int row) const { return device(row)->controller()->clickDelayMilliSeconds(); }

    // The control messages of one type a phone has read since `since` (ms since the epoch).
    QList<QJsonObject> readSince(int row, const QString &type, qint64 since) const
    {
        QList<QJsonObject> found;
        for (const QJsonObject &line : phone(row)->journal("control")) {
            if (line.value("type").toString() == type && qint64(line.value("time").toDouble()) >= since)
                found.append(line);
        }
        return found;
    }

    // Sets the click delay and waits until the phones have drawn theirs in the background.
    void applyDelay(int seconds)
    {
        m_group->setClickDelaySeconds(seconds);
        m_group->applySettingsToAllDevices();
        QTRY_VERIFY(m_group->findChildren<QFutureWatcherBase *>().isEmpty());
    }

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        for (const QSize size : {QSize(1080, 2400), QSize(720, 1600), QSize(1080, 2340), QSize(1440, 3200)})
            QVERIFY2(m_fixture->addPhone(size), qPrintable(m_fixture->error()));
        DeviceGroup::setStaggerIntervals({20, 30, 50});

        // The group takes the phones in the order given, and starting them all shows each at its own
        // size (full-size frames, so that every phone's frame is its screen).
        m_group = std::make_unique<DeviceGroup>();
        m_group->renameTo("Rack");
        m_group->setMaxSize(0);
        QList<ADBDeviceInfo> records;
        for (const auto &sim : m_fixture->phones())
            records << ADBDeviceInfo{sim->serial()};
        QVERIFY(m_group->addDevices(records));
        QTRY_COMPARE(m_group->deviceCount(), 4);
        m_group->startAllDevices();
        for (int row = 0; row < 4; ++row) {
            QCOMPARE(device(row)->adbConnectionSerial(), phone(row)->serial());
            QTRY_VERIFY_WITH_TIMEOUT(device(row)->controller() != nullptr, 20000);
            QTRY_COMPARE_WITH_TIMEOUT(device(row)->frameSize(), m_frames.at(row), 20000);
        }
        m_group->startGroupControl();
        QCOMPARE(m_group->hostDevice(), device(0));
    }

    void cleanupTestCase()
    {
        m_group.reset();
        m_fixture.reset();
    }

    void delaysAreDrawnForTheOtherPhonesOnly()
    {
        // Several draws: each must stay below the bound, and they must not all be the same.
        QSet<int> seen;
        for (int round = 0; round < 3; ++round) {
            applyDelay(round % 2 ? 2 : 1);
            for (int row = 1; row < 4; ++row) {
                QVERIFY2(delayOf(row) >= 0 && delayOf(row) < m_group->clickDelaySeconds() * 1000,
                         qPrintable(QString::number(delayOf(row))));
                seen.insert(delayOf(row));
            }
            QCOMPARE(delayOf(0), 0);
        }
        QVERIFY(seen.size() > 1);

        // Back to no delay: the phones keep the delays they drew.
        const QList<int> before{delayOf(1), delayOf(2), delayOf(3)};
        applyDelay(0);
        QCOMPARE((QList<int>{delayOf(1), delayOf(2), delayOf(3)}), before);
    }

    // What the host plays (a touch, a mapped key, a wheel turn, a stored phrase, a key) reaches
    // every phone of the group after that phone's own delay, positions at each phone's own scale;
    // what another phone plays drives that phone alone.
    void hostInputReachesEveryPhoneRescaledAfterItsDelay()
    {
        applyDelay(1);
        const QList<int> delays{0, delayOf(1), delayOf(2), delayOf(3)};
        KeyMappingProfile profile("Farm");
        QVERIFY(profile.addMapping(Qt::Key_F, 0, "F", 0.25, 0.75, 1));
        device(0)->setCurrentKeyMappingProfile(&profile);
        device(0)->setShowSize(QSize(540, 1200));

        const qint64 sentAt = QDateTime::currentMSecsSinceEpoch();
        device(2)->controller()->actionBack();
        Controller *host = device(0)->controller();
        for (const auto action : {ControlMsg::TouchDown, ControlMsg::TouchUp})
            host->send(ControlMsg::injectTouch(quint64(-2), action, 1, 1, {QPoint(540, 1200), QSize(1080, 2400)},
                                               action == ControlMsg::TouchDown ? 1.0f : 0.0f));
        host->handleKeyEvent(6, Qt::Key_F, 0, "f");
        host->handleKeyEvent(7, Qt::Key_F, 0, "f");
        host->handleWheelEvent(270, 600, 0, 120, 0);
        host->actionInputText("收菜 ✓");
        host->actionHome();
        device(0)->setCurrentKeyMappingProfile(nullptr);

        const QList<QPoint> centres{{540, 1200}, {360, 800}, {540, 1168}, {720, 1600}};
        const QList<QPoint> taps{{270, 1800}, {180, 1200}, {270, 1752}, {360, 2400}};
        // Where an event landed, on the screen size it was written for.
        const auto where = [](const QJsonObject &e) {
            return QRect(e["x"].toInt(), e["y"].toInt(), e["screenWidth"].toInt(), e["screenHeight"].toInt());
        };
        for (int row = 0; row < 4; ++row) {
            // Each phone gets its copies in the order sent, so a copy of phone 3's Back would come
            // before the host's Home; the mapped letter is not typed.
            const auto keycodes = [&] {
                QList<int> codes;
                for (const QJsonObject &key : readSince(row, "InjectKeycode", sentAt))
                    codes << key["keycode"].toInt();
                return codes;
            };
            const QList<int> expected = row == 2 ? QList<int>{4, 4, 3, 3} : QList<int>{3, 3};
            QTRY_COMPARE_WITH_TIMEOUT(keycodes().size(), expected.size(), 10000);
            QCOMPARE(keycodes(), expected);
            QCOMPARE(readSince(row, "SetClipboard", sentAt).size(), 1);
            QCOMPARE(readSince(row, "SetClipboard", sentAt)[0].value("text").toString(), QString("收菜 ✓"));
            const QList<QJsonObject> touches = readSince(row, "InjectTouchEvent", sentAt);
            QCOMPARE(touches.size(), 4);
            for (int i = 0; i < 4; ++i) {
                QCOMPARE(touches[i]["action"].toInt(), i % 2);
                QCOMPARE(where(touches[i]), QRect(i < 2 ? centres.at(row) : taps.at(row), m_frames.at(row)));
            }
            QCOMPARE(touches[0]["pointerId"].toDouble(), -2.0);
            const QList<QJsonObject> wheel = readSince(row, "InjectScrollEvent", sentAt);
            QCOMPARE(wheel.size(), 1);
            QCOMPARE(where(wheel[0]), QRect(centres.at(row), m_frames.at(row)));
            QCOMPARE(wheel[0]["vscroll"].toDouble(), 1.0);
            // Not before the phone's own delay; the upper bound is wide, the machine is shared.
            const qint64 after = qint64(touches[0].value("time").toDouble()) - sentAt;
            QVERIFY2(after >= delays.at(row) && after <= delays.at(row) + 3000,
                     qPrintable(QString("phone %1: %2 ms for a %3 ms delay").arg(row).arg(after).arg(delays.at(row))));
        }
    }
};

QTEST_MAIN(TestGroupControl)
#include "tst_groupcontrol.moc"
