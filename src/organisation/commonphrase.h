#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

// A stored text that the user pastes into phones, filed under a category by the category's id.
class CommonPhrase : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString id READ id WRITE setId NOTIFY idChanged)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString category READ category WRITE setCategory NOTIFY categoryChanged)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY descriptionChanged)

public:
    explicit CommonPhrase(QObject *parent = nullptr);

    QString id() const { return m_id; }
    void setId(const QString &id);
    QString text() const { return m_text; }
    void setText(const QString &text);
    QString category() const { return m_category; }
    void setCategory(const QString &category);
    QString description() const { return m_description; }
    void setDescription(const QString &description);

    Q_INVOKABLE QJsonObject toJson() const;
    // Missing keys read as empty; an empty id becomes a fresh one.
    static CommonPhrase *fromJson(const QJsonObject &object, QObject *parent);
    // A random UUID without braces.
    static QString newId();

signals:
    void idChanged();
    void textChanged();
    void categoryChanged();
    void descriptionChanged();

private:
    QString m_id;
    QString m_text;
    QString m_category;
    QString m_description;
};
