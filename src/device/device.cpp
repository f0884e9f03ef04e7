#include "device.h"

#include "adbclient.h"
#include "adbpool.h"
#include "controller.h"
#include "deviceactions.h"
#include "devicescreenshot.h"
#include "devicesession.h"
#include "framehandoff.h"
#include "keymappingprofile.h"
#include "mediarecorder.h"
#include "offlinewatch.h"
#include "scrcpyserver.h"
#include "serverparams.h"

#include <QFileInfo>
#include <QMutex>
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
    connect(m_frames, &FrameHandoff::watchedChanged, this, [this] {
        if (m_session)
            m_session->applyDecodingDemand();
    });
    connect(m_offlineWatch, &OfflineWatch::offlineChanged, this, &Device::offlineChanged);
    connect(m_offlineWatch, &OfflineWatch::backOnline, this, &Device::handleBackOnline);
    // The server itself ended (killed, or failed) while the phone is there: it stays stopped, and
    // the reason is on screen, rather than failing again and again.
    connect(m_offlineWatch, &OfflineWatch::stillListed, this, [this] { setWanted(false); });
    m_recorder = new MediaRecorder(this);
    connect(m_recorder, &MediaRecorder::message, this, &Device::deviceMessage);
    connect(m_recorder, &MediaRecorder::resetVideoRequested, this, [this] {
        if (Controller *c = controller())
            c->resetVideo();
    });
}

Device::~Device()
{
    delete m_session;
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
    if (m_session)
        m_session->setShowSize(size);
}

Controller *Device::controller() const
{
    return m_session ? m_session->controller() : nullptr;
}

ScrcpyServer *Device::server() const
{
    return m_session ? m_session->server() : nullptr;
}

void Device::startScrcpySession()
{
    setWanted(true);
    startSession();
}

void Device::setWanted(bool wanted)
{
    change(m_wanted, wanted, &Device::wantedChanged);
}

void Device::startSession()
{
    if (m_session)
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

    m_session = new DeviceSession(params, m_frames, m_recorder, m_videoPacketProbes, this);
    m_session->setShowSize(m_showSize);
    m_session->setFrameSize(m_frameSize);
    m_session->setKeyMappingProfile(m_keyMappingProfile);
    connect(m_session, &DeviceSession::serverStopped, this, &Device::handleServerStopped);
    connect(m_session, &DeviceSession::startFailed, this, &Device::handleStartFailed);
    connect(m_session, &DeviceSession::controllerChanged, this, &Device::controllerChanged);
    connect(m_session, &DeviceSession::videoStreamStarted, this, &Device::videoStreamStarted);
    connect(m_session, &DeviceSession::videoStreamStopped, this, &Device::videoStreamStopped);
    connect(m_session, &DeviceSession::audioUnavailable, this, [this](const QString &message) { emitError(message); });
    setStarting(true);
    emit runningChanged();
    m_session->start();
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
    if (!m_session)
        return;
    // A recording ends with its session: the file gets its trailer and stays playable.
    if (m_recorder->isRecording())
        m_recorder->stop();
    m_actions->cancelSessionWork();
    const bool hadController = m_session->controller();
    // Later: this may run inside one of the session's own signals.
    m_session->end();
    std::exchange(m_session, nullptr)->deleteLater();
    m_frames->clear();
    m_screenshot->sessionEnded();
    setStarting(false);
    emit runningChanged();
    if (hadController)
        emit controllerChanged();
}

void Device::stopScrcpySession()
{
    setWanted(false);
    teardownSession();
}

void Device::removeFromDeviceGroup()
{
    teardownSession();
    if (!m_switchingConnection)
        emit leaveGroupRequested();
}

void Device::handleServerStopped()
{
    if (!m_session)
        return;
    // A server that ends before its first picture failed: its last words say why.
    const QStringList lastOutput = m_session->lastOutput();
    if (m_starting && !lastOutput.isEmpty())
        emitError(tr("The phone's server stopped: %1").arg(lastOutput.constLast()), kStartFailureTimeoutMs);
    teardownSession();
    m_offlineWatch->sessionEnded();
}

void Device::handleBackOnline()
{
    if (!m_wanted)
        return;
    emitInfo(tr("Back online, starting again"));
    startSession();
}

void Device::addVideoPacketProbe(PacketSink *probe)
{
    if (probe && !m_videoPacketProbes.contains(probe))
        m_videoPacketProbes.append(probe);
}

AudioDecoder *Device::audioDecoder() const
{
    return m_session ? m_session->audioDecoder() : nullptr;
}

void Device::startRecord()
{
    // The recording asks the phone for a fresh key frame through the control channel.
    if (!controller()) {
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

void Device::handleFrameAvailable()
{
    const FrameHandoff::Frame frame = m_frames->latest();
    if (!frame)
        return;
    m_frameSize = QSize(frame->width, frame->height);
    setStarting(false);
    if (m_session) {
        m_session->setFrameSize(m_frameSize);
        m_session->pictureArrived();
    }
    m_screenshot->pictureArrived();
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
    QTimer::singleShot(stepDelayMs, this, &Device::startSession);
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
    if (!m_session || !m_session->streaming()) {
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
    if (m_session)
        m_session->setKeyMappingProfile(profile);
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
