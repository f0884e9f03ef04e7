#include "phrasecategory.h"

#include "commonphrase.h"

PhraseCategory::PhraseCategory(QObject *parent)
    : QObject(parent)
    , m_id(CommonPhrase::newId())
{
}

void PhraseCategory::setId(const QString &id)
{
    if (id == m_id)
        return;
    m_id = id;
    emit idChanged();
}

void PhraseCategory::setName(const QString &name)
{
    if (name == m_name)
        return;
    m_name = name;
    emit nameChanged();
}

void PhraseCategory::setDescription(const QString &description)
{
    if (description == m_description)
        return;
    m_description = description;
    emit descriptionChanged();
}

QJsonObject PhraseCategory::toJson() const
{
    return {{"id", m_id}, {"name", m_name}, {"description", m_description}};
}

PhraseCategory *PhraseCategory::fromJson(const QJsonObject &object, QObject *parent)
{
    auto *category = new PhraseCategory(parent);
    const QString id = object.value("id").toString();
    if (!id.isEmpty())
        category->m_id = id;
    category->m_name = object.value("name").toString();
    category->m_description = object.value("description").toString();
    return category;
}
