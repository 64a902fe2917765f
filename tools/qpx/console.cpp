#include "console.h"

#include <qpx/log.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "text.h"

namespace qpx::tool {

namespace {

bool gVerbose = false;  // set before any thread starts

char priorityLetter(int32_t priority) {
  constexpr std::array kLetters = {'V', 'D', 'I', 'W', 'E'};
  const int32_t index = priority - QPX_LOG_VERBOSE;
  return index >= 0 && index < 5 ? kLetters[static_cast<size_t>(index)] : '?';
}

const char* clearOfBar() { return isatty(STDERR_FILENO) ? kClearLine : ""; }

// One call of fprintf a line, so that lines of several threads do not mix.
void printLogLine(void*, int32_t priority, const char* tag, const char* message) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  std::array<char, 32> date{};
  std::strftime(date.data(), date.size(), "%m-%d %H:%M:%S", &local);
  std::string_view text = message;
  while (text.ends_with('\n')) text.remove_suffix(1);  // as some messages of the library do
  std::fprintf(stderr, "%s%s.%03ld %5d %5ld %c %-8s: %s\n", clearOfBar(), date.data(),
               now.tv_nsec / 1000000, static_cast<int>(getpid()),
               static_cast<long>(syscall(SYS_gettid)), priorityLetter(priority), tag,
               printable(text).c_str());
}

}  // namespace

bool wantsColor(int descriptor) {
  const char* noColor = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  if (noColor && *noColor) return false;
  if (!terminal || std::strcmp(terminal, "dumb") == 0) return false;
  return isatty(descriptor) != 0;
}

std::string bold(const std::string& text, int descriptor) {
  return wantsColor(descriptor) ? "\033[1m" + text + "\033[0m" : text;
}

int terminalColumns(int descriptor) {
  winsize size{};
  return ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void printError(const std::string& text) {
  const char* name = wantsColor(STDERR_FILENO) ? "\033[1;31mqpx:\033[0m" : "qpx:";
  std::fprintf(stderr, "%s%s %s\n", clearOfBar(), name, printable(text).c_str());
}

void beVerbose() {
  gVerbose = true;
  QPX_SetLogSink(printLogLine, nullptr);
}

void say(const std::string& text) {
  if (gVerbose) printLogLine(nullptr, QPX_LOG_INFO, "qpx", text.c_str());
}

}  // namespace qpx::tool
