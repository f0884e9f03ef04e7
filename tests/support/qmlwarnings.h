#pragma once

#include <QStringList>
#include <QtGlobal>

// Collects the warnings QML prints while it is installed, still passing every message on, so a
// test of a whole window can fail on a warning that did not fail anything else.
class QmlWarnings
{
public:
    QmlWarnings() { s_previous = qInstallMessageHandler(collect); }
    ~QmlWarnings() { qInstallMessageHandler(s_previous); }
    QStringList all() const { return s_warnings; }

private:
    static void collect(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        const bool fromQml = QString::fromUtf8(context.file ? context.file : "").endsWith(".qml")
                             || message.contains("qml", Qt::CaseInsensitive);
        if (type != QtDebugMsg && type != QtInfoMsg && fromQml)
            s_warnings << message;
        s_previous(type, context, message);
    }
    static inline QStringList s_warnings;
    static inline QtMessageHandler s_previous = nullptr;
};
