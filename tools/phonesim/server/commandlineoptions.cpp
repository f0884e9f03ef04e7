#include "commandlineoptions.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

QStringList splitShellWords(const QString &commandLine)
{
    QStringList words;
    for (QString word : commandLine.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts)) {
        // adb passes arguments through a shell; simple quoting around a word is harmless there.
        if (word.size() >= 2 && (word.front() == '\'' || word.front() == '"') && word.back() == word.front())
            word = word.mid(1, word.size() - 2);
        words << word;
    }
    return words;
}

} // namespace

CommandLineOptions CommandLineOptions::parse(const QString &commandLine)
{
    CommandLineOptions options;
    const QStringList words = splitShellWords(commandLine);
    int classIndex = -1;
    for (int i = 0; i < words.size(); ++i) {
        if (words[i].startsWith("CLASSPATH="))
            options.classPath = words[i].mid(int(qstrlen("CLASSPATH=")));
        if (words[i] == serverClass) {
            classIndex = i;
            break;
        }
    }
    if (classIndex < 0) {
        options.m_error = QString("Error: no class name given (expected %1)").arg(serverClass);
        return options;
    }
    if (classIndex + 1 >= words.size()) {
        options.m_error = "Missing client version";
        return options;
    }
    options.clientVersion = words[classIndex + 1];
    if (options.clientVersion != serverVersion) {
        options.m_error = QString("The server version (%1) does not match the client (%2)")
                              .arg(serverVersion, options.clientVersion);
        return options;
    }
    for (int i = classIndex + 2; i < words.size(); ++i) {
        const QString &word = words[i];
        const int equals = word.indexOf('=');
        if (equals <= 0) {
            options.m_error = QString("Invalid key=value pair: \"%1\"").arg(word);
            return options;
        }
        if (!options.setOption(word.left(equals), word.mid(equals + 1)))
            return options;
    }
    return options;
}

bool CommandLineOptions::setOption(const QString &key, const QString &value)
{
    if (key == "video_bit_rate")
        return parseInt(key, value, &videoBitRate);
    if (key == "max_size")
        return parseInt(key, value, &maxSize);
    if (key == "max_fps")
        return parseInt(key, value, &maxFps);
    if (key == "video")
        return parseBool(key, value, &video);
    if (key == "audio")
        return parseBool(key, value, &audio);
    if (key == "control")
        return parseBool(key, value, &control);
    if (key == "stay_awake")
        return parseBool(key, value, &stayAwake);
    if (key == "scid") {
        bool ok = false;
        const uint parsed = value.toUInt(&ok, 16);
        if (!ok || value.size() > 8) {
            m_error = QString("Invalid scid: \"%1\"").arg(value);
            return false;
        }
        scid = parsed & 0x7fffffffu;
        hasScid = true;
        return true;
    }
    if (key == "log_level") {
        static const QStringList levels{"verbose", "debug", "info", "warn", "error"};
        if (!levels.contains(value)) {
            m_error = QString("Invalid log level: %1").arg(value);
            return false;
        }
        logLevel = value;
        return true;
    }
    if (key == "audio_codec") {
        if (value != "opus") {
            m_error = QString("Unsupported audio codec: %1 (this device only encodes opus)").arg(value);
            return false;
        }
        audioCodec = value;
        return true;
    }
    m_error = QString("Unknown server option: %1").arg(key);
    return false;
}

bool CommandLineOptions::parseInt(const QString &key, const QString &value, int *out)
{
    bool ok = false;
    const int parsed = value.toInt(&ok);
    if (!ok || parsed < 0) {
        m_error = QString("java.lang.NumberFormatException: For input string: \"%1\" (option %2)").arg(value, key);
        return false;
    }
    *out = parsed;
    return true;
}

bool CommandLineOptions::parseBool(const QString &key, const QString &value, bool *out)
{
    if (value != "true" && value != "false") {
        m_error = QString("Invalid boolean for %1: \"%2\"").arg(key, value);
        return false;
    }
    *out = value == "true";
    return true;
}

QString CommandLineOptions::socketName() const
{
    return hasScid ? QString("scrcpy_%1").arg(scid, 8, 16, QChar('0')) : QString("scrcpy");
}

QJsonObject CommandLineOptions::toJson() const
{
    QJsonObject json{
        {"version", clientVersion},
        {"video_bit_rate", videoBitRate},
        {"max_size", maxSize},
        {"max_fps", maxFps},
        {"video", video},
        {"audio", audio},
        {"control", control},
        {"stay_awake", stayAwake},
        {"log_level", logLevel},
        {"audio_codec", audioCodec},
        {"socket", socketName()},
    };
    if (hasScid)
        json.insert("scid", QString("%1").arg(scid, 8, 16, QChar('0')));
    return json;
}
