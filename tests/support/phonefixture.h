#pragma once

#include "adbrunner.h"
#include "loopbacklease.h"
#include "phonesimprocess.h"

#include <QSize>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <vector>

// Simulated phones attached to Debian's real adb on a private server port, ready for Korvel's
// own classes: AdbClient talks to the same adb server, and the server file Korvel pushes exists.
// Stops the phones and that adb server when it goes.
class PhoneFixture
{
public:
    // On an adb server port leased for this program's life.
    PhoneFixture();
    // On a port the caller owns (the benchmark scripts, which also clean up after a crash).
    explicit PhoneFixture(quint16 adbServerPort);
    ~PhoneFixture();

    // Starts a phone of the given screen size and connects it; null on failure (see error()).
    PhoneSimProcess *addPhone(const QSize &screenSize, const QStringList &extraArgs = {});
    const std::vector<std::unique_ptr<PhoneSimProcess>> &phones() const { return m_phones; }
    // The phone with this serial, or null.
    PhoneSimProcess *phone(const QString &serial) const;
    const AdbRunner &adb() const { return m_adb; }
    QString error() const { return m_error; }

private:
    void startServer();

    std::optional<LoopbackLease> m_lease;
    quint16 m_adbServerPort;
    AdbRunner m_adb;
    QTemporaryDir m_dir;
    QString m_error;
    std::vector<std::unique_ptr<PhoneSimProcess>> m_phones;
};
