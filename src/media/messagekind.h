#pragma once

#include <QObject>

// The kind of a status message shown over a phone's picture: its colour, and how long it stays up
// unless its sender has a reason to differ. The recorder is the lowest layer that speaks to the
// user and the device layer sees this one, so the kinds are declared here once for both.
namespace MessageKind {
Q_NAMESPACE
enum Kind { Info, Success, Error };
Q_ENUM_NS(Kind)

// Milliseconds a message of the kind stays up.
constexpr int timeoutMs(Kind kind)
{
    return kind == Error ? 5000 : 2000;
}
}
