#include "groupreplay.h"

#include "controller.h"

#include <cmath>

namespace GroupReplay {

namespace {
int scaled(int value, double ratio)
{
    // std::round rounds halves away from zero, in both directions.
    return int(std::round(value * ratio));
}
}

ControlMsg rescaled(const ControlMsg &msg, const QSize &hostFrame, const QSize &targetFrame)
{
    ControlMsg copy = msg;
    if (msg.type != ControlMsgType::InjectTouchEvent && msg.type != ControlMsgType::InjectScrollEvent)
        return copy;
    // A phone whose video has not started yet gets the host's coordinates as they are.
    if (hostFrame.width() <= 0 || hostFrame.height() < 1 || targetFrame.width() < 1 || targetFrame.height() <= 0)
        return copy;
    const double rx = double(targetFrame.width()) / hostFrame.width();
    const double ry = double(targetFrame.height()) / hostFrame.height();
    ControlPosition &position =
        msg.type == ControlMsgType::InjectTouchEvent ? copy.touch.position : copy.scroll.position;
    position.point = QPoint(scaled(position.point.x(), rx), scaled(position.point.y(), ry));
    position.screenSize = QSize(scaled(position.screenSize.width(), rx), scaled(position.screenSize.height(), ry));
    return copy;
}

void replay(const ControlMsg &msg, const QSize &hostFrame, const QList<Target> &targets)
{
    for (const Target &target : targets) {
        if (!target.controller)
            continue;
        ControlMsg copy = rescaled(msg, hostFrame, target.frameSize);
        target.controller->groupSend(copy);
    }
}

}
