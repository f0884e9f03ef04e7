#pragma once

#include "deviceinfo.h"
#include "messagekind.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSize>


class AudioDecoder;
class Controller;
class DeviceActions;
class DeviceScreenshot;
class DeviceSession;
class FrameHandoff;
class OfflineWatch;
class KeyMappingProfile;
class MediaRecorder;
class PacketSink;
class ScrcpyServer;
class ServerParams;

// One phone in one group: runs its mirroring session and wires its pipeline (server, media,
// recorder, controller), passes decoded frames to the views and reports status messages. What the
// user does to the phone besides mirroring lives in its actions; the group it belongs to is above
// this layer and only known as an object.
class Device : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("serverparams.h")
    Q_MOC_INCLUDE("controller.h")
    Q_MOC_INCLUDE("deviceactions.h")
    Q_MOC_INCLUDE("framehandoff.h")
    Q_MOC_INCLUDE("mediarecorder.h")
    Q_MOC_INCLUDE("keymappingprofile.h")
    Q_PROPERTY(DeviceActions *actions READ actions CONSTANT)
    Q_PROPERTY(DeviceInfo deviceInfo READ deviceInfo NOTIFY deviceInfoChanged)
    Q_PROPERTY(int indexInGroup READ indexInGroup NOTIFY indexInGroupChanged)
    Q_PROPERTY(ConnectionType connectionType READ connectionType WRITE setConnectionType NOTIFY connectionTypeChanged)
    Q_PROPERTY(QString ipAddress READ ipAddress NOTIFY ipAddressChanged)
    Q_PROPERTY(bool isBigView READ isBigView WRITE setIsBigView NOTIFY isBigViewChanged)
    Q_PROPERTY(QString adbConnectionSerial READ adbConnectionSerial CONSTANT)
    Q_PROPERTY(Controller *controller READ controller NOTIFY controllerChanged)
    Q_PROPERTY(QObject *deviceGroup READ deviceGroup NOTIFY deviceGroupChanged)
    Q_PROPERTY(bool isHostDevice READ isHostDevice WRITE setIsHostDevice NOTIFY isHostDeviceChanged)
    Q_PROPERTY(ServerParams *serverParamsSmallView READ serverParamsSmallView CONSTANT)
    Q_PROPERTY(ServerParams *serverParamsBigView READ serverParamsBigView CONSTANT)
    Q_PROPERTY(bool isScreenShotting READ isScreenShotting NOTIFY isScreenShottingChanged)
    Q_PROPERTY(bool running READ running NOTIFY runningChanged)
    Q_PROPERTY(bool starting READ starting NOTIFY startingChanged)
    Q_PROPERTY(bool wanted READ wanted NOTIFY wantedChanged)
    Q_PROPERTY(bool offline READ offline NOTIFY offlineChanged)
    Q_PROPERTY(QDateTime offlineSince READ offlineSince NOTIFY offlineChanged)
    Q_PROPERTY(FrameHandoff *videoFrames READ videoFrames CONSTANT)
    Q_PROPERTY(bool isAudioEnabled READ isAudioEnabled NOTIFY isAudioEnabledChanged)
    Q_PROPERTY(QString nickName READ nickName NOTIFY nickNameChanged)
    Q_PROPERTY(MediaRecorder *videoRecorder READ videoRecorder CONSTANT)
    Q_PROPERTY(KeyMappingProfile *currentKeyMappingProfile READ currentKeyMappingProfile
                   WRITE setCurrentKeyMappingProfile NOTIFY currentKeyMappingProfileChanged)

public:
    enum ConnectionType { WiFi = 0, USB = 1 };
    Q_ENUM(ConnectionType)

    explicit Device(QObject *parent = nullptr, const QString &adbConnectionSerial = QString());
    ~Device() override;

    DeviceActions *actions() const { return m_actions; }
    DeviceInfo deviceInfo() const { return m_deviceInfo; }
    int indexInGroup() const { return m_indexInGroup; }
    void setIndexInGroup(int index);
    ConnectionType connectionType() const { return m_connectionType; }
    void setConnectionType(ConnectionType type);
    QString ipAddress() const { return m_ipAddress; }
    bool isBigView() const { return m_isBigView; }
    QString adbConnectionSerial() const { return m_adbConnectionSerial; }
    Controller *controller() const;
    QObject *deviceGroup() const { return m_deviceGroup; }
    void setDeviceGroup(QObject *group);
    bool isHostDevice() const { return m_isHostDevice; }
    void setIsHostDevice(bool host);
    ServerParams *serverParamsSmallView() const { return m_smallViewParams; }
    ServerParams *serverParamsBigView() const { return m_bigViewParams; }
    bool isScreenShotting() const;
    bool running() const { return m_session != nullptr; }
    // Between Start and the first picture.
    bool starting() const { return m_starting; }
    // The user wants the phone running: Start sets it and Stop clears it. A wanted phone starts
    // whenever it is listed, and again when it comes back after a drop.
    bool wanted() const { return m_wanted; }
    // For a phone not started yet (a group that remembers it running); starts nothing by itself.
    void setWanted(bool wanted);
    // adb lost the phone; it stays in its group and its session comes back with it.
    bool offline() const;
    QDateTime offlineSince() const;
    // The session's pictures, for views and screenshots; the same object for the device's life.
    FrameHandoff *videoFrames() const { return m_frames; }
    bool isAudioEnabled() const;
    QString nickName() const { return m_nickName; }
    // The stored nickname, as the nickname store has it now.
    void updateNickName(const QString &nickname);
    QSize showSize() const { return m_showSize; }
    QSize frameSize() const { return m_frameSize; }
    KeyMappingProfile *currentKeyMappingProfile() const;
    ScrcpyServer *server() const;
    MediaRecorder *videoRecorder() const { return m_recorder; }
    // The current session's sound decoder, living on the media thread (connect to it directly);
    // null until the audio socket arrives.
    AudioDecoder *audioDecoder() const;
    // Sinks placed first, in the order added, in every video demuxer created from now on: they see
    // each packet before the decoder, on the session's media thread (statistics, benchmarks). Not
    // owned; they must outlive the device.
    void addVideoPacketProbe(PacketSink *probe);

    // The Wi-Fi address and the details, read in the background; `ipAddressChanged` and
    // `deviceInfoChanged` follow on this object's thread.
    void refreshAddressAndDetails();

    // How long view switches wait between tearing a session down and starting it again. Tests
    // shorten it.
    static void setStepDelay(int milliseconds);
    // Where recordings go; start-up sets the user's folder.
    static void setRecordingFolder(const QString &folder);
    // While a Wi-Fi switch runs the phone may vanish for a moment; it must not leave its group.
    void setSwitchingConnection(bool switching) { m_switchingConnection = switching; }

signals:
    void runningChanged();
    void startingChanged();
    void wantedChanged();
    void offlineChanged();
    void scrcpyError(const QString &error);
    void controllerChanged();
    void isBigViewChanged();
    void isScreenShottingChanged();
    void videoStreamStarted();
    void videoStreamStopped();
    void nickNameChanged();
    void indexInGroupChanged();
    void deviceGroupChanged();
    void deviceInfoChanged();
    void ipAddressChanged();
    void isHostDeviceChanged();
    void isAudioEnabledChanged();
    void currentKeyMappingProfileChanged();
    void connectionTypeChanged();
    void deviceMessage(const QString &message, MessageKind::Kind kind, int timeout);
    // The user renamed the phone; the nickname store keeps it.
    void nickNameEdited(const QString &serial, const QString &nickname);
    // The user took the phone out of its group (or its Wi-Fi link was dropped).
    void leaveGroupRequested();
    // The end of a takeScreenshot(), also of one already under way when it was asked for again.
    void screenshotFinished(bool saved, const QString &message);

public:
    Q_INVOKABLE void setEnableAudio(bool enableAudio);
    Q_INVOKABLE void setShowSize(QSize size);
    Q_INVOKABLE void startScrcpySession();
    Q_INVOKABLE void stopScrcpySession();
    Q_INVOKABLE void removeFromDeviceGroup();
    Q_INVOKABLE void setNickName(const QString &nickname);
    Q_INVOKABLE void setIsBigView(bool isBigView);
    Q_INVOKABLE void takeScreenshot();
    Q_INVOKABLE void startRecord();
    Q_INVOKABLE void stopRecord();
    Q_INVOKABLE void setCurrentKeyMappingProfile(KeyMappingProfile *profile);

    // Tears the session down and starts it again after the step delay.
    void restartSession();

private:
    void emitInfo(const QString &message, int timeout = MessageKind::timeoutMs(MessageKind::Info))
    {
        emit deviceMessage(message, MessageKind::Info, timeout);
    }
    void emitSuccess(const QString &message)
    {
        emit deviceMessage(message, MessageKind::Success, MessageKind::timeoutMs(MessageKind::Success));
    }
    void emitError(const QString &message, int timeout = MessageKind::timeoutMs(MessageKind::Error))
    {
        emit deviceMessage(message, MessageKind::Error, timeout);
    }
    // Stores a changed value and announces it.
    template<typename T, typename V>
    void change(T &field, const V &value, void (Device::*changed)());
    void teardownSession();
    void setStarting(bool starting);
    // Starts a session without changing what the user wants (a view switch, a phone back).
    void startSession();
    void handleServerStopped();
    void handleFrameAvailable();
    void handleBackOnline();
    void handleStartFailed(const QString &error);
    void handleScreenshotFinished(bool saved);

    DeviceActions *m_actions;
    DeviceInfo m_deviceInfo;
    int m_indexInGroup = -1;
    QString m_nickName;
    ConnectionType m_connectionType = USB;
    QString m_ipAddress;
    bool m_isBigView = false;
    QString m_adbConnectionSerial;
    QPointer<QObject> m_deviceGroup;
    bool m_isHostDevice = false;
    QSize m_showSize{-1, -1};
    QSize m_frameSize{-1, -1};
    ServerParams *m_smallViewParams;
    ServerParams *m_bigViewParams;
    // The run under way; null while stopped.
    DeviceSession *m_session = nullptr;
    FrameHandoff *m_frames;
    QList<PacketSink *> m_videoPacketProbes;
    MediaRecorder *m_recorder = nullptr;
    bool m_starting = false;
    bool m_wanted = false;
    OfflineWatch *m_offlineWatch;
    bool m_switchingConnection = false;
    DeviceScreenshot *m_screenshot;
    // Not owned: a profile deleted by its owner turns the mapping off.
    QPointer<KeyMappingProfile> m_keyMappingProfile;
};
