// Builds the record of a conversion, which everything about it is worked out into once.
#pragma once

#include <qpx/convert_record.h>

#include <cstdint>

namespace qpx::convert {

// Block modes that are told apart by more than their size.
inline constexpr uint32_t kBlocksOf2 = 2;
inline constexpr uint32_t kBlocksOf4 = 3;
inline constexpr uint32_t kBilinearBlocksOf4 = 4;

// One side of a conversion: a rectangle of an image. Its origin is in ConvParams.
struct Side {
  uint32_t format = 0;
  uint32_t width = 0;
  uint32_t height = 0;
  const uint8_t* palette = nullptr;  // of the palette formats
};

// Fills `record`, whatever was in it, and allocates its tables. Returns 0; 2 for an empty side, an
// origin below 0, a side that ends behind INT32_MAX, a clip rectangle that is empty or begins below
// 0, a palette format without its palette, or steps of 0 or of 65536 and more; 3 for a format word
// that cannot be decoded, or a palette destination; 4 for no memory. After a failure the record
// holds no tables.
int32_t buildRecord(const Side& dst, const Side& src, const ConvParams& params, ConvRecord* record);

void freeTables(ConvRecord* record);

// Has pixels correspond one to one, whatever the sizes of both sides.
void setUnitSteps(ConvRecord* record);

// Settles which block mode a built record works in when `wanted` is asked for.
void setBlockMode(uint32_t wanted, ConvRecord* record);

// 32-bit codes with alpha have it in their last byte, as the codes without alpha have their unused
// byte: both are the same to a conversion. The decoder knows the left-aligned fields of other codes
// of that model.
constexpr uint32_t rightAligned(uint32_t format) {
  return (format & ~0x1000u) == QPX_FORMAT_BGRA32 ? (format & 0x0FFFFFFF) | 0x10000000 : format;
}

}  // namespace qpx::convert
