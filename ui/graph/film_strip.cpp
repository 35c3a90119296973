#include "ui/graph/film_strip.h"

#include "ui/theme.h"

#include <QPaintDevice>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr std::size_t mostPictures = 400;
constexpr double widestSlot = 1.5; ///< picture widths, before slots are halved

/// The middle part of a picture that has a box's shape; `pixelAspectRatio`: of the picture.
QRectF middlePart(const QImage& image, QSizeF box, double pixelAspectRatio) {
    const QSizeF whole(image.size());
    box.setWidth(box.width() / pixelAspectRatio);
    const QSizeF part = box.scaled(whole, Qt::KeepAspectRatio);
    return {QPointF((whole.width() - part.width()) / 2, (whole.height() - part.height()) / 2), part};
}

} // namespace

FilmSlots FilmSlots::of(const TimeAxis& axis, double pictureWidth) {
    FilmSlots film;
    if (axis.duration <= 0 || pictureWidth <= 0) return film;
    const int whole = std::max(static_cast<int>(std::lround(axis.width / pictureWidth)), 1);
    film.level = std::max(static_cast<int>(std::lround(std::log2(axis.zoom()))), 0);
    film.count = whole << film.level;
    film.seconds = axis.duration / film.count;
    film.first = std::clamp(static_cast<int>(std::floor(axis.start / film.seconds)), 0, film.count - 1);
    film.last = std::clamp(static_cast<int>(std::ceil(axis.end() / film.seconds)) - 1, film.first, film.count - 1);
    return film;
}

FilmStrip::FilmStrip(TimelineContext& context, std::function<void()> onPicture)
    : context_(context)
    , onPicture_(std::move(onPicture)) {}

void FilmStrip::reset() {
    pictures_.clear();
}

void FilmStrip::want(const FilmSlots& shown, OutputSize size) {
    PictureLoader* loader = context_.services().pictures;
    if (!loader) return;
    if (size != std::exchange(size_, size)) pictures_.clear();
    // What is awaited for another magnification is of no use any more.
    std::erase_if(pictures_, [&](const auto& each) {
        const bool isInSight =
            each.first.level == shown.level && each.first.slot >= shown.first && each.first.slot <= shown.last;
        return !isInSight && (each.second.image.isNull() || pictures_.size() > mostPictures);
    });
    for (int slot = shown.first; slot <= shown.last; ++slot) {
        const auto [at, isNew] = pictures_.try_emplace(Key{shown.level, slot});
        if (!isNew) continue;
        Picture& picture = at->second;
        picture.token =
            loader->load(context_.model().clip(), shown.middle(slot), size, [this, &picture](const QImage& image) {
                picture.image = image;
                onPicture_();
            });
    }
}

/// Its own, or that of the longer part of which it is a half.
const QImage* FilmStrip::pictureFor(Key key) const {
    for (; key.level >= 0; --key.level, key.slot /= 2) {
        const auto found = pictures_.find(key);
        if (found != pictures_.end() && !found->second.image.isNull()) return &found->second.image;
    }
    return nullptr;
}

void FilmStrip::paint(QPainter& painter, const QRectF& strip) {
    const auto& clip = context_.model().clip();
    if (!clip || clip->height <= 0) return;
    const TimeAxis& axis = context_.axis();
    const double pictureWidth = strip.height() * static_cast<double>(clip->width) *
                                clip->metadata.sampleAspectRatio.seconds() / static_cast<double>(clip->height);
    const FilmSlots film = FilmSlots::of(axis, pictureWidth);
    const double scale = painter.device()->devicePixelRatioF();
    const auto pixels = [&](double length) {
        return static_cast<std::int64_t>(std::ceil(length * widestSlot * scale));
    };
    want(film, {pixels(pictureWidth), pixels(strip.height())});

    painter.save();
    painter.setClipRect(strip, Qt::IntersectClip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int slot = film.first; slot <= film.last; ++slot) {
        const double left = axis.xOf(slot * film.seconds);
        const QRectF box = theme::onPixels(
            painter, QRectF(left, strip.top(), axis.xOf((slot + 1) * film.seconds) - left, strip.height()));
        if (const QImage* image = pictureFor({film.level, slot}))
            painter.drawImage(box, *image, middlePart(*image, box.size(), clip->metadata.sampleAspectRatio.seconds()));
        if (slot > 0) theme::drawHairline(painter, box, theme::Side::left, theme::well);
    }
    painter.restore();
}

} // namespace flowtide
