// Soak: Korvel's sessions against simulated phones for a long time, with group control replaying a
// gesture every second, a screenshot of the group every minute and one phone vanishing and coming
// back every five minutes. Prints a line a minute and writes bench/results/soak.md.
#include "adbclient.h"
#include "controller.h"
#include "device.h"
#include "devicegroup.h"
#include "framehandoff.h"
#include "groupactions.h"
#include "phonefixture.h"
#include "processstats.h"
#include "screenshotwriter.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <csignal>

namespace {

volatile std::sig_atomic_t stopSignal = 0;
void requestStop(int) { stopSignal = 1; }

struct Sample
{
    int minute = 0;
    double rssMb = 0;
    int live = 0;
    int offline = 0;
    int errors = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("phones", "Simulated phones (default 8).");
    parser.addPositionalArgument("minutes", "Length of the run (default 30).");
    parser.addOption({"port", "Private adb server port.", "port", "15761"});
    parser.addOption({"output", "Markdown file for the results.", "file"});
    parser.process(app);
    const int phones = qMax(2, parser.positionalArguments().value(0, "8").toInt());
    const int minutes = qMax(1, parser.positionalArguments().value(1, "30").toInt());
    QTextStream out(stdout);

    QTemporaryDir shots;
    ScreenshotWriter::setFolder(shots.path());
    PhoneFixture fixture(quint16(parser.value("port").toInt()));
    const QList<QSize> sizes{{1080, 2400}, {720, 1600}, {1080, 2340}, {1440, 3200}};
    for (int i = 0; i < phones; ++i) {
        if (!fixture.addPhone(sizes.at(i % sizes.size()), {"--animate"})) {
            out << "soak: " << fixture.error() << Qt::endl;
            return 1;
        }
    }

    DeviceGroup group;
    group.renameTo("Soak");
    group.setMaxSize(480);
    QList<Device *> devices;
    QStringList errorLines;
    for (const auto &phone : fixture.phones()) {
        auto *device = new Device(nullptr, phone->serial());
        group.appendDevice(device);
        device->videoFrames()->addWatcher();
        QObject::connect(device, &Device::deviceMessage, device,
                         [&errorLines, device](const QString &message, MessageKind::Kind kind, int) {
                             if (kind == MessageKind::Error)
                                 errorLines << QDateTime::currentDateTime().toString("hh:mm:ss ") + device->adbConnectionSerial() + ": " + message;
                         });
        devices << device;
    }
    group.startAllDevices();
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 60000 && std::any_of(devices.cbegin(), devices.cend(), [](Device *d) { return !d->controller(); }))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    group.startGroupControl();

    QTimer gesture;
    QObject::connect(&gesture, &QTimer::timeout, &group, [&] {
        if (Controller *host = devices.first()->controller())
            host->actionSwipeUp();
    });
    gesture.start(1000);
    QTimer screenshots;
    QObject::connect(&screenshots, &QTimer::timeout, &group, [&] { group.actions()->screenshotAllDevices(); });
    screenshots.start(60000);
    int vanishing = 1;
    QTimer vanish;
    QObject::connect(&vanish, &QTimer::timeout, &group, [&] {
        // No absence starts in the last two minutes: the run ends with every phone back and streaming.
        if (clock.elapsed() > qint64(minutes) * 60000 - 120000)
            return;
        PhoneSimProcess *phone = fixture.phones().at(size_t(vanishing)).get();
        phone->ctl({"vanish"});
        QTimer::singleShot(20000, &group, [phone] { phone->ctl({"return"}); });
        vanishing = vanishing % (phones - 1) + 1;
    });
    vanish.start(5 * 60000);

    std::vector<Sample> samples;
    QTimer minute;
    const auto sample = [&] {
        Sample s;
        s.minute = int(samples.size());
        s.rssMb = double(ProcessStats::residentBytes()) / (1024.0 * 1024.0);
        for (Device *device : devices) {
            s.live += device->running() && !device->starting() ? 1 : 0;
            s.offline += device->offline() ? 1 : 0;
        }
        s.errors = int(errorLines.size());
        samples.push_back(s);
        out << "minute " << s.minute << ": RSS " << QString::number(s.rssMb, 'f', 1) << " MB, live " << s.live
            << ", offline " << s.offline << ", error lines " << s.errors << Qt::endl;
    };
    QObject::connect(&minute, &QTimer::timeout, &group, sample);
    sample();
    minute.start(60000);
    while (clock.elapsed() < qint64(minutes) * 60000 && !stopSignal)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 200);
    gesture.stop();
    vanish.stop();
    screenshots.stop();
    minute.stop();

    // Every phone must be streaming at the end: a new picture within 20 s of asking for one.
    QHash<Device *, int> before;
    for (Device *device : devices) {
        before.insert(device, device->videoFrames()->framesPublished());
        if (device->controller())
            device->controller()->resetVideo();
    }
    QElapsedTimer end;
    end.start();
    const auto allStreaming = [&] {
        return std::all_of(devices.cbegin(), devices.cend(),
                           [&](Device *d) { return d->videoFrames()->framesPublished() > before.value(d); });
    };
    while (end.elapsed() < 20000 && !allStreaming())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
    int streaming = 0;
    for (Device *device : devices)
        streaming += device->videoFrames()->framesPublished() > before.value(device) ? 1 : 0;
    sample();

    const Sample &atFive = samples.at(std::min<size_t>(5, samples.size() - 1));
    const double growth = atFive.rssMb > 0 ? (samples.back().rssMb - atFive.rssMb) / atFive.rssMb * 100 : 0;
    const QString output = parser.isSet("output") ? parser.value("output") : QString();
    QString report;
    QTextStream md(&report);
    md << "# Soak\n\n" << phones << " simulated phones through Debian's real adb, " << minutes
       << " minutes: group control replaying a swipe every second, a screenshot of the group every "
          "minute, one phone vanishing for 20 s and returning every five minutes.\n\n"
       << "| minute | RSS MB | live | offline | error lines |\n|---|---|---|---|---|\n";
    for (const Sample &s : samples)
        md << "| " << s.minute << " | " << QString::number(s.rssMb, 'f', 1) << " | " << s.live << " | " << s.offline
           << " | " << s.errors << " |\n";
    md << "\nRSS growth after the fifth minute: " << QString::number(growth, 'f', 1) << " %. Phones streaming at the end: "
       << streaming << " of " << phones << ".\n";
    if (!errorLines.isEmpty())
        md << "\nError lines:\n\n" << ("- " + errorLines.join("\n- ")) << "\n";
    out << report;
    if (!output.isEmpty()) {
        QFile file(output);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(report.toUtf8());
    }
    for (Device *device : devices)
        device->stopScrcpySession();
    return streaming == phones && growth < 5 && errorLines.isEmpty() ? 0 : 1;
}
