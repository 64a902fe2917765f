#include "platform/log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

#ifdef __ANDROID__
#include <android/log.h>
#endif

namespace qpx {
namespace {

constexpr int kMaxLine = 1024;

struct Listener {
  QPXLogSink sink;
  void* user;
};

std::mutex listenerLock;
Listener listener = {nullptr, nullptr};

// A copy, so that the sink runs outside the lock and may itself log or change the sink.
Listener currentListener() {
  const std::lock_guard<std::mutex> guard(listenerLock);
  return listener;
}

#ifdef __ANDROID__
bool isHeard(const Listener& /*to*/) { return true; }

void deliver(const Listener& /*to*/, int priority, const char* tag, const char* message) {
  __android_log_print(priority, tag, "%s", message);
}
#else
bool isHeard(const Listener& to) { return to.sink != nullptr; }

void deliver(const Listener& to, int priority, const char* tag, const char* message) {
  to.sink(to.user, priority, tag, message);
}
#endif

}  // namespace

void log(int priority, const char* tag, const char* format, ...) {
  const Listener to = currentListener();
  if (!isHeard(to) || format == nullptr) return;
  char message[kMaxLine];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(message, sizeof(message), format, arguments);
  va_end(arguments);
  if (length < 0) return;
  deliver(to, priority, tag == nullptr ? "" : tag, message);
}

}  // namespace qpx

void QPX_SetLogSink(QPXLogSink sink, void* user) {
  const std::lock_guard<std::mutex> guard(qpx::listenerLock);
  qpx::listener = {sink, user};
}
