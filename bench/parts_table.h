// Works in one call, in bands on a pool, and in two halves on two threads, by the clock on the
// wall.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qpx::bench {

struct InParts {
  std::string work, size;
  std::function<void()> whole;
  std::function<void()> bands;           // null where there are none
  std::function<void(int half)> halves;  // the upper rows for 0, the lower ones for 1
};

// Halves are worked on by the caller and one other thread, which never sleeps: what two processors
// can do to these bytes at most. Rows that copy tell what memory allows.
void printParts(const std::vector<InParts>& works);

// Works beside the banded conversions: copies, what computes much for each pixel, and conversions
// by a record. Their bands are tasks of a pool.
void addCopies(std::vector<InParts>* works);
void addPooledWorks(std::vector<InParts>* works);

}  // namespace qpx::bench
