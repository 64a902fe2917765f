#pragma once

#include <span>

namespace qpx::testing {

// Calls one frame or kernel of the conversion with nulls; true when it answered as documented.
struct ConvertNullCall {
  const char* name;
  bool (*holds)();
};

std::span<const ConvertNullCall> convertNullCalls();

}  // namespace qpx::testing
