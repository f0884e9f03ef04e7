#include "packageinstallsession.h"

#include "adbstream.h"
#include "journal.h"
#include "phone.h"
#include "shellline.h"

namespace {
QStringList wordsOf(const QByteArray &destination)
{
    const QList<ShellLine::Command> commands = ShellLine::parse(QString::fromUtf8(destination.mid(5)));
    return commands.isEmpty() ? QStringList() : commands.first().words;
}
}

bool PackageInstallSession::handles(const QByteArray &destination)
{
    if (!destination.startsWith("exec:"))
        return false;
    const QStringList words = wordsOf(destination);
    return words.value(0) == "cmd" && words.value(1) == "package" && words.value(2) == "install";
}

PackageInstallSession::PackageInstallSession(Phone *phone, AdbStream *stream, const QByteArray &destination)
    : QObject(stream)
    , m_phone(phone)
    , m_stream(stream)
{
    const QStringList words = wordsOf(destination);
    m_phone->journal().write("shell", {{"command", QString::fromUtf8(destination.mid(5))}});
    const int size = words.indexOf("-S");
    bool ok = false;
    if (size >= 0)
        m_size = words.value(size + 1).toLongLong(&ok);
    if (!ok || m_size < 0) {
        m_stream->write("Error: must either specify a package size or an APK file\n");
        m_stream->close();
        m_answered = true;
        return;
    }
    connect(stream, &AdbStream::dataReceived, this, &PackageInstallSession::received);
    if (m_size == 0)
        answer();
}

void PackageInstallSession::received(const QByteArray &data)
{
    if (m_answered)
        return;
    const QByteArray part = data.left(int(m_size - m_received));
    if (m_head.size() < 2)
        m_head += part.left(2 - m_head.size());
    m_hash.addData(part);
    m_received += part.size();
    if (m_received >= m_size)
        answer();
}

void PackageInstallSession::answer()
{
    m_answered = true;
    const bool zip = m_head == "PK";
    const QString refusal = m_phone->profile().failInstall;
    m_phone->journal().write("install", {{"path", "(streamed)"},
                                         {"size", m_received},
                                         {"sha256", QString::fromLatin1(m_hash.result().toHex())},
                                         {"ok", zip && refusal.isEmpty()}});
    if (!zip)
        m_stream->write("Failure [INSTALL_FAILED_INVALID_APK: Failed to parse: not a valid zip archive]\n");
    else if (!refusal.isEmpty())
        m_stream->write(QString("Failure [%1: refused on request]\n").arg(refusal).toUtf8());
    else
        m_stream->write("Success\n");
    m_stream->close();
}
