#include "offlinewatch.h"

#include "adbclient.h"
#include "adbpool.h"

#include <QRegularExpression>

OfflineWatch::OfflineWatch(const QString &serial, QObject *parent)
    : QObject(parent)
    , m_serial(serial)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &OfflineWatch::check);
}

void OfflineWatch::start()
{
    m_watching = true;
    if (!m_timer.isActive())
        m_timer.start(m_delayMs);
}

void OfflineWatch::stop()
{
    m_watching = false;
    m_timer.stop();
    m_delayMs = FirstDelayMs;
}

void OfflineWatch::check()
{
    static const QRegularExpression address("^[^\\s:]+:\\d+$");
    const bool wifi = address.match(m_serial).hasMatch();
    AdbPool::run(
        this,
        [serial = m_serial, wifi] {
            if (wifi)
                AdbClient::run({"connect", serial});
            const QList<ADBDeviceInfo> attached = AdbClient::devices();
            return std::any_of(attached.cbegin(), attached.cend(),
                               [&serial](const ADBDeviceInfo &info) { return info.adb_serial == serial; });
        },
        [this](bool isListed) {
            if (!m_watching)
                return;
            if (isListed) {
                stop();
                emit listed();
                return;
            }
            m_delayMs = qMin(m_delayMs * 2, MaxDelayMs);
            m_timer.start(m_delayMs);
        });
}
