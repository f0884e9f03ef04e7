#include "colormanager.h"

#include <QJSEngine>

ColorManager *ColorManager::instance()
{
    static ColorManager *manager = new ColorManager;
    return manager;
}

ColorManager *ColorManager::create(QQmlEngine *, QJSEngine *)
{
    ColorManager *manager = instance();
    QJSEngine::setObjectOwnership(manager, QJSEngine::CppOwnership);
    return manager;
}
