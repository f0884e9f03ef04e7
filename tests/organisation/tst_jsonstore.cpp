// What every store gets from JsonStore: a damaged file kept aside and named, a failed save told.
#include "jsonfile.h"
#include "jsonstore.h"
#include "testfiles.h"

#include <QtTest>

namespace {
// The smallest store: a file whose root object may hold a list of notes.
class NoteStore : public JsonStore
{
public:
    NoteStore()
        : JsonStore("notes.json", "notes", QJsonValue::Array)
    {
    }
    QJsonObject read() { return readFile(); }
    bool write(const QJsonObject &object) { return writeFile(object); }
};
}

class TestJsonStore : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    int m_case = 0;

private slots:
    void damagedFileIsKeptAside_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not JSON") << QByteArray("{\"notes\": [");
        QTest::newRow("notes of the wrong type") << QByteArray(R"({"notes": {"a": 1}})");
    }

    void damagedFileIsKeptAside()
    {
        QFETCH(QByteArray, content);
        NoteStore store;
        store.setFolder(m_root.filePath(QString("case%1").arg(++m_case)));
        QVERIFY(TestFiles::write(store.filePath(), content));
        QSignalSpy changed(&store, &JsonStore::fileMessageChanged);

        QCOMPARE(store.read(), QJsonObject());
        const QStringList kept = TestFiles::keptAside(store.filePath());
        QCOMPARE(kept.size(), 1);
        QCOMPARE(TestFiles::read(kept.first()), content);
        QCOMPARE(changed.count(), 1);
        QVERIFY2(store.fileMessage().contains(store.filePath()) && store.fileMessage().contains(kept.first()),
                 qPrintable(store.fileMessage()));

        // A new file takes the old one's name; the kept one stays as it was.
        QVERIFY(store.write({{"notes", QJsonArray{"first"}}}));
        QCOMPARE(store.read(), QJsonObject({{"notes", QJsonArray{"first"}}}));
        QCOMPARE(TestFiles::keptAside(store.filePath()), kept);
        QCOMPARE(TestFiles::read(kept.first()), content);
        QCOMPARE(store.fileMessage(), QString());
    }

    void failedSaveIsReported()
    {
        // The folder lies below a plain file, so it can never be made.
        const QString blocker = m_root.filePath("blocker");
        QVERIFY(TestFiles::write(blocker, {}));
        NoteStore store;
        store.setFolder(blocker + "/notes");
        QSignalSpy changed(&store, &JsonStore::fileMessageChanged);
        QVERIFY(!store.write({{"notes", QJsonArray()}}));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(store.fileMessage(), JsonFile::notSavedMessage(blocker + "/notes/notes.json"));

        // Once the folder can be made, the next save goes through and the message goes.
        QVERIFY(QFile::remove(blocker));
        QVERIFY(store.write({{"notes", QJsonArray{"kept"}}}));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(store.fileMessage(), QString());
        QVERIFY(TestFiles::read(blocker + "/notes/notes.json").contains("kept"));
    }
};

QTEST_GUILESS_MAIN(TestJsonStore)
#include "tst_jsonstore.moc"
