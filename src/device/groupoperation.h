#pragma once

#include "adbresult.h"
#include "adbtask.h"

#include <QAbstractListModel>
#include <QElapsedTimer>
#include <QHash>
#include <QPointer>
#include <QTimer>
#include <QVariantList>

#include <array>
#include <functional>

class Device;

// One operation on many phones (an adb command, an install, an upload, a screenshot, an AutoJS
// run) as a live table: a row per phone with its state, elapsed time and answer. The adb work runs
// on the adb work pool, all phones at once within its bound; the user can cancel what has not
// finished and retry what failed.
class GroupOperation : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY progressChanged)
    Q_PROPERTY(bool running READ running NOTIFY progressChanged)
    Q_PROPERTY(int failedCount READ failedCount NOTIFY progressChanged)
    // Why a group action the user asked for did not start: this one still runs.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)

public:
    enum State { Queued, Running, Done, Failed, Cancelled, TimedOut };
    Q_ENUM(State)
    enum Role {
        NumberRole = Qt::UserRole + 1,
        NicknameRole,
        SerialRole,
        StateRole,
        StateTextRole,
        ElapsedRole,
        OutputRole,
    };

    using StepsFor = std::function<QList<AdbTask::Step>(const QString &serial)>;
    // A phone's own answer to a device call: done or failed, with the text for its row.
    using Reply = std::function<void(bool ok, const QString &text)>;
    struct DeviceCall
    {
        // Starts the work on one phone. The answer comes through connections made with `context`
        // as their receiver; the context goes when the row ends, and the connections with it.
        std::function<void(Device *device, QObject *context, const Reply &reply)> start;
        // Stops work still under way on one phone (cancelled or timed out); may be empty.
        std::function<void(Device *device)> stop;
    };

    explicit GroupOperation(QObject *parent = nullptr);
    ~GroupOperation() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // adb steps on every phone, on the adb work pool.
    void startAdb(const QString &title, const QList<Device *> &devices, const StepsFor &steps);
    // A session call on every phone (screenshots, AutoJS runs), answered by the call itself. Rows
    // without an answer in time end as timed out.
    void startDeviceCalls(const QString &title, const QList<Device *> &devices, const DeviceCall &call);
    static void setDeviceCallTimeout(int milliseconds);
    // How long a burst of changes is gathered before the table hears of it.
    static constexpr int notifyIntervalMs = 100;

    // The phone's dialog: a free-form command on the given devices.
    Q_INVOKABLE void runCommand(const QVariantList &devices, const QString &input);
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void retryFailed();
    // "Device %1:", the dash line, the phone's answer, for every phone in order.
    Q_INVOKABLE QString report() const;
    Q_INVOKABLE void copyReport() const;

    QString title() const { return m_title; }
    QString summary() const;
    bool running() const;
    int failedCount() const { return count(Failed) + count(TimedOut); }
    int count(State state) const { return m_counts.at(state); }
    QString notice() const { return m_notice; }
    void setNotice(const QString &notice);
    State state(int row) const { return m_rows.at(row).state; }
    QString output(int row) const { return m_rows.at(row).output; }
    QString stateText(State state) const;

signals:
    void titleChanged();
    void progressChanged();
    void noticeChanged();
    // Every row has ended.
    void finished();

private:
    struct Row
    {
        int number = 0;
        QString nickname;
        QString serial;
        QPointer<Device> device;
        State state = Queued;
        QString output;
        QElapsedTimer clock;
        qint64 elapsedMs = 0;
        // The adb task under way, by id; 0 when none.
        quint64 task = 0;
        // A device call under way: its deadline, and the receiver of the phone's answer.
        QTimer *call = nullptr;
        bool dirty = false;
    };

    void setRows(const QString &title, const QList<Device *> &devices);
    void launch(int row);
    void launchAdb(int row);
    void launchDeviceCall(int row);
    void taskStarted(quint64 task);
    void taskOutput(quint64 task, const QString &text);
    void taskFinished(quint64 task, const AdbResult &result);
    void setState(int row, State state);
    void end(int row, State state, const QString &text, bool replaceOutput);
    void stopWork(Row &row);
    void changed(int row);
    void flush();

    QString m_title;
    QString m_notice;
    QList<Row> m_rows;
    QHash<quint64, int> m_taskRows;
    std::array<int, TimedOut + 1> m_counts{};
    StepsFor m_steps;
    DeviceCall m_call;
    QTimer m_ticker;
    QTimer m_notify;
    QList<int> m_dirtyRows;
    bool m_progressDirty = false;
};
