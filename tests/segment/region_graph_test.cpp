#include "segment/region_graph.h"

#include <gtest/gtest.h>
#include <qpx/max_flow.h>

#include <vector>

namespace qpx {
namespace {

constexpr int32_t kSide = 100;

// Region 0 around single pixels of their own, all of one colour.
struct Dots {
  std::vector<int32_t> labels = std::vector<int32_t>(kSide * kSide, 0);
  std::vector<MarkedRegion> regions = {{{9, 9, 9}, kNoMark}};

  explicit Dots(size_t count) {
    for (int32_t y = 1; y < kSide; y += 2) {
      for (int32_t x = 1; x < kSide; x += 2) {
        if (regions.size() > count) return;
        labels[static_cast<size_t>(y * kSide + x)] = static_cast<int32_t>(regions.size());
        regions.push_back({{9, 9, 9}, kNoMark});
      }
    }
  }
};

uint8_t foreground[] = {200, 9, 9}, background[] = {9, 9, 9};

// By a graph of its own.
std::vector<uint8_t> sidesOf(const Dots& dots) {
  const auto count = static_cast<int32_t>(dots.regions.size());
  MaxFlowGraph* graph = nullptr;
  MaxFlowInt_Create(&graph, count, count);
  for (int32_t i = 0; i < count; ++i) {
    const int32_t mark = dots.regions[static_cast<size_t>(i)].count;
    const int32_t df = 191 * 191;
    int32_t caps[2] = {df * 200 / (df + 1), 200 - df * 200 / (df + 1)};
    if (mark == kForegroundMark) caps[0] = 0, caps[1] = INT32_MAX;
    if (mark == kBackgroundMark) caps[0] = INT32_MAX, caps[1] = 0;
    MaxFlowInt_AddNode(graph);
    MaxFlowInt_AddTWeights(graph, i, caps);
  }
  for (int32_t i = 1; i < count; ++i) MaxFlowInt_AddEdge(graph, 0, i, 2000000, 2000000);
  MaxFlowInt_GetMaxFlow(graph);
  std::vector<uint8_t> sides;
  for (int32_t i = 0; i < count; ++i) {
    sides.push_back(MaxFlowInt_GetNodeType(graph, i) == 1 ? 255 : 0);
  }
  MaxFlowInt_Destroy(graph);
  return sides;
}

// More than a pin is worth can flow from so many neighbours of the same colour.
TEST(RegionGraph, PinsGiveWayToTooManyNeighbours) {
  Dots dots(2500);
  const auto count = static_cast<int32_t>(dots.regions.size());
  RegionGraph graph;
  graph.build(dots.labels.data(), kSide, kSide, dots.regions.data(), count);
  ASSERT_TRUE(graph);
  std::vector<uint8_t> sides(dots.regions.size());
  const auto expectFresh = [&](const char* when) {
    graph.cut(dots.regions.data(), {foreground, 1}, {background, 1}, sides.data());
    EXPECT_EQ(sidesOf(dots), sides) << when;
  };
  dots.regions[0].count = kForegroundMark;
  for (size_t i = 1; i < 500; ++i) dots.regions[i].count = kBackgroundMark;
  expectFresh("the pin holds");
  EXPECT_EQ(255, sides[0]);
  for (size_t i = 500; i < 1500; ++i) dots.regions[i].count = kBackgroundMark;
  expectFresh("the pin is used up");
  EXPECT_EQ(0, sides[0]);
  for (size_t i = 300; i < 1500; ++i) dots.regions[i].count = kForegroundMark;
  expectFresh("the pin holds again");
  dots.regions[0].count = kBackgroundMark;
  expectFresh("the other way round");
  for (size_t i = 0; i < dots.regions.size(); ++i) dots.regions[i].count = kNoMark;
  expectFresh("no pins");
}

// Nothing of a cut is left in the next, whichever of them a pin holds against.
TEST(RegionGraph, MarksThatChangeSidesGiveTheCutOfAFreshGraph) {
  for (const size_t dotCount : {500, 560, 700, 1060}) {
    Dots dots(dotCount);
    RegionGraph graph;
    graph.build(dots.labels.data(), kSide, kSide, dots.regions.data(),
                static_cast<int32_t>(dots.regions.size()));
    ASSERT_TRUE(graph);
    std::vector<uint8_t> sides(dots.regions.size());
    for (const int32_t mark : {kBackgroundMark, kForegroundMark, kBackgroundMark}) {
      const int32_t other = mark == kBackgroundMark ? kForegroundMark : kBackgroundMark;
      for (MarkedRegion& region : dots.regions) region.count = other;
      dots.regions[0].count = mark;
      graph.cut(dots.regions.data(), {foreground, 1}, {background, 1}, sides.data());
      EXPECT_EQ(sidesOf(dots), sides) << dotCount;
    }
  }
}

}  // namespace
}  // namespace qpx
