#include "jsonfile.h"

#include <QDateTime>
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

bool readObject(const QString &path, QJsonObject *object)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return false;
    *object = document.object();
    return true;
}

QString keepAside(const QString &path)
{
    const QString stamp = QDateTime::currentDateTime().toString("yyyyMMdd-hhmmss");
    QString target = path + ".corrupt-" + stamp;
    // A second damaged file within the same second must not replace the first one kept.
    for (int n = 2; QFile::exists(target); ++n)
        target = path + ".corrupt-" + stamp + "-" + QString::number(n);
    return QFile::rename(path, target) ? target : QString();
}

}
