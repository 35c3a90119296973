#include "ui/viewer/picture_feed.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace flowtide {

namespace {

/// By then the player has a picture of its own, unless it is slow.
constexpr int posterDelayMilliseconds = 400;

} // namespace

QImage imageOf(const DisplayFrame& frame) {
    if (!frame) return {};
    auto owner = std::make_unique<std::shared_ptr<const void>>(frame.owner);
    const auto release = [](void* kept) {
        const std::unique_ptr<std::shared_ptr<const void>> freed(static_cast<std::shared_ptr<const void>*>(kept));
    };
    return {reinterpret_cast<const uchar*>(frame.pixels),
            frame.width,
            frame.height,
            static_cast<qsizetype>(frame.stride),
            QImage::Format_RGB32,
            release,
            owner.release()};
}

PictureFeed::PictureFeed(PreviewPlayer& player, FlowtideViewModel& model, PictureLoader& loader)
    : player_(player)
    , model_(model)
    , loader_(loader) {
    player_.onPicture = player_.onDisplay = [this] {
        if (player_.displayed()) poster_ = {};
        emit changed();
    };
    posterDelay_.setSingleShot(true);
    posterDelay_.setInterval(posterDelayMilliseconds);
    connect(&posterDelay_, &QTimer::timeout, this, &PictureFeed::loadPoster);
    changes_ =
        model_.subscribe(properties({Property::clip, Property::restPicture}), [this](const PropertySet& changes) {
            if (changes.test(static_cast<std::size_t>(Property::clip))) {
                poster_ = {};
                posterToken_.reset();
                if (model_.clip()) posterDelay_.start();
            }
            emit changed();
        });
}

PictureFeed::~PictureFeed() {
    player_.onPicture = player_.onDisplay = {};
}

std::optional<ShownPicture> PictureFeed::played() const {
    if (!model_.clip() || !player_.displayed() || !player_.displayed()->pixels) return std::nullopt;
    const DisplayedPicture& displayed = *player_.displayed();
    return ShownPicture{imageOf(displayed.pixels), displayed.picture.time, displayed.picture.isRendered};
}

std::optional<ShownPicture> PictureFeed::shown() const {
    const auto& rest = model_.restFrame().restPicture();
    if (rest && rest->picture)
        return ShownPicture{imageOf(rest->picture), std::nullopt, !model_.framing().isVerticalCropEnabled()};
    if (auto playing = played()) return playing;
    if (model_.clip() && !poster_.isNull()) return ShownPicture{poster_, std::nullopt, false};
    return std::nullopt;
}

std::string PictureFeed::failure() const {
    return player_.displayed() ? player_.displayed()->failure : std::string();
}

void PictureFeed::setRoom(const QObject& view, std::optional<Room> room) {
    const auto known = std::find_if(views_.begin(), views_.end(), [&](const View& each) { return each.view == &view; });
    if (!room) {
        if (known != views_.end()) views_.erase(known);
    } else if (known == views_.end()) {
        views_.push_back({&view, *room});
    } else {
        if (known->room == *room) return;
        known->room = *room;
    }
    apply();
}

void PictureFeed::apply() {
    if (views_.empty()) return player_.setDisplaySize(std::nullopt);
    player_.setDisplaySize(views_.back().room.played);
    model_.setRestPictureSize(views_.back().room.rest);
}

void PictureFeed::loadPoster() {
    if (!model_.clip() || views_.empty() || player_.displayed()) return;
    posterToken_ =
        loader_.load(model_.clip(), model_.playheadSeconds(), views_.back().room.rest, [this](const QImage& picture) {
            poster_ = player_.displayed() ? QImage() : picture;
            emit changed();
        });
}

} // namespace flowtide
