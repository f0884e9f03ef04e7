#pragma once

// A reader of control messages written from the byte layouts alone, so that tests check the
// encoder against something other than itself.
#include <QByteArray>
#include <QDataStream>
#include <QList>

struct WireMessage
{
    int type = -1;
    quint32 action = 0;
    qint32 keycode = 0;
    quint32 repeat = 0;
    quint32 metastate = 0;
    quint64 pointerId = 0;
    qint32 x = 0;
    qint32 y = 0;
    quint16 screenWidth = 0;
    quint16 screenHeight = 0;
    quint16 pressure = 0;
    quint32 actionButton = 0;
    quint32 buttons = 0;
    qint16 hscroll = 0;
    qint16 vscroll = 0;
    quint64 sequence = 0;
    bool paste = false;
    quint8 oneByte = 0;
    QByteArray text;
};

// Splits a byte stream into messages; stops at the first incomplete or unknown one and says so.
inline QList<WireMessage> readWire(const QByteArray &bytes, bool *complete = nullptr)
{
    QList<WireMessage> messages;
    QDataStream in(bytes);
    in.setByteOrder(QDataStream::BigEndian);
    bool ok = true;
    while (!in.atEnd()) {
        WireMessage m;
        quint8 type = 0;
        quint8 byte = 0;
        quint32 length = 0;
        in >> type;
        m.type = type;
        switch (type) {
        case 0:
            in >> byte >> m.keycode >> m.repeat >> m.metastate;
            m.action = byte;
            break;
        case 1:
            in >> length;
            m.text.resize(length);
            in.readRawData(m.text.data(), int(length));
            break;
        case 2:
            in >> byte >> m.pointerId >> m.x >> m.y >> m.screenWidth >> m.screenHeight >> m.pressure
                >> m.actionButton >> m.buttons;
            m.action = byte;
            break;
        case 3:
            in >> m.x >> m.y >> m.screenWidth >> m.screenHeight >> m.hscroll >> m.vscroll >> m.buttons;
            break;
        case 4: case 8: case 10:
            in >> m.oneByte;
            break;
        case 9:
            in >> m.sequence >> byte >> length;
            m.paste = byte != 0;
            m.text.resize(length);
            in.readRawData(m.text.data(), int(length));
            break;
        case 5: case 6: case 7: case 11: case 17:
            break;
        default:
            ok = false;
            break;
        }
        if (!ok || in.status() != QDataStream::Ok) {
            ok = false;
            break;
        }
        messages << m;
    }
    if (complete)
        *complete = ok;
    return messages;
}
