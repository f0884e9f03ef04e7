#include "adbclient.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QMutex>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpSocket>

#include <atomic>

namespace {
constexpr int kStartTimeoutMs = 5000;
constexpr int kNormalSeconds = 30;
constexpr int kTransferSeconds = 300;
// How often a running call looks whether it has been abandoned.
constexpr int kAbandonCheckMs = 100;

std::atomic<int> normalTimeoutMs{kNormalSeconds * 1000};
std::atomic<int> transferTimeoutMs{kTransferSeconds * 1000};

// Until start-up finds a server of someone else's, the server is the one Korvel's adb calls start.
std::atomic<bool> serverIsOurs{true};

std::atomic<bool> abandoned{false};

QMutex programMutex;
QString programOverride;

QString shellResult(const QString &serial, const QStringList &command)
{
    return AdbClient::run(QStringList{"-s", serial, "shell"} + command);
}
}

void AdbClient::setAbandoned(bool value)
{
    abandoned = value;
}

void AdbClient::setTimeouts(int normalMs, int transferMs)
{
    normalTimeoutMs = normalMs;
    transferTimeoutMs = transferMs;
}

QString AdbClient::defaultProgram()
{
    static const QString path = [] {
        const QString appDir = QCoreApplication::applicationDirPath();
#ifdef Q_OS_WIN
        return appDir + "/third_party/adb/win/adb.exe";
#else
        const QString bundled = appDir + "/third_party/adb/linux/adb";
        if (QFileInfo(bundled).isExecutable())
            return bundled;
        const QString onPath = QStandardPaths::findExecutable("adb");
        return onPath.isEmpty() ? QStringLiteral("adb") : onPath;
#endif
    }();
    return path;
}

QString AdbClient::program()
{
    QMutexLocker lock(&programMutex);
    return programOverride.isEmpty() ? defaultProgram() : programOverride;
}

void AdbClient::setProgram(const QString &path)
{
    QMutexLocker lock(&programMutex);
    programOverride = path;
}

QString AdbClient::run(const QStringList &args)
{
    const bool transfer = args.contains("push") || args.contains("install");
    const int timeoutMs = transfer ? transferTimeoutMs.load() : normalTimeoutMs.load();
    const int nominalSeconds = transfer ? kTransferSeconds : kNormalSeconds;

    if (abandoned)
        return QStringLiteral("[error] adb command abandoned: Korvel is ending");
    QProcess process;
    process.start(program(), args);
    // Nothing is ever typed into adb: a command that reads its input ("shell" alone) gets its end.
    process.closeWriteChannel();
    if (!process.waitForStarted(kStartTimeoutMs))
        return QString("[error] failed to start adb: %1").arg(process.errorString());

    const QDeadlineTimer deadline(timeoutMs);
    const auto slice = [&deadline] {
        const qint64 left = deadline.remainingTime();
        return left < 0 ? kAbandonCheckMs : int(qMin<qint64>(kAbandonCheckMs, left));
    };
    while (!process.waitForFinished(slice())) {
        if (process.state() == QProcess::NotRunning)
            break;
        if (abandoned || deadline.hasExpired()) {
            process.kill();
            process.waitForFinished(kStartTimeoutMs);
            return abandoned ? QStringLiteral("[error] adb command abandoned: Korvel is ending")
                             : QString("[error] adb command timed out after %1 seconds").arg(nominalSeconds);
        }
    }

    if (process.exitCode() == 0)
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();

    QString errorText = QString::fromUtf8(process.readAllStandardError());
    if (errorText.isEmpty())
        errorText = "unknown error";
    return QString("[error] adb command failed (exit code %1): %2").arg(process.exitCode()).arg(errorText);
}

bool AdbClient::succeeded(const QStringList &args, const char *failureWord)
{
    return !run(args).contains(QLatin1String(failureWord));
}

bool AdbClient::killServer() { return succeeded({"kill-server"}); }
bool AdbClient::startServer() { return succeeded({"start-server"}); }

bool AdbClient::restartServer()
{
    if (!killServer())
        return false;
    serverIsOurs = true;
    // Another adb call (a phone's details, a scan) may start the server between the two steps; then
    // start-server fails to take the port, but the server the user asked for is running.
    return startServer() || serverListening();
}

bool AdbClient::serverListening()
{
    bool valid = false;
    const uint port = qEnvironmentVariable("ANDROID_ADB_SERVER_PORT").toUInt(&valid);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, valid && port > 0 && port <= 65535 ? quint16(port) : 5037);
    // Loopback answers at once, with a connection or a refusal.
    const bool listening = socket.waitForConnected(1000);
    socket.abort();
    return listening;
}

void AdbClient::noteServerAtStart()
{
    serverIsOurs = !serverListening();
}

bool AdbClient::killOwnServer()
{
    return serverIsOurs && killServer();
}

QList<ADBDeviceInfo> AdbClient::devices()
{
    const QString text = run({"devices", "-l"});
    if (text.contains("error"))
        return {};
    return parseDevices(text);
}

bool AdbClient::connect(const QString &serial, const QString &ip, quint16 port)
{
    // A time-out counts as success: only adb's own "failed" answer is a failure.
    return succeeded({"-s", serial, "connect", ip + ":" + QString::number(port)}, "failed");
}

bool AdbClient::disconnect(const QString &address)
{
    // adb ends with status 0 and "disconnected ADDRESS" only when it dropped that connection.
    const QString result = run({"disconnect", address});
    return !result.startsWith("[error]") && result.startsWith("disconnected");
}
bool AdbClient::usb(const QString &serial) { return succeeded({"-s", serial, "usb"}); }

bool AdbClient::tcpip(const QString &serial, quint16 port)
{
    return succeeded({"-s", serial, "tcpip", QString::number(port)});
}

bool AdbClient::reboot(const QString &serial) { return succeeded({"-s", serial, "reboot"}); }

bool AdbClient::shutdown(const QString &serial)
{
    const bool emulator = shellResult(serial, {"getprop", "ro.kernel.qemu"}) == "1";
    if (emulator)
        return succeeded({"-s", serial, "emu", "kill"});
    return succeeded({"-s", serial, "reboot", "-p"});
}

bool AdbClient::push(const QString &serial, const QString &localPath, const QString &remotePath)
{
    if (!QFileInfo::exists(localPath))
        return false;
    // Judged by adb's exit status: a path may well contain the word "error".
    return !run({"-s", serial, "push", localPath, remotePath}).startsWith(QLatin1String("[error]"));
}

bool AdbClient::removeReverse(const QString &serial, const QString &socketName)
{
    return succeeded({"-s", serial, "reverse", "--remove", "localabstract:" + socketName});
}

QList<ADBDeviceInfo> AdbClient::parseDevices(const QString &text)
{
    static const QRegularExpression lineBreak("\\r?\\n");
    static const QRegularExpression spaces("\\s+");

    QList<ADBDeviceInfo> result;
    for (const QString &rawLine : text.split(lineBreak)) {
        const QString line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith("List of devices attached"))
            continue;
        const QStringList words = line.split(spaces, Qt::SkipEmptyParts);
        if (words.size() < 2 || words.at(1) != "device")
            continue;

        ADBDeviceInfo info;
        info.adb_serial = words.first();
        info.is_usb_connection = !(info.adb_serial.contains(':') && info.adb_serial.contains('.'));
        for (const QString &word : words.mid(2)) {
            if (word.startsWith("usb:")) {
                info.is_usb_connection = true;
            } else if (word.contains('-') && word.contains('.') && word.at(0).isDigit()) {
                info.is_usb_connection = true;
            }
            if (word.startsWith("product:")) {
                info.product = word.mid(8);
            } else if (word.startsWith("model:")) {
                info.model = word.mid(6);
            } else if (word.startsWith("transport_id:")) {
                bool ok = false;
                const int id = word.mid(13).toInt(&ok);
                info.transport_id = ok ? id : -1;
            }
        }
        result.append(info);
    }
    return result;
}

DeviceInfo AdbClient::getDeviceInfo(const QString &serial)
{
    DeviceInfo info;
    const QList<QPair<QString *, const char *>> properties = {
        {&info.manufacturer, "ro.product.manufacturer"},
        {&info.model, "ro.product.model"},
        {&info.build_version, "ro.build.version.release"},
        {&info.hardward_serial, "ro.serialno"},
        {&info.build_fingerprint, "ro.build.fingerprint"},
        {&info.country_code, "ro.csc.country_code"},
        {&info.sales_code, "ro.csc.sales_code"},
        {&info.gsm_operator_alpha, "gsm.operator.alpha"},
        {&info.adb_tcp_port, "service.adb.tcp.port"},
        {&info.usb_config, "sys.usb.config"},
        {&info.ddr_size, "ro.boot.ddr_size"},
    };
    for (const auto &[field, key] : properties)
        *field = shellResult(serial, {"getprop", key});

    info.screen_size = parseScreenSize(shellResult(serial, {"wm", "size"}));
    return info;
}

QSize AdbClient::parseScreenSize(const QString &text)
{
    const QString size = QString(text).remove("Physical size: ").trimmed();
    const QStringList sides = size.split("x");
    const int width = sides.value(0).toInt();
    const int height = sides.size() > 1 ? sides.value(1).toInt() : 0;
    return QSize(width, height);
}

QString AdbClient::parseInetAddress(const QString &text, AddressListing listing)
{
    static const QRegularExpression ipAddr("inet\\s+(\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3})");
    static const QRegularExpression ifconfig("inet\\s+(?:addr:)?(\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3})");
    const QRegularExpressionMatch match = (listing == AddressListing::Ip ? ipAddr : ifconfig).match(text);
    return match.hasMatch() ? match.captured(1) : QString();
}

bool AdbClient::isAddressProperty(const QString &value)
{
    static const QRegularExpression whole("^\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}$");
    return whole.match(value).hasMatch();
}

QString AdbClient::getWifiIpAddress(const QString &serial)
{
    QString address = parseInetAddress(shellResult(serial, {"ip addr show wlan0"}), AddressListing::Ip);
    if (!address.isEmpty())
        return address;
    address = parseInetAddress(shellResult(serial, {"ifconfig wlan0"}), AddressListing::Ifconfig);
    if (!address.isEmpty())
        return address;
    const QString property = shellResult(serial, {"getprop", "dhcp.wlan0.ipaddress"});
    if (isAddressProperty(property))
        return property;
    return parseInetAddress(shellResult(serial, {"ip addr show eth0"}), AddressListing::Ip);
}

bool AdbClient::setWallpaper(const QString &serial, const QString &localImagePath)
{
    const QString remote = "/data/local/tmp/wallpaper_korvel.png";
    if (!push(serial, localImagePath, remote))
        return false;
    return !shellResult(serial, {"am", "start", "-a", "android.intent.action.ATTACH_DATA", "-c",
                                 "android.intent.category.DEFAULT", "-d", "file://" + remote, "-t",
                                 "image/*", "--grant-read-uri-permission"})
                .contains("error");
}
