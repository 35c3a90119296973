// Esc while something is dragged.
#pragma once

#include <QObject>
#include <functional>

namespace flowtide {

/// Between begin() and end() Esc cancels a drag, whatever it would end otherwise.
class DragEscape final : public QObject {
public:
    explicit DragEscape(std::function<void()> cancel);

    void begin();
    void end();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void()> cancel_;
};

} // namespace flowtide
