#pragma once

#include <QString>

class QGuiApplication;
class QQmlApplicationEngine;

// The steps of bringing Korvel up, kept out of main() so that tests can run them in-process.
class AppStartup
{
public:
    AppStartup() = delete;

    // Before the application object exists: the frame display renders through OpenGL.
    static void selectGraphicsApi();
    // Identity, window icon and controls style.
    static void configureApplication();
    // Translation, value types, failure handling, Main.qml, on quit the end of the adb listing, and
    // at the application's end adb "kill-server" when the server is Korvel's.
    static void loadUserInterface(QQmlApplicationEngine &engine);

    // The catalogue for a locale setting such as "zh_CN"; empty for the English source texts.
    static QString translationFile(const QString &locale);
    static bool installTranslation(const QString &locale);
};
