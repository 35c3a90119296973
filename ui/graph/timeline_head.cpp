#include "ui/graph/timeline_head.h"

#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QPainter>
#include <cmath>

namespace flowtide {

namespace {
constexpr int padding = 12;
constexpr int buttonSize = 32;
constexpr int choiceHeight = 28;
constexpr double betweenTexts = 12;
} // namespace

TimelineHead::TimelineHead(TimelineContext& context, QWidget* parent)
    : QWidget(parent)
    , context_(context) {
    mode_ = new Choice(tr("Curve"),
                       {{tr("Speed"), QStringLiteral("curve"), theme::curve, {}},
                        {tr("Framing"), QStringLiteral("framing"), theme::framing, {}}},
                       this);
    mode_->onChoice = [this](int index) {
        context_.model().setEditorMode(index == 0 ? CurveEditorMode::speed : CurveEditorMode::cropCenter);
    };
    const auto button = [this](const QString& icon, const QString& name, const QString& tip,
                               TimelineContext::Step step) {
        auto* made = new IconButton(icon, name, tip, this);
        connect(made, &QAbstractButton::clicked, this, [this, step] { context_.zoom(step); });
        return made;
    };
    zoomOut_ = button(QStringLiteral("zoom-out"), tr("Zoom timeline out"), tr("Zoom timeline out (−)"),
                      TimelineContext::Step::out);
    fit_ = button(QStringLiteral("zoom-fit"), tr("Fit timeline"), keyNames::local(tr("Fit timeline (⇧Z)")),
                  TimelineContext::Step::fit);
    zoomIn_ = button(QStringLiteral("zoom-in"), tr("Zoom timeline in"), tr("Zoom timeline in (+)"),
                     TimelineContext::Step::in);
    connect(&context, &TimelineContext::lengthChangeChanged, this, qOverload<>(&QWidget::update));
    changes_ =
        context.model().subscribe(properties({Property::clip, Property::editorMode, Property::timelineZoom,
                                              Property::keyframes, Property::trimRange, Property::curveSmoothing}),
                                  [this](const PropertySet&) { refresh(); });
    refresh();
}

void TimelineHead::refresh() {
    const double zoom = context_.model().timeline().timelineZoom();
    mode_->setChosen(context_.isFraming() ? 1 : 0);
    zoomOut_->setEnabled(zoom > 1);
    fit_->setEnabled(zoom > 1);
    zoomIn_->setEnabled(zoom < largestTimelineZoom && context_.duration() > 0);
    if (context_.lengthBefore()) update();
}

void TimelineHead::resizeEvent(QResizeEvent*) {
    mode_->setGeometry(padding, (height() - choiceHeight) / 2, mode_->sizeHint().width(), choiceHeight);
    int right = width() - padding + (buttonSize - 20) / 2;
    for (IconButton* button : {zoomIn_, fit_, zoomOut_}) {
        button->setGeometry(right - buttonSize, (height() - buttonSize) / 2, buttonSize, buttonSize);
        right -= buttonSize + 4;
    }
}

void TimelineHead::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    if (!context_.lengthBefore() || !context_.model().clip()) return;
    using namespace theme;
    const double length = context_.model().curve().timeMap().outputDuration();
    const double change = length - *context_.lengthBefore();
    QRectF words(mode_->geometry().right() + padding, 0, 0, height());
    words.setRight(zoomOut_->x() - betweenTexts);
    const QString difference =
        tr("%1%2 s").arg(change < 0 ? QStringLiteral("−") : QStringLiteral("+")).arg(std::abs(change), 0, 'f', 3);
    drawLine(painter, words, Qt::AlignRight, Type::codeSmall, theme::curve, difference);
    words.setRight(words.right() - textWidth(Type::codeSmall, difference) - betweenTexts);
    const QString code = valueText::timeCode(length);
    drawLine(painter, words, Qt::AlignRight, Type::code, theme::text, code);
    words.setRight(words.right() - textWidth(Type::code, code) - betweenTexts);
    drawLine(painter, words, Qt::AlignRight, Type::small, text2, tr("Output"));
}

} // namespace flowtide
