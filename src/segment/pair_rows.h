// A graph's pairs of neighbours, sorted into one row for each node.
#pragma once

#include <cstdint>
#include <span>

#include "segment/array.h"

namespace qpx {

struct NodePair {
  int32_t a, b;
  int32_t capacity;  // of the arcs both ways
};

struct RowEntry {
  int32_t node;
  int32_t capacity;
};

class PairRows {
 public:
  // A pair stands in the row of its smaller node, or in the rows of both.
  enum class Ways { one, both };

  // Room for so many nodes and pairs. False without memory.
  bool allocate(int32_t nodes, int64_t pairs, Ways ways);

  // Takes pairs of any nodes and the node that each of these is part of here: parts of one node are
  // no neighbours, and pairs of the same two nodes become one.
  void fill(const NodePair* pairs, int64_t count, const int32_t* nodeOf, int32_t nodes);

  int32_t nodes() const { return nodes_; }
  std::span<const RowEntry> row(int32_t node) const {
    return {entries_.get() + starts_[node], ends_[node] - starts_[node]};
  }

 private:
  void countRows(const NodePair* pairs, int64_t count, const int32_t* nodeOf);
  void joinParallels();

  int32_t nodes_ = 0;
  Ways ways_ = Ways::one;
  Array<uint32_t> starts_, ends_;
  Array<RowEntry> entries_;
  Array<uint32_t> places_;  // where a row has a node, if it lies in that row
};

}  // namespace qpx
