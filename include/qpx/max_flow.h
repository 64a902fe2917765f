/* Minimum cuts of graphs with integer capacities: a maximum flow from a source to a sink by two
 * search trees and augmenting paths, after Boykov and Kolmogorov (2004). A solved graph can be
 * solved again quickly when few of its nodes have changed.
 *
 * The source and the sink are no nodes of the graph: every node has a terminal capacity, which is
 * that of an arc from the source when it is positive, and that of an arc to the sink, negated, when
 * it is negative. Solving uses capacities up: what is read and set afterwards is what is left.
 *
 * Flows and terminal capacities are 32-bit numbers and wrap round when they leave them. Some calls
 * return a number in place of a result code; 2 and 4 among those may mean either. A graph belongs
 * to one thread at a time; distinct graphs are independent. */
#ifndef QPX_MAX_FLOW_H_
#define QPX_MAX_FLOW_H_

#include <qpx/types.h>

QPX_BEGIN_DECLS

typedef struct MaxFlowGraph MaxFlowGraph;

/* Makes an empty graph with room for nodeMax nodes and arcMax edges, 16 of each at least. Returns
 * 0; 2 for a null `out`; 4 for no memory, with *out null. */
QPX_API int32_t MaxFlowInt_Create(MaxFlowGraph** out, int32_t nodeMax, int32_t arcMax);

/* Takes all nodes, edges and flow away and keeps the room. Returns 0, or 2 for null. */
QPX_API int32_t MaxFlowInt_Initialize(MaxFlowGraph* graph);

/* Frees a graph. Returns 0, also for null. */
QPX_API int32_t MaxFlowInt_Destroy(MaxFlowGraph* graph);

/* Adds a node without any capacity. Returns its index: 0, 1, 2 and so on; or 2 for null, 4 when
 * there is no room. */
QPX_API int32_t MaxFlowInt_AddNode(MaxFlowGraph* graph);

/* Adds to a node's terminal capacities: caps[0] from the source, caps[1] to the sink. What can flow
 * straight through the node is flow from then on, the rest is the node's terminal capacity. Returns
 * 0, or 2 for null or a node that is not there. */
QPX_API int32_t MaxFlowInt_AddTWeights(MaxFlowGraph* graph, int32_t node, const int32_t* caps);

/* Adds an edge: an arc from one node to another and one back. Returns 0; 2 for null, nodes that are
 * not there or the same, or a capacity below 0; 4 when there is no room. */
QPX_API int32_t MaxFlowInt_AddEdge(MaxFlowGraph* graph, int32_t from, int32_t to, int32_t capacity,
                                   int32_t reverseCapacity);

/* Pushes all the flow that there is room for. Returns the flow since the graph was empty, or 2 for
 * null. When memory runs out meanwhile, the flow may be less than the most; a later call pushes
 * the rest. */
QPX_API int32_t MaxFlowInt_GetMaxFlow(MaxFlowGraph* graph);

/* The same for a graph that was solved before and has changed since: searches only around the nodes
 * given to MaxFlowInt_ModifyNode and MaxFlowInt_MarkNode, which must be all whose terminal capacity
 * was changed and both ends of every edge added. A graph that was not solved before is solved
 * whole. Returns as above. */
QPX_API int32_t MaxFlowInt_GetMaxFlowFast(MaxFlowGraph* graph);

/* The side of the minimum cut that a node of a solved graph is on: 1 where it can still send flow
 * to the sink, else 0. Returns that, or 2 for null or a node that is not there. */
QPX_API int32_t MaxFlowInt_GetNodeType(const MaxFlowGraph* graph, int32_t node);

/* A node's terminal capacity. Returns that, or 2 for null or a node that is not there. */
QPX_API int32_t MaxFlowInt_GetTrcap(const MaxFlowGraph* graph, int32_t node);

/* Replaces a node's terminal capacity by caps[0] from the source and caps[1] to the sink, as if it
 * had none before. Does not mark the node. Returns 0, or 2 for null or a node that is not there. */
QPX_API int32_t MaxFlowInt_SetTrcap(MaxFlowGraph* graph, int32_t node, const int32_t* caps);

/* Sets a node's terminal capacity, which adds nothing to the flow, and marks the node. Returns 0,
 * or 2 for null or a node that is not there. */
QPX_API int32_t MaxFlowInt_ModifyNode(MaxFlowGraph* graph, int32_t node, int32_t value);

/* Has a node looked at by the next MaxFlowInt_GetMaxFlowFast. Returns 0, or 2 for null or a node
 * that is not there. */
QPX_API int32_t MaxFlowInt_MarkNode(MaxFlowGraph* graph, int32_t node);

QPX_END_DECLS

#endif /* QPX_MAX_FLOW_H_ */
