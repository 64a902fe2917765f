#include "json.h"

#include <array>
#include <cstdio>
#include <utility>

#include "text.h"

namespace qpx::tool {

namespace {

// Bytes of the UTF-8 sequence at the start of `text`, or 0 where there is none.
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

std::string escaped(char c) {
  switch (c) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\n':
      return "\\n";
    case '\t':
      return "\\t";
    default:
      break;
  }
  if (static_cast<unsigned char>(c) >= 0x20) return std::string(1, c);
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(c));
  return text.data();
}

}  // namespace

std::string jsonString(std::string_view text) {
  std::string result = "\"";
  while (!text.empty()) {
    const size_t length = sequenceLength(text);
    if (length == 0) {
      result += "\xEF\xBF\xBD";
    } else if (length == 1) {
      result += escaped(text.front());
    } else {
      result += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return result + "\"";
}

void JsonWriter::number(std::string_view key, double value) { put(key, numberText(value)); }

void JsonWriter::put(std::string_view key, std::string_view value) {
  if (!first_) out_ += ',';
  if (depth_ > 0) out_ += '\n';
  first_ = false;
  out_.append(depth_ * 2, ' ');
  if (!key.empty()) out_ += jsonString(key) + ": ";
  out_ += value;
}

void JsonWriter::open(std::string_view key, char bracket) {
  put(key, std::string_view(&bracket, 1));
  ++depth_;
  first_ = true;
}

void JsonWriter::close(char bracket) {
  --depth_;
  if (!first_) {
    out_ += '\n';
    out_.append(depth_ * 2, ' ');
  }
  out_ += bracket;
  first_ = false;
}

std::string JsonWriter::take() {
  first_ = true;
  depth_ = 0;
  return std::exchange(out_, {}) + '\n';
}

}  // namespace qpx::tool
