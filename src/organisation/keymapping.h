#pragma once

#include "keymappingprofile.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

// The application's key-mapping profiles, kept in keymappings.json.
class KeyMapping : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QStringList profileNames READ profileNames NOTIFY profilesChanged)
    Q_PROPERTY(KeyMappingProfile *currentProfile READ currentProfile WRITE setCurrentProfile
                   NOTIFY currentProfileChanged)
    Q_PROPERTY(QVariantList currentMappings READ currentMappings NOTIFY currentMappingsChanged)
    // What went wrong reading the file, for the user; empty when it was read or absent.
    Q_PROPERTY(QString fileMessage READ fileMessage NOTIFY fileMessageChanged)

public:
    static KeyMapping *instance();
    static KeyMapping *create(QQmlEngine *, QJSEngine *);

    QStringList profileNames() const;
    KeyMappingProfile *currentProfile() const { return m_current; }
    QVariantList currentMappings() const;
    QString fileMessage() const { return m_fileMessage; }

    Q_INVOKABLE void setCurrentProfile(KeyMappingProfile *profile);
    Q_INVOKABLE bool addProfile(const QString &profileName);
    Q_INVOKABLE void removeProfile(const QString &profileName);
    Q_INVOKABLE KeyMappingProfile *getProfile(const QString &profileName) const;
    Q_INVOKABLE bool hasProfile(const QString &profileName) const;
    Q_INVOKABLE bool saveToFile();
    // Replaces the profiles in memory by the file's. A damaged file is moved aside first, so that
    // the next save cannot overwrite it, and the profiles start empty.
    Q_INVOKABLE bool loadFromFile();
    Q_INVOKABLE QString getConfigFilePath() const;
    // How the editor names a captured key: "Ctrl+Shift+A", "F5", "Key_16777250"; empty for a bare
    // modifier key, which is never captured on its own.
    Q_INVOKABLE static QString keyDisplayText(int key, int modifiers);

signals:
    void profilesChanged();
    void currentProfileChanged();
    void currentMappingsChanged();
    void fileMessageChanged();

private:
    KeyMapping();
    void clearProfiles();
    KeyMappingProfile *makeProfile(const QString &name);
    void setFileMessage(const QString &problem);

    QList<KeyMappingProfile *> m_profiles;
    QPointer<KeyMappingProfile> m_current;
    QString m_fileMessage;
    // Set when a damaged file could not be moved aside: it is never written over.
    bool m_saveBlocked = false;
};
