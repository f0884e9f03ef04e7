#include "shellcommands.h"

#include "adbdaemon.h"
#include "journal.h"
#include "phone.h"
#include "phoneproperties.h"
#include "shellline.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>

namespace {
QByteArray line(const QString &text)
{
    return (text + '\n').toUtf8();
}

QString sha256Of(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return QString::fromLatin1(hash.result().toHex());
}

// Directories every phone has at the top level, shown next to whatever the sandbox holds.
const QStringList rootEntries = {"acct", "apex", "bin", "cache", "config", "d", "data", "dev",
                                 "etc", "metadata", "mnt", "odm", "oem", "proc", "product",
                                 "sdcard", "storage", "sys", "system", "vendor"};
}

ShellCommands::ShellCommands(AdbDaemon &daemon)
    : m_daemon(daemon)
    , m_phone(*daemon.phone())
{
}

bool ShellCommands::isServerLaunch(const QString &commandLine)
{
    return commandLine.contains("app_process") && commandLine.contains("com.genymobile.scrcpy.Server");
}

ShellCommands::Result ShellCommands::run(const QString &commandLine)
{
    bool ok = true;
    const QList<ShellLine::Command> commands = ShellLine::parse(commandLine, &ok);
    if (!ok)
        return failure("/system/bin/sh: syntax error: unterminated quoted string", 1);
    Result total;
    for (const ShellLine::Command &command : commands) {
        if ((command.joiner == "&&" && total.exitCode != 0)
            || (command.joiner == "||" && total.exitCode == 0))
            continue;
        const Result one = runCommand(command.words);
        total.out += one.out;
        total.err += one.err;
        total.exitCode = one.exitCode;
    }
    return total;
}

ShellCommands::Result ShellCommands::runCommand(QStringList words)
{
    // Leading VAR=value assignments only set the environment of the command.
    while (!words.isEmpty() && QRegularExpression("^[A-Za-z_][A-Za-z0-9_]*=").match(words.first()).hasMatch())
        words.removeFirst();
    // Redirections are accepted and ignored.
    static const QRegularExpression redirection("^[0-9]?(>>|>|<)(&[0-9])?(.*)$");
    for (int i = 0; i < words.size();) {
        const QRegularExpressionMatch match = redirection.match(words.at(i));
        if (!match.hasMatch()) {
            ++i;
            continue;
        }
        const bool targetFollows = match.captured(2).isEmpty() && match.captured(3).isEmpty();
        words.removeAt(i);
        if (targetFollows && i < words.size())
            words.removeAt(i);
    }
    if (words.isEmpty())
        return {};
    const QString name = words.takeFirst();
    const QStringList &args = words;

    if (name == "getprop")
        return getprop(args);
    if (name == "wm")
        return wm(args);
    if (name == "ip")
        return ip(args);
    if (name == "ifconfig")
        return ifconfig(args);
    if (name == "pm")
        return pm(args);
    if (name == "am")
        return am(args);
    if (name == "pkill")
        return pkill(args);
    if (name == "input")
        return input(args);
    if (name == "ls")
        return ls(args);
    if (name == "cat")
        return cat(args);
    if (name == "rm")
        return rm(args);
    if (name == "pwd")
        return {line("/"), {}, 0};
    if (name == "echo")
        return {line(args.join(' ')), {}, 0};
    if (name == "true" || name == "export")
        return {};
    if (name == "exec")
        return runCommand(args);
    if (name == "false")
        return {{}, {}, 1};
    if (name == "id")
        return {line("uid=2000(shell) gid=2000(shell) groups=2000(shell),1004(input),1007(log),1011(adb),1015(sdcard_rw),3003(inet) context=u:r:shell:s0"), {}, 0};
    if (name == "whoami")
        return {line("shell"), {}, 0};
    if (name == "exit")
        return {{}, {}, args.isEmpty() ? 0 : args.first().toInt()};
    if (name == "sh" && args.size() >= 2 && args.first() == "-c")
        return run(args.at(1));
    return failure(QString("/system/bin/sh: %1: inaccessible or not found").arg(name), 127);
}

ShellCommands::Result ShellCommands::getprop(const QStringList &args)
{
    const QMap<QString, QString> props =
        PhoneProperties::build(m_phone.profile(), m_daemon.adbPort(), m_daemon.tcpipPort());
    if (args.isEmpty()) {
        QByteArray out;
        for (auto it = props.begin(); it != props.end(); ++it)
            out += line(QString("[%1]: [%2]").arg(it.key(), it.value()));
        return {out, {}, 0};
    }
    return {line(props.value(args.first(), args.value(1))), {}, 0};
}

ShellCommands::Result ShellCommands::wm(const QStringList &args)
{
    const QSize size = m_phone.profile().screenSize;
    if (args.value(0) == "size" && args.size() == 1)
        return {line(QString("Physical size: %1x%2").arg(size.width()).arg(size.height())), {}, 0};
    if (args.value(0) == "density" && args.size() == 1) {
        const auto props = PhoneProperties::build(m_phone.profile(), m_daemon.adbPort(), 0);
        return {line("Physical density: " + props.value("ro.sf.lcd_density")), {}, 0};
    }
    return failure("Error: unknown command '" + args.join(' ') + "'", 255);
}

QString ShellCommands::macAddress() const
{
    const QStringList octets = m_phone.profile().wifiAddress.split('.');
    const int last = octets.value(3).toInt();
    return QString("6a:1f:3c:5e:%1:%2").arg(last / 256, 2, 16, QChar('0')).arg(last % 256, 2, 16, QChar('0'));
}

ShellCommands::Result ShellCommands::ip(const QStringList &args)
{
    QStringList rest = args;
    while (!rest.isEmpty() && rest.first().startsWith('-'))
        rest.removeFirst();   // -4, -f inet and the like
    rest.removeAll("inet");
    const QString object = rest.value(0);
    if (object != "addr" && object != "a" && object != "address")
        return failure(QString("Object \"%1\" is unknown, try \"ip help\".").arg(object), 255);
    QString device;
    const int show = rest.indexOf("show");
    if (show >= 0)
        device = rest.value(show + 1);
    if (device == "dev")
        device = rest.value(show + 2);

    const QString address = m_phone.profile().wifiAddress;
    const QString mac = macAddress();
    const QString lo = "1: lo: <LOOPBACK,UP,LOWER_UP> mtu 65536 qdisc noqueue state UNKNOWN group default qlen 1000\n"
                       "    link/loopback 00:00:00:00:00:00 brd 00:00:00:00:00:00\n"
                       "    inet 127.0.0.1/8 scope host lo\n"
                       "       valid_lft forever preferred_lft forever\n";
    const QString wlan = QString("30: wlan0: <BROADCAST,MULTICAST,UP,LOWER_UP> mtu 1500 qdisc mq state UP group default qlen 3000\n"
                                 "    link/ether %1 brd ff:ff:ff:ff:ff:ff\n"
                                 "    inet %2/8 brd 127.255.255.255 scope global wlan0\n"
                                 "       valid_lft forever preferred_lft forever\n"
                                 "    inet6 fe80::681f:3cff:fe5e:%3/64 scope link\n"
                                 "       valid_lft forever preferred_lft forever\n")
                             .arg(mac, address, mac.right(5).remove(':'));
    if (device.isEmpty())
        return {(lo + wlan).toUtf8(), {}, 0};
    if (device == "wlan0")
        return {wlan.toUtf8(), {}, 0};
    if (device == "lo")
        return {lo.toUtf8(), {}, 0};
    return failure(QString("Device \"%1\" does not exist.").arg(device), 1);
}

ShellCommands::Result ShellCommands::ifconfig(const QStringList &args)
{
    const QString device = args.value(0, "wlan0");
    if (device != "wlan0")
        return failure(QString("ifconfig: %1: No such device").arg(device), 1);
    const QString out = QString("wlan0     Link encap:Ethernet  HWaddr %1  Driver cnss_pci\n"
                                "          inet addr:%2  Bcast:127.255.255.255  Mask:255.0.0.0 \n"
                                "          inet6 addr: fe80::681f:3cff:fe5e:%3/64 Scope: Link\n"
                                "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
                                "          RX packets:182734 errors:0 dropped:0 overruns:0 frame:0 \n"
                                "          TX packets:90211 errors:0 dropped:0 overruns:0 carrier:0 \n"
                                "          collisions:0 txqueuelen:3000 \n"
                                "          RX bytes:211873264 TX bytes:10933471 \n\n")
                            .arg(macAddress(), m_phone.profile().wifiAddress, macAddress().right(5).remove(':'));
    return {out.toUtf8(), {}, 0};
}

ShellCommands::Result ShellCommands::pm(const QStringList &args)
{
    if (args.value(0) == "list" && args.value(1) == "packages")
        return {"package:com.android.settings\npackage:com.android.systemui\npackage:org.autojs.autojs6\n", {}, 0};
    if (args.value(0) != "install")
        return failure("Unknown command: " + args.value(0), 255);
    QString path;
    for (int i = 1; i < args.size(); ++i) {
        if (!args.at(i).startsWith('-'))
            path = args.at(i);
    }
    if (path.isEmpty())
        return failure("Error: must either specify a package size or an APK file", 1);
    const QString local = m_phone.sandboxPath(devicePath(path));
    QJsonObject entry{{"path", devicePath(path)}};
    QFile file(local);
    if (!file.open(QIODevice::ReadOnly)) {
        entry.insert("ok", false);
        m_phone.journal().write("install", entry);
        return {line(QString("Failure [INSTALL_FAILED_INVALID_URI: Can't open file: %1]").arg(path)), {}, 1};
    }
    const bool zip = file.read(2) == "PK";
    file.close();
    const QString refusal = m_phone.profile().failInstall;
    entry.insert("sha256", sha256Of(local));
    entry.insert("ok", zip && refusal.isEmpty());
    m_phone.journal().write("install", entry);
    if (!zip)
        return {line(QString("Failure [INSTALL_FAILED_INVALID_APK: Failed to parse %1: not a valid zip archive]").arg(path)), {}, 1};
    if (!refusal.isEmpty())
        return {line(QString("Failure [%1: refused on request]").arg(refusal)), {}, 1};
    return {"Success\n", {}, 0};
}

ShellCommands::Result ShellCommands::am(const QStringList &args)
{
    m_phone.journal().write("am", {{"args", QJsonArray::fromStringList(args)}});
    if (args.value(0) == "force-stop" || args.value(0) == "kill")
        return {};
    if (args.value(0) != "start" && args.value(0) != "startservice" && args.value(0) != "broadcast")
        return failure("Error: Unknown command: " + args.value(0), 255);
    QStringList parts;
    static const QList<QPair<QString, QString>> options = {
        {"-a", "act=%1"}, {"-c", "cat=[%1]"}, {"-d", "dat=%1"}, {"-t", "typ=%1"}, {"-n", "cmp=%1"}};
    for (const auto &option : options) {
        const int at = args.indexOf(option.first);
        if (at >= 0 && at + 1 < args.size())
            parts << option.second.arg(args.at(at + 1));
    }
    if (args.contains("--grant-read-uri-permission"))
        parts << "flg=0x1";
    const QString verb = args.value(0) == "broadcast" ? "Broadcasting" : "Starting";
    QByteArray out = line(QString("%1: Intent { %2 }").arg(verb, parts.join(' ')));
    if (args.value(0) == "broadcast")
        out += "Broadcast completed: result=0\n";
    return {out, {}, 0};
}

ShellCommands::Result ShellCommands::pkill(const QStringList &args)
{
    QStringList rest = args;
    while (!rest.isEmpty() && rest.first().startsWith('-'))
        rest.removeFirst();
    if (rest.isEmpty())
        return failure("pkill: Need 1 argument", 1);
    return {{}, {}, m_daemon.killServers(rest.first()) > 0 ? 0 : 1};
}

ShellCommands::Result ShellCommands::input(const QStringList &args)
{
    static const QStringList known = {"keyevent", "tap", "swipe", "text", "draganddrop", "press", "roll"};
    if (!known.contains(args.value(0)))
        return failure("Error: Unknown command: " + args.value(0), 1);
    m_phone.journal().write("input", {{"args", QJsonArray::fromStringList(args)}});
    return {};
}

ShellCommands::Result ShellCommands::ls(const QStringList &args)
{
    QStringList paths;
    for (const QString &arg : args) {
        if (!arg.startsWith('-'))
            paths << arg;
    }
    if (paths.isEmpty())
        paths << "/";
    Result result;
    for (const QString &path : paths) {
        const QString device = devicePath(path);
        const QFileInfo info(m_phone.sandboxPath(device));
        if (info.isDir() || device == "/") {
            QStringList names = QDir(info.filePath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
            if (device == "/")
                names += rootEntries;
            names.removeDuplicates();
            names.sort();
            if (paths.size() > 1)
                result.out += line(path + ":");
            for (const QString &name : names)
                result.out += line(name);
        } else if (info.exists()) {
            result.out += line(path);
        } else {
            result.err += line(QString("ls: %1: No such file or directory").arg(path));
            result.exitCode = 1;
        }
    }
    return result;
}

ShellCommands::Result ShellCommands::cat(const QStringList &args)
{
    Result result;
    for (const QString &path : args) {
        QFile file(m_phone.sandboxPath(devicePath(path)));
        if (!file.open(QIODevice::ReadOnly)) {
            result.err += line(QString("cat: %1: No such file or directory").arg(path));
            result.exitCode = 1;
            continue;
        }
        result.out += file.readAll();
    }
    return result;
}

ShellCommands::Result ShellCommands::rm(const QStringList &args)
{
    Result result;
    const bool force = args.contains("-f") || args.contains("-rf");
    for (const QString &path : args) {
        if (path.startsWith('-'))
            continue;
        const QString local = m_phone.sandboxPath(devicePath(path));
        const QFileInfo info(local);
        const bool removed = info.isDir() ? QDir(local).removeRecursively() : QFile::remove(local);
        if (!removed && !force) {
            result.err += line(QString("rm: %1: No such file or directory").arg(path));
            result.exitCode = 1;
        }
    }
    return result;
}

QString ShellCommands::devicePath(const QString &path) const
{
    // The shell always starts in "/".
    return QDir::cleanPath(path.startsWith('/') ? path : "/" + path);
}

ShellCommands::Result ShellCommands::failure(const QString &text, int exitCode)
{
    return {{}, line(text), exitCode};
}
