// What the phone's server writes on the control socket, cut into two reads.
#include "devicemessagereceiver.h"
#include "fakesocket.h"
#include "fuzzinput.h"

#include <QGuiApplication>

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzInput::quietQt();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The receiver puts texts on the clipboard, which needs the GUI application.
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FuzzInput::Split reads = FuzzInput::split(data, size);
    FakeSocket socket;
    DeviceMessageReceiver receiver(nullptr, &socket);
    socket.feed(reads.first);
    socket.feed(reads.second);

    // The parser alone: it never claims more bytes than it was given.
    const QByteArray whole = reads.first + reads.second;
    for (qsizetype offset = 0; offset < whole.size();) {
        QString text;
        bool isClipboard = false;
        const qsizetype used = DeviceMessageReceiver::parse(whole.mid(offset), &text, &isClipboard);
        if (used <= 0)
            break;
        if (used > whole.size() - offset)
            std::abort();
        offset += used;
    }
    return 0;
}
