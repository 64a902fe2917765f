#include "segment/node_merges.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace qpx {
namespace {

constexpr int32_t kFewestMerged = 10;  // one node in so many, for a level to pay
constexpr int32_t kManyMerged = 4;     // one in so many

// States of nodes, while dividing.
constexpr uint8_t kHasPin = 1;
constexpr uint8_t kBroken = 2;  // what was merged into it may lie on both sides

}  // namespace

// The graph of one level after the other, tested for merges.
class NodeMerges::Finder {
 public:
  bool allocate(int32_t nodes, int64_t pairs);

  void start(const NodePair* pairs, int64_t count, int32_t nodes, int32_t terminalMost);
  // Merges nodes to those of the next level. False without memory, or where so little merges that a
  // level does not pay.
  bool findLevel(Level& level, Level& next);
  // To the graph of the next level.
  void moveUp(const Level& level, int32_t groups);

 private:
  struct Strength {
    int64_t all;  // arcs of a node together, with its terminal
    int32_t strongest;
  };

  void weigh();
  bool dependsOn(int32_t node, int64_t held) const { return 2 * held > strengths_[node].all; }
  void mergeDominated();
  void mergeTriangles();
  int32_t thirdOf(int32_t a, const RowEntry& toB);
  void markRow(int32_t node);
  int32_t leaderOf(int32_t node);
  void merge(const Merge& merge);
  int32_t numberGroups(Level& level);

  PairRows rows_;
  Array<NodePair> pairs_;
  Array<int32_t> terminals_;  // the most that they can have
  Array<Strength> strengths_;
  Array<int32_t> leaders_;   // towards the first of a group
  Array<int64_t> together_;  // strengths of a group, at its first
  Array<Merge> merges_;
  int32_t mergeCount_ = 0;
  Array<RowEntry> marks_;  // of neighbours: whose row was marked, and the capacity there
  int32_t markedRow_ = kNoNode;
};

bool NodeMerges::Finder::allocate(int32_t nodes, int64_t pairs) {
  pairs_ = Array<NodePair>(pairs);
  terminals_ = Array<int32_t>(nodes);
  strengths_ = Array<Strength>(nodes);
  leaders_ = Array<int32_t>(nodes);
  together_ = Array<int64_t>(nodes);
  merges_ = Array<Merge>(nodes);
  marks_ = Array<RowEntry>(nodes);
  return rows_.allocate(nodes, pairs, PairRows::Ways::both) && pairs_ && terminals_ && strengths_ &&
         leaders_ && together_ && merges_ && marks_;
}

void NodeMerges::Finder::start(const NodePair* pairs, int64_t count, int32_t nodes,
                               int32_t terminalMost) {
  std::fill_n(terminals_.get(), nodes, terminalMost);
  std::iota(leaders_.get(), leaders_.get() + nodes, 0);
  rows_.fill(pairs, count, leaders_.get(), nodes);
}

bool NodeMerges::Finder::findLevel(Level& level, Level& next) {
  weigh();
  mergeCount_ = 0;
  mergeDominated();
  // Triangles cost more to find; where much merges without, they keep for the next level.
  if (mergeCount_ <= rows_.nodes() / kManyMerged) mergeTriangles();
  if (mergeCount_ <= rows_.nodes() / kFewestMerged) return false;
  level.groupOf = Array<int32_t>(level.nodes);
  level.merges = Array<Merge>(mergeCount_);
  if (!level.groupOf || !level.merges) return false;
  level.mergeCount = mergeCount_;
  std::copy_n(merges_.get(), mergeCount_, level.merges.get());
  return next.allocate(numberGroups(level));
}

void NodeMerges::Finder::weigh() {
  for (int32_t node = 0; node < rows_.nodes(); ++node) {
    Strength strength = {terminals_[node], 0};
    for (const RowEntry& entry : rows_.row(node)) {
      strength.all += entry.capacity;
      strength.strongest = std::max(strength.strongest, entry.capacity);
    }
    strengths_[node] = strength;
    together_[node] = strength.all;
    leaders_[node] = node;
    marks_[node].node = kNoNode;
  }
  markedRow_ = kNoNode;
}

void NodeMerges::Finder::mergeDominated() {
  for (int32_t a = 0; a < rows_.nodes(); ++a) {
    if (!dependsOn(a, strengths_[a].strongest)) continue;
    for (const RowEntry& entry : rows_.row(a)) {
      if (entry.capacity == strengths_[a].strongest) merge({a, entry.node, kNoNode});
    }
  }
}

// Each pair is looked at from its longer row, so that nodes with many neighbours are gone through
// once.
void NodeMerges::Finder::mergeTriangles() {
  for (int32_t a = 0; a < rows_.nodes(); ++a) {
    const std::span<const RowEntry> row = rows_.row(a);
    for (const RowEntry& toB : row) {
      const int32_t b = toB.node;
      const size_t length = rows_.row(b).size();
      if (length > row.size() || (length == row.size() && b > a)) continue;
      if (!dependsOn(a, int64_t{toB.capacity} + strengths_[a].strongest)) continue;
      if (!dependsOn(b, int64_t{toB.capacity} + strengths_[b].strongest)) continue;
      if (leaderOf(a) == leaderOf(b)) continue;
      const int32_t third = thirdOf(a, toB);
      if (third != kNoNode) merge({a, b, third});
    }
  }
}

// The one that holds two neighbours together, or kNoNode.
int32_t NodeMerges::Finder::thirdOf(int32_t a, const RowEntry& toB) {
  markRow(a);
  for (const RowEntry& entry : rows_.row(toB.node)) {
    const RowEntry& mark = marks_[entry.node];
    if (mark.node == a && dependsOn(a, int64_t{toB.capacity} + mark.capacity) &&
        dependsOn(toB.node, int64_t{toB.capacity} + entry.capacity)) {
      return entry.node;
    }
  }
  return kNoNode;
}

void NodeMerges::Finder::markRow(int32_t node) {
  if (markedRow_ == node) return;
  for (const RowEntry& entry : rows_.row(node)) marks_[entry.node] = {node, entry.capacity};
  markedRow_ = node;
}

int32_t NodeMerges::Finder::leaderOf(int32_t node) {
  while (leaders_[node] != node) node = leaders_[node] = leaders_[leaders_[node]];
  return node;
}

void NodeMerges::Finder::merge(const Merge& merge) {
  int32_t first = leaderOf(merge.a), second = leaderOf(merge.b);
  if (first == second || together_[first] + together_[second] >= kMostTogether) return;
  if (first > second) std::swap(first, second);
  leaders_[second] = first;
  together_[first] += together_[second];
  merges_[mergeCount_++] = merge;
}

int32_t NodeMerges::Finder::numberGroups(Level& level) {
  int32_t groups = 0;
  for (int32_t node = 0; node < level.nodes; ++node) {
    const int32_t leader = leaderOf(node);
    level.groupOf[node] = leader == node ? groups++ : level.groupOf[leader];
  }
  return groups;
}

void NodeMerges::Finder::moveUp(const Level& level, int32_t groups) {
  int64_t count = 0;
  for (int32_t node = 0; node < level.nodes; ++node) {
    for (const RowEntry& entry : rows_.row(node)) {
      if (entry.node > node) pairs_[count++] = {node, entry.node, entry.capacity};
    }
    // Groups are numbered by their first, so that none is written before it was read.
    const int32_t terminal = terminals_[node];
    int32_t& sum = terminals_[level.groupOf[node]];
    sum = leaders_[node] == node ? terminal : sum + terminal;
  }
  rows_.fill(pairs_.get(), count, level.groupOf.get(), groups);
}

bool NodeMerges::Level::allocate(int32_t nodeCount) {
  nodes = nodeCount;
  states = Array<uint8_t>(nodes);
  clusterOf = Array<int32_t>(nodes);
  return states && clusterOf;
}

// Whether a merge is worth something for the nodes as they are now. One of a node that is broken
// itself makes no difference.
bool NodeMerges::Level::holds(const Merge& merge) const {
  if ((states[merge.a] & kHasPin) != 0) return false;
  if (merge.third == kNoNode) return true;
  return (states[merge.b] & kHasPin) == 0 && (states[merge.third] & kBroken) == 0;
}

bool NodeMerges::find(const NodePair* pairs, int64_t pairCount, int32_t nodes,
                      int32_t terminalMost) {
  top_ = 0;
  if (!levels_[0].allocate(nodes)) return false;
  Finder finder;
  if (!finder.allocate(nodes, pairCount)) return true;
  finder.start(pairs, pairCount, nodes, terminalMost);
  while (top_ + 1 < kMostLevels && finder.findLevel(levels_[top_], levels_[top_ + 1])) {
    finder.moveUp(levels_[top_], levels_[top_ + 1].nodes);
    ++top_;
  }
  return true;
}

int32_t NodeMerges::divide(const uint8_t* isPinned) {
  breakMerges(isPinned);
  return numberClusters();
}

// What is broken stays so on all levels above.
void NodeMerges::breakMerges(const uint8_t* isPinned) {
  for (int32_t node = 0; node < levels_[0].nodes; ++node) {
    levels_[0].states[node] = isPinned[node] != 0 ? kHasPin : 0;
  }
  for (int k = 0; k < top_; ++k) {
    const Level& level = levels_[k];
    const Level& next = levels_[k + 1];
    std::fill_n(next.states.get(), next.nodes, uint8_t{0});
    for (int32_t node = 0; node < level.nodes; ++node) {
      next.states[level.groupOf[node]] |= level.states[node];
    }
    for (int32_t i = 0; i < level.mergeCount; ++i) {
      const Merge& merge = level.merges[i];
      if (!level.holds(merge)) next.states[level.groupOf[merge.a]] |= kBroken;
    }
  }
}

// The largest that are whole.
int32_t NodeMerges::numberClusters() {
  int32_t count = 0;
  for (int k = top_; k >= 0; --k) {
    const Level& level = levels_[k];
    for (int32_t node = 0; node < level.nodes; ++node) {
      int32_t cluster = k == top_ ? kNoNode : levels_[k + 1].clusterOf[level.groupOf[node]];
      if (cluster == kNoNode && (level.states[node] & kBroken) == 0) cluster = count++;
      level.clusterOf[node] = cluster;
    }
  }
  return count;
}

}  // namespace qpx
