// The graph of a max-flow solver: a block of nodes and one of arcs.
//
// Nodes and arcs name each other by the number of 32-bit words from the start of their block. That
// halves their size against pointers, and with it the memory that a search walks through; the
// address still costs no arithmetic, since a word is one of the steps that processors scale by.
#pragma once

#include <qpx/max_flow.h>

#include <cstdint>

#include "segment/max_flow_pool.h"

namespace qpx {

using NodeRef = uint32_t;
using ArcRef = uint32_t;

inline constexpr uint32_t kNone = 0;  // no reference: the first place of both blocks stays empty

// Parents that are no arcs.
inline constexpr ArcRef kToTerminal = 1;
inline constexpr ArcRef kOrphan = 2;

inline constexpr uint32_t kIsSink = 1;  // the node's tree, where it has a parent
inline constexpr uint32_t kMarked = 2;  // to be looked at by the next fast solve
inline constexpr uint32_t kSolveFlags = 6;

struct alignas(32) FlowNode {
  ArcRef firstArc;
  ArcRef parent;       // an arc to the parent; kNone: in no tree
  NodeRef nextActive;  // itself at the end of a queue; kNone: in no queue
  int32_t timestamp;   // of the pass that computed the distance
  int32_t distance;    // hops to the terminal
  uint32_t flags;
  int32_t trCapacity;  // what is left from the source, or, below 0, to the sink

  bool inSinkTree() const { return (flags & kIsSink) != 0; }
};

struct FlowArc {
  NodeRef head;
  ArcRef next;  // of the same tail
  ArcRef sister;
  uint32_t residual;  // 32 bits hold both capacities of an edge together
};

inline constexpr uint32_t kNodeWords = sizeof(FlowNode) / sizeof(uint32_t);
inline constexpr uint32_t kArcWords = sizeof(FlowArc) / sizeof(uint32_t);
static_assert(kNodeWords == 8 && kArcWords == 4);

// Places by reference.
template <typename Record>
Record& recordAt(Record* block, uint32_t ref) {
  return *reinterpret_cast<Record*>(reinterpret_cast<uint32_t*>(block) + ref);
}

}  // namespace qpx

struct MaxFlowGraph {
  qpx::FlowNode* nodes;
  qpx::FlowNode* nodeEnd;  // first that is free
  qpx::FlowNode* nodeLimit;
  qpx::FlowArc* arcs;
  qpx::FlowArc* arcEnd;
  qpx::FlowArc* arcLimit;
  int32_t nodeCount;
  int32_t flow;
  qpx::FlowPool* nodePool;  // of orphans, while solving
  int32_t solveCount;
  qpx::NodeRef activeHead[2];  // nodes are taken from the first queue and wait in the second
  qpx::NodeRef activeTail[2];
  qpx::OrphanRecord* orphanHead;
  qpx::OrphanRecord* orphanTail;
  int32_t clock;
  bool orphansLost;  // memory ran out in the last solve: its trees cannot be used again
  void* nodeBlock;   // what the memory services gave
  void* arcBlock;
};
