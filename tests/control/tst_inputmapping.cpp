// Qt keys, buttons and modifiers as Android sees them.
#include "inputmapping.h"

#include <QtTest>

class TestInputMapping : public QObject
{
    Q_OBJECT

private slots:
    void keyCodes_data();
    void keyCodes();
    void metaState_data();
    void metaState();
    void buttons_data();
    void buttons();
    void eventTypes();
};

void TestInputMapping::keyCodes_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("code");

    const struct
    {
        const char *name;
        int key;
        int code;
    } special[] = {
        {"Escape", Qt::Key_Escape, 111},   {"Tab", Qt::Key_Tab, 61},          {"Backspace", Qt::Key_Backspace, 67},
        {"Return", Qt::Key_Return, 66},    {"Enter", Qt::Key_Enter, 160},     {"Delete", Qt::Key_Delete, 112},
        {"Home", Qt::Key_Home, 122},       {"End", Qt::Key_End, 123},         {"Left", Qt::Key_Left, 21},
        {"Up", Qt::Key_Up, 19},            {"Right", Qt::Key_Right, 22},      {"Down", Qt::Key_Down, 20},
        {"PageUp", Qt::Key_PageUp, 92},    {"PageDown", Qt::Key_PageDown, 93},
    };
    for (const auto &row : special) {
        QTest::addRow("%s", row.name) << row.key << 0 << row.code;
        // Special keys are translated whatever the modifiers.
        QTest::addRow("Alt+Meta+%s", row.name) << row.key << int(Qt::AltModifier | Qt::MetaModifier) << row.code;
    }
    for (const int key : {Qt::Key_Backtab, Qt::Key_Insert, Qt::Key_Pause, Qt::Key_Print, Qt::Key_F1, Qt::Key_F12,
                          Qt::Key_Shift, Qt::Key_Control, Qt::Key_CapsLock})
        QTest::addRow("special 0x%x sends nothing", key) << key << 0 << -1;

    const struct
    {
        char character;
        int code;
    } printable[] = {
        {' ', 62}, {'0', 7},  {'1', 8},  {'!', 8},  {'2', 9},  {'3', 10}, {'4', 11}, {'$', 11}, {'5', 12},
        {'%', 12}, {'6', 13}, {'^', 13}, {'7', 14}, {'&', 14}, {'8', 15}, {'9', 16}, {'*', 17}, {'#', 18},
        {'A', 29}, {'B', 30}, {'M', 41}, {'Z', 54}, {',', 55}, {'<', 55}, {'.', 56}, {'>', 56}, {'-', 69},
        {'_', 69}, {'=', 70}, {'[', 71}, {'{', 71}, {']', 72}, {'}', 72}, {'\\', 73}, {'|', 73}, {':', 74},
        {';', 74}, {'"', 75}, {'\'', 75}, {'/', 76}, {'?', 76}, {'@', 77}, {'+', 81}, {'(', 162}, {')', 163},
        {'`', 68}, {'~', 68},
    };
    for (const auto &row : printable) {
        QTest::addRow("'%c'", row.character) << int(row.character) << 0 << row.code;
        QTest::addRow("Shift+Ctrl+'%c'", row.character)
            << int(row.character) << int(Qt::ShiftModifier | Qt::ControlModifier) << row.code;
        QTest::addRow("Alt+'%c' sends nothing", row.character) << int(row.character) << int(Qt::AltModifier) << -1;
        QTest::addRow("Meta+'%c' sends nothing", row.character) << int(row.character) << int(Qt::MetaModifier) << -1;
    }
    for (char c = 'a'; c <= 'z'; ++c)
        QTest::addRow("lower-case '%c' sends nothing", c) << int(c) << 0 << -1;
    QTest::newRow("DEL character") << 127 << 0 << -1;
    QTest::newRow("control character") << 31 << 0 << -1;
    QTest::newRow("latin-1 letter") << int(Qt::Key_Eacute) << 0 << -1;
}

void TestInputMapping::keyCodes()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, code);
    QCOMPARE(InputMapping::androidKeyCode(key, modifiers), code);
}

void TestInputMapping::metaState_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<uint>("meta");
    QTest::newRow("none") << 0 << 0u;
    QTest::newRow("shift") << int(Qt::ShiftModifier) << 0x1u;
    QTest::newRow("control") << int(Qt::ControlModifier) << 0x1000u;
    QTest::newRow("alt") << int(Qt::AltModifier) << 0x2u;
    QTest::newRow("meta") << int(Qt::MetaModifier) << 0x10000u;
    QTest::newRow("all four") << int(Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)
                              << 0x11003u;
    QTest::newRow("keypad and group switch ignored") << int(Qt::KeypadModifier | Qt::GroupSwitchModifier) << 0u;
}

void TestInputMapping::metaState()
{
    QFETCH(int, modifiers);
    QFETCH(uint, meta);
    QCOMPARE(InputMapping::metaState(modifiers), meta);
}

void TestInputMapping::buttons_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<uint>("actionButton");
    QTest::newRow("none") << 0 << 0u;
    QTest::newRow("left") << 1 << 1u;
    QTest::newRow("right") << 2 << 2u;
    QTest::newRow("middle") << 4 << 4u;
    QTest::newRow("back") << 8 << 8u;
    QTest::newRow("forward") << 16 << 16u;
    QTest::newRow("two at once") << 3 << 0u;
    QTest::newRow("above forward") << 32 << 0u;
    QTest::newRow("negative") << -1 << 0u;
}

void TestInputMapping::buttons()
{
    QFETCH(int, button);
    QFETCH(uint, actionButton);
    QCOMPARE(InputMapping::actionButton(button), actionButton);
    // The held buttons pass through, limited to the five known ones.
    QCOMPARE(InputMapping::buttons(button), uint(button) & 0x1Fu);
}

void TestInputMapping::eventTypes()
{
    QCOMPARE(InputMapping::touchAction(2), 0);
    QCOMPARE(InputMapping::touchAction(3), 1);
    QCOMPARE(InputMapping::touchAction(5), 2);
    for (const int other : {0, 1, 4, 6, 7, 127, 129, -2})
        QCOMPARE(InputMapping::touchAction(other), -1);
    QCOMPARE(InputMapping::keyAction(6), 0);
    QCOMPARE(InputMapping::keyAction(7), 1);
    for (const int other : {0, 2, 3, 5, 51})
        QCOMPARE(InputMapping::keyAction(other), -1);
}

QTEST_GUILESS_MAIN(TestInputMapping)
#include "tst_inputmapping.moc"
