// The solver against the theory: its flow is the maximum, its cut has the capacity of the flow, and
// the cut's sink side is what can still reach the sink.
#include <gtest/gtest.h>
#include <qpx/max_flow.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "segment/max_flow_graph.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();

// A network as a matrix of capacities, its last two nodes the source and the sink.
class Network {
 public:
  explicit Network(int nodes)
      : size_(nodes + 2), capacity_(static_cast<size_t>(size_) * static_cast<size_t>(size_)) {}

  int source() const { return size_ - 2; }
  int sink() const { return size_ - 1; }
  int64_t& at(int from, int to) {
    return capacity_[static_cast<size_t>(from) * static_cast<size_t>(size_) +
                     static_cast<size_t>(to)];
  }

  void addTerminal(int node, int64_t capacity) {
    capacity > 0 ? at(source(), node) += capacity : at(node, sink()) -= capacity;
  }

  // Edmonds and Karp: along shortest paths until there is none. Leaves what is left.
  int64_t solve() {
    int64_t flow = 0;
    for (;;) {
      const std::vector<int> parent = search(source(), false);
      if (parent[static_cast<size_t>(sink())] < 0) return flow;
      const auto parentOf = [&](int node) { return parent[static_cast<size_t>(node)]; };
      int64_t room = std::numeric_limits<int64_t>::max();
      for (int v = sink(); v != source(); v = parentOf(v))
        room = std::min(room, at(parentOf(v), v));
      for (int v = sink(); v != source(); v = parentOf(v)) {
        at(parentOf(v), v) -= room;
        at(v, parentOf(v)) += room;
      }
      flow += room;
    }
  }

  // The neighbour by which each node was found from the start, against the arcs if `backwards`; -1
  // for nodes that were not.
  std::vector<int> search(int start, bool backwards) {
    std::vector<int> parent(static_cast<size_t>(size_), -1);
    std::vector<int> queue = {start};
    parent[static_cast<size_t>(start)] = start;
    for (size_t i = 0; i < queue.size(); ++i) {
      for (int next = 0; next < size_; ++next) {
        const int64_t room = backwards ? at(next, queue[i]) : at(queue[i], next);
        if (room <= 0 || parent[static_cast<size_t>(next)] >= 0) continue;
        parent[static_cast<size_t>(next)] = queue[i];
        queue.push_back(next);
      }
    }
    return parent;
  }

 private:
  int size_;
  std::vector<int64_t> capacity_;
};

struct DestroyGraph {
  void operator()(MaxFlowGraph* graph) const { MaxFlowInt_Destroy(graph); }
};
using Graph = std::unique_ptr<MaxFlowGraph, DestroyGraph>;

Graph makeGraph(int nodes, int edges) {
  MaxFlowGraph* graph = nullptr;
  EXPECT_EQ(0, MaxFlowInt_Create(&graph, nodes, edges));
  return Graph(graph);
}

void setTerminal(const Graph& graph, int node, int32_t fromSource, int32_t toSink) {
  const int32_t caps[2] = {fromSource, toSink};
  ASSERT_EQ(0, MaxFlowInt_AddTWeights(graph.get(), node, caps));
}

// What a graph has left.
Network leftIn(const MaxFlowGraph& graph) {
  Network network(graph.nodeCount);
  const auto indexOf = [](NodeRef ref) { return static_cast<int>(ref / kNodeWords) - 1; };
  for (int i = 0; i < graph.nodeCount; ++i) network.addTerminal(i, graph.nodes[i + 1].trCapacity);
  for (const FlowArc* arc = graph.arcs + 2; arc != graph.arcEnd; ++arc) {
    network.at(indexOf(recordAt(graph.arcs, arc->sister).head), indexOf(arc->head)) +=
        arc->residual;
  }
  return network;
}

// Solves, and holds flow and cut against the network of what was left before.
void checkSolve(MaxFlowGraph& graph, int32_t (*solve)(MaxFlowGraph*)) {
  Network network = leftIn(graph);
  Network before = network;
  const auto flow = static_cast<uint32_t>(graph.flow);
  const int64_t gain = network.solve();
  ASSERT_EQ(static_cast<int32_t>(flow + static_cast<uint32_t>(gain)), solve(&graph));

  const std::vector<int> toSink = network.search(network.sink(), true);
  const auto onSinkSide = [&](int node) { return toSink[static_cast<size_t>(node)] >= 0; };
  int64_t cut = 0;
  for (int i = 0; i < graph.nodeCount; ++i) {
    const int32_t type = MaxFlowInt_GetNodeType(&graph, i);
    ASSERT_EQ(onSinkSide(i) ? 1 : 0, type) << "node " << i;
    cut += type == 1 ? before.at(before.source(), i) : before.at(i, before.sink());
    for (int j = 0; type == 0 && j < graph.nodeCount; ++j) {
      if (MaxFlowInt_GetNodeType(&graph, j) == 1) cut += before.at(i, j);
    }
  }
  ASSERT_EQ(gain, cut);
  // Nothing is left to push.
  ASSERT_EQ(0, leftIn(graph).solve());
}

// Capacities of all kinds: mostly equal, small, large.
class Capacities {
 public:
  explicit Capacities(Random& random) : random_(random), kind_(random.between(0, 3)) {}

  int32_t edge() {
    switch (kind_) {
      case 0:
        return random_.between(0, 1);
      case 1:
        return random_.between(0, 20);
      case 2:
        return random_.between(0, 3) == 0 ? kMost : random_.between(0, 1000);
      default:
        return random_.between(0, 1) * kMost;
    }
  }
  int32_t terminal() { return random_.between(0, 2) == 0 ? 0 : edge(); }

 private:
  Random& random_;
  int kind_;
};

void addRandomEdge(MaxFlowGraph* graph, Random& random, Capacities& capacities) {
  const int32_t from = random.between(0, graph->nodeCount - 1);
  const int32_t to = random.between(0, graph->nodeCount - 1);
  ASSERT_EQ(from == to ? 2 : 0,
            MaxFlowInt_AddEdge(graph, from, to, capacities.edge(), capacities.edge()));
}

Graph randomGraph(Random& random, int32_t nodes, int32_t edges) {
  Graph graph = makeGraph(nodes + 8, edges + 40);
  Capacities capacities(random);
  for (int32_t i = 0; i < nodes; ++i) {
    EXPECT_EQ(i, MaxFlowInt_AddNode(graph.get()));
    setTerminal(graph, i, capacities.terminal(), capacities.terminal());
  }
  for (int32_t i = 0; i < edges; ++i) addRandomEdge(graph.get(), random, capacities);
  return graph;
}

// Four neighbours each, as in a picture.
Graph gridGraph(Random& random, int32_t width, int32_t height, int32_t most) {
  Graph graph = makeGraph(width * height, 2 * width * height);
  for (int32_t i = 0; i < width * height; ++i) {
    MaxFlowInt_AddNode(graph.get());
    setTerminal(graph, i, random.between(0, most), random.between(0, most));
  }
  for (int32_t i = 0; i < width * height; ++i) {
    for (const int32_t to : {i % width + 1 < width ? i + 1 : -1, i + width}) {
      if (to < 0 || to >= width * height) continue;
      EXPECT_EQ(0, MaxFlowInt_AddEdge(graph.get(), i, to, random.between(0, most / 2),
                                      random.between(0, most / 2)));
    }
  }
  return graph;
}

TEST(MaxFlow, RandomGraphsAreSolved) {
  Random random(1);
  for (int i = 0; i < 3000; ++i) {
    const Graph graph = randomGraph(random, random.between(1, 9), random.between(0, 24));
    ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlow)) << "graph " << i;
    ASSERT_EQ(graph->flow, MaxFlowInt_GetMaxFlow(graph.get()));
  }
}

TEST(MaxFlow, GridsAreSolved) {
  Random random(2);
  for (const int32_t most : {1, 2, 10, 200, 1000000}) {
    for (int i = 0; i < 6; ++i) {
      const Graph graph = gridGraph(random, 11, 8, most);
      ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlow)) << most;
    }
  }
}

TEST(MaxFlow, FlowOfAnEdgeThatIsFullBothWaysComesBackWhole) {
  const Graph graph = makeGraph(2, 1);
  for (int i = 0; i < 2; ++i) MaxFlowInt_AddNode(graph.get());
  ASSERT_EQ(0, MaxFlowInt_AddEdge(graph.get(), 0, 1, kMost, kMost));
  setTerminal(graph, 0, kMost, 0);
  setTerminal(graph, 1, 0, kMost);
  EXPECT_EQ(kMost, MaxFlowInt_GetMaxFlow(graph.get()));
  // Twice as much as 31 bits hold goes back.
  for (const int32_t part : {kMost, kMost}) {
    ASSERT_EQ(0, MaxFlowInt_ModifyNode(graph.get(), 1, part));
    ASSERT_EQ(0, MaxFlowInt_ModifyNode(graph.get(), 0, -part));
    ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlowFast));
  }
  EXPECT_EQ(0, MaxFlowInt_GetTrcap(graph.get(), 0));
}

TEST(MaxFlow, WithoutArcsEachNodeStandsAlone) {
  const Graph graph = makeGraph(0, 0);
  const int32_t caps[][2] = {{7, 3}, {0, 0}, {2, 9}, {5, 5}, {kMost, 0}, {0, kMost}};
  for (const auto& pair : caps) {
    const int32_t node = MaxFlowInt_AddNode(graph.get());
    ASSERT_EQ(0, MaxFlowInt_AddTWeights(graph.get(), node, pair));
  }
  EXPECT_EQ(3 + 2 + 5, MaxFlowInt_GetMaxFlow(graph.get()));
  const int32_t types[] = {0, 0, 1, 0, 0, 1};
  const int32_t left[] = {4, 0, -7, 0, kMost, -kMost};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(types[i], MaxFlowInt_GetNodeType(graph.get(), i)) << i;
    EXPECT_EQ(left[i], MaxFlowInt_GetTrcap(graph.get(), i)) << i;
  }
}

TEST(MaxFlow, ArcsWithoutCapacityAreNoWay) {
  const Graph graph = makeGraph(2, 1);
  for (int i = 0; i < 2; ++i) MaxFlowInt_AddNode(graph.get());
  setTerminal(graph, 0, 5, 0);
  setTerminal(graph, 1, 0, 5);
  ASSERT_EQ(0, MaxFlowInt_AddEdge(graph.get(), 0, 1, 0, 0));
  EXPECT_EQ(0, MaxFlowInt_GetMaxFlow(graph.get()));
}

TEST(MaxFlow, TerminalWeightsAddUpAndFlowStraightThrough) {
  const Graph graph = makeGraph(1, 0);
  MaxFlowInt_AddNode(graph.get());
  setTerminal(graph, 0, 10, 4);
  EXPECT_EQ(6, MaxFlowInt_GetTrcap(graph.get(), 0));
  setTerminal(graph, 0, 1, 9);  // 6 + 1 against 9
  EXPECT_EQ(-2, MaxFlowInt_GetTrcap(graph.get(), 0));
  setTerminal(graph, 0, 3, 4);  // 3 against 4 + 2
  EXPECT_EQ(-3, MaxFlowInt_GetTrcap(graph.get(), 0));
  EXPECT_EQ(4 + 7 + 3, MaxFlowInt_GetMaxFlow(graph.get()));
  const int32_t caps[2] = {8, 3};
  EXPECT_EQ(0, MaxFlowInt_SetTrcap(graph.get(), 0, caps));
  EXPECT_EQ(5, MaxFlowInt_GetTrcap(graph.get(), 0));
  EXPECT_EQ(14 + 3, MaxFlowInt_GetMaxFlow(graph.get()));
}

TEST(MaxFlow, SumsWrapRound) {
  const Graph graph = makeGraph(1, 0);
  MaxFlowInt_AddNode(graph.get());
  for (int i = 0; i < 2; ++i) setTerminal(graph, 0, kMost, kMost);
  EXPECT_EQ(-2, MaxFlowInt_GetMaxFlow(graph.get()));
  setTerminal(graph, 0, kMost, 0);
  setTerminal(graph, 0, kMost, 0);
  EXPECT_EQ(-2, MaxFlowInt_GetTrcap(graph.get(), 0));
  setTerminal(graph, 0, 0, std::numeric_limits<int32_t>::min());
  ASSERT_EQ(0, MaxFlowInt_ModifyNode(graph.get(), 0, std::numeric_limits<int32_t>::min()));
  ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlow));
  EXPECT_EQ(1, MaxFlowInt_GetNodeType(graph.get(), 0));
}

// Changes a graph as a host may before a fast solve.
void change(MaxFlowGraph* graph, Random& random, Capacities& capacities) {
  const int32_t node = random.between(0, graph->nodeCount - 1);
  const int32_t caps[2] = {capacities.terminal(), capacities.terminal()};
  switch (random.between(0, 5)) {
    case 0:
    case 1:
      ASSERT_EQ(0, MaxFlowInt_ModifyNode(graph, node, caps[0] - caps[1]));
      EXPECT_EQ(caps[0] - caps[1], MaxFlowInt_GetTrcap(graph, node));
      break;
    case 2:
      ASSERT_EQ(0, MaxFlowInt_SetTrcap(graph, node, caps));
      ASSERT_EQ(0, MaxFlowInt_MarkNode(graph, node));
      break;
    case 3:
      // Not more than 32 bits hold.
      if (MaxFlowInt_GetTrcap(graph, node) != 0) break;
      ASSERT_EQ(0, MaxFlowInt_AddTWeights(graph, node, caps));
      ASSERT_EQ(0, MaxFlowInt_MarkNode(graph, node));
      break;
    case 4:
      ASSERT_EQ(0, MaxFlowInt_MarkNode(graph, node));
      break;
    default:
      addRandomEdge(graph, random, capacities);
      for (const FlowArc* arc : {graph->arcEnd - 2, graph->arcEnd - 1}) {
        if (arc < graph->arcs + 2) break;
        MaxFlowInt_MarkNode(graph, static_cast<int32_t>(arc->head / kNodeWords) - 1);
      }
      break;
  }
}

TEST(MaxFlow, SolvesAgainAfterChanges) {
  Random random(3);
  for (int i = 0; i < 5000; ++i) {
    const Graph graph = randomGraph(random, random.between(1, 9), random.between(0, 24));
    Capacities capacities(random);
    if (i % 2 == 0) MaxFlowInt_GetMaxFlow(graph.get());
    for (int step = 0; step < 6; ++step) {
      for (int changes = random.between(0, 5); changes > 0; --changes) {
        ASSERT_NO_FATAL_FAILURE(change(graph.get(), random, capacities));
      }
      if (random.between(0, 4) == 0 && graph->nodeEnd != graph->nodeLimit) {
        MaxFlowInt_AddNode(graph.get());
      }
      ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlowFast))
          << "graph " << i << ", step " << step;
    }
  }
}

TEST(MaxFlow, SolvesGridsAgainAndWhenTheClockHasRunOut) {
  Random random(4);
  for (int i = 0; i < 6; ++i) {
    const Graph graph = gridGraph(random, 9, 9, 100);
    MaxFlowInt_GetMaxFlow(graph.get());
    for (int step = 0; step < 5; ++step) {
      for (int changes = 0; changes < 4; ++changes) {
        MaxFlowInt_ModifyNode(graph.get(), random.between(0, 80), random.between(-300, 300));
      }
      if (step % 2 == 1) graph->clock = kMost - 1 - random.between(0, 30);
      if (step == 3) graph->clock = kMost - 1;
      ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlowFast));
      EXPECT_EQ(0, MaxFlowInt_GetTrcap(graph.get(), 81) - 2);
    }
  }
}

TEST(MaxFlow, UnmarkedChangesCostOptimalityOnly) {
  Random random(5);
  for (int i = 0; i < 300; ++i) {
    const Graph graph = randomGraph(random, 8, 20);
    Capacities capacities(random);
    MaxFlowInt_GetMaxFlow(graph.get());
    for (int changes = 0; changes < 4; ++changes) {
      const int32_t caps[2] = {capacities.terminal(), capacities.terminal()};
      MaxFlowInt_SetTrcap(graph.get(), random.between(0, 7), caps);
    }
    MaxFlowInt_MarkNode(graph.get(), random.between(0, 7));
    MaxFlowInt_GetMaxFlowFast(graph.get());
    ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlow));
  }
}

TEST(MaxFlow, WithoutMemoryForOrphansALaterSolvePushesTheRest) {
  for (int i = 0; i < 8; ++i) {
    for (const bool fast : {false, true}) {
      Random random(static_cast<uint64_t>(i));
      const Graph graph = gridGraph(random, 10, 8, 50);
      const int64_t most = graph->flow + leftIn(*graph).solve();
      FailingMemory::failFrom(i % 2 + 1);
      if (fast) {
        MaxFlowInt_GetMaxFlow(graph.get());
        for (int node = 0; node < 80; node += 7) MaxFlowInt_MarkNode(graph.get(), node);
      }
      const int64_t blocks = FailingMemory::liveBlocks();
      const int32_t flow = MaxFlowInt_GetMaxFlowFast(graph.get());
      EXPECT_EQ(blocks, FailingMemory::liveBlocks());
      EXPECT_LE(flow, most);
      FailingMemory::reset();
      ASSERT_NO_FATAL_FAILURE(
          checkSolve(*graph, fast ? MaxFlowInt_GetMaxFlowFast : MaxFlowInt_GetMaxFlow));
      EXPECT_EQ(most, graph->flow);
    }
  }
}

// A root that the first path uses up, around it leaves that all lose their parent at once and find
// another: more than one block of orphans holds.
Graph starGraph() {
  constexpr int kLeaves = 300, kHub = 0, kOther = 1, kDrain = 2, kFirstLeaf = 3;
  Graph graph = makeGraph(kFirstLeaf + kLeaves, 1 + 3 * kLeaves);
  for (int i = 0; i < kFirstLeaf + kLeaves; ++i) MaxFlowInt_AddNode(graph.get());
  setTerminal(graph, kHub, 1, 0);
  setTerminal(graph, kOther, 50, 0);
  setTerminal(graph, kDrain, 0, 30);
  // Arcs are looked at from the last to the first, so that the hub has its leaves before its drain.
  MaxFlowInt_AddEdge(graph.get(), kHub, kDrain, 1, 0);
  for (int leaf = kFirstLeaf; leaf < kFirstLeaf + kLeaves; ++leaf) {
    MaxFlowInt_AddEdge(graph.get(), kHub, leaf, 3, 0);
    MaxFlowInt_AddEdge(graph.get(), kOther, leaf, 2, 0);
    MaxFlowInt_AddEdge(graph.get(), leaf, kDrain, 1, 0);
  }
  return graph;
}

TEST(MaxFlow, ManyOrphansAtOnceAreAdopted) {
  const Graph graph = starGraph();
  FailingMemory::reset();
  ASSERT_NO_FATAL_FAILURE(checkSolve(*graph, MaxFlowInt_GetMaxFlow));
  EXPECT_EQ(30, graph->flow);
  EXPECT_GE(FailingMemory::allocations(), 3);  // the pool and two blocks
}

// In the middle of the orphans.
TEST(MaxFlow, WithoutMemoryForMoreOrphansALaterSolvePushesTheRest) {
  for (const bool fast : {false, true}) {
    const Graph graph = starGraph();
    const int64_t blocks = FailingMemory::liveBlocks();
    FailingMemory::failOnly(3);
    EXPECT_LE(MaxFlowInt_GetMaxFlow(graph.get()), 30);
    EXPECT_EQ(1, FailingMemory::failures());
    EXPECT_EQ(blocks, FailingMemory::liveBlocks());
    FailingMemory::reset();
    ASSERT_NO_FATAL_FAILURE(
        checkSolve(*graph, fast ? MaxFlowInt_GetMaxFlowFast : MaxFlowInt_GetMaxFlow));
    EXPECT_EQ(30, graph->flow);
  }
}

TEST(MaxFlow, CreateReportsMissingMemory) {
  FailingMemory::reset();
  const int64_t blocks = FailingMemory::liveBlocks();
  const int64_t failures = FailingMemory::forEachFailure(true, [] {
    MaxFlowGraph* graph = nullptr;
    const int32_t result = MaxFlowInt_Create(&graph, 20, 20);
    EXPECT_EQ(result == 0, graph != nullptr);
    EXPECT_TRUE(result == 0 || result == 4);
    MaxFlowInt_Destroy(graph);
  });
  EXPECT_EQ(3, failures);
  EXPECT_EQ(blocks, FailingMemory::liveBlocks());
  FailingMemory::reset();
  MaxFlowGraph* graph = nullptr;
  EXPECT_EQ(4, MaxFlowInt_Create(&graph, kMost, 16));
  EXPECT_EQ(4, MaxFlowInt_Create(&graph, 16, kMost));
  EXPECT_EQ(nullptr, graph);
  EXPECT_EQ(blocks, FailingMemory::liveBlocks());
}

TEST(MaxFlow, RoomIsSixteenAtLeastAndComesBack) {
  for (const int32_t room : {-5, 0, 16, 20}) {
    const Graph graph = makeGraph(room, room);
    const int32_t held = std::max(room, 16);
    for (int round = 0; round < 2; ++round) {
      for (int32_t i = 0; i < held; ++i) ASSERT_EQ(i, MaxFlowInt_AddNode(graph.get()));
      EXPECT_EQ(4, MaxFlowInt_AddNode(graph.get()));
      for (int32_t i = 0; i < held; ++i) {
        EXPECT_EQ(0, MaxFlowInt_GetTrcap(graph.get(), i));
        EXPECT_EQ(0, MaxFlowInt_GetNodeType(graph.get(), i));
        ASSERT_EQ(0, MaxFlowInt_AddEdge(graph.get(), i, (i + 1) % held, 3, 4));
      }
      EXPECT_EQ(4, MaxFlowInt_AddEdge(graph.get(), 0, 1, 3, 4));
      setTerminal(graph, 0, 10, 0);
      setTerminal(graph, 5, 0, 10);
      EXPECT_EQ(3 + 4, MaxFlowInt_GetMaxFlow(graph.get()));
      EXPECT_EQ(0, MaxFlowInt_Initialize(graph.get()));
      EXPECT_EQ(0, MaxFlowInt_GetMaxFlow(graph.get()));
      EXPECT_EQ(0, MaxFlowInt_Initialize(graph.get()));
    }
  }
}

TEST(MaxFlow, BadArgumentsAreRefused) {
  const Graph graph = makeGraph(4, 4);
  MaxFlowGraph* const g = graph.get();
  const int32_t caps[2] = {1, 1};
  for (int i = 0; i < 2; ++i) MaxFlowInt_AddNode(g);
  EXPECT_EQ(2, MaxFlowInt_Create(nullptr, 4, 4));
  EXPECT_EQ(2, MaxFlowInt_AddNode(nullptr));
  EXPECT_EQ(2, MaxFlowInt_AddTWeights(g, 0, nullptr));
  EXPECT_EQ(2, MaxFlowInt_SetTrcap(g, 0, nullptr));
  for (const int32_t node : {-1, 2, kMost, std::numeric_limits<int32_t>::min()}) {
    EXPECT_EQ(2, MaxFlowInt_AddTWeights(g, node, caps));
    EXPECT_EQ(2, MaxFlowInt_SetTrcap(g, node, caps));
    EXPECT_EQ(2, MaxFlowInt_ModifyNode(g, node, 5));
    EXPECT_EQ(2, MaxFlowInt_MarkNode(g, node));
    EXPECT_EQ(2, MaxFlowInt_GetNodeType(g, node));
    EXPECT_EQ(2, MaxFlowInt_GetTrcap(g, node));
    EXPECT_EQ(2, MaxFlowInt_AddEdge(g, node, 0, 1, 1));
    EXPECT_EQ(2, MaxFlowInt_AddEdge(g, 0, node, 1, 1));
  }
  EXPECT_EQ(2, MaxFlowInt_AddEdge(g, 1, 1, 1, 1));
  EXPECT_EQ(2, MaxFlowInt_AddEdge(g, 0, 1, -1, 1));
  EXPECT_EQ(2, MaxFlowInt_AddEdge(g, 0, 1, 1, -1));
  EXPECT_EQ(0, MaxFlowInt_GetMaxFlow(g));
}

}  // namespace
}  // namespace qpx::testing
