#include "offlinewatch.h"

#include "adbclient.h"
#include "adbpool.h"
#include "devicetracker.h"

#include <QRegularExpression>

#include <memory>

OfflineWatch::OfflineWatch(const QString &serial, QObject *parent)
    : QObject(parent)
    , m_serial(serial)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &OfflineWatch::tryAgain);
    connect(DeviceTracker::instance(), &DeviceTracker::devicesChanged, this, &OfflineWatch::checkTracker);
}

void OfflineWatch::sessionEnded()
{
    const quint64 end = ++m_sessionEnd;
    // adb's tracking stream does not report a Wi-Fi phone going offline, so ask adb once now.
    DeviceTracker *tracker = DeviceTracker::instance();
    const quint64 ticket = tracker->refresh();
    auto answer = std::make_shared<QMetaObject::Connection>();
    *answer = connect(tracker, &DeviceTracker::refreshed, this, [this, tracker, ticket, answer, end](quint64 answered) {
        if (answered < ticket)
            return;
        disconnect(*answer);
        if (end != m_sessionEnd)
            return;
        if (tracker->isAttached(m_serial))
            emit stillListed();
        else
            setOffline(true);
    });
}

void OfflineWatch::sessionStarted()
{
    ++m_sessionEnd;
}

void OfflineWatch::setOffline(bool offline)
{
    if (offline) {
        if (!m_timer.isActive())
            m_timer.start(m_delayMs);
        if (m_offline)
            return;
        m_offlineSince = QDateTime::currentDateTime();
    } else {
        m_timer.stop();
        m_delayMs = FirstDelayMs;
        if (!m_offline)
            return;
    }
    m_offline = offline;
    emit offlineChanged();
}

void OfflineWatch::checkTracker()
{
    if (!m_offline || !DeviceTracker::instance()->isAttached(m_serial))
        return;
    setOffline(false);
    emit backOnline();
}

void OfflineWatch::tryAgain()
{
    static const QRegularExpression address("^[^\\s:]+:\\d+$");
    m_delayMs = qMin(m_delayMs * 2, MaxDelayMs);
    if (!address.match(m_serial).hasMatch()) {
        DeviceTracker::instance()->refresh();
        m_timer.start(m_delayMs);
        return;
    }
    // The next try waits for this one's answer: an unreachable address can take a while to refuse.
    AdbPool::run(
        this, [serial = m_serial] { return AdbClient::run({"connect", serial}); },
        [this](const QString &) {
            if (!m_offline)
                return;
            DeviceTracker::instance()->refresh();
            m_timer.start(m_delayMs);
        });
}
