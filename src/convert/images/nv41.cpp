// NV21 to NV41 and back: chroma to half its size and to twice its size.
#include <kesbase.h>

#include <algorithm>

#include "convert/images/conversions.h"
#include "convert/images/image_layout.h"

namespace qpx {
namespace {

uint8_t meanOf2(int32_t a, int32_t b) { return static_cast<uint8_t>((a + b + 1) >> 1); }
uint8_t meanOf4(int32_t a, int32_t b, int32_t c, int32_t d) {
  return static_cast<uint8_t>((a + b + c + d + 2) >> 2);
}

// Planes of one pitch are one block, padding and all.
void copyLuma(const McvImage& src, const McvImage& dst) {
  if (src.plane[0] == dst.plane[0]) return;
  if (src.pitch[0] == dst.pitch[0] && dst.pitch[0] >= dst.width) {
    const size_t size = static_cast<size_t>(dst.pitch[0]) * static_cast<size_t>(dst.height);
    MMemCpy(dst.plane[0], src.plane[0], size);
    return;
  }
  for (int32_t row = 0; row < dst.height; ++row) {
    MMemCpy(rowOf(dst, 0, row), rowOf(src, 0, row), static_cast<size_t>(dst.width));
  }
}

// Means of two columns on two rows, both channels of each.
void halveRow(const uint8_t* upper, const uint8_t* lower, uint8_t* dst, int32_t samples) {
  for (ptrdiff_t i = 0; i < samples; ++i) {
    for (ptrdiff_t c = 2 * i; c < 2 * i + 2; ++c) {
      const ptrdiff_t left = c + 2 * i;
      dst[c] = meanOf4(upper[left], upper[left + 2], lower[left], lower[left + 2]);
    }
  }
}

struct ChromaSamples {
  const uint8_t* pairs;
  int32_t last;

  // Columns behind the last one are the last one.
  int32_t at(int32_t column, int32_t channel) const {
    return pairs[2 * ptrdiff_t{std::min(column, last)} + channel];
  }
};

void doubleRow(const ChromaSamples& row, uint8_t* dst, int32_t samples) {
  for (int32_t i = 0; i < samples; ++i) {
    for (int32_t c = 0; c < 2; ++c) {
      const int32_t left = row.at(i / 2, c);
      *dst++ = i % 2 == 0 ? static_cast<uint8_t>(left) : meanOf2(left, row.at(i / 2 + 1, c));
    }
  }
}

void doubleBetween(const ChromaSamples& upper, const ChromaSamples& lower, uint8_t* dst,
                   int32_t samples) {
  for (int32_t i = 0; i < samples; ++i) {
    const int32_t column = i / 2;
    for (int32_t c = 0; c < 2; ++c) {
      const int32_t a = upper.at(column, c), b = lower.at(column, c);
      *dst++ = i % 2 == 0 ? meanOf2(a, b)
                          : meanOf4(a, upper.at(column + 1, c), b, lower.at(column + 1, c));
    }
  }
}

}  // namespace

int32_t nv21ToNv41(const McvImage* src, const McvImage* dst) {
  if (const int32_t answer = checkImages({MCV_NV21, MCV_NV41}, src, dst); answer != kMcvDone) {
    return answer;
  }
  copyLuma(*src, *dst);
  for (int32_t row = 0; row < dst->height / 4; ++row) {
    halveRow(rowOf(*src, 1, 2 * row), rowOf(*src, 1, 2 * row + 1), rowOf(*dst, 1, row),
             dst->width / 4);
  }
  return kMcvDone;
}

int32_t nv41ToNv21(const McvImage* src, const McvImage* dst) {
  if (const int32_t answer = checkImages({MCV_NV41, MCV_NV21}, src, dst); answer != kMcvDone) {
    return answer;
  }
  copyLuma(*src, *dst);
  const int32_t columns = src->width / 4, rows = src->height / 4;
  if (columns == 0 || rows == 0) return kMcvDone;
  const auto sourceAt = [&](int32_t row) {
    return ChromaSamples{rowOf(*src, 1, std::min(row, rows - 1)), columns - 1};
  };
  for (int32_t row = 0; row < dst->height / 2; ++row) {
    uint8_t* const target = rowOf(*dst, 1, row);
    if (row % 2 == 0) {
      doubleRow(sourceAt(row / 2), target, dst->width / 2);
    } else {
      doubleBetween(sourceAt(row / 2), sourceAt(row / 2 + 1), target, dst->width / 2);
    }
  }
  return kMcvDone;
}

}  // namespace qpx
