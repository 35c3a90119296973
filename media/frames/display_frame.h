// Decoded pictures as a window shows them: turned upright, scaled, and in the display's pixels.
#pragma once

#include "core/output_size.h"
#include "media/frames/display_color.h"
#include "media/orientation.h"
#include "media/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace flowtide {

/// A picture for the display, shared by reference. Nobody writes to it once it has been handed on.
struct DisplayFrame {
    int width = 0; ///< pixels, upright
    int height = 0;
    const std::uint32_t* pixels = nullptr; ///< 0xffRRGGBB, in the machine's byte order
    std::ptrdiff_t stride = 0;             ///< bytes from row to row
    std::shared_ptr<const void> owner;     ///< keeps the pixels alive

    explicit operator bool() const { return owner != nullptr; }
};

/// The size of a picture of `displayed` pixels drawn as large as `box` holds, its proportions kept; at least 1 × 1.
OutputSize fittedSize(OutputSize displayed, OutputSize box);
/// The same, but never larger than it is.
OutputSize shrunkSize(OutputSize displayed, OutputSize box);

/// Converts frames for a display that shows BT.709 video as it is. Each plane is resampled once, at its own siting
/// (Catmull-Rom for luma, linear for chroma), straight to the wanted size. Then:
///
/// - BT.709 and BT.601 pictures: matrix and range, nothing else.
/// - Wider primaries (BT.2020, P3) in SDR: decoded with BT.1886 (γ = 2.4), converted to BT.709's primaries in linear
///   light, clipped to them, encoded with the same γ.
/// - PQ: decoded with the EOTF of SMPTE ST 2084. HLG: inverse OETF and OOTF of BT.2100 for a peak of 1000 cd/m²
///   (system γ = 1.2). Tone-mapped with the EETF of BT.2390 on the largest of R, G and B, from the source's peak
///   (mastering display and content light level, 1000 cd/m² when neither is known) to 203 cd/m², the reference white
///   of BT.2408. The knee is at 2·white − 1 of the PQ range (BT.2390 recommends 1.5·white − 0.5), for bright masters at
///   36 cd/m² or what BT.2390 recommends: phones put white paper at 400 to 550 cd/m², and with the recommended knee it
///   and the greys next to it become one. From a peak of 1000, everything below 36 cd/m² keeps its luminance, reference
///   white comes to 84 % of the display's code range, and highlights share the rest. Then primaries and γ as above.
///
/// Keeps tables, filters and memory from frame to frame. One thread at a time, any thread.
class DisplayConverter {
public:
    DisplayConverter();
    ~DisplayConverter();
    DisplayConverter(const DisplayConverter&) = delete;
    DisplayConverter& operator=(const DisplayConverter&) = delete;

    /// The whole picture, turned and flipped as `orientation` says (quarter turns and flips; anything else counts as
    /// none) and drawn to fill `size`, which is upright and at least 1 × 1. The result's memory comes back for later
    /// frames when its last share is gone; it may outlive the converter. Throws FlowtideError::compositionFailed when a
    /// picture cannot be resampled, std::bad_alloc.
    DisplayFrame convert(const VideoFrame& frame, const PictureColor& color, const AffineTransform& orientation,
                         OutputSize size);

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace flowtide
