// Decoding at a lower size: the index tables, and rows through them.
#include <algorithm>

#include "engine/stage.h"
#include "toolkit/png_decoder.h"

namespace qpx {
namespace {

// Samples of value 0 leave what is there: in a pass of an interlaced file that is what the pixels
// of the other passes are in the source row.
void addSamples(const PngHandle& decoder, size_t bytes, uint8_t* to) {
  for (size_t x = 0; x < decoder.width; ++x) {
    const uint8_t* const from = decoder.row + decoder.columnIndex[x] * bytes;
    for (size_t i = 0; i < bytes; ++i) {
      if (from[i] != 0) to[x * bytes + i] = from[i];
    }
  }
}

bool isInPass(const PngHandle& decoder, uint32_t column) {
  if (decoder.passes == 1) return true;
  const int pass = decoder.passesFinished;
  return PNG_ROW_IN_INTERLACE_PASS(decoder.sourceLine - 1, pass) != 0 &&
         PNG_COL_IN_INTERLACE_PASS(column, pass) != 0;
}

// Stored whatever their value, so here the pixels of the other passes have to be left out by place.
void copyPairs(const PngHandle& decoder, uint8_t* to) {
  for (size_t x = 0; x < decoder.width; ++x) {
    if (!isInPass(decoder, decoder.columnIndex[x])) continue;
    const uint8_t* const from = decoder.row + size_t{2} * decoder.columnIndex[x];
    to[2 * x] = from[0];
    to[2 * x + 1] = from[1];
  }
}

// Pixels of 1, 2 or 4 bits, the leftmost in the high bits of a byte.
void orBits(const PngHandle& decoder, uint32_t bits, uint8_t* to) {
  const uint32_t perByte = 8 / bits;
  const uint32_t mask = (1u << bits) - 1;
  const auto shift = [&](uint32_t x) { return (perByte - 1 - x % perByte) * bits; };
  for (uint32_t x = 0; x < decoder.width; ++x) {
    const uint32_t column = decoder.columnIndex[x];
    const uint32_t value = (uint32_t{decoder.row[column / perByte]} >> shift(column)) & mask;
    to[x / perByte] = static_cast<uint8_t>(to[x / perByte] | (value << shift(x)));
  }
}

uint32_t grantedSide(double scale, uint32_t side) {
  return std::max(static_cast<uint32_t>(scale * side + 0.5), 1u);
}

// Entry i is the source row or column of row or column i.
void fillIndex(uint8_t* block, uint32_t count, double scale) {
  uint16_t* const index = reinterpret_cast<uint16_t*>(block);
  for (uint32_t i = 0; i < count; ++i) index[i] = static_cast<uint16_t>(i / scale);
}

template <typename Element>
void replace(Element*& held, Scratch& block) {
  MMemFree(nullptr, held);
  held = reinterpret_cast<Element*>(block.release());
}

int32_t setScale(PngHandle& decoder, double scale) {
  const uint32_t width = grantedSide(scale, decoder.fileWidth);
  const uint32_t height = grantedSide(scale, decoder.fileHeight);
  Scratch rows(size_t{height} * sizeof(uint16_t));
  Scratch columns(size_t{width} * sizeof(uint16_t));
  Scratch row(pngRowBytes(decoder.fileWidth, decoder.bitsPerPixel));
  if (!rows || !columns || !row) return QPX_NO_MEMORY;
  fillIndex(rows.get(), height, scale);
  fillIndex(columns.get(), width, scale);
  replace(decoder.rowIndex, rows);
  replace(decoder.columnIndex, columns);
  replace(decoder.row, row);
  decoder.scale = scale;
  decoder.width = width;
  decoder.height = height;
  return QPX_OK;
}

double ratio(int32_t wanted, uint32_t side) {
  return static_cast<double>(std::min(static_cast<uint32_t>(wanted), side)) / side;
}

}  // namespace

void copyScaledRow(const PngHandle& decoder, uint8_t* to) {
  const uint32_t bits = decoder.bitsPerPixel;
  if (bits == 16) {
    copyPairs(decoder, to);
  } else if (bits >= 8) {
    addSamples(decoder, bits / 8, to);
  } else {
    orBits(decoder, bits, to);
  }
}

}  // namespace qpx

using namespace qpx;

int32_t PNG_DecodeSetDimension(PngHandle* handle, int32_t* widthInOut, int32_t* heightInOut) {
  if (handle == nullptr || widthInOut == nullptr || heightInOut == nullptr) return QPX_BAD_PARAM;
  if (*widthInOut < 0 || *heightInOut < 0 || handle->started) return QPX_BAD_PARAM;
  if (*widthInOut == 0 || *heightInOut == 0) return QPX_OK;

  const double scale =
      std::min(ratio(*widthInOut, handle->fileWidth), ratio(*heightInOut, handle->fileHeight));
  const int32_t result = setScale(*handle, scale);
  if (result != QPX_OK) return result;
  *widthInOut = static_cast<int32_t>(handle->width);
  *heightInOut = static_cast<int32_t>(handle->height);
  return QPX_OK;
}
