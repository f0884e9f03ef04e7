#include "phonefixture.h"

#include <QFile>
#include <QTest>

PhoneFixture::PhoneFixture()
    : m_lease(LoopbackLease::adbServerPort())
    , m_adbServerPort(quint16(m_lease->value()))
    , m_adb(m_adbServerPort)
{
    startServer();
}

PhoneFixture::PhoneFixture(quint16 adbServerPort)
    : m_adbServerPort(adbServerPort)
    , m_adb(adbServerPort)
{
    startServer();
}

void PhoneFixture::startServer()
{
    // Korvel's own adb calls inherit these.
    qputenv("ANDROID_ADB_SERVER_PORT", QByteArray::number(m_adbServerPort));
    QFile server(m_dir.filePath("scrcpy-server"));
    if (server.open(QIODevice::WriteOnly))
        server.write("PK\x03\x04 simulated scrcpy-server 3.3.1 for phonesim");
    qputenv("KORVEL_SCRCPY_SERVER", server.fileName().toLocal8Bit());
    m_adb.run({"start-server"});
}

PhoneFixture::~PhoneFixture()
{
    for (const auto &phone : m_phones)
        m_adb.run({"disconnect", phone->serial()}, 5000);
    m_phones.clear();
    m_adb.killServer();
}

PhoneSimProcess *PhoneFixture::phone(const QString &serial) const
{
    for (const auto &phone : m_phones) {
        if (phone->serial() == serial)
            return phone.get();
    }
    return nullptr;
}

PhoneSimProcess *PhoneFixture::addPhone(const QSize &screenSize, const QStringList &extraArgs)
{
    auto phone = std::make_unique<PhoneSimProcess>();
    const QString size = QString("%1x%2").arg(screenSize.width()).arg(screenSize.height());
    if (!phone->start(QStringList{"--size", size} + extraArgs, &m_error))
        return nullptr;
    const AdbRunner::Result connected = m_adb.run({"connect", phone->serial()});
    if (!connected.out.contains("connected to")) {
        m_error = "adb connect failed: " + QString::fromUtf8(connected.out + connected.err);
        return nullptr;
    }
    if (!QTest::qWaitFor([&] { return m_adb.listed(phone->serial()); }, 10000)) {
        m_error = "adb does not list " + phone->serial();
        return nullptr;
    }
    m_phones.push_back(std::move(phone));
    return m_phones.back().get();
}
