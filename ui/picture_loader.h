// Small pictures of clips, for strips and lists, fetched in the background.
#pragma once

#include "core/output_size.h"
#include "media/imported_clip.h"
#include "media/media_io.h"

#include <QImage>
#include <QObject>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <variant>

namespace flowtide {

/// One thread, which takes the requests of one kind in order; those of the open clip before those of others. Called and
/// calls back on the main thread.
class PictureLoader final : public QObject {
public:
    /// The picture; null when there is none to be had. Not called for requests that were given up.
    using Receiver = std::function<void(const QImage& picture)>;
    /// Gives its requests up when it goes.
    using Token = std::shared_ptr<const void>;

    /// The backend must outlive it.
    explicit PictureLoader(const MediaBackend& backend);
    ~PictureLoader() override;

    /// The frame that a clip shows at a time, drawn to fit into `size` pixels. Wanted as long as the token lives.
    [[nodiscard]] Token load(std::shared_ptr<const ImportedClip> clip, double sourceSeconds, OutputSize size,
                             Receiver receiver);
    /// The same of a file, which is probed first.
    [[nodiscard]] Token load(std::filesystem::path file, double sourceSeconds, OutputSize size, Receiver receiver);

private:
    using Source = std::variant<std::shared_ptr<const ImportedClip>, std::filesystem::path>;
    struct Request {
        Source source;
        double sourceSeconds;
        OutputSize size;
        Receiver receiver;
        std::weak_ptr<const void> wanted;
    };
    Token add(std::deque<Request>& queue, Request request);
    void work();
    QImage fetch(const Request& request);

    const MediaBackend& backend_;
    std::mutex lock_; ///< guards what follows, to the thread
    std::condition_variable changed_;
    std::deque<Request> ofClip_;
    std::deque<Request> ofFiles_;
    bool isEnding_ = false;
    class Engine;
    std::unique_ptr<Engine> engine_; ///< the thread's alone
    std::thread thread_;
};

} // namespace flowtide
