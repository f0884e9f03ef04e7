#pragma once

#include <QObject>
#include <QString>

// What the application knows about itself, and what the update service last reported.
struct AppInfo
{
    Q_GADGET
    Q_PROPERTY(QString appName MEMBER appName)
    Q_PROPERTY(QString appVersion MEMBER appVersion)
    Q_PROPERTY(QString latestVersion MEMBER latestVersion)

public:
    QString appName;
    QString appVersion;
    // Empty until the update service has answered.
    QString latestVersion;

    bool operator==(const AppInfo &other) const
    {
        return appName == other.appName && appVersion == other.appVersion
            && latestVersion == other.latestVersion;
    }
};
