#include "adbclient.h"
#include "appconfig.h"
#include "appowned.h"
#include "appstartup.h"
#include "fakeadb.h"
#include "loopbacklease.h"
#include "qmlwarnings.h"
#include "testfiles.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>
#include <QtTest>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

// Brings the application up in-process, as main() does, with a stand-in adb found on the PATH.
class TestStartup : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;
    std::optional<LoopbackLease> m_port;
    // Installed once the test log has its own handler, so that both see every message.
    std::optional<QmlWarnings> m_warnings;
    QQmlApplicationEngine *m_engine = nullptr;

    QQuickWindow *window() const { return qobject_cast<QQuickWindow *>(m_engine->rootObjects().value(0)); }

    QObject *find(const char *name) const { return window()->findChild<QObject *>(name); }

    QQuickItem *menuItem(const char *menuButton, int index) const
    {
        QObject *menu = find(menuButton)->property("menu").value<QObject *>();
        QQuickItem *item = nullptr;
        QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, index));
        return item;
    }

private slots:
    void initTestCase()
    {
        qputenv("PATH", (m_adb.folder() + ":" + qEnvironmentVariable("PATH")).toLocal8Bit());
        // No adb server answers on this port, so the one Korvel's adb calls would start is its own.
        m_port.emplace(LoopbackLease::adbServerPort());
        qputenv("ANDROID_ADB_SERVER_PORT", QByteArray::number(m_port->value()));
        m_warnings.emplace();
        AppStartup::configureApplication();
        // Damaged files, as a crash or a hand edit may leave them: the window must say where each went.
        const QString phrases = AppConfig::instance()->getCommonPhraseSavePath();
        QDir(phrases).removeRecursively();
        QVERIFY(TestFiles::write(phrases + "/common_phrases.json", "{\"categories\": ["));
        QVERIFY(TestFiles::write(AppConfig::instance()->getDeviceGroupSavePath() + "/device_groups.json",
                                 "{\"device_groups\": ["));
        m_engine = new QQmlApplicationEngine;
        AppStartup::loadUserInterface(*m_engine);
    }

    void mainWindowLoadsWithoutWarnings()
    {
        // The adb found on the PATH is the one Korvel runs, and the phones' pictures need OpenGL.
        QCOMPARE(AdbClient::program(), m_adb.program());
        QCOMPARE(QQuickWindow::graphicsApi(), QSGRendererInterface::OpenGL);
        QVERIFY(!QGuiApplication::windowIcon().isNull());
        QVERIFY(window());
        QVERIFY(QTest::qWaitForWindowExposed(window()));
        // A frame drawn after the first one: every binding of the window has been evaluated.
        QSignalSpy swapped(window(), &QQuickWindow::frameSwapped);
        window()->update();
        QVERIFY(swapped.wait());
        QVERIFY2(m_warnings->all().isEmpty(), qPrintable(m_warnings->all().join("\n")));
    }

    void damagedFilesAreKeptAndNamedToTheUser()
    {
        // The user is told where each file went; how it is kept is tried on tst_devicesettings.
        auto *alert = find("fileAlert");
        QTRY_VERIFY(alert->property("opened").toBool());
        const QString message = alert->property("message").toString();
        QVERIFY2(message.contains("device_groups.json could not be read") && message.contains("device_groups.json.corrupt-"),
                 qPrintable(message));
        const QStringList kept = TestFiles::keptAside(AppConfig::instance()->getCommonPhraseSavePath() + "/common_phrases.json");
        QVERIFY2(kept.size() == 1 && message.contains(kept.first()), qPrintable(message));
        // Starting writes no defaults in its place.
        QVERIFY(!QFile::exists(AppConfig::instance()->getCommonPhraseSavePath() + "/common_phrases.json"));
        QMetaObject::invokeMethod(alert, "close");
        QTRY_VERIFY(!alert->property("visible").toBool());
    }

    void menuEntriesOpenTheirDialogs_data()
    {
        QTest::addColumn<QByteArray>("menu");
        QTest::addColumn<int>("entry");
        QTest::addColumn<QByteArray>("dialog");
        const auto row = [](const char *text, const char *menu, int entry, const char *dialog) {
            QTest::newRow(text) << QByteArray(menu) << entry << QByteArray(dialog);
        };
        row("Scan Devices", "devicesMenu", 0, "scanDialog");
        row("Manage Device Groups", "devicesMenu", 1, "groupManagerDialog");
        row("Restart ADB Server", "devicesMenu", 2, "adbRestartDialog");
        row("Common Phrases", "toolsMenu", 0, "commonPhrasesDialog");
        row("Key Mapping", "toolsMenu", 1, "keyMappingDialog");
        row("About APP", "settingsMenu", 0, "aboutDialog");
        row("APP Settings", "settingsMenu", 1, "appSettingsDialog");
    }

    void menuEntriesOpenTheirDialogs()
    {
        QFETCH(QByteArray, menu);
        QFETCH(int, entry);
        QFETCH(QByteArray, dialog);
        QQuickItem *item = menuItem(menu.constData(), entry);
        QCOMPARE(item->property("text").toString(), QString(QTest::currentDataTag()));
        QVERIFY(item->property("enabled").toBool());
        QObject *popup = find(dialog.constData());
        QVERIFY(popup && !popup->property("opened").toBool());
        QVERIFY(QMetaObject::invokeMethod(item, "triggered"));
        QTRY_VERIFY(popup->property("opened").toBool());
        QMetaObject::invokeMethod(popup, "close");
        QTRY_VERIFY(!popup->property("visible").toBool());
        QVERIFY2(m_warnings->all().isEmpty(), qPrintable(m_warnings->all().join("\n")));
    }

    void quittingKillsTheAdbServerOnce()
    {
        m_adb.clear();
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCOMPARE(qApp->exec(), 0);
        // What main() does next: the window goes, then the application.
        delete std::exchange(m_engine, nullptr);
        AppOwnedBase::endAll();
        QCOMPARE(m_adb.calls(), QList<QStringList>{QStringList{"kill-server"}});
    }

    void cleanupTestCase()
    {
        delete m_engine;
        m_warnings.reset();
    }
};

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    TestStartup test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_startup.moc"
