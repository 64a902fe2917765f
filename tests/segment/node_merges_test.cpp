// Merged nodes against cuts of the whole graph: whatever the terminals and pins, clusters are never
// parted, and the graph of clusters has the cut of the whole.
#include "segment/node_merges.h"

#include <gtest/gtest.h>
#include <qpx/max_flow.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "segment/pair_rows.h"
#include "support/failing_memory.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr int32_t kPin = 1000000;

struct Weighted {
  int32_t nodes, terminalMost;
  std::vector<NodePair> pairs;

  bool find(NodeMerges& merges) const {
    return merges.find(pairs.data(), static_cast<int32_t>(pairs.size()), nodes, terminalMost);
  }
};

// Neighbours in a ring and across it; capacities small, for ties, or of all magnitudes.
Weighted randomWeighted(Random& random) {
  Weighted graph = {random.between(1, 40), random.between(0, 3), {}};
  const bool small = random.between(0, 1) == 0;
  const int32_t reach = random.between(1, 4);
  for (int32_t a = 0; a < graph.nodes; ++a) {
    for (int32_t b = a + 1; b < std::min(graph.nodes, a + 1 + reach); ++b) {
      if (random.between(0, 4) == 0) continue;
      const int32_t capacity =
          small ? random.between(0, 8) : 20000 / (1 + random.between(0, 9) * random.between(0, 99));
      graph.pairs.push_back({a, b, capacity});
      if (random.between(0, 1) == 0) std::swap(graph.pairs.back().a, graph.pairs.back().b);
    }
  }
  return graph;
}

std::vector<int32_t> sidesOf(int32_t nodes, const std::vector<int32_t>& nets,
                             const std::vector<NodePair>& pairs) {
  MaxFlowGraph* graph = nullptr;
  MaxFlowInt_Create(&graph, nodes, static_cast<int32_t>(pairs.size()));
  for (int32_t i = 0; i < nodes; ++i) {
    const int32_t net = nets[static_cast<size_t>(i)];
    const int32_t caps[2] = {std::max(net, 0), std::max(-net, 0)};
    MaxFlowInt_AddNode(graph);
    MaxFlowInt_AddTWeights(graph, i, caps);
  }
  for (const NodePair& pair : pairs) {
    MaxFlowInt_AddEdge(graph, pair.a, pair.b, pair.capacity, pair.capacity);
  }
  MaxFlowInt_GetMaxFlow(graph);
  std::vector<int32_t> sides;
  for (int32_t i = 0; i < nodes; ++i) sides.push_back(MaxFlowInt_GetNodeType(graph, i));
  MaxFlowInt_Destroy(graph);
  return sides;
}

struct Terminals {
  std::vector<int32_t> nets;
  std::vector<uint8_t> isPinned;

  Terminals(const Weighted& graph, int32_t onePinIn, Random& random) {
    for (int32_t i = 0; i < graph.nodes; ++i) {
      const bool pinned = random.between(1, onePinIn) == 1;
      isPinned.push_back(pinned ? 1 : 0);
      nets.push_back(pinned ? (random.between(0, 1) == 0 ? kPin : -kPin)
                            : random.between(-graph.terminalMost, graph.terminalMost));
    }
  }
};

// Returns how many clusters there are.
int32_t checkDivision(const Weighted& graph, NodeMerges& merges, const Terminals& terminals) {
  const int32_t clusters = merges.divide(terminals.isPinned.data());
  std::vector<int32_t> nets(static_cast<size_t>(clusters));
  for (int32_t i = 0; i < graph.nodes; ++i) {
    const int32_t cluster = merges.clusters()[i];
    EXPECT_TRUE(cluster >= 0 && cluster < clusters);
    nets[static_cast<size_t>(cluster)] += terminals.nets[static_cast<size_t>(i)];
  }
  PairRows rows;
  const auto pairCount = static_cast<int64_t>(graph.pairs.size());
  EXPECT_TRUE(rows.allocate(graph.nodes, pairCount, PairRows::Ways::one));
  rows.fill(graph.pairs.data(), pairCount, merges.clusters(), clusters);
  std::vector<NodePair> pairs;
  for (int32_t a = 0; a < clusters; ++a) {
    std::vector<int32_t> seen;
    for (const RowEntry& entry : rows.row(a)) {
      EXPECT_LT(a, entry.node);
      EXPECT_EQ(0, std::count(seen.begin(), seen.end(), entry.node));
      seen.push_back(entry.node);
      pairs.push_back({a, entry.node, entry.capacity});
    }
  }
  const std::vector<int32_t> whole = sidesOf(graph.nodes, terminals.nets, graph.pairs);
  const std::vector<int32_t> divided = sidesOf(clusters, nets, pairs);
  for (int32_t i = 0; i < graph.nodes; ++i) {
    EXPECT_EQ(whole[static_cast<size_t>(i)], divided[static_cast<size_t>(merges.clusters()[i])]);
  }
  return clusters;
}

TEST(NodeMerges, ClustersHaveTheCutOfTheWholeGraph) {
  Random random(1);
  int64_t nodes = 0, withoutPins = 0, withPins = 0;
  for (int i = 0; i < 1000 && !::testing::Test::HasFailure(); ++i) {
    const Weighted graph = randomWeighted(random);
    NodeMerges merges;
    ASSERT_TRUE(graph.find(merges));
    nodes += 4 * graph.nodes;
    for (int turn = 0; turn < 4; ++turn) {
      withoutPins += checkDivision(graph, merges, Terminals(graph, 1 << 20, random));
      withPins += checkDivision(graph, merges, Terminals(graph, 8, random));
    }
  }
  // And they are much fewer, of which pins undo some.
  EXPECT_LT(2 * withoutPins, nodes);
  EXPECT_LT(withoutPins, withPins);
  EXPECT_LT(4 * withPins, 3 * nodes);
}

// By hand: the ends of a chain that gets stronger towards its middle fall to the middle.
TEST(NodeMerges, ChainsFallToTheirStrongestLink) {
  const Weighted chain = {6, 1, {{0, 1, 10}, {1, 2, 20}, {2, 3, 40}, {3, 4, 20}, {4, 5, 10}}};
  NodeMerges merges;
  ASSERT_TRUE(chain.find(merges));
  std::vector<uint8_t> isPinned(6);
  EXPECT_EQ(1, merges.divide(isPinned.data()));
  // An end that is pinned is no more held by the rest.
  isPinned[0] = 1;
  EXPECT_GT(merges.divide(isPinned.data()), 1);
  EXPECT_NE(merges.clusters()[0], merges.clusters()[3]);
  isPinned[0] = 0;
  EXPECT_EQ(1, merges.divide(isPinned.data()));
}

// Each corner is held by no other alone, but by the other two together.
TEST(NodeMerges, TrianglesMerge) {
  Weighted graph = {6, 0, {{0, 1, 10}, {1, 2, 10}, {2, 0, 10}, {0, 3, 19}, {1, 4, 19}, {2, 5, 19}}};
  for (int32_t i = 3; i < 6; ++i) graph.pairs.push_back({i, 3 + (i - 2) % 3, 30});
  NodeMerges merges;
  const std::vector<uint8_t> isPinned(6);
  ASSERT_TRUE(graph.find(merges));
  EXPECT_EQ(1, merges.divide(isPinned.data()));
  // A capacity more outside, and nothing is held strictly.
  graph.pairs.resize(3);
  for (int32_t i = 0; i < 3; ++i) graph.pairs.push_back({i, i + 3, 20});
  for (int32_t i = 3; i < 6; ++i) graph.pairs.push_back({i, 3 + (i - 2) % 3, 10});
  NodeMerges none;
  ASSERT_TRUE(graph.find(none));
  EXPECT_EQ(6, none.divide(isPinned.data()));
}

TEST(NodeMerges, MergesStayBelowTheirLimit) {
  const std::vector<uint8_t> isPinned(26);
  for (const int32_t above : {0, 1}) {
    const Weighted pair = {2, 0, {{0, 1, NodeMerges::kMostTogether / 2 - 1 + above}}};
    NodeMerges merges;
    ASSERT_TRUE(pair.find(merges));
    EXPECT_EQ(1 + above, merges.divide(isPinned.data()));
  }
  // Twelve nodes fall to the first, but that has room for two, which do not pay.
  constexpr int32_t kMillion = 1000000;
  Weighted star = {26, 0, {}};
  for (int32_t i = 1; i <= 12; ++i) {
    star.pairs.push_back({0, i, 60 * kMillion});
    star.pairs.push_back({i, i + 12, 59 * kMillion});
    star.pairs.push_back({i + 12, 25, 59 * kMillion});
  }
  NodeMerges merges;
  ASSERT_TRUE(star.find(merges));
  EXPECT_EQ(26, merges.divide(isPinned.data()));
}

// A node with many neighbours of its own strength, all of them neighbours in turn, is gone through
// once.
TEST(NodeMerges, HubsTakeNoLongerThanTheirRows) {
  constexpr int32_t kRim = 100000;
  Weighted graph = {kRim + 2, 0, {{0, kRim + 1, 1 << 28}}};
  for (int32_t i = 1; i <= kRim; ++i) graph.pairs.push_back({0, i, 1000});
  for (int32_t i = 1; i < kRim; ++i) graph.pairs.push_back({i, i + 1, 999});
  NodeMerges merges;
  ASSERT_TRUE(graph.find(merges));
  const std::vector<uint8_t> isPinned(static_cast<size_t>(graph.nodes));
  EXPECT_LT(merges.divide(isPinned.data()), graph.nodes);
}

TEST(NodeMerges, WithoutMemoryThereAreFewer) {
  FailingMemory::reset();
  Random random(2);
  const Weighted graph = randomWeighted(random);
  for (const bool firstOnly : {true, false}) {
    const int64_t blocks = FailingMemory::liveBlocks();
    std::vector<std::unique_ptr<NodeMerges>> found;
    const int64_t failures = FailingMemory::forEachFailure(firstOnly, [&] {
      auto merges = std::make_unique<NodeMerges>();
      if (graph.find(*merges)) found.push_back(std::move(merges));
    });
    EXPECT_GT(failures, 10);
    EXPECT_EQ(failures - 2, static_cast<int64_t>(found.size()) - 1);
    for (const auto& merges : found) checkDivision(graph, *merges, Terminals(graph, 5, random));
    found.clear();
    EXPECT_EQ(blocks, FailingMemory::liveBlocks());
  }
}

}  // namespace
}  // namespace qpx::testing
