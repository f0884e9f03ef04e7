#include "appstartup.h"
#include "commonphrasemanager.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
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
        QFile::remove(DeviceGroupManager::filePath());
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

    // The picker's choice of profile is tst_grid.qml's; the paste needs a running phone.
    void phraseChosenOnTheCellIsPastedThere()
    {
        ensureRunning();
        const QString serial = group()->devices().at(0)->adbConnectionSerial();
        const QString other = group()->devices().at(1)->adbConnectionSerial();
        CommonPhraseManager *phrases = CommonPhraseManager::instance();
        phrases->addCategory("Farm");
        const QString category = phrases->getCategoriesList().last()->id();
        phrases->addPhrase("收菜 ok", category);
        phrases->setCurrentCategoryId(category);
        const qsizetype before = controls(serial, "SetClipboard").size();
        const qsizetype otherBefore = controls(other, "SetClipboard").size();
        QMetaObject::invokeMethod(QuickItems::shownWith(item("deviceView_" + serial), "tip", "Select Phrase"), "clicked");
        QQuickItem *phrase = nullptr;
        QTRY_VERIFY((phrase = QuickItems::shownWith(window()->contentItem(), "text", "收菜 ok")));
        QVERIFY(QuickItems::click(phrase));
        QTRY_COMPARE_WITH_TIMEOUT(controls(serial, "SetClipboard").size(), before + 1, 5000);
        QCOMPARE(controls(serial, "SetClipboard").last().value("text").toString(), QString("收菜 ok"));
        QCOMPARE(controls(other, "SetClipboard").size(), otherBefore);
        phrases->removeCategory(category);
    }

    void everyButtonHasAnAccessibleName()
    {
        ensurePhonesInGroup();
        // Screen readers and UI automation read what a button does, never a bare glyph; what is
        // hidden is not read out.
        const auto shownButtons = [this] {
            return QuickItems::find(window()->contentItem(), [](QQuickItem *i) { return i->inherits("QQuickAbstractButton"); }, true);
        };
        const auto unnamed = [this](const QList<QQuickItem *> &buttons) {
            QStringList found;
            for (QQuickItem *button : buttons) {
                QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button);
                const QString name = accessible ? accessible->text(QAccessible::Name) : QString();
                if (std::none_of(name.cbegin(), name.cend(), [](QChar c) { return c.isLetter(); }))
                    found << QString("%1 \"%2\" (%3)").arg(button->objectName(), name, text(button));
            }
            return found;
        };
        // Three phones with their header and their 24 control buttons each, and the bars.
        const qsizetype inWindow = shownButtons().size();
        QVERIFY2(inWindow > 3 * 27, qPrintable(QString::number(inWindow)));
        QCOMPARE(unnamed(shownButtons()), QStringList());
        // And in every dialog of the menus, each while it is open.
        for (const char *name : {"groupManagerDialog", "adbRestartDialog", "aboutDialog", "appSettingsDialog",
                                 "commonPhrasesDialog", "keyMappingDialog"}) {
            QObject *dialog = window()->findChild<QObject *>(name);
            QVERIFY2(dialog, name);
            QMetaObject::invokeMethod(dialog, "open");
            QTRY_VERIFY(dialog->property("opened").toBool());
            QVERIFY2(shownButtons().size() > inWindow, name);
            QCOMPARE(unnamed(shownButtons()), QStringList());
            QMetaObject::invokeMethod(dialog, "close");
            QTRY_VERIFY(!dialog->property("visible").toBool());
        }
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
