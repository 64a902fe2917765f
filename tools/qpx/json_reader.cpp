#include "json_reader.h"

#include <cctype>
#include <cstdint>
#include <optional>

#include "errors.h"
#include "text.h"

namespace qpx::tool {

namespace {

constexpr int kDeepest = 64;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

void appendUtf8(uint32_t code, std::string& to) {
  const auto put = [&](uint32_t byte) { to += static_cast<char>(byte); };
  const auto tail = [&](int shift) { put(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    tail(0);
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    tail(6);
    tail(0);
  } else {
    put(0xF0 | code >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

class Parser {
 public:
  explicit Parser(std::string_view text) : rest_(text) {
    if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);
  }

  JsonValue whole() {
    JsonValue value = parseValue(1);
    skipSpace();
    if (!rest_.empty()) fail("something stands behind its value");
    return value;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw RunError("line " + std::to_string(line_) + ": " + what);
  }

  void skipSpace() {
    while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t' ||
                              rest_.front() == '\n' || rest_.front() == '\r')) {
      if (take() == '\n') ++line_;
    }
  }

  char take() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  // The next character that is no space; 0 at the end.
  char peek() {
    skipSpace();
    return rest_.empty() ? '\0' : rest_.front();
  }

  bool taken(char c) {
    if (peek() != c || rest_.empty()) return false;
    take();
    return true;
  }

  void expect(char c, const char* where) {
    if (!taken(c)) fail(std::string("'") + c + "' is missing " + where);
  }

  void word(std::string_view expected) {
    if (!rest_.starts_with(expected)) fail("no value begins like this");
    rest_.remove_prefix(expected.size());
  }

  JsonValue parseValue(int depth) {
    if (depth > kDeepest) fail("values are nested too deep");
    JsonValue value;
    const char first = peek();
    value.line = line_;
    switch (first) {
      case '{':
        parseObject(value, depth);
        break;
      case '[':
        parseArray(value, depth);
        break;
      case '"':
        value.kind = JsonValue::Kind::text;
        value.text = parseText();
        break;
      case 't':
      case 'f':
        value.kind = JsonValue::Kind::boolean;
        value.flag = first == 't';
        word(value.flag ? "true" : "false");
        break;
      case 'n':
        word("null");
        break;
      default:
        value.kind = JsonValue::Kind::number;
        value.number = parseNumber();
        break;
    }
    return value;
  }

  void parseObject(JsonValue& value, int depth) {
    value.kind = JsonValue::Kind::object;
    take();
    if (taken('}')) return;
    do {
      if (peek() != '"') fail("a name in quotes is missing");
      value.names.push_back(parseText());
      expect(':', "behind a name");
      value.items.push_back(parseValue(depth + 1));
    } while (taken(','));
    expect('}', "at the end of an object");
  }

  void parseArray(JsonValue& value, int depth) {
    value.kind = JsonValue::Kind::array;
    take();
    if (taken(']')) return;
    do {
      value.items.push_back(parseValue(depth + 1));
    } while (taken(','));
    expect(']', "at the end of an array");
  }

  double parseNumber() {
    size_t length = 0;
    const auto at = [&](size_t i) { return i < rest_.size() ? rest_[i] : '\0'; };
    const auto digits = [&] {
      const size_t from = length;
      while (isDigit(at(length))) ++length;
      return length > from;
    };
    if (at(0) == '-') ++length;
    const size_t start = length;
    bool valid = digits() && (at(start) != '0' || length == start + 1);
    if (valid && at(length) == '.') {
      ++length;
      valid = digits();
    }
    if (valid && (at(length) == 'e' || at(length) == 'E')) {
      ++length;
      if (at(length) == '+' || at(length) == '-') ++length;
      valid = digits();
    }
    if (!valid) fail(rest_.empty() ? "the file ends too early" : "no value begins like this");
    const std::optional<double> number = parseReal(rest_.substr(0, length));
    if (!number) fail("a number is too large");
    rest_.remove_prefix(length);
    return *number;
  }

  std::string parseText() {
    std::string text;
    take();
    for (;;) {
      if (rest_.empty()) fail("a quote is not closed");
      const size_t length = sequenceLength(rest_);
      if (length == 0) fail("a text is no UTF-8");
      if (length > 1) {
        text += rest_.substr(0, length);
        rest_.remove_prefix(length);
        continue;
      }
      const char c = take();
      if (c == '"') return text;
      if (static_cast<unsigned char>(c) < 0x20) fail("a quote is not closed");
      if (c == '\\') {
        appendEscape(text);
      } else {
        text += c;
      }
    }
  }

  void appendEscape(std::string& text) {
    constexpr std::string_view kLetters = "\"\\/bfnrt", kMeanings = "\"\\/\b\f\n\r\t";
    const char letter = rest_.empty() ? '\0' : take();
    if (letter == 'u') {
      appendCode(text);
      return;
    }
    const size_t place = kLetters.find(letter);
    if (place == std::string_view::npos) fail("an escape is unknown");
    text += kMeanings[place];
  }

  // Halves of a pair that stand alone become U+FFFD.
  void appendCode(std::string& text) {
    uint32_t code = hexadecimal();
    if (code >= 0xD800 && code < 0xDC00 && rest_.starts_with("\\u")) {
      const std::string_view before = rest_;
      rest_.remove_prefix(2);
      const uint32_t low = hexadecimal();
      if (low >= 0xDC00 && low < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      } else {
        rest_ = before;
      }
    }
    appendUtf8(code >= 0xD800 && code < 0xE000 ? 0xFFFD : code, text);
  }

  uint32_t hexadecimal() {
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = rest_.empty() ? '\0' : take();
      if (std::isxdigit(static_cast<unsigned char>(c)) == 0) fail("an escape is unknown");
      code = code * 16 + static_cast<uint32_t>(isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10);
    }
    return code;
  }

  std::string_view rest_;
  int line_ = 1;
};

}  // namespace

JsonValue parseJson(std::string_view text) { return Parser(text).whole(); }

}  // namespace qpx::tool
