#include "machineinfo.h"

#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QtGlobal>

#include <unistd.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/avutil.h>
}

QString MachineInfo::firstLine(const QString &program, const QStringList &args)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, args);
    if (!process.waitForFinished(10000))
        return "unknown";
    return QString::fromUtf8(process.readAll()).section('\n', 0, 0).trimmed();
}

QString MachineInfo::procField(const QString &file, const QString &key)
{
    QFile proc(file);
    if (!proc.open(QIODevice::ReadOnly))
        return "unknown";
    // Files under /proc report no size, so read them whole instead of testing for their end.
    const QStringList lines = QString::fromUtf8(proc.readAll()).split('\n');
    for (const QString &line : lines) {
        if (line.section(':', 0, 0).trimmed() == key)
            return line.section(':', 1).trimmed();
    }
    return "unknown";
}

QStringList MachineInfo::describe()
{
    QFile loadFile("/proc/loadavg");
    QString load = "unknown";
    if (loadFile.open(QIODevice::ReadOnly))
        load = QString::fromUtf8(loadFile.readAll()).section(' ', 0, 2);
    const QString memory = procField("/proc/meminfo", "MemTotal");
    const qint64 memoryKb = memory.section(' ', 0, 0).toLongLong();

    return {
        QString("Date: %1").arg(QDateTime::currentDateTime().toString(Qt::ISODate)),
        QString("CPU: %1, %2 online (nproc)").arg(procField("/proc/cpuinfo", "model name"))
            .arg(sysconf(_SC_NPROCESSORS_ONLN)),
        QString("Memory: %1 GiB").arg(double(memoryKb) / 1024 / 1024, 0, 'f', 1),
        QString("Load average (1, 5, 15 min) at start: %1 (the machine is shared)").arg(load),
        QString("System: %1, kernel %2").arg(QSysInfo::prettyProductName(), QSysInfo::kernelVersion()),
        QString("Qt: %1 (built against %2)").arg(qVersion(), QT_VERSION_STR),
        QString("FFmpeg libraries: %1 (%2)").arg(av_version_info(), LIBAVCODEC_IDENT),
        QString("FFmpeg command line: %1").arg(firstLine("ffmpeg", {"-hide_banner", "-version"})),
        QString("adb: %1").arg(firstLine("adb", {"version"})),
    };
}
