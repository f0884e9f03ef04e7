#include "audiodemuxer.h"
#include "fakesocket.h"
#include "mediarecorder.h"
#include "recordingtimeline.h"
#include "streambuilder.h"
#include "videodemuxer.h"

#include <QSignalSpy>
#include <QtTest>

extern "C" {
#include <libavformat/avformat.h>
}

using Times = QList<qint64>;
using namespace StreamBuilder;

// The rules a recording's timestamps and file names follow.
class TestMediaRecorder : public QObject
{
    Q_OBJECT

private slots:
    void timestampsStartAtZeroWithBoundedDurations_data()
    {
        QTest::addColumn<bool>("video");
        QTest::addColumn<Times>("device");
        QTest::addColumn<Times>("file");
        QTest::addColumn<Times>("durations");
        // Video durations are known when the next frame comes; the last frame lasts 100,000.
        QTest::newRow("video steady") << true << Times{1000000, 1033333, 1066666} << Times{0, 33333, 66666}
                                      << Times{33333, 33333, 100000};
        QTest::newRow("video gap over 3 frames") << true << Times{1000000, 1033333, 1233333}
                                                 << Times{0, 33333, 66666} << Times{33333, 33333, 100000};
        QTest::newRow("video gap of 3 frames kept") << true << Times{1000000, 1099999, 1133332}
                                                    << Times{0, 99999, 133332} << Times{99999, 33333, 100000};
        QTest::newRow("video zero delta") << true << Times{1000000, 1000000} << Times{0, 33333} << Times{33333, 100000};
        QTest::newRow("video going back") << true << Times{1000000, 900000} << Times{0, 33333} << Times{33333, 100000};
        QTest::newRow("audio steady") << false << Times{500000, 520000, 540000} << Times{0, 20000, 40000}
                                      << Times{20000, 20000, 20000};
        QTest::newRow("audio gap over 4 packets") << false << Times{0, 20000, 120000} << Times{0, 20000, 40000}
                                                  << Times{20000, 20000, 20000};
        QTest::newRow("audio gap of 4 packets kept") << false << Times{0, 20000, 100000} << Times{0, 20000, 40000}
                                                     << Times{20000, 20000, 80000};
        QTest::newRow("audio going back") << false << Times{40000, 20000} << Times{0, 20000} << Times{20000, 20000};
    }

    void timestampsStartAtZeroWithBoundedDurations()
    {
        QFETCH(bool, video);
        QFETCH(Times, device);
        QFETCH(Times, file);
        QFETCH(Times, durations);
        RecordingTimeline timeline;
        timeline.setBase(device.first());
        Times placed;
        Times lasted;
        for (qint64 pts : device) {
            qint64 duration = -1;
            placed << (video ? timeline.placeVideo(pts, &duration) : timeline.placeAudio(pts, &duration));
            if (duration >= 0)
                lasted << duration;
        }
        if (video)
            lasted << RecordingTimeline::LastFrameDuration;
        QCOMPARE(placed, file);
        QCOMPARE(lasted, durations);
    }

    void fileNameIsNicknameSerialAndTime()
    {
        const QDateTime time(QDate(2024, 3, 5), QTime(14, 7, 9, 42));
        QCOMPARE(MediaRecorder::fileName("desk", "R58M", time), QString("desk_R58M_20240305_140709_042.mkv"));
        QCOMPARE(MediaRecorder::fileName("Rack A/12", "192.168.1.5:5555", time),
                 QString("Rack A_12_192.168.1.5_5555_20240305_140709_042.mkv"));
    }

    void stopWhileIdleOnlyTellsTheUser()
    {
        MediaRecorder recorder;
        QSignalSpy messages(&recorder, &MediaRecorder::message);
        QSignalSpy changed(&recorder, &MediaRecorder::isRecordingChanged);
        recorder.stop();
        QCOMPARE(messages.count(), 1);
        QCOMPARE(messages.at(0), (QVariantList{"Stop Recording", QVariant::fromValue(MessageKind::Info), 2000}));
        QCOMPARE(changed.count(), 0);
        QVERIFY(!recorder.isRecording());
        QVERIFY(recorder.filePath().isEmpty());
    }

    // Record pressed again while the last file is still being finished: the new one follows it.
    void recordRightAfterStopFollowsTheLastFile()
    {
        QTemporaryDir folder;
        QStringList texts;
        MediaRecorder recorder;
        recorder.setOutput(folder.path(), "desk", "R58M");
        // Queued to this thread, as the device gets them.
        connect(&recorder, &MediaRecorder::message, this, [&texts](const QString &text) { texts << text; });
        const auto said = [&texts](const QString &text) { return texts.count(text); };
        QVERIFY(recorder.start());
        QTRY_COMPARE(said("Record Started"), 1);
        recorder.stop();
        QVERIFY(recorder.start());
        QVERIFY(recorder.isRecording());
        QTRY_COMPARE(said("Record Started"), 2);
        QCOMPARE(said("Record Stopped"), 1);
        QVERIFY(recorder.isRecording());
        QVERIFY(!recorder.start());
        QCOMPARE(said("Record Failed"), 1);
        recorder.stop();
        QTRY_COMPARE(said("Record Stopped"), 2);
    }

    // The tracks are described as the demuxers opened their streams; the Opus header, sent once
    // when the sound starts, is kept from before the recording.
    void tracksCarryTheStreamsDescriptions()
    {
        QTemporaryDir folder;
        const H264Clip clip = encodeClip({64, 48}, 3);
        QString path;
        {
            MediaRecorder recorder;
            recorder.setStreams(true, true);
            recorder.setOutput(folder.path(), "desk", "R58M");
            FakeSocket videoSocket;
            FakeSocket audioSocket;
            VideoDemuxer video(&videoSocket, recorder.videoSink(), nullptr);
            AudioDemuxer audio(&audioSocket, recorder.audioSink(), nullptr);
            audioSocket.feed(StreamFraming::audioHeader(StreamFraming::codecOpus) + packet(ConfigFlag, "OpusHead-config"));
            QSignalSpy reset(&recorder, &MediaRecorder::resetVideoRequested);
            QVERIFY(recorder.start());
            // The phone answers the recorder's request with a configuration and a key frame.
            QTRY_COMPARE(reset.count(), 1);
            videoSocket.feed(clip.stream(3));
            for (int i = 0; i < 3; ++i)
                audioSocket.feed(packet(quint64(i) * 20000, "sound"));
            recorder.stop();
            path = recorder.filePath();
            // Destroying the recorder waits for its file to be finished.
        }
        AVFormatContext *file = nullptr;
        QCOMPARE(avformat_open_input(&file, path.toUtf8().constData(), nullptr, nullptr), 0);
        const auto close = qScopeGuard([&file] { avformat_close_input(&file); });
        QCOMPARE(file->nb_streams, 2u);
        const AVCodecParameters *picture = file->streams[0]->codecpar;
        const AVCodecParameters *sound = file->streams[1]->codecpar;
        QCOMPARE(picture->codec_id, AV_CODEC_ID_H264);
        QCOMPARE(QSize(picture->width, picture->height), clip.size);
        QCOMPARE(sound->codec_id, AV_CODEC_ID_OPUS);
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(sound->extradata), sound->extradata_size),
                 QByteArray("OpusHead-config"));
    }
};

QTEST_GUILESS_MAIN(TestMediaRecorder)
#include "tst_mediarecorder.moc"
