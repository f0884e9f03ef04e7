#include "fuzzinput.h"

#include <QtGlobal>

void FuzzInput::quietQt()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}
