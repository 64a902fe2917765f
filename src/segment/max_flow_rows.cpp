#include "segment/max_flow_rows.h"

namespace qpx {
namespace {

// Back to what sorted edges have left.
void collectResiduals(MaxFlowGraph& graph) {
  for (int32_t i = 0; i < graph.sortedEdges; ++i) {
    FlowEdge& edge = graph.edges[i];
    const FlowArc& arc = graph.arcs[edge.capacity];
    edge.capacity = arc.residual;
    edge.reverse = arc.reverse;
  }
}

// Where every row ends, in the place of where it starts.
void countRows(MaxFlowGraph& graph) {
  for (int32_t i = 0; i <= graph.nodeCount; ++i) graph.nodes[i].firstArc = 0;
  for (int32_t i = 0; i < graph.edgeCount; ++i) {
    ++graph.nodes[graph.edges[i].from].firstArc;
    ++graph.nodes[graph.edges[i].to].firstArc;
  }
  ArcRef end = 0;
  for (int32_t i = 0; i <= graph.nodeCount; ++i) end = graph.nodes[i].firstArc += end;
}

}  // namespace

void sortArcs(MaxFlowGraph& graph) {
  if (graph.sortedEdges == graph.edgeCount) return;
  collectResiduals(graph);
  countRows(graph);
  for (int32_t i = 0; i < graph.edgeCount; ++i) {
    FlowEdge& edge = graph.edges[i];
    const ArcRef forward = --graph.nodes[edge.from].firstArc;
    const ArcRef backward = --graph.nodes[edge.to].firstArc;
    graph.arcs[forward] = {edge.to, backward, edge.capacity, edge.reverse};
    graph.arcs[backward] = {edge.from, forward, edge.reverse, edge.capacity};
    edge.capacity = forward;
  }
  graph.sortedEdges = graph.edgeCount;
}

}  // namespace qpx
