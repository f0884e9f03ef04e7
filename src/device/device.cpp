#include "device.h"

#include "adbclient.h"
#include "adbpool.h"
#include "controller.h"
#include "deviceactions.h"
#include "devicescreenshot.h"
#include "framehandoff.h"
#include "mediapipeline.h"
#include "offlinewatch.h"
#include "keymappingprofile.h"
#include "mediarecorder.h"
#include "scrcpyserver.h"
#include "serverparams.h"

#include <QFileInfo>
#include <QMutex>
#include <QTcpSocket>
#include <QTimer>

extern "C" {
#include <libavutil/frame.h>
}

namespace {
int stepDelayMs = 1000;
QMutex recordingFolderMutex;
QString recordingFolder;
// A failed start quotes its reason, which takes longer to read.
constexpr int kStartFailureTimeoutMs = 10000;
constexpr int kNotConnectedTimeoutMs = 2000;
constexpr int kNeedReconnectTimeoutMs = 3000;
}

template<typename T, typename V>
void Device::change(T &field, const V &value, void (Device::*changed)())
{
    if (field == value)
        return;
    field = value;
    emit(this->*changed)();
}

void Device::setStepDelay(int milliseconds)
{
    stepDelayMs = milliseconds;
}

void Device::setRecordingFolder(const QString &folder)
{
    QMutexLocker lock(&recordingFolderMutex);
    recordingFolder = folder;
}

Device::Device(QObject *parent, const QString &adbConnectionSerial)
    : QObject(parent)
    , m_adbConnectionSerial(adbConnectionSerial)
    , m_smallViewParams(new ServerParams(this))
    , m_bigViewParams(new ServerParams(this))
    , m_frames(new FrameHandoff(this))
    , m_offlineWatch(new OfflineWatch(adbConnectionSerial, this))
{
    m_bigViewParams->setMaxSize(720);
    m_bigViewParams->setMaxFps(30);
    m_bigViewParams->setBitRate(4000000);
    m_actions = new DeviceActions(this);
    m_screenshot = new DeviceScreenshot(m_frames, this);
    connect(m_screenshot, &DeviceScreenshot::busyChanged, this, &Device::isScreenShottingChanged);
    connect(m_screenshot, &DeviceScreenshot::finished, this, &Device::handleScreenshotFinished);
    connect(m_frames, &FrameHandoff::frameAvailable, this, &Device::handleFrameAvailable);
    connect(m_frames, &FrameHandoff::watchedChanged, this, &Device::applyDecodingDemand);
    connect(m_offlineWatch, &OfflineWatch::offlineChanged, this, &Device::offlineChanged);
    connect(m_offlineWatch, &OfflineWatch::backOnline, this, &Device::handleBackOnline);
    // The server itself ended (killed, or failed): the phone stays stopped.
    connect(m_offlineWatch, &OfflineWatch::stillListed, this, [this] { m_resumeSession = false; });
    m_recorder = new MediaRecorder(this);
    connect(m_recorder, &MediaRecorder::message, this, &Device::deviceMessage);
    connect(m_recorder, &MediaRecorder::resetVideoRequested, this, [this] {
        if (m_controller)
            m_controller->resetVideo();
    });
}

Device::~Device()
{
    // The media thread first: it reads a socket that the server's tear-down closes.
    delete m_media;
    delete m_server;
    // The file gets its trailer even if the phone vanished; a stalled disk does not hold the window.
    m_recorder->finishAndDelete();
}

void Device::setIndexInGroup(int index)
{
    change(m_indexInGroup, index, &Device::indexInGroupChanged);
}

void Device::setConnectionType(ConnectionType type)
{
    change(m_connectionType, type, &Device::connectionTypeChanged);
}

void Device::setDeviceGroup(QObject *group)
{
    change(m_deviceGroup, group, &Device::deviceGroupChanged);
}

void Device::setIsHostDevice(bool host)
{
    change(m_isHostDevice, host, &Device::isHostDeviceChanged);
}

bool Device::offline() const
{
    return m_offlineWatch->offline();
}

QDateTime Device::offlineSince() const
{
    return m_offlineWatch->offlineSince();
}

bool Device::isAudioEnabled() const
{
    return (m_isBigView ? m_bigViewParams : m_smallViewParams)->audio();
}

void Device::updateNickName(const QString &nickname)
{
    change(m_nickName, nickname, &Device::nickNameChanged);
}

void Device::setNickName(const QString &nickname)
{
    updateNickName(nickname);
    m_actions->setWallpaper(nickname);
    emit nickNameEdited(m_adbConnectionSerial, nickname);
}

void Device::setShowSize(QSize size)
{
    m_showSize = size;
    if (m_controller)
        m_controller->setShowSize(size);
}

void Device::startScrcpySession()
{
    if (m_server)
        return;
    m_offlineWatch->sessionStarted();

    // Without the server file nothing can start; say where it belongs instead of dropping the phone.
    const QString serverFile = ScrcpyServer::serverFile();
    if (!QFileInfo(serverFile).isFile()) {
        const QString error = tr("scrcpy-server %1 is missing at %2").arg(ServerParams::ServerVersion, serverFile);
        emit scrcpyError(error);
        emitError(error, kStartFailureTimeoutMs);
        return;
    }

    ServerParams *params = m_smallViewParams;
    if (m_isBigView) {
        m_bigViewParams->setAudio(m_smallViewParams->audio());
        params = m_bigViewParams;
    }
    params->setDeviceSerial(m_adbConnectionSerial);
    params->renewScid();
    params->setSocketName("scrcpy_" + params->scidText());

    m_server = new ScrcpyServer(this, params);
    m_recorder->setStreams(params->video(), params->audio());
    connect(m_server, &ScrcpyServer::stopped, this, &Device::handleServerStopped);
    connect(m_server, &ScrcpyServer::startFailed, this, &Device::handleStartFailed);
    connect(m_server, &ScrcpyServer::videoSocketConnected, this, &Device::handleVideoSocketConnected);
    connect(m_server, &ScrcpyServer::audioSocketConnected, this, &Device::handleAudioSocketConnected);
    connect(m_server, &ScrcpyServer::controlSocketConnected, this, &Device::handleControlSocketConnected);
    setStarting(true);
    emit runningChanged();
    m_server->start();
}

void Device::handleStartFailed(const QString &error)
{
    emit scrcpyError(error);
    emitError(tr("Failed to start: %1").arg(error), kStartFailureTimeoutMs);
}

void Device::setStarting(bool starting)
{
    change(m_starting, starting, &Device::startingChanged);
}

void Device::teardownSession()
{
    if (!m_server)
        return;
    // A recording ends with its session: the file gets its trailer and stays playable.
    if (m_recorder->isRecording())
        m_recorder->stop();
    delete m_media;
    m_media = nullptr;
    // Later: this may run inside one of the server's own signals.
    m_server->stop();
    m_server->deleteLater();
    m_server = nullptr;
    m_frames->clear();
    m_screenshot->sessionEnded();
    m_hasPicture = false;
    setStarting(false);
    emit runningChanged();
    deleteController();
}

void Device::deleteController()
{
    if (!m_controller)
        return;
    m_actions->cancelSessionWork();
    delete m_controller;
    m_controller = nullptr;
    emit controllerChanged();
}

void Device::stopScrcpySession()
{
    m_resumeSession = false;
    teardownSession();
}

void Device::removeFromDeviceGroup()
{
    teardownSession();
    if (!m_switchingConnection)
        emit leaveGroupRequested();
}

void Device::handleServerStopped(int, QProcess::ExitStatus)
{
    if (!m_server)
        return;
    // A server that ends before its first picture failed: its last words say why.
    const QStringList lastOutput = m_server->lastOutput();
    if (m_starting && !lastOutput.isEmpty())
        emitError(tr("The phone's server stopped: %1").arg(lastOutput.constLast()), kStartFailureTimeoutMs);
    teardownSession();
    m_resumeSession = true;
    m_offlineWatch->sessionEnded();
}

void Device::handleBackOnline()
{
    if (!m_resumeSession)
        return;
    m_resumeSession = false;
    emitInfo(tr("Back online, starting again"));
    startScrcpySession();
}

void Device::addVideoPacketProbe(PacketSink *probe)
{
    if (probe && !m_videoPacketProbes.contains(probe))
        m_videoPacketProbes.append(probe);
}

void Device::handleVideoSocketConnected()
{
    if (!m_server)
        return;
    QTcpSocket *socket = m_server->takeVideoSocket();
    if (!socket)
        return;
    delete m_media;
    m_media = nullptr;
    mediaPipeline()->startVideo(socket, m_videoPacketProbes);
    emit videoStreamStarted();
}

MediaPipeline *Device::mediaPipeline()
{
    if (m_media)
        return m_media;
    m_media = new MediaPipeline("Media " + m_adbConnectionSerial, m_frames, this);
    m_media->setRecorder(m_recorder);
    connect(m_media, &MediaPipeline::videoEnded, this, [this] {
        if (m_server)
            emit videoStreamStopped();
    });
    connect(m_media, &MediaPipeline::audioUnavailable, this, [this](const QString &message) {
        // The phone goes on without sound; a recording must not wait for it.
        if (m_server)
            m_recorder->setStreams(m_server->params()->video(), false);
        emitError(message);
    });
    return m_media;
}

void Device::handleAudioSocketConnected()
{
    if (!m_server)
        return;
    QTcpSocket *socket = m_server->takeAudioSocket();
    if (!socket)
        return;
    // Without video the audio socket is the session's first one and carries the device name.
    mediaPipeline()->startAudio(socket, !m_server->params()->video());
}

AudioDecoder *Device::audioDecoder() const
{
    return m_media ? m_media->audioDecoder() : nullptr;
}

void Device::startRecord()
{
    // The recording asks the phone for a fresh key frame through the control channel.
    if (!m_controller) {
        emitError(tr("Not Connected"), kNotConnectedTimeoutMs);
        return;
    }
    QString folder;
    {
        QMutexLocker lock(&recordingFolderMutex);
        folder = recordingFolder;
    }
    m_recorder->setOutput(folder, nickName(), m_adbConnectionSerial);
    m_recorder->start();
}

void Device::stopRecord()
{
    m_recorder->stop();
}

void Device::handleControlSocketConnected()
{
    if (!m_server || !m_server->controlSocket())
        return;
    deleteController();
    m_controller = new Controller(this, m_server->controlSocket());
    m_controller->setShowSize(m_showSize);
    m_controller->setFrameSize(m_frameSize);
    m_controller->setKeyMappingProfile(m_keyMappingProfile);
    emit controllerChanged();
}

void Device::handleFrameAvailable()
{
    quint64 serial = 0;
    const FrameHandoff::Frame frame = m_frames->latest(&serial);
    if (!frame)
        return;
    m_frameSize = QSize(frame->width, frame->height);
    if (m_controller)
        m_controller->setFrameSize(m_frameSize);
    setStarting(false);
    if (!m_hasPicture) {
        // Decoding runs until the first picture, so that size and screenshot are known even for
        // a phone nobody looks at; from now on it follows the views.
        m_hasPicture = true;
        applyDecodingDemand();
    }
    m_screenshot->pictureArrived();
}

void Device::applyDecodingDemand()
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

void Device::setIsBigView(bool isBigView)
{
    m_isBigView = isBigView;
    restartSession();
    emit isBigViewChanged();
    emit isAudioEnabledChanged();
}

void Device::restartSession()
{
    teardownSession();
    QTimer::singleShot(stepDelayMs, this, &Device::startScrcpySession);
}

void Device::setEnableAudio(bool enableAudio)
{
    (m_isBigView ? m_bigViewParams : m_smallViewParams)->setAudio(enableAudio);
    emitInfo(enableAudio ? tr("Audio Enabled, Need Reconnect") : tr("Audio Disabled, Need Reconnect"),
             kNeedReconnectTimeoutMs);
    emit isAudioEnabledChanged();
}

bool Device::isScreenShotting() const
{
    return m_screenshot->busy();
}

void Device::takeScreenshot()
{
    if (m_screenshot->busy())
        return;
    if (!m_media || !m_server) {
        emitError(tr("Not Connected"), kNotConnectedTimeoutMs);
        emit screenshotFinished(false, tr("Not Connected"));
        return;
    }
    m_screenshot->take(m_adbConnectionSerial);
}

void Device::handleScreenshotFinished(bool saved)
{
    const QString message = saved ? tr("Screenshot Saved") : tr("Screenshot Failed");
    if (saved)
        emitSuccess(message);
    else
        emitError(message);
    emit screenshotFinished(saved, message);
}

KeyMappingProfile *Device::currentKeyMappingProfile() const
{
    return m_keyMappingProfile;
}

void Device::setCurrentKeyMappingProfile(KeyMappingProfile *profile)
{
    if (profile == m_keyMappingProfile)
        return;
    if (m_keyMappingProfile)
        disconnect(m_keyMappingProfile, &QObject::destroyed, this, nullptr);
    m_keyMappingProfile = profile;
    if (m_controller)
        m_controller->setKeyMappingProfile(profile);
    // A profile deleted in the editor turns this phone's mapping off, visibly.
    if (profile)
        connect(profile, &QObject::destroyed, this, [this] {
            m_keyMappingProfile = nullptr;
            emit currentKeyMappingProfileChanged();
            emitInfo(tr("KeyMapping Disabled"));
        });
    emit currentKeyMappingProfileChanged();
    emitInfo(profile ? tr("KeyMapping Profile: %1").arg(profile->name()) : tr("KeyMapping Disabled"));
}

void Device::refreshAddressAndDetails()
{
    struct Refresh
    {
        QString address;
        DeviceInfo details;
    };
    const QString serial = m_adbConnectionSerial;
    AdbPool::run(
        this, [serial] { return Refresh{AdbClient::getWifiIpAddress(serial), AdbClient::getDeviceInfo(serial)}; },
        [this](const Refresh &result) {
            m_ipAddress = result.address;
            m_deviceInfo = result.details;
            emit ipAddressChanged();
            emit deviceInfoChanged();
        });
}
