// Addresses of rows and columns. Planes are rebased to the origin of a picture of which the host
// may only hold a band, so origins and the rows of tables can lie outside every object: they are
// computed as numbers and only those inside the band are ever followed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qpx {

// `count` steps from `plane`. Unsigned, since a senseless rectangle may leave every range.
template <class Byte>
Byte* advance(Byte* plane, ptrdiff_t step, ptrdiff_t count) {
  static_assert(sizeof(Byte) == 1);
  return reinterpret_cast<Byte*>(reinterpret_cast<uintptr_t>(plane) +
                                 static_cast<uintptr_t>(step) * static_cast<uintptr_t>(count));
}

// The way back. Not advance by -count: the least number has no opposite.
template <class Byte>
Byte* retreat(Byte* plane, ptrdiff_t step, ptrdiff_t count) {
  static_assert(sizeof(Byte) == 1);
  return reinterpret_cast<Byte*>(reinterpret_cast<uintptr_t>(plane) -
                                 static_cast<uintptr_t>(step) * static_cast<uintptr_t>(count));
}

}  // namespace qpx
