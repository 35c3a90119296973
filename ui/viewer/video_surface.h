// The picture, in pixels of the display, and what lies on it.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/drag_guard.h"
#include "ui/viewer/crop_overlay.h"
#include "ui/viewer/picture_feed.h"
#include "ui/viewer/picture_layer.h"
#include "ui/viewer/subject_overlay.h"
#include "ui/viewer/viewer_geometry.h"
#include "ui/viewer/zoom_target.h"

#include <QWidget>
#include <array>
#include <functional>
#include <optional>

namespace flowtide {

class VideoSurface final : public QWidget {
    Q_OBJECT

public:
    static constexpr int clearance = 12; ///< free on each side of the picture

    VideoSurface(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent = nullptr);
    ~VideoSurface() override;

    /// The sentence about what the pointer is on; empty when it has left.
    std::function<void(const QString& hint)> onHint;
    /// A box around a subject is being drawn, or no longer.
    std::function<void(bool isDrawing)> onDrawingBox;

    /// Shows a pixel of the clip on so many of the display; nothing: all of the picture. Kept when the room changes.
    void magnify(std::optional<double> magnification);
    std::optional<double> magnification() const { return magnification_; }
    /// Whether that would show more of it than all.
    bool canMagnify(double magnification) const;

    PicturePlace place() const;
    /// What lies on the picture and where, in words.
    QString spokenValue() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void refresh(const PropertySet& changed);
    void paintPicture(QPainter& painter, const PicturePlace& place) const;
    void askForPictures();
    QSize deviceSize() const;
    int deviceClearance() const;
    std::optional<QSize> clipSize() const;
    Inspection inspection() const;
    ZoomEngine::ZoomState zoomOf(const ShownPicture& picture) const;
    PictureLayer* layerAt(QPointF at) const;
    void pan(QPointF travel);
    void release(bool isCancelled);
    void cancelDrag();
    void showPointer(QPointF at);

    FlowtideViewModel& model_;
    PictureFeed& feed_;
    SubjectOverlay subject_;
    ZoomTarget target_;
    CropOverlay crop_;
    std::array<PictureLayer*, 3> layers_{&subject_, &target_, &crop_}; ///< in the order in which presses are offered
    std::optional<double> magnification_;
    bool isPressed_ = false;
    bool isDragging_ = false;
    PictureLayer* held_ = nullptr;
    QPointF pressed_;
    Qt::KeyboardModifiers modifiers_; ///< of the press
    QPointF last_;
    Inspection inspectionBefore_; ///< a drag
    DragGuard guard_{[this] { cancelDrag(); }};
    double chosenAt_ = 0; ///< the playhead when choosing a subject began
    bool wasChoosing_ = false;
    double scale_ = 0; ///< device pixels, when pictures were last asked for
    Subscription changes_;
};

} // namespace flowtide
