#pragma once

#include <QString>

#include <functional>

// FFmpeg's own command-line decoder on the same file, single-threaded: the yardstick for what one
// decoded picture costs without any mirroring around it.
class ReferenceDecode
{
public:
    struct Result
    {
        bool ok = false;
        double cpuSeconds = 0;
        double wallSeconds = 0;
        QString error;
    };

    // Runs `ffmpeg -threads 1 -i file -f null -` and waits for it; with maxFrames > 0 it stops after
    // that many pictures, which tells its start-up cost. Its CPU time comes from wait4 on its own
    // process id, so nothing else this process starts is counted. stopRequested is polled while it
    // runs; a stop kills it.
    static Result run(const QString &file, int maxFrames, const std::function<bool()> &stopRequested);
    // The file's video frames as FFmpeg's demuxer cuts them; -1 and *error on failure.
    static qint64 countFrames(const QString &file, QString *error);
};
