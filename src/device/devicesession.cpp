#include "devicesession.h"

#include "controller.h"
#include "framehandoff.h"
#include "keymappingprofile.h"
#include "mediapipeline.h"
#include "mediarecorder.h"
#include "scrcpyserver.h"
#include "serverparams.h"

#include <QTcpSocket>

DeviceSession::DeviceSession(ServerParams *params, FrameHandoff *frames, MediaRecorder *recorder,
                             const QList<PacketSink *> &videoProbes, QObject *parent)
    : QObject(parent)
    , m_params(params)
    , m_frames(frames)
    , m_recorder(recorder)
    , m_videoProbes(videoProbes)
    , m_server(new ScrcpyServer(this, params))
{
    connect(m_server, &ScrcpyServer::stopped, this, [this] {
        if (!m_ended)
            emit serverStopped();
    });
    connect(m_server, &ScrcpyServer::startFailed, this, &DeviceSession::startFailed);
    connect(m_server, &ScrcpyServer::videoSocketConnected, this, &DeviceSession::handleVideoSocketConnected);
    connect(m_server, &ScrcpyServer::audioSocketConnected, this, &DeviceSession::handleAudioSocketConnected);
    connect(m_server, &ScrcpyServer::controlSocketConnected, this, &DeviceSession::handleControlSocketConnected);
}

DeviceSession::~DeviceSession()
{
    // The media thread first: it reads a socket that the server's tear-down closes.
    delete m_media;
    delete m_controller;
    delete m_server;
}

void DeviceSession::start()
{
    m_recorder->setStreams(m_params->video(), m_params->audio());
    m_server->start();
}

void DeviceSession::end()
{
    if (m_ended)
        return;
    m_ended = true;
    delete m_media;
    m_media = nullptr;
    delete m_controller;
    m_controller = nullptr;
    m_server->stop();
}

AudioDecoder *DeviceSession::audioDecoder() const
{
    return m_media ? m_media->audioDecoder() : nullptr;
}

QStringList DeviceSession::lastOutput() const
{
    return m_server->lastOutput();
}

void DeviceSession::setShowSize(QSize size)
{
    m_showSize = size;
    if (m_controller)
        m_controller->setShowSize(size);
}

void DeviceSession::setFrameSize(QSize size)
{
    m_frameSize = size;
    if (m_controller)
        m_controller->setFrameSize(size);
}

void DeviceSession::setKeyMappingProfile(const KeyMappingProfile *profile)
{
    m_keyMappingProfile = profile;
    if (m_controller)
        m_controller->setKeyMappingProfile(profile);
}

void DeviceSession::pictureArrived()
{
    if (m_hasPicture)
        return;
    // Decoding runs until the first picture, so that size and screenshot are known even for a
    // phone nobody looks at; from now on it follows the views.
    m_hasPicture = true;
    applyDecodingDemand();
}

void DeviceSession::applyDecodingDemand()
{
    if (!m_media || !m_hasPicture)
        return;
    const bool paused = !m_frames->isWatched();
    if (paused == m_decodingPaused)
        return;
    m_decodingPaused = paused;
    m_media->setDecodingPaused(paused);
    // The picture kept while paused is old: ask for a key frame so that it is current at once.
    if (!paused && m_controller)
        m_controller->resetVideo();
}

MediaPipeline *DeviceSession::mediaPipeline()
{
    if (m_media)
        return m_media;
    m_media = new MediaPipeline("Media " + m_params->deviceSerial(), m_frames, this);
    m_media->setRecorder(m_recorder);
    connect(m_media, &MediaPipeline::videoEnded, this, &DeviceSession::videoStreamStopped);
    connect(m_media, &MediaPipeline::audioUnavailable, this, [this](const QString &message) {
        // The phone goes on without sound; a recording must not wait for it.
        m_recorder->setStreams(m_params->video(), false);
        emit audioUnavailable(message);
    });
    return m_media;
}

void DeviceSession::handleVideoSocketConnected()
{
    QTcpSocket *socket = m_server->takeVideoSocket();
    if (!socket)
        return;
    delete m_media;
    m_media = nullptr;
    mediaPipeline()->startVideo(socket, m_videoProbes);
    emit videoStreamStarted();
}

void DeviceSession::handleAudioSocketConnected()
{
    QTcpSocket *socket = m_server->takeAudioSocket();
    if (!socket)
        return;
    // Without video the audio socket is the session's first one and carries the device name.
    mediaPipeline()->startAudio(socket, !m_params->video());
}

void DeviceSession::handleControlSocketConnected()
{
    if (!m_server->controlSocket())
        return;
    delete m_controller;
    m_controller = new Controller(this, m_server->controlSocket());
    m_controller->setShowSize(m_showSize);
    m_controller->setFrameSize(m_frameSize);
    m_controller->setKeyMappingProfile(m_keyMappingProfile);
    emit controllerChanged();
}
