#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QObject>
#include <QString>

// What every store of the user's data shares: one JSON file in a folder the application gives,
// read through JsonFile (a damaged file is kept aside and named to the user), replaced atomically,
// and a failed save told to the user. The store decides what the file holds.
class JsonStore : public QObject
{
    Q_OBJECT
    // What went wrong with the file, for the user; empty when nothing did.
    Q_PROPERTY(QString fileMessage READ fileMessage NOTIFY fileMessageChanged)

public:
    QString folder() const { return m_folder; }
    // Where the file lies from now on: the next save writes there, and nothing is read again.
    void setFolder(const QString &folder);
    // The file in the folder; empty while no folder was given, and then nothing is read or written.
    QString filePath() const;
    QString fileMessage() const { return m_fileMessage; }

signals:
    void fileMessageChanged();

protected:
    // The file's name, and the member its root object may hold, of the given type, to be usable.
    JsonStore(const QString &fileName, const QString &rootKey, QJsonValue::Type rootType, QObject *parent = nullptr);

    // The file's object; empty when it is missing or unusable. An unusable file is moved aside
    // and named in the message; one that cannot be moved is never replaced.
    QJsonObject readFile();
    // For a file read only in part, whose rest the next save would drop: copies it aside, with
    // the user's message; when even that fails, the file is never replaced.
    void keepCopyAside();
    // Replaces the file with the object. Returns false, with a message for the user when the write
    // failed, if nothing was written; the message goes once a save succeeds.
    bool writeFile(const QJsonObject &object);
    void setFileMessage(const QString &message);

private:
    const QString m_fileName;
    const QString m_rootKey;
    const QJsonValue::Type m_rootType;
    QString m_folder;
    QString m_fileMessage;
    // The file could be neither read nor kept aside: it is never replaced.
    bool m_saveBlocked = false;
};
