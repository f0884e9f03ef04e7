#pragma once

#include "phone.h"
#include "phonechannel.h"
#include "phonesimprocess.h"
#include "simserver.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

// An in-memory stream end: records what the phone writes, and lets a test play the PC's part
// (accept, refuse, send bytes, close).
class FakeChannel : public PhoneChannel
{
    Q_OBJECT
public:
    using PhoneChannel::PhoneChannel;

    void write(const QByteArray &data) override
    {
        if (!m_closed)
            written += data;
    }
    void close() override
    {
        if (m_closed)
            return;
        m_closed = true;
        emit closed();
    }
    bool isOpen() const override { return m_accepted && !m_closed; }
    qint64 pendingBytes() const override { return 0; }

    void accept()
    {
        m_accepted = true;
        emit opened();
    }
    void sendFromPc(const QByteArray &bytes) { emit dataReceived(bytes); }
    bool wasClosed() const { return m_closed; }

    QByteArray written;

private:
    bool m_accepted = false;
    bool m_closed = false;
};

// The PC end of the reverse tunnel: every connection the phone opens becomes a FakeChannel that
// is accepted on the next turn of the event loop, unless the test says otherwise.
class FakeTunnel : public QObject
{
public:
    enum class Answer { Accept, Refuse, CloseAtOnce, Hold };

    explicit FakeTunnel(Phone *phone)
    {
        phone->setReverseOpener([this](const QString &name) -> PhoneChannel * {
            names << name;
            const Answer answer = answers.isEmpty() ? Answer::Accept : answers.takeFirst();
            if (answer == Answer::Refuse)
                return nullptr;
            auto *channel = new FakeChannel(this);
            channels << channel;
            if (answer == Answer::Accept)
                QTimer::singleShot(0, channel, &FakeChannel::accept);
            else if (answer == Answer::CloseAtOnce)
                QTimer::singleShot(0, channel, &FakeChannel::close);
            return channel;
        });
    }

    QStringList names;
    QList<FakeChannel *> channels;
    QList<Answer> answers; // consumed one per connection; Accept when empty
};

// A phone with its own data folder, and the server file pushed unless told otherwise.
struct TestPhone
{
    explicit TestPhone(bool serverPushed = true, const QString &streamFile = {})
    {
        PhoneProfile profile;
        profile.serial = "SIM0001";
        profile.model = "Pixel Sim";
        profile.screenSize = QSize(1080, 2400);
        profile.dataDir = dir.path();
        profile.streamFile = streamFile;
        phone = std::make_unique<Phone>(profile);
        if (serverPushed) {
            const QString jar = phone->sandboxPath("/data/local/tmp/scrcpy-server.jar");
            QDir().mkpath(QFileInfo(jar).path());
            QFile file(jar);
            file.open(QIODevice::WriteOnly);
            file.write("PK\x03\x04 not really a jar");
        }
    }

    QList<QJsonObject> journal(const QString &event) const { return PhoneSimProcess::readJournal(dir.path(), event); }

    QTemporaryDir dir;
    std::unique_ptr<Phone> phone;
};

inline QString serverCommand(const QString &options, const QString &version = "3.3.1")
{
    return "CLASSPATH=/data/local/tmp/scrcpy-server.jar app_process / com.genymobile.scrcpy.Server " + version + " "
           + options;
}

// A server on a test phone, its PC end, and spies on how it ends.
struct ServerRig
{
    explicit ServerRig(const QString &command, bool serverPushed = true, const QString &streamFile = {})
        : phone(serverPushed, streamFile), tunnel(phone.phone.get()), server(phone.phone.get(), command)
    {
    }

    // Starts the server and waits until exactly `sockets` connections exist and the last is open.
    bool startAndOpen(int sockets)
    {
        server.start();
        return QTest::qWaitFor([&] { return tunnel.channels.size() == sockets && tunnel.channels.last()->isOpen(); });
    }

    FakeChannel *channel(int i) const { return tunnel.channels.value(i); }

    QString outputText() const
    {
        QString text;
        for (const QList<QVariant> &args : output)
            text += QString::fromUtf8(args.first().toByteArray());
        return text;
    }

    TestPhone phone;
    FakeTunnel tunnel;
    SimServer server;
    QSignalSpy output{&server, &SimServer::output};
    QSignalSpy finished{&server, &SimServer::finished};
};
