// What there is to be shown at the playhead, for everything that shows it.
#pragma once

#include "core/output_size.h"
#include "core/time.h"
#include "editor/flowtide_view_model.h"
#include "media/player/preview_player.h"
#include "ui/picture_loader.h"

#include <QImage>
#include <QObject>
#include <QTimer>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// The display's pixels as an image that shares them.
QImage imageOf(const DisplayFrame& frame);

/// A whole frame, in the display's pixels.
struct ShownPicture {
    QImage image;
    std::optional<OutputSeconds> time; ///< in the player's output; absent: the playhead's
    bool isZoomed = false;             ///< zoom blocks are in it already
};

/// Takes the player's callbacks for pictures, and has pictures made as large as the view that shows them. Main thread
/// only; player, model and loader outlive it.
class PictureFeed final : public QObject {
    Q_OBJECT

public:
    PictureFeed(PreviewPlayer& player, FlowtideViewModel& model, PictureLoader& loader);
    ~PictureFeed() override;

    /// What is made for the export where that stands, else what plays, else what the clip shows there; nothing before
    /// any of them has come.
    std::optional<ShownPicture> shown() const;
    /// What plays, whatever else there is.
    std::optional<ShownPicture> played() const;
    /// The sentence of a picture that could not be shown; empty when there is none.
    std::string failure() const;

    /// How large a view can show the whole frame, in device pixels, and how large what is made at rest, which is zoomed
    /// by then; nothing when it shows none. Of several views the one that has come last decides.
    struct Room {
        OutputSize played;
        OutputSize rest;
        friend bool operator==(const Room&, const Room&) = default;
    };
    void setRoom(const QObject& view, std::optional<Room> room);

signals:
    void changed();

private:
    struct View {
        const QObject* view;
        Room room;
    };
    void apply();
    void loadPoster();

    PreviewPlayer& player_;
    FlowtideViewModel& model_;
    PictureLoader& loader_;
    std::vector<View> views_;
    QTimer posterDelay_;
    PictureLoader::Token posterToken_;
    QImage poster_;
    Subscription changes_;
};

} // namespace flowtide
