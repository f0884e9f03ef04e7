#include "adbclient.h"
#include "appconfig.h"
#include "devicegroupmanager.h"
#include "groupserials.h"
#include "phonefixture.h"
#include "testfiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

// The group manager through Debian's real adb and simulated phones: the rack comes back as the
// user left it, and the adb server restarts from the menu. Damaged groups files are tried by
// tst_devicegroupmanager.
class TestRackRestore : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_folder;

    QString serial(int phone) const { return m_fixture->phones().at(phone)->serial(); }

    ADBDeviceInfo listed(int phone) const
    {
        for (const ADBDeviceInfo &info : AdbClient::devices()) {
            if (info.adb_serial == serial(phone))
                return info;
        }
        return {};
    }

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        for (const QSize size : {QSize(1080, 2400), QSize(720, 1600), QSize(1080, 2340)})
            QVERIFY2(m_fixture->addPhone(size), qPrintable(m_fixture->error()));
        AppConfig::instance()->setDeviceGroupSavePath(m_folder.path());
        DeviceGroup::setStaggerIntervals({0, 0, 0});
    }

    void cleanupTestCase() { m_fixture.reset(); }
    // No phones remembered from another test come back by themselves.
    void init() { QFile::remove(DeviceGroupManager::filePath()); }

    void groupsWithPhonesSurviveARestart()
    {
        {
            DeviceGroupManager first;
            first.createDeviceGroup("Rack");
            DeviceGroup *home = first.deviceGroups().at(0);
            DeviceGroup *rack = first.deviceGroups().at(1);
            // Not in the order adb lists them.
            QVERIFY(rack->addDevices({listed(2), listed(0)}));
            QVERIFY(home->addDevices({listed(1)}));
            QTRY_COMPARE(rack->deviceCount() + home->deviceCount(), 3);
            QCOMPARE(serialsOf(rack), (QStringList{serial(2), serial(0)}));
        }
        const QJsonArray groups = QJsonDocument::fromJson(TestFiles::read(DeviceGroupManager::filePath()))
                                      .object().value("device_groups").toArray();
        QCOMPARE(groups.at(1)["devices"].toArray(), QJsonArray({serial(2), serial(0)}));

        DeviceGroupManager again;
        QTRY_COMPARE_WITH_TIMEOUT(serialsOf(again.deviceGroups().at(1)), (QStringList{serial(2), serial(0)}), 15000);
        QTRY_COMPARE_WITH_TIMEOUT(serialsOf(again.deviceGroups().at(0)), QStringList{serial(1)}, 15000);
        QVERIFY(again.availableDeviceInfos().isEmpty());
    }

    void restartedAdbServerStartsWithoutPhones()
    {
        DeviceGroupManager manager;
        QSignalSpy restarted(&manager, &DeviceGroupManager::adbServerRestarted);
        manager.restartADBServer();
        QVERIFY(restarted.wait(30000));
        QCOMPARE(restarted.at(0).at(0).toBool(), true);

        // The new server knows no phone yet, and an empty list is no failure.
        const QString listing = AdbClient::run({"devices", "-l"});
        QVERIFY2(listing.startsWith("List of devices attached"), qPrintable(listing));
        QVERIFY(AdbClient::devices().isEmpty());
        // adb's own words reach the user when it cannot do what was asked.
        const QString failed = AdbClient::run({"-s", serial(0), "shell", "true"});
        QVERIFY2(failed.startsWith("[error] adb command failed (exit code 1): "), qPrintable(failed));

        for (const auto &phone : m_fixture->phones()) {
            m_fixture->adb().run({"connect", phone->serial()});
            QTRY_VERIFY_WITH_TIMEOUT(m_fixture->adb().listed(phone->serial()), 10000);
        }
    }
};

QTEST_MAIN(TestRackRestore)
#include "tst_rackrestore.moc"
