#include "appconfig.h"
#include "appstartup.h"
#include "groupactions.h"
#include "commonphrasemanager.h"
#include "controldescription.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "groupoperation.h"
#include "keymappingprofile.h"
#include "phonefixture.h"
#include "qmlwarnings.h"
#include "quickitems.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QtQml/qqmlextensionplugin.h>
#include <QtTest>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

namespace {
// A visible, opaque pixel of the phone's picture: anything clearly brighter than black.
bool isLit(const QColor &color)
{
    return color.red() + color.green() + color.blue() > 90;
}
} // namespace

// The main window with simulated phones on a private adb server: scan, add, start, watch, touch.
// Each test brings the window to the state it needs, so each also runs alone.
class TestPhoneGrid : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    std::unique_ptr<QmlWarnings> m_warnings;
    QQmlApplicationEngine *m_engine = nullptr;
    QStringList m_serials;

    QQuickWindow *window() const { return qobject_cast<QQuickWindow *>(m_engine->rootObjects().value(0)); }

    QQuickItem *item(const QString &name, QQuickItem *under = nullptr) const
    {
        return QuickItems::named(under ? under : window()->contentItem(), name);
    }
    // A cell's own child, found from the cell of the given phone.
    QQuickItem *cellItem(const QString &serial, const QString &name) const
    {
        QQuickItem *cell = item("deviceView_" + serial);
        return cell ? item(name, cell) : nullptr;
    }
    QQuickWindow *bigWindow(const QString &serial) const
    {
        for (QWindow *w : QGuiApplication::topLevelWindows()) {
            if (w->objectName() == "bigDeviceView_" + serial && w->isVisible())
                return qobject_cast<QQuickWindow *>(w);
        }
        return nullptr;
    }
    DeviceGroupManager *manager() const { return window()->findChild<DeviceGroupManager *>("deviceGroupManager"); }
    DeviceGroup *group() const { return manager()->currentSelectedGroup(); }
    QObject *scanDialog() const { return window()->findChild<QObject *>("scanDialog"); }
    QString text(QQuickItem *item) const { return item->property("text").toString(); }

    QList<QJsonObject> controls(const QString &serial, const QString &type) const
    {
        return m_fixture->phone(serial)->controlMessages(type);
    }

    void ensurePhonesInGroup()
    {
        if (group()->deviceCount() == 0)
            scanAddsTheCheckedPhones();
    }
    void ensureRunning()
    {
        ensurePhonesInGroup();
        group()->startAllDevices();
        for (Device *device : group()->devices())
            QTRY_VERIFY_WITH_TIMEOUT(device->controller() && device->frameSize().isValid(), 20000);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(AdbRunner::available());
        m_fixture = std::make_unique<PhoneFixture>();
        for (const QSize &size : {QSize(1080, 2400), QSize(720, 1600), QSize(1080, 1920)}) {
            PhoneSimProcess *p = m_fixture->addPhone(size, {"--animate"});
            QVERIFY2(p, qPrintable(m_fixture->error()));
            m_serials << p->serial();
        }
        // Start from the one default group, as on a first run.
        QFile::remove(AppConfig::instance()->getDeviceGroupSavePath() + "/device_groups.json");
        DeviceGroup::setStaggerIntervals({20, 30, 50});
        Device::setStepDelay(100);

        m_warnings = std::make_unique<QmlWarnings>();
        // As with a screen reader running: controls name themselves from the start.
        QAccessible::setActive(true);
        AppStartup::configureApplication();
        m_engine = new QQmlApplicationEngine;
        AppStartup::loadUserInterface(*m_engine);
        QVERIFY(window());
        QVERIFY(QTest::qWaitForWindowExposed(window()));
        QVERIFY(group());
        QCOMPARE(group()->deviceCount(), 0);
    }

    void scanAddsTheCheckedPhones()
    {
        QCOMPARE(text(item("deviceCountText")), QString("Devices: 0"));
        QCOMPARE(text(item("scanButton")), QString("No Devices In This Group, Click To Scan"));
        QVERIFY(QuickItems::click(item("scanButton")));
        QTRY_VERIFY(scanDialog()->property("opened").toBool());
        QTRY_COMPARE_WITH_TIMEOUT(item("scanDeviceList")->property("count").toInt(), 3, 15000);
        QTRY_VERIFY(!manager()->isScanning());
        for (const QString &serial : m_serials)
            QVERIFY2(item("scanRow_" + serial), qPrintable(serial));
        QCOMPARE(text(item("scanSelectAll")), QString("Select All (3)"));

        // Nothing is checked: nothing to add. One row by clicking it, then all of them.
        QVERIFY(!item("scanAddButton")->isEnabled());
        QVERIFY(QuickItems::click(item("scanRow_" + m_serials.at(1))));
        QCOMPARE(scanDialog()->property("checkedSerials").toStringList(), QStringList{m_serials.at(1)});
        QVERIFY(QuickItems::click(item("scanSelectAll")));
        QCOMPARE(scanDialog()->property("checkedSerials").toStringList().size(), 3);
        QVERIFY(QuickItems::click(item("scanAddButton")));
        QTRY_VERIFY(!scanDialog()->property("visible").toBool());
        QTRY_COMPARE(group()->deviceCount(), 3);
        QTRY_COMPARE(text(item("deviceCountText")), QString("Devices: 3"));
        QVERIFY(!item("scanButton")->isVisible());
        // Closing the dialog dropped the offered list.
        QVERIFY(manager()->availableDeviceInfos().isEmpty());
        for (int row = 0; row < 3; ++row) {
            const QString serial = group()->devices().at(row)->adbConnectionSerial();
            QTRY_VERIFY2(item("deviceView_" + serial), qPrintable(serial));
            QCOMPARE(text(cellItem(serial, "deviceTitle")), QString::number(row + 1));
            QVERIFY(cellItem(serial, "clickToStart")->isVisible());
        }
    }

    void startAllShowsEveryPhoneLive()
    {
        ensurePhonesInGroup();
        QVERIFY(QuickItems::click(item("startAllButton")));
        // Every cell shows its own phone: lit, and each in another colour (phonesim colours them by index).
        QSet<QRgb> colours;
        const QRegularExpression fps("^\\d+\\.\\d FPS$");
        for (Device *device : group()->devices()) {
            QTRY_VERIFY_WITH_TIMEOUT(device->controller() != nullptr, 20000);
            const QString serial = device->adbConnectionSerial();
            QQuickItem *video = cellItem(serial, "videoItem");
            // Just inside the picture's corner lies the pattern's plain background.
            const QPoint corner = video->mapToScene(QPointF(6, video->height() / 4)).toPoint();
            QTRY_VERIFY_WITH_TIMEOUT(isLit(window()->grabWindow().pixelColor(corner)), 15000);
            colours.insert(window()->grabWindow().pixel(corner));
            QVERIFY(!cellItem(serial, "clickToStart")->isVisible());
            QCOMPARE(text(cellItem(serial, "startStopButton")), QString("■"));
            // Show size follows the item the picture is drawn in.
            QCOMPARE(device->showSize(), video->size().toSize());
            // The frame rate reads "N.N FPS" and, for moving pictures, rises above zero.
            QQuickItem *rate = cellItem(serial, "fpsText");
            QVERIFY(rate->isVisible());
            QVERIFY2(fps.match(text(rate)).hasMatch(), qPrintable(text(rate)));
            QTRY_VERIFY_WITH_TIMEOUT(text(rate) != "0.0 FPS", 5000);
        }
        QCOMPARE(colours.size(), 3);
    }

    // What the messages carry is the controller's business (tst_devicecontrol); here: the view's
    // points, the focus and the choice of phone.
    void pressAndKeysReachOnlyThatPhone()
    {
        ensureRunning();
        const QString serial = group()->devices().at(0)->adbConnectionSerial();
        const QSize frame = group()->devices().at(0)->frameSize();
        const QString other = group()->devices().at(1)->adbConnectionSerial();
        const qsizetype otherTouches = controls(other, "InjectTouchEvent").size();
        QHash<QString, qsizetype> before;
        for (const char *type : {"InjectTouchEvent", "InjectKeycode", "InjectScrollEvent", "SetClipboard"})
            before[type] = controls(serial, type).size();
        const auto sent = [&](const QString &type) { return controls(serial, type).mid(before.value(type)); };
        const auto nearQuarter = [&](const QJsonObject &m) {
            return qAbs(m.value("x").toInt() - frame.width() / 2) <= 2 && qAbs(m.value("y").toInt() - frame.height() / 4) <= 2;
        };

        // A press in the cell lands at the same place on the phone's picture.
        QQuickItem *video = cellItem(serial, "videoItem");
        QVERIFY(QuickItems::click(video, 0.5, 0.25));
        QTRY_COMPARE_WITH_TIMEOUT(sent("InjectTouchEvent").size(), 2, 5000);
        QVERIFY(nearQuarter(sent("InjectTouchEvent").first()));
        // Keys go to the phone under focus: the one just touched.
        QTest::keyClick(window(), Qt::Key_A);
        QTRY_COMPARE_WITH_TIMEOUT(sent("InjectKeycode").size(), 2, 5000);
        QCOMPARE(sent("InjectKeycode").first().value("keycode").toInt(), 29);
        // A wheel turn scrolls at the pointer's place.
        const QPointF scene = video->mapToScene(QPointF(video->width() / 2, video->height() / 4));
        QWheelEvent wheel(scene, window()->mapToGlobal(scene.toPoint()), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QGuiApplication::sendEvent(window(), &wheel);
        QTRY_COMPARE_WITH_TIMEOUT(sent("InjectScrollEvent").size(), 1, 5000);
        QVERIFY(nearQuarter(sent("InjectScrollEvent").first()));
        // What an input method commits reaches the phone as text.
        QInputMethodEvent commit;
        commit.setCommitString("你好");
        QVERIFY(window()->focusObject());
        QGuiApplication::sendEvent(window()->focusObject(), &commit);
        QTRY_COMPARE_WITH_TIMEOUT(sent("SetClipboard").size(), 1, 5000);
        QCOMPARE(sent("SetClipboard").first().value("text").toString(), QString("你好"));
        QCOMPARE(controls(other, "InjectTouchEvent").size(), otherTouches);
    }

    // A profile's keys pressed on the view play their touches on the phone, in phone pixels;
    // other keys stay key codes. A finger held or tapping never shares its pointer with another.
    void mappedKeysPlayTheirTouchesOnThePhone()
    {
        ensureRunning();
        Device *device = group()->devices().at(0);
        const QString serial = device->adbConnectionSerial();
        PhoneSimProcess *phone = m_fixture->phone(serial);
        // The view takes the keyboard when it is touched.
        const qsizetype touched = controls(serial, "InjectTouchEvent").size();
        QVERIFY(QuickItems::click(cellItem(serial, "videoItem")));
        QTRY_COMPARE_WITH_TIMEOUT(controls(serial, "InjectTouchEvent").size(), touched + 2, 5000);
        const qsizetype from = phone->journal("control").size();
        KeyMappingProfile profile("Rack");
        QVERIFY(profile.addMapping(Qt::Key_T, 0, "T", 0.25, 0.75, 3));
        QVERIFY(profile.addMapping(Qt::Key_H, 0, "H", 0.5, 0.5, 1));
        QVERIFY(profile.addSwipeMapping(Qt::Key_W, 0, "W", 0.2, 0.5, 0.8, 0.5, 200));
        device->setCurrentKeyMappingProfile(&profile);

        QTest::keyClick(window(), Qt::Key_T);
        // Pressed while the taps still play, and held.
        QTest::keyPress(window(), Qt::Key_H);
        const qint64 swipedAt = QDateTime::currentMSecsSinceEpoch();
        QTest::keyPress(window(), Qt::Key_W);
        const auto since = [&] { return phone->journal("control").mid(from); };
        // Three taps, a finger down and a swipe of 200 ms in 12 moves.
        QTRY_COMPARE_WITH_TIMEOUT(since().size(), 6 + 1 + 1 + 12, 5000);
        QTest::keyRelease(window(), Qt::Key_W);
        QTest::keyRelease(window(), Qt::Key_H);
        QTest::keyClick(window(), Qt::Key_B);
        QTRY_COMPARE_WITH_TIMEOUT(since().size(), 6 + 2 + 14 + 2, 5000);
        device->setCurrentKeyMappingProfile(nullptr);

        // Each finger's own touches, fingers in the order they came down.
        QList<qint64> fingers;
        QHash<qint64, QList<QJsonObject>> touches;
        for (const QJsonObject &m : since()) {
            const qint64 finger = m.value("pointerId").toInteger();
            if (m.value("type").toString() != "InjectTouchEvent")
                continue;
            if (!fingers.contains(finger))
                fingers << finger;
            touches[finger] << m;
        }
        QCOMPARE(fingers.size(), 3);
        const QSize show = device->showSize();
        const QSize frame = device->frameSize();
        const auto at = [&](double x, double y) {
            return QString("@%1,%2").arg(int(x * show.width() * frame.width() / show.width()))
                .arg(int(y * show.height() * frame.height() / show.height()));
        };
        const QString tap = at(0.25, 0.75);
        QStringList taps;
        for (int n = 0; n < 3; ++n)
            taps << "touch 0" + tap << "touch 1" + tap;
        QCOMPARE(describeControl(touches[fingers[0]]), taps);
        QCOMPARE(describeControl(touches[fingers[1]]), QStringList({"touch 0" + at(0.5, 0.5), "touch 1" + at(0.5, 0.5)}));
        QStringList swipe{"touch 0" + at(0.2, 0.5)};
        for (int step = 1; step <= 12; ++step)
            swipe << "touch 2" + at(0.2 + (0.8 - 0.2) * double(float(step) / 12.0f), 0.5);
        swipe << "touch 1" + at(0.8, 0.5);
        const QList<QJsonObject> swiped = touches[fingers[2]];
        QCOMPARE(describeControl(swiped), swipe);
        // The moves spread over the duration: the last one leaves 11 ticks of 200 / 12 ms after the press.
        QVERIFY(swiped[12].value("time").toInteger() >= swipedAt + 11 * (200 / 12));
        QCOMPARE(describeControl(since()).filter("key"), QStringList({"key 0 30", "key 1 30"}));
    }

    // The picker's choice of profile is tst_grid.qml's; the paste needs running phones.
    void phraseChosenOnTheCellIsPasted_data()
    {
        QTest::addColumn<bool>("groupControl");
        QTest::newRow("on that phone") << false;
        QTest::newRow("on every phone of the group") << true;
    }

    void phraseChosenOnTheCellIsPasted()
    {
        QFETCH(bool, groupControl);
        ensureRunning();
        if (groupControl)
            group()->startGroupControl();
        const QString serial = group()->devices().at(0)->adbConnectionSerial();
        CommonPhraseManager *phrases = CommonPhraseManager::instance();
        phrases->addCategory("Farm");
        const QString category = phrases->getCategoriesList().last()->id();
        phrases->addPhrase("收菜 ok", category);
        phrases->setCurrentCategoryId(category);
        QHash<QString, qsizetype> before;
        for (const QString &s : m_serials)
            before[s] = controls(s, "SetClipboard").size();
        QMetaObject::invokeMethod(QuickItems::shownWith(item("deviceView_" + serial), "tip", "Select Phrase"), "clicked");
        QQuickItem *phrase = nullptr;
        QTRY_VERIFY((phrase = QuickItems::shownWith(window()->contentItem(), "text", "收菜 ok")));
        QVERIFY(QuickItems::click(phrase));
        for (const QString &s : m_serials) {
            if (s != serial && !groupControl)
                continue;
            QTRY_COMPARE_WITH_TIMEOUT(controls(s, "SetClipboard").size(), before[s] + 1, 10000);
            QCOMPARE(controls(s, "SetClipboard").last().value("text").toString(), QString("收菜 ok"));
        }
        for (const QString &s : m_serials)
            QCOMPARE(controls(s, "SetClipboard").size(), before[s] + (s == serial || groupControl ? 1 : 0));
        group()->stopGroupControl();
        phrases->removeCategory(category);
    }

    void everyControlHasAnAccessibleName()
    {
        ensureRunning();
        // Screen readers and UI automation read what a control is for, never a bare glyph nor the
        // value it holds (a combo box is "Language", not "English"); what is hidden is not read out.
        const auto isControl = [](QQuickItem *i) {
            for (const char *type : {"QQuickAbstractButton", "QQuickComboBox", "QQuickSpinBox", "QQuickTextField",
                                     "QQuickTextArea", "QQuickSlider", "QQuickRangeSlider", "QQuickDial", "QQuickTumbler"}) {
                if (i && i->inherits(type))
                    return true;
            }
            return false;
        };
        // The field inside a combo box is read as part of the box.
        const auto controls = [&](QQuickItem *root) {
            return QuickItems::find(root, [&](QQuickItem *i) { return isControl(i) && !isControl(i->parentItem()); }, true);
        };
        const auto unnamed = [&](QQuickItem *root) {
            QStringList found;
            for (QQuickItem *control : controls(root)) {
                QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(control);
                const QString name = accessible ? accessible->text(QAccessible::Name) : QString();
                QStringList values;
                if (!control->inherits("QQuickAbstractButton")) {
                    for (const char *value : {"text", "displayText", "currentText", "value"})
                        values << control->property(value).toString();
                }
                if (std::none_of(name.cbegin(), name.cend(), [](QChar c) { return c.isLetter(); }) || values.contains(name))
                    found << QString("%1 %2 \"%3\"").arg(control->metaObject()->className(), control->objectName(), name);
            }
            return found;
        };
        const auto checkOpen = [&](QObject *dialog) {
            QTRY_VERIFY(dialog->property("opened").toBool());
            QQuickItem *popup = dialog->property("contentItem").value<QQuickItem *>()->parentItem();
            const qsizetype count = controls(popup).size();
            const QStringList found = unnamed(popup);
            QMetaObject::invokeMethod(dialog, "close");
            QTRY_VERIFY(!dialog->property("visible").toBool());
            QVERIFY2(count > 0 && found.isEmpty(), qPrintable(dialog->objectName() + ": " + found.join(", ")));
        };
        const auto dialog = [this](const char *name) { return window()->findChild<QObject *>(name); };

        // Three phones with their header and their 24 control buttons each, and the bars.
        QVERIFY(controls(window()->contentItem()).size() > 3 * 27);
        QVERIFY2(unnamed(window()->contentItem()).isEmpty(), qPrintable(unnamed(window()->contentItem()).join(", ")));
        // Every dialog, each while it is open: of the menus, of the group and of one phone.
        Device *device = group()->devices().at(0);
        dialog("renameDialog")->setProperty("device", QVariant::fromValue(device));
        dialog("deviceInfoDialog")->setProperty("device", QVariant::fromValue(device));
        // With live rows.
        GroupOperation *screenshots = group()->actions()->screenshotAllDevices();
        dialog("groupOperationDialog")->setProperty("operation", QVariant::fromValue(screenshots));
        for (const char *name : {"groupManagerDialog", "adbRestartDialog", "aboutDialog", "appSettingsDialog", "scanDialog",
                                 "commonPhrasesDialog", "keyMappingDialog", "groupOperationDialog", "groupAdbCommandDialog",
                                 "groupSettingsDialog", "renameDialog", "deviceInfoDialog"}) {
            QVERIFY2(dialog(name), name);
            QMetaObject::invokeMethod(dialog(name), "open");
            checkOpen(dialog(name));
        }
        // A cell is a view's delegate, outside the window's object tree.
        QQuickItem *cell = item("deviceView_" + device->adbConnectionSerial());
        const QList<std::pair<const char *, const char *>> opening{
            {"Select Phrase", "phraseSelectionDialog"}, {"Key Mapping", "keyMapProfilePicker"}, {"Run ADB Command", "adbCommandDialog"}};
        for (const auto &[tip, name] : opening) {
            QMetaObject::invokeMethod(QuickItems::shownWith(cell, "tip", tip), "clicked");
            QTRY_VERIFY2(cell->findChild<QObject *>(name), name);
            checkOpen(cell->findChild<QObject *>(name));
        }
        QTRY_VERIFY_WITH_TIMEOUT(!screenshots->running(), 20000);
    }

    void bigViewTakesThePhoneAndGivesItBack()
    {
        ensureRunning();
        // Big-view pictures are larger than the grid's, so the frame size tells which one runs.
        group()->setMaxSizeBigView(800);
        Device *device = group()->devices().at(1);
        const QString serial = device->adbConnectionSerial();
        QVERIFY(QuickItems::click(cellItem(serial, "bigViewButton")));
        QVERIFY(device->isBigView());
        QTRY_VERIFY(bigWindow(serial));
        QQuickWindow *big = bigWindow(serial);
        QVERIFY(QTest::qWaitForWindowExposed(big));
        QVERIFY(cellItem(serial, "onBigScreenText")->isVisible());
        QVERIFY(!cellItem(serial, "bigViewButton")->isVisible());
        QVERIFY(!cellItem(serial, "fpsText")->isVisible());
        QQuickItem *video = item("bigVideoItem", big->contentItem());
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize().height(), 800, 20000);
        const QPoint corner = video->mapToScene(QPointF(6, video->height() / 4)).toPoint();
        QTRY_VERIFY_WITH_TIMEOUT(isLit(big->grabWindow().pixelColor(corner)), 15000);
        QCOMPARE(device->showSize(), video->size().toSize());

        // Closing the window brings the phone back to its cell with the grid's parameters.
        big->close();
        QTRY_VERIFY(!device->isBigView());
        QTRY_VERIFY(!bigWindow(serial));
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize().height(), 720, 20000);
        QTRY_VERIFY(device->controller());
        QVERIFY(!cellItem(serial, "onBigScreenText")->isVisible());
        QVERIFY(cellItem(serial, "fpsText")->isVisible());
        QTRY_COMPARE(device->showSize(), cellItem(serial, "videoItem")->size().toSize());
    }

    void stopAllStopsEveryPhone()
    {
        ensureRunning();
        QVERIFY(QuickItems::click(item("stopAllButton")));
        for (Device *device : group()->devices()) {
            QTRY_VERIFY_WITH_TIMEOUT(!device->running(), 10000);
            QVERIFY(cellItem(device->adbConnectionSerial(), "clickToStart")->isVisible());
            QVERIFY(!cellItem(device->adbConnectionSerial(), "fpsText")->isVisible());
        }
    }

    void cleanupTestCase()
    {
        const QStringList warnings = m_warnings->all();
        delete m_engine;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_fixture.reset();
        m_warnings.reset();
        QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join("\n")));
    }
};

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    TestPhoneGrid test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_phonegrid.moc"
