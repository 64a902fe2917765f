// What the tool says on standard error, and how the library's log gets there.
#pragma once

#include <string>

namespace qpx::tool {

// Colours are for terminals, and only where NO_COLOR is not set.
bool wantsColor(int descriptor);

// `text` in bold where `descriptor` takes colours.
std::string bold(const std::string& text, int descriptor);

// What takes a progress bar away before something else is written to the terminal.
inline constexpr char kClearLine[] = "\r\033[K";

// Characters in a line of the terminal behind `descriptor`; 80 where nobody knows.
int terminalColumns(int descriptor);

// One line "qpx: text". Control characters in it, which file names may hold, are made visible.
void printError(const std::string& text);

// From now on the library's log and say() go to standard error, each line in the shape of logcat:
// "11-21 05:28:43.123  1234  1234 I tag     : message".
void beVerbose();

// What the tool does, for those who want to know.
void say(const std::string& text);

}  // namespace qpx::tool
