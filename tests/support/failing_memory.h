#pragma once

#include <cstdint>

namespace qpx::testing {

// Memory services that fail on demand and watch what is done with their blocks. Linking
// failing_memory.cpp into a test executable defines MMemAlloc and its kin there, and the dynamic
// linker prefers these over the ones of libkesbase, for the test and for the library under test
// alike.
//
// New blocks are filled with 0xA5, so that a use of bytes never written shows.
// All members may be called from any thread.
class FailingMemory {
 public:
  // Refuses the n-th allocation from now on, counting from 1, and no other.
  static void failOnly(int64_t n);

  // Refuses the n-th allocation from now on and all behind it.
  static void failFrom(int64_t n);

  // Refuses nothing any more and sets all counters to 0, but that live blocks stay known and the
  // peak starts from their bytes.
  static void reset();

  // Blocks and bytes handed out and not yet freed, whenever that was.
  static int64_t liveBlocks();
  static int64_t liveBytes();

  // Since the last failOnly, failFrom or reset: requests (refused ones too; a reallocation is one
  // request), requests refused, and the most bytes that were live at one time.
  static int64_t allocations();
  static int64_t failures();
  static int64_t peakBytes();

  // Since the last reset: blocks given back a second time, and pointers that never were a block.
  // Such a block is left alone; a reallocation of one is counted here too and answers null.
  static int64_t doubleFrees();
  static int64_t foreignFrees();

  // Calls body() with the first, second, ... allocation failing, until a run asks for fewer than
  // that; returns how many runs had a failure. `firstOnly` chooses failOnly over failFrom.
  template <typename Body>
  static int64_t forEachFailure(bool firstOnly, Body body) {
    for (int64_t n = 1;; ++n) {
      firstOnly ? failOnly(n) : failFrom(n);
      body();
      const bool failed = failures() > 0;
      stopFailing();
      if (!failed) return n - 1;
    }
  }

 private:
  static void stopFailing();
};

}  // namespace qpx::testing
