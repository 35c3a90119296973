// A timeline in a window, on an editor session with a script.
#pragma once

#include "tests/support/session_stage.h"
#include "ui/graph/timeline_pane.h"

#include <QTest>
#include <cmath>
#include <functional>
#include <memory>

namespace flowtide::test {

/// A timeline of 1088 pixels: 100 for each of the clip's ten seconds.
class TimelineStage : public SessionStage {
protected:
    void SetUp() override {
        motion::setReduced(true);
        open();
        window = std::make_unique<QWidget>();
        window->resize(1088, 900);
        pane =
            new TimelinePane(TimelineServices{*model, points, scheduler, nullptr, [] { return 30.0; }}, window.get());
        pane->setGeometry(0, 466, 1088, 434);
        window->show();
        settle();
    }
    void TearDown() override { window.reset(); }

    void settle() {
        scheduler.settle();
        QCoreApplication::processEvents();
    }
    template <typename Part>
    Part* part() const {
        return pane->findChild<Part*>();
    }
    /// In the graph.
    static QPoint place(double seconds, double speed) {
        const double height = (std::log10(speed) + 1) / (std::log10(4.0) + 1);
        return {static_cast<int>(44 + seconds * 100), static_cast<int>(std::lround(216 - height * 200))};
    }
    void drag(QWidget* widget, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {},
              const std::function<void()>& meanwhile = {}) {
        QTest::mousePress(widget, Qt::LeftButton, modifiers, from);
        settle();
        for (const QPoint& at : {(from + to) / 2, to}) {
            QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, modifiers);
            QCoreApplication::sendEvent(widget, &move);
            settle();
        }
        if (meanwhile) meanwhile();
        QTest::mouseRelease(widget, Qt::LeftButton, modifiers, to);
        settle();
    }
    const SpeedKeyframes& keyframes() const { return model->curve().keyframes(); }

    PointSelection points;
    std::unique_ptr<QWidget> window;
    TimelinePane* pane = nullptr; ///< in the window
};

} // namespace flowtide::test
