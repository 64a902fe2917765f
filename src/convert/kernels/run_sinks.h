// A sink for each run of columns, so that rows can be taken one after another, as they lie in
// memory, and what a sink finds out about its columns serves all of them.
#pragma once

#include <kesbase.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace qpx::convert::fast {

// Sinks beside the one of the first run. Without memory for them there are none.
template <typename Sink>
class RunSinks {
  static_assert(std::is_trivially_destructible_v<Sink> && std::is_trivially_copyable_v<Sink>);

 public:
  RunSinks(Sink* first, int32_t count) : first_(first) {
    if (count < 2 || count > kMost) return;
    memory_ = MMemAlloc(nullptr, static_cast<size_t>(count - 1) * sizeof(Sink) + alignof(Sink));
    if (memory_ == nullptr) return;
    const auto address = reinterpret_cast<uintptr_t>(memory_);
    others_ =
        reinterpret_cast<Sink*>((address + alignof(Sink) - 1) / alignof(Sink) * alignof(Sink));
    count_ = count;
  }
  RunSinks(const RunSinks&) = delete;
  RunSinks& operator=(const RunSinks&) = delete;
  ~RunSinks() { MMemFree(nullptr, memory_); }

  // `open` is what opened the first one.
  template <typename Open>
  void open(const Open& open) {
    for (int32_t i = 1; i < count_; ++i) open(new (&others_[i - 1]) Sink);
  }

  int32_t count() const { return count_; }
  Sink* at(int32_t i) { return i == 0 ? first_ : &others_[i - 1]; }

 private:
  static constexpr int32_t kMost = 32;

  Sink* first_;
  void* memory_ = nullptr;
  Sink* others_ = nullptr;  // aligned within it
  int32_t count_ = 1;
};

}  // namespace qpx::convert::fast
