#pragma once

#include "commonphrase.h"
#include "jsonstore.h"
#include "phrasecategory.h"

#include <QList>
#include <QQmlListProperty>
#include <QString>


// The user's library of phrases in categories, kept in common_phrases.json.
class CommonPhraseManager : public JsonStore
{
    Q_OBJECT
    Q_PROPERTY(QQmlListProperty<CommonPhrase> phrases READ phrases NOTIFY phrasesChanged)
    Q_PROPERTY(QQmlListProperty<PhraseCategory> categories READ categories NOTIFY categoriesChanged)
    Q_PROPERTY(QString currentCategoryId READ currentCategoryId WRITE setCurrentCategoryId
                   NOTIFY currentCategoryIdChanged)

public:
    static CommonPhraseManager *instance();

    QQmlListProperty<CommonPhrase> phrases();
    QQmlListProperty<PhraseCategory> categories();
    QString currentCategoryId() const { return m_currentCategoryId; }
    void setCurrentCategoryId(const QString &id);

    Q_INVOKABLE void addCategory(const QString &name, const QString &description = QString());
    Q_INVOKABLE void removeCategory(const QString &categoryId);
    Q_INVOKABLE void updateCategory(const QString &categoryId, const QString &name, const QString &description);
    // Keeps the category's description.
    Q_INVOKABLE void renameCategory(const QString &categoryId, const QString &name);
    Q_INVOKABLE PhraseCategory *getCategoryById(const QString &categoryId) const;
    Q_INVOKABLE QList<PhraseCategory *> getCategoriesList() const { return m_categories; }
    Q_INVOKABLE void addPhrase(const QString &text, const QString &categoryId,
                               const QString &description = QString());
    Q_INVOKABLE void removePhrase(const QString &phraseId);
    Q_INVOKABLE void updatePhrase(const QString &phraseId, const QString &text, const QString &categoryId,
                                  const QString &description = QString());
    Q_INVOKABLE CommonPhrase *getPhraseById(const QString &phraseId) const;
    Q_INVOKABLE QList<CommonPhrase *> getPhrasesByCategory(const QString &categoryId) const;
    Q_INVOKABLE QList<CommonPhrase *> getAllPhrases() const { return m_phrases; }
    Q_INVOKABLE void saveData();
    // Replaces what is in memory by the file's. A damaged file is moved aside first, so that the
    // next save cannot overwrite it, and the library starts empty.
    Q_INVOKABLE void loadData();

signals:
    void phrasesChanged();
    void categoriesChanged();
    void currentCategoryIdChanged();

private:
    CommonPhraseManager();
    void clear();

    QList<PhraseCategory *> m_categories;
    QList<CommonPhrase *> m_phrases;
    QString m_currentCategoryId;
};
