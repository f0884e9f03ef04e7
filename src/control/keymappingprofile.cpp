#include "keymappingprofile.h"

#include <limits>

#include <QJsonValue>

namespace {

QVariantMap dataOf(const KeyMappingEntry &e)
{
    if (e.type == KeyMappingType::Swipe)
        return {{"startX", e.startX}, {"startY", e.startY}, {"endX", e.endX}, {"endY", e.endY},
                {"duration", e.duration}};
    return {{"x", e.x}, {"y", e.y}, {"count", e.count}};
}

// An absent value takes the fallback; a value of the wrong type makes the entry unreadable.
bool readNumber(const QJsonObject &object, const QString &key, double fallback, double *out)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined()) {
        *out = fallback;
        return true;
    }
    if (!value.isDouble())
        return false;
    *out = value.toDouble();
    return true;
}

bool readInt(const QJsonObject &object, const QString &key, int fallback, int *out)
{
    double number = 0.0;
    if (!readNumber(object, key, fallback, &number))
        return false;
    // A number no int can hold is not a key, a count or a duration: the entry is not a mapping.
    if (!(number >= double(std::numeric_limits<int>::min()) && number <= double(std::numeric_limits<int>::max())))
        return false;
    *out = int(number);
    return true;
}

bool isFraction(double value)
{
    return value >= 0.0 && value <= 1.0;
}

} // namespace

QVariantMap KeyMappingEntry::toMap() const
{
    return {{"keyCode", keyCode}, {"modifiers", modifiers}, {"keyDisplay", keyDisplay}, {"type", int(type)},
            {"data", dataOf(*this)}};
}

QJsonObject KeyMappingEntry::toJson() const
{
    return QJsonObject::fromVariantMap(toMap());
}

KeyMappingEntry KeyMappingEntry::fromData(int keyCode, int modifiers, const QString &keyDisplay,
                                          KeyMappingType::Type type, const QVariantMap &data)
{
    KeyMappingEntry e;
    e.keyCode = keyCode;
    e.modifiers = modifiers;
    e.keyDisplay = keyDisplay;
    e.type = type;
    if (type == KeyMappingType::Swipe) {
        e.startX = data.value("startX").toDouble();
        e.startY = data.value("startY").toDouble();
        e.endX = data.value("endX").toDouble();
        e.endY = data.value("endY").toDouble();
        e.duration = data.value("duration").toInt();
    } else {
        e.x = data.value("x").toDouble();
        e.y = data.value("y").toDouble();
        e.count = data.value("count", 1).toInt();
    }
    return e;
}

bool KeyMappingEntry::fromJson(const QJsonObject &object, KeyMappingEntry *entry)
{
    KeyMappingEntry e;
    const QJsonValue display = object.value("keyDisplay");
    if (!display.isString() || display.toString().isEmpty())
        return false;
    e.keyDisplay = display.toString();
    int type = KeyMappingType::Tap;
    if (!readInt(object, "keyCode", 0, &e.keyCode) || !readInt(object, "modifiers", 0, &e.modifiers)
        || !readInt(object, "type", type, &type))
        return false;
    e.type = KeyMappingType::Type(type);
    const QJsonValue dataValue = object.value("data");
    if (!dataValue.isUndefined() && !dataValue.isObject())
        return false;
    const QJsonObject data = dataValue.toObject();
    if (type == KeyMappingType::Tap) {
        // Files written before "data" existed keep the point beside the key.
        const QJsonObject &source = data.isEmpty() ? object : data;
        if (!readNumber(source, "x", 0.0, &e.x) || !readNumber(source, "y", 0.0, &e.y)
            || !readInt(data, "count", 1, &e.count))
            return false;
    } else if (type == KeyMappingType::Swipe) {
        if (!readNumber(data, "startX", 0.0, &e.startX) || !readNumber(data, "startY", 0.0, &e.startY)
            || !readNumber(data, "endX", 0.0, &e.endX) || !readNumber(data, "endY", 0.0, &e.endY)
            || !readInt(data, "duration", 0, &e.duration))
            return false;
    } else {
        return false;
    }
    *entry = e;
    return true;
}

KeyMappingProfile::KeyMappingProfile(const QString &name, QObject *parent)
    : QObject(parent)
    , m_name(name)
{
}

const KeyMappingEntry *KeyMappingProfile::find(int keyCode, int modifiers) const
{
    for (const KeyMappingEntry &e : m_entries) {
        if (e.keyCode == keyCode && e.modifiers == modifiers)
            return &e;
    }
    return nullptr;
}

bool KeyMappingProfile::isTakenByOther(int index, int keyCode, int modifiers) const
{
    for (int i = 0; i < m_entries.size(); ++i) {
        if (i != index && m_entries[i].keyCode == keyCode && m_entries[i].modifiers == modifiers)
            return true;
    }
    return false;
}

bool KeyMappingProfile::append(const KeyMappingEntry &entry)
{
    if (entry.keyDisplay.isEmpty() || find(entry.keyCode, entry.modifiers))
        return false;
    m_entries.append(entry);
    return true;
}

QString KeyMappingProfile::problemWith(int index, const KeyMappingEntry &entry) const
{
    if (entry.keyDisplay.isEmpty())
        return tr("Press a key...");
    bool inRange = false;
    if (entry.type == KeyMappingType::Tap) {
        inRange = isFraction(entry.x) && isFraction(entry.y) && entry.count >= 1 && entry.count <= 10;
    } else if (entry.type == KeyMappingType::Swipe) {
        inRange = isFraction(entry.startX) && isFraction(entry.startY) && isFraction(entry.endX)
                  && isFraction(entry.endY) && entry.duration >= 50 && entry.duration <= 2000;
    }
    if (!inRange)
        return tr("Values out of range.");
    if (isTakenByOther(index, entry.keyCode, entry.modifiers))
        return tr("This key is already mapped in this profile.");
    return QString();
}

QString KeyMappingProfile::mappingProblem(int index, int keyCode, int modifiers, const QString &keyDisplay,
                                          KeyMappingType::Type type, const QVariantMap &data) const
{
    return problemWith(index, KeyMappingEntry::fromData(keyCode, modifiers, keyDisplay, type, data));
}

bool KeyMappingProfile::add(const KeyMappingEntry &entry)
{
    if (!problemWith(-1, entry).isEmpty())
        return false;
    m_entries.append(entry);
    emit mappingsChanged();
    return true;
}

bool KeyMappingProfile::replace(int index, const KeyMappingEntry &entry)
{
    if (index < 0 || index >= m_entries.size() || !problemWith(index, entry).isEmpty())
        return false;
    m_entries[index] = entry;
    emit mappingsChanged();
    return true;
}

bool KeyMappingProfile::addMapping(int keyCode, int modifiers, const QString &keyDisplay, double x, double y,
                                   int count)
{
    return add(KeyMappingEntry::fromData(keyCode, modifiers, keyDisplay, KeyMappingType::Tap,
                                         {{"x", x}, {"y", y}, {"count", count}}));
}

bool KeyMappingProfile::addMappingWithType(int keyCode, int modifiers, const QString &keyDisplay,
                                           KeyMappingType::Type type, const QVariantMap &data)
{
    return add(KeyMappingEntry::fromData(keyCode, modifiers, keyDisplay, type, data));
}

bool KeyMappingProfile::addSwipeMapping(int keyCode, int modifiers, const QString &keyDisplay, double startX,
                                        double startY, double endX, double endY, int duration)
{
    return add(KeyMappingEntry::fromData(
        keyCode, modifiers, keyDisplay, KeyMappingType::Swipe,
        {{"startX", startX}, {"startY", startY}, {"endX", endX}, {"endY", endY}, {"duration", duration}}));
}

bool KeyMappingProfile::removeMapping(int index)
{
    if (index < 0 || index >= m_entries.size())
        return false;
    m_entries.removeAt(index);
    emit mappingsChanged();
    return true;
}

bool KeyMappingProfile::updateMapping(int index, int keyCode, int modifiers, const QString &keyDisplay, double x,
                                      double y, int count)
{
    return replace(index, KeyMappingEntry::fromData(keyCode, modifiers, keyDisplay, KeyMappingType::Tap,
                                                    {{"x", x}, {"y", y}, {"count", count}}));
}

bool KeyMappingProfile::updateMappingWithType(int index, int keyCode, int modifiers, const QString &keyDisplay,
                                              KeyMappingType::Type type, const QVariantMap &data)
{
    return replace(index, KeyMappingEntry::fromData(keyCode, modifiers, keyDisplay, type, data));
}

void KeyMappingProfile::clearMappings()
{
    m_entries.clear();
    emit mappingsChanged();
}

QVariantMap KeyMappingProfile::getMappingByKey(int keyCode, int modifiers) const
{
    const KeyMappingEntry *e = find(keyCode, modifiers);
    return e ? e->toMap() : QVariantMap();
}

bool KeyMappingProfile::hasMapping(int keyCode, int modifiers) const
{
    return find(keyCode, modifiers) != nullptr;
}

QVariantList KeyMappingProfile::getMappings() const
{
    QVariantList list;
    for (const KeyMappingEntry &e : m_entries)
        list.append(e.toMap());
    return list;
}
