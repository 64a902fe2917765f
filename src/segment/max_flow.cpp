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
constexpr int32_t kMostRoom = 1 << 29;
constexpr int64_t kCacheLine = 64;

// A block of one array behind the other, each of whole cache lines.
template <typename First, typename Second>
void* allocateBlock(int64_t firstCount, First*& first, int64_t secondCount, Second*& second) {
  const auto lines = [](int64_t bytes) { return (bytes + kCacheLine - 1) & -kCacheLine; };
  const int64_t firstBytes = lines(firstCount * int64_t{sizeof(First)});
  const int64_t secondBytes = lines(secondCount * int64_t{sizeof(Second)});
  void* const block = MMemAlloc(nullptr, blockBytes(firstBytes + secondBytes + kCacheLine, 1));
  if (block == nullptr) return nullptr;
  const auto toLine = static_cast<size_t>(-reinterpret_cast<intptr_t>(block) & (kCacheLine - 1));
  uint8_t* const start = static_cast<uint8_t*>(block) + toLine;
  first = reinterpret_cast<First*>(start);
  second = reinterpret_cast<Second*>(start + firstBytes);
  return block;
}

bool hasNode(const MaxFlowGraph* graph, int32_t node) {
  return graph != nullptr && node >= 0 && node < graph->nodeCount;
}

int32_t sum(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

int32_t difference(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// What goes from source to sink through the node alone is flow.
void setTerminal(MaxFlowGraph& graph, FlowTerminal& terminal, int32_t fromSource, int32_t toSink) {
  terminal.capacity = difference(fromSource, toSink);
  graph.flow = sum(graph.flow, std::min(fromSource, toSink));
}

void clear(MaxFlowGraph& graph) {
  graph.nodeCount = 0;
  graph.edgeCount = 0;
  graph.sortedEdges = 0;
  graph.flow = 0;
  graph.solveCount = 0;
  graph.highest = 0;
  graph.orphansLost = false;
  for (const int queue : {0, 1}) {
    graph.activeHead[queue] = kNone;
    graph.activeTail[queue] = kNone;
  }
}

void mark(MaxFlowGraph& graph, int32_t node) {
  activate(graph, static_cast<NodeRef>(node));
  graph.terminals[node].flags |= kMarked;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t MaxFlowInt_Create(MaxFlowGraph** out, int32_t nodeMax, int32_t arcMax) {
  if (out == nullptr) return QPX_BAD_PARAM;
  *out = nullptr;
  auto* const graph = newRecord<MaxFlowGraph>();
  if (graph == nullptr) return QPX_NO_MEMORY;
  graph->nodeLimit = std::max(nodeMax, kLeastRoom);
  graph->edgeLimit = std::max(arcMax, kLeastRoom);
  if (std::max(graph->nodeLimit, graph->edgeLimit) <= kMostRoom) {
    graph->nodeBlock = allocateBlock(int64_t{graph->nodeLimit} + 1, graph->nodes, graph->nodeLimit,
                                     graph->terminals);
    graph->edgeBlock =
        allocateBlock(int64_t{graph->edgeLimit} * 2, graph->arcs, graph->edgeLimit, graph->edges);
  }
  if (graph->nodeBlock == nullptr || graph->edgeBlock == nullptr) {
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
  MMemFree(nullptr, graph->edgeBlock);
  MMemFree(nullptr, graph);
  return QPX_OK;
}

int32_t MaxFlowInt_AddNode(MaxFlowGraph* graph) {
  if (graph == nullptr) return QPX_BAD_PARAM;
  if (graph->nodeCount == graph->nodeLimit) return QPX_NO_MEMORY;
  const int32_t node = graph->nodeCount++;
  const auto arcEnd = 2 * static_cast<ArcRef>(graph->sortedEdges);
  graph->nodes[node] = {kNone, 0, arcEnd, kNone};
  graph->nodes[graph->nodeCount].firstArc = arcEnd;
  graph->terminals[node] = {0, 0};
  return node;
}

int32_t MaxFlowInt_AddTWeights(MaxFlowGraph* graph, int32_t node, const int32_t* caps) {
  if (caps == nullptr || !hasNode(graph, node)) return QPX_BAD_PARAM;
  FlowTerminal& at = graph->terminals[node];
  const int32_t present = at.capacity;
  setTerminal(*graph, at, present > 0 ? sum(caps[0], present) : caps[0],
              present > 0 ? caps[1] : difference(caps[1], present));
  return QPX_OK;
}

int32_t MaxFlowInt_AddEdge(MaxFlowGraph* graph, int32_t from, int32_t to, int32_t capacity,
                           int32_t reverseCapacity) {
  if (!hasNode(graph, from) || !hasNode(graph, to) || from == to) return QPX_BAD_PARAM;
  if (capacity < 0 || reverseCapacity < 0) return QPX_BAD_PARAM;
  if (graph->edgeCount == graph->edgeLimit) return QPX_NO_MEMORY;
  graph->edges[graph->edgeCount++] = {static_cast<NodeRef>(from), static_cast<NodeRef>(to),
                                      static_cast<uint32_t>(capacity),
                                      static_cast<uint32_t>(reverseCapacity)};
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
  return graph->nodes[node].height < 0 ? 1 : 0;
}

int32_t MaxFlowInt_GetTrcap(const MaxFlowGraph* graph, int32_t node) {
  return hasNode(graph, node) ? graph->terminals[node].capacity : int32_t{QPX_BAD_PARAM};
}

int32_t MaxFlowInt_SetTrcap(MaxFlowGraph* graph, int32_t node, const int32_t* caps) {
  if (caps == nullptr || !hasNode(graph, node)) return QPX_BAD_PARAM;
  setTerminal(*graph, graph->terminals[node], caps[0], caps[1]);
  return QPX_OK;
}

int32_t MaxFlowInt_ModifyNode(MaxFlowGraph* graph, int32_t node, int32_t value) {
  if (!hasNode(graph, node)) return QPX_BAD_PARAM;
  graph->terminals[node].capacity = value;
  mark(*graph, node);
  return QPX_OK;
}

int32_t MaxFlowInt_MarkNode(MaxFlowGraph* graph, int32_t node) {
  if (!hasNode(graph, node)) return QPX_BAD_PARAM;
  mark(*graph, node);
  return QPX_OK;
}
