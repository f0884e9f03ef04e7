// common_phrases.json as a user may have left it.
#include "commonphrase.h"
#include "fuzzinput.h"
#include "jsonfile.h"
#include "phrasecategory.h"

#include <QJsonArray>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QJsonObject file;
    if (!JsonFile::parse(FuzzInput::bytes(data, size), "phrases", QJsonValue::Array, &file))
        return 0;
    QObject owner;
    for (const QJsonValue &value : file.value("categories").toArray()) {
        if (value.isObject())
            PhraseCategory::fromJson(value.toObject(), &owner);
    }
    for (const QJsonValue &value : file.value("phrases").toArray()) {
        if (value.isObject())
            CommonPhrase::fromJson(value.toObject(), &owner);
    }
    return 0;
}
