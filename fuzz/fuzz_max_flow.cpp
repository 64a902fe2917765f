// Calls of any kind in any order on one max-flow solver. As long as every change is marked, a fast
// solve leaves nothing for a whole one to push, and both find the same cut.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/max_flow.h>

#include <climits>
#include <iterator>
#include <vector>

#include "fuzz_check.h"

namespace {

constexpr int32_t kRoom = 24;

// Mostly an index, sometimes anything.
int32_t pickNode(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 31) == 0) return data.ConsumeIntegral<int32_t>();
  return data.ConsumeIntegralInRange(-1, kRoom);
}

int32_t pickCapacity(FuzzedDataProvider& data) {
  switch (data.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return data.ConsumeIntegral<int32_t>();
    case 1:
      return INT32_MAX;
    default:
      return data.ConsumeIntegralInRange(0, 12);
  }
}

class Session {
 public:
  explicit Session(FuzzedDataProvider& data) : data_(data) {
    const int32_t nodes = data.ConsumeBool() ? kRoom : data.ConsumeIntegralInRange(INT32_MIN, 8);
    FUZZ_CHECK(MaxFlowInt_Create(&graph_, nodes, 4 * kRoom) == 0);
  }
  ~Session() { MaxFlowInt_Destroy(graph_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void step() {
    constexpr void (Session::*kSteps[])() = {
        &Session::addNode,   &Session::addEdge, &Session::addEdge, &Session::addTerminal,
        &Session::modify,    &Session::mark,    &Session::set,     &Session::solve,
        &Session::solveFast, &Session::restart};
    (this->*kSteps[data_.ConsumeIntegralInRange<size_t>(0, std::size(kSteps) - 1)])();
  }

 private:
  bool hasNode(int32_t node) const { return node >= 0 && node < nodes_; }

  void markOrNot(int32_t node) {
    if (data_.ConsumeIntegralInRange(0, 7) == 0) {
      marked_ = marked_ && !hasNode(node);
    } else {
      FUZZ_CHECK(MaxFlowInt_MarkNode(graph_, node) == (hasNode(node) ? 0 : 2));
    }
  }

  void addNode() {
    const int32_t node = MaxFlowInt_AddNode(graph_);
    FUZZ_CHECK(node == nodes_ || node == 4);
    // Full or not: only asking for what is not there tells 4 from 4.
    int32_t none[2] = {};
    if (MaxFlowInt_SetTrcap(graph_, nodes_, none) == 0) ++nodes_;
  }

  void addEdge() {
    const int32_t from = pickNode(data_), to = pickNode(data_);
    const int32_t capacity = pickCapacity(data_), back = pickCapacity(data_);
    const int32_t code = MaxFlowInt_AddEdge(graph_, from, to, capacity, back);
    const bool sound = hasNode(from) && hasNode(to) && from != to && capacity >= 0 && back >= 0;
    FUZZ_CHECK(sound ? code == 0 || code == 4 : code == 2);
    if (code != 0) return;
    markOrNot(from);
    markOrNot(to);
  }

  void addTerminal() {
    const int32_t node = pickNode(data_);
    const int32_t caps[2] = {pickCapacity(data_), pickCapacity(data_)};
    FUZZ_CHECK(MaxFlowInt_AddTWeights(graph_, node, caps) == (hasNode(node) ? 0 : 2));
    markOrNot(node);
  }

  void modify() {
    const int32_t node = pickNode(data_);
    const int32_t value = data_.ConsumeBool() ? pickCapacity(data_) : -(pickCapacity(data_) / 2);
    FUZZ_CHECK(MaxFlowInt_ModifyNode(graph_, node, value) == (hasNode(node) ? 0 : 2));
    if (hasNode(node)) FUZZ_CHECK(MaxFlowInt_GetTrcap(graph_, node) == value);
  }

  void mark() {
    const int32_t node = pickNode(data_);
    FUZZ_CHECK(MaxFlowInt_MarkNode(graph_, node) == (hasNode(node) ? 0 : 2));
  }

  void set() {
    const int32_t node = pickNode(data_);
    const int32_t caps[2] = {pickCapacity(data_), pickCapacity(data_)};
    FUZZ_CHECK(MaxFlowInt_SetTrcap(graph_, node, caps) == (hasNode(node) ? 0 : 2));
    markOrNot(node);
  }

  std::vector<int32_t> types() const {
    std::vector<int32_t> list;
    for (int32_t i = 0; i < nodes_; ++i) {
      list.push_back(MaxFlowInt_GetNodeType(graph_, i));
      const int32_t left = MaxFlowInt_GetTrcap(graph_, i);
      FUZZ_CHECK(list.back() == 0 || list.back() == 1);
      FUZZ_CHECK(left == 0 || list.back() == (left < 0 ? 1 : 0) || !marked_);
    }
    return list;
  }

  void solve() {
    const int32_t flow = MaxFlowInt_GetMaxFlow(graph_);
    marked_ = true;
    const std::vector<int32_t> cut = types();
    FUZZ_CHECK(MaxFlowInt_GetMaxFlow(graph_) == flow);
    FUZZ_CHECK(types() == cut);
  }

  void solveFast() {
    const int32_t flow = MaxFlowInt_GetMaxFlowFast(graph_);
    const std::vector<int32_t> cut = types();
    // A whole solve of the same graph, now and then: trees are to grow old too.
    if (data_.ConsumeIntegralInRange(0, 3) != 0) return;
    const int32_t again = MaxFlowInt_GetMaxFlow(graph_);
    FUZZ_CHECK(!marked_ || (again == flow && types() == cut));
    marked_ = true;
  }

  void restart() {
    if (data_.ConsumeIntegralInRange(0, 7) != 0) return;
    FUZZ_CHECK(MaxFlowInt_Initialize(graph_) == 0);
    nodes_ = 0;
    marked_ = true;
  }

  FuzzedDataProvider& data_;
  MaxFlowGraph* graph_ = nullptr;
  int32_t nodes_ = 0;
  bool marked_ = true;  // all that changed since the last whole solve
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  Session session(data);
  while (data.remaining_bytes() > 0) session.step();
  return 0;
}
