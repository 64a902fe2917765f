#include "convert/parallel_failures.h"

#include <pthread.h>

#include <cerrno>
#include <cstdio>

namespace {

int g_threadsLeft = -1;
int g_writesLeft = -1;
std::vector<std::string> g_opened;

// Counts down; below 0 there is no end.
bool isRefused(int* left) {
  if (*left > 0) --*left;
  return *left == 0;
}

int leftBefore(int n) { return n == 0 ? -1 : n; }

bool refusesFile(const char* path, const char* mode) {
  if (mode[0] != 'w') return false;
  g_opened.emplace_back(path);
  return isRefused(&g_writesLeft);
}

}  // namespace

namespace qpx::testing {

void failThreadsFrom(int n) { g_threadsLeft = leftBefore(n); }

void failWritesFrom(int n) {
  g_writesLeft = leftBefore(n);
  g_opened.clear();
}

const std::vector<std::string>& openedForWriting() { return g_opened; }

}  // namespace qpx::testing

// The names that the linker gives them.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

using ThreadBody = void* (*)(void*);

int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, ThreadBody body,
                          void* argument);
FILE* __real_fopen(const char* path, const char* mode);
FILE* __real_fopen64(const char* path, const char* mode);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, ThreadBody body,
                          void* argument);
FILE* __wrap_fopen(const char* path, const char* mode);
FILE* __wrap_fopen64(const char* path, const char* mode);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, ThreadBody body,
                          void* argument) {
  if (isRefused(&g_threadsLeft)) return EAGAIN;
  return __real_pthread_create(thread, attributes, body, argument);
}

FILE* __wrap_fopen(const char* path, const char* mode) {
  return refusesFile(path, mode) ? nullptr : __real_fopen(path, mode);
}

FILE* __wrap_fopen64(const char* path, const char* mode) {
  return refusesFile(path, mode) ? nullptr : __real_fopen64(path, mode);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
