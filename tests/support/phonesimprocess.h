#pragma once

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "loopbacklease.h"

#include <optional>

// One phonesim process on a free loopback port with its own data folder.
class PhoneSimProcess
{
public:
    PhoneSimProcess();
    ~PhoneSimProcess();

    static QString binary();
    static quint16 freePort();

    // Starts the phone and waits until it listens. Extra arguments go after the defaults.
    bool start(const QStringList &extraArgs = {}, QString *error = nullptr);

    quint16 port() const { return m_port; }
    QString serial() const { return QString("127.0.0.1:%1").arg(m_port); }
    QString wifiAddress() const { return m_wifiAddress; }
    QString sandboxPath(const QString &devicePath) const { return m_dir.path() + "/sandbox" + devicePath; }

    // The journal lines written so far, optionally only those of one event.
    QList<QJsonObject> journal(const QString &event = {}) const { return readJournal(m_dir.path(), event); }
    // The same for the journal in any phone's data folder (phones living in the test process).
    static QList<QJsonObject> readJournal(const QString &dataDir, const QString &event = {});
    // The control messages of one type the phone has read, oldest first.
    QList<QJsonObject> controlMessages(const QString &type) const;
    // Runs `phonesim ctl`; returns its exit code and puts its output in *output.
    int ctl(const QStringList &args, QString *output = nullptr) const;

private:
    QProcess m_process;
    QTemporaryDir m_dir;
    quint16 m_port = 0;
    QString m_wifiAddress;
    std::optional<LoopbackLease> m_wifiLease;
};
