#include "text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace qpx::tool {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

bool sameName(std::string_view a, std::string_view b) { return lowerCase(a) == lowerCase(b); }

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(separator, start);
    parts.emplace_back(text.substr(start, end - start));
    if (end == std::string_view::npos) return parts;
    start = end + 1;
  }
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

std::string numberText(double value) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.10g", value);
  return text.data();
}

std::optional<int64_t> parseInteger(std::string_view text) {
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  uint64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc() || stop != end || value > INT64_MAX) return std::nullopt;
  const auto magnitude = static_cast<int64_t>(value);
  return negative ? -magnitude : magnitude;
}

std::optional<double> parseReal(std::string_view text) {
  const std::string copy(text);
  if (copy.empty() || std::isspace(static_cast<unsigned char>(copy.front()))) return std::nullopt;
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  if (end != copy.c_str() + copy.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

int editDistance(std::string_view a, std::string_view b) {
  const std::string from = lowerCase(a), to = lowerCase(b);
  std::vector<int> row(to.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (size_t i = 1; i <= from.size(); ++i) {
    int diagonal = row[0];
    row[0] = static_cast<int>(i);
    for (size_t j = 1; j <= to.size(); ++j) {
      const int replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

std::string suggestion(std::string_view given, const std::vector<std::string>& candidates) {
  // A third of the letters may be wrong: more than that is another word, not a slip.
  int best = std::max(1, static_cast<int>(given.size()) / 3) + 1;
  const std::string* nearest = nullptr;
  for (const std::string& candidate : candidates) {
    const int distance = editDistance(given, candidate);
    if (distance < best) {
      best = distance;
      nearest = &candidate;
    }
  }
  return nearest ? " (did you mean " + *nearest + "?)" : std::string();
}

size_t sequenceLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  const size_t length = lead >= 0xF0 ? 4 : (lead >= 0xE0 ? 3 : 2);
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms, surrogates and what lies beyond Unicode.
  const unsigned char next = byte(1);
  if ((lead == 0xE0 && next < 0xA0) || (lead == 0xED && next > 0x9F)) return 0;
  if ((lead == 0xF0 && next < 0x90) || (lead == 0xF4 && next > 0x8F)) return 0;
  return length;
}

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const size_t length = sequenceLength(text);
    const auto lead = static_cast<unsigned char>(text.front());
    const bool control = length == 0 || lead < 0x20 || lead == 0x7F ||
                         (lead == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0);
    const std::string_view character = text.substr(0, std::max<size_t>(length, 1));
    for (const char c : character) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned char>(c));
      result += control ? escape.data() : std::string(1, c);
    }
    text.remove_prefix(character.size());
  }
  return result;
}

std::string fitted(const std::string& text, size_t characters) {
  constexpr std::string_view kCut = "...";
  std::vector<size_t> starts;
  for (size_t i = 0; i < text.size(); i += std::max<size_t>(sequenceLength(text.substr(i, 4)), 1)) {
    starts.push_back(i);
  }
  if (starts.size() <= characters) return text;
  if (characters <= kCut.size()) return std::string(kCut.substr(0, characters));
  return text.substr(0, starts[characters - kCut.size()]) + std::string(kCut);
}

}  // namespace qpx::tool
