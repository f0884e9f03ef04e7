#include "commonphrase.h"

#include <QUuid>

CommonPhrase::CommonPhrase(QObject *parent)
    : QObject(parent)
    , m_id(newId())
{
}

QString CommonPhrase::newId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

void CommonPhrase::setId(const QString &id)
{
    if (id == m_id)
        return;
    m_id = id;
    emit idChanged();
}

void CommonPhrase::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    emit textChanged();
}

void CommonPhrase::setCategory(const QString &category)
{
    if (category == m_category)
        return;
    m_category = category;
    emit categoryChanged();
}

void CommonPhrase::setDescription(const QString &description)
{
    if (description == m_description)
        return;
    m_description = description;
    emit descriptionChanged();
}

QJsonObject CommonPhrase::toJson() const
{
    return {{"id", m_id}, {"text", m_text}, {"category", m_category}, {"description", m_description}};
}

CommonPhrase *CommonPhrase::fromJson(const QJsonObject &object, QObject *parent)
{
    auto *phrase = new CommonPhrase(parent);
    const QString id = object.value("id").toString();
    if (!id.isEmpty())
        phrase->m_id = id;
    phrase->m_text = object.value("text").toString();
    phrase->m_category = object.value("category").toString();
    phrase->m_description = object.value("description").toString();
    return phrase;
}
