#include "appowned.h"

#include <QCoreApplication>
#include <QList>
#include <QObject>

namespace {
QMutex registryMutex;
// Every object made since the last end, oldest first.
QList<AppOwnedBase *> made;
}

AppOwnedBase::AppOwnedBase(std::function<QObject *()> make, Kind kind)
    : m_make(std::move(make))
    , m_kind(kind)
{
}

QObject *AppOwnedBase::object()
{
    if (QObject *existing = m_object.load(std::memory_order_acquire))
        return existing;
    QMutexLocker lock(&m_mutex);
    if (QObject *existing = m_object.load(std::memory_order_relaxed))
        return existing;
    QObject *created = m_make();
    add(this);
    m_object.store(created, std::memory_order_release);
    return created;
}

void AppOwnedBase::add(AppOwnedBase *owned)
{
    QMutexLocker lock(&registryMutex);
    if (made.isEmpty())
        qAddPostRoutine(&AppOwnedBase::endAll);
    made.append(owned);
}

void AppOwnedBase::end()
{
    QObject *object = nullptr;
    {
        QMutexLocker lock(&m_mutex);
        object = m_object.exchange(nullptr);
    }
    delete object;
}

void AppOwnedBase::endAll()
{
    QList<AppOwnedBase *> ending;
    {
        QMutexLocker lock(&registryMutex);
        // Called directly, the application's own call would find nothing left; one made after this
        // registers the routine again.
        qRemovePostRoutine(&AppOwnedBase::endAll);
        ending.swap(made);
    }
    for (Kind kind : {Kind::Worker, Kind::Object}) {
        for (auto it = ending.crbegin(); it != ending.crend(); ++it) {
            if ((*it)->m_kind == kind)
                (*it)->end();
        }
    }
}
