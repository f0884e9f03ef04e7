#include "appconfig.h"
#include "fakesocket.h"
#include "h264testencoder.h"
#include "streambuilder.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QDir>
#include <QImage>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/log.h>
}

using namespace StreamBuilder;

namespace {

// A decoder wired to a demuxer on a fake socket, as a session wires them.
struct DecoderRig
{
    DecoderRig() { decoder.setDemuxer(&demuxer); }
    FakeSocket socket;
    VideoDecoder decoder;
    VideoDemuxer demuxer{&socket, nullptr, &decoder};
};

// One picture in FFmpeg's "yuv4" packed 4:2:0 layout (per 2x2 block: U and V stored XOR 0x80, then
// four luma bytes): the upper half of the picture has luma topY, the lower half bottomY, neutral
// chroma. The first block's bytes are 00 00 00 so that the payload needs no start code.
QByteArray yuv4Picture(int width, int height, uchar topY, uchar bottomY)
{
    const int blocksX = (width + 1) / 2;
    const int blocksY = (height + 1) / 2;
    QByteArray bytes(qsizetype(blocksX) * blocksY * 6, Qt::Uninitialized);
    char *p = bytes.data();
    for (int by = 0; by < blocksY; ++by) {
        const char luma = char(2 * by < height / 2 ? topY : bottomY);
        for (int bx = 0; bx < blocksX; ++bx) {
            *p++ = 0;
            *p++ = 0;
            for (int i = 0; i < 4; ++i)
                *p++ = luma;
        }
    }
    bytes[2] = 0;
    return bytes;
}

void feedYuv4Picture(DecoderRig &rig, int width, int height)
{
    rig.socket.feed(header("phone", "yuv4", quint32(width), quint32(height))
                    + packet(KeyFlag | 1000, yuv4Picture(width, height, 220, 40)));
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name);
}

// Takes a screenshot and waits for its single report; empty when none came.
QList<QVariant> screenshot(VideoDecoder &decoder)
{
    QSignalSpy finished(&decoder, &VideoDecoder::screenshotFinished);
    decoder.takeScreenshot();
    if (!finished.wait(20000) || finished.count() != 1)
        return {};
    return finished.first();
}

} // namespace

class TestVideoDecoder : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temp;
    QString m_folder;

private slots:
    void initTestCase()
    {
        av_log_set_level(AV_LOG_FATAL);
        qRegisterMetaType<AVFrame *>();
        QVERIFY(m_temp.isValid());
        // Missing on purpose: the first screenshot creates it with its parents.
        m_folder = m_temp.path() + "/shots/nested";
        AppConfig::instance()->setScreenshotSavePath(m_folder);
    }

    void screenshotBeforeAnyPicture()
    {
        VideoDecoder decoder;
        QSignalSpy finished(&decoder, &VideoDecoder::screenshotFinished);
        decoder.takeScreenshot();
        // Reported at once, on the calling thread.
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toBool(), false);
        QVERIFY(finished[0][1].toString().isEmpty());
    }

    void pausedDropsPacketsAndKeepsLastFrame()
    {
        QString error;
        const QList<EncodedPacket> encoded = H264TestEncoder::encode(64, 48, 6, &error);
        QVERIFY2(!encoded.isEmpty(), qPrintable(error));
        DecoderRig rig;
        QSignalSpy decoded(&rig.decoder, &VideoDecoder::frameDecoded);
        rig.socket.feed(H264TestEncoder::stream(encoded.mid(0, 4), 64, 48));
        QCOMPARE(decoded.count(), 3);
        const AVFrame *last = rig.decoder.lastFrame();
        QVERIFY(last);
        const uint8_t *lumaBefore = last->data[0];
        QCOMPARE(last->pts, encoded[3].pts);

        rig.decoder.setDecodingPaused(true);
        QVERIFY(rig.decoder.isDecodingPaused());
        for (int i = 4; i < encoded.size(); ++i)
            rig.socket.feed(packet(encoded[i].ptsAndFlags(), encoded[i].data));
        QCOMPARE(decoded.count(), 3);
        QCOMPARE(rig.decoder.lastFrame()->pts, encoded[3].pts);
        QCOMPARE(rig.decoder.lastFrame()->data[0], lumaBefore);

        // A screenshot while paused saves the picture from before the pause.
        const QList<QVariant> shot = screenshot(rig.decoder);
        QCOMPARE(shot.size(), 2);
        QVERIFY(shot[0].toBool());
        QCOMPARE(QImage(shot[1].toString()).size(), QSize(64, 48));
    }

    void screenshotSize_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("saved");
        QTest::addColumn<QString>("serial");
        QTest::newRow("portrait kept") << QSize(1080, 2400) << QSize(1080, 2400) << "R58M12ABCDE";
        QTest::newRow("landscape to 1920") << QSize(2400, 1080) << QSize(1920, 864) << "R58M12ABCDE";
        QTest::newRow("height truncated") << QSize(2401, 1080) << QSize(1920, 863) << "R58M12ABCDE";
        QTest::newRow("exactly 1920 kept") << QSize(1920, 1080) << QSize(1920, 1080) << "R58M12ABCDE";
        // The serial names the file verbatim, colon and dots included.
        QTest::newRow("odd small") << QSize(721, 1601) << QSize(721, 1601) << "192.168.1.20:5555";
    }

    void screenshotSize()
    {
        QFETCH(QSize, picture);
        QFETCH(QSize, saved);
        QFETCH(QString, serial);
        DecoderRig rig;
        rig.decoder.setScreenshotSerial(serial);
        feedYuv4Picture(rig, picture.width(), picture.height());
        QVERIFY(rig.decoder.lastFrame());

        const QList<QVariant> shot = screenshot(rig.decoder);
        QCOMPARE(shot.size(), 2);
        QVERIFY(shot[0].toBool());
        const QString path = shot[1].toString();
        const QRegularExpression name("^" + QRegularExpression::escape(m_folder + "/" + serial)
                                      + "_(\\d{8})_(\\d{6})_(\\d+)\\.jpg$");
        const QRegularExpressionMatch match = name.match(path);
        QVERIFY2(match.hasMatch(), qPrintable(path));
        QVERIFY(QDateTime::fromString(match.captured(1) + match.captured(2), "yyyyMMddhhmmss").isValid());
        const int random = match.captured(3).toInt();
        QVERIFY(random >= 1000 && random <= 9998);
        QVERIFY(!match.captured(3).startsWith('0'));

        const QImage image(path);
        QCOMPARE(image.size(), saved);
        // Bright upper half, dark lower half, grey: the rows were converted in order and not flipped.
        const QColor top = image.pixelColor(saved.width() / 2, saved.height() / 4);
        const QColor bottom = image.pixelColor(saved.width() / 2, saved.height() * 3 / 4);
        QVERIFY2(top.red() > 200 && qAbs(top.red() - top.blue()) < 12, qPrintable(top.name()));
        QVERIFY2(bottom.red() < 50 && qAbs(bottom.red() - bottom.green()) < 12, qPrintable(bottom.name()));
    }

    void screenshotFolderReadOncePerProcess()
    {
        const QString other = m_temp.path() + "/elsewhere";
        AppConfig::instance()->setScreenshotSavePath(other);
        DecoderRig rig;
        rig.decoder.setScreenshotSerial(QStringLiteral("folder-once"));
        feedYuv4Picture(rig, 64, 64);
        const QList<QVariant> shot = screenshot(rig.decoder);
        AppConfig::instance()->setScreenshotSavePath(m_folder);
        QCOMPARE(shot.size(), 2);
        QVERIFY(shot[0].toBool());
        QCOMPARE(QFileInfo(shot[1].toString()).absolutePath(), m_folder);
        QVERIFY(!QFileInfo::exists(other));
        QCOMPARE(filesIn(m_folder).filter("folder-once_").size(), 1);
    }

    void failedSaveReportsPath()
    {
        DecoderRig rig;
        // A serial naming a folder that does not exist makes the save fail.
        rig.decoder.setScreenshotSerial(QStringLiteral("no/such/folder"));
        feedYuv4Picture(rig, 64, 64);
        const QList<QVariant> shot = screenshot(rig.decoder);
        QCOMPARE(shot.size(), 2);
        QCOMPARE(shot[0].toBool(), false);
        QVERIFY(shot[1].toString().startsWith(m_folder + "/no/such/folder_"));
        QVERIFY(!QFileInfo::exists(shot[1].toString()));
    }

    void screenshotOutlivesDecoder()
    {
        auto *rig = new DecoderRig;
        rig->decoder.setScreenshotSerial(QStringLiteral("gone"));
        feedYuv4Picture(*rig, 1080, 2400);
        rig->decoder.takeScreenshot();
        // The task holds its own picture and scaler, so it finishes after the decoder is gone.
        delete rig;
        QThreadPool::globalInstance()->waitForDone();
        QTRY_COMPARE(filesIn(m_folder).filter(QRegularExpression("^gone_")).size(), 1);
    }

    void codecContextFreedAfterBoth_data()
    {
        QTest::addColumn<bool>("decoderFirst");
        QTest::addColumn<bool>("decoderFed");
        QTest::newRow("demuxer first") << false << true;
        QTest::newRow("decoder first") << true << true;
        QTest::newRow("demuxer first, nothing decoded") << false << false;
        QTest::newRow("decoder first, nothing decoded") << true << false;
    }

    void codecContextFreedAfterBoth()
    {
        QFETCH(bool, decoderFirst);
        QFETCH(bool, decoderFed);
        QString error;
        const QList<EncodedPacket> encoded = H264TestEncoder::encode(64, 48, 2, &error);
        QVERIFY2(!encoded.isEmpty(), qPrintable(error));

        FakeSocket socket;
        auto *decoder = new VideoDecoder;
        auto *demuxer = new VideoDemuxer(&socket, nullptr, decoder);
        decoder->setDemuxer(demuxer);
        socket.feed(header("phone", "h264", 64, 48));
        std::weak_ptr<AVCodecContext> context = demuxer->sharedCodecContext();
        QVERIFY(!context.expired());
        if (decoderFed) {
            QSignalSpy decoded(decoder, &VideoDecoder::frameDecoded);
            socket.feed(H264TestEncoder::stream(encoded, 64, 48).mid(76));
            QCOMPARE(decoded.count(), 2);
        }

        if (decoderFirst) {
            delete decoder;
            QVERIFY(!context.expired());
            delete demuxer;
        } else {
            delete demuxer;
            QCOMPARE(context.expired(), !decoderFed);
            delete decoder;
        }
        QVERIFY(context.expired());
    }
};

QTEST_GUILESS_MAIN(TestVideoDecoder)
#include "tst_videodecoder.moc"
