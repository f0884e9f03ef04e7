#pragma once

#include <QJsonObject>
#include <QString>

// The user's data files: single JSON objects, written indented and atomically, so that a crash
// or a full disk during a save never destroys the previous file.
namespace JsonFile {
// A missing, unreadable or corrupt file reads as an empty object.
QJsonObject read(const QString &path);
// Creates the folder when missing. Returns false when the file could not be written.
bool write(const QString &path, const QJsonObject &object);
// False when the file cannot be opened or its text is not a JSON object.
bool readObject(const QString &path, QJsonObject *object);
// Renames a damaged file to "<name>.corrupt-<yyyyMMdd-hhmmss>" so that nothing is saved over it;
// returns the new path, or an empty string when the file could not be moved.
QString keepAside(const QString &path);
}
