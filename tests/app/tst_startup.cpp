#include "appconfig.h"
#include "appstartup.h"
#include "fakeadb.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>
#include <QTcpServer>
#include <QtTest>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

namespace {
QStringList qmlWarnings;
QtMessageHandler previousHandler = nullptr;

void collectWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && message.contains("qml", Qt::CaseInsensitive))
        qmlWarnings << message;
    previousHandler(type, context, message);
}
}

// Brings the application up in-process, as main() does, with a stand-in adb found on the PATH.
class TestStartup : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;
    QQmlApplicationEngine *m_engine = nullptr;

    QQuickWindow *window() const
    {
        return m_engine->rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(m_engine->rootObjects().first());
    }

    template<typename T = QObject>
    T *find(const char *name) const { return window()->findChild<T *>(name); }

    QQuickItem *menuItem(const char *menuButton, int index) const
    {
        QObject *menu = find(menuButton)->property("menu").value<QObject *>();
        QQuickItem *item = nullptr;
        QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, index));
        return item;
    }

    QStringList menuEntries(const char *menuButton) const
    {
        QObject *menu = find(menuButton)->property("menu").value<QObject *>();
        QStringList texts;
        const int count = menu->property("count").toInt();
        for (int i = 0; i < count; ++i) {
            QQuickItem *item = menuItem(menuButton, i);
            texts << item->property("text").toString() + (item->property("enabled").toBool() ? "" : " (disabled)");
        }
        return texts;
    }

private slots:
    void initTestCase()
    {
        qputenv("PATH", (m_adb.folder() + ":" + qEnvironmentVariable("PATH")).toLocal8Bit());
        // No adb server answers on this port, so the one Korvel's adb calls would start is its own.
        {
            QTcpServer probe;
            QVERIFY(probe.listen(QHostAddress::LocalHost));
            qputenv("ANDROID_ADB_SERVER_PORT", QByteArray::number(probe.serverPort()));
        }
        previousHandler = qInstallMessageHandler(collectWarnings);
        AppStartup::configureApplication();
        // A damaged phrase file, as a crash or another program may leave it.
        const QString phrases = AppConfig::instance()->getCommonPhraseSavePath();
        QDir(phrases).removeRecursively();
        QVERIFY(QDir().mkpath(phrases));
        QFile damaged(phrases + "/common_phrases.json");
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write("{\"categories\": [");
        damaged.close();
        // A groups file left cut short by hand: the window must say where it went.
        const QString groups = AppConfig::instance()->getDeviceGroupSavePath() + "/device_groups.json";
        QVERIFY(QDir().mkpath(QFileInfo(groups).path()));
        QFile corrupt(groups);
        QVERIFY(corrupt.open(QIODevice::WriteOnly | QIODevice::Truncate));
        corrupt.write("{\"device_groups\": [");
        corrupt.close();
        m_engine = new QQmlApplicationEngine;
        AppStartup::loadUserInterface(*m_engine);
    }

    void identityAndTheAdbOnThePath()
    {
        QCOMPARE(AppConfig::adbPath(), m_adb.program());
        QCOMPARE(QCoreApplication::applicationName(), QString("Korvel"));
        QCOMPARE(QCoreApplication::organizationName(), QString("Korvel"));
        QCOMPARE(QCoreApplication::applicationVersion(), QString("1.0.1"));
        QCOMPARE(QGuiApplication::applicationDisplayName(), QString("Korvel"));
        QVERIFY(!QGuiApplication::windowIcon().isNull());
        QCOMPARE(QQuickWindow::graphicsApi(), QSGRendererInterface::OpenGL);
    }

    void mainWindowLoadsWithoutWarnings()
    {
        QVERIFY(window());
        QVERIFY(QTest::qWaitForWindowExposed(window()));
        QCOMPARE(window()->title(), QString("Phone Farms"));
        QCOMPARE(window()->size(), QSize(1480, 800));
        QTest::qWait(200);
        QVERIFY2(qmlWarnings.isEmpty(), qPrintable(qmlWarnings.join("\n")));
    }

    void damagedFilesAreKeptAndNamedToTheUser()
    {
        // The user is told where each file went; it is kept as it was and nothing is written over it.
        auto *alert = find("fileAlert");
        QTRY_VERIFY(alert->property("opened").toBool());
        const QString message = alert->property("message").toString();
        QVERIFY2(message.contains("device_groups.json could not be read") && message.contains("device_groups.json.corrupt-"),
                 qPrintable(message));
        const QString folder = AppConfig::instance()->getCommonPhraseSavePath();
        const QStringList kept = QDir(folder).entryList({"common_phrases.json.corrupt-*"}, QDir::Files);
        QCOMPARE(kept.size(), 1);
        QVERIFY2(message.contains(kept.first()), qPrintable(message));
        QFile file(folder + "/" + kept.first());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("{\"categories\": ["));
        QVERIFY(!QFile::exists(folder + "/common_phrases.json"));
        QMetaObject::invokeMethod(alert, "close");
        QTRY_VERIFY(!alert->property("visible").toBool());
    }

    void headerAndMenus()
    {
        QCOMPARE(find("headerTitle")->property("text").toString(), QString("Korvel Multi-Phones Control"));
        QCOMPARE(find<QQuickItem>("headerBar")->height(), 44.0);
        QCOMPARE(find("devicesMenu")->property("text").toString(), QString("Devices"));
        QCOMPARE(menuEntries("devicesMenu"), (QStringList{"Scan Devices", "Manage Device Groups", "Restart ADB Server"}));
        QCOMPARE(menuEntries("toolsMenu"), (QStringList{"Common Phrases", "Key Mapping"}));
        QCOMPARE(menuEntries("settingsMenu"), (QStringList{"About APP", "APP Settings"}));
    }

    void drawsHeaderAndBlackGrid()
    {
        const QImage shot = window()->grabWindow();
        QCOMPARE(shot.size(), QSize(1480, 800));
        QCOMPARE(QColor(shot.pixel(600, 5)), QColor("#222222"));
        auto *grid = find<QQuickItem>("gridPanel");
        const QPointF inGrid = grid->mapToScene(QPointF(20, 20));
        QCOMPARE(QColor(shot.pixel(inGrid.toPoint())), QColor("#0A0A0A"));
        QVERIFY(find<QQuickItem>("deviceList")->width() >= 200);
    }

    void menuEntriesOpenTheirDialogs_data()
    {
        QTest::addColumn<QByteArray>("menu");
        QTest::addColumn<int>("entry");
        QTest::addColumn<QByteArray>("dialog");
        QTest::newRow("Scan Devices") << QByteArray("devicesMenu") << 0 << QByteArray("scanDialog");
        QTest::newRow("Manage Device Groups") << QByteArray("devicesMenu") << 1 << QByteArray("groupManagerDialog");
        QTest::newRow("Restart ADB Server") << QByteArray("devicesMenu") << 2 << QByteArray("adbRestartDialog");
        QTest::newRow("Common Phrases") << QByteArray("toolsMenu") << 0 << QByteArray("commonPhrasesDialog");
        QTest::newRow("Key Mapping") << QByteArray("toolsMenu") << 1 << QByteArray("keyMappingDialog");
        QTest::newRow("About APP") << QByteArray("settingsMenu") << 0 << QByteArray("aboutDialog");
        QTest::newRow("APP Settings") << QByteArray("settingsMenu") << 1 << QByteArray("appSettingsDialog");
    }

    void menuEntriesOpenTheirDialogs()
    {
        QFETCH(QByteArray, menu);
        QFETCH(int, entry);
        QFETCH(QByteArray, dialog);
        QObject *popup = find(dialog.constData());
        QVERIFY(popup);
        QVERIFY(!popup->property("opened").toBool());
        QVERIFY(QMetaObject::invokeMethod(menuItem(menu.constData(), entry), "triggered"));
        QTRY_VERIFY(popup->property("opened").toBool());
        QMetaObject::invokeMethod(popup, "close");
        QTRY_VERIFY(!popup->property("visible").toBool());
        QVERIFY2(qmlWarnings.isEmpty(), qPrintable(qmlWarnings.join("\n")));
    }

    void quittingKillsTheAdbServerOnce()
    {
        m_adb.clear();
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCOMPARE(qApp->exec(), 0);
        QCOMPARE(m_adb.calls(), QList<QStringList>{QStringList{"kill-server"}});
    }

    void cleanupTestCase()
    {
        delete m_engine;
        qInstallMessageHandler(previousHandler);
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
