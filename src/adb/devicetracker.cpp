#include "devicetracker.h"

#include "adbclient.h"
#include "adbpool.h"
#include "appowned.h"

#include <QProcess>
#include <QTimer>

namespace {
constexpr int MaxRestartDelayMs = 30000;
}

DeviceTracker *DeviceTracker::instance()
{
    static AppOwned<DeviceTracker> tracker([] { return new DeviceTracker; });
    return tracker.get();
}

DeviceTracker::DeviceTracker(QObject *parent)
    : QObject(parent)
    , m_restartTimer(new QTimer(this))
{
    m_restartTimer->setSingleShot(true);
    connect(m_restartTimer, &QTimer::timeout, this, &DeviceTracker::start);
}

DeviceTracker::~DeviceTracker()
{
    stop();
}

void DeviceTracker::ensureStarted()
{
    if (!m_process && !m_restartTimer->isActive())
        start();
}

void DeviceTracker::stop()
{
    m_restartTimer->stop();
    if (!m_process)
        return;
    m_process->disconnect(this);
    m_process->kill();
    m_process->waitForFinished(1000);
    delete m_process;
    m_process = nullptr;
    m_restartDelayMs = 1000;
}

bool DeviceTracker::isAttached(const QString &serial) const
{
    return std::any_of(m_devices.cbegin(), m_devices.cend(),
                       [&serial](const ADBDeviceInfo &info) { return info.adb_serial == serial; });
}

quint64 DeviceTracker::refresh()
{
    const quint64 ticket = ++m_refreshAsked;
    if (!m_refreshRunning)
        runRefresh();
    return ticket;
}

void DeviceTracker::runRefresh()
{
    m_refreshRunning = m_refreshAsked;
    AdbPool::run(this, [] { return AdbClient::devices(); }, [this](const QList<ADBDeviceInfo> &listed) {
        m_devices = listed;
        m_refreshAnswered = std::exchange(m_refreshRunning, 0);
        emit devicesChanged();
        emit refreshed(m_refreshAnswered);
        // Asked for while this one ran: the answer must come from after the question.
        if (m_refreshAsked > m_refreshAnswered)
            runRefresh();
    });
}

void DeviceTracker::start()
{
    m_buffer.clear();
    m_process = new QProcess(this);
    connect(m_process, &QProcess::readyReadStandardOutput, this, &DeviceTracker::readLists);
    connect(m_process, &QProcess::finished, this, &DeviceTracker::handleFinished);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            handleFinished();
    });
    m_process->start(AdbClient::program(), {"track-devices", "-l"}, QIODevice::ReadOnly);
    m_process->closeWriteChannel();
}

QList<QByteArray> DeviceTracker::takeLists(QByteArray &buffer)
{
    QList<QByteArray> lists;
    while (buffer.size() >= 4) {
        bool ok = false;
        const int length = buffer.left(4).toInt(&ok, 16);
        if (!ok || length < 0) {
            // Not the framed stream (a message of adb's own): drop through the end of its line.
            const qsizetype end = buffer.indexOf('\n');
            buffer.remove(0, end < 0 ? buffer.size() : end + 1);
            continue;
        }
        if (buffer.size() < 4 + length)
            break;
        lists.append(buffer.mid(4, length));
        buffer.remove(0, 4 + length);
    }
    return lists;
}

void DeviceTracker::readLists()
{
    m_buffer.append(m_process->readAllStandardOutput());
    const QList<QByteArray> lists = takeLists(m_buffer);
    if (lists.isEmpty())
        return;
    m_devices = AdbClient::parseDevices(QString::fromUtf8(lists.constLast()));
    m_restartDelayMs = 1000;
    emit devicesChanged();
}

void DeviceTracker::handleFinished()
{
    if (!m_process)
        return;
    m_process->deleteLater();
    m_process = nullptr;
    m_restartTimer->start(m_restartDelayMs);
    m_restartDelayMs = qMin(m_restartDelayMs * 2, MaxRestartDelayMs);
}
