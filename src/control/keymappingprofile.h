#pragma once

#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

// What a mapped key does on the phone; the values are those the profile files hold.
namespace KeyMappingType {
Q_NAMESPACE
enum Type { Tap = 0, Swipe = 1 };
Q_ENUM_NS(Type)
}

// One PC key (with its modifiers) bound to a touch on the phone. Points are fractions of the view,
// so one entry serves phones of any resolution.
struct KeyMappingEntry
{
    int keyCode = 0;
    int modifiers = 0;
    QString keyDisplay;
    KeyMappingType::Type type = KeyMappingType::Tap;
    double x = 0.0;
    double y = 0.0;
    // 1 holds the finger down while the key is held.
    int count = 1;
    double startX = 0.0;
    double startY = 0.0;
    double endX = 0.0;
    double endY = 0.0;
    int duration = 0;

    // The map form: "keyCode", "modifiers", "keyDisplay", "type" and "data".
    QVariantMap toMap() const;
    QJsonObject toJson() const;
    // Reads the map form and the older form whose tap point sits beside the key, without "data".
    // False when the object cannot be a mapping (no key name, unknown type, values of the wrong type).
    static bool fromJson(const QJsonObject &object, KeyMappingEntry *entry);
    static KeyMappingEntry fromData(int keyCode, int modifiers, const QString &keyDisplay, KeyMappingType::Type type,
                                    const QVariantMap &data);
};

// A named, ordered set of key mappings in which each (key, modifiers) pair appears once.
class KeyMappingProfile : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    Q_PROPERTY(int mappingCount READ getMappingCount NOTIFY mappingsChanged)
    Q_PROPERTY(QVariantList mappings READ getMappings NOTIFY mappingsChanged)

public:
    explicit KeyMappingProfile(const QString &name, QObject *parent = nullptr);

    QString name() const { return m_name; }
    const QList<KeyMappingEntry> &entries() const { return m_entries; }
    // The entry for the key, or null.
    const KeyMappingEntry *find(int keyCode, int modifiers) const;
    // Appends without announcing; false for a duplicate or nameless key. Used while loading, so
    // values the editor would refuse are kept.
    bool append(const KeyMappingEntry &entry);

    Q_INVOKABLE bool addMapping(int keyCode, int modifiers, const QString &keyDisplay, double x, double y,
                                int count = 1);
    Q_INVOKABLE bool addMappingWithType(int keyCode, int modifiers, const QString &keyDisplay, KeyMappingType::Type type,
                                        const QVariantMap &data);
    Q_INVOKABLE bool addSwipeMapping(int keyCode, int modifiers, const QString &keyDisplay, double startX,
                                     double startY, double endX, double endY, int duration);
    Q_INVOKABLE bool removeMapping(int index);
    Q_INVOKABLE bool updateMapping(int index, int keyCode, int modifiers, const QString &keyDisplay, double x,
                                   double y, int count);
    // Replaces the entry at index by any type; false like updateMapping.
    Q_INVOKABLE bool updateMappingWithType(int index, int keyCode, int modifiers, const QString &keyDisplay,
                                           KeyMappingType::Type type, const QVariantMap &data);
    // Why the entry cannot take the place of the one at index (-1: be added), in words the editor
    // shows; empty when it can. Adding and replacing refuse what this refuses.
    Q_INVOKABLE QString mappingProblem(int index, int keyCode, int modifiers, const QString &keyDisplay,
                                       KeyMappingType::Type type, const QVariantMap &data) const;
    Q_INVOKABLE void clearMappings();
    Q_INVOKABLE QVariantMap getMappingByKey(int keyCode, int modifiers) const;
    Q_INVOKABLE bool hasMapping(int keyCode, int modifiers) const;
    Q_INVOKABLE int getMappingCount() const { return int(m_entries.size()); }
    Q_INVOKABLE QVariantList getMappings() const;

signals:
    void nameChanged();
    void mappingsChanged();

private:
    bool isTakenByOther(int index, int keyCode, int modifiers) const;
    QString problemWith(int index, const KeyMappingEntry &entry) const;
    bool add(const KeyMappingEntry &entry);
    bool replace(int index, const KeyMappingEntry &entry);

    QString m_name;
    QList<KeyMappingEntry> m_entries;
};
