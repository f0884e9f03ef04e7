#pragma once

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QPointer>

#include <functional>

class Device;
struct ControlMsg;

// Group control: while a host is set, every message its controller writes is replayed on the
// other phones of the group, rescaled to each phone's picture and after each phone's own delay.
// The host's controller is connected straight to the replay; a new session of the host (a view
// switch, a restart) is followed.
class GroupControl : public QObject
{
    Q_OBJECT

public:
    // members gives the group's phones, host included, in their order.
    using Members = std::function<QList<Device *>()>;
    explicit GroupControl(Members members, QObject *parent = nullptr);
    ~GroupControl() override;

    Device *host() const { return m_host; }
    bool active() const { return m_host != nullptr; }
    // The host is marked as such; null ends group control.
    void setHost(Device *host);

signals:
    void hostChanged();

private:
    void followHostController();
    void replay(const ControlMsg &msg);

    Members m_members;
    QPointer<Device> m_host;
    QMetaObject::Connection m_hostSession;
    QMetaObject::Connection m_hostMessages;
};
