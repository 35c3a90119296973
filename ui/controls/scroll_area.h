// A part of a pane that scrolls up and down.
#pragma once

#include <QScrollArea>
#include <QScrollBar>

namespace flowtide {

/// With a slim bar that lies in the content's own padding, so that nothing moves when it comes and goes.
class SlimScrollArea final : public QScrollArea {
    Q_OBJECT

public:
    explicit SlimScrollArea(QWidget* parent = nullptr);

    /// The content takes the area's width and stands on its pane's ground.
    void setContent(QWidget* content);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void follow();

    QScrollBar* bar_; ///< child
};

} // namespace flowtide
