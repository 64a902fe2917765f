#include <kesbase.h>
#include <qpx/max_flow.h>

#include <algorithm>
#include <cstdint>
#include <new>

#include "engine/stage.h"
#include "platform/new_record.h"
#include "segment/max_flow_graph.h"
#include "segment/max_flow_solver.h"

namespace qpx {
namespace {

constexpr int32_t kLeastRoom = 16;
constexpr size_t kCacheLine = 64;

// Room for so many records in front of which one place stays empty, aligned so that none lies
// across two cache lines. A null `start` stands for no memory.
template <typename Record>
void* allocateBlock(int64_t count, int64_t placesEach, Record*& start, Record*& limit) {
  const int64_t places = (count + 1) * placesEach;
  const bool hasReferences = places <= static_cast<int64_t>(UINT32_MAX / sizeof(Record)) * 4;
  const size_t bytes = blockBytes(places, sizeof(Record));
  void* const block = hasReferences && bytes < SIZE_MAX - kCacheLine
                          ? MMemAlloc(nullptr, bytes + kCacheLine)
                          : nullptr;
  if (block == nullptr) return nullptr;
  const auto address = reinterpret_cast<uintptr_t>(block);
  start = reinterpret_cast<Record*>(static_cast<uint8_t*>(block) + (-address & (kCacheLine - 1)));
  limit = start + places;
  return block;
}

NodeRef refOf(int32_t node) { return (static_cast<NodeRef>(node) + 1) * kNodeWords; }

ArcRef refOf(const MaxFlowGraph& graph, const FlowArc* arc) {
  return static_cast<ArcRef>(arc - graph.arcs) * kArcWords;
}

bool hasNode(const MaxFlowGraph* graph, int32_t node) {
  return graph != nullptr && node >= 0 && node < graph->nodeCount;
}

template <typename Graph>
auto& nodeAt(Graph& graph, int32_t node) {
  return graph.nodes[static_cast<size_t>(node) + 1];
}

int32_t sum(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

int32_t difference(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// What goes from source to sink through the node alone is flow.
void setTerminal(MaxFlowGraph& graph, FlowNode& node, int32_t fromSource, int32_t toSink) {
  node.trCapacity = difference(fromSource, toSink);
  graph.flow = sum(graph.flow, std::min(fromSource, toSink));
}

void clear(MaxFlowGraph& graph) {
  graph.nodeEnd = graph.nodes + 1;
  graph.arcEnd = graph.arcs + 2;
  graph.nodeCount = 0;
  graph.flow = 0;
  graph.solveCount = 0;
  graph.clock = 0;
  graph.orphansLost = false;
  for (const int queue : {0, 1}) {
    graph.activeHead[queue] = kNone;
    graph.activeTail[queue] = kNone;
  }
}

void mark(MaxFlowGraph& graph, int32_t node) {
  activate(graph, refOf(node));
  nodeAt(graph, node).flags |= kMarked;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t MaxFlowInt_Create(MaxFlowGraph** out, int32_t nodeMax, int32_t arcMax) {
  if (out == nullptr) return QPX_BAD_PARAM;
  *out = nullptr;
  auto* const graph = newRecord<MaxFlowGraph>();
  if (graph == nullptr) return QPX_NO_MEMORY;
  graph->nodeBlock =
      allocateBlock(std::max(nodeMax, kLeastRoom), 1, graph->nodes, graph->nodeLimit);
  graph->arcBlock = allocateBlock(std::max(arcMax, kLeastRoom), 2, graph->arcs, graph->arcLimit);
  if (graph->nodeBlock == nullptr || graph->arcBlock == nullptr) {
    MaxFlowInt_Destroy(graph);
    return QPX_NO_MEMORY;
  }
  clear(*graph);
  *out = graph;
  return QPX_OK;
}

int32_t MaxFlowInt_Initialize(MaxFlowGraph* graph) {
  if (graph == nullptr) return QPX_BAD_PARAM;
  clear(*graph);
  return QPX_OK;
}

int32_t MaxFlowInt_Destroy(MaxFlowGraph* graph) {
  if (graph == nullptr) return QPX_OK;
  MMemFree(nullptr, graph->nodeBlock);
  MMemFree(nullptr, graph->arcBlock);
  MMemFree(nullptr, graph);
  return QPX_OK;
}

int32_t MaxFlowInt_AddNode(MaxFlowGraph* graph) {
  if (graph == nullptr) return QPX_BAD_PARAM;
  if (graph->nodeEnd == graph->nodeLimit) return QPX_NO_MEMORY;
  new (graph->nodeEnd++) FlowNode{};
  return graph->nodeCount++;
}

int32_t MaxFlowInt_AddTWeights(MaxFlowGraph* graph, int32_t node, const int32_t* caps) {
  if (caps == nullptr || !hasNode(graph, node)) return QPX_BAD_PARAM;
  FlowNode& at = nodeAt(*graph, node);
  const int32_t present = at.trCapacity;
  setTerminal(*graph, at, present > 0 ? sum(caps[0], present) : caps[0],
              present > 0 ? caps[1] : difference(caps[1], present));
  return QPX_OK;
}

int32_t MaxFlowInt_AddEdge(MaxFlowGraph* graph, int32_t from, int32_t to, int32_t capacity,
                           int32_t reverseCapacity) {
  if (!hasNode(graph, from) || !hasNode(graph, to) || from == to) return QPX_BAD_PARAM;
  if (capacity < 0 || reverseCapacity < 0) return QPX_BAD_PARAM;
  if (graph->arcEnd == graph->arcLimit) return QPX_NO_MEMORY;
  FlowNode& tail = nodeAt(*graph, from);
  FlowNode& head = nodeAt(*graph, to);
  FlowArc* const arc = graph->arcEnd;
  const ArcRef forward = refOf(*graph, arc);
  const ArcRef backward = forward + kArcWords;
  new (arc) FlowArc{refOf(to), tail.firstArc, backward, static_cast<uint32_t>(capacity)};
  new (arc + 1)
      FlowArc{refOf(from), head.firstArc, forward, static_cast<uint32_t>(reverseCapacity)};
  tail.firstArc = forward;
  head.firstArc = backward;
  graph->arcEnd += 2;
  return QPX_OK;
}

int32_t MaxFlowInt_GetMaxFlow(MaxFlowGraph* graph) {
  if (graph == nullptr) return QPX_BAD_PARAM;
  solveWhole(*graph);
  return graph->flow;
}

int32_t MaxFlowInt_GetMaxFlowFast(MaxFlowGraph* graph) {
  if (graph == nullptr) return QPX_BAD_PARAM;
  solveMarked(*graph);
  return graph->flow;
}

int32_t MaxFlowInt_GetNodeType(const MaxFlowGraph* graph, int32_t node) {
  if (!hasNode(graph, node)) return QPX_BAD_PARAM;
  const FlowNode& at = nodeAt(*graph, node);
  return at.parent != kNone && at.inSinkTree() ? 1 : 0;
}

int32_t MaxFlowInt_GetTrcap(const MaxFlowGraph* graph, int32_t node) {
  return hasNode(graph, node) ? nodeAt(*graph, node).trCapacity : int32_t{QPX_BAD_PARAM};
}

int32_t MaxFlowInt_SetTrcap(MaxFlowGraph* graph, int32_t node, const int32_t* caps) {
  if (caps == nullptr || !hasNode(graph, node)) return QPX_BAD_PARAM;
  setTerminal(*graph, nodeAt(*graph, node), caps[0], caps[1]);
  return QPX_OK;
}

int32_t MaxFlowInt_ModifyNode(MaxFlowGraph* graph, int32_t node, int32_t value) {
  if (!hasNode(graph, node)) return QPX_BAD_PARAM;
  nodeAt(*graph, node).trCapacity = value;
  mark(*graph, node);
  return QPX_OK;
}

int32_t MaxFlowInt_MarkNode(MaxFlowGraph* graph, int32_t node) {
  if (!hasNode(graph, node)) return QPX_BAD_PARAM;
  mark(*graph, node);
  return QPX_OK;
}
