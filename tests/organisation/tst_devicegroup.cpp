#include "adbclient.h"
#include "device.h"
#include "devicegroup.h"
#include "fakeadb.h"
#include "groupserials.h"
#include "serverparams.h"

#include <QtTest>

class TestDeviceGroup : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;

    // Adds the devices at once and waits until they are rows.
    static void fill(DeviceGroup &group, const QStringList &serials)
    {
        QList<ADBDeviceInfo> records;
        for (const QString &serial : serials)
            records << ADBDeviceInfo{serial};
        const int expected = group.deviceCount() + serials.size();
        QVERIFY(group.addDevices(records));
        QTRY_COMPARE(group.deviceCount(), expected);
    }

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase()
    {
        AdbClient::setProgram(m_adb.program());
        // The server file is absent on purpose: a start then reports at once and leaves the phone alone.
        qputenv("KORVEL_SCRCPY_SERVER", "/nonexistent/scrcpy-server");
    }

    void init()
    {
        DeviceGroup::setStaggerIntervals({0, 0, 0});
        m_adb.clear();
    }

    void addDevicesInsertsRowsOneByOneAtTheAddInterval()
    {
        DeviceGroup::setStaggerIntervals({40, 0, 0});
        DeviceGroup group;
        QElapsedTimer clock;
        QList<qint64> insertedAt;
        QList<int> counts;
        connect(&group, &DeviceGroup::deviceCountChanged, this, [&] {
            insertedAt << clock.elapsed();
            counts << group.deviceCount();
        });
        QSignalSpy rows(&group, &QAbstractItemModel::rowsInserted);

        QVERIFY(!group.addDevices({}));
        clock.start();
        QVERIFY(group.addDevices({{"A", {}, {}, true}, {"192.168.1.7:5555"}, {"C", {}, {}, true}}));
        QCOMPARE(group.deviceCount(), 0);
        QTRY_COMPARE(group.deviceCount(), 3);

        QCOMPARE(counts, (QList<int>{1, 2, 3}));
        // Timers never fire early, only late, so only the lower bounds hold on a busy machine.
        QVERIFY2(insertedAt.at(1) >= 39, qPrintable(QString::number(insertedAt.at(1))));
        QVERIFY2(insertedAt.at(2) >= 79, qPrintable(QString::number(insertedAt.at(2))));
        QCOMPARE((QList<int>{rows.at(0).at(1).toInt(), rows.at(1).at(1).toInt(), rows.at(2).at(1).toInt()}),
                 (QList<int>{0, 1, 2}));
        QCOMPARE(serialsOf(&group), (QStringList{"A", "192.168.1.7:5555", "C"}));
        QCOMPARE(group.devices().at(0)->connectionType(), Device::USB);
        QCOMPARE(group.devices().at(1)->connectionType(), Device::WiFi);
        QCOMPARE(group.devices().at(2)->indexInGroup(), 2);
        // Each newly added phone has its address read in the background.
        const auto askedAboutC = [](const QStringList &call) { return call.mid(0, 2) == QStringList{"-s", "C"}; };
        QTRY_VERIFY([&] { const auto calls = m_adb.calls(); return std::any_of(calls.cbegin(), calls.cend(), askedAboutC); }());
    }

    void groupEndingBeforePendingInsertionsTakesTheDevicesAlong()
    {
        DeviceGroup::setStaggerIntervals({10000, 0, 0});
        QPointer<Device> pending;
        {
            DeviceGroup group;
            group.addDevices({{"A"}, {"B"}});
            QTRY_COMPARE(group.deviceCount(), 1);
            pending = group.findChildren<Device *>().constLast();
            QVERIFY(pending != group.devices().first());
        }
        QVERIFY(pending.isNull());
    }

    void streamSettingsReachThePhones()
    {
        DeviceGroup group;
        group.renameTo("G");
        group.setMaxSize(1080);
        group.setMaxFPS(60);
        group.setBitRate(8000000);
        group.setMaxSizeBigView(1920);
        group.setMaxFPSBigView(50);
        group.setBitRateBigView(6000000);
        group.setEnableAudio(true);
        fill(group, {"A", "B"});
        // A new phone starts with the group's settings...
        const auto params = [](const ServerParams *p) { return QList<int>{p->maxSize(), p->maxFps(), p->bitRate(), p->audio()}; };
        QCOMPARE(params(group.devices().first()->serverParamsSmallView()), (QList<int>{1080, 60, 8000000, true}));
        QCOMPARE(params(group.devices().first()->serverParamsBigView()), (QList<int>{1920, 50, 6000000, true}));

        // ...and later changes reach every phone in the background.
        group.setMaxSize(1200);
        group.setMaxFPSBigView(24);
        for (const Device *device : group.devices()) {
            QTRY_COMPARE(device->serverParamsSmallView()->maxSize(), 1200);
            QTRY_COMPARE(device->serverParamsBigView()->maxFps(), 24);
        }

        // Every phone hears of the audio switch, even when the group's value stays; it is saved once.
        QSignalSpy messages(group.devices().at(1), &Device::deviceMessage);
        QSignalSpy saves(&group, &DeviceGroup::settingsChanged);
        group.setEnableAudio(true);
        group.setEnableAudio(false);
        QCOMPARE(saves.count(), 1);
        QCOMPARE(messages.count(), 2);
        QCOMPARE(messages.at(0).at(0).toString(), QString("Audio Enabled, Need Reconnect"));
        QCOMPARE(messages.at(1).at(0).toString(), QString("Audio Disabled, Need Reconnect"));
        QVERIFY(!group.devices().at(1)->serverParamsSmallView()->audio());
    }

    void onlyANamedGroupSavesAChangedSetting()
    {
        DeviceGroup group;
        QSignalSpy saves(&group, &DeviceGroup::settingsChanged);
        QSignalSpy widths(&group, &DeviceGroup::bigViewWidthChanged);
        // An unnamed group is in no file; loading only announces; the same value again is nothing.
        group.setBigViewWidth(800);
        group.renameTo("Rack 1");
        group.loadSettings({{"bigViewWidth", 1280}});
        group.setBigViewWidth(1280);
        QCOMPARE(widths.count(), 2);
        QCOMPARE(saves.count(), 0);
        group.setBigViewWidth(900);
        QCOMPARE(widths.count(), 3);
        QCOMPARE(saves.count(), 1);
    }

    void groupControlFollowsItsHost()
    {
        // Without phones there is no host; starting or stopping twice changes nothing.
        DeviceGroup group;
        QSignalSpy mode(&group, &DeviceGroup::groupControlModeChanged);
        group.startGroupControl();
        fill(group, {"A", "B", "C"});
        group.startGroupControl();
        group.startGroupControl();
        group.stopGroupControl();
        group.stopGroupControl();
        QCOMPARE(mode.count(), 2);

        // The first phone is the host; removing it ends group control and the phones behind it move up.
        group.startGroupControl();
        QPointer<Device> oldHost = group.devices().at(0);
        QVERIFY(oldHost->isHostDevice() && !group.devices().at(1)->isHostDevice());
        QSignalSpy lastIndex(group.devices().at(2), &Device::indexInGroupChanged);
        oldHost->removeFromDeviceGroup();
        QCOMPARE(mode.count(), 4);
        QCOMPARE(group.hostDevice(), nullptr);
        QCOMPARE(serialsOf(&group), (QStringList{"B", "C"}));
        QCOMPARE(lastIndex.count(), 1);
        QCOMPARE(group.devices().at(1)->indexInGroup(), 1);
        QTRY_VERIFY(oldHost.isNull());
    }

    void clearDevicesRemovesEveryPhoneAtTheClearInterval()
    {
        DeviceGroup::setStaggerIntervals({0, 0, 30});
        DeviceGroup group;
        fill(group, {"A", "B", "C"});
        group.startGroupControl();
        QList<QPointer<Device>> devices(group.devices().cbegin(), group.devices().cend());
        QElapsedTimer clock;
        QList<qint64> removedAt;
        QStringList removedSerials;
        connect(&group, &DeviceGroup::deviceRemovedFromGroup, this, [&](Device *device) {
            removedAt << clock.elapsed();
            removedSerials << device->adbConnectionSerial();
        });
        QSignalSpy mode(&group, &DeviceGroup::groupControlModeChanged);

        clock.start();
        group.clearDevices();
        QCOMPARE(mode.count(), 1);
        QVERIFY(!devices.at(0)->isHostDevice());
        // B leaves by itself meanwhile; its step is skipped.
        devices.at(1)->removeFromDeviceGroup();
        QTRY_COMPARE(group.deviceCount(), 0);
        QCOMPARE(removedSerials, (QStringList{"B", "A", "C"}));
        QVERIFY(removedAt.at(2) >= 58);
        for (const QPointer<Device> &device : devices)
            QTRY_VERIFY(device.isNull());
    }

    void clearDevicesAlsoDropsPhonesStillArriving()
    {
        DeviceGroup::setStaggerIntervals({1000, 0, 0});
        DeviceGroup group;
        fill(group, {"A"});
        QVERIFY(group.addDevices({{"B"}, {"C"}}));
        group.clearDevices();
        QTRY_COMPARE(group.deviceCount(), 0);
        // Had B or C been left, it would be a row or still on its way.
        QTRY_VERIFY(group.findChildren<Device *>().isEmpty());
        QCOMPARE(group.memberSerials(), QStringList());
    }

    void moveHandsDevicesAndOwnershipToTheTarget()
    {
        DeviceGroup source, target;
        target.renameTo("T");
        target.setMaxSize(1440);
        fill(source, {"A", "B", "C"});
        fill(target, {"X"});
        source.startGroupControl();
        Device *a = source.devices().at(0);
        QSignalSpy sourceCount(&source, &DeviceGroup::deviceCountChanged);
        QSignalSpy targetCount(&target, &DeviceGroup::deviceCountChanged);
        QSignalSpy added(&target, &DeviceGroup::deviceAddedIntoGroup);
        QSignalSpy xIndex(target.devices().at(0), &Device::indexInGroupChanged);

        // Unknown serials (the match is exact), nothing to move or no target: nothing at all.
        source.moveDevicesToGroup({"a", "Z"}, &target);
        source.moveDevicesToGroup({}, &target);
        source.moveDevicesToGroup({"A"}, nullptr);
        QCOMPARE(sourceCount.count() + targetCount.count(), 0);

        // In the source's order, counted once per group; the host takes group control along.
        source.moveDevicesToGroup({"C", "A"}, &target);
        QCOMPARE(serialsOf(&source), (QStringList{"B"}));
        QCOMPARE(serialsOf(&target), (QStringList{"X", "A", "C"}));
        QCOMPARE(sourceCount.count(), 1);
        QCOMPARE(targetCount.count(), 1);
        QCOMPARE(added.count(), 2);
        // X keeps its place, so its cell hears nothing; the newcomers learn theirs.
        QCOMPARE(xIndex.count(), 0);
        QCOMPARE(a->indexInGroup(), 1);
        QCOMPARE(a->parent(), &target);
        QCOMPARE(target.devices().at(2)->indexInGroup(), 2);
        QCOMPARE(target.devices().at(2)->serverParamsSmallView()->maxSize(), 1440);
        QVERIFY(!source.groupControlMode() && !a->isHostDevice());
    }
};

QTEST_MAIN(TestDeviceGroup)
#include "tst_devicegroup.moc"
