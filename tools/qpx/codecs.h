// The two codecs behind image_file.h. Messages of their RunErrors lack the file's name.
#pragma once

#include <cstdint>
#include <span>

#include "output_file.h"
#include "picture.h"
#include "progress.h"

namespace qpx::tool {

// As stored: not turned.
Picture decodeJpeg(std::span<const uint8_t> file, ProgressShare& share);
Picture decodePng(std::span<const uint8_t> file, ProgressShare& share);

// One channel becomes a grey file, which has no profile.
void encodeJpeg(const Picture& picture, int quality, OutputFile& out, ProgressShare& share);
void encodePng(const Picture& picture, OutputFile& out, ProgressShare& share);

// The colour space that a profile describes is RGB. Pixels are always written as RGB, and a profile
// of another space would make readers misjudge or refuse them.
bool isRgbProfile(std::span<const uint8_t> icc);

}  // namespace qpx::tool
