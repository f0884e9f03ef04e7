#include <QXmlStreamReader>
#include <QtTest>

// Every text the user can see has a real Simplified and Traditional Chinese translation.
class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void catalogueIsComplete_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("CN") << "Korvel_CN.ts";
        QTest::newRow("TW") << "Korvel_TW.ts";
    }

    void catalogueIsComplete()
    {
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
        QVERIFY(!xml.hasError());
        QVERIFY(messages > 20);
    }
};

QTEST_GUILESS_MAIN(TestTranslations)
#include "tst_translations.moc"
