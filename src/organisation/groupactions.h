#pragma once

#include "groupoperation.h"

#include <QObject>
#include <QString>

#include <functional>

class Device;

// The actions on every phone of a group at once, each shown as a GroupOperation table with a
// verdict per phone. One runs at a time: while one still runs no other starts.
class GroupActions : public QObject
{
    Q_OBJECT
    Q_PROPERTY(GroupOperation *operation READ operation NOTIFY operationChanged)

public:
    // members gives the group's phones in their order.
    using Members = std::function<QList<Device *>()>;
    explicit GroupActions(Members members, QObject *parent = nullptr);

    // The latest operation started on the whole group.
    GroupOperation *operation() const { return m_operation; }

    // Each returns the new operation, or the one still running, with a notice saying why the new
    // one did not start.
    Q_INVOKABLE GroupOperation *screenshotAllDevices();
    Q_INVOKABLE GroupOperation *installApk(const QString &apkPath);
    Q_INVOKABLE GroupOperation *uploadFile(const QString &filePath);
    Q_INVOKABLE GroupOperation *runAutojs(const QString &autojsPath);
    Q_INVOKABLE GroupOperation *executeADBCommand(const QString &input);
    Q_INVOKABLE void stopAllAutojs();

signals:
    void operationChanged();

private:
    // The new operation, or null while the current one still runs.
    GroupOperation *beginOperation(const QString &title);
    // An operation of adb steps on every phone; the one still running when it cannot start.
    GroupOperation *runAdb(const QString &title, const GroupOperation::StepsFor &steps);

    Members m_members;
    GroupOperation *m_operation = nullptr;
};
