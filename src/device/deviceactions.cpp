#include "deviceactions.h"

#include "adbclient.h"
#include "adbpool.h"
#include "adbworkpool.h"
#include "autojs.h"
#include "controller.h"
#include "device.h"
#include "groupoperation.h"
#include "safefilename.h"

#include <QDir>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QStandardPaths>
#include <QTimer>

namespace {
int stepDelayMs = 1000;
constexpr quint16 kWifiAdbPort = 5555;
constexpr int kUploadTimeoutMs = 5000;
constexpr int kLongInfoTimeoutMs = 100000;
constexpr int kNotConnectedTimeoutMs = 2000;
constexpr int kConnectionSwitchTimeoutMs = 3000;
}

void DeviceActions::setStepDelay(int milliseconds)
{
    stepDelayMs = milliseconds;
}

DeviceActions::DeviceActions(Device *device)
    : QObject(device)
    , m_device(device)
    // The bridge reports through its owning device.
    , m_autojs(new Autojs(device))
{
}

DeviceActions::~DeviceActions()
{
    cancelSessionWork();
}

void DeviceActions::message(const QString &text, MessageKind::Kind kind, int timeout)
{
    emit m_device->deviceMessage(text, kind, timeout);
}

void DeviceActions::message(const QString &text, MessageKind::Kind kind)
{
    message(text, kind, MessageKind::timeoutMs(kind));
}

bool DeviceActions::connected(int notConnectedTimeout)
{
    if (m_device->controller())
        return true;
    message(tr("Not Connected"), MessageKind::Error, notConnectedTimeout);
    return false;
}

void DeviceActions::setWiFiConnection()
{
    m_device->setSwitchingConnection(true);
    const QString serial = m_device->adbConnectionSerial();
    AdbPool::run(
        this, [serial] { return AdbClient::tcpip(serial, kWifiAdbPort); },
        [this, serial](bool switched) {
            if (!switched) {
                message(tr("Failed to tcpip"), MessageKind::Error, kConnectionSwitchTimeoutMs);
                m_device->setSwitchingConnection(false);
                return;
            }
            QTimer::singleShot(stepDelayMs, this, [this, serial, address = m_device->ipAddress()] {
                AdbPool::run(
                    this, [serial, address] { return AdbClient::connect(serial, address, kWifiAdbPort); },
                    [this](bool connected) {
                        if (connected)
                            message(tr("WiFi connection enabled"), MessageKind::Success, kConnectionSwitchTimeoutMs);
                        else
                            message(tr("Failed to enable \r WiFi connection"), MessageKind::Error, kConnectionSwitchTimeoutMs);
                        m_device->setSwitchingConnection(false);
                    });
            });
        });
}

void DeviceActions::disconnectWiFi()
{
    const QString serial = m_device->adbConnectionSerial();
    AdbPool::run(this, [serial] { return AdbClient::disconnect(serial); }, [this](bool disconnected) {
        if (!disconnected) {
            message(tr("Failed to disconnect WiFi"), MessageKind::Error, kConnectionSwitchTimeoutMs);
            return;
        }
        m_device->removeFromDeviceGroup();
    });
}

void DeviceActions::setUSBConnection()
{
    const QString serial = m_device->adbConnectionSerial();
    AdbPool::run(this, [serial] { return AdbClient::usb(serial); }, [this](bool switched) {
        if (switched)
            message(tr("USB connection enabled"), MessageKind::Success);
        else
            message(tr("Failed to switch to USB"), MessageKind::Error, kConnectionSwitchTimeoutMs);
    });
}

void DeviceActions::runInBackground(const QList<AdbTask::Step> &steps, const QString &successText,
                                    const QString &failureText, int failureTimeout)
{
    auto *task = new AdbTask(steps);
    const quint64 id = task->id();
    m_tasks.insert(id);
    connect(task, &AdbTask::finished, this, [this, id, successText, failureText, failureTimeout](const AdbResult &result) {
        m_tasks.remove(id);
        if (result.ok())
            message(successText, MessageKind::Success);
        else
            message(failureText + ": " + result.text, MessageKind::Error, failureTimeout);
    });
    AdbWorkPool::instance()->submit(task);
}

void DeviceActions::cancelSessionWork()
{
    for (const quint64 id : std::as_const(m_tasks))
        AdbWorkPool::cancel(id);
}

void DeviceActions::installAPK(const QString &filePath)
{
    if (!connected(kNotConnectedTimeoutMs))
        return;
    message(tr("Installing APK"), MessageKind::Info, kLongInfoTimeoutMs);
    runInBackground(AdbTask::installSteps(m_device->adbConnectionSerial(), filePath), tr("APK installed"),
                    tr("APK installation failed"), kLongInfoTimeoutMs);
}

void DeviceActions::uploadFile(const QString &filePath)
{
    if (!connected(MessageKind::timeoutMs(MessageKind::Error)))
        return;
    message(tr("Uploading File"), MessageKind::Info, kLongInfoTimeoutMs);
    runInBackground(AdbTask::uploadSteps(m_device->adbConnectionSerial(), filePath), tr("File uploaded"),
                    tr("File upload failed"), kUploadTimeoutMs);
}

void DeviceActions::runAutojs(const QString &autojsPath)
{
    m_autojs->run(autojsPath);
}

void DeviceActions::stopAutojs()
{
    m_autojs->stop();
}

// Power goes through adb, so that it works whatever the phone's screen shows; only with a session,
// as the buttons that ask for it.
void DeviceActions::shutdown()
{
    if (m_device->controller())
        AdbPool::post([serial = m_device->adbConnectionSerial()] { AdbClient::shutdown(serial); });
}

void DeviceActions::reboot()
{
    if (m_device->controller())
        AdbPool::post([serial = m_device->adbConnectionSerial()] { AdbClient::reboot(serial); });
}

// The buttons' key presses and gestures; without a control channel they do nothing.
void DeviceActions::sleep() { if (Controller *c = m_device->controller()) c->actionSleep(); }
void DeviceActions::wakeUp() { if (Controller *c = m_device->controller()) c->actionWakeUp(); }
void DeviceActions::volumeUp() { if (Controller *c = m_device->controller()) c->actionVolumeUp(); }
void DeviceActions::volumeDown() { if (Controller *c = m_device->controller()) c->actionVolumeDown(); }
void DeviceActions::rotateScreen() { if (Controller *c = m_device->controller()) c->actionRotateScreen(); }
void DeviceActions::swipeUp() { if (Controller *c = m_device->controller()) c->actionSwipeUp(); }
void DeviceActions::swipeDown() { if (Controller *c = m_device->controller()) c->actionSwipeDown(); }
void DeviceActions::swipeLeft() { if (Controller *c = m_device->controller()) c->actionSwipeLeft(); }
void DeviceActions::swipeRight() { if (Controller *c = m_device->controller()) c->actionSwipeRight(); }
void DeviceActions::back() { if (Controller *c = m_device->controller()) c->actionBack(); }
void DeviceActions::showTaskList() { if (Controller *c = m_device->controller()) c->actionShowTaskList(); }
void DeviceActions::home() { if (Controller *c = m_device->controller()) c->actionHome(); }

GroupOperation *DeviceActions::executeADBCommand(const QString &input)
{
    // Owned here: QML never takes an object with a parent.
    if (!m_commands)
        m_commands = new GroupOperation(this);
    m_commands->runCommand({QVariant::fromValue(m_device)}, input);
    return m_commands;
}

void DeviceActions::setWallpaper(const QString &nickname)
{
    // The picture is as large as the phone's screen, as far as its video has shown it.
    const int width = m_device->frameSize().width();
    const int height = m_device->frameSize().height();
    if (!m_device->controller() || width <= 0 || height <= 0)
        return;
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    // Drawing, saving and pushing the picture all happen off the GUI thread.
    AdbPool::post([serial = m_device->adbConnectionSerial(), desktop, nickname, width, height] {
        QDir().mkpath(desktop);
        const QString path = desktop + "/" + SafeFileName::make("wallpaper_" + nickname, ".png");
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::yellow, 2, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        QFont font("Arial", 80);
        font.setWeight(QFont::Bold);
        painter.setFont(font);
        QRect area = image.rect();
        area.setTop(150);
        painter.drawText(area, Qt::AlignHCenter | Qt::AlignTop, nickname);
        painter.end();
        if (image.save(path, "PNG"))
            AdbClient::setWallpaper(serial, path);
    });
}
