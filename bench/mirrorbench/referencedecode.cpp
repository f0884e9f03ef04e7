#include "referencedecode.h"

#include <QElapsedTimer>

#include <cerrno>
#include <cstring>
#include <vector>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
}

extern char **environ;

namespace {

double seconds(const timeval &t)
{
    return double(t.tv_sec) + double(t.tv_usec) / 1e6;
}

} // namespace

ReferenceDecode::Result ReferenceDecode::run(const QString &file, int maxFrames,
                                             const std::function<bool()> &stopRequested)
{
    Result result;
    const QByteArray path = file.toLocal8Bit();
    const QByteArray frames = QByteArray::number(maxFrames);
    std::vector<const char *> argv = {"ffmpeg", "-nostdin", "-hide_banner", "-loglevel", "error",
                                      "-threads", "1", "-i", path.constData()};
    if (maxFrames > 0)
        argv.insert(argv.end(), {"-frames:v", frames.constData()});
    argv.insert(argv.end(), {"-f", "null", "-", nullptr});

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    QElapsedTimer wall;
    wall.start();
    pid_t pid = -1;
    const int spawned = posix_spawnp(&pid, "ffmpeg", &actions, nullptr, const_cast<char **>(argv.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        result.error = QString("cannot start ffmpeg: %1").arg(QString::fromLocal8Bit(std::strerror(spawned)));
        return result;
    }

    int status = 0;
    rusage usage{};
    for (;;) {
        const pid_t done = wait4(pid, &status, WNOHANG, &usage);
        if (done == pid)
            break;
        if (done < 0 && errno != EINTR) {
            result.error = QString("waiting for ffmpeg failed: %1").arg(QString::fromLocal8Bit(std::strerror(errno)));
            return result;
        }
        if (stopRequested && stopRequested()) {
            kill(pid, SIGKILL);
            while (wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) {
            }
            result.error = "stopped";
            return result;
        }
        usleep(5000);
    }
    result.wallSeconds = double(wall.nsecsElapsed()) / 1e9;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        result.error = QString("ffmpeg failed on %1 (status %2)").arg(file).arg(status);
        return result;
    }
    result.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    result.ok = true;
    return result;
}

qint64 ReferenceDecode::countFrames(const QString &file, QString *error)
{
    AVFormatContext *format = nullptr;
    const QByteArray path = file.toLocal8Bit();
    if (avformat_open_input(&format, path.constData(), nullptr, nullptr) < 0) {
        *error = "cannot open " + file;
        return -1;
    }
    const int video = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    AVPacket *packet = av_packet_alloc();
    qint64 frames = 0;
    while (video >= 0 && packet && av_read_frame(format, packet) >= 0) {
        if (packet->stream_index == video)
            ++frames;
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&format);
    if (video < 0 || frames == 0) {
        *error = "no video frames in " + file;
        return -1;
    }
    return frames;
}
