#include "loopbacklease.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTcpServer>

namespace {

bool canListen(const QString &address, int port)
{
    QTcpServer probe;
    return probe.listen(QHostAddress(address), quint16(port));
}

} // namespace

LoopbackLease LoopbackLease::adbServerPort()
{
    return LoopbackLease("adb-server-port", 16000, 16999, [](int port) { return canListen("127.0.0.1", port); });
}

LoopbackLease LoopbackLease::wifiOctet()
{
    return LoopbackLease("wifi-address", 100, 249,
                         [](int octet) { return canListen(QString("127.0.0.%1").arg(octet), 5555); });
}

LoopbackLease::LoopbackLease(const QString &kind, int first, int last, const std::function<bool(int)> &isFree)
{
    const QString folder = QDir::tempPath() + "/korvel-test-leases";
    QDir().mkpath(folder);
    // A random start spreads programs that begin together over the range instead of queueing them.
    const int count = last - first + 1;
    const int start = QRandomGenerator::global()->bounded(count);
    for (int i = 0; i < count; ++i) {
        const int value = first + (start + i) % count;
        auto lock = std::make_unique<QLockFile>(QString("%1/%2-%3.lock").arg(folder, kind).arg(value));
        // A lock left by a program that died is taken over by QLockFile itself.
        if (lock->tryLock(0) && isFree(value)) {
            m_lock = std::move(lock);
            m_value = value;
            return;
        }
    }
    qFatal("no free %s between %d and %d", qPrintable(kind), first, last);
}
