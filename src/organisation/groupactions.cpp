#include "groupactions.h"

#include "adbtask.h"
#include "autojs.h"
#include "device.h"
#include "deviceactions.h"
#include "groupoperation.h"

#include <utility>

GroupActions::GroupActions(Members members, QObject *parent)
    : QObject(parent)
    , m_members(std::move(members))
{
}

GroupOperation *GroupActions::beginOperation(const QString &title)
{
    // One group action at a time: the one under way stays on display, cancellable, and says why
    // the new one did not start.
    if (m_operation && m_operation->running()) {
        m_operation->setNotice(tr("\"%1\" did not start: \"%2\" is still running. Cancel it or wait for it to end.")
                                   .arg(title, m_operation->title()));
        return nullptr;
    }
    if (m_operation)
        m_operation->deleteLater();
    // Kept here, with a parent, so that QML's garbage collector never takes it.
    m_operation = new GroupOperation(this);
    emit operationChanged();
    return m_operation;
}

GroupOperation *GroupActions::runAdb(const QString &title, const GroupOperation::StepsFor &steps)
{
    if (GroupOperation *operation = beginOperation(title))
        operation->startAdb(title, m_members(), steps);
    return m_operation;
}

GroupOperation *GroupActions::screenshotAllDevices()
{
    const QString title = tr("Screenshot");
    if (GroupOperation *operation = beginOperation(title)) {
        operation->startDeviceCalls(title, m_members(), {[](Device *device, QObject *context, const GroupOperation::Reply &reply) {
            QObject::connect(device, &Device::screenshotFinished, context, reply);
            device->takeScreenshot();
        }, nullptr});
    }
    return m_operation;
}

GroupOperation *GroupActions::installApk(const QString &apkPath)
{
    return runAdb(tr("Install APK"), [apkPath](const QString &serial) { return AdbTask::installSteps(serial, apkPath); });
}

GroupOperation *GroupActions::uploadFile(const QString &filePath)
{
    return runAdb(tr("Upload File"), [filePath](const QString &serial) { return AdbTask::uploadSteps(serial, filePath); });
}

GroupOperation *GroupActions::runAutojs(const QString &autojsPath)
{
    const QString title = tr("Run AutoJS");
    GroupOperation *operation = beginOperation(title);
    if (!operation)
        return m_operation;
    // Read once for every phone, and not on the user interface's thread.
    const QFuture<Autojs::Script> script = Autojs::load(autojsPath);
    operation->startDeviceCalls(title, m_members(), {
        [autojsPath, script](Device *device, QObject *context, const GroupOperation::Reply &reply) {
            Autojs *autojs = device->actions()->autojs();
            QObject::connect(autojs, &Autojs::runFinished, context, reply);
            autojs->run(autojsPath, script);
        },
        [](Device *device) { device->actions()->autojs()->cancelRun(); }});
    return operation;
}

void GroupActions::stopAllAutojs()
{
    for (Device *device : m_members())
        device->actions()->autojs()->stop();
}

GroupOperation *GroupActions::executeADBCommand(const QString &input)
{
    return runAdb(tr("ADB Command"), [input](const QString &serial) { return AdbTask::commandSteps(serial, input); });
}
