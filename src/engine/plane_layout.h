// How the allocators lay the planes of a picture into one block.
#pragma once

#include <qpx/image.h>

#include <cstdint>

namespace qpx {

// Which of the allocators knows a code.
enum class AllocatorKind { basic, extended, quarterChroma };

struct PlaneLayout {
  int32_t pitch[3] = {0, 0, 0};
  int64_t offset[3] = {0, -1, -1};  // bytes from the start of the block, -1 for no plane
  int64_t bytes = 0;
};

// Lays out bitmap's planes by its format, size and pitches. Returns 0; 2 for a pitch that is too
// small; 3 for a code that the allocator does not know or a size below 1; 4 for planes of 2 GiB and
// more.
int32_t layOutPlanes(const MBitmap& bitmap, AllocatorKind kind, PlaneLayout* layout);

}  // namespace qpx
