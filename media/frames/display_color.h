// What the codes of a picture become on the display: the curves and tables behind the row kernels.
#pragma once

#include "media/frames/display_kernels.h"
#include "media/imported_clip.h"
#include "media/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace flowtide {

/// What the codes of a picture mean. It belongs to the clip: a smaller copy of its pictures keeps it.
struct PictureColor {
    ColorProperties tags; ///< complete
    std::optional<MasteringDisplay> masteringDisplay;
    std::optional<ContentLightLevel> contentLightLevel;
    friend bool operator==(const PictureColor&, const PictureColor&) = default;
};

/// A clip's colour, its missing tags inferred from its encoded size.
PictureColor pictureColor(const ImportedClip& clip);

/// Turns rows of YCbCr samples into pixels as DisplayConverter says. Immutable; building one takes about a millisecond.
class DisplayColor {
public:
    /// For samples of `layout`'s depth and range, multiplied up to 16 bits.
    DisplayColor(const PictureColor& color, PixelLayout layout, InstructionSet instructions = bestInstructionSet());

    /// `count` pixels 0xffRRGGBB.
    void convertRow(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr, std::size_t count,
                    std::uint32_t* pixels) const;

private:
    struct Tables {
        std::vector<float> decode;
        std::vector<float> systemGain;
        std::vector<float> toneCurve;
        std::vector<std::uint8_t> encode;
        display::LinearLight light; ///< on the vectors above
    };
    static Tables tablesFor(const PictureColor& color);

    display::RowKernels kernels_;
    display::YCbCrMatrix matrix_;
    std::optional<Tables> tables_; ///< absent where R'G'B' are the display's own
};

} // namespace flowtide
