#include "command_line.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "errors.h"
#include "text.h"

namespace qpx::tool {

namespace {

// A single dash is standard input or output.
bool looksLikeOption(std::string_view word) { return word.size() > 1 && word.front() == '-'; }

}  // namespace

std::vector<std::string> wordsOf(int argc, const char* const* argv) {
  std::vector<std::string> words;
  bool namesOnly = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (!namesOnly && word == "--") {
      namesOnly = true;
    } else {
      words.push_back(namesOnly && looksLikeOption(word) ? "./" + word : word);
    }
  }
  return words;
}

void checkSubcommand(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* level = &app;
  std::string call = "qpx";
  for (const std::string& word : words) {
    std::vector<std::string> names;
    for (const CLI::App* command : level->get_subcommands(nullptr)) {
      names.push_back(command->get_name());
    }
    if (names.empty() || looksLikeOption(word)) return;
    if (std::find(names.begin(), names.end(), word) == names.end()) {
      std::string message = "unknown command '" + word + "'" + suggestion(word, names);
      message.append(": use one of ").append(joined(names, ", "));
      message.append(", or see '").append(call).append(" --help'");
      throw UsageError(message);
    }
    level = level->get_subcommand(word);
    call += " " + word;
  }
}

std::string fileHint(const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    std::error_code ignored;
    if (looksLikeOption(word) && std::filesystem::exists(word, ignored)) {
      return ": for the file write ./" + word;
    }
  }
  return {};
}

CLI::Validator notEmpty() {
  return {[](std::string& value) {
            return std::string(value.empty() ? "is empty: give it a value" : "");
          },
          ""};
}

}  // namespace qpx::tool
