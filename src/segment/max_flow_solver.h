// Maximum flow by two search trees, after Y. Boykov and V. Kolmogorov, "An Experimental Comparison
// of Min-Cut/Max-Flow Algorithms for Energy Minimization in Vision" (2004); trees that outlive a
// solve after P. Kohli and P. H. S. Torr, "Efficiently Solving Dynamic Markov Random Fields Using
// Graph Cuts" (2005).
#pragma once

#include "segment/max_flow_graph.h"

namespace qpx {

// Puts a node into the queue for the next round, unless it waits in one.
void activate(MaxFlowGraph& graph, NodeRef ref);

// Both push all the flow that there is room for.
void solveWhole(MaxFlowGraph& graph);
void solveMarked(MaxFlowGraph& graph);

}  // namespace qpx
