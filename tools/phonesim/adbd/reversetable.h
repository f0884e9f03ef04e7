#pragma once

#include <QList>
#include <QPair>
#include <QString>

// The reverse tunnels registered on one transport connection: phone-side socket names such as
// "localabstract:scrcpy_0000abcd" mapped to PC-side targets such as "tcp:27183", in the order
// they were made. Answers the "reverse:" requests with the texts adb expects.
class ReverseTable
{
public:
    // Handles the part after "reverse:", e.g. "forward:localabstract:x;tcp:5000".
    // Returns the bytes to send back; *changed tells whether the table changed.
    QByteArray handle(const QString &request, const QString &label, bool *changed = nullptr);

    QString target(const QString &local) const;
    int size() const { return int(m_entries.size()); }

private:
    static QByteArray okay() { return "OKAY"; }
    static QByteArray fail(const QString &message);
    static QByteArray lengthPrefixed(const QByteArray &text);

    QList<QPair<QString, QString>> m_entries;
};
