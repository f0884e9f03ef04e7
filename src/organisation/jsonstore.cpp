#include "jsonstore.h"

#include "jsonfile.h"

#include <QDir>

JsonStore::JsonStore(const QString &fileName, const QString &rootKey, QJsonValue::Type rootType, QObject *parent)
    : QObject(parent)
    , m_fileName(fileName)
    , m_rootKey(rootKey)
    , m_rootType(rootType)
{
}

void JsonStore::setFolder(const QString &folder)
{
    m_folder = folder;
}

QString JsonStore::filePath() const
{
    return m_folder.isEmpty() ? QString() : QDir(m_folder).filePath(m_fileName);
}

QJsonObject JsonStore::readFile()
{
    const JsonFile::Loaded loaded = JsonFile::load(filePath(), m_rootKey, m_rootType);
    m_saveBlocked = loaded.blocked;
    setFileMessage(loaded.message);
    return loaded.object;
}

void JsonStore::keepCopyAside()
{
    const JsonFile::Loaded kept = JsonFile::keepCopyAside(filePath());
    m_saveBlocked = kept.blocked;
    setFileMessage(kept.message);
}

bool JsonStore::writeFile(const QJsonObject &object)
{
    if (m_saveBlocked || m_folder.isEmpty())
        return false;
    // A failed write leaves the previous file in place and the store's data in memory.
    const QString notSaved = JsonFile::notSavedMessage(filePath());
    const bool saved = JsonFile::write(filePath(), object);
    if (!saved)
        setFileMessage(notSaved);
    else if (m_fileMessage == notSaved)
        setFileMessage({});
    return saved;
}

void JsonStore::setFileMessage(const QString &message)
{
    if (message == m_fileMessage)
        return;
    m_fileMessage = message;
    emit fileMessageChanged();
}
