#pragma once

#include "controlmsg.h"

#include <QByteArray>

// The byte layout of host-to-phone control messages: big-endian, one type byte first.
class ControlMsgEncoder
{
public:
    ControlMsgEncoder() = delete;

    static QByteArray serialize(const ControlMsg &msg);

    // Fixed-point forms of the float fields.
    static quint16 pressureToFixed(float pressure);
    static qint16 scrollToFixed(float value);
};
