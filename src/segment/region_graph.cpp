#include "segment/region_graph.h"

#include <algorithm>

namespace qpx {
namespace {

constexpr int32_t kLikeness = 2000000;  // of neighbours of the same colour
constexpr int32_t kTile = 64;           // side of the squares by which nodes are numbered
constexpr int64_t kPinned = INT32_MAX;

int64_t netOf(int32_t mark, int32_t leaning) {
  if (mark == kForegroundMark) return -kPinned;
  if (mark == kBackgroundMark) return kPinned;
  return 2 * leaning - kFullLean;
}

}  // namespace

RegionGraph::~RegionGraph() { MaxFlowInt_Destroy(graph_); }

void RegionGraph::build(const int32_t* labels, int32_t width, int32_t height,
                        const QPXRegionColor* colors, int32_t regionCount) {
  regionCount_ = regionCount;
  if (!numberNodes(labels, width, height) || !findPairs(labels, width, height, colors)) return;
  if (!merges_.find(pairs_.get(), pairCount_, regionCount, kFullLean)) return;
  isPinned_ = Array<uint8_t>(regionCount);
  nets_ = Array<int64_t>(regionCount);
  if (!isPinned_ || !nets_) return;
  if (!rows_.allocate(regionCount, pairCount_, PairRows::Ways::one)) return;
  MaxFlowInt_Create(&graph_, regionCount, pairCount_);
}

bool RegionGraph::numberNodes(const int32_t* labels, int32_t width, int32_t height) {
  nodeOf_ = Array<int32_t>(regionCount_);
  if (!nodeOf_) return false;
  std::fill_n(nodeOf_.get(), regionCount_, -1);
  int32_t numbered = 0;
  const auto numberTile = [&](int32_t left, int32_t top) {
    for (int32_t y = top; y < std::min(height - top, kTile) + top; ++y) {
      const int32_t* const row = labels + ptrdiff_t{y} * width;
      for (int32_t x = left; x < std::min(width - left, kTile) + left; ++x) {
        int32_t& node = nodeOf_[row[x]];
        if (node < 0) node = numbered++;
      }
    }
  };
  for (int64_t top = 0; top < height; top += kTile) {
    for (int64_t left = 0; left < width; left += kTile) {
      numberTile(static_cast<int32_t>(left), static_cast<int32_t>(top));
    }
  }
  return true;
}

// There are fewer than three times as many pairs of neighbours as regions in the plane.
bool RegionGraph::findPairs(const int32_t* labels, int32_t width, int32_t height,
                            const QPXRegionColor* colors) {
  const Array<QPXRegionEdge> edges(3 * int64_t{regionCount_});
  const Array<QPXRegionEdge*> heads(regionCount_);
  const Array<int32_t> regionOf(regionCount_);
  if (!edges || !heads || !regionOf) return false;
  Watershed_GetRegionAdjacentEdge(labels, width, height, edges.get(), heads.get(), &pairCount_);
  pairs_ = Array<NodePair>(pairCount_);
  if (!pairs_) return false;
  for (int32_t region = 0; region < regionCount_; ++region) regionOf[nodeOf_[region]] = region;
  NodePair* pair = pairs_.get();
  for (int32_t node = 0; node < regionCount_; ++node) {
    const int32_t region = regionOf[node];
    for (const QPXRegionEdge* edge = heads[region]; edge != nullptr; edge = edge->next) {
      const int32_t distance = colorDistance(colors[region], colors[edge->neighbour]);
      *pair++ = {node, nodeOf_[edge->neighbour], kLikeness / (1 + distance)};
    }
  }
  return true;
}

int32_t RegionGraph::divide(const MarkedRegion* regions) {
  for (int32_t i = 0; i < regionCount_; ++i) {
    isPinned_[nodeOf_[i]] = regions[i].count != kNoMark ? 1 : 0;
  }
  return merges_.divide(isPinned_.get());
}

void RegionGraph::sumNets(const MarkedRegion* regions, const Palette& foreground,
                          const Palette& background, int32_t clusters) {
  std::fill_n(nets_.get(), clusters, 0);
  int32_t leaning[kLeanRun];
  for (int64_t start = 0; start < regionCount_; start += kLeanRun) {
    const MarkedRegion* const run = regions + start;
    const auto count = static_cast<int32_t>(std::min<int64_t>(regionCount_ - start, kLeanRun));
    leanings(run, count, foreground, background, leaning);
    for (int32_t i = 0; i < count; ++i) {
      nets_[clusterOf(static_cast<int32_t>(start) + i)] += netOf(run[i].count, leaning[i]);
    }
  }
}

// A pin is worth more than all that holds a cluster to others, so that only a region by itself, of
// which it is the whole terminal, could use it up.
void RegionGraph::addClusters(int32_t clusters) {
  MaxFlowInt_Initialize(graph_);
  for (int32_t i = 0; i < clusters; ++i) {
    MaxFlowInt_AddNode(graph_);
    const auto net = static_cast<int32_t>(std::clamp(nets_[i], -kPinned, kPinned));
    const int32_t caps[2] = {std::max(net, 0), std::max(-net, 0)};
    MaxFlowInt_AddTWeights(graph_, i, caps);
  }
  for (int32_t i = 0; i < clusters; ++i) {
    for (const RowEntry& entry : rows_.row(i)) {
      MaxFlowInt_AddEdge(graph_, i, entry.node, entry.capacity, entry.capacity);
    }
  }
}

void RegionGraph::cut(const MarkedRegion* regions, const Palette& foreground,
                      const Palette& background, uint8_t* sides) {
  const int32_t clusters = divide(regions);
  sumNets(regions, foreground, background, clusters);
  rows_.fill(pairs_.get(), pairCount_, merges_.clusters(), clusters);
  addClusters(clusters);
  MaxFlowInt_GetMaxFlow(graph_);
  for (int32_t i = 0; i < regionCount_; ++i) {
    sides[i] = MaxFlowInt_GetNodeType(graph_, clusterOf(i)) == 1 ? 255 : 0;
  }
}

}  // namespace qpx
