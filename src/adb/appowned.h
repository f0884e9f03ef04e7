#pragma once

#include <QMutex>
#include <QMutexLocker>

#include <atomic>
#include <functional>

class QObject;

// A process-wide object owned by the application: made on first use, from any thread, and deleted
// while the application object is destroyed (a Qt post routine), after main() has let the QML engine
// and with it every phone's session go. Workers (thread pools) end first, since their work may use
// any other object; then the others go, the last made first, so that nothing outlives what was
// there before it. Asked for after that end, an object is made anew.
class AppOwnedBase
{
public:
    enum class Kind { Worker, Object };

    // What the application's destruction runs; tests call it to end as the application would.
    static void endAll();

protected:
    AppOwnedBase(std::function<QObject *()> make, Kind kind);
    ~AppOwnedBase() = default;
    QObject *object();

private:
    static void add(AppOwnedBase *owned);
    // Detaches the object, so that a later use makes a new one, and deletes it.
    void end();

    std::function<QObject *()> m_make;
    Kind m_kind;
    QMutex m_mutex;
    std::atomic<QObject *> m_object{nullptr};
};

// Held in a function-local static: `static AppOwned<Store> store([] { return new Store; });`.
template<typename T>
class AppOwned : public AppOwnedBase
{
public:
    explicit AppOwned(std::function<T *()> make, Kind kind = Kind::Object)
        : AppOwnedBase([make = std::move(make)]() -> QObject * { return make(); }, kind)
    {
    }

    T *get() { return static_cast<T *>(object()); }
};
