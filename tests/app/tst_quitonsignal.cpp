#include "appconfig.h"
#include "appstartup.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "framehandoff.h"
#include "mediarecorder.h"
#include "messagekind.h"
#include "phonefixture.h"
#include "quitonsignal.h"
#include "testfiles.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>
#include <QtTest>

#include <csignal>
#include <sys/prctl.h>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

namespace {

// The adb processes whose parent is parentPid and that have not ended.
QList<qint64> liveAdbChildren(qint64 parentPid)
{
    QList<qint64> found;
    for (const QString &entry : QDir("/proc").entryList(QDir::Dirs)) {
        QFile stat("/proc/" + entry + "/stat");
        if (!entry.toLongLong() || !stat.open(QIODevice::ReadOnly))
            continue;
        // "pid (comm) state ppid ...": the name may hold spaces, the part after its ')' does not.
        const QByteArray line = stat.readAll();
        const qsizetype close = line.lastIndexOf(')');
        const QByteArray name = line.mid(line.indexOf('(') + 1, close - line.indexOf('(') - 1);
        const QList<QByteArray> rest = line.mid(close + 2).split(' ');
        if (name == "adb" && rest.size() > 1 && rest.at(0) != "Z" && rest.at(1).toLongLong() == parentPid)
            found << entry.toLongLong();
    }
    return found;
}

// FFmpeg's complaints about a file, or why it could not be read.
QByteArray probeErrors(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start("ffprobe", {"-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path});
    if (!ffprobe.waitForFinished(30000))
        return "ffprobe did not finish";
    if (ffprobe.readAllStandardOutput().trimmed().toDouble() <= 0)
        return "no duration";
    return ffprobe.readAllStandardError();
}

} // namespace

// A request to end from outside (a service manager, Ctrl+C, a closed terminal) ends Korvel as its
// window's closing does: the phones' servers stopped, no adb left behind, recordings finished.
class TestQuitOnSignal : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    PhoneSimProcess *m_phone = nullptr;

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        m_phone = m_fixture->addPhone({720, 1600}, {"--animate"});
        QVERIFY2(m_phone, qPrintable(m_fixture->error()));
        // The phone is a member of the stored group, so it is shown as Korvel starts.
        QVERIFY(TestFiles::write(AppConfig::instance()->getDeviceGroupSavePath() + "/device_groups.json",
                                 R"({"device_groups":[{"name":"Rack","devices":[")" + m_phone->serial().toUtf8() + R"("]}]})"));
        // What Korvel leaves running is handed to this process when Korvel ends, so it can be seen.
        QCOMPARE(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    }

    void korvelEndsCleanly_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void korvelEndsCleanly()
    {
        QFETCH(int, signal);
        const qsizetype commandsBefore = m_phone->journal("shell").size();
        QProcess korvel;
        korvel.setProcessChannelMode(QProcess::ForwardedChannels);
        korvel.start(qEnvironmentVariable("KORVEL_BUILD_DIR") + "/korvel");
        QVERIFY(korvel.waitForStarted());
        // Up, with the phone of its group asked for its details and the attached phones tracked.
        QTRY_VERIFY_WITH_TIMEOUT(m_phone->journal("shell").size() > commandsBefore, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!liveAdbChildren(korvel.processId()).isEmpty(), 10000);

        QCOMPARE(::kill(pid_t(korvel.processId()), signal), 0);
        QVERIFY(korvel.waitForFinished(5000));
        QCOMPARE(korvel.exitStatus(), QProcess::NormalExit);
        QCOMPARE(korvel.exitCode(), 0);
        QTRY_COMPARE(liveAdbChildren(QCoreApplication::applicationPid()), QList<qint64>());
    }

    // In this process, as main() brings Korvel up, to reach a session and a recording.
    void runningSessionAndRecordingAreEnded()
    {
        QVERIFY(QuitOnSignal::install());
        auto *engine = new QQmlApplicationEngine;
        AppStartup::loadUserInterface(*engine);
        auto *window = qobject_cast<QQuickWindow *>(engine->rootObjects().value(0));
        QVERIFY(window);
        DeviceGroup *group = window->findChild<DeviceGroupManager *>("deviceGroupManager")->currentSelectedGroup();
        QTRY_COMPARE_WITH_TIMEOUT(group->deviceCount(), 1, 20000);
        Device *device = group->devices().at(0);
        device->startScrcpySession();
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
        QSignalSpy messages(device, &Device::deviceMessage);
        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Started", QVariant::fromValue(MessageKind::Success), 2000}), 10000);
        const QString path = device->videoRecorder()->filePath();
        // Pictures decoded after the start went through the recorder first.
        QSignalSpy frames(device->videoFrames(), &FrameHandoff::frameAvailable);
        QTRY_VERIFY_WITH_TIMEOUT(frames.count() >= 30, 10000);

        // A handler that did not quit would leave the loop running: it is ended with another code.
        QTimer::singleShot(20000, qApp, [] { QCoreApplication::exit(1); });
        QCOMPARE(::raise(SIGTERM), 0);
        QCOMPARE(qApp->exec(), 0);
        // What main() does next: the window and its phones go.
        delete engine;
        QTRY_VERIFY_WITH_TIMEOUT(!m_phone->journal("server_stop").isEmpty(), 10000);
        QCOMPARE(probeErrors(path), QByteArray());
    }

    void cleanupTestCase()
    {
        m_fixture.reset();
    }
};

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    AppStartup::configureApplication();
    TestQuitOnSignal test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_quitonsignal.moc"
