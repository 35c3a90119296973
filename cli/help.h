// What --help prints.
#pragma once

#include <string_view>

namespace flowtide {

constexpr std::string_view helpText = R"(Loftwell Video: change the playback speed of one clip along a smooth curve.

Usage:
  Flowtide [clip or .flowtide project]
  Flowtide --headless-export <input> <output> [curve] [smoothing] [trim] [options]
  Flowtide --headless-proxy <input>
  Flowtide demo [folder]
  Flowtide --help | --version

The input (MOV, MP4 or M4V) is never written to. The output keeps the input's
container, codec, size, frame rate, bit depth, colour tags and audio format, where
those are H.264, HEVC or ProRes and AAC or linear PCM; others become HEVC and AAC. It is
reopened and compared with the input before it replaces anything.

--headless-proxy makes a copy that fits into 1280 × 720 and shows any of its frames at
once (H.264 with key frames only, each frame at its own time), in $TMPDIR or /tmp, and
prints its path. The copy stays until you delete it.

demo makes a clip and a retimed one in the folder (default: flowtide-demo).

Positional arguments of --headless-export:
  curve      time:speed,…     Points of the speed curve: source seconds and a speed
                              from 0.01 to 100 (1 is real time). The exported part
                              starts and ends at speed 1 unless a point stands there;
                              points outside it have no effect. Default: 1 throughout.
  smoothing  0…1              0 draws straight lines between the points, 1 a smooth
                              curve. Default: 0.5.
  trim       start:end        The part of the source to export, in seconds. Default:
                              the whole clip.

Options, anywhere on the line, each with one value:
  --interpolation WORD        nearest (repeat original frames, the default) or
                              optical-flow (make in-between frames).
  --smooth-fps RATE           With optical-flow: unique frames per output second below
                              which a stretch counts as slow motion. Default: 30.
  --flow-ranges RANGES        With optical-flow: start:end,… in source seconds, or none.
                              Default: derived from the curve.
  --vertical-crop POINTS      Crop to a narrower frame: time:position,… with positions
                              0 (left) to 1 (right), or center. The exported part starts
                              and ends centred unless a point stands there.
  --vertical-aspect W:H       The crop's shape. Default: 9:16.
  --vertical-smoothing 0…1    How softly the crop glides. Default: 0.5.
  --zoom BLOCKS               start-end:amount[:mode[:fx:fy[:ramp]]];… Amount is 1.1 to
                              4. Mode is inout (default), in, out or constant; fx and fy
                              (0…1, or from>to; default 0.5) are the focal point; ramp
                              is 0 to 3 seconds of the output (default 0.6).

Examples:
  Flowtide --headless-export take.mov dip.mov 0:1,1:0.25,2:1
      slows down to a quarter of the speed one second in, and back.
  Flowtide --headless-export take.mp4 half.mp4 2.5:0.5,6:0.5 0 2.5:6
      plays the part from 2.5 to 6 seconds at half speed.

Sound is decoded into memory: the exported part may hold 512 MB of it, 134,217,728
samples (23 minutes of stereo at 48 kHz). What the trim leaves out does not count.

Exit status: 0 on success; 1 after one line on standard error that says why, with the
destination as it was unless the line says that the export is in place. What was asked
for and is not done gets a line of its own there, "[Headless] Warning: …", and the
export goes on. Ctrl-C, a closed terminal or a termination request cancels and leaves
nothing behind.
)";

} // namespace flowtide
