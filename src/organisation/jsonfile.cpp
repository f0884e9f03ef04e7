#include "jsonfile.h"

#include <QCoreApplication>
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

Loaded load(const QString &path, const QString &key, QJsonValue::Type type)
{
    Loaded loaded;
    QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        return loaded;
    QFile file(path);
    bool usable = false;
    if (info.isFile() && file.open(QIODevice::ReadOnly)) {
        usable = parse(file.readAll(), key, type, &loaded.object);
        file.close();
    }
    if (usable)
        return loaded;

    loaded.keptAs = keepAside(path);
    const QString name = QDir::toNativeSeparators(path);
    if (loaded.keptAs.isEmpty()) {
        loaded.blocked = true;
        loaded.message = QCoreApplication::translate(
                             "JsonFile", "%1 could not be read and could not be moved aside. Korvel will not save "
                                         "over it; changes are kept only until Korvel closes.")
                             .arg(name);
    } else {
        loaded.message = QCoreApplication::translate("JsonFile",
                                                     "%1 could not be read. It was kept as %2 and Korvel started "
                                                     "without it.")
                             .arg(name, QDir::toNativeSeparators(loaded.keptAs));
    }
    return loaded;
}

bool parse(const QByteArray &bytes, const QString &key, QJsonValue::Type type, QJsonObject *object)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return false;
    const QJsonValue value = document.object().value(key);
    if (!value.isUndefined() && value.type() != type)
        return false;
    *object = document.object();
    return true;
}

namespace {

QString asideName(const QString &path)
{
    const QString stem = path + ".corrupt-" + QDateTime::currentDateTime().toString("yyyyMMdd-hhmmss");
    QString target = stem;
    // Two bad files within one second must not meet at the same name.
    for (int n = 2; QFileInfo::exists(target) || QFileInfo(target).isSymLink(); ++n)
        target = stem + "-" + QString::number(n);
    return target;
}

} // namespace

QString keepAside(const QString &path)
{
    const QString target = asideName(path);
    return QFile::rename(path, target) ? target : QString();
}

Loaded keepCopyAside(const QString &path)
{
    Loaded kept;
    const QString target = asideName(path);
    const QString name = QDir::toNativeSeparators(path);
    if (QFile::copy(path, target)) {
        kept.keptAs = target;
        kept.message = QCoreApplication::translate("JsonFile",
                                                   "Parts of %1 could not be read and were left out. The file as "
                                                   "it was is kept as %2.")
                           .arg(name, QDir::toNativeSeparators(target));
    } else {
        kept.blocked = true;
        kept.message = QCoreApplication::translate("JsonFile",
                                                   "Parts of %1 could not be read and a copy could not be kept. "
                                                   "Korvel will not save over it; changes are kept only until "
                                                   "Korvel closes.")
                           .arg(name);
    }
    return kept;
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

QString notSavedMessage(const QString &path)
{
    return QCoreApplication::translate("JsonFile", "%1 could not be saved. Changes are kept only until Korvel closes.")
        .arg(QDir::toNativeSeparators(path));
}

}
