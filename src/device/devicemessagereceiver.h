#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

class QIODevice;

// Reads what the phone's server writes on the control socket and puts the phone's clipboard text
// on the PC's clipboard. One chunk carries one message: the phone sends them rarely and singly.
class DeviceMessageReceiver : public QObject
{
    Q_OBJECT
public:
    DeviceMessageReceiver(QObject *parent, QIODevice *socket);

    // The clipboard text of a chunk; false for anything else. Never reads past the chunk's bytes.
    static bool parseClipboard(const QByteArray &chunk, QString *text);

public slots:
    void handleIncomingData();

private:
    QPointer<QIODevice> m_socket;
};
