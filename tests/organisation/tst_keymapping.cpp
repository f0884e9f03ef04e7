// keymappings.json: what is read from it, what is written back, and that a damaged file is kept.
#include "jsonfile.h"
#include "keymapping.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtTest>

namespace {

// One line per profile: "name[*]: key keyCode/modifiers tap x,y xN | ..." with * on the current one.
QString describe(const KeyMapping *mapping)
{
    QStringList lines;
    for (const QString &name : mapping->profileNames()) {
        const KeyMappingProfile *profile = mapping->getProfile(name);
        QStringList entries;
        for (const KeyMappingEntry &e : profile->entries()) {
            const QString head = QString("%1 %2/%3 ").arg(e.keyDisplay).arg(e.keyCode).arg(e.modifiers);
            entries << head + (e.type == KeyMappingType::Tap
                                   ? QString("tap %1,%2 x%3").arg(e.x).arg(e.y).arg(e.count)
                                   : QString("swipe %1,%2>%3,%4 %5ms")
                                         .arg(e.startX).arg(e.startY).arg(e.endX).arg(e.endY).arg(e.duration));
        }
        lines << name + (profile == mapping->currentProfile() ? "*" : "") + ": " + entries.join(" | ");
    }
    return lines.join("\n");
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestKeyMapping : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

private slots:
    void initTestCase() { KeyMapping::instance()->setFolder(m_folder.path()); }

    void fileContents_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("loaded");
        // How the file as it was is kept: "" not at all, "moved" when unusable, "copied" when read in part.
        QTest::addColumn<QString>("aside");

        QTest::newRow("taps and swipes") << QByteArray(R"({"version":"1.0","currentProfile":"Game","profiles":{
            "Game":[{"keyCode":65,"modifiers":0,"keyDisplay":"A","type":0,"data":{"x":0.5,"y":0.25,"count":3}},
                    {"keyCode":87,"modifiers":33554432,"keyDisplay":"Shift+W","type":1,
                     "data":{"startX":0.2,"startY":0.5,"endX":0.8,"endY":0.4,"duration":200}}],
            "Empty":[]}})")
                                         << "Empty: \nGame*: A 65/0 tap 0.5,0.25 x3 | Shift+W 87/33554432 swipe 0.2,0.5>0.8,0.4 200ms"
                                         << "";
        QTest::newRow("entry without data") << QByteArray(R"({"profiles":{"Old":[
            {"keyCode":66,"modifiers":0,"keyDisplay":"B","type":0,"x":0.3,"y":0.7}]}})")
                                            << "Old: B 66/0 tap 0.3,0.7 x1" << "";
        QTest::newRow("wrong types are left out") << QByteArray(R"({"currentProfile":7,"profiles":{"P":[
            {"keyCode":"65","modifiers":0,"keyDisplay":"A","type":0,"data":{"x":0.1,"y":0.1}},
            {"keyCode":66,"modifiers":0,"keyDisplay":"","type":0,"data":{"x":0.1,"y":0.1}},
            {"keyCode":67,"modifiers":0,"keyDisplay":"C","type":0,"data":[0.1,0.1]},
            {"keyCode":68,"modifiers":0,"keyDisplay":"D","type":5,"data":{"x":0.1,"y":0.1}},
            {"keyCode":69,"modifiers":0,"keyDisplay":"E","type":0,"data":{"x":"0.1","y":0.1}},
            "F",
            {"keyCode":71,"modifiers":0,"keyDisplay":"G","type":0,"data":{"x":0.6,"y":0.4}}],
            "Q":{"keyCode":72}}})")
                                                  << "P: G 71/0 tap 0.6,0.4 x1\nQ: " << "copied";
        QTest::newRow("a duplicate key is left out") << QByteArray(R"({"profiles":{"P":[
            {"keyCode":71,"modifiers":0,"keyDisplay":"G","type":0,"data":{"x":0.6,"y":0.4}},
            {"keyCode":71,"modifiers":0,"keyDisplay":"G again","type":0,"data":{"x":0.9,"y":0.9}}]}})")
                                                     << "P: G 71/0 tap 0.6,0.4 x1" << "copied";
        QTest::newRow("not JSON") << QByteArray("{\"profiles\": {\"Game\": [") << QString() << "moved";
        QTest::newRow("profiles not an object") << QByteArray(R"({"profiles":[{"keyCode":65}]})") << QString() << "moved";
        QTest::newRow("an array") << QByteArray("[1, 2]") << QString() << "moved";
    }

    void fileContents()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, loaded);
        QFETCH(QString, aside);

        KeyMapping *mapping = KeyMapping::instance();
        const QString path = mapping->getConfigFilePath();
        const QDir folder = QFileInfo(path).dir();
        for (const QString &name : folder.entryList(QDir::Files))
            QVERIFY(QFile::remove(folder.filePath(name)));
        {
            QFile out(path);
            QVERIFY(out.open(QIODevice::WriteOnly));
            out.write(file);
        }

        QCOMPARE(mapping->loadFromFile(), aside != "moved");
        QCOMPARE(describe(mapping), loaded);
        const QStringList kept = folder.entryList({"keymappings.json.corrupt-*"}, QDir::Files);
        QCOMPARE(kept.size(), aside.isEmpty() ? 0 : 1);
        if (!aside.isEmpty()) {
            // Kept byte for byte under a name the user is told, before anything is saved.
            QCOMPARE(readAll(folder.filePath(kept.first())), file);
            QVERIFY2(mapping->fileMessage().contains(kept.first()), qPrintable(mapping->fileMessage()));
            QCOMPARE(QFile::exists(path), aside == "copied");
            // Work goes on, and a new file does not touch the kept one.
            QVERIFY(aside == "copied" || mapping->addProfile("Fresh"));
        } else {
            QVERIFY(mapping->fileMessage().isEmpty());
        }

        // What is saved reads back the same, in the current form.
        const QString before = describe(mapping);
        QVERIFY(mapping->saveToFile());
        for (const QString &name : kept)
            QCOMPARE(readAll(folder.filePath(name)), file);
        const QJsonObject written = QJsonDocument::fromJson(readAll(path)).object();
        QCOMPARE(written.value("version").toString(), QString("1.0"));
        for (const QJsonValue &profile : written.value("profiles").toObject()) {
            for (const QJsonValue &entry : profile.toArray())
                QVERIFY(entry.toObject().value("data").isObject());
        }
        QVERIFY(mapping->loadFromFile());
        QCOMPARE(describe(mapping), before);
        QVERIFY(mapping->fileMessage().isEmpty());
    }

    void failedSaveIsReported()
    {
        KeyMapping *mapping = KeyMapping::instance();
        const QString path = mapping->getConfigFilePath();
        QFile::remove(path);
        // A folder in the file's place cannot be replaced by a file.
        QVERIFY(QDir().mkpath(path + "/inside"));
        QVERIFY(mapping->addProfile("Unsaved"));
        QCOMPARE(mapping->fileMessage(), JsonFile::notSavedMessage(path));
        QVERIFY(QDir(path).removeRecursively());
        QVERIFY(mapping->saveToFile());
        QVERIFY(mapping->fileMessage().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestKeyMapping)
#include "tst_keymapping.moc"
