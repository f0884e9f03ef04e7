#pragma once

#include <QJsonObject>
#include <QString>

#include <array>

// The settings a device group shares, as device_groups.json keeps them in each group's "settings"
// record. Each setting is declared once, in the table of fields(): its key (also the name of the
// group's property), its type, its defaults and the range the settings dialog offers.
class GroupSettings
{
public:
    enum Key {
        ShowControlButtons,
        MaxSize,
        MaxFPS,
        BitRate,
        MaxSizeBigView,
        MaxFPSBigView,
        BitRateBigView,
        ClickDelaySeconds,
        CellWidth,
        EnableAudio,
        Orientation,
        BigViewWidth,
        KeyCount
    };
    enum class Type {
        Bool,
        Int,
        // A whole number from min to max; any other number in a record reads as its default.
        Choice
    };
    struct Field
    {
        const char *key;
        Type type;
        // A new group's value.
        int initial;
        // A record's value when the key is missing or of the wrong type.
        int absent;
        // What the settings dialog offers; a record's value is not held to it, except for a Choice.
        int min;
        int max;
    };
    static const std::array<Field, KeyCount> &fields();
    // The key's index in fields(), or -1 for no setting.
    static int indexOf(const QString &key);

    int value(Key key) const { return m_values[key]; }
    // Returns whether the value changed.
    bool set(Key key, int value);

    // Every setting from the record: what is missing or of the wrong type takes its default.
    void load(const QJsonObject &record);
    QJsonObject toJson() const;

private:
    std::array<int, KeyCount> m_values = initialValues();
    static std::array<int, KeyCount> initialValues();
};
