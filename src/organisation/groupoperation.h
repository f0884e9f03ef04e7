#pragma once

#include "adbresult.h"
#include "adbtask.h"

#include <QAbstractListModel>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <functional>

class Device;

// One operation on many phones (an adb command, an install, an upload, a screenshot, an AutoJS
// run) as a live table: a row per phone with its state, elapsed time and answer. The adb work runs
// on the adb work pool, all phones at once within its bound; the user can cancel what has not
// finished and retry what failed.
class GroupOperation : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY progressChanged)
    Q_PROPERTY(bool running READ running NOTIFY progressChanged)
    Q_PROPERTY(int failedCount READ failedCount NOTIFY progressChanged)

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
    using DeviceCall = std::function<void(Device *)>;

    explicit GroupOperation(QObject *parent = nullptr);
    ~GroupOperation() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // adb steps on every phone, on the adb work pool.
    void startAdb(const QString &title, const QList<Device *> &devices, const StepsFor &steps);
    // A session call on every phone whose answer is the phone's next status message (screenshots,
    // AutoJS runs): "success" is done, "error" failed, and "info" done when infoIsDone (an AutoJS
    // run reports its start that way). Rows without an answer in time end as timed out.
    void startDeviceCalls(const QString &title, const QList<Device *> &devices, const DeviceCall &call,
                          bool infoIsDone = false);
    static void setDeviceCallTimeout(int milliseconds);

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
    int count(State state) const;
    State state(int row) const { return m_rows.at(row).state; }
    QString output(int row) const { return m_rows.at(row).output; }
    QString stateText(State state) const;

signals:
    void titleChanged();
    void progressChanged();
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
        AdbTask *task = nullptr;
        QMetaObject::Connection answer;
        QTimer *deadline = nullptr;
    };

    void setRows(const QString &title, const QList<Device *> &devices);
    void launch(int row);
    void launchAdb(int row);
    void launchDeviceCall(int row);
    void taskStarted(AdbTask *task);
    void taskOutput(AdbTask *task, const QString &text);
    void taskFinished(AdbTask *task, const AdbResult &result);
    void end(int row, State state, const QString &text, bool replaceOutput);
    void releaseTask(Row &row);
    int rowOf(AdbTask *task) const;
    void changed(int row, const QList<int> &roles);

    QString m_title;
    QList<Row> m_rows;
    StepsFor m_steps;
    DeviceCall m_call;
    bool m_infoIsDone = false;
    QTimer m_ticker;
    bool m_wasRunning = false;
};
