// The error of the media layer and the command line.
#pragma once

#include <stdexcept>
#include <string>

namespace flowtide {

/// A failure whose what() is the complete sentence to show.
class FlowtideError : public std::runtime_error {
public:
    enum class Case {
        readerFailed,
        writerFailed,
        compositionFailed,
        proxyFailed,
        previewAudioFailed, ///< described by its bare sentence
        validationFailed,
        noVideoTrack,
        noAudioTrack,
        exportCancelled,
        invalidArgument, ///< the command line; described by its bare sentence
        outputFailed,    ///< standard output; likewise
        trackingFailed,  ///< likewise
    };

    static FlowtideError readerFailed(const std::string& message);
    static FlowtideError writerFailed(const std::string& message);
    static FlowtideError compositionFailed(const std::string& message);
    static FlowtideError proxyFailed(const std::string& message);
    static FlowtideError previewAudioFailed(const std::string& sentence);
    /// The description adds that the destination file was left untouched.
    static FlowtideError validationFailed(const std::string& message);
    static FlowtideError noVideoTrack();
    static FlowtideError noAudioTrack();
    static FlowtideError exportCancelled();
    static FlowtideError invalidArgument(const std::string& sentence);
    static FlowtideError outputFailed(const std::string& sentence);
    static FlowtideError trackingFailed(const std::string& sentence);

    Case kind() const { return case_; }

private:
    FlowtideError(Case errorCase, const std::string& description)
        : std::runtime_error(description)
        , case_(errorCase) {}
    Case case_;
};

} // namespace flowtide
