#include "ui/qt_scheduler.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <cmath>

namespace flowtide {

QtScheduler::QtScheduler() {
    clock_.start();
}

QtScheduler::~QtScheduler() {
    timers_.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

double QtScheduler::now() const {
    return static_cast<double>(clock_.nsecsElapsed()) / 1e9;
}

void QtScheduler::post(Task task) {
    QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection);
}

Scheduler::TaskID QtScheduler::add(double seconds, Task task, bool isOnce) {
    const TaskID id = ++lastID_;
    // A timer may be cancelled by its own task, while it is firing.
    std::unique_ptr<QTimer, void (*)(QTimer*)> timer(new QTimer, [](QTimer* gone) {
        gone->stop();
        gone->disconnect();
        gone->deleteLater();
    });
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(isOnce);
    timer->setInterval(static_cast<int>(std::lround(seconds * 1000)));
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [this, id, isOnce, run = std::move(task)] {
        const Task held = run;
        if (isOnce) timers_.erase(id);
        held();
    });
    timer->start();
    timers_.emplace(id, std::move(timer));
    return id;
}

} // namespace flowtide
