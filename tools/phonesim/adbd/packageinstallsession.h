#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QObject>

class AdbStream;
class Phone;

// A streamed install, "exec:cmd package 'install' [options] -S SIZE": adb sends the package's
// bytes on the stream and reads the package manager's answer, "Success" or "Failure [CODE: ...]".
class PackageInstallSession : public QObject
{
    Q_OBJECT
public:
    // Whether the destination is a streamed install this session understands.
    static bool handles(const QByteArray &destination);
    PackageInstallSession(Phone *phone, AdbStream *stream, const QByteArray &destination);

private:
    void received(const QByteArray &data);
    void answer();

    Phone *m_phone;
    AdbStream *m_stream;
    qint64 m_size = -1;
    qint64 m_received = 0;
    QByteArray m_head;
    QCryptographicHash m_hash{QCryptographicHash::Sha256};
    bool m_answered = false;
};
