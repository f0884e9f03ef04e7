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
};

QTEST_GUILESS_MAIN(TestKeyMappingProfile)
#include "tst_keymappingprofile.moc"
