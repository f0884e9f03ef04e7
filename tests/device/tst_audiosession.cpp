#include "device.h"
#include "devicegroup.h"
#include "framehandoff.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QFile>
#include <QProcess>
#include <QtTest>

namespace {

constexpr double ToneHz = 440.0;

// The frequency of the tone in interleaved 48 kHz stereo s16 PCM, from the left channel's rising
// zero crossings; 0 when there are fewer than a few hundred milliseconds of sound.
double toneFrequency(const QByteArray &pcm)
{
    const auto *samples = reinterpret_cast<const qint16 *>(pcm.constData());
    const qsizetype frames = pcm.size() / 4;
    qsizetype start = 0;
    // Leading silence (before the first packet reached the sink) says nothing about the tone.
    while (start < frames && qAbs(samples[2 * start]) < 500)
        ++start;
    if (frames - start < 48000 / 4)
        return 0;
    double first = -1, last = -1;
    int crossings = 0;
    for (qsizetype i = start + 1; i < frames; ++i) {
        const int a = samples[2 * (i - 1)], b = samples[2 * i];
        if (a < 0 && b >= 0) {
            const double at = double(i - 1) + double(-a) / double(b - a);
            if (first < 0)
                first = at;
            last = at;
            ++crossings;
        }
    }
    return crossings < 2 ? 0 : (crossings - 1) * 48000.0 / (last - first);
}

} // namespace

// A phone's sound through real adb and the simulated phone, heard on a private sound server.
class TestAudioSession : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_pulseDir{QDir::tempPath() + "/kvpa-XXXXXX"};
    QProcess m_pulse;

    Device *startDevice(DeviceGroup &group, const QStringList &phoneArgs = {})
    {
        PhoneSimProcess *phone = m_fixture->addPhone({1080, 2400}, QStringList{"--animate"} + phoneArgs);
        if (!phone) {
            qWarning("%s", qPrintable(m_fixture->error()));
            return nullptr;
        }
        auto *device = new Device(nullptr, &group, phone->serial());
        device->serverParamsSmallView()->setMaxSize(400);
        device->serverParamsSmallView()->setMaxFps(15);
        device->serverParamsSmallView()->setAudio(true);
        group.appendDevice(device);
        device->startScrcpySession();
        return device;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        // A null sink stands in for the speakers; it must be known before the first audio output opens.
        const QString dir = m_pulseDir.path();
        QVERIFY(QDir().mkpath(dir + "/runtime"));
        QFile config(dir + "/default.pa");
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write(QString("load-module module-native-protocol-unix socket=%1/runtime/native auth-anonymous=1\n"
                             "load-module module-null-sink sink_name=korvel_test rate=48000 channels=2\n"
                             "set-default-sink korvel_test\n").arg(dir).toUtf8());
        config.close();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", dir);
        env.insert("XDG_RUNTIME_DIR", dir + "/runtime");
        m_pulse.setProcessEnvironment(env);
        m_pulse.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_pulse.start("pulseaudio", {"-n", "--daemonize=no", "--system=false", "--exit-idle-time=-1",
                                     "--disallow-exit", "--use-pid-file=false", "--disable-shm=yes",
                                     "--log-target=stderr", "--log-level=error", "-F", config.fileName()});
        QVERIFY2(m_pulse.waitForStarted(), "pulseaudio did not start");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(dir + "/runtime/native"), 10000);
        qputenv("PULSE_SERVER", ("unix:" + dir + "/runtime/native").toUtf8());
        m_fixture = std::make_unique<PhoneFixture>();
    }

    void cleanupTestCase()
    {
        m_fixture.reset();
        m_pulse.terminate();
        m_pulse.waitForFinished(5000);
    }

    void soundReachesTheSpeakers()
    {
        QTemporaryDir dir;
        const QString heard = dir.filePath("monitor.raw");
        QProcess parec;
        parec.start("parec", {"--device=korvel_test.monitor", "--format=s16le", "--rate=48000", "--channels=2",
                              "--raw", "--latency-msec=20", heard});
        QVERIFY(parec.waitForStarted());
        DeviceGroup group;
        Device *device = startDevice(group);
        QVERIFY(device);
        const auto frequency = [&heard] {
            QFile file(heard);
            return file.open(QIODevice::ReadOnly) ? toneFrequency(file.readAll()) : 0.0;
        };
        QTRY_VERIFY_WITH_TIMEOUT(qAbs(frequency() - ToneHz) <= ToneHz * 0.02, 15000);
        device->stopScrcpySession();
        parec.terminate();
        parec.waitForFinished(5000);
    }

    void phoneWithoutSoundKeepsItsVideo()
    {
        DeviceGroup group;
        Device *device = startDevice(group, {"--audio", "disabled"});
        QVERIFY(device);
        QSignalSpy messages(device, &Device::deviceMessage);
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher(); // as a view on screen: every picture is decoded
        const QVariantList message{"Audio is not available on this phone (Android 11 or later)", "error", 5000};
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(message), 15000);
        const int seen = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > seen + 3, 10000);
        QVERIFY(device->running() && device->controller());
        device->stopScrcpySession();
        frames->removeWatcher();
    }
};

QTEST_MAIN(TestAudioSession)
#include "tst_audiosession.moc"
