// Says in the viewer's corner what its picture is.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/viewer/picture_feed.h"

#include <QColor>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace flowtide {

/// What the chip has to say; nothing when it is empty.
struct PictureState {
    enum class Dot { none, grey, dim, flow, flowRing };
    QString words;
    Dot dot = Dot::none;
    bool waits = false; ///< said only after a moment: most waits are shorter
    friend bool operator==(const PictureState&, const PictureState&) = default;

    static PictureState of(const FlowtideViewModel& model);
    /// "2x forward"; empty at the usual speed and at rest.
    static QString shuttle(double rate);
};

class StateChip final : public QWidget {
    Q_OBJECT

public:
    static constexpr int waitMilliseconds = 200;

    StateChip(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent);

    /// Whether it lies on the picture.
    void setOnPicture(bool isOnPicture);
    /// As ViewerPane has it.
    void setFailuresToldElsewhere(bool areTold);
    /// Called when it has got another width.
    std::function<void()> onResized;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    void show(const PictureState& state);

    FlowtideViewModel& model_;
    PictureFeed& feed_;
    PictureState wanted_;
    PictureState shown_;
    bool isOnPicture_ = false;
    bool failuresAreToldElsewhere_ = false;
    QTimer wait_;
    Subscription changes_;
};

} // namespace flowtide
