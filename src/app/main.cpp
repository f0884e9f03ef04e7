#include "appstartup.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    AppStartup::configureApplication();

    QQmlApplicationEngine engine;
    AppStartup::loadUserInterface(engine);
    return app.exec();
}
