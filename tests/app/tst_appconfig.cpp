#include "appconfig.h"
#include "appstartup.h"
#include "testfiles.h"

#include <QNetworkAccessManager>
#include <QtTest>

class TestAppConfig : public QObject
{
    Q_OBJECT

private:
    QStringList storedKeys() const
    {
        QSettings store(QSettings::NativeFormat, QSettings::UserScope, "Application", "Korvel");
        store.beginGroup("app_settings");
        return store.childKeys();
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(false);
        AppConfig::instance()->reset();
    }

    void settersReachDiskAtOnceAndDefaultsAreNeverStored()
    {
        AppConfig *config = AppConfig::instance();
        QCOMPARE(config->getLocale(), QLocale::system().name());
        QVERIFY(storedKeys().isEmpty());

        QSignalSpy spy(config, &AppConfig::appSettingChanged);
        config->setScreenshotSavePath("/tmp/shots");
        config->setLocale("zh_TW");
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0), (QVariantList{"screenshot_save_path", "/tmp/shots"}));
        QCOMPARE(spy.at(1), (QVariantList{"locale", "zh_TW"}));
        // Another reader of the store sees the values without any explicit sync.
        QSettings store(QSettings::NativeFormat, QSettings::UserScope, "Application", "Korvel");
        QCOMPARE(store.value("app_settings/screenshot_save_path").toString(), QString("/tmp/shots"));
        QCOMPARE(store.value("app_settings/locale").toString(), QString("zh_TW"));

        config->reset();
        QVERIFY(storedKeys().isEmpty());
        QCOMPARE(config->getLocale(), QLocale::system().name());
    }

    void updateCheckWithoutServiceDoesNothing()
    {
        AppConfig *config = AppConfig::instance();
        QSignalSpy spy(config, &AppConfig::appInfoChanged);
        qunsetenv("KORVEL_UPDATE_URL");
        config->getAppInfoFromServer();
        QVERIFY(!config->findChild<QNetworkAccessManager *>());
        // A service that cannot be reached is quiet as well, once the request has ended.
        qputenv("KORVEL_UPDATE_URL", "http://127.0.0.1:9/korvel/latest");
        config->getAppInfoFromServer();
        QSignalSpy ended(config->findChild<QNetworkAccessManager *>(), &QNetworkAccessManager::finished);
        QVERIFY(ended.wait());
        QCOMPARE(spy.count(), 0);
        QCOMPARE(config->appInfo().latestVersion, QString());
    }

    void localeChoosesTranslation_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("title");
        QTest::newRow("zh_CN") << "zh_CN" << "手机农场";
        QTest::newRow("zh_TW") << "zh_TW" << "手機農場";
        QTest::newRow("en_US") << "en_US" << "";
        QTest::newRow("case sensitive") << "zh_cn" << "";
        QTest::newRow("both: TW wins") << "CN_TW" << "手機農場";
    }

    void localeChoosesTranslation()
    {
        // The catalogues are compiled into the resources; a locale without one installs nothing.
        QFETCH(QString, locale);
        QFETCH(QString, title);
        QCOMPARE(AppStartup::installTranslation(locale), !title.isEmpty());
        if (!title.isEmpty())
            QCOMPARE(QCoreApplication::translate("Main", "Phone Farms"), title);
    }

    void everyTextIsTranslated_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("CN") << "Korvel_CN.ts";
        QTest::newRow("TW") << "Korvel_TW.ts";
    }

    void everyTextIsTranslated()
    {
        // Every text the user can see has a real Simplified and Traditional Chinese translation.
        QFETCH(QString, file);
        QFile ts(qEnvironmentVariable("KORVEL_SOURCE_DIR") + "/translations/" + file);
        QVERIFY(ts.open(QIODevice::ReadOnly));
        QXmlStreamReader xml(&ts);
        int messages = 0;
        QString source;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == u"source") {
                source = xml.readElementText(QXmlStreamReader::IncludeChildElements);
            } else if (xml.name() == u"translation") {
                const QString type = xml.attributes().value("type").toString();
                const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
                QVERIFY2(type.isEmpty(), qPrintable(source + ": " + type));
                QVERIFY2(!text.trimmed().isEmpty(), qPrintable(source));
                ++messages;
            }
        }
        QVERIFY(!xml.hasError() && messages > 20);
    }
};

QTEST_GUILESS_MAIN(TestAppConfig)
#include "tst_appconfig.moc"
