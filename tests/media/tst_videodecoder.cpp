#include "appconfig.h"
#include "fakesocket.h"
#include "h264testencoder.h"
#include "screenshotwriter.h"
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

// A decoder wired to a demuxer on a fake socket, as a session wires them; keeps the last picture.
struct DecoderRig
{
    DecoderRig()
    {
        decoder.setDemuxer(&demuxer);
        QObject::connect(&decoder, &VideoDecoder::frameDecoded, &decoder, [this](AVFrame *frame) {
            av_frame_unref(last);
            av_frame_ref(last, frame);
        });
    }
    ~DecoderRig() { av_frame_free(&last); }
    FakeSocket socket;
    VideoDecoder decoder;
    VideoDemuxer demuxer{&socket, nullptr, &decoder};
    AVFrame *last = av_frame_alloc();
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

struct Shot
{
    bool saved = false;
    QString path;
};

Shot screenshot(const DecoderRig &rig, const QString &serial, const QString &folder = ScreenshotWriter::folder())
{
    ScreenshotWriter writer;
    Shot shot;
    shot.saved = writer.save(rig.last, folder, serial, &shot.path);
    return shot;
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

    void pauseDropsPacketsAndResumesAtKeyFrame()
    {
        QString error;
        const QList<EncodedPacket> encoded = H264TestEncoder::encode(64, 48, 36, &error);
        QVERIFY2(!encoded.isEmpty(), qPrintable(error));
        DecoderRig rig;
        QSignalSpy decoded(&rig.decoder, &VideoDecoder::frameDecoded);
        rig.socket.feed(H264TestEncoder::stream(encoded.mid(0, 4), 64, 48));
        QCOMPARE(decoded.count(), 3);
        QCOMPARE(rig.last->pts, encoded[3].pts);

        rig.decoder.setDecodingPaused(true);
        QVERIFY(rig.decoder.isDecodingPaused());
        for (int i = 4; i < 6; ++i)
            rig.socket.feed(packet(encoded[i].ptsAndFlags(), encoded[i].data));
        QCOMPARE(decoded.count(), 3);

        // Resumed: pictures that depend on skipped ones are not decoded; the next key frame is.
        rig.decoder.setDecodingPaused(false);
        int keyIndex = -1;
        for (int i = 6; i < encoded.size(); ++i) {
            if (encoded[i].key && keyIndex < 0)
                keyIndex = i;
            if (keyIndex < 0)
                rig.socket.feed(packet(encoded[i].ptsAndFlags(), encoded[i].data));
        }
        QCOMPARE(decoded.count(), 3);
        QVERIFY2(keyIndex > 0, "the test stream needs a second key frame");
        for (int i = keyIndex; i < encoded.size(); ++i)
            rig.socket.feed(packet(encoded[i].ptsAndFlags(), encoded[i].data));
        QTRY_VERIFY(decoded.count() > 3);
        QCOMPARE(decoded.count(), 3 + int(encoded.size()) - keyIndex);
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
        feedYuv4Picture(rig, picture.width(), picture.height());
        QCOMPARE(rig.last->width, picture.width());

        const Shot shot = screenshot(rig, serial);
        QVERIFY(shot.saved);
        const QString path = shot.path;
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
        const QString folder = ScreenshotWriter::folder();
        AppConfig::instance()->setScreenshotSavePath(m_folder);
        QCOMPARE(QDir(folder).absolutePath(), m_folder);
        QVERIFY(!QFileInfo::exists(other));
    }

    void failedSaveReportsPath()
    {
        DecoderRig rig;
        feedYuv4Picture(rig, 64, 64);
        // A serial naming a folder that does not exist makes the save fail.
        const Shot shot = screenshot(rig, QStringLiteral("no/such/folder"));
        QCOMPARE(shot.saved, false);
        QVERIFY(shot.path.startsWith(m_folder + "/no/such/folder_"));
        QVERIFY(!QFileInfo::exists(shot.path));
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
