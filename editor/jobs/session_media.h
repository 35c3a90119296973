// What a session asks of the media layer.
#pragma once

#include "core/subject_box.h"
#include "core/subject_track.h"
#include "core/uuid.h"
#include "media/cancel_check.h"
#include "media/export/export_frame_engine.h"
#include "media/export/export_request.h"
#include "media/export/export_validation.h"
#include "media/imported_clip.h"
#include "media/preview/source_frame_engine.h"
#include "media/sound/audio_decoding.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// A subject in one frame, to be looked at.
struct SubjectView {
    double time = 0;               ///< source seconds
    std::optional<SubjectBox> box; ///< nothing while it is looked for
    DisplayFrame picture;          ///< of the whole frame, perhaps smaller; may be null
};

/// Progress of a track.
struct TrackingProgress {
    double fraction = 0;                             ///< 0...0.99
    bool isLooking = false;                          ///< the subject is lost and looked for
    std::vector<SubjectTrackResult::Sample> samples; ///< found since the last progress, away from the chosen frame
    std::shared_ptr<const SubjectView> view;         ///< the frame that was looked at last; null: none to be shown
};

/// The long operations, each a call that blocks until it is done. Called off the main thread, several at a time; they
/// throw FlowtideError or ProjectError with the sentence to show. Those that take a CancelCheck throw
/// FlowtideError::exportCancelled once it says so.
class SessionMedia {
public:
    virtual ~SessionMedia() = default;

    virtual ImportedClip loadClip(const std::filesystem::path& path) = 0;
    /// The clip's fingerprint.
    virtual std::string fingerprint(const std::filesystem::path& path) = 0;
    virtual ExportValidationReport exportClip(const ExportRequest& request,
                                              const std::function<void(double)>& onProgress,
                                              const CancelCheck& isCancelled) = 0;
    /// The proxy's file, which the session owns.
    virtual std::filesystem::path makeProxy(const ImportedClip& clip, const std::function<void(double)>& onProgress,
                                            const CancelCheck& isCancelled) = 0;
    /// Renders a preview into the file of that id, which stands in for the request's own destination, and returns it.
    virtual std::filesystem::path renderPreview(const Uuid& id, ExportRequest request,
                                                const std::function<void(double)>& onProgress,
                                                const CancelCheck& isCancelled) = 0;
    /// Removes a preview's file, if it is there. Any thread.
    virtual void removePreview(const std::filesystem::path& file) noexcept = 0;
    /// All of the sound of a clip that has some.
    virtual AudioData loadSound(const ImportedClip& clip, const CancelCheck& isCancelled) = 0;
    /// The frame shown at a source time, drawn to fit into `maximumSize`.
    virtual SourceFrame sourceFrame(const std::shared_ptr<const ImportedClip>& clip, SourceSeconds time,
                                    OutputSize maximumSize) = 0;
    /// What an export has at an output time, drawn to fit into `maximumSize`.
    virtual ExportPicture exportPicture(const ExportRequest& request, OutputSeconds time, OutputSize maximumSize,
                                        const CancelCheck& isCancelled) = 0;
    virtual SubjectTrackResult track(const ImportedClip& clip, SourceSeconds seedTime, const SubjectBox& seedBox,
                                     SourceRange range, const std::function<void(TrackingProgress)>& onProgress,
                                     const CancelCheck& isCancelled) = 0;
};

} // namespace flowtide
