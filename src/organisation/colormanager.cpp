#include "colormanager.h"

#include "appowned.h"

ColorManager *ColorManager::instance()
{
    static AppOwned<ColorManager> manager([] { return new ColorManager; });
    return manager.get();
}

