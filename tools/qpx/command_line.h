// What the command line needs beyond its parser.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace qpx::tool {

// The words behind the program's name. "--" is taken out, and names behind it that start with '-'
// get "./" before them, so that no part of the parser can take them for options.
std::vector<std::string> wordsOf(int argc, const char* const* argv);

// Throws UsageError where a word should be a subcommand, or one of its own, and is none, and for an
// option that the subcommand does not have.
void checkWords(const CLI::App& app, const std::vector<std::string>& words);

// Advice for a call that the parser refuses: a word that looks like an option and is a file. Empty
// where there is no such word.
std::string fileHint(const std::vector<std::string>& words);

// A number within the two, written in full: neither "nan" nor "inf", and nothing behind it.
CLI::Validator wholeNumber(int64_t low, int64_t high);
CLI::Validator number(double low, double high);

// The names of all pixel formats, in lines for a help text.
std::string formatHelp();

// For options and names that mean nothing when they are empty.
CLI::Validator notEmpty();

// --from and --in-size: what frames without headers are.
void addRawFrameOptions(CLI::App& command, std::string& format, std::string& size);

// --quality, of pictures that JPEG keeps at 4:4:4.
void addQualityOption(CLI::App& command, int& quality);

}  // namespace qpx::tool
