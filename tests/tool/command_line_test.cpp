#include "command_line.h"

#include <array>
#include <filesystem>
#include <iomanip>
#include <sstream>
#include <string>

#include "catalogue.h"
#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

using Words = std::vector<std::string>;

// As a shell would take it apart, for as much of a shell as the examples use: quotes, one wildcard,
// streams. What a pipe feeds is left out.
Words wordsOfExample(const std::string& line) {
  Words words;
  std::istringstream stream(line);
  for (std::string word; stream >> std::quoted(word) && word != "|";) {
    if (word == "<" || word == ">") {
      stream >> word;
    } else if (const size_t star = word.find('*'); star != std::string::npos) {
      for (const char* name : {"a", "b"}) words.push_back(std::string(word).replace(star, 1, name));
    } else {
      std::erase(word, '\'');
      words.push_back(word);
    }
  }
  return words;
}

Words examplesIn(const std::string& help) {
  Words examples;
  std::istringstream stream(help.substr(std::min(help.find("\nExample"), help.size())));
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("  qpx ")) examples.push_back(line.substr(6));
  }
  return examples;
}

class CommandLineTest : public ToolTest {
 protected:
  CommandLineTest() {
    const Image image = randomImage(20, 16, 3, 41);
    jpeg_ = jpegFile(image);
    std::filesystem::create_directory(path("holiday"));
    for (const char* name : {"photo.jpg", "in.jpg", "mask.png", "holiday/a.jpg", "holiday/b.jpg"}) {
      write(name, jpeg_);
    }
  }

  std::string jpeg_;
};

TEST_F(CommandLineTest, EveryExampleOfTheHelpRuns) {
  for (const Words& call : {Words{"--help"},
                            {"apply", "--help"},
                            {"list", "--help"},
                            {"sample", "--help"},
                            {"sheet", "--help"},
                            {"motion-blur", "--help"},
                            {"retouch", "--help"},
                            {"waterfall", "--help"}}) {
    const Words examples = examplesIn(run(call).out);
    EXPECT_FALSE(examples.empty()) << call.front();
    for (const std::string& example : examples) {
      EXPECT_TRUE(succeeded(run(wordsOfExample(example), jpeg_))) << example;
    }
  }
  EXPECT_TRUE(exists("out.png"));  // as an example of apply says
  EXPECT_TRUE(exists("looks/b.jpg"));
}

TEST_F(CommandLineTest, TheCallThatListShowsRuns) {
  for (const QPXEffectInfo& effect : tool::catalogue()) {
    if (!tool::isBuilt(effect)) continue;
    const std::string details = run({"list", effect.name}).out;
    const size_t start = details.find("  qpx apply ");
    ASSERT_NE(start, std::string::npos) << effect.name;
    Words call = wordsOfExample(details.substr(start + 6));
    call.insert(call.end(), {"--second", "photo.jpg"});
    const ToolRun result = run(call);
    if (result.err.find("leave --second out") != std::string::npos) {
      call.resize(call.size() - 2);
      EXPECT_TRUE(succeeded(run(call))) << effect.name;
    } else {
      EXPECT_TRUE(succeeded(result)) << effect.name;
    }
  }
}

TEST_F(CommandLineTest, NamesBehindTwoDashesAreNoOptions) {
  write("-odd.jpg", jpeg_);
  EXPECT_TRUE(succeeded(run({"apply", "Fx1300", "--", "-odd.jpg", "-out.jpg"})));
  EXPECT_TRUE(exists("-out.jpg"));
  EXPECT_TRUE(succeeded(run({"apply", "--", "Fx1300", "-odd.jpg", "second.jpg"})));
  EXPECT_TRUE(exists("second.jpg"));
  EXPECT_TRUE(succeeded(run({"sample", "--size", "3x3", "--", "--size.png"})));
  EXPECT_TRUE(exists("--size.png"));
  const ToolRun piped = run({"apply", "Fx1300", "--", "-", "-"}, jpeg_);
  EXPECT_EQ(readImage(piped.out).width, 20);
}

TEST_F(CommandLineTest, NamesLikeOptionsGetAHint) {
  write("-odd.jpg", jpeg_);
  EXPECT_TRUE(failedWith(run({"apply", "Fx1300", "-odd.jpg", "x.jpg"}), 2, "write ./-odd.jpg"));
  EXPECT_TRUE(succeeded(run({"apply", "Fx1300", "./-odd.jpg", "x.jpg"})));
  const ToolRun other = run({"apply", "Fx1300", "-no.jpg", "x.jpg"});
  EXPECT_TRUE(failedWith(other, 2, "-no.jpg"));
  EXPECT_EQ(other.err.find("./"), std::string::npos);
}

TEST_F(CommandLineTest, AMisspeltCommandIsNamed) {
  EXPECT_TRUE(
      failedWith(run({"aply", "Fx1300"}), 2, "unknown command 'aply' (did you mean apply?)"));
  EXPECT_TRUE(failedWith(run({"photo.jpg"}), 2,
                         "'photo.jpg': use one of apply, list, sheet, rotate, straighten, "
                         "motion-blur, retouch, waterfall, cutout, etc, convert, sample"));
  EXPECT_TRUE(failedWith(run({"--plain"}), 2, "qpx --help"));
}

TEST_F(CommandLineTest, WithoutWordsTheHelpIsAnError) {
  const ToolRun result = run({});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, run({"--help"}).out);
}

}  // namespace
}  // namespace qpx::test
