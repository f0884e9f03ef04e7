#include "appconfig.h"
#include "device.h"
#include "devicegroup.h"
#include "framehandoff.h"
#include "mediarecorder.h"
#include "phonefixture.h"
#include "serverparams.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

namespace {

// What FFmpeg's own ffprobe reads in a file: its complaints, streams, length and packets.
struct Probe
{
    QByteArray errors;
    QStringList codecs;
    double duration = 0;
    QMap<QString, QList<qint64>> pts; // per codec
    QMap<QString, QStringList> flags;
};

Probe probe(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start("ffprobe", {"-v", "error", "-show_entries", "stream=index,codec_name:format=duration:packet=stream_index,pts,flags",
                              "-of", "json", path});
    if (!ffprobe.waitForFinished(30000))
        return {"ffprobe did not finish"};
    Probe result{ffprobe.readAllStandardError()};
    const QJsonObject root = QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object();
    QMap<int, QString> codecOf;
    for (const QJsonValue &stream : root.value("streams").toArray())
        result.codecs << (codecOf[stream["index"].toInt()] = stream["codec_name"].toString());
    result.codecs.sort();
    result.duration = root.value("format")["duration"].toString().toDouble();
    for (const QJsonValue &packet : root.value("packets").toArray()) {
        const QString codec = codecOf.value(packet["stream_index"].toInt());
        result.pts[codec] << qint64(packet["pts"].toDouble());
        result.flags[codec] << packet["flags"].toString();
    }
    return result;
}

} // namespace

// Recordings of a simulated phone's session, checked with FFmpeg's own ffprobe.
class TestRecording : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    QTemporaryDir m_videos;

    Device *startDevice(DeviceGroup &group, bool audio, PhoneSimProcess **phoneOut = nullptr)
    {
        PhoneSimProcess *phone = m_fixture->addPhone({1080, 2400}, {"--animate"});
        if (!phone) {
            qWarning("%s", qPrintable(m_fixture->error()));
            return nullptr;
        }
        if (phoneOut)
            *phoneOut = phone;
        auto *device = new Device(nullptr, &group, phone->serial());
        device->serverParamsSmallView()->setMaxSize(400);
        device->serverParamsSmallView()->setMaxFps(30);
        device->serverParamsSmallView()->setAudio(audio);
        group.appendDevice(device);
        device->startScrcpySession();
        return device;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        AppConfig::instance()->setVideoSavePath(m_videos.path());
    }

    void cleanupTestCase()
    {
        m_fixture.reset();
        AppConfig::instance()->reset();
    }

    void recordingIsAPlayableFile_data()
    {
        QTest::addColumn<bool>("audio");
        QTest::addColumn<QStringList>("codecs");
        QTest::newRow("video and sound") << true << QStringList{"h264", "opus"};
        QTest::newRow("video only") << false << QStringList{"h264"};
    }

    void recordingIsAPlayableFile()
    {
        QFETCH(bool, audio);
        QFETCH(QStringList, codecs);
        DeviceGroup group;
        Device *device = startDevice(group, audio);
        QVERIFY(device);
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
        MediaRecorder *recorder = device->videoRecorder();
        QSignalSpy messages(device, &Device::deviceMessage);

        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Started", "success", 2000}), 10000);
        QVERIFY(recorder->isRecording());
        QElapsedTimer recorded;
        recorded.start();
        // The length of the recording is the thing under test.
        QTRY_VERIFY_WITH_TIMEOUT(recorded.elapsed() >= 3000, 10000);
        device->stopRecord();
        const double seconds = recorded.elapsed() / 1000.0;
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Stopped", "success", 2000}), 10000);
        QVERIFY(messages.contains(QVariantList{"Stop Recording", "info", 2000}));
        QTRY_VERIFY(!recorder->isRecording());

        const QFileInfo file(recorder->filePath());
        QCOMPARE(file.absolutePath(), QFileInfo(m_videos.path()).absoluteFilePath());
        // Named after the phone's nickname and serial.
        QVERIFY2(file.fileName().startsWith(device->nickName() + "_" + device->adbConnectionSerial() + "_")
                     && file.suffix() == "mkv", qPrintable(file.fileName()));
        const Probe result = probe(file.filePath());
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.codecs, codecs);
        QVERIFY2(qAbs(result.duration - seconds) <= seconds * 0.1,
                 qPrintable(QString("%1 s in the file, %2 s recorded").arg(result.duration).arg(seconds)));
        for (auto it = result.pts.cbegin(); it != result.pts.cend(); ++it) {
            for (qsizetype i = 1; i < it->size(); ++i)
                QVERIFY2(it->at(i) > it->at(i - 1), qPrintable(it.key()));
        }
        QVERIFY(result.flags.value("h264").value(0).startsWith('K'));
        device->stopScrcpySession();
    }

    void unwritableFolderFails()
    {
        QTemporaryDir dir;
        QFile blocker(dir.filePath("not-a-folder"));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        AppConfig::instance()->setVideoSavePath(blocker.fileName() + "/Videos");
        DeviceGroup group;
        Device *device = startDevice(group, false);
        QVERIFY(device);
        QTRY_VERIFY_WITH_TIMEOUT(device->controller(), 20000);
        QSignalSpy messages(device, &Device::deviceMessage);
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher();
        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Failed", "error", 5000}), 10000);
        QVERIFY(!device->videoRecorder()->isRecording());
        const int seen = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() > seen + 3, 10000);
        AppConfig::instance()->setVideoSavePath(m_videos.path());
        device->stopScrcpySession();
    }

    void vanishedPhoneLeavesAPlayableFile()
    {
        DeviceGroup group;
        PhoneSimProcess *phone = nullptr;
        QPointer<Device> device = startDevice(group, true, &phone);
        QVERIFY(device);
        QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
        QSignalSpy messages(device, &Device::deviceMessage);
        device->startRecord();
        QTRY_VERIFY_WITH_TIMEOUT(messages.contains(QVariantList{"Record Started", "success", 2000}), 10000);
        const QString path = device->videoRecorder()->filePath();
        // A second of the stream goes to the recorder before the phone goes.
        FrameHandoff *frames = device->videoFrames();
        frames->addWatcher();
        const int seen = frames->framesPublished();
        QTRY_VERIFY_WITH_TIMEOUT(frames->framesPublished() >= seen + 30, 20000);
        QCOMPARE(phone->ctl({"vanish"}), 0);
        QTRY_VERIFY_WITH_TIMEOUT(device->offline(), 30000);
        QVERIFY(!device->videoRecorder()->isRecording());
        const Probe result = probe(path);
        QCOMPARE(result.errors, QByteArray());
        QCOMPARE(result.codecs, (QStringList{"h264", "opus"}));
        QVERIFY(result.duration > 0);
    }
};

QTEST_MAIN(TestRecording)
#include "tst_recording.moc"
