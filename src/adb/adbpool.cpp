#include "adbpool.h"

#include "adbclient.h"
#include "appowned.h"

namespace {

std::atomic_bool appEnding{false};

// Ends before the application's other objects: tear-downs handed over by the phones' sessions
// (their servers' kills, their tunnels' removal) still reach the phones, within ExitWaitMs, and
// work whose answer nobody takes any more is skipped. adb calls that have not ended by then are
// abandoned, so that no adb process outlives the application and a hung one holds nothing long.
class AdbThreads : public QThreadPool
{
public:
    AdbThreads()
    {
        appEnding = false;
        AdbClient::setAbandoned(false);
        setMaxThreadCount(AdbPool::DefaultThreads);
        setObjectName("AdbPool");
        // Kept for the life of the process: adb work comes in bursts, and threads made anew for each
        // burst leave the memory allocator a new arena every time.
        setExpiryTimeout(-1);
    }

    ~AdbThreads() override
    {
        appEnding = true;
        if (!waitForDone(AdbPool::ExitWaitMs)) {
            clear();
            AdbClient::setAbandoned(true);
            waitForDone();
            // What comes after the adb threads (killing Korvel's own adb server) still runs adb.
            AdbClient::setAbandoned(false);
        }
    }
};

} // namespace

QThreadPool *AdbPool::instance()
{
    static AppOwned<QThreadPool> pool([] { return new AdbThreads; }, AppOwnedBase::Kind::Worker);
    return pool.get();
}

bool AdbPool::ending()
{
    return appEnding;
}
