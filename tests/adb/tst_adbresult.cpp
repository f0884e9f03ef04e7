#include "adbresult.h"

#include <QtTest>

Q_DECLARE_METATYPE(AdbResult::Kind)
Q_DECLARE_METATYPE(AdbResult::Status)

// The verdict on adb's and the package manager's answers, as phonesim and real phones give them.
class TestAdbResult : public QObject
{
    Q_OBJECT

private slots:
    void classify_data()
    {
        using K = AdbResult::Kind;
        using S = AdbResult::Status;
        QTest::addColumn<K>("kind");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<bool>("crashed");
        QTest::addColumn<QByteArray>("out");
        QTest::addColumn<QByteArray>("err");
        QTest::addColumn<S>("status");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("code");
        const auto row = [](const char *name, K kind, int exitCode, const QByteArray &out, const QByteArray &err, S status,
                            const char *text, const char *code = "", bool crashed = false) {
            QTest::newRow(name) << kind << exitCode << crashed << out << err << status << QString(text) << QString(code);
        };
        const char *invalidApk = "Failure [INSTALL_FAILED_INVALID_APK: Failed to parse /data/local/tmp/x.apk: not a valid zip archive]";
        row("pm success", K::Install, 0, "Success\n", "", S::Done, "Success");
        row("pm failure with message, phonesim", K::Install, 1, QByteArray(invalidApk) + "\n", "", S::Failed, invalidApk,
            "INSTALL_FAILED_INVALID_APK");
        row("pm failure on stderr, exit 0", K::Install, 0, "", "Failure [INSTALL_FAILED_ALREADY_EXISTS]\n", S::Failed,
            "Failure [INSTALL_FAILED_ALREADY_EXISTS]", "INSTALL_FAILED_ALREADY_EXISTS");
        row("adb install streamed failure", K::Install, 1, "",
            "adb: failed to install My App (1).apk: Failure [INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected]\n",
            S::Failed, "Failure [INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected]", "INSTALL_FAILED_VERSION_DOWNGRADE");
        row("adb install streamed success", K::Install, 0, "Performing Streamed Install\nSuccess\n", "", S::Done, "Success");
        row("pm without answer", K::Install, 0, "", "", S::Failed, "The package manager gave no answer");
        row("success word inside a path is no answer", K::Install, 0, "/data/local/tmp/Success.apk\n", "", S::Failed,
            "The package manager gave no answer");
        row("pm error without failure line", K::Install, 255, "", "Error: Unknown option: -z\n", S::Failed,
            "Error: Unknown option: -z");
        row("device gone during install", K::Install, 1, "", "adb: device '127.0.0.1:5' not found\n", S::Failed,
            "adb: device '127.0.0.1:5' not found");

        const char *pushed = "/tmp/error failed.bin: 1 file pushed, 0 skipped. 9.1 MB/s (10 bytes in 0.001s)";
        row("push done, path has error and failed", K::Push, 0, QByteArray(pushed) + "\n", "", S::Done, pushed);
        const char *refused = "adb: error: failed to copy 'a' to '/sdcard': remote couldn't create file: Is a directory";
        row("push refused by the phone", K::Push, 1, "", QByteArray(refused) + "\n", S::Failed, refused);
        const char *missing = "adb: error: cannot stat '/nowhere.apk': No such file or directory";
        row("push of a missing file", K::Push, 1, "", QByteArray(missing) + "\n", S::Failed, missing);

        row("command output kept whole", K::Command, 0, "a.txt\nerror.log\n", "", S::Done, "a.txt\nerror.log\n");
        row("command exit code", K::Command, 127, "", "/system/bin/sh: nosuch: inaccessible or not found\n", S::Failed,
            "/system/bin/sh: nosuch: inaccessible or not found");
        row("command failure keeps what it printed", K::Command, 1, "partial listing\n", "ls: /x: Permission denied\n",
            S::Failed, "partial listing\nls: /x: Permission denied");
        row("command silent failure", K::Command, 3, "", "", S::Failed, "adb exited with code 3");
        row("adb crashed", K::Command, 0, "partial", "", S::Failed, "adb ended abnormally", "", true);
    }

    void classify()
    {
        QFETCH(AdbResult::Kind, kind);
        QFETCH(int, exitCode);
        QFETCH(bool, crashed);
        QFETCH(QByteArray, out);
        QFETCH(QByteArray, err);
        const AdbResult result = AdbResult::classify(kind, exitCode, crashed, out, err);
        QTEST(result.status, "status");
        QTEST(result.text, "text");
        QTEST(result.failureCode, "code");
    }

    void kindOf_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<AdbResult::Kind>("kind");
        using K = AdbResult::Kind;
        QTest::newRow("install") << "-s S install -r a.apk" << K::Install;
        QTest::newRow("install-multiple") << "-s S install-multiple a.apk b.apk" << K::Install;
        QTest::newRow("push") << "-s S push a /sdcard/" << K::Push;
        QTest::newRow("pm install") << "-s S shell pm install -r /data/local/tmp/a.apk" << K::Install;
        QTest::newRow("cmd package install") << "-s S shell cmd package install -r /data/local/tmp/a.apk" << K::Install;
        QTest::newRow("grep for install") << "-s S shell dumpsys package | grep install" << K::Command;
        QTest::newRow("file named push") << "-s S shell ls /sdcard/push" << K::Command;
        QTest::newRow("serial named install") << "-s install shell ls" << K::Command;
        QTest::newRow("pull") << "-s S pull /sdcard/install.apk" << K::Command;
    }

    void kindOf()
    {
        QFETCH(QString, command);
        QTEST(AdbResult::kindOf(command.split(' ')), "kind");
    }
};

QTEST_GUILESS_MAIN(TestAdbResult)
#include "tst_adbresult.moc"
