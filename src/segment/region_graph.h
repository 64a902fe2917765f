// The regions of a picture as a graph that is cut in two, again and again with other terminals.
//
// Regions that are alike hold together far more strongly than colours draw them to a side, so that
// most of them are on the same side as a neighbour in every minimum cut. Which ones is found once;
// a cut solves the graph of what is left, a tenth of the regions of a photograph. Regions are
// numbered by where they lie, which keeps the search in the cache.
#pragma once

#include <qpx/max_flow.h>

#include <cstdint>

#include "segment/array.h"
#include "segment/node_merges.h"
#include "segment/pair_rows.h"
#include "segment/region_colors.h"

namespace qpx {

class RegionGraph {
 public:
  RegionGraph() = default;
  ~RegionGraph();
  RegionGraph(const RegionGraph&) = delete;
  RegionGraph& operator=(const RegionGraph&) = delete;

  // Finds out which regions touch and how strongly they hold together, which is as their colours
  // are alike. Without memory the graph stays empty.
  void build(const int32_t* labels, int32_t width, int32_t height, const QPXRegionColor* colors,
             int32_t regionCount);

  // False without memory.
  explicit operator bool() const { return graph_ != nullptr; }

  // Cuts by the marks of the regions and, where they have none, by how they lean to the colours of
  // both sides. sides[i] is 255 for a region of the foreground, else 0.
  void cut(const MarkedRegion* regions, const Palette& foreground, const Palette& background,
           uint8_t* sides);

 private:
  bool numberNodes(const int32_t* labels, int32_t width, int32_t height);
  bool findPairs(const int32_t* labels, int32_t width, int32_t height,
                 const QPXRegionColor* colors);
  int32_t divide(const MarkedRegion* regions);
  void sumNets(const MarkedRegion* regions, const Palette& foreground, const Palette& background,
               int32_t clusters);
  void addClusters(int32_t clusters);
  int32_t clusterOf(int32_t region) const { return merges_.clusters()[nodeOf_[region]]; }

  int32_t regionCount_ = 0;
  Array<int32_t> nodeOf_;  // the number of a region by where it lies
  Array<NodePair> pairs_;
  int32_t pairCount_ = 0;
  NodeMerges merges_;
  Array<uint8_t> isPinned_;  // nodes
  Array<int64_t> nets_;      // of clusters: the capacity from the source less that to the sink
  PairRows rows_;            // of clusters
  MaxFlowGraph* graph_ = nullptr;
};

}  // namespace qpx
