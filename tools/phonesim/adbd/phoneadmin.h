#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QObject>
#include <QString>

class Phone;

// The local admin channel of a running phone ("phonesim-<port>"), through which
// `phonesim ctl` plays the events that a person holding the phone would cause.
// One request per connection: a compact JSON object {"command": ..., "arg": ...} and a newline;
// the answer is "ok" or "error: ..." and a newline.
class PhoneAdmin : public QObject
{
    Q_OBJECT
public:
    PhoneAdmin(Phone *phone, quint16 port, QObject *parent = nullptr);

    static QString serverName(quint16 port);
    bool listen(QString *error = nullptr);

    // Carries out one request; returns the answer line without its newline.
    QString execute(const QString &command, const QString &arg);

    // Client side, used by `phonesim ctl`.
    static bool send(quint16 port, const QString &command, const QString &arg, QString *answer);

signals:
    void quitRequested();

private:
    void serve(QLocalSocket *socket);

    Phone *m_phone;
    quint16 m_port;
    QLocalServer m_server;
};
