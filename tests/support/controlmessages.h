#pragma once

// Every control message the wire carries, once: the message as Korvel's encoder builds it, its
// exact bytes, and the fields phonesim's decoder must read back from those bytes. The encoder's
// test writes each message, the decoder's test reads each byte vector, so the two ends are held to
// one table instead of to each other.
#include "controlmsg.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>

#include <optional>

struct ControlMessageCase
{
    const char *name;
    std::optional<ControlMsg> msg; // none for the types Korvel never sends
    QByteArray bytes;
    QJsonObject decoded;
};

inline QList<ControlMessageCase> controlMessageCases()
{
    const auto hex = [](const char *text) { return QByteArray::fromHex(text); };
    const auto at = [](int x, int y, int w, int h) { return ControlPosition{QPoint(x, y), QSize(w, h)}; };
    const quint64 mouse = quint64(-2);
    return {
        {"key down, repeat and meta", ControlMsg::injectKeycode(0, 31, 2, 0x1000), hex("00 00 0000001F 00000002 00001000"),
         {{"type", "InjectKeycode"}, {"action", 0}, {"keycode", 31}, {"repeat", 2}, {"metastate", 4096}}},
        {"key up, repeat and meta", ControlMsg::injectKeycode(1, 26, 2, 0x1001), hex("00 01 0000001A 00000002 00001001"),
         {{"type", "InjectKeycode"}, {"action", 1}, {"keycode", 26}, {"repeat", 2}, {"metastate", 4097}}},
        {"key home down", ControlMsg::injectKeycode(0, 3, 0, 0), hex("00 00 00000003 00000000 00000000"),
         {{"type", "InjectKeycode"}, {"action", 0}, {"keycode", 3}, {"repeat", 0}, {"metastate", 0}}},
        {"negative key code", ControlMsg::injectKeycode(1, -1, 0, 0), hex("00 01 FFFFFFFF 00000000 00000000"),
         {{"type", "InjectKeycode"}, {"action", 1}, {"keycode", -1}, {"repeat", 0}, {"metastate", 0}}},
        {"text", ControlMsg::injectText("hé"), hex("01 00000003 68C3A9"), {{"type", "InjectText"}, {"text", "hé"}}},
        {"text, three-byte character", ControlMsg::injectText("€"), hex("01 00000003 E282AC"),
         {{"type", "InjectText"}, {"text", "€"}}},
        {"text, empty", ControlMsg::injectText(""), hex("01 00000000"), {{"type", "InjectText"}, {"text", ""}}},
        {"touch down, full pressure", ControlMsg::injectTouch(mouse, 0, 1, 1, at(100, 200, 1080, 2400), 1.0f),
         hex("02 00 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 FFFF 00000001 00000001"),
         {{"type", "InjectTouchEvent"}, {"action", 0}, {"pointerId", -2}, {"x", 100}, {"y", 200}, {"screenWidth", 1080},
          {"screenHeight", 2400}, {"pressure", 1.0}, {"actionButton", 1}, {"buttons", 1}}},
        {"touch up, no pressure", ControlMsg::injectTouch(mouse, 1, 1, 0, at(100, 200, 1080, 2400), 0.0f),
         hex("02 01 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 0000 00000001 00000000"),
         {{"type", "InjectTouchEvent"}, {"action", 1}, {"pointerId", -2}, {"x", 100}, {"y", 200}, {"screenWidth", 1080},
          {"screenHeight", 2400}, {"pressure", 0.0}, {"actionButton", 1}, {"buttons", 0}}},
        {"touch move, half pressure", ControlMsg::injectTouch(3, 2, 0, 0, at(-10, 0, 720, 1280), 0.5f),
         hex("02 02 0000000000000003 FFFFFFF6 00000000 02D0 0500 8000 00000000 00000000"),
         {{"type", "InjectTouchEvent"}, {"action", 2}, {"pointerId", 3}, {"x", -10}, {"y", 0}, {"screenWidth", 720},
          {"screenHeight", 1280}, {"pressure", 0.5}, {"actionButton", 0}, {"buttons", 0}}},
        {"touch at a negative point, screen unknown", ControlMsg::injectTouch(7, 0, 0, 0, at(-5, -1, -1, -1), 0.5f),
         hex("02 00 0000000000000007 FFFFFFFB FFFFFFFF FFFF FFFF 8000 00000000 00000000"),
         {{"type", "InjectTouchEvent"}, {"action", 0}, {"pointerId", 7}, {"x", -5}, {"y", -1}, {"screenWidth", 65535},
          {"screenHeight", 65535}, {"pressure", 0.5}, {"actionButton", 0}, {"buttons", 0}}},
        {"scroll", ControlMsg::injectScroll(at(16, 32, 1080, 2400), 8.0f, -8.0f, 1),
         hex("03 00000010 00000020 0438 0960 4000 C000 00000001"),
         {{"type", "InjectScrollEvent"}, {"x", 16}, {"y", 32}, {"screenWidth", 1080}, {"screenHeight", 2400},
          {"hscroll", 8.0}, {"vscroll", -8.0}, {"buttons", 1}}},
        {"scroll saturates", ControlMsg::injectScroll(at(10, 20, 720, 1600), 8.0f, -20.0f, 4),
         hex("03 0000000A 00000014 02D0 0640 4000 8000 00000004"),
         {{"type", "InjectScrollEvent"}, {"x", 10}, {"y", 20}, {"screenWidth", 720}, {"screenHeight", 1600},
          {"hscroll", 8.0}, {"vscroll", -16.0}, {"buttons", 4}}},
        {"back or screen on", ControlMsg::backOrScreenOn(1), hex("04 01"), {{"type", "BackOrScreenOn"}, {"action", 1}}},
        {"expand notifications", std::nullopt, hex("05"), {{"type", "ExpandNotificationPanel"}}},
        {"expand settings", std::nullopt, hex("06"), {{"type", "ExpandSettingsPanel"}}},
        {"collapse panels", std::nullopt, hex("07"), {{"type", "CollapsePanels"}}},
        {"get clipboard, copy", ControlMsg::getClipboard(1), hex("08 01"), {{"type", "GetClipboard"}, {"copyKey", 1}}},
        {"get clipboard, cut", ControlMsg::getClipboard(2), hex("08 02"), {{"type", "GetClipboard"}, {"copyKey", 2}}},
        {"set clipboard, sequence and paste", ControlMsg::setClipboard(0x0102030405060708ULL, "hello", true),
         hex("09 0102030405060708 01 00000005 68656C6C6F"),
         {{"type", "SetClipboard"}, {"sequence", qint64(0x0102030405060708LL)}, {"paste", true}, {"text", "hello"}}},
        {"set clipboard and paste", ControlMsg::setClipboard(7, "abc", true), hex("09 0000000000000007 01 00000003 616263"),
         {{"type", "SetClipboard"}, {"sequence", 7}, {"paste", true}, {"text", "abc"}}},
        {"set clipboard, no sequence", ControlMsg::setClipboard(0, "hi", true), hex("09 0000000000000000 01 00000002 6869"),
         {{"type", "SetClipboard"}, {"sequence", 0}, {"paste", true}, {"text", "hi"}}},
        {"set clipboard without paste", ControlMsg::setClipboard(0, "a", false), hex("09 0000000000000000 00 00000001 61"),
         {{"type", "SetClipboard"}, {"sequence", 0}, {"paste", false}, {"text", "a"}}},
        // No text: the whole record stays zeroed, sequence and paste included.
        {"set clipboard, no text", ControlMsg::setClipboard(42, QString(), true), hex("09 0000000000000000 00 00000000"),
         {{"type", "SetClipboard"}, {"sequence", 0}, {"paste", false}, {"text", ""}}},
        {"display power on", ControlMsg::setDisplayPower(true), hex("0A 01"), {{"type", "SetDisplayPower"}, {"on", true}}},
        {"display power off", ControlMsg::setDisplayPower(false), hex("0A 00"), {{"type", "SetDisplayPower"}, {"on", false}}},
        {"rotate", ControlMsg::ofType(ControlMsgType::RotateDevice), hex("0B"), {{"type", "RotateDevice"}}},
        {"reset video", ControlMsg::ofType(ControlMsgType::ResetVideo), hex("11"), {{"type", "ResetVideo"}}},
    };
}
