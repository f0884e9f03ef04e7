#include "adbclient.h"

#include <QtTest>

// Debian's real adb, on a private server port so that a developer's own adb server is untouched.
class TestAdbServer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("ANDROID_ADB_SERVER_PORT", "15037");
        QVERIFY2(!QStandardPaths::findExecutable("adb").isEmpty(), "Debian's adb must be installed");
    }

    void devicesWithoutPhonesIsNotAFailure()
    {
        QVERIFY(AdbClient::startServer());
        const QString text = AdbClient::run({"devices", "-l"});
        QVERIFY2(text.startsWith("List of devices attached"), qPrintable(text));
        QVERIFY(AdbClient::devices().isEmpty());
    }

    void killServerSucceeds()
    {
        QVERIFY(AdbClient::killServer());
        // With no server left, a shell command fails with adb's own error text.
        const QString result = AdbClient::run({"-s", "127.0.0.1:1", "shell", "true"});
        QVERIFY2(result.startsWith("[error] adb command failed (exit code 1): "), qPrintable(result));
        QVERIFY(AdbClient::killServer());
    }
};

QTEST_GUILESS_MAIN(TestAdbServer)
#include "tst_adbserver.moc"
