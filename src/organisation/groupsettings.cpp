#include "groupsettings.h"

const std::array<GroupSettings::Field, GroupSettings::KeyCount> &GroupSettings::fields()
{
    // In the order of Key. A record written before the big view had its own width gets the wide
    // panel; a new group starts narrow.
    static const std::array<Field, KeyCount> table{{
        {"showControlButtons", Type::Bool, true, true, false, true},
        {"maxSize", Type::Int, 720, 720, 220, 2400},
        {"maxFPS", Type::Int, 30, 30, 5, 100},
        {"bitRate", Type::Int, 4000000, 4000000, 2000000, 8000000},
        {"maxSizeBigView", Type::Int, 720, 720, 220, 2400},
        {"maxFPSBigView", Type::Int, 30, 30, 5, 100},
        {"bitRateBigView", Type::Int, 4000000, 4000000, 2000000, 8000000},
        {"clickDelaySeconds", Type::Int, 0, 0, 0, 20},
        {"cellWidth", Type::Int, 220, 220, 220, 720},
        {"enableAudio", Type::Bool, false, false, false, true},
        {"orientation", Type::Choice, 0, 0, 0, 1},
        {"bigViewWidth", Type::Int, 400, 960, 400, 1280},
    }};
    return table;
}

int GroupSettings::indexOf(const QString &key)
{
    for (int i = 0; i < KeyCount; ++i) {
        if (key == QLatin1String(fields()[i].key))
            return i;
    }
    return -1;
}

std::array<int, GroupSettings::KeyCount> GroupSettings::initialValues()
{
    std::array<int, KeyCount> values{};
    for (int i = 0; i < KeyCount; ++i)
        values[i] = fields()[i].initial;
    return values;
}

bool GroupSettings::set(Key key, int value)
{
    if (m_values[key] == value)
        return false;
    m_values[key] = value;
    return true;
}

void GroupSettings::load(const QJsonObject &record)
{
    for (int i = 0; i < KeyCount; ++i) {
        const Field &field = fields()[i];
        const QJsonValue value = record.value(QLatin1String(field.key));
        int read = field.absent;
        if (field.type == Type::Bool && value.isBool())
            read = value.toBool();
        // A number that is no int (a fraction, too large) takes the default as well.
        else if (field.type != Type::Bool && value.isDouble())
            read = value.toInt(field.absent);
        if (field.type == Type::Choice && (read < field.min || read > field.max))
            read = field.absent;
        m_values[i] = read;
    }
}

QJsonObject GroupSettings::toJson() const
{
    QJsonObject record;
    for (int i = 0; i < KeyCount; ++i) {
        const Field &field = fields()[i];
        record.insert(QLatin1String(field.key),
                      field.type == Type::Bool ? QJsonValue(m_values[i] != 0) : QJsonValue(m_values[i]));
    }
    return record;
}
