#include "app/runtime/qt_scheduler.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cmath>

namespace paneforge {

namespace {

// The timer belongs to the scheduler's context object, not to the handle: dropping the handle
// leaves the work scheduled, as the interface promises.
class TimerWork final : public ScheduledWork {
public:
    TimerWork(QObject* context, double seconds, bool repeats, Scheduler::Task task)
        : active_(std::make_shared<bool>(true))
        , timer_(new QTimer(context)) {
        timer_->setSingleShot(!repeats);
        timer_->setTimerType(Qt::PreciseTimer);
        timer_->setInterval(static_cast<int>(std::lround(std::max(0.0, seconds) * 1000.0)));
        QTimer* timer = timer_;
        QObject::connect(timer, &QTimer::timeout, timer,
                         [active = active_, timer, repeats, task = std::move(task)] {
                             if (!*active) {
                                 return;
                             }
                             if (!repeats) {
                                 *active = false;
                                 timer->deleteLater();
                             }
                             task();
                         });
        timer_->start();
    }

    void cancel() override {
        if (!*active_) {
            return;
        }
        *active_ = false;
        if (timer_) {
            timer_->stop();
            timer_->deleteLater();
        }
    }
    bool isActive() const override { return *active_; }

private:
    std::shared_ptr<bool> active_;
    QPointer<QTimer> timer_;
};

} // namespace

QtScheduler::QtScheduler(QObject* context)
    : context_(context ? context : QCoreApplication::instance()) {}

void QtScheduler::post(Task task) {
    QMetaObject::invokeMethod(context_, std::move(task), Qt::QueuedConnection);
}

ScheduledWorkHandle QtScheduler::postAfter(double seconds, Task task) {
    return std::make_shared<TimerWork>(context_, seconds, false, std::move(task));
}

ScheduledWorkHandle QtScheduler::repeatEvery(double seconds, Task task) {
    return std::make_shared<TimerWork>(context_, seconds, true, std::move(task));
}

} // namespace paneforge
