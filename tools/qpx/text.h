// Names and numbers that come from people, and text on its way to a terminal.
#pragma once

#include <cstddef>
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

// Bytes of the UTF-8 sequence at the start of `text`, which is not empty; 0 where there is none.
size_t sequenceLength(std::string_view text);

// As a terminal may have it: control characters and what is no UTF-8 are written as \xNN.
std::string printable(std::string_view text);

// Cut to so many characters, of which the last are then "...".
std::string fitted(const std::string& text, size_t characters);

}  // namespace qpx::tool
