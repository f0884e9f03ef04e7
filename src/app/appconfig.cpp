#include "appconfig.h"

#include "appowned.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSettings>
#include <QStandardPaths>

namespace {
const char *const kGroup = "app_settings";
const char *const kAppVersion = "1.0.1";
const char *const kAppName = "Korvel Multi-Phones Control";
}

AppConfig::AppConfig()
    : m_settings(new QSettings(QSettings::NativeFormat, QSettings::UserScope, "Application", "Korvel", this))
{
    m_appInfo.appName = kAppName;
    m_appInfo.appVersion = kAppVersion;
}

AppConfig *AppConfig::instance()
{
    static AppOwned<AppConfig> config([] { return new AppConfig; });
    return config.get();
}


QString AppConfig::getAppSetting(const QString &key, const QString &defaultValue) const
{
    m_settings->beginGroup(kGroup);
    const QString value = m_settings->value(key, defaultValue).toString();
    m_settings->endGroup();
    return value;
}

void AppConfig::setAppSetting(const QString &key, const QString &value)
{
    m_settings->beginGroup(kGroup);
    m_settings->setValue(key, value);
    m_settings->endGroup();
    m_settings->sync();
    emit appSettingChanged(key, value);
}

QString AppConfig::desktopFolder(const QString &subFolder) const
{
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation) + "/KV/" + subFolder;
}

QString AppConfig::getLocale() const { return getAppSetting("locale", QLocale::system().name()); }
void AppConfig::setLocale(const QString &locale) { setAppSetting("locale", locale); }

QString AppConfig::getVideoSavePath() const { return getAppSetting("video_save_path", desktopFolder("Videos")); }
void AppConfig::setVideoSavePath(const QString &path) { setAppSetting("video_save_path", path); }

QString AppConfig::getScreenshotSavePath() const
{
    return getAppSetting("screenshot_save_path", desktopFolder("Screenshots"));
}
void AppConfig::setScreenshotSavePath(const QString &path) { setAppSetting("screenshot_save_path", path); }

QString AppConfig::getKeyMappingSavePath() const
{
    return getAppSetting("key_mapping_save_path", desktopFolder("KeyMap"));
}
void AppConfig::setKeyMappingSavePath(const QString &path) { setAppSetting("key_mapping_save_path", path); }

QString AppConfig::getCommonPhraseSavePath() const
{
    return getAppSetting("common_phrase_save_path", desktopFolder("CommonPhrase"));
}
void AppConfig::setCommonPhraseSavePath(const QString &path) { setAppSetting("common_phrase_save_path", path); }

QString AppConfig::getDeviceNicknameSavePath() const
{
    return getAppSetting("device_nickname_save_path", desktopFolder("DeviceNickname"));
}
void AppConfig::setDeviceNicknameSavePath(const QString &path) { setAppSetting("device_nickname_save_path", path); }

QString AppConfig::getDeviceGroupSavePath() const
{
    return getAppSetting("device_group_save_path", desktopFolder("DeviceGroup"));
}
void AppConfig::setDeviceGroupSavePath(const QString &path) { setAppSetting("device_group_save_path", path); }

QString AppConfig::updateServiceUrl()
{
    return qEnvironmentVariable("KORVEL_UPDATE_URL");
}

void AppConfig::getAppInfoFromServer()
{
    const QUrl url(updateServiceUrl());
    if (!url.isValid() || url.isEmpty())
        return;
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setTransferTimeout(10000);
    QNetworkReply *reply = m_network->get(request);
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        if (reply->error() != QNetworkReply::NoError)
            return; // Offline is normal; the installed version simply stays the one shown.
        const QJsonObject fields = QJsonDocument::fromJson(reply->readAll()).object();
        const QString name = fields.value("app_name").toString();
        const QString version = fields.value("app_version").toString();
        if (version.isEmpty())
            return;
        if (!name.isEmpty())
            m_appInfo.appName = name;
        m_appInfo.latestVersion = version;
        emit appInfoChanged();
    });
}

void AppConfig::sync()
{
    m_settings->sync();
}

void AppConfig::reset()
{
    m_settings->remove(kGroup);
    m_settings->sync();
}
