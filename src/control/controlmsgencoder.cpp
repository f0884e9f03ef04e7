#include "controlmsgencoder.h"

#include <QtEndian>

#include <cmath>

namespace {

class Writer
{
public:
    void u8(quint8 value) { m_bytes.append(char(value)); }
    void u16(quint16 value) { put(qToBigEndian(value)); }
    void u32(quint32 value) { put(qToBigEndian(value)); }
    void u64(quint64 value) { put(qToBigEndian(value)); }
    void bytes(const QByteArray &data) { m_bytes.append(data); }
    QByteArray result() const { return m_bytes; }

    void position(const ControlPosition &position)
    {
        u32(quint32(position.point.x()));
        u32(quint32(position.point.y()));
        u16(quint16(position.screenSize.width()));
        u16(quint16(position.screenSize.height()));
    }

private:
    template<typename T>
    void put(T bigEndian)
    {
        m_bytes.append(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
    }

    QByteArray m_bytes;
};

} // namespace

quint16 ControlMsgEncoder::pressureToFixed(float pressure)
{
    if (!(pressure > 0.0f))
        return 0;
    // 1.0 would be 65536; the field tops out one below.
    const double fixed = std::trunc(double(pressure) * 65536.0);
    return fixed >= 65535.0 ? 65535 : quint16(fixed);
}

qint16 ControlMsgEncoder::scrollToFixed(float value)
{
    if (std::isnan(value))
        return 0;
    const double normalised = double(value) / 16.0;
    if (normalised <= -1.0)
        return -32768;
    if (normalised >= 1.0)
        return 32767;
    const double fixed = std::trunc(normalised * 32768.0);
    return fixed >= 32767.0 ? 32767 : qint16(fixed);
}

QByteArray ControlMsgEncoder::serialize(const ControlMsg &msg)
{
    Writer out;
    out.u8(quint8(msg.type));
    switch (msg.type) {
    case ControlMsgType::InjectKeycode:
        out.u8(quint8(msg.keycode.action));
        out.u32(quint32(msg.keycode.keycode));
        out.u32(msg.keycode.repeat);
        out.u32(msg.keycode.metastate);
        break;
    case ControlMsgType::InjectText:
        out.u32(quint32(msg.text.size()));
        out.bytes(msg.text);
        break;
    case ControlMsgType::InjectTouchEvent:
        out.u8(quint8(msg.touch.action));
        out.u64(msg.touch.pointerId);
        out.position(msg.touch.position);
        out.u16(pressureToFixed(msg.touch.pressure));
        out.u32(msg.touch.actionButton);
        out.u32(msg.touch.buttons);
        break;
    case ControlMsgType::InjectScrollEvent:
        out.position(msg.scroll.position);
        out.u16(quint16(scrollToFixed(msg.scroll.hscroll)));
        out.u16(quint16(scrollToFixed(msg.scroll.vscroll)));
        out.u32(msg.scroll.buttons);
        break;
    case ControlMsgType::BackOrScreenOn:
        out.u8(msg.backOrScreenOnAction);
        break;
    case ControlMsgType::GetClipboard:
        out.u8(quint8(msg.copyKey));
        break;
    case ControlMsgType::SetClipboard:
        out.u64(msg.clipboard.sequence);
        out.u8(msg.clipboard.paste ? 1 : 0);
        out.u32(quint32(msg.text.size()));
        out.bytes(msg.text);
        break;
    case ControlMsgType::SetDisplayPower:
        out.u8(msg.displayPowerOn ? 1 : 0);
        break;
    default:
        // Messages without payload are the type byte alone.
        break;
    }
    return out.result();
}
