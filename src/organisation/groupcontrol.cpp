#include "groupcontrol.h"

#include "controller.h"
#include "device.h"
#include "groupreplay.h"

#include <utility>

GroupControl::GroupControl(Members members, QObject *parent)
    : QObject(parent)
    , m_members(std::move(members))
{
}

GroupControl::~GroupControl()
{
    if (m_host)
        m_host->setIsHostDevice(false);
}

void GroupControl::setHost(Device *host)
{
    if (m_host == host)
        return;
    disconnect(m_hostSession);
    disconnect(m_hostMessages);
    if (m_host)
        m_host->setIsHostDevice(false);
    m_host = host;
    if (m_host) {
        m_host->setIsHostDevice(true);
        m_hostSession = connect(m_host, &Device::controllerChanged, this, &GroupControl::followHostController);
        followHostController();
    }
    emit hostChanged();
}

void GroupControl::followHostController()
{
    disconnect(m_hostMessages);
    if (Controller *controller = m_host ? m_host->controller() : nullptr)
        m_hostMessages = connect(controller, &Controller::messageSent, this, &GroupControl::replay);
}

void GroupControl::replay(const ControlMsg &msg)
{
    if (!m_host)
        return;
    const QList<Device *> members = m_members();
    QList<GroupReplay::Target> targets;
    targets.reserve(members.size());
    for (Device *device : members) {
        if (device != m_host)
            targets.append({device->controller(), device->frameSize()});
    }
    GroupReplay::replay(msg, m_host->frameSize(), targets);
}
