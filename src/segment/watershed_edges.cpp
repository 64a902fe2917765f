// Which regions touch.
#include <qpx/watershed.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "segment/watershed_pairs.h"

namespace qpx {
namespace {

class EdgeLists {
 public:
  EdgeLists(QPXRegionEdge* edges, QPXRegionEdge** heads, int64_t expected)
      : edges_(edges), heads_(heads), pairs_(expected) {}

  // Links two labels unless they are. They wait for their turn until memory has come near.
  void meet(int32_t from, int32_t to) {
    if (from < 0 || to < 0) return;
    Meeting& place = waiting_[met_ % kWaiting];
    if (met_ >= kWaiting) link(place);
    place = {from, to, pairKey(from, to)};
    pairs_.prefetch(place.key);
    __builtin_prefetch(heads_ + from, 1);
    ++met_;
  }

  int32_t finish() {
    for (uint64_t i = met_ - std::min(met_, kWaiting); i < met_; ++i) link(waiting_[i % kWaiting]);
    met_ = 0;
    return count_;
  }

 private:
  struct Meeting {
    int32_t from;
    int32_t to;
    uint64_t key;
  };
  static constexpr uint64_t kWaiting = 16;

  void link(const Meeting& meeting) {
    const auto [from, to, key] = meeting;
    const PairSet::Answer answer = pairs_.add(key);
    if (answer == PairSet::Answer::known) return;
    if (answer == PairSet::Answer::full && (isLinked(from, to) || isLinked(to, from))) return;
    QPXRegionEdge& edge = edges_[count_++];
    edge = {to, heads_[from]};
    heads_[from] = &edge;
  }

  bool isLinked(int32_t from, int32_t to) const {
    const QPXRegionEdge* edge = heads_[from];
    while (edge != nullptr && edge->neighbour != to) edge = edge->next;
    return edge != nullptr;
  }

  QPXRegionEdge* const edges_;
  QPXRegionEdge** const heads_;
  PairSet pairs_;
  Meeting waiting_[kWaiting];
  uint64_t met_ = 0;
  int32_t count_ = 0;
};

// Borders that go on from the pixel above or to the left were met there.
void meetNeighbours(const int32_t* labels, int32_t width, int32_t height, EdgeLists& lists) {
  for (int32_t y = 0; y < height; ++y) {
    const int32_t* const row = labels + ptrdiff_t{width} * y;
    const int32_t* const above = y > 0 ? row - width : nullptr;
    const int32_t* const below = y + 1 < height ? row + width : nullptr;
    for (int32_t x = 0; x < width; ++x) {
      const int32_t label = row[x];
      if (x + 1 < width && row[x + 1] != label) {
        const int32_t right = row[x + 1];
        const bool goesOn = above != nullptr && above[x] == label && above[x + 1] == right;
        if (!goesOn) lists.meet(label, right);
      }
      if (below != nullptr && below[x] != label) {
        const int32_t under = below[x];
        const bool goesOn = x > 0 && row[x - 1] == label && below[x - 1] == under;
        if (!goesOn) lists.meet(label, under);
      }
    }
  }
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t Watershed_GetRegionAdjacentEdge(const int32_t* labels, int32_t width, int32_t height,
                                        QPXRegionEdge* edges, QPXRegionEdge** heads,
                                        int32_t* edgeCount) {
  if (labels == nullptr || edges == nullptr || heads == nullptr || edgeCount == nullptr) {
    return QPX_BAD_PARAM;
  }
  if (width <= 0 || height <= 0) return QPX_BAD_PARAM;
  const int32_t* const end = labels + ptrdiff_t{width} * height;
  const int64_t largest = *std::max_element(labels, end);
  const int64_t regions = std::max<int64_t>(largest + 1, 0);
  std::fill_n(heads, regions, nullptr);
  // Connected regions have fewer edges than three each, as a plane graph does.
  EdgeLists lists(edges, heads, std::min(3 * regions, 2 * int64_t{width} * height));
  meetNeighbours(labels, width, height, lists);
  *edgeCount = lists.finish();
  return QPX_OK;
}
