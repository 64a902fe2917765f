// An array of the memory services that frees itself.
#pragma once

#include <kesbase.h>

#include <cstddef>
#include <cstdint>
#include <utility>

#include "engine/stage.h"

namespace qpx {

template <typename Entry>
class Array {
 public:
  Array() = default;
  // Null without memory.
  explicit Array(int64_t count)
      : entries_(static_cast<Entry*>(
            MMemAlloc(nullptr, blockBytes(count > 0 ? count : 1, sizeof(Entry))))) {}
  Array(Array&& other) noexcept : entries_(std::exchange(other.entries_, nullptr)) {}
  Array& operator=(Array&& other) noexcept {
    std::swap(entries_, other.entries_);
    return *this;
  }
  ~Array() { MMemFree(nullptr, entries_); }

  Entry* get() const { return entries_; }
  template <typename Index>
  Entry& operator[](Index i) const {
    return entries_[i];
  }
  explicit operator bool() const { return entries_ != nullptr; }

 private:
  Entry* entries_ = nullptr;
};

}  // namespace qpx
