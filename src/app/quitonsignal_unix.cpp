#include "quitonsignal.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QtDebug>

#include <cerrno>
#include <cstring>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int caught[] = {SIGTERM, SIGINT, SIGHUP};
// [0] is read on the GUI thread, [1] written by the handler.
int wakeUp[2] = {-1, -1};

// Only what is safe in a signal handler: one write, errno left as it was.
void onSignal(int)
{
    const int savedErrno = errno;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(wakeUp[1], &byte, 1);
    errno = savedErrno;
}

bool prepare(int fd)
{
    // Not inherited by adb and the other children; never blocking the handler when full.
    return ::fcntl(fd, F_SETFD, FD_CLOEXEC) == 0 && ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK) == 0;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : caught)
        ::sigaction(signal, &action, nullptr);
}

} // namespace

bool QuitOnSignal::install()
{
    if (wakeUp[0] >= 0)
        return true;
    if (::pipe(wakeUp) != 0 || !prepare(wakeUp[0]) || !prepare(wakeUp[1])) {
        qWarning("QuitOnSignal: no pipe for the requests to end: %s", strerror(errno));
        return false;
    }
    auto *notifier = new QSocketNotifier(wakeUp[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [] {
        char bytes[16];
        while (::read(wakeUp[0], bytes, sizeof bytes) > 0) {
        }
        // Ending cleanly takes a few seconds at most; one who asks again does not want to wait.
        setHandler(SIG_DFL);
        QCoreApplication::quit();
    });
    setHandler(onSignal);
    return true;
}
