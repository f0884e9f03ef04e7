#include "serverparams.h"

#include <QRandomGenerator64>

ServerParams::ServerParams(QObject *parent)
    : QObject(parent)
{
    renewScid();
}

void ServerParams::renewScid()
{
    m_scid = static_cast<qint32>(QRandomGenerator64::global()->generate64() & 0x7fffffff);
}

void ServerParams::setDeviceSerial(const QString &serial)
{
    if (m_deviceSerial == serial)
        return;
    m_deviceSerial = serial;
    emit deviceSerialChanged();
}

void ServerParams::setBitRate(int bitRate)
{
    if (m_bitRate == bitRate)
        return;
    m_bitRate = bitRate;
    emit bitRateChanged();
}

void ServerParams::setMaxSize(int maxSize)
{
    if (m_maxSize == maxSize)
        return;
    m_maxSize = maxSize;
    emit maxSizeChanged();
}

void ServerParams::setMaxFps(int maxFps)
{
    if (m_maxFps == maxFps)
        return;
    m_maxFps = maxFps;
    emit maxFpsChanged();
}

void ServerParams::setSocketName(const QString &name)
{
    if (m_socketName == name)
        return;
    m_socketName = name;
    emit socketNameChanged();
}

void ServerParams::setAudio(bool audio)
{
    if (m_audio == audio)
        return;
    m_audio = audio;
    emit audioChanged();
}

QString ServerParams::scidText() const
{
    return QString("%1").arg(static_cast<quint32>(m_scid), 8, 16, QChar('0'));
}

QStringList ServerParams::serverArguments() const
{
    auto flag = [](bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); };
    QStringList args{"-s",
                     m_deviceSerial,
                     "shell",
                     QString("CLASSPATH=%1").arg("/data/local/tmp/scrcpy-server.jar"),
                     "app_process",
                     "/",
                     "com.genymobile.scrcpy.Server",
                     ServerVersion,
                     "video_bit_rate=" + QString::number(m_bitRate),
                     "audio_codec=" + m_audioCodec,
                     "log_level=verbose"};
    if (m_maxSize > 0)
        args << "max_size=" + QString::number(m_maxSize);
    if (m_maxFps > 0)
        args << "max_fps=" + QString::number(m_maxFps);
    args << "stay_awake=" + flag(m_stayAwake) << "scid=" + scidText() << "control=" + flag(m_control)
         << "video=" + flag(m_video) << "audio=" + flag(m_audio);
    return args;
}
