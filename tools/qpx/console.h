// What the tool says on standard error, and how the library's log gets there.
#pragma once

#include <string>

namespace qpx::tool {

// Colours are for terminals, and only where NO_COLOR is not set.
bool wantsColor(int descriptor);

// `text` in bold where `descriptor` takes colours.
std::string bold(const std::string& text, int descriptor);

// One line "qpx: text".
void printError(const std::string& text);

// From now on the library's log and say() go to standard error, each line in the shape of logcat:
// "11-21 05:28:43.123  1234  1234 I tag     : message".
void beVerbose();

// What the tool does, for those who want to know.
void say(const std::string& text);

}  // namespace qpx::tool
