// The simulated scrcpy server as the PC sees it: which sockets it opens in which order, how it
// fails and ends, what the control socket does to the phone, the media streams packet by packet
// (their pictures through Korvel's own decoder), stream-file playback and the AutoJS port. That
// whole sessions show the pictures and play the sound is proven in tests/device.
#include "annexbfileplayer.h"
#include "autojsprotocol.h"
#include "autojsserver.h"
#include "controldescription.h"
#include "phone.h"
#include "phonechannel.h"
#include "phonesimprocess.h"
#include "simserver.h"
#include "streambuilder.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QtEndian>
#include <QtTest>

#include <memory>

extern "C" {
#include <libavutil/frame.h>
}

namespace {

// An in-memory stream end: records what the phone writes, and lets a test play the PC's part.
class FakeChannel : public PhoneChannel
{
public:
    using PhoneChannel::PhoneChannel;
    void write(const QByteArray &data) override { written += m_closed ? QByteArray() : data; }
    void close() override
    {
        if (!std::exchange(m_closed, true))
            emit closed();
    }
    bool isOpen() const override { return m_accepted && !m_closed; }
    qint64 pendingBytes() const override { return 0; }

    void accept()
    {
        m_accepted = true;
        emit opened();
    }
    void sendFromPc(const QByteArray &bytes) { emit dataReceived(bytes); }
    bool wasClosed() const { return m_closed; }

    QByteArray written;

private:
    bool m_accepted = false;
    bool m_closed = false;
};

// The PC end of the reverse tunnel: each connection the phone opens is answered by the next of
// `answers` (Accept when none is left), on the next turn of the event loop.
class FakeTunnel : public QObject
{
public:
    enum class Answer { Accept, Refuse, CloseAtOnce, Hold };

    explicit FakeTunnel(Phone *phone)
    {
        phone->setReverseOpener([this](const QString &name) -> PhoneChannel * {
            names << name;
            const Answer answer = answers.isEmpty() ? Answer::Accept : answers.takeFirst();
            if (answer == Answer::Refuse)
                return nullptr;
            auto *channel = new FakeChannel(this);
            channels << channel;
            if (answer == Answer::Accept)
                QTimer::singleShot(0, channel, &FakeChannel::accept);
            else if (answer == Answer::CloseAtOnce)
                QTimer::singleShot(0, channel, &FakeChannel::close);
            return channel;
        });
    }

    QStringList names;
    QList<FakeChannel *> channels;
    QList<Answer> answers;
};

// A phone with its own data folder, and the server file pushed unless told otherwise.
struct TestPhone
{
    explicit TestPhone(bool serverPushed = true, const QString &streamFile = {})
    {
        PhoneProfile profile;
        profile.serial = "SIM0001";
        profile.model = "Pixel Sim";
        profile.screenSize = QSize(1080, 2400);
        profile.dataDir = dir.path();
        profile.streamFile = streamFile;
        phone = std::make_unique<Phone>(profile);
        if (serverPushed) {
            const QString jar = phone->sandboxPath("/data/local/tmp/scrcpy-server.jar");
            QDir().mkpath(QFileInfo(jar).path());
            QFile file(jar);
            file.open(QIODevice::WriteOnly);
            file.write("PK\x03\x04 not really a jar");
        }
    }

    QList<QJsonObject> journal(const QString &event) const { return PhoneSimProcess::readJournal(dir.path(), event); }

    QTemporaryDir dir;
    std::unique_ptr<Phone> phone;
};

QString serverCommand(const QString &options, const QString &version = "3.3.1")
{
    return "CLASSPATH=/data/local/tmp/scrcpy-server.jar app_process / com.genymobile.scrcpy.Server " + version + " "
           + options;
}

// A server on a test phone, its PC end, and spies on how it ends.
struct ServerRig
{
    explicit ServerRig(const QString &command, bool serverPushed = true, const QString &streamFile = {})
        : phone(serverPushed, streamFile), tunnel(phone.phone.get()), server(phone.phone.get(), command)
    {
    }

    // Starts the server and waits until exactly `sockets` connections exist and the last is open.
    bool startAndOpen(int sockets)
    {
        server.start();
        return QTest::qWaitFor([&] { return tunnel.channels.size() == sockets && tunnel.channels.last()->isOpen(); });
    }

    FakeChannel *channel(int i) const { return tunnel.channels.value(i); }

    void verifyFailed(const QString &message)
    {
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), 1);
        QString text;
        for (const QList<QVariant> &args : std::as_const(output))
            text += QString::fromUtf8(args.first().toByteArray());
        QVERIFY2(text.contains(message), qPrintable(text));
    }

    TestPhone phone;
    FakeTunnel tunnel;
    SimServer server;
    QSignalSpy output{&server, &SimServer::output};
    QSignalSpy finished{&server, &SimServer::finished};
};

// A media socket's packets with the raw flags that Korvel's demuxer folds away.
struct MediaPacket
{
    quint64 ptsAndFlags = 0;
    QByteArray payload;
    bool config() const { return ptsAndFlags >> 63; }
    bool keyFrame() const { return (ptsAndFlags >> 62) & 1; }
    qint64 pts() const { return qint64(ptsAndFlags & ((quint64(1) << 62) - 1)); }
};

// The complete packets after a stream header of `at` bytes, each behind its 12-byte header.
QList<MediaPacket> packets(const QByteArray &bytes, qsizetype at)
{
    QList<MediaPacket> packets;
    while (bytes.size() - at >= 12 && bytes.size() - at - 12 >= qFromBigEndian<quint32>(bytes.constData() + at + 8)) {
        const quint32 size = qFromBigEndian<quint32>(bytes.constData() + at + 8);
        packets << MediaPacket{qFromBigEndian<quint64>(bytes.constData() + at), bytes.mid(at + 12, size)};
        at += 12 + size;
    }
    return packets;
}

// The video socket's packets, after the 64-byte name, the codec id and the picture size.
QList<MediaPacket> video(const ServerRig &rig)
{
    return packets(rig.channel(0)->written, 76);
}

int nalType(const QByteArray &annexB)
{
    return quint8(annexB[4]) & 0x1f;
}

// The sizes of the pictures that Korvel's own demuxer and decoder make of a video socket's bytes.
QList<QSize> decodeVideo(const QByteArray &socketBytes)
{
    QBuffer socket;
    socket.setData(socketBytes);
    socket.open(QIODevice::ReadOnly);
    VideoDecoder decoder;
    VideoDemuxer demuxer(&socket, nullptr, &decoder);
    QList<QSize> pictures;
    QObject::connect(&decoder, &VideoDecoder::frameDecoded,
                     [&pictures](AVFrame *frame) { pictures << QSize(frame->width, frame->height); });
    // Each read takes a bounded number of packets.
    for (qsizetype before = -1; before != pictures.size();) {
        before = pictures.size();
        demuxer.read();
    }
    return pictures;
}

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

QByteArray stopAll()
{
    return AutojsProtocol::encodeCommand(40123, {{"command", "stopAll"}});
}

} // namespace

Q_DECLARE_METATYPE(FakeTunnel::Answer)

class TestSimServer : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private:
    // The phone's AutoJS port with a new PC connection, which Korvel's own framing talks to.
    static FakeChannel *openAutojs(AutojsServer &server)
    {
        auto *channel = new FakeChannel(&server);
        channel->accept();
        server.accept(channel);
        return channel;
    }

private slots:
    void initTestCase() { av_log_set_level(AV_LOG_ERROR); }

    // Without audio the control socket follows the video one: see controlMessagesReachThePhone.
    void opensSocketsInOrder()
    {
        ServerRig rig(serverCommand("scid=0000abcd max_size=320 video=true audio=true control=true"));
        rig.server.start();
        QTRY_COMPARE(rig.tunnel.channels.size(), 3);
        QCOMPARE(rig.tunnel.names, QStringList(3, "scrcpy_0000abcd"));
        // The device name, NUL padded to 64 bytes, leads the first socket; each media socket
        // starts with its codec; the control socket stays silent until someone has something to say.
        QTRY_COMPARE(rig.channel(0)->written.left(68), QByteArray("Pixel Sim").leftJustified(64, '\0') + "h264");
        QTRY_COMPARE(rig.channel(1)->written.left(4), QByteArray("opus"));
        QCOMPARE(rig.channel(2)->written, QByteArray());
        QVERIFY(!rig.channel(0)->wasClosed());
    }

    void opensEachSocketAfterThePreviousWasAccepted()
    {
        ServerRig rig(serverCommand("video_bit_rate=2000000 max_size=280 max_fps=5 scid=0badcafe"));
        rig.tunnel.answers = {FakeTunnel::Answer::Hold, FakeTunnel::Answer::Hold, FakeTunnel::Answer::Hold};
        rig.server.start();
        // The start is journalled at once, with its options (as tst_phonesimwire reads them).
        QCOMPARE(rig.phone.journal("server_start").value(0).value("scid").toString(), QString("0badcafe"));
        QCoreApplication::processEvents();
        QCOMPARE(rig.tunnel.names.size(), 1);
        rig.channel(0)->accept();
        QCOMPARE(rig.tunnel.names.size(), 2);
        QVERIFY(rig.channel(0)->written.isEmpty()); // nothing is sent before all sockets are there
        rig.channel(1)->accept();
        QCOMPARE(rig.tunnel.names.size(), 3);
        rig.channel(2)->accept();
        QCOMPARE(rig.channel(0)->written.left(9), QByteArray("Pixel Sim"));
    }

    void failsWhenTheTunnelRefuses_data()
    {
        QTest::addColumn<QList<FakeTunnel::Answer>>("answers");
        QTest::addColumn<int>("openedBeforeFailure");
        using A = FakeTunnel::Answer;
        QTest::newRow("no tunnel") << QList<A>{A::Refuse} << 0;
        QTest::newRow("video refused by close") << QList<A>{A::CloseAtOnce} << 0;
        QTest::newRow("control refused") << QList<A>{A::Accept, A::Accept, A::Refuse} << 2;
        QTest::newRow("audio closed at once") << QList<A>{A::Accept, A::CloseAtOnce} << 1;
    }

    void failsWhenTheTunnelRefuses()
    {
        QFETCH(QList<FakeTunnel::Answer>, answers);
        QFETCH(int, openedBeforeFailure);
        ServerRig rig(serverCommand("scid=00000001"));
        rig.tunnel.answers = answers;
        rig.server.start();
        rig.verifyFailed("Connection refused");
        for (int i = 0; i < openedBeforeFailure; ++i)
            QVERIFY(rig.channel(i)->wasClosed());
        QCOMPARE(rig.phone.journal("server_stop").value(0).value("exitCode").toInt(), 1);
    }

    void failsBeforeAnySocket_data()
    {
        QTest::addColumn<bool>("serverPushed");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("message");
        QTest::newRow("no server file") << false << "3.3.1" << "java.lang.ClassNotFoundException: com.genymobile.scrcpy.Server";
        QTest::newRow("version") << true << "3.2" << "[server] ERROR: The server version (3.3.1) does not match the client (3.2)";
    }

    void failsBeforeAnySocket()
    {
        QFETCH(bool, serverPushed);
        QFETCH(QString, version);
        QFETCH(QString, message);
        ServerRig rig(serverCommand("scid=00000001", version), serverPushed);
        rig.server.start();
        rig.verifyFailed(message);
        QVERIFY(rig.tunnel.names.isEmpty());
        QVERIFY(rig.phone.journal("server_start").isEmpty());
    }

    void endsLikeAProcess_data()
    {
        QTest::addColumn<int>("how");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("reason");
        QTest::newRow("killed") << 0 << 137 << "killed";
        QTest::newRow("killed through the admin port") << 1 << 137 << "killed";
        QTest::newRow("the PC closes the video socket") << 2 << 0 << "video socket closed";
    }

    void endsLikeAProcess()
    {
        QFETCH(int, how);
        QFETCH(int, exitCode);
        QFETCH(QString, reason);
        ServerRig rig(serverCommand("scid=00000001 max_size=160"));
        QVERIFY(rig.startAndOpen(3));
        if (how == 0)
            rig.server.kill();
        else if (how == 1)
            emit rig.phone.phone->killServerRequested();
        else
            rig.channel(0)->close();
        QTRY_COMPARE(rig.finished.size(), 1);
        QCOMPARE(rig.finished.first().first().toInt(), exitCode);
        for (FakeChannel *channel : std::as_const(rig.tunnel.channels))
            QVERIFY(channel->wasClosed());
        QCOMPARE(rig.phone.journal("server_stop").value(0).value("reason").toString(), reason);
    }

    void controlMessagesReachThePhone()
    {
        ServerRig rig(serverCommand("scid=00000001 max_size=160 audio=false"));
        QVERIFY(rig.startAndOpen(2));
        FakeChannel *control = rig.channel(1);
        QSignalSpy rotation(rig.phone.phone.get(), &Phone::rotationChanged);
        // Set clipboard "hi" with paste and sequence 5, then a touch split across two writes, then rotate.
        const QByteArray bytes = hex("09 0000000000000005 01 00000002 6869")
                                 + hex("02 00 FFFFFFFFFFFFFFFE 00000050 000000A0 00A0 0160 FFFF 00000001 00000001")
                                 + hex("0B");
        control->sendFromPc(bytes.left(20));
        control->sendFromPc(bytes.mid(20));
        QCOMPARE(rig.phone.phone->clipboard(), QString("hi"));
        QCOMPARE(rotation.size(), 1);
        QCOMPARE(rig.phone.phone->rotation(), 1);
        // Sequence 5 asked for an acknowledgement.
        QCOMPARE(control->written, hex("01 0000000000000005"));
        QCOMPARE(describeControl(rig.phone.journal("control")),
                 (QStringList{"clipboard 5 paste hi", "touch 0@80,160", "RotateDevice"}));
    }

    void sendsThePhoneClipboardToThePc()
    {
        ServerRig rig(serverCommand("scid=00000001 max_size=160 audio=false"));
        QVERIFY(rig.startAndOpen(2));
        FakeChannel *control = rig.channel(1);
        rig.phone.phone->setClipboard("hello", false);
        QCOMPARE(control->written, hex("00 00000005 68656C6C6F"));
        // A text that came from the PC is not echoed back.
        control->written.clear();
        control->sendFromPc(hex("09 0000000000000000 00 00000001 41"));
        QVERIFY(control->written.isEmpty());
        // Asking for the clipboard answers with it.
        control->sendFromPc(hex("08 00"));
        QCOMPARE(control->written, hex("00 00000001 41"));
    }

    void videoStartsWithItsConfigurationAndRotationRestartsIt()
    {
        ServerRig rig(serverCommand("scid=00000001 audio=false max_size=800"));
        QVERIFY(rig.startAndOpen(2));
        QTRY_VERIFY(video(rig).size() >= 4);
        QCOMPARE(rig.channel(0)->written.left(76),
                 QByteArray("Pixel Sim").leftJustified(64, '\0') + "h264" + hex("00000168 00000320"));
        const QList<MediaPacket> stream = video(rig);
        // The configuration packet comes first and holds SPS then PPS in Annex B form.
        const MediaPacket &config = stream[0];
        QVERIFY(config.config() && !config.keyFrame());
        QCOMPARE(nalType(config.payload), 7);
        QVERIFY(config.payload.contains(QByteArray("\x00\x00\x00\x01\x68", 5)));
        // Then a key frame, then ordinary frames with rising timestamps.
        QVERIFY(!stream[1].config() && stream[1].keyFrame());
        QVERIFY(!stream[2].keyFrame());
        QVERIFY(stream[2].pts() > stream[1].pts());
        QCOMPARE(decodeVideo(rig.channel(0)->written).value(0), QSize(360, 800));

        // Rotated: a new configuration and a key frame follow; the stream header is not repeated.
        rig.channel(1)->sendFromPc(hex("0B"));
        QCOMPARE(rig.phone.phone->rotation(), 1);
        const auto restart = [&rig] {
            const QList<MediaPacket> stream = video(rig);
            qsizetype i = stream.size() - 1;
            while (i > 0 && !stream[i].config())
                --i;
            return i;
        };
        QTRY_VERIFY(restart() > 0 && video(rig).size() > restart() + 1);
        QVERIFY(video(rig)[restart() + 1].keyFrame());
    }

    void resetVideoSendsConfigAndKeyFrame()
    {
        ServerRig rig(serverCommand("scid=00000001 audio=false max_size=160"));
        QVERIFY(rig.startAndOpen(2));
        QTRY_VERIFY(video(rig).size() >= 3);
        const int before = int(video(rig).size());
        rig.channel(1)->sendFromPc(hex("11"));
        // Pictures of the replaced encoder still on their way are dropped: the configuration
        // comes right after what had arrived, then a key frame.
        QTRY_VERIFY(video(rig).size() >= before + 2);
        QVERIFY(video(rig)[before].config());
        QVERIFY(video(rig)[before + 1].keyFrame());
    }

    void audioIsOpusInTwentyMillisecondPackets()
    {
        ServerRig rig(serverCommand("scid=00000001 max_size=160 control=false audio=true"));
        QVERIFY(rig.startAndOpen(2));
        QTRY_VERIFY(packets(rig.channel(1)->written, 4).size() >= 3);
        QCOMPARE(rig.channel(1)->written.left(4), QByteArray("opus"));
        const QList<MediaPacket> stream = packets(rig.channel(1)->written, 4);
        QVERIFY(stream[0].config());
        QVERIFY(stream[0].payload.startsWith("OpusHead"));
        QVERIFY(!stream[1].config());
        QCOMPARE(stream[2].pts() - stream[1].pts(), 20000);
    }

    void playsAStreamFileInALoop()
    {
        // Three pictures from phonesim's encoder, the first a key frame, as one Annex B file.
        const StreamBuilder::H264Clip clip = StreamBuilder::encodeClip({64, 48}, 3);
        QCOMPARE(clip.pictures.size(), 3);
        QByteArray file = clip.config;
        for (const H264Encoder::Packet &picture : clip.pictures)
            file += picture.data;
        QTemporaryDir clipDir;
        QFile out(clipDir.filePath("clip.h264"));
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write(file) == file.size());
        out.close();

        ServerRig rig(serverCommand("scid=00000001 audio=false control=false max_size=800"), true, out.fileName());
        QVERIFY(rig.startAndOpen(1));
        QTRY_VERIFY_WITH_TIMEOUT(video(rig).size() >= 8, 10000);
        QCOMPARE(rig.channel(0)->written.mid(68, 8), hex("00000040 00000030"));
        const QList<MediaPacket> stream = video(rig);
        QVERIFY(stream[0].config());
        QCOMPARE(nalType(stream[0].payload), 7);
        // Key frames where the file has IDR pictures: the 1st of every 3 frames.
        for (int i = 1; i < 8; ++i) {
            QVERIFY(!stream[i].config());
            QCOMPARE(stream[i].keyFrame(), (i - 1) % 3 == 0);
            if (i > 1)
                QVERIFY(stream[i].pts() > stream[i - 1].pts());
        }
        const QList<QSize> pictures = decodeVideo(rig.channel(0)->written);
        QVERIFY(pictures.size() >= 6);
        QCOMPARE(pictures.first(), QSize(64, 48));
    }

    void splitsAnnexBIntoAccessUnits()
    {
        // SPS, PPS, IDR slice (3-byte start code), then a P slice opening the next picture, then
        // a second slice of that picture (first_mb_in_slice != 0) with trailing zero bytes.
        const QByteArray stream = hex("00000001 6742 00000001 68CE 000001 6588 00000001 4180 00000001 4140 0000");
        const QList<QByteArray> nals = AnnexBFilePlayer::splitNalUnits(stream);
        QCOMPARE(nals, QList<QByteArray>({hex("6742"), hex("68CE"), hex("6588"), hex("4180"), hex("4140")}));
        QByteArray config;
        const QList<AnnexBFilePlayer::AccessUnit> units = AnnexBFilePlayer::groupAccessUnits(nals, &config);
        QCOMPARE(config, hex("00000001 6742 00000001 68CE"));
        QCOMPARE(units.size(), 2);
        QCOMPARE(units[0].data, hex("00000001 6588"));
        QVERIFY(units[0].keyFrame);
        QCOMPARE(units[1].data, hex("00000001 4180 00000001 4140"));
        QVERIFY(!units[1].keyFrame);
    }

    // The framing itself is pinned byte by byte in tests/organisation/tst_autojs.
    void autojsGreetsThePcWithHello()
    {
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        QByteArray bytes = openAutojs(server)->written;
        quint32 type = 0;
        QByteArray body;
        QCOMPARE(AutojsProtocol::takeReply(bytes, &type, &body), AutojsProtocol::Take::Message);
        QCOMPARE(type, AutojsProtocol::TypeJson);
        QVERIFY(bytes.isEmpty());
        const QJsonObject hello = QJsonDocument::fromJson(body).object();
        QCOMPARE(hello.value("type").toString(), QString("hello"));
        QCOMPARE(hello.value("data").toObject().value("device_name").toString(), QString("Pixel Sim"));
    }

    // Whole commands are tst_devicecontrol's, through adb; these come byte by byte.
    void autojsJournalsRunAndStopAll()
    {
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *channel = openAutojs(server);
        const QString script = QString("toast('h\u00e9llo');\n").repeated(20);
        const QByteArray bytes =
            AutojsProtocol::encodeCommand(40123, {{"command", "run"}, {"id", 40123}, {"name", "farm"}, {"script", script}})
            + stopAll();
        for (char byte : bytes)
            channel->sendFromPc(QByteArray(1, byte));
        const QList<QJsonObject> lines = phone.journal("autojs");
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0].value("type").toString(), QString("run"));
        QCOMPARE(lines[0].value("name").toString(), QString("farm"));
        QCOMPARE(lines[0].value("size").toInt(), script.toUtf8().size());
        QCOMPARE(lines[0].value("sha256").toString(),
                 QString(QCryptographicHash::hash(script.toUtf8(), QCryptographicHash::Sha256).toHex()));
        QCOMPARE(lines[1].value("type").toString(), QString("stopAll"));
        QVERIFY(!channel->wasClosed());
    }

    void autojsGarbageClosesOnlyThatChannel_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not a length") << QByteArray("hello world, this is not a header");
        QTest::newRow("not JSON") << QByteArray("5\0\0\0\0\0\0\0\0\0\0\0\0\0" "1\0" "{{{{{", 21);
    }

    void autojsGarbageClosesOnlyThatChannel()
    {
        QFETCH(QByteArray, bytes);
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *bad = openAutojs(server);
        FakeChannel *good = openAutojs(server);
        bad->sendFromPc(bytes);
        QVERIFY(bad->wasClosed());
        QCOMPARE(phone.journal("error").size(), 1);
        QCOMPARE(phone.journal("error").first().value("source").toString(), QString("autojs"));
        good->sendFromPc(stopAll());
        QVERIFY(!good->wasClosed());
        QCOMPARE(phone.journal("autojs").size(), 1);
    }

    void autojsSurvivesAChannelThatGoesAway()
    {
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *channel = openAutojs(server);
        channel->sendFromPc(stopAll().left(10));
        channel->close();
        delete channel;
        // Its connection goes with the deferred deletions; the half command is never run.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(phone.journal("autojs").isEmpty());
        QVERIFY(phone.journal("error").isEmpty());
    }
};

QTEST_MAIN(TestSimServer)
#include "tst_simserver.moc"
