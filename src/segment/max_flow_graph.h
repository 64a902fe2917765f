// The graph of a max-flow solver: a block of nodes and one of edges and arcs.
//
// Edges are kept as they were added until a solve sorts their arcs into rows, one for each node, so
// that a search reads what it needs of a node's neighbourhood in one go: an arc knows what its
// reverse has left, and terminals stand apart from what is asked of every neighbour.
#pragma once

#include <qpx/max_flow.h>

#include <cstdint>
#include <span>

#include "segment/max_flow_pool.h"

namespace qpx {

using NodeRef = uint32_t;
using ArcRef = uint32_t;

inline constexpr uint32_t kNone = UINT32_MAX;  // no node, no arc

// Parents that are no arcs.
inline constexpr ArcRef kToTerminal = INT32_MAX;
inline constexpr ArcRef kOrphanBit = 1u << 31;  // with the height that the node had

inline constexpr uint32_t kMarked = 2;  // to be looked at by the next fast solve
inline constexpr uint32_t kSolveFlags = 6;

inline constexpr int32_t kOrphanHeight = INT32_MAX;  // above all that a parent may have

// Where a node is in the trees, and all that a search asks of it. Its height is more than its
// parent's, 1 at a root, and so no less than the hops to its terminal: what is lower than a node is
// not below it in the tree.
struct FlowNode {
  ArcRef parent;       // the arc to it
  int32_t height;      // negated in the sink's tree; 0: in no tree
  ArcRef firstArc;     // its row ends where the next node's starts
  NodeRef nextActive;  // itself at the end of a queue; kNone: in no queue

  void setParent(ArcRef arc, int32_t newHeight) {
    parent = arc;
    height = newHeight;
  }
};

struct FlowTerminal {
  int32_t capacity;  // what is left from the source, or, below 0, to the sink
  uint32_t flags;
};

struct FlowArc {
  NodeRef head;
  ArcRef sister;
  uint32_t residual;  // 32 bits hold both capacities of an edge together
  uint32_t reverse;   // the sister's residual
};

struct FlowEdge {
  NodeRef from, to;
  uint32_t capacity;  // when it is sorted: where its arc is
  uint32_t reverse;
};

}  // namespace qpx

struct MaxFlowGraph {
  qpx::FlowNode* nodes;          // one more than there are
  qpx::FlowTerminal* terminals;  // of nodes
  qpx::FlowEdge* edges;
  qpx::FlowArc* arcs;
  int32_t nodeCount;
  int32_t nodeLimit;
  int32_t edgeCount;
  int32_t edgeLimit;
  int32_t sortedEdges;
  int32_t flow;
  qpx::FlowPool* nodePool;  // of orphans, while solving
  int32_t solveCount;
  qpx::NodeRef activeHead[2];  // nodes are taken from the first queue and wait in the second
  qpx::NodeRef activeTail[2];
  qpx::OrphanRecord* orphanHead;
  qpx::OrphanRecord* orphanTail;
  int32_t highest;   // of the heights in the trees
  bool orphansLost;  // memory ran out in the last solve: its trees cannot be used again
  void* nodeBlock;   // what the memory services gave
  void* edgeBlock;

  std::span<qpx::FlowArc> row(qpx::NodeRef node) const {
    const qpx::ArcRef first = nodes[node].firstArc;
    return {arcs + first, nodes[node + 1].firstArc - first};
  }
};
