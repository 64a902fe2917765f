// Sorting the arcs of a graph by where they come from.
#pragma once

#include "segment/max_flow_graph.h"

namespace qpx {

// Sorts what was added since the last time. Where that is anything, references to arcs hold no
// more.
void sortArcs(MaxFlowGraph& graph);

}  // namespace qpx
