#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QString>
#include <QtQml/qqmlregistration.h>

class Device;

// A named, ordered collection of phone sessions; the device grid uses it as its model.
class DeviceGroup : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    Q_PROPERTY(int deviceCount READ deviceCount NOTIFY deviceCountChanged)

public:
    static constexpr int DeviceRole = Qt::UserRole + 1;

    explicit DeviceGroup(QObject *parent = nullptr);
    ~DeviceGroup() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QString name() const { return m_name; }
    int deviceCount() const { return m_devices.size(); }
    const QList<Device *> &devices() const { return m_devices; }
    int indexOf(Device *device) const { return m_devices.indexOf(device); }

    // Takes ownership and appends it as the last row.
    void appendDevice(Device *device);
    // Removes the row and deletes the device later; a device not in the group is ignored.
    void removeDevice(Device *device);

    Q_INVOKABLE void renameTo(const QString &newName);

signals:
    void nameChanged();
    void deviceCountChanged();
    void deviceAddedIntoGroup(Device *device);
    void deviceRemovedFromGroup(Device *device);

private:
    QString m_name;
    QList<Device *> m_devices;
};
