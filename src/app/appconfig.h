#pragma once

#include "appinfo.h"

#include <QObject>
#include <QString>

class QNetworkAccessManager;
class QSettings;

// The user's application settings (group "app_settings" of the platform's settings store) and
// the locations of the adb program and the server file. One instance per process.
class AppConfig : public QObject
{
    Q_OBJECT
    Q_PROPERTY(AppInfo appInfo READ appInfo NOTIFY appInfoChanged)
    Q_PROPERTY(QString currentVersion READ currentVersion CONSTANT)

public:
    static AppConfig *instance();
    // "true" when the phones that were running at the last end start again at launch.
    static constexpr const char *startRackAtLaunchKey = "start_rack_at_launch";

    AppInfo appInfo() const { return m_appInfo; }
    QString currentVersion() const { return m_appInfo.appVersion; }

    Q_INVOKABLE QString getAppSetting(const QString &key, const QString &defaultValue) const;
    Q_INVOKABLE void setAppSetting(const QString &key, const QString &value);
    Q_INVOKABLE QString getLocale() const;
    Q_INVOKABLE void setLocale(const QString &locale);
    Q_INVOKABLE QString getVideoSavePath() const;
    Q_INVOKABLE void setVideoSavePath(const QString &path);
    Q_INVOKABLE QString getScreenshotSavePath() const;
    Q_INVOKABLE void setScreenshotSavePath(const QString &path);
    Q_INVOKABLE QString getKeyMappingSavePath() const;
    Q_INVOKABLE void setKeyMappingSavePath(const QString &path);
    Q_INVOKABLE QString getCommonPhraseSavePath() const;
    Q_INVOKABLE void setCommonPhraseSavePath(const QString &path);
    Q_INVOKABLE QString getDeviceNicknameSavePath() const;
    Q_INVOKABLE void setDeviceNicknameSavePath(const QString &path);
    Q_INVOKABLE QString getDeviceGroupSavePath() const;
    Q_INVOKABLE void setDeviceGroupSavePath(const QString &path);
    Q_INVOKABLE void getAppInfoFromServer();
    Q_INVOKABLE void sync();

    void reset();

    // Where getAppInfoFromServer asks; empty means "no update service configured" and the call
    // does nothing. Set through KORVEL_UPDATE_URL so that no traffic leaves the machine by default.
    static QString updateServiceUrl();

signals:
    void appSettingChanged(const QString &key, const QString &value);
    void appInfoChanged();

private:
    AppConfig();
    QString desktopFolder(const QString &subFolder) const;

    QSettings *m_settings;
    AppInfo m_appInfo;
    QNetworkAccessManager *m_network = nullptr;
};
