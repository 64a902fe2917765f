// Nodes of a graph that no minimum cut parts, found once for cuts by ever other terminals.
//
// A cut never pays to part two neighbours when one of them is held more strongly by the other than
// by all else together, its terminal included; nor two neighbours with a third, when each of them
// is held so by the other and the third together. Those are the first and the third test of
// M. Padberg and G. Rinaldi, "An efficient algorithm for the minimum capacity cut problem" (1990),
// taken strictly, so that they hold for every minimum cut. Nodes that are merged are nodes of the
// next level, which are tested again.
//
// The tests take terminals for weak. Some nodes are pinned to a side instead, which breaks what was
// merged on the strength of them, and all that followed from it.
#pragma once

#include <cstdint>

#include "segment/array.h"
#include "segment/pair_rows.h"

namespace qpx {

class NodeMerges {
 public:
  // Merges of more than one node stay below this, with all capacities around them and all terminals
  // in them that are not pinned.
  static constexpr int32_t kMostTogether = 1 << 30;

  // Finds merges in a graph of so many nodes, whose terminal capacities are terminalMost at most
  // where they are not pinned. Where memory runs out there are fewer, or it returns false.
  bool find(const NodePair* pairs, int64_t pairCount, int32_t nodes, int32_t terminalMost);

  // Divides the nodes into clusters that no minimum cut parts while only pinned nodes have stronger
  // terminals. Returns how many there are; clusters() is the cluster of every node then.
  int32_t divide(const uint8_t* isPinned);
  const int32_t* clusters() const { return levels_[0].clusterOf.get(); }

 private:
  struct Merge {
    int32_t a, b;   // a depends on b,
    int32_t third;  // or both depend on each other and this one; kNoNode
  };
  struct Level {
    int32_t nodes = 0;
    Array<uint8_t> states;
    Array<int32_t> clusterOf;
    // To the next level:
    Array<int32_t> groupOf;
    Array<Merge> merges;
    int32_t mergeCount = 0;

    bool allocate(int32_t nodeCount);
    bool holds(const Merge& merge) const;
  };
  class Finder;

  static constexpr int kMostLevels = 16;
  static constexpr int32_t kNoNode = -1;

  void breakMerges(const uint8_t* isPinned);
  int32_t numberClusters();

  int top_ = 0;  // the level whose nodes are not merged
  Level levels_[kMostLevels];
};

}  // namespace qpx
