#include "ui/viewer/subject_panel.h"

#include "ui/accessible_role.h"
#include "ui/icons.h"
#include "ui/session_text.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QPainter>
#include <algorithm>

namespace flowtide {

namespace {

constexpr int textPace = 250; ///< milliseconds
constexpr int padding = 12;
constexpr int signRoom = 44; ///< at the left
constexpr int gap = 16;

} // namespace

SubjectPanel::SubjectPanel(FlowtideViewModel& model, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , sentence_(new Paragraph(theme::Type::body, theme::text, {}, this))
    , share_(new LineLabel(theme::Type::body, theme::text, {}, this))
    , progress_(new ProgressBar(tr("Tracking"), theme::framing, this))
    , cancel_(new Button(ButtonKind::secondary, tr("Cancel"), {}, this))
    , close_(new IconButton(QStringLiteral("close"), tr("Dismiss"), tr("Dismiss"), this, 24)) {
    setAccessibleName(tr("Subject tracking"));
    setAccessibleRole(*this, QAccessible::Grouping);
    share_->setTabular(true);
    share_->setAlignment(Qt::AlignRight);
    cancel_->setCursor(Qt::ArrowCursor);
    setCursor(Qt::ArrowCursor);
    connect(cancel_, &Button::clicked, this, [this] { model_.cancelTracking(); });
    connect(close_, &IconButton::clicked, this, [this] { dismiss(); });
    progressPace_.setSingleShot(true);
    progressPace_.setInterval(textPace);
    connect(&progressPace_, &QTimer::timeout, this, &SubjectPanel::showProgress);
    changes_ = model_.subscribe(properties({Property::selectingSubject, Property::isTracking, Property::trackingMessage,
                                            Property::trackingProgress}),
                                [this](const PropertySet& changed) {
                                    if (changed == properties({Property::trackingProgress})) {
                                        if (!progressPace_.isActive()) progressPace_.start();
                                    } else {
                                        refresh();
                                    }
                                });
    refresh();
}

bool SubjectPanel::isWanted() const {
    return model_.clip() && model_.tracking().trackingMessage() && !isDrawing_;
}

bool SubjectPanel::dismiss() {
    const TrackingJob& tracking = model_.tracking();
    if (!tracking.trackingMessage() || tracking.isTracking() || tracking.selectingSubject()) return false;
    model_.dismissTrackingMessage();
    return true;
}

void SubjectPanel::setHiddenForDrawing(bool isDrawing) {
    isDrawing_ = isDrawing;
    refresh();
}

void SubjectPanel::showProgress() {
    share_->setText(valueText::percent(model_.tracking().trackingProgress()));
    progress_->setShare(model_.tracking().trackingProgress());
}

void SubjectPanel::refresh() {
    const TrackingJob& tracking = model_.tracking();
    setVisible(isWanted());
    if (!isWanted()) return;
    sentence_->setText(sessionText(*tracking.trackingMessage()));
    const bool isFollowing = tracking.isTracking();
    const bool isUnderWay = isFollowing || tracking.selectingSubject();
    cancel_->setVisible(isUnderWay);
    close_->setVisible(!isUnderWay);
    share_->setVisible(isFollowing);
    progress_->setVisible(isFollowing);
    if (isFollowing) showProgress();

    const QSize button = isUnderWay ? cancel_->sizeHint() : close_->sizeHint();
    const int buttonLeft = panelWidth - padding - button.width();
    const int wordsWidth = buttonLeft - gap - signRoom;
    const int sentenceWidth = wordsWidth - (isFollowing ? 40 : 0);
    const int sentenceHeight = std::max(sentence_->heightForWidth(sentenceWidth), 16);
    const int wordsHeight = sentenceHeight + (isFollowing ? 8 + 4 : 0);
    const int height = std::max(wordsHeight, button.height()) + 2 * padding;
    const int top = (height - wordsHeight) / 2;
    sentence_->setGeometry(signRoom, top, sentenceWidth, sentenceHeight);
    share_->setGeometry(signRoom + sentenceWidth, top, 40, 16);
    progress_->setGeometry(signRoom, top + sentenceHeight + 8, wordsWidth, 4);
    cancel_->setGeometry(QRect(QPoint(buttonLeft, (height - button.height()) / 2), button));
    close_->move(buttonLeft, (height - button.height()) / 2);
    resize(panelWidth, height);
    if (onResized) onResized();
}

void SubjectPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    theme::drawBox(painter, rect(), theme::sheetRadius, theme::raised, theme::border);
    icons::draw(painter, QStringLiteral("track"), QRectF(0, 0, signRoom, height()), 20, theme::framing);
}

} // namespace flowtide
