#include "safefilename.h"

#include <QtTest>

class TestSafeFileName : public QObject
{
    Q_OBJECT

private slots:
    void make_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("tail");
        QTest::addColumn<QString>("name");
        const QString cjk(200, QChar(0x4E2D));
        const QString emoji = QString::fromUtf8("\xF0\x9F\x93\xB1"); // two UTF-16 units, four bytes
        QTest::newRow("kept") << "R58M12ABCDE" << "_1.jpg" << "R58M12ABCDE_1.jpg";
        QTest::newRow("network serial") << "192.168.1.5:5555" << ".jpg" << "192.168.1.5_5555.jpg";
        QTest::newRow("every unsafe character") << "a\\b/c:d*e?f\"g<h>i|j" << ".mkv" << "a_b_c_d_e_f_g_h_i_j.mkv";
        QTest::newRow("control characters") << QString("tab\there\nnul") + QChar(0) + QChar(0x7F) << ""
                                            << "tab_here_nul__";
        QTest::newRow("unsafe tail") << "x" << "_a/b.png" << "x_a_b.png";
        QTest::newRow("dots, spaces and letters stay") << QString::fromUtf8("Rack A.1 Ümit 中") << ".png"
                                                       << QString::fromUtf8("Rack A.1 Ümit 中.png");
        QTest::newRow("long label shortened, tail kept") << QString(300, 'n') << "_20240305_140709_042.mkv"
                                                         << QString(95, 'n') + "_20240305_140709_042.mkv";
        QTest::newRow("Chinese kept within 255 bytes") << cjk << ".mkv" << QString(83, QChar(0x4E2D)) + ".mkv";
        QTest::newRow("no half character") << emoji.repeated(60) << ".png" << emoji.repeated(57) + ".png";
    }

    void make()
    {
        QFETCH(QString, label);
        QFETCH(QString, tail);
        QFETCH(QString, name);
        const QString made = SafeFileName::make(label, tail);
        QCOMPARE(made, name);
        QVERIFY(made.size() < SafeFileName::Limit);
        QVERIFY(made.toUtf8().size() <= SafeFileName::MaxBytes);
    }
};

QTEST_GUILESS_MAIN(TestSafeFileName)
#include "tst_safefilename.moc"
