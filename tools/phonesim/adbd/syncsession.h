#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QObject>
#include <QString>

#include <memory>

class AdbStream;
class Phone;
class QSaveFile;

// The "sync:" file service: stat, list, push (SEND/DATA/DONE) and pull (RECV) against the
// phone's sandbox. Requests are 4-byte ids with a little-endian length, as adb sends them.
class SyncSession : public QObject
{
    Q_OBJECT
public:
    SyncSession(Phone *phone, AdbStream *stream);
    ~SyncSession() override;

    // Data chunks never exceed this; a larger length means a corrupt stream.
    static constexpr quint32 MaxChunk = 64 * 1024;

private:
    void received(const QByteArray &data);
    bool handleRequest(const QByteArray &id, const QByteArray &payload);
    bool handleFileChunk(const QByteArray &id, quint32 arg, const QByteArray &payload);
    void stat(const QString &path, const QByteArray &id);
    void list(const QString &path);
    bool beginSend(const QString &target);
    void finishSend(quint32 mtime);
    void recv(const QString &path);
    void fail(const QString &message);
    static QByteArray u32(quint32 value);
    static QByteArray u64(quint64 value);

    Phone *m_phone;
    AdbStream *m_stream;
    QByteArray m_buffer;
    bool m_failed = false;
    // The file being pushed.
    std::unique_ptr<QSaveFile> m_file;
    QString m_devicePath;
    qint64 m_size = 0;
    QCryptographicHash m_hash{QCryptographicHash::Sha256};
};
