#include "colormanager.h"

ColorManager *ColorManager::instance()
{
    static ColorManager *manager = new ColorManager;
    return manager;
}

