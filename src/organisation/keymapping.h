#pragma once

#include "jsonstore.h"
#include "keymappingprofile.h"

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QVariantList>


// The application's key-mapping profiles, kept in keymappings.json.
class KeyMapping : public JsonStore
{
    Q_OBJECT
    Q_PROPERTY(QStringList profileNames READ profileNames NOTIFY profilesChanged)
    Q_PROPERTY(KeyMappingProfile *currentProfile READ currentProfile WRITE setCurrentProfile
                   NOTIFY currentProfileChanged)
    Q_PROPERTY(QVariantList currentMappings READ currentMappings NOTIFY currentMappingsChanged)

public:
    static KeyMapping *instance();

    QStringList profileNames() const;
    KeyMappingProfile *currentProfile() const { return m_current; }
    QVariantList currentMappings() const;

    Q_INVOKABLE void setCurrentProfile(KeyMappingProfile *profile);
    Q_INVOKABLE bool addProfile(const QString &profileName);
    Q_INVOKABLE void removeProfile(const QString &profileName);
    Q_INVOKABLE KeyMappingProfile *getProfile(const QString &profileName) const;
    Q_INVOKABLE bool hasProfile(const QString &profileName) const;
    Q_INVOKABLE bool saveToFile();
    // Replaces the profiles in memory by the file's. A damaged file is moved aside first, so that
    // the next save cannot overwrite it, and the profiles start empty.
    Q_INVOKABLE bool loadFromFile();
    // The file's path; its folder is made when missing.
    Q_INVOKABLE QString getConfigFilePath() const;
    // How the editor names a captured key: "Ctrl+Shift+A", "F5", "Key_16777250"; empty for a bare
    // modifier key, which is never captured on its own.
    Q_INVOKABLE static QString keyDisplayText(int key, int modifiers);

signals:
    void profilesChanged();
    void currentProfileChanged();
    void currentMappingsChanged();

private:
    KeyMapping();
    void clearProfiles();
    KeyMappingProfile *makeProfile(const QString &name);

    QList<KeyMappingProfile *> m_profiles;
    QPointer<KeyMappingProfile> m_current;
};
