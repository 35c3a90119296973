#include "ui/controls/choice.h"

#include "ui/accessible_role.h"
#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr int choiceHeight = 28;
constexpr int inset = 2;
constexpr double segmentPadding = 12;
constexpr double segmentIcon = 16;
constexpr double iconGap = 8;
} // namespace

class Choice::SegmentButton final : public QRadioButton {
public:
    SegmentButton(Segment segment, QWidget* parent)
        : QRadioButton(segment.text, parent)
        , segment_(std::move(segment)) {
        setAutoExclusive(true);
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setToolTip(segment_.tip);
    }

    QSize sizeHint() const override {
        const double icon = segment_.icon.isEmpty() ? 0 : segmentIcon + iconGap;
        const double width = theme::textWidth(theme::Type::label, segment_.text) + icon + 2 * segmentPadding;
        return {static_cast<int>(std::ceil(width)), choiceHeight - 2 * inset};
    }
    QSize minimumSizeHint() const override { return {sizeHint().width() - 16, choiceHeight - 2 * inset}; }

protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

    void paintEvent(QPaintEvent*) override {
        using namespace theme;
        QPainter painter(this);
        if (!isEnabled()) painter.setOpacity(0.5);
        const QColor ground = isChecked() ? controlHi : faded(raised, hover_.pressed());
        drawBox(painter, rect(), laneRadius, ground);
        const QColor ink = isChecked() ? theme::text : hover_.color(text2, theme::text, theme::text);
        const double words = textWidth(Type::label, segment_.text);
        const double icon = segment_.icon.isEmpty() ? 0 : segmentIcon + iconGap;
        double left = (width() - words - icon) / 2;
        if (icon > 0) {
            const QColor tint = isChecked() && segment_.color.isValid() ? segment_.color : ink;
            icons::draw(painter, segment_.icon, QRectF(left, 0, segmentIcon, height()), segmentIcon, tint);
            left += icon;
        }
        drawLine(painter, QRectF(left, 0, words, height()), Qt::AlignLeft, Type::label, ink, segment_.text);
    }

private:
    Segment segment_;
    Hover hover_{*this};
};

Choice::Choice(const QString& name, std::vector<Segment> segments, QWidget* parent)
    : QWidget(parent) {
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    setFixedHeight(choiceHeight);
    setFocusRing(*this, theme::controlRadius);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(inset, inset, inset, inset);
    row->setSpacing(inset);
    for (Segment& segment : segments) {
        auto* button = new SegmentButton(std::move(segment), this);
        const int index = static_cast<int>(buttons_.size());
        connect(button, &QRadioButton::clicked, this, [this, index] { choose(index); });
        row->addWidget(button);
        buttons_.push_back(button);
    }
    buttons_.front()->setChecked(true);
}

void Choice::setChosen(int index) {
    chosen_ = index;
    buttons_[static_cast<std::size_t>(index)]->setChecked(true);
}

void Choice::choose(int index) {
    if (index == chosen_) return;
    setChosen(index);
    if (onChoice) onChoice(index);
}

void Choice::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(buttons_.size()) - 1;
    const bool isBack = event->key() == Qt::Key_Left || event->key() == Qt::Key_Up;
    const bool isOn = event->key() == Qt::Key_Right || event->key() == Qt::Key_Down;
    if (event->modifiers() & ~Qt::KeypadModifier || (!isBack && !isOn)) return event->ignore();
    choose(std::clamp(chosen_ + (isBack ? -1 : 1), 0, last));
}

void Choice::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    theme::drawBox(painter, rect(), theme::controlRadius, theme::well);
}

} // namespace flowtide
