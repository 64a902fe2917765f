// Vector rows against plain rows for every length and misalignment: same bytes, every byte written,
// nothing touched outside the row.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "simd/row_cases.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

// Bytes of the longest vector of the architecture.
#if HWY_ARCH_ARM
constexpr int32_t kVector = 16;
#else
constexpr int32_t kVector = 64;
#endif
constexpr int32_t kLongestRow = 3 * kVector + 17;
constexpr int32_t kGuard = 2 * kVector;
constexpr uint8_t kSentinel = 0xA5;

// One row with sentinels on both sides, beginning `offset` bytes behind an aligned address.
class GuardedRow {
 public:
  void reset(int32_t bytes, int32_t offset) {
    bytes_ = bytes;
    offset_ = offset;
    std::fill(std::begin(buffer_), std::end(buffer_), kSentinel);
  }

  uint8_t* data() { return buffer_ + kGuard + offset_; }
  int32_t size() const { return bytes_; }

  void fillWithNoise(uint32_t seed) {
    for (int32_t i = 0; i < bytes_; ++i) data()[i] = noise(static_cast<uint32_t>(i), seed);
  }

  // What no right result leaves standing.
  void fillWithComplement(const uint8_t* expected) {
    for (int32_t i = 0; i < bytes_; ++i) data()[i] = static_cast<uint8_t>(~expected[i]);
  }

  bool guardsStand() const {
    const auto intact = [](uint8_t byte) { return byte == kSentinel; };
    const uint8_t* row = buffer_ + kGuard + offset_;
    return std::all_of(std::begin(buffer_), row, intact) &&
           std::all_of(row + bytes_, std::end(buffer_), intact);
  }

 private:
  alignas(kVector) uint8_t buffer_[2 * kGuard + kVector + 4 * kLongestRow];
  int32_t bytes_ = 0;
  int32_t offset_ = 0;
};

// The input rows of one call and what the plain form makes of them.
struct Sample {
  Sample(const RowCase& rowCase, int32_t count, uint32_t seed) {
    for (int32_t k = 0; k < rowCase.inputs; ++k) {
      inputs[k].reset(rowCase.inputBytes * count, 0);
      inputs[k].fillWithNoise(seed + static_cast<uint32_t>(k));
      in[k] = inputs[k].data();
    }
    for (int32_t k = 0; k < rowCase.outputs; ++k) {
      expected[k].reset(rowCase.outputBytes * count, 0);
      out[k] = expected[k].data();
    }
    rowCase.call(plainForm<Rows>(), in, out, count);
  }

  GuardedRow inputs[kMaxRows];
  GuardedRow expected[kMaxRows];
  const uint8_t* in[kMaxRows];
  uint8_t* out[kMaxRows];
};

testing::AssertionResult sameBytes(const uint8_t* actual, const uint8_t* expected, int32_t size) {
  for (int32_t i = 0; i < size; ++i) {
    if (actual[i] != expected[i]) {
      return testing::AssertionFailure() << "byte " << i << ": expected " << int32_t{expected[i]}
                                         << ", actual " << int32_t{actual[i]};
    }
  }
  return testing::AssertionSuccess();
}

class RowBounds : public TargetTest {};
QPX_FOR_EACH_TARGET(RowBounds);

TEST_P(RowBounds, EveryLengthAndMisalignmentGivesThePlainBytes) {
  GuardedRow inputs[kMaxRows], outputs[kMaxRows];
  const uint8_t* in[kMaxRows];
  uint8_t* out[kMaxRows];
  for (const RowCase& rowCase : rowCases()) {
    for (int32_t count = 0; count <= kLongestRow; ++count) {
      Sample sample(rowCase, count, static_cast<uint32_t>(count));
      for (int32_t offset = 0; offset < kVector; ++offset) {
        for (int32_t k = 0; k < rowCase.inputs; ++k) {
          inputs[k].reset(sample.inputs[k].size(), (offset + 5 * k) % kVector);
          std::copy_n(sample.in[k], sample.inputs[k].size(), inputs[k].data());
          in[k] = inputs[k].data();
        }
        for (int32_t k = 0; k < rowCase.outputs; ++k) {
          outputs[k].reset(sample.expected[k].size(), (3 * offset + 7 * k) % kVector);
          outputs[k].fillWithComplement(sample.out[k]);
          out[k] = outputs[k].data();
        }
        rowCase.call(vector(), in, out, count);
        for (int32_t k = 0; k < rowCase.outputs; ++k) {
          ASSERT_TRUE(sameBytes(out[k], sample.out[k], outputs[k].size()))
              << rowCase.name << ", output " << k << ", count " << count << ", offset " << offset;
          ASSERT_TRUE(outputs[k].guardsStand())
              << rowCase.name << ", output " << k << ", count " << count << ", offset " << offset;
        }
        for (int32_t k = 0; k < rowCase.inputs; ++k) {
          ASSERT_TRUE(sameBytes(in[k], sample.in[k], inputs[k].size())) << rowCase.name;
        }
      }
    }
  }
}

// Whole pictures joined to one row are written past the caches.
TEST_P(RowBounds, RowOfMegabytesGivesThePlainBytes) {
  constexpr ptrdiff_t kLong = (ptrdiff_t{1} << 22) + 77;
  constexpr ptrdiff_t kPad = 64;  // the longest vector of any target
  uint8_t table[256];
  for (int i = 0; i < 256; ++i) table[i] = static_cast<uint8_t>(i * 7 + 3);
  std::vector<uint8_t> input(kLong + kPad), expected(kLong);
  uint32_t state = 1;
  for (uint8_t& byte : input)
    byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  for (const ptrdiff_t offset : {0, 1, 31, 63}) {
    plain().lookup(input.data() + offset, expected.data(), kLong, table);
    std::vector<uint8_t> output(static_cast<size_t>(kLong + 2 * kPad), 0xA5);
    vector().lookup(input.data() + offset, output.data() + kPad - offset, kLong, table);
    ASSERT_TRUE(sameBytes(output.data() + kPad - offset, expected.data(), kLong)) << offset;
    ASSERT_EQ(output[static_cast<size_t>(kPad - offset - 1)], 0xA5) << offset;
    ASSERT_EQ(output[static_cast<size_t>(kPad - offset + kLong)], 0xA5) << offset;
    std::vector<uint8_t> same = input;
    vector().lookup(same.data() + offset, same.data() + offset, kLong, table);
    ASSERT_TRUE(sameBytes(same.data() + offset, expected.data(), kLong)) << offset << " in place";
  }
}

TEST_P(RowBounds, RowThatIsItsOwnOutputGivesThePlainBytes) {
  GuardedRow row;
  for (const RowCase& rowCase : rowCases()) {
    for (int32_t reused = 0; rowCase.inPlace && reused < rowCase.inputs; ++reused) {
      for (int32_t count = 0; count <= kLongestRow; ++count) {
        Sample sample(rowCase, count, static_cast<uint32_t>(1000 + count));
        for (int32_t offset = 0; offset < kVector; offset += 3) {
          row.reset(sample.inputs[reused].size(), offset);
          std::copy_n(sample.in[reused], row.size(), row.data());
          const uint8_t* in[kMaxRows];
          std::copy(std::begin(sample.in), std::end(sample.in), in);
          in[reused] = row.data();
          uint8_t* const out[] = {row.data()};
          rowCase.call(vector(), in, out, count);
          ASSERT_TRUE(sameBytes(row.data(), sample.out[0], row.size()))
              << rowCase.name << " into input " << reused << ", count " << count;
          ASSERT_TRUE(row.guardsStand()) << rowCase.name << ", count " << count;
        }
      }
    }
  }
}

// A row between two pages that may not be touched.
class FencedRow {
 public:
  FencedRow() : page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    void* p = mmap(nullptr, 3 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) abort();
    base_ = static_cast<uint8_t*>(p);
    if (mprotect(base_ + page_, page_, PROT_READ | PROT_WRITE) != 0) abort();
  }
  ~FencedRow() { munmap(base_, 3 * page_); }
  FencedRow(const FencedRow&) = delete;
  FencedRow& operator=(const FencedRow&) = delete;

  uint8_t* atFront() { return base_ + page_; }
  uint8_t* atBack(int32_t bytes) { return base_ + 2 * page_ - bytes; }

 private:
  size_t page_;
  uint8_t* base_;
};

TEST_P(RowBounds, NothingOutsideTheRowIsRead) {
  FencedRow inputs[kMaxRows], outputs[kMaxRows];
  const uint8_t* in[kMaxRows];
  uint8_t* out[kMaxRows];
  for (const RowCase& rowCase : rowCases()) {
    for (int32_t count = 0; count <= kLongestRow; ++count) {
      Sample sample(rowCase, count, static_cast<uint32_t>(2000 + count));
      for (const bool atFront : {true, false}) {
        for (int32_t k = 0; k < rowCase.inputs; ++k) {
          const int32_t bytes = sample.inputs[k].size();
          uint8_t* row = atFront ? inputs[k].atFront() : inputs[k].atBack(bytes);
          std::copy_n(sample.in[k], bytes, row);
          in[k] = row;
        }
        for (int32_t k = 0; k < rowCase.outputs; ++k) {
          const int32_t bytes = sample.expected[k].size();
          out[k] = atFront ? outputs[k].atFront() : outputs[k].atBack(bytes);
        }
        rowCase.call(vector(), in, out, count);
        for (int32_t k = 0; k < rowCase.outputs; ++k) {
          ASSERT_TRUE(sameBytes(out[k], sample.out[k], sample.expected[k].size())) << rowCase.name;
        }
      }
    }
  }
}

TEST_P(RowBounds, NegativeCountDoesNothing) {
  for (const RowCase& rowCase : rowCases()) {
    Sample sample(rowCase, 1, 7);
    GuardedRow outputs[kMaxRows];
    uint8_t* out[kMaxRows];
    for (int32_t k = 0; k < rowCase.outputs; ++k) {
      outputs[k].reset(0, 0);
      out[k] = outputs[k].data();
    }
    for (const ptrdiff_t count : {-1, -kVector, -1000000}) {
      rowCase.call(vector(), sample.in, out, count);
      rowCase.call(plain(), sample.in, out, count);
    }
    for (int32_t k = 0; k < rowCase.outputs; ++k) {
      EXPECT_TRUE(outputs[k].guardsStand()) << rowCase.name;
    }
  }
}

}  // namespace
}  // namespace qpx::simd
