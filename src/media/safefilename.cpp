#include "safefilename.h"

namespace {

QString replaceUnsafe(QString text)
{
    static const QString unsafe = QStringLiteral("\\/:*?\"<>|");
    for (QChar &c : text) {
        if (unsafe.contains(c) || c.category() == QChar::Other_Control)
            c = QLatin1Char('_');
    }
    return text;
}

int utf8Bytes(char32_t codePoint)
{
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}

} // namespace

QString SafeFileName::make(const QString &label, const QString &tail)
{
    const QString end = replaceUnsafe(tail);
    const QString name = replaceUnsafe(label);
    qsizetype units = end.size();
    qsizetype bytes = end.toUtf8().size();
    qsizetype kept = 0;
    while (kept < name.size()) {
        const bool pair = kept + 1 < name.size() && name.at(kept).isHighSurrogate() && name.at(kept + 1).isLowSurrogate();
        const int width = pair ? 2 : 1;
        const int size = utf8Bytes(pair ? QChar::surrogateToUcs4(name.at(kept), name.at(kept + 1)) : name.at(kept).unicode());
        if (units + width >= Limit || bytes + size > MaxBytes)
            break;
        units += width;
        bytes += size;
        kept += width;
    }
    return name.left(kept) + end;
}
