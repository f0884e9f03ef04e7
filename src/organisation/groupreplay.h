#pragma once

#include "controlmsg.h"

#include <QList>
#include <QSize>

class Controller;

// Group control: what the host phone's controller writes is written again on every other phone
// of its group, with touch positions moved from the host's screen to each phone's screen.
namespace GroupReplay {

struct Target
{
    Controller *controller = nullptr;
    QSize frameSize;
};

// The copy for one phone. Only a touch or a scroll changes, and only when both frame sizes are known; the
// position and the screen size scale by target over host, halves rounded away from zero.
ControlMsg rescaled(const ControlMsg &msg, const QSize &hostFrame, const QSize &targetFrame);

// Hands each target with a controller its own copy; the controller applies its click delay.
void replay(const ControlMsg &msg, const QSize &hostFrame, const QList<Target> &targets);

}
