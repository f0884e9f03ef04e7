#include "commonphrasemanager.h"
#include "device.h"
#include "devicegroupmanager.h"
#include "devicesettings.h"
#include "groupoperation.h"
#include "keymapping.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(KorvelPlugin)

// A live table without phones: every row runs until the test gives its answer.
class OperationRig : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE GroupOperation *start(int phones)
    {
        m_replies.clear();
        QList<Device *> devices;
        for (int i = 0; i < phones; ++i)
            devices << new Device(this, QString("127.0.0.1:%1").arg(5555 + i));
        m_operation->startDeviceCalls("Rig", devices, {[this, devices](Device *device, QObject *, const GroupOperation::Reply &reply) {
            m_replies.insert(int(devices.indexOf(device)), reply);
        }, nullptr});
        return m_operation;
    }
    Q_INVOKABLE void answer(int row, bool ok, const QString &text) { m_replies.value(row)(ok, text); }

private:
    GroupOperation *m_operation = new GroupOperation(this);
    QHash<int, GroupOperation::Reply> m_replies;
};

// The Korvel module is compiled in; its qmldir lies at :/Korvel/qmldir.
class QmlUiSetup : public QObject
{
    Q_OBJECT

public slots:
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        engine->addImportPath(QStringLiteral("qrc:/"));
        engine->rootContext()->setContextProperty("operationRig", new OperationRig);
        // The stores keep the dialogs' work in files of this run's own.
        DeviceSettings::instance()->setFolder(m_files.path());
        CommonPhraseManager::instance()->setFolder(m_files.path());
        KeyMapping::instance()->setFolder(m_files.path());
        DeviceGroupManager::setDefaultFolder(m_files.path());
    }

private:
    QTemporaryDir m_files;
};

QUICK_TEST_MAIN_WITH_SETUP(tst_qmlui, QmlUiSetup)

#include "tst_qmlui.moc"
