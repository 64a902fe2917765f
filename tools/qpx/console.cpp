#include "console.h"

#include <qpx/log.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace qpx::tool {

namespace {

bool gVerbose = false;  // set before any thread starts

char priorityLetter(int32_t priority) {
  constexpr std::array kLetters = {'V', 'D', 'I', 'W', 'E'};
  const int32_t index = priority - QPX_LOG_VERBOSE;
  return index >= 0 && index < 5 ? kLetters[static_cast<size_t>(index)] : '?';
}

// One call of fprintf a line, so that lines of several threads do not mix.
void printLogLine(void*, int32_t priority, const char* tag, const char* message) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  std::array<char, 32> date{};
  std::strftime(date.data(), date.size(), "%m-%d %H:%M:%S", &local);
  std::fprintf(stderr, "%s.%03ld %5d %5ld %c %-8s: %s\n", date.data(), now.tv_nsec / 1000000,
               static_cast<int>(getpid()), static_cast<long>(syscall(SYS_gettid)),
               priorityLetter(priority), tag, message);
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

void printError(const std::string& text) {
  const char* name = wantsColor(STDERR_FILENO) ? "\033[1;31mqpx:\033[0m" : "qpx:";
  const char* clear = isatty(STDERR_FILENO) ? "\r\033[K" : "";  // a progress bar may be there
  std::fprintf(stderr, "%s%s %s\n", clear, name, text.c_str());
}

void beVerbose() {
  gVerbose = true;
  QPX_SetLogSink(printLogLine, nullptr);
}

void say(const std::string& text) {
  if (gVerbose) printLogLine(nullptr, QPX_LOG_INFO, "qpx", text.c_str());
}

}  // namespace qpx::tool
