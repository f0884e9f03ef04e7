#pragma once

#include <QList>
#include <QMetaType>
#include <QSize>
#include <QString>

// A phone's properties, read with getprop and "wm size".
struct DeviceInfo
{
    Q_GADGET
    Q_PROPERTY(QString manufacturer MEMBER manufacturer)
    Q_PROPERTY(QString model MEMBER model)
    Q_PROPERTY(QString ddr_size MEMBER ddr_size)
    Q_PROPERTY(QString build_version MEMBER build_version)
    Q_PROPERTY(QString hardward_serial MEMBER hardward_serial)
    Q_PROPERTY(QString build_fingerprint MEMBER build_fingerprint)
    Q_PROPERTY(QString country_code MEMBER country_code)
    Q_PROPERTY(QString sales_code MEMBER sales_code)
    Q_PROPERTY(QString gsm_operator_alpha MEMBER gsm_operator_alpha)
    Q_PROPERTY(QString adb_tcp_port MEMBER adb_tcp_port)
    Q_PROPERTY(QString usb_config MEMBER usb_config)
    Q_PROPERTY(QSize screen_size MEMBER screen_size)

public:
    QString manufacturer;
    QString model;
    QString ddr_size;
    QString build_version;
    QString hardward_serial;
    QString build_fingerprint;
    QString country_code;
    QString sales_code;
    QString gsm_operator_alpha;
    QString adb_tcp_port;
    QString usb_config;
    QSize screen_size{-1, -1};
};

Q_DECLARE_METATYPE(QList<DeviceInfo>)
