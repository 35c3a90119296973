// The texts of the media layer's errors.
#include "media/flowtide_error.h"

namespace flowtide {

FlowtideError FlowtideError::readerFailed(const std::string& message) {
    return {Case::readerFailed, "Asset reader failed: " + message};
}
FlowtideError FlowtideError::writerFailed(const std::string& message) {
    return {Case::writerFailed, "Asset writer failed: " + message};
}
FlowtideError FlowtideError::compositionFailed(const std::string& message) {
    return {Case::compositionFailed, "Composition failed: " + message};
}
FlowtideError FlowtideError::proxyFailed(const std::string& message) {
    return {Case::proxyFailed, "Proxy failed: " + message};
}
FlowtideError FlowtideError::previewAudioFailed(const std::string& sentence) {
    return {Case::previewAudioFailed, sentence};
}
FlowtideError FlowtideError::validationFailed(const std::string& message) {
    return {Case::validationFailed,
            "Export validation failed: " + message + " The destination file was left untouched."};
}
FlowtideError FlowtideError::noVideoTrack() {
    return {Case::noVideoTrack, "No video track found in file."};
}
FlowtideError FlowtideError::noAudioTrack() {
    return {Case::noAudioTrack, "No audio track found in file."};
}
FlowtideError FlowtideError::exportCancelled() {
    return {Case::exportCancelled, "Export was cancelled."};
}
FlowtideError FlowtideError::invalidArgument(const std::string& sentence) {
    return {Case::invalidArgument, sentence};
}
FlowtideError FlowtideError::outputFailed(const std::string& sentence) {
    return {Case::outputFailed, sentence};
}
FlowtideError FlowtideError::trackingFailed(const std::string& sentence) {
    return {Case::trackingFailed, sentence};
}

} // namespace flowtide
