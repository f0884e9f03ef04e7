#include "groupoperation.h"

#include "adbworkpool.h"
#include "device.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {
int deviceCallTimeoutMs = 60000;
constexpr int kTickMs = 250;
// A row keeps the end of a long stream (a logcat) so the table stays light; it is cut back only when
// it has grown to twice this, so that a line streamed in costs no copy of the whole text.
constexpr qsizetype kKeptOutput = 64 * 1024;
const QString kDashLine(32, '-');
}

GroupOperation::GroupOperation(QObject *parent)
    : QAbstractListModel(parent)
{
    m_ticker.setInterval(kTickMs);
    connect(&m_ticker, &QTimer::timeout, this, [this] {
        for (int i = 0; i < m_rows.size(); ++i) {
            if (m_rows.at(i).state == Running)
                changed(i);
        }
    });
    m_notify.setSingleShot(true);
    m_notify.setInterval(notifyIntervalMs);
    connect(&m_notify, &QTimer::timeout, this, &GroupOperation::flush);
}

GroupOperation::~GroupOperation()
{
    for (Row &row : m_rows)
        stopWork(row);
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
            {StateRole, "rowState"},     {StateTextRole, "stateText"}, {ElapsedRole, "elapsedMs"},
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
        stopWork(row);
    m_rows.clear();
    m_taskRows.clear();
    m_dirtyRows.clear();
    m_counts.fill(0);
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
    m_counts[Queued] = int(m_rows.size());
    endResetModel();
    if (m_title != title) {
        m_title = title;
        emit titleChanged();
    }
    m_progressDirty = true;
    m_notify.start();
}

void GroupOperation::startAdb(const QString &title, const QList<Device *> &devices, const StepsFor &steps)
{
    m_steps = steps;
    m_call = {};
    setRows(title, devices);
    for (int i = 0; i < m_rows.size(); ++i)
        launch(i);
}

void GroupOperation::startDeviceCalls(const QString &title, const QList<Device *> &devices, const DeviceCall &call)
{
    m_steps = nullptr;
    m_call = call;
    setRows(title, devices);
    for (int i = 0; i < m_rows.size(); ++i)
        launch(i);
}

void GroupOperation::runCommand(const QVariantList &devices, const QString &input)
{
    QList<Device *> list;
    for (const QVariant &value : devices) {
        if (auto *device = value.value<Device *>())
            list.append(device);
    }
    startAdb(tr("ADB Command"), list, [input](const QString &serial) { return AdbTask::commandSteps(serial, input); });
}

void GroupOperation::launch(int index)
{
    Row &row = m_rows[index];
    setState(index, Queued);
    row.output.clear();
    row.elapsedMs = 0;
    if (m_steps)
        launchAdb(index);
    else if (m_call.start)
        launchDeviceCall(index);
}

void GroupOperation::launchAdb(int index)
{
    Row &row = m_rows[index];
    auto *task = new AdbTask(m_steps(row.serial));
    const quint64 id = task->id();
    row.task = id;
    m_taskRows.insert(id, index);
    connect(task, &AdbTask::started, this, [this, id] { taskStarted(id); });
    connect(task, &AdbTask::output, this, [this, id](const QString &text) { taskOutput(id, text); });
    connect(task, &AdbTask::finished, this, [this, id](const AdbResult &result) { taskFinished(id, result); });
    AdbWorkPool::instance()->submit(task);
}

void GroupOperation::launchDeviceCall(int index)
{
    Row &row = m_rows[index];
    if (!row.device) {
        end(index, Failed, tr("The phone has left the group"), true);
        return;
    }
    row.clock.start();
    setState(index, Running);
    m_ticker.start();
    auto *call = new QTimer(this);
    call->setSingleShot(true);
    row.call = call;
    connect(call, &QTimer::timeout, this, [this, index, call] {
        if (index >= m_rows.size() || m_rows.at(index).call != call)
            return;
        stopWork(m_rows[index]);
        end(index, TimedOut, tr("The phone did not answer"), true);
    });
    call->start(deviceCallTimeoutMs);
    m_call.start(row.device, call, [this, index, call](bool ok, const QString &text) {
        if (index < m_rows.size() && m_rows.at(index).call == call)
            end(index, ok ? Done : Failed, text, true);
    });
}

void GroupOperation::taskStarted(quint64 task)
{
    const int index = m_taskRows.value(task, -1);
    if (index < 0 || m_rows.at(index).state != Queued)
        return;
    m_rows[index].clock.start();
    setState(index, Running);
    m_ticker.start();
}

void GroupOperation::taskOutput(quint64 task, const QString &text)
{
    const int index = m_taskRows.value(task, -1);
    if (index < 0)
        return;
    QString &output = m_rows[index].output;
    output += text;
    if (output.size() > 2 * kKeptOutput)
        output.remove(0, output.size() - kKeptOutput);
    changed(index);
}

void GroupOperation::taskFinished(quint64 task, const AdbResult &result)
{
    const int index = m_taskRows.value(task, -1);
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

void GroupOperation::setState(int index, State state)
{
    Row &row = m_rows[index];
    const bool wasRunning = running();
    --m_counts[row.state];
    ++m_counts[state];
    row.state = state;
    m_progressDirty = true;
    changed(index);
    if (wasRunning && !running()) {
        m_ticker.stop();
        setNotice({});
        emit finished();
    }
}

void GroupOperation::end(int index, State state, const QString &text, bool replaceOutput)
{
    Row &row = m_rows[index];
    if (row.state == Running)
        row.elapsedMs = row.clock.elapsed();
    if (replaceOutput) {
        row.output = text;
    } else if (!text.isEmpty()) {
        if (!row.output.isEmpty() && !row.output.endsWith('\n'))
            row.output += '\n';
        row.output += text;
    }
    // Forgotten, not stopped: the work has ended or was stopped by the caller.
    if (row.task)
        m_taskRows.remove(row.task);
    row.task = 0;
    if (row.call)
        row.call->deleteLater();
    row.call = nullptr;
    setState(index, state);
}

void GroupOperation::stopWork(Row &row)
{
    if (row.state != Queued && row.state != Running)
        return;
    // The task ends on the pool by itself, clean-up included; its late answer finds no row.
    if (row.task)
        AdbWorkPool::cancel(row.task);
    if (row.call && m_call.stop && row.device)
        m_call.stop(row.device);
}

void GroupOperation::cancel()
{
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).state == Queued || m_rows.at(i).state == Running) {
            stopWork(m_rows[i]);
            end(i, Cancelled, {}, false);
        }
    }
}

void GroupOperation::retryFailed()
{
    for (int i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).state == Failed || m_rows.at(i).state == TimedOut)
            launch(i);
    }
}

bool GroupOperation::running() const
{
    return count(Queued) + count(Running) > 0;
}

void GroupOperation::setNotice(const QString &notice)
{
    if (m_notice == notice)
        return;
    m_notice = notice;
    emit noticeChanged();
}

QString GroupOperation::summary() const
{
    // In the order the line reads: what ended first, then what is still to come.
    static const std::pair<State, const char *> counts[] = {
        {Done, QT_TR_N_NOOP("%n done")},         {Failed, QT_TR_N_NOOP("%n failed")},
        {TimedOut, QT_TR_N_NOOP("%n timed out")}, {Cancelled, QT_TR_N_NOOP("%n cancelled")},
        {Running, QT_TR_N_NOOP("%n running")},   {Queued, QT_TR_N_NOOP("%n queued")},
    };
    QStringList parts;
    for (const auto &[state, text] : counts) {
        if (const int n = count(state))
            parts << tr(text, nullptr, n);
    }
    return parts.join(tr(", ", "between the counts of the summary line"));
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

void GroupOperation::changed(int index)
{
    Row &row = m_rows[index];
    if (!row.dirty) {
        row.dirty = true;
        m_dirtyRows.append(index);
    }
    if (!m_notify.isActive())
        m_notify.start();
}

void GroupOperation::flush()
{
    for (const int index : std::as_const(m_dirtyRows)) {
        m_rows[index].dirty = false;
        emit dataChanged(this->index(index), this->index(index));
    }
    m_dirtyRows.clear();
    if (m_progressDirty) {
        m_progressDirty = false;
        emit progressChanged();
    }
}
