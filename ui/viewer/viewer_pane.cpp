#include "ui/viewer/viewer_pane.h"

#include "ui/viewer/chosen_frame.h"
#include "ui/viewer/comparison_view.h"
#include "ui/viewer/magnifier.h"
#include "ui/viewer/state_chip.h"
#include "ui/viewer/subject_panel.h"
#include "ui/viewer/video_surface.h"

#include <algorithm>

namespace flowtide {

ViewerPane::ViewerPane(SessionHost& host, QWidget* parent)
    : ViewerPane(host.model(), host.pictureFeed(), parent) {}

ViewerPane::ViewerPane(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , surface_(new VideoSurface(model, feed, this))
    , comparison_(new ComparisonView(model, feed, this))
    , state_(new StateChip(model, feed, this))
    , magnifier_(new Magnifier(this))
    , subject_(new SubjectPanel(model, this))
    , chosen_(new ChosenFrame(model, this)) {
    surface_->onHint = [this](const QString& hint) {
        if (onHint) onHint(hint);
    };
    surface_->onDrawingBox = [this](bool isDrawing) { subject_->setHiddenForDrawing(isDrawing); };
    state_->onResized = subject_->onResized = chosen_->onResized = [this] { place(); };
    magnifier_->onChoice = [this](std::optional<double> magnification) { surface_->magnify(magnification); };
    magnifier_->canMagnify = [this](double magnification) { return surface_->canMagnify(magnification); };
    changes_ = model_.subscribe(properties({Property::clip, Property::comparisonEnabled, Property::inspectionScale,
                                            Property::inspectionCenter, Property::isOpening}),
                                [this](const PropertySet&) { refresh(); });
    refresh();
}

bool ViewerPane::endTracking() {
    if (model_.tracking().selectingSubject() || model_.tracking().isTracking()) {
        model_.cancelTracking();
        return true;
    }
    return subject_->dismiss();
}

void ViewerPane::setFailuresToldElsewhere(bool areTold) {
    state_->setFailuresToldElsewhere(areTold);
}

bool ViewerPane::endComparison() {
    if (!model_.comparison().comparisonEnabled()) return false;
    model_.setComparisonEnabled(false);
    return true;
}

void ViewerPane::refresh() {
    const bool isComparing = model_.comparison().comparisonEnabled();
    // The focus stays in the viewer.
    if (isComparing && surface_->hasFocus()) comparison_->setFocus();
    if (!isComparing && comparison_->hasFocus()) surface_->setFocus();
    surface_->setVisible(!isComparing);
    magnifier_->setVisible(model_.clip() && !isComparing);
    magnifier_->showMagnification(model_.timeline().inspectionScale() > 1 ? surface_->magnification() : std::nullopt);
    place();
}

void ViewerPane::resizeEvent(QResizeEvent*) {
    surface_->setGeometry(rect());
    comparison_->setGeometry(rect());
    place();
}

void ViewerPane::place() {
    constexpr int margin = VideoSurface::clearance;
    const QRectF picture = surface_->place().picture;
    // The comparison has its own words in the corners.
    const bool isComparing = model_.comparison().comparisonEnabled();
    state_->move(margin, isComparing ? height() : margin);
    // Its words stand where the margin ends.
    magnifier_->move(width() - margin + Magnifier::padding - magnifier_->width(), margin);
    state_->setOnPicture(picture.intersects(state_->geometry()));
    magnifier_->setOnPicture(picture.intersects(magnifier_->geometry()));
    chosen_->move(margin - ChosenFrame::padding, margin - ChosenFrame::padding);
    chosen_->setOnPicture(picture.intersects(chosen_->geometry()));
    const int bottom = std::min(static_cast<int>(picture.bottom()), height() - margin) - margin;
    subject_->move((width() - subject_->width()) / 2, std::max(bottom - subject_->height(), margin));
    for (QWidget* above : {static_cast<QWidget*>(chosen_), static_cast<QWidget*>(state_),
                           static_cast<QWidget*>(magnifier_), static_cast<QWidget*>(subject_)})
        above->raise();
}

} // namespace flowtide
