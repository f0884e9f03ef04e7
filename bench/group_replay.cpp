// How long group control takes to copy one touch from the host phone to every other phone of a
// group, and what each copy costs in CPU time. Phones are stood in for by in-process loopback TCP
// connections: the host's and the other phones' controllers write on one end, the benchmark reads
// the other end as the phone's control socket would. All click delays are 0.
//
// Usage: group_replay [results.md]

#include "controller.h"
#include "groupreplay.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QSysInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextStream>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

qint64 cpuNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

struct Phone
{
    std::unique_ptr<QTcpSocket> pcSide;
    QTcpSocket *phoneSide = nullptr;
    std::unique_ptr<Controller> controller;
    qint64 pending = 0;
};

struct Result
{
    int phones = 0;
    int iterations = 0;
    double writtenMedianUs = 0;
    double medianUs = 0;
    double p99Us = 0;
    double sendCpuPerCopyUs = 0;
    double totalCpuPerCopyUs = 0;
};

double percentile(std::vector<double> values, double fraction)
{
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, size_t(fraction * (values.size() - 1) + 0.5));
    return values.at(index);
}

QString firstLineWith(const QString &path, const QString &key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "unknown";
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key.toLatin1()))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1)).trimmed();
    }
    return "unknown";
}

Result measure(QTcpServer &listener, int phoneCount, int iterations)
{
    std::vector<std::unique_ptr<Phone>> phones;
    int outstanding = 0;
    Clock::time_point lastArrival;
    for (int i = 0; i < phoneCount; ++i) {
        auto phone = std::make_unique<Phone>();
        phone->pcSide = std::make_unique<QTcpSocket>();
        phone->pcSide->connectToHost(QHostAddress::LocalHost, listener.serverPort());
        phone->pcSide->waitForConnected(5000);
        listener.waitForNewConnection(5000);
        phone->phoneSide = listener.nextPendingConnection();
        phone->pcSide->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        phone->controller = std::make_unique<Controller>(nullptr, phone->pcSide.get());
        Phone *raw = phone.get();
        QObject::connect(raw->phoneSide, &QTcpSocket::readyRead, raw->phoneSide, [raw, &outstanding, &lastArrival] {
            raw->pending -= raw->phoneSide->readAll().size();
            if (raw->pending == 0) {
                --outstanding;
                lastArrival = Clock::now();
            }
        });
        phones.push_back(std::move(phone));
    }

    // The host is phone 0; its written messages go to the others as in a group under group control.
    const QSize hostFrame(1080, 2400);
    const QList<QSize> frames{{720, 1600}, {1080, 2340}, {1440, 3200}, {1080, 2400}};
    QList<GroupReplay::Target> targets;
    for (int i = 1; i < phoneCount; ++i)
        targets.append({phones.at(i)->controller.get(), frames.at(i % frames.size())});
    QObject::connect(phones.front()->controller.get(), &Controller::messageSent, phones.front()->controller.get(),
                     [&targets, hostFrame](const ControlMsg &msg) { GroupReplay::replay(msg, hostFrame, targets); });

    const int warmup = 50;
    std::vector<double> latencies;
    std::vector<double> written;
    qint64 sendCpu = 0;
    qint64 totalCpu = 0;
    for (int i = 0; i < warmup + iterations; ++i) {
        for (auto &phone : phones)
            phone->pending = 32;
        outstanding = phoneCount;
        ControlMsg touch = ControlMsg::injectTouch(quint64(-2), i % 2 ? ControlMsg::TouchUp : ControlMsg::TouchDown,
                                                   1, 1, {QPoint(540, 1200), hostFrame}, i % 2 ? 0.0f : 1.0f);
        const qint64 cpuStart = cpuNanoseconds();
        const Clock::time_point start = Clock::now();
        phones.front()->controller->send(touch);
        const Clock::time_point sent = Clock::now();
        const qint64 cpuSent = cpuNanoseconds();
        while (outstanding > 0)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        const qint64 cpuEnd = cpuNanoseconds();
        if (i < warmup)
            continue;
        latencies.push_back(std::chrono::duration<double, std::micro>(lastArrival - start).count());
        written.push_back(std::chrono::duration<double, std::micro>(sent - start).count());
        sendCpu += cpuSent - cpuStart;
        totalCpu += cpuEnd - cpuStart;
    }

    Result result;
    result.phones = phoneCount;
    result.iterations = iterations;
    result.writtenMedianUs = percentile(written, 0.5);
    result.medianUs = percentile(latencies, 0.5);
    result.p99Us = percentile(latencies, 0.99);
    // With one phone nothing is replayed; the figures are then per host write.
    const double copies = double(iterations) * std::max(1, phoneCount - 1);
    result.sendCpuPerCopyUs = sendCpu / 1000.0 / copies;
    result.totalCpuPerCopyUs = totalCpu / 1000.0 / copies;
    return result;
}

}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QString output = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                    : QString(KORVEL_BENCH_RESULTS_DIR) + "/group_replay.md";
    QTcpServer listener;
    listener.setMaxPendingConnections(200);
    if (!listener.listen(QHostAddress::LocalHost, 0)) {
        std::fprintf(stderr, "cannot listen on 127.0.0.1: %s\n", qPrintable(listener.errorString()));
        return 1;
    }

    const QString phonesText = "in-process loopback TCP connections standing in for every phone "
                               "(adb and simulated phones are not used: 50 or 100 of them cannot run here)";
    std::printf("group_replay: phones are %s\n", qPrintable(phonesText));
    std::vector<Result> results;
    for (const int count : {1, 10, 50, 100}) {
        results.push_back(measure(listener, count, count >= 50 ? 500 : 1000));
        const Result &r = results.back();
        std::printf("%3d phones: all written %.1f us, received median %.1f us, p99 %.1f us, CPU per copy %.2f us (send path) / %.2f us (incl. receipt)\n",
                    r.phones, r.writtenMedianUs, r.medianUs, r.p99Us, r.sendCpuPerCopyUs, r.totalCpuPerCopyUs);
    }

    QFile file(output);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(output));
        return 1;
    }
    QTextStream md(&file);
    md << "# Group control replay: host write to last phone's receipt\n\n";
    md << "Run on " << QDateTime::currentDateTime().toString(Qt::ISODate) << " by `bench/group_replay`.\n\n";
    md << "## Machine\n\n";
    md << "- CPUs (nproc): " << QThread::idealThreadCount() << "\n";
    md << "- CPU model: " << firstLineWith("/proc/cpuinfo", "model name") << "\n";
    md << "- Memory: " << firstLineWith("/proc/meminfo", "MemTotal") << "\n";
    md << "- System: " << QSysInfo::prettyProductName() << ", kernel " << QSysInfo::kernelVersion() << ", Qt "
       << qVersion() << "\n";
    md << "- Note: a machine shared with other builds and tests; figures vary from run to run.\n\n";
    md << "## Method\n\n";
    md << "- Phones: " << phonesText << ".\n";
    md << "- Phone 0 is the host. Its controller writes a 32-byte touch message on its socket; the group "
          "replay copies it, rescaled, to every other phone's controller, each with a click delay of 0, "
          "so each copy is written at once.\n";
    md << "- Latency: from just before the host's controller writes the touch until the last phone's socket "
          "(the host's included) has received all 32 bytes of its copy, all in one thread, the receiving "
          "sockets served by the same event loop. \"All copies written\" stops the clock when the host's "
          "write call returns, that is when the last copy has been handed to the kernel. Warm-up: 50 "
          "messages, not counted.\n";
    md << "- CPU per replayed message: process CPU time divided by the number of copies (phones - 1; "
          "with 1 phone nothing is replayed and the figure is per host write). \"Send path\" covers the "
          "host write and all replays; \"incl. receipt\" adds the reading of every copy at the receiving end.\n\n";
    md << "## Results (measured side by side in one run)\n\n";
    md << "| Phones | Messages | All copies written, median (us) | Median latency (us) | p99 latency (us) | CPU per copy, send path (us) | "
          "CPU per copy, incl. receipt (us) |\n";
    md << "|---:|---:|---:|---:|---:|---:|---:|\n";
    for (const Result &r : results) {
        md << "| " << r.phones << " | " << r.iterations << " | " << QString::number(r.writtenMedianUs, 'f', 1)
           << " | " << QString::number(r.medianUs, 'f', 1) << " | "
           << QString::number(r.p99Us, 'f', 1) << " | " << QString::number(r.sendCpuPerCopyUs, 'f', 2) << " | "
           << QString::number(r.totalCpuPerCopyUs, 'f', 2) << " |\n";
    }
    const Result &one = results.front();
    const Result &hundred = results.back();
    md << "\nMedian latency, 100 phones over 1 phone: " << QString::number(hundred.medianUs / one.medianUs, 'f', 1)
       << "x; per phone added: " << QString::number((hundred.medianUs - one.medianUs) / 99.0, 'f', 2) << " us.\n";
    std::printf("results written to %s\n", qPrintable(output));
    return 0;
}
