#pragma once

#include <QJsonObject>
#include <QObject>
#include <QSize>
#include <QString>

#include <functional>

class Journal;
class PhoneChannel;

// Who the simulated phone is. Filled from the command line.
struct PhoneProfile
{
    QString serial;
    QString model;
    QString manufacturer;
    QString product;          // ro.product.name
    QString device;           // ro.product.device
    QString androidVersion;   // ro.build.version.release
    int sdk = 33;             // ro.build.version.sdk
    QSize screenSize;         // portrait physical size, e.g. 1080x2400
    QString wifiAddress;      // 127.0.0.x: the phone's own loopback "Wi-Fi" address
    QString dataDir;          // journal, sandbox and control files live here
    QString streamFile;       // optional pre-encoded H.264 played instead of the test pattern
    bool animate = false;     // keep the test pattern moving so frames flow at max fps
    // "on", or what a phone without sound answers on the audio socket: "disabled" (Android 10
    // and older) or "error" (capture failed).
    QString audio = "on";
    QString failInstall;      // when set, the package manager refuses every install with this code
    int slowSyncBytesPerSecond = 0;   // when above 0, pushes arrive no faster than this
    int colourIndex = 0;      // phones with different indexes show clearly different colours
};

// The state of one simulated phone shared by the adb daemon and the simulated server.
class Phone : public QObject
{
    Q_OBJECT
public:
    explicit Phone(const PhoneProfile &profile, QObject *parent = nullptr);
    ~Phone() override;

    const PhoneProfile &profile() const { return m_profile; }
    Journal &journal() { return *m_journal; }

    // Maps a device path such as "/data/local/tmp/x.apk" into the phone's sandbox folder.
    QString sandboxPath(const QString &devicePath) const;
    bool deviceFileExists(const QString &devicePath) const;

    // Current orientation in quarter turns (0 = natural portrait).
    int rotation() const { return m_rotation; }
    // Physical size as currently displayed: sides swapped for odd rotations.
    QSize displaySize() const;
    void setRotation(int rotation);

    QString clipboard() const { return m_clipboard; }
    // fromPc: set by a control message from the PC (no device message is sent back).
    void setClipboard(const QString &text, bool fromPc);

    // Opens a stream from the phone to the PC through the reverse tunnel registered for
    // localabstract:<name>. Returns nullptr when no such tunnel exists (connection refused).
    // Installed by the adb daemon.
    using ReverseOpener = std::function<PhoneChannel *(const QString &abstractName)>;
    void setReverseOpener(ReverseOpener opener) { m_reverseOpener = std::move(opener); }
    PhoneChannel *openReverse(const QString &abstractName) const;

signals:
    void rotationChanged(int rotation);
    // The clipboard changed on the phone by other means than the PC.
    void clipboardChangedOnPhone(const QString &text);
    // Admin commands.
    void killServerRequested();
    void vanishRequested();
    // Back after vanishing, as a phone plugged in again.
    void returnRequested();

private:
    PhoneProfile m_profile;
    Journal *m_journal;
    int m_rotation = 0;
    QString m_clipboard;
    ReverseOpener m_reverseOpener;
};
