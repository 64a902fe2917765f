#include <kesbase.h>
#include <pthread.h>
#include <qpx/threads.h>
#include <sys/time.h>
#include <time.h>

#include "platform/new_record.h"

struct MMutex {
  pthread_mutex_t mutex;
};

struct MEvent {
  pthread_mutex_t lock;
  pthread_cond_t cond;
  uint32_t signalled;
};

namespace qpx {
namespace {

static_assert(sizeof(pthread_t) <= sizeof(MThreadHandle));

constexpr int32_t kDone = 0;
constexpr int32_t kFailed = 1;
constexpr int32_t kNullHandle = 2;

bool makeRecursive(pthread_mutex_t* mutex) {
  pthread_mutexattr_t attributes;
  if (pthread_mutexattr_init(&attributes) != 0) return false;
  const bool made = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                    pthread_mutex_init(mutex, &attributes) == 0;
  pthread_mutexattr_destroy(&attributes);
  return made;
}

bool makeEvent(MEvent* event) {
  if (pthread_mutex_init(&event->lock, nullptr) != 0) return false;
  if (pthread_cond_init(&event->cond, nullptr) == 0) return true;
  pthread_mutex_destroy(&event->lock);
  return false;
}

timeval timeOfDay() {
  timeval now = {};
  gettimeofday(&now, nullptr);
  return now;
}

// The nanoseconds are not carried into the seconds: a sum of a second and more is a time that the
// system refuses, which callers know as a time-out.
timespec deadlineIn(uint32_t milliseconds) {
  const timeval now = timeOfDay();
  timespec deadline = {};
  deadline.tv_sec = now.tv_sec + static_cast<time_t>(milliseconds / 1000);
  deadline.tv_nsec =
      static_cast<long>(now.tv_usec) * 1000 + static_cast<long>(milliseconds % 1000) * 1000000;
  return deadline;
}

int waitForSignal(MEvent* event, uint32_t milliseconds) {
  if (event->signalled != 0) return 0;
  if (milliseconds == QPX_WAIT_FOREVER) return pthread_cond_wait(&event->cond, &event->lock);
  const timespec deadline = deadlineIn(milliseconds);
  return pthread_cond_timedwait(&event->cond, &event->lock, &deadline);
}

int32_t join(MThreadHandle thread) {
  if (thread != 0) pthread_join(static_cast<pthread_t>(thread), nullptr);
  return kDone;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

MThreadHandle MThreadCreate(MThreadRoutine routine, void* argument) {
  if (routine == nullptr) return 0;
  pthread_t thread = {};
  if (pthread_create(&thread, nullptr, routine, argument) != 0) return 0;
  return static_cast<MThreadHandle>(thread);
}

int32_t MThreadExit(MThreadHandle thread) { return join(thread); }

int32_t MThreadDestory(MThreadHandle thread) { return join(thread); }

// Not usleep, whose 32 bits of microseconds end after 71 minutes.
int32_t MThreadSleep(MThreadHandle /*thread*/, uint32_t milliseconds) {
  timespec duration = {};
  duration.tv_sec = static_cast<time_t>(milliseconds / 1000);
  duration.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000;
  nanosleep(&duration, nullptr);
  return kDone;
}

int32_t MThreadResume(MThreadHandle /*thread*/) { return kDone; }

int32_t MThreadSuspend(MThreadHandle /*thread*/) { return kDone; }

int32_t MThreadSetPriority(MThreadHandle /*thread*/, int32_t /*priority*/) { return kDone; }

MMutexHandle MMutexCreate() {
  MMutex* const mutex = newRecord<MMutex>();
  if (mutex == nullptr || makeRecursive(&mutex->mutex)) return mutex;
  MMemFree(nullptr, mutex);
  return nullptr;
}

int32_t MMutexDestroy(MMutexHandle mutex) {
  if (mutex == nullptr) return kDone;
  pthread_mutex_destroy(&mutex->mutex);
  MMemFree(nullptr, mutex);
  return kDone;
}

int32_t MMutexLock(MMutexHandle mutex) {
  if (mutex == nullptr) return kNullHandle;
  return pthread_mutex_lock(&mutex->mutex) == 0 ? kDone : kFailed;
}

int32_t MMutexUnlock(MMutexHandle mutex) {
  if (mutex == nullptr) return kNullHandle;
  return pthread_mutex_unlock(&mutex->mutex) == 0 ? kDone : kFailed;
}

MEventHandle MEventCreate() {
  MEvent* const event = newRecord<MEvent>();
  if (event == nullptr || makeEvent(event)) return event;
  MMemFree(nullptr, event);
  return nullptr;
}

int32_t MEventDestroy(MEventHandle event) {
  if (event == nullptr) return kNullHandle;
  pthread_cond_destroy(&event->cond);
  pthread_mutex_destroy(&event->lock);
  MMemFree(nullptr, event);
  return kDone;
}

int32_t MEventSignal(MEventHandle event) {
  if (event == nullptr) return kNullHandle;
  if (pthread_mutex_lock(&event->lock) != 0) return kFailed;
  event->signalled = 1;
  const int signalled = pthread_cond_signal(&event->cond);
  const int unlocked = pthread_mutex_unlock(&event->lock);
  return signalled == 0 && unlocked == 0 ? kDone : kFailed;
}

int32_t MEventReset(MEventHandle event) {
  if (event == nullptr) return kNullHandle;
  if (pthread_mutex_lock(&event->lock) != 0) return kFailed;
  event->signalled = 0;
  return pthread_mutex_unlock(&event->lock) == 0 ? kDone : kFailed;
}

int32_t MEventWait(MEventHandle event, uint32_t milliseconds) {
  if (event == nullptr) return kNullHandle;
  if (pthread_mutex_lock(&event->lock) != 0) return kFailed;
  const int waited = waitForSignal(event, milliseconds);
  event->signalled = 0;
  const int unlocked = pthread_mutex_unlock(&event->lock);
  return waited == 0 && unlocked == 0 ? kDone : kFailed;
}

uint32_t MGetCurTimeStamp() {
  const timeval now = timeOfDay();
  return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                               (static_cast<uint64_t>(now.tv_usec) + 500) / 1000);
}
