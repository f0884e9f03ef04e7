#include "adbclient.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "devicesettings.h"
#include "devicetracker.h"
#include "fakeadb.h"
#include "groupserials.h"
#include "testfiles.h"

#include <QtTest>

namespace {
// The full record a group made with no settings of its own writes.
const QJsonObject kConstructorDefaults{
    {"maxSize", 720},       {"maxFPS", 30},       {"bitRate", 4000000},         {"maxSizeBigView", 720},
    {"maxFPSBigView", 30},  {"bitRateBigView", 4000000}, {"clickDelaySeconds", 0}, {"cellWidth", 220},
    {"showControlButtons", true}, {"enableAudio", false}, {"orientation", 0},     {"bigViewWidth", 400},
};

// Every setting away from its default, so that a key read or written under another name shows.
const QJsonObject kEverySetting{
    {"maxSize", 1024},        {"maxFPS", 15},          {"bitRate", 2000000},   {"maxSizeBigView", 1600},
    {"maxFPSBigView", 60},    {"bitRateBigView", 8000000}, {"clickDelaySeconds", 3}, {"cellWidth", 400},
    {"showControlButtons", false}, {"enableAudio", true}, {"orientation", 1},     {"bigViewWidth", 1280},
};

QJsonObject defaultsWith(QJsonObject changes)
{
    for (auto it = kConstructorDefaults.begin(); it != kConstructorDefaults.end(); ++it) {
        if (!changes.contains(it.key()))
            changes.insert(it.key(), it.value());
    }
    return changes;
}

const QByteArray kThreePhones = "List of devices attached\\n"
                                "A device usb:1-1 product:p1 model:M1 transport_id:1\\n"
                                "B device usb:1-2 product:p2 model:M2 transport_id:2\\n"
                                "192.168.0.9:5555 device product:p3 model:M3 transport_id:3\\n";

QStringList namesOf(const DeviceGroupManager &manager)
{
    QStringList names;
    for (const DeviceGroup *group : manager.deviceGroups())
        names << group->name();
    return names;
}
}

class TestDeviceGroupManager : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;
    QTemporaryDir m_root;
    int m_case = 0;
    QString m_folder;

    QString file() const { return m_folder + "/device_groups.json"; }
    QJsonArray fileGroups() const { return QJsonDocument::fromJson(TestFiles::read(file()))["device_groups"].toArray(); }

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase()
    {
        AdbClient::setProgram(m_adb.program());
        DeviceGroup::setStaggerIntervals({0, 0, 0});
    }

    void init()
    {
        // A fresh folder that does not exist yet: saving has to create it.
        m_folder = m_root.filePath(QString("case%1/groups").arg(++m_case));
        DeviceGroupManager::setDefaultFolder(m_folder);
        m_adb.clear();
    }

    void oddFiles_data()
    {
        // Files that cannot be read at all are tried on tst_devicesettings, through the same JsonFile.
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("keptAside");
        const QByteArray good = R"({"name":"Rack","settings":{"maxSize":1080}})";
        const QStringList fresh{"Default Group"};
        QTest::newRow("first start") << QByteArray() << fresh << false;
        QTest::newRow("corrupt") << QByteArray("{\"device_groups\": [ {\"name\": \"Ra") << fresh << true;
        // Elements that are left out: the file as it was is copied aside, as a save cannot write them back.
        QTest::newRow("only an empty name") << QByteArray(R"({"device_groups":[{"name":"","settings":{}}]})") << fresh << true;
        QTest::newRow("bad elements around a good one") << QByteArray(R"({"device_groups":[42,{"name":7},{"settings":{}},)"
                                                                      R"(null,)" + good + "]}") << QStringList{"Rack"} << true;
        QTest::newRow("a serial that is no text") << QByteArray(R"({"device_groups":[{"name":"Rack","devices":["a",5]}]})")
                                                  << QStringList{"Rack"} << true;
        QTest::newRow("duplicate names") << QByteArray(R"({"device_groups":[)" + good + "," + good + R"(,{"name":"B"}]})")
                                         << QStringList{"Rack", "Rack", "B"} << false;
    }

    void oddFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, names);
        QFETCH(bool, keptAside);
        if (!content.isNull())
            QVERIFY(TestFiles::write(file(), content));
        DeviceGroupManager manager;
        QCOMPARE(namesOf(manager), names);
        QCOMPARE(manager.currentSelectedGroup(), manager.deviceGroups().first());
        // Loading alone never rewrites what was read; no group read, the default one saved in full.
        if (names.first() == "Default Group") {
            QCOMPARE(fileGroups(), QJsonArray({QJsonObject{{"name", "Default Group"}, {"settings", kConstructorDefaults},
                                                           {"devices", QJsonArray()}, {"wanted", QJsonArray()}}}));
            QVERIFY(TestFiles::read(file()).contains("\n    \"device_groups\""));
        } else {
            QCOMPARE(TestFiles::read(file()), content);
        }
        // What the user had is kept under a name the message gives.
        const QStringList aside = TestFiles::keptAside(file());
        QCOMPARE(aside.size(), keptAside ? 1 : 0);
        QCOMPARE(manager.fileMessage().isEmpty(), !keptAside);
        QVERIFY2(!keptAside || manager.fileMessage().contains(aside.first()), qPrintable(manager.fileMessage()));
    }

    void settingsSurviveOddElements()
    {
        QVERIFY(TestFiles::write(file(), R"({"device_groups":[
            {"name":"No settings"},
            {"name":"No width","settings":{"maxSize":1080,"enableAudio":true,"orientation":1,"clickDelaySeconds":7}},
            {"name":"Wrong types","settings":{"maxSize":"big","cellWidth":[],"showControlButtons":"no","bigViewWidth":1200}},
            {"name":"Settings not an object","settings":5},
            {"name":"Odd values","settings":{"bigViewWidth":"800","showControlButtons":0,"cellWidth":null,"maxFPS":true}},
            {"name":"Every setting","settings":)" + QJsonDocument(kEverySetting).toJson() + "}]}"));
        DeviceGroupManager manager;
        // A missing key or one of the wrong type takes its default; an old record, the wide big view.
        QList<QJsonObject> expected{
            kConstructorDefaults,
            defaultsWith({{"maxSize", 1080}, {"enableAudio", true}, {"orientation", 1}, {"clickDelaySeconds", 7},
                          {"bigViewWidth", 960}}),
            defaultsWith({{"bigViewWidth", 1200}}),
            defaultsWith({{"bigViewWidth", 960}}),
            defaultsWith({{"bigViewWidth", 960}}),
            kEverySetting,
        };
        QCOMPARE(manager.deviceGroups().size(), expected.size());
        for (int i = 0; i < expected.size(); ++i)
            QCOMPARE(manager.deviceGroups().at(i)->settingsToJson(), expected.at(i));

        // The next save writes every group back in full, in the same order.
        manager.deviceGroups().at(0)->setCellWidth(300);
        expected[0].insert("cellWidth", 300);
        const QJsonArray saved = fileGroups();
        QCOMPARE(saved.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i) {
            QCOMPARE(saved.at(i)["name"].toString(), manager.deviceGroups().at(i)->name());
            QCOMPARE(saved.at(i)["settings"].toObject(), expected.at(i));
        }
    }

    void everyChangeIsSavedAndGroupChangesAnnounced()
    {
        DeviceGroupManager manager;
        QSignalSpy groupsChanged(&manager, &DeviceGroupManager::deviceGroupsChanged);
        manager.createDeviceGroup("Second");
        DeviceGroup *second = manager.deviceGroups().at(1);
        second->renameTo("Shelf A");
        QCOMPARE(namesOf(manager), (QStringList{"Default Group", "Shelf A"}));
        QCOMPARE(manager.currentSelectedGroup(), manager.deviceGroups().first());
        QCOMPARE(groupsChanged.count(), 2);
        QCOMPARE(fileGroups().at(1)["name"].toString(), QString("Shelf A"));
        // A setting is saved but changes no list of groups.
        second->setMaxFPS(60);
        QCOMPARE(groupsChanged.count(), 2);
        QCOMPARE(fileGroups().at(1)["settings"]["maxFPS"].toInt(), 60);

        // A removed group's phones go with it; the group lives on for views that may still hold it.
        QPointer<DeviceGroup> guard(second);
        second->appendDevice(new Device(nullptr, "S2"));
        QPointer<Device> phone = second->devices().first();
        manager.removeDeviceGroup(second);
        QCOMPARE(second->deviceCount(), 0);
        QTRY_VERIFY(phone.isNull());
        QCOMPARE(groupsChanged.count(), 3);
        QCOMPARE(fileGroups().size(), 1);
        QVERIFY(!guard.isNull());
    }

    void unwritableFolderIsReported()
    {
        // The save folder lies below a plain file, so it can never be made.
        const QString blocker = m_root.filePath("blocker");
        QVERIFY(TestFiles::write(blocker, {}));
        DeviceGroupManager::setDefaultFolder(blocker + "/groups");
        DeviceGroupManager manager;
        manager.createDeviceGroup("X");
        const QString message = manager.fileMessage();
        QVERIFY2(message.contains(blocker + "/groups/device_groups.json") && message.contains("could not be saved"),
                 qPrintable(message));

        // Once the folder can be written, the next save goes through and the message goes away.
        QSignalSpy changed(&manager, &DeviceGroupManager::fileMessageChanged);
        QVERIFY(QFile::remove(blocker));
        manager.deviceGroups().at(1)->setMaxFPS(60);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(manager.fileMessage(), QString());
        QCOMPARE(namesOf(manager), (QStringList{"Default Group", "X"}));
    }

    void rememberedPhonesComeBackInTheirPlaces()
    {
        // C and A are attached, X is not; a serial claimed by two groups stays with the first.
        m_adb.addRule("devices -l", 0, "List of devices attached\\nA device usb:1-1\\nB device usb:1-2\\nC device usb:1-3\\n");
        const QByteArray content = R"({"device_groups":[
            {"name":"Rack","devices":["C","A","X","B"]},
            {"name":"Shelf","devices":["B","D",7,""]}]})";
        QVERIFY(TestFiles::write(file(), content));
        DeviceGroupManager manager;
        DeviceGroup *rack = manager.deviceGroups().at(0);
        DeviceGroup *shelf = manager.deviceGroups().at(1);
        QCOMPARE(shelf->memberSerials(), QStringList{"D"});
        QTRY_COMPARE(serialsOf(rack), (QStringList{"C", "A", "B"}));
        QCOMPARE(TestFiles::read(file()), content);

        // X is listed later: it takes its place between A and B.
        manager.placeKnownDevices({ADBDeviceInfo{"A"}, ADBDeviceInfo{"X"}});
        QTRY_COMPARE(serialsOf(rack), (QStringList{"C", "A", "X", "B"}));

        // Moving a phone hands it over; removing it forgets it, so a later listing offers it.
        rack->moveDevicesToGroup({"A"}, shelf);
        rack->devices().first()->removeFromDeviceGroup();
        QCOMPARE(fileGroups().at(0)["devices"].toArray(), QJsonArray({"X", "B"}));
        QCOMPARE(fileGroups().at(1)["devices"].toArray(), QJsonArray({"D", "A"}));
        manager.scanDevices();
        QTRY_VERIFY(!manager.isScanning());
        QCOMPARE(serialsOf(manager.availableDeviceInfos()), QStringList{"C"});

        // A fresh start on the same file finds everyone where they were.
        DeviceGroupManager again;
        QTRY_COMPARE(serialsOf(again.deviceGroups().at(0)), (QStringList{"B"}));
        QTRY_COMPARE(serialsOf(again.deviceGroups().at(1)), (QStringList{"A"}));
    }

    // The phones running at the last save come back running only with "Start the rack at launch".
    void wantedPhonesStartAtLaunchOnlyWhenAsked_data()
    {
        QTest::addColumn<bool>("atLaunch");
        QTest::newRow("asked") << true;
        QTest::newRow("not asked") << false;
    }

    void wantedPhonesStartAtLaunchOnlyWhenAsked()
    {
        QFETCH(bool, atLaunch);
        m_adb.addRule("devices -l", 0, "List of devices attached\\nA device usb:1-1\\nC device usb:1-3\\n");
        QVERIFY(TestFiles::write(file(), R"({"device_groups":[{"name":"Rack","devices":["C","A","X"],"wanted":["A","X","Z"]}]})"));
        DeviceGroupManager::setStartRackAtLaunch(atLaunch);
        DeviceGroupManager manager;
        DeviceGroup *rack = manager.deviceGroups().at(0);
        QCOMPARE(rack->wantedSerials(), atLaunch ? QStringList({"A", "X"}) : QStringList());
        QTRY_COMPARE(serialsOf(rack), (QStringList{"C", "A"}));
        QCOMPARE(rack->devices().at(1)->wanted(), atLaunch);
        QVERIFY(!rack->devices().at(0)->wanted());

        // Start All wants every member, X too, which is not attached; Stop All none.
        rack->startAllDevices();
        QCOMPARE(fileGroups().at(0)["wanted"].toArray(), QJsonArray({"C", "A", "X"}));
        rack->stopAllDevices();
        QCOMPARE(fileGroups().at(0)["wanted"].toArray(), QJsonArray());
        QVERIFY(!rack->devices().at(1)->wanted());
        DeviceGroupManager::setStartRackAtLaunch(false);
    }

    void theOfferListsAttachedPhonesInNoGroup()
    {
        // adb's tracking stream: four hex digits of length, then the listing.
        const QByteArray listing = QByteArray(kThreePhones).replace("\\n", "\n");
        m_adb.addRule("track-devices -l", 0, QString::asprintf("%04x", int(listing.size())) + kThreePhones, {}, 0);
        DeviceGroupManager manager;
        DeviceTracker::instance()->ensureStarted();
        QTRY_VERIFY(DeviceTracker::instance()->isAttached("B"));
        DeviceTracker::instance()->stop();
        manager.createDeviceGroup("Other");
        DeviceGroup *other = manager.deviceGroups().at(1);
        other->addDevices({ADBDeviceInfo{"A"}});
        QTRY_COMPARE(serialsOf(manager.availableDeviceInfos()), (QStringList{"B", "192.168.0.9:5555"}));
        other->devices().first()->removeFromDeviceGroup();
        QCOMPARE(serialsOf(manager.availableDeviceInfos()), (QStringList{"A", "B", "192.168.0.9:5555"}));
        manager.clearAvailableDevices();
        QVERIFY(manager.availableDeviceInfos().isEmpty());

        // Two scans in a row end once; a failed scan keeps the offer and says why.
        m_adb.addRule("devices -l", 0, kThreePhones, {}, 0.2);
        QSignalSpy scanning(&manager, &DeviceGroupManager::isScanningChanged);
        manager.scanDevices();
        manager.scanDevices();
        QVERIFY(manager.isScanning());
        // Renamed while the listing is read on another thread: the offer shows the new name.
        DeviceSettings::instance()->setDeviceNickname("B", "Rack B");
        QTRY_VERIFY(!manager.isScanning());
        QCOMPARE(scanning.count(), 2);
        QTRY_COMPARE(manager.availableDeviceInfos().size(), 3);
        QCOMPARE(manager.availableDeviceInfos().at(1).nickname, QString("Rack B"));
        DeviceSettings::instance()->removeDeviceNickname("B");
        m_adb.clear();
        m_adb.addRule("devices -l", 1, "", "adb: cannot connect to daemon\\n");
        QSignalSpy errors(&manager, &DeviceGroupManager::scanError);
        manager.scanDevices();
        QTRY_COMPARE(errors.count(), 1);
        QVERIFY(errors.at(0).at(0).toString().contains("cannot connect to daemon"));
        QTRY_COMPARE(scanning.count(), 4);
        QCOMPARE(manager.availableDeviceInfos().size(), 3);
    }
};

QTEST_MAIN(TestDeviceGroupManager)
#include "tst_devicegroupmanager.moc"
