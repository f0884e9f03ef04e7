// Replies of the AutoJS app's command port, read off a buffer as the bridge does.
#include "autojsprotocol.h"
#include "fuzzinput.h"

#include <QJsonDocument>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray buffer = FuzzInput::bytes(data, size);
    for (;;) {
        const qsizetype before = buffer.size();
        quint32 type = 0;
        QByteArray body;
        const AutojsProtocol::Take take = AutojsProtocol::takeReply(buffer, &type, &body);
        if (take != AutojsProtocol::Take::Message)
            break;
        if (buffer.size() != before - AutojsProtocol::ReplyHeaderSize - body.size())
            std::abort();
        if (type == AutojsProtocol::TypeJson)
            QJsonDocument::fromJson(body);
    }
    return 0;
}
