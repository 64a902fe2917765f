// UTF-8 of up to 3 bytes a sequence, in two strictnesses: the counted conversions take any bytes,
// the zero-terminated ones refuse a byte that can not lead a sequence.

#include <qpx/strings.h>

#include <cstddef>
#include <limits>

namespace qpx {
namespace {

constexpr int32_t kNoLimit = std::numeric_limits<int32_t>::max();
constexpr int32_t kLongest = 3;

uint8_t byteAt(const char* text, int32_t index) { return static_cast<uint8_t>(text[index]); }

// The lenient rule: the first byte alone decides, whatever it is.
int32_t sequenceLength(uint8_t first) {
  if ((first & 0x80) == 0) return 1;
  return (first & 0x20) != 0 ? 3 : 2;
}

// The strict rule; 0 for a byte that can not lead.
int32_t strictSequenceLength(uint8_t first) {
  if (first < 0x80) return 1;
  if ((first & 0xE0) == 0xC0) return 2;
  return (first & 0xF0) == 0xE0 ? 3 : 0;
}

// Bits of the first byte above the value's are shifted out of the 16, so they need no mask.
uint16_t decode(const uint8_t* bytes, int32_t length) {
  switch (length) {
    case 1:
      return bytes[0];
    case 2:
      return static_cast<uint16_t>((bytes[0] & 31) * 64 | (bytes[1] & 63));
    default:
      return static_cast<uint16_t>(bytes[0] * 4096 | (bytes[1] & 63) * 64 | (bytes[2] & 63));
  }
}

int32_t encodedLength(uint16_t unit) { return unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3; }

void encode(uint16_t unit, int32_t length, char* dst) {
  switch (length) {
    case 1:
      dst[0] = static_cast<char>(unit);
      break;
    case 2:
      dst[0] = static_cast<char>(0xC0 | unit >> 6);
      dst[1] = static_cast<char>(0x80 | (unit & 63));
      break;
    default:
      dst[0] = static_cast<char>(0xE0 | unit >> 12);
      dst[1] = static_cast<char>(0x80 | (unit >> 6 & 63));
      dst[2] = static_cast<char>(0x80 | (unit & 63));
      break;
  }
}

// Copies a sequence to `bytes` as far as it goes, with zeros for the rest.
void gather(const char* src, int32_t available, int32_t length, uint8_t* bytes) {
  for (int32_t i = 0; i < length; ++i) bytes[i] = i < available ? byteAt(src, i) : 0;
}

}  // namespace
}  // namespace qpx

uint16_t getWideChar(const char** cursor, int32_t* consumed) {
  const bool readable = cursor != nullptr && *cursor != nullptr;
  const int32_t length = readable ? qpx::sequenceLength(qpx::byteAt(*cursor, 0)) : 0;
  if (consumed != nullptr) *consumed = length;
  if (!readable) return 0;
  uint8_t bytes[qpx::kLongest];
  qpx::gather(*cursor, length, length, bytes);
  *cursor += length;
  return qpx::decode(bytes, length);
}

int32_t MMultiByteToWideChar(uint32_t /*codePage*/, const char* src, int32_t srcBytes,
                             uint16_t* dst, int32_t dstUnits) {
  if (src == nullptr || dst == nullptr || srcBytes <= 0 || dstUnits <= 0) return 0;
  int32_t units = 0;
  while (srcBytes > 0 && units < dstUnits) {
    const int32_t length = qpx::sequenceLength(qpx::byteAt(src, 0));
    uint8_t bytes[qpx::kLongest];
    qpx::gather(src, srcBytes, length, bytes);
    dst[units++] = qpx::decode(bytes, length);
    if (length >= srcBytes) break;
    src += length;
    srcBytes -= length;
  }
  return units;
}

int32_t MWideCharToMultiByte(uint32_t /*codePage*/, const uint16_t* src, int32_t srcUnits,
                             char* dst, int32_t dstBytes) {
  if (src == nullptr || dst == nullptr || srcUnits <= 0 || dstBytes <= 0) return 0;
  int32_t written = 0;
  for (int32_t i = 0; i < srcUnits; ++i) {
    const int32_t length = src[i] == 0 ? 2 : qpx::encodedLength(src[i]);
    // The terminator's byte must be left, also behind a unit of several bytes.
    if (dstBytes - written <= length) break;
    qpx::encode(src[i], length, dst + written);
    written += length;
  }
  dst[written] = 0;
  return written;
}

int32_t MUnicodeToUTF8(const uint16_t* src, char* dst, int32_t bytes) {
  if (src == nullptr) return 0;
  const int32_t limit = dst == nullptr ? qpx::kNoLimit : bytes;
  if (limit <= 0) return 0;
  int32_t total = 0;
  for (; *src != 0; ++src) {
    const int32_t length = qpx::encodedLength(*src);
    if (length >= limit - total) return 0;
    if (dst != nullptr) qpx::encode(*src, length, dst + total);
    total += length;
  }
  if (dst != nullptr) dst[total] = 0;
  return total;
}

int32_t MUTF8ToUnicode(const char* src, uint16_t* dst, int32_t units) {
  if (src == nullptr) return 0;
  const int32_t limit = dst == nullptr ? qpx::kNoLimit : units;
  if (limit <= 0) return 0;
  int32_t count = 0;
  while (*src != 0) {
    const int32_t length = qpx::strictSequenceLength(qpx::byteAt(src, 0));
    if (length == 0) return -1;
    uint8_t bytes[qpx::kLongest];
    for (int32_t i = 0; i < length; ++i) {
      bytes[i] = qpx::byteAt(src, i);
      // Reading on behind the terminator would leave the string.
      if (bytes[i] == 0) return -1;
    }
    if (count + 1 >= limit) return 0;
    if (dst != nullptr) dst[count] = qpx::decode(bytes, length);
    ++count;
    src += length;
  }
  if (dst != nullptr) dst[count] = 0;
  return count;
}
