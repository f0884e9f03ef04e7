#include "controlmessagedecoder.h"

#include <QtEndian>

namespace {

enum Type {
    InjectKeycode = 0,
    InjectText = 1,
    InjectTouchEvent = 2,
    InjectScrollEvent = 3,
    BackOrScreenOn = 4,
    ExpandNotificationPanel = 5,
    ExpandSettingsPanel = 6,
    CollapsePanels = 7,
    GetClipboard = 8,
    SetClipboard = 9,
    SetDisplayPower = 10,
    RotateDevice = 11,
    ResetVideo = 17,
};

// Fixed sizes by type; text messages add their length field's count.
qint64 fixedSize(int type)
{
    switch (type) {
    case InjectKeycode: return 14;
    case InjectText: return 5;
    case InjectTouchEvent: return 32;
    case InjectScrollEvent: return 21;
    case BackOrScreenOn:
    case GetClipboard:
    case SetDisplayPower: return 2;
    case SetClipboard: return 14;
    case ExpandNotificationPanel:
    case ExpandSettingsPanel:
    case CollapsePanels:
    case RotateDevice:
    case ResetVideo: return 1;
    default: return -1;
    }
}

struct Reader
{
    const uchar *data;
    quint8 u8(int at) const { return data[at]; }
    quint16 u16(int at) const { return qFromBigEndian<quint16>(data + at); }
    qint16 i16(int at) const { return qFromBigEndian<qint16>(data + at); }
    quint32 u32(int at) const { return qFromBigEndian<quint32>(data + at); }
    qint32 i32(int at) const { return qFromBigEndian<qint32>(data + at); }
    quint64 u64(int at) const { return qFromBigEndian<quint64>(data + at); }
};

void insertPosition(QJsonObject &json, const Reader &r, int at)
{
    json.insert("x", r.i32(at));
    json.insert("y", r.i32(at + 4));
    json.insert("screenWidth", r.u16(at + 8));
    json.insert("screenHeight", r.u16(at + 10));
}

double pressureValue(quint16 raw)
{
    // 1.0 is sent capped to 0xffff.
    return raw == 0xffff ? 1.0 : raw / 65536.0;
}

double scrollValue(qint16 raw)
{
    return raw / 32768.0 * 16.0;
}

} // namespace

QString ControlMessageDecoder::typeName(int type)
{
    switch (type) {
    case InjectKeycode: return "InjectKeycode";
    case InjectText: return "InjectText";
    case InjectTouchEvent: return "InjectTouchEvent";
    case InjectScrollEvent: return "InjectScrollEvent";
    case BackOrScreenOn: return "BackOrScreenOn";
    case ExpandNotificationPanel: return "ExpandNotificationPanel";
    case ExpandSettingsPanel: return "ExpandSettingsPanel";
    case CollapsePanels: return "CollapsePanels";
    case GetClipboard: return "GetClipboard";
    case SetClipboard: return "SetClipboard";
    case SetDisplayPower: return "SetDisplayPower";
    case RotateDevice: return "RotateDevice";
    case ResetVideo: return "ResetVideo";
    default: return {};
    }
}

qint64 ControlMessageDecoder::messageSize(const QByteArray &buffer, QString *error)
{
    if (buffer.isEmpty())
        return 0;
    const int type = quint8(buffer[0]);
    const qint64 size = fixedSize(type);
    if (size < 0) {
        *error = QString("unknown control message type %1").arg(type);
        return -1;
    }
    if (buffer.size() < size)
        return 0;
    if (type != InjectText && type != SetClipboard)
        return size;
    const Reader r{reinterpret_cast<const uchar *>(buffer.constData())};
    const quint32 textSize = r.u32(type == InjectText ? 1 : 10);
    if (textSize > maxTextSize) {
        *error = QString("control message text of %1 bytes is too long").arg(textSize);
        return -1;
    }
    return buffer.size() >= size + textSize ? size + textSize : 0;
}

QJsonObject ControlMessageDecoder::decode(const QByteArray &message)
{
    const Reader r{reinterpret_cast<const uchar *>(message.constData())};
    const int type = r.u8(0);
    QJsonObject json{{"type", typeName(type)}};
    switch (type) {
    case InjectKeycode:
        json.insert("action", r.u8(1));
        json.insert("keycode", r.i32(2));
        json.insert("repeat", qint64(r.u32(6)));
        json.insert("metastate", qint64(r.u32(10)));
        break;
    case InjectText:
        json.insert("text", QString::fromUtf8(message.mid(5)));
        break;
    case InjectTouchEvent:
        json.insert("action", r.u8(1));
        json.insert("pointerId", qint64(r.u64(2)));
        insertPosition(json, r, 10);
        json.insert("pressure", pressureValue(r.u16(22)));
        json.insert("actionButton", qint64(r.u32(24)));
        json.insert("buttons", qint64(r.u32(28)));
        break;
    case InjectScrollEvent:
        insertPosition(json, r, 1);
        json.insert("hscroll", scrollValue(r.i16(13)));
        json.insert("vscroll", scrollValue(r.i16(15)));
        json.insert("buttons", qint64(r.u32(17)));
        break;
    case BackOrScreenOn:
        json.insert("action", r.u8(1));
        break;
    case GetClipboard:
        json.insert("copyKey", r.u8(1));
        break;
    case SetClipboard:
        json.insert("sequence", qint64(r.u64(1)));
        json.insert("paste", r.u8(9) != 0);
        json.insert("text", QString::fromUtf8(message.mid(14)));
        break;
    case SetDisplayPower:
        json.insert("on", r.u8(1) != 0);
        break;
    default:
        break;
    }
    return json;
}

QList<QJsonObject> ControlMessageDecoder::feed(const QByteArray &bytes)
{
    QList<QJsonObject> messages;
    if (hasError())
        return messages;
    m_buffer.append(bytes);
    qsizetype offset = 0;
    while (offset < m_buffer.size()) {
        const QByteArray rest = QByteArray::fromRawData(m_buffer.constData() + offset, m_buffer.size() - offset);
        const qint64 size = messageSize(rest, &m_error);
        if (size < 0) {
            m_buffer.clear();
            return messages;
        }
        if (size == 0)
            break;
        messages << decode(rest.left(size));
        offset += size;
    }
    m_buffer.remove(0, offset);
    return messages;
}
