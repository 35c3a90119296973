// The picture and what lies on it.
#pragma once

#include "ui/session_host.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class ChosenFrame;
class ComparisonView;
class Magnifier;
class StateChip;
class SubjectPanel;
class VideoSurface;

class ViewerPane final : public QWidget {
    Q_OBJECT

public:
    explicit ViewerPane(SessionHost& host, QWidget* parent = nullptr);
    ViewerPane(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent = nullptr);

    /// The sentence for the line under the graph while the pointer is on the picture; empty when it has left.
    std::function<void(const QString& hint)> onHint;
    /// Esc: ends choosing or tracking a subject, or takes back what that had to say; false when there is none.
    bool endTracking();
    bool endComparison();
    /// Whether it is said beside the picture why a preview has failed: nothing is said twice.
    void setFailuresToldElsewhere(bool areTold);

    VideoSurface& surface() { return *surface_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void place();

    FlowtideViewModel& model_;
    VideoSurface* surface_;
    ComparisonView* comparison_;
    StateChip* state_;
    Magnifier* magnifier_;
    SubjectPanel* subject_;
    ChosenFrame* chosen_;
    Subscription changes_;
};

} // namespace flowtide
