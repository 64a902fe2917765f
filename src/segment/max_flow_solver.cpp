#include "segment/max_flow_solver.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "platform/new_record.h"

namespace qpx {
namespace {

constexpr int32_t kUnreachable = std::numeric_limits<int32_t>::max();
// A fast solve takes one more step before the first look at the clock.
constexpr int32_t kLastClock = std::numeric_limits<int32_t>::max() - 1;

enum class Tree : uint32_t { source = 0, sink = kIsSink };

constexpr Tree otherThan(Tree tree) { return tree == Tree::source ? Tree::sink : Tree::source; }

// Sums of 32 bits that wrap round.
int32_t plus(int32_t a, uint32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + b); }

// Flow that a terminal capacity lets through on its tree's side.
template <Tree tree>
uint32_t terminalRoom(const FlowNode& root) {
  if constexpr (tree == Tree::source) {
    return static_cast<uint32_t>(std::max(root.trCapacity, 0));
  } else {
    return root.trCapacity < 0 ? -static_cast<uint32_t>(root.trCapacity) : 0;
  }
}

class Solver {
 public:
  explicit Solver(MaxFlowGraph& graph) : graph_(graph), nodes_(graph.nodes), arcs_(graph.arcs) {}

  void plantTrees();
  void replantMarked();
  void run();

 private:
  FlowNode& node(NodeRef ref) { return recordAt(nodes_, ref); }
  FlowArc& arc(ArcRef ref) { return recordAt(arcs_, ref); }

  // Where flow has room on the way from the source to the sink: along an arc that leads away from
  // the root in the source's tree, against it in the sink's.
  template <Tree tree>
  uint32_t roomFromRoot(const FlowArc& away) {
    return tree == Tree::source ? away.residual : arc(away.sister).residual;
  }
  template <Tree tree>
  uint32_t roomToRoot(const FlowArc& away) {
    return roomFromRoot<otherThan(tree)>(away);
  }

  static bool isIn(Tree tree, const FlowNode& node) {
    return node.parent != kNone && (node.flags & kIsSink) == static_cast<uint32_t>(tree);
  }

  void emptyQueues();
  void fetchAhead(const FlowNode& next);
  NodeRef takeActive();
  NodeRef takeAllQueued();

  void plant(FlowNode& root, Tree tree);
  template <Tree tree>
  void replant(FlowNode& root);

  template <Tree tree>
  ArcRef grow(NodeRef ref);

  template <Tree tree>
  bool narrow(NodeRef ref, uint32_t& amount);
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
  void release(NodeRef ref);
  int32_t distanceToTerminal(NodeRef start);

  MaxFlowGraph& graph_;
  FlowNode* const nodes_;
  FlowArc* const arcs_;
};

void Solver::emptyQueues() {
  for (int queue : {0, 1}) {
    graph_.activeHead[queue] = kNone;
    graph_.activeTail[queue] = kNone;
  }
}

// Nodes of a queue lie anywhere; the next one is told of while this one is at work.
void Solver::fetchAhead(const FlowNode& next) {
  __builtin_prefetch(&arc(next.firstArc));
  __builtin_prefetch(&node(next.nextActive));
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
    FlowNode& taken = node(ref);
    head = taken.nextActive == ref ? kNone : taken.nextActive;
    taken.nextActive = kNone;
    if (head != kNone) fetchAhead(node(head));
    if (taken.parent != kNone) return ref;
  }
}

// Everything that waits, as one list; the queues are empty then.
NodeRef Solver::takeAllQueued() {
  const NodeRef first = graph_.activeHead[1];
  emptyQueues();
  return first;
}

void Solver::plant(FlowNode& root, Tree tree) {
  root.flags = (root.flags & ~kIsSink) | static_cast<uint32_t>(tree);
  root.parent = kToTerminal;
  root.timestamp = graph_.clock;
  root.distance = 1;
}

// Trees of nothing but roots.
void Solver::plantTrees() {
  emptyQueues();
  graph_.clock = 0;
  graph_.orphansLost = false;
  const auto end = static_cast<NodeRef>(graph_.nodeEnd - nodes_) * kNodeWords;
  for (NodeRef ref = kNodeWords; ref != end; ref += kNodeWords) {
    FlowNode& root = node(ref);
    root.nextActive = kNone;
    root.flags &= ~kSolveFlags;
    root.parent = kNone;
    root.timestamp = 0;
    if (root.trCapacity == 0) continue;
    plant(root, root.trCapacity > 0 ? Tree::source : Tree::sink);
    activate(graph_, ref);
  }
}

// A node that may come from another tree or from none becomes a root. Its children there lose
// their parent, and what it borders on there may find a path through it.
template <Tree tree>
void Solver::replant(FlowNode& root) {
  if (!isIn(tree, root)) {
    for (ArcRef ref = root.firstArc; ref != kNone; ref = arc(ref).next) {
      const FlowArc& away = arc(ref);
      FlowNode& neighbour = node(away.head);
      if ((neighbour.flags & kMarked) != 0) continue;
      if (neighbour.parent == away.sister) orphanLast(away.head);
      if (isIn(otherThan(tree), neighbour) && roomFromRoot<tree>(away) != 0) {
        activate(graph_, away.head);
      }
    }
  }
  plant(root, tree);
}

void Solver::replantMarked() {
  // Distances of the last pass of the last solve hold no more.
  ++graph_.clock;
  for (NodeRef ref = takeAllQueued(); ref != kNone;) {
    FlowNode& changed = node(ref);
    const NodeRef next = changed.nextActive == ref ? kNone : changed.nextActive;
    changed.nextActive = kNone;
    changed.flags &= ~kMarked;
    activate(graph_, ref);
    if (changed.trCapacity > 0) {
      replant<Tree::source>(changed);
    } else if (changed.trCapacity < 0) {
      replant<Tree::sink>(changed);
    } else if (changed.parent != kNone) {
      orphanLast(ref);
    }
    ref = next;
  }
  adoptAll();
}

// Adds what a node reaches to its tree. Returns the arc by which it reaches the other tree, in the
// direction of the flow, or kNone.
template <Tree tree>
ArcRef Solver::grow(NodeRef ref) {
  const FlowNode& parent = node(ref);
  const int32_t timestamp = parent.timestamp;
  const int32_t distance = parent.distance;
  for (ArcRef awayRef = parent.firstArc; awayRef != kNone;) {
    const FlowArc& away = arc(awayRef);
    if (roomFromRoot<tree>(away) != 0) {
      FlowNode& child = node(away.head);
      if (child.parent == kNone) {
        child.flags = (child.flags & ~kIsSink) | static_cast<uint32_t>(tree);
        child.parent = away.sister;
        child.timestamp = timestamp;
        child.distance = distance + 1;
        activate(graph_, away.head);
      } else if (!isIn(tree, child)) {
        return tree == Tree::source ? awayRef : away.sister;
      } else if (child.timestamp <= timestamp && child.distance > distance) {
        child.parent = away.sister;
        child.timestamp = timestamp;
        child.distance = distance + 1;
      }
    }
    awayRef = away.next;
  }
  return kNone;
}

// Cuts an amount of flow down to what the way between a node and its terminal lets through. False
// where the way ends at an orphan that was lost.
template <Tree tree>
bool Solver::narrow(NodeRef ref, uint32_t& amount) {
  for (;;) {
    const FlowNode& at = node(ref);
    if (at.parent == kOrphan) return false;
    if (at.parent == kToTerminal) {
      amount = std::min(amount, terminalRoom<tree>(at));
      return true;
    }
    const FlowArc& link = arc(at.parent);
    amount = std::min(amount, roomToRoot<tree>(link));
    ref = link.head;
  }
}

// Nodes whose way is full now lose their parent. A root without room is one even when nothing was
// pushed: hosts may have changed its capacity since.
template <Tree tree>
void Solver::push(NodeRef ref, uint32_t amount) {
  for (;;) {
    FlowNode& at = node(ref);
    if (at.parent == kToTerminal) {
      at.trCapacity = plus(at.trCapacity, tree == Tree::source ? -amount : amount);
      if (terminalRoom<tree>(at) == 0) orphanFirst(ref);
      return;
    }
    FlowArc& link = arc(at.parent);
    FlowArc& along = tree == Tree::source ? arc(link.sister) : link;
    arc(along.sister).residual += amount;
    along.residual -= amount;
    if (along.residual == 0) orphanFirst(ref);
    ref = link.head;
  }
}

// Pushes what the path over an arc from the source's tree to the sink's lets through. False when an
// end of it is lost.
bool Solver::augment(ArcRef bridgeRef) {
  FlowArc& bridge = arc(bridgeRef);
  FlowArc& back = arc(bridge.sister);
  uint32_t amount = bridge.residual;
  if (!narrow<Tree::source>(back.head, amount) || !narrow<Tree::sink>(bridge.head, amount)) {
    return false;
  }
  bridge.residual -= amount;
  back.residual += amount;
  push<Tree::source>(back.head, amount);
  push<Tree::sink>(bridge.head, amount);
  graph_.flow = plus(graph_.flow, amount);
  return true;
}

// Takes a node's parent away. Returns a record for it; without memory none, and the node stays as
// it is: nothing is adopted by it or flows through it any more.
OrphanRecord* Solver::makeOrphan(NodeRef ref) {
  node(ref).parent = kOrphan;
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
    node(ref).inSinkTree() ? adopt<Tree::sink>(ref) : adopt<Tree::source>(ref);
  }
}

// Hops from a node to its terminal, kUnreachable where the way ends at an orphan. What the way
// leads through is stamped with its own distance, so that other walks of this pass end there.
int32_t Solver::distanceToTerminal(NodeRef start) {
  int32_t hops = 0;
  for (NodeRef ref = start;; ++hops) {
    FlowNode& at = node(ref);
    if (at.timestamp == graph_.clock) {
      hops += at.distance;
      break;
    }
    if (at.parent == kOrphan) return kUnreachable;
    if (at.parent == kToTerminal) {
      at.timestamp = graph_.clock;
      at.distance = 1;
      ++hops;
      break;
    }
    ref = arc(at.parent).head;
  }
  int32_t distance = hops;
  for (NodeRef ref = start; node(ref).timestamp != graph_.clock; --distance) {
    FlowNode& at = node(ref);
    at.timestamp = graph_.clock;
    at.distance = distance;
    ref = arc(at.parent).head;
  }
  return hops;
}

// Looks for the parent nearest to the terminal, the first of those equally near.
template <Tree tree>
void Solver::adopt(NodeRef ref) {
  FlowNode& child = node(ref);
  ArcRef parent = kNone;
  int32_t nearest = kUnreachable;
  for (ArcRef awayRef = child.firstArc; awayRef != kNone; awayRef = arc(awayRef).next) {
    const FlowArc& away = arc(awayRef);
    if (roomToRoot<tree>(away) == 0 || !isIn(tree, node(away.head))) continue;
    const int32_t distance = distanceToTerminal(away.head);
    if (distance >= nearest) continue;
    nearest = distance;
    parent = awayRef;
  }
  if (parent == kNone) {
    release<tree>(ref);
    return;
  }
  child.parent = parent;
  child.timestamp = graph_.clock;
  child.distance = nearest + 1;
}

// A node leaves its tree: its children lose their parent, and what may reach it again tries to.
template <Tree tree>
void Solver::release(NodeRef ref) {
  FlowNode& leaving = node(ref);
  leaving.parent = kNone;
  for (ArcRef awayRef = leaving.firstArc; awayRef != kNone; awayRef = arc(awayRef).next) {
    const FlowArc& away = arc(awayRef);
    FlowNode& neighbour = node(away.head);
    if (!isIn(tree, neighbour)) continue;
    if (roomToRoot<tree>(away) != 0) activate(graph_, away.head);
    if (neighbour.parent == away.sister) orphanLast(away.head);
  }
}

void Solver::run() {
  NodeRef current = kNone;
  for (;;) {
    if (current != kNone) {
      node(current).nextActive = kNone;
      if (node(current).parent == kNone) current = kNone;
    }
    if (current == kNone) current = takeActive();
    if (current == kNone) break;
    const ArcRef bridge =
        node(current).inSinkTree() ? grow<Tree::sink>(current) : grow<Tree::source>(current);
    if (graph_.clock >= kLastClock) {
      plantTrees();
      current = kNone;
      continue;
    }
    ++graph_.clock;
    if (bridge == kNone) {
      current = kNone;
      continue;
    }
    // It looks queued, so that adoption leaves it alone, and goes on when that is done.
    node(current).nextActive = current;
    if (augment(bridge)) {
      adoptAll();
    } else {
      node(current).nextActive = kNone;
      current = kNone;
    }
  }
}

void finish(MaxFlowGraph& graph) {
  destroyPool(graph.nodePool);
  graph.nodePool = nullptr;
  graph.solveCount = static_cast<int32_t>(static_cast<uint32_t>(graph.solveCount) + 1);
}

}  // namespace

void activate(MaxFlowGraph& graph, NodeRef ref) {
  FlowNode& waiting = recordAt(graph.nodes, ref);
  if (waiting.nextActive != kNone) return;
  waiting.nextActive = ref;
  if (graph.activeTail[1] == kNone) {
    graph.activeHead[1] = ref;
  } else {
    recordAt(graph.nodes, graph.activeTail[1]).nextActive = ref;
  }
  graph.activeTail[1] = ref;
}

void solveWhole(MaxFlowGraph& graph) {
  Solver solver(graph);
  solver.plantTrees();
  solver.run();
  finish(graph);
}

void solveMarked(MaxFlowGraph& graph) {
  if (graph.solveCount == 0 || graph.orphansLost) {
    solveWhole(graph);
    return;
  }
  Solver solver(graph);
  solver.replantMarked();
  solver.run();
  finish(graph);
}

}  // namespace qpx
