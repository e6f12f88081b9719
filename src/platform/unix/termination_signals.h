#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace paneforge {

// Turns SIGTERM, SIGINT and SIGHUP (logout, Ctrl+C, a closed terminal, a session manager) into a
// call on the event loop, so the agent quits in order and flushes its log. The handler only
// writes a byte into a pipe (the one thing a signal handler may safely do); the event loop reads
// it. One instance per process.
class TerminationSignals {
public:
    TerminationSignals() = default;
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // False when no pipe could be made: the signals then keep their default effect.
    bool quitOn(std::function<void()> quit);

private:
    std::function<void()> quit_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace paneforge
