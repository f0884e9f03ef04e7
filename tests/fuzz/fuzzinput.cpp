#include "fuzzinput.h"

#include <QtGlobal>

void FuzzInput::quietQt()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}

// Targets that need no set-up of their own (an application object, a data folder) take this one.
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzInput::quietQt();
    return 0;
}
