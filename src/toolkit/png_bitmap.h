// What became of a PNG file in memory.
#pragma once

#include <qpx/types.h>

#include <cstdint>

namespace qpx {

struct DecodedPng {
  MBitmap* bitmap;  // null if the record could not be made
  bool exhausted;   // the bitmap is null, or incomplete, for lack of memory
};

// Decodes what can be decoded; see QPX_DecodePNG.
DecodedPng decodePng(const void* data, int32_t size);

}  // namespace qpx
