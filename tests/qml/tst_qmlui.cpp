#include <QQmlEngine>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

// The Korvel module is compiled in; its qmldir lies at :/Korvel/qmldir.
class QmlUiSetup : public QObject
{
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine *engine) { engine->addImportPath(QStringLiteral("qrc:/")); }
};

QUICK_TEST_MAIN_WITH_SETUP(tst_qmlui, QmlUiSetup)

#include "tst_qmlui.moc"
