// Bilinear sampling of a picture along straight lines: what all turned pictures are made by.
//
// A destination row is cut into blocks of neighbouring pixels. Whoever turns a picture says where
// the pixels of a block come from; the four source pixels around each of these places are then
// loaded (without a test where the whole neighbourhood lies inside the source, which is the case
// for all but the ends of a row) and blended by simd::TapRows.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "simd/tap_rows.h"

namespace qpx {

inline constexpr int32_t kBlockPixels = 256;

// Rows of the destination whose source is fetched ahead.
inline constexpr int32_t kRowsAhead = 8;

// Neighbouring pixels of a destination row. Places are fixed-point numbers relative to the whole
// pixel (column, row) of the source, so that they fit 32 bits however far away that is. Along a
// block, each of u and v grows or falls, but never turns.
struct SampleBlock {
  int32_t count = 0;
  int64_t column = 0;
  int64_t row = 0;
  // How far away the pixels a few rows below this block come from: that is where the sources of the
  // coming blocks are, along a path that no processor foresees.
  int32_t columnsAhead = 0;
  int32_t rowsAhead = 0;
  uint32_t fetchMask = 0;  // pixels whose number has none of these bits fetch
  alignas(64) int32_t u[kBlockPixels];
  alignas(64) int32_t v[kBlockPixels];
  alignas(64) int32_t offsets[kBlockPixels];
  alignas(64) uint64_t top[kBlockPixels];
  alignas(64) uint64_t bottom[kBlockPixels];
  alignas(64) uint32_t pixels[kBlockPixels];  // the result: channels in memory order

  simd::Taps tapsFrom(int32_t first) const {
    return {top + first, bottom + first, u + first, v + first};
  }
};

// Rows of a source that lies in memory with a pitch.
struct PitchedRows {
  const uint8_t* plane;
  ptrdiff_t pitch;
  const uint8_t* operator[](size_t row) const {
    // As a number: a row below 2^31 and a pitch may be more than 32 bits together.
    return plane + static_cast<ptrdiff_t>(row) * pitch;
  }
};

// Rows of a source that is known by a table, as kernels of the engine know it.
struct TabledRows {
  uint8_t* const* table;
  const uint8_t* operator[](size_t row) const { return table[row]; }
};

template <typename Rows>
struct SampleSource {
  Rows rows;
  int32_t width;
  int32_t height;
};

// A part of a block, `end` exclusive.
struct BlockPart {
  int32_t first;
  int32_t end;

  bool empty() const { return first >= end; }
  BlockPart cutTo(const BlockPart& other) const {
    const int32_t from = std::max(first, other.first);
    return {from, std::max(from, std::min(end, other.end))};
  }
};

// Where low <= places[i] < high. Places never turn.
inline BlockPart partWithin(const int32_t* places, int32_t count, int64_t low, int64_t high) {
  const auto within = [&](int32_t place) { return place >= low && place < high; };
  if (within(places[0]) && within(places[count - 1])) return {0, count};
  const bool grows = places[0] <= places[count - 1];
  const auto before = [&](int32_t place) { return grows ? place < low : place >= high; };
  const auto notBehind = [&](int32_t place) { return grows ? place < high : place >= low; };
  const int32_t* first = std::partition_point(places, places + count, before);
  const int32_t* end = std::partition_point(first, places + count, notBehind);
  return {static_cast<int32_t>(first - places), static_cast<int32_t>(end - places)};
}

// The pixels whose upper left tap lies in columns [left, right) and rows [top, bottom).
template <int kFraction>
BlockPart partFrom(const SampleBlock& block, int64_t left, int64_t top, int64_t right,
                   int64_t bottom) {
  constexpr int64_t kOne = int64_t{1} << kFraction;
  const BlockPart across =
      partWithin(block.u, block.count, (left - block.column) * kOne, (right - block.column) * kOne);
  const BlockPart down =
      partWithin(block.v, block.count, (top - block.row) * kOne, (bottom - block.row) * kOne);
  return across.cutTo(down);
}

inline uint64_t loadPair(const uint8_t* pixels) {
  uint64_t pair;
  std::memcpy(&pair, pixels, sizeof pair);
  return pair;
}

// Loads the taps of pixels that have eight readable bytes from the upper left tap on, in its row
// and in the one below.
template <int kBytes, int kFraction, typename Rows>
void loadInside(const SampleSource<Rows>& source, SampleBlock& block, const BlockPart& part) {
  const auto row = static_cast<size_t>(block.row);
  const auto column = static_cast<size_t>(block.column);
  for (int32_t k = part.first; k < part.end; ++k) {
    const size_t i = (column + static_cast<size_t>(block.u[k] >> kFraction)) * kBytes;
    const size_t j = row + static_cast<size_t>(block.v[k] >> kFraction);
    block.top[k] = loadPair(source.rows[j] + i);
    block.bottom[k] = loadPair(source.rows[j + 1] + i);
  }
}

// Whether the pixels of a block lie near enough for byte offsets of 32 bits: it spans less than two
// rows for each of its pixels.
template <int kBytes>
bool offsetsFit(const PitchedRows& rows) {
  return rows.pitch <= INT32_MAX / (2 * kBlockPixels) - kBytes;
}

// Calls body(k, address of the upper left tap) for the pixels of a part, all of them inside.
template <int kBytes, int kFraction, typename Body>
void forEachInside(const SampleSource<PitchedRows>& source, SampleBlock& block,
                   const BlockPart& part, const Body& body) {
  const ptrdiff_t pitch = source.rows.pitch;
  simd::tapRows().offsets(block.u + part.first, block.v + part.first, block.offsets + part.first,
                          part.end - part.first, kFraction, static_cast<int32_t>(pitch), kBytes);
  // As a number, since the block's whole pixel may lie outside the picture.
  const uintptr_t origin = reinterpret_cast<uintptr_t>(source.rows.plane) +
                           static_cast<uintptr_t>(block.row) * static_cast<uintptr_t>(pitch) +
                           static_cast<uintptr_t>(block.column) * kBytes;
  const uintptr_t ahead = static_cast<uintptr_t>(pitch * block.rowsAhead) +
                          static_cast<uintptr_t>(ptrdiff_t{block.columnsAhead} * kBytes);
  for (int32_t k = part.first; k < part.end; ++k) {
    const uintptr_t address = origin + static_cast<uintptr_t>(ptrdiff_t{block.offsets[k]});
    if ((static_cast<uint32_t>(k) & block.fetchMask) == 0) {
      __builtin_prefetch(reinterpret_cast<const void*>(address + ahead));
    }
    body(k, reinterpret_cast<const uint8_t*>(address));
  }
}

// loadInside from rows at even distances, whose addresses are computed beforehand.
template <int kBytes, int kFraction>
void loadInside(const SampleSource<PitchedRows>& source, SampleBlock& block,
                const BlockPart& part) {
  if (!offsetsFit<kBytes>(source.rows)) {
    loadInside<kBytes, kFraction, PitchedRows>(source, block, part);
    return;
  }
  const ptrdiff_t pitch = source.rows.pitch;
  forEachInside<kBytes, kFraction>(source, block, part, [&](int32_t k, const uint8_t* pixel) {
    block.top[k] = loadPair(pixel);
    block.bottom[k] = loadPair(pixel + pitch);
  });
}

template <int kBytes>
uint32_t loadPixel(const uint8_t* pixel) {
  uint32_t word = 0;
  std::memcpy(&word, pixel, kBytes);
  return word;
}

// Taps outside the source are `fill`.
struct FillOutside {
  uint32_t fill;

  template <int kBytes, typename Rows>
  uint32_t tap(const SampleSource<Rows>& source, int64_t column, int64_t row) const {
    if (column < 0 || column >= source.width || row < 0 || row >= source.height) return fill;
    return loadPixel<kBytes>(source.rows[static_cast<size_t>(row)] + column * kBytes);
  }
};

// Taps outside the source are the nearest pixels inside.
struct RepeatEdges {
  template <int kBytes, typename Rows>
  uint32_t tap(const SampleSource<Rows>& source, int64_t column, int64_t row) const {
    const auto i = std::clamp<int64_t>(column, 0, source.width - 1);
    const auto j = std::clamp<int64_t>(row, 0, source.height - 1);
    return loadPixel<kBytes>(source.rows[static_cast<size_t>(j)] + i * kBytes);
  }
};

// Loads taps one by one, wherever they are.
template <int kBytes, int kFraction, typename Rows, typename Edges>
void loadAnywhere(const SampleSource<Rows>& source, const Edges& edges, SampleBlock& block,
                  const BlockPart& part) {
  const auto pair = [&](int64_t i, int64_t j) {
    const uint64_t left = edges.template tap<kBytes>(source, i, j);
    const uint64_t right = edges.template tap<kBytes>(source, i + 1, j);
    constexpr uint64_t kPixel = (uint64_t{1} << (8 * kBytes)) - 1;
    return (left & kPixel) | right << (8 * kBytes);
  };
  for (int32_t k = part.first; k < part.end; ++k) {
    const int64_t i = block.column + (block.u[k] >> kFraction);
    const int64_t j = block.row + (block.v[k] >> kFraction);
    block.top[k] = pair(i, j);
    block.bottom[k] = pair(i, j + 1);
  }
}

// Samples a part of a block into its pixels.
template <int kBytes, int kFraction, typename Rows, typename Edges>
void samplePart(const SampleSource<Rows>& source, const Edges& edges, simd::TapRows::Blend blend,
                SampleBlock& block, const BlockPart& part) {
  // Pixels of three bytes need a third one to the right, to have eight bytes.
  constexpr int32_t kPixelsRead = (8 + kBytes - 1) / kBytes;
  const BlockPart inside =
      partFrom<kFraction>(block, 0, 0, source.width - (kPixelsRead - 1), source.height - 1)
          .cutTo(part);
  if (inside.empty()) {
    loadAnywhere<kBytes, kFraction>(source, edges, block, part);
  } else {
    loadAnywhere<kBytes, kFraction>(source, edges, block, {part.first, inside.first});
    loadInside<kBytes, kFraction>(source, block, inside);
    loadAnywhere<kBytes, kFraction>(source, edges, block, {inside.end, part.end});
  }
  blend(block.tapsFrom(part.first), block.pixels + part.first, part.end - part.first);
}

// Samples a block whose pixels are blended where the upper left tap lies at most one pixel outside,
// and are the plain fill elsewhere.
template <int kBytes, int kFraction, typename Rows>
void sampleFilled(const SampleSource<Rows>& source, uint32_t fill, simd::TapRows::Blend blend,
                  SampleBlock& block) {
  const BlockPart touched =
      partFrom<kFraction>(block, -1, -1, source.width, source.height).cutTo({0, block.count});
  std::fill(block.pixels, block.pixels + touched.first, fill);
  std::fill(block.pixels + touched.end, block.pixels + block.count, fill);
  if (touched.empty()) return;
  samplePart<kBytes, kFraction>(source, FillOutside{fill}, blend, block, touched);
}

// Samples a block of a picture without an outside.
template <int kBytes, int kFraction, typename Rows>
void sampleRepeated(const SampleSource<Rows>& source, simd::TapRows::Blend blend,
                    SampleBlock& block) {
  samplePart<kBytes, kFraction>(source, RepeatEdges{}, blend, block, {0, block.count});
}

// Takes the one pixel at each place, or the nearest inside.
template <int kBytes, int kFraction>
void sampleNearest(const SampleSource<PitchedRows>& source, SampleBlock& block) {
  const auto takeAnywhere = [&](const BlockPart& part) {
    for (int32_t k = part.first; k < part.end; ++k) {
      block.pixels[k] = RepeatEdges{}.tap<kBytes>(source, block.column + (block.u[k] >> kFraction),
                                                  block.row + (block.v[k] >> kFraction));
    }
  };
  // Four bytes are read of pixels that have three.
  constexpr int32_t kPixelsRead = (4 + kBytes - 1) / kBytes;
  const BlockPart inside =
      offsetsFit<kBytes>(source.rows)
          ? partFrom<kFraction>(block, 0, 0, source.width - (kPixelsRead - 1), source.height)
          : BlockPart{0, 0};
  if (inside.empty()) {
    takeAnywhere({0, block.count});
    return;
  }
  takeAnywhere({0, inside.first});
  forEachInside<kBytes, kFraction>(source, block, inside, [&](int32_t k, const uint8_t* pixel) {
    block.pixels[k] = loadPixel<4>(pixel);
  });
  takeAnywhere({inside.end, block.count});
}

// Says where to fetch ahead in a picture turned by an angle of this sine and cosine. Where a row of
// the destination leads down the source every pixel has a line of its own, otherwise neighbours
// share one.
inline void fetchAlong(double sine, double cosine, SampleBlock& block) {
  block.columnsAhead = static_cast<int32_t>(-kRowsAhead * sine);
  block.rowsAhead = static_cast<int32_t>(kRowsAhead * cosine);
  block.fetchMask = std::abs(sine) < 0.5 ? 3 : 0;
}

// Packs the pixels of a block. Words of three bytes are written over one another, the last one byte
// by byte.
template <int kBytes>
void storeBlock(const SampleBlock& block, uint8_t* dst) {
  if constexpr (kBytes == 4) {
    std::memcpy(dst, block.pixels, static_cast<size_t>(block.count) * 4);
  } else {
    for (int32_t k = 0; k + 1 < block.count; ++k, dst += kBytes) {
      std::memcpy(dst, block.pixels + k, 4);
    }
    std::memcpy(dst, block.pixels + block.count - 1, kBytes);
  }
}

// Calls body(left, y, count) for every block of a rectangle, tile by tile: neighbouring rows of a
// tile read the same source lines, which a whole row of a steep angle would have driven from the
// cache.
template <typename Body>
void forEachBlock(int32_t left, int32_t top, int32_t right, int32_t bottom, const Body& body) {
  constexpr int32_t kTileRows = 64;
  for (int32_t tileTop = top; tileTop < bottom;) {
    const int32_t tileBottom = bottom - tileTop > kTileRows ? tileTop + kTileRows : bottom;
    for (int32_t x = left; x < right;) {
      const int32_t count = std::min(kBlockPixels, right - x);
      for (int32_t y = tileTop; y < tileBottom; ++y) body(x, y, count);
      x += count;
    }
    tileTop = tileBottom;
  }
}

}  // namespace qpx
