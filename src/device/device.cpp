#include "device.h"

#include "adbclient.h"
#include "appconfig.h"
#include "audiodecoder.h"
#include "audiodemuxer.h"
#include "autojs.h"
#include "controller.h"
#include "devicegroup.h"
#include "devicesettings.h"
#include "mediarecorder.h"
#include "scrcpyserver.h"
#include "serverparams.h"
#include "simpleaudioplayer.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QFileInfo>
#include <QFutureWatcher>
#include <QTcpSocket>
#include <QTimer>
#include <QtConcurrent>

extern "C" {
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace {
int stepDelayMs = 1000;
constexpr quint16 kWifiAdbPort = 5555;
}

void Device::setStepDelay(int milliseconds)
{
    stepDelayMs = milliseconds;
}

Device::Device(QObject *parent, DeviceGroup *deviceGroup, const QString &adbConnectionSerial)
    : QObject(parent)
    , m_adbConnectionSerial(adbConnectionSerial)
    , m_deviceGroup(deviceGroup)
    , m_smallViewParams(new ServerParams(this))
    , m_bigViewParams(new ServerParams(this))
{
    m_bigViewParams->setMaxSize(720);
    m_bigViewParams->setMaxFps(30);
    m_bigViewParams->setBitRate(4000000);
    m_autojs = new Autojs(this);
    connect(m_autojs, &Autojs::runningStatusChanged, this, &Device::isRunningAutojsChanged);
    m_recorder = new MediaRecorder(this);
    connect(m_recorder, &MediaRecorder::message, this, &Device::deviceMessage);
    connect(m_recorder, &MediaRecorder::resetVideoRequested, this, [this] {
        if (m_controller)
            m_controller->resetVideo();
    });
    connect(DeviceSettings::instance(), &DeviceSettings::deviceNicknameChanged, this,
            [this](const QString &serial) {
                if (serial == m_adbConnectionSerial)
                    emit nickNameChanged();
            });
}

Device::~Device()
{
    // The server first: its sockets feed the demuxer.
    delete m_server;
    m_server = nullptr;
    delete m_videoDemuxer;
    delete m_audioDemuxer;
    // Finishes the file (trailer included) before the device goes, even if the phone vanished.
    delete m_recorder;
    sws_freeContext(m_rgbScaler);
}

int Device::indexInGroup() const
{
    return m_deviceGroup ? m_deviceGroup->indexOf(const_cast<Device *>(this)) : -1;
}

void Device::setConnectionType(ConnectionType type)
{
    if (m_connectionType == type)
        return;
    m_connectionType = type;
    emit connectionTypeChanged();
}

DeviceGroup *Device::deviceGroup() const
{
    return m_deviceGroup;
}

void Device::setDeviceGroup(DeviceGroup *group)
{
    if (m_deviceGroup == group)
        return;
    m_deviceGroup = group;
    emit deviceGroupChanged();
}

void Device::setIsHostDevice(bool host)
{
    if (m_isHostDevice == host)
        return;
    m_isHostDevice = host;
    emit isHostDeviceChanged();
}

bool Device::isAudioEnabled() const
{
    return (m_isBigView ? m_bigViewParams : m_smallViewParams)->audio();
}

QString Device::nickName() const
{
    return DeviceSettings::instance()->getDeviceNickname(m_adbConnectionSerial);
}

void Device::setNickName(const QString &nickname)
{
    DeviceSettings::instance()->setDeviceNickname(m_adbConnectionSerial, nickname);
    // The picture is as large as the phone's screen, as far as its video has shown it.
    if (m_controller)
        m_controller->setWallpaper(nickname, m_frameSize.width(), m_frameSize.height());
    emit nickNameChanged();
}

void Device::setShowSize(QSize size)
{
    m_showSize = size;
}

void Device::startScrcpySession()
{
    if (m_server)
        return;

    // Without the server file nothing can start; say where it belongs instead of dropping the phone.
    const QString serverFile = AppConfig::serverPath();
    if (!QFileInfo(serverFile).isFile()) {
        const QString error = tr("scrcpy-server %1 is missing at %2").arg(ServerParams::ServerVersion, serverFile);
        emit scrcpyError(error);
        emitError(error, 10000);
        return;
    }

    ServerParams *params = m_smallViewParams;
    if (m_isBigView) {
        m_bigViewParams->setAudio(m_smallViewParams->audio());
        params = m_bigViewParams;
    }
    params->setDeviceSerial(m_adbConnectionSerial);
    params->setSocketName("scrcpy_" + params->scidText());

    m_server = new ScrcpyServer(this, params);
    m_recorder->setStreams(params->video(), params->audio());
    connect(m_server, &ScrcpyServer::output, this, &Device::handleServerOutput);
    connect(m_server, &ScrcpyServer::stopped, this, &Device::handleServerStopped);
    connect(m_server, &ScrcpyServer::videoSocketConnected, this, &Device::handleVideoSocketConnected);
    connect(m_server, &ScrcpyServer::videoSocketDisconnected, this, &Device::handleVideoSocketDisconnected);
    connect(m_server, &ScrcpyServer::audioSocketConnected, this, &Device::handleAudioSocketConnected);
    connect(m_server, &ScrcpyServer::audioSocketDisconnected, this, &Device::handleAudioSocketDisconnected);
    connect(m_server, &ScrcpyServer::controlSocketConnected, this, &Device::handleControlSocketConnected);
    connect(m_server, &ScrcpyServer::controlSocketDisconnected, this, &Device::handleControlSocketDisconnected);

    delete m_audioPlayer;
    m_audioPlayer = new SimpleAudioPlayer(this);

    // The stopped(-1) of a failed start is handled here, not as the end of a running server.
    m_server->blockSignals(true);
    const bool started = m_server->start();
    m_server->blockSignals(false);
    if (started) {
        emit runningChanged();
        return;
    }
    teardownSession();
    leaveGroup();
}

void Device::teardownSession()
{
    if (!m_server)
        return;
    m_server->stop();
    delete m_server;
    m_server = nullptr;
    emit runningChanged();
    deleteController();
}

void Device::deleteController()
{
    if (!m_controller)
        return;
    delete m_controller;
    m_controller = nullptr;
    emit controllerChanged();
}

void Device::stopScrcpySession()
{
    teardownSession();
}

void Device::leaveGroup()
{
    if (!m_switchingConnection && m_deviceGroup)
        m_deviceGroup->removeDevice(this);
}

void Device::removeFromDeviceGroup()
{
    teardownSession();
    leaveGroup();
}

void Device::handleServerOutput(const QByteArray &)
{
}

void Device::handleServerStopped(int, QProcess::ExitStatus)
{
    if (m_server) {
        m_server->deleteLater();
        m_server = nullptr;
        deleteController();
        emit runningChanged();
    }
    const QList<ADBDeviceInfo> attached = AdbClient::devices();
    const bool listed = std::any_of(attached.cbegin(), attached.cend(), [this](const ADBDeviceInfo &info) {
        return info.adb_serial == m_adbConnectionSerial;
    });
    if (listed)
        return;
    teardownSession();
    leaveGroup();
}

void Device::addVideoPacketProbe(PacketSink *probe)
{
    if (probe && !m_videoPacketProbes.contains(probe))
        m_videoPacketProbes.append(probe);
}

void Device::handleVideoSocketConnected()
{
    if (!m_server || !m_server->videoSocket())
        return;
    // The previous session's demuxer goes; its decoder stays a child until the device ends.
    delete m_videoDemuxer;
    m_videoDecoder = new VideoDecoder(this);
    m_videoDecoder->setScreenshotSerial(m_adbConnectionSerial);
    connect(m_videoDecoder, &VideoDecoder::frameDecoded, this, &Device::handleDecodedVideoFrame);
    connect(m_videoDecoder, &VideoDecoder::screenshotFinished, this,
            [this](bool saved) { handleScreenshotFinished(saved); });
    m_videoDemuxer = new VideoDemuxer(m_server->videoSocket(), m_recorder->videoSink(), m_videoDecoder);
    m_recorder->setVideoCodecSource([demuxer = QPointer<VideoDemuxer>(m_videoDemuxer)]() -> AVCodecContext * {
        return demuxer ? demuxer->codecContext() : nullptr;
    });
    for (int i = 0; i < m_videoPacketProbes.size(); ++i)
        m_videoDemuxer->insertPacketSink(i, m_videoPacketProbes.at(i));
    m_videoDecoder->setDemuxer(m_videoDemuxer);
    emit videoStreamStarted();
}

void Device::handleVideoSocketDisconnected()
{
}

void Device::handleAudioSocketConnected()
{
    if (!m_server || !m_server->audioSocket())
        return;
    delete m_audioDemuxer;
    m_audioDecoder = new AudioDecoder(this);
    connect(m_audioDecoder, &AudioDecoder::frameDecoded, this, &Device::handleDecodedAudioFrame);
    // Without video the audio socket is the session's first one and carries the device name.
    ServerParams *params = m_isBigView ? m_bigViewParams : m_smallViewParams;
    const bool nameFirst = !params->video();
    m_audioDemuxer = new AudioDemuxer(m_server->audioSocket(), m_recorder->audioSink(), m_audioDecoder, nameFirst);
    m_audioDecoder->setDemuxer(m_audioDemuxer);
    m_recorder->setAudioCodecSource([demuxer = QPointer<AudioDemuxer>(m_audioDemuxer)]() -> AVCodecContext * {
        return demuxer ? demuxer->codecContext() : nullptr;
    });
    connect(m_audioDemuxer, &AudioDemuxer::audioUnavailable, this, [this](const QString &message) {
        // The phone goes on without sound; a recording must not wait for it.
        m_recorder->setStreams((m_isBigView ? m_bigViewParams : m_smallViewParams)->video(), false);
        if (m_audioPlayer)
            m_audioPlayer->stop();
        emitError(message);
    });
    if (m_audioPlayer)
        m_audioPlayer->start();
}

void Device::handleAudioSocketDisconnected()
{
}

void Device::handleControlSocketConnected()
{
    if (!m_server || !m_server->controlSocket())
        return;
    deleteController();
    m_controller = new Controller(this, m_server->controlSocket());
    connect(m_controller, &Controller::messageSent, this, &Device::handleMessageSent);
    emit controllerChanged();
}

void Device::handleControlSocketDisconnected()
{
}

void Device::handleDecodedAudioFrame(AVFrame *frame)
{
    if (m_audioPlayer)
        m_audioPlayer->playFrame(frame);
}

void Device::startRecord()
{
    // The recording asks the phone for a fresh key frame through the control channel.
    if (!m_controller) {
        emitError(tr("Not Connected"), 2000);
        return;
    }
    m_recorder->setOutput(AppConfig::instance()->getVideoSavePath(), nickName(), m_adbConnectionSerial);
    m_recorder->start();
}

void Device::stopRecord()
{
    m_recorder->stop();
}

void Device::handleDecodedVideoFrame(AVFrame *frame)
{
    if (!frame || frame->width <= 0 || frame->height <= 0)
        return;
    m_frameSize = QSize(frame->width, frame->height);
    if (frame->format == AV_PIX_FMT_YUV420P) {
        emit yuvFrameReady(frame->width, frame->height, frame->data[0], frame->linesize[0], frame->data[1],
                           frame->linesize[1], frame->data[2], frame->linesize[2]);
        return;
    }
    const QImage image = toImage(frame);
    if (!image.isNull())
        emit frameReady(image);
}

QImage Device::toImage(const AVFrame *frame)
{
    m_rgbScaler = sws_getCachedContext(m_rgbScaler, frame->width, frame->height, AVPixelFormat(frame->format),
                                       frame->width, frame->height, AV_PIX_FMT_RGB24, SWS_BILINEAR, nullptr,
                                       nullptr, nullptr);
    if (!m_rgbScaler)
        return {};
    QImage image(frame->width, frame->height, QImage::Format_RGB888);
    uint8_t *destination[4] = {image.bits(), nullptr, nullptr, nullptr};
    const int strides[4] = {int(image.bytesPerLine()), 0, 0, 0};
    sws_scale(m_rgbScaler, frame->data, frame->linesize, 0, frame->height, destination, strides);
    return image;
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
    emit deviceMessage(enableAudio ? tr("Audio Enabled, Need Reconnect") : tr("Audio Disabled, Need Reconnect"),
                       "info", 3000);
    emit isAudioEnabledChanged();
}

void Device::setWiFiConnection()
{
    m_switchingConnection = true;
    if (!AdbClient::tcpip(m_adbConnectionSerial, kWifiAdbPort)) {
        emitError(tr("Failed to tcpip"), 3000);
        m_switchingConnection = false;
        return;
    }
    QTimer::singleShot(stepDelayMs, this, [this] {
        if (AdbClient::connect(m_adbConnectionSerial, m_ipAddress, kWifiAdbPort))
            emit deviceMessage(tr("WiFi connection enabled"), "success", 3000);
        else
            emitError(tr("Failed to enable \r WiFi connection"), 3000);
        m_switchingConnection = false;
    });
}

bool Device::disconnectWiFi()
{
    if (!AdbClient::disconnect(m_adbConnectionSerial))
        return false;
    teardownSession();
    leaveGroup();
    return true;
}

bool Device::setUSBConnection()
{
    return AdbClient::usb(m_adbConnectionSerial);
}

void Device::takeScreenshot()
{
    if (m_isScreenShotting)
        return;
    if (!m_videoDecoder || !m_server) {
        emitError(tr("Not Connected"), 2000);
        return;
    }
    m_isScreenShotting = true;
    emit isScreenShottingChanged();
    m_videoDecoder->takeScreenshot();
}

void Device::handleScreenshotFinished(bool saved)
{
    if (saved)
        emitSuccess(tr("Screenshot Saved"));
    else
        emitError(tr("Screenshot Failed"));
    m_isScreenShotting = false;
    emit isScreenShottingChanged();
}

void Device::handleMessageSent(const ControlMsg &msg)
{
    if (m_isHostDevice && m_deviceGroup && m_deviceGroup->groupControlMode())
        m_deviceGroup->replayHostMessage(msg);
}

void Device::installAPK(const QString &filePath)
{
    if (!m_controller) {
        emitError(tr("Not Connected"), 2000);
        return;
    }
    m_controller->installApk(filePath);
}

void Device::runAutojs(const QString &autojsPath)
{
    m_autojs->run(autojsPath);
}

void Device::stopAutojs()
{
    m_autojs->stop();
}

void Device::uploadFile(const QString &filePath)
{
    if (!m_controller) {
        emitError(tr("Not Connected"), 5000);
        return;
    }
    emit deviceMessage(tr("Uploading File"), "info", 100000);
    m_controller->uploadFile(filePath);
}

// The user interface's buttons; without a control channel they do nothing.
void Device::shutdown() { if (m_controller) m_controller->actionShutdown(); }
void Device::reboot() { if (m_controller) m_controller->actionReboot(); }
void Device::sleep() { if (m_controller) m_controller->actionSleep(); }
void Device::wakeUp() { if (m_controller) m_controller->actionWakeUp(); }
void Device::volumeUp() { if (m_controller) m_controller->actionVolumeUp(); }
void Device::volumeDown() { if (m_controller) m_controller->actionVolumeDown(); }
void Device::rotateScreen() { if (m_controller) m_controller->actionRotateScreen(); }
void Device::swipeUp() { if (m_controller) m_controller->actionSwipeUp(); }
void Device::swipeDown() { if (m_controller) m_controller->actionSwipeDown(); }
void Device::swipeLeft() { if (m_controller) m_controller->actionSwipeLeft(); }
void Device::swipeRight() { if (m_controller) m_controller->actionSwipeRight(); }
void Device::back() { if (m_controller) m_controller->actionBack(); }
void Device::showTaskList() { if (m_controller) m_controller->actionShowTaskList(); }
void Device::home() { if (m_controller) m_controller->actionHome(); }

QString Device::executeADBCommand(const QString &input)
{
    QString output;
    for (const QString &rawLine : input.split("\n")) {
        const QString line = rawLine.trimmed();
        if (line.isEmpty())
            continue;
        const QStringList args = QStringList{"-s", m_adbConnectionSerial} + line.split(" ", Qt::SkipEmptyParts);
        const QString result = AdbClient::run(args);
        output += result;
        if (!result.endsWith("\n"))
            output += "\n";
    }
    return output;
}

void Device::refreshAddressAndDetails()
{
    struct Refresh
    {
        QString address;
        DeviceInfo details;
    };
    const QString serial = m_adbConnectionSerial;
    auto *watcher = new QFutureWatcher<Refresh>(this);
    connect(watcher, &QFutureWatcher<Refresh>::finished, this, [this, watcher] {
        const Refresh result = watcher->result();
        watcher->deleteLater();
        m_ipAddress = result.address;
        m_deviceInfo = result.details;
        emit ipAddressChanged();
        emit deviceInfoChanged();
    });
    watcher->setFuture(QtConcurrent::run([serial] {
        return Refresh{AdbClient::getWifiIpAddress(serial), AdbClient::getDeviceInfo(serial)};
    }));
}
