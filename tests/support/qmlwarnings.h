#pragma once

#include <QStringList>
#include <QtGlobal>

// Collects, while it lives, the warnings that come from QML (a .qml file, or "qml" in the text);
// every message still goes on to the handler before it.
class QmlWarnings
{
public:
    QmlWarnings() { s_previous = qInstallMessageHandler(collect); }
    ~QmlWarnings() { qInstallMessageHandler(s_previous); }
    bool isEmpty() const { return s_collected.isEmpty(); }
    QByteArray text() const { return s_collected.join("\n").toLocal8Bit(); }

private:
    static void collect(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        const bool fromQml = QString::fromUtf8(context.file ? context.file : "").endsWith(".qml")
            || message.contains("qml", Qt::CaseInsensitive);
        if (type != QtDebugMsg && type != QtInfoMsg && fromQml)
            s_collected << message;
        s_previous(type, context, message);
    }

    static inline QStringList s_collected;
    static inline QtMessageHandler s_previous = nullptr;
};
