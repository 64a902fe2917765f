// A reader of JSON (RFC 8259) into a tree of values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qpx::tool {

struct JsonValue {
  enum class Kind { null, boolean, number, text, array, object };

  Kind kind = Kind::null;
  bool flag = false;
  double number = 0;  // finite
  std::string text;
  std::vector<JsonValue> items;    // of arrays and objects
  std::vector<std::string> names;  // of an object's items
  int line = 1;                    // where it begins
};

// Throws RunError with the line of what is wrong: no JSON, more than one value, numbers beyond a
// double, or values nested 64 deep.
JsonValue parseJson(std::string_view text);

}  // namespace qpx::tool
