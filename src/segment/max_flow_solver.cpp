#include "segment/max_flow_solver.h"

#include <algorithm>
#include <cstdint>

#include "platform/new_record.h"
#include "segment/max_flow_rows.h"

namespace qpx {
namespace {

// Room for one more step of a search that starts below it.
constexpr int32_t kHighest = kOrphanHeight - 2;
// How far an orphan may rise for a parent. One that would have to rise further is nearly always cut
// off with all around it, and sooner found again by the search than by rising step by step.
constexpr int32_t kMostRise = 2;

enum class Tree { source, sink };

constexpr Tree otherThan(Tree tree) { return tree == Tree::source ? Tree::sink : Tree::source; }

// Sums of 32 bits that wrap round.
int32_t plus(int32_t a, uint32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + b); }

// Heights as they are kept, and back: above 0 in a tree, at most 0 outside of it.
template <Tree tree>
int32_t inTree(int32_t height) {
  return tree == Tree::source ? height : -height;
}

// Where flow has room on the way from the source to the sink: along an arc that leads away from the
// root in the source's tree, against it in the sink's.
template <Tree tree>
uint32_t roomFromRoot(const FlowArc& away) {
  return tree == Tree::source ? away.residual : away.reverse;
}
template <Tree tree>
uint32_t roomToRoot(const FlowArc& away) {
  return roomFromRoot<otherThan(tree)>(away);
}

// Flow that a terminal capacity lets through on its tree's side.
template <Tree tree>
uint32_t terminalRoom(const FlowTerminal& root) {
  if constexpr (tree == Tree::source) {
    return static_cast<uint32_t>(std::max(root.capacity, 0));
  } else {
    return root.capacity < 0 ? -static_cast<uint32_t>(root.capacity) : 0;
  }
}

class Solver {
 public:
  explicit Solver(MaxFlowGraph& graph)
      : graph_(graph), nodes_(graph.nodes), terminals_(graph.terminals), arcs_(graph.arcs) {}

  void pushToNeighbours();
  void plantTrees();
  void replantMarked();
  void run();

 private:
  void emptyQueues();
  void fetchAhead(NodeRef next) const;
  NodeRef takeActive();
  NodeRef takeAllQueued();

  template <Tree tree>
  void plant(NodeRef ref);
  template <Tree tree>
  void replant(NodeRef ref);

  template <Tree tree>
  void growFrom(NodeRef ref);
  template <Tree tree>
  ArcRef grow(NodeRef ref, ArcRef& next);

  void move(FlowArc& along, uint32_t amount);
  template <Tree tree>
  bool narrow(NodeRef ref, uint32_t& amount) const;
  template <Tree tree>
  void push(NodeRef ref, uint32_t amount);
  bool augment(ArcRef bridge);

  OrphanRecord* makeOrphan(NodeRef ref);
  void orphanFirst(NodeRef ref);
  void orphanLast(NodeRef ref);
  void adoptAll();
  template <Tree tree>
  void adopt(NodeRef ref);
  template <Tree tree>
  void letGo(NodeRef ref, int32_t height);
  template <Tree tree>
  void release(NodeRef ref);

  MaxFlowGraph& graph_;
  FlowNode* const nodes_;
  FlowTerminal* const terminals_;
  FlowArc* const arcs_;
};

void Solver::emptyQueues() {
  for (int queue : {0, 1}) {
    graph_.activeHead[queue] = kNone;
    graph_.activeTail[queue] = kNone;
  }
}

// Nodes of a queue lie anywhere; the next one is told of while this one is at work.
void Solver::fetchAhead(NodeRef next) const {
  __builtin_prefetch(arcs_ + nodes_[next].firstArc);
  __builtin_prefetch(nodes_ + nodes_[next].nextActive);
}

// The next node that is in a tree.
NodeRef Solver::takeActive() {
  for (;;) {
    NodeRef& head = graph_.activeHead[0];
    if (head == kNone) {
      head = graph_.activeHead[1];
      if (head == kNone) return kNone;
      graph_.activeHead[1] = kNone;
      graph_.activeTail[1] = kNone;
    }
    const NodeRef ref = head;
    FlowNode& taken = nodes_[ref];
    head = taken.nextActive == ref ? kNone : taken.nextActive;
    taken.nextActive = kNone;
    if (head != kNone) fetchAhead(head);
    if (nodes_[ref].height != 0) return ref;
  }
}

// Everything that waits, as one list; the queues are empty then.
NodeRef Solver::takeAllQueued() {
  const NodeRef first = graph_.activeHead[1];
  emptyQueues();
  return first;
}

template <Tree tree>
void Solver::plant(NodeRef ref) {
  nodes_[ref].setParent(kToTerminal, inTree<tree>(1));
}

// Paths of one arc need no search.
void Solver::pushToNeighbours() {
  const auto count = static_cast<NodeRef>(graph_.nodeCount);
  for (NodeRef ref = 0; ref < count; ++ref) {
    FlowTerminal& from = terminals_[ref];
    if (from.capacity <= 0) continue;
    for (FlowArc& arc : graph_.row(ref)) {
      FlowTerminal& to = terminals_[arc.head];
      if (to.capacity >= 0) continue;
      const uint32_t amount =
          std::min({arc.residual, terminalRoom<Tree::source>(from), terminalRoom<Tree::sink>(to)});
      move(arc, amount);
      from.capacity = plus(from.capacity, -amount);
      to.capacity = plus(to.capacity, amount);
      graph_.flow = plus(graph_.flow, amount);
    }
  }
}

// Trees of nothing but roots.
void Solver::plantTrees() {
  emptyQueues();
  graph_.highest = 1;
  graph_.orphansLost = false;
  const auto count = static_cast<NodeRef>(graph_.nodeCount);
  for (NodeRef ref = 0; ref < count; ++ref) {
    FlowTerminal& root = terminals_[ref];
    root.flags &= ~kSolveFlags;
    nodes_[ref].nextActive = kNone;
    nodes_[ref].setParent(kNone, 0);
    if (root.capacity == 0) continue;
    root.capacity > 0 ? plant<Tree::source>(ref) : plant<Tree::sink>(ref);
    activate(graph_, ref);
  }
}

// A node that may come from another tree or from none becomes a root. Its children there lose
// their parent, and what it borders on there may find a path through it.
template <Tree tree>
void Solver::replant(NodeRef ref) {
  if (inTree<tree>(nodes_[ref].height) <= 0) {
    for (const FlowArc& away : graph_.row(ref)) {
      if ((terminals_[away.head].flags & kMarked) != 0) continue;
      const FlowNode& neighbour = nodes_[away.head];
      if (neighbour.parent == away.sister) orphanLast(away.head);
      if (inTree<tree>(neighbour.height) < 0 && roomFromRoot<tree>(away) != 0) {
        activate(graph_, away.head);
      }
    }
  }
  plant<tree>(ref);
}

void Solver::replantMarked() {
  for (NodeRef ref = takeAllQueued(); ref != kNone;) {
    FlowNode& changed = nodes_[ref];
    const NodeRef next = changed.nextActive == ref ? kNone : changed.nextActive;
    changed.nextActive = kNone;
    terminals_[ref].flags &= ~kMarked;
    activate(graph_, ref);
    if (terminals_[ref].capacity > 0) {
      replant<Tree::source>(ref);
    } else if (terminals_[ref].capacity < 0) {
      replant<Tree::sink>(ref);
    } else if (nodes_[ref].height != 0) {
      orphanLast(ref);
    }
    ref = next;
  }
  adoptAll();
}

// Adds what a node reaches to its tree, from an arc of it on. Returns the arc by which it reaches
// the other tree, or kNone.
template <Tree tree>
ArcRef Solver::grow(NodeRef ref, ArcRef& next) {
  const int32_t above = inTree<tree>(nodes_[ref].height) + 1;
  const ArcRef end = nodes_[ref + 1].firstArc;
  for (; next != end; ++next) {
    const FlowArc& away = arcs_[next];
    if (roomFromRoot<tree>(away) == 0) continue;
    FlowNode& child = nodes_[away.head];
    const int32_t height = inTree<tree>(child.height);
    if (height < 0) return next;
    if (height == 0) {
      graph_.highest = std::max(graph_.highest, above);
      activate(graph_, away.head);
    } else if (height <= above || height == kOrphanHeight) {
      continue;
    }
    child.setParent(away.sister, inTree<tree>(above));
  }
  return kNone;
}

void Solver::move(FlowArc& along, uint32_t amount) {
  FlowArc& back = arcs_[along.sister];
  along.residual -= amount;
  along.reverse += amount;
  back.residual += amount;
  back.reverse -= amount;
}

// Cuts an amount of flow down to what the way between a node and its terminal lets through. False
// where the way ends at an orphan that was lost.
template <Tree tree>
bool Solver::narrow(NodeRef ref, uint32_t& amount) const {
  for (;;) {
    const ArcRef parent = nodes_[ref].parent;
    if (parent >= kOrphanBit) return false;
    if (parent == kToTerminal) {
      amount = std::min(amount, terminalRoom<tree>(terminals_[ref]));
      return true;
    }
    amount = std::min(amount, roomToRoot<tree>(arcs_[parent]));
    ref = arcs_[parent].head;
  }
}

// Nodes whose way is full now lose their parent. A root without room is one even when nothing was
// pushed: hosts may have changed its capacity since.
template <Tree tree>
void Solver::push(NodeRef ref, uint32_t amount) {
  for (;;) {
    const ArcRef parent = nodes_[ref].parent;
    if (parent == kToTerminal) {
      FlowTerminal& root = terminals_[ref];
      root.capacity = plus(root.capacity, tree == Tree::source ? -amount : amount);
      if (terminalRoom<tree>(root) == 0) orphanFirst(ref);
      return;
    }
    FlowArc& link = arcs_[parent];
    move(tree == Tree::source ? arcs_[link.sister] : link, amount);
    if (roomToRoot<tree>(link) == 0) orphanFirst(ref);
    ref = link.head;
  }
}

// Pushes what the path over an arc from the source's tree to the sink's lets through. False when an
// end of it is lost.
bool Solver::augment(ArcRef bridgeRef) {
  FlowArc& bridge = arcs_[bridgeRef];
  const NodeRef tail = arcs_[bridge.sister].head;
  uint32_t amount = bridge.residual;
  if (!narrow<Tree::source>(tail, amount) || !narrow<Tree::sink>(bridge.head, amount)) {
    return false;
  }
  move(bridge, amount);
  push<Tree::source>(tail, amount);
  push<Tree::sink>(bridge.head, amount);
  graph_.flow = plus(graph_.flow, amount);
  return true;
}

// Takes a node's parent away. Returns a record for it; without memory none, and the node stays as
// it is: nothing is adopted by it or flows through it any more.
OrphanRecord* Solver::makeOrphan(NodeRef ref) {
  FlowNode& node = nodes_[ref];
  const bool inSource = node.height > 0;
  const auto height = static_cast<uint32_t>(inSource ? node.height : -node.height);
  node.setParent(kOrphanBit | height, inSource ? kOrphanHeight : -kOrphanHeight);
  if (graph_.nodePool == nullptr) graph_.nodePool = newRecord<FlowPool>();
  OrphanRecord* const record = graph_.nodePool == nullptr ? nullptr : graph_.nodePool->take();
  if (record == nullptr) {
    graph_.orphansLost = true;
    return nullptr;
  }
  record->node = ref;
  record->next = nullptr;
  return record;
}

void Solver::orphanFirst(NodeRef ref) {
  OrphanRecord* const record = makeOrphan(ref);
  if (record == nullptr) return;
  record->next = graph_.orphanHead;
  graph_.orphanHead = record;
  if (graph_.orphanTail == nullptr) graph_.orphanTail = record;
}

void Solver::orphanLast(NodeRef ref) {
  OrphanRecord* const record = makeOrphan(ref);
  if (record == nullptr) return;
  (graph_.orphanTail == nullptr ? graph_.orphanHead : graph_.orphanTail->next) = record;
  graph_.orphanTail = record;
}

void Solver::adoptAll() {
  while (graph_.orphanHead != nullptr) {
    OrphanRecord* const record = graph_.orphanHead;
    graph_.orphanHead = record->next;
    if (graph_.orphanHead == nullptr) graph_.orphanTail = nullptr;
    const NodeRef ref = record->node;
    graph_.nodePool->giveBack(record);
    nodes_[ref].height < 0 ? adopt<Tree::sink>(ref) : adopt<Tree::source>(ref);
  }
}

// Looks for the lowest parent. One that is lower than the node cannot be below it in the tree; for
// another the node rises above it and lets the children go that it reaches by that. So no walk to
// the root is needed, and what nothing holds rises until it is above the tree and leaves it.
template <Tree tree>
void Solver::adopt(NodeRef ref) {
  const auto height = static_cast<int32_t>(nodes_[ref].parent & ~kOrphanBit);
  ArcRef parent = kNone;
  int32_t lowest = std::min(graph_.highest, height + kMostRise);
  const ArcRef end = nodes_[ref + 1].firstArc;
  for (ArcRef awayRef = nodes_[ref].firstArc; awayRef != end; ++awayRef) {
    const FlowArc& away = arcs_[awayRef];
    const FlowNode& candidate = nodes_[away.head];
    const int32_t candidateHeight = inTree<tree>(candidate.height);
    const bool fits = (candidateHeight > 0) & (candidateHeight < lowest) &
                      (candidate.parent != away.sister) & (roomToRoot<tree>(away) != 0);
    lowest = fits ? candidateHeight : lowest;
    parent = fits ? awayRef : parent;
  }
  if (parent == kNone) {
    release<tree>(ref);
    return;
  }
  if (lowest >= height) letGo<tree>(ref, lowest + 1);
  nodes_[ref].setParent(parent, inTree<tree>(std::max(height, lowest + 1)));
}

// Takes away the children that a node reaches when it rises.
template <Tree tree>
void Solver::letGo(NodeRef ref, int32_t height) {
  for (const FlowArc& away : graph_.row(ref)) {
    const FlowNode& child = nodes_[away.head];
    if (child.parent == away.sister && inTree<tree>(child.height) <= height) orphanLast(away.head);
  }
}

// A node leaves its tree: its children lose their parent, and what may reach it again tries to.
template <Tree tree>
void Solver::release(NodeRef ref) {
  nodes_[ref].setParent(kNone, 0);
  for (const FlowArc& away : graph_.row(ref)) {
    const FlowNode& neighbour = nodes_[away.head];
    if (inTree<tree>(neighbour.height) <= 0) continue;
    if (roomToRoot<tree>(away) != 0) activate(graph_, away.head);
    if (neighbour.parent == away.sister) orphanLast(away.head);
  }
}

// Goes on as long as the node stays in its tree. What is released meanwhile may queue it again.
template <Tree tree>
void Solver::growFrom(NodeRef ref) {
  ArcRef next = nodes_[ref].firstArc;
  for (;;) {
    const int32_t height = inTree<tree>(nodes_[ref].height);
    if (height <= 0 || height == kOrphanHeight) return;
    if (graph_.highest >= kHighest) return plantTrees();
    const ArcRef bridge = grow<tree>(ref, next);
    if (bridge == kNone || !augment(tree == Tree::source ? bridge : arcs_[bridge].sister)) return;
    adoptAll();
  }
}

void Solver::run() {
  for (NodeRef ref = takeActive(); ref != kNone; ref = takeActive()) {
    nodes_[ref].height > 0 ? growFrom<Tree::source>(ref) : growFrom<Tree::sink>(ref);
  }
}

void finish(MaxFlowGraph& graph) {
  destroyPool(graph.nodePool);
  graph.nodePool = nullptr;
  graph.solveCount = static_cast<int32_t>(static_cast<uint32_t>(graph.solveCount) + 1);
}

}  // namespace

void activate(MaxFlowGraph& graph, NodeRef ref) {
  FlowNode& waiting = graph.nodes[ref];
  if (waiting.nextActive != kNone) return;
  waiting.nextActive = ref;
  if (graph.activeTail[1] == kNone) {
    graph.activeHead[1] = ref;
  } else {
    graph.nodes[graph.activeTail[1]].nextActive = ref;
  }
  graph.activeTail[1] = ref;
}

void solveWhole(MaxFlowGraph& graph) {
  sortArcs(graph);
  Solver solver(graph);
  solver.pushToNeighbours();
  solver.plantTrees();
  solver.run();
  finish(graph);
}

void solveMarked(MaxFlowGraph& graph) {
  if (graph.solveCount == 0 || graph.orphansLost || graph.sortedEdges != graph.edgeCount) {
    solveWhole(graph);
    return;
  }
  Solver solver(graph);
  solver.replantMarked();
  solver.run();
  finish(graph);
}

}  // namespace qpx
