// Mirrors N simulated phones at once in this one process, through Debian's real adb, and sets the
// cost of the whole video path (socket, demuxer, decoder, present) beside FFmpeg's own decoder on
// the same file, measured in the same run. Run it through bench/mirror.

#include "machineinfo.h"
#include "mirrorround.h"
#include "phonefixture.h"
#include "referencedecode.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>

extern "C" {
#include <libavutil/log.h>
}

namespace {

volatile std::sig_atomic_t stopSignal = 0;

void requestStop(int)
{
    stopSignal = 1;
}

bool stopRequested()
{
    return stopSignal != 0;
}

struct Row
{
    MirrorRound::Result mirror;
    ReferenceDecode::Result reference;
    ReferenceDecode::Result startup; // the same command stopped after one picture
    qint64 fileFrames = 0;
};

double percentileMs(const std::vector<qint64> &sorted, double fraction)
{
    if (sorted.empty())
        return -1;
    // Nearest rank.
    size_t rank = size_t(std::ceil(fraction * double(sorted.size())));
    rank = std::clamp<size_t>(rank, 1, sorted.size());
    return double(sorted[rank - 1]) / 1e6;
}

QString number(double value, int decimals)
{
    return value < 0 ? QStringLiteral("n/a") : QString::number(value, 'f', decimals);
}

QStringList columns(const Row &row)
{
    const MirrorRound::Result &m = row.mirror;
    const double perPhone = m.phones > 0 && m.seconds > 0 ? m.phones * m.seconds : -1;
    const double sentFps = perPhone > 0 ? double(m.packets) / perPhone : -1;
    const double decodedFps = perPhone > 0 ? double(m.frames) / perPhone : -1;
    const double korvelMs = m.frames > 0 ? m.cpuSeconds * 1000 / double(m.frames) : -1;
    const double ffmpegMs = row.reference.ok && row.fileFrames > 0
                                ? row.reference.cpuSeconds * 1000 / double(row.fileFrames) : -1;
    // Without ffmpeg's start-up (opening, probing, first picture), the steady cost of one picture.
    const double steadyMs = ffmpegMs > 0 && row.startup.ok && row.fileFrames > 1
                                ? (row.reference.cpuSeconds - row.startup.cpuSeconds) * 1000
                                      / double(row.fileFrames - 1) : -1;
    const double adbMs = m.adbCpuSeconds >= 0 && m.frames > 0 ? m.adbCpuSeconds * 1000 / double(m.frames) : -1;
    return {
        QString::number(m.phones),
        number(sentFps, 1),
        number(decodedFps, 1),
        number(m.packets > 0 ? double(m.frames) / double(m.packets) : -1, 3),
        number(m.slowestPhoneFps, 1),
        number(korvelMs, 2),
        number(ffmpegMs, 2),
        number(korvelMs > 0 && ffmpegMs > 0 ? korvelMs / ffmpegMs : -1, 2),
        number(steadyMs, 2),
        number(korvelMs > 0 && steadyMs > 0 ? korvelMs / steadyMs : -1, 2),
        number(percentileMs(m.latenciesNs, 0.5), 2),
        number(percentileMs(m.latenciesNs, 0.99), 2),
        number(m.seconds > 0 ? m.cpuSeconds / m.seconds : -1, 2),
        number(adbMs, 2),
        m.ok ? QString() : m.error,
    };
}

const QStringList headers{
    "phones", "sent fps/phone", "decoded fps/phone", "decoded/sent", "slowest phone fps",
    "Korvel CPU ms/frame", "ffmpeg CPU ms/frame", "Korvel/ffmpeg", "ffmpeg steady ms/frame",
    "Korvel/ffmpeg steady", "latency p50 ms", "latency p99 ms", "Korvel CPU cores",
    "adb server CPU ms/frame", "note",
};

// A round with sound or recording beside a plain round of the same phones in the same run.
struct ExtraRow
{
    QString what;
    MirrorRound::Result plain;
    MirrorRound::Result extra;
};

const QStringList extraHeaders{
    "round", "phones", "plain fps/phone", "with it fps/phone", "plain CPU cores/phone", "with it CPU cores/phone", "extra CPU cores/phone",
    "plain CPU ms/frame", "with it CPU ms/frame", "extra CPU ms/frame", "sound frames/s/phone", "recorded MB/s/phone",
};

QStringList extraColumns(const ExtraRow &row)
{
    const auto coresPerPhone = [](const MirrorRound::Result &r) {
        return r.ok && r.seconds > 0 && r.phones > 0 ? r.cpuSeconds / r.seconds / r.phones : -1;
    };
    const auto msPerFrame = [](const MirrorRound::Result &r) {
        return r.ok && r.frames > 0 ? r.cpuSeconds * 1000 / double(r.frames) : -1;
    };
    const double plainCores = coresPerPhone(row.plain);
    const double extraCores = coresPerPhone(row.extra);
    const double plainMs = msPerFrame(row.plain);
    const double extraMs = msPerFrame(row.extra);
    const double phoneSeconds = row.extra.seconds * row.extra.phones;
    const auto fps = [](const MirrorRound::Result &r) {
        return r.ok && r.seconds > 0 && r.phones > 0 ? double(r.frames) / r.seconds / r.phones : -1;
    };
    return {
        row.what,
        QString::number(row.extra.phones),
        number(fps(row.plain), 1),
        number(fps(row.extra), 1),
        number(plainCores, 3),
        number(extraCores, 3),
        plainCores >= 0 && extraCores >= 0 ? QString::number(extraCores - plainCores, 'f', 3) : "n/a",
        number(plainMs, 2),
        number(extraMs, 2),
        plainMs >= 0 && extraMs >= 0 ? QString::number(extraMs - plainMs, 'f', 2) : "n/a",
        number(phoneSeconds > 0 ? double(row.extra.audioFrames) / phoneSeconds : -1, 1),
        number(phoneSeconds > 0 && row.extra.recordedBytes > 0 ? row.extra.recordedBytes / 1e6 / phoneSeconds : -1, 2),
    };
}

void writeExtras(QTextStream &out, const std::vector<ExtraRow> &extras)
{
    if (extras.empty())
        return;
    out << "\n## Sound and recording\n\n"
        << "Each round runs the same phones twice in this run: plain mirroring as above, then with the "
           "phones' sound decoded and played (\"sound\") or with every phone recording to a Matroska file "
           "(\"recording\").\n\n"
        << "| " << extraHeaders.join(" | ") << " |\n|---|";
    for (int i = 1; i < extraHeaders.size(); ++i)
        out << "---:|";
    out << "\n";
    for (const ExtraRow &row : extras) {
        out << "| " << extraColumns(row).join(" | ") << " |\n";
        if (!row.plain.ok)
            out << "\n" << row.what << ", plain round: " << row.plain.error << "\n";
        if (!row.extra.ok)
            out << "\n" << row.what << ": " << row.extra.error << "\n";
    }
    out << "\n- **fps/phone**: pictures presented per phone and second in each of the two rounds; where "
           "the round with sound or recording shows fewer, the machine (phones, adb and Korvel together) "
           "was saturated and the CPU figures compare unequal work.\n"
        << "- **CPU cores/phone**: CPU time of the process over wall time, divided by the phones; "
           "**extra** is the round with sound or recording minus the plain round.\n"
        << "- **CPU ms/frame**: CPU time over the pictures presented; for the recording round its extra is "
           "the cost of one recorded picture (packet copy, queue, Matroska muxing and file writing on the "
           "recording threads).\n"
        << "- **sound frames/s/phone**: 20 ms Opus frames decoded per phone and second (50 when nothing is "
           "lost). Decoding and playing are included: `bench/mirror` plays into a private PulseAudio "
           "null sink (without a sound server the player has no device and takes nothing).\n"
        << "- **recorded MB/s/phone**: size of the recordings over the measured phone-seconds (the files "
           "also hold the settling time, so this is an upper bound).\n";
}

void printRow(const QStringList &cells)
{
    QTextStream out(stdout);
    // Each column as wide as its heading; the note runs on.
    for (int i = 0; i < cells.size(); ++i) {
        const int width = i == cells.size() - 1 ? 0 : int(headers.value(i).size());
        out << (i ? "  " : "") << cells.at(i).rightJustified(width);
    }
    out << Qt::endl;
}

bool writeReport(const QString &path, const QStringList &machine, const QString &stream, qint64 fileFrames,
                 double seconds, const std::vector<Row> &rows, const QString &command,
                 const std::vector<ExtraRow> &extras = {})
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    QTextStream out(&file);
    out << "# Mirroring benchmark\n\n"
        << "Produced by `bench/mirror` (`" << command << "`).\n\n"
        << "## Machine\n\n";
    for (const QString &line : machine)
        out << "- " << line << "\n";
    out << "\n## Setup\n\n"
        << "- Stream: `" << QFileInfo(stream).fileName() << "`, " << fileFrames
        << " frames, 720x1600 H.264 (libx264, 4 Mbit/s, no B-frames, GOP 60) generated from FFmpeg's "
           "`testsrc2`; every simulated phone (`phonesim --stream-file`) loops it at 30 fps.\n"
        << "- Per round: N phonesim processes attached to Debian's real adb on a private server port; N "
           "`Device` sessions in this one process (max size 0, no fps cap, so full-size frames), each "
           "connected to a `YuvFboItem` that is never shown, `yuvFrameReady` -> `present` as in the user "
           "interface. After every phone has shown a picture and 2 s of settling, "
        << seconds << " s are measured. Then the sessions stop and `ffmpeg -threads 1 -i stream -f null -` "
           "decodes the same file once, in the same run (and once more with `-frames:v 1`, for its "
           "start-up).\n\n"
        << "## Results\n\n"
        << "| " << headers.mid(0, headers.size() - 1).join(" | ") << " |\n|";
    for (int i = 0; i < headers.size() - 1; ++i)
        out << "---:|";
    out << "\n";
    QStringList notes;
    for (const Row &row : rows) {
        QStringList cells = columns(row);
        const QString note = cells.takeLast();
        if (!note.isEmpty())
            notes << QString("%1 phones: %2").arg(row.mirror.phones).arg(note);
        if (!row.reference.ok)
            notes << QString("%1 phones: ffmpeg reference: %2").arg(row.mirror.phones).arg(row.reference.error);
        if (row.reference.ok && !row.startup.ok)
            notes << QString("%1 phones: ffmpeg start-up run: %2").arg(row.mirror.phones).arg(row.startup.error);
        if (row.mirror.packetsWithoutFrame > 0)
            notes << QString("%1 phones: %2 packets yielded no picture")
                         .arg(row.mirror.phones).arg(row.mirror.packetsWithoutFrame);
        out << "| " << cells.join(" | ") << " |\n";
    }
    for (const QString &note : notes)
        out << "\n" << note << "\n";
    out << "\n## What the columns mean\n\n"
        << "- **sent fps/phone**: picture packets (configuration packets not counted) that reached the "
           "decoders during the window, per phone and second. The phone paces the file at 30 fps and "
           "pauses while the PC does not read, so this is the rate the phones could actually send.\n"
        << "- **decoded fps/phone**: pictures that reached `present`, per phone and second; "
           "**decoded/sent** is their ratio (1.000 means no picture was lost or late); **slowest phone "
           "fps** is the lowest decoded rate of a single phone.\n"
        << "- **Korvel CPU ms/frame**: CPU time (user + system, all threads, "
           "`CLOCK_PROCESS_CPUTIME_ID`) of the benchmark process during the window divided by the "
           "pictures presented. The process does nothing but the mirroring sessions, so this is the whole "
           "video path per picture: socket reads, demuxing, decoding, the plane copy in `present`, plus "
           "the sessions' event-loop and control-socket overhead. The adb server and the phones are "
           "other processes and are not included.\n"
        << "- **ffmpeg CPU ms/frame**: user + system CPU time of `ffmpeg -threads 1 -i stream -f null -` "
           "(from `wait4` on that child) divided by the file's frame count; **Korvel/ffmpeg** is the ratio "
           "of the two, the overhead factor of mirroring over bare single-threaded decoding. Both are "
           "measured in the same run, so the ratio is the figure to compare between machines.\n"
        << "- **ffmpeg steady ms/frame**: the same, without ffmpeg's start-up: the CPU time of the same "
           "command stopped after one picture (`-frames:v 1`: opening, probing, the first picture) is "
           "subtracted and the rest divided by the other frames. That start-up is some 10 % of the "
           "whole run for a 300-frame file, a cost a long mirroring session does not pay per picture; "
           "**Korvel/ffmpeg steady** is the ratio against this figure.\n"
        << "- **latency p50/p99 ms**: per picture, the time from the moment the demuxer hands its packet "
           "on (a probe inserted as the demuxer's first packet sink, before the decoder) to the return "
           "of `present` for that picture; median and 99th percentile over all phones. Time a packet "
           "spends in the socket buffer while the thread is busy with other phones is not included.\n"
        << "- **Korvel CPU cores**: CPU time of the process divided by wall time (1.00 = one core busy); "
           "all decoding runs on the one thread that reads the sockets.\n"
        << "- **adb server CPU ms/frame**: CPU time of the adb server relaying the sockets (from "
           "`/proc/PID/stat`, 10 ms resolution) divided by the pictures presented.\n";
    writeExtras(out, extras);
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Mirrors N simulated phones in one process and measures the video path.");
    parser.addHelpOption();
    parser.addOption({"stream", "Pre-encoded 720x1600 H.264 Annex B file the phones loop.", "file"});
    parser.addOption({"counts", "Comma-separated phone counts, one round each.", "list", "1,4,8,16"});
    parser.addOption({"seconds", "Measured seconds per round.", "seconds", "10"});
    parser.addOption({"output", "Markdown file for the results.", "file"});
    parser.addOption({"audio-phones", "Phones of the round with sound (0: none).", "count", "16"});
    parser.addOption({"record-phones", "Phones of the recording round (0: none).", "count", "8"});
    parser.process(app);

    QTextStream err(stderr);
    const QString stream = QFileInfo(parser.value("stream")).absoluteFilePath();
    bool okSeconds = false;
    const double seconds = parser.value("seconds").toDouble(&okSeconds);
    QList<int> counts;
    for (const QString &text : parser.value("counts").split(',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const int count = text.trimmed().toInt(&ok);
        if (!ok || count < 1) {
            err << "bench_mirror: bad phone count '" << text << "'" << Qt::endl;
            return 2;
        }
        counts << count;
    }
    if (parser.value("stream").isEmpty() || !QFileInfo(stream).isFile() || !okSeconds || seconds <= 0
        || counts.isEmpty()) {
        err << "bench_mirror: needs --stream FILE (existing), --seconds > 0 and --counts" << Qt::endl;
        return 2;
    }
    const quint16 port = quint16(qEnvironmentVariableIntValue("ANDROID_ADB_SERVER_PORT"));
    if (port == 0) {
        err << "bench_mirror: set ANDROID_ADB_SERVER_PORT to a private adb server port" << Qt::endl;
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("KORVEL_BUILD_DIR"))
        qputenv("KORVEL_BUILD_DIR", QDir(app.applicationDirPath() + "/..").absolutePath().toLocal8Bit());

    struct sigaction action {};
    action.sa_handler = requestStop;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
    // Decoder chatter on a healthy stream would only hide the table.
    av_log_set_level(AV_LOG_ERROR);

    QString error;
    const qint64 fileFrames = ReferenceDecode::countFrames(stream, &error);
    if (fileFrames < 0) {
        err << "bench_mirror: " << error << Qt::endl;
        return 1;
    }
    const QStringList machine = MachineInfo::describe();
    QTextStream out(stdout);
    for (const QString &line : machine)
        out << line << Qt::endl;
    out << "Stream " << stream << ": " << fileFrames << " frames" << Qt::endl << Qt::endl;
    printRow(headers);

    const int audioPhones = parser.value("audio-phones").toInt();
    const int recordPhones = parser.value("record-phones").toInt();
    const QString command = "bench_mirror --counts " + parser.value("counts") + " --seconds "
                            + parser.value("seconds") + " --audio-phones " + QString::number(audioPhones)
                            + " --record-phones " + QString::number(recordPhones);
    std::vector<Row> rows;
    std::vector<ExtraRow> extras;
    int status = 0;
    {
        // Stops its phones and the adb server when it goes, whatever happened before.
        PhoneFixture fixture(port);
        for (int count : counts) {
            while (!stopRequested() && int(fixture.phones().size()) < count) {
                if (!fixture.addPhone({720, 1600}, {"--stream-file", stream})) {
                    err << "bench_mirror: " << fixture.error() << Qt::endl;
                    status = 1;
                    break;
                }
            }
            if (status != 0 || stopRequested())
                break;
            Row row;
            row.fileFrames = fileFrames;
            MirrorRound round(fixture, port, stopRequested);
            // A round after a larger one uses the first phones; the others sit idle, not streaming.
            row.mirror = round.run(count, seconds, 2000);
            if (stopRequested()) {
                row.reference.error = "not run";
            } else {
                row.reference = ReferenceDecode::run(stream, 0, stopRequested);
                row.startup = ReferenceDecode::run(stream, 1, stopRequested);
            }
            printRow(columns(row));
            if (!row.reference.ok)
                err << "bench_mirror: ffmpeg reference: " << row.reference.error << Qt::endl;
            if (!row.mirror.ok)
                status = 1;
            rows.push_back(std::move(row));
            if (parser.isSet("output"))
                writeReport(parser.value("output"), machine, stream, fileFrames, seconds, rows, command);
        }
        const QList<QPair<QString, int>> extraRounds{{"sound", audioPhones}, {"recording", recordPhones}};
        for (const auto &[what, count] : extraRounds) {
            if (count < 1 || status != 0 || stopRequested())
                continue;
            while (!stopRequested() && int(fixture.phones().size()) < count) {
                if (!fixture.addPhone({720, 1600}, {"--stream-file", stream})) {
                    err << "bench_mirror: " << fixture.error() << Qt::endl;
                    status = 1;
                    break;
                }
            }
            if (status != 0 || stopRequested())
                break;
            ExtraRow row;
            row.what = what;
            MirrorRound plain(fixture, port, stopRequested);
            row.plain = plain.run(count, seconds, 2000);
            MirrorRound::Options options;
            options.audio = what == "sound";
            options.record = what == "recording";
            MirrorRound extra(fixture, port, stopRequested);
            row.extra = extra.run(count, seconds, 2000, options);
            out << extraColumns(row).join("  ") << Qt::endl;
            if (!row.plain.ok || !row.extra.ok)
                status = 1;
            extras.push_back(row);
            if (parser.isSet("output"))
                writeReport(parser.value("output"), machine, stream, fileFrames, seconds, rows, command, extras);
        }
    }
    if (stopRequested()) {
        err << "bench_mirror: stopped" << Qt::endl;
        return 130;
    }
    if (parser.isSet("output"))
        out << Qt::endl << "Results written to " << parser.value("output") << Qt::endl;
    return status;
}
