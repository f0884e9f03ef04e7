#pragma once

#include "adbtask.h"
#include "messagekind.h"

#include <QObject>
#include <QSet>
#include <QString>

class Autojs;
class Device;
class GroupOperation;

// What the user does to one phone apart from mirroring it: the action buttons, the Wi-Fi and USB
// switches, installs, uploads, power, the nickname wallpaper, free-form adb commands and AutoJS.
// Adb work runs off the GUI thread; answers come back as the device's messages.
class DeviceActions : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Autojs *autojs READ autojs CONSTANT)

public:
    explicit DeviceActions(Device *device);
    ~DeviceActions() override;

    Autojs *autojs() const { return m_autojs; }

    // How the Wi-Fi switch waits between its adb steps. Tests shorten it.
    static void setStepDelay(int milliseconds);

    Q_INVOKABLE void setWiFiConnection();
    Q_INVOKABLE void disconnectWiFi();
    Q_INVOKABLE void setUSBConnection();
    Q_INVOKABLE void installAPK(const QString &filePath);
    Q_INVOKABLE void uploadFile(const QString &filePath);
    Q_INVOKABLE void runAutojs(const QString &autojsPath);
    Q_INVOKABLE void stopAutojs();
    Q_INVOKABLE void shutdown();
    Q_INVOKABLE void reboot();
    Q_INVOKABLE void sleep();
    Q_INVOKABLE void wakeUp();
    Q_INVOKABLE void volumeUp();
    Q_INVOKABLE void volumeDown();
    Q_INVOKABLE void rotateScreen();
    Q_INVOKABLE void swipeUp();
    Q_INVOKABLE void swipeDown();
    Q_INVOKABLE void swipeLeft();
    Q_INVOKABLE void swipeRight();
    Q_INVOKABLE void back();
    Q_INVOKABLE void showTaskList();
    Q_INVOKABLE void home();
    // Raw adb command lines on this phone, on the adb work pool; the answer streams into the
    // returned table's one row. A new call replaces (and cancels) the one before.
    Q_INVOKABLE GroupOperation *executeADBCommand(const QString &input);
    // Draws the nickname on a black picture of the phone's size and makes it the phone's wallpaper.
    void setWallpaper(const QString &nickname);
    // Installs and uploads go with their session: their adb processes are killed, their clean-up
    // still runs and their verdict still reaches the phone's cell.
    void cancelSessionWork();

private:
    void runInBackground(const QList<AdbTask::Step> &steps, const QString &successText, const QString &failureText,
                         int failureTimeout);
    bool connected(int notConnectedTimeout);
    void message(const QString &text, MessageKind::Kind kind, int timeout);
    void message(const QString &text, MessageKind::Kind kind);

    Device *m_device;
    Autojs *m_autojs;
    GroupOperation *m_commands = nullptr;
    // Installs and uploads under way, by task id.
    QSet<quint64> m_tasks;
};
