#include "keymapping.h"

#include "appowned.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

KeyMapping::KeyMapping()
    : JsonStore("keymappings.json", "profiles", QJsonValue::Object)
{
}

KeyMapping *KeyMapping::instance()
{
    static AppOwned<KeyMapping> mapping([] { return new KeyMapping; });
    return mapping.get();
}


QString KeyMapping::getConfigFilePath() const
{
    if (!folder().isEmpty())
        QDir().mkpath(folder());
    return filePath();
}

QStringList KeyMapping::profileNames() const
{
    QStringList names;
    for (const KeyMappingProfile *profile : m_profiles)
        names.append(profile->name());
    return names;
}

QVariantList KeyMapping::currentMappings() const
{
    return m_current ? m_current->getMappings() : QVariantList();
}

KeyMappingProfile *KeyMapping::makeProfile(const QString &name)
{
    auto *profile = new KeyMappingProfile(name, this);
    // Every edit is kept at once, whichever profile the editor shows.
    connect(profile, &KeyMappingProfile::mappingsChanged, this, &KeyMapping::saveToFile);
    connect(profile, &KeyMappingProfile::mappingsChanged, this, [this, profile] {
        if (profile == m_current)
            emit currentMappingsChanged();
    });
    return profile;
}

void KeyMapping::setCurrentProfile(KeyMappingProfile *profile)
{
    if (profile && !m_profiles.contains(profile))
        return;
    if (profile == m_current)
        return;
    m_current = profile;
    emit currentProfileChanged();
    emit currentMappingsChanged();
    saveToFile();
}

bool KeyMapping::addProfile(const QString &profileName)
{
    if (profileName.isEmpty() || hasProfile(profileName))
        return false;
    m_profiles.append(makeProfile(profileName));
    emit profilesChanged();
    saveToFile();
    return true;
}

void KeyMapping::removeProfile(const QString &profileName)
{
    KeyMappingProfile *profile = getProfile(profileName);
    if (!profile)
        return;
    m_profiles.removeOne(profile);
    const bool wasCurrent = profile == m_current;
    if (wasCurrent)
        m_current = nullptr;
    // Sessions hold the profile weakly: deleting it turns their key mapping off.
    profile->deleteLater();
    emit profilesChanged();
    if (wasCurrent) {
        emit currentProfileChanged();
        emit currentMappingsChanged();
    }
    saveToFile();
}

KeyMappingProfile *KeyMapping::getProfile(const QString &profileName) const
{
    for (KeyMappingProfile *profile : m_profiles) {
        if (profile->name() == profileName)
            return profile;
    }
    return nullptr;
}

bool KeyMapping::hasProfile(const QString &profileName) const
{
    return getProfile(profileName) != nullptr;
}

bool KeyMapping::saveToFile()
{
    QJsonObject profiles;
    for (const KeyMappingProfile *profile : m_profiles) {
        QJsonArray entries;
        for (const KeyMappingEntry &entry : profile->entries())
            entries.append(entry.toJson());
        profiles.insert(profile->name(), entries);
    }
    const QJsonObject root{{"version", "1.0"},
                           {"currentProfile", m_current ? m_current->name() : QString()},
                           {"profiles", profiles}};
    return writeFile(root);
}

void KeyMapping::clearProfiles()
{
    const bool hadCurrent = m_current;
    m_current = nullptr;
    qDeleteAll(m_profiles);
    m_profiles.clear();
    if (hadCurrent) {
        emit currentProfileChanged();
        emit currentMappingsChanged();
    }
}

bool KeyMapping::loadFromFile()
{
    // A missing file changes nothing: what is in memory stays, to be saved there.
    if (!QFile::exists(getConfigFilePath()))
        return false;
    const QJsonObject root = readFile();
    clearProfiles();
    if (!fileMessage().isEmpty()) {
        emit profilesChanged();
        return false;
    }
    const QJsonObject profiles = root.value("profiles").toObject();
    // Entries that cannot be mappings (wrong types, a second entry for one key) are left out.
    bool leftOut = !root.value("currentProfile").isUndefined() && !root.value("currentProfile").isString();
    for (auto it = profiles.begin(); it != profiles.end(); ++it) {
        KeyMappingProfile *profile = makeProfile(it.key());
        leftOut |= !it.value().isArray();
        for (const QJsonValue &value : it.value().toArray()) {
            KeyMappingEntry entry;
            leftOut |= !value.isObject() || !KeyMappingEntry::fromJson(value.toObject(), &entry) || !profile->append(entry);
        }
        m_profiles.append(profile);
    }
    emit profilesChanged();
    if (KeyMappingProfile *current = getProfile(root.value("currentProfile").toString())) {
        m_current = current;
        emit currentProfileChanged();
        emit currentMappingsChanged();
    }
    // The next save cannot write back what was left out; the file as it was stays beside it.
    if (leftOut)
        keepCopyAside();
    return true;
}

QString KeyMapping::keyDisplayText(int key, int modifiers)
{
    switch (key) {
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_Shift:
    case Qt::Key_Meta:
        return QString();
    default:
        break;
    }
    QString prefix;
#ifdef Q_OS_MACOS
    if (modifiers & Qt::ControlModifier)
        prefix += "Cmd+";
    if (modifiers & Qt::MetaModifier)
        prefix += "Ctrl+";
#else
    if (modifiers & Qt::ControlModifier)
        prefix += "Ctrl+";
    if (modifiers & Qt::MetaModifier)
        prefix += "Meta+";
#endif
    if (modifiers & Qt::AltModifier)
        prefix += "Alt+";
    if (modifiers & Qt::ShiftModifier)
        prefix += "Shift+";

    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9))
        return prefix + QChar(key);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12)
        return prefix + "F" + QString::number(key - Qt::Key_F1 + 1);
    static const QHash<int, QString> names{
        {Qt::Key_Space, "Space"},       {Qt::Key_Minus, "-"},           {Qt::Key_Equal, "="},
        {Qt::Key_BracketLeft, "["},     {Qt::Key_BracketRight, "]"},    {Qt::Key_Backslash, "\\"},
        {Qt::Key_Semicolon, ";"},       {Qt::Key_Apostrophe, "'"},      {Qt::Key_Comma, ","},
        {Qt::Key_Period, "."},          {Qt::Key_Slash, "/"},           {Qt::Key_QuoteLeft, "`"},
        {Qt::Key_Escape, "Esc"},        {Qt::Key_Tab, "Tab"},           {Qt::Key_Return, "Enter"},
        {Qt::Key_Enter, "Enter"},       {Qt::Key_Backspace, "Backspace"}, {Qt::Key_Delete, "Delete"},
        {Qt::Key_Insert, "Insert"},     {Qt::Key_Home, "Home"},         {Qt::Key_End, "End"},
        {Qt::Key_PageUp, "PageUp"},     {Qt::Key_PageDown, "PageDown"}, {Qt::Key_Left, "Left"},
        {Qt::Key_Right, "Right"},       {Qt::Key_Up, "Up"},             {Qt::Key_Down, "Down"},
    };
    const auto name = names.constFind(key);
    return prefix + (name != names.cend() ? *name : "Key_" + QString::number(key));
}
