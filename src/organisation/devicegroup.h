#pragma once

#include "adbdeviceinfo.h"
#include "groupsettings.h"

#include <QAbstractListModel>
#include <QJsonObject>
#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class Device;
class GroupActions;
class GroupControl;

// A named, ordered collection of phone sessions with the stream and layout settings they share.
// The device grid uses it as its model. Group control and the actions on every phone are objects
// of their own that it owns.
class DeviceGroup : public QAbstractListModel
{
    Q_OBJECT
    Q_MOC_INCLUDE("device.h")
    Q_MOC_INCLUDE("groupactions.h")
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    Q_PROPERTY(int deviceCount READ deviceCount NOTIFY deviceCountChanged)
    Q_PROPERTY(QVariantList devicesForRepeater READ getDevicesForRepeater NOTIFY deviceCountChanged)
    Q_PROPERTY(bool groupControlMode READ groupControlMode NOTIFY groupControlModeChanged)
    Q_PROPERTY(Device *hostDevice READ hostDevice NOTIFY hostDeviceChanged)
    Q_PROPERTY(bool showControlButtons READ showControlButtons WRITE setShowControlButtons NOTIFY showControlButtonsChanged)
    Q_PROPERTY(int maxSize READ maxSize WRITE setMaxSize NOTIFY maxSizeChanged)
    Q_PROPERTY(int maxFPS READ maxFPS WRITE setMaxFPS NOTIFY maxFPSChanged)
    Q_PROPERTY(int bitRate READ bitRate WRITE setBitRate NOTIFY bitRateChanged)
    Q_PROPERTY(int maxSizeBigView READ maxSizeBigView WRITE setMaxSizeBigView NOTIFY maxSizeBigViewChanged)
    Q_PROPERTY(int maxFPSBigView READ maxFPSBigView WRITE setMaxFPSBigView NOTIFY maxFPSBigViewChanged)
    Q_PROPERTY(int bitRateBigView READ bitRateBigView WRITE setBitRateBigView NOTIFY bitRateBigViewChanged)
    Q_PROPERTY(int clickDelaySeconds READ clickDelaySeconds WRITE setClickDelaySeconds NOTIFY clickDelaySecondsChanged)
    Q_PROPERTY(int cellWidth READ cellWidth WRITE setCellWidth NOTIFY cellWidthChanged)
    Q_PROPERTY(bool enableAudio READ enableAudio WRITE setEnableAudio NOTIFY enableAudioChanged)
    Q_PROPERTY(Orientation orientation READ orientation WRITE setOrientation NOTIFY orientationChanged)
    Q_PROPERTY(int bigViewWidth READ bigViewWidth WRITE setBigViewWidth NOTIFY bigViewWidthChanged)
    Q_PROPERTY(GroupActions *actions READ actions CONSTANT)

public:
    enum Orientation { Portrait = 0, Landscape = 1 };
    Q_ENUM(Orientation)

    static constexpr int DeviceRole = Qt::UserRole + 1;

    // The spacing of the staggered steps, in milliseconds. Tests shorten them.
    struct StaggerIntervals
    {
        int addMs = 200;
        int stopMs = 300;
        int clearMs = 500;
    };
    static void setStaggerIntervals(const StaggerIntervals &intervals);
    static StaggerIntervals staggerIntervals();

    explicit DeviceGroup(QObject *parent = nullptr);
    ~DeviceGroup() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QString name() const { return m_name; }
    int deviceCount() const { return m_devices.size(); }
    const QList<Device *> &devices() const { return m_devices; }
    int indexOf(Device *device) const { return m_devices.indexOf(device); }
    bool groupControlMode() const;
    Device *hostDevice() const;
    GroupActions *actions() const { return m_actions; }

    bool showControlButtons() const { return m_settings.value(GroupSettings::ShowControlButtons); }
    int maxSize() const { return m_settings.value(GroupSettings::MaxSize); }
    int maxFPS() const { return m_settings.value(GroupSettings::MaxFPS); }
    int bitRate() const { return m_settings.value(GroupSettings::BitRate); }
    int maxSizeBigView() const { return m_settings.value(GroupSettings::MaxSizeBigView); }
    int maxFPSBigView() const { return m_settings.value(GroupSettings::MaxFPSBigView); }
    int bitRateBigView() const { return m_settings.value(GroupSettings::BitRateBigView); }
    int clickDelaySeconds() const { return m_settings.value(GroupSettings::ClickDelaySeconds); }
    int cellWidth() const { return m_settings.value(GroupSettings::CellWidth); }
    bool enableAudio() const { return m_settings.value(GroupSettings::EnableAudio); }
    Orientation orientation() const { return Orientation(m_settings.value(GroupSettings::Orientation)); }
    int bigViewWidth() const { return m_settings.value(GroupSettings::BigViewWidth); }

    // Takes ownership and appends the device as the last row at once, leaving its stream parameters
    // as they are (addDevices is the way with the group's settings); its new controllers take the
    // group's click delay like every member's.
    void appendDevice(Device *device);
    // Removes the row and deletes the device later; a device not in the group is ignored.
    void removeDevice(Device *device);

    // The serials of the group's phones in position order, attached or not: a phone that comes
    // back takes its old place. Loading sets them without a signal.
    const QStringList &memberSerials() const { return m_memberSerials; }
    void setMemberSerials(const QStringList &serials);
    void forgetMember(const QString &serial);
    // The members the user wants running (Start, Start All; Stop and Stop All clear it), in the
    // file with the members. Loading sets them without a signal; a wanted phone starts as soon as
    // it joins the group.
    const QStringList &wantedSerials() const { return m_wantedSerials; }
    void setWantedSerials(const QStringList &serials);
    // Whether a session for the serial is in the group or on its way in.
    bool holdsSerial(const QString &serial) const;

    // The settings record of device_groups.json. Loading stores the values without saving or
    // applying them; a missing key or one of the wrong type takes its default.
    void loadSettings(const QJsonObject &settings);
    QJsonObject settingsToJson() const;
    // What the settings dialog offers for a setting, by its property name: {"from": …, "to": …};
    // empty for no setting.
    Q_INVOKABLE QVariantMap settingRange(const QString &key) const;

    Q_INVOKABLE bool addDevices(const QList<ADBDeviceInfo> &deviceInfos);
    Q_INVOKABLE void moveDevicesToGroup(const QStringList &serials, DeviceGroup *targetGroup);
    Q_INVOKABLE void clearDevices();
    Q_INVOKABLE void renameTo(const QString &newName);
    Q_INVOKABLE void startGroupControl();
    Q_INVOKABLE void stopGroupControl();
    Q_INVOKABLE void startAllDevices();
    Q_INVOKABLE void stopAllDevices();
    Q_INVOKABLE void setShowControlButtons(bool value) { changeSetting(GroupSettings::ShowControlButtons, value, &DeviceGroup::showControlButtonsChanged); }
    Q_INVOKABLE void setMaxSize(int value) { changeSetting(GroupSettings::MaxSize, value, &DeviceGroup::maxSizeChanged); }
    Q_INVOKABLE void setMaxFPS(int value) { changeSetting(GroupSettings::MaxFPS, value, &DeviceGroup::maxFPSChanged); }
    Q_INVOKABLE void setBitRate(int value) { changeSetting(GroupSettings::BitRate, value, &DeviceGroup::bitRateChanged); }
    Q_INVOKABLE void setMaxSizeBigView(int value) { changeSetting(GroupSettings::MaxSizeBigView, value, &DeviceGroup::maxSizeBigViewChanged); }
    Q_INVOKABLE void setMaxFPSBigView(int value) { changeSetting(GroupSettings::MaxFPSBigView, value, &DeviceGroup::maxFPSBigViewChanged); }
    Q_INVOKABLE void setBitRateBigView(int value) { changeSetting(GroupSettings::BitRateBigView, value, &DeviceGroup::bitRateBigViewChanged); }
    Q_INVOKABLE void setClickDelaySeconds(int value) { changeSetting(GroupSettings::ClickDelaySeconds, value, &DeviceGroup::clickDelaySecondsChanged); }
    Q_INVOKABLE void setCellWidth(int value) { changeSetting(GroupSettings::CellWidth, value, &DeviceGroup::cellWidthChanged); }
    Q_INVOKABLE void setEnableAudio(bool enableAudio);
    Q_INVOKABLE void setOrientation(Orientation value) { changeSetting(GroupSettings::Orientation, value, &DeviceGroup::orientationChanged); }
    Q_INVOKABLE void setBigViewWidth(int value) { changeSetting(GroupSettings::BigViewWidth, value, &DeviceGroup::bigViewWidthChanged); }
    Q_INVOKABLE void applySettingsToAllDevices();
    Q_INVOKABLE QVariantList getDevicesForRepeater() const;

signals:
    void nameChanged();
    void deviceCountChanged();
    void deviceAddedIntoGroup(Device *device);
    void deviceRemovedFromGroup(Device *device);
    void groupControlModeChanged();
    void hostDeviceChanged();
    void showControlButtonsChanged();
    void maxSizeChanged();
    void maxFPSChanged();
    void bitRateChanged();
    void maxSizeBigViewChanged();
    void maxFPSBigViewChanged();
    void bitRateBigViewChanged();
    void clickDelaySecondsChanged();
    void cellWidthChanged();
    void enableAudioChanged();
    void orientationChanged();
    void bigViewWidthChanged();
    void settingsChanged();
    void membersChanged();

private:
    // Stream parameters and the click delay (drawClickDelay).
    void applySettingsToDevice(Device *device, quint32 random, bool newToGroup) const;
    // For a non-host phone with a controller, a click delay drawn from `random` below the group's
    // bound. Below one second a controller new to the group gets none and one already here keeps
    // what it had: lowering the setting leaves the drawn delays alone.
    void drawClickDelay(Device *device, quint32 random, bool newToGroup) const;
    // Inserts the row at the device's remembered position, or last.
    void placeRow(Device *device);
    void remember(const QString &serial);
    void insertDevice(Device *device);
    void takeRow(Device *device);
    void dropHost();
    void announceIndexes();
    void rememberWanted(Device *device);
    // Nicknames come from the nickname store and a rename goes back to it.
    static void followNickname(Device *device);
    // Stores a changed setting and, for a named group, applies and announces it.
    void changeSetting(GroupSettings::Key key, int value, void (DeviceGroup::*changed)());

    GroupControl *m_control;
    GroupActions *m_actions;
    QString m_name;
    QList<Device *> m_devices;
    QStringList m_memberSerials;
    QStringList m_wantedSerials;
    // Devices made by addDevices and waiting for their staggered insertion.
    QList<QPointer<Device>> m_arriving;
    GroupSettings m_settings;
};
