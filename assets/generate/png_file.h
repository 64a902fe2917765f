#pragma once

#include <string>

#include "textures/families.h"

namespace qpx::drawing {

/// Writes `canvas` as an 8-bit PNG file without optional chunks, packed as small as zlib can,
/// or fast when it is a `draft`. False, with a message on standard error, when that fails.
bool writePng(const std::string& path, const Canvas& canvas, Channels channels, bool draft);

bool writeFile(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace qpx::drawing
