#include "appstartup.h"
#include "commonphrasemanager.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "keymapping.h"
#include "phonefixture.h"

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
QStringList qmlWarnings;
QtMessageHandler previousHandler = nullptr;

void collectWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const bool fromQml = QString::fromUtf8(context.file ? context.file : "").endsWith(".qml")
        || message.contains("qml", Qt::CaseInsensitive);
    if (type != QtDebugMsg && type != QtInfoMsg && fromQml)
        qmlWarnings << message;
    previousHandler(type, context, message);
}

void collectItems(QQuickItem *item, const QString &name, QList<QQuickItem *> &found)
{
    if (item->objectName() == name)
        found << item;
    for (QQuickItem *child : item->childItems())
        collectItems(child, name, found);
}

// A visible, opaque pixel of the phone's picture: anything clearly brighter than black.
bool isLit(const QColor &color)
{
    return color.red() + color.green() + color.blue() > 90;
}
} // namespace

// The main window with simulated phones on a private adb server: scan, add, start, watch, touch.
class TestPhoneGrid : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PhoneFixture> m_fixture;
    QQmlApplicationEngine *m_engine = nullptr;
    QStringList m_serials;

    QQuickWindow *window() const { return qobject_cast<QQuickWindow *>(m_engine->rootObjects().value(0)); }

    QQuickItem *item(const QString &name, QQuickItem *under = nullptr) const
    {
        QList<QQuickItem *> found;
        collectItems(under ? under : window()->contentItem(), name, found);
        return found.value(0);
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

    // The first visible item that matches, anywhere in the window or under `under`.
    QQuickItem *visibleItem(const std::function<bool(QQuickItem *)> &wanted, QQuickItem *under = nullptr) const
    {
        std::function<QQuickItem *(QQuickItem *)> search = [&](QQuickItem *at) -> QQuickItem * {
            if (!at->isVisible())
                return nullptr;
            if (wanted(at))
                return at;
            for (QQuickItem *child : at->childItems()) {
                if (QQuickItem *found = search(child))
                    return found;
            }
            return nullptr;
        };
        return search(under ? under : window()->contentItem());
    }

    DeviceGroupManager *manager() const { return window()->findChild<DeviceGroupManager *>("deviceGroupManager"); }
    DeviceGroup *group() const { return manager()->currentSelectedGroup(); }

    void click(QQuickItem *target, qreal yFraction = 0.5) const
    {
        const QPointF point(target->width() / 2, target->height() * yFraction);
        QTest::mouseClick(window(), Qt::LeftButton, {}, target->mapToScene(point).toPoint());
    }
    QObject *scanDialog() const { return window()->findChild<QObject *>("scanDialog"); }

    PhoneSimProcess *phone(const QString &serial) const
    {
        for (const auto &p : m_fixture->phones()) {
            if (p->serial() == serial)
                return p.get();
        }
        return nullptr;
    }

    QList<QJsonObject> controls(PhoneSimProcess *p, const QString &type) const
    {
        QList<QJsonObject> found;
        for (const QJsonObject &line : p->journal("control")) {
            if (line.value("type").toString() == type)
                found << line;
        }
        return found;
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

        previousHandler = qInstallMessageHandler(collectWarnings);
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

    void emptyGroupScanListsThePhones()
    {
        QCOMPARE(item("deviceCountText")->property("text").toString(), QString("Devices: 0"));
        QQuickItem *scan = item("scanButton");
        QVERIFY(scan->isVisible());
        QCOMPARE(scan->property("text").toString(), QString("No Devices In This Group, Click To Scan"));
        QVERIFY(scanDialog());
        click(scan);
        QTRY_VERIFY(scanDialog()->property("opened").toBool());
        QQuickItem *list = item("scanDeviceList");
        QVERIFY(list);
        QTRY_COMPARE_WITH_TIMEOUT(list->property("count").toInt(), 3, 15000);
        QTRY_VERIFY(!manager()->isScanning());
        QVERIFY(!item("noDevicesText")->isVisible());
        for (const QString &serial : m_serials)
            QVERIFY2(item("scanRow_" + serial), qPrintable(serial));
        QQuickItem *selectAll = item("scanSelectAll");
        QVERIFY(selectAll->isVisible());
        QCOMPARE(selectAll->property("text").toString(), QString("Select All (3)"));
    }

    void addsCheckedPhonesToTheGroup()
    {
        // Nothing is checked: the button is disabled.
        QVERIFY(!item("scanAddButton")->isEnabled());
        QCOMPARE(group()->deviceCount(), 0);
        // One row by clicking it, then all of them.
        click(item("scanRow_" + m_serials.at(1)));
        QCOMPARE(scanDialog()->property("checkedSerials").toStringList(), QStringList{m_serials.at(1)});
        click(item("scanSelectAll"));
        QCOMPARE(scanDialog()->property("checkedSerials").toStringList().size(), 3);
        click(item("scanAddButton"));
        QTRY_VERIFY(!scanDialog()->property("visible").toBool());
        QTRY_COMPARE(group()->deviceCount(), 3);
        QTRY_COMPARE(item("deviceCountText")->property("text").toString(), QString("Devices: 3"));
        QVERIFY(!item("scanButton")->isVisible());
        // Closing the dialog dropped the offered list.
        QVERIFY(manager()->availableDeviceInfos().isEmpty());
        for (int row = 0; row < 3; ++row) {
            const QString serial = group()->devices().at(row)->adbConnectionSerial();
            QTRY_VERIFY2(item("deviceView_" + serial), qPrintable(serial));
            QCOMPARE(cellItem(serial, "deviceTitle")->property("text").toString(), QString::number(row + 1));
            QVERIFY(cellItem(serial, "clickToStart")->isVisible());
        }
    }

    void groupCommandShowsARowPerPhone()
    {
        QObject *dialog = window()->findChild<QObject *>("groupAdbCommandDialog");
        QVERIFY(dialog);
        QMetaObject::invokeMethod(dialog, "open");
        QTRY_VERIFY(dialog->property("opened").toBool());
        item("adbCommandInput")->setProperty("text", "shell echo rack");
        click(item("adbCommandExecute"));
        QTRY_COMPARE_WITH_TIMEOUT(item("operationSummary")->property("text").toString(), QString("3 done"), 15000);
        QCOMPARE(item("operationRows")->property("count").toInt(), 3);
        QVERIFY(!item("operationCancel")->isEnabled());
        QMetaObject::invokeMethod(dialog, "close");
        QTRY_VERIFY(!dialog->property("visible").toBool());
    }

    void startAllShowsEveryPhoneLive()
    {
        click(item("startAllButton"));
        for (Device *device : group()->devices())
            QTRY_VERIFY_WITH_TIMEOUT(device->controller() != nullptr, 20000);

        // Every cell shows its own phone: lit, and each in another colour.
        QSet<QRgb> colours;
        for (Device *device : group()->devices()) {
            const QString serial = device->adbConnectionSerial();
            QQuickItem *video = cellItem(serial, "videoItem");
            QVERIFY(video);
            // Just inside the picture's corner lies the pattern's plain background.
            const QPoint corner = video->mapToScene(QPointF(6, video->height() / 4)).toPoint();
            QTRY_VERIFY_WITH_TIMEOUT(isLit(window()->grabWindow().pixelColor(corner)), 15000);
            colours.insert(window()->grabWindow().pixel(corner));
            QVERIFY(!cellItem(serial, "clickToStart")->isVisible());
            QCOMPARE(cellItem(serial, "startStopButton")->property("text").toString(), QString("■"));
            // Show size follows the item the picture is drawn in.
            QCOMPARE(device->showSize(), QSize(int(video->width()), int(video->height())));
        }
        QCOMPARE(colours.size(), 3);

        // The frame rate reads "N.N FPS" and, for moving pictures, is above zero within a few seconds.
        const QRegularExpression fps("^\\d+\\.\\d FPS$");
        for (Device *device : group()->devices()) {
            QQuickItem *text = cellItem(device->adbConnectionSerial(), "fpsText");
            QVERIFY(text->isVisible());
            QVERIFY2(fps.match(text->property("text").toString()).hasMatch(), qPrintable(text->property("text").toString()));
            QTRY_VERIFY_WITH_TIMEOUT(text->property("text").toString() != "0.0 FPS", 5000);
        }
    }

    void pressAndKeysReachOnlyThatPhone()
    {
        Device *device = group()->devices().at(0);
        PhoneSimProcess *target = phone(device->adbConnectionSerial());
        QVERIFY(target);
        const int before = controls(target, "InjectTouchEvent").size();
        click(cellItem(device->adbConnectionSerial(), "videoItem"), 0.25);
        QTRY_COMPARE_WITH_TIMEOUT(controls(target, "InjectTouchEvent").size(), before + 2, 5000);
        const QJsonObject down = controls(target, "InjectTouchEvent").at(before);
        const QJsonObject up = controls(target, "InjectTouchEvent").at(before + 1);
        QCOMPARE(down.value("action").toInt(), 0);
        QCOMPARE(up.value("action").toInt(), 1);
        // The view's point is scaled to the phone's picture.
        const QSize frame = device->frameSize();
        QCOMPARE(down.value("screenWidth").toInt(), frame.width());
        QCOMPARE(down.value("screenHeight").toInt(), frame.height());
        QVERIFY(qAbs(down.value("x").toInt() - frame.width() / 2) <= 2);
        QVERIFY(qAbs(down.value("y").toInt() - frame.height() / 4) <= 2);
        // No other phone was touched.
        for (Device *other : group()->devices().mid(1))
            QVERIFY(controls(phone(other->adbConnectionSerial()), "InjectTouchEvent").isEmpty());

        // Keys go to the phone under focus: the one just touched.
        QTest::keyClick(window(), Qt::Key_A);
        QTRY_COMPARE_WITH_TIMEOUT(controls(target, "InjectKeycode").size(), 2, 5000);
        const QList<QJsonObject> keys = controls(target, "InjectKeycode");
        QCOMPARE(keys.at(0).value("keycode").toInt(), 29);
        QCOMPARE(keys.at(0).value("action").toInt(), 0);
        QCOMPARE(keys.at(1).value("action").toInt(), 1);

        // A wheel turn scrolls at the pointer's place on the phone.
        QQuickItem *video = cellItem(device->adbConnectionSerial(), "videoItem");
        const QPointF local(video->width() / 2, video->height() / 4);
        const QPointF scene = video->mapToScene(local);
        QWheelEvent wheel(scene, window()->mapToGlobal(scene.toPoint()), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QGuiApplication::sendEvent(window(), &wheel);
        QTRY_COMPARE_WITH_TIMEOUT(controls(target, "InjectScrollEvent").size(), 1, 5000);
        const QJsonObject scroll = controls(target, "InjectScrollEvent").first();
        QVERIFY(qAbs(scroll.value("x").toInt() - frame.width() / 2) <= 2);
        QVERIFY(qAbs(scroll.value("y").toInt() - frame.height() / 4) <= 2);
        QCOMPARE(scroll.value("vscroll").toDouble(), -1.0);

        // What an input method commits is pasted as text.
        QInputMethodEvent commit;
        commit.setCommitString("你好");
        QVERIFY(window()->focusObject());
        QGuiApplication::sendEvent(window()->focusObject(), &commit);
        QTRY_COMPARE_WITH_TIMEOUT(controls(target, "SetClipboard").size(), 1, 5000);
        QCOMPARE(controls(target, "SetClipboard").first().value("text").toString(), QString("你好"));
        QCOMPARE(controls(target, "SetClipboard").first().value("paste").toBool(), true);
        QCOMPARE(controls(target, "InjectKeycode").size(), 2);
    }

    void phraseAndProfileChosenOnTheCellAct()
    {
        Device *device = group()->devices().at(0);
        const QString serial = device->adbConnectionSerial();
        PhoneSimProcess *target = phone(serial);
        CommonPhraseManager *phrases = CommonPhraseManager::instance();
        phrases->addCategory("Farm");
        const QString category = phrases->getCategoriesList().last()->id();
        phrases->addPhrase("收菜 ok", category);
        phrases->setCurrentCategoryId(category);
        const int before = controls(target, "SetClipboard").size();

        // The phrase chosen in the cell's list is pasted on that phone only.
        QMetaObject::invokeMethod(visibleItem([&](QQuickItem *i) { return i->property("tip") == "Select Phrase"; },
                                              item("deviceView_" + serial)),
                                  "clicked");
        QQuickItem *phrase = nullptr;
        QTRY_VERIFY((phrase = visibleItem([](QQuickItem *i) { return i->property("text") == "收菜 ok"; })));
        click(phrase);
        QTRY_COMPARE_WITH_TIMEOUT(controls(target, "SetClipboard").size(), before + 1, 5000);
        QCOMPARE(controls(target, "SetClipboard").last().value("text").toString(), QString("收菜 ok"));
        QCOMPARE(controls(target, "SetClipboard").last().value("paste").toBool(), true);
        for (Device *other : group()->devices().mid(1))
            QVERIFY(controls(phone(other->adbConnectionSerial()), "SetClipboard").isEmpty());

        // The profile picker switches the phone's key mapping, and its button says which.
        KeyMapping::instance()->removeProfile("Cell");
        QVERIFY(KeyMapping::instance()->addProfile("Cell"));
        QMetaObject::invokeMethod(visibleItem([&](QQuickItem *i) { return i->property("tip") == "Key Mapping"; },
                                              item("deviceView_" + serial)),
                                  "clicked");
        QQuickItem *profile = nullptr;
        QTRY_VERIFY((profile = visibleItem([](QQuickItem *i) { return i->property("text") == "Cell"; })));
        click(profile);
        QVERIFY(device->currentKeyMappingProfile());
        QCOMPARE(device->currentKeyMappingProfile()->name(), QString("Cell"));
        QVERIFY(visibleItem([](QQuickItem *i) { return i->property("tip") == "KeyMapping: Cell"; }));
        device->setCurrentKeyMappingProfile(nullptr);
        // The test's own data leaves the files as they were.
        KeyMapping::instance()->removeProfile("Cell");
        phrases->removeCategory(category);
    }

    void everyButtonHasAnAccessibleName()
    {
        // Screen readers and UI automation read what a button does, never a bare glyph.
        const auto buttons = [this] {
            QList<QQuickItem *> found;
            std::function<void(QQuickItem *)> collect = [&](QQuickItem *item) {
                // What is hidden is not read out.
                if (!item->isVisible())
                    return;
                if (item->inherits("QQuickAbstractButton"))
                    found << item;
                for (QQuickItem *child : item->childItems())
                    collect(child);
            };
            collect(window()->contentItem());
            return found;
        };
        const auto checkNames = [](const QList<QQuickItem *> &found) {
            for (QQuickItem *button : found) {
                QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button);
                QVERIFY2(accessible, qPrintable(button->property("text").toString()));
                const QString name = accessible->text(QAccessible::Name);
                const bool worded = std::any_of(name.cbegin(), name.cend(), [](QChar c) { return c.isLetter(); });
                QVERIFY2(worded, qPrintable(QString("%1 \"%2\" (%3)")
                                                .arg(button->objectName(), name, button->property("text").toString())));
            }
        };
        // Three running phones with their header and their 24 control buttons each, and the bars.
        const QList<QQuickItem *> inWindow = buttons();
        QVERIFY2(inWindow.size() > 3 * 27, qPrintable(QString::number(inWindow.size())));
        checkNames(inWindow);

        // And in every dialog of the menus, each while it is open.
        for (const char *name : {"groupManagerDialog", "adbRestartDialog", "aboutDialog", "appSettingsDialog",
                                 "commonPhrasesDialog", "keyMappingDialog"}) {
            QObject *dialog = window()->findChild<QObject *>(name);
            QVERIFY2(dialog, name);
            QMetaObject::invokeMethod(dialog, "open");
            QTRY_VERIFY(dialog->property("opened").toBool());
            const QList<QQuickItem *> withDialog = buttons();
            QVERIFY2(withDialog.size() > inWindow.size(), name);
            checkNames(withDialog);
            QMetaObject::invokeMethod(dialog, "close");
            QTRY_VERIFY(!dialog->property("visible").toBool());
        }
    }

    void bigViewTakesThePhoneAndGivesItBack()
    {
        // Big-view pictures are larger than the grid's, so the frame size tells which one runs.
        group()->setMaxSizeBigView(800);
        Device *device = group()->devices().at(1);
        const QString serial = device->adbConnectionSerial();
        click(cellItem(serial, "bigViewButton"));
        QVERIFY(device->isBigView());
        QTRY_VERIFY(bigWindow(serial));
        QQuickWindow *big = bigWindow(serial);
        QVERIFY(QTest::qWaitForWindowExposed(big));
        QCOMPARE(big->title(), QString("Big Screen"));
        const int width = group()->bigViewWidth();
        const int videoHeight = qRound(width * 16.0 / 9.0);
        QCOMPARE(big->size(), QSize(width + 20 + 34, videoHeight + 55));
        QVERIFY(cellItem(serial, "onBigScreenText")->isVisible());
        QVERIFY(!cellItem(serial, "bigViewButton")->isVisible());
        QVERIFY(!cellItem(serial, "fpsText")->isVisible());

        QList<QQuickItem *> found;
        collectItems(big->contentItem(), "bigVideoItem", found);
        QCOMPARE(found.size(), 1);
        QQuickItem *video = found.first();
        QCOMPARE(video->size(), QSizeF(width, videoHeight));
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize().height(), 800, 20000);
        const QPoint corner = video->mapToScene(QPointF(6, video->height() / 4)).toPoint();
        QTRY_VERIFY_WITH_TIMEOUT(isLit(big->grabWindow().pixelColor(corner)), 15000);
        QCOMPARE(device->showSize(), QSize(width, videoHeight));

        // Closing the window brings the phone back to its cell with the grid's parameters.
        big->close();
        QTRY_VERIFY(!device->isBigView());
        QTRY_VERIFY(!bigWindow(serial));
        QTRY_COMPARE_WITH_TIMEOUT(device->frameSize().height(), 720, 20000);
        QTRY_VERIFY(device->controller());
        QVERIFY(!cellItem(serial, "onBigScreenText")->isVisible());
        QVERIFY(cellItem(serial, "fpsText")->isVisible());
        QQuickItem *cellVideo = cellItem(serial, "videoItem");
        QTRY_COMPARE(device->showSize(), QSize(int(cellVideo->width()), int(cellVideo->height())));
    }

    void groupControlToggle()
    {
        QQuickItem *toggle = item("groupControlButton");
        QCOMPARE(toggle->property("text").toString(), QString("Start Group Control"));
        click(toggle);
        QVERIFY(group()->groupControlMode());
        QCOMPARE(toggle->property("text").toString(), QString("🚩 Group Controlling"));
        const QList<Device *> devices = group()->devices();
        QVERIFY(cellItem(devices.at(0)->adbConnectionSerial(), "hostFlag")->isVisible());
        QVERIFY(!cellItem(devices.at(1)->adbConnectionSerial(), "hostFlag")->isVisible());
        click(toggle);
        QVERIFY(!group()->groupControlMode());
        QCOMPARE(toggle->property("text").toString(), QString("Start Group Control"));
        QVERIFY(!cellItem(devices.at(0)->adbConnectionSerial(), "hostFlag")->isVisible());
    }

    void stopAllStopsEveryPhone()
    {
        click(item("stopAllButton"));
        for (Device *device : group()->devices()) {
            QTRY_VERIFY_WITH_TIMEOUT(!device->running(), 10000);
            QVERIFY(cellItem(device->adbConnectionSerial(), "clickToStart")->isVisible());
            QVERIFY(!cellItem(device->adbConnectionSerial(), "fpsText")->isVisible());
        }
    }

    void cleanupTestCase()
    {
        const QStringList warnings = qmlWarnings;
        delete m_engine;
        m_engine = nullptr;
        QTest::qWait(100);
        m_fixture.reset();
        qInstallMessageHandler(previousHandler);
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
