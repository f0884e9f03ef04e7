#pragma once

// The C++ types the user interface uses, registered in the Korvel module from here so that the
// layers below know nothing of QML.

#include "adbdeviceinfo.h"
#include "appconfig.h"
#include "appinfo.h"
#include "autojs.h"
#include "colormanager.h"
#include "commonphrase.h"
#include "commonphrasemanager.h"
#include "controller.h"
#include "device.h"
#include "deviceactions.h"
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "deviceinfo.h"
#include "devicesettings.h"
#include "groupactions.h"
#include "groupoperation.h"
#include "inputmapping.h"
#include "jsonstore.h"
#include "keymapping.h"
#include "keymappingprofile.h"
#include "messagekind.h"
#include "phrasecategory.h"
#include "serverparams.h"
#include "yuvfboitem.h"

#include <QJSEngine>
#include <QtQml/qqmlregistration.h>

namespace KorvelTypes {
// The process-wide objects stay C++'s: QML must never delete them.
template<typename T>
T *shared()
{
    T *object = T::instance();
    QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    return object;
}
}

struct AppConfigForeign
{
    Q_GADGET
    QML_FOREIGN(AppConfig)
    QML_NAMED_ELEMENT(AppConfig)
    QML_SINGLETON
public:
    static AppConfig *create(QQmlEngine *, QJSEngine *) { return KorvelTypes::shared<AppConfig>(); }
};

struct ColorManagerForeign
{
    Q_GADGET
    QML_FOREIGN(ColorManager)
    QML_NAMED_ELEMENT(ColorManager)
    QML_SINGLETON
public:
    static ColorManager *create(QQmlEngine *, QJSEngine *) { return KorvelTypes::shared<ColorManager>(); }
};

struct CommonPhraseManagerForeign
{
    Q_GADGET
    QML_FOREIGN(CommonPhraseManager)
    QML_NAMED_ELEMENT(CommonPhraseManager)
    QML_SINGLETON
public:
    static CommonPhraseManager *create(QQmlEngine *, QJSEngine *) { return KorvelTypes::shared<CommonPhraseManager>(); }
};

struct DeviceSettingsForeign
{
    Q_GADGET
    QML_FOREIGN(DeviceSettings)
    QML_NAMED_ELEMENT(DeviceSettings)
    QML_SINGLETON
public:
    static DeviceSettings *create(QQmlEngine *, QJSEngine *) { return KorvelTypes::shared<DeviceSettings>(); }
};

struct KeyMappingForeign
{
    Q_GADGET
    QML_FOREIGN(KeyMapping)
    QML_NAMED_ELEMENT(KeyMapping)
    QML_SINGLETON
public:
    static KeyMapping *create(QQmlEngine *, QJSEngine *) { return KorvelTypes::shared<KeyMapping>(); }
};

struct AdbDeviceInfoForeign
{
    Q_GADGET
    QML_FOREIGN(ADBDeviceInfo)
    QML_VALUE_TYPE(adbDeviceInfo)
};

struct DeviceInfoForeign
{
    Q_GADGET
    QML_FOREIGN(DeviceInfo)
    QML_VALUE_TYPE(deviceInfo)
};

struct AppInfoForeign
{
    Q_GADGET
    QML_FOREIGN(AppInfo)
    QML_VALUE_TYPE(appInfo)
};

struct ControllerForeign
{
    Q_GADGET
    QML_FOREIGN(Controller)
    QML_NAMED_ELEMENT(Controller)
};

namespace InputEventForeign {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(InputEvent)
QML_NAMED_ELEMENT(InputEvent)
}

namespace KeyMappingTypeForeign {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(KeyMappingType)
QML_NAMED_ELEMENT(KeyMappingType)
}

struct KeyMappingProfileForeign
{
    Q_GADGET
    QML_FOREIGN(KeyMappingProfile)
    QML_NAMED_ELEMENT(KeyMappingProfile)
    QML_UNCREATABLE("Profiles are made by KeyMapping")
};

namespace MessageKindForeign {
Q_NAMESPACE
QML_FOREIGN_NAMESPACE(MessageKind)
QML_NAMED_ELEMENT(MessageKind)
}

struct DeviceForeign
{
    Q_GADGET
    QML_FOREIGN(Device)
    QML_NAMED_ELEMENT(Device)
};

struct DeviceActionsForeign
{
    Q_GADGET
    QML_FOREIGN(DeviceActions)
    QML_NAMED_ELEMENT(DeviceActions)
    QML_UNCREATABLE("Each Device owns its actions")
};

struct ServerParamsForeign
{
    Q_GADGET
    QML_FOREIGN(ServerParams)
    QML_NAMED_ELEMENT(ServerParams)
};

struct AutojsForeign
{
    Q_GADGET
    QML_FOREIGN(Autojs)
    QML_NAMED_ELEMENT(Autojs)
    QML_UNCREATABLE("Each Device owns its Autojs bridge")
};

struct GroupOperationForeign
{
    Q_GADGET
    QML_FOREIGN(GroupOperation)
    QML_NAMED_ELEMENT(GroupOperation)
};

struct YuvFboItemForeign
{
    Q_GADGET
    QML_FOREIGN(YuvFboItem)
    QML_NAMED_ELEMENT(YuvFboItem)
};

struct CommonPhraseForeign
{
    Q_GADGET
    QML_FOREIGN(CommonPhrase)
    QML_NAMED_ELEMENT(CommonPhrase)
};

struct PhraseCategoryForeign
{
    Q_GADGET
    QML_FOREIGN(PhraseCategory)
    QML_NAMED_ELEMENT(PhraseCategory)
};

struct DeviceGroupForeign
{
    Q_GADGET
    QML_FOREIGN(DeviceGroup)
    QML_NAMED_ELEMENT(DeviceGroup)
};

struct DeviceGroupManagerForeign
{
    Q_GADGET
    QML_FOREIGN(DeviceGroupManager)
    QML_NAMED_ELEMENT(DeviceGroupManager)
};

struct GroupActionsForeign
{
    Q_GADGET
    QML_FOREIGN(GroupActions)
    QML_NAMED_ELEMENT(GroupActions)
    QML_UNCREATABLE("Each DeviceGroup owns its actions")
};

// The stores' shared base: its properties (the file's message) are seen through each store.
struct JsonStoreForeign
{
    Q_GADGET
    QML_FOREIGN(JsonStore)
    QML_ANONYMOUS
};
