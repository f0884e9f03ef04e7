#include "appstartup.h"

#include "adbclient.h"
#include "adbworkpool.h"
#include "appconfig.h"
#include "appowned.h"
#include "device.h"
#include "screenshotwriter.h"
#include "commonphrase.h"
#include "commonphrasemanager.h"
#include "devicegroupmanager.h"
#include "devicesettings.h"
#include "devicetracker.h"
#include "keymapping.h"
#include "phrasecategory.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTranslator>

void AppStartup::selectGraphicsApi()
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
}

void AppStartup::configureApplication()
{
    QCoreApplication::setOrganizationName("Korvel");
    QCoreApplication::setOrganizationDomain("app.korvel.phonefarm");
    QCoreApplication::setApplicationName("Korvel");
    QGuiApplication::setApplicationDisplayName("Korvel");
    QCoreApplication::setApplicationVersion("1.0.1");
    QGuiApplication::setWindowIcon(QIcon(":/Korvel/src/icons/korvel_logo.png"));
    QQuickStyle::setStyle("Fusion");
}

QString AppStartup::translationFile(const QString &locale)
{
    // Both tests run in this order on purpose: a "TW" locale wins over a "CN" one.
    QString file;
    if (locale.contains("CN"))
        file = ":/translations/Korvel_CN.qm";
    if (locale.contains("TW"))
        file = ":/translations/Korvel_TW.qm";
    return file;
}

bool AppStartup::installTranslation(const QString &locale)
{
    static QTranslator translator;
    const QString file = translationFile(locale);
    if (file.isEmpty() || !translator.load(file))
        return false;
    QCoreApplication::installTranslator(&translator);
    return true;
}

namespace {

// Each store's folder as the settings name it; the stores' files are not read here.
void giveStoresTheirFolders(QQmlApplicationEngine &engine)
{
    AppConfig *config = AppConfig::instance();
    DeviceSettings::instance()->setFolder(config->getDeviceNicknameSavePath());
    CommonPhraseManager::instance()->setFolder(config->getCommonPhraseSavePath());
    KeyMapping::instance()->setFolder(config->getKeyMappingSavePath());
    DeviceGroupManager::setDefaultFolder(config->getDeviceGroupSavePath());
    // The group manager is made by Main.qml, and Main.qml may not have been loaded yet.
    for (QObject *root : engine.rootObjects()) {
        for (DeviceGroupManager *manager : root->findChildren<DeviceGroupManager *>())
            manager->setFolder(config->getDeviceGroupSavePath());
    }
}

// The adb server that the application started must not outlive it; one that the user's other tools
// were using before must. Killed at the application's end: the adb threads end before the
// application's other objects, so the phones' tear-downs still find the server.
class OwnAdbServer : public QObject
{
public:
    ~OwnAdbServer() override { AdbClient::killOwnServer(); }
};

} // namespace

void AppStartup::loadUserInterface(QQmlApplicationEngine &engine)
{
    // Before anything of Korvel's can start an adb server.
    AdbClient::noteServerAtStart();
    engine.retranslate();
    // The module's qmldir (with its QML singletons) is compiled in at :/Korvel/qmldir.
    engine.addImportPath(QStringLiteral("qrc:/"));
    qRegisterMetaType<QList<ADBDeviceInfo>>("QList<ADBDeviceInfo>");
    qRegisterMetaType<QList<DeviceInfo>>("QList<DeviceInfo>");
    qRegisterMetaType<QList<CommonPhrase *>>("QList<CommonPhrase*>");
    qRegisterMetaType<QList<PhraseCategory *>>("QList<PhraseCategory*>");
    AppConfig *config = AppConfig::instance();
    installTranslation(config->getLocale());
    // The layers below get the user's settings as values: folders that apply from the next start,
    // and the bound on adb processes, which applies to work not started yet.
    ScreenshotWriter::setFolder(config->getScreenshotSavePath());
    DeviceGroupManager::setStartRackAtLaunch(config->getAppSetting(AppConfig::startRackAtLaunchKey, "false") == "true");
    Device::setRecordingFolder(config->getVideoSavePath());
    const auto applyAdbBound = [config] {
        AdbWorkPool::instance()->setMaxRunning(
            config->getAppSetting(AdbWorkPool::settingKey, QString::number(AdbWorkPool::defaultMaxRunning)).toInt());
    };
    applyAdbBound();
    QObject::connect(config, &AppConfig::appSettingChanged, qApp, [applyAdbBound](const QString &key) {
        if (key == AdbWorkPool::settingKey)
            applyAdbBound();
    });

    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreationFailed, qApp,
        [] { QCoreApplication::exit(-1); }, Qt::QueuedConnection);
    // Before the adb listing can ask for a nickname, and before any view shows a store.
    giveStoresTheirFolders(engine);
    DeviceSettings::instance()->reload();
    CommonPhraseManager::instance()->loadData();
    KeyMapping::instance()->loadFromFile();
    // A folder chosen later takes the next save; nothing is read again, as the stores hold what
    // the user is working on.
    QObject::connect(AppConfig::instance(), &AppConfig::appSettingChanged, &engine,
                     [&engine] { giveStoresTheirFolders(engine); });
    // One long-lived listing of attached phones serves every group and session.
    DeviceTracker::instance()->ensureStarted();
    engine.load(QUrl("qrc:/Korvel/src/qml/Main.qml"));

    // The listing's adb process, held for the life of the process, goes first.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, [] { DeviceTracker::instance()->stop(); });
    static AppOwned<OwnAdbServer> ownServer([] { return new OwnAdbServer; });
    ownServer.get();
}
