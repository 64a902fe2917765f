// Strings of 16-bit units, and the conversions that look at one place at a time.

#include <qpx/strings.h>

#include <cstddef>
#include <limits>

namespace qpx {
namespace {

size_t length(const uint16_t* text) {
  size_t units = 0;
  while (text[units] != 0) ++units;
  return units;
}

uint16_t* copyTerminated(uint16_t* to, const uint16_t* from) {
  while ((*to++ = *from++) != 0) {
  }
  return to;
}

bool startsWith(const uint16_t* text, const uint16_t* part) {
  for (; *part != 0; ++text, ++part) {
    if (*text != *part) return false;
  }
  return true;
}

template <char first, int32_t step>
int32_t shiftCase(uint16_t* text) {
  if (text == nullptr) return QPX_BAD_PARAM;
  for (; *text != 0; ++text) {
    if (*text >= first && *text <= first + 25) *text = static_cast<uint16_t>(*text + step);
  }
  return QPX_OK;
}

// Copies place by place, by way of the unsigned byte, until a zero has been written.
template <typename To, typename From>
int32_t copyPlaces(const From* src, To* dst, int32_t places) {
  if (src == nullptr || dst == nullptr || places <= 0) return 0;
  int32_t written = 0;
  while (written < places) {
    const uint8_t low = static_cast<uint8_t>(src[written]);
    dst[written++] = static_cast<To>(low);
    if (low == 0) break;
  }
  dst[places - 1] = 0;
  return written;
}

}  // namespace
}  // namespace qpx

int32_t MWCsLen(const uint16_t* text) {
  if (text == nullptr) return 0;
  const size_t units = qpx::length(text);
  constexpr size_t kMax = std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(units < kMax ? units : kMax);
}

uint16_t* MWCsStr(const uint16_t* text, const uint16_t* part) {
  if (text == nullptr || part == nullptr) return nullptr;
  for (;; ++text) {
    if (qpx::startsWith(text, part)) return const_cast<uint16_t*>(text);
    if (*text == 0) return nullptr;
  }
}

uint16_t* MWCsCat(uint16_t* to, const uint16_t* from) {
  if (to == nullptr || from == nullptr) return nullptr;
  qpx::copyTerminated(to + qpx::length(to), from);
  return to;
}

uint16_t* MWCsCpy(uint16_t* to, const uint16_t* from) {
  if (to == nullptr || from == nullptr) return nullptr;
  qpx::copyTerminated(to, from);
  return to;
}

int32_t MWCsMakeLower(uint16_t* text) { return qpx::shiftCase<'A', 32>(text); }

int32_t MWCsMakeUpper(uint16_t* text) { return qpx::shiftCase<'a', -32>(text); }

int32_t MCharToWChar(const char* src, uint16_t* dst, int32_t units) {
  return qpx::copyPlaces(src, dst, units);
}

int32_t MWCharToChar(const uint16_t* src, char* dst, int32_t units) {
  return qpx::copyPlaces(src, dst, units);
}
