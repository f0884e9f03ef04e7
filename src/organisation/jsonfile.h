#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

// The user's data files: single JSON objects, written indented and atomically, so that a crash
// or a full disk during a save never destroys the previous file.
namespace JsonFile {

struct Loaded
{
    // The file's content; empty when the file is missing or was unusable.
    QJsonObject object;
    // Where an unusable file now lies; empty when nothing was moved.
    QString keptAs;
    // An unusable file that could not be moved aside: it must not be replaced.
    bool blocked = false;
    // For the user, when something went wrong; empty otherwise.
    QString message;
};

// A missing, unreadable or corrupt file reads as an empty object.
QJsonObject read(const QString &path);
// Reads a data file whose root object may hold `key` of the given type. A file that exists but
// cannot be read, is not a JSON object or holds `key` with another type is kept aside first, so
// that no later save writes over what the user had.
Loaded load(const QString &path, const QString &key, QJsonValue::Type type);
// Whether bytes are a usable data file as load() decides; the object is stored when they are.
bool parse(const QByteArray &bytes, const QString &key, QJsonValue::Type type, QJsonObject *object);
// Moves the file to "<name>.corrupt-<yyyyMMdd-hhmmss>" beside it; returns the new path, or an
// empty string when it could not be moved.
QString keepAside(const QString &path);
// For a file read only in part (entries of a wrong form were left out, and the next save cannot
// write them back): copies it aside under the name keepAside() gives, with the user's message. When
// the copy fails, blocked is set: the file must not be replaced.
Loaded keepCopyAside(const QString &path);
// Creates the folder when missing. Returns false when the file could not be written.
bool write(const QString &path, const QJsonObject &object);
// The message for a failed write; the caller keeps its state in memory.
QString notSavedMessage(const QString &path);
}
