// common_phrases.json: what is read from it, what is written back, and what is kept of a damaged
// file (shown to the user as in tst_startup).
#include "commonphrasemanager.h"
#include "jsonfile.h"
#include "testfiles.h"

#include <QtTest>

namespace {
// "category name(description): phrase text(description), ..." per category, then the current id.
QString describe(CommonPhraseManager *manager)
{
    QStringList lines;
    for (const PhraseCategory *category : manager->getCategoriesList()) {
        QStringList phrases;
        for (const CommonPhrase *phrase : manager->getPhrasesByCategory(category->id()))
            phrases << QString("%1(%2)").arg(phrase->text(), phrase->description());
        lines << QString("%1(%2): %3").arg(category->name(), category->description(), phrases.join(", "));
    }
    lines << "current=" + manager->currentCategoryId();
    return lines.join("\n");
}
}

class TestCommonPhraseManager : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

private slots:
    void initTestCase() { CommonPhraseManager::instance()->setFolder(m_folder.path()); }

    void fileContents_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("loaded");
        // How the file as it was is kept: "" not at all, "moved" when unusable, "copied" when read in part.
        QTest::addColumn<QString>("aside");
        QTest::newRow("categories and phrases") << QByteArray(R"({"categories":[
            {"id":"c1","name":"Greetings","description":"daily"},{"id":"c2","name":"Empty","description":""}],
            "phrases":[{"id":"p1","text":"早上好","category":"c1","description":"morning"},
                       {"id":"p2","text":"bye","category":"c1","description":""},
                       {"id":"p3","text":"lost","category":"gone","description":""}],
            "currentCategoryId":"c2"})") << "Greetings(daily): 早上好(morning), bye()\nEmpty(): \ncurrent=c2" << "";
        QTest::newRow("missing ids and keys") << QByteArray(R"({"categories":[{"name":"Only"}],"phrases":[{"text":"hi"}]})")
                                              << "Only(): \ncurrent=" << "";
        QTest::newRow("wrong types") << QByteArray(R"({"categories":[5,{"id":"c","name":7}],
            "phrases":["x",{"id":"p","text":"ok","category":"c","description":false}],"currentCategoryId":[]})")
                                     << "(): ok()\ncurrent=" << "copied";
        QTest::newRow("categories not a list") << QByteArray(R"({"categories":{"id":"c"},"phrases":[{"text":"hi","category":"c"}]})")
                                               << "current=" << "copied";
        QTest::newRow("not JSON") << QByteArray(R"({"phrases":[{"text":)") << "current=" << "moved";
    }

    void fileContents()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, loaded);
        QFETCH(QString, aside);
        CommonPhraseManager *manager = CommonPhraseManager::instance();
        const QString path = manager->filePath();
        for (const QString &kept : TestFiles::keptAside(path))
            QVERIFY(QFile::remove(kept));
        QVERIFY(TestFiles::write(path, file));
        manager->loadData();
        QCOMPARE(describe(manager), loaded);
        // The file as it was is kept byte for byte under a name the user is told, before any save.
        const QStringList kept = TestFiles::keptAside(path);
        QCOMPARE(kept.size(), aside.isEmpty() ? 0 : 1);
        if (!aside.isEmpty()) {
            QCOMPARE(TestFiles::read(kept.first()), file);
            QCOMPARE(QFile::exists(path), aside == "copied");
            QVERIFY2(manager->fileMessage().contains(kept.first()), qPrintable(manager->fileMessage()));
        } else {
            QVERIFY(manager->fileMessage().isEmpty());
        }

        // Every entry has a 36-character id once saved, and the file reads back the same.
        manager->saveData();
        QCOMPARE(TestFiles::keptAside(path), kept);
        const QJsonObject written = QJsonDocument::fromJson(TestFiles::read(path)).object();
        const QRegularExpression uuid("^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$");
        for (const QString key : {"categories", "phrases"}) {
            for (const QJsonValue &entry : written.value(key).toArray()) {
                const QString id = entry.toObject().value("id").toString();
                QVERIFY2(id.size() <= 2 || uuid.match(id).hasMatch(), qPrintable(id));
            }
        }
        manager->loadData();
        QCOMPARE(describe(manager), loaded);
        QVERIFY(manager->fileMessage().isEmpty());
    }

    void renamedCategoryKeepsItsDescription()
    {
        CommonPhraseManager *manager = CommonPhraseManager::instance();
        QVERIFY(TestFiles::write(manager->filePath(), R"({"categories":[{"id":"c1","name":"Greetings","description":"daily"}]})"));
        manager->loadData();
        manager->renameCategory("c1", "Hello");
        manager->loadData();
        QCOMPARE(describe(manager), QString("Hello(daily): \ncurrent="));
    }

    void failedSaveIsReported()
    {
        CommonPhraseManager *manager = CommonPhraseManager::instance();
        const QString path = manager->filePath();
        QFile::remove(path);
        // A folder in the file's place cannot be replaced by a file.
        QVERIFY(QDir().mkpath(path + "/inside"));
        manager->addCategory("Unsaved");
        QCOMPARE(manager->fileMessage(), JsonFile::notSavedMessage(path));
        QVERIFY(QDir(path).removeRecursively());
        manager->saveData();
        QVERIFY(manager->fileMessage().isEmpty());
        QVERIFY(TestFiles::read(path).contains("Unsaved"));
    }
};

QTEST_GUILESS_MAIN(TestCommonPhraseManager)
#include "tst_commonphrasemanager.moc"
