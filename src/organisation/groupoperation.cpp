#include "groupoperation.h"

#include "adbworkpool.h"
#include "device.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {
int deviceCallTimeoutMs = 60000;
constexpr int kTickMs = 250;
// A row keeps the end of a long stream (a logcat) so the table stays light.
constexpr qsizetype kKeptOutput = 256 * 1024;
const QString kDashLine(32, '-');
}

GroupOperation::GroupOperation(QObject *parent)
    : QAbstractListModel(parent)
{
    m_ticker.setInterval(kTickMs);
    connect(&m_ticker, &QTimer::timeout, this, [this] {
        for (int i = 0; i < m_rows.size(); ++i) {
            if (m_rows.at(i).state == Running)
                changed(i, {ElapsedRole});
        }
    });
}

GroupOperation::~GroupOperation()
{
    for (Row &row : m_rows)
        releaseTask(row);
}

void GroupOperation::setDeviceCallTimeout(int milliseconds)
{
    deviceCallTimeoutMs = milliseconds;
}

int GroupOperation::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant GroupOperation::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case NumberRole:
        return row.number;
    case NicknameRole:
        return row.nickname;
    case SerialRole:
        return row.serial;
    case StateRole:
        return row.state;
    case StateTextRole:
        return stateText(row.state);
    case ElapsedRole:
        return row.state == Running ? row.clock.elapsed() : row.elapsedMs;
    case OutputRole:
        return row.output;
    default:
        return {};
    }
}

QHash<int, QByteArray> GroupOperation::roleNames() const
{
    return {{NumberRole, "number"},   {NicknameRole, "nickname"}, {SerialRole, "serial"},
            {StateRole, "state"},     {StateTextRole, "stateText"}, {ElapsedRole, "elapsedMs"},
            {OutputRole, "output"}};
}

QString GroupOperation::stateText(State state) const
{
    switch (state) {
    case Queued:
        return tr("queued");
    case Running:
        return tr("running");
    case Done:
        return tr("done");
    case Failed:
        return tr("failed");
    case Cancelled:
        return tr("cancelled");
    case TimedOut:
        return tr("timed out");
    }
    return {};
}

void GroupOperation::setRows(const QString &title, const QList<Device *> &devices)
{
    beginResetModel();
    for (Row &row : m_rows)
        releaseTask(row);
    m_rows.clear();
    for (int i = 0; i < devices.size(); ++i) {
        Device *device = devices.at(i);
        if (!device)
            continue;
        Row row;
        const int index = device->indexInGroup();
        row.number = index >= 0 ? index + 1 : i + 1;
        row.nickname = device->nickName();
        row.serial = device->adbConnectionSerial();
        row.device = device;
        m_rows.append(row);
    }
    endResetModel();
    if (m_title != title) {
        m_title = title;
        emit titleChanged();
    }
}

void GroupOperation::startAdb(const QString &title, const QList<Device *> &devices, const StepsFor &steps)
{
    m_steps = steps;
    m_call = nullptr;
    setRows(title, devices);
    for (int i = 0; i < m_rows.size(); ++i)
        launch(i);
    changed(-1, {});
}

void GroupOperation::startDeviceCalls(const QString &title, const QList<Device *> &devices, const DeviceCall &call,
                                      bool infoIsDone)
{
    m_steps = nullptr;
    m_call = call;
    m_infoIsDone = infoIsDone;
    setRows(title, devices);
    for (int i = 0; i < m_rows.size(); ++i)
        launch(i);
    changed(-1, {});
}

void GroupOperation::runCommand(const QVariantList &devices, const QString &input)
{
    QList<Device *> list;
    for (const QVariant &value : devices) {
        if (auto *device = value.value<Device *>())
            list.append(device);
    }
    const QString command = input;
    startAdb(tr("ADB Command"), list, [command](const QString &serial) {
        return AdbTask::commandSteps(serial, command);
    });
}

void GroupOperation::launch(int index)
{
    Row &row = m_rows[index];
    row.state = Queued;
    row.output.clear();
    row.elapsedMs = 0;
    if (m_steps)
        launchAdb(index);
    else if (m_call)
        launchDeviceCall(index);
}

void GroupOperation::launchAdb(int index)
{
    Row &row = m_rows[index];
    auto *task = new AdbTask(m_steps(row.serial));
    row.task = task;
    connect(task, &AdbTask::started, this, [this, task] { taskStarted(task); });
    connect(task, &AdbTask::output, this, [this, task](const QString &text) { taskOutput(task, text); });
    connect(task, &AdbTask::finished, this, [this, task](const AdbResult &result) { taskFinished(task, result); });
    AdbWorkPool::instance()->submit(task);
}

void GroupOperation::launchDeviceCall(int index)
{
    Row &row = m_rows[index];
    if (!row.device) {
        end(index, Failed, tr("The phone has left the group"), true);
        return;
    }
    row.state = Running;
    row.clock.start();
    m_ticker.start();
    Device *device = row.device;
    // The phone's next success or error message is its answer.
    row.answer = connect(device, &Device::deviceMessage, this,
                         [this, device](const QString &message, const QString &type, int) {
                             const bool answer = type == "success" || type == "error" || (m_infoIsDone && type == "info");
                             if (!answer)
                                 return;
                             for (int i = 0; i < m_rows.size(); ++i) {
                                 if (m_rows.at(i).device == device && m_rows.at(i).state == Running)
                                     end(i, type == "error" ? Failed : Done, message, true);
                             }
                         });
    row.deadline = new QTimer(this);
    row.deadline->setSingleShot(true);
    connect(row.deadline, &QTimer::timeout, this, [this, device] {
        for (int i = 0; i < m_rows.size(); ++i) {
            if (m_rows.at(i).device == device && m_rows.at(i).state == Running)
                end(i, TimedOut, tr("The phone did not answer"), true);
        }
    });
    row.deadline->start(deviceCallTimeoutMs);
    m_call(device);
}

int GroupOperation::rowOf(AdbTask *task) const
{
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).task == task)
            return i;
    }
    return -1;
}

void GroupOperation::taskStarted(AdbTask *task)
{
    const int index = rowOf(task);
    if (index < 0 || m_rows.at(index).state != Queued)
        return;
    m_rows[index].state = Running;
    m_rows[index].clock.start();
    m_ticker.start();
    changed(index, {StateRole, StateTextRole, ElapsedRole});
}

void GroupOperation::taskOutput(AdbTask *task, const QString &text)
{
    const int index = rowOf(task);
    if (index < 0)
        return;
    QString &output = m_rows[index].output;
    output += text;
    if (output.size() > kKeptOutput)
        output.remove(0, output.size() - kKeptOutput);
    changed(index, {OutputRole});
}

void GroupOperation::taskFinished(AdbTask *task, const AdbResult &result)
{
    const int index = rowOf(task);
    if (index < 0)
        return;
    State state = Done;
    switch (result.status) {
    case AdbResult::Status::Done:
        state = Done;
        break;
    case AdbResult::Status::Failed:
        state = Failed;
        break;
    case AdbResult::Status::TimedOut:
        state = TimedOut;
        break;
    case AdbResult::Status::Cancelled:
        state = Cancelled;
        break;
    }
    // A stream that was stopped keeps what it printed; a verdict replaces the transfer's chatter.
    const bool keepStream = state == Cancelled || state == TimedOut;
    end(index, state, state == Cancelled ? QString() : result.text, !keepStream);
}

void GroupOperation::end(int index, State state, const QString &text, bool replaceOutput)
{
    Row &row = m_rows[index];
    if (row.state == Running)
        row.elapsedMs = row.clock.elapsed();
    row.state = state;
    if (replaceOutput) {
        row.output = text;
    } else if (!text.isEmpty()) {
        if (!row.output.isEmpty() && !row.output.endsWith('\n'))
            row.output += '\n';
        row.output += text;
    }
    releaseTask(row);
    changed(index, {StateRole, StateTextRole, ElapsedRole, OutputRole});
}

void GroupOperation::releaseTask(Row &row)
{
    if (row.task) {
        row.task->disconnect(this);
        // Still running: its adb process is killed first, on the pool's thread.
        if (row.state == Queued || row.state == Running)
            AdbWorkPool::cancel(row.task);
        row.task->deleteLater();
        row.task = nullptr;
    }
    if (row.answer)
        disconnect(row.answer);
    if (row.deadline) {
        row.deadline->deleteLater();
        row.deadline = nullptr;
    }
}

void GroupOperation::cancel()
{
    for (int i = 0; i < m_rows.size(); ++i) {
        Row &row = m_rows[i];
        if (row.state == Queued && row.task) {
            // Never started: nothing to wait for.
            AdbWorkPool::cancel(row.task);
            end(i, Cancelled, {}, false);
        } else if (row.state == Running && row.task) {
            AdbWorkPool::cancel(row.task);
        } else if (row.state == Running || row.state == Queued) {
            end(i, Cancelled, {}, false);
        }
    }
}

void GroupOperation::retryFailed()
{
    bool any = false;
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).state == Failed || m_rows.at(i).state == TimedOut) {
            launch(i);
            changed(i, {StateRole, StateTextRole, ElapsedRole, OutputRole});
            any = true;
        }
    }
    if (any)
        changed(-1, {});
}

int GroupOperation::count(State state) const
{
    return int(std::count_if(m_rows.cbegin(), m_rows.cend(), [state](const Row &row) { return row.state == state; }));
}

bool GroupOperation::running() const
{
    return count(Queued) + count(Running) > 0;
}

QString GroupOperation::summary() const
{
    QStringList parts;
    for (State state : {Done, Failed, TimedOut, Cancelled, Running, Queued}) {
        const int n = count(state);
        if (n > 0)
            parts << QString("%1 %2").arg(n).arg(stateText(state));
    }
    return parts.join(", ");
}

QString GroupOperation::report() const
{
    QString text;
    for (const Row &row : m_rows) {
        text += QStringLiteral("Device %1:\n").arg(row.number);
        text += kDashLine + "\n";
        text += row.output;
        if (!row.output.endsWith('\n'))
            text += "\n";
        if (row.state != Done)
            text += "[" + stateText(row.state) + "]\n";
        text += "\n\n";
    }
    return text;
}

void GroupOperation::copyReport() const
{
    if (QClipboard *clipboard = QGuiApplication::clipboard())
        clipboard->setText(report());
}

void GroupOperation::changed(int index, const QList<int> &roles)
{
    if (index >= 0)
        emit dataChanged(this->index(index), this->index(index), roles);
    const bool now = running();
    if (!now)
        m_ticker.stop();
    emit progressChanged();
    if (m_wasRunning && !now)
        emit finished();
    m_wasRunning = now;
}
