#include "devicegroup.h"

#include "device.h"

DeviceGroup::DeviceGroup(QObject *parent)
    : QAbstractListModel(parent)
{
}

DeviceGroup::~DeviceGroup() = default;

int DeviceGroup::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_devices.size();
}

QVariant DeviceGroup::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_devices.size() || role != DeviceRole)
        return {};
    return QVariant::fromValue(m_devices.at(index.row()));
}

QHash<int, QByteArray> DeviceGroup::roleNames() const
{
    return {{DeviceRole, "device"}};
}

void DeviceGroup::appendDevice(Device *device)
{
    beginInsertRows(QModelIndex(), m_devices.size(), m_devices.size());
    device->setParent(this);
    device->setDeviceGroup(this);
    m_devices.append(device);
    endInsertRows();
    emit deviceCountChanged();
    emit deviceAddedIntoGroup(device);
}

void DeviceGroup::removeDevice(Device *device)
{
    const int row = m_devices.indexOf(device);
    if (row < 0)
        return;
    beginRemoveRows(QModelIndex(), row, row);
    m_devices.removeAt(row);
    endRemoveRows();
    emit deviceCountChanged();
    emit deviceRemovedFromGroup(device);
    for (Device *remaining : std::as_const(m_devices))
        emit remaining->indexInGroupChanged();
    device->deleteLater();
}

void DeviceGroup::renameTo(const QString &newName)
{
    if (newName.isEmpty() || newName == m_name)
        return;
    m_name = newName;
    emit nameChanged();
}
