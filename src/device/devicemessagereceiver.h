#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

class QIODevice;

// Reads what the phone's server writes on the control socket and puts the phone's clipboard text
// on the PC's clipboard. A message may arrive in pieces; the pieces are kept until it is whole.
class DeviceMessageReceiver : public QObject
{
    Q_OBJECT
public:
    DeviceMessageReceiver(QObject *parent, QIODevice *socket);

    // Consumed and Partial are byte counts; Unusable means the bytes cannot be framed.
    static constexpr qsizetype Partial = 0;
    static constexpr qsizetype Unusable = -1;
    // Texts longer than this are not waited for: no phone sends them, a corrupt length would.
    static constexpr qsizetype MaxTextSize = 16 * 1024 * 1024;

    // Looks at the message at the front of `buffer`: returns the bytes it takes (and sets *text and
    // *isClipboard for a clipboard text), Partial when more bytes are needed, or Unusable.
    static qsizetype parse(const QByteArray &buffer, QString *text, bool *isClipboard);

public slots:
    void handleIncomingData();

private:
    QPointer<QIODevice> m_socket;
    QByteArray m_pending;
};
