// phonesim: a simulated Android phone that Debian's adb attaches over loopback TCP.
//   phonesim --port PORT [options]          runs one phone
//   phonesim ctl --port PORT COMMAND [ARG]  drives a running phone

#include "adbdaemon.h"
#include "journal.h"
#include "phone.h"
#include "phoneadmin.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QHostAddress>
#include <QRegularExpression>

#include <cstdio>

extern "C" {
#include <libavutil/log.h>
}
#include <cstring>

namespace {
int sdkFor(const QString &release)
{
    static const QMap<QString, int> levels = {{"8.0", 26}, {"8.1", 27}, {"9", 28}, {"10", 29},
                                              {"11", 30}, {"12", 31}, {"12L", 32}, {"13", 33},
                                              {"14", 34}, {"15", 35}};
    return levels.value(release, 33);
}

QString slug(const QString &text)
{
    return text.toLower().replace(QRegularExpression("[^a-z0-9]+"), "_");
}

int fail(const QString &message)
{
    std::fprintf(stderr, "phonesim: %s\n", qPrintable(message));
    return 1;
}

int runCtl(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Drives a running simulated phone.");
    parser.addHelpOption();
    parser.addOption({"port", "adb port of the phone.", "port"});
    parser.addPositionalArgument("ctl", "ctl");
    parser.addPositionalArgument("command", "clipboard TEXT | kill-server | vanish | return | rotate | quit");
    parser.addPositionalArgument("arg", "argument of the command", "[arg]");
    parser.process(app);
    QStringList positional = parser.positionalArguments();
    positional.removeFirst();   // "ctl"
    bool ok = false;
    const quint16 port = quint16(parser.value("port").toUInt(&ok));
    if (!ok || port == 0 || positional.isEmpty())
        return fail("usage: phonesim ctl --port PORT COMMAND [ARG]");
    QString answer;
    const bool done = PhoneAdmin::send(port, positional.at(0), positional.value(1), &answer);
    std::printf("%s\n", qPrintable(answer));
    return done ? 0 : 1;
}

int runPhone(int argc, char **argv)
{
    // The simulated server draws its test pattern with QPainter; no display is needed.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    // Encoders report every (re)start at info level; a rack of phones only needs their errors.
    av_log_set_level(AV_LOG_ERROR);
    QCoreApplication::setApplicationName("phonesim");

    QCommandLineParser parser;
    parser.setApplicationDescription("A simulated Android phone reached by adb over loopback TCP.");
    parser.addHelpOption();
    parser.addOptions({
        {"port", "TCP port on 127.0.0.1 where adb connects.", "port"},
        {"serial", "Serial used in the journal (default 127.0.0.1:PORT).", "serial"},
        {"model", "ro.product.model.", "model", "Pixel 7"},
        {"manufacturer", "ro.product.manufacturer.", "manufacturer", "Google"},
        {"product", "ro.product.name (default: from the model).", "product"},
        {"device", "ro.product.device (default: from the model).", "device"},
        {"size", "Physical screen size WxH in portrait.", "size", "1080x2400"},
        {"android", "Android release, e.g. 13.", "version", "13"},
        {"data-dir", "Folder for the journal and the sandbox (default: temp/phonesim-PORT-data).", "dir"},
        {"stream-file", "Pre-encoded H.264 stream played instead of the test pattern.", "file"},
        {"animate", "Keep the test pattern moving."},
        {"wifi-address", "The phone's own Wi-Fi address, 127.0.0.x.", "address"},
        {"reboot-delay", "Milliseconds a reboot keeps the phone away.", "ms", "2000"},
        {"audio", "Sound capture: on, disabled (no capture before Android 11) or error (capture fails).", "mode", "on"},
        {"fail-install", "The package manager refuses every install with this code, e.g. INSTALL_FAILED_OLDER_SDK.", "code"},
        {"slow-sync", "Pushed files arrive at no more than this many bytes per second.", "bytes"},
        {"colour-index", "Phones with different indexes get clearly different colours (default: the port).", "index"},
    });
    parser.process(app);

    bool ok = false;
    const uint portValue = parser.value("port").toUInt(&ok);
    if (!ok || portValue == 0 || portValue > 65535)
        return fail("--port PORT is required (1-65535)");
    const quint16 port = quint16(portValue);

    PhoneProfile profile;
    profile.serial = parser.isSet("serial") ? parser.value("serial") : QString("127.0.0.1:%1").arg(port);
    profile.model = parser.value("model");
    profile.manufacturer = parser.value("manufacturer");
    profile.product = parser.isSet("product") ? parser.value("product") : slug(profile.model);
    profile.device = parser.isSet("device") ? parser.value("device") : slug(profile.model);
    profile.androidVersion = parser.value("android");
    profile.sdk = sdkFor(profile.androidVersion);
    const QRegularExpressionMatch size = QRegularExpression("^(\\d+)x(\\d+)$").match(parser.value("size"));
    if (!size.hasMatch() || size.captured(1).toInt() <= 0 || size.captured(2).toInt() <= 0)
        return fail("--size must be WxH, e.g. 1080x2400");
    profile.screenSize = QSize(size.captured(1).toInt(), size.captured(2).toInt());
    profile.wifiAddress = parser.isSet("wifi-address") ? parser.value("wifi-address")
                                                       : QString("127.0.0.%1").arg(2 + port % 250);
    const QHostAddress wifi(profile.wifiAddress);
    if (wifi.protocol() != QAbstractSocket::IPv4Protocol || !wifi.isLoopback()
        || profile.wifiAddress == "127.0.0.1")
        return fail("--wifi-address must be a loopback address 127.x.y.z other than 127.0.0.1");
    profile.dataDir = QDir(parser.isSet("data-dir") ? parser.value("data-dir")
                                                    : QDir::tempPath() + QString("/phonesim-%1-data").arg(port))
                          .absolutePath();
    profile.streamFile = parser.value("stream-file");
    profile.animate = parser.isSet("animate");
    profile.audio = parser.value("audio");
    if (profile.audio != "on" && profile.audio != "disabled" && profile.audio != "error")
        return fail("--audio must be on, disabled or error");
    profile.failInstall = parser.value("fail-install");
    if (!profile.failInstall.isEmpty() && !QRegularExpression("^[A-Z0-9_]+$").match(profile.failInstall).hasMatch())
        return fail("--fail-install takes a code in capitals, e.g. INSTALL_FAILED_OLDER_SDK");
    if (parser.isSet("slow-sync")) {
        profile.slowSyncBytesPerSecond = parser.value("slow-sync").toInt(&ok);
        if (!ok || profile.slowSyncBytesPerSecond <= 0)
            return fail("--slow-sync takes a positive number of bytes per second");
    }
    profile.colourIndex = parser.isSet("colour-index") ? parser.value("colour-index").toInt(&ok) : port;
    if (!ok || profile.colourIndex < 0)
        return fail("--colour-index takes a number from 0");
    if (!QDir().mkpath(profile.dataDir))
        return fail("cannot create data folder " + profile.dataDir);

    Phone phone(profile);
    AdbDaemon daemon(&phone, port);
    daemon.setRebootDelay(parser.value("reboot-delay").toInt());
    PhoneAdmin admin(&phone, port);
    QObject::connect(&admin, &PhoneAdmin::quitRequested, &app, &QCoreApplication::quit);

    QString error;
    if (!daemon.start(&error))
        return fail(error);
    if (!admin.listen(&error))
        return fail(error);
    phone.journal().write("start", {{"port", port}, {"model", profile.model}, {"wifiAddress", profile.wifiAddress}});
    std::printf("phonesim: %s %s listening on 127.0.0.1:%u (Wi-Fi %s, data %s)\n", qPrintable(profile.manufacturer),
                qPrintable(profile.model), unsigned(port), qPrintable(profile.wifiAddress),
                qPrintable(profile.dataDir));
    std::fflush(stdout);
    return app.exec();
}
}

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "ctl") == 0)
        return runCtl(argc, argv);
    return runPhone(argc, argv);
}
