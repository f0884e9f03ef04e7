#include "adbclient.h"
#include "appconfig.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "devicetracker.h"
#include "fakeadb.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>
#include <QtTest>

namespace {
// The full record a group made with no settings of its own writes.
const QJsonObject kConstructorDefaults{
    {"maxSize", 720},       {"maxFPS", 30},       {"bitRate", 4000000},         {"maxSizeBigView", 720},
    {"maxFPSBigView", 30},  {"bitRateBigView", 4000000}, {"clickDelaySeconds", 0}, {"cellWidth", 220},
    {"showControlButtons", true}, {"enableAudio", false}, {"orientation", 0},     {"bigViewWidth", 400},
};

const QByteArray kThreePhones = "List of devices attached\\n"
                                "A device usb:1-1 product:p1 model:M1 transport_id:1\\n"
                                "B device usb:1-2 product:p2 model:M2 transport_id:2\\n"
                                "192.168.0.9:5555 device product:p3 model:M3 transport_id:3\\n";
}

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

class TestDeviceGroupManager : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;
    QTemporaryDir m_root;
    int m_case = 0;
    QString m_folder;

    QString file() const { return m_folder + "/device_groups.json"; }

    void writeFile(const QByteArray &content)
    {
        QDir().mkpath(m_folder);
        QFile out(file());
        QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(content);
    }

    QByteArray fileBytes() const
    {
        QFile in(file());
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    QJsonArray fileGroups() const { return QJsonDocument::fromJson(fileBytes()).object().value("device_groups").toArray(); }

    static QStringList namesOf(const DeviceGroupManager &manager)
    {
        QStringList names;
        for (const DeviceGroup *group : manager.deviceGroups())
            names << group->name();
        return names;
    }

    static QStringList serialsOf(const DeviceGroup *group)
    {
        QStringList serials;
        for (const Device *device : group->devices())
            serials << device->adbConnectionSerial();
        return serials;
    }

    static QStringList serialsOf(const QList<ADBDeviceInfo> &infos)
    {
        QStringList serials;
        for (const ADBDeviceInfo &info : infos)
            serials << info.adb_serial;
        return serials;
    }

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
        AppConfig::instance()->setDeviceGroupSavePath(m_folder);
        m_adb.clear();
    }

    void firstStartMakesAndSavesTheDefaultGroup()
    {
        DeviceGroupManager manager;
        QCOMPARE(namesOf(manager), QStringList{"Default Group"});
        QCOMPARE(manager.currentSelectedGroup(), manager.deviceGroups().first());
        QCOMPARE(manager.totalDeviceCount(), 0);
        QCOMPARE(DeviceGroupManager::filePath(), file());
        const QJsonArray groups = fileGroups();
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups.at(0).toObject().value("name").toString(), QString("Default Group"));
        QCOMPARE(groups.at(0).toObject().value("settings").toObject(), kConstructorDefaults);
        // Indented, as people read and edit it.
        QVERIFY(fileBytes().contains("\n    \"device_groups\""));
    }

    void oddFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("keptAside");
        QTest::addColumn<bool>("rewritten");
        const QByteArray good = R"({"name":"Rack","settings":{"maxSize":1080}})";
        QTest::newRow("corrupt") << QByteArray("{\"device_groups\": [ {\"name\": \"Ra") << QStringList{"Default Group"}
                                 << true << true;
        QTest::newRow("empty file") << QByteArray() << QStringList{"Default Group"} << true << true;
        QTest::newRow("top-level array") << QByteArray("[" + good + "]") << QStringList{"Default Group"} << true << true;
        QTest::newRow("groups not an array") << QByteArray(R"({"device_groups":{"name":"Rack"}})")
                                             << QStringList{"Default Group"} << true << true;
        QTest::newRow("only an empty name") << QByteArray(R"({"device_groups":[{"name":"","settings":{}}]})")
                                            << QStringList{"Default Group"} << false << true;
        QTest::newRow("bad elements around a good one")
            << QByteArray(R"({"device_groups":[42,{"name":7},{"settings":{}},null,)" + good + "]}")
            << QStringList{"Rack"} << false << false;
        QTest::newRow("duplicate names") << QByteArray(R"({"device_groups":[)" + good + "," + good + R"(,{"name":"B"}]})")
                                         << QStringList{"Rack", "Rack", "B"} << false << false;
    }

    void oddFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, names);
        QFETCH(bool, keptAside);
        QFETCH(bool, rewritten);
        writeFile(content);
        DeviceGroupManager manager;
        QCOMPARE(namesOf(manager), names);
        QCOMPARE(manager.currentSelectedGroup(), manager.deviceGroups().first());
        if (rewritten) {
            QCOMPARE(fileGroups().size(), 1);
            QCOMPARE(fileGroups().at(0).toObject().value("name").toString(), QString("Default Group"));
        } else {
            // Loading alone never rewrites what was read.
            QCOMPARE(fileBytes(), content);
        }
        // What the user had is kept, byte for byte, under a name the message gives.
        const QStringList aside = QDir(m_folder).entryList({"device_groups.json.corrupt-*"}, QDir::Files);
        QCOMPARE(aside.size(), keptAside ? 1 : 0);
        if (!keptAside) {
            QCOMPARE(manager.fileMessage(), QString());
            return;
        }
        QVERIFY2(QRegularExpression(R"(^device_groups\.json\.corrupt-\d{8}-\d{6}$)").match(aside.first()).hasMatch(),
                 qPrintable(aside.first()));
        QFile kept(QDir(m_folder).filePath(aside.first()));
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), content);
        QVERIFY2(manager.fileMessage().contains(file()) && manager.fileMessage().contains(kept.fileName()),
                 qPrintable(manager.fileMessage()));
    }

    void settingsSurviveOddElements()
    {
        writeFile(R"({"device_groups":[
            {"name":"No settings"},
            {"name":"No width","settings":{"maxSize":1080,"enableAudio":true,"orientation":1,"clickDelaySeconds":7}},
            {"name":"Wrong types","settings":{"maxSize":"big","cellWidth":[],"showControlButtons":"no","bigViewWidth":1200}},
            {"name":"Settings not an object","settings":5},
            {"name":"Odd values","settings":{"bigViewWidth":"800","showControlButtons":0,"cellWidth":null,"maxFPS":true}}
        ]})");
        DeviceGroupManager manager;
        const QList<DeviceGroup *> groups = manager.deviceGroups();
        QCOMPARE(groups.size(), 5);
        QCOMPARE(groups.at(0)->bigViewWidth(), 400);
        QCOMPARE(groups.at(0)->settingsToJson(), kConstructorDefaults);
        QCOMPARE(groups.at(1)->bigViewWidth(), 960);
        QCOMPARE(groups.at(1)->maxSize(), 1080);
        QVERIFY(groups.at(1)->enableAudio());
        QCOMPARE(groups.at(1)->orientation(), DeviceGroup::Landscape);
        QCOMPARE(groups.at(1)->clickDelaySeconds(), 7);
        QCOMPARE(groups.at(1)->bitRate(), 4000000);
        QCOMPARE(groups.at(2)->maxSize(), 720);
        QCOMPARE(groups.at(2)->cellWidth(), 220);
        QVERIFY(groups.at(2)->showControlButtons());
        QCOMPARE(groups.at(2)->bigViewWidth(), 1200);
        QCOMPARE(groups.at(3)->bigViewWidth(), 960);
        QCOMPARE(groups.at(4)->bigViewWidth(), 960);
        QVERIFY(groups.at(4)->showControlButtons());
        QCOMPARE(groups.at(4)->cellWidth(), 220);
        QCOMPARE(groups.at(4)->maxFPS(), 30);

        // The next save writes every group back in full, in the same order.
        groups.at(0)->setCellWidth(300);
        const QJsonArray saved = fileGroups();
        QCOMPARE(saved.size(), 5);
        QCOMPARE(saved.at(0).toObject().value("settings").toObject().value("cellWidth").toInt(), 300);
        QCOMPARE(saved.at(1).toObject().value("settings").toObject().value("bigViewWidth").toInt(), 960);
        QCOMPARE(saved.at(2).toObject().value("settings").toObject().value("bigViewWidth").toInt(), 1200);
        QCOMPARE(saved.at(3).toObject().value("name").toString(), QString("Settings not an object"));
        QCOMPARE(saved.at(4).toObject().value("settings").toObject().size(), 12);
    }

    void renameSavesAndAnnouncesSettingsOnlySave()
    {
        DeviceGroupManager manager;
        DeviceGroup *group = manager.deviceGroups().first();
        QSignalSpy groupsChanged(&manager, &DeviceGroupManager::deviceGroupsChanged);

        group->renameTo("Shelf A");
        QCOMPARE(groupsChanged.count(), 1);
        QCOMPARE(fileGroups().at(0).toObject().value("name").toString(), QString("Shelf A"));

        group->setMaxFPS(60);
        group->setOrientation(DeviceGroup::Landscape);
        QCOMPARE(groupsChanged.count(), 1);
        const QJsonObject settings = fileGroups().at(0).toObject().value("settings").toObject();
        QCOMPARE(settings.value("maxFPS").toInt(), 60);
        QCOMPARE(settings.value("orientation").toInt(), 1);

        // What was saved comes back in a new run.
        DeviceGroupManager again;
        QCOMPARE(namesOf(again), QStringList{"Shelf A"});
        QCOMPARE(again.deviceGroups().first()->maxFPS(), 60);
        QCOMPARE(again.deviceGroups().first()->orientation(), DeviceGroup::Landscape);
    }

    void createAndRemoveGroups()
    {
        DeviceGroupManager manager;
        DeviceGroup *first = manager.deviceGroups().first();
        QSignalSpy groupsChanged(&manager, &DeviceGroupManager::deviceGroupsChanged);
        QSignalSpy selection(&manager, &DeviceGroupManager::currentSelectedGroupChanged);

        manager.createDeviceGroup("Second");
        QCOMPARE(namesOf(manager), (QStringList{"Default Group", "Second"}));
        QCOMPARE(manager.currentSelectedGroup(), first);
        QCOMPARE(groupsChanged.count(), 1);
        QCOMPARE(fileGroups().size(), 2);
        QCOMPARE(fileGroups().at(1).toObject().value("settings").toObject(), kConstructorDefaults);

        DeviceGroup *second = manager.deviceGroups().at(1);
        QPointer<DeviceGroup> guard(second);
        second->appendDevice(new Device(nullptr, second, "S2"));
        QPointer<Device> phone = second->devices().first();
        manager.removeDeviceGroup(second);
        // Its phones and their sessions go with it.
        QCOMPARE(second->deviceCount(), 0);
        QTRY_VERIFY(phone.isNull());
        QCOMPARE(namesOf(manager), QStringList{"Default Group"});
        QCOMPARE(fileGroups().size(), 1);
        QCOMPARE(groupsChanged.count(), 2);
        QVERIFY(!guard.isNull());
        QCOMPARE(second->parent(), &manager);

        // Not in the list: still saved and announced.
        QFile::remove(file());
        DeviceGroup stranger;
        manager.removeDeviceGroup(&stranger);
        QCOMPARE(groupsChanged.count(), 3);
        QCOMPARE(fileGroups().size(), 1);

        manager.setCurrentSelectedGroup(first);
        manager.setCurrentSelectedGroup(nullptr);
        QCOMPARE(selection.count(), 2);
        QCOMPARE(manager.currentSelectedGroup(), nullptr);
    }

    void unwritableFolderIsReported()
    {
        // The save folder lies below a plain file, so it can never be made.
        QFile blocker(m_root.filePath("blocker"));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        AppConfig::instance()->setDeviceGroupSavePath(m_root.filePath("blocker/groups"));
        DeviceGroupManager manager;
        QCOMPARE(namesOf(manager), QStringList{"Default Group"});
        const QString message = manager.fileMessage();
        QVERIFY2(message.contains(m_root.filePath("blocker/groups/device_groups.json")) && message.contains("could not be saved"),
                 qPrintable(message));
        manager.createDeviceGroup("X");
        QCOMPARE(manager.deviceGroups().size(), 2);

        // Once the folder can be written, the next save goes through and the message goes away.
        QSignalSpy changed(&manager, &DeviceGroupManager::fileMessageChanged);
        QVERIFY(QFile::remove(blocker.fileName()));
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
        writeFile(content);
        DeviceGroupManager manager;
        DeviceGroup *rack = manager.deviceGroups().at(0);
        DeviceGroup *shelf = manager.deviceGroups().at(1);
        QCOMPARE(shelf->memberSerials(), QStringList{"D"});
        QTRY_COMPARE(serialsOf(rack), (QStringList{"C", "A", "B"}));
        QCOMPARE(shelf->deviceCount(), 0);
        QCOMPARE(fileBytes(), content);
        QVERIFY(manager.availableDeviceInfos().isEmpty());

        // X is listed later: it takes its place between A and B.
        manager.placeKnownDevices({ADBDeviceInfo{"A"}, ADBDeviceInfo{"X"}});
        QTRY_COMPARE(serialsOf(rack), (QStringList{"C", "A", "X", "B"}));

        // Moving a phone hands it over; removing it forgets it, so a later listing offers it.
        rack->moveDevicesToGroup({"A"}, shelf);
        QCOMPARE(shelf->memberSerials(), (QStringList{"D", "A"}));
        rack->devices().first()->removeFromDeviceGroup();
        QCOMPARE(rack->memberSerials(), (QStringList{"X", "B"}));
        const QJsonArray saved = fileGroups();
        QCOMPARE(saved.at(0).toObject().value("devices").toArray(), QJsonArray({"X", "B"}));
        QCOMPARE(saved.at(1).toObject().value("devices").toArray(), QJsonArray({"D", "A"}));
        manager.scanDevices();
        QTRY_VERIFY(!manager.isScanning());
        QCOMPARE(serialsOf(manager.availableDeviceInfos()), QStringList{"C"});
        QCOMPARE(serialsOf(rack), (QStringList{"X", "B"}));

        // A fresh start on the same file finds everyone where they were.
        DeviceGroupManager again;
        QTRY_COMPARE(serialsOf(again.deviceGroups().at(0)), (QStringList{"B"}));
        QTRY_COMPARE(serialsOf(again.deviceGroups().at(1)), (QStringList{"A"}));
    }

    void scanOffersPhonesInNoGroup()
    {
        m_adb.addRule("devices -l", 0, kThreePhones);
        DeviceGroupManager manager;
        DeviceGroup *group = manager.deviceGroups().first();
        QVERIFY(group->addDevices({ADBDeviceInfo{"B"}}));
        QTRY_COMPARE(group->deviceCount(), 1);
        QCOMPARE(manager.totalDeviceCount(), 1);

        QSignalSpy scanning(&manager, &DeviceGroupManager::isScanningChanged);
        QSignalSpy available(&manager, &DeviceGroupManager::availableDeviceInfosChanged);
        manager.scanDevices();
        QVERIFY(manager.isScanning());
        QTRY_VERIFY(!manager.isScanning());
        QCOMPARE(scanning.count(), 2);
        QCOMPARE(available.count(), 1);
        const QList<ADBDeviceInfo> offered = manager.availableDeviceInfos();
        QCOMPARE(serialsOf(offered), (QStringList{"A", "192.168.0.9:5555"}));
        QCOMPARE(offered.at(0).product, QString("p1"));
        QVERIFY(!offered.at(1).is_usb_connection);

        manager.clearAvailableDevices();
        QCOMPARE(available.count(), 2);
        QVERIFY(manager.availableDeviceInfos().isEmpty());
    }

    void deviceChangesRefreshTheOffer()
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

        QSignalSpy available(&manager, &DeviceGroupManager::availableDeviceInfosChanged);
        manager.handleDeviceAdded(nullptr);
        manager.handleDeviceRemoved(nullptr);
        QCOMPARE(available.count(), 2);
    }

    void failedScanKeepsTheOfferAndReports()
    {
        // Two scans in a row end once.
        m_adb.addRule("devices -l", 0, kThreePhones, {}, 0.2);
        DeviceGroupManager manager;
        QSignalSpy scanning(&manager, &DeviceGroupManager::isScanningChanged);
        manager.scanDevices();
        manager.scanDevices();
        QTRY_VERIFY(!manager.isScanning());
        QCOMPARE(scanning.count(), 2);
        QTRY_COMPARE(manager.availableDeviceInfos().size(), 3);

        m_adb.clear();
        m_adb.addRule("devices -l", 1, "", "adb: cannot connect to daemon\\n");
        QSignalSpy errors(&manager, &DeviceGroupManager::scanError);
        scanning.clear();
        manager.scanDevices();
        QTRY_COMPARE(errors.count(), 1);
        QVERIFY(errors.at(0).at(0).toString().contains("cannot connect to daemon"));
        QTRY_COMPARE(scanning.count(), 2);
        QCOMPARE(manager.availableDeviceInfos().size(), 3);
    }

    void restartAdbServer_data()
    {
        QTest::addColumn<int>("killExit");
        QTest::addColumn<int>("startExit");
        QTest::addColumn<bool>("result");
        QTest::addColumn<int>("calls");
        QTest::newRow("both succeed") << 0 << 0 << true << 2;
        QTest::newRow("kill fails") << 1 << 0 << false << 1;
        QTest::newRow("start fails") << 0 << 1 << false << 2;
    }

    void restartAdbServer()
    {
        QFETCH(int, killExit);
        QFETCH(int, startExit);
        QFETCH(bool, result);
        QFETCH(int, calls);
        DeviceGroupManager manager;
        m_adb.clear();
        m_adb.addRule("kill-server", killExit, "", killExit ? "error: no server\\n" : "");
        m_adb.addRule("start-server", startExit, "", startExit ? "error: cannot bind\\n" : "");
        QSignalSpy restarted(&manager, &DeviceGroupManager::adbServerRestarted);
        manager.restartADBServer();
        QTRY_COMPARE(restarted.count(), 1);
        QCOMPARE(restarted.at(0).at(0).toBool(), result);
        const QList<QStringList> made = m_adb.calls();
        QCOMPARE(made.size(), calls);
        QCOMPARE(made.at(0), QStringList{"kill-server"});
        if (calls == 2)
            QCOMPARE(made.at(1), QStringList{"start-server"});
    }

    void usableFromQml()
    {
        m_adb.addRule("devices -l", 0, kThreePhones);
        QQmlEngine engine;
        engine.addImportPath("qrc:/");
        QQmlComponent component(&engine);
        component.setData(R"(
            import QtQml
            import Korvel
            DeviceGroupManager {
                property int groupCount: deviceGroups.length
                property string firstName: deviceGroups.length > 0 ? deviceGroups[0].name : ""
                property string offered: availableDeviceInfos.length > 0 ? availableDeviceInfos[0].adb_serial : ""
                property int phones: currentSelectedGroup ? currentSelectedGroup.deviceCount : -1
                property string firstPhone: phones > 0 ? currentSelectedGroup.devicesForRepeater[0].adbConnectionSerial : ""
                function addAll() { return currentSelectedGroup.addDevices(availableDeviceInfos) }
            })",
                          QUrl("qrc:/test.qml"));
        std::unique_ptr<QObject> object(component.create());
        QVERIFY2(object, qPrintable(component.errorString()));
        auto *manager = qobject_cast<DeviceGroupManager *>(object.get());
        QCOMPARE(object->property("groupCount").toInt(), 1);
        QCOMPARE(object->property("firstName").toString(), QString("Default Group"));

        manager->scanDevices();
        QTRY_COMPARE(object->property("offered").toString(), QString("A"));
        QVariant added;
        QVERIFY(QMetaObject::invokeMethod(object.get(), "addAll", Q_RETURN_ARG(QVariant, added)));
        QVERIFY(added.toBool());
        QTRY_COMPARE(object->property("phones").toInt(), 3);
        QCOMPARE(object->property("firstPhone").toString(), QString("A"));
        QCOMPARE(manager->currentSelectedGroup()->devices().at(2)->adbConnectionSerial(), QString("192.168.0.9:5555"));
    }
};

QTEST_MAIN(TestDeviceGroupManager)
#include "tst_devicegroupmanager.moc"
