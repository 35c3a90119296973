// The original frame beside the retimed one.
#pragma once

#include "core/zoom_engine.h"
#include "editor/flowtide_view_model.h"
#include "ui/controls/drag_guard.h"
#include "ui/motion.h"
#include "ui/viewer/picture_feed.h"

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QTimer>
#include <QWidget>
#include <optional>

namespace flowtide {

/// Two panes that show the same part of both pictures; a drag pans both.
class ComparisonView final : public QWidget {
    Q_OBJECT

public:
    static constexpr int clearance = 12;
    static constexpr int paneGap = 4;

    ComparisonView(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent);
    ~ComparisonView() override;

    /// Pans by steps of the keyboard.
    void nudge(int x, int y, bool isShifted);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Panes {
        QRect original; ///< device pixels
        QRect retimed;
    };
    void refresh();
    void askForPictures();
    Panes panes() const;
    std::optional<QSize> clipSize() const;
    QPointF pan() const;
    void panBy(QPointF travel);
    void cancelDrag();
    void drawPane(QPainter& painter, const QRect& pane, const QImage& image, const ZoomEngine::ZoomState& zoom) const;
    void drawWords(QPainter& painter, const QRectF& original, const QRectF& retimed);

    FlowtideViewModel& model_;
    PictureFeed& feed_;
    std::optional<QPointF> pan_; ///< the user's; until then where the crop is
    std::optional<QPointF> dragged_;
    std::optional<QPointF> panBefore_; ///< the drag
    DragGuard guard_{[this] { cancelDrag(); }};
    Fade hint_;
    QTimer wait_;
    bool isLate_ = false; ///< the first pair has not come within a moment
    Subscription changes_;
};

} // namespace flowtide
