#pragma once

#include <QObject>
#include <QString>

// The launch parameters of one mirroring session. A device keeps one for the grid and one for
// the enlarged view.
class ServerParams : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int maxSize READ maxSize WRITE setMaxSize NOTIFY maxSizeChanged)
    Q_PROPERTY(int maxFps READ maxFps WRITE setMaxFps NOTIFY maxFpsChanged)
    Q_PROPERTY(int bitRate READ bitRate WRITE setBitRate NOTIFY bitRateChanged)
    Q_PROPERTY(QString deviceSerial READ deviceSerial WRITE setDeviceSerial NOTIFY deviceSerialChanged)
    Q_PROPERTY(QString socketName READ socketName WRITE setSocketName NOTIFY socketNameChanged)
    Q_PROPERTY(bool audio READ audio WRITE setAudio NOTIFY audioChanged)

public:
    // The version of the server file this application ships beside itself; the two must match.
    static constexpr const char *ServerVersion = "3.3.1";

    explicit ServerParams(QObject *parent = nullptr);

    QString deviceSerial() const { return m_deviceSerial; }
    void setDeviceSerial(const QString &serial);
    int bitRate() const { return m_bitRate; }
    void setBitRate(int bitRate);
    int maxSize() const { return m_maxSize; }
    void setMaxSize(int maxSize);
    int maxFps() const { return m_maxFps; }
    void setMaxFps(int maxFps);
    QString socketName() const { return m_socketName; }
    void setSocketName(const QString &name);
    bool audio() const { return m_audio; }
    void setAudio(bool audio);

    bool stayAwake() const { return m_stayAwake; }
    quint16 port() const { return m_port; }
    void setPort(quint16 port) { m_port = port; }
    QString audioCodec() const { return m_audioCodec; }
    bool video() const { return m_video; }
    bool control() const { return m_control; }
    void setVideo(bool video) { m_video = video; }
    void setControl(bool control) { m_control = control; }
    qint32 scid() const { return m_scid; }
    void setScid(qint32 scid) { m_scid = scid; }
    // A fresh random scid, so that a session's tear-down never touches the next session's server
    // or tunnel.
    void renewScid();
    // The scid as the server and the socket name write it: 8 lower-case hexadecimal digits.
    QString scidText() const;

    // The adb arguments that start the server on the phone.
    QStringList serverArguments() const;

signals:
    void maxSizeChanged();
    void maxFpsChanged();
    void bitRateChanged();
    void deviceSerialChanged();
    void socketNameChanged();
    void audioChanged();

private:
    QString m_deviceSerial;
    int m_bitRate = 2000000;
    int m_maxSize = 280;
    int m_maxFps = 5;
    bool m_stayAwake = true;
    QString m_socketName;
    quint16 m_port = 0;
    QString m_audioCodec = "opus";
    bool m_video = true;
    bool m_audio = false;
    bool m_control = true;
    qint32 m_scid;
};
