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

        QTest::newRow("pm success") << K::Install << 0 << false << QByteArray("Success\n") << QByteArray()
                                    << S::Done << "Success" << "";
        QTest::newRow("pm failure with message, phonesim")
            << K::Install << 1 << false
            << QByteArray("Failure [INSTALL_FAILED_INVALID_APK: Failed to parse /data/local/tmp/x.apk: not a valid zip archive]\n")
            << QByteArray() << S::Failed
            << "Failure [INSTALL_FAILED_INVALID_APK: Failed to parse /data/local/tmp/x.apk: not a valid zip archive]"
            << "INSTALL_FAILED_INVALID_APK";
        QTest::newRow("pm failure on stderr, exit 0") << K::Install << 0 << false << QByteArray()
                                                      << QByteArray("Failure [INSTALL_FAILED_ALREADY_EXISTS]\n")
                                                      << S::Failed << "Failure [INSTALL_FAILED_ALREADY_EXISTS]"
                                                      << "INSTALL_FAILED_ALREADY_EXISTS";
        QTest::newRow("adb install streamed failure")
            << K::Install << 1 << false << QByteArray()
            << QByteArray("adb: failed to install My App (1).apk: Failure [INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected]\n")
            << S::Failed << "Failure [INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected]"
            << "INSTALL_FAILED_VERSION_DOWNGRADE";
        QTest::newRow("adb install streamed success")
            << K::Install << 0 << false << QByteArray("Performing Streamed Install\nSuccess\n") << QByteArray()
            << S::Done << "Success" << "";
        QTest::newRow("pm without answer") << K::Install << 0 << false << QByteArray() << QByteArray() << S::Failed
                                           << "The package manager gave no answer" << "";
        QTest::newRow("success word inside a path is no answer")
            << K::Install << 0 << false << QByteArray("/data/local/tmp/Success.apk\n") << QByteArray() << S::Failed
            << "The package manager gave no answer" << "";
        QTest::newRow("pm error without failure line") << K::Install << 255 << false << QByteArray()
                                                       << QByteArray("Error: Unknown option: -z\n") << S::Failed
                                                       << "Error: Unknown option: -z" << "";
        QTest::newRow("device gone during install")
            << K::Install << 1 << false << QByteArray() << QByteArray("adb: device '127.0.0.1:5' not found\n")
            << S::Failed << "adb: device '127.0.0.1:5' not found" << "";

        QTest::newRow("push done, path has error and failed")
            << K::Push << 0 << false
            << QByteArray("/tmp/error failed.bin: 1 file pushed, 0 skipped. 9.1 MB/s (10 bytes in 0.001s)\n")
            << QByteArray() << S::Done
            << "/tmp/error failed.bin: 1 file pushed, 0 skipped. 9.1 MB/s (10 bytes in 0.001s)" << "";
        QTest::newRow("push refused by the phone")
            << K::Push << 1 << false << QByteArray()
            << QByteArray("adb: error: failed to copy 'a' to '/sdcard': remote couldn't create file: Is a directory\n")
            << S::Failed << "adb: error: failed to copy 'a' to '/sdcard': remote couldn't create file: Is a directory"
            << "";
        QTest::newRow("push of a missing file")
            << K::Push << 1 << false << QByteArray()
            << QByteArray("adb: error: cannot stat '/nowhere.apk': No such file or directory\n") << S::Failed
            << "adb: error: cannot stat '/nowhere.apk': No such file or directory" << "";

        QTest::newRow("command output kept whole") << K::Command << 0 << false << QByteArray("a.txt\nerror.log\n")
                                                   << QByteArray() << S::Done << "a.txt\nerror.log\n" << "";
        QTest::newRow("command exit code") << K::Command << 127 << false << QByteArray()
                                           << QByteArray("/system/bin/sh: nosuch: inaccessible or not found\n")
                                           << S::Failed << "/system/bin/sh: nosuch: inaccessible or not found" << "";
        QTest::newRow("command silent failure") << K::Command << 3 << false << QByteArray() << QByteArray()
                                                << S::Failed << "adb exited with code 3" << "";
        QTest::newRow("adb crashed") << K::Command << 0 << true << QByteArray("partial") << QByteArray() << S::Failed
                                     << "adb ended abnormally" << "";
    }

    void classify()
    {
        QFETCH(AdbResult::Kind, kind);
        QFETCH(int, exitCode);
        QFETCH(bool, crashed);
        QFETCH(QByteArray, out);
        QFETCH(QByteArray, err);
        QFETCH(AdbResult::Status, status);
        QFETCH(QString, text);
        QFETCH(QString, code);
        const AdbResult result = AdbResult::classify(kind, exitCode, crashed, out, err);
        QCOMPARE(result.status, status);
        QCOMPARE(result.text, text);
        QCOMPARE(result.failureCode, code);
    }
};

QTEST_GUILESS_MAIN(TestAdbResult)
#include "tst_adbresult.moc"
