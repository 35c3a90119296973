#include "ui/picture_loader.h"

#include "media/preview/source_frame_engine.h"

#include <QMetaObject>
#include <exception>
#include <utility>

namespace flowtide {

/// Frames of the clip and the size that were asked for last.
class PictureLoader::Engine {
public:
    QImage picture(const MediaBackend& backend, const std::shared_ptr<const ImportedClip>& clip, double sourceSeconds,
                   OutputSize size) {
        if (clip != clip_ || size != size_ || !frames_) {
            frames_ = std::make_unique<SourceFrameEngine>(backend, clip, size);
            clip_ = clip;
            size_ = size;
        }
        const SourceFrame frame = frames_->frame({sourceSeconds});
        const DisplayFrame& picture = frame.picture;
        // A copy: the engine's memory is for its next frames.
        return QImage(reinterpret_cast<const uchar*>(picture.pixels), picture.width, picture.height,
                      static_cast<qsizetype>(picture.stride), QImage::Format_RGB32)
            .copy();
    }

private:
    std::shared_ptr<const ImportedClip> clip_;
    OutputSize size_;
    std::unique_ptr<SourceFrameEngine> frames_;
};

PictureLoader::PictureLoader(const MediaBackend& backend)
    : backend_(backend)
    , engine_(std::make_unique<Engine>())
    , thread_([this] { work(); }) {}

PictureLoader::~PictureLoader() {
    {
        const std::scoped_lock guard(lock_);
        isEnding_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

PictureLoader::Token PictureLoader::load(std::shared_ptr<const ImportedClip> clip, double sourceSeconds,
                                         OutputSize size, Receiver receiver) {
    return add(ofClip_, {std::move(clip), sourceSeconds, size, std::move(receiver), {}});
}

PictureLoader::Token PictureLoader::load(std::filesystem::path file, double sourceSeconds, OutputSize size,
                                         Receiver receiver) {
    return add(ofFiles_, {std::move(file), sourceSeconds, size, std::move(receiver), {}});
}

PictureLoader::Token PictureLoader::add(std::deque<Request>& queue, Request request) {
    auto token = std::make_shared<char>();
    request.wanted = token;
    {
        const std::scoped_lock guard(lock_);
        queue.push_back(std::move(request));
    }
    changed_.notify_all();
    return token;
}

QImage PictureLoader::fetch(const Request& request) {
    try {
        if (const auto* clip = std::get_if<std::shared_ptr<const ImportedClip>>(&request.source))
            return engine_->picture(backend_, *clip, request.sourceSeconds, request.size);
        const auto clip = std::make_shared<const ImportedClip>(
            ImportedClip::load(backend_, std::get<std::filesystem::path>(request.source)));
        return engine_->picture(backend_, clip, request.sourceSeconds, request.size);
    } catch (const std::exception&) {
        // A clip that cannot be read says so where it is opened; here its place stays empty.
        return {};
    }
}

void PictureLoader::work() {
    std::unique_lock guard(lock_);
    for (;;) {
        changed_.wait(guard, [this] { return isEnding_ || !ofClip_.empty() || !ofFiles_.empty(); });
        if (isEnding_) return;
        std::deque<Request>& queue = ofClip_.empty() ? ofFiles_ : ofClip_;
        Request request = std::move(queue.front());
        queue.pop_front();
        if (request.wanted.expired()) continue;
        guard.unlock();
        QImage picture = fetch(request);
        QMetaObject::invokeMethod(
            this,
            [picture = std::move(picture), receiver = std::move(request.receiver), wanted = std::move(request.wanted)] {
                if (!wanted.expired()) receiver(picture);
            },
            Qt::QueuedConnection);
        guard.lock();
    }
}

} // namespace flowtide
