#include "platform/unix/termination_signals.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace paneforge {

namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

// The pipe outlives every handler call: it is closed only after the handlers are reset.
int gWakeFds[2] = {-1, -1};

extern "C" void onTerminationSignal(int) {
    const int saved = errno;
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(gWakeFds[1], &byte, 1);
    errno = saved;
}

void setNonBlockingCloseOnExec(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
}

} // namespace

TerminationSignals::~TerminationSignals() {
    if (!notifier_) {
        return;
    }
    for (const int signal : kSignals) {
        std::signal(signal, SIG_DFL);
    }
    notifier_.reset();
    ::close(gWakeFds[0]);
    ::close(gWakeFds[1]);
    gWakeFds[0] = gWakeFds[1] = -1;
}

bool TerminationSignals::quitOn(std::function<void()> quit) {
    if (notifier_ || ::pipe(gWakeFds) != 0) {
        return false;
    }
    setNonBlockingCloseOnExec(gWakeFds[0]);
    setNonBlockingCloseOnExec(gWakeFds[1]);
    quit_ = std::move(quit);
    notifier_ = std::make_unique<QSocketNotifier>(gWakeFds[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
        char bytes[16];
        while (::read(gWakeFds[0], bytes, sizeof bytes) > 0) {
        }
        if (quit_) {
            quit_();
        }
    });
    struct sigaction action {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        ::sigaction(signal, &action, nullptr);
    }
    return true;
}

} // namespace paneforge
