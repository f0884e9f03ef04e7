// Qt keys, buttons and modifiers as Android sees them.
#include "inputmapping.h"

#include <QtTest>

class TestInputMapping : public QObject
{
    Q_OBJECT

private slots:
    void keyCodes_data()
    {
        // One key per branch and range bound; keys the controller's own tests send are left to them.
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("code");
        const int altMeta = Qt::AltModifier | Qt::MetaModifier;
        QTest::newRow("Escape") << int(Qt::Key_Escape) << 0 << 111;
        QTest::newRow("special keys ignore modifiers") << int(Qt::Key_Left) << altMeta << 21;
        QTest::newRow("space, first printable") << int(' ') << 0 << 62;
        QTest::newRow("'~', last printable") << int('~') << 0 << 68;
        QTest::newRow("control character") << 31 << 0 << -1;
        QTest::newRow("DEL character") << 127 << 0 << -1;
        QTest::newRow("'0'") << int('0') << 0 << 7;
        QTest::newRow("'9'") << int('9') << 0 << 16;
        QTest::newRow("'!' is the digit 1") << int('!') << 0 << 8;
        QTest::newRow("'@' is not the digit 2") << int('@') << 0 << 77;
        QTest::newRow("'<' is the comma") << int('<') << 0 << 55;
        QTest::newRow("Alt+'A' sends nothing") << int('A') << int(Qt::AltModifier) << -1;
        QTest::newRow("Meta+'A' sends nothing") << int('A') << int(Qt::MetaModifier) << -1;
        QTest::newRow("lower-case sends nothing") << int('a') << 0 << -1;
    }

    void keyCodes()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, code);
        QCOMPARE(InputMapping::androidKeyCode(key, modifiers), code);
    }

    void metaState_data()
    {
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<uint>("meta");
        QTest::newRow("all four") << int(Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)
                                  << 0x11003u;
        QTest::newRow("keypad and group switch ignored") << int(Qt::KeypadModifier | Qt::GroupSwitchModifier) << 0u;
    }

    void metaState()
    {
        QFETCH(int, modifiers);
        QFETCH(uint, meta);
        QCOMPARE(InputMapping::metaState(modifiers), meta);
    }

    void buttons_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<uint>("actionButton");
        QTest::addColumn<uint>("held");
        // Single buttons pass through as they are; the controller's vectors send several.
        QTest::newRow("two at once") << 3 << 0u << 3u;
        QTest::newRow("negative") << -1 << 0u << 0x1Fu;
    }

    void buttons()
    {
        QFETCH(int, button);
        QFETCH(uint, actionButton);
        QFETCH(uint, held);
        QCOMPARE(InputMapping::actionButton(button), actionButton);
        // The held buttons pass through, limited to the five known ones.
        QCOMPARE(InputMapping::buttons(button), held);
    }
};

QTEST_GUILESS_MAIN(TestInputMapping)
#include "tst_inputmapping.moc"
