#include "appstartup.h"
#include "quitonsignal.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

int main(int argc, char *argv[])
{
    AppStartup::selectGraphicsApi();
    QGuiApplication app(argc, argv);
    AppStartup::configureApplication();
    // Before any phone's session can start: a request to end always finds the handler in place.
    QuitOnSignal::install();

    QQmlApplicationEngine engine;
    AppStartup::loadUserInterface(engine);
    return app.exec();
}
