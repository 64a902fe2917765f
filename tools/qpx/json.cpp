#include "json.h"

#include <array>
#include <cstdio>
#include <utility>

#include "text.h"

namespace qpx::tool {

namespace {

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
