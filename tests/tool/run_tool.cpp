#include "run_tool.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace qpx::test {

namespace {

struct Pipe {
  int read = -1, write = -1;

  Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) std::abort();
    read = ends[0];
    write = ends[1];
  }
};

[[noreturn]] void become(const std::string& folder, const std::vector<std::string>& arguments,
                         const Pipe& in, const Pipe& out, const Pipe& err) {
  std::vector<char*> words = {const_cast<char*>(QPX_TOOL_PATH)};
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  dup2(in.read, STDIN_FILENO);
  dup2(out.write, STDOUT_FILENO);
  dup2(err.write, STDERR_FILENO);
  signal(SIGPIPE, SIG_DFL);
  if (chdir(folder.c_str()) == 0) execv(QPX_TOOL_PATH, words.data());
  _exit(127);
}

// Feeds and drains all three pipes at once, so that neither side waits for the other.
void exchange(const Pipe& in, const Pipe& out, const Pipe& err, const std::string& input,
              ToolRun& run) {
  size_t sent = 0;
  std::array<pollfd, 3> ends = {pollfd{in.write, POLLOUT, 0}, pollfd{out.read, POLLIN, 0},
                                pollfd{err.read, POLLIN, 0}};
  fcntl(in.write, F_SETFL, O_NONBLOCK);
  while (ends[1].fd >= 0 || ends[2].fd >= 0) {
    if (poll(ends.data(), ends.size(), -1) < 0) continue;
    if (ends[0].revents != 0) {
      const ssize_t count = ::write(in.write, input.data() + sent, input.size() - sent);
      if (count > 0) sent += static_cast<size_t>(count);
      if (sent == input.size() || (count < 0 && errno != EAGAIN)) {
        close(in.write);
        ends[0].fd = -1;
      }
    }
    for (size_t i = 1; i < 3; ++i) {
      if (ends[i].fd < 0 || ends[i].revents == 0) continue;
      std::array<char, 65536> buffer{};
      const ssize_t count = ::read(ends[i].fd, buffer.data(), buffer.size());
      if (count > 0) {
        (i == 1 ? run.out : run.err).append(buffer.data(), static_cast<size_t>(count));
      } else {
        close(ends[i].fd);
        ends[i].fd = -1;
      }
    }
  }
  if (ends[0].fd >= 0) close(in.write);
}

}  // namespace

ToolTest::ToolTest() {
  std::string name = testing::TempDir() + "qpx-tool-XXXXXX";
  if (!mkdtemp(name.data())) std::abort();
  folder_ = name;
  signal(SIGPIPE, SIG_IGN);
}

ToolTest::~ToolTest() { std::filesystem::remove_all(folder_); }

ToolRun ToolTest::run(const std::vector<std::string>& arguments, const std::string& input) const {
  const Pipe in, out, err;
  const pid_t child = fork();
  if (child == 0) become(folder_, arguments, in, out, err);
  close(in.read);
  close(out.write);
  close(err.write);
  ToolRun result;
  exchange(in, out, err, input, result);
  int status = 0;
  waitpid(child, &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::string ToolTest::read(const std::string& name) const {
  std::ifstream file(path(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void ToolTest::write(const std::string& name, const std::string& bytes) const {
  std::ofstream(path(name), std::ios::binary) << bytes;
}

bool ToolTest::exists(const std::string& name) const { return std::filesystem::exists(path(name)); }

std::string ToolTest::files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

testing::AssertionResult failedWith(const ToolRun& run, int status, const std::string& text) {
  const bool oneLine = std::count(run.err.begin(), run.err.end(), '\n') == 1;
  if (run.status == status && oneLine && run.err.starts_with("qpx: ") &&
      run.err.find(text) != std::string::npos) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "status " << run.status << ", expected " << status
                                     << " and a line with '" << text << "', standard error:\n"
                                     << run.err;
}

testing::AssertionResult succeeded(const ToolRun& run) {
  if (run.status == 0 && run.err.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "status " << run.status << ", standard error:\n" << run.err;
}

}  // namespace qpx::test
