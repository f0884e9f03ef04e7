#include "phonesimprocess.h"

#include <QFile>
#include <QJsonDocument>
#include <QTcpServer>
#include <QTest>

PhoneSimProcess::PhoneSimProcess()
{
    // To a file, not a pipe: a test that blocks in adb calls must never stall the phone's logging.
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setStandardOutputFile(m_dir.path() + "/phonesim.log");
}

PhoneSimProcess::~PhoneSimProcess()
{
    m_process.kill();
    m_process.waitForFinished(3000);
}

QString PhoneSimProcess::binary()
{
    return qEnvironmentVariable("KORVEL_BUILD_DIR") + "/phonesim";
}

quint16 PhoneSimProcess::freePort()
{
    // Outside the range adb probes for emulators (5555-5585).
    for (;;) {
        QTcpServer probe;
        if (probe.listen(QHostAddress::LocalHost, 0) && probe.serverPort() > 6000)
            return probe.serverPort();
    }
}

bool PhoneSimProcess::start(const QStringList &extraArgs, QString *error)
{
    m_port = freePort();
    // Consecutive indexes give clearly different colours, so the phones of one test never share one.
    static int startedPhones = 0;
    m_wifiLease = LoopbackLease::wifiOctet();
    m_wifiAddress = QString("127.0.0.%1").arg(m_wifiLease->value());
    m_process.start(binary(), QStringList{"--port", QString::number(m_port), "--data-dir", m_dir.path(), "--colour-index",
                                          QString::number(startedPhones++), "--wifi-address", m_wifiAddress}
                                  + extraArgs);
    if (!m_process.waitForStarted(5000)) {
        if (error)
            *error = "cannot start " + binary() + ": " + m_process.errorString();
        return false;
    }
    const auto log = [this] {
        QFile file(m_dir.path() + "/phonesim.log");
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    if (QTest::qWaitFor([&] { return m_process.state() != QProcess::Running || log().contains("listening on"); }, 10000)
        && m_process.state() == QProcess::Running)
        return true;
    if (error)
        *error = "phonesim did not come up: " + QString::fromUtf8(log());
    return false;
}

QList<QJsonObject> PhoneSimProcess::readJournal(const QString &dataDir, const QString &event)
{
    QList<QJsonObject> lines;
    QFile file(dataDir + "/journal.jsonl");
    if (!file.open(QIODevice::ReadOnly))
        return lines;
    while (!file.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(file.readLine()).object();
        if (event.isEmpty() || line.value("event").toString() == event)
            lines.append(line);
    }
    return lines;
}

QList<QJsonObject> PhoneSimProcess::controlMessages(const QString &type) const
{
    QList<QJsonObject> found = journal("control");
    found.removeIf([&type](const QJsonObject &line) { return line.value("type").toString() != type; });
    return found;
}

int PhoneSimProcess::ctl(const QStringList &args, QString *output) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(binary(), QStringList{"ctl", "--port", QString::number(m_port)} + args);
    if (!process.waitForFinished(10000))
        return -1;
    if (output)
        *output = QString::fromUtf8(process.readAll()).trimmed();
    return process.exitCode();
}
