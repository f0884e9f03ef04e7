#pragma once

#include "adbresult.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

class AdbJob;

// The adb steps of one operation on one phone, run one after another on the adb work pool:
// install = push to a temporary file, package manager, removal of the temporary file. The verdict
// comes as soon as it is known (at once on a cancel); clean-up steps run after it in any case,
// each with its own short time-out, and then the task ends.
class AdbTask : public QObject
{
    Q_OBJECT
public:
    struct Step
    {
        QStringList args;
        AdbResult::Kind kind = AdbResult::Kind::Command;
        // A failure ends the task (the clean-up steps still run).
        bool stopOnFailure = true;
        // Runs whatever happened before, also after a cancel; its result is not the task's.
        bool cleanup = false;
    };

    // Silence allowed to a clean-up step.
    static constexpr int cleanupTimeoutMs = 15000;

    explicit AdbTask(const QList<Step> &steps, QObject *parent = nullptr);

    // Unique for the life of the process, so that a late signal of an ended task is never taken
    // for its successor's.
    quint64 id() const { return m_id; }

    // The steps of the operations the user starts.
    static QList<Step> commandSteps(const QString &serial, const QString &input);
    static QList<Step> installSteps(const QString &serial, const QString &localApk);
    static QList<Step> uploadSteps(const QString &serial, const QString &localFile);
    static constexpr const char *uploadFolder = "/sdcard/Download/";
    static constexpr const char *installFolder = "/data/local/tmp/";

    const QList<Step> &steps() const { return m_steps; }

public slots:
    void start();
    void cancel();

signals:
    void started();
    void output(const QString &text);
    // The verdict; clean-up steps may still be running.
    void finished(const AdbResult &result);
    // Every step, clean-up included, is over.
    void ended();

private:
    void runStep();
    void stepFinished(const AdbResult &result);
    void finish();

    QList<Step> m_steps;
    const quint64 m_id;
    int m_next = 0;
    QPointer<AdbJob> m_job;
    AdbResult m_result;
    bool m_failed = false;
    bool m_hasFailure = false;
    bool m_cancelled = false;
    bool m_started = false;
    bool m_finished = false;
    // Commands report every line's answer, one after another.
    QString m_commandOutput;
};
