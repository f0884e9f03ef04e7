#include "adbclient.h"
#include "appconfig.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "phonefixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

// The rack as the user left it, through Debian's real adb and simulated phones: a groups file that
// cannot be parsed is kept aside while the manager starts, and groups with phones come back.
class TestRackRestore : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_folder;

    QString file() const { return m_folder.filePath("device_groups.json"); }
    QString serial(int phone) const { return m_fixture->phones().at(phone)->serial(); }

    static QStringList serialsOf(const DeviceGroup *group)
    {
        QStringList serials;
        for (const Device *device : group->devices())
            serials << device->adbConnectionSerial();
        return serials;
    }

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

    void corruptFileIsKeptAsideAndTheManagerStarts()
    {
        const QByteArray corrupt = R"({"device_groups": [ {"name": "Rack", "devices": ["a"]}, ]})";
        QFile out(file());
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(corrupt);
        out.close();

        DeviceGroupManager manager;
        QCOMPARE(manager.deviceGroups().size(), 1);
        QCOMPARE(manager.deviceGroups().first()->name(), QString("Default Group"));
        const QStringList aside = QDir(m_folder.path()).entryList({"device_groups.json.corrupt-*"}, QDir::Files);
        QCOMPARE(aside.size(), 1);
        QFile kept(m_folder.filePath(aside.first()));
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), corrupt);
        QVERIFY(manager.fileMessage().contains(kept.fileName()));

        // The manager works on: a scan offers every phone.
        manager.scanDevices();
        QTRY_VERIFY_WITH_TIMEOUT(!manager.isScanning(), 15000);
        QCOMPARE(manager.availableDeviceInfos().size(), 3);
    }

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
        QFile saved(file());
        QVERIFY(saved.open(QIODevice::ReadOnly));
        const QJsonArray groups = QJsonDocument::fromJson(saved.readAll()).object().value("device_groups").toArray();
        QCOMPARE(groups.at(1).toObject().value("devices").toArray(), QJsonArray({serial(2), serial(0)}));

        DeviceGroupManager again;
        QTRY_COMPARE_WITH_TIMEOUT(serialsOf(again.deviceGroups().at(1)), (QStringList{serial(2), serial(0)}), 15000);
        QTRY_COMPARE_WITH_TIMEOUT(serialsOf(again.deviceGroups().at(0)), QStringList{serial(1)}, 15000);
        QVERIFY(again.availableDeviceInfos().isEmpty());
    }
};

QTEST_MAIN(TestRackRestore)
#include "tst_rackrestore.moc"
