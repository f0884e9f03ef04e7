#include "commonphrasemanager.h"

#include "appowned.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

bool isStringOrAbsent(const QJsonObject &object, std::initializer_list<const char *> keys)
{
    return std::all_of(keys.begin(), keys.end(), [&object](const char *key) {
        const QJsonValue value = object.value(QLatin1String(key));
        return value.isString() || value.isUndefined();
    });
}

} // namespace

CommonPhraseManager::CommonPhraseManager()
    : JsonStore("common_phrases.json", "phrases", QJsonValue::Array)
{
}

CommonPhraseManager *CommonPhraseManager::instance()
{
    static AppOwned<CommonPhraseManager> manager([] { return new CommonPhraseManager; });
    return manager.get();
}


QQmlListProperty<CommonPhrase> CommonPhraseManager::phrases()
{
    return QQmlListProperty<CommonPhrase>(this, &m_phrases);
}

QQmlListProperty<PhraseCategory> CommonPhraseManager::categories()
{
    return QQmlListProperty<PhraseCategory>(this, &m_categories);
}

void CommonPhraseManager::setCurrentCategoryId(const QString &id)
{
    if (id == m_currentCategoryId)
        return;
    m_currentCategoryId = id;
    emit currentCategoryIdChanged();
}

void CommonPhraseManager::addCategory(const QString &name, const QString &description)
{
    auto *category = new PhraseCategory(this);
    category->setName(name);
    category->setDescription(description);
    m_categories.append(category);
    emit categoriesChanged();
    saveData();
}

void CommonPhraseManager::removeCategory(const QString &categoryId)
{
    for (int i = int(m_categories.size()) - 1; i >= 0; --i) {
        if (m_categories[i]->id() != categoryId)
            continue;
        // A category's phrases go with it.
        for (int p = int(m_phrases.size()) - 1; p >= 0; --p) {
            if (m_phrases[p]->category() == categoryId)
                m_phrases.takeAt(p)->deleteLater();
        }
        m_categories.takeAt(i)->deleteLater();
        break;
    }
    emit categoriesChanged();
    emit phrasesChanged();
    saveData();
}

void CommonPhraseManager::updateCategory(const QString &categoryId, const QString &name, const QString &description)
{
    if (PhraseCategory *category = getCategoryById(categoryId)) {
        category->setName(name);
        category->setDescription(description);
    }
    emit categoriesChanged();
    saveData();
}

void CommonPhraseManager::renameCategory(const QString &categoryId, const QString &name)
{
    if (const PhraseCategory *category = getCategoryById(categoryId))
        updateCategory(categoryId, name, category->description());
}

PhraseCategory *CommonPhraseManager::getCategoryById(const QString &categoryId) const
{
    for (PhraseCategory *category : m_categories) {
        if (category->id() == categoryId)
            return category;
    }
    return nullptr;
}

void CommonPhraseManager::addPhrase(const QString &text, const QString &categoryId, const QString &description)
{
    auto *phrase = new CommonPhrase(this);
    phrase->setText(text);
    phrase->setCategory(categoryId);
    phrase->setDescription(description);
    m_phrases.append(phrase);
    emit phrasesChanged();
    saveData();
}

void CommonPhraseManager::removePhrase(const QString &phraseId)
{
    if (CommonPhrase *phrase = getPhraseById(phraseId)) {
        m_phrases.removeOne(phrase);
        phrase->deleteLater();
    }
    emit phrasesChanged();
    saveData();
}

void CommonPhraseManager::updatePhrase(const QString &phraseId, const QString &text, const QString &categoryId,
                                       const QString &description)
{
    if (CommonPhrase *phrase = getPhraseById(phraseId)) {
        phrase->setText(text);
        phrase->setCategory(categoryId);
        phrase->setDescription(description);
    }
    emit phrasesChanged();
    saveData();
}

CommonPhrase *CommonPhraseManager::getPhraseById(const QString &phraseId) const
{
    for (CommonPhrase *phrase : m_phrases) {
        if (phrase->id() == phraseId)
            return phrase;
    }
    return nullptr;
}

QList<CommonPhrase *> CommonPhraseManager::getPhrasesByCategory(const QString &categoryId) const
{
    QList<CommonPhrase *> found;
    for (CommonPhrase *phrase : m_phrases) {
        if (phrase->category() == categoryId)
            found.append(phrase);
    }
    return found;
}

void CommonPhraseManager::saveData()
{
    QJsonArray categories;
    for (const PhraseCategory *category : m_categories)
        categories.append(category->toJson());
    QJsonArray phrases;
    for (const CommonPhrase *phrase : m_phrases)
        phrases.append(phrase->toJson());
    writeFile(QJsonObject{{"categories", categories}, {"phrases", phrases}, {"currentCategoryId", m_currentCategoryId}});
}

void CommonPhraseManager::clear()
{
    qDeleteAll(m_phrases);
    m_phrases.clear();
    qDeleteAll(m_categories);
    m_categories.clear();
}

void CommonPhraseManager::loadData()
{
    // A missing file changes nothing: what is in memory stays, to be saved there.
    if (!QFile::exists(filePath()))
        return;
    clear();
    const QJsonObject root = readFile();
    // What is not of the form a save writes back (a number for a name, a list that is no list) is left out.
    bool leftOut = !isStringOrAbsent(root, {"currentCategoryId"})
                   || !(root.value("categories").isArray() || root.value("categories").isUndefined());
    for (const QJsonValue &value : root.value("categories").toArray()) {
        leftOut |= !value.isObject() || !isStringOrAbsent(value.toObject(), {"id", "name", "description"});
        if (value.isObject())
            m_categories.append(PhraseCategory::fromJson(value.toObject(), this));
    }
    for (const QJsonValue &value : root.value("phrases").toArray()) {
        leftOut |= !value.isObject() || !isStringOrAbsent(value.toObject(), {"id", "text", "category", "description"});
        if (value.isObject())
            m_phrases.append(CommonPhrase::fromJson(value.toObject(), this));
    }
    m_currentCategoryId = root.value("currentCategoryId").toString();
    emit categoriesChanged();
    emit phrasesChanged();
    emit currentCategoryIdChanged();
    // The next save cannot write back what was left out; the file as it was stays beside it.
    if (leftOut)
        keepCopyAside();
}
