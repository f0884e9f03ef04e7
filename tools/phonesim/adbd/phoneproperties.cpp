#include "phoneproperties.h"

#include "phone.h"

#include <QCryptographicHash>

namespace {
int ddrGigabytes(const QSize &screen)
{
    // Bigger screens come with more memory on real phones; keeps the farm varied.
    const int pixels = screen.width() * screen.height();
    if (pixels >= 1440 * 3000)
        return 12;
    if (pixels >= 1080 * 2300)
        return 8;
    return 4;
}
}

QMap<QString, QString> PhoneProperties::build(const PhoneProfile &profile, int adbPort, int tcpipPort)
{
    const QString brand = profile.manufacturer.toLower();
    const QString release = profile.androidVersion;
    const QString buildId = QString("TQ%1A.230805.001").arg(profile.sdk % 10);
    const QString fingerprint = QString("%1/%2/%3:%4/%5/%6:user/release-keys")
                                    .arg(brand, profile.product, profile.device, release, buildId,
                                         QString::number(9000000 + profile.sdk * 1013));
    const QString serial = hardwareSerial(adbPort);

    QMap<QString, QString> p;
    p["dhcp.wlan0.ipaddress"] = profile.wifiAddress;
    p["gsm.operator.alpha"] = "CHINA MOBILE";
    p["gsm.sim.state"] = "READY";
    p["persist.sys.locale"] = "zh-CN";
    p["ro.boot.ddr_size"] = QString("%1GB").arg(ddrGigabytes(profile.screenSize));
    p["ro.boot.serialno"] = serial;
    p["ro.build.characteristics"] = "phone";
    p["ro.build.fingerprint"] = fingerprint;
    p["ro.build.id"] = buildId;
    p["ro.build.type"] = "user";
    p["ro.build.version.release"] = release;
    p["ro.build.version.sdk"] = QString::number(profile.sdk);
    p["ro.csc.country_code"] = "CHINA";
    p["ro.csc.sales_code"] = "CHC";
    p["ro.hardware"] = profile.device;
    p["ro.kernel.qemu"] = "0";
    p["ro.product.board"] = profile.device;
    p["ro.product.brand"] = brand;
    p["ro.product.cpu.abi"] = "arm64-v8a";
    p["ro.product.device"] = profile.device;
    p["ro.product.manufacturer"] = profile.manufacturer;
    p["ro.product.model"] = profile.model;
    p["ro.product.name"] = profile.product;
    p["ro.secure"] = "1";
    p["ro.serialno"] = serial;
    p["ro.sf.lcd_density"] = profile.screenSize.width() >= 1440 ? "560" : profile.screenSize.width() >= 1080 ? "420" : "320";
    if (tcpipPort > 0)
        p["service.adb.tcp.port"] = QString::number(tcpipPort);
    p["sys.boot_completed"] = "1";
    p["sys.usb.config"] = "mtp,adb";
    p["sys.usb.state"] = "mtp,adb";
    return p;
}

QString PhoneProperties::hardwareSerial(int seed)
{
    const QByteArray hash = QCryptographicHash::hash(QByteArray::number(seed) + "phonesim",
                                                     QCryptographicHash::Sha1);
    static const char alphabet[] = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";
    QString serial = "R5C";
    for (int i = 0; i < 8; ++i)
        serial += QChar(alphabet[quint8(hash.at(i)) % 34]);
    return serial;
}
