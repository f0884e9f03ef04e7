#pragma once

#include <QJsonObject>
#include <QString>

// The server's own command line: "CLASSPATH=<jar> app_process / com.genymobile.scrcpy.Server
// <version> key=value ...". Parsing never fails silently: `error` holds the line the real server
// would print for the first problem found.
class CommandLineOptions
{
public:
    static constexpr const char *serverVersion = "3.3.1";
    static constexpr const char *serverClass = "com.genymobile.scrcpy.Server";

    static CommandLineOptions parse(const QString &commandLine);

    bool ok() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

    QString classPath;       // empty when the command sets no CLASSPATH
    QString clientVersion;
    int videoBitRate = 8000000;
    int maxSize = 0;         // 0: no limit
    int maxFps = 0;          // 0: no cap
    quint32 scid = 0;
    bool hasScid = false;
    bool video = true;
    bool audio = true;
    bool control = true;
    bool stayAwake = false;
    QString logLevel = "info";
    QString audioCodec = "opus";

    // The abstract socket the server connects to: "scrcpy_" + 8 hex digits, or "scrcpy" without scid.
    QString socketName() const;
    QJsonObject toJson() const;

private:
    bool setOption(const QString &key, const QString &value);
    bool parseInt(const QString &key, const QString &value, int *out);
    bool parseBool(const QString &key, const QString &value, bool *out);

    QString m_error;
};
