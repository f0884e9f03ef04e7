#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

// One line per message as phonesim reads it (a decoder result or a journal line), for comparing
// what arrived with a list: "key 0 29 meta 1", "touch 2@540,1055", "scroll 270,1801 0,-2",
// "clipboard 0 paste 你好", or the bare type.
inline QString describeControl(const QJsonObject &m)
{
    const QString type = m.value("type").toString();
    const auto n = [&m](const char *key) { return QString::number(m.value(key).toDouble()); };
    if (type == "InjectKeycode")
        return "key " + n("action") + " " + n("keycode") + (m.value("metastate").toInt() ? " meta " + n("metastate") : "");
    if (type == "InjectTouchEvent")
        return "touch " + n("action") + "@" + n("x") + "," + n("y");
    if (type == "InjectScrollEvent")
        return "scroll " + n("x") + "," + n("y") + " " + n("hscroll") + "," + n("vscroll");
    if (type == "SetClipboard")
        return "clipboard " + n("sequence") + (m.value("paste").toBool() ? " paste " : " ") + m.value("text").toString();
    return type;
}

inline QStringList describeControl(const QList<QJsonObject> &messages)
{
    QStringList lines;
    for (const QJsonObject &m : messages)
        lines << describeControl(m);
    return lines;
}
