// Takes the pictures of docs/screenshots: the main window with the phones that adb lists, live,
// and every dialog. Run by scripts/screenshots with a private home folder and simulated phones.
#include "adbclient.h"
#include "groupactions.h"
#include "appstartup.h"
#include "commonphrasemanager.h"
#include "device.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "groupoperation.h"
#include "keymapping.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <functional>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

namespace {

QString outputFolder;
int failures = 0;

bool waitFor(const std::function<bool()> &condition, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    return true;
}

void fail(const QString &what)
{
    std::fprintf(stderr, "screenshots: %s\n", qPrintable(what));
    ++failures;
}

// The window has drawn what was changed before the call: layouts placed, pictures uploaded.
bool nextFrame(QQuickWindow *window)
{
    bool swapped = false;
    const QMetaObject::Connection connection =
        QObject::connect(window, &QQuickWindow::frameSwapped, window, [&swapped] { swapped = true; });
    window->update();
    const bool drawn = waitFor([&swapped] { return swapped; }, 5000);
    QObject::disconnect(connection);
    return drawn;
}

void shoot(QQuickWindow *window, const QString &name)
{
    if (!nextFrame(window))
        fail(name + " was not drawn");
    const QString path = outputFolder + "/" + name + ".png";
    if (!window->grabWindow().save(path))
        fail("could not save " + path);
    else
        std::printf("%s\n", qPrintable(path));
}

// Every object under root, through both the object tree and the visual tree: delegates of views
// have no object parent, only a visual one.
void collect(QObject *root, QList<QObject *> &found)
{
    QList<QObject *> next = root->children();
    if (auto *item = qobject_cast<QQuickItem *>(root)) {
        for (QQuickItem *child : item->childItems()) {
            if (!next.contains(child))
                next << child;
        }
    }
    for (QObject *child : next) {
        if (found.contains(child))
            continue;
        found << child;
        collect(child, found);
    }
}

QObject *findObject(QObject *root, const std::function<bool(QObject *)> &wanted)
{
    QList<QObject *> all;
    collect(root, all);
    for (QObject *object : all) {
        if (wanted(object))
            return object;
    }
    return nullptr;
}

// An object of a QML type, found by its type name.
QObject *ofType(QObject *root, const QString &typeName)
{
    return findObject(root, [&](QObject *o) { return QString(o->metaObject()->className()).startsWith(typeName + "_QML"); });
}

QObject *namedObject(QObject *root, const QString &name)
{
    return findObject(root, [&](QObject *o) { return o->objectName() == name; });
}

QQuickItem *named(QObject *root, const QString &name)
{
    return qobject_cast<QQuickItem *>(namedObject(root, name));
}

QQuickItem *controlButton(QObject *root, const QString &tip)
{
    return qobject_cast<QQuickItem *>(findObject(root, [&](QObject *o) {
        auto *item = qobject_cast<QQuickItem *>(o);
        return item && item->isVisible() && item->property("tip").toString() == tip;
    }));
}

// Opens a dialog, photographs the window it is in, and closes it again.
void shootDialog(QQuickWindow *window, QObject *dialog, const QString &name,
                 const std::function<void(QObject *)> &prepare = {})
{
    if (!dialog) {
        fail("no dialog for " + name);
        return;
    }
    // Opened is set once the dialog's entering transition has ended.
    QMetaObject::invokeMethod(dialog, "open");
    if (!waitFor([dialog] { return dialog->property("opened").toBool(); }, 5000)) {
        fail(name + " did not open");
        return;
    }
    if (prepare)
        prepare(dialog);
    shoot(window, name);
    QMetaObject::invokeMethod(dialog, "close");
    waitFor([dialog] { return !dialog->property("visible").toBool(); }, 5000);
}

// A group operation's table once every phone has its answer.
bool operationDone(QObject *dialog)
{
    const bool done = waitFor([dialog] {
        auto *operation = dialog->property("operation").value<QObject *>();
        return operation && !operation->property("running").toBool();
    }, 30000);
    if (!done)
        fail(dialog->objectName() + ": the operation did not end");
    return done;
}

// A moving picture: the frame rate shown beside it reads more than nothing.
bool live(QQuickItem *view, const QString &rateName)
{
    QQuickItem *rate = view ? named(view, rateName) : nullptr;
    return rate && !rate->property("text").toString().startsWith("0.0");
}

bool cellsLive(QQuickWindow *window, const QList<Device *> &devices)
{
    return waitFor([&] {
        return std::all_of(devices.cbegin(), devices.cend(), [&](Device *d) {
            return live(named(window->contentItem(), "deviceView_" + d->adbConnectionSerial()), "fpsText");
        });
    }, 20000);
}

// A dialog that a button creates on demand: press it, photograph the dialog it opened, close it.
void shootButtonDialog(QQuickWindow *window, QQuickItem *button, const QString &typeName, const QString &name)
{
    if (!button) {
        fail("no button for " + name);
        return;
    }
    QMetaObject::invokeMethod(button, "clicked");
    QObject *dialog = nullptr;
    if (!waitFor([&] {
            dialog = ofType(window, typeName);
            return dialog && dialog->property("opened").toBool();
        }, 5000)) {
        fail(name + " did not open");
        return;
    }
    shoot(window, name);
    QMetaObject::invokeMethod(dialog, "close");
    waitFor([&] { return !ofType(window, typeName); }, 5000);
}

void seedUserData()
{
    CommonPhraseManager *phrases = CommonPhraseManager::instance();
    phrases->addCategory("Greetings", "Daily check-in");
    phrases->addCategory("Replies");
    const QString greetings = phrases->getCategoriesList().first()->id();
    phrases->addPhrase("早上好，今天也要加油！", greetings, "morning");
    phrases->addPhrase("Good evening, see you tomorrow.", greetings);
    phrases->addPhrase("收到，马上处理。", greetings, "ack");
    phrases->setCurrentCategoryId(greetings);

    KeyMapping *mapping = KeyMapping::instance();
    mapping->addProfile("Harvest");
    KeyMappingProfile *profile = mapping->getProfile("Harvest");
    profile->addMapping(Qt::Key_A, 0, "A", 0.5, 0.82, 1);
    profile->addMapping(Qt::Key_S, 0, "S", 0.25, 0.6, 3);
    profile->addSwipeMapping(Qt::Key_W, 0, "W", 0.5, 0.7, 0.5, 0.3, 300);
    mapping->setCurrentProfile(profile);
}

} // namespace

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s OUTPUT-FOLDER\n", argv[0]);
        return 2;
    }
    outputFolder = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    QDir().mkpath(outputFolder);

    AppStartup::configureApplication();
    QQmlApplicationEngine engine;
    AppStartup::loadUserInterface(engine);
    // After start-up has read the user's files, as if the user had typed it in.
    seedUserData();
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window || !waitFor([window] { return window->isExposed(); }, 10000)) {
        std::fprintf(stderr, "screenshots: the main window did not appear\n");
        return 1;
    }

    // The phones adb lists go into the selected group and start.
    auto *manager = window->findChild<DeviceGroupManager *>("deviceGroupManager");
    DeviceGroup *group = manager ? manager->currentSelectedGroup() : nullptr;
    const QList<ADBDeviceInfo> phones = AdbClient::devices();
    // The scan offers the phones while they are in no group yet.
    shootDialog(window, window->findChild<QObject *>("scanDialog"), "scan-devices", [&](QObject *) {
        if (!waitFor([&] { return manager && manager->availableDeviceInfos().size() == phones.size(); }, 20000))
            fail("the scan did not list every phone");
    });
    if (!group || phones.isEmpty() || !group->addDevices(phones)) {
        std::fprintf(stderr, "screenshots: no group or no phone listed by adb\n");
        return 1;
    }
    waitFor([&] { return group->deviceCount() == phones.size(); }, 20000);
    group->startAllDevices();
    const bool started = waitFor(
        [&] {
            const QList<Device *> devices = group->devices();
            return std::all_of(devices.cbegin(), devices.cend(),
                               [](Device *d) { return d->running() && d->frameSize().width() > 0; });
        },
        60000);
    if (!started || !cellsLive(window, group->devices()))
        fail("not every phone shows a picture");
    Device *first = group->devices().value(0);
    if (first)
        first->setCurrentKeyMappingProfile(KeyMapping::instance()->getProfile("Harvest"));
    shoot(window, "main-window");

    shootDialog(window, window->findChild<QObject *>("groupManagerDialog"), "device-group-manager");
    shootDialog(window, window->findChild<QObject *>("adbRestartDialog"), "restart-adb-server");
    shootDialog(window, window->findChild<QObject *>("commonPhrasesDialog"), "common-phrases");
    shootDialog(window, window->findChild<QObject *>("keyMappingDialog"), "key-mapping",
                [](QObject *dialog) { QMetaObject::invokeMethod(dialog, "startEdit", Q_ARG(QVariant, 2)); });
    shootDialog(window, window->findChild<QObject *>("aboutDialog"), "about");
    shootDialog(window, window->findChild<QObject *>("appSettingsDialog"), "app-settings");
    shootDialog(window, ofType(window, "GroupSettingsDialog"), "group-settings");
    // Group operations with a row per phone, finished.
    shootDialog(window, namedObject(window, "groupAdbCommandDialog"), "group-adb-command", [](QObject *dialog) {
        QObject *input = named(qvariant_cast<QQuickItem *>(dialog->property("contentItem")), "adbCommandInput");
        if (input)
            input->setProperty("text", "shell getprop ro.product.model");
        QMetaObject::invokeMethod(dialog, "execute");
        operationDone(dialog);
    });
    QObject *operationDialog = namedObject(window, "groupOperationDialog");
    if (operationDialog)
        operationDialog->setProperty("operation", QVariant::fromValue(group->actions()->screenshotAllDevices()));
    shootDialog(window, operationDialog, "group-operation", [](QObject *dialog) { operationDone(dialog); });
    if (first) {
        QObject *rename = ofType(window, "DeviceRenameDialog");
        QObject *info = ofType(window, "DeviceInfoDialog");
        if (rename)
            rename->setProperty("device", QVariant::fromValue(first));
        if (info)
            info->setProperty("device", QVariant::fromValue(first));
        shootDialog(window, rename, "rename-device");
        shootDialog(window, info, "device-info");

        QQuickItem *cell = named(window->contentItem(), "deviceView_" + first->adbConnectionSerial());
        if (!cell) {
            fail("no cell for the first phone");
        } else {
            shootButtonDialog(window, controlButton(cell, "Select Phrase"), "PhraseSelectionDialog", "select-phrase");
            shootButtonDialog(window, controlButton(cell, "KeyMapping: Harvest"), "KeyMapProfilePicker",
                              "key-mapping-profile");
            shootButtonDialog(window, controlButton(cell, "Run ADB Command"), "ADBCommandDialog", "adb-command");
        }
    }

    // The big view of the second phone, in its own window.
    if (Device *second = group->devices().value(1)) {
        QQuickItem *cell = named(window->contentItem(), "deviceView_" + second->adbConnectionSerial());
        QQuickItem *bigButton = cell ? named(cell, "bigViewButton") : nullptr;
        if (bigButton)
            QMetaObject::invokeMethod(bigButton, "clicked");
        QQuickWindow *big = nullptr;
        waitFor(
            [&] {
                for (QWindow *w : QGuiApplication::topLevelWindows()) {
                    if (w->objectName() == "bigDeviceView_" + second->adbConnectionSerial() && w->isExposed())
                        big = qobject_cast<QQuickWindow *>(w);
                }
                return big != nullptr;
            },
            10000);
        if (big && waitFor([&] { return live(big->contentItem(), "bigFpsText"); }, 30000)) {
            shoot(big, "big-view");
        } else {
            fail("the big view did not show");
        }
        if (big)
            big->close();
        waitFor([&] { return !second->isBigView(); }, 5000);
    }

    group->stopAllDevices();
    waitFor([&] {
        const QList<Device *> devices = group->devices();
        return std::none_of(devices.cbegin(), devices.cend(), [](Device *d) { return d->running(); });
    }, 10000);
    return failures == 0 ? 0 : 1;
}
