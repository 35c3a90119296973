#include "ui/controls/scroll_area.h"

#include <QSignalBlocker>

namespace flowtide {

namespace {
constexpr int barWidth = 6;
constexpr int barInset = 2;
} // namespace

SlimScrollArea::SlimScrollArea(QWidget* parent)
    : QScrollArea(parent)
    , bar_(new QScrollBar(Qt::Vertical, this)) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    bar_->setFocusPolicy(Qt::NoFocus);
    QScrollBar* own = verticalScrollBar();
    connect(own, &QScrollBar::rangeChanged, this, [this] { follow(); });
    connect(own, &QScrollBar::valueChanged, this, [this] { follow(); });
    connect(bar_, &QScrollBar::valueChanged, own, &QScrollBar::setValue);
    follow();
}

void SlimScrollArea::setContent(QWidget* content) {
    setWidget(content);
    content->setAutoFillBackground(false);
}

void SlimScrollArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    bar_->setGeometry(width() - barWidth - barInset, barInset, barWidth, height() - 2 * barInset);
    follow();
}

void SlimScrollArea::follow() {
    const QScrollBar* own = verticalScrollBar();
    {
        const QSignalBlocker quiet(*bar_);
        bar_->setRange(own->minimum(), own->maximum());
        bar_->setPageStep(own->pageStep());
        bar_->setSingleStep(own->singleStep());
        bar_->setValue(own->value());
    }
    bar_->setVisible(own->maximum() > own->minimum());
    bar_->raise();
}

} // namespace flowtide
