#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

// One line of `adb devices -l`.
struct ADBDeviceInfo
{
    Q_GADGET
    Q_PROPERTY(QString adb_serial MEMBER adb_serial)
    Q_PROPERTY(QString model MEMBER model)
    Q_PROPERTY(QString product MEMBER product)
    Q_PROPERTY(bool is_usb_connection MEMBER is_usb_connection)
    Q_PROPERTY(int transport_id MEMBER transport_id)
    Q_PROPERTY(QString nickname MEMBER nickname)

public:
    QString adb_serial;
    QString model;
    QString product;
    bool is_usb_connection = false;
    qint32 transport_id = -1;
    // Joined from the nickname store above this layer; adb knows no nicknames.
    QString nickname;

    bool operator==(const ADBDeviceInfo &other) const
    {
        return adb_serial == other.adb_serial && model == other.model && product == other.product
            && is_usb_connection == other.is_usb_connection && transport_id == other.transport_id
            && nickname == other.nickname;
    }
};

Q_DECLARE_METATYPE(QList<ADBDeviceInfo>)
