// Small helpers on names and numbers that come from people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qpx::tool {

std::string lowerCase(std::string_view text);
bool sameName(std::string_view a, std::string_view b);  // ASCII case ignored
std::vector<std::string> split(std::string_view text, char separator);
std::string joined(const std::vector<std::string>& parts, std::string_view separator);

// The shortest text that reads well: no exponent for common sizes, no trailing zeros.
std::string numberText(double value);

// Whole texts only: nothing may stand behind the number. Integers may be hexadecimal with 0x.
std::optional<int64_t> parseInteger(std::string_view text);
std::optional<double> parseReal(std::string_view text);

// Letters to insert, remove or replace to get from one name to the other, case ignored.
int editDistance(std::string_view a, std::string_view b);

// " (did you mean NAME?)" for the candidate nearest to `given`, or nothing where none is near
// enough to have been meant.
std::string suggestion(std::string_view given, const std::vector<std::string>& candidates);

}  // namespace qpx::tool
