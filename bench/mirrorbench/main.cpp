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
#include <QQuickWindow>
#include <QSize>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <functional>

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
        number(m.seconds > 0 ? m.guiCpuSeconds / m.seconds : -1, 3),
        number(m.latenessP99Ms, 2),
        number(m.rssPerPhoneMb, 1),
        number(m.firstPictureMedianMs, 0),
        number(m.uploads >= 0 && perPhone > 0 ? double(m.uploads) / perPhone : -1, 1),
        number(m.renderCpuSeconds >= 0 && m.seconds > 0 ? m.renderCpuSeconds / m.seconds : -1, 2),
        m.drawn ? QString("drawn") : QString("decode"),
        m.ok ? QString() : m.error,
    };
}

// The same phones mirrored twice in a row, once plainly and once with sound or a recording, so that
// the difference is measured under the same load of a shared machine.
struct Comparison
{
    QString kind; // "sound" or "recording"
    MirrorRound::Result plain;
    MirrorRound::Result with;
};

const QStringList comparisonHeaders{
    "phones", "sent fps/phone", "decoded fps/phone", "decoded/sent", "slowest phone fps", "round",
    "Korvel CPU cores/phone", "Korvel CPU ms/frame", "CPU/phone vs plain", "extra CPU ms/frame",
    "sound frames/s/phone", "recorded MB/s/phone",
};

QStringList comparisonColumns(const MirrorRound::Result &m, const MirrorRound::Result *plain, const QString &round)
{
    const double perPhone = m.phones > 0 && m.seconds > 0 ? m.phones * m.seconds : -1;
    const auto coresPerPhone = [](const MirrorRound::Result &r) {
        return r.phones > 0 && r.seconds > 0 ? r.cpuSeconds / r.seconds / r.phones : -1;
    };
    const auto msPerFrame = [](const MirrorRound::Result &r) {
        return r.frames > 0 ? r.cpuSeconds * 1000 / double(r.frames) : -1;
    };
    const bool compared = plain && coresPerPhone(*plain) > 0 && coresPerPhone(m) > 0;
    return {
        QString::number(m.phones),
        number(perPhone > 0 ? double(m.packets) / perPhone : -1, 1),
        number(perPhone > 0 ? double(m.frames) / perPhone : -1, 1),
        number(m.packets > 0 ? double(m.frames) / double(m.packets) : -1, 3),
        number(m.slowestPhoneFps, 1),
        round,
        number(coresPerPhone(m), 3),
        number(msPerFrame(m), 2),
        compared ? number(coresPerPhone(m) / coresPerPhone(*plain), 2) : QString(),
        compared && msPerFrame(*plain) > 0 ? QString::number(msPerFrame(m) - msPerFrame(*plain), 'f', 2) : QString(),
        number(m.audioFrames >= 0 && perPhone > 0 ? double(m.audioFrames) / perPhone : -1, 1),
        number(m.recordedBytes > 0 && perPhone > 0 ? double(m.recordedBytes) / 1048576.0 / perPhone : -1, 2),
    };
}

void writeComparisons(QTextStream &out, const std::vector<Comparison> &comparisons, const QString &kind)
{
    out << "| " << comparisonHeaders.join(" | ") << " |\n|";
    for (int i = 0; i < comparisonHeaders.size(); ++i)
        out << (i == 5 ? "---|" : "---:|");
    out << "\n";
    QStringList notes;
    for (const Comparison &c : comparisons) {
        if (c.kind != kind)
            continue;
        out << "| " << comparisonColumns(c.plain, nullptr, "plain").join(" | ") << " |\n";
        out << "| " << comparisonColumns(c.with, &c.plain, kind).join(" | ") << " |\n";
        for (const MirrorRound::Result *r : {&c.plain, &c.with}) {
            if (!r->ok)
                notes << QString("%1 phones: %2").arg(r->phones).arg(r->error);
        }
    }
    for (const QString &note : notes)
        out << "\n" << note << "\n";
}

const QStringList headers{
    "phones", "sent fps/phone", "decoded fps/phone", "decoded/sent", "slowest phone fps",
    "Korvel CPU ms/frame", "ffmpeg CPU ms/frame", "Korvel/ffmpeg", "ffmpeg steady ms/frame",
    "Korvel/ffmpeg steady", "latency p50 ms", "latency p99 ms", "Korvel CPU cores",
    "adb server CPU ms/frame", "GUI thread busy", "lateness p99 ms", "RSS MB/phone",
    "first picture median ms", "drawn fps/phone", "render+llvmpipe cores", "round", "note",
};

// What a preset mirrors: the stream the script generates for it, and the session settings.
struct Preset
{
    QString name;
    QString counts;
    QSize phoneScreen;
    int maxSize = 0;
    int bitRate = 0;
    QString stream;
};

Preset presetNamed(const QString &name)
{
    if (name == "grid")
        return {"grid", "16,32,64,100", {1080, 2400}, 720, 2000000,
                "328x720 H.264 (libx264, constrained baseline, 2 Mbit/s, GOP 60), the grid cell of a 1080x2400 "
                "phone at the group default max size 720"};
    return {"full", "1,8,16", {720, 1600}, 0, 4000000,
            "720x1600 H.264 (libx264, 4 Mbit/s, no B-frames, GOP 60), full size (max size 0)"};
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

constexpr int SoundPhones = 16;
constexpr int RecordPhones = 8;

bool writeReport(const QString &path, const QStringList &machine, const QString &stream, qint64 fileFrames,
                 double seconds, const std::vector<Row> &rows, const QString &command, const Preset &preset,
                 const QSize &cellSize, const std::vector<Comparison> &comparisons, const QString &soundStream)
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
        << " frames, " << preset.stream << ", generated from FFmpeg's "
           "`testsrc2`; every simulated phone (`phonesim --stream-file`) loops it at 30 fps.\n"
        << "- Per round: N phonesim processes attached to Debian's real adb on a private server port; N "
           "`Device` sessions in this one process (max size " << preset.maxSize << ", bit rate "
        << preset.bitRate << ", no fps cap), each reading, demuxing and decoding on its own media thread "
           "into its `FrameHandoff`. **decode** rounds: the harness watches every handoff and nothing is "
           "drawn. **drawn** rounds: one `QQuickWindow` (xcb under Xvfb, OpenGL through Mesa llvmpipe) "
           "holds a grid of real `YuvFboItem`s of " << cellSize.width() << "x" << cellSize.height()
        << " (the grid's cell), each with `source` set to its phone's handoff; the items watch while "
           "shown, as in the application. After every phone has shown a picture and 2 s of settling, "
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
        if (row.mirror.firstPictureMaxMs >= 0)
            notes << QString("%1 phones, %2: slowest first picture %3 ms")
                         .arg(row.mirror.phones).arg(row.mirror.drawn ? "drawn" : "decode")
                         .arg(row.mirror.firstPictureMaxMs, 0, 'f', 0);
        if (row.mirror.shownItems >= 0 && row.mirror.shownItems != row.mirror.phones)
            notes << QString("%1 phones, drawn: only %2 items shown").arg(row.mirror.phones).arg(row.mirror.shownItems);
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
           "every phone reads, demuxes and decodes on its own media thread.\n"
        << "- **adb server CPU ms/frame**: CPU time of the adb server relaying the sockets (from "
           "`/proc/PID/stat`, 10 ms resolution) divided by the pictures presented.\n"
        << "- **GUI thread busy**: CPU time of the main thread (`/proc/self/task/PID/stat`) over the "
           "window divided by wall time.\n"
        << "- **lateness p99 ms**: 99th percentile of how late a 5 ms `Qt::PreciseTimer` on the GUI thread "
           "fired during the window.\n"
        << "- **RSS MB/phone**: growth of the process's VmRSS from before the sessions were created to the "
           "end of the window, divided by the phones (the phonesim processes are not included).\n"
        << "- **first picture median ms**: per phone, from `startScrcpySession()` to the first "
           "`frameAvailable` seen on the GUI thread; median over the phones, all started at once (the "
           "slowest phone is in the notes).\n"
        << "- **drawn fps/phone**: pictures the shown `YuvFboItem`s uploaded (`uploads()`), per phone and "
           "second; **render+llvmpipe cores**: CPU time of Qt's render thread and Mesa's llvmpipe threads "
           "over wall time. Drawn rounds only.\n"
        << "- **round**: decode (nothing drawn) or drawn (in a window under Xvfb).\n";
    if (!comparisons.empty()) {
        out << "\n## Sound\n\n"
            << "The same " << SoundPhones << " phones at the grid preset (`" << QFileInfo(soundStream).fileName()
            << "`, max size 720, 2 Mbit/s, every picture decoded), first mirrored plainly, then with sound: "
               "each phone also sends its 48 kHz Opus tone, which its media thread decodes and plays into a "
               "private PulseAudio daemon's null sink. Each pair runs back to back, so the ratio compares the "
               "two under the same load of the shared machine.\n\n";
        writeComparisons(out, comparisons, "sound");
        out << "\n## Recording\n\n"
            << "The first " << RecordPhones << " phones of the run above (`" << QFileInfo(stream).fileName()
            << "`), first mirrored plainly, then each recording its stream to a Matroska file on its "
               "\"VideoRecorderThread\" while still decoding every picture. Pairs back to back as above.\n\n";
        writeComparisons(out, comparisons, "recording");
        out << "\n- **round**: plain mirroring, or the same phones with sound or recording.\n"
            << "- **Korvel CPU cores/phone**: CPU time of the process over the window's wall time, divided by "
               "the phones; **CPU/phone vs plain**: its ratio to the plain round just before, the figure to "
               "read (the absolute values move with the machine's other load).\n"
            << "- **Korvel CPU ms/frame**: CPU time over the pictures presented; **extra CPU ms/frame**: the "
               "difference to the plain round, for recording the cost of one recorded picture (packet copy, "
               "queue, Matroska muxing and writing; no sound in these rounds).\n"
            << "- **sound frames/s/phone**: 20 ms Opus frames decoded per phone and second (50 when every "
               "frame is decoded).\n"
            << "- **recorded MB/s/phone**: size of the recordings over the measured phone-seconds (the files "
               "also hold the settling time, so this is an upper bound).\n";
    }
    bool anyThreads = false;
    for (const Row &row : rows)
        anyThreads = anyThreads || !row.mirror.busiestThreads.isEmpty();
    if (anyThreads) {
        out << "\n## Busiest threads of the process (cores over the window)\n\n";
        for (const Row &row : rows)
            out << "- " << row.mirror.phones << " phones, " << (row.mirror.drawn ? "drawn" : "decode") << ": "
                << row.mirror.busiestThreads.join(", ") << "\n";
    }
    return true;
}

int compareRounds(PhoneFixture &fixture, quint16 port, const Preset &preset, const QString &stream, int phones,
                  const QString &kind, int pairs, double seconds, std::vector<Comparison> &comparisons,
                  const std::function<void()> &report)
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    while (!stopRequested() && int(fixture.phones().size()) < phones) {
        if (!fixture.addPhone(preset.phoneScreen, {"--stream-file", stream})) {
            err << "bench_mirror: " << fixture.error() << Qt::endl;
            return 1;
        }
    }
    out << Qt::endl << kind << ", " << phones << " phones (" << QFileInfo(stream).fileName() << ")" << Qt::endl;
    const auto print = [&out](const QStringList &cells) {
        for (int i = 0; i < cells.size(); ++i)
            out << (i ? "  " : "") << cells.at(i).rightJustified(int(comparisonHeaders.at(i).size()));
        out << Qt::endl;
    };
    print(comparisonHeaders);
    for (int pair = 0; pair < pairs && !stopRequested(); ++pair) {
        Comparison comparison{kind, {}, {}};
        for (const bool with : {false, true}) {
            MirrorRound::Options options;
            options.maxSize = preset.maxSize;
            options.bitRate = preset.bitRate;
            options.audio = with && kind == "sound";
            options.record = with && kind == "recording";
            MirrorRound round(fixture, port, stopRequested);
            (with ? comparison.with : comparison.plain) = round.run(phones, seconds, 2000, options);
        }
        print(comparisonColumns(comparison.plain, nullptr, "plain"));
        print(comparisonColumns(comparison.with, &comparison.plain, kind));
        const bool ok = comparison.plain.ok && comparison.with.ok;
        comparisons.push_back(std::move(comparison));
        report();
        if (!ok)
            return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    // The drawn rounds render through OpenGL, as the application does.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Mirrors N simulated phones in one process and measures the video path.");
    parser.addHelpOption();
    parser.addOption({"stream", "Pre-encoded 720x1600 H.264 Annex B file the phones loop.", "file"});
    parser.addOption({"counts", "Comma-separated phone counts, one round each (default: the preset's).", "list"});
    parser.addOption({"preset", "grid (328x720, 2 Mbit/s, 16..100 phones) or full (full size, 1..16 phones).",
                      "name", "full"});
    parser.addOption({"drawn", "After each decode round, a round with the cells drawn in a window."});
    parser.addOption({"decode-only", "With --drawn: skip the decode rounds."});
    parser.addOption({"cell", "Cell size of the drawn grid.", "WxH", "220x483"});
    parser.addOption({"columns", "Cells per row of the drawn grid.", "n", "10"});
    parser.addOption({"seconds", "Measured seconds per round.", "seconds", "10"});
    parser.addOption({"sound-stream", "Full preset: after the mirroring rounds, 16 phones loop this grid-size "
                                      "stream, each measured plainly and with sound (needs a sound server); "
                                      "then 8 phones plainly and recording.", "file"});
    parser.addOption({"pairs", "Plain and sound (or recording) rounds measured back to back, per kind.", "n", "2"});
    parser.addOption({"output", "Markdown file for the results.", "file"});
    parser.process(app);

    QTextStream err(stderr);
    const QString stream = QFileInfo(parser.value("stream")).absoluteFilePath();
    bool okSeconds = false;
    const double seconds = parser.value("seconds").toDouble(&okSeconds);
    if (parser.value("preset") != "grid" && parser.value("preset") != "full") {
        err << "bench_mirror: --preset is grid or full" << Qt::endl;
        return 2;
    }
    const Preset preset = presetNamed(parser.value("preset"));
    const QString countList = parser.isSet("counts") ? parser.value("counts") : preset.counts;
    const QStringList cellParts = parser.value("cell").split('x');
    const QSize cellSize(cellParts.value(0).toInt(), cellParts.value(1).toInt());
    const int gridColumns = parser.value("columns").toInt();
    if (cellSize.width() < 16 || cellSize.height() < 16 || gridColumns < 1) {
        err << "bench_mirror: bad --cell or --columns" << Qt::endl;
        return 2;
    }
    QList<int> counts;
    for (const QString &text : countList.split(',', Qt::SkipEmptyParts)) {
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

    QString command = "bench_mirror --preset " + preset.name + " --counts " + countList + " --seconds "
                      + parser.value("seconds");
    if (parser.isSet("drawn"))
        command += parser.isSet("decode-only") ? " --drawn --decode-only" : " --drawn";
    const QString soundStream = parser.isSet("sound-stream") && preset.name == "full"
                                    ? QFileInfo(parser.value("sound-stream")).absoluteFilePath() : QString();
    if (!soundStream.isEmpty() && !QFileInfo(soundStream).isFile()) {
        err << "bench_mirror: no --sound-stream " << soundStream << Qt::endl;
        return 2;
    }
    const int pairs = parser.value("pairs").toInt();
    if (!soundStream.isEmpty())
        command += " --sound-stream " + QFileInfo(soundStream).fileName() + " --pairs " + QString::number(pairs);
    std::vector<Comparison> comparisons;
    std::vector<Row> rows;
    const auto report = [&] {
        if (parser.isSet("output"))
            writeReport(parser.value("output"), machine, stream, fileFrames, seconds, rows, command, preset, cellSize,
                        comparisons, soundStream);
    };
    int status = 0;
    {
        // Stops its phones and the adb server when it goes, whatever happened before.
        PhoneFixture fixture(port);
        for (int count : counts) {
            while (!stopRequested() && int(fixture.phones().size()) < count) {
                if (!fixture.addPhone(preset.phoneScreen, {"--stream-file", stream})) {
                    err << "bench_mirror: " << fixture.error() << Qt::endl;
                    status = 1;
                    break;
                }
            }
            if (status != 0 || stopRequested())
                break;
            QList<bool> drawnRounds;
            if (!(parser.isSet("drawn") && parser.isSet("decode-only")))
                drawnRounds << false;
            if (parser.isSet("drawn"))
                drawnRounds << true;
            for (bool drawn : drawnRounds) {
                if (stopRequested())
                    break;
                Row row;
                row.fileFrames = fileFrames;
                MirrorRound round(fixture, port, stopRequested);
                MirrorRound::Options options;
                options.maxSize = preset.maxSize;
                options.bitRate = preset.bitRate;
                options.drawn = drawn;
                options.cellSize = cellSize;
                options.columns = gridColumns;
                // A round after a larger one uses the first phones; the others sit idle, not streaming.
                row.mirror = round.run(count, seconds, 2000, options);
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
                report();
            }
        }
        if (!soundStream.isEmpty() && status == 0)
            status = compareRounds(fixture, port, preset, stream, RecordPhones, "recording", pairs, seconds, comparisons,
                                   report);
    }
    if (!soundStream.isEmpty() && status == 0 && !stopRequested()) {
        // The sound rounds need phones looping the grid stream: a fixture of their own.
        PhoneFixture fixture(port);
        status = compareRounds(fixture, port, presetNamed("grid"), soundStream, SoundPhones, "sound", pairs, seconds,
                               comparisons, report);
    }
    if (stopRequested()) {
        err << "bench_mirror: stopped" << Qt::endl;
        return 130;
    }
    if (parser.isSet("output"))
        out << Qt::endl << "Results written to " << parser.value("output") << Qt::endl;
    return status;
}
