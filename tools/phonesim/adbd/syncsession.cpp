#include "syncsession.h"

#include "adbstream.h"
#include "journal.h"
#include "phone.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

namespace {
constexpr quint32 ModeFile = 0100000 | 0644;
constexpr quint32 ModeDir = 0040000 | 0771;
constexpr quint32 NoSuchFile = 2;   // ENOENT
constexpr quint32 MaxPath = 1024;
}

SyncSession::SyncSession(Phone *phone, AdbStream *stream)
    : QObject(stream)
    , m_phone(phone)
    , m_stream(stream)
{
    connect(stream, &AdbStream::dataReceived, this, &SyncSession::received);
    stream->setReadRate(phone->profile().slowSyncBytesPerSecond);
}

SyncSession::~SyncSession() = default;   // an unfinished push is discarded by QSaveFile

void SyncSession::received(const QByteArray &data)
{
    if (m_failed)
        return;
    m_buffer += data;
    while (m_buffer.size() >= 8) {
        const QByteArray id = m_buffer.left(4);
        const quint32 arg = qFromLittleEndian<quint32>(m_buffer.constData() + 4);
        const bool chunk = m_file && (id == "DATA" || id == "DONE");
        // DONE carries a time stamp, not a length; QUIT carries nothing.
        const quint32 length = (id == "DONE" || id == "QUIT") ? 0 : arg;
        if (length > (chunk ? MaxChunk : MaxPath)) {
            fail(QString("invalid %1 length %2").arg(QString::fromLatin1(id)).arg(length));
            return;
        }
        if (quint32(m_buffer.size()) < 8 + length)
            return;
        const QByteArray payload = m_buffer.mid(8, int(length));
        m_buffer.remove(0, 8 + int(length));
        const bool ok = chunk ? handleFileChunk(id, arg, payload) : handleRequest(id, payload);
        if (!ok || m_failed)
            return;
    }
}

bool SyncSession::handleRequest(const QByteArray &id, const QByteArray &payload)
{
    const QString path = QString::fromUtf8(payload);
    if (id == "STAT" || id == "STA2" || id == "LST2")
        stat(path, id);
    else if (id == "LIST")
        list(path);
    else if (id == "SEND")
        return beginSend(path);
    else if (id == "RECV")
        recv(path);
    else if (id == "QUIT") {
        m_stream->close();
        return false;
    } else {
        fail("unknown sync request " + QString::fromLatin1(id.toHex()));
        return false;
    }
    return true;
}

void SyncSession::stat(const QString &path, const QByteArray &id)
{
    const QFileInfo info(m_phone->sandboxPath(path));
    const bool exists = info.exists();
    const quint32 mode = !exists ? 0 : info.isDir() ? ModeDir : ModeFile;
    const quint64 size = exists && info.isFile() ? quint64(info.size()) : 0;
    const quint64 mtime = exists ? quint64(info.lastModified().toSecsSinceEpoch()) : 0;
    if (id == "STAT") {
        m_stream->write("STAT" + u32(mode) + u32(quint32(size)) + u32(quint32(mtime)));
        return;
    }
    QByteArray reply = id;
    reply += u32(exists ? 0 : NoSuchFile);
    reply += u64(exists ? 0xfd00 : 0);   // dev
    reply += u64(exists ? quint64(qHash(path)) : 0);   // ino
    reply += u32(mode);
    reply += u32(exists ? 1 : 0);   // nlink
    reply += u32(exists ? 2000 : 0);   // uid shell
    reply += u32(exists ? 2000 : 0);   // gid shell
    reply += u64(size);
    reply += u64(mtime);   // atime
    reply += u64(mtime);   // mtime
    reply += u64(mtime);   // ctime
    m_stream->write(reply);
}

void SyncSession::list(const QString &path)
{
    const QDir dir(m_phone->sandboxPath(path));
    QByteArray reply;
    if (dir.exists()) {
        const auto entries = dir.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
        for (const QFileInfo &info : entries) {
            const QByteArray name = info.fileName().toUtf8();
            reply += "DENT" + u32(info.isDir() ? ModeDir : ModeFile) + u32(quint32(info.size()))
                + u32(quint32(info.lastModified().toSecsSinceEpoch())) + u32(quint32(name.size())) + name;
        }
    }
    reply += "DONE" + u32(0) + u32(0) + u32(0) + u32(0);
    m_stream->write(reply);
}

bool SyncSession::beginSend(const QString &target)
{
    const int comma = target.lastIndexOf(',');
    m_devicePath = QDir::cleanPath("/" + (comma < 0 ? target : target.left(comma)));
    const QString local = m_phone->sandboxPath(m_devicePath);
    if (QFileInfo(local).isDir()) {
        fail(QString("couldn't create file: Is a directory"));
        return false;
    }
    // Parent folders are made on the phone's side.
    QDir().mkpath(QFileInfo(local).absolutePath());
    m_file = std::make_unique<QSaveFile>(local);
    if (!m_file->open(QIODevice::WriteOnly)) {
        m_file.reset();
        fail(QString("couldn't create file: %1").arg(m_devicePath));
        return false;
    }
    m_size = 0;
    m_hash.reset();
    return true;
}

bool SyncSession::handleFileChunk(const QByteArray &id, quint32 arg, const QByteArray &payload)
{
    if (id == "DATA") {
        if (m_file->write(payload) != payload.size()) {
            m_file.reset();
            fail("write failed: No space left on device");
            return false;
        }
        m_size += payload.size();
        m_hash.addData(payload);
        return true;
    }
    finishSend(arg);
    return !m_failed;
}

void SyncSession::finishSend(quint32 mtime)
{
    if (!m_file->commit()) {
        m_file.reset();
        fail("failed to write " + m_devicePath);
        return;
    }
    m_file.reset();
    if (mtime > 0) {
        QFile file(m_phone->sandboxPath(m_devicePath));
        if (file.open(QIODevice::ReadWrite))
            file.setFileTime(QDateTime::fromSecsSinceEpoch(mtime), QFileDevice::FileModificationTime);
    }
    m_phone->journal().write("push", {{"path", m_devicePath},
                                      {"size", m_size},
                                      {"sha256", QString::fromLatin1(m_hash.result().toHex())}});
    m_stream->write("OKAY" + u32(0));
}

void SyncSession::recv(const QString &path)
{
    QFile file(m_phone->sandboxPath(path));
    if (!QFileInfo(file.fileName()).isFile() || !file.open(QIODevice::ReadOnly)) {
        const QByteArray message = "No such file or directory";
        m_stream->write("FAIL" + u32(quint32(message.size())) + message);
        return;
    }
    while (!file.atEnd()) {
        const QByteArray chunk = file.read(MaxChunk);
        m_stream->write("DATA" + u32(quint32(chunk.size())) + chunk);
    }
    m_stream->write("DONE" + u32(0));
}

void SyncSession::fail(const QString &message)
{
    // After FAIL the phone ends the sync service, as a real adbd does.
    const QByteArray text = message.toUtf8();
    m_stream->write("FAIL" + u32(quint32(text.size())) + text);
    m_failed = true;
    m_stream->close();
}

QByteArray SyncSession::u32(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian<quint32>(value, bytes.data());
    return bytes;
}

QByteArray SyncSession::u64(quint64 value)
{
    QByteArray bytes(8, '\0');
    qToLittleEndian<quint64>(value, bytes.data());
    return bytes;
}
