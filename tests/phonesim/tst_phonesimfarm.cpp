// scripts/phonefarm starts a varied farm that adb lists as devices, and stops it again.
#include "adbrunner.h"
#include "loopbacklease.h"
#include "phonesimprocess.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

class TestPhoneSimFarm : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const LoopbackLease m_adbServerPort = LoopbackLease::adbServerPort();
    AdbRunner m_adb{quint16(m_adbServerPort.value())};

    // Runs the script to its end; whether it succeeded, and what it printed.
    bool farm(const QStringList &args, quint16 basePort, QString *output = nullptr)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ANDROID_ADB_SERVER_PORT", QString::number(m_adbServerPort.value()));
        environment.insert("KORVEL_PHONEFARM_DIR", m_dir.path());
        environment.insert("KORVEL_PHONEFARM_BASE_PORT", QString::number(basePort));
        process.setProcessEnvironment(environment);
        process.start("bash", QStringList{qEnvironmentVariable("KORVEL_SOURCE_DIR") + "/scripts/phonefarm"} + args);
        const bool ok = process.waitForFinished(60000) && process.exitCode() == 0;
        if (output)
            *output = QString::fromUtf8(process.readAllStandardOutput());
        return ok;
    }

private slots:
    void startListsVariedPhonesAndStopRemovesThem()
    {
        if (!AdbRunner::available())
            QSKIP("adb is not installed");
        const quint16 base = PhoneSimProcess::freePort();
        const auto cleanup = qScopeGuard([&] {
            farm({"stop"}, base);
            m_adb.killServer();
        });
        QString started;
        QVERIFY(farm({"start", "3"}, base, &started));
        const QStringList serials = started.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(serials, (QStringList{QString("127.0.0.1:%1").arg(base), QString("127.0.0.1:%1").arg(base + 1),
                                       QString("127.0.0.1:%1").arg(base + 2)}));
        QStringList sizes;
        for (const QString &serial : serials) {
            QVERIFY(m_adb.listed(serial));
            sizes << QString::fromUtf8(m_adb.run({"-s", serial, "shell", "wm", "size"}).out).trimmed();
        }
        QCOMPARE(sizes, (QStringList{"Physical size: 1080x2400", "Physical size: 720x1600", "Physical size: 1080x2340"}));
        QCOMPARE(m_adb.run({"-s", serials.at(1), "shell", "getprop", "dhcp.wlan0.ipaddress"}).out, QByteArray("127.0.0.11\n"));
        QVERIFY(QFile::exists(m_dir.filePath(QString("%1/journal.jsonl").arg(base))));

        QVERIFY(farm({"stop"}, base));
        for (const QString &serial : serials)
            QVERIFY(!m_adb.run({"devices"}).out.contains(serial.toUtf8()));
        QVERIFY(QDir(m_dir.path()).entryList({"*.pid"}, QDir::Files).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPhoneSimFarm)
#include "tst_phonesimfarm.moc"
