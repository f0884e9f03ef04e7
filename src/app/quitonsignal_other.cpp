#include "quitonsignal.h"

// No POSIX signals here: nothing to catch.
bool QuitOnSignal::install()
{
    return true;
}
