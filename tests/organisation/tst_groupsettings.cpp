// The settings record of a group in device_groups.json, setting by setting.
#include "groupsettings.h"

#include <QJsonArray>
#include <QtTest>

class TestGroupSettings : public QObject
{
    Q_OBJECT

private slots:
    void eachSetting_data()
    {
        QTest::addColumn<QString>("key");
        // What a record without the key, or with the key of a wrong type, reads as.
        QTest::addColumn<QJsonValue>("fallback");
        QTest::addColumn<QJsonValue>("wrongType");
        QTest::addColumn<QJsonValue>("stored");
        QTest::newRow("showControlButtons") << "showControlButtons" << QJsonValue(true) << QJsonValue(0) << QJsonValue(false);
        QTest::newRow("maxSize") << "maxSize" << QJsonValue(720) << QJsonValue("big") << QJsonValue(1080);
        QTest::newRow("maxFPS") << "maxFPS" << QJsonValue(30) << QJsonValue(true) << QJsonValue(60);
        QTest::newRow("bitRate") << "bitRate" << QJsonValue(4000000) << QJsonValue("8M") << QJsonValue(8000000);
        QTest::newRow("maxSizeBigView") << "maxSizeBigView" << QJsonValue(720) << QJsonValue(QJsonArray{1600})
                                        << QJsonValue(1600);
        QTest::newRow("maxFPSBigView") << "maxFPSBigView" << QJsonValue(30) << QJsonValue(QJsonValue::Null) << QJsonValue(50);
        QTest::newRow("bitRateBigView") << "bitRateBigView" << QJsonValue(4000000) << QJsonValue(false)
                                        << QJsonValue(6000000);
        QTest::newRow("clickDelaySeconds") << "clickDelaySeconds" << QJsonValue(0) << QJsonValue("3") << QJsonValue(7);
        QTest::newRow("cellWidth") << "cellWidth" << QJsonValue(220) << QJsonValue(QJsonObject{}) << QJsonValue(300);
        QTest::newRow("enableAudio") << "enableAudio" << QJsonValue(false) << QJsonValue(1) << QJsonValue(true);
        QTest::newRow("orientation") << "orientation" << QJsonValue(0) << QJsonValue("1") << QJsonValue(1);
        // A record from before the big view had its own width gets the wide panel.
        QTest::newRow("bigViewWidth") << "bigViewWidth" << QJsonValue(960) << QJsonValue("800") << QJsonValue(1280);
    }

    void eachSetting()
    {
        QFETCH(QString, key);
        QFETCH(QJsonValue, fallback);
        QFETCH(QJsonValue, wrongType);
        QFETCH(QJsonValue, stored);
        QVERIFY(GroupSettings::indexOf(key) >= 0);

        GroupSettings settings;
        settings.load({{key, wrongType}});
        QCOMPARE(settings.toJson().value(key), fallback);
        settings.load({});
        QCOMPARE(settings.toJson().value(key), fallback);

        // A value written is read back the same.
        settings.load({{key, stored}});
        const QJsonObject written = settings.toJson();
        QCOMPARE(written.value(key), stored);
        GroupSettings again;
        again.load(written);
        QCOMPARE(again.toJson(), written);
    }
};

QTEST_GUILESS_MAIN(TestGroupSettings)
#include "tst_groupsettings.moc"
