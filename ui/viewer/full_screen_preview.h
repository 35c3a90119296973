// The picture alone, on the whole screen.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>
#include <functional>
#include <optional>

class QGraphicsOpacityEffect;

namespace flowtide {

class FullScreenControls;

/// A window of its own, which shows what will be exported: of a cropped clip the crop alone. Its controls come with a
/// movement of the pointer and go when it rests.
class FullScreenPreview final : public QWidget {
    Q_OBJECT

public:
    static constexpr int restMilliseconds = 2500;

    FullScreenPreview(SessionHost& host, std::function<void(Command)> perform);
    FullScreenPreview(FlowtideViewModel& model, PictureFeed& feed, std::function<void(Command)> perform);
    ~FullScreenPreview() override;

    void open(const QWidget& beside);
    void leave();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;

private:
    /// What is shown, and where: device pixels.
    struct Frame {
        QRect place;
        QRectF crop;    ///< the exported part, fractions
        OutputSize box; ///< what the whole frame is to be made to fit into
    };
    std::optional<Frame> frame() const;
    void askForPictures();
    void showControls(bool areShown);

    FlowtideViewModel& model_;
    PictureFeed& feed_;
    FullScreenControls* controls_;
    QGraphicsOpacityEffect* opacity_; ///< of the controls
    QVariantAnimation fade_;
    double shown_ = 0; ///< of the controls, 0...1
    QTimer rest_;
    std::optional<QPoint> pointer_;
    Subscription changes_;
};

} // namespace flowtide
