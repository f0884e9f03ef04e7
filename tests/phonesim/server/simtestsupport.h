#pragma once

#include "fakechannel.h"
#include "phone.h"
#include "simserver.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QSignalSpy>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

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
    explicit TestPhone(bool serverPushed = true, QSize screen = QSize(1080, 2400), const QString &streamFile = {})
    {
        PhoneProfile profile;
        profile.serial = "SIM0001";
        profile.model = "Pixel Sim";
        profile.manufacturer = "Korvel";
        profile.androidVersion = "13";
        profile.screenSize = screen;
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

    QList<QJsonObject> journal(const QString &event) const
    {
        QList<QJsonObject> lines;
        QFile file(dir.path() + "/journal.jsonl");
        if (!file.open(QIODevice::ReadOnly))
            return lines;
        while (!file.atEnd()) {
            const QJsonObject line = QJsonDocument::fromJson(file.readLine()).object();
            if (line.value("event").toString() == event)
                lines << line;
        }
        return lines;
    }

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
    explicit ServerRig(const QString &command, bool serverPushed = true, QSize screen = QSize(1080, 2400),
                       const QString &streamFile = {})
        : phone(serverPushed, screen, streamFile), tunnel(phone.phone.get()), server(phone.phone.get(), command)
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
