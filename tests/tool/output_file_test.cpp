#include "output_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "errors.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

using tool::OutputFile;

class OutputFileTest : public ToolTest {
 protected:
  static bool put(OutputFile& file, const std::string& text) {
    return file.write(reinterpret_cast<const uint8_t*>(text.data()), text.size());
  }
};

TEST_F(OutputFileTest, ReplacesTheFileOnlyWhenCommitted) {
  write("a", "old");
  {
    OutputFile file(path("a"));
    EXPECT_TRUE(put(file, "new"));
    EXPECT_EQ(read("a"), "old");
  }
  EXPECT_EQ(read("a"), "old");
  EXPECT_EQ(files(), "a");
  OutputFile file(path("a"));
  EXPECT_TRUE(put(file, "new"));
  file.commit();
  EXPECT_EQ(read("a"), "new");
  EXPECT_EQ(files(), "a");
}

TEST_F(OutputFileTest, KeepsTheModeOfTheFileItReplaces) {
  write("a", "old");
  ASSERT_EQ(chmod(path("a").c_str(), 0640), 0);
  OutputFile file(path("a"));
  file.commit();
  struct stat status {};
  ASSERT_EQ(stat(path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST_F(OutputFileTest, WritesThroughASymbolicLink) {
  write("real", "old");
  std::filesystem::create_symlink(path("real"), path("link"));
  OutputFile file(path("link"));
  EXPECT_TRUE(put(file, "new"));
  file.commit();
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  EXPECT_EQ(read("real"), "new");
}

TEST_F(OutputFileTest, WritesAPipeStraightAndLeavesItAPipe) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const int reader = open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  OutputFile file(path("pipe"));
  EXPECT_TRUE(put(file, "text"));
  file.commit();
  char buffer[8] = {};
  EXPECT_EQ(::read(reader, buffer, sizeof buffer), 4);
  EXPECT_STREQ(buffer, "text");
  EXPECT_TRUE(std::filesystem::is_fifo(path("pipe")));
  close(reader);
}

TEST_F(OutputFileTest, SaysWhatKeptItFromWriting) {
  EXPECT_THROW(OutputFile(path("missing/a")), tool::RunError);
  EXPECT_THROW(OutputFile(path("")), tool::RunError);  // the folder itself
}

TEST_F(OutputFileTest, APictureDoesNotGoToATerminal) {
  EXPECT_THROW(tool::refuseTerminal("-", true), tool::UsageError);
  EXPECT_NO_THROW(tool::refuseTerminal("-", false));
  EXPECT_NO_THROW(tool::refuseTerminal("a.png", true));
}

// A child dies of a signal between writing and committing.
TEST_F(OutputFileTest, SignalsRemoveTheTemporaryFile) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT, SIGXCPU, SIGALRM}) {
    const pid_t child = fork();
    if (child == 0) {
      const rlimit none{};
      setrlimit(RLIMIT_CORE, &none);
      signal(number, SIG_DFL);
      tool::installSignalCleanup();
      OutputFile file(path("a"));
      put(file, "half");
      if (files().find(".part") == std::string::npos) _exit(3);  // nothing there to remove
      raise(number);
      _exit(4);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << number << " " << status;
    EXPECT_EQ(files(), "");
  }
}

}  // namespace
}  // namespace qpx::test
