// What reaches the window while something is dragged.
#pragma once

#include <QObject>
#include <functional>

namespace flowtide {

/// Between begin() and end() Esc cancels a drag, whatever it would end otherwise, and nothing else gets between it and
/// its release: no command, which might take away what is dragged, and no menu, which would take the release.
class DragGuard final : public QObject {
public:
    explicit DragGuard(std::function<void()> cancel);

    void begin();
    void end();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool keepsKey(int key, bool isOnlyAsked);

    std::function<void()> cancel_;
};

} // namespace flowtide
