#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

// A named folder of common phrases.
class PhraseCategory : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString id READ id WRITE setId NOTIFY idChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY descriptionChanged)

public:
    explicit PhraseCategory(QObject *parent = nullptr);

    QString id() const { return m_id; }
    void setId(const QString &id);
    QString name() const { return m_name; }
    void setName(const QString &name);
    QString description() const { return m_description; }
    void setDescription(const QString &description);

    Q_INVOKABLE QJsonObject toJson() const;
    // Missing keys read as empty; an empty id becomes a fresh one.
    static PhraseCategory *fromJson(const QJsonObject &object, QObject *parent);

signals:
    void idChanged();
    void nameChanged();
    void descriptionChanged();

private:
    QString m_id;
    QString m_name;
    QString m_description;
};
