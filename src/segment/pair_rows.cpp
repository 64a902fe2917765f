#include "segment/pair_rows.h"

#include <algorithm>

namespace qpx {
namespace {

// Calls put(from, to, capacity) for each entry of a row.
template <typename Put>
void forEachEntry(const NodePair* pairs, int64_t count, const int32_t* nodeOf, PairRows::Ways ways,
                  const Put& put) {
  const bool both = ways == PairRows::Ways::both;
  for (int64_t i = 0; i < count; ++i) {
    const int32_t a = nodeOf[pairs[i].a], b = nodeOf[pairs[i].b];
    if (a == b) continue;
    if (both || a < b) put(a, b, pairs[i].capacity);
    if (both || b < a) put(b, a, pairs[i].capacity);
  }
}

}  // namespace

bool PairRows::allocate(int32_t nodes, int64_t pairs, Ways ways) {
  ways_ = ways;
  starts_ = Array<uint32_t>(nodes);
  ends_ = Array<uint32_t>(nodes);
  places_ = Array<uint32_t>(nodes);
  entries_ = Array<RowEntry>(ways == Ways::both ? 2 * pairs : pairs);
  return starts_ && ends_ && places_ && entries_;
}

// Where every row starts, and ends as long as it is empty.
void PairRows::countRows(const NodePair* pairs, int64_t count, const int32_t* nodeOf) {
  std::fill_n(ends_.get(), nodes_, 0);
  forEachEntry(pairs, count, nodeOf, ways_,
               [this](int32_t from, int32_t, int32_t) { ++ends_[from]; });
  uint32_t start = 0;
  for (int32_t node = 0; node < nodes_; ++node) {
    starts_[node] = start;
    start += ends_[node];
    ends_[node] = starts_[node];
  }
}

void PairRows::joinParallels() {
  std::fill_n(places_.get(), nodes_, 0);
  uint32_t kept = 0;
  for (int32_t node = 0; node < nodes_; ++node) {
    const std::span<const RowEntry> apart = row(node);
    starts_[node] = kept;
    for (const RowEntry taken : apart) {
      uint32_t& place = places_[taken.node];
      if (place > starts_[node]) {
        entries_[place - 1].capacity += taken.capacity;
      } else {
        entries_[kept] = taken;
        place = ++kept;
      }
    }
    ends_[node] = kept;
  }
}

void PairRows::fill(const NodePair* pairs, int64_t count, const int32_t* nodeOf, int32_t nodes) {
  nodes_ = nodes;
  countRows(pairs, count, nodeOf);
  forEachEntry(pairs, count, nodeOf, ways_, [this](int32_t from, int32_t to, int32_t capacity) {
    entries_[ends_[from]++] = {to, capacity};
  });
  joinParallels();
}

}  // namespace qpx
