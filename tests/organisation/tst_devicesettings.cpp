#include "devicesettings.h"
#include "testfiles.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

class TestDeviceSettings : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString file() const { return m_folder.filePath("nicknames/device_nicknames.json"); }
    DeviceSettings *settings() const { return DeviceSettings::instance(); }

    QJsonObject fileMembers() const
    {
        return QJsonDocument::fromJson(TestFiles::read(file())).object().value("device_nicknames").toObject();
    }

private slots:
    void initTestCase()
    {
        // The folder does not exist yet: saving must create it.
        settings()->setFolder(m_folder.filePath("nicknames"));
    }

    void init()
    {
        QFile::remove(file());
        settings()->reload();
    }

    void setWritesFileAndSignalsOnce()
    {
        QSignalSpy spy(settings(), &DeviceSettings::deviceNicknameChanged);
        settings()->setDeviceNickname("B-serial", "Bravo");
        settings()->setDeviceNickname("A-serial", "Alpha");
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(1), (QVariantList{"A-serial", "Alpha"}));
        QCOMPARE(fileMembers(), (QJsonObject{{"A-serial", "Alpha"}, {"B-serial", "Bravo"}}));
        QCOMPARE(settings()->getAllDeviceSerials(), (QStringList{"A-serial", "B-serial"}));

        // The same name again: no signal, and the file is not written.
        QVERIFY(QFile::remove(file()));
        settings()->setDeviceNickname("A-serial", "Alpha");
        QCOMPARE(spy.count(), 2);
        QVERIFY(!QFile::exists(file()));
    }

    void emptyNicknameRemovesAndClearAllSignalsEachSerial()
    {
        settings()->setDeviceNickname("S", "Rack 1");
        settings()->setDeviceNickname("b", "2");
        settings()->setDeviceNickname("a", "1");
        QSignalSpy spy(settings(), &DeviceSettings::deviceNicknameChanged);
        settings()->setDeviceNickname("S", "");
        settings()->removeDeviceNickname("S");
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0), (QVariantList{"S", ""}));
        QCOMPARE(fileMembers(), (QJsonObject{{"a", "1"}, {"b", "2"}}));

        // Clearing announces each serial in order and leaves an empty file.
        settings()->clearAllDeviceNicknames();
        QCOMPARE(spy.count(), 3);
        QCOMPARE(spy.at(1), (QVariantList{"a", ""}));
        QCOMPARE(spy.at(2), (QVariantList{"b", ""}));
        QVERIFY(QFile::exists(file()) && fileMembers().isEmpty());

        // No serial: nothing is kept, announced or written.
        QFile::remove(file());
        settings()->setDeviceNickname("", "Nobody");
        QCOMPARE(spy.count(), 3);
        QVERIFY(!QFile::exists(file()));
    }

    // A save cannot write back what was left out, so the file as it was is copied aside first.
    void badMembersAreLeftOutAndTheFileCopiedAside()
    {
        const QByteArray content = R"({"device_nicknames": {"good": "Rack", "number": 5, "empty": "", "object": {}}})";
        QVERIFY(TestFiles::write(file(), content));
        settings()->reload();
        QCOMPARE(settings()->getAllDeviceSerials(), QStringList{"good"});
        const QStringList aside = TestFiles::keptAside(file());
        QCOMPARE(aside.size(), 1);
        QCOMPARE(TestFiles::read(aside.first()), content);
        QVERIFY2(settings()->fileMessage().contains(aside.first()), qPrintable(settings()->fileMessage()));
        settings()->setDeviceNickname("other", "X");
        QCOMPARE(fileMembers(), (QJsonObject{{"good", "Rack"}, {"other", "X"}}));
        QVERIFY(QFile::remove(aside.first()));
    }

    void unusableFilesAreKeptAside_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("folder");
        QTest::newRow("corrupt") << QByteArray("{\"device_nicknames\": {\"a\": ") << false;
        QTest::newRow("array") << QByteArray("[1, 2, 3]") << false;
        QTest::newRow("wrong type") << QByteArray(R"({"device_nicknames": ["a", "b"]})") << false;
        QTest::newRow("empty") << QByteArray() << false;
        // A folder cannot be read as a file, even by root.
        QTest::newRow("a folder in its place") << QByteArray() << true;
    }

    void unusableFilesAreKeptAside()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, folder);
        QVERIFY(folder ? QDir().mkpath(file() + "/inside") : TestFiles::write(file(), content));
        QSignalSpy message(settings(), &DeviceSettings::fileMessageChanged);
        settings()->reload();
        QVERIFY(settings()->getAllDeviceSerials().isEmpty());
        QCOMPARE(message.count(), 1);

        // The next rename writes a new file; the user's own stays, named in the message.
        settings()->setDeviceNickname("a", "Alpha");
        QCOMPARE(fileMembers(), QJsonObject({{"a", "Alpha"}}));
        const QStringList aside = TestFiles::keptAside(file(), QDir::Files | QDir::Dirs);
        QCOMPARE(aside.size(), 1);
        QVERIFY2(QRegularExpression(R"(\.corrupt-\d{8}-\d{6}$)").match(aside.first()).hasMatch(), qPrintable(aside.first()));
        QCOMPARE(TestFiles::read(aside.first()), content);
        QVERIFY2(settings()->fileMessage().contains(file()) && settings()->fileMessage().contains(aside.first()),
                 qPrintable(settings()->fileMessage()));

        // A good file clears the message.
        settings()->reload();
        QCOMPARE(settings()->fileMessage(), QString());
        QVERIFY(folder ? QDir(aside.first()).removeRecursively() : QFile::remove(aside.first()));
    }

    void failedSaveKeepsPreviousFile()
    {
        settings()->setDeviceNickname("keep", "Me");
        const QByteArray before = TestFiles::read(file());

        // A disk that fills up mid-write: files may not grow past a few bytes more than the old one.
        signal(SIGXFSZ, SIG_IGN);
        rlimit previous{};
        getrlimit(RLIMIT_FSIZE, &previous);
        rlimit tight = previous;
        tight.rlim_cur = before.size() + 16;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &tight), 0);
        settings()->setDeviceNickname("new", QString(4096, 'x'));
        setrlimit(RLIMIT_FSIZE, &previous);

        QCOMPARE(TestFiles::read(file()), before);
        QCOMPARE(QDir(QFileInfo(file()).path()).entryList(QDir::Files), QStringList{"device_nicknames.json"});
    }
};

QTEST_GUILESS_MAIN(TestDeviceSettings)
#include "tst_devicesettings.moc"
