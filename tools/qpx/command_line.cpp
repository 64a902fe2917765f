#include "command_line.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

#include "errors.h"
#include "pixel_format.h"
#include "text.h"

namespace qpx::tool {

namespace {

// A single dash is standard input or output.
bool looksLikeOption(std::string_view word) { return word.size() > 1 && word.front() == '-'; }

// The parser would rather miss what is required than name an option that it does not know.
void checkOptions(const CLI::App& level, const std::string& call,
                  std::span<const std::string> words) {
  std::vector<std::string> names;
  for (const CLI::Option* option : level.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  const auto nameOf = [](const std::string& word) { return word.substr(0, word.find('=')); };
  const auto unknown = std::find_if(words.begin(), words.end(), [&](const std::string& word) {
    return word.size() > 2 && word.starts_with("--") &&
           std::find(names.begin(), names.end(), nameOf(word)) == names.end();
  });
  if (unknown == words.end()) return;
  const std::string name = nameOf(*unknown);
  throw UsageError("unknown option " + name + suggestion(name, names) + fileHint({*unknown}) +
                   ": see '" + call + " --help'");
}

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

void checkWords(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* level = &app;
  std::string call = "qpx";
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    std::vector<std::string> names;
    for (const CLI::App* command : level->get_subcommands(nullptr)) {
      names.push_back(command->get_name());
    }
    if (names.empty() || looksLikeOption(word)) {
      return checkOptions(*level, call, std::span(words).subspan(i));
    }
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

CLI::Validator wholeNumber(int64_t low, int64_t high) {
  const std::string range = std::to_string(low) + " to " + std::to_string(high);
  return {[=](std::string& text) {
            const std::optional<int64_t> value = parseInteger(text);
            if (!value || *value < low || *value > high) {
              return "give a whole number from " + range + ", not '" + text + "'";
            }
            text = std::to_string(*value);
            return std::string();
          },
          range};
}

CLI::Validator number(double low, double high) {
  const std::string range = numberText(low) + " to " + numberText(high);
  return {[=](std::string& text) {
            const std::optional<double> value = parseReal(text);
            const bool inside = value && *value >= low && *value <= high;
            return inside ? std::string() : "give a number from " + range + ", not '" + text + "'";
          },
          range};
}

std::string formatHelp() {
  constexpr size_t kColumns = 78;
  std::string text, line = "Pixel formats:";
  for (const std::string& name : pixelFormatNames()) {
    if (line.size() + 1 + name.size() > kColumns) {
      text += line + "\n";
      line = " ";
    }
    line += " " + name;
  }
  return text + line;
}

CLI::Validator notEmpty() {
  return {[](std::string& value) {
            return std::string(value.empty() ? "is empty: give it a value" : "");
          },
          ""};
}

void addRawFrameOptions(CLI::App& command, std::string& format, std::string& size) {
  command.add_option("--from", format, "Pixel format of raw frames in IN")
      ->check(notEmpty())
      ->type_name("FORMAT");
  command.add_option("--in-size", size, "Size of raw frames in IN")
      ->check(notEmpty())
      ->type_name("WxH");
}

void addQualityOption(CLI::App& command, int& quality) {
  command.add_option("--quality", quality, "Quality of JPEG output (default 95, 4:4:4)")
      ->transform(wholeNumber(1, 100));
}

}  // namespace qpx::tool
