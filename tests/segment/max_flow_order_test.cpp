// Of the many maximum flows of a graph the solver finds a certain one, and hosts see which in what
// terminals have left. Here the order of its search is written down once more, plainly, and both
// have to agree in every residual.
#include <gtest/gtest.h>
#include <qpx/max_flow.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <vector>

#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr int kFree = -1;
constexpr int kTerminal = -2;
constexpr int kOrphan = -3;
constexpr int kNothing = -1;
constexpr int kFar = std::numeric_limits<int>::max();

size_t at(int index) { return static_cast<size_t>(index); }

struct PlainSolver {
  struct Node {
    std::vector<int> arcs;  // the newest first
    int parent = kFree;     // the arc from the parent to this node
    bool queued = false;
    int timestamp = 0;
    int distance = 0;
    bool isSink = false;
    bool marked = false;
    int terminal = 0;
  };

  std::vector<Node> nodes;
  std::vector<int> heads;
  std::vector<int> residual;
  std::deque<int> current, next, orphans;
  int clock = 0;
  int flow = 0;

  static int sister(int arc) { return arc ^ 1; }
  Node& node(int i) { return nodes[at(i)]; }
  int headOf(int arc) const { return heads[at(arc)]; }
  int tailOf(int arc) const { return heads[at(sister(arc))]; }

  void addEdge(int from, int to, int capacity, int reverse) {
    const int arc = static_cast<int>(heads.size());
    heads.insert(heads.end(), {to, from});
    residual.insert(residual.end(), {capacity, reverse});
    node(from).arcs.insert(node(from).arcs.begin(), arc);
    node(to).arcs.insert(node(to).arcs.begin(), sister(arc));
  }

  void mark(int i) {
    enqueue(i);
    node(i).marked = true;
  }
  void modify(int i, int value) {
    node(i).terminal = value;
    mark(i);
  }

  bool isIn(bool isSink, int i) { return node(i).parent != kFree && node(i).isSink == isSink; }
  int type(int i) { return isIn(true, i) ? 1 : 0; }

  void enqueue(int i) {
    if (node(i).queued) return;
    node(i).queued = true;
    next.push_back(i);
  }

  int dequeue() {
    for (;;) {
      if (current.empty()) current.swap(next);
      if (current.empty()) return kNothing;
      const int i = current.front();
      current.pop_front();
      node(i).queued = false;
      if (node(i).parent != kFree) return i;
    }
  }

  // What flow may still pass from a node of a tree over one of its arcs, away from the terminal.
  int roomAway(bool isSink, int arc) const {
    return isSink ? residual[at(sister(arc))] : residual[at(arc)];
  }
  // ... and from the arc's head to the node, for a child that may hang from the head.
  int roomBack(bool isSink, int arc) const { return roomAway(isSink, sister(arc)); }

  void becomeRoot(int i, bool isSink) {
    node(i).isSink = isSink;
    node(i).parent = kTerminal;
    node(i).timestamp = clock;
    node(i).distance = 1;
  }

  int solve() {
    current.clear();
    next.clear();
    clock = 0;
    for (int i = 0; i < static_cast<int>(nodes.size()); ++i) {
      node(i).queued = false;
      node(i).marked = false;
      node(i).timestamp = 0;
      node(i).parent = kFree;
      if (node(i).terminal == 0) continue;
      becomeRoot(i, node(i).terminal < 0);
      enqueue(i);
    }
    search();
    return flow;
  }

  int solveAgain() {
    ++clock;
    // What is still to come in the list counts as queued.
    std::deque<int> changed;
    changed.swap(next);
    for (const int i : changed) {
      node(i).queued = false;
      node(i).marked = false;
      enqueue(i);
      if (node(i).terminal != 0) {
        reenter(i, node(i).terminal < 0);
      } else if (node(i).parent != kFree) {
        orphanLast(i);
      }
    }
    adoptOrphans();
    search();
    return flow;
  }

  void reenter(int i, bool isSink) {
    if (!isIn(isSink, i)) {
      for (const int arc : node(i).arcs) {
        const int j = headOf(arc);
        if (node(j).parent == arc && !node(j).marked) orphanLast(j);
        if (isIn(!isSink, j) && roomAway(isSink, arc) > 0) enqueue(j);
      }
    }
    becomeRoot(i, isSink);
  }

  void search() {
    int i = kNothing;
    for (;;) {
      if (i != kNothing) {
        node(i).queued = false;
        if (node(i).parent == kFree) i = kNothing;
      }
      if (i == kNothing) i = dequeue();
      if (i == kNothing) return;
      const int bridge = grow(i);
      ++clock;
      if (bridge == kNothing) {
        i = kNothing;
        continue;
      }
      node(i).queued = true;
      augment(bridge);
      adoptOrphans();
    }
  }

  // Returns the arc from the source's tree to the sink's, if there is one.
  int grow(int i) {
    const bool isSink = node(i).isSink;
    for (const int arc : node(i).arcs) {
      if (roomAway(isSink, arc) == 0) continue;
      const int j = headOf(arc);
      if (isIn(!isSink, j)) return isSink ? sister(arc) : arc;
      const bool isFree = node(j).parent == kFree;
      const bool isNearer =
          node(j).timestamp <= node(i).timestamp && node(j).distance > node(i).distance;
      if (!isFree && !isNearer) continue;
      node(j).isSink = isSink;
      node(j).parent = arc;
      node(j).timestamp = node(i).timestamp;
      node(j).distance = node(i).distance + 1;
      if (isFree) enqueue(j);
    }
    return kNothing;
  }

  void augment(int bridge) {
    // Arcs as the flow goes, each with the child that hangs from it.
    struct Link {
      int arc, child;
    };
    std::vector<Link> links;
    int first = tailOf(bridge);
    for (; node(first).parent != kTerminal; first = tailOf(links.back().arc)) {
      links.push_back({node(first).parent, first});
    }
    const size_t ofSource = links.size();
    int last = headOf(bridge);
    for (; node(last).parent != kTerminal; last = headOf(links.back().arc)) {
      links.push_back({sister(node(last).parent), last});
    }

    int amount = std::min({residual[at(bridge)], node(first).terminal, -node(last).terminal});
    for (const Link& link : links) amount = std::min(amount, residual[at(link.arc)]);

    pushOver(bridge, amount);
    for (size_t k = 0; k < ofSource; ++k) pushToChild(links[k].arc, links[k].child, amount);
    node(first).terminal -= amount;
    if (node(first).terminal == 0) orphanFirst(first);
    for (size_t k = ofSource; k < links.size(); ++k) {
      pushToChild(links[k].arc, links[k].child, amount);
    }
    node(last).terminal += amount;
    if (node(last).terminal == 0) orphanFirst(last);
    flow += amount;
  }

  void pushOver(int arc, int amount) {
    residual[at(arc)] -= amount;
    residual[at(sister(arc))] += amount;
  }
  void pushToChild(int arc, int child, int amount) {
    pushOver(arc, amount);
    if (residual[at(arc)] == 0) orphanFirst(child);
  }
  void orphanFirst(int i) {
    node(i).parent = kOrphan;
    orphans.push_front(i);
  }
  void orphanLast(int i) {
    node(i).parent = kOrphan;
    orphans.push_back(i);
  }

  void adoptOrphans() {
    while (!orphans.empty()) {
      const int i = orphans.front();
      orphans.pop_front();
      adopt(i);
    }
  }

  void adopt(int i) {
    const bool isSink = node(i).isSink;
    int parent = kNothing;
    int best = kFar;
    for (const int arc : node(i).arcs) {
      const int j = headOf(arc);
      if (roomBack(isSink, arc) == 0 || !isIn(isSink, j)) continue;
      const int hops = hopsToTerminal(j);
      if (hops >= best) continue;
      best = hops;
      parent = sister(arc);
    }
    node(i).parent = parent;
    if (parent != kNothing) {
      node(i).timestamp = clock;
      node(i).distance = best + 1;
      return;
    }
    for (const int arc : node(i).arcs) {
      const int j = headOf(arc);
      if (!isIn(isSink, j)) continue;
      if (roomBack(isSink, arc) > 0) enqueue(j);
      if (node(j).parent == arc) orphanLast(j);
    }
  }

  // Stamps what it comes through, so that other walks of the pass end there.
  int hopsToTerminal(int start) {
    std::vector<int> walked;
    int j = start;
    while (j != kNothing && node(j).timestamp != clock) {
      if (node(j).parent == kOrphan) return kFar;
      walked.push_back(j);
      j = node(j).parent == kTerminal ? kNothing : tailOf(node(j).parent);
    }
    int distance = j == kNothing ? 0 : node(j).distance;
    for (size_t k = walked.size(); k-- > 0;) {
      node(walked[k]).timestamp = clock;
      node(walked[k]).distance = ++distance;
    }
    return distance;
  }
};

struct DestroyGraph {
  void operator()(MaxFlowGraph* graph) const { MaxFlowInt_Destroy(graph); }
};

// One graph, in the library and in the plain solver.
class Twins {
 public:
  Twins(int nodes, int edges) {
    MaxFlowGraph* graph = nullptr;
    EXPECT_EQ(0, MaxFlowInt_Create(&graph, nodes, edges));
    graph_.reset(graph);
    for (int i = 0; i < nodes; ++i) EXPECT_EQ(i, MaxFlowInt_AddNode(graph));
    plain_.nodes.resize(at(nodes));
  }

  int nodes() const { return static_cast<int>(plain_.nodes.size()); }

  // Above 0 from the source, below to the sink.
  void setTerminal(int node, int capacity) {
    const int32_t caps[2] = {std::max(capacity, 0), std::max(-capacity, 0)};
    EXPECT_EQ(0, MaxFlowInt_AddTWeights(graph_.get(), node, caps));
    plain_.node(node).terminal = capacity;
  }
  void addEdge(int from, int to, int capacity, int reverse) {
    EXPECT_EQ(0, MaxFlowInt_AddEdge(graph_.get(), from, to, capacity, reverse));
    plain_.addEdge(from, to, capacity, reverse);
  }
  void modify(int node, int value) {
    EXPECT_EQ(0, MaxFlowInt_ModifyNode(graph_.get(), node, value));
    plain_.modify(node, value);
  }
  void mark(int node) {
    EXPECT_EQ(0, MaxFlowInt_MarkNode(graph_.get(), node));
    plain_.mark(node);
  }

  void solve() {
    ASSERT_EQ(plain_.solve(), MaxFlowInt_GetMaxFlow(graph_.get()));
    compareNodes();
  }
  void solveAgain() {
    ASSERT_EQ(plain_.solveAgain(), MaxFlowInt_GetMaxFlowFast(graph_.get()));
    compareNodes();
  }

  int left(int node) const { return MaxFlowInt_GetTrcap(graph_.get(), node); }
  int flow() const { return plain_.flow; }

 private:
  void compareNodes() {
    for (int i = 0; i < nodes(); ++i) {
      ASSERT_EQ(plain_.type(i), MaxFlowInt_GetNodeType(graph_.get(), i)) << "node " << i;
      ASSERT_EQ(plain_.node(i).terminal, left(i)) << "node " << i;
    }
  }

  std::unique_ptr<MaxFlowGraph, DestroyGraph> graph_;
  PlainSolver plain_;
};

int terminalOf(Random& random, int most) {
  return random.between(0, 2) == 0 ? 0 : random.between(-most, most);
}

// Few capacities, so that many ways are equally good; some edges lead one way only.
void addEdge(Twins& twins, int from, int to, Random& random, int most) {
  twins.addEdge(from, to, random.between(0, most),
                random.between(0, 2) == 0 ? 0 : random.between(0, most));
}

Twins randomGraph(Random& random, int most) {
  const int nodes = random.between(2, 40);
  const int edges = nodes * random.between(1, 6) / random.between(1, 2);
  Twins twins(nodes, edges);
  for (int i = 0; i < nodes; ++i) twins.setTerminal(i, terminalOf(random, 3 * most));
  for (int i = 0; i < edges; ++i) {
    const int from = random.between(0, nodes - 1);
    const int to = (from + random.between(1, nodes - 1)) % nodes;
    addEdge(twins, from, to, random, most);
  }
  return twins;
}

Twins grid(Random& random, int most) {
  const int width = random.between(2, 8);
  const int height = random.between(2, 5);
  Twins twins(width * height, 2 * width * height);
  for (int i = 0; i < width * height; ++i) {
    twins.setTerminal(i, terminalOf(random, 3 * most));
    if (i % width > 0) addEdge(twins, i - 1, i, random, most);
    if (i >= width) addEdge(twins, i - width, i, random, most);
  }
  return twins;
}

void changeAndSolve(Twins& twins, Random& random, int most) {
  for (int changes = random.between(0, 6); changes > 0; --changes) {
    const int node = random.between(0, twins.nodes() - 1);
    if (random.between(0, 4) == 0) {
      twins.mark(node);
    } else {
      twins.modify(node, terminalOf(random, 4 * most));
    }
  }
  if (random.between(0, 9) == 0) {
    twins.solve();
  } else {
    twins.solveAgain();
  }
}

void checkSolves(Twins twins, Random& random, int most) {
  ASSERT_NO_FATAL_FAILURE(twins.solve());
  for (int step = 0; step < 5; ++step) {
    ASSERT_NO_FATAL_FAILURE(changeAndSolve(twins, random, most)) << "step " << step;
  }
}

TEST(MaxFlowOrder, SinksAreServedInTurn) {
  Twins twins(3, 2);
  twins.setTerminal(0, -5);
  twins.setTerminal(1, -5);
  twins.setTerminal(2, 5);
  twins.addEdge(2, 0, 5, 0);
  twins.addEdge(2, 1, 5, 0);
  ASSERT_NO_FATAL_FAILURE(twins.solve());
  EXPECT_EQ(0, twins.left(0));
  EXPECT_EQ(-5, twins.left(1));
  EXPECT_EQ(0, twins.left(2));
  twins.modify(0, 0);
  twins.modify(2, 5);
  ASSERT_NO_FATAL_FAILURE(twins.solveAgain());
  EXPECT_EQ(10, twins.flow());
}

TEST(MaxFlowOrder, RandomGraphsKeepWhatThePlainSearchLeaves) {
  Random random(1);
  for (int i = 0; i < 3000; ++i) {
    const int most = 1 + i % 5;
    ASSERT_NO_FATAL_FAILURE(checkSolves(randomGraph(random, most), random, most)) << "graph " << i;
  }
}

TEST(MaxFlowOrder, GridsKeepWhatThePlainSearchLeaves) {
  Random random(2);
  for (int i = 0; i < 1500; ++i) {
    const int most = 1 + i % 5;
    ASSERT_NO_FATAL_FAILURE(checkSolves(grid(random, most), random, most)) << "grid " << i;
  }
}

}  // namespace
}  // namespace qpx::testing
