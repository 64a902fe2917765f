// What the command line needs beyond its parser.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace qpx::tool {

// The words behind the program's name. "--" is taken out, and names behind it that start with '-'
// get "./" before them, so that no part of the parser can take them for options.
std::vector<std::string> wordsOf(int argc, const char* const* argv);

// Throws UsageError where a word should be a subcommand, or one of its own, and is none.
void checkSubcommand(const CLI::App& app, const std::vector<std::string>& words);

// Advice for a call that the parser refuses: a word that looks like an option and is a file. Empty
// where there is no such word.
std::string fileHint(const std::vector<std::string>& words);

// For options and names that mean nothing when they are empty.
CLI::Validator notEmpty();

}  // namespace qpx::tool
