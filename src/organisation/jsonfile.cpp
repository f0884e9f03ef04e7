#include "jsonfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

namespace JsonFile {

QJsonObject read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

bool write(const QString &path, const QJsonObject &object)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray text = QJsonDocument(object).toJson(QJsonDocument::Indented);
    // A short write (a full disk) must not replace the previous file with a truncated one.
    if (file.write(text) != text.size() || !file.flush()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

}
