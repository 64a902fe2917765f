// The regions of a picture as a graph that is cut in two, again and again with other terminals.
//
// The side of a region is 1 where it can still send flow to the sink, which is the same for every
// maximum flow. So neither the order of the nodes nor what the search starts from shows: nodes are
// numbered by where they lie, which keeps a search in the cache, and every cut goes on from the
// flow of the one before.
#pragma once

#include <qpx/max_flow.h>

#include <cstdint>

#include "segment/region_colors.h"

namespace qpx {

class RegionGraph {
 public:
  RegionGraph() = default;
  ~RegionGraph();
  RegionGraph(const RegionGraph&) = delete;
  RegionGraph& operator=(const RegionGraph&) = delete;

  // Finds out which regions touch. Without memory the graph stays empty.
  void build(const int32_t* labels, int32_t width, int32_t height, int32_t regionCount);

  // False without memory.
  explicit operator bool() const { return graph_ != nullptr; }

  // Cuts by the marks of the regions and, where they have none, by how they lean to the colours of
  // both sides. Neighbours hold together as their colours, always the same, are alike. sides[i] is
  // 255 for a region of the foreground, else 0.
  void cut(const MarkedRegion* regions, const Palette& foreground, const Palette& background,
           uint8_t* sides);

 private:
  bool allocate(int32_t regionCount);
  void numberNodes(const int32_t* labels, int32_t width, int32_t height);
  void addNeighbours(const MarkedRegion* regions);
  void setTerminals(const MarkedRegion* regions, const Palette& foreground,
                    const Palette& background);
  void setTerminal(int32_t node, int64_t net);

  int32_t regionCount_ = 0;
  QPXRegionEdge* edges_ = nullptr;  // with the heads of their lists behind them
  QPXRegionEdge** heads_ = nullptr;
  int32_t* nodes_ = nullptr;  // of regions
  int64_t* nets_ = nullptr;   // of nodes: the capacity from the source less that to the sink
  MaxFlowGraph* graph_ = nullptr;
  bool joined_ = false;     // neighbours are
  bool startsOver_ = true;  // every cut has to
};

}  // namespace qpx
