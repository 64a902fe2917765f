#pragma once

#include <kesbase.h>

#include <new>

namespace qpx {

// A zeroed record from the memory services, or null.
template <typename Record>
Record* newRecord() {
  void* const place = MMemAlloc(nullptr, sizeof(Record));
  return place == nullptr ? nullptr : new (place) Record{};
}

}  // namespace qpx
