// A writer of JSON, just large enough for the catalogue.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qpx::tool {

// Text between quotes. Bytes that are no UTF-8 become U+FFFD, so that the output always parses.
std::string jsonString(std::string_view text);

// Keeps track of commas and indentation; the caller opens and closes in the right order.
class JsonWriter {
 public:
  void openObject(std::string_view key = {}) { open(key, '{'); }
  void closeObject() { close('}'); }
  void openArray(std::string_view key = {}) { open(key, '['); }
  void closeArray() { close(']'); }
  void text(std::string_view key, std::string_view value) { put(key, jsonString(value)); }
  void number(std::string_view key, double value);  // finite values only
  void flag(std::string_view key, bool value) { put(key, value ? "true" : "false"); }

  // With a line end.
  std::string take();

 private:
  void open(std::string_view key, char bracket);
  void close(char bracket);
  void put(std::string_view key, std::string_view value);

  std::string out_;
  size_t depth_ = 0;
  bool first_ = true;
};

}  // namespace qpx::tool
