// The 8-bit strings: the C library's functions behind guards for null and negative arguments.

#include <qpx/strings.h>
#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace qpx {
namespace {

// The C library promises no more than the sign, and its own targets differ in the rest.
int32_t sign(int value) { return (value > 0) - (value < 0); }

int32_t compareNull(const char* a, const char* b) { return (a != nullptr) - (b != nullptr); }

// `long` has 32 bits on some targets and 64 on others; results are the same on all of them.
int32_t clampToInt32(long long value) {
  using Limits = std::numeric_limits<int32_t>;
  return static_cast<int32_t>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

int32_t decimal32(const char* text) {
  return text == nullptr ? 0 : clampToInt32(std::strtoll(text, nullptr, 10));
}

bool hasMinus(const char* text) { return text[std::strspn(text, " \t\n\v\f\r")] == '-'; }

// strtoul of a 32-bit target: what is out of range is judged before the sign is applied.
uint32_t unsigned32(const char* text, char** end, int base) {
  constexpr unsigned long long kMax = std::numeric_limits<uint32_t>::max();
  const bool negative = hasMinus(text);
  const int callersError = errno;
  errno = 0;
  const unsigned long long value = std::strtoull(text, end, base);
  const unsigned long long magnitude = negative && errno != ERANGE ? 0 - value : value;
  if (errno == 0) errno = callersError;
  if (magnitude <= kMax) return static_cast<uint32_t>(value);
  errno = ERANGE;
  return static_cast<uint32_t>(kMax);
}

template <char first, int32_t step>
int32_t shiftCase(char* text) {
  if (text == nullptr) return QPX_BAD_PARAM;
  for (; *text != 0; ++text) {
    if (*text >= first && *text <= first + 25) *text = static_cast<char>(*text + step);
  }
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

int32_t MStoi(const char* text) { return qpx::decimal32(text); }

int32_t MStol(const char* text) { return qpx::decimal32(text); }

int64_t MStoi64(const char* text) { return text == nullptr ? 0 : std::strtoll(text, nullptr, 10); }

uint32_t MSCsToUL(const char* text, char** end, int32_t base) {
  if (text == nullptr || base < 0 || base == 1 || base > 36) {
    if (end != nullptr) *end = const_cast<char*>(text);
    return 0;
  }
  return qpx::unsigned32(text, end, base);
}

int32_t MSCsLen(const char* text) {
  if (text == nullptr) return 0;
  constexpr size_t kMax = std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(std::min(std::strlen(text), kMax));
}

char* MSCsStr(const char* text, const char* part) {
  if (text == nullptr || part == nullptr) return nullptr;
  return const_cast<char*>(std::strstr(text, part));
}

char* MSCsChr(const char* text, int32_t character) {
  return text == nullptr ? nullptr : const_cast<char*>(std::strchr(text, character));
}

char* MSCsRChr(const char* text, int32_t character) {
  return text == nullptr ? nullptr : const_cast<char*>(std::strrchr(text, character));
}

char* MSCsCat(char* to, const char* from) {
  return to == nullptr || from == nullptr ? nullptr : std::strcat(to, from);
}

char* MSCsCpy(char* to, const char* from) {
  return to == nullptr || from == nullptr ? nullptr : std::strcpy(to, from);
}

char* MSCsNCpy(char* to, const char* from, int32_t count) {
  if (to == nullptr || from == nullptr || count < 0) return nullptr;
  return std::strncpy(to, from, static_cast<size_t>(count));
}

int32_t MSCsCmp(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return qpx::compareNull(a, b);
  return qpx::sign(std::strcmp(a, b));
}

int32_t MSCsNCmp(const char* a, const char* b, int32_t count) {
  if (count <= 0) return 0;
  if (a == nullptr || b == nullptr) return qpx::compareNull(a, b);
  return qpx::sign(std::strncmp(a, b, static_cast<size_t>(count)));
}

int32_t MSCsICmp(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return qpx::compareNull(a, b);
  return qpx::sign(strcasecmp(a, b));
}

int32_t MSCsNICmp(const char* a, const char* b, int32_t count) {
  if (count <= 0) return 0;
  if (a == nullptr || b == nullptr) return qpx::compareNull(a, b);
  return qpx::sign(strncasecmp(a, b, static_cast<size_t>(count)));
}

int32_t MSSprintf(char* to, const char* format, ...) {
  if (to == nullptr || format == nullptr) return -1;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsprintf(to, format, arguments);
  va_end(arguments);
  return length;
}

int32_t MSCsMakeLower(char* text) { return qpx::shiftCase<'A', 32>(text); }

int32_t MSCsMakeUpper(char* text) { return qpx::shiftCase<'a', -32>(text); }
