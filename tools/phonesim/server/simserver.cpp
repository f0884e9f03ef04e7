#include "simserver.h"

#include "annexbfileplayer.h"
#include "audiostreamer.h"
#include "controlchannel.h"
#include "filevideostreamer.h"
#include "journal.h"
#include "patternvideostreamer.h"
#include "phone.h"
#include "phonechannel.h"
#include "streamframing.h"

#include <QTimer>

namespace {
// The exit status a shell reports for a process ended by SIGKILL.
constexpr int killedExitCode = 137;
}

SimServer::SimServer(Phone *phone, const QString &commandLine, QObject *parent)
    : QObject(parent)
    , m_phone(phone)
    , m_commandLine(commandLine)
    , m_pattern(phone->profile().model, phone->profile().serial, phone->profile().colourIndex)
{
    m_pattern.setAnimated(phone->profile().animate);
    connect(phone, &Phone::killServerRequested, this, &SimServer::kill);
}

SimServer::~SimServer()
{
    if (m_started && !m_finished) {
        m_finished = true;
        shutDownStreams();
        m_phone->journal().write("server_stop", {{"reason", "destroyed"}});
    }
}

void SimServer::start()
{
    if (m_started)
        return;
    m_started = true;
    m_options = CommandLineOptions::parse(m_commandLine);
    if (m_options.classPath.isEmpty() || !m_phone->deviceFileExists(m_options.classPath)) {
        const QString path = m_options.classPath.isEmpty() ? QString("(no CLASSPATH)") : m_options.classPath;
        finish("server file missing", 1,
               QString("java.lang.ClassNotFoundException: %1: Didn't find class \"%1\" on path: "
                       "DexPathList[[zip file \"%2\"],nativeLibraryDirectories=[/system/lib64, /system_ext/lib64]]\n"
                       "\tat java.lang.Class.classForName(Native Method)\n"
                       "\tat com.android.internal.os.RuntimeInit.main(RuntimeInit.java:355)\n"
                       "Aborted\n")
                   .arg(CommandLineOptions::serverClass, path));
        return;
    }
    if (!m_options.ok()) {
        finish("bad arguments", 1, QString("[server] ERROR: %1\n").arg(m_options.error()));
        return;
    }
    m_phone->journal().write("server_start", m_options.toJson());
    const PhoneProfile &profile = m_phone->profile();
    log("INFO", QString("Device: [%1] %2 (Android %3)").arg(profile.manufacturer, profile.model, profile.androidVersion));
    if (m_options.video)
        m_toConnect << Stream::Video;
    if (m_options.audio)
        m_toConnect << Stream::Audio;
    if (m_options.control)
        m_toConnect << Stream::Control;
    if (m_toConnect.isEmpty()) {
        finish("nothing to stream", 1, "[server] ERROR: java.lang.IllegalArgumentException: "
                                       "At least one of video, audio or control must be enabled\n");
        return;
    }
    connectNext();
}

void SimServer::kill()
{
    if (m_started)
        finish("killed", killedExitCode);
}

void SimServer::connectNext()
{
    if (m_toConnect.isEmpty()) {
        startStreams();
        return;
    }
    PhoneChannel *channel = m_phone->openReverse(m_options.socketName());
    if (!channel) {
        finish("connection refused", 1, "[server] ERROR: java.io.IOException: Connection refused\n");
        return;
    }
    m_connecting = channel;
    connect(channel, &PhoneChannel::opened, this, &SimServer::handleOpened);
    connect(channel, &PhoneChannel::closed, this, [this, channel] { handleClosed(channel); });
}

void SimServer::handleOpened()
{
    if (m_finished || !m_connecting || sender() != m_connecting.data())
        return;
    channelFor(m_toConnect.takeFirst()) = m_connecting;
    m_connectOrder << m_connecting;
    m_connecting = nullptr;
    connectNext();
}

QPointer<PhoneChannel> &SimServer::channelFor(Stream stream)
{
    switch (stream) {
    case Stream::Video: return m_video;
    case Stream::Audio: return m_audio;
    case Stream::Control: break;
    }
    return m_control;
}

void SimServer::startStreams()
{
    // The device name leads only the first socket; the PC knows the order it asked for.
    if (!m_connectOrder.isEmpty() && m_connectOrder.first())
        m_connectOrder.first()->write(StreamFraming::deviceName(m_phone->profile().model));
    QString error;
    if (m_video) {
        const QString streamFile = m_phone->profile().streamFile;
        if (streamFile.isEmpty()) {
            m_videoStreamer = new PatternVideoStreamer(m_phone, &m_pattern, m_video, m_options.videoBitRate,
                                                       m_options.maxSize, m_options.maxFps, this);
        } else {
            AnnexBFilePlayer player;
            if (!player.load(streamFile, &error)) {
                finish("video failed", 1, QString("[server] ERROR: %1\n").arg(error));
                return;
            }
            m_videoStreamer = new FileVideoStreamer(player, m_video, this);
        }
        connect(m_videoStreamer, &VideoStreamer::failed, this,
                [this](const QString &message) { finish("video failed", 1, QString("[server] ERROR: %1\n").arg(message)); });
        if (!m_videoStreamer->start(&error)) {
            finish("video failed", 1, QString("[server] ERROR: %1\n").arg(error));
            return;
        }
    }
    if (m_audio) {
        m_audioStreamer = new AudioStreamer(m_audio, m_phone->profile().audio, this);
        if (!m_audioStreamer->start(&error)) {
            // A phone that cannot capture sound keeps mirroring without it.
            log("WARN", "Audio disabled: " + error);
            m_audioStreamer->stop();
            m_audio->close();
        }
    }
    if (m_control) {
        m_controlChannel = new ControlChannel(m_phone, &m_pattern, m_control, this);
        if (m_videoStreamer)
            connect(m_controlChannel, &ControlChannel::resetVideoRequested, m_videoStreamer, &VideoStreamer::resetVideo);
    }
}

void SimServer::handleClosed(PhoneChannel *channel)
{
    if (m_finished)
        return;
    if (channel == m_connecting) {
        finish("connection refused", 1, "[server] ERROR: java.io.IOException: Connection refused\n");
        return;
    }
    if (channel == m_video) {
        finish("video socket closed", 0);
        return;
    }
    if (channel == m_audio && m_audioStreamer)
        m_audioStreamer->stop();
    if (channel == m_control && m_controlChannel)
        m_controlChannel->stop();
    if (m_toConnect.isEmpty() && !anyStreamOpen())
        finish("all sockets closed", 0);
}

bool SimServer::anyStreamOpen() const
{
    for (const QPointer<PhoneChannel> &channel : m_connectOrder) {
        if (channel && channel->isOpen())
            return true;
    }
    return false;
}

void SimServer::log(const QString &level, const QString &message)
{
    emit output(QString("[server] %1: %2\n").arg(level, message).toUtf8());
}

void SimServer::shutDownStreams()
{
    if (m_videoStreamer)
        m_videoStreamer->stop();
    if (m_audioStreamer)
        m_audioStreamer->stop();
    if (m_controlChannel)
        m_controlChannel->stop();
    QList<QPointer<PhoneChannel>> channels = m_connectOrder;
    channels << m_connecting;
    for (const QPointer<PhoneChannel> &channel : channels) {
        if (channel) {
            disconnect(channel, nullptr, this, nullptr);
            channel->close();
        }
    }
}

void SimServer::finish(const QString &reason, int exitCode, const QString &errorLine)
{
    if (m_finished)
        return;
    m_finished = true;
    shutDownStreams();
    m_phone->journal().write("server_stop", {{"reason", reason}, {"exitCode", exitCode}});
    if (!errorLine.isEmpty())
        emit output(errorLine.toUtf8());
    // Reported from the event loop, so a caller may delete the server from its slot.
    QTimer::singleShot(0, this, [this, exitCode] { emit finished(exitCode); });
}
