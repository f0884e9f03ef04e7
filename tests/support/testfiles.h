#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

// The files Korvel keeps for the user, as a test writes, reads and inspects them.
namespace TestFiles {

// Creates the folders on the way; false when the whole content could not be written.
inline bool write(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}

inline QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The copies of a damaged file kept beside it as "NAME.corrupt-DATE-TIME", as full paths.
inline QStringList keptAside(const QString &path, QDir::Filters filters = QDir::Files)
{
    const QFileInfo file(path);
    QStringList found;
    for (const QString &name : file.dir().entryList({file.fileName() + ".corrupt-*"}, filters))
        found << file.dir().filePath(name);
    return found;
}

// As phonesim's journal gives a transferred file's content.
inline QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

} // namespace TestFiles
