#include "segment/region_graph.h"

#include <kesbase.h>

#include <algorithm>
#include <utility>

#include "engine/stage.h"

namespace qpx {
namespace {

constexpr int32_t kLikeness = 2000000;  // of neighbours of the same colour
constexpr int32_t kTile = 64;           // side of the squares by which nodes are numbered
constexpr int64_t kPinned = INT32_MAX;

template <typename Entry>
Entry* allocateEntries(int64_t count) {
  return static_cast<Entry*>(MMemAlloc(nullptr, blockBytes(count, sizeof(Entry))));
}

int64_t netOf(int32_t mark, int32_t leaning) {
  if (mark == kForegroundMark) return -kPinned;
  if (mark == kBackgroundMark) return kPinned;
  return 2 * leaning - kFullLean;
}

}  // namespace

RegionGraph::~RegionGraph() {
  MaxFlowInt_Destroy(graph_);
  MMemFree(nullptr, edges_);
  MMemFree(nullptr, nodes_);
  MMemFree(nullptr, nets_);
}

// There are fewer than three times as many pairs of neighbours as regions in the plane.
bool RegionGraph::allocate(int32_t regionCount) {
  regionCount_ = regionCount;
  const int64_t edgeBytes = 3 * int64_t{regionCount} * int64_t{sizeof *edges_};
  auto* const lists = allocateEntries<uint8_t>(edgeBytes + regionCount * int64_t{sizeof *heads_});
  if (lists == nullptr) return false;
  edges_ = reinterpret_cast<QPXRegionEdge*>(lists);
  heads_ = reinterpret_cast<QPXRegionEdge**>(lists + edgeBytes);
  nodes_ = allocateEntries<int32_t>(regionCount);
  nets_ = allocateEntries<int64_t>(regionCount);
  return nodes_ != nullptr && nets_ != nullptr;
}

void RegionGraph::build(const int32_t* labels, int32_t width, int32_t height, int32_t regionCount) {
  if (!allocate(regionCount)) return;
  int32_t edgeCount = 0;
  Watershed_GetRegionAdjacentEdge(labels, width, height, edges_, heads_, &edgeCount);
  numberNodes(labels, width, height);
  MaxFlowInt_Create(&graph_, regionCount, edgeCount);
}

void RegionGraph::numberNodes(const int32_t* labels, int32_t width, int32_t height) {
  std::fill_n(nodes_, regionCount_, -1);
  int32_t numbered = 0;
  const auto numberTile = [&](int32_t left, int32_t top) {
    for (int32_t y = top; y < std::min(height - top, kTile) + top; ++y) {
      const int32_t* const row = labels + ptrdiff_t{y} * width;
      for (int32_t x = left; x < std::min(width - left, kTile) + left; ++x) {
        int32_t& node = nodes_[row[x]];
        if (node < 0) node = numbered++;
      }
    }
  };
  for (int64_t top = 0; top < height; top += kTile) {
    for (int64_t left = 0; left < width; left += kTile) {
      numberTile(static_cast<int32_t>(left), static_cast<int32_t>(top));
    }
  }
}

void RegionGraph::addNeighbours(const MarkedRegion* regions) {
  MaxFlowInt_Initialize(graph_);
  for (int32_t i = 0; i < regionCount_; ++i) MaxFlowInt_AddNode(graph_);
  std::fill_n(nets_, regionCount_, 0);
  int64_t* const sums = nets_;
  int64_t largest = 0;
  for (int32_t a = 0; a < regionCount_; ++a) {
    for (const QPXRegionEdge* edge = heads_[a]; edge != nullptr; edge = edge->next) {
      const int32_t b = edge->neighbour;
      const int32_t likeness = kLikeness / (1 + colorDistance(regions[a], regions[b]));
      MaxFlowInt_AddEdge(graph_, nodes_[a], nodes_[b], likeness, likeness);
      for (const int32_t end : {a, b}) {
        int64_t& sum = sums[nodes_[end]];
        largest = std::max(largest, sum += likeness);
      }
    }
  }
  // A pin that all neighbours together can use up is no pin: what is left of it depends on the
  // flow, and that may not come from an earlier cut. After one they can carry twice what they do in
  // a new graph: what flowed comes back, and as much goes the other way.
  startsOver_ = 2 * largest > kPinned - kFullLean;
  std::fill_n(nets_, regionCount_, 0);
  joined_ = true;
}

// What went through the terminal stays, and what is left of its capacity changes.
void RegionGraph::setTerminal(int32_t node, int64_t net) {
  const int32_t before = MaxFlowInt_GetTrcap(graph_, node);
  const int64_t flowed = nets_[node] - before;
  const int64_t left = std::clamp(net - flowed, -kPinned, kPinned);
  nets_[node] = left + flowed;
  if (left != before) MaxFlowInt_ModifyNode(graph_, node, static_cast<int32_t>(left));
}

void RegionGraph::setTerminals(const MarkedRegion* regions, const Palette& foreground,
                               const Palette& background) {
  int32_t leaning[kLeanRun];
  for (int64_t start = 0; start < regionCount_; start += kLeanRun) {
    const MarkedRegion* const run = regions + start;
    const auto count = static_cast<int32_t>(std::min<int64_t>(regionCount_ - start, kLeanRun));
    leanings(run, count, foreground, background, leaning);
    for (int32_t i = 0; i < count; ++i) {
      setTerminal(nodes_[start + i], netOf(run[i].count, leaning[i]));
    }
  }
}

void RegionGraph::cut(const MarkedRegion* regions, const Palette& foreground,
                      const Palette& background, uint8_t* sides) {
  if (!joined_ || startsOver_) addNeighbours(regions);
  setTerminals(regions, foreground, background);
  MaxFlowInt_GetMaxFlowFast(graph_);
  for (int32_t i = 0; i < regionCount_; ++i) {
    sides[i] = MaxFlowInt_GetNodeType(graph_, nodes_[i]) == 1 ? 255 : 0;
  }
}

}  // namespace qpx
