// The inner loops of motion estimation and drawing, behind a table that is chosen for the machine. Every set of
// instructions gives the same bytes.
#pragma once

#include "media/instruction_set.h"

#include <cstddef>
#include <cstdint>

namespace flowtide::flow {

/// Motion in 64ths of a half-resolution pixel.
struct MotionVector {
    std::int16_t x;
    std::int16_t y;
};
constexpr int motionUnits = 64;

/// An 8-bit image whose edge is repeated `padding` pixels outwards on every side.
struct ImageView {
    static constexpr int padding = 16;

    const std::uint8_t* origin; ///< pixel (0, 0)
    std::ptrdiff_t stride;
    int width;
    int height;
};

/// What is known of one level's patches. Every plane has a border of one patch left and above and of two right and
/// below; entry (i, j) lies at (j + 1) · stride + i + 1.
struct PatchPlanes {
    int columns;
    int rows;
    std::ptrdiff_t stride;
    float* x; ///< displacement, in the level's pixels
    float* y;
    float* luma;      ///< at the patch's centre; far from any luma on the border
    float* gradientX; ///< half of the gradient of the ZSSD at the displacement (gradientAtX, gradientAtY)
    float* gradientY;
    float* gradientAtX;
    float* gradientAtY;
    float* xx; ///< the damped Gauss–Newton Hessian of the ZSSD
    float* xy;
    float* yy;
};

/// The matching of one image's patches in another.
struct PatchSearch {
    ImageView from;
    ImageView to;
    PatchPlanes patches;
    PatchPlanes parents; ///< of the level of half the size, repeated on the border; not looked at on the coarsest
    bool isCoarsest;
};

constexpr int patchSize = 8;
constexpr int patchStride = 4;
/// Patch (0, 0) starts this far outside, so that every pixel lies in four patches.
constexpr int patchOrigin = -4;
/// Rows of patches that are searched without knowing those above, so that bands can be searched side by side.
constexpr int searchBand = 8;

constexpr std::size_t densifyScratchSize(int patchColumns) {
    return 3 * patchStride * static_cast<std::size_t>(patchStride * patchColumns + 2 * patchSize);
}

/// Dense motion of one direction, at half resolution, with what is known of each vector. Rows follow each other without
/// gaps; each plane can be read a few bytes past its end.
struct MotionView {
    int width;
    int height;
    MotionVector* motion;
    std::uint8_t* confidence; ///< of the match before filling, 255: certain
    std::uint8_t* visibility; ///< how sure it is that the pixel is seen in the other frame too, 255: certain
};

/// One level of a field that is averaged down: motion in MotionVector's units, how much of it is known (0 ... 1), and
/// the mean luma. Every row has one value before its first and a vector's worth after its last.
struct FillPlanes {
    int width;
    int height;
    std::ptrdiff_t stride;
    float* x; ///< entry (0, 0)
    float* y;
    float* known;
    float* luma;
};

/// 1 in fixed point, for phases and blend weights.
constexpr int fractionUnits = 1 << 14;

/// One direction's motion brought to a phase: rows follow each other without gaps.
struct Projection {
    MotionVector* motion;     ///< from the first frame to the second
    std::uint8_t* confidence; ///< 255: certain, 0: a hole that was filled
};

/// Both frames' half-resolution luma and the phase between them.
struct PhaseImages {
    ImageView first;
    ImageView second;
    int phase; ///< in fractionUnits
};

/// For each half-resolution pixel of an in-between frame: rows follow each other without gaps, with room for a vector
/// past the last.
struct PhasePlanes {
    int width;
    int height;
    MotionVector* motion;       ///< from the first frame to the second, through the pixel
    const MotionVector* shift;  ///< by which both places lie beside the straight line; absent: nowhere
    std::int16_t* secondWeight; ///< how much of the pixel the second frame gives, in fractionUnits
};

/// A plane of samples of one or two bytes.
struct PlaneView {
    const std::uint8_t* data;
    std::ptrdiff_t stride; ///< bytes
    int width;
    int height;
    int bytesPerSample;
    int bitDepth;
};

/// The drawing of one plane of an in-between frame.
struct PlaneWarp {
    PlaneView first;
    PlaneView second;
    PhasePlanes field;
    float phase;
    bool halfWidth; ///< the plane has one sample for two luma columns; left-sited
    bool halfHeight;
    std::uint8_t* out;
    std::ptrdiff_t outStride; ///< bytes
};

/// Floats of scratch that drawing a row takes.
constexpr std::size_t warpScratchSize(int fieldWidth) {
    return 5 * (static_cast<std::size_t>(fieldWidth) + 32);
}

/// Confidence from which a vector is never filled over.
constexpr int trustedConfidence = 230;
/// Side of the squares that are looked at as a whole where two motions disagree.
constexpr int tileSize = 16;

struct Kernels {
    /// Finds the displacements of the rows of patches from `begin`, a multiple of searchBand, to `end`: predictive
    /// search by the sum of absolute differences (exhaustive on the coarsest level), then inverse-compositional
    /// alignment (Baker and Matthews, "Lucas–Kanade 20 Years On", 2004) of the zero-mean patch, so that brightness may
    /// change.
    void (*searchPatches)(const PatchSearch& search, int begin, int end);
    /// Measures the gradients of patches anew that have moved since.
    void (*refreshGradients)(const PatchSearch& search, int begin, int end);
    /// A Jacobi iteration of the regularised matching (Horn and Schunck, "Determining Optical Flow", 1981): each patch
    /// moves to the balance of its own match and its neighbours' mean. Neighbours count by the Lorentzian influence of
    /// their difference (Black and Anandan, "The Robust Estimation of Multiple Motions", 1996) and by likeness of luma.
    void (*sweepPatches)(const PatchPlanes& patches, float* nextX, float* nextY, int begin, int end);
    /// The displacement of every pixel in rows 4·begin to 4·end: the mean of its four patches, each weighted by one
    /// over its squared difference at the pixel, 1 at most (as in dense inverse search). `scratch`:
    /// densifyScratchSize() floats.
    void (*densify)(const PatchSearch& search, float* scratch, MotionVector* motion, std::ptrdiff_t stride, int begin,
                    int end);

    /// Confidence and visibility of rows `begin` to `end` by the forward-backward consistency check, with a tolerance
    /// that grows with the motion (Sundaram, Brox and Keutzer, "Dense Point Trajectories by GPU-accelerated Large
    /// Displacement Optical Flow", 2010).
    void (*checkConsistency)(const MotionView& flow, const MotionVector* back, int begin, int end);
    /// Pull-push: averages the vectors of 2 × 2 pixels, weighted by confidence, and their luma into rows of the first
    /// fill level.
    void (*pullMotion)(const MotionView& flow, const ImageView& image, const FillPlanes& coarse, int begin, int end);
    /// The same from one fill level to the next.
    void (*pull)(const FillPlanes& fine, const FillPlanes& coarse, int begin, int end);
    /// Completes rows of a fill level from the completed coarser one.
    void (*push)(const FillPlanes& fine, const FillPlanes& coarse, int begin, int end);
    /// Completes rows of the motion from the first fill level: `filled` gets the result.
    void (*pushMotion)(const MotionView& flow, const ImageView& image, const FillPlanes& coarse, MotionVector* filled,
                       int begin, int end);
    /// Rows of tiles of the filled motion, but a found vector where the filled one fits the images far worse.
    void (*restoreMatched)(const MotionView& flow, const ImageView& from, const ImageView& to,
                           const MotionVector* filled, MotionVector* result, int beginTile, int endTile);

    /// Forward splatting: carries each vector along its motion to a phase (in fractionUnits), into the four cells
    /// around; the most confident, then the nearest, stays. `reversed`: the flow is that of the second frame. `cells`
    /// are zero before.
    void (*splat)(const MotionView& flow, int phase, bool reversed, std::uint64_t* cells);
    /// Reads rows of cells; a hole takes the vector of its row's nearest cell.
    void (*resolveSplat)(const std::uint64_t* cells, int width, const Projection& result, int begin, int end);
    /// The mean of both projections where they agree, elsewhere the one with the better photo-consistency (the smaller
    /// mean difference of both images), in rows of tiles.
    void (*fuseProjections)(const PhaseImages& images, const Projection& one, const Projection& other, int width,
                            int height, MotionVector* result, int beginTile, int endTile);
    /// The median of each pixel and its four neighbours, for both components: removes outliers.
    void (*crossMedian)(const MotionVector* motion, int width, int height, MotionVector* result, int begin, int end);
    /// Visibility-weighted blending (as in Jiang et al., "Super SloMo", 2018): each frame counts by its nearness and,
    /// as far as both differ, by how likely its pixel is seen in the other.
    void (*blendWeights)(const PhaseImages& images, const MotionView& forward, const MotionView& backward,
                         const PhasePlanes& field, int begin, int end);
    /// Draws rows of a plane: backward warping of both frames by cubic convolution (Keys, 1981; Catmull–Rom, a = -1/2),
    /// blended. `scratch`: warpScratchSize() values.
    void (*warp)(const PlaneWarp& warp, float* scratch, int begin, int end);
};

/// Those of a set that the machine can run.
const Kernels& kernelsFor(InstructionSet set);

} // namespace flowtide::flow
