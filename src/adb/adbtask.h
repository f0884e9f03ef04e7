#pragma once

#include "adbresult.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

class AdbJob;

// The adb steps of one operation on one phone, run one after another on the adb work pool:
// install = push to a temporary file, package manager, removal of the temporary file.
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

    explicit AdbTask(const QList<Step> &steps, QObject *parent = nullptr);

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
    void finished(const AdbResult &result);

private:
    void runStep();
    void stepFinished(const AdbResult &result);
    void finish();

    QList<Step> m_steps;
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
