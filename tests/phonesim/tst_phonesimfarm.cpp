// scripts/phonefarm starts a varied farm that adb lists as devices, and stops it again.
#include "adbrunner.h"
#include "loopbacklease.h"
#include "phonesimprocess.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class TestPhoneSimFarm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void startListsVariedPhonesAndStopRemovesThem();

private:
    QProcess *farm(const QStringList &args);

    QTemporaryDir m_dir;
    quint16 m_basePort = 0;
    const LoopbackLease m_adbServerPort = LoopbackLease::adbServerPort();
    AdbRunner m_adb{quint16(m_adbServerPort.value())};
};

void TestPhoneSimFarm::initTestCase()
{
    if (!AdbRunner::available())
        QSKIP("adb is not installed");
    m_basePort = PhoneSimProcess::freePort();
}

void TestPhoneSimFarm::cleanup()
{
    std::unique_ptr<QProcess> stop(farm({"stop"}));
    stop->waitForFinished(30000);
    m_adb.killServer();
}

QProcess *TestPhoneSimFarm::farm(const QStringList &args)
{
    auto *process = new QProcess;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ANDROID_ADB_SERVER_PORT", QString::number(m_adbServerPort.value()));
    environment.insert("KORVEL_PHONEFARM_DIR", m_dir.path());
    environment.insert("KORVEL_PHONEFARM_BASE_PORT", QString::number(m_basePort));
    process->setProcessEnvironment(environment);
    process->start("bash", QStringList{qEnvironmentVariable("KORVEL_SOURCE_DIR") + "/scripts/phonefarm"} + args);
    return process;
}

void TestPhoneSimFarm::startListsVariedPhonesAndStopRemovesThem()
{
    std::unique_ptr<QProcess> start(farm({"start", "3"}));
    QVERIFY(start->waitForFinished(60000));
    QCOMPARE(start->exitCode(), 0);
    const QStringList serials = QString::fromUtf8(start->readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(serials, (QStringList{QString("127.0.0.1:%1").arg(m_basePort), QString("127.0.0.1:%1").arg(m_basePort + 1),
                                   QString("127.0.0.1:%1").arg(m_basePort + 2)}));
    QStringList sizes;
    for (const QString &serial : serials) {
        QVERIFY(m_adb.listed(serial));
        sizes << QString::fromUtf8(m_adb.run({"-s", serial, "shell", "wm", "size"}).out).trimmed();
    }
    QCOMPARE(sizes, (QStringList{"Physical size: 1080x2400", "Physical size: 720x1600", "Physical size: 1080x2340"}));
    QCOMPARE(m_adb.run({"-s", serials.at(1), "shell", "getprop", "dhcp.wlan0.ipaddress"}).out, QByteArray("127.0.0.11\n"));
    QVERIFY(QFile::exists(m_dir.filePath(QString("%1/journal.jsonl").arg(m_basePort))));

    std::unique_ptr<QProcess> stop(farm({"stop"}));
    QVERIFY(stop->waitForFinished(30000));
    QCOMPARE(stop->exitCode(), 0);
    for (const QString &serial : serials)
        QVERIFY(!m_adb.run({"devices"}).out.contains(serial.toUtf8()));
    QVERIFY(QDir(m_dir.path()).entryList({"*.pid"}, QDir::Files).isEmpty());
}

QTEST_GUILESS_MAIN(TestPhoneSimFarm)
#include "tst_phonesimfarm.moc"
