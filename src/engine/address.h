// Addresses of rows and columns. Planes are rebased to the origin of a picture of which the host
// may only hold a band, so origins and the rows of tables can lie outside every object: they are
// computed as numbers and only those inside the band are ever followed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qpx {

// `count` steps from `plane`. Unsigned, since a senseless rectangle may leave every range.
inline uint8_t* advance(uint8_t* plane, ptrdiff_t step, ptrdiff_t count) {
  return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(plane) +
                                    static_cast<uintptr_t>(step) * static_cast<uintptr_t>(count));
}

// The way back. Not advance by -count: the least number has no opposite.
inline uint8_t* retreat(uint8_t* plane, ptrdiff_t step, ptrdiff_t count) {
  return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(plane) -
                                    static_cast<uintptr_t>(step) * static_cast<uintptr_t>(count));
}

}  // namespace qpx
