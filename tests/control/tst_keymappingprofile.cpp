// One profile of key mappings: a key and its modifiers map to one action.
#include "keymappingprofile.h"

#include <QtTest>

class TestKeyMappingProfile : public QObject
{
    Q_OBJECT

private slots:
    void profileKeepsKeysUnique()
    {
        KeyMappingProfile profile("P");
        QSignalSpy changed(&profile, &KeyMappingProfile::mappingsChanged);
        QVERIFY(profile.addMapping(65, 0, "A", 0.5, 0.5));
        QVERIFY(!profile.addMapping(65, 0, "A again", 0.1, 0.1));
        QVERIFY(!profile.addSwipeMapping(66, 0, "", 0, 0, 1, 1, 100));
        QVERIFY(profile.addMapping(65, int(Qt::ShiftModifier), "Shift+A", 0.1, 0.1));
        QVERIFY(!profile.updateMapping(1, 65, 0, "A", 0.2, 0.2, 1));
        QVERIFY(profile.updateMapping(1, 66, 0, "B", 0.2, 0.2, 2));
        QVERIFY(!profile.removeMapping(2));
        QCOMPARE(changed.count(), 3);
        QCOMPARE(profile.getMappingByKey(66, 0).value("data").toMap().value("count").toInt(), 2);
        QCOMPARE(profile.getMappingCount(), 2);
    }

    void editorRulesDecideWhatIsSaved_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("keyCode");
        QTest::addColumn<QString>("keyDisplay");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariantMap>("data");
        QTest::addColumn<QString>("problem");

        const QString range = "Values out of range.";
        const auto tap = [](double x, double y, int count) { return QVariantMap{{"x", x}, {"y", y}, {"count", count}}; };
        const auto swipe = [](double startX, double endY, int duration) {
            return QVariantMap{{"startX", startX}, {"startY", 0.5}, {"endX", 1.0}, {"endY", endY}, {"duration", duration}};
        };
        const int Tap = KeyMappingType::Tap;
        const int Swipe = KeyMappingType::Swipe;
        QTest::newRow("tap at the corners") << -1 << 66 << "B" << Tap << tap(0.0, 1.0, 1) << QString();
        QTest::newRow("ten taps") << -1 << 66 << "B" << Tap << tap(0.5, 0.5, 10) << QString();
        QTest::newRow("no key pressed") << -1 << 0 << "" << Tap << tap(0.5, 0.5, 1) << "Press a key...";
        QTest::newRow("tap left of the picture") << -1 << 66 << "B" << Tap << tap(-0.01, 0.5, 1) << range;
        QTest::newRow("tap below the picture") << -1 << 66 << "B" << Tap << tap(0.5, 1.01, 1) << range;
        QTest::newRow("tap at no number") << -1 << 66 << "B" << Tap << tap(qQNaN(), 0.5, 1) << range;
        QTest::newRow("no tap") << -1 << 66 << "B" << Tap << tap(0.5, 0.5, 0) << range;
        QTest::newRow("eleven taps") << -1 << 66 << "B" << Tap << tap(0.5, 0.5, 11) << range;
        QTest::newRow("shortest swipe") << -1 << 66 << "B" << Swipe << swipe(0.0, 0.5, 50) << QString();
        QTest::newRow("longest swipe") << -1 << 66 << "B" << Swipe << swipe(0.0, 0.5, 2000) << QString();
        QTest::newRow("swipe too short") << -1 << 66 << "B" << Swipe << swipe(0.0, 0.5, 49) << range;
        QTest::newRow("swipe too long") << -1 << 66 << "B" << Swipe << swipe(0.0, 0.5, 2001) << range;
        QTest::newRow("swipe from outside") << -1 << 66 << "B" << Swipe << swipe(-0.5, 0.5, 200) << range;
        QTest::newRow("swipe to outside") << -1 << 66 << "B" << Swipe << swipe(0.0, 2.0, 200) << range;
        QTest::newRow("unknown type") << -1 << 66 << "B" << 2 << tap(0.5, 0.5, 1) << range;
        QTest::newRow("key mapped already") << -1 << 65 << "A" << Tap << tap(0.5, 0.5, 1)
                                            << "This key is already mapped in this profile.";
        QTest::newRow("entry keeps its own key") << 0 << 65 << "A" << Swipe << swipe(0.0, 0.5, 200) << QString();
        QTest::newRow("entry takes another's key") << 1 << 65 << "A" << Tap << tap(0.5, 0.5, 1)
                                                   << "This key is already mapped in this profile.";
    }

    void editorRulesDecideWhatIsSaved()
    {
        QFETCH(int, index);
        QFETCH(int, keyCode);
        QFETCH(QString, keyDisplay);
        QFETCH(int, type);
        QFETCH(QVariantMap, data);
        QFETCH(QString, problem);
        KeyMappingProfile profile("P");
        QVERIFY(profile.addMapping(65, 0, "A", 0.5, 0.5));
        QVERIFY(profile.addMapping(67, 0, "C", 0.5, 0.5));
        const auto mappingType = KeyMappingType::Type(type);

        QCOMPARE(profile.mappingProblem(index, keyCode, 0, keyDisplay, mappingType, data), problem);
        const bool saved = index < 0 ? profile.addMappingWithType(keyCode, 0, keyDisplay, mappingType, data)
                                     : profile.updateMappingWithType(index, keyCode, 0, keyDisplay, mappingType, data);
        QCOMPARE(saved, problem.isEmpty());
        QCOMPARE(profile.getMappingCount(), 2 + (saved && index < 0 ? 1 : 0));
    }
};

QTEST_GUILESS_MAIN(TestKeyMappingProfile)
#include "tst_keymappingprofile.moc"
